// A table that grows moves other tables' blocks while traffic runs: with
// the model's search run after every single TCAM write of such an
// expansion, every installed entry of every group is found (a second copy
// may match first, a miss may not happen); frames injected after every
// write are classified by the rule they match.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "atolreef_cib.h"
#include "dpl/reef/acl/dpl_reef_acl.h"
#include "hal/linux/linux_haui_um/hal_ui.h"
#include "support/acl_fixture.h"
#include "support/acl_frames.h"
#include "support/vlan_ports.h"

using namespace tide::test;

namespace {

const uint32_t kCmd0 = atolreef_cib_acl_core_tcamad_op_cmd0_reg.addr[0];
const uint32_t kKindIacl160 = atolreef_cib_acl_core_tcamblock_cfg1_reg.addr[0];
constexpr uint32_t kLsw = 4;
constexpr uint32_t kOpWrite = 1u << 2, kOpMask = 3u << 2, kStarts = 3u;

// What the hook checks: the search keys of the installed entries, and
// what it found.
struct Key {
    uint32_t mac;
    uint32_t words[10];
};
std::vector<Key> g_keys;
uint64_t g_writes, g_searches;
std::vector<std::string> g_misses;
hal_reg_write32_f g_model_write;

int _checking_write(uint32_t chip, uint32_t bar, uint32_t addr, uint32_t value)
{
    const int rc = g_model_write(chip, bar, addr, value);
    if (bar != kLsw || addr != kCmd0 || (value & kOpMask) != kOpWrite || (value & kStarts) == 0) {
        return rc;
    }
    // One plane or action row was just written: every entry must still be
    // found among the blocks of its kind.
    g_writes++;
    uint32_t bitmap = 0;
    tide_sim_reg_peek(chip, kLsw, kKindIacl160, &bitmap);
    for (const Key &k : g_keys) {
        uint32_t block = 0, index = 0;
        g_searches++;
        if (tide_sim_tcam_search(chip, k.words, kL2KeyBits, bitmap, &block, &index) != 0 && g_misses.size() < 10) {
            g_misses.push_back("entry of MAC " + std::to_string(k.mac) + " missed after write " +
                               std::to_string(g_writes) + " (command word " + std::to_string(value) + ")");
        }
    }
    return rc;
}

class AclLive : public AclChip {
protected:
    AclLive() : AclChip(true) {}
    void SetUp() override
    {
        AclChip::SetUp();
        g_keys.clear();
        g_misses.clear();
        g_writes = g_searches = 0;
    }

    // Installs `count` entries into `g`, MACs from `*mac` on.
    void fill(uint32_t g, uint32_t count, uint32_t *mac)
    {
        for (uint32_t i = 0; i < count; i++, (*mac)++) {
            ASSERT_EQ(acl_api_entry_install(0, entry(g, *mac % 300, *mac)), 0);
            watch(*mac);
        }
    }

    static void watch(uint32_t mac)
    {
        Key k{mac, {}};
        l2_search_key(mac, k.words);
        g_keys.push_back(k);
    }

    // Runs `grow` with the search after every TCAM write.
    template <typename Fn>
    void watched(Fn grow)
    {
        g_model_write = g_hal_ui_drv.reg_write_32;
        g_hal_ui_drv.reg_write_32 = _checking_write;
        grow();
        g_hal_ui_drv.reg_write_32 = g_model_write;
        for (const std::string &m : g_misses) {
            ADD_FAILURE() << m;
        }
        EXPECT_GT(g_writes, 0u);
        RecordProperty("writes_watched", std::to_string(g_writes));
    }

    // Every entry is found where the software has it.
    void found_where_placed(const std::vector<uint32_t> &groups)
    {
        for (uint32_t g : groups) {
            const acl_group_info gi = group_info(g);
            for (auto &[id, p] : installed(g)) {
                uint32_t key[10], block = 0, index = 0;
                l2_search_key(info(id).match[0].value, key);
                ASSERT_EQ(tide_sim_tcam_search(0, key, kL2KeyBits, 0xFFFF, &block, &index), 0);
                EXPECT_EQ(block, p.block);
                EXPECT_EQ(index, p.index);
                bool in_table = false;
                for (uint32_t b = 0; b < gi.block_num; b++) {
                    in_table |= gi.block_ids[b] == p.block;
                }
                EXPECT_TRUE(in_table) << "entry " << id;
            }
        }
    }
};

TEST_F(AclLive, GrowingIntoTheBlockAboveMovesTheNextGroupUpWithoutAGap)
{
    uint32_t mac = 1;
    const uint32_t a = group(128), b = group(128);
    fill(a, 128, &mac);
    fill(b, 40, &mac);
    ASSERT_EQ(group_info(a).block_ids[0], 0u);
    ASSERT_EQ(group_info(b).block_ids[0], 1u);
    const uint32_t extra = entry(a, 77, mac);
    watched([&] { ASSERT_EQ(acl_api_entry_install(0, extra), 0); });
    watch(mac);
    EXPECT_EQ(group_info(a).block_ids[1], 1u);
    EXPECT_EQ(group_info(b).block_ids[0], 2u);
    found_where_placed({a, b});
}

TEST_F(AclLive, GrowingIntoAFreeBlockBelowMovesItsOwnBlocksAndTheOnesBetweenDown)
{
    uint32_t mac = 1;
    const uint32_t x = group(128), b = group(128), a = group(128);
    const uint32_t gone = entry(x, 1, 999999);
    ASSERT_EQ(acl_api_entry_install(0, gone), 0);
    fill(b, 20, &mac);
    fill(a, 128, &mac);
    // The blocks above belong to a table of another kind: nothing free
    // above a.
    std::vector<uint32_t> above;
    for (uint32_t id = 3; id < kBlocks; id++) {
        above.push_back(id);
    }
    dpl_acl_tcam_table *filler =
        dpl_reef_acl_tcam_manual_create(0, static_cast<uint32_t>(above.size()), above.data(), CSL_TCAM_MAP_EACL_320,
                                        _dpl_reef_acl_move_entry, _dpl_reef_acl_move_block);
    ASSERT_NE(filler, nullptr);
    ASSERT_EQ(acl_api_entry_uninstall(0, gone), 0); // block 0 is free now
    ASSERT_EQ(group_info(a).block_ids[0], 2u);
    const uint32_t extra = entry(a, 5, mac);
    watched([&] { ASSERT_EQ(acl_api_entry_install(0, extra), 0); });
    watch(mac);
    const acl_group_info ga = group_info(a);
    ASSERT_EQ(ga.block_num, 2u);
    EXPECT_EQ(ga.block_ids[0], 1u);
    EXPECT_EQ(ga.block_ids[1], 2u);
    EXPECT_EQ(group_info(b).block_ids[0], 0u);
    found_where_placed({a, b});
    EXPECT_EQ(dpl_reef_acl_tcam_destroy(0, CSL_TCAM_MAP_EACL_320, filler), 0);
}

// Frames of every flow, sent after each TCAM write of an expansion that
// moves another group's block, meet their own rule: group a's flows are
// dropped, group b's redirected to port 5, a flow of no rule forwards, and
// the new entry's flow forwards until its row is written and drops from
// then on.  The flows repeat, so the model's lookup cache is hot whenever a
// write lands.
struct Classified {
    Traffic traffic{0};
    uint32_t a_first = 0, a_count = 0, b_first = 0, b_count = 0, extra = 0;
    uint64_t writes = 0, frames = 0;
    bool extra_dropping = false;
    std::vector<std::string> wrong;

    static Frame flow(uint32_t smac_low) { return l2_frame(kHostB, 0x021100000000ull | smac_low); }

    void expect(uint32_t smac_low, const Verdict &want, const Verdict &got)
    {
        frames++;
        if (!(got == want) && wrong.size() < 10) {
            std::ostringstream os;
            os << "flow " << smac_low << " after write " << writes << ": " << got << ", want " << want;
            wrong.push_back(os.str());
        }
    }

    // `per_group` flows of each group, in turn from write to write, and the
    // two others.
    void after_write(uint32_t per_group = 3)
    {
        writes++;
        Verdict dropped = Verdict::drop(600), redirected, forwarded;
        redirected.ports = 1u << 5;
        forwarded.ports = 1u << 2;
        for (uint32_t i = 0; i < per_group; i++) {
            const uint32_t a = a_first + (writes * per_group + i) % a_count,
                           b = b_first + (writes * per_group + i) % b_count;
            expect(a, dropped, traffic.send(1, flow(a)));
            expect(b, redirected, traffic.send(1, flow(b)));
        }
        expect(0xFFFFFF, forwarded, traffic.send(1, flow(0xFFFFFF)));
        const Verdict v = traffic.send(1, flow(extra));
        extra_dropping |= v == dropped;
        expect(extra, extra_dropping ? dropped : forwarded, v);
    }

    static void observe(uint32_t, const tide_sim_write *w, void *user)
    {
        if (w->bar == kLsw && w->addr == kCmd0 && (w->value & kOpMask) == kOpWrite && (w->value & kStarts) != 0) {
            static_cast<Classified *>(user)->after_write();
        }
    }
};

TEST_F(AclLive, FramesDuringAnExpansionThatMovesAnotherGroupMeetTheirOwnRule)
{
    ASSERT_EQ(vlan_ports(0, 1, kFrontPorts, kFrontPorts), 0);
    l2_static(kHostB, 1, 2);
    acl_control on{ACL_PORT_ICAP_EN, 1};
    ASSERT_EQ(acl_api_port_control_set(0, 1, &on), 0);
    acl_lookup global{ACL_STAGE_ICAP, ACL_BASE_GLOBAL, 0, 0, kTypeL2, 1};
    ASSERT_EQ(acl_api_template_config_set(0, &global), 0);

    uint32_t mac = 1;
    const uint32_t a = group(128), b = group(128);
    fill(a, 128, &mac);
    Classified c;
    c.a_first = 1;
    c.a_count = 128;
    c.b_first = mac;
    for (; c.b_count < 40; c.b_count++, mac++) {
        const uint32_t id = entry(b, mac % 300, mac);
        acl_item drop{kActionDrop, 0, 0}, redirect{kActionRedirectPort, 0, 5};
        ASSERT_EQ(acl_api_entry_action_remove(0, id, &drop), 0);
        ASSERT_EQ(acl_api_entry_action_set(0, id, &redirect), 0);
        ASSERT_EQ(acl_api_entry_install(0, id), 0);
    }
    ASSERT_EQ(group_info(b).block_ids[0], 1u);
    c.extra = mac;
    const uint32_t extra = entry(a, 77, mac);
    c.after_write(128); // every flow before, so that the cache holds them
    ASSERT_TRUE(c.wrong.empty()) << c.wrong[0];

    ASSERT_EQ(tide_sim_write_observer_set(0, &Classified::observe, &c), 0);
    const int rc = acl_api_entry_install(0, extra);
    ASSERT_EQ(tide_sim_write_observer_set(0, nullptr, nullptr), 0);
    ASSERT_EQ(rc, 0);
    EXPECT_EQ(group_info(b).block_ids[0], 2u); // b's block did move
    for (const std::string &w : c.wrong) {
        ADD_FAILURE() << w;
    }
    EXPECT_TRUE(c.extra_dropping);
    EXPECT_GT(c.writes, 40u);
    RecordProperty("frames", std::to_string(c.frames));
}

} // namespace
