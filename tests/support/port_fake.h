// A port driver for tests: every slot records its call (slot, port and the
// values it was given) and returns g_fake_rc; the reads answer with values
// the test chooses.  Install it with fake_port_driver().
#ifndef TIDE_TEST_PORT_FAKE_H
#define TIDE_TEST_PORT_FAKE_H

#include <cstddef>
#include <cstdio>
#include <map>
#include <mutex>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "csl/reef/driver/port/csl_atolreef_port.h"
#include "dpl/reef/port/dpl_reef_port.h"

namespace tide::test::port_fake {

struct Call {
    std::string slot;
    u32 lport;        // the first u32 after the chip, ~0 for none
    std::string args; // every value after the chip; the results of a read are left out
};

inline std::mutex g_calls_mu;
inline std::vector<Call> g_calls;
inline i32 g_fake_rc = 0; // what every slot returns
// Runs inside every recorded call, with the driver's locks held.
inline void (*g_inside)(const char *slot, u32 lport) = nullptr;
// What a read answers, by slot (0 when not given); set before the calls.
inline std::map<std::string, u64> g_answer;

inline std::vector<Call> calls()
{
    std::lock_guard<std::mutex> hold(g_calls_mu);
    return g_calls;
}

inline void calls_clear()
{
    std::lock_guard<std::mutex> hold(g_calls_mu);
    g_calls.clear();
}

inline std::vector<std::string> slots()
{
    std::vector<std::string> names;
    for (const Call &c : calls()) {
        names.push_back(c.slot);
    }
    return names;
}

// Each call as "slot args".
inline std::vector<std::string> texts()
{
    std::vector<std::string> out;
    for (const Call &c : calls()) {
        out.push_back(c.slot + " " + c.args);
    }
    return out;
}

inline const char *slot_name(size_t offset)
{
#define TIDE_FAKE_SLOT_NAME(slot, params)              \
    if (offset == offsetof(csl_port_driver_t, slot)) { \
        return #slot;                                  \
    }
    CSL_PORT_DRIVER_OPS(TIDE_FAKE_SLOT_NAME)
#undef TIDE_FAKE_SLOT_NAME
    return "?";
}

// Position of the first u32 argument; the count when there is none.
template <typename... A>
constexpr size_t first_u32_index()
{
    size_t i = 0;
    const bool is_u32[] = {std::is_same_v<A, u32>..., true};
    while (!is_u32[i]) {
        i++;
    }
    return i;
}

template <typename... A>
u32 first_u32(A... args)
{
    constexpr size_t i = first_u32_index<A...>();
    if constexpr (i < sizeof...(A)) {
        return std::get<i>(std::tuple<A...>(args...));
    } else {
        return ~0u;
    }
}

inline bool is_read(const std::string &slot)
{
    return slot.size() > 4 && slot.compare(slot.size() - 4, 4, "_get") == 0;
}

// The text of a value given to a setting.
template <typename T>
std::string value_text(const std::string &slot, T v)
{
    if constexpr (std::is_same_v<T, u32> || std::is_same_v<T, u8>) {
        return std::to_string(v);
    } else if constexpr (std::is_same_v<T, port_interface *>) {
        return "{" + std::to_string(v->interface_type) + "," + std::to_string(v->port_num) + "}";
    } else if constexpr (std::is_same_v<T, port_ability *>) {
        return "{" + std::to_string(v->speed_half) + "," + std::to_string(v->speed_full) + "," +
               std::to_string(v->interface) + "," + std::to_string(v->medium) + "," + std::to_string(v->pause) + "," +
               std::to_string(v->eee) + "}";
    } else if constexpr (std::is_same_v<T, port_loopback *>) {
        return "{" + std::to_string(v->loop_mode) + "," + std::to_string(v->transparent) + "}";
    } else if constexpr (std::is_same_v<T, u8 *>) {
        char text[18];
        std::snprintf(text, sizeof(text), "%02x:%02x:%02x:%02x:%02x:%02x", v[0], v[1], v[2], v[3], v[4], v[5]);
        return text;
    } else if constexpr (std::is_same_v<T, void *>) {
        return std::to_string(*static_cast<u32 *>(v));
    } else {
        (void)slot;
        return "?";
    }
}

// Fills what a read returns through a pointer with the slot's answer.
template <typename T>
void answer(u32 lport, const std::string &slot, T p)
{
    if constexpr (std::is_pointer_v<T>) {
        const auto it = g_answer.find(slot);
        const u64 a = it != g_answer.end() ? it->second : 0;
        if constexpr (std::is_same_v<T, u32 *>) {
            *p = static_cast<u32>(a);
        } else if constexpr (std::is_same_v<T, u64 *>) {
            *p = a;
        } else if constexpr (std::is_same_v<T, u8 *>) {
            const size_t n = slot == "mac_pause_smac_get" ? 6 : 1;
            for (size_t i = 0; i < n; i++) {
                p[i] = static_cast<u8>(a >> (8 * (n - 1 - i)));
            }
        } else if constexpr (std::is_same_v<T, void *>) {
            *static_cast<u32 *>(p) = static_cast<u32>(a);
        } else if constexpr (std::is_same_v<T, port_interface *>) {
            *p = {static_cast<u32>(a), 1};
        } else if constexpr (std::is_same_v<T, port_ability *>) {
            const u32 w = static_cast<u32>(a);
            *p = {w, w, w, w, w, w};
        } else if constexpr (std::is_same_v<T, port_loopback *>) {
            *p = {static_cast<u32>(a), a != 0 ? 1u : 0u};
        } else if constexpr (std::is_same_v<T, port_clk_delta *>) {
            p->rx_delta = static_cast<u32>(a);
        } else if constexpr (std::is_same_v<T, port_serdes_id *>) {
            *p = {1, static_cast<u8>(a)};
        } else if constexpr (std::is_same_v<T, port_info_buff *>) {
            if (p->buff != nullptr && p->len > 0) {
                p->used = static_cast<u32>(std::snprintf(p->buff, p->len, "%s of lport %u\n", slot.c_str(), lport));
            }
        }
    }
}

// Appends a value given to the call; a read's results are left out.
template <typename T>
void append(std::string &text, const std::string &slot, bool read, T v)
{
    if (!(read && std::is_pointer_v<T>)) {
        text += (text.empty() ? "" : " ") + value_text(slot, v);
    }
}

template <size_t Offset, typename F>
struct Fake;
template <size_t Offset, typename... A>
struct Fake<Offset, i32 (*)(u32, A...)> {
    static i32 fn(u32 chip_id, A... args)
    {
        (void)chip_id;
        const std::string slot = slot_name(Offset);
        const u32 lport = first_u32(args...);
        const bool read = is_read(slot);
        std::string text;
        (append(text, slot, read, args), ...);
        if (read) {
            (answer(lport, slot, args), ...);
        }
        {
            std::lock_guard<std::mutex> hold(g_calls_mu);
            g_calls.push_back({slot, lport, text});
        }
        if (g_inside != nullptr) {
            g_inside(slot.c_str(), lport);
        }
        return g_fake_rc;
    }
};

constexpr csl_port_driver_t fake_driver_make()
{
    csl_port_driver_t t{};
    t.name = "fake";
#define TIDE_FAKE_SLOT(slot, params) t.slot = Fake<offsetof(csl_port_driver_t, slot), decltype(t.slot)>::fn;
    CSL_PORT_DRIVER_OPS(TIDE_FAKE_SLOT)
#undef TIDE_FAKE_SLOT
    return t;
}

inline const csl_port_driver_t g_fake = fake_driver_make();

// Every port of the chip reaches `driver` (the recording driver unless
// given) and the MAC ports are in use; the record of calls starts empty.
inline void fake_port_driver(u32 chip_id, const csl_port_driver_t *driver = &g_fake)
{
    for (u32 lport = 0; lport < CSL_ATOLREEF_PORT_COUNT; lport++) {
        g_dpl_reef_port_control[chip_id][lport].driver = driver;
    }
    csl_port_control_get(chip_id)->port_config.pbmp[PORT_CONFIG_ACTIVE] =
        tide::port::pbmp_range(0, CSL_PORT_MAX_MAC - 1);
    calls_clear();
}

// Back to a driver that answers nothing and returns 0.
inline void fake_port_reset()
{
    g_inside = nullptr;
    g_fake_rc = 0;
    g_answer.clear();
    calls_clear();
}

} // namespace tide::test::port_fake

#endif // TIDE_TEST_PORT_FAKE_H
