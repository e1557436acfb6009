// The property store: the file grammar, the readers' fallbacks, number
// forms and the per-lane settings.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <tide/property.h>
#include <tide/shr.h>

#include "shared/shr_property_int.h"
#include "support/fixture.h"

using tide::test::Capture;

namespace {

class Property : public ::testing::Test {
protected:
    void SetUp() override
    {
        char tmpl[] = "/tmp/tide_prop_XXXXXX";
        ASSERT_NE(mkdtemp(tmpl), nullptr);
        dir_ = tmpl;
        ASSERT_EQ(shr_property_init(), 0);
        shr_debug_base_printf_func_set(Capture::log_sink);
        shr_chip_type_assign(0, 3, 0); // atolreef
        shr_chip_type_assign(1, 3, 0);
    }
    void TearDown() override
    {
        shr_property_deinit();
        shr_debug_base_printf_func_set(nullptr);
        std::string cmd = "rm -rf " + dir_;
        ASSERT_EQ(std::system(cmd.c_str()), 0);
    }
    std::string file(const char *name, const char *text)
    {
        std::string path = dir_ + "/" + name;
        FILE *f = std::fopen(path.c_str(), "w");
        std::fputs(text, f);
        std::fclose(f);
        return path;
    }
    std::string dir_;
};

TEST_F(Property, FileGrammarChipSuffixesAndImport)
{
    const std::string common = file("common.cfg", "common=7\ndebug_level=9\n");
    const std::string text = "# a comment\n"
                             "/ also skipped\n"
                             "\r\n"
                             "\n"
                             "abc\n"
                             "debug_level=2\n"
                             "debug_level.chip1=3\n"
                             "debug_level.chip0=4\n"
                             "port_init_speed.chip1.port3=1000\n"
                             "a = 1 2\r\n"
                             "=5\n"
                             "import=" + common + "\n"
                             "after=1\n";
    const std::string path = file("chip.cfg", text.c_str());
    ASSERT_EQ(shr_property_cfg_file_load(1, path.c_str()), 0);

    // The import replaced the earlier debug_level; the chip line before it
    // lost to the later plain line of the imported file.
    EXPECT_STREQ(shr_property_get_str(1, "debug_level"), "9");
    EXPECT_EQ(shr_property_get(1, "common", 0), 7);
    EXPECT_EQ(shr_property_get(1, "after", 0), 1);
    EXPECT_STREQ(shr_property_get_str(1, "port_init_speed.port3"), "1000");
    EXPECT_EQ(shr_property_port_get(1, 3, "port_init_speed", 0), 1000);
    EXPECT_STREQ(shr_property_get_str(1, "a"), "12");
    EXPECT_STREQ(shr_property_get_str(1, ""), "5");
    EXPECT_EQ(shr_property_get_str(1, "abc"), nullptr);
    // Nothing went to another chip.
    EXPECT_EQ(shr_property_get_str(0, "debug_level"), nullptr);
    EXPECT_EQ(shr_property_get_str(1, "debug_level.chip0"), nullptr);
}

TEST_F(Property, ChipLineAfterPlainLineWins)
{
    const std::string path = file("c.cfg", "debug_level=2\ndebug_level.chip1=3\ndebug_level.chip0=4\n");
    ASSERT_EQ(shr_property_cfg_file_load(1, path.c_str()), 0);
    EXPECT_EQ(shr_property_get(1, "debug_level", 0), 3);
    ASSERT_EQ(shr_property_cfg_file_load(0, path.c_str()), 0);
    EXPECT_EQ(shr_property_get(0, "debug_level", 0), 4);
}

TEST_F(Property, LoaderFailuresAndSelfImport)
{
    EXPECT_EQ(shr_property_cfg_file_load(0, nullptr), -20);
    EXPECT_EQ(shr_property_cfg_file_load(0, ""), -20);
    EXPECT_EQ(shr_property_cfg_file_load(0, (dir_ + "/missing.cfg").c_str()), -11);
    // A file that imports itself is cut off at a depth limit, and the rest
    // of its settings still load.
    const std::string self = dir_ + "/self.cfg";
    file("self.cfg", ("x=1\nimport=" + self + "\ny=2\n").c_str());
    Capture::clear();
    EXPECT_EQ(shr_property_cfg_file_load(0, self.c_str()), 0);
    EXPECT_EQ(shr_property_get(0, "y", 0), 2);
    // A file that imports itself twice doubles its reads at every level;
    // one load reads a bounded number of files, each of which refuses at
    // most its two imports, and the settings are there.
    file("twice.cfg", ("a=1\nimport=" + dir_ + "/twice.cfg\nimport=" + dir_ + "/twice.cfg\nb=2\n").c_str());
    Capture::clear();
    EXPECT_EQ(shr_property_cfg_file_load(0, (dir_ + "/twice.cfg").c_str()), 0);
    EXPECT_EQ(shr_property_get(0, "a", 0), 1);
    EXPECT_EQ(shr_property_get(0, "b", 0), 2);
    EXPECT_TRUE(Capture::has("files imported already"));
    EXPECT_LE(Capture::count("property file"), 2u * (256 + 1));
    // A missing imported file does not stop the importing one.
    const std::string outer = file("outer.cfg", ("import=" + dir_ + "/nope.cfg\nz=3\n").c_str());
    EXPECT_EQ(shr_property_cfg_file_load(0, outer.c_str()), 0);
    EXPECT_EQ(shr_property_get(0, "z", 0), 3);
}

TEST_F(Property, NumberFormsAndChipNamePrecedence)
{
    for (const char *v : {"0x10", "0X10", "020", "0b10000", "16"}) {
        ASSERT_EQ(shr_property_set(0, "n", v), 0);
        EXPECT_EQ(shr_property_get(0, "n", 0), 16) << v;
    }
    shr_property_set(0, "n", "-0x10");
    EXPECT_EQ(shr_property_get(0, "n", 0), -16);
    shr_property_set(0, "n", "");
    EXPECT_EQ(shr_property_get(0, "n", 5), 0);
    EXPECT_EQ(shr_property_get(0, "absent", 5), 5);

    shr_property_set(0, "debug_level", "2");
    const std::string named = std::string("debug_level.") + shr_chip_name_get(0);
    shr_property_set(0, named.c_str(), "3");
    EXPECT_EQ(shr_property_get(0, "debug_level", 0), 3);
    // The same-name record of another chip is a record of its own, in the
    // same bucket.
    shr_property_set(1, "debug_level", "8");
    EXPECT_EQ(shr_property_get(1, "debug_level", 0), 8);
    shr_property_delete(0, named.c_str(), nullptr);
    EXPECT_EQ(shr_property_get(0, "debug_level", 0), 2);
    EXPECT_EQ(shr_property_get(1, "debug_level", 0), 8);
}

TEST_F(Property, ReaderFallbackOrders)
{
    shr_property_set(0, "port_rx_max_pkt_length", "1");
    shr_property_set(0, "port_rx_max_pkt_length.port3", "2");
    EXPECT_EQ(shr_property_port_get(0, 3, "port_rx_max_pkt_length", 0), 2);
    shr_property_set(0, "port_rx_max_pkt_length_3", "3");
    EXPECT_EQ(shr_property_port_get(0, 3, "port_rx_max_pkt_length", 0), 3);
    EXPECT_EQ(shr_property_port_get(0, 4, "port_rx_max_pkt_length", 0), 1);

    shr_property_set(0, "q.cos1", "11");
    EXPECT_EQ(shr_property_cos_get(0, 0, "q", 0), 11);
    EXPECT_EQ(shr_property_cos_get(0, 1, "q", 4), 4);

    shr_property_set(0, "k_pci", "1");
    shr_property_set(0, "k_uc0", "2");
    shr_property_set(0, "k", "3");
    EXPECT_EQ(shr_property_uc_get(0, 0, "k", 0), 1);
    EXPECT_EQ(shr_property_uc_get(0, 1, "k", 0), 2);
    EXPECT_EQ(shr_property_uc_get(0, 2, "k", 0), 3);

    shr_property_set(0, "s_lane2", "1");
    shr_property_set(0, "s.port4.lane", "2");
    shr_property_set(0, "s_lane", "3");
    EXPECT_EQ(shr_property_suffix_num_get(0, 2, "s", "lane", 0), 1);
    EXPECT_EQ(shr_property_suffix_num_get(0, 3, "s", "lane", 0), 2);
    EXPECT_EQ(shr_property_suffix_num_get(0, 4, "s", "lane", 0), 3);

    // Port forms of each name come before the next, shorter name.
    shr_property_set(0, "p_lane_5", "9");
    shr_property_set(0, "p_lane1", "8");
    EXPECT_EQ(shr_property_port_suffix_num_get(0, 5, 1, "p", "lane", 0), 8);
    EXPECT_EQ(shr_property_port_suffix_num_get(0, 5, 2, "p", "lane", 0), 9);

    shr_property_set(0, "e.atolreef_7", "5");
    shr_property_set(0, "e_7", "6");
    EXPECT_EQ(shr_property_get_ext(0, "e", "_7", 0), 5);
    EXPECT_EQ(shr_property_get_ext(1, "e", "_7", 0), 0);
}

TEST_F(Property, ListsAndFixedPoint)
{
    u32 out[3] = {0, 0, 77};
    shr_property_set(0, "l", "1,2,3");
    EXPECT_EQ(shr_property_get_csv(0, "l", 2, out), 2);
    EXPECT_EQ(out[0], 1u);
    EXPECT_EQ(out[1], 2u);
    EXPECT_EQ(out[2], 77u);
    shr_property_set(0, "l", "0x10,020,");
    EXPECT_EQ(shr_property_get_csv(0, "l", 3, out), 3);
    EXPECT_EQ(out[0], 16u);
    EXPECT_EQ(out[1], 16u);
    EXPECT_EQ(shr_property_get_csv(0, "missing", 3, out), 0);

    int v = 0;
    char term = 'x';
    EXPECT_EQ(_shr_property_str_to_val("1.5", &v, 2, &term), 0);
    EXPECT_EQ(v, 150);
    EXPECT_EQ(term, '\0');
    _shr_property_str_to_val("2.345,", &v, 2, &term);
    EXPECT_EQ(v, 234);
    EXPECT_EQ(term, ',');
    _shr_property_str_to_val("-1.5", &v, 1, &term);
    EXPECT_EQ(v, -15);
    _shr_property_str_to_val("7", &v, 3, nullptr);
    EXPECT_EQ(v, 7000);
    // Too big for 64 bits: the value wraps, as the integer forms do, and a
    // scale of any size ends once nothing is left.
    _shr_property_str_to_val("1000000000000000000.5", &v, 2, nullptr);
    EXPECT_EQ(v, static_cast<int>(static_cast<u32>(1000000000000000000ull * 100 + 50)));
    _shr_property_str_to_val("-9223372036854775808", &v, 1, nullptr);
    EXPECT_EQ(v, 0);
    _shr_property_str_to_val("3", &v, 0x7FFFFFFF, nullptr);
    EXPECT_EQ(v, 0);

    shr_property_set(0, "sds.lane2.amp", "0.25");
    shr_property_set(0, "sds.lane.amp", "1");
    EXPECT_EQ(shr_property_obj_attr_get(0, "sds", "lane", 2, "amp", 2, &term, -1), 25);
    EXPECT_EQ(shr_property_obj_attr_get(0, "sds", "lane", -1, "amp", 2, &term, -1), 100);
    EXPECT_EQ(shr_property_obj_attr_get(0, "sds", "x", 1, "amp", 0, nullptr, -1), -1);
}

TEST_F(Property, TooLongKeysAndPortSetters)
{
    const std::string long_key(200, 'k');
    EXPECT_EQ(shr_property_port_set_str(0, 3, long_key.c_str(), "1"), -6);
    EXPECT_EQ(shr_property_port_set_str(0, 3, "ok", std::string(200, 'v').c_str()), -6);
    EXPECT_EQ(shr_property_port_set_u32(0, 3, "inner", 28), 0);
    EXPECT_STREQ(shr_property_get_str(0, "inner_3"), "28");
    // A stored key is cut to what a record holds, and found by the same cut.
    ASSERT_EQ(shr_property_set(0, long_key.c_str(), std::string(300, 'v').c_str()), 0);
    const char *v = shr_property_get_str(0, long_key.substr(0, 127).c_str());
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(std::string(v), std::string(127, 'v'));
}

TEST_F(Property, LaneSettingsAndPreEmphasis)
{
    EXPECT_EQ(shr_property_alone_lane_pn_type_get(0, 4), -1);
    shr_property_alone_lane_pn_type_set(0, 4, 1);
    EXPECT_EQ(shr_property_alone_lane_pn_type_get(0, 4), 1);
    shr_property_port_split_flag_set(0, 9, 1);
    EXPECT_EQ(shr_property_port_split_flag_get(0, 9), 1);
    EXPECT_EQ(shr_property_port_split_flag_get(0, 8), 0);
    shr_property_sds_lane_pe_dist_speed_flag_set(0, 1);
    EXPECT_EQ(shr_property_sds_lane_pe_dist_speed_flag_get(0), 1);

    shr_property_pre_emphasis_t pe{};
    pe.type = SHR_PROPERTY_PE_TYPE_MPP;
    EXPECT_EQ(shr_property_alone_lane_pre_emphasis_get(0, 2, &pe), 0);
    EXPECT_EQ(pe.u.mpp.main_, 0xFF); // nothing configured
    pe.u.mpp.main_ = 90;
    pe.u.mpp.pre = 3;
    pe.u.mpp.post = 7;
    ASSERT_EQ(shr_property_alone_lane_pre_emphasis_set(0, 2, &pe), 0);
    EXPECT_EQ(shr_property_get(0, "serdes_tx_main_2", 0), 90);
    shr_property_pre_emphasis_t back{};
    back.type = SHR_PROPERTY_PE_TYPE_MPP;
    shr_property_alone_lane_pre_emphasis_get(0, 2, &back);
    EXPECT_EQ(back.u.mpp.post, 7);

    shr_property_pre_emphasis_t tap{};
    tap.type = SHR_PROPERTY_PE_TYPE_TAP;
    tap.u.tap.tap[3] = -12;
    tap.u.tap.polarity = 1;
    ASSERT_EQ(shr_property_sds_alone_lane_pre_emphasis_set_with_attr(0, 2, "25G", &tap), 0);
    EXPECT_EQ(shr_property_get(0, "serdes_lane_pe_tx_tap3_2_25G", 0), -12);
    shr_property_pre_emphasis_t tb{};
    tb.type = SHR_PROPERTY_PE_TYPE_TAP;
    shr_property_sds_alone_lane_pre_emphasis_get_with_attr(0, 2, "25G", &tb);
    EXPECT_EQ(tb.u.tap.tap[3], -12);
    shr_property_sds_alone_lane_pre_emphasis_get_with_attr(0, 2, "10G", &tb);
    EXPECT_EQ(tb.u.tap.tap[3], -1);

    pe.type = 2;
    EXPECT_EQ(shr_property_alone_lane_pre_emphasis_set(0, 2, &pe), -4);
    Capture::clear();
    EXPECT_EQ(shr_property_alone_lane_pre_emphasis_get(0, 2, nullptr), -20);
    EXPECT_EQ(sizeof(shr_property_pre_emphasis_t), 16u);
    EXPECT_EQ(sizeof(shr_property_t), 260u);
}

TEST_F(Property, DumpAndIterate)
{
    shr_property_set(0, "a", "1");
    shr_property_set(1, "a", "2");
    int n = 0;
    shr_property_hash_iterate(&n, [](shr_property_t *, void *arg) { ++*static_cast<int *>(arg); });
    EXPECT_EQ(n, 2);
    testing::internal::CaptureStdout();
    shr_property_dumpall();
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("Chip0: a=1\n"), std::string::npos);
    EXPECT_NE(out.find("Chip1: a=2\n"), std::string::npos);
}

} // namespace
