// The allocators of the replication engine: a bit per root id of the id
// plan, per leaf and per group slot of the shared lists.  Every allocator
// is a scan from the lowest id for the first clear bit.  The callers hold
// the chip's MCC mutex.
#include <algorithm>
#include <cstring>

#include "dpl/reef/mcc/dpl_reef_mcc.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_mcc.h"

extern "C" {
u8 *g_mcc_mrt_used[SHR_MAX_CHIPS];
u8 *g_mcc_mlib_used[SHR_MAX_CHIPS];
u8 *g_mcc_db_mrt_used[SHR_MAX_CHIPS];
}

namespace {

// Root ids of each table type.
struct IdRange {
    u32 first, last;
};
constexpr IdRange kTypeRange[MCC_TYPE_COUNT] = {
    {0, 7}, {8, 11}, {12, 15}, {16, 1023}, {1024, 2047}, {2048, 2175},
};

// The siblings have one leaf and one group slot; their tables are not in
// this build, so nothing reaches these but the allocators' own checks.
constexpr dpl_reef_mcc_limits kSiblingLimits = {DPL_MCC_MRT_IDS - 1, 1, 1, DPL_MCC_COPY_MAX + 1};

struct Bitmap {
    u8 *(&maps)[SHR_MAX_CHIPS];
    u32 bits;
    const char *tag;
};
const Bitmap kMrt{g_mcc_mrt_used, DPL_MCC_MRT_IDS, "mcc_mrt_size"};
const Bitmap kMlib{g_mcc_mlib_used, DPL_MCC_MLIB_BITS, "mcc_mlib_size"};
const Bitmap kDb{g_mcc_db_mrt_used, DPL_MCC_MRT_IDS, "mcc_db_mrt_size"};

bool _test(const u8 *map, u32 id)
{
    return ((map[id / 8] >> (id % 8)) & 1) != 0;
}

// Marks an id; -17 before the bitmaps exist, -4 beyond them.
i32 _mark(u32 chip_id, const Bitmap &b, u32 id, bool used)
{
    u8 *map = chip_id < SHR_MAX_CHIPS ? b.maps[chip_id] : nullptr;
    if (map == nullptr) {
        return SHR_E_INIT;
    }
    if (id >= b.bits) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "id %u is out of range,max %u\n", id, b.bits - 1);
        return SHR_E_PARAM;
    }
    if (used) {
        map[id / 8] |= static_cast<u8>(1u << (id % 8));
    } else {
        map[id / 8] &= static_cast<u8>(~(1u << (id % 8)));
    }
    return 0;
}

i32 _status(u32 chip_id, const Bitmap &b, u32 id)
{
    const u8 *map = chip_id < SHR_MAX_CHIPS ? b.maps[chip_id] : nullptr;
    return map != nullptr && id < b.bits && _test(map, id) ? 1 : 0;
}

// The first clear bit from `first` to `last`; -14 when none.
i32 _scan(u32 chip_id, const Bitmap &b, u32 first, u32 last, u32 *id)
{
    const u8 *map = b.maps[chip_id];
    if (map == nullptr) {
        return SHR_E_INIT;
    }
    for (u32 i = first; i <= last && i < b.bits; i++) {
        if (!_test(map, i)) {
            *id = i;
            return 0;
        }
    }
    return SHR_E_RESOURCE;
}

u32 _free_count(u32 chip_id, const Bitmap &b, u32 first, u32 last)
{
    const u8 *map = b.maps[chip_id];
    u32 n = 0;
    for (u32 i = first; map != nullptr && i <= last && i < b.bits; i++) {
        n += _test(map, i) ? 0 : 1;
    }
    return n;
}

} // namespace

extern "C" {

const dpl_reef_mcc_limits *dpl_reef_mcc_limits_get(u32 chip_id)
{
    switch (shr_chip_type_get(chip_id)) {
    case SHR_CHIP_TYPE_ATOLREEF:
        return &g_atolreef_mcc_limits;
    case SHR_CHIP_TYPE_KELPREEF:
    case SHR_CHIP_TYPE_KELPREEF2:
        return &kSiblingLimits;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "chip id %d is not support\n", (int)chip_id);
        return nullptr;
    }
}

i32 dpl_reef_mcc_alloc_init(u32 chip_id, u32 flags)
{
    if ((flags & 1) == 0) {
        return 0; // bit 1, the hardware part, has nothing to do
    }
    for (const Bitmap *b : {&kMrt, &kMlib, &kDb}) {
        if (b->maps[chip_id] != nullptr) {
            continue;
        }
        b->maps[chip_id] = static_cast<u8 *>(xsal_malloc((b->bits + 7) / 8, b->tag, SHR_MOD_MCC));
        if (b->maps[chip_id] == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "%s malloc fail\n", b->tag);
            dpl_reef_mcc_alloc_deinit(chip_id);
            return SHR_E_MEMORY;
        }
        memset(b->maps[chip_id], 0, (b->bits + 7) / 8);
    }
    return 0;
}

i32 dpl_reef_mcc_alloc_deinit(u32 chip_id)
{
    for (const Bitmap *b : {&kMrt, &kMlib, &kDb}) {
        xsal_mem_free(b->maps[chip_id]);
        b->maps[chip_id] = nullptr;
    }
    return 0;
}

i32 dpl_reef_mcc_mrt_node_get(u32 chip_id, const mcc_mrt_req *req, u32 *mid)
{
    const dpl_reef_mcc_limits *lim = dpl_reef_mcc_limits_get(chip_id);
    if (lim == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    if (req == nullptr || mid == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (req->type >= MCC_TYPE_COUNT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "table type %u is out of range,max %u\n", req->type, MCC_TYPE_COUNT - 1);
        return SHR_E_PARAM;
    }
    if (req->use_mid == 1) {
        if (req->mid > lim->mrt_id_max) {
            SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "copy_req->mid %d\n", (int)req->mid);
            return SHR_E_PARAM;
        }
        if (dpl_reef_mcc_mrt_node_use_status_get(chip_id, req->mid) == 1) {
            SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "copy_req->mid is be used %d\n", (int)req->mid);
            return SHR_E_PARAM;
        }
        *mid = req->mid;
        return 0;
    }
    const IdRange r = kTypeRange[req->type];
    if (r.last > lim->mrt_id_max) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "mrt_root_index %d is out of range,max %d\n", (int)r.last,
                    (int)lim->mrt_id_max);
        return SHR_E_PARAM;
    }
    const i32 rc = _scan(chip_id, kMrt, r.first, r.last, mid);
    if (rc == SHR_E_RESOURCE) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "i %d, max_index %d\n", (int)r.last + 1, (int)r.last);
    }
    return rc;
}

i32 dpl_reef_mcc_mrt_node_get1(u32 chip_id, const mcc_mrt_req *req, u32 *mid)
{
    return dpl_reef_mcc_mrt_node_get(chip_id, req, mid);
}

i32 dpl_reef_mcc_mlib_node_get(u32 chip_id, u32 *leaf_index)
{
    const dpl_reef_mcc_limits *lim = dpl_reef_mcc_limits_get(chip_id);
    if (lim == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    return leaf_index == nullptr ? SHR_E_NULL_PTR : _scan(chip_id, kMlib, 0, lim->mlib_count - 1, leaf_index);
}

i32 dpl_reef_mcc_db_mrt_get(u32 chip_id, u32 *db_id)
{
    const dpl_reef_mcc_limits *lim = dpl_reef_mcc_limits_get(chip_id);
    if (lim == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    return db_id == nullptr ? SHR_E_NULL_PTR : _scan(chip_id, kDb, 0, lim->db_count - 1, db_id);
}

i32 dpl_reef_mcc_mrt_node_use_set(u32 chip_id, u32 mid)
{
    return _mark(chip_id, kMrt, mid, true);
}

i32 dpl_reef_mcc_mrt_node_unuse_set(u32 chip_id, u32 mid)
{
    return _mark(chip_id, kMrt, mid, false);
}

i32 dpl_reef_mcc_mlib_node_use_set(u32 chip_id, u32 leaf_index)
{
    return _mark(chip_id, kMlib, leaf_index, true);
}

i32 dpl_reef_mcc_mlib_node_unuse_set(u32 chip_id, u32 leaf_index)
{
    return _mark(chip_id, kMlib, leaf_index, false);
}

i32 dpl_reef_mcc_db_mrt_node_use_set(u32 chip_id, u32 db_id)
{
    return _mark(chip_id, kDb, db_id, true);
}

i32 dpl_reef_mcc_db_mrt_unuse_set(u32 chip_id, u32 db_id)
{
    return _mark(chip_id, kDb, db_id, false);
}

i32 dpl_reef_mcc_mrt_node_use_status_get(u32 chip_id, u32 mid)
{
    return _status(chip_id, kMrt, mid);
}

i32 dpl_reef_mcc_mlib_node_use_status_get(u32 chip_id, u32 leaf_index)
{
    return _status(chip_id, kMlib, leaf_index);
}

i32 dpl_reef_mcc_db_mrt_use_status_get(u32 chip_id, u32 db_id)
{
    return _status(chip_id, kDb, db_id);
}

i32 dpl_reef_mcc_mlib_unuse_node_cnt_get(u32 chip_id, u32 *count)
{
    const dpl_reef_mcc_limits *lim = dpl_reef_mcc_limits_get(chip_id);
    if (lim == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    if (count == nullptr) {
        return SHR_E_NULL_PTR;
    }
    *count = _free_count(chip_id, kMlib, 0, lim->mlib_count - 1);
    return 0;
}

i32 dpl_reef_mcc_hw_mlib_node_num_get(u32 chip_id, u32 *count)
{
    return dpl_reef_mcc_mlib_unuse_node_cnt_get(chip_id, count);
}

i32 dpl_reef_mcc_mrt_unuse_node_cnt_get(u32 chip_id, u32 type, u32 *count)
{
    const dpl_reef_mcc_limits *lim = dpl_reef_mcc_limits_get(chip_id);
    if (lim == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    if (count == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (type >= MCC_TYPE_COUNT) {
        return SHR_E_PARAM;
    }
    const IdRange r = kTypeRange[type];
    *count = r.first > lim->mrt_id_max ? 0 : _free_count(chip_id, kMrt, r.first, std::min(r.last, lim->mrt_id_max));
    return 0;
}

i32 dpl_reef_mcc_db_mrt_unuse_cnt_get(u32 chip_id, u32 *count)
{
    const dpl_reef_mcc_limits *lim = dpl_reef_mcc_limits_get(chip_id);
    if (lim == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    if (count == nullptr) {
        return SHR_E_NULL_PTR;
    }
    *count = _free_count(chip_id, kDb, 0, lim->db_count - 1);
    return 0;
}

} // extern "C"
