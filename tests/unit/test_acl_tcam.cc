// The TCAM tables of the ACL on their own, with entries that are plain
// markers and moves that are only recorded: where a new entry goes,
// which neighbours move and how far, compress and shrink, the blocks'
// order, the free block search and the block moves of an expansion.
#include <gtest/gtest.h>

#include <vector>

#include "atolreef_cib.h"
#include "dpl/reef/acl/dpl_reef_acl.h"
#include "support/fixture.h"
#include "support/vlan_tcam.h"

namespace {

struct Move {
    uint32_t from, to;
    bool operator==(const Move &) const = default;
};
std::vector<Move> g_moves;
std::vector<dpl_acl_tcam_move> g_block_moves;

int32_t _record_move(uint32_t, dpl_acl_tcam_table *, uint32_t from, uint32_t to)
{
    g_moves.push_back({from, to});
    return 0;
}

int32_t _record_block(uint32_t, const dpl_acl_tcam_move *m)
{
    g_block_moves.push_back(*m);
    return 0;
}

class AclTcam : public tide::test::SimChips {
protected:
    AclTcam() : SimChips(1, 1) {}
    void SetUp() override
    {
        SimChips::SetUp();
        ASSERT_EQ(tide::test::vlan_tcam_spaces_free(0), 0);
        g_moves.clear();
        g_block_moves.clear();
    }
    void TearDown() override
    {
        for (dpl_acl_tcam_table *t : tables_) {
            EXPECT_EQ(dpl_reef_acl_tcam_destroy(0, t->map_type, t), 0);
        }
        SimChips::TearDown();
    }

    dpl_acl_tcam_table *table(uint32_t size)
    {
        dpl_acl_tcam_table *t = dpl_reef_acl_tcam_create(0, size, CSL_TCAM_MAP_IACL_160, _record_move, _record_block);
        EXPECT_NE(t, nullptr);
        tables_.push_back(t);
        return t;
    }
    dpl_acl_tcam_table *manual(std::vector<uint32_t> ids)
    {
        dpl_acl_tcam_table *t = dpl_reef_acl_tcam_manual_create(0, static_cast<uint32_t>(ids.size()), ids.data(),
                                                                CSL_TCAM_MAP_IACL_160, _record_move, _record_block);
        EXPECT_NE(t, nullptr);
        tables_.push_back(t);
        return t;
    }
    void forget(dpl_acl_tcam_table *t) { std::erase(tables_, t); }

    uint32_t alloc(dpl_acl_tcam_table *t, uint32_t priority)
    {
        uint32_t index = 0xFFFFFFFFu;
        EXPECT_EQ(dpl_reef_acl_tcam_alloc_entry(0, t, priority, &marker_, &index), 0);
        return index;
    }

    // Slots set by hand: key = priority + 1 from `first` on, one per
    // priority in `pris`.
    static void place(dpl_acl_tcam_table *t, uint32_t first, std::vector<uint32_t> pris)
    {
        for (uint32_t p : pris) {
            t->slots[first++] = dpl_acl_tcam_slot{p + 1, &t->size};
            t->used++;
        }
    }
    static std::vector<uint32_t> keys(const dpl_acl_tcam_table *t)
    {
        std::vector<uint32_t> k;
        for (uint32_t i = 0; i < t->size; i++) {
            if (t->slots[i].key != 0) {
                k.push_back(t->slots[i].key);
            }
        }
        return k;
    }
    std::vector<uint32_t> blocks(const dpl_acl_tcam_table *t)
    {
        std::vector<uint32_t> ids;
        shr_avl_traverser tr;
        for (void *p = shr_avl_t_first(&tr, t->block_tree); p != nullptr; p = shr_avl_t_next(&tr)) {
            ids.push_back(static_cast<dpl_acl_tcam_block *>(p)->block_id);
        }
        return ids;
    }

    int marker_ = 0;
    std::vector<dpl_acl_tcam_table *> tables_;
};

TEST_F(AclTcam, AnEmptyTableTakesSlot0AndEqualPrioritiesFillTheWindowFromItsLowEnd)
{
    dpl_acl_tcam_table *t = table(0);
    ASSERT_EQ(t->size, 128u);
    EXPECT_EQ(alloc(t, 7), 0u);
    EXPECT_EQ(alloc(t, 7), 1u);
    EXPECT_EQ(alloc(t, 9), 2u);
    // A free slot inside the window: no move.
    t->slots[1] = dpl_acl_tcam_slot{};
    t->used--;
    EXPECT_EQ(alloc(t, 8), 1u);
    EXPECT_TRUE(g_moves.empty());
    // Below all: the three move up by half the free run above them.
    const uint32_t at = alloc(t, 3);
    EXPECT_EQ(g_moves, (std::vector<Move>{{2, 65}, {1, 64}, {0, 63}}));
    EXPECT_LT(at, 62u);
    EXPECT_EQ(keys(t), (std::vector<uint32_t>{4, 8, 9, 10}));
}

TEST_F(AclTcam, AFullTableGivesMinus14AndANullTableMinus1)
{
    dpl_acl_tcam_table *t = table(0);
    for (uint32_t i = 0; i < t->size; i++) {
        alloc(t, i % 5);
    }
    uint32_t index = 0;
    EXPECT_EQ(dpl_reef_acl_tcam_alloc_entry(0, t, 1, &marker_, &index), SHR_E_RESOURCE);
    EXPECT_EQ(dpl_reef_acl_tcam_alloc_entry(0, nullptr, 1, &marker_, &index), SHR_E_INTERNAL);
    EXPECT_EQ(dpl_reef_acl_tcam_alloc_entry(0, t, 1, &marker_, nullptr), SHR_E_INTERNAL);
}

TEST_F(AclTcam, WithTheWindowAtTheTopAndTheLastSlotUsedTheEntriesGoDown)
{
    dpl_acl_tcam_table *t = table(0);
    std::vector<uint32_t> pris;
    for (uint32_t i = 10; i < 128; i++) {
        pris.push_back(i);
    }
    place(t, 10, pris);
    const uint32_t at = alloc(t, 1000);
    ASSERT_EQ(g_moves.size(), 118u);
    for (const Move &m : g_moves) {
        EXPECT_EQ(m.from - m.to, 5u); // half of the gap of 10, the rest stays below
    }
    EXPECT_EQ(g_moves.front(), (Move{10, 5}));
    EXPECT_GE(at, 123u);
    EXPECT_LE(at, 127u);
    std::vector<uint32_t> want;
    for (uint32_t p : pris) {
        want.push_back(p + 1);
    }
    want.push_back(1001);
    EXPECT_EQ(keys(t), want);
}

TEST_F(AclTcam, TheSideWithLessToMoveAndMoreRoomWinsDownOnATie)
{
    dpl_acl_tcam_table *t = table(0);
    // Slots 0-3 free, 4-7 below the new entry, 8-11 above it, 12-19 free,
    // the rest used: down has 4 to move into 4, up 4 into 8.
    place(t, 4, {1, 1, 1, 1, 5, 5, 5, 5});
    for (uint32_t i = 20; i < 128; i++) {
        t->slots[i] = dpl_acl_tcam_slot{900, &t->size};
        t->used++;
    }
    const uint32_t at = alloc(t, 3);
    ASSERT_EQ(g_moves.size(), 4u);
    for (const Move &m : g_moves) {
        EXPECT_EQ(m.to - m.from, 4u) << m.from; // up: half of 8
    }
    EXPECT_GE(at, 8u);
    EXPECT_LE(at, 11u);
    // The same distances with equal room: down.
    g_moves.clear();
    dpl_acl_tcam_table *u = table(0);
    place(u, 4, {1, 1, 1, 1, 5, 5, 5, 5});
    for (uint32_t i = 16; i < 128; i++) {
        u->slots[i] = dpl_acl_tcam_slot{900, &u->size};
        u->used++;
    }
    const uint32_t at_u = alloc(u, 3);
    ASSERT_EQ(g_moves.size(), 4u);
    EXPECT_EQ(g_moves.front(), (Move{4, 2}));
    EXPECT_GE(at_u, 6u);
    EXPECT_LE(at_u, 7u);
}

TEST_F(AclTcam, CompressKeepsTheOrderAndCountsItsMoves)
{
    dpl_acl_tcam_table *t = table(0);
    place(t, 3, {1, 2});
    place(t, 40, {2, 6});
    place(t, 100, {9});
    const std::vector<uint32_t> before = keys(t);
    uint32_t moved = 0;
    ASSERT_EQ(dpl_reef_acl_tcam_compress(0, t, &moved), 0);
    EXPECT_EQ(moved, 5u);
    EXPECT_EQ(keys(t), before);
    for (uint32_t i = 0; i < 5; i++) {
        EXPECT_NE(t->slots[i].key, 0u) << i;
    }
}

TEST_F(AclTcam, ShrinkGivesBackTheBlocksItCanAndKeepsOne)
{
    dpl_acl_tcam_table *t = table(384);
    ASSERT_EQ(blocks(t), (std::vector<uint32_t>{0, 1, 2}));
    place(t, 200, {1, 2, 3});
    ASSERT_EQ(dpl_reef_acl_tcam_block_shrink(0, CSL_TCAM_MAP_IACL_160, t), 0);
    EXPECT_EQ(t->size, 128u);
    EXPECT_EQ(blocks(t), (std::vector<uint32_t>{0}));
    EXPECT_EQ(keys(t), (std::vector<uint32_t>{2, 3, 4}));
    EXPECT_EQ(t->slots[2].key, 4u);
    EXPECT_EQ(dpl_reef_acl_tcam_block_shrink(0, CSL_TCAM_MAP_IACL_160, t), SHR_E_RESOURCE);
    uint32_t bitmap = 0;
    ASSERT_EQ(tide_sim_reg_peek(0, 4, atolreef_cib_acl_core_tcamblock_cfg1_reg.addr[0], &bitmap), 0);
    EXPECT_EQ(bitmap, 1u);
}

TEST_F(AclTcam, LogicalRowsRunThroughTheBlocksInAscendingId)
{
    dpl_acl_tcam_table *t = manual({9, 7});
    uint32_t block = 0, row = 0;
    ASSERT_EQ(dpl_reef_acl_tcam_logic_idx_to_hw_idx(t, 0, &block, &row), 0);
    EXPECT_EQ(block, 7u);
    ASSERT_EQ(dpl_reef_acl_tcam_logic_idx_to_hw_idx(t, 130, &block, &row), 0);
    EXPECT_EQ(block, 9u);
    EXPECT_EQ(row, 2u);
    EXPECT_EQ(dpl_reef_acl_tcam_logic_idx_to_hw_idx(t, 256, &block, &row), SHR_E_PARAM);
    uint32_t offset = 0;
    ASSERT_EQ(dpl_reef_acl_tcam_block_logic_idx_offset_get(0, dpl_reef_acl_tcam_block_get(0, 9), &offset), 0);
    EXPECT_EQ(offset, 128u);
}

TEST_F(AclTcam, TheFreeBlockSearchGoesUpThenDownAndStopsAtBlocksThatNeverMove)
{
    dpl_acl_tcam_table *a = manual({4});
    dpl_acl_tcam_table *b = manual({5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15});
    dpl_acl_tcam_free_block fb{};
    ASSERT_EQ(dpl_acl_reef_tcam_free_block_get(0, CSL_TCAM_MAP_IACL_160, a, &fb), 0);
    EXPECT_EQ(fb.start_free_block_index, 3u); // nothing free above
    EXPECT_EQ(fb.added_entries, 128u);
    ASSERT_EQ(dpl_acl_reef_tcam_free_block_get(0, CSL_TCAM_MAP_IACL_160, b, &fb), 0);
    EXPECT_EQ(fb.start_free_block_index, 3u); // down past a's block
    // Packet analysis's block never moves: the search stays above it.
    ASSERT_EQ(csl_reef_tcam_utils_block_manual_alloc(0, CSL_TCAM_UTILS_SPA, 1, std::vector<uint32_t>{3}.data()), 0);
    EXPECT_EQ(dpl_acl_reef_tcam_free_block_get(0, CSL_TCAM_MAP_IACL_160, b, &fb), SHR_E_FULL);
    EXPECT_TRUE(tide::test::Capture::has("no free tcam block for map_type 0"));
    EXPECT_EQ(dpl_reef_acl_tcam_block_expand(0, CSL_TCAM_MAP_IACL_160, b), SHR_E_FULL);
    EXPECT_EQ(blocks(b).size(), 11u);
    EXPECT_TRUE(g_block_moves.empty());
    EXPECT_EQ(csl_reef_tcam_utils_block_free(0, CSL_TCAM_UTILS_SPA), 0);
}

TEST_F(AclTcam, ExpansionIntoAFreeBlockAboveMovesTheBlocksBetweenUpByOne)
{
    dpl_acl_tcam_table *a = manual({2});
    dpl_acl_tcam_table *b = manual({3, 4});
    ASSERT_EQ(dpl_reef_acl_tcam_block_expand(0, CSL_TCAM_MAP_IACL_160, a), 0);
    EXPECT_EQ(blocks(a), (std::vector<uint32_t>{2, 3}));
    EXPECT_EQ(blocks(b), (std::vector<uint32_t>{4, 5}));
    EXPECT_EQ(a->size, 256u);
    ASSERT_EQ(g_block_moves.size(), 2u);
    EXPECT_EQ(g_block_moves[0].dst_block, 5u); // the top one first, into the free block
    EXPECT_EQ(g_block_moves[0].table, b);
    EXPECT_EQ(g_block_moves[1].dst_block, 4u);
    EXPECT_EQ(g_block_moves[1].last, 128u);
    EXPECT_EQ(dpl_reef_acl_tcam_block_get(0, 3)->table, a);
    uint32_t bitmap = 0;
    ASSERT_EQ(tide_sim_reg_peek(0, 4, atolreef_cib_acl_core_tcamblock_cfg1_reg.addr[0], &bitmap), 0);
    EXPECT_EQ(bitmap, 0x3Cu);
}

TEST_F(AclTcam, ExpansionIntoAFreeBlockBelowMovesTheTablesOwnBlocksDownToo)
{
    dpl_acl_tcam_table *filler = manual({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    dpl_acl_tcam_table *b = manual({14});
    dpl_acl_tcam_table *a = manual({15});
    ASSERT_EQ(dpl_reef_acl_tcam_destroy(0, CSL_TCAM_MAP_IACL_160, filler), 0);
    forget(filler);
    dpl_acl_tcam_table *low = manual({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
    (void)low;
    // Free: 12, 13.  Nothing above a; down from 14: 13 is free.
    ASSERT_EQ(dpl_reef_acl_tcam_block_expand(0, CSL_TCAM_MAP_IACL_160, a), 0);
    EXPECT_EQ(blocks(b), (std::vector<uint32_t>{13}));
    EXPECT_EQ(blocks(a), (std::vector<uint32_t>{14, 15}));
    ASSERT_EQ(g_block_moves.size(), 2u);
    EXPECT_EQ(g_block_moves[0].table, b);
    EXPECT_EQ(g_block_moves[1].table, a);
    EXPECT_EQ(g_block_moves[1].dst_block, 14u);
}

} // namespace
