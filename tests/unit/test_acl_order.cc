// Priority order is a property of every state: a random sequence of
// inserts, deletes and priority changes over several groups in automatic
// mode, whose tables grow into other tables' blocks and give blocks back,
// keeps after every operation
//   - every installed entry in a row whose logical order (ascending block
//     id, then row) follows its priority,
//   - the model's rows equal to the entries (each entry's row valid with
//     its key), and no valid row without an entry;
// and every insert moves at most the nearest run of neighbours on one
// side, each by half the free gap beyond it (recorded per insert).
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <unordered_map>
#include <vector>

#include "dpl/reef/acl/dpl_reef_acl.h"
#include "support/acl_fixture.h"
#include "support/wait.h"

using namespace tide::test;

namespace {

struct Move {
    uint32_t from, to;
};
std::vector<Move> g_moves;

int32_t _recording_move(uint32_t chip_id, dpl_acl_tcam_table *t, uint32_t from, uint32_t to)
{
    g_moves.push_back({from, to});
    return _dpl_reef_acl_move_entry(chip_id, t, from, to);
}

// What the rule says an insert of `want` (priority + 1) does to `keys`,
// the slots before it: how many neighbours move, by how much and which
// way (+1 up, -1 down), and the range the new slot lies in.
struct Expect {
    uint32_t moves = 0;
    uint32_t shift = 0;
    int dir = 0;
    uint32_t first = 0, last = 0;
};
Expect _expect(const std::vector<uint32_t> &keys, uint32_t want)
{
    const uint32_t size = static_cast<uint32_t>(keys.size());
    uint32_t low = 0, high = size;
    for (uint32_t i = 0; i < size; i++) {
        if (keys[i] != 0 && keys[i] < want) {
            low = i + 1;
        }
        if (keys[i] != 0 && keys[i] > want) {
            high = i;
            break;
        }
    }
    for (uint32_t i = low; i < high; i++) {
        if (keys[i] == 0) {
            return Expect{0, 0, 0, i, i}; // the window's lowest free slot
        }
    }
    int64_t d = static_cast<int64_t>(low) - 1;
    uint32_t down_dist = 0, down_len = 0;
    for (; d >= 0 && keys[d] != 0; d--) {
        down_dist++;
    }
    const bool down = d >= 0;
    for (; d >= 0 && keys[d] == 0; d--) {
        down_len++;
    }
    uint32_t u = high, up_dist = 0, up_len = 0;
    for (; u < size && keys[u] != 0; u++) {
        up_dist++;
    }
    const bool up = u < size;
    for (; u < size && keys[u] == 0; u++) {
        up_len++;
    }
    if (down && (!up || static_cast<int64_t>(down_dist) - down_len <= static_cast<int64_t>(up_dist) - up_len)) {
        const uint32_t shift = down_len - down_len / 2;
        return Expect{down_dist, shift, -1, low - shift, low - 1};
    }
    const uint32_t shift = up_len - up_len / 2;
    return Expect{up_dist, shift, +1, high, high + shift - 1};
}

class AclOrder : public AclChip {
protected:
    AclOrder() : AclChip(true) {}

    // Entries of the test: id -> group and MAC, and the ids installed or
    // not, for picking at random.
    struct Live {
        uint32_t group;
        uint32_t mac; // the low word of its MAC source address
    };
    struct Pool {
        std::vector<uint32_t> ids;
        std::unordered_map<uint32_t, size_t> at;
        void add(uint32_t id)
        {
            at[id] = ids.size();
            ids.push_back(id);
        }
        void remove(uint32_t id)
        {
            const size_t i = at[id];
            at[ids.back()] = i;
            ids[i] = ids.back();
            ids.pop_back();
            at.erase(id);
        }
        uint32_t pick(std::mt19937_64 &rng) const { return ids.empty() ? 0 : ids[rng() % ids.size()]; }
    };

    // The order and the rows, checked against the model: the software's
    // view of each group (its entries' places and the table's blocks)
    // against every row of every block.
    void check_all(const std::vector<uint32_t> &groups, const std::unordered_map<uint32_t, Live> &live)
    {
        std::vector<uint32_t> owner(kBlocks * kRowsPerBlock, 0); // entry at a row
        for (uint32_t g : groups) {
            const acl_group_info gi = group_info(g);
            uint32_t offset[kBlocks];
            std::fill(std::begin(offset), std::end(offset), 0xFFFFFFFFu);
            for (uint32_t b = 0; b < gi.block_num; b++) {
                offset[gi.block_ids[b]] = b * kRowsPerBlock;
            }
            std::vector<std::pair<uint32_t, uint32_t>> order; // (logical, priority)
            const dpl_acl_group *grp = dpl_reef_acl_group_find(0, g);
            shr_avl_traverser t;
            for (void *p = shr_avl_t_first(&t, grp->entry_tree); p != nullptr; p = shr_avl_t_next(&t)) {
                const auto *e = static_cast<const dpl_acl_entry *>(p);
                if (!(e->state & ACL_ENTRY_INSTALLED)) {
                    continue;
                }
                ASSERT_NE(offset[e->block], 0xFFFFFFFFu) << "entry " << e->entry_id << " in a block of another table";
                ASSERT_EQ(offset[e->block] + e->index_in_block, e->logical_index) << "entry " << e->entry_id;
                order.push_back({e->logical_index, e->priority});
                owner[e->block * kRowsPerBlock + e->index_in_block] = e->entry_id;
            }
            ASSERT_EQ(order.size(), gi.installed);
            std::sort(order.begin(), order.end());
            for (size_t i = 1; i < order.size(); i++) {
                ASSERT_LE(order[i - 1].second, order[i].second) << "group " << g << " row " << order[i].first;
            }
        }
        for (uint32_t b = 0; b < kBlocks; b++) {
            for (uint32_t i = 0; i < kRowsPerBlock; i++) {
                const RowKey k = row_key(0, b, i);
                const uint32_t id = owner[b * kRowsPerBlock + i];
                if (id == 0) {
                    ASSERT_FALSE(k.valid) << "row " << b << "." << i << " valid without an entry";
                    continue;
                }
                ASSERT_TRUE(k.valid) << "entry " << id << " not in the chip";
                ASSERT_EQ(bits_get(k.key, kSmacLow, 32), live.at(id).mac) << "row " << b << "." << i;
                ASSERT_EQ(bits_get(k.mask, kSmacLow, 32), 0xFFFFFFFFu);
                ASSERT_EQ(bits_get(k.key, 152, 8), 0xB7u); // tag 11, sub-tag 7
            }
        }
    }

    // The slots of a group's table as the next insert finds them: the free
    // block a full table takes comes at its end.
    std::vector<uint32_t> slots_before_insert(uint32_t g)
    {
        const dpl_acl_group *grp = dpl_reef_acl_group_find(0, g);
        if (grp->table == nullptr) {
            return std::vector<uint32_t>(grp->entry_num, 0);
        }
        dpl_acl_tcam_table *t = grp->table;
        t->move_entry = _recording_move;
        std::vector<uint32_t> keys(t->size);
        for (uint32_t i = 0; i < t->size; i++) {
            keys[i] = t->slots[i].key;
        }
        if (t->used == t->size) {
            keys.resize(keys.size() + kRowsPerBlock, 0);
        }
        return keys;
    }
};

TEST_F(AclOrder, EveryOperationKeepsPriorityOrderAndTheRowsAndInsertsMoveOnlyTheNearestRunByHalfItsGap)
{
    TIDE_TEST_SEED(seed, 20251124);
    std::mt19937_64 rng(seed);
    const std::vector<uint32_t> groups = {group(128), group(128), group(128)};
    std::unordered_map<uint32_t, Live> live;
    Pool installed_pool, idle_pool;
    uint32_t next_mac = 1;
    uint64_t inserts = 0, moved = 0, max_moves = 0, expansions = 0, shrinks = 0;
    constexpr uint32_t kOps = 2000;
    constexpr size_t kTarget = 700; // entries over all groups: room to grow into
    for (uint32_t op = 0; op < kOps; op++) {
        SCOPED_TRACE("operation " + std::to_string(op));
        const uint32_t r = static_cast<uint32_t>(rng() % 100);
        const bool grow = installed_pool.ids.size() < kTarget;
        if (r < (grow ? 60u : 35u)) {
            // An insert: a new entry, or an uninstalled one with a new
            // priority.
            const uint32_t g = groups[rng() % groups.size()];
            const uint32_t pri = static_cast<uint32_t>(rng() % 400);
            uint32_t id = idle_pool.pick(rng);
            if (id == 0 || live[id].group != g) {
                id = entry(g, pri, next_mac);
                live[id] = Live{g, next_mac++};
            } else {
                ASSERT_EQ(acl_api_entry_pri_set(0, id, pri), 0);
                idle_pool.remove(id);
            }
            const std::vector<uint32_t> keys = slots_before_insert(g);
            const uint32_t size_before = group_info(g).table_size;
            const Expect want = _expect(keys, pri + 1);
            g_moves.clear();
            ASSERT_EQ(acl_api_entry_install(0, id), 0);
            installed_pool.add(id);
            expansions += group_info(g).table_size > size_before && size_before != 0;
            // The moves of the rule, no other.
            inserts++;
            moved += g_moves.size();
            max_moves = std::max<uint64_t>(max_moves, g_moves.size());
            ASSERT_EQ(g_moves.size(), want.moves);
            for (const Move &m : g_moves) {
                ASSERT_EQ(static_cast<int64_t>(m.to) - m.from, want.dir * static_cast<int64_t>(want.shift));
            }
            const uint32_t at = info(id).logical_index;
            ASSERT_GE(at, want.first);
            ASSERT_LE(at, want.last);
        } else if (r < 80) {
            // A delete: uninstalled, or destroyed.
            const uint32_t id = installed_pool.pick(rng);
            if (id == 0) {
                continue;
            }
            const uint32_t g = live[id].group;
            const uint32_t size_before = group_info(g).table_size;
            installed_pool.remove(id);
            if (rng() % 2 == 0) {
                ASSERT_EQ(acl_api_entry_uninstall(0, id), 0);
                idle_pool.add(id);
            } else {
                ASSERT_EQ(acl_api_entry_destroy(0, id), 0);
                live.erase(id);
            }
            const uint32_t size_after = group_info(g).table_size;
            shrinks += size_after < size_before && size_after != 0;
        } else {
            // A priority change of an installed entry.
            const uint32_t id = installed_pool.pick(rng);
            if (id == 0) {
                continue;
            }
            ASSERT_EQ(acl_api_entry_pri_set(0, id, static_cast<uint32_t>(rng() % 400)), 0);
        }
        check_all(groups, live);
        if (HasFatalFailure()) {
            return;
        }
    }
    EXPECT_GT(expansions, 0u);
    EXPECT_GT(shrinks, 0u);
    RecordProperty("inserts", std::to_string(inserts));
    RecordProperty("moves_per_insert_x1000", std::to_string(moved * 1000 / std::max<uint64_t>(inserts, 1)));
    RecordProperty("max_moves", std::to_string(max_moves));
}

} // namespace
