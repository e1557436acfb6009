// The model's ingress ACL stage.
//
// After the MAC table stage, a frame whose ingress port has its ACL
// enabled runs the configured lookups: global first and second, the
// port's first and second, its VLAN's.  Each lookup builds the frame's key
// in the layout of its key table (the chip description's fields, filled
// from the frame through one table of field names and packet attributes),
// writes the lookup's type tags, and searches the enabled blocks of its
// kind, lowest (block, index) first.  Of the lookups that hit, the one of
// the highest priority applies its action row.
//
// The results of a lookup are kept per key until the next TCAM write, so
// a flow costs one search until the tables change.
#ifndef TIDE_SIM_ACL_H
#define TIDE_SIM_ACL_H

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "sim/sim_bits.h"
#include "sim/sim_tcam.h"

namespace tide::sim {

class Pipeline;
struct Packet;

class AclStage {
public:
    explicit AclStage(Pipeline &pl);
    bool ok() const { return needs_.ok; }
    // The stage: false when it ends the packet.
    bool run(Packet &p);

    // A key layout of the chip as the stage fills it.
    struct KeyField {
        FieldRef field;
        uint8_t attr;
    };
    struct Layout {
        const char *table;
        uint32_t bits = 0;
        uint32_t kind_reg = 0; // the kind bitmap register of its blocks
        FieldRef tid, subtid;
        std::vector<KeyField> fields;
    };

private:
    Pipeline &pl_;
    DescNeeds needs_;
    std::vector<Layout> layouts_;
    // Lookup types to layouts (index into layouts_, or -1).
    int8_t by_type_[16];

    uint32_t a_glb_ = 0, a_cbe_[TcamEngine::kBlocks] = {};
    FieldRef f_cbe_[TcamEngine::kBlocks];
    FieldRef f_glb_type_[2], f_glb_pri_[2];
    FieldRef f_port_en_, f_port_type_[2], f_port_pri_[2], f_trunk_en_, f_trunk_id_, f_gid_;
    FieldRef f_vlan_type_, f_vlan_pri_;
    FieldRef f_valid_, f_fwdcmd_, f_dest_, f_denydrop_;

    // The search results since the last TCAM write.
    struct CacheKey {
        TcamEngine::Plane key;
        uint32_t bitmap;
        bool operator==(const CacheKey &o) const { return key == o.key && bitmap == o.bitmap; }
    };
    struct CacheHash {
        size_t operator()(const CacheKey &k) const;
    };
    struct Hit {
        bool hit = false;
        std::array<uint32_t, TcamEngine::kActionWords> action{};
    };
    std::unordered_map<CacheKey, Hit, CacheHash> cache_;
    uint64_t cache_generation_ = ~0ull;

    const Hit &search(const TcamEngine::Plane &key, uint32_t bits, uint32_t bitmap);
    void apply(Packet &p, const Hit &hit);
};

} // namespace tide::sim

#endif // TIDE_SIM_ACL_H
