// The model's VLAN TCAM lookups: ingress translation and the MAC-, subnet-
// and protocol-based VLANs.
//
// In IPRO, once the frame has its VLAN from its tag or the port's PVID and
// before the VLAN's map entry is read, the stage builds the frame's keys in
// the layouts of the chip description's VLAN key tables
// (ipro_tcam_vlanacl_160_key, ipro_tcam_vlanacl_320_key: fields filled
// through one table of field names and packet attributes, the PVID's part
// in them chosen by ipro_vacl_key_pvid_cfg), writes their type tags, and
// searches the enabled blocks of each width's kind.  A hit of the 160-bit
// lookup wins over one of the 320-bit lookup.  Its action row gives the
// frame its VLAN, rewrites its tags, priorities, CFIs and DSCP, counts it,
// and sets its forwarding and learning.
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
    // The lookups and the action of the hit, if any; false when the action
    // ended the frame's forwarding (a drop or a redirect to the CPU).
    bool run(Packet &p);

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
    // Fields of the action row, in the order of the names in sim_vlan.cc.
    enum Act : uint8_t {
        kValid,
        kNoLrn,
        kNoLrnCpu,
        kNoLrnDiscard,
        kToCpu,
        kOpriCp,
        kIpriCp,
        kOcfiCp,
        kIcfiCp,
        kOvlanCmd,
        kOvlan,
        kIvlanCmd,
        kIvlan,
        kOpriEn,
        kOpri,
        kIpriEn,
        kIpri,
        kOcfiEn,
        kOcfi,
        kIcfiEn,
        kIcfi,
        kFwdCmd,
        kDest,
        kCauseId,
        kDscpEn,
        kDscp,
        kStatEn,
        kStatId,
        kActFields
    };
    // The four rewritten tag fields, and the frame's five tag states of the
    // copy mode registers.
    static constexpr uint32_t kTagFields = 4, kTagStates = 5;

private:
    void apply(Packet &p, const uint32_t *ad);
    void edit(Packet &p, const uint32_t *ad);

    Pipeline &pl_;
    DescNeeds needs_;
    Layout layouts_[2];
    uint32_t a_cbe_[TcamEngine::kBlocks] = {};
    FieldRef f_cbe_[TcamEngine::kBlocks];
    FieldRef act_[kActFields];
    // ipro_vacl_key_pvid_cfg and its fields, in the order of sim_vlan.cc.
    uint32_t a_key_cfg_ = 0;
    FieldRef f_key_cfg_[7];
    // The copy modes: one register per tag field, a field per tag state.
    uint32_t a_cp_[kTagFields] = {};
    FieldRef f_cp_[kTagFields][kTagStates];
};

} // namespace tide::sim

#endif // TIDE_SIM_VLAN_H
