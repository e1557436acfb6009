// The hash doors of the base service and the `hash` commands of the
// `base` mode, line by line as an operator types them on a chip of the
// model.
#include <gtest/gtest.h>
#include <tide/base.h>
#include <tide/cli.h>

#include <string>

#include "app/diag_shell/shell/cli/cli_core.h"
#include "app/diag_shell/shell/server/user/cli_server.h"
#include "support/cli_lines.h"
#include "support/fixture.h"

using tide::test::SimChips;

namespace {

class HashCli : public SimChips, public tide::test::CliLines {
protected:
    HashCli() : SimChips(1, 1) {}
    // The library's own output reaches the operator as the reference
    // application routes it: through the shell's output.
    void SetUp() override
    {
        SimChips::SetUp();
        shr_debug_base_cli_printf_func_set(cli_output_show);
        ASSERT_EQ(run("base"), 0);
    }
    void TearDown() override
    {
        shr_debug_base_cli_printf_func_set(tide::test::Capture::output_sink);
        cli_ctree_free();
        SimChips::TearDown();
    }
};

// A key of port 3, outer VLAN 0x10, inner 0x20, and an action that sets
// the outer VLAN 0x64 (bits 44..29) with dpid 5.
constexpr const char *kKey = "0x03010020";
constexpr const char *kAd = "0x0C80000005";

TEST_F(HashCli, AnOperatorAddsSearchesAndDeletesAnExactMatchEntry)
{
    ASSERT_EQ(run(std::string("hash set-key ") + kKey), 0) << out_;
    ASSERT_EQ(run(std::string("hash set-ad ") + kAd), 0) << out_;
    ASSERT_EQ(run("hash add-entry ECIB"), 0) << out_;
    EXPECT_TRUE(said("Add entry Success!\n")) << out_;
    ASSERT_EQ(run("hash add-entry ecib"), 0) << out_;
    EXPECT_TRUE(said("NOTE: add entry hit entry, update ad table!\n")) << out_;

    ASSERT_EQ(run("hash hard-search-key ECIB"), 0) << out_;
    EXPECT_TRUE(said("hit bar0 row ")) << out_;
    EXPECT_TRUE(said("ovid 0x0064")) << out_;
    EXPECT_TRUE(said("dpid 5\n")) << out_;
    ASSERT_EQ(run("hash soft-search-key ECIB"), 0) << out_;
    EXPECT_TRUE(said("slot 0 ad index 0\n")) << out_;

    ASSERT_EQ(run("show hash software ECIB bar0 0 num 128"), 0) << out_;
    EXPECT_TRUE(said("portid_trunkid 3 ovid 16 ivid_opri 32 ad 0\n")) << out_;
    EXPECT_TRUE(said("ECIB software bar0: 1 entries\n")) << out_;
    ASSERT_EQ(run("show hash hardware ECIB ad 0 num 4"), 0) << out_;
    EXPECT_TRUE(said("ad[0]: vld 0 ivid 0x0000 ovid 0x0064")) << out_;
    EXPECT_TRUE(said("ECIB hardware ad: 1 entries\n")) << out_;

    ASSERT_EQ(run("hash del-entry ECIB"), 0) << out_;
    EXPECT_TRUE(said("Delete entry Success!\n")) << out_;
    EXPECT_EQ(run("hash del-entry ECIB"), SHR_E_NOT_FOUND);
    EXPECT_TRUE(said("ERR: delete entry Fail! (errmsg: Entry not found)\n")) << out_;
    ASSERT_EQ(run("hash hard-search-key ECIB"), 0) << out_;
    EXPECT_TRUE(said("NOTE: search entry Missed!\n")) << out_;
}

// The lines of the notes and the README, as they stand there.
TEST_F(HashCli, TheExampleOfTheNotesRuns)
{
    for (const char *line : {"hash set-key 0x01030640C8", "hash set-ad 0x2000002580200000", "hash add-entry ECIB",
                             "hash hard-search-key ECIB", "show hash software ECIB bar0 0 num 128",
                             "show hash summary", "hash set-alg ECIB bar0 2 bar1 3 left-shift 1"}) {
        ASSERT_EQ(run(line), 0) << line << "\n" << out_;
        if (std::string(line) == "hash hard-search-key ECIB") {
            EXPECT_TRUE(said("ad: vld 1 ivid 0x0000 ovid 0x012c")) << out_;
            EXPECT_TRUE(said("vlan_opc 1 ")) << out_;
        }
        if (std::string(line).rfind("show hash software", 0) == 0) {
            EXPECT_TRUE(said("tid 1 trunk_flag 0 portid_trunkid 3 ovid 100 ivid_opri 200 ad 0\n")) << out_;
        }
    }
}

TEST_F(HashCli, ForcedInsertsAndTheDisplaysOfTheTables)
{
    ASSERT_EQ(run(std::string("hash set-key ") + kKey), 0);
    ASSERT_EQ(run(std::string("hash set-ad ") + kAd), 0);
    ASSERT_EQ(run("hash insert-cam force on"), 0);
    ASSERT_EQ(run("hash add-entry ECIB"), 0) << out_;
    EXPECT_TRUE(said("Add entry Success!\n"));
    ASSERT_EQ(run("show hash hardware ECIB cam 0 num 4"), 0) << out_;
    EXPECT_TRUE(said("cam[0] slot 0: tid 0 trunk_flag 0 portid_trunkid 3")) << out_;
    ASSERT_EQ(run("show hash summary"), 0) << out_;
    EXPECT_TRUE(said("ECIB       cam           4        1\n")) << out_;
    EXPECT_TRUE(said("ECIB       ad          256        1\n")) << out_;
    EXPECT_TRUE(said("L2_MAC     all       10244        0\n")) << out_;
    ASSERT_EQ(run("show hash info ECIB"), 0) << out_;
    EXPECT_TRUE(said("  bar1      : 64 rows x 4 slots, 0 used\n")) << out_;
    EXPECT_TRUE(said("  algorithm : barrel 0 0, barrel 1 1, left shift disable\n")) << out_;
    EXPECT_EQ(run("show hash info L2_MAC"), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(said("ERR: L2_MAC Not Support show info\n")) << out_;
    EXPECT_EQ(run("show hash hardware ECIB kt 0"), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(said("ERR: ECIB has no kt\n")) << out_;
    EXPECT_EQ(run("show hash hardware ECIB cam 3 num 2"), SHR_E_PARAM);
    EXPECT_EQ(run("show hash software L2_MAC bar0 0"), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(said("ERR: L2_MAC has no software image\n")) << out_;
}

TEST_F(HashCli, AlgorithmsAreSetAndShownAndEqualBarrelsRefused)
{
    EXPECT_EQ(run("hash set-alg ECIB bar0 2 bar1 2"), SHR_E_HASH_CONFLICT);
    EXPECT_TRUE(said("ERR: barrel0 algorithm 2 equal barrel1 algorithm 2!\n")) << out_;
    ASSERT_EQ(run("hash set-alg ECIB bar0 2 bar1 3 left-shift 1"), 0) << out_;
    ASSERT_EQ(run("hash get-alg ECIB"), 0) << out_;
    EXPECT_TRUE(said("ECIB hash algorithm:\n(0:0x45a5_c105  1:0x04c1_1db7  2:0x6db8_8321  3:0x1edc_6f41)\n"
                     "barrel 0  : 2\nbarrel 1  : 3\nleft shift: enable\n"))
        << out_;
    EXPECT_FALSE(said("fp select"));
    EXPECT_EQ(run("hash set-alg L2_MAC bar0 0 bar1 1"), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(said("ERR: L2_MAC Not Support set algorithm\n")) << out_;
    EXPECT_EQ(run("hash get-alg L2_MAC"), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(said("ERR: L2_MAC Not Support get algorithm\n")) << out_;
    EXPECT_EQ(run("hash get-alg FOO"), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(said("ERR: no hash tab named FOO\n")) << out_;
    EXPECT_EQ(run("hash set-alg L3_MFIB bar0 0 bar1 1"), SHR_E_NOT_SUPPORT);

    // Equal algorithms reached by another road refuse the add.
    base_hash_alg a{"ECIB", 1, 1, 0, 0};
    EXPECT_EQ(base_api_hash_alg_set(0, &a), SHR_E_HASH_CONFLICT);
    ASSERT_EQ(base_api_hash_alg_get(0, &a), 0);
    EXPECT_EQ(a.barrel0 * 10 + a.barrel1, 23u);
}

TEST_F(HashCli, TheMacTableAnswersThroughTheSameDoor)
{
    // VLAN 1, MAC 00:11:22:33:44:55; static to port 3.
    ASSERT_EQ(run("hash set-key 0x010011223344550000"), 0) << out_;
    ASSERT_EQ(run("hash set-ad 0x2000C00000"), 0) << out_;
    ASSERT_EQ(run("hash add-entry L2_MAC"), 0) << out_;
    EXPECT_TRUE(said("Add entry Success!\n")) << out_;
    ASSERT_EQ(run("hash hard-search-key L2_MAC"), 0) << out_;
    EXPECT_TRUE(said("L2_MAC entry: 0x00200040 04488cd1 15400020 00c00000\n")) << out_;
    EXPECT_EQ(run("hash soft-search-key L2_MAC"), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(said("ERR: L2_MAC Not Support soft-search!\n")) << out_;
    ASSERT_EQ(run("hash del-entry L2_MAC"), 0) << out_;
    EXPECT_EQ(run("hash del-entry L2_MAC"), SHR_E_FAIL);
    EXPECT_TRUE(said("ERR: delete entry from L2_MAC Fail, case appointed key delete failed(not hit)")) << out_;
}

TEST_F(HashCli, BadWordsAndRecordsAreRefusedWithTheirLine)
{
    EXPECT_EQ(run("hash set-key 0x123"), SHR_E_PARAM);
    EXPECT_TRUE(said("Input string must be even numbered characters!\n")) << out_;
    EXPECT_EQ(run("hash set-ad 0x0102030405060708090A0B0C0D0E0F1011"), SHR_E_PARAM);
    EXPECT_EQ(run("hash add-entry VRRP_MCDP"), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(run("hash add-entry FOO"), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(said("ERR: hash tab FOO Not Support!\n")) << out_;

    base_hash_op op{"soft", "ECIB", nullptr, nullptr, 0};
    EXPECT_EQ(base_api_hash_tab_op(0, nullptr), SHR_E_PARAM);
    // A prefix names its operation; a NULL key is the engine's refusal.
    EXPECT_EQ(base_api_hash_tab_op(0, &op), SHR_E_PARAM);
    op.op = "rename";
    EXPECT_EQ(base_api_hash_tab_op(0, &op), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(base_api_hash_tab_dump(0, nullptr), SHR_E_PARAM);
    EXPECT_EQ(base_api_hash_alg_set(0, nullptr), SHR_E_PARAM);
    EXPECT_EQ(base_api_hash_info_show(0, nullptr), SHR_E_PARAM);
    base_hash_dump d{"ECIB", 5, 0, 0, 0};
    EXPECT_EQ(base_api_hash_tab_dump(0, &d), SHR_E_PARAM);
}

} // namespace
