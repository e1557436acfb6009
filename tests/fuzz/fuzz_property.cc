// Fuzzer of the chip configuration file: the input becomes a main file and
// the files it may import, in a directory of this process's own; the
// loader reads them for chip 1, and every stored setting is checked and
// read back through every reader.
//
// Input: the files' texts, separated by lines "%%" (file f0 is loaded, f1
// to f7 are there to be imported).  An '@' stands for the directory, so
// "import=@f1" names the second file; any other '/' (except one that
// starts a line, a comment) becomes '_', so that nothing outside the
// directory is named.
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <tide/property.h>
#include <tide/shr.h>

#include "fuzz_support.h"
#include "shared/shr_property_int.h"

namespace {

constexpr uint32_t kChip = 1;
constexpr size_t kFiles = 8;
constexpr size_t kReadBack = 64; // records read back through every reader
constexpr int kCsvMax = 8;

std::string g_dir;

void _remove_dir()
{
    if (!g_dir.empty()) {
        for (size_t i = 0; i < kFiles; i++) {
            unlink((g_dir + "/f" + std::to_string(i)).c_str());
        }
        rmdir(g_dir.c_str());
    }
}

// The texts of the files, as the input gives them.
std::vector<std::string> _split(const uint8_t *data, size_t size)
{
    std::vector<std::string> files(1);
    size_t line = 0;
    for (size_t i = 0; i < size; i++) {
        const bool sep = i == line && size - i >= 3 && std::memcmp(data + i, "%%\n", 3) == 0;
        if (sep && files.size() < kFiles) {
            files.emplace_back();
            i += 2;
            line = i + 1;
            continue;
        }
        const char c = static_cast<char>(data[i]);
        if (c == '@') {
            files.back() += g_dir + "/";
        } else {
            files.back() += c == '/' && i != line ? '_' : c;
        }
        if (c == '\n') {
            line = i + 1;
        }
    }
    return files;
}

struct Record {
    uint32_t chip;
    std::string key;
    std::string value;
};

void _check_record(const shr_property_t *p, std::vector<Record> *out)
{
    if (std::memchr(p->key, '\0', sizeof(p->key)) == nullptr ||
        std::memchr(p->value, '\0', sizeof(p->value)) == nullptr) {
        tide::fuzz::fail("a stored key or value is not terminated inside its record");
    }
    if (p->chip != kChip) {
        tide::fuzz::fail("a setting went to another chip");
    }
    if (std::strpbrk(p->key, " \t\r\n=") != nullptr || std::strpbrk(p->value, " \t\r\n") != nullptr) {
        tide::fuzz::fail("a stored key or value kept a space, a line end, or the key an '='");
    }
    if (std::strncmp(p->key, "import", 6) == 0) {
        tide::fuzz::fail("an import line was stored as a setting");
    }
    out->push_back(Record{p->chip, p->key, p->value});
}

// Every reader, with the key as its base name.
void _read_back(const Record &r)
{
    const char *key = r.key.c_str();
    const char *v = shr_property_get_str(kChip, key);
    if (v == nullptr || r.value != v) {
        tide::fuzz::fail("a stored setting does not read back");
    }
    (void)shr_property_get(kChip, key, 7);
    (void)shr_property_get_ext(kChip, key, "_3", 0);
    (void)shr_property_get_ext_str(kChip, key, nullptr);
    (void)shr_property_port_get(kChip, 3, key, 0);
    (void)shr_property_cos_get(kChip, 0, key, 0);
    (void)shr_property_suffix_num_get(kChip, 2, key, "lane", 0);
    (void)shr_property_port_suffix_num_get(kChip, 3, 2, key, "lane", 0);
    (void)shr_property_uc_get(kChip, 0, key, 0);
    (void)shr_property_uc_get(kChip, 2, key, 0);
    (void)shr_property_ci_get(kChip, 1, key, 0);
    (void)shr_property_alone_lane_pn_type_get(kChip, 0);

    // "prefix.object.attr" keys, and "prefix.object<i>.attr", at scales.
    const size_t d1 = r.key.find('.');
    const size_t d2 = d1 == std::string::npos ? d1 : r.key.find('.', d1 + 1);
    if (d2 != std::string::npos) {
        const std::string prefix = r.key.substr(0, d1);
        const std::string object = r.key.substr(d1 + 1, d2 - d1 - 1);
        const std::string attr = r.key.substr(d2 + 1);
        char term = 0;
        for (int scale = 0; scale < 4; scale++) {
            (void)shr_property_obj_attr_get(kChip, prefix.c_str(), object.c_str(), scale - 1, attr.c_str(), scale,
                                            &term, 0);
            (void)shr_property_port_obj_attr_get(kChip, 3, prefix.c_str(), object.c_str(), scale - 1, attr.c_str(),
                                                 scale, &term, 0);
        }
    }
    for (int scale = 0; scale < 4; scale++) {
        int value = 0;
        char term = 0;
        if (_shr_property_str_to_val(v, &value, scale, &term) != 0) {
            tide::fuzz::fail("a stored value does not convert");
        }
    }

    // Lists into arrays of exactly the room they are given.
    auto *out = static_cast<uint32_t *>(std::malloc(kCsvMax * sizeof(uint32_t)));
    if (shr_property_get_csv(kChip, key, kCsvMax, out) > kCsvMax ||
        shr_property_port_get_csv(kChip, 3, key, kCsvMax, out) > kCsvMax ||
        shr_property_ci_get_csv(kChip, 1, key, kCsvMax, out) > kCsvMax ||
        shr_property_get_csv(kChip, key, 1, out) > 1) {
        tide::fuzz::fail("a list reader gave more numbers than it had room for");
    }
    std::free(out);

    shr_property_pre_emphasis_t pe{};
    pe.type = SHR_PROPERTY_PE_TYPE_TAP;
    (void)shr_property_sds_alone_lane_pre_emphasis_get_with_attr(kChip, 0, key, &pe);
}

// Where the directory goes: $TMPDIR, else memory (/dev/shm) where there
// is one, since every input writes and removes its files, else /tmp.
std::string _temp_root()
{
    const char *env = std::getenv("TMPDIR");
    if (env != nullptr && env[0] != '\0') {
        return env;
    }
    return access("/dev/shm", W_OK | X_OK) == 0 ? "/dev/shm" : "/tmp";
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    tide::fuzz::quiet();
    std::string tmpl = _temp_root() + "/tide_fuzz_property_XXXXXX";
    if (mkdtemp(tmpl.data()) == nullptr) {
        std::perror("mkdtemp");
        std::exit(1);
    }
    g_dir = tmpl;
    std::atexit(_remove_dir);
    shr_chip_type_assign(kChip, SHR_CHIP_TYPE_ATOLREEF, 0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::vector<std::string> files = _split(data, size);
    for (size_t i = 0; i < files.size(); i++) {
        FILE *f = std::fopen((g_dir + "/f" + std::to_string(i)).c_str(), "wb");
        if (f == nullptr || std::fwrite(files[i].data(), 1, files[i].size(), f) != files[i].size()) {
            tide::fuzz::fail("cannot write an input file");
        }
        std::fclose(f);
    }

    if (shr_property_cfg_file_load(kChip, (g_dir + "/f0").c_str()) != 0) {
        tide::fuzz::fail("loading a file that is there failed");
    }
    std::vector<Record> records;
    shr_property_hash_iterate(&records, [](shr_property_t *p, void *arg) {
        _check_record(p, static_cast<std::vector<Record> *>(arg));
    });
    for (size_t i = 0; i < records.size() && i < kReadBack; i++) {
        _read_back(records[i]);
    }
    shr_property_pre_emphasis_t pe{};
    (void)shr_property_alone_lane_pre_emphasis_get(kChip, 0, &pe);
    pe.type = SHR_PROPERTY_PE_TYPE_TAP;
    (void)shr_property_alone_lane_pre_emphasis_get(kChip, 0, &pe);

    shr_property_deinit();
    for (size_t i = 0; i < files.size(); i++) {
        unlink((g_dir + "/f" + std::to_string(i)).c_str());
    }
    return 0;
}
