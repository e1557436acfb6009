// tided: the reference application.  It stands simulated atolreef chips
// behind the SDK, brings them up in the library's calling order, makes VLAN
// 1 of the front ports so that the chips switch, binds front ports of chip 0
// to Linux TAP devices when asked, starts the shell server so that an
// operator can reach them with tidesh, and keeps them up until SIGINT or
// SIGTERM, when it stops the server and tears everything down in the
// reverse order.
//
//   tided [--chips N] [--config FILE] [--socket PATH] [--tap PORT=IFNAME]...
//         [--tap-all PREFIX]
#include <getopt.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <tide/sim.h>
#include <tide/tide.h>


namespace {

// The front ports, members of VLAN 1 without tags.
constexpr uint32_t kFrontPorts = 0x0FFFFFFF;

constexpr unsigned kTapPorts = TIDE_SIM_TAP_PORT_MAX + 1;

struct Options {
    unsigned chips = 1;
    const char *config = TIDED_DEFAULT_CONFIG;
    const char *socket = CLI_SERVER_SOCKET_PATH;
    bool config_given = false;
    // The TAP of each front port of chip 0; empty: not bound.
    char tap[kTapPorts][TIDE_SIM_IFNAME_MAX + 1] = {};
};

// Names the TAP of a port; false (with the reason) for a port named twice
// or a name too long.
bool _tap_set(Options *opt, unsigned long port, const char *name, size_t len)
{
    if (len == 0 || len > TIDE_SIM_IFNAME_MAX) {
        fprintf(stderr, "tided: the TAP of port %lu needs a name of 1 to %u characters\n", port,
                TIDE_SIM_IFNAME_MAX);
        return false;
    }
    if (opt->tap[port][0] != '\0') {
        fprintf(stderr, "tided: port %lu is given a TAP twice\n", port);
        return false;
    }
    memcpy(opt->tap[port], name, len);
    return true;
}

// --tap PORT=IFNAME
bool _tap_parse(Options *opt, const char *arg)
{
    char *end = nullptr;
    const unsigned long port = strtoul(arg, &end, 10);
    if (end == arg || *end != '=' || port >= kTapPorts) {
        fprintf(stderr, "tided: --tap takes PORT=IFNAME with a port of 0 to %u\n", kTapPorts - 1);
        return false;
    }
    return _tap_set(opt, port, end + 1, strlen(end + 1));
}

// --tap-all PREFIX: PREFIX0 to PREFIX27
bool _tap_all_parse(Options *opt, const char *prefix)
{
    for (unsigned p = 0; p < kTapPorts; p++) {
        char name[64];
        const int n = snprintf(name, sizeof(name), "%s%u", prefix, p);
        if (n <= 0 || !_tap_set(opt, p, name, static_cast<size_t>(n))) {
            return false;
        }
    }
    return true;
}

void _usage(FILE *out)
{
    fprintf(out,
            "usage: tided [--chips N] [--config FILE] [--socket PATH] [--tap PORT=IFNAME]...\n"
            "             [--tap-all PREFIX]\n"
            "  --chips N      simulated atolreef chips, 1 to 4 (default 1)\n"
            "  --config FILE  chip configuration file (default %s)\n"
            "  --socket PATH  unix socket of the shell server (default %s)\n"
            "  --tap PORT=IFNAME\n"
            "                 port PORT (0 to 27) of chip 0 on the TAP device IFNAME,\n"
            "                 created or attached to; repeatable\n"
            "  --tap-all PREFIX\n"
            "                 ports 0 to 27 of chip 0 on PREFIX0 to PREFIX27\n"
            "  --help         this text\n",
            TIDED_DEFAULT_CONFIG, CLI_SERVER_SOCKET_PATH);
}

// 0 to go on, 1 to stop with success (help), -1 on a bad option.
int _parse(int argc, char **argv, Options *opt)
{
    static const option longs[] = {{"chips", required_argument, nullptr, 'n'},
                                   {"config", required_argument, nullptr, 'c'},
                                   {"socket", required_argument, nullptr, 's'},
                                   {"tap", required_argument, nullptr, 't'},
                                   {"tap-all", required_argument, nullptr, 'a'},
                                   {"help", no_argument, nullptr, 'h'},
                                   {nullptr, 0, nullptr, 0}};
    int c;
    while ((c = getopt_long(argc, argv, "n:c:s:t:a:h", longs, nullptr)) != -1) {
        switch (c) {
        case 'n': {
            char *end = nullptr;
            const unsigned long n = strtoul(optarg, &end, 10);
            if (*optarg == '\0' || *end != '\0' || n < 1 || n > TIDE_MAX_CHIPS) {
                fprintf(stderr, "tided: --chips takes 1 to %u\n", TIDE_MAX_CHIPS);
                return -1;
            }
            opt->chips = static_cast<unsigned>(n);
            break;
        }
        case 'c':
            opt->config = optarg;
            opt->config_given = true;
            break;
        case 's':
            if (cli_server_socket_path_set(optarg) != 0) {
                fprintf(stderr, "tided: --socket takes a path of 1 to 107 characters\n");
                return -1;
            }
            opt->socket = optarg;
            break;
        case 't':
            if (!_tap_parse(opt, optarg)) {
                return -1;
            }
            break;
        case 'a':
            if (!_tap_all_parse(opt, optarg)) {
                return -1;
            }
            break;
        case 'h':
            _usage(stdout);
            return 1;
        default:
            _usage(stderr);
            return -1;
        }
    }
    if (optind < argc) {
        fprintf(stderr, "tided: unexpected argument '%s'\n", argv[optind]);
        return -1;
    }
    return 0;
}

bool _ok(const char *what, unsigned chip, int32_t rc)
{
    if (rc != 0) {
        fprintf(stderr, "tided: chip %u: %s failed: %d (%s)\n", chip, what, rc, shr_errmsg(rc));
    }
    return rc == 0;
}

// The bindings of a chip: their number, the records in `taps`.
uint32_t _taps_get(unsigned chip, tide_sim_tap_info (&taps)[kTapPorts])
{
    uint32_t count = 0;
    return tide_sim_tap_list(chip, taps, kTapPorts, &count) == 0 ? count : 0;
}

// Every port bound to a TAP, by the options or by the shell.
void _taps_unbind(unsigned chips)
{
    for (unsigned c = 0; c < chips; c++) {
        tide_sim_tap_info taps[kTapPorts];
        const uint32_t count = _taps_get(c, taps);
        for (uint32_t i = 0; i < count; i++) {
            tide_sim_tap_unbind(c, taps[i].lport);
        }
    }
}

// Chips up to `count`, in the reverse order of bring-up.
void _tear_down(unsigned count, const bool *hw_up)
{
    for (unsigned c = count; c > 0; c--) {
        if (hw_up[c - 1]) {
            _ok("deinit_api_hardware_process", c - 1, deinit_api_hardware_process(c - 1));
        }
        _ok("deinit_api_software_process", c - 1, deinit_api_software_process(c - 1));
    }
}

// Binds the ports the options name; false when one fails, with what was
// bound unbound again.
bool _taps_bind(const Options &opt)
{
    for (unsigned p = 0; p < kTapPorts; p++) {
        if (opt.tap[p][0] == '\0') {
            continue;
        }
        const int rc = tide_sim_tap_bind(0, p, opt.tap[p], 0);
        if (rc != 0) {
            fprintf(stderr, "tided: port %u cannot be bound to %s: %s\n", p, opt.tap[p], tide_sim_tap_errmsg(rc));
            _taps_unbind(1);
            return false;
        }
    }
    tide_sim_tap_info taps[kTapPorts];
    const uint32_t count = _taps_get(0, taps);
    for (uint32_t i = 0; i < count; i++) {
        printf("tided: port %u on TAP %s (%s)\n", taps[i].lport, taps[i].ifname,
               (taps[i].state & TIDE_SIM_TAP_CREATED) != 0 ? "created" : "attached");
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    Options opt;
    const int parsed = _parse(argc, argv, &opt);
    if (parsed != 0) {
        return parsed > 0 ? 0 : 2;
    }
    setvbuf(stdout, nullptr, _IOLBF, 0);

    // The signals that end the run are taken by sigwait; every thread the
    // library starts inherits the block.
    sigset_t stop;
    sigemptyset(&stop);
    sigaddset(&stop, SIGINT);
    sigaddset(&stop, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stop, nullptr);

    if (tide_sim_install(opt.chips) != 0) {
        fprintf(stderr, "tided: the chip model could not be installed\n");
        return 1;
    }
    sdk_init_cfg cfg;
    memset(&cfg, 0, sizeof(cfg));
    tide_sim_sdk_init_cfg(&cfg);
    // What the library prints for the operator reaches the shell client
    // whose command printed it.
    cfg.cli_printf = cli_output_show;
    if (!_ok("init_api_base_software_process", 0, init_api_base_software_process(&cfg))) {
        tide_sim_uninstall();
        return 1;
    }
    printf("tided: %u simulated chip(s), configuration %s\n", opt.chips, opt.config);
    // Every chip reads the same file; ".chipN" keys in it single one out.
    // A file named on the command line must be there; without the shipped
    // one every setting takes its default.
    for (unsigned c = 0; c < opt.chips; c++) {
        const int rc = shr_property_cfg_file_load(c, opt.config);
        if (rc != 0 && opt.config_given) {
            fprintf(stderr, "tided: configuration %s: %d (%s)\n", opt.config, rc, shr_errmsg(rc));
            deinit_api_base_software_process();
            tide_sim_uninstall();
            return 2;
        }
        if (rc != 0 && c == 0) {
            printf("tided: no configuration at %s, every setting takes its default\n", opt.config);
        }
    }

    bool hw_up[TIDE_MAX_CHIPS] = {};
    unsigned soft_up = 0;
    int status = 0;
    for (unsigned c = 0; c < opt.chips; c++) {
        if (!_ok("init_api_software_process", c, init_api_software_process(c, &cfg))) {
            status = 1;
            break;
        }
        soft_up = c + 1;
        if (!_ok("init_api_hardware_process", c, init_api_hardware_process(c))) {
            status = 1;
            break;
        }
        hw_up[c] = true;
        port_bitmap front{{kFrontPorts, 0, 0}};
        if (!_ok("vlan_api_create", c, vlan_api_create(c, 1)) ||
            !_ok("vlan_api_port_set", c, vlan_api_port_set(c, 1, &front, &front))) {
            status = 1;
            break;
        }
        // The shell names ports by the library's numbers and inner names.
        cli_shell_mode_set(c, 1);
        printf("tided: chip %u (%s) is up, VLAN 1 on ports 0 to 27\n", c, shr_chip_name_get(c));
    }

    if (status == 0 && !_taps_bind(opt)) {
        status = 1;
    }

    bool shell = false;
    if (status == 0) {
        char where[160];
        if (cli_server_main(0) != 0 || cli_server_address_get(where, sizeof(where)) != 0) {
            fprintf(stderr, "tided: the shell server could not start on %s\n", opt.socket);
            status = 1;
        } else {
            shell = true;
            printf("tided: shell server on %s (tidesh --socket %s)\n", where, opt.socket);
        }
    }
    if (status == 0) {
        printf("tided: running; Ctrl-C or SIGTERM stops\n");
        int sig = 0;
        sigwait(&stop, &sig);
        printf("tided: %s, shutting down\n", sig == SIGINT ? "SIGINT" : "SIGTERM");
    }
    if (shell) {
        cli_server_wait(0);
    }
    // The links go before the chips behind them.
    _taps_unbind(opt.chips);
    _tear_down(soft_up, hw_up);
    _ok("deinit_api_base_software_process", 0, deinit_api_base_software_process());
    tide_sim_uninstall();
    printf("tided: stopped\n");
    return status;
}
