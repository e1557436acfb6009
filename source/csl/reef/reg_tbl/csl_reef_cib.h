/*
 * The chip catalogue: records of modules, registers, tables and fields,
 * generated from the chip description, and the engine that the generated
 * typed accessors stand on.
 */
#ifndef TIDE_CSL_REEF_CIB_H
#define TIDE_CSL_REEF_CIB_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

#define CIB_MODULE_COUNT 58u
#define CIB_REG_LIST_SLOTS 4467u
#define CIB_TAB_LIST_SLOTS 557u
#define CIB_REG_ID_MAX 4506u
#define CIB_TAB_ID_MAX 563u
#define CIB_RSV_FIELD_ID 18u
#define CIB_NO_RANGE 0xFFFFFFFEu

/* Access types of fields. */
enum cib_access {
    CIB_ACC_RW = 0, CIB_ACC_RO = 1, CIB_ACC_RWW = 2, CIB_ACC_RC_H = 3, CIB_ACC_WC = 4, CIB_ACC_RC_P = 5,
    CIB_ACC_WC_H = 6, CIB_ACC_W1C_H = 7, CIB_ACC_IPSC = 8, CIB_ACC_IPSC2 = 9, CIB_ACC_IPSC_RC = 10,
    CIB_ACC_BPSC = 11, CIB_ACC_BPSC2 = 12, CIB_ACC_RW1C = 13, CIB_ACC_INTWC = 14, CIB_ACC_ELOGF = 15,
    CIB_ACC_ELOGF_RC = 16, CIB_ACC_ELOGL = 17, CIB_ACC_ELOGL_RC = 18, CIB_ACC_WRC = 19, CIB_ACC_TAB = 20,
    CIB_ACC_CAM = 21, CIB_ACC_COUNT = 22
};
extern const char *const g_cib_access_name[CIB_ACC_COUNT];

/* Table flags. */
#define CIB_TAB_NO_CACHE 2u  /* the table may not be cached */
#define CIB_TAB_INDIRECT 4u  /* reached through its engine only */
#define CIB_TAB_LAZY_IMAGE 8u /* a software image is made at the first write */
#define CIB_TAB_STAT 16u
#define CIB_TAB_TRACE 64u

/* Table kinds. */
#define CIB_KIND_DIRECT 0u
#define CIB_KIND_HASH 1u
#define CIB_KIND_TCAM 2u

/* One field: its place in a register or an entry. */
typedef struct cib_field_info {
    const char *name; /* "rsv" for a reserved piece */
    u32 field_id;     /* number of the global dictionary */
    u16 width;
    u16 low_bit;
    u16 class_;
    u8 access; /* enum cib_access */
} cib_field_info;

/* One member of a typed record: where it lies in the record and which
 * field record it stands for. */
typedef struct cib_member {
    u16 offset;
    u8 size; /* 1, 2, 4 or 8 bytes */
    u16 field;
} cib_member;

typedef struct cib_reg_info {
    const char *name;
    const u32 *addr; /* one LSW address per instance */
    const cib_field_info *fields; /* highest first */
    u32 attr;
    u16 a; /* instance count; 0 for a placeholder */
    u16 b; /* instance multiplier */
    u32 field_count;
    const cib_member *members; /* typed record, in mask-bit order */
    u32 member_count;
} cib_reg_info;

typedef struct cib_tab_mode {
    u16 reserved0;
    u16 width;
    u16 field_count;
    u16 reserved1;
    const cib_field_info *fields;
} cib_tab_mode;

typedef struct cib_tab_info {
    const char *name;
    const u32 *addr; /* base address per instance */
    const cib_tab_mode *modes;
    const void *reserved;
    u32 kind;
    u32 index_min;
    u32 index_max;
    u32 flags;
    u16 width;
    u16 inst_a;
    u16 inst_b;
    u16 mode_count;
    const cib_member *members;
    u32 member_count;
} cib_tab_info;

typedef struct cib_module_info {
    const char *name; /* with the prefix "cib_"; NULL for a module without content */
    u32 reserved0;
    u32 reserved1;
    u32 reg_first, reg_last; /* CIB_NO_RANGE for none */
    u32 tab_first, tab_last;
    u32 instances;
} cib_module_info;

extern const cib_reg_info *const g_atolreef_reg_list[CIB_REG_LIST_SLOTS];
extern const cib_tab_info *const g_atolreef_tab_list[CIB_TAB_LIST_SLOTS];
extern const cib_module_info atolreef_allmodule_list[CIB_MODULE_COUNT];
extern const u16 g_direct_tab_id_to_module_id[CIB_TAB_ID_MAX + 1];
/* Names of all 58 chip modules, without the prefix, also those without
 * content. */
extern const char *const g_cib_module_name[CIB_MODULE_COUNT];

/* Words and bytes of one entry of a table of `width` bits. */
static inline u32 cib_entry_words(u32 width)
{
    return (width + 31) / 32;
}

/* Bytes of one entry of a table, whole words. */
static inline u32 cib_tab_entry_bytes(const cib_tab_info *tab)
{
    return cib_entry_words(tab->width) * 4;
}

/* Entries of a table. */
static inline u32 cib_tab_depth(const cib_tab_info *tab)
{
    return tab->index_max + 1 - tab->index_min;
}

/* Id packing: bits 19:0 the register or table id, bits 31:20 the
 * instance; 0xFFF for all instances. */
#define CIB_ID_MASK 0xFFFFFu
#define CIB_INDEX_SHIFT 20u
#define CIB_ALL_INSTANCES 0xFFFu
#define CIB_ID(id, addr_index) (((u32)(addr_index) << CIB_INDEX_SHIFT) | ((u32)(id) & CIB_ID_MASK))

/* ---- the engine of the typed accessors ---------------------------------- */

/* Fields of a typed record into a word image.  `mask` NULL takes every
 * member; otherwise bit i of the mask (mask_bytes long) selects member i.
 * The OR of the statuses of the field helpers. */
int csl_reef_cib_record_to_data(const cib_field_info *fields, const cib_member *members, u32 member_count,
                                const void *record, u8 *data, const u8 *mask, u32 mask_bytes);
/* Every member of a typed record from a word image. */
int csl_reef_cib_data_to_record(const cib_field_info *fields, const cib_member *members, u32 member_count,
                                void *record, const u8 *data);

int csl_reef_cib_reg_record_get(u32 chip_id, u32 reg_id, u32 addr_index, u32 cib_module_id,
                                const cib_reg_info *reg, void *out);
int csl_reef_cib_reg_record_set(u32 chip_id, u32 reg_id, u32 addr_index, u32 cib_module_id,
                                const cib_reg_info *reg, const void *in, const u8 mask[4]);
int csl_reef_cib_tab_record_get(u32 chip_id, u32 tab_id, u32 addr_index, u32 index, const cib_tab_info *tab,
                                void *out);
int csl_reef_cib_tab_record_set(u32 chip_id, u32 tab_id, u32 addr_index, u32 index, const cib_tab_info *tab,
                                const void *in, const u64 mask[2]);

#ifdef __cplusplus
}

namespace tide::cib {

/* A field of a register or an entry: its lowest bit and width, with the
 * arithmetic of reading and writing it in a word or a wider number. */
struct Bits {
    using u128 = unsigned __int128;
    u16 low = 0;
    u16 width = 0;
    constexpr bool ok() const { return width != 0; }
    constexpr u128 mask() const { return width >= 128 ? ~u128{0} : ((u128{1} << width) - 1); }
    constexpr u64 get(u128 v) const { return static_cast<u64>((v >> low) & mask()); }
    constexpr u128 put(u128 v, u64 x) const { return (v & ~(mask() << low)) | ((u128{x} & mask()) << low); }
    constexpr u32 get32(u32 v) const { return static_cast<u32>(get(v)); }
    constexpr u32 put32(u32 v, u64 x) const { return static_cast<u32>(put(v, x)); }
    constexpr u64 max() const { return static_cast<u64>(mask()); }
};

/* A field of a register record by name; not ok() when the register (which
 * may be NULL) has no such field. */
Bits reg_field(const cib_reg_info *reg, const char *name);

/* The registers and fields an engine finds in its chip's catalogue; `ok`
 * turns false at the first one that is missing. */
struct CatalogueNeeds {
    u32 chip_id;
    bool ok = true;
    /* The register's record, its first address into `*addr`. */
    const cib_reg_info *reg(u32 reg_id, u32 *addr);
    Bits field(const cib_reg_info *reg, const char *name);
};

} // namespace tide::cib
#endif

#endif /* TIDE_CSL_REEF_CIB_H */
