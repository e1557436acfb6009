// A directory of the test's own for sockets, scripts and capture files:
// tests run in parallel (also from several build trees at once), so no
// two of them may share a name under /tmp.
#ifndef TIDE_TEST_TEMP_DIR_H
#define TIDE_TEST_TEMP_DIR_H

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace tide_test {

// Made by mkdtemp under the test's temporary directory; removed with all
// it holds when the object goes, also after a failed assertion.  The path
// stays short: a unix socket's address holds 108 bytes.
class TempDir {
public:
    TempDir()
    {
        std::string tmpl = ::testing::TempDir() + "tide_XXXXXX";
        if (mkdtemp(tmpl.data()) != nullptr) {
            path_ = tmpl;
        } else {
            ADD_FAILURE() << "mkdtemp " << tmpl;
        }
    }
    ~TempDir()
    {
        if (!path_.empty()) {
            std::error_code ignored;
            std::filesystem::remove_all(path_, ignored);
        }
    }
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;

    const std::string &path() const { return path_; }
    // A name in the directory.
    std::string file(const std::string &name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

} // namespace tide_test

#endif
