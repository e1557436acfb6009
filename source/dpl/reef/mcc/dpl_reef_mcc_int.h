/*
 * What the units of the replication engine share: the chip's state, the
 * checks of a call, and the writes of the three tables with their log
 * lines.
 */
#ifndef TIDE_DPL_REEF_MCC_INT_H
#define TIDE_DPL_REEF_MCC_INT_H

#include <initializer_list>

#include "atolreef_cib.h"
#include "dpl/reef/mcc/dpl_reef_mcc.h"

/* The records of the replication trees of a chip: a slot per root id (one
 * more than the ids) and per leaf. */
typedef struct dpl_reef_mcc_table_info {
    mrt_root_node *root[DPL_MCC_MRT_IDS + 1];
    mleaf_node *leaf[DPL_MCC_MLIB_LEAVES];
} dpl_reef_mcc_table_info;

extern "C" {
extern dpl_reef_mcc_table_info *g_mcc_table_info[SHR_MAX_CHIPS];
extern u8 *g_mcc_mrt_used[SHR_MAX_CHIPS];
extern u8 *g_mcc_mlib_used[SHR_MAX_CHIPS];
extern u8 *g_mcc_db_mrt_used[SHR_MAX_CHIPS];
}

/* 0 when the chip can take a call of the engine: a chip of the registry
 * whose build describes the tables (-24 with a line otherwise) and whose
 * software init ran (-17). */
i32 _dpl_reef_mcc_chip_check(u32 chip_id);

/* A write mask of the members named; none: every member. */
struct McMask {
    u64 bits[2] = {};
    McMask(std::initializer_list<u32> members)
    {
        if (members.size() == 0) {
            bits[0] = bits[1] = ~0ull;
        }
        for (u32 m : members) {
            bits[m / 64] |= u64{1} << (m % 64);
        }
    }
};

/* The three tables, one entry each, with a log line on failure. */
i32 _dpl_reef_mcc_mrt_write(u32 chip_id, u32 mrt_index, cib_mcc_mrt_t entry, McMask mask);
i32 _dpl_reef_mcc_mlib_write(u32 chip_id, u32 leaf, cib_mcc_mlib_t entry, McMask mask);
i32 _dpl_reef_mcc_elb_write(u32 chip_id, u32 leaf, cib_epro_elb_table_t entry);
/* A leaf and its edit written as zeros. */
i32 _dpl_reef_mcc_leaf_clear(u32 chip_id, u32 leaf);

#endif /* TIDE_DPL_REEF_MCC_INT_H */
