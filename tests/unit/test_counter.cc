// The counter service on the model: counts of real traffic in the port,
// drop-cause and CPU-cause tables, read fresh and after the thread's pass;
// wraps; the thread's interval and stop; read-and-clear and clearing; the
// refusals.
#include <gtest/gtest.h>

#include <vector>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/counter/dpl_reef_counter.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_counter.h"
#include "support/fixture.h"
#include "support/vlan_ports.h"
#include "support/wait.h"

using tide::test::SimChips;

namespace {

using Frame = std::vector<uint8_t>;

constexpr uint32_t kFront = 0x0FFFFFFF;
constexpr uint64_t kA = 0x02000000000Aull, kB = 0x02000000000Bull, kC = 0x02000000000Cull;
constexpr uint32_t kCauseDstDrop = 588;       // a static entry's destination drop
constexpr uint32_t kCpuStaticMove = 1024 + 311; // the CPU copy of a refused static move
constexpr uint64_t kWire = 64;                // 60 bytes and the FCS

Frame eth(uint64_t dmac, uint64_t smac)
{
    Frame f;
    for (uint64_t mac : {dmac, smac}) {
        for (int i = 5; i >= 0; i--) {
            f.push_back(static_cast<uint8_t>(mac >> (8 * i)));
        }
    }
    f.insert(f.end(), {0x08, 0x00});
    while (f.size() < 60) {
        f.push_back(static_cast<uint8_t>(f.size()));
    }
    return f;
}

class Counter : public SimChips {
protected:
    Counter() : SimChips(1, 0) {}

    void SetUp() override
    {
        SimChips::SetUp();
        for (const char *key : {"counter_enable_iport_stat", "counter_enable_oport_stat", "counter_enable_causeid_stat"}) {
            ASSERT_EQ(shr_property_set(0, key, "1"), 0);
        }
        up_chip(0);
        ASSERT_EQ(tide::test::vlan_ports(0, 1, kFront, kFront), 0);
        add(kB, 5, 0);
    }

    void add(uint64_t mac, uint32_t port, uint32_t flags)
    {
        l2_addr a{};
        a.flags = L2_FLAG_KEY_VID | L2_FLAG_DEST_PORT | flags;
        for (int i = 5; i >= 0; i--) {
            a.mac[i] = static_cast<uint8_t>(mac >> (8 * (5 - i)));
        }
        a.vid = 1;
        a.port = port;
        ASSERT_EQ(l2_api_addr_add(0, &a), 0);
    }

    void burst(uint32_t port, const Frame &f, uint32_t n)
    {
        for (uint32_t i = 0; i < n; i++) {
            ASSERT_EQ(tide_sim_packet_inject(0, port, f.data(), static_cast<uint32_t>(f.size())), 0);
        }
        for (uint32_t p = 0; p < 32; p++) {
            uint8_t buf[TIDE_SIM_FRAME_MAX];
            uint32_t len = 0;
            while (tide_sim_packet_capture(0, p, buf, sizeof(buf), &len) == 0) {
            }
        }
    }

    static counter_stats read(uint32_t id, uint32_t index, uint32_t clr = 0)
    {
        counter_key key{id, index, clr};
        counter_stats s{};
        EXPECT_EQ(counter_api_stats_get(0, &key, &s), 0) << "counter " << id << " index " << index;
        return s;
    }

    // The accumulator as the thread left it, without a fresh reading.
    static uint64_t cached_pkts(uint32_t id, uint32_t index)
    {
        dpl_reef_counter_lock(0, id);
        const dpl_counter_stat &s = g_counter_stat[0][id];
        const uint64_t v = s.cache != nullptr ? s.cache[2 * index].value : 0;
        dpl_reef_counter_unlock(0, id);
        return v;
    }

    static void thread(uint32_t interval, uint32_t sync)
    {
        thread_cfg cfg{interval, sync};
        ASSERT_EQ(counter_api_thread_set(0, &cfg), 0);
    }
};

TEST_F(Counter, ABurstIsCountedInPortsDropCauseAndCpuCauseFreshAndByTheThread)
{
    constexpr uint32_t kN = 7;
    burst(1, eth(kB, kA), kN);
    add(kC, 6, L2_FLAG_DST_DROP);
    burst(2, eth(kC, kA), kN);
    ASSERT_EQ(l2_api_control_set(0, L2_CTRL_STATIC_MOVE_ACT, 1), 0);
    burst(3, eth(kA, kB), kN); // kB is static on port 5: the move goes to the CPU

    // Nothing has been read yet: the thread has not run.
    EXPECT_EQ(cached_pkts(COUNTER_IPORT_STAT, 1), 0u);
    // The thread's pass folds every enabled table into the accumulators,
    // the upper part of causeid_stat by the inner counter.
    thread(1000, 1);
    EXPECT_TRUE(tide_test::eventually([] {
        return cached_pkts(COUNTER_IPORT_STAT, 1) == kN && cached_pkts(COUNTER_OPORT_STAT, 5) == kN &&
               cached_pkts(COUNTER_CAUSEID_STAT, kCauseDstDrop) == kN &&
               cached_pkts(COUNTER_CAUSEID_STAT, kCpuStaticMove) == kN;
    }));
    thread(0, 0);

    const counter_stats in = read(COUNTER_IPORT_STAT, 1);
    EXPECT_EQ(in.pkt, kN);
    EXPECT_EQ(in.bytes, kN * kWire);
    EXPECT_EQ(read(COUNTER_OPORT_STAT, 5).pkt, kN);
    EXPECT_EQ(read(COUNTER_OPORT_STAT, 31).pkt, kN); // the CPU copies leave by port 31
    EXPECT_EQ(read(COUNTER_IPORT_STAT, 2).pkt, kN);  // dropped frames came in
    EXPECT_EQ(read(COUNTER_OPORT_STAT, 6).pkt, 0u);
    EXPECT_EQ(read(COUNTER_CAUSEID_STAT, kCauseDstDrop).pkt, kN);
    EXPECT_EQ(read(COUNTER_CAUSEID_STAT, kCpuStaticMove).pkt, kN);

    // Fresh: frames after the thread stopped show at once.
    burst(1, eth(kB, kA), 2);
    EXPECT_EQ(read(COUNTER_IPORT_STAT, 1).pkt, kN + 2);
    EXPECT_EQ(read(COUNTER_OPORT_STAT, 5).bytes, (kN + 2) * kWire);
}

TEST_F(Counter, AVlanCountsItsFramesInAndEachCopyOut)
{
    ASSERT_EQ(counter_api_enable_set(0, COUNTER_VLAN_ACL_STAT, 1), 0);
    for (const vlan_control c : {vlan_control{VLAN_CTRL_CNT_TYPE, 1}, vlan_control{VLAN_CTRL_CNT_ID, 5},
                                 vlan_control{VLAN_CTRL_EGRESS_CNT_TYPE, 1}, vlan_control{VLAN_CTRL_EGRESS_CNT_ID, 9}}) {
        vlan_control ctl = c;
        ASSERT_EQ(vlan_api_control_set(0, 1, &ctl), 0);
    }
    ASSERT_EQ(tide::test::vlan_ports(0, 2, kFront, kFront), 0);

    constexpr uint32_t kN = 4;
    burst(1, eth(kB, kA), kN);  // known: one copy each, to port 5
    burst(1, eth(kC, kA), 1);   // unknown: flooded to the 27 other front ports
    const counter_stats in = read(COUNTER_VLAN_ACL_STAT, 5);
    EXPECT_EQ(in.pkt, kN + 1);
    EXPECT_EQ(in.bytes, (kN + 1) * kWire);
    EXPECT_EQ(read(COUNTER_VLAN_ACL_STAT, 9).pkt, kN + 27);

    // A VLAN whose counter type is none counts nowhere.
    const counter_stats before = read(COUNTER_VLAN_ACL_STAT, 0);
    Frame tagged = eth(kB, kA);
    tagged.insert(tagged.begin() + 12, {0x81, 0x00, 0x00, 0x02});
    burst(1, tagged, 3);
    EXPECT_EQ(read(COUNTER_VLAN_ACL_STAT, 5).pkt, kN + 1);
    EXPECT_EQ(read(COUNTER_VLAN_ACL_STAT, 9).pkt, kN + 27);
    EXPECT_EQ(read(COUNTER_VLAN_ACL_STAT, 0).pkt, before.pkt);
}

TEST_F(Counter, ACounterSetBelowItsWidthAddsTheDeltaAcrossTheWrap)
{
    constexpr uint64_t kPkt = 1ull << 36, kByte = 1ull << 44;
    ASSERT_EQ(tide_sim_stat_set(0, "stat_iport_stat_result_tbl", 3, kPkt - 2, kByte - 10 * kWire), 0);
    counter_stats s = read(COUNTER_IPORT_STAT, 3);
    EXPECT_EQ(s.pkt, kPkt - 2);
    burst(3, eth(kB, kA), 5);
    cib_stat_iport_stat_result_tbl_t hw{};
    ASSERT_EQ(csl_reef_cib_stat_iport_stat_result_tbl_get(0, 0, 3, &hw), 0);
    EXPECT_EQ(hw.iport_stat_pkt_num, 3u); // the hardware wrapped
    s = read(COUNTER_IPORT_STAT, 3);
    EXPECT_EQ(s.pkt, kPkt + 3);
    EXPECT_EQ(s.bytes, kByte - 5 * kWire);
    burst(3, eth(kB, kA), 10);
    EXPECT_EQ(read(COUNTER_IPORT_STAT, 3).bytes, kByte + 5 * kWire);

    // The step itself: one wrap between two readings.
    dpl_counter_entry e{0, 0xFFFFFFFFFull, 0};
    dpl_reef_counter_update_stat_entry(0, 36, 5, &e);
    EXPECT_EQ(e.value, 6u);
    EXPECT_EQ(e.last, 5u);
}

// The model latches an entry at the read of its first word: a frame that
// comes between the words of one reading waits until the last word has
// been read, so the reading is not torn across the carry into word 1.
TEST_F(Counter, TheWordsOfOneReadingBelongTogether)
{
    ASSERT_EQ(tide_sim_stat_set(0, "stat_iport_stat_result_tbl", 3, 0xFFFFFFFFull, 1000), 0);
    const u32 base = csl_reef_tab_info_get(0, cib_stat_iport_stat_result_tbl)->addr[0] + 3 * 16;
    auto word = [&](u32 i) {
        u8 d[4] = {};
        EXPECT_EQ(base_api_reg_get_by_addr(0, base + 4 * i, d, 4), 0);
        return static_cast<u32>(d[0] | d[1] << 8 | d[2] << 16 | static_cast<u32>(d[3]) << 24);
    };
    EXPECT_EQ(word(0), 0xFFFFFFFFu);
    burst(3, eth(kB, kA), 1); // would carry into word 1
    const u32 w1 = word(1);
    EXPECT_EQ(w1 & 0xF, 0u);     // the latched packet count
    EXPECT_EQ(w1 >> 4, 1000u);   // and bytes
    EXPECT_EQ(word(2), 0u);
    EXPECT_EQ(word(3), 0u); // the last word frees the latch
    // Read whole, the entry has the frame now.
    const counter_stats s = read(COUNTER_IPORT_STAT, 3);
    EXPECT_EQ(s.pkt, 0x100000000ull);
    EXPECT_EQ(s.bytes, 1000 + kWire);
}

TEST_F(Counter, TheIntervalIsClampedAndZeroStopsTheThread)
{
    thread_cfg cfg{};
    ASSERT_EQ(counter_api_thread_get(0, &cfg), 0);
    EXPECT_EQ(cfg.interval, DPL_COUNTER_DEFAULT_MSEC);
    EXPECT_EQ(cfg.sync, 0u);
    EXPECT_FALSE(dpl_reef_counter_thread_alive(0)); // counter_thread_start defaults to 0

    thread(500, 1);
    ASSERT_EQ(counter_api_thread_get(0, &cfg), 0);
    EXPECT_EQ(cfg.interval, 1000u);
    EXPECT_EQ(cfg.sync, 1u);
    EXPECT_TRUE(dpl_reef_counter_thread_alive(0));
    thread(400000, 1);
    ASSERT_EQ(counter_api_thread_get(0, &cfg), 0);
    EXPECT_EQ(cfg.interval, 300000u);
    // Cycle times follow the interval: two thirds of causeid_stat's share
    // stay with it, one third goes to the inner counter.
    u64 outer = 0, inner = 0;
    ASSERT_EQ(dpl_reef_counter_cycle_time_get(0, COUNTER_CAUSEID_STAT, &outer), 0);
    ASSERT_EQ(dpl_reef_counter_cycle_time_get(0, DPL_COUNTER_INNER_ID, &inner), 0);
    EXPECT_GT(inner, 0u);
    EXPECT_NEAR(static_cast<double>(outer), 2.0 * static_cast<double>(inner), 2.0);

    // Asleep (sync 0) and then stopped by interval 0.
    thread(300000, 0);
    EXPECT_TRUE(dpl_reef_counter_thread_alive(0));
    thread(0, 0);
    EXPECT_TRUE(tide_test::eventually([] { return !dpl_reef_counter_thread_alive(0); }));
    EXPECT_EQ(__atomic_load_n(&g_counter_thread[0]->running, __ATOMIC_ACQUIRE), 0u);
    // And it starts again.
    thread(2000, 1);
    EXPECT_TRUE(dpl_reef_counter_thread_alive(0));
}

TEST_F(Counter, ReadAndClearShowsTheDeltaAndClearingZeroesTheHardware)
{
    burst(1, eth(kB, kA), 3);
    EXPECT_EQ(read(COUNTER_IPORT_STAT, 1, 1).pkt, 3u);
    burst(1, eth(kB, kA), 2);
    EXPECT_EQ(read(COUNTER_IPORT_STAT, 1, 1).pkt, 2u);
    EXPECT_EQ(read(COUNTER_IPORT_STAT, 1).pkt, 0u);

    counter_key key{COUNTER_OPORT_STAT, 5, 0};
    ASSERT_EQ(counter_api_stats_clear(0, &key), 0);
    cib_stat_oport_stat_result_tbl_t hw{};
    ASSERT_EQ(csl_reef_cib_stat_oport_stat_result_tbl_get(0, 0, 5, &hw), 0);
    EXPECT_EQ(hw.oport_stat_result_pkt_num, 0u);
    EXPECT_EQ(hw.oport_stat_result_byt_num, 0u);
    EXPECT_EQ(read(COUNTER_OPORT_STAT, 5).pkt, 0u);
    burst(1, eth(kB, kA), 1);
    EXPECT_EQ(read(COUNTER_OPORT_STAT, 5).pkt, 1u);
    // The entry next to it kept its count.
    EXPECT_EQ(read(COUNTER_IPORT_STAT, 1).pkt, 1u);

    // The clearing pulse of hardware init zeroes every statistics table.
    ASSERT_EQ(dpl_reef_counter_hw_init(0), 0);
    ASSERT_EQ(csl_reef_cib_stat_oport_stat_result_tbl_get(0, 0, 5, &hw), 0);
    EXPECT_EQ(hw.oport_stat_result_pkt_num, 0u);
}

TEST_F(Counter, EntriesOutOfThePassKeepTheirLastReading)
{
    ASSERT_EQ(counter_api_entry_enable_set(0, COUNTER_IPORT_STAT, 1, 0), 0);
    u8 on = 1;
    ASSERT_EQ(counter_api_entry_enable_get(0, COUNTER_IPORT_STAT, 1, &on), 0);
    EXPECT_EQ(on, 0u);
    burst(1, eth(kB, kA), 4);
    EXPECT_EQ(read(COUNTER_IPORT_STAT, 1).pkt, 0u);
    EXPECT_EQ(read(COUNTER_OPORT_STAT, 5).pkt, 4u);
    ASSERT_EQ(counter_api_entry_enable_set(0, COUNTER_IPORT_STAT, 1, 1), 0);
    EXPECT_EQ(read(COUNTER_IPORT_STAT, 1).pkt, 4u);
}

TEST_F(Counter, RefusalsNameWhatIsWrongAndChangeNothing)
{
    counter_stats s{};
    counter_key key{COUNTER_MGID_STAT, 0, 0};
    EXPECT_EQ(counter_api_stats_get(0, &key, &s), -2); // never enabled
    EXPECT_TRUE(tide::test::Capture::has("Wrong! counter id(1) value cache not malloc!"));
    key = {COUNTER_PORT_STAT, 0, 0};
    EXPECT_EQ(counter_api_stats_get(0, &key, &s), -4);
    key = {COUNTER_IPORT_STAT, 32, 0};
    EXPECT_EQ(counter_api_stats_get(0, &key, &s), -4);
    EXPECT_TRUE(tide::test::Capture::has("counter-2 index-32 out of range[0~31]"));
    key = {COUNTER_ITUNNEL_STAT, 0, 0};
    EXPECT_EQ(counter_api_stats_get(0, &key, &s), -20); // no such table on the chip
    EXPECT_EQ(counter_api_stats_get(0, nullptr, &s), -20);
    EXPECT_EQ(counter_api_stats_clear(0, nullptr), -20);

    EXPECT_EQ(counter_api_enable_set(0, 29, 1), -4);
    EXPECT_EQ(counter_api_enable_set(0, COUNTER_ECAR_CPACL_CAR_FWD_STAT, 1), -24);
    EXPECT_TRUE(tide::test::Capture::has("Error! Do not support counter id(22)!"));
    u8 on = 0;
    EXPECT_EQ(counter_api_entry_enable_get(0, COUNTER_MGID_STAT, 0, &on), -20);
    EXPECT_EQ(counter_api_control_set(0, 0, 0), -24);

    u32 enabled = 9, entries = 0;
    ASSERT_EQ(counter_api_enable_get(0, COUNTER_PORT_STAT, &enabled), 0);
    EXPECT_EQ(enabled, 1u); // counter_enable_port_stat defaults to 1
    ASSERT_EQ(counter_api_enable_get(0, COUNTER_MGID_STAT, &enabled), 0);
    EXPECT_EQ(enabled, 0u);
    ASSERT_EQ(counter_api_size_get(0, COUNTER_CAUSEID_STAT, &entries), 0);
    EXPECT_EQ(entries, 1536u);

    // Enabled now, it reads from zero; turned off, it keeps its cache.
    ASSERT_EQ(counter_api_enable_set(0, COUNTER_MGID_STAT, 1), 0);
    key = {COUNTER_MGID_STAT, 0, 0};
    EXPECT_EQ(counter_api_stats_get(0, &key, &s), 0);
    ASSERT_EQ(counter_api_enable_set(0, COUNTER_MGID_STAT, 0), 0);
    EXPECT_EQ(counter_api_stats_get(0, &key, &s), 0);
}

TEST_F(Counter, RegistrationKeepsATakenSlot)
{
    static int calls = 0;
    const dpl_counter_fn mine = [](u32, u32) {
        calls++;
        return 0;
    };
    EXPECT_EQ(dpl_reef_counter_update_register(0, 29, mine), -4);
    EXPECT_EQ(dpl_reef_counter_update_register(0, 3, nullptr), -4);
    const dpl_counter_fn before = g_counter_thread[0]->slot[COUNTER_PORT_STAT].update;
    ASSERT_NE(before, nullptr); // the port service registered
    EXPECT_EQ(dpl_reef_counter_update_register(0, COUNTER_PORT_STAT, mine), 0);
    EXPECT_EQ(g_counter_thread[0]->slot[COUNTER_PORT_STAT].update, before);
    ASSERT_EQ(dpl_reef_counter_update_unregister(0, COUNTER_PORT_STAT), 0);
    ASSERT_EQ(dpl_reef_counter_update_register(0, COUNTER_PORT_STAT, mine), 0);
    thread(1000, 1);
    EXPECT_TRUE(tide_test::eventually([] { return __atomic_load_n(&calls, __ATOMIC_ACQUIRE) > 0; }));
    thread(0, 0);
    EXPECT_TRUE(tide_test::eventually([] { return !dpl_reef_counter_thread_alive(0); }));
}

// The tables the chip counts stand where the chip description places them,
// and the reading goes to those addresses.
TEST_F(Counter, TheCountedTablesStandAtTheirAddresses)
{
    const struct {
        u32 id, addr;
    } kAddr[] = {{0, 0x2078000},  {1, 0x2070000},  {2, 0x2048000},  {3, 0x204c000},  {6, 0x2050000},
                 {7, 0x2060000},  {8, 0x1404000},  {9, 0x1410000},  {10, 0x4318000}, {11, 0x4320000},
                 {12, 0x4314800}, {13, 0x4314c00}, {14, 0x4313000}, {15, 0x4313400}, {16, 0x4316000},
                 {17, 0x4317000}, {18, 0x2086800}, {19, 0x2086c00}, {20, 0x2087000}, {21, 0x2088000},
                 {24, 0x20a0000}, {25, 0x20a4000}};
    for (const auto &a : kAddr) {
        EXPECT_EQ(g_atolreef_counter_stat_addr[0][a.id], a.addr) << g_counter_baseinfo[a.id].name;
    }
    for (u32 id : {4u, 5u, 22u, 23u, 26u, 27u}) {
        EXPECT_EQ(g_atolreef_counter_stat_addr[0][id], 0u) << g_counter_baseinfo[id].name;
    }
    // Tables whose next neighbour leaves less room hold what fits at 16
    // bytes an entry: the VLAN suppression pair 64 (the fwd table's room,
    // and the siblings' 64 profiles), ecar_acl_car_fwd_stat 256.
    const struct {
        u32 id, entries;
    } kSize[] = {{14, 64}, {15, 64}, {20, 256}};
    for (const auto &z : kSize) {
        u32 entries = 0;
        ASSERT_EQ(counter_api_size_get(0, z.id, &entries), 0);
        EXPECT_EQ(entries, z.entries) << g_counter_baseinfo[z.id].name;
    }
}

// The chip lays its statistics entries 16 bytes apart, four words (pa_stat
// 8 bytes, two words): entry 1 is read at base + 16, not where a stride of
// the 80 counted bits (12 bytes) would put it, and entry 1 of pa_stat at
// base + 8.
TEST_F(Counter, EntryOneIsReadSixteenBytesOnAndEightForPaStat)
{
    auto put = [](u32 addr, u32 v) {
        u8 d[4] = {static_cast<u8>(v), static_cast<u8>(v >> 8), static_cast<u8>(v >> 16), static_cast<u8>(v >> 24)};
        ASSERT_EQ(base_api_reg_set_by_addr(0, addr, d, 4), 0);
    };
    const u32 iport = g_atolreef_counter_stat_addr[0][COUNTER_IPORT_STAT];
    put(iport + 12, 0x55); // entry 0's last word: a 12-byte stride would take it for entry 1
    put(iport + 16, 0x12345678);
    put(iport + 20, 0x3u | 1000u << 4);
    put(iport + 24, 0x2);
    put(iport + 28, 0xFFFFFFFF); // the entry's unused high bits count for nothing
    counter_stats s = read(COUNTER_IPORT_STAT, 1);
    EXPECT_EQ(s.pkt, 0x312345678ull);
    EXPECT_EQ(s.bytes, 1000ull | 2ull << 28);

    ASSERT_EQ(counter_api_enable_set(0, COUNTER_PA_STAT, 1), 0);
    const u32 pa = g_atolreef_counter_stat_addr[0][COUNTER_PA_STAT];
    put(pa + 8, 9);
    put(pa + 12, 0xFFFFFFF1); // a 36-bit count: the word's high bits are not part of it
    put(pa + 16, 5);
    EXPECT_EQ(read(COUNTER_PA_STAT, 1).pkt, 9 + (1ull << 32));
    EXPECT_EQ(read(COUNTER_PA_STAT, 2).pkt, 5u);
    EXPECT_EQ(read(COUNTER_PA_STAT, 2).bytes, 0u);
}

// A sibling chip has no statistics tables in the build: its tables are
// refused, its port counters and thread work, its hardware init says what
// it left out.
class CounterSibling : public SimChips {
protected:
    CounterSibling() : SimChips(2, 0) {}
};

TEST_F(CounterSibling, TablesAreRefusedThePortCountersAndTheThreadWork)
{
    tide::test::kelpreef_identity_set(1, 0);
    up_chip(1);
    EXPECT_EQ(tide::test::Capture::count("kelpreef: no counter clearing register in this build\n"), 1u);
    EXPECT_EQ(counter_api_enable_set(1, COUNTER_IPORT_STAT, 1), -24);
    counter_key key{COUNTER_IPORT_STAT, 0, 0};
    counter_stats s{};
    EXPECT_EQ(counter_api_stats_get(1, &key, &s), -20);
    u32 on = 0;
    ASSERT_EQ(counter_api_enable_get(1, COUNTER_PORT_STAT, &on), 0);
    EXPECT_EQ(on, 1u);
    thread_cfg cfg{1000, 1};
    ASSERT_EQ(counter_api_thread_set(1, &cfg), 0);
    EXPECT_TRUE(dpl_reef_counter_thread_alive(1));
    EXPECT_EQ(counter_api_map_display(1), 0);
}

} // namespace
