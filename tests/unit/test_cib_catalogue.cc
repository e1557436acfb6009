// The generated catalogue: its records hold together, every name the
// features use is there, and the typed accessors move the right bits on the
// chip model.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "support/fixture.h"

using tide::test::SimChips;

namespace {

std::vector<const cib_field_info *> _fields_of_reg(const cib_reg_info *r)
{
    std::vector<const cib_field_info *> v;
    for (u32 i = 0; i < r->field_count; i++) {
        v.push_back(&r->fields[i]);
    }
    return v;
}

std::vector<const cib_field_info *> _fields_of_tab(const cib_tab_info *t)
{
    std::vector<const cib_field_info *> v;
    if (t->modes != nullptr) {
        for (u32 i = 0; i < t->modes[0].field_count; i++) {
            v.push_back(&t->modes[0].fields[i]);
        }
    }
    return v;
}

// Field records run from the highest bit down, cover the whole width without
// gap or overlap, and reserved pieces carry id 18.
void _check_records(const std::string &name, const std::vector<const cib_field_info *> &fields, u32 width)
{
    ASSERT_FALSE(fields.empty()) << name;
    u32 next = width;
    for (const cib_field_info *f : fields) {
        ASSERT_GT(f->width, 0) << name << "." << f->name;
        EXPECT_EQ(f->low_bit + f->width, next) << name << "." << f->name;
        next = f->low_bit;
        EXPECT_LE(f->width, 64) << name << "." << f->name;
        EXPECT_LT(f->access, CIB_ACC_COUNT) << name << "." << f->name;
        if (std::string(f->name) == "rsv") {
            EXPECT_EQ(f->field_id, CIB_RSV_FIELD_ID);
        } else {
            EXPECT_NE(f->field_id, CIB_RSV_FIELD_ID) << name << "." << f->name;
        }
    }
    EXPECT_EQ(next, 0u) << name;
}

// Members stand for distinct, non-reserved fields and fit their type.
void _check_members(const std::string &name, const cib_member *members, u32 count,
                    const std::vector<const cib_field_info *> &fields)
{
    std::set<u16> seen;
    for (u32 i = 0; i < count; i++) {
        ASSERT_LT(members[i].field, fields.size()) << name;
        const cib_field_info *f = fields[members[i].field];
        EXPECT_STRNE(f->name, "rsv") << name;
        EXPECT_TRUE(seen.insert(members[i].field).second) << name << "." << f->name;
        EXPECT_GE(members[i].size * 8u, f->width) << name << "." << f->name;
    }
}

TEST(CibCatalogue, RecordsHoldTogether)
{
    std::map<u32, std::string> addr_owner;
    std::map<u32, std::string> field_names; // field id -> name: one name per id
    u32 regs = 0, tabs = 0;
    for (u32 m = 0; m < CIB_MODULE_COUNT; m++) {
        const cib_module_info &mod = atolreef_allmodule_list[m];
        if (mod.name == nullptr) {
            continue;
        }
        EXPECT_EQ(std::string(mod.name), std::string("cib_") + g_cib_module_name[m]);
        if (mod.reg_first != CIB_NO_RANGE) {
            for (u32 id = mod.reg_first; id <= mod.reg_last && id < CIB_REG_LIST_SLOTS; id++) {
                const cib_reg_info *r = g_atolreef_reg_list[id];
                if (r == nullptr) {
                    continue;
                }
                regs++;
                const std::string name = r->name;
                EXPECT_EQ(name.rfind(g_cib_module_name[m], 0), 0u) << name;
                for (u32 k = 0; k < r->a; k++) {
                    EXPECT_EQ(r->addr[k] % 4, 0u) << name;
                    EXPECT_TRUE(addr_owner.emplace(r->addr[k], name).second)
                        << name << " shares 0x" << std::hex << r->addr[k] << " with " << addr_owner[r->addr[k]];
                }
                const auto fields = _fields_of_reg(r);
                _check_records(name, fields, 32);
                _check_members(name, r->members, r->member_count, fields);
                for (const cib_field_info *f : fields) {
                    auto [it, fresh] = field_names.emplace(f->field_id, f->name);
                    EXPECT_EQ(it->second, f->name) << "field id " << f->field_id;
                }
            }
        }
        if (mod.tab_first != CIB_NO_RANGE) {
            for (u32 id = mod.tab_first; id <= mod.tab_last && id < CIB_TAB_LIST_SLOTS; id++) {
                const cib_tab_info *t = g_atolreef_tab_list[id];
                if (t == nullptr) {
                    continue;
                }
                tabs++;
                EXPECT_EQ(g_direct_tab_id_to_module_id[id], m) << t->name;
                EXPECT_GE(t->index_max, t->index_min) << t->name;
                const auto fields = _fields_of_tab(t);
                _check_records(t->name, fields, t->width);
                _check_members(t->name, t->members, t->member_count, fields);
            }
        }
    }
    EXPECT_GT(regs, 400u);
    EXPECT_GT(tabs, 250u);
    // Ids beyond the list are missing, never out of bounds.
    for (u32 id = 0; id < CIB_REG_LIST_SLOTS; id++) {
        if (g_atolreef_reg_list[id] != nullptr) {
            EXPECT_LE(id, CIB_REG_ID_MAX);
        }
    }
}

TEST(CibCatalogue, SampleEntries)
{
    const cib_reg_info *r = g_atolreef_reg_list[cib_mcc_en_mode_cfg];
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(cib_mcc_en_mode_cfg, 3738);
    EXPECT_STREQ(r->name, "mcc_en_mode_cfg");
    ASSERT_EQ(r->a, 1);
    EXPECT_EQ(r->addr[0], 0x1c00060u);
    const struct {
        const char *name;
        u16 low, width;
    } want[] = {{"rsv", 11, 21},
                {"mcc_tick_cp_full_cfg", 4, 7},
                {"mc_abnormal_drop_en", 3, 1},
                {"cp_full_drop_en_cfg", 2, 1},
                {"mirr_samp_en_cfg", 1, 1},
                {"lp_en_mode_cfg", 0, 1}};
    ASSERT_EQ(r->field_count, 6u);
    for (u32 i = 0; i < 6; i++) {
        EXPECT_STREQ(r->fields[i].name, want[i].name);
        EXPECT_EQ(r->fields[i].low_bit, want[i].low);
        EXPECT_EQ(r->fields[i].width, want[i].width);
    }

    const cib_tab_info *t = g_atolreef_tab_list[cib_mcc_mlib];
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(cib_mcc_mlib, 423);
    EXPECT_EQ(t->addr[0], 0x1c08000u);
    EXPECT_EQ(t->index_max + 1 - t->index_min, 2048u);
    EXPECT_EQ(t->width, 32);
    EXPECT_EQ(t->flags, 8u);
    // Members in record order, reserved piece left out.
    cib_mcc_mlib_t rec{};
    static_assert(sizeof(rec.leafid_next_ptr) == 2);
    EXPECT_EQ(cib_mcc_mlib__mlib_vld, 0);
    EXPECT_EQ(cib_mcc_mlib__udp_dport_en, 3);

    // The one record whose member order is not its field order.
    EXPECT_EQ(cib_lsw_hreg_cfg_lp_en__tm_act_gating_cfg, 0);
    EXPECT_EQ(cib_lsw_hreg_cfg_lp_en__cfg_lp_en, 1);
    EXPECT_EQ(cib_lsw_hreg_cfg_lp_en__tick_en_nempty_thr_cfg, 2);
    EXPECT_LT(cib_f_tm_act_gating_cfg, cib_f_cfg_lp_en);
    EXPECT_LT(cib_f_cfg_lp_en, cib_f_tick_en_nempty_thr_cfg);
    EXPECT_EQ(cib_f_rsv, 18);
}

// Every register, table and field that the features of the SDK name.
TEST(CibCatalogue, EveryNameTheFeaturesUseIsDescribed)
{
    std::map<std::string, std::vector<const cib_field_info *>> items;
    for (const cib_reg_info *r : g_atolreef_reg_list) {
        if (r != nullptr) {
            items["reg " + std::string(r->name)] = _fields_of_reg(r);
        }
    }
    for (const cib_tab_info *t : g_atolreef_tab_list) {
        if (t != nullptr) {
            items["tab " + std::string(t->name)] = _fields_of_tab(t);
        }
    }
    std::ifstream in(std::string(TIDE_TEST_DATA) + "/cib_names.txt");
    ASSERT_TRUE(in.good());
    std::string line;
    u32 names = 0;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        std::string kind, name, field;
        words >> kind >> name;
        const auto it = items.find(kind + " " + name);
        if (it == items.end()) {
            ADD_FAILURE() << "missing " << kind << " " << name;
            continue;
        }
        names++;
        while (words >> field) {
            bool found = false;
            for (const cib_field_info *f : it->second) {
                found |= field == f->name;
            }
            EXPECT_TRUE(found) << name << " lacks field " << field;
        }
    }
    EXPECT_GT(names, 700u);
}

// ---- accessors on the chip model ---------------------------------------------------

class CibAccess : public SimChips {
protected:
    CibAccess() : SimChips(1, 1) {}

    tide_sim_stats stats()
    {
        tide_sim_stats s{};
        tide_sim_stats_get(0, &s);
        return s;
    }
};

TEST_F(CibAccess, WholeRecordWritesWithoutReading)
{
    cib_mcc_en_mode_cfg_t rec{};
    rec.mcc_tick_cp_full_cfg = 0x55;
    rec.lp_en_mode_cfg = 1;
    u8 all[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    const tide_sim_stats before = stats();
    ASSERT_EQ(csl_reef_cib_mcc_en_mode_cfg_set(0, 0, &rec, all), 0);
    const tide_sim_stats after = stats();
    EXPECT_EQ(after.hook_reads - before.hook_reads, 0u);
    EXPECT_EQ(after.hook_writes - before.hook_writes, 1u);
    uint32_t word = 0;
    ASSERT_EQ(tide_sim_reg_peek(0, 4, 0x1c00060, &word), 0);
    EXPECT_EQ(word, (0x55u << 4) | 1u);
}

TEST_F(CibAccess, OneFieldIsReadChangedAndWrittenBack)
{
    ASSERT_EQ(tide_sim_reg_poke(0, 4, 0x1c00060, (0x7Fu << 4) | 0xF), 0);
    cib_mcc_en_mode_cfg_t rec{};
    rec.mirr_samp_en_cfg = 0;
    rec.mcc_tick_cp_full_cfg = 0; // not selected: stays
    u8 mask[4] = {};
    mask[cib_mcc_en_mode_cfg__mirr_samp_en_cfg / 8] |= 1u << (cib_mcc_en_mode_cfg__mirr_samp_en_cfg % 8);
    const tide_sim_stats before = stats();
    ASSERT_EQ(csl_reef_cib_mcc_en_mode_cfg_set(0, 0, &rec, mask), 0);
    const tide_sim_stats after = stats();
    EXPECT_EQ(after.hook_reads - before.hook_reads, 1u);
    EXPECT_EQ(after.hook_writes - before.hook_writes, 1u);
    uint32_t word = 0;
    ASSERT_EQ(tide_sim_reg_peek(0, 4, 0x1c00060, &word), 0);
    EXPECT_EQ(word, (0x7Fu << 4) | 0xDu);
    cib_mcc_en_mode_cfg_t back{};
    ASSERT_EQ(csl_reef_cib_mcc_en_mode_cfg_get(0, 0, &back), 0);
    EXPECT_EQ(back.mcc_tick_cp_full_cfg, 0x7F);
    EXPECT_EQ(back.mirr_samp_en_cfg, 0);
    EXPECT_EQ(back.lp_en_mode_cfg, 1);
    // A value wider than its field is refused.
    rec.mirr_samp_en_cfg = 2;
    EXPECT_NE(csl_reef_cib_mcc_en_mode_cfg_set(0, 0, &rec, mask), 0);
    EXPECT_NE(csl_reef_cib_mcc_en_mode_cfg_set(0, 0, nullptr, mask), 0);
}

TEST_F(CibAccess, TableEntriesAndTheirImage)
{
    cib_mcc_mlib_t rec{};
    rec.mlib_vld = 1;
    rec.leafid_next_ptr = 0xABC;
    rec.udp_dport_en = 1;
    u64 all[2] = {~0ull, ~0ull};
    ASSERT_EQ(csl_reef_cib_mcc_mlib_set(0, 0, 5, &rec, all), 0);
    uint32_t word = 0;
    ASSERT_EQ(tide_sim_reg_peek(0, 4, 0x1c08000 + 5 * 4, &word), 0);
    EXPECT_EQ(word, (1u << 14) | (0xABCu << 1) | 1u);
    // The table makes its image at the first write: entry 5 is there,
    // entry 6 reads as zero from it.
    u8 data[4] = {};
    ASSERT_EQ(csl_reef_tab_get_direct(0, cib_mcc_mlib, 5, data, 4, CSL_TAB_IMAGE), 0);
    EXPECT_EQ(data[0], static_cast<u8>(word));
    u8 other[4] = {1, 1, 1, 1};
    ASSERT_EQ(csl_reef_tab_get_direct(0, cib_mcc_mlib, 6, other, 4, CSL_TAB_IMAGE), 0);
    EXPECT_EQ(other[0] | other[1] | other[2] | other[3], 0);
    // One field through the mask; the others keep their values.
    cib_mcc_mlib_t change{};
    change.next_vld = 1;
    u64 one[2] = {1ull << cib_mcc_mlib__next_vld, 0};
    ASSERT_EQ(csl_reef_cib_mcc_mlib_set(0, 0, 5, &change, one), 0);
    cib_mcc_mlib_t back{};
    ASSERT_EQ(csl_reef_cib_mcc_mlib_get(0, 0, 5, &back), 0);
    EXPECT_EQ(back.next_vld, 1);
    EXPECT_EQ(back.leafid_next_ptr, 0xABC);
    EXPECT_EQ(back.udp_dport_en, 1);
    // An index equal to the depth is refused; an instance the table does not
    // have as well.
    EXPECT_NE(csl_reef_cib_mcc_mlib_set(0, 0, 2048, &rec, all), 0);
    EXPECT_NE(csl_reef_cib_mcc_mlib_set(0, 1, 0, &rec, all), 0);
}

TEST_F(CibAccess, RegistersByIdAndInstances)
{
    EXPECT_EQ(csl_reef_reg_set_u32(0, CIB_ID(cib_lsw_hreg_test_reg, 0), 0x5A5A5A5A), 0);
    u32 v = 0;
    EXPECT_EQ(csl_reef_reg_get_u32(0, cib_lsw_hreg_test_reg, &v), 0);
    EXPECT_EQ(v, 0x5A5A5A5Au);
    // The complement test register.
    EXPECT_EQ(csl_reef_reg_set_u32(0, cib_lsw_hreg_test_reg_n, 0x5A5A5A5A), 0);
    EXPECT_EQ(csl_reef_reg_get_u32(0, cib_lsw_hreg_test_reg_n, &v), 0);
    EXPECT_EQ(v, 0xA5A5A5A5u);
    // An instance beyond the count, an id beyond the list, a short buffer.
    EXPECT_EQ(csl_reef_reg_set_u32(0, CIB_ID(cib_lsw_hreg_test_reg, 1), 1), -6);
    EXPECT_EQ(csl_reef_reg_set_u32(0, 4467, 1), -7);
    EXPECT_EQ(csl_reef_reg_get_u32(0, 4467, &v), -2);
    EXPECT_EQ(csl_reef_reg_set_u32(0, 4507, 1), -4);
    u8 three[3] = {};
    EXPECT_EQ(csl_reef_reg_set(0, cib_lsw_hreg_test_reg, three, 3), -4);
    // All instances at once.
    const cib_reg_info *r = g_atolreef_reg_list[cib_mac_port_enable_cfg];
    ASSERT_NE(r, nullptr);
    ASSERT_GT(r->a, 1);
    EXPECT_EQ(csl_reef_reg_set_u32(0, CIB_ID(cib_mac_port_enable_cfg, CIB_ALL_INSTANCES), 0x3), 0);
    for (u32 k = 0; k < r->a; k++) {
        uint32_t word = 0;
        ASSERT_EQ(tide_sim_reg_peek(0, 4, r->addr[k], &word), 0);
        EXPECT_NE(word, 0u) << k;
    }
}

} // namespace
