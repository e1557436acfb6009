// The model's VLAN TCAM lookups: ingress translation and the MAC-, subnet-
// and protocol-based VLANs.
//
// In IPRO, once the frame has its VLAN from its tag or the port's PVID and
// before the VLAN's map entry is read, the stage builds the frame's keys in
// the layouts of the chip description's VLAN key tables
// (ipro_tcam_vlanacl_160_key, ipro_tcam_vlanacl_320_key: fields filled
// through one table of field names and packet attributes), writes their
// type tags, and searches the enabled blocks of each width's kind.  A hit
// of the 160-bit lookup wins over one of the 320-bit lookup; its action
// row's outer tag command sets the frame's VLAN.
#ifndef TIDE_SIM_VLAN_H
#define TIDE_SIM_VLAN_H

#include <cstdint>
#include <vector>

#include "sim/sim_bits.h"
#include "sim/sim_tcam.h"

namespace tide::sim {

class Pipeline;
struct Packet;

class VlanTcamStage {
public:
    explicit VlanTcamStage(Pipeline &pl);
    bool ok() const { return needs_.ok; }
    // The lookups and the tag action of the hit, if any.
    void run(Packet &p);

    struct KeyField {
        FieldRef field;
        uint8_t attr;
    };
    struct Layout {
        uint32_t bits = 0;
        uint32_t tid_value = 0;
        uint32_t kind_reg = 0; // the kind bitmap register of its blocks
        FieldRef tid;
        std::vector<KeyField> fields;
    };

private:
    Pipeline &pl_;
    DescNeeds needs_;
    Layout layouts_[2];
    uint32_t a_cbe_[TcamEngine::kBlocks] = {};
    FieldRef f_cbe_[TcamEngine::kBlocks];
    FieldRef f_valid_, f_ovlancmd_, f_ovlan_;
};

} // namespace tide::sim

#endif // TIDE_SIM_VLAN_H
