// The `counter` mode of the shell on a chip of the model, line by line as
// an operator types them; what the lines did is read back through the API.
#include <gtest/gtest.h>
#include <tide/cli.h>
#include <tide/counter.h>

#include "support/mode_cli.h"

namespace {

class CounterCli : public tide::test::ModeCli {
protected:
    CounterCli() : ModeCli("counter", true) {}

    void inject(uint32_t port, uint32_t n)
    {
        uint8_t f[60] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x02, 0, 0, 0, 0, 0x0A, 0x08, 0x00};
        for (uint32_t i = 0; i < n; i++) {
            ASSERT_EQ(tide_sim_packet_inject(0, port, f, sizeof(f)), 0);
        }
    }
};

TEST_F(CounterCli, EnableReadAndClearEntriesOfACounter)
{
    ASSERT_EQ(run("counter iport_stat enable"), 0) << out_;
    u32 on = 0;
    ASSERT_EQ(counter_api_enable_get(0, COUNTER_IPORT_STAT, &on), 0);
    EXPECT_EQ(on, 1u);
    inject(4, 3);
    ASSERT_EQ(run("show counter 2 tab-index 3-4 cache-clear"), 0) << out_;
    EXPECT_TRUE(said("3         0 ")) << out_;
    EXPECT_TRUE(said("4         3                       192")) << out_;
    // Read and cleared: only what came since.
    inject(4, 1);
    ASSERT_EQ(run("show counter iport_stat non-zero"), 0) << out_;
    EXPECT_TRUE(said("4         1                       64")) << out_;
    EXPECT_FALSE(said("3         0 ")) << out_;

    ASSERT_EQ(run("clear counter iport_stat tab-index 4"), 0) << out_;
    counter_key key{COUNTER_IPORT_STAT, 4, 0};
    counter_stats s{};
    ASSERT_EQ(counter_api_stats_get(0, &key, &s), 0);
    EXPECT_EQ(s.pkt, 0u);

    ASSERT_EQ(run("counter iport_stat entry-status tab-index 1,5-6 disable"), 0) << out_;
    ASSERT_EQ(run("show counter iport_stat entry-status tab-index 4-6"), 0) << out_;
    EXPECT_TRUE(said("4         enable")) << out_;
    EXPECT_TRUE(said("6         disable")) << out_;
    u8 e = 1;
    ASSERT_EQ(counter_api_entry_enable_get(0, COUNTER_IPORT_STAT, 1, &e), 0);
    EXPECT_EQ(e, 0u);

    inject(7, 2);
    ASSERT_EQ(run("show counter 2 tab-index 7"), 0) << out_; // read: the accumulator takes them
    ASSERT_EQ(run("show counter glb non-zero"), 0) << out_;
    EXPECT_TRUE(said("iport_stat")) << out_;
    EXPECT_FALSE(said("oport_stat")) << out_;
    ASSERT_EQ(run("show counter map"), 0) << out_;
    EXPECT_TRUE(said("causeid_stat")) << out_;
    EXPECT_TRUE(said("absent")) << out_;
}

TEST_F(CounterCli, TheThreadIsConfiguredAndShown)
{
    ASSERT_EQ(run("counter thread interval 500"), 0) << out_;
    ASSERT_EQ(run("counter thread start-sync"), 0) << out_;
    ASSERT_EQ(run("show counter thread"), 0) << out_;
    EXPECT_TRUE(said(" interval(ms) : 1000")) << out_;
    EXPECT_TRUE(said(" sync         : enable")) << out_;
    ASSERT_EQ(run("counter thread stop-sync"), 0) << out_;
    thread_cfg cfg{};
    ASSERT_EQ(counter_api_thread_get(0, &cfg), 0);
    EXPECT_EQ(cfg.sync, 0u);
    ASSERT_EQ(run("counter thread interval 0"), 0) << out_;
    ASSERT_EQ(counter_api_thread_get(0, &cfg), 0);
    EXPECT_EQ(cfg.interval, 0u);
}

TEST_F(CounterCli, BadWordsAndRefusalsPrintTheirLine)
{
    EXPECT_EQ(run("counter no_such_stat enable"), -4) << out_;
    EXPECT_TRUE(said("Parameter 'no_such_stat' is invalid!")) << out_;
    EXPECT_EQ(run("counter 29 enable"), -4) << out_;
    EXPECT_EQ(run("counter 22 enable"), -24) << out_;
    EXPECT_TRUE(said("Not Support")) << out_;
    EXPECT_EQ(run("show counter mgid_stat tab-index 0"), -2) << out_; // never enabled
    EXPECT_EQ(run("show counter iport_stat tab-index 3-1"), -4) << out_;
    EXPECT_TRUE(said(" para 3-1 is invalid.")) << out_;
}

} // namespace
