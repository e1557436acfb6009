// The model's interrupt tree, computed from the leaves up.
#include <algorithm>
#include <cstring>

#include "sim/sim_int.h"
#include "sim/sim_intr.h"
#include "sim/sim_regmap.h"
#include "sim/sim_tcam.h"

namespace tide::sim {

namespace {

// Bits of the top register by category (fatal, ecc, event, warning).
constexpr uint32_t kTopBit[4] = {2, 3, 4, 5};

uint32_t _key(uint32_t module, uint32_t subid, uint32_t type)
{
    return module << 16 | subid << 8 | type;
}

uint64_t _node_key(uint32_t type, uint32_t instance)
{
    return static_cast<uint64_t>(type) << 32 | instance;
}

uint32_t _bits(uint32_t low, uint32_t width)
{
    return static_cast<uint32_t>(width_mask(width) << low);
}

uint32_t _addr(const desc::Register *r, uint32_t instance)
{
    return r != nullptr && instance < r->instances ? r->addrs[instance] : 0;
}

// A count field one higher, stopping at its highest value.
uint32_t _count_up(uint32_t word, uint32_t low, uint32_t width)
{
    if (width == 0) {
        return word;
    }
    const FieldRef f{low, width};
    const uint32_t n = word_get(word, f);
    return n < width_mask(width) ? word_set(word, f, n + 1) : word;
}

} // namespace

IntrTree::IntrTree(Chip &chip) : chip_(chip)
{
    for (size_t i = 0; i < desc::kIntrTypeCount; i++) {
        const desc::IntrType &t = desc::kIntrTypes[i];
        type_of_[_key(t.module, t.subid, t.type)] = static_cast<uint32_t>(i);
    }
    nodes_.reserve(desc::kIntrNodeCount);
    for (size_t i = 0; i < desc::kIntrNodeCount; i++) {
        const desc::IntrNode &n = desc::kIntrNodes[i];
        const desc::IntrType &t = desc::kIntrTypes[n.type];
        const desc::Register *s = desc::find_register(t.status_reg);
        const desc::Register *m = t.mask_reg != nullptr ? desc::find_register(t.mask_reg) : nullptr;
        ok_ &= s != nullptr && (t.mask_reg == nullptr || m != nullptr);
        const Node node{_addr(s, n.instance), m != nullptr ? _addr(m, m->instances > 1 ? n.instance : 0) : 0,
                        _bits(t.low, t.width), n.parent, n.kind, n.category};
        nodes_.push_back(node);
        node_of_[_node_key(n.type, n.instance)] = static_cast<uint32_t>(i);
        by_addr_[node.status].push_back(static_cast<uint32_t>(i));
        if (node.mask != 0 && node.mask != node.status) {
            by_addr_[node.mask].push_back(static_cast<uint32_t>(i));
        }
    }
    active_.resize(nodes_.size());
    active_children_.resize(nodes_.size());
    DescNeeds needs;
    a_top_ = needs.reg("lsw_hreg_int2cib_lsw_status");
    a_top_copy_ = needs.reg("lsw_hreg_lsw_int_status");
    a_ctrl_ = needs.reg_field("lsw_hreg_cib2int_lsw_ctrl", "cib2int_lsw2gic_msk", &f_line_open_);
    ok_ &= needs.ok;
}

void IntrTree::install()
{
    for (const auto &[addr, nodes] : by_addr_) {
        (void)nodes;
        chip_.on_write(4, addr, [this](Chip &, uint32_t, uint32_t a, uint64_t) { touched(a); });
    }
    chip_.on_write(4, a_ctrl_, [this](Chip &, uint32_t, uint32_t, uint64_t) { drive_top(); });
}

void IntrTree::refresh(uint32_t i)
{
    const Node &n = nodes_[i];
    uint32_t word = chip_.core_word(n.status);
    if (n.kind == desc::kIntrSecond && active_children_[i] != 0 && (word & n.bits) == 0) {
        // Held until cleared, and set again while a child is set.
        word |= n.bits;
        chip_.set_core_word(n.status, word);
    } else if (n.kind == desc::kIntrGroup) {
        const uint32_t now = active_children_[i] != 0 ? word | n.bits : word & ~n.bits;
        if (now != word) {
            chip_.set_core_word(n.status, now);
            word = now;
        }
    }
    const bool active = (word & n.bits) != 0 && (n.mask == 0 || (chip_.core_word(n.mask) & n.bits) != 0);
    if (active == (active_[i] != 0)) {
        return;
    }
    active_[i] = active ? 1 : 0;
    if (n.kind == desc::kIntrGroup && n.category >= 0) {
        active_groups_[n.category] += active ? 1u : ~0u;
    }
    if (n.parent >= 0) {
        active_children_[n.parent] += active ? 1u : ~0u;
        refresh(static_cast<uint32_t>(n.parent));
    }
}

void IntrTree::touched(uint32_t addr)
{
    const auto it = by_addr_.find(addr);
    if (it == by_addr_.end()) {
        return;
    }
    for (uint32_t i : it->second) {
        refresh(i);
    }
    drive_top();
}

void IntrTree::update()
{
    std::fill(active_.begin(), active_.end(), 0);
    std::fill(active_children_.begin(), active_children_.end(), 0);
    std::fill(std::begin(active_groups_), std::end(active_groups_), 0);
    // Leaves come first, their parents after them: one pass in order.
    for (uint32_t i = 0; i < nodes_.size(); i++) {
        refresh(i);
    }
    drive_top();
}

void IntrTree::drive_top()
{
    uint32_t top = 0, all = 0;
    for (uint32_t c = 0; c < 4; c++) {
        all |= 1u << kTopBit[c];
        top |= active_groups_[c] != 0 ? 1u << kTopBit[c] : 0;
    }
    for (uint32_t addr : {a_top_, a_top_copy_}) {
        const uint32_t word = chip_.core_word(addr);
        if ((word & all) != top) {
            chip_.set_core_word(addr, (word & ~all) | top);
        }
    }
    line_ = top != 0 && word_get(chip_.core_word(a_ctrl_), f_line_open_) != 0;
    chip_.irq_line_set(line_);
}

int IntrTree::type_index(uint32_t module, uint32_t subid, uint32_t type) const
{
    if (module > 0xFF || subid > 0xFF || type > 0xFF) {
        return -1;
    }
    const auto it = type_of_.find(_key(module, subid, type));
    return it == type_of_.end() ? -1 : static_cast<int>(it->second);
}

uint32_t IntrTree::status_addr(const desc::IntrType &t, uint32_t instance) const
{
    return _addr(desc::find_register(t.status_reg), instance);
}

int IntrTree::raise_at(uint32_t type_index, uint32_t instance)
{
    const desc::IntrType &t = desc::kIntrTypes[type_index];
    if (instance >= t.instances) {
        return -4;
    }
    // The category registers and the top are the tree's own: it computes
    // them from their children.
    const uint32_t addr = status_addr(t, instance);
    const bool category = t.module == 0 && t.mask_reg != nullptr;
    if (category || addr == a_top_ || addr == a_top_copy_) {
        return -4;
    }
    chip_.set_core_word(addr, chip_.core_word(addr) | _bits(t.low, t.width));
    touched(addr);
    return 0;
}

int IntrTree::raise(uint32_t module, uint32_t subid, uint32_t type, uint32_t instance)
{
    const int t = type_index(module, subid, type);
    return t < 0 ? -4 : raise_at(static_cast<uint32_t>(t), instance);
}

int IntrTree::ecc_details(const desc::IntrEcc &ecc, uint32_t ecc_type, uint32_t index)
{
    if (ecc.debug == nullptr) {
        return 0;
    }
    uint32_t addr = 0;
    if (ecc.debug_is_table) {
        const desc::Table *tab = desc::find_table(ecc.debug);
        if (tab == nullptr || tab->instances == 0 || ecc.debug_index >= tab->words) {
            return -4;
        }
        addr = tab->addrs[0] + 4 * ecc.debug_index;
    } else {
        addr = _addr(desc::find_register(ecc.debug), ecc.debug_index);
    }
    if (addr == 0) {
        return -4;
    }
    uint32_t word = chip_.core_word(addr);
    if (ecc.type_width != 0) {
        word = word_set(word, FieldRef{ecc.type_low, ecc.type_width}, ecc_type);
    }
    word = word_set(word, FieldRef{ecc.index_low, ecc.index_width}, index);
    word = _count_up(word, ecc.cnt0_low, ecc.cnt0_width);
    word = _count_up(word, ecc.cnt1_low, ecc.cnt1_width);
    chip_.set_core_word(addr, word);
    return 0;
}

// The stored entry damaged: the lowest bit the CPU can write of a direct
// table's entry, bit 0 of a TCAM row's plane or action.
int IntrTree::damage(const desc::IntrEcc &ecc, uint32_t index)
{
    if (ecc.tcam_plane >= 0) {
        return chip_.tcam->damage(desc::kIntrTypes[ecc.type].type, index, static_cast<uint32_t>(ecc.tcam_plane))
                   ? 0
                   : -4;
    }
    const desc::Table *tab = ecc.table != nullptr ? desc::find_table(ecc.table) : nullptr;
    if (tab == nullptr || tab->instances == 0 || (tab->flags & desc::kTableIndirect) != 0) {
        return 0; // a memory the CPU does not see
    }
    if (index >= tab->depth) {
        return -4;
    }
    const uint32_t base = tab->addrs[0] + index * tab->words * 4;
    for (uint32_t w = 0; w < tab->words; w++) {
        const uint32_t rw = RegMap::get().rule(base + 4 * w).rw;
        if (rw != 0) {
            chip_.set_core_word(base + 4 * w, chip_.core_word(base + 4 * w) ^ (rw & -rw));
            return 0;
        }
    }
    return 0;
}

int IntrTree::ecc_inject(const tide_sim_ecc_error &e)
{
    const int t = type_index(e.module_id, e.subid, e.intr_id);
    const desc::IntrEcc *ecc = nullptr;
    for (size_t i = 0; t >= 0 && i < desc::kIntrEccCount; i++) {
        if (desc::kIntrEcc[i].type == static_cast<uint32_t>(t)) {
            ecc = &desc::kIntrEcc[i];
        }
    }
    if (ecc == nullptr || e.addr_idx >= desc::kIntrTypes[t].instances ||
        (ecc->index_width < 32 && e.index > width_mask(ecc->index_width))) {
        return -4;
    }
    int rc = e.corrupt ? damage(*ecc, e.index) : 0;
    if (rc == 0) {
        rc = ecc_details(*ecc, e.ecc_type, e.index);
    }
    if (rc == 0) {
        rc = raise_at(static_cast<uint32_t>(t), e.addr_idx);
    }
    return rc;
}

void IntrTree::event(const char *name, uint32_t block)
{
    for (size_t i = 0; i < desc::kIntrEventCount; i++) {
        const desc::IntrEvent &ev = desc::kIntrEvents[i];
        if (strcmp(ev.name, name) == 0) {
            raise(ev.module, ev.subid, ev.type < 0 ? block : static_cast<uint32_t>(ev.type), 0);
            return;
        }
    }
}

void IntrTree::tcam_error(uint32_t plane, uint32_t block, uint32_t index, uint32_t ecc_type)
{
    static const char *const kEvents[] = {"tcam_data_ecc", "tcam_care_ecc", "tcam_ad_ecc"};
    for (size_t i = 0; plane < 3 && i < desc::kIntrEventCount; i++) {
        const desc::IntrEvent &ev = desc::kIntrEvents[i];
        if (strcmp(ev.name, kEvents[plane]) != 0) {
            continue;
        }
        const int t = type_index(ev.module, ev.subid, block);
        for (size_t k = 0; t >= 0 && k < desc::kIntrEccCount; k++) {
            if (desc::kIntrEcc[k].type == static_cast<uint32_t>(t)) {
                ecc_details(desc::kIntrEcc[k], ecc_type, index);
            }
        }
        raise(ev.module, ev.subid, block, 0);
        return;
    }
}

} // namespace tide::sim
