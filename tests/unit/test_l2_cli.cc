// The `l2` mode of the shell on a chip of the model, line by line as an
// operator types it.
#include <gtest/gtest.h>
#include <tide/cli.h>

#include <string>

#include "app/diag_shell/shell/cli/cli_core.h"
#include "support/cli_lines.h"
#include "support/fixture.h"

using tide::test::SimChips;

namespace {

class L2Cli : public SimChips, public tide::test::CliLines {
protected:
    L2Cli() : SimChips(1, 1) {}
    void SetUp() override
    {
        SimChips::SetUp();
        cli_shell_mode_set(0, 1); // ports by their logical numbers
        ASSERT_EQ(run("l2"), 0);
    }
    void TearDown() override
    {
        cli_shell_mode_set(0, 0);
        cli_ctree_free();
        SimChips::TearDown();
    }

};

TEST_F(L2Cli, AnOperatorAddsShowsAndDeletesAnAddress)
{
    ASSERT_EQ(run("l2 add mac 00:11:22:33:44:55 vid 10 port 3"), 0) << out_;
    ASSERT_EQ(run("show l2 mac-info mac 00:11:22:33:44:55 vid 10"), 0) << out_;
    EXPECT_NE(out_.find("00:11:22:33:44:55"), std::string::npos) << out_;
    EXPECT_NE(out_.find("static"), std::string::npos);
    EXPECT_NE(out_.find("port 3"), std::string::npos);

    ASSERT_EQ(run("l2 add mac 00:11:22:33:44:66 vid 10 tgid 2 dynamic src-drop"), 0) << out_;
    ASSERT_EQ(run("show l2 mac-info vid 10"), 0) << out_;
    EXPECT_NE(out_.find("Total: 2"), std::string::npos) << out_;
    EXPECT_NE(out_.find("tgid 2"), std::string::npos);
    EXPECT_NE(out_.find("src-drop"), std::string::npos);
    ASSERT_EQ(run("show l2 mac-num dynamic"), 0);
    EXPECT_NE(out_.find("mac num: 1"), std::string::npos) << out_;

    ASSERT_EQ(run("l2 del mac 00:11:22:33:44:55 vid 10"), 0) << out_;
    EXPECT_NE(run("show l2 mac-info mac 00:11:22:33:44:55 vid 10"), 0);
    EXPECT_NE(out_.find("Entry not found"), std::string::npos) << out_;
    ASSERT_EQ(run("clear l2 all"), 0);
    EXPECT_NE(out_.find("1 l2 entries deleted"), std::string::npos) << out_;
}

TEST_F(L2Cli, RefusalsAreNamedByTheirCause)
{
    ASSERT_EQ(run("l2 add mac 00:00:00:00:00:01 vid 1 port 1"), 0);
    EXPECT_EQ(run("l2 add mac 00:00:00:00:00:01 vid 1 port 2"), SHR_E_FAIL);
    EXPECT_NE(out_.find("Failed to specify KEY insertion override"), std::string::npos) << out_;
    ASSERT_EQ(run("l2 cpu-insert replace-static enable"), 0);
    EXPECT_EQ(run("l2 add mac 00:00:00:00:00:01 vid 1 port 2"), 0) << out_;
    EXPECT_EQ(run("l2 add mac 00:00:00:00:00:02 vid 1 port 40"), SHR_E_PARAM);
    EXPECT_NE(out_.find("input port: 40 convert to logical port failed"), std::string::npos) << out_;
}

TEST_F(L2Cli, SettingsReachTheServiceAndShowBack)
{
    ASSERT_EQ(run("l2 aging 120"), 0) << out_;
    ASSERT_EQ(run("l2 learn disable"), 0);
    ASSERT_EQ(run("l2 hash-alg xor"), 0);
    EXPECT_EQ(run("l2 hash-alg lsb"), SHR_E_NOT_SUPPORT);
    ASSERT_EQ(run("l2 move pri 1 disable"), 0);
    ASSERT_EQ(run("show l2"), 0);
    EXPECT_NE(out_.find("learning                 : disable"), std::string::npos) << out_;
    EXPECT_NE(out_.find("age time (s)             : 120"), std::string::npos) << out_;
    EXPECT_NE(out_.find("hash (1 crc, 2 xor)      : 2"), std::string::npos) << out_;
    EXPECT_NE(out_.find("move priorities          : 13"), std::string::npos) << out_;

    ASSERT_EQ(run("l2 port 5 unknown-unicast-act copy-to-cpu"), 0);
    ASSERT_EQ(run("l2 port 5 learn-mode not-learn drop"), 0) << out_;
    ASSERT_EQ(run("show l2 ports 4-5"), 0);
    EXPECT_NE(out_.find("5      copy-to-cpu"), std::string::npos) << out_;
    EXPECT_NE(out_.find("not-learn drop"), std::string::npos) << out_;

    ASSERT_EQ(run("l2 mac-limit port 7 threshold 12 action drop"), 0) << out_;
    ASSERT_EQ(run("show l2 mac-limit port 7"), 0);
    EXPECT_NE(out_.find("port     7      1        12"), std::string::npos) << out_;
    ASSERT_EQ(run("l2 port-move tgid 3 pri 2"), 0);
    ASSERT_EQ(run("show l2 move tgids 3"), 0);
    EXPECT_NE(out_.find("3      enable   2"), std::string::npos) << out_;
    ASSERT_EQ(run("show l2 cnt"), 0);
    EXPECT_NE(out_.find("static mac       : 0"), std::string::npos) << out_;
}

} // namespace
