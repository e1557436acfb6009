// The `sim` mode: commands of the chip model, so that an operator can try
// the switch interactively: inject a frame given in hexadecimal on a port,
// see what each port has sent, move the model's clock, write a capture
// file, bind ports to Linux TAP devices.
//
// The commands call the model's public functions.  The model is a library
// of its own that the programs standing it behind the SDK link (tided, the
// tests); the SDK does not depend on it, so these calls are weak references
// and, without the model in the process, the commands say so.
#include <tide/sim.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "app/diag_shell/users/release/cli_init.h"

#pragma weak tide_sim_packet_inject
#pragma weak tide_sim_packet_capture
#pragma weak tide_sim_packet_peek
#pragma weak tide_sim_port_stats_get
#pragma weak tide_sim_time_advance
#pragma weak tide_sim_time_get
#pragma weak tide_sim_pcap_open
#pragma weak tide_sim_pcap_close
#pragma weak tide_sim_tap_bind
#pragma weak tide_sim_tap_unbind
#pragma weak tide_sim_tap_list
#pragma weak tide_sim_tap_errmsg

namespace {

constexpr u32 k_ports = 32;
constexpr u32 k_cpu_port = 31;
constexpr u32 k_hex_per_line = 16;

bool _model_here()
{
    if (tide_sim_packet_inject == nullptr) {
        cli_output_show("the chip model is not in this process\n");
        return false;
    }
    return true;
}

// A decimal word the grammar has checked already.
u32 _number(const char *word)
{
    return static_cast<u32>(std::strtoul(word, nullptr, 10));
}

int _hex_digit(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

// The frame of the hexadecimal words: pairs of digits, with colons, dashes
// and dots allowed between bytes.  False for anything else.
bool _frame_of(i32 argc, char **argv, std::vector<u8> *frame)
{
    for (i32 i = 0; i < argc; i++) {
        int high = -1;
        for (const char *c = argv[i]; *c != '\0'; c++) {
            if (high < 0 && (*c == ':' || *c == '-' || *c == '.')) {
                continue;
            }
            const int d = _hex_digit(*c);
            if (d < 0) {
                return false;
            }
            if (high < 0) {
                high = d;
            } else {
                frame->push_back(static_cast<u8>(high << 4 | d));
                high = -1;
            }
        }
        if (high >= 0) {
            return false;
        }
    }
    return !frame->empty();
}

void _hex_dump(const u8 *data, u32 len)
{
    for (u32 at = 0; at < len; at += k_hex_per_line) {
        cli_output_show("  %04x ", static_cast<unsigned>(at));
        for (u32 i = at; i < len && i < at + k_hex_per_line; i++) {
            cli_output_show(" %02x", data[i]);
        }
        cli_output_show("\n");
    }
}

// inject port <0-31> .WORD
i32 _sim_inject(u32 chip_id, u32, i32 argc, char **argv)
{
    if (!_model_here()) {
        return SHR_E_UNAVAIL;
    }
    std::vector<u8> frame;
    if (argc < 2 || !_frame_of(argc - 1, argv + 1, &frame) || frame.size() > TIDE_SIM_FRAME_MAX) {
        cli_output_show("invalid frame: give its bytes as pairs of hexadecimal digits\n");
        return SHR_E_PARAM;
    }
    const u32 port = _number(argv[0]);
    tide_sim_port_stats before[k_ports] = {};
    for (u32 p = 0; p < k_ports; p++) {
        tide_sim_port_stats_get(chip_id, p, &before[p]);
    }
    const int rc = tide_sim_packet_inject(chip_id, port, frame.data(), static_cast<u32>(frame.size()));
    if (rc != 0) {
        cli_output_show("inject failed: %d\n", rc);
        return rc;
    }
    cli_output_show("port %u took %u bytes\n", port, static_cast<unsigned>(frame.size()));
    bool sent = false;
    for (u32 p = 0; p < k_ports; p++) {
        tide_sim_port_stats now{};
        tide_sim_port_stats_get(chip_id, p, &now);
        if (now.tx_frames == before[p].tx_frames) {
            continue;
        }
        if (!sent) {
            cli_output_show("sent on port");
            sent = true;
        }
        cli_output_show(" %u", p);
        tide_sim_frame_info info{};
        if (p == k_cpu_port && now.waiting > 0 &&
            tide_sim_packet_peek(chip_id, p, now.waiting - 1, nullptr, 0, &info) == 0 &&
            info.cause != TIDE_SIM_CAUSE_NONE) {
            cli_output_show(" (to-CPU cause %u)", info.cause);
        }
    }
    if (sent) {
        cli_output_show("\n");
    }
    tide_sim_port_stats in{};
    tide_sim_port_stats_get(chip_id, port, &in);
    if (in.rx_dropped != before[port].rx_dropped) {
        cli_output_show("dropped, cause %u\n", in.last_drop_cause);
    } else if (!sent) {
        cli_output_show("no port sent it\n");
    }
    return SHR_E_NONE;
}

// show sent
i32 _sim_show_sent(u32 chip_id, u32, i32, char **)
{
    if (!_model_here()) {
        return SHR_E_UNAVAIL;
    }
    bool any = false;
    for (u32 p = 0; p < k_ports; p++) {
        tide_sim_port_stats s{};
        const int rc = tide_sim_port_stats_get(chip_id, p, &s);
        if (rc != 0) {
            return rc;
        }
        if (s.rx_frames == 0 && s.tx_frames == 0) {
            continue;
        }
        if (!any) {
            cli_output_show("port  rx-frames  rx-dropped  tx-frames  waiting\n");
            any = true;
        }
        cli_output_show("%4u  %9llu  %10llu  %9llu  %7u\n", p, static_cast<unsigned long long>(s.rx_frames),
                   static_cast<unsigned long long>(s.rx_dropped), static_cast<unsigned long long>(s.tx_frames),
                   s.waiting);
    }
    if (!any) {
        cli_output_show("no frames yet\n");
    }
    return SHR_E_NONE;
}

// show sent port <0-31>
i32 _sim_show_sent_port(u32 chip_id, u32, i32 argc, char **argv)
{
    if (!_model_here()) {
        return SHR_E_UNAVAIL;
    }
    const u32 port = argc >= 1 ? _number(argv[0]) : 0;
    std::vector<u8> buf(TIDE_SIM_FRAME_MAX);
    u32 i = 0;
    tide_sim_frame_info info{};
    for (; tide_sim_packet_peek(chip_id, port, i, buf.data(), static_cast<u32>(buf.size()), &info) == 0; i++) {
        cli_output_show("frame %u: %u bytes from port %u at %llu ms", i, info.len, info.src_port,
                   static_cast<unsigned long long>(info.time_ms));
        if (info.cause != TIDE_SIM_CAUSE_NONE) {
            cli_output_show(", to-CPU cause %u", info.cause);
        }
        cli_output_show("\n");
        _hex_dump(buf.data(), info.len);
    }
    if (i == 0) {
        cli_output_show("port %u has no frame waiting\n", port);
    }
    return SHR_E_NONE;
}

// clear sent
i32 _sim_clear_sent(u32 chip_id, u32, i32, char **)
{
    if (!_model_here()) {
        return SHR_E_UNAVAIL;
    }
    std::vector<u8> buf(TIDE_SIM_FRAME_MAX);
    u32 taken = 0;
    for (u32 p = 0; p < k_ports; p++) {
        u32 len = 0;
        while (tide_sim_packet_capture(chip_id, p, buf.data(), static_cast<u32>(buf.size()), &len) == 0) {
            taken++;
        }
    }
    cli_output_show("%u frames cleared\n", taken);
    return SHR_E_NONE;
}

// time advance <1-4294967295>
i32 _sim_time_advance(u32 chip_id, u32, i32 argc, char **argv)
{
    if (!_model_here()) {
        return SHR_E_UNAVAIL;
    }
    const int rc = tide_sim_time_advance(chip_id, argc >= 1 ? _number(argv[0]) : 0);
    u64 now = 0;
    if (rc != 0 || tide_sim_time_get(chip_id, &now) != 0) {
        return rc != 0 ? rc : SHR_E_FAIL;
    }
    cli_output_show("model time %llu ms\n", static_cast<unsigned long long>(now));
    return SHR_E_NONE;
}

// pcap open WORD
i32 _sim_pcap_open(u32 chip_id, u32, i32 argc, char **argv)
{
    if (!_model_here()) {
        return SHR_E_UNAVAIL;
    }
    const int rc = argc >= 1 ? tide_sim_pcap_open(chip_id, argv[0]) : SHR_E_PARAM;
    if (rc != 0) {
        cli_output_show("cannot open the capture file: %d\n", rc);
    }
    return rc;
}

// pcap close
i32 _sim_pcap_close(u32 chip_id, u32, i32, char **)
{
    if (!_model_here()) {
        return SHR_E_UNAVAIL;
    }
    const int rc = tide_sim_pcap_close(chip_id);
    if (rc != 0) {
        cli_output_show("no capture file closed: %d\n", rc);
    }
    return rc;
}

// The bindings of a chip: their number, the records in `taps`.
u32 _taps_get(u32 chip_id, tide_sim_tap_info (&taps)[TIDE_SIM_TAP_PORT_MAX + 1])
{
    u32 count = 0;
    return tide_sim_tap_list(chip_id, taps, TIDE_SIM_TAP_PORT_MAX + 1, &count) == 0 ? count : 0;
}

const char *_tap_state(const tide_sim_tap_info &t)
{
    if ((t.state & TIDE_SIM_TAP_GONE) != 0) {
        return "gone";
    }
    return (t.state & TIDE_SIM_TAP_CREATED) != 0 ? "created" : "attached";
}

// tap bind port <0-27> IFNAME
i32 _sim_tap_bind(u32 chip_id, u32, i32 argc, char **argv)
{
    if (!_model_here()) {
        return SHR_E_UNAVAIL;
    }
    const u32 port = argc >= 2 ? _number(argv[0]) : 0;
    const int rc = argc >= 2 ? tide_sim_tap_bind(chip_id, port, argv[1], 0) : SHR_E_PARAM;
    if (rc != 0) {
        cli_output_show("cannot bind port %u: %s\n", port, tide_sim_tap_errmsg(rc));
        return rc;
    }
    // The kernel numbers a name with "%d" in it: show the one it made.
    tide_sim_tap_info taps[TIDE_SIM_TAP_PORT_MAX + 1];
    const u32 count = _taps_get(chip_id, taps);
    for (u32 i = 0; i < count; i++) {
        if (taps[i].lport == port) {
            cli_output_show("port %u bound to %s (%s)\n", port, taps[i].ifname, _tap_state(taps[i]));
        }
    }
    return SHR_E_NONE;
}

// tap unbind port <0-27>
i32 _sim_tap_unbind(u32 chip_id, u32, i32 argc, char **argv)
{
    if (!_model_here()) {
        return SHR_E_UNAVAIL;
    }
    const u32 port = argc >= 1 ? _number(argv[0]) : 0;
    const int rc = tide_sim_tap_unbind(chip_id, port);
    if (rc != 0) {
        cli_output_show("cannot unbind port %u: %s\n", port, tide_sim_tap_errmsg(rc));
    }
    return rc;
}

// show tap
i32 _sim_show_tap(u32 chip_id, u32, i32, char **)
{
    if (!_model_here()) {
        return SHR_E_UNAVAIL;
    }
    tide_sim_tap_info taps[TIDE_SIM_TAP_PORT_MAX + 1];
    const u32 count = _taps_get(chip_id, taps);
    if (count == 0) {
        cli_output_show("no port is bound to a TAP\n");
        return SHR_E_NONE;
    }
    cli_output_show("port  interface        state     rx-frames  tx-frames  tx-dropped\n");
    for (u32 i = 0; i < count; i++) {
        const tide_sim_tap_info &t = taps[i];
        cli_output_show("%4u  %-15s  %-8s  %9llu  %9llu  %10llu\n", t.lport, t.ifname, _tap_state(t),
                        static_cast<unsigned long long>(t.rx_frames), static_cast<unsigned long long>(t.tx_frames),
                        static_cast<unsigned long long>(t.tx_dropped));
        if (t.tx_dropped != 0) {
            cli_output_show("      last refusal: %s\n", strerror(t.tx_errno));
        }
    }
    return SHR_E_NONE;
}

const char *const k_inject_help[] = {"Inject a frame into the chip", "The port it comes in by",
                                     "Logical port (31: from the CPU)",
                                     "The frame in hexadecimal without FCS; colons, dashes, dots and blanks may "
                                     "separate bytes",
                                     nullptr};
const char *const k_show_sent_help[] = {"Show", "What each port has sent", nullptr};
const char *const k_show_sent_port_help[] = {"Show", "What each port has sent", "The frames waiting on one port",
                                             "Logical port", nullptr};
const char *const k_clear_sent_help[] = {"Clear", "Take every frame the ports have sent", nullptr};
const char *const k_time_help[] = {"The model's clock", "Move it forward (aging runs on it)", "Milliseconds",
                                   nullptr};
const char *const k_pcap_open_help[] = {"Capture file of every frame in and out of the chip", "Open a file (pcapng)",
                                        "File name", nullptr};
const char *const k_pcap_close_help[] = {"Capture file of every frame in and out of the chip", "Close it", nullptr};

const char *const k_tap_bind_help[] = {"A port on a Linux TAP device",
                                       "Bind a port: its frames go to and come from the TAP", "The port",
                                       "Front port", "The TAP: created, or attached when it exists", nullptr};
const char *const k_tap_unbind_help[] = {"A port on a Linux TAP device", "Unbind a port", "The port", "Front port",
                                         nullptr};
const char *const k_show_tap_help[] = {"Show", "The ports bound to TAP devices", nullptr};

cli_cmd_desc g_sim_desc[] = {
    {"inject port <0-31> .WORD", -1, _sim_inject, k_inject_help, 0},
    {"show sent", -1, _sim_show_sent, k_show_sent_help, 0},
    {"show sent port <0-31>", -1, _sim_show_sent_port, k_show_sent_port_help, 0},
    {"clear sent", -1, _sim_clear_sent, k_clear_sent_help, 0},
    {"time advance <1-4294967295>", -1, _sim_time_advance, k_time_help, 0},
    {"pcap open WORD", -1, _sim_pcap_open, k_pcap_open_help, 0},
    {"pcap close", -1, _sim_pcap_close, k_pcap_close_help, 0},
    {"tap bind port <0-27> IFNAME", -1, _sim_tap_bind, k_tap_bind_help, 0},
    {"tap unbind port <0-27>", -1, _sim_tap_unbind, k_tap_unbind_help, 0},
    {"show tap", -1, _sim_show_tap, k_show_tap_help, 0},
};

constexpr u32 k_sim_commands = sizeof(g_sim_desc) / sizeof(g_sim_desc[0]);
cli_cmd_item g_sim_items[k_sim_commands];

} // namespace

extern "C" void cli_cmd_init_sim(void)
{
    cli_cmd_descs_link(g_sim_desc, g_sim_items, k_sim_commands, CLI_MODE_SIM);
}
