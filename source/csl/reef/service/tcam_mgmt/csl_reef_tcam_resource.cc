// The TCAM resource of each chip: the block records, the map types and
// what each chip type allows of them, and the choice, allocation and
// release of blocks with their hardware settings.  Every change holds the
// chip's "tcam mgmt" lock; the hardware settings go through the acl_core
// wrappers.
#include <cstring>

#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"

extern "C" {

const csl_tcam_mgmt_info g_tcam_mgmt_info[CSL_TCAM_MAP_TYPE_COUNT] = {
    {"iacl-160", CSL_TCAM_MODE_160, 0}, {"iacl-320", CSL_TCAM_MODE_320, 0}, {"iacl-480", CSL_TCAM_MODE_320, 1},
    {"ipsg", CSL_TCAM_MODE_320, 0},     {"spa", CSL_TCAM_MODE_320, 0},      {"eacl-s", CSL_TCAM_MODE_320, 0},
    {"mff", CSL_TCAM_MODE_160, 0},      {"eacl-160", CSL_TCAM_MODE_160, 0}, {"eacl-320", CSL_TCAM_MODE_320, 0},
    {"eacl-480", CSL_TCAM_MODE_320, 1}, {"cpacl-320", CSL_TCAM_MODE_320, 0}, {"cpacl-480", CSL_TCAM_MODE_320, 1},
    {"tt-mysta", CSL_TCAM_MODE_160, 0}, {"tt-ip", CSL_TCAM_MODE_160, 0},    {"tt-srv6", CSL_TCAM_MODE_160, 0},
    {"p-plus-v", CSL_TCAM_MODE_80, 0},  {"vacl-80", CSL_TCAM_MODE_80, 0},   {"vacl-160", CSL_TCAM_MODE_160, 0},
    {"vacl-320", CSL_TCAM_MODE_320, 0}, {"vt-160", CSL_TCAM_MODE_160, 0},   {"vt-320", CSL_TCAM_MODE_320, 0},
};

csl_tcam_resource *g_tcam_resource[SHR_MAX_CHIPS];

} // extern "C"

namespace {

constexpr u32 bit(u32 n)
{
    return 1u << n;
}

// What a chip type makes of the map types: the usable ones, the
// unchangeable ones (their blocks never move), and the block counts.
struct ChipTcam {
    u32 usable;
    u32 unchangeable;
    u16 total;
    u16 fixed;
};

constexpr u32 kAtolreefUsable = bit(0) | bit(1) | bit(3) | bit(4) | bit(5) | bit(7) | bit(8) | bit(10) | bit(17) |
                                bit(18) | bit(19) | bit(20);
constexpr u32 kKelpreefUsable = (bit(7) - bit(1)) | (bit(19) - bit(8)); // 1 to 6, 8 to 18
constexpr ChipTcam kKelpreef = {kKelpreefUsable, bit(4) | bit(12) | bit(13) | bit(14) | bit(15) | bit(16), 32, 16};
// By chip type: none, kelpreef, kelpreef2, atolreef.
constexpr ChipTcam kChipTcam[4] = {
    {0, 0, 0, 0}, kKelpreef, kKelpreef, {kAtolreefUsable, bit(4) | bit(19) | bit(20), 16, 0},
};

constexpr u16 kInUseFlexible = 0xFFFF;
constexpr u16 kInUseFixed = 255;
constexpr u32 kBankAll = 0xFFFF;
constexpr u16 kFixedEntries = 128;
constexpr u16 kPairEntries = 128;

const ChipTcam *_chip_tcam(u32 chip_id)
{
    const u32 type = shr_chip_type_get(chip_id);
    return type > 0 && type < 4 ? &kChipTcam[type] : nullptr;
}

// Holds the chip's "tcam mgmt" lock for a scope.
class MgmtLock {
public:
    explicit MgmtLock(u32 chip_id) : lock_(g_tcam_mgmt_lock[chip_id])
    {
        if (lock_ != nullptr) {
            xsal_mutex_lock(lock_);
        }
    }
    ~MgmtLock()
    {
        if (lock_ != nullptr) {
            xsal_mutex_unlock(lock_);
        }
    }
    MgmtLock(const MgmtLock &) = delete;
    MgmtLock &operator=(const MgmtLock &) = delete;

private:
    xsal_mutex_t lock_;
};

// -4 for a map type this chip does not use, -24 for a chip type without
// TCAM.
int _csl_reef_tcam_map_type_check(u32 chip_id, u32 map_type)
{
    const ChipTcam *t = _chip_tcam(chip_id);
    if (t == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "ERR: the chip type %u has no tcam\n", shr_chip_type_get(chip_id));
        return SHR_E_NOT_SUPPORT;
    }
    if (map_type >= CSL_TCAM_MAP_TYPE_COUNT || (t->usable & bit(map_type)) == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "Wrong tcam map type %u for this chip!\n", map_type);
        return SHR_E_PARAM;
    }
    return 0;
}

bool _csl_reef_tcam_map_type_is_block_resouce_unchange(u32 chip_id, u32 map_type)
{
    const ChipTcam *t = _chip_tcam(chip_id);
    return t != nullptr && map_type < CSL_TCAM_MAP_TYPE_COUNT && (t->unchangeable & bit(map_type)) != 0;
}

u32 _csl_reef_tcam_block_flex_entry_num(u32 mode)
{
    switch (mode) {
    case CSL_TCAM_MODE_80:
        return 256;
    case CSL_TCAM_MODE_160:
        return 128;
    case CSL_TCAM_MODE_320:
        return 64;
    default:
        return 0;
    }
}

// A block back to the state of a free block.
void _record_reset(csl_tcam_block *b, bool fixed)
{
    *b = fixed ? csl_tcam_block{0, CSL_TCAM_MODE_320, 0, CSL_TCAM_MAP_NONE, 0, kFixedEntries}
               : csl_tcam_block{0, CSL_TCAM_MODE_UNSET, 0, CSL_TCAM_MAP_NONE, 0, 0};
}

csl_tcam_block *_record(csl_tcam_resource *res, u32 block_id)
{
    if (block_id >= res->total) {
        return nullptr;
    }
    return block_id < res->fixed ? &res->fixed_blocks[block_id] : &res->flex_blocks[block_id - res->fixed];
}

// The flexible block paired with fixed block `id` (480-bit kinds), or NULL.
csl_tcam_block *_pair(csl_tcam_resource *res, u32 id)
{
    return id < res->fixed && id < res->flexible ? &res->flex_blocks[id] : nullptr;
}

int _csl_reef_tcam_resource_sw_init(u32 chip_id)
{
    if (g_tcam_resource[chip_id] != nullptr) {
        return SHR_E_INIT;
    }
    const ChipTcam *t = _chip_tcam(chip_id);
    if (t == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    // The record and both block arrays in one allocation.
    const u64 bytes = sizeof(csl_tcam_resource) + t->total * sizeof(csl_tcam_block);
    auto *res = static_cast<csl_tcam_resource *>(xsal_malloc(bytes, "TCAM RESOURCE", SHR_MOD_TCAM_MGMT));
    if (res == nullptr) {
        return SHR_E_MEMORY;
    }
    memset(res, 0, bytes);
    res->total = t->total;
    res->fixed = t->fixed;
    res->flexible = static_cast<u16>(t->total - t->fixed);
    auto *blocks = reinterpret_cast<csl_tcam_block *>(res + 1);
    res->fixed_blocks = blocks;
    res->flex_blocks = blocks + t->fixed;
    for (u32 i = 0; i < res->total; i++) {
        _record_reset(&blocks[i], i < res->fixed);
    }
    g_tcam_resource[chip_id] = res;
    return 0;
}

bool _list_empty(const csl_tcam_block_node *head)
{
    return head->next == nullptr || head->next == head;
}

void _list_append(csl_tcam_block_node *head, csl_tcam_block_node *node)
{
    if (head->next == nullptr) {
        csl_reef_tcam_block_list_init(head);
    }
    node->prev = head->prev;
    node->next = head;
    head->prev->next = node;
    head->prev = node;
}

// The lowest free blocks that hold `wanted` entries of the map type:
// 480-bit kinds a free fixed block with its free pair, 320-bit kinds the
// fixed blocks first, others the flexible blocks only.
int _csl_reef_tcam_block_auto_free_get(u32 chip_id, u32 wanted, u32 map_type, u32 *ids, u32 *count)
{
    csl_tcam_resource *res = g_tcam_resource[chip_id];
    *count = 0;
    if (res == nullptr || (res->fixed_blocks == nullptr && res->flex_blocks == nullptr)) {
        return SHR_E_RESOURCE;
    }
    if (res->used >= res->total) {
        return SHR_E_FULL;
    }
    const csl_tcam_mgmt_info &info = g_tcam_mgmt_info[map_type];
    u32 sum = 0;
    auto take = [&](u32 id, u32 entries) {
        ids[(*count)++] = id;
        sum += entries;
        return sum >= wanted;
    };
    if (wanted == 0) {
        return 0;
    }
    bool enough = false;
    if (info.is_480) {
        for (u32 i = 0; i < res->fixed && !enough; i++) {
            const csl_tcam_block *pair = _pair(res, i);
            if (!res->fixed_blocks[i].used && pair != nullptr && !pair->used) {
                enough = take(i, res->fixed_blocks[i].entries);
            }
        }
    } else {
        for (u32 i = 0; i < res->fixed && !enough && info.mode == CSL_TCAM_MODE_320; i++) {
            if (!res->fixed_blocks[i].used) {
                enough = take(i, res->fixed_blocks[i].entries);
            }
        }
        const u32 capacity = _csl_reef_tcam_block_flex_entry_num(info.mode);
        for (u32 i = 0; i < res->flexible && !enough; i++) {
            if (!res->flex_blocks[i].used) {
                enough = take(res->fixed + i, capacity);
            }
        }
    }
    if (!enough) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "tcam: %u entries of %s do not fit the free blocks (%u)\n", wanted,
                    info.name, sum);
        *count = 0;
        return SHR_E_FULL;
    }
    return 0;
}

// The blocks a caller names: each below the total, free, of a kind the map
// type can take, and named once.
int _csl_reef_tcam_block_manual_free_get(u32 chip_id, u32 map_type, const u32 *ids, u32 count)
{
    csl_tcam_resource *res = g_tcam_resource[chip_id];
    if (res == nullptr) {
        return SHR_E_RESOURCE;
    }
    if (count > res->total) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "tcam: %u blocks asked, the chip has %u\n", count, res->total);
        return SHR_E_PARAM;
    }
    if (res->used >= res->total) {
        return SHR_E_FULL;
    }
    const csl_tcam_mgmt_info &info = g_tcam_mgmt_info[map_type];
    u32 seen = 0;
    for (u32 n = 0; n < count; n++) {
        const u32 id = ids[n];
        if (id >= res->total || (seen & bit(id)) != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "tcam: wrong block id %u\n", id);
            return SHR_E_PARAM;
        }
        seen |= bit(id);
        const bool fixed = id < res->fixed;
        const csl_tcam_block *pair = info.is_480 && fixed ? _pair(res, id) : nullptr;
        if (_record(res, id)->used || (pair != nullptr && pair->used)) {
            SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "tcam: block %u is in use\n", id);
            return SHR_E_RESOURCE;
        }
        if ((info.is_480 && (!fixed || pair == nullptr)) || (!info.is_480 && info.mode != CSL_TCAM_MODE_320 && fixed)) {
            SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "tcam: block %u cannot hold %s\n", id, info.name);
            return SHR_E_PARAM;
        }
    }
    return 0;
}

// Takes one block for the map type in hardware and in its record, and
// fills its node; the kind bit (and a pair's) go into `bitmap`.
int _block_take(u32 chip_id, csl_tcam_resource *res, u32 id, u32 map_type, csl_tcam_block_node *node, u32 *bitmap)
{
    const csl_tcam_mgmt_info &info = g_tcam_mgmt_info[map_type];
    csl_tcam_block *rec = _record(res, id);
    int rc = 0;
    if (id < res->fixed) {
        if (info.is_480) {
            const u32 pair_id = res->fixed + id;
            rc = csl_reef_tcam_op_acl_core_tcam_block_mode_set(chip_id, pair_id, CSL_TCAM_MODE_160);
            if (rc == 0) {
                rc = csl_reef_tcam_op_acl_core_tcam_block_bank_set(chip_id, pair_id, kBankAll);
            }
            if (rc != 0) {
                return rc;
            }
            *_pair(res, id) = csl_tcam_block{1, CSL_TCAM_MODE_160, 1, static_cast<u8>(map_type), kInUseFlexible,
                                             kPairEntries};
            *bitmap |= bit(pair_id);
            res->used++;
        }
        rec->used = 1;
        rec->map_type = static_cast<u8>(map_type);
        rec->is_480 = info.is_480;
        rec->in_use = kInUseFixed;
    } else {
        rc = csl_reef_tcam_op_acl_core_tcam_block_mode_set(chip_id, id, info.mode);
        if (rc != 0) {
            return rc;
        }
        *rec = csl_tcam_block{1, info.mode, 0, static_cast<u8>(map_type), kInUseFlexible,
                              static_cast<u16>(_csl_reef_tcam_block_flex_entry_num(info.mode))};
    }
    node->block_id = id;
    node->entries = rec->entries;
    return csl_reef_tcam_op_acl_core_tcam_block_bank_set(chip_id, id, kBankAll);
}

// Takes the blocks in order and appends their nodes; the kind bitmap is
// written once at the end, also after a failure for the blocks taken so
// far.
int _csl_reef_tcam_block_alloc(u32 chip_id, u32 count, const u32 *ids, u32 map_type, csl_tcam_block_node *head)
{
    csl_tcam_resource *res = g_tcam_resource[chip_id];
    u32 bitmap = 0;
    int rc = csl_reef_tcam_op_acl_core_tcamblock_bitmap_get(chip_id, map_type, &bitmap);
    if (rc != 0) {
        return rc;
    }
    for (u32 n = 0; n < count && rc == 0; n++) {
        auto *node = static_cast<csl_tcam_block_node *>(
            xsal_malloc(sizeof(csl_tcam_block_node), "TCAM MGMT", SHR_MOD_TCAM_MGMT));
        rc = node != nullptr ? _block_take(chip_id, res, ids[n], map_type, node, &bitmap) : SHR_E_MEMORY;
        if (rc != 0) {
            xsal_mem_free(node);
            break;
        }
        _list_append(head, node);
        res->used++;
        bitmap |= bit(ids[n]);
    }
    const int written = csl_reef_tcam_op_acl_core_tcamblock_bitmap_set(chip_id, map_type, bitmap);
    return rc != 0 ? rc : written;
}

// Gives one block of the list back: bank off, mode 0 for a flexible block,
// record reset, node freed, kind bit cleared.
int _csl_reef_tcam_block_del(u32 chip_id, u32 block_id, u32 map_type, csl_tcam_block_node *head)
{
    csl_tcam_resource *res = g_tcam_resource[chip_id];
    csl_tcam_block_node *node = nullptr;
    for (csl_tcam_block_node *n = head->next; n != nullptr && n != head; n = n->next) {
        if (n->block_id == block_id) {
            node = n;
            break;
        }
    }
    if (node == nullptr || _record(res, block_id) == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "tcam: block %u is not in the list\n", block_id);
        return SHR_E_NOT_FOUND;
    }
    u32 ids[2] = {block_id, 0};
    u32 n = 1;
    if (block_id < res->fixed && _record(res, block_id)->is_480) {
        ids[n++] = res->fixed + block_id;
    }
    int rc = 0;
    for (u32 i = 0; i < n && rc == 0; i++) {
        const bool fixed = ids[i] < res->fixed;
        rc = csl_reef_tcam_op_acl_core_tcam_block_bank_set(chip_id, ids[i], 0);
        if (rc == 0 && !fixed) {
            rc = csl_reef_tcam_op_acl_core_tcam_block_mode_set(chip_id, ids[i], CSL_TCAM_MODE_80);
        }
        if (rc == 0) {
            _record_reset(_record(res, ids[i]), fixed);
            res->used--;
        }
    }
    if (rc != 0) {
        return rc;
    }
    node->prev->next = node->next;
    node->next->prev = node->prev;
    xsal_mem_free(node);
    u32 bitmap = 0;
    rc = csl_reef_tcam_op_acl_core_tcamblock_bitmap_get(chip_id, map_type, &bitmap);
    for (u32 i = 0; i < n; i++) {
        bitmap &= ~bit(ids[i]);
    }
    return rc != 0 ? rc : csl_reef_tcam_op_acl_core_tcamblock_bitmap_set(chip_id, map_type, bitmap);
}

// The checks of every public call that changes blocks: the chip's
// record, the map type and the head.
int _change_check(u32 chip_id, u32 map_type, const csl_tcam_block_node *head)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    if (head == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "tcam: null block list!\n");
        return SHR_E_NULL_PTR;
    }
    const int rc = _csl_reef_tcam_map_type_check(chip_id, map_type);
    if (rc != 0) {
        return rc;
    }
    return g_tcam_resource[chip_id] != nullptr ? 0 : SHR_E_RESOURCE;
}

} // namespace

extern "C" {

void csl_reef_tcam_block_list_init(csl_tcam_block_node *head)
{
    if (head != nullptr) {
        head->block_id = 0;
        head->entries = 0;
        head->prev = head->next = head;
    }
}

int csl_reef_tcam_resource_init(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? _csl_reef_tcam_resource_sw_init(chip_id) : SHR_E_PARAM;
}

int csl_reef_tcam_resource_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    xsal_mem_free(g_tcam_resource[chip_id]);
    g_tcam_resource[chip_id] = nullptr;
    return 0;
}

csl_tcam_resource *csl_reef_tcam_resource_get(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_tcam_resource[chip_id] : nullptr;
}

int csl_reef_tcam_resource_fix_flex_block_num_get(u32 chip_id, u16 *fixed, u16 *flexible)
{
    if (chip_id >= SHR_MAX_CHIPS || fixed == nullptr || flexible == nullptr) {
        return SHR_E_PARAM;
    }
    const csl_tcam_resource *res = g_tcam_resource[chip_id];
    if (res == nullptr) {
        return SHR_E_RESOURCE;
    }
    *fixed = res->fixed;
    *flexible = res->flexible;
    return 0;
}

int csl_reef_tcam_fix_flex_block_num_get(u32 chip_id, u16 *fixed, u16 *flexible)
{
    return csl_reef_tcam_resource_fix_flex_block_num_get(chip_id, fixed, flexible);
}

int csl_reef_tcam_block_auto_alloc(u32 chip_id, u32 wanted, u32 map_type, csl_tcam_block_node *head)
{
    int rc = _change_check(chip_id, map_type, head);
    if (rc != 0 || wanted == 0) {
        return rc;
    }
    MgmtLock lock(chip_id);
    u32 ids[32];
    u32 count = 0;
    rc = _csl_reef_tcam_block_auto_free_get(chip_id, wanted, map_type, ids, &count);
    return rc != 0 ? rc : _csl_reef_tcam_block_alloc(chip_id, count, ids, map_type, head);
}

int csl_reef_tcam_block_manual_alloc(u32 chip_id, u32 count, const u32 *ids, u32 map_type,
                                     csl_tcam_block_node *head)
{
    int rc = _change_check(chip_id, map_type, head);
    if (rc == 0 && ids == nullptr && count > 0) {
        rc = SHR_E_NULL_PTR;
    }
    if (rc != 0) {
        return rc;
    }
    MgmtLock lock(chip_id);
    rc = _csl_reef_tcam_block_manual_free_get(chip_id, map_type, ids, count);
    return rc != 0 ? rc : _csl_reef_tcam_block_alloc(chip_id, count, ids, map_type, head);
}

int csl_reef_tcam_block_add(u32 chip_id, u32 block_id, u32 map_type, csl_tcam_block_node *head)
{
    return csl_reef_tcam_block_manual_alloc(chip_id, 1, &block_id, map_type, head);
}

int csl_reef_tcam_block_del(u32 chip_id, u32 block_id, u32 map_type, csl_tcam_block_node *head)
{
    int rc = _change_check(chip_id, map_type, head);
    if (rc != 0) {
        return rc;
    }
    MgmtLock lock(chip_id);
    return _csl_reef_tcam_block_del(chip_id, block_id, map_type, head);
}

int csl_reef_tcam_block_free(u32 chip_id, u32 map_type, csl_tcam_block_node *head)
{
    int rc = _change_check(chip_id, map_type, head);
    if (rc != 0) {
        return rc;
    }
    MgmtLock lock(chip_id);
    while (rc == 0 && !_list_empty(head)) {
        rc = _csl_reef_tcam_block_del(chip_id, head->next->block_id, map_type, head);
    }
    if (rc == 0) {
        csl_reef_tcam_block_list_init(head);
    }
    return rc;
}

int csl_reef_tcam_last_fixed_flexd_unchange_block_get(u32 chip_id, u32 *fixed, u32 *flexible)
{
    if (fixed == nullptr || flexible == nullptr) {
        return SHR_E_NULL_PTR;
    }
    csl_tcam_resource *res = csl_reef_tcam_resource_get(chip_id);
    if (res == nullptr) {
        return SHR_E_RESOURCE;
    }
    MgmtLock lock(chip_id);
    *fixed = 0xFFFFFFFFu;
    *flexible = static_cast<u32>(res->fixed) - 1;
    for (u32 id = 0; id < res->total; id++) {
        const csl_tcam_block *b = _record(res, id);
        if (b->used && _csl_reef_tcam_map_type_is_block_resouce_unchange(chip_id, b->map_type)) {
            *(id < res->fixed ? fixed : flexible) = id;
        }
    }
    return 0;
}

} // extern "C"
