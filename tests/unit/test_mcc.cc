// The replication engine's trees on the chip model: bring-up, the id plan
// and its limits, roots with chains of their own grown and shrunk while
// the model walks every intermediate state, and the allocators back at
// their start afterwards.
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <vector>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/mcc/dpl_reef_mcc.h"
#include "support/fixture.h"
#include "support/sim_mcc.h"

using tide::test::Capture;
using tide::test::mc_walk;
using tide::test::McWalk;
using tide::test::SimChips;
using tide::test::WriteObserver;

namespace {

class Mcc : public SimChips {
protected:
    Mcc() : SimChips(1, 1) {}

    static u32 free_leaves()
    {
        u32 n = 0;
        EXPECT_EQ(dpl_reef_mcc_mlib_unuse_node_cnt_get(0, &n), 0);
        return n;
    }

    static i32 alloc(u32 type, u32 copies, mrt_root_node *root, u32 use_mid = 0, u32 mid = 0)
    {
        copy_req req{type, use_mid, mid, copies};
        return dpl_reef_mcc_alloc_copy_resource(0, &req, root);
    }

    // The leaves of a root by its software record, in chain order.
    static std::vector<u32> chain(u32 mrt)
    {
        std::vector<u32> leaves;
        mrt_root_node root{};
        if (dpl_reef_mcc_get_mrt_root_node(0, mrt, &root) != 0) {
            return leaves;
        }
        u32 leaf = root.leafid_indx;
        for (u32 i = 0; i < root.rep_num; i++) {
            mleaf_node rec{};
            EXPECT_EQ(dpl_reef_mcc_get_mlib_leaf_node(0, leaf, &rec), 0);
            leaves.push_back(leaf);
            leaf = rec.next_leaf;
        }
        return leaves;
    }

    // Runs `op` while the model walks root `mrt` after every write: no
    // walk loops, and every copy it makes is a leaf of the chain before or
    // after the operation.
    void guarded(u32 mrt, const std::function<i32()> &op, i32 expect = 0)
    {
        const std::vector<u32> before = chain(mrt);
        std::vector<McWalk> seen;
        {
            WriteObserver watch([&](const tide_sim_write &) { seen.push_back(mc_walk(0, mrt)); });
            ASSERT_EQ(op(), expect);
        }
        const std::vector<u32> after = chain(mrt);
        std::set<u32> allowed(before.begin(), before.end());
        allowed.insert(after.begin(), after.end());
        for (const McWalk &w : seen) {
            EXPECT_NE(w.end, static_cast<u32>(TIDE_SIM_MCC_LOOP));
            for (u32 leaf : w.leaves) {
                EXPECT_TRUE(allowed.count(leaf)) << "leaf " << leaf << " of neither chain";
            }
        }
        // The finished state is whole: the chain the software holds.
        const McWalk now = mc_walk(0, mrt);
        if (!after.empty()) {
            EXPECT_EQ(now.end, static_cast<u32>(TIDE_SIM_MCC_COMPLETE));
            EXPECT_EQ(now.leaves, after);
        }
    }
};

TEST_F(Mcc, HardwareInitSetsTheEngineAndClearsEveryRoot)
{
    auto f = [](u32 reg, const char *name) {
        u32 v = 0;
        EXPECT_EQ(dpl_reef_mcc_reg_field_get(0, reg, name, &v), 0) << name;
        return v;
    };
    EXPECT_EQ(f(cib_mcc_pri_st, "pri_full_h"), 63u);
    EXPECT_EQ(f(cib_mcc_pri_st, "pri_full_l"), 56u);
    EXPECT_EQ(f(cib_mcc_pri_st, "pri7_flag"), 1u);
    EXPECT_EQ(f(cib_mcc_qindx_st, "qindx_full_h"), 127u);
    EXPECT_EQ(f(cib_mcc_qindx_st, "qindx_full_l"), 120u);
    EXPECT_EQ(f(cib_mcc_qindx_st, "qindx0_flag"), 1u);
    EXPECT_EQ(f(cib_mcc_cpu_port_cfg, "cpu_port_cfg"), 31u);
    EXPECT_EQ(f(cib_mcc_mcp_token_cnt, "mcp_token_cnt"), 6u);
    EXPECT_EQ(f(cib_mcc_bcp_token_cnt, "bcp_token_cnt"), 3u);
    EXPECT_EQ(f(cib_mcc_bcp_token_dat, "bcp_token_dat"), 254u);
    EXPECT_EQ(f(cib_mcc_uc_mc_wrr, "mc_wrr"), 1u);
    for (u32 mrt : {0u, 16u, 1023u}) {
        cib_mcc_mrt_t r{};
        ASSERT_EQ(csl_reef_cib_mcc_mrt_get(0, 0, mrt, &r), 0);
        EXPECT_EQ(r.mrt_vld, 0u);
        EXPECT_EQ(r.rep_num, 1u);
    }
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES);
    EXPECT_EQ(dpl_reef_mcc_reg_field_set(0, cib_mcc_uc_mc_wrr, "mc_wrr", 16), SHR_E_PARAM);
    EXPECT_EQ(dpl_reef_mcc_reg_field_set(0, cib_mcc_uc_mc_wrr, "nothing", 1), SHR_E_NOT_SUPPORT);
}

TEST_F(Mcc, ARootTakesTheLowestIdsAndIsWrittenBeforeItsLeaves)
{
    tide_sim_write_log_clear(0);
    mrt_root_node root{};
    ASSERT_EQ(alloc(MCC_TYPE_L2MC, 3, &root), 0);
    EXPECT_EQ(root.mrt_index, 16u);
    EXPECT_EQ(root.rep_num, 3u);
    EXPECT_EQ(root.leafid_indx, 0u);
    EXPECT_EQ(root.last_leaf, 2u);
    EXPECT_EQ(chain(16), (std::vector<u32>{0, 1, 2}));
    // One write of the root, then the leaves along the chain.
    const std::vector<tide_sim_write> w = tide::test::sim_writes(0);
    const cib_tab_info *mrt = csl_reef_tab_info_get(0, cib_mcc_mrt);
    const cib_tab_info *mlib = csl_reef_tab_info_get(0, cib_mcc_mlib);
    ASSERT_EQ(w.size(), 4u);
    EXPECT_EQ(w[0].addr, mrt->addr[0] + 16 * 4);
    for (u32 i = 0; i < 3; i++) {
        EXPECT_EQ(w[i + 1].addr, mlib->addr[0] + i * 4);
    }
    const McWalk walk = mc_walk(0, 16);
    EXPECT_EQ(walk.end, static_cast<u32>(TIDE_SIM_MCC_COMPLETE));
    EXPECT_EQ(walk.leaves, (std::vector<u32>{0, 1, 2}));

    mrt_root_node second{};
    ASSERT_EQ(alloc(MCC_TYPE_L2MC, 1, &second), 0);
    EXPECT_EQ(second.mrt_index, 17u);
    EXPECT_EQ(second.leafid_indx, 3u);
    u32 mid = 0;
    const u32 words[2] = {1, 2};
    mid = 100;
    ASSERT_EQ(dpl_reef_mcc_resource_alloc(0, MCC_TYPE_L2MC, &mid, words), 0);
    EXPECT_EQ(chain(100), (std::vector<u32>{4, 5}));
}

TEST_F(Mcc, TheIdPlanAndItsLimitsAnswerWithTheirCodes)
{
    mrt_root_node root{};
    for (u32 i = 0; i < 8; i++) {
        ASSERT_EQ(alloc(MCC_TYPE_SAMPLE_ONLY, 1, &root), 0);
        EXPECT_EQ(root.mrt_index, i);
    }
    EXPECT_EQ(alloc(MCC_TYPE_SAMPLE_ONLY, 1, &root), SHR_E_RESOURCE);
    EXPECT_TRUE(Capture::has("i 8, max_index 7"));
    ASSERT_EQ(alloc(MCC_TYPE_MIRROR_ONLY, 1, &root), 0);
    EXPECT_EQ(root.mrt_index, 8u);
    // Ids above 1023 do not exist on atolreef.
    EXPECT_EQ(alloc(MCC_TYPE_L3MC, 1, &root), SHR_E_PARAM);
    EXPECT_EQ(alloc(MCC_TYPE_BC_TUNNEL, 1, &root), SHR_E_PARAM);
    EXPECT_EQ(alloc(MCC_TYPE_L2MC, 1, &root, 1, 1024), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("copy_req->mid 1024"));
    EXPECT_EQ(alloc(MCC_TYPE_L2MC, 1, &root, 1, 3), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("copy_req->mid is be used 3"));
    EXPECT_EQ(alloc(6, 1, &root), SHR_E_PARAM);
    // Copies: at least 1, at most 2048 by the range, below 2048 on the chip.
    Capture::clear();
    EXPECT_EQ(alloc(MCC_TYPE_L2MC, 2049, &root), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("copy_number 2049 is out of range,min 1 max 2048"));
    EXPECT_EQ(alloc(MCC_TYPE_L2MC, 2048, &root), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("max_index 2047 copy_req->copy_number 2048"));
    EXPECT_EQ(alloc(MCC_TYPE_L2MC, 0, &root), SHR_E_PARAM);
    EXPECT_EQ(dpl_reef_mcc_alloc_copy_resource(0, nullptr, &root), SHR_E_NULL_PTR);
    copy_req req{MCC_TYPE_L2MC, 0, 0, 1};
    EXPECT_EQ(dpl_reef_mcc_alloc_copy_resource(0, &req, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(dpl_reef_mcc_get_mrt_root_node(0, 1024, &root), SHR_E_PARAM);
    EXPECT_EQ(dpl_reef_mcc_get_mrt_root_node(0, 500, &root), SHR_E_NOT_FOUND);
    mleaf_node leaf{};
    EXPECT_EQ(dpl_reef_mcc_get_mlib_leaf_node(0, 2048, &leaf), SHR_E_PARAM);
    EXPECT_EQ(dpl_reef_mcc_get_mlib_leaf_node(0, 1000, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(dpl_reef_mcc_get_mlib_leaf_node(0, 1000, &leaf), SHR_E_NOT_FOUND);
    // Nothing of the refusals holds a leaf.
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES - 9);
}

TEST_F(Mcc, LeavesThatRunOutAreAllGivenBack)
{
    mrt_root_node big{};
    ASSERT_EQ(alloc(MCC_TYPE_L2MC, 2047, &big), 0);
    // Every leaf can be taken: the one left goes to a growing chain.
    u32 leaf = 0;
    ASSERT_EQ(dpl_reef_mcc_increment_copy(0, big.mrt_index, &leaf), 0);
    EXPECT_EQ(leaf, 2047u);
    EXPECT_EQ(free_leaves(), 0u);
    EXPECT_EQ(dpl_reef_mcc_increment_copy(0, big.mrt_index, &leaf), SHR_E_RESOURCE);
    ASSERT_EQ(dpl_reef_mcc_decrement_copy(0, big.mrt_index, 2047), 0);
    ASSERT_EQ(dpl_reef_mcc_decrement_copy(0, big.mrt_index, 5), 0);
    mrt_root_node small{};
    EXPECT_EQ(alloc(MCC_TYPE_L2MC, 3, &small), SHR_E_RESOURCE);
    EXPECT_EQ(free_leaves(), 2u);
    EXPECT_EQ(dpl_reef_mcc_mrt_node_use_status_get(0, 17), 0);
    ASSERT_EQ(dpl_reef_mcc_del_all_copy(0, big.mrt_index), 0);
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES);
    EXPECT_EQ(mc_walk(0, big.mrt_index).end, static_cast<u32>(TIDE_SIM_MCC_ROOT_INVALID));
}

TEST_F(Mcc, GrowingAndShrinkingAChainShowsTheChipOnlyItsOwnLeaves)
{
    mrt_root_node root{};
    ASSERT_EQ(alloc(MCC_TYPE_L2MC, 2, &root), 0);
    const u32 mrt = root.mrt_index;
    mrt_root_node other{};
    ASSERT_EQ(alloc(MCC_TYPE_L2MC, 2, &other), 0);
    u32 leaf = 0;
    for (int i = 0; i < 3; i++) {
        guarded(mrt, [&] { return dpl_reef_mcc_increment_copy(0, mrt, &leaf); });
    }
    EXPECT_EQ(chain(mrt), (std::vector<u32>{0, 1, 4, 5, 6}));
    // A leaf of another root is refused, and nothing is written.
    tide_sim_write_log_clear(0);
    EXPECT_EQ(dpl_reef_mcc_decrement_copy(0, mrt, 2), SHR_E_PARAM);
    EXPECT_TRUE(tide::test::sim_writes(0).empty());
    // The first, the last and one in the middle.
    guarded(mrt, [&] { return dpl_reef_mcc_decrement_copy(0, mrt, 0); });
    mrt_root_node now{};
    ASSERT_EQ(dpl_reef_mcc_get_mrt_root_node(0, mrt, &now), 0);
    EXPECT_EQ(now.leafid_indx, 1u);
    mleaf_node first{};
    ASSERT_EQ(dpl_reef_mcc_get_mlib_leaf_node(0, 1, &first), 0);
    EXPECT_EQ(first.prev_leaf, 0u);
    guarded(mrt, [&] { return dpl_reef_mcc_decrement_copy(0, mrt, 6); });
    guarded(mrt, [&] { return dpl_reef_mcc_decrement_copy(0, mrt, 4); });
    EXPECT_EQ(chain(mrt), (std::vector<u32>{1, 5}));
    // Of two, the first goes: the second is first, with rep_num 1.
    guarded(mrt, [&] { return dpl_reef_mcc_decrement_copy(0, mrt, 1); });
    ASSERT_EQ(dpl_reef_mcc_get_mrt_root_node(0, mrt, &now), 0);
    EXPECT_EQ(now.leafid_indx, 5u);
    EXPECT_EQ(now.rep_num, 1u);
    // The only leaf takes the root with it; its id is free again.
    guarded(mrt, [&] { return dpl_reef_mcc_decrement_copy(0, mrt, 5); });
    EXPECT_EQ(dpl_reef_mcc_get_mrt_root_node(0, mrt, &now), SHR_E_NOT_FOUND);
    EXPECT_EQ(mc_walk(0, mrt).end, static_cast<u32>(TIDE_SIM_MCC_ROOT_INVALID));
    ASSERT_EQ(alloc(MCC_TYPE_L2MC, 1, &now), 0);
    EXPECT_EQ(now.mrt_index, mrt);
    // The other root never changed.
    EXPECT_EQ(mc_walk(0, other.mrt_index).leaves, (std::vector<u32>{2, 3}));
    ASSERT_EQ(dpl_reef_mcc_del_all_copy(0, other.mrt_index), 0);
    ASSERT_EQ(dpl_reef_mcc_del_all_copy(0, mrt), 0);
    EXPECT_EQ(free_leaves(), DPL_MCC_MLIB_LEAVES);
    u32 ids = 0;
    ASSERT_EQ(dpl_reef_mcc_mrt_unuse_node_cnt_get(0, MCC_TYPE_L2MC, &ids), 0);
    EXPECT_EQ(ids, 1008u);
}

TEST_F(Mcc, TheTraverseVisitsEveryLeafOfEveryRoot)
{
    mrt_root_node root{};
    ASSERT_EQ(alloc(MCC_TYPE_SAMPLE_ONLY, 2, &root), 0);
    ASSERT_EQ(alloc(MCC_TYPE_L2MC, 3, &root), 0);
    std::vector<std::pair<u32, u32>> seen;
    auto fn = [](u32, const mrt_root_node *r, const mleaf_node *l, void *user) -> i32 {
        static_cast<std::vector<std::pair<u32, u32>> *>(user)->emplace_back(r->mrt_index, l->leaf_index);
        return 0;
    };
    ASSERT_EQ(dpl_reef_mcc_mrt_mlib_tree_traverse(0, fn, &seen), 0);
    EXPECT_EQ(seen, (std::vector<std::pair<u32, u32>>{{0, 0}, {0, 1}, {16, 2}, {16, 3}, {16, 4}}));
    EXPECT_EQ(dpl_reef_mcc_mrt_mlib_tree_traverse(0, nullptr, nullptr), SHR_E_NULL_PTR);
}

class MccSibling : public SimChips {
protected:
    MccSibling() : SimChips(1, 0) {}
};

TEST_F(MccSibling, ASiblingComesUpWithoutTheEngineAndRefusesItsCalls)
{
    tide::test::kelpreef_identity_set(0);
    up_chip(0);
    EXPECT_TRUE(Capture::has("kelpreef: no replication tables in this build"));
    mrt_root_node root{};
    copy_req req{MCC_TYPE_L2MC, 0, 0, 1};
    EXPECT_EQ(dpl_reef_mcc_alloc_copy_resource(0, &req, &root), SHR_E_NOT_SUPPORT);
    mcc_port_bitmap none{};
    none.empty = 1;
    mrt_info info{};
    info.req = mcc_mrt_req{MCC_TYPE_L2MC, 1, 20};
    EXPECT_EQ(dpl_reef_mcc_group_create(0, &none, nullptr, &info), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(l2_api_multicast_port_add(0, 20, L2_MC_PORT(0, 0)), SHR_E_NOT_SUPPORT);
}

} // namespace
