/* Every public header compiles as C99 on its own. */
#include <tide/acl.h>
#include <tide/base.h>
#include <tide/cli.h>
#include <tide/counter.h>
#include <tide/hal_os.h>
#include <tide/init.h>
#include <tide/l2.h>
#include <tide/macsec.h>
#include <tide/port.h>
#include <tide/qos.h>
#include <tide/serdes.h>
#include <tide/shr.h>
#include <tide/sim.h>
#include <tide/stub.h>
#include <tide/tide.h>
#include <tide/vlan.h>
#include <tide/xsal.h>

int tide_header_check(void);
int tide_header_check(void)
{
    sdk_init_cfg cfg = {0};
    port_config config = {0};
    l2_addr addr = {0};
    qos_policer_cfg policer = {0};
    serdes_eye eye = {0};
    vlan_control vc = {0};
    return (int)sizeof(cfg) + (int)sizeof(hal_devio) + (int)sizeof(config.pbmp[0]) + (int)sizeof(addr) +
           (int)sizeof(eye) + (int)sizeof(policer) + (int)sizeof(vc);
}
