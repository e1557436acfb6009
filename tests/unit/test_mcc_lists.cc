// The shared lists of L2 multicast on the chip model: which groups share a
// chain and which do not, what each change writes, compression, and a
// randomized run in which the model walks every root after every single
// register write and traffic is sent between the operations.  After every
// operation the bookkeeping is checked against the chip: each node counts
// the roots that cover it, chains are sorted and linked in key order, and
// no leaf is lost.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <vector>

#include "support/vlan_ports.h"
#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/mcc/dpl_reef_mcc.h"
#include "support/fixture.h"
#include "support/sim_mcc.h"
#include "support/wait.h"

using tide::test::Capture;
using tide::test::mc_walk;
using tide::test::McWalk;
using tide::test::SimChips;
using tide::test::WriteObserver;

namespace {

using Keys = std::set<u32>;

mcc_port_config tagged(u16 ovid)
{
    mcc_port_config c{};
    c.vlanupdate = 1;
    c.tagnum = 1;
    c.ovlan_rspan_vlan = ovid;
    return c;
}

// The nodes of a tree in key order.
std::vector<const mlib_node *> nodes(shr_avl_table *t)
{
    std::vector<const mlib_node *> v;
    shr_avl_traverser tr;
    for (void *p = shr_avl_t_first(&tr, t); p != nullptr; p = shr_avl_t_next(&tr)) {
        v.push_back(static_cast<const mlib_node *>(p));
    }
    return v;
}

class McLists : public SimChips {
protected:
    McLists() : SimChips(1, 1) {}

    static i32 create(u32 mid, const Keys &ports, const mcc_port_config &cfg = {})
    {
        mcc_port_bitmap b{};
        for (u32 p : ports) {
            b.bits[p / 64] |= u64{1} << (p % 64);
        }
        b.empty = ports.empty() ? 1 : 0;
        mrt_info info{};
        info.req = mcc_mrt_req{MCC_TYPE_L2MC, 1, mid};
        return dpl_reef_mcc_group_create(0, &b, &cfg, &info);
    }
    static i32 add(u32 mid, u32 port, const mcc_port_config &cfg = {})
    {
        const mcc_member m{MCC_PORT_FLAG_PORT, port};
        return dpl_reef_mcc_group_port_add(0, mid, &m, &cfg);
    }
    static i32 del(u32 mid, u32 port)
    {
        const mcc_member m{MCC_PORT_FLAG_PORT, port};
        const mcc_port_config cfg{};
        return dpl_reef_mcc_group_port_del(0, mid, &m, &cfg);
    }
    static i32 edit(u32 mid, u32 port, const mcc_port_config &cfg)
    {
        const mcc_member m{MCC_PORT_FLAG_PORT, port};
        return dpl_reef_mcc_group_port_config(0, mid, &m, &cfg);
    }
    static u32 free_leaves()
    {
        u32 n = 0;
        EXPECT_EQ(dpl_reef_mcc_mlib_unuse_node_cnt_get(0, &n), 0);
        return n;
    }
    static u32 chains() { return dpl_reef_mcc_mlib_group_num_get(0); }
    static u32 leaf_of(u32 mid, u32 key)
    {
        const McWalk w = mc_walk(0, mid);
        for (size_t i = 0; i < w.keys.size(); i++) {
            if (w.keys[i] == key) {
                return w.leaves[i];
            }
        }
        ADD_FAILURE() << "key " << key << " not in group " << mid;
        return ~0u;
    }

    // The bookkeeping against itself and the chip, with `other` leaves
    // held by replication trees outside the lists.
    void invariants(u32 other = 0)
    {
        struct Seen {
            std::map<const mlib_node *, u32> cover;
            std::map<const mlib_group *, u32> users;
        } seen;
        auto group = [](u32, const mrt_group *g, void *arg) -> i32 {
            auto *s = static_cast<Seen *>(arg);
            const McWalk w = mc_walk(0, g->mrt_id);
            Keys own;
            for (const mlib_node *m : nodes(g->mlib_entry)) {
                own.insert(m->port_config.oport_inf_causeid);
            }
            EXPECT_EQ(g->rep_cnt, own.size()) << "group " << g->mrt_id;
            if (g->rep_cnt == 0) {
                EXPECT_EQ(w.end, static_cast<u32>(TIDE_SIM_MCC_ROOT_INVALID)) << "group " << g->mrt_id;
                EXPECT_EQ(g->mlib_group, nullptr);
                return 0;
            }
            EXPECT_EQ(w.end, static_cast<u32>(TIDE_SIM_MCC_COMPLETE)) << "group " << g->mrt_id;
            EXPECT_EQ(w.key_set(), own) << "group " << g->mrt_id;
            s->users[g->mlib_group]++;
            const std::vector<const mlib_node *> chain = nodes(g->mlib_group->mlib_entry);
            size_t i = 0;
            while (i < chain.size() && chain[i]->mlib_id != g->first_mlib_id) {
                i++;
            }
            for (u32 n = 0; n < g->rep_cnt && i + n < chain.size(); n++) {
                s->cover[chain[i + n]]++;
                // The chain's edit is the one the member wants.
                const mlib_node *m = nullptr;
                for (const mlib_node *x : nodes(g->mlib_entry)) {
                    m = x->port_config.oport_inf_causeid == chain[i + n]->port_config.oport_inf_causeid ? x : m;
                }
                EXPECT_TRUE(m != nullptr && dpl_reef_mcc_mlib_elb_cmp(&m->port_config, &chain[i + n]->port_config) == 0);
            }
            return 0;
        };
        ASSERT_EQ(dpl_reef_mcc_mrt_group_traverse(0, group, &seen), 0);
        auto chain = [](u32, const mlib_group *c, void *arg) -> i32 {
            auto *s = static_cast<Seen *>(arg);
            const std::vector<const mlib_node *> v = nodes(c->mlib_entry);
            EXPECT_EQ(c->node_cnt, v.size());
            EXPECT_EQ(c->mrt_cnt, s->users[c]);
            u32 listed = 0;
            for (const mrt_mlib_entry *u = c->users; u != nullptr; u = u->next) {
                listed++;
            }
            EXPECT_EQ(c->mrt_cnt, listed);
            for (size_t i = 0; i < v.size(); i++) {
                EXPECT_EQ(v[i]->use_cnt, s->cover[v[i]]) << "leaf " << v[i]->mlib_id;
                EXPECT_GT(v[i]->use_cnt, 0u);
                EXPECT_EQ(v[i]->dirty, 0u);
                // Linked in key order, in the software and in the chip.
                const bool last = i + 1 == v.size();
                EXPECT_EQ(v[i]->next_vld, last ? 0 : 1);
                cib_mcc_mlib_t hw{};
                EXPECT_EQ(csl_reef_cib_mcc_mlib_get(0, 0, v[i]->mlib_id, &hw), 0);
                EXPECT_EQ(hw.mlib_vld, 1u);
                EXPECT_EQ(hw.next_vld, last ? 0u : 1u);
                if (!last) {
                    EXPECT_EQ(v[i]->next_id, v[i + 1]->mlib_id);
                    EXPECT_EQ(hw.leafid_next_ptr, v[i + 1]->mlib_id);
                }
            }
            return 0;
        };
        ASSERT_EQ(dpl_reef_mcc_mlib_group_traverse(0, chain, &seen), 0);
        u32 held = 0;
        auto count = [](u32, const mlib_group *c, void *arg) -> i32 {
            *static_cast<u32 *>(arg) += c->node_cnt;
            return 0;
        };
        ASSERT_EQ(dpl_reef_mcc_mlib_group_traverse(0, count, &held), 0);
        EXPECT_EQ(held + other + free_leaves(), DPL_MCC_MLIB_LEAVES);
    }

    // The writes of one operation, each inside the entries named.
    static std::vector<tide_sim_write> writes_of(const std::function<i32()> &op)
    {
        tide_sim_write_log_clear(0);
        EXPECT_EQ(op(), 0);
        return tide::test::sim_writes(0);
    }
    static u32 mrt_addr(u32 mid) { return csl_reef_tab_info_get(0, cib_mcc_mrt)->addr[0] + mid * 4; }
    static u32 elb_addr(u32 leaf) { return csl_reef_tab_info_get(0, cib_epro_elb_table)->addr[0] + leaf * 16; }
};

TEST_F(McLists, ContiguousSequencesShareAChainAndMoveWithoutWritingLeaves)
{
    ASSERT_EQ(create(16, {1, 2, 3}), 0);
    ASSERT_EQ(create(17, {2, 3}), 0);
    EXPECT_EQ(chains(), 1u);
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES - 3);
    cib_mcc_mrt_t root{};
    ASSERT_EQ(csl_reef_cib_mcc_mrt_get(0, 0, 17, &root), 0);
    EXPECT_EQ(root.rep_num, 2u);
    EXPECT_EQ(root.leafid_indx, leaf_of(16, 2));
    invariants();

    // {2,3,4} is part of no chain: a chain of its own.
    ASSERT_EQ(add(17, 4), 0);
    EXPECT_EQ(chains(), 2u);
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES - 6);
    EXPECT_EQ(mc_walk(0, 16).key_set(), (Keys{1, 2, 3}));
    invariants();
    // Back to {2,3}: onto the chain of {1,2,3}; its own chain goes.
    ASSERT_EQ(del(17, 4), 0);
    EXPECT_EQ(chains(), 1u);
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES - 3);
    invariants();
    // Adding 1 while on the chain of {1,2,3}: a group never looks for its
    // sequence on the chain it is leaving, so {1,2,3} is built anew beside
    // it; compression merges the two again.
    ASSERT_EQ(add(17, 1), 0);
    EXPECT_EQ(chains(), 2u);
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES - 6);
    invariants();
    ASSERT_EQ(dpl_reef_mlib_group_compress(0), 0);
    EXPECT_EQ(chains(), 1u);
    EXPECT_EQ(mc_walk(0, 17).leaves, mc_walk(0, 16).leaves);
    invariants();
    // A group never looks for its sequence on the chain it is leaving:
    // {1,2} is part of no other chain, so it gets a chain of its own while
    // {1,2,3} of group 17 keeps its leaves.
    const std::vector<u32> before = mc_walk(0, 17).leaves;
    ASSERT_EQ(del(16, 3), 0);
    EXPECT_EQ(chains(), 2u);
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES - 5);
    EXPECT_EQ(mc_walk(0, 16).key_set(), (Keys{1, 2}));
    EXPECT_EQ(mc_walk(0, 17).leaves, before);
    invariants();
}

TEST_F(McLists, AddingTheMissingFirstMemberMovesOntoTheLongerChainWithOneRootWrite)
{
    // {2,3} lives on the chain of {2,3,9}, which another group keeps.
    ASSERT_EQ(create(18, {2, 3, 9}), 0);
    ASSERT_EQ(create(17, {2, 3}), 0);
    ASSERT_EQ(create(16, {1, 2, 3}), 0);
    EXPECT_EQ(chains(), 2u);
    const std::vector<tide_sim_write> w = writes_of([] { return add(17, 1); });
    ASSERT_EQ(w.size(), 1u);
    EXPECT_EQ(w[0].addr, mrt_addr(17));
    EXPECT_EQ(mc_walk(0, 17).leaves, mc_walk(0, 16).leaves);
    EXPECT_EQ(mc_walk(0, 18).key_set(), (Keys{2, 3, 9}));
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES - 6);
    invariants();
}

TEST_F(McLists, AGrowingGroupAloneOnItsChainBuildsAWholeNewChainFirst)
{
    ASSERT_EQ(create(16, {1, 2, 3}), 0);
    const std::vector<u32> old = mc_walk(0, 16).leaves;
    // Every leaf of {1,2,3,4} is new; the old chain goes after the root moved.
    ASSERT_EQ(add(16, 4), 0);
    const std::vector<u32> now = mc_walk(0, 16).leaves;
    ASSERT_EQ(now.size(), 4u);
    for (u32 leaf : now) {
        EXPECT_EQ(std::count(old.begin(), old.end(), leaf), 0) << "leaf " << leaf;
    }
    EXPECT_EQ(chains(), 1u);
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES - 4);
    invariants();
    // The same when it shrinks.
    ASSERT_EQ(del(16, 1), 0);
    EXPECT_EQ(mc_walk(0, 16).key_set(), (Keys{2, 3, 4}));
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES - 3);
    invariants();
}

TEST_F(McLists, GroupsWhoseEditsDifferNeverShare)
{
    ASSERT_EQ(create(16, {1, 2, 3}, tagged(100)), 0);
    ASSERT_EQ(create(17, {2, 3}), 0);
    EXPECT_EQ(chains(), 2u);
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES - 5);
    // The same keys with the same edit do share, whatever the order.
    ASSERT_EQ(create(18, {1, 2}, tagged(100)), 0);
    EXPECT_EQ(chains(), 2u);
    invariants();
}

TEST_F(McLists, AnEditOfOneRootsLeafIsOneElbWriteAndASharedOneMovesTheRoot)
{
    ASSERT_EQ(create(16, {1, 2, 3}), 0);
    const u32 leaf = leaf_of(16, 3);
    const std::vector<tide_sim_write> w = writes_of([] { return edit(16, 3, tagged(7)); });
    ASSERT_FALSE(w.empty());
    for (const tide_sim_write &x : w) {
        EXPECT_GE(x.addr, elb_addr(leaf));
        EXPECT_LT(x.addr, elb_addr(leaf) + 16);
    }
    cib_epro_elb_table_t e{};
    ASSERT_EQ(csl_reef_cib_epro_elb_table_get(0, 0, leaf, &e), 0);
    EXPECT_EQ(e.ovlan_rspan_vlan, 7u);
    EXPECT_EQ(e.tagnum, 1u);
    // The same edit again writes nothing.
    EXPECT_TRUE(writes_of([] { return edit(16, 3, tagged(7)); }).empty());

    // A leaf two roots cover: the changing group moves to a chain of its
    // own, the other keeps its leaves.
    ASSERT_EQ(create(17, {2, 3}, tagged(7)), 0);
    ASSERT_EQ(edit(17, 3, tagged(7)), 0);
    EXPECT_EQ(chains(), 2u); // {2,3} disagrees with {1,2,3} at 2
    ASSERT_EQ(edit(16, 2, tagged(7)), 0);
    ASSERT_EQ(dpl_reef_mlib_group_compress(0), 0);
    EXPECT_EQ(chains(), 1u);
    const std::vector<u32> shared = mc_walk(0, 16).leaves;
    ASSERT_EQ(edit(17, 2, tagged(9)), 0);
    EXPECT_EQ(mc_walk(0, 16).leaves, shared);
    EXPECT_EQ(chains(), 2u);
    invariants();
}

TEST_F(McLists, AGroupLeftEmptyKeepsItsIdAndDeletingEverythingFreesEverything)
{
    ASSERT_EQ(create(16, {4}), 0);
    ASSERT_EQ(create(20, {}), 0);
    ASSERT_EQ(del(16, 4), 0);
    EXPECT_NE(dpl_reef_mcc_mrt_group_get(0, 16), nullptr);
    EXPECT_EQ(mc_walk(0, 16).end, static_cast<u32>(TIDE_SIM_MCC_ROOT_INVALID));
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES);
    ASSERT_EQ(add(16, 5), 0);
    ASSERT_EQ(add(20, 5), 0);
    EXPECT_EQ(chains(), 1u);
    invariants();
    ASSERT_EQ(dpl_reef_mcc_group_del(0, 16), 0);
    ASSERT_EQ(dpl_reef_mcc_group_del(0, 20), 0);
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES);
    EXPECT_EQ(chains(), 0u);
    EXPECT_EQ(dpl_reef_mcc_mrt_group_num_get(0), 0u);
    u32 ids = 0, slots = 0;
    ASSERT_EQ(dpl_reef_mcc_mrt_unuse_node_cnt_get(0, MCC_TYPE_L2MC, &ids), 0);
    ASSERT_EQ(dpl_reef_mcc_db_mrt_unuse_cnt_get(0, &slots), 0);
    EXPECT_EQ(ids, 1008u);
    EXPECT_EQ(slots, 1024u);
}

TEST_F(McLists, BadRequestsChangeNothing)
{
    ASSERT_EQ(create(16, {1, 2}), 0);
    tide_sim_write_log_clear(0);
    EXPECT_EQ(add(16, 2), SHR_E_EXISTS);
    EXPECT_EQ(del(16, 9), SHR_E_NOT_FOUND);
    EXPECT_EQ(add(99, 1), SHR_E_NOT_FOUND);
    EXPECT_TRUE(Capture::has("mrt_id 99 is not create fail"));
    EXPECT_EQ(edit(16, 9, tagged(1)), SHR_E_NOT_FOUND);
    EXPECT_EQ(add(16, 64), SHR_E_PARAM);
    const mcc_member bad{7, 1};
    const mcc_port_config none{};
    EXPECT_EQ(dpl_reef_mcc_group_port_add(0, 16, &bad, &none), SHR_E_FAIL);
    EXPECT_TRUE(Capture::has("port_bitmap->mcc_port_flag wrong 7"));
    EXPECT_EQ(dpl_reef_mcc_group_port_add(0, 16, nullptr, &none), SHR_E_NULL_PTR);
    EXPECT_EQ(create(16, {3}), SHR_E_PARAM);
    EXPECT_EQ(create(1024, {3}), SHR_E_PARAM);
    EXPECT_EQ(dpl_reef_mcc_group_del(0, 17), SHR_E_NOT_FOUND);
    EXPECT_TRUE(tide::test::sim_writes(0).empty());
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES - 2);
    invariants();
}

TEST_F(McLists, CompressionMergesAgreeingChainsBeforeLeavesRunOut)
{
    // {2,3} with another edit comes first, so {1,2,3} found it and got a
    // chain of its own; the other {2,3} could live on that chain.
    ASSERT_EQ(create(16, {2, 3}, tagged(5)), 0);
    ASSERT_EQ(create(17, {2, 3}), 0);
    ASSERT_EQ(create(18, {1, 2, 3}), 0);
    ASSERT_EQ(create(19, {5}), 0);
    EXPECT_EQ(chains(), 4u);
    // Every other leaf goes to a replication tree.
    const u32 rest = free_leaves();
    mrt_root_node tree{};
    copy_req req{MCC_TYPE_MIRROR_ONLY, 0, 0, rest};
    ASSERT_EQ(dpl_reef_mcc_alloc_copy_resource(0, &req, &tree), 0);
    EXPECT_EQ(free_leaves(), 0u);
    // A leaf is needed: compression makes room, and the root of 17 moves
    // onto the chain of 18 with one write while the model watches.
    Keys at17;
    {
        WriteObserver watch([&](const tide_sim_write &) {
            const McWalk w = mc_walk(0, 17);
            EXPECT_EQ(w.end, static_cast<u32>(TIDE_SIM_MCC_COMPLETE));
            EXPECT_EQ(w.key_set(), (Keys{2, 3}));
        });
        ASSERT_EQ(add(19, 6), 0);
    }
    EXPECT_EQ(chains(), 3u);
    EXPECT_EQ(free_leaves(), 1u);
    EXPECT_EQ(leaf_of(17, 2), leaf_of(18, 2));
    invariants(rest);
    // Nothing left to merge, and a new chain of three leaves does not fit
    // into the one free leaf: -14, unchanged.
    EXPECT_EQ(add(19, 7), SHR_E_RESOURCE);
    EXPECT_TRUE(Capture::has("mlib node is full"));
    EXPECT_EQ(mc_walk(0, 19).key_set(), (Keys{5, 6}));
    EXPECT_EQ(add(18, 9), SHR_E_RESOURCE);
    EXPECT_EQ(mc_walk(0, 18).key_set(), (Keys{1, 2, 3}));
    invariants(rest);
    ASSERT_EQ(dpl_reef_mcc_del_all_copy(0, tree.mrt_index), 0);
    ASSERT_EQ(add(18, 9), 0);
    invariants();
}

// A group the test keeps: the members it wants and their edits.
struct Want {
    std::map<u32, int> members; // port -> edit variant
    bool live = false;
    Keys keys() const
    {
        Keys k;
        for (const auto &[p, v] : members) {
            k.insert(p);
        }
        return k;
    }
};

class McListsTraffic : public McLists {
protected:
    void SetUp() override
    {
        McLists::SetUp();
        ASSERT_EQ(tide::test::vlan_ports(0, 1, 0x0FFFFFFF, 0x0FFFFFFF), 0);
    }

    static std::array<u8, 60> frame(u32 mid)
    {
        std::array<u8, 60> f{0x01, 0x00, 0x5e, 0x00, static_cast<u8>(mid >> 8), static_cast<u8>(mid),
                             0x02, 0x00, 0x00, 0x00, 0x00, 0x42, 0x08, 0x00};
        return f;
    }

    void entry(u32 mid)
    {
        l2_addr a{};
        a.flags = L2_FLAG_KEY_VID | L2_FLAG_DEST_MCAST;
        const std::array<u8, 60> f = frame(mid);
        std::copy(f.begin(), f.begin() + 6, a.mac);
        a.vid = 1;
        a.mgid = mid;
        ASSERT_EQ(l2_api_addr_add(0, &a), 0);
    }

    // A frame to the group from port 20 reaches exactly its members, once.
    void traffic(u32 mid, const Keys &members)
    {
        const std::array<u8, 60> f = frame(mid);
        ASSERT_EQ(tide_sim_packet_inject(0, 20, f.data(), f.size()), 0);
        Keys got;
        for (u32 p = 0; p < 32; p++) {
            u8 buf[256];
            u32 len = 0;
            while (tide_sim_packet_capture(0, p, buf, sizeof(buf), &len) == 0) {
                EXPECT_TRUE(got.insert(p).second) << "port " << p << " got two copies";
            }
        }
        EXPECT_EQ(got, members) << "group " << mid;
    }
};

TEST_F(McListsTraffic, MakeBeforeBreakOnEveryWriteOfARandomRun)
{
    TIDE_TEST_SEED(seed, 20261124);
    std::mt19937_64 rng(seed);
    constexpr u32 kGroups = 6, kFirst = 16, kPorts = 10, kSteps = 160;
    const mcc_port_config variants[2] = {mcc_port_config{}, tagged(1)};
    std::array<Want, kGroups> want{};
    for (u32 g = 0; g < kGroups; g++) {
        entry(kFirst + g);
    }
    // The group being changed may show its old or its new members; every
    // other group exactly its own.
    u32 changing = ~0u;
    Keys before, after;
    u64 checked = 0;
    WriteObserver watch([&](const tide_sim_write &) {
        for (u32 g = 0; g < kGroups; g++) {
            const McWalk w = mc_walk(0, kFirst + g);
            const Keys now = w.key_set();
            checked++;
            if (kFirst + g == changing) {
                EXPECT_TRUE(now == before || now == after) << "group " << kFirst + g;
            } else {
                EXPECT_EQ(now, want[g].keys()) << "group " << kFirst + g;
            }
            EXPECT_TRUE(w.end == TIDE_SIM_MCC_COMPLETE || (w.end == TIDE_SIM_MCC_ROOT_INVALID && now.empty()))
                << "group " << kFirst + g << " ends " << w.end;
            EXPECT_EQ(w.keys.size(), now.size()) << "a member twice";
            EXPECT_EQ(w.invalid_edits, 0u) << "group " << kFirst + g << " reaches a cleared edit";
        }
    });
    for (u32 step = 0; step < kSteps && !HasFailure(); step++) {
        const u32 g = static_cast<u32>(rng() % kGroups);
        const u32 mid = kFirst + g;
        const u32 port = static_cast<u32>(rng() % kPorts);
        const int variant = static_cast<int>(rng() % 2);
        Want next = want[g];
        changing = mid;
        before = want[g].keys();
        i32 rc = 0;
        const u32 what = static_cast<u32>(rng() % 10);
        if (!want[g].live) {
            next.members.clear();
            for (u32 p = 0; p < kPorts; p++) {
                if (rng() % 3 == 0) {
                    next.members[p] = variant;
                }
            }
            next.live = true;
            after = next.keys();
            rc = create(mid, after, variants[variant]);
        } else if (what == 0) {
            after = {};
            next = Want{};
            rc = dpl_reef_mcc_group_del(0, mid);
        } else if (what == 1) {
            changing = ~0u;
            rc = dpl_reef_mlib_group_compress(0);
        } else if (what <= 3 && !want[g].members.empty()) {
            auto it = want[g].members.begin();
            std::advance(it, static_cast<long>(rng() % want[g].members.size()));
            next.members[it->first] = variant;
            after = next.keys();
            rc = edit(mid, it->first, variants[variant]);
        } else if (want[g].members.count(port)) {
            next.members.erase(port);
            after = next.keys();
            rc = del(mid, port);
        } else {
            next.members[port] = variant;
            after = next.keys();
            rc = add(mid, port, variants[variant]);
        }
        ASSERT_EQ(rc, 0) << "step " << step;
        want[g] = next;
        changing = ~0u;
        invariants();
        traffic(mid, want[g].keys());
    }
    for (u32 g = 0; g < kGroups; g++) {
        if (want[g].live) {
            before = want[g].keys();
            want[g] = Want{};
            changing = kFirst + g;
            after = {};
            ASSERT_EQ(dpl_reef_mcc_group_del(0, kFirst + g), 0);
        }
    }
    changing = ~0u;
    EXPECT_GT(checked, 0u);
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES);
    EXPECT_EQ(chains(), 0u);
}

} // namespace
