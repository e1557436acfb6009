#include "app/tided/bootstrap_vlan.h"

#include <tide/base.h>

namespace {

// The default row of a new VLAN, shared by every VLAN made here.
constexpr uint32_t kRow = 0;

int32_t _field(uint32_t chip, const char *table, uint32_t index, const char *field, uint64_t value)
{
    base_field_op op{};
    op.name = table;
    op.kind = 2; // table by name
    op.start = index;
    op.count = 1;
    op.field_name = field;
    op.data = reinterpret_cast<uint8_t *>(&value);
    op.data_bytes = sizeof(value);
    return base_api_field_set(chip, &op);
}

} // namespace

extern "C" int32_t bootstrap_vlan(uint32_t chip, uint16_t vid, uint32_t ports, uint32_t untagged)
{
    struct Write {
        const char *table;
        uint32_t index;
        const char *field;
        uint64_t value;
    };
    const Write writes[] = {
        {"ipro_ivlan_tbl", kRow, "vld", 1},
        {"ipro_ivlan_tbl", kRow, "mac_lrn_mode", 1},
        {"ipro_ivlan_tbl", kRow, "unuc_broad", 1},
        {"ipro_ivlan_tbl", kRow, "unmc_broad", 1},
        {"ipro_ivlan_tbl", kRow, "bc_broad", 1},
        {"epro_evlan_table", kRow, "vld", 1},
        {"ipro_vbmp_tbl", vid, "portbit_map", ports},
        {"epro_vlanbitmap_table", vid, "portbitmap", ports},
        {"epro_vlanbitmap_table", vid, "utport_bitmap", untagged & ports},
        {"ipro_vmap_tbl", vid, "vlan_idx", kRow},
        {"ipro_vmap_tbl", vid, "vld", 1},
    };
    for (const Write &w : writes) {
        const int32_t rc = _field(chip, w.table, w.index, w.field, w.value);
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}
