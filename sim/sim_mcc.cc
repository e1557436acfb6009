// The model's replication engine: the walk of a replication id through the
// root, leaf and egress tables, by the chip's own reading of them.
#include "sim/sim_mcc.h"

#include <bitset>

#include "sim/sim_int.h"

namespace tide::sim {

namespace {

// A table of the description: its first address, words per entry and
// depth; zeros (and needs.ok false) when missing or too wide.
struct Tab {
    uint32_t addr = 0, words = 0, depth = 0;
    const desc::Table *d = nullptr;
};

Tab _table(DescNeeds &needs, const char *name, uint32_t max_words)
{
    const desc::Table *t = desc::find_table(name);
    if (t == nullptr || t->instances == 0 || t->words > max_words || (t->flags & desc::kTableIndirect) != 0) {
        needs.ok = false;
        return Tab{};
    }
    return Tab{t->addrs[0], t->words, t->depth, t};
}

} // namespace

MccEngine::MccEngine(Chip &chip) : chip_(chip)
{
    const Tab mrt = _table(needs_, "mcc_mrt", 1);
    const Tab mlib = _table(needs_, "mcc_mlib", 1);
    const Tab elb = _table(needs_, "epro_elb_table", kElbWords);
    mrt_addr_ = mrt.addr, mrt_words_ = mrt.words, mrt_depth_ = mrt.depth;
    mlib_addr_ = mlib.addr, mlib_words_ = mlib.words, mlib_depth_ = mlib.depth;
    elb_addr_ = elb.addr, elb_words_ = elb.words;
    auto field = [&](const Tab &t, const char *name) {
        return t.d != nullptr ? needs_.field(t.d->fields, t.d->field_count, name) : (needs_.ok = false, FieldRef{});
    };
    root_ = RootFields{field(mrt, "mrt_vld"), field(mrt, "stat_en"), field(mrt, "leafid_indx"), field(mrt, "rep_num")};
    leaf_ = LeafFields{field(mlib, "mlib_vld"), field(mlib, "next_vld"), field(mlib, "leafid_next_ptr")};
    elb_ = ElbFields{field(elb, "valid"),       field(elb, "vlanprichg"),       field(elb, "vlanupdate"),
                     field(elb, "tagnum"),      field(elb, "prunedisable"),     field(elb, "ovlan_rspan_vlan"),
                     field(elb, "ivlan_rspan_en"), field(elb, "oport_inf_causeid"), field(elb, "elbtype"),
                     field(elb, "stack")};
    mymod_addr_ = needs_.reg_field("lsw_hreg_mymod", "mymod", &mymod_);
    needs_.ok &= mlib_depth_ <= kLeaves;
}

void MccEngine::entry(uint32_t addr, uint32_t words, uint32_t index, uint32_t *out) const
{
    for (uint32_t i = 0; i < words; i++) {
        out[i] = chip_.core_word(addr + (index * words + i) * 4);
    }
}

uint32_t MccEngine::walk(uint32_t mrt, std::vector<Copy> *out) const
{
    out->clear();
    uint32_t r = 0;
    entry(mrt_addr_, mrt_words_, mrt, &r);
    if (bits_get(&r, root_.vld) == 0) {
        return TIDE_SIM_MCC_ROOT_INVALID;
    }
    const uint32_t count = static_cast<uint32_t>(bits_get(&r, root_.rep_num));
    uint32_t leaf = static_cast<uint32_t>(bits_get(&r, root_.first));
    std::bitset<kLeaves> seen;
    for (uint32_t i = 0; i < count; i++) {
        if (leaf >= mlib_depth_ || seen.test(leaf)) {
            return TIDE_SIM_MCC_LOOP;
        }
        seen.set(leaf);
        uint32_t l = 0;
        entry(mlib_addr_, mlib_words_, leaf, &l);
        if (bits_get(&l, leaf_.vld) == 0) {
            return TIDE_SIM_MCC_LEAF_INVALID;
        }
        Copy c;
        c.leaf = leaf;
        entry(elb_addr_, elb_words_, leaf, c.elb);
        out->push_back(c);
        if (i + 1 < count && bits_get(&l, leaf_.next_vld) == 0) {
            return TIDE_SIM_MCC_CUT;
        }
        leaf = static_cast<uint32_t>(bits_get(&l, leaf_.next));
    }
    return TIDE_SIM_MCC_COMPLETE;
}

bool MccEngine::counts(uint32_t mrt) const
{
    uint32_t r = 0;
    entry(mrt_addr_, mrt_words_, mrt, &r);
    return bits_get(&r, root_.stat_en) != 0;
}

uint32_t MccEngine::mymod() const
{
    return word_get(chip_.core_word(mymod_addr_), mymod_);
}

} // namespace tide::sim
