// The shell's "sim" mode on a chip brought up on the model: inject a frame
// given in hexadecimal, see what the ports sent, move the clock, write a
// capture file, bind a port to a TAP device; all through cli_cmd_execute
// as an operator would type it.
#include <gtest/gtest.h>
#include <tide/cli.h>

#include <string>
#include <unistd.h>

#include "support/vlan_ports.h"
#include "support/cli_lines.h"
#include "support/fixture.h"
#include "support/netns.h"
#include "support/temp_dir.h"

namespace {

class CliSim : public tide::test::SimChips, public tide::test::CliLines {
protected:
    void SetUp() override
    {
        SimChips::SetUp();
        ASSERT_EQ(tide::test::vlan_ports(0, 1, 0x0FFFFFFF, 0x0FFFFFFF), 0);
        ASSERT_EQ(run("sim"), 0);
        ASSERT_STREQ(cli_ctree_getprompt(), "Chip-0 Diag-Shell(config/sim)#");
    }
    void TearDown() override
    {
        cli_view_config(0);
        cli_ctree_free();
        SimChips::TearDown();
    }

};

// A broadcast from 02:00:00:00:00:01, 60 bytes.
const std::string kFrame = "ff:ff:ff:ff:ff:ff 02-00-00-00-00-01 0800" + std::string(92, '0');

TEST_F(CliSim, InjectShowsWhereTheFrameWentAndWhatThePortsSent)
{
    EXPECT_EQ(run("show sent"), 0);
    EXPECT_NE(out_.find("no frames yet"), std::string::npos) << out_;
    ASSERT_EQ(run("inject port 1 " + kFrame), 0) << out_;
    EXPECT_NE(out_.find("port 1 took 60 bytes\nsent on port 0 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 "
                        "22 23 24 25 26 27\n"),
              std::string::npos)
        << out_;
    EXPECT_EQ(run("show sent"), 0);
    EXPECT_NE(out_.find("port  rx-frames  rx-dropped  tx-frames  waiting\n"
                        "   0          0           0          1        1\n"
                        "   1          1           0          0        0\n"),
              std::string::npos)
        << out_;
    EXPECT_EQ(run("show sent port 2"), 0);
    EXPECT_NE(out_.find("frame 0: 60 bytes from port 1 at 0 ms\n"
                        "  0000  ff ff ff ff ff ff 02 00 00 00 00 01 08 00 00 00\n"),
              std::string::npos)
        << out_;
    EXPECT_EQ(run("show sent port 1"), 0);
    EXPECT_NE(out_.find("port 1 has no frame waiting"), std::string::npos);
    EXPECT_EQ(run("clear sent"), 0);
    EXPECT_NE(out_.find("27 frames cleared"), std::string::npos) << out_;

    // A runt is dropped with its cause; bad hexadecimal is refused.
    EXPECT_EQ(run("inject port 1 ffffffffffff020000000001"), 0);
    EXPECT_NE(out_.find("dropped, cause 513"), std::string::npos) << out_;
    EXPECT_EQ(run("inject port 1 fff"), -4);
    EXPECT_NE(out_.find("invalid frame"), std::string::npos);
    EXPECT_EQ(run("inject port 1 zz"), -4);
    EXPECT_EQ(run("inject port 32 " + kFrame), -1); // beyond the range of the grammar
}

TEST_F(CliSim, ClockAndCaptureFile)
{
    EXPECT_EQ(run("time advance 1500"), 0);
    EXPECT_NE(out_.find("model time 1500 ms"), std::string::npos) << out_;
    tide_test::TempDir dir;
    const std::string path = dir.file("capture.pcapng");
    EXPECT_EQ(run("pcap open " + path), 0);
    EXPECT_EQ(run("inject port 1 " + kFrame), 0);
    EXPECT_EQ(run("pcap close"), 0);
    EXPECT_NE(run("pcap close"), 0);
    EXPECT_NE(out_.find("no capture file closed"), std::string::npos);
    EXPECT_EQ(access(path.c_str(), R_OK), 0);
    unlink(path.c_str());
}

TEST_F(CliSim, TapBindShowAndUnbind)
{
    EXPECT_EQ(run("show tap"), 0);
    EXPECT_NE(out_.find("no port is bound to a TAP"), std::string::npos) << out_;
    EXPECT_EQ(run("tap unbind port 2"), -7);
    EXPECT_NE(out_.find("cannot unbind port 2: no such binding or interface"), std::string::npos) << out_;
    EXPECT_EQ(run("tap bind port 28 tap0"), -1); // beyond the range of the grammar
    const std::string why = tide::test::tap_unavailable();
    if (!why.empty()) {
        GTEST_SKIP() << why;
    }
    const std::string name = tide::test::unique_name("tc", "s");
    ASSERT_EQ(run("tap bind port 1 " + name), 0) << out_;
    EXPECT_NE(out_.find("port 1 bound to " + name + " (created)"), std::string::npos) << out_;
    EXPECT_EQ(run("tap bind port 1 " + name + "x"), -8);
    EXPECT_NE(out_.find("cannot bind port 1: the port is bound already"), std::string::npos) << out_;
    EXPECT_EQ(run("tap bind port 2 " + name), -10);
    EXPECT_NE(out_.find("cannot bind port 2: the interface name is in use"), std::string::npos) << out_;
    ASSERT_EQ(run("inject port 3 " + kFrame), 0); // port 1's TAP is down: it refuses the frame
    EXPECT_EQ(run("show tap"), 0);
    char line[128];
    snprintf(line, sizeof(line), "   1  %-15s  created           0          0           1\n", name.c_str());
    EXPECT_NE(out_.find(std::string("port  interface        state     rx-frames  tx-frames  tx-dropped\n") + line +
                        "      last refusal: Input/output error\n"),
              std::string::npos)
        << out_;
    EXPECT_EQ(run("tap unbind port 1"), 0);
    EXPECT_EQ(run("show tap"), 0);
    EXPECT_NE(out_.find("no port is bound to a TAP"), std::string::npos) << out_;
}

} // namespace
