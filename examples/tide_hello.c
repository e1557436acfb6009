/*
 * tide_hello: brings up simulated atolreef chips, writes a register of
 * each through the public API, reads it back and prints both.
 *
 *   tide_hello [chips [addr [value]]]     defaults: 1 0x100 0x5a5aa5a5
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <tide/sim.h>
#include <tide/tide.h>

static int check(const char *what, int32_t rc)
{
    if (rc != 0) {
        fprintf(stderr, "%s: %d (%s)\n", what, rc, shr_errmsg(rc));
    }
    return rc;
}

int main(int argc, char **argv)
{
    uint32_t chips = argc > 1 ? (uint32_t)strtoul(argv[1], NULL, 0) : 1;
    uint32_t addr = argc > 2 ? (uint32_t)strtoul(argv[2], NULL, 0) : 0x100;
    uint32_t value = argc > 3 ? (uint32_t)strtoul(argv[3], NULL, 0) : 0x5a5aa5a5u;
    int failed = 0;

    if (check("tide_sim_install", tide_sim_install(chips)) != 0) {
        return 1;
    }
    sdk_init_cfg cfg;
    memset(&cfg, 0, sizeof(cfg));
    tide_sim_sdk_init_cfg(&cfg);
    if (check("init_api_base_software_process", init_api_base_software_process(&cfg)) != 0) {
        tide_sim_uninstall();
        return 1;
    }
    printf("tide: %u chip(s) reported by the driver\n", shr_chip_cur_num_get());

    for (uint32_t chip = 0; chip < chips; chip++) {
        if (check("init_api_software_process", init_api_software_process(chip, &cfg)) != 0 ||
            check("init_api_hardware_process", init_api_hardware_process(chip)) != 0) {
            failed = 1;
            continue;
        }
        uint8_t out[4] = {(uint8_t)value, (uint8_t)(value >> 8), (uint8_t)(value >> 16), (uint8_t)(value >> 24)};
        uint8_t in[4] = {0};
        if (check("base_api_reg_set_by_addr", base_api_reg_set_by_addr(chip, addr, out, 4)) != 0 ||
            check("base_api_reg_get_by_addr", base_api_reg_get_by_addr(chip, addr, in, 4)) != 0) {
            failed = 1;
        } else {
            uint32_t back = (uint32_t)in[0] | (uint32_t)in[1] << 8 | (uint32_t)in[2] << 16 | (uint32_t)in[3] << 24;
            printf("chip %u (%s): wrote 0x%08x to 0x%08x, read back 0x%08x: %s\n", chip, shr_chip_name_get(chip),
                   value, addr, back, back == value ? "ok" : "MISMATCH");
            failed |= back != value;
        }
        check("deinit_api_hardware_process", deinit_api_hardware_process(chip));
        check("deinit_api_software_process", deinit_api_software_process(chip));
    }

    check("deinit_api_base_software_process", deinit_api_base_software_process());
    tide_sim_uninstall();
    return failed;
}
