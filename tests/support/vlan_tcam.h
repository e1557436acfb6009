// Test support: the VLAN TCAM spaces that hardware init carves, given back
// for tests of the TCAM itself.
#ifndef TIDE_TEST_VLAN_TCAM_H
#define TIDE_TEST_VLAN_TCAM_H

#include <cstdint>
#include <initializer_list>

#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"

namespace tide::test {

// Gives the VLAN TCAM spaces that hardware init carved back to the TCAM
// manager, for tests of the TCAM itself that start from empty blocks.  0 or
// the failing status.
inline int32_t vlan_tcam_spaces_free(uint32_t chip)
{
    for (const uint32_t module : {CSL_TCAM_UTILS_VT_160, CSL_TCAM_UTILS_VT_320}) {
        if (g_module_alloced[chip][module] != 0) {
            const int32_t rc = csl_reef_tcam_utils_block_free(chip, module);
            if (rc != 0) {
                return rc;
            }
        }
    }
    return 0;
}

} // namespace tide::test

#endif // TIDE_TEST_VLAN_TCAM_H
