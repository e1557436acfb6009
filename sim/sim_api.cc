// The public face of the chip model: install, the OS seam it puts under
// the HAL, the register hooks, and the knobs.
#include <errno.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include <tide/shr.h>

#include "sim/sim_arl.h"
#include "sim/sim_em.h"
#include "sim/sim_mcc.h"
#include "sim/sim_int.h"
#include "sim/sim_intr.h"
#include "sim/sim_mac.h"
#include "sim/sim_mac_diag.h"
#include "sim/sim_macsec.h"
#include "sim/sim_pkt.h"
#include "sim/sim_qos.h"
#include "sim/sim_stat.h"
#include "sim/sim_serdes.h"
#include "sim/sim_tap.h"
#include "sim/sim_tcam.h"
#include "sim/sim_wire.h"

using tide::sim::Chip;
using tide::sim::Model;

namespace {

// File descriptors of the model's device nodes: far above what the process
// will open, so that they never stand for a real file.
constexpr int kFdDrv = 0x40000001;
constexpr int kFdPkt = 0x40000002;

std::mutex g_install_mutex;
std::atomic<Model *> g_model{nullptr};

Model *_model()
{
    return g_model.load(std::memory_order_acquire);
}

int _sim_open(const char *path, int flags)
{
    if (_model() != nullptr && path != nullptr) {
        if (strcmp(path, HAL_DEV_DRV) == 0) {
            return kFdDrv;
        }
        if (strcmp(path, HAL_DEV_CPUTR) == 0) {
            return kFdPkt;
        }
    }
    return open(path, flags);
}

int _sim_close(int fd)
{
    if (fd == kFdDrv || fd == kFdPkt) {
        return 0;
    }
    return close(fd);
}

int _sim_ioctl(int fd, unsigned long request, void *arg)
{
    Model *m = _model();
    if ((fd != kFdDrv && fd != kFdPkt) || m == nullptr || arg == nullptr) {
        errno = EBADF;
        return -1;
    }
    auto *io = static_cast<hal_devio *>(arg);
    io->result = fd == kFdDrv ? m->ioctl_drv(request, io) : m->ioctl_pkt(request, io);
    return io->result == 0 ? 0 : -1;
}

void *_sim_mmap(void *addr, size_t length, int prot, int flags, int fd, off_t offset)
{
    if (fd != kFdDrv) {
        return mmap(addr, length, prot, flags, fd, offset);
    }
    Model *m = _model();
    void *p = m != nullptr ? m->map(static_cast<uint64_t>(offset), length) : nullptr;
    if (p == nullptr) {
        errno = EINVAL;
        return MAP_FAILED;
    }
    return p;
}

// Mappings of the model's memory stay with the model: unmapping is a
// no-op for them.
int _sim_munmap(void *addr, size_t length)
{
    Model *m = _model();
    if (m != nullptr && m->owns(addr)) {
        return 0;
    }
    return munmap(addr, length);
}

// A wait of the SDK for a chip of the model takes no time: the model's
// engines are done within the write that starts them.  The time is
// counted per chip.
int _sim_usleep(uint32_t chip_id, uint32_t usec)
{
    Model *m = _model();
    Chip *c = m != nullptr ? m->chip(chip_id) : nullptr;
    if (c != nullptr) {
        c->waited_us += usec;
    }
    return 0;
}

const hal_ui_os_ops g_sim_os = {
    .open = _sim_open,
    .close = _sim_close,
    .ioctl = _sim_ioctl,
    .mmap = _sim_mmap,
    .munmap = _sim_munmap,
    .usleep = _sim_usleep,
};

Chip *_chip(uint32_t chip)
{
    Model *m = _model();
    return m != nullptr ? m->chip(chip) : nullptr;
}

// Status of a knob call on a chip.
int _chip_status(uint32_t chip)
{
    if (_model() == nullptr) {
        return -17;
    }
    return _chip(chip) != nullptr ? 0 : -3;
}

// The register hooks.  A 16-bit access reaches the 32-bit hooks too: a
// read returns the word that holds the address, shifted so that the half
// at the address is in the low 16 bits; a write at an address that is not
// a multiple of 4 can only be a 16-bit write and stores the low half.
int _sim_reg_read(uint32_t chip, uint32_t bar, uint32_t addr, uint32_t *value)
{
    Chip *c = _chip(chip);
    if (c == nullptr || value == nullptr) {
        return c == nullptr ? -7 : -4;
    }
    uint64_t v = 0;
    const uint32_t shift = (addr % 4) * 8;
    const int rc = c->bus_read(bar, addr - addr % 4, 4, &v);
    if (rc == 0) {
        *value = static_cast<uint32_t>(v >> shift);
    }
    return rc;
}

int _sim_reg_write(uint32_t chip, uint32_t bar, uint32_t addr, uint32_t value)
{
    Chip *c = _chip(chip);
    if (c == nullptr) {
        return -7;
    }
    if (addr % 4 != 0) {
        return c->bus_write(bar, addr, 2, value & 0xFFFF);
    }
    return c->bus_write(bar, addr, 4, value);
}

int _sim_reg_read64(uint32_t chip, uint32_t bar, uint32_t addr, uint64_t *value)
{
    Chip *c = _chip(chip);
    if (c == nullptr || value == nullptr) {
        return c == nullptr ? -7 : -4;
    }
    return c->bus_read(bar, addr, 8, value);
}

int _sim_reg_write64(uint32_t chip, uint32_t bar, uint32_t addr, uint64_t value)
{
    Chip *c = _chip(chip);
    return c == nullptr ? -7 : c->bus_write(bar, addr, 8, value);
}

// A call of the packet path: the chip (-17, -3), the pointers (-20), the
// port (-4), then `fn` on the chip's pipeline under the chip's mutex.
template <typename Fn>
int _on_packet_path(uint32_t chip, uint32_t lport, bool pointers_ok, Fn fn)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    if (!pointers_ok) {
        return -20;
    }
    if (lport >= tide::sim::kPorts) {
        return -4;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    return fn(*c->pkt);
}

// A call on a chip's TAP ports: the chip (-17, -3, each with a log line,
// as the calls log every refusal), then `fn`, which takes its own locks.
template <typename Fn>
int _on_taps(uint32_t chip, const char *what, Fn fn)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        tide::sim::tap_log(chip, tide::sim::kLogError, "tap: cannot %s on chip %u: %s\n", what, chip,
                           rc == -17 ? "no chip model installed" : "the model has no such chip");
        return rc;
    }
    return fn(*_chip(chip)->tap);
}

// A row of the TCAM under the chip's mutex: the chip (-17, -3), the row
// pointer (-20), then `fn` on the engine, false for a place beyond the chip.
template <typename Fn>
int _tcam_row(uint32_t chip, const void *row, Fn fn)
{
    const int rc = _chip_status(chip);
    if (rc != 0 || row == nullptr) {
        return rc != 0 ? rc : -20;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    return fn(*c->tcam) ? 0 : -4;
}

} // namespace

extern "C" {

int tide_sim_install(uint32_t chip_count)
{
    if (chip_count < 1 || chip_count > tide::sim::kMaxChips) {
        return -4;
    }
    std::lock_guard<std::mutex> lock(g_install_mutex);
    if (_model() != nullptr) {
        return -8;
    }
    auto *m = new (std::nothrow) Model(chip_count);
    if (m == nullptr || !m->ok()) {
        delete m;
        return -2;
    }
    g_model.store(m, std::memory_order_release);
    hal_ui_os_ops_set(&g_sim_os);
    return 0;
}

void tide_sim_uninstall(void)
{
    std::lock_guard<std::mutex> lock(g_install_mutex);
    Model *m = g_model.exchange(nullptr);
    if (m != nullptr) {
        hal_ui_os_ops_set(nullptr);
        delete m;
    }
}

void tide_sim_sdk_init_cfg(sdk_init_cfg *cfg)
{
    if (cfg == nullptr) {
        return;
    }
    cfg->reg_read = _sim_reg_read;
    cfg->reg_write = _sim_reg_write;
    cfg->reg_read64 = _sim_reg_read64;
    cfg->reg_write64 = _sim_reg_write64;
}

int tide_sim_identity_set(uint32_t chip, const tide_sim_identity *identity)
{
    const int rc = _chip_status(chip);
    if (rc != 0 || identity == nullptr) {
        return rc != 0 ? rc : -20;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    c->identity = *identity;
    const uint32_t id_word = identity->device_id << 16 | (identity->vendor_id & 0xFFFF);
    memcpy(c->pci_config.data(), &id_word, sizeof(id_word));
    return 0;
}

int tide_sim_identity_get(uint32_t chip, tide_sim_identity *identity)
{
    const int rc = _chip_status(chip);
    if (rc != 0 || identity == nullptr) {
        return rc != 0 ? rc : -20;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    *identity = c->identity;
    return 0;
}

int tide_sim_chip_count_set(uint32_t count)
{
    Model *m = _model();
    if (m == nullptr) {
        return -17;
    }
    if (count > m->installed()) {
        return -4;
    }
    m->reported = count;
    return 0;
}

int tide_sim_engine_stall_set(uint32_t chip, tide_sim_engine engine, int stall)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    if (static_cast<uint32_t>(engine) >= TIDE_SIM_ENGINE_COUNT) {
        return -4;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    c->stalled[engine] = stall != 0;
    return 0;
}

int tide_sim_qos_never_empty_set(uint32_t chip, uint32_t lport, int on)
{
    return _on_packet_path(chip, lport, true, [&](tide::sim::Pipeline &pl) {
        pl.qos().never_empty(lport, on != 0);
        return 0;
    });
}

int tide_sim_stat_set(uint32_t chip, const char *table, uint32_t index, uint64_t pkts, uint64_t bytes)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    if (table == nullptr) {
        return -20;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    return tide::sim::stat_set(*c, table, index, pkts, bytes);
}

int tide_sim_macsec_tx(uint32_t chip, uint32_t port, uint32_t sc, uint32_t frames, uint32_t bytes, uint32_t *done)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    if (done == nullptr) {
        return -20;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    return tide::sim::macsec_tx(*c, port, sc, frames, bytes, done);
}

int tide_sim_write_log_get(uint32_t chip, tide_sim_write *entries, uint32_t max, uint32_t *count)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    _chip(chip)->log_get(entries, max, count);
    return 0;
}

int tide_sim_write_log_clear(uint32_t chip)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    _chip(chip)->log_clear();
    return 0;
}

int tide_sim_reg_peek(uint32_t chip, uint32_t bar, uint32_t addr, uint32_t *value)
{
    const int rc = _chip_status(chip);
    if (rc != 0 || value == nullptr) {
        return rc != 0 ? rc : -20;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    uint64_t v = 0;
    if (!c->load(bar, addr, 4, &v)) {
        return -4;
    }
    *value = static_cast<uint32_t>(v);
    return 0;
}

int tide_sim_reg_poke(uint32_t chip, uint32_t bar, uint32_t addr, uint32_t value)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    return c->store(bar, addr, 4, value) ? 0 : -4;
}

int tide_sim_stuck_bit_set(uint32_t chip, uint32_t bar, uint32_t addr, uint32_t bit, uint32_t value)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    if (Chip::aperture_of_bar(bar) < 0 || bit > 31 || value > 1) {
        return -4;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    if (c->stuck.size() >= 64) {
        return -6;
    }
    c->stuck.push_back(Chip::Stuck{bar, addr & ~3u, bit, value});
    return 0;
}

int tide_sim_stuck_bits_clear(uint32_t chip)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    c->stuck.clear();
    return 0;
}

int tide_sim_irq_raise(uint32_t chip)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    _chip(chip)->irq_raise();
    return 0;
}

int tide_sim_write_observer_set(uint32_t chip, tide_sim_write_observer fn, void *user)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    c->observer = fn;
    c->observer_user = user;
    return 0;
}

int tide_sim_mcc_walk(uint32_t chip, uint32_t mrt_index, tide_sim_mcc_copy *copies, uint32_t max, uint32_t *count,
                      uint32_t *end)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    if (mrt_index >= c->mcc->roots()) {
        return -4;
    }
    std::vector<tide::sim::MccEngine::Copy> made;
    const uint32_t how = c->mcc->walk(mrt_index, &made);
    const tide::sim::MccEngine::ElbFields &f = c->mcc->elb();
    for (uint32_t i = 0; copies != nullptr && i < made.size() && i < max; i++) {
        copies[i] = tide_sim_mcc_copy{made[i].leaf, static_cast<uint32_t>(tide::sim::bits_get(made[i].elb, f.oport)),
                                      static_cast<uint32_t>(tide::sim::bits_get(made[i].elb, f.valid))};
    }
    if (count != nullptr) {
        *count = static_cast<uint32_t>(made.size());
    }
    if (end != nullptr) {
        *end = how;
    }
    return 0;
}

int tide_sim_arl_entry_get(uint32_t chip, uint32_t index, uint32_t entry[4])
{
    const int rc = _chip_status(chip);
    if (rc != 0 || entry == nullptr) {
        return rc != 0 ? rc : -20;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    tide::sim::ArlEntry e{};
    if (!c->arl->entry_get(index, &e)) {
        return -4;
    }
    memcpy(entry, e.data(), sizeof(e));
    return 0;
}

int tide_sim_em_row_get(uint32_t chip, uint32_t memory, uint32_t row, uint32_t words[TIDE_SIM_EM_ROW_WORDS])
{
    const int rc = _chip_status(chip);
    if (rc != 0 || words == nullptr) {
        return rc != 0 ? rc : -20;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    tide::sim::EmEngine::Row r{};
    if (!c->em->row_get(memory, row, &r)) {
        return -4;
    }
    memcpy(words, r.data(), sizeof(r));
    return 0;
}

int tide_sim_arl_count_get(uint32_t chip, uint32_t *static_count, uint32_t *dynamic_count, uint32_t *entries)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    if (static_count != nullptr) {
        *static_count = c->arl->static_count();
    }
    if (dynamic_count != nullptr) {
        *dynamic_count = c->arl->dynamic_count();
    }
    if (entries != nullptr) {
        *entries = c->arl->entries();
    }
    return 0;
}

int tide_sim_tcam_row_get(uint32_t chip, uint32_t block, uint32_t index, tide_sim_tcam_row *row)
{
    return _tcam_row(chip, row, [&](const tide::sim::TcamEngine &t) {
        tide::sim::TcamEngine::Row r;
        if (!t.row_get(block, index, &r)) {
            return false;
        }
        std::copy(r.data.begin(), r.data.end(), row->data);
        std::copy(r.care.begin(), r.care.end(), row->care);
        std::copy(r.action.begin(), r.action.end(), row->action);
        row->valid = r.valid ? 1 : 0;
        return true;
    });
}

int tide_sim_tcam_row_set(uint32_t chip, uint32_t block, uint32_t index, const tide_sim_tcam_row *row)
{
    return _tcam_row(chip, row, [&](tide::sim::TcamEngine &t) {
        tide::sim::TcamEngine::Row r;
        std::copy(row->data, row->data + r.data.size(), r.data.begin());
        std::copy(row->care, row->care + r.care.size(), r.care.begin());
        std::copy(row->action, row->action + r.action.size(), r.action.begin());
        r.valid = row->valid != 0;
        return t.row_set(block, index, r);
    });
}

int tide_sim_tcam_search(uint32_t chip, const uint32_t key[10], uint32_t bits, uint32_t block_bitmap,
                         uint32_t *block, uint32_t *index)
{
    if (block == nullptr || index == nullptr) {
        return -20;
    }
    if (bits > 32 * tide::sim::TcamEngine::kPlaneWords) {
        return _chip_status(chip) != 0 ? _chip_status(chip) : -4;
    }
    int hit = 0;
    const int rc = _tcam_row(chip, key, [&](const tide::sim::TcamEngine &t) {
        tide::sim::TcamEngine::Plane k{};
        std::copy(key, key + k.size(), k.begin());
        hit = t.search_right_aligned(k, bits, block_bitmap, block, index) ? 1 : 0;
        return true;
    });
    return rc != 0 ? rc : hit ? 0 : -9;
}

int tide_sim_packet_inject(uint32_t chip, uint32_t lport, const uint8_t *frame, uint32_t len)
{
    const int rc = _on_packet_path(chip, lport, frame != nullptr, [&](tide::sim::Pipeline &pl) {
        if (len == 0 || len > TIDE_SIM_FRAME_MAX) {
            return -4;
        }
        pl.inject(lport, frame, len);
        return 0;
    });
    // What the frame sent over cables and loops enters its ports now,
    // outside the chip's mutex.
    if (rc == 0 && _chip(chip)->fabric() != nullptr) {
        tide::sim::wire_deliver(*_chip(chip)->fabric());
    }
    return rc;
}

int tide_sim_packet_capture(uint32_t chip, uint32_t lport, uint8_t *buf, uint32_t size, uint32_t *len)
{
    return _on_packet_path(chip, lport, buf != nullptr && len != nullptr,
                           [&](tide::sim::Pipeline &pl) { return pl.capture(lport, buf, size, len); });
}

int tide_sim_packet_peek(uint32_t chip, uint32_t lport, uint32_t index, uint8_t *buf, uint32_t size,
                         tide_sim_frame_info *info)
{
    return _on_packet_path(chip, lport, true,
                           [&](tide::sim::Pipeline &pl) { return pl.peek(lport, index, buf, size, info); });
}

int tide_sim_port_stats_get(uint32_t chip, uint32_t lport, tide_sim_port_stats *stats)
{
    return _on_packet_path(chip, lport, stats != nullptr, [&](tide::sim::Pipeline &pl) {
        pl.stats(lport, stats);
        return 0;
    });
}

int tide_sim_time_advance(uint32_t chip, uint32_t ms)
{
    return _on_packet_path(chip, 0, true, [&](tide::sim::Pipeline &pl) {
        pl.advance(ms);
        return 0;
    });
}

int tide_sim_time_get(uint32_t chip, uint64_t *ms)
{
    return _on_packet_path(chip, 0, ms != nullptr, [&](tide::sim::Pipeline &pl) {
        *ms = pl.now();
        return 0;
    });
}

int tide_sim_pcap_open(uint32_t chip, const char *path)
{
    return _on_packet_path(chip, 0, path != nullptr, [&](tide::sim::Pipeline &pl) { return pl.pcap_open(path); });
}

int tide_sim_pcap_close(uint32_t chip)
{
    return _on_packet_path(chip, 0, true, [&](tide::sim::Pipeline &pl) { return pl.pcap_close(); });
}

int tide_sim_tap_bind(uint32_t chip, uint32_t lport, const char *ifname, uint32_t flags)
{
    return _on_taps(chip, "bind", [&](tide::sim::TapPorts &t) { return t.bind(lport, ifname, flags); });
}

int tide_sim_tap_unbind(uint32_t chip, uint32_t lport)
{
    return _on_taps(chip, "unbind", [&](tide::sim::TapPorts &t) { return t.unbind(lport); });
}

int tide_sim_tap_list(uint32_t chip, tide_sim_tap_info *out, uint32_t max, uint32_t *count)
{
    return _on_taps(chip, "list", [&](tide::sim::TapPorts &t) { return t.list(out, max, count); });
}

const char *tide_sim_tap_errmsg(int status)
{
    switch (status) {
    case -4:
        return "bad port, interface name or flags";
    case -7:
        return "no such binding or interface";
    case -8:
        return "the port is bound already";
    case -10:
        return "the interface name is in use";
    case -12:
        return "no permission (CAP_NET_ADMIN)";
    case -14:
        return "out of descriptors";
    case -16:
        return "no TUN/TAP driver (/dev/net/tun is missing)";
    case -17:
        return "no chip model installed";
    default:
        return shr_errmsg(status);
    }
}

int tide_sim_stats_get(uint32_t chip, tide_sim_stats *stats)
{
    const int rc = _chip_status(chip);
    if (rc != 0 || stats == nullptr) {
        return rc != 0 ? rc : -20;
    }
    Model *m = _model();
    Chip *c = _chip(chip);
    stats->ioctl_calls = m->ioctl_calls.load();
    stats->dma_blocks = m->dma_count();
    {
        std::lock_guard<std::mutex> lock(c->mutex);
        stats->hook_reads = c->hook_reads;
        stats->hook_writes = c->hook_writes;
    }
    stats->dma_frees = m->dma_frees_get();
    stats->irq_mask = c->irq_mask.load();
    stats->irq_waiters = c->irq_waiters();
    return 0;
}

// ---- the interrupt tree ----------------------------------------------------------

int tide_sim_intr_raise(uint32_t chip, uint32_t module_id, uint32_t subid, uint32_t intr_id, uint32_t addr_idx)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    return c->intr->raise(module_id, subid, intr_id, addr_idx);
}

int tide_sim_ecc_inject(uint32_t chip, const tide_sim_ecc_error *error)
{
    const int rc = _chip_status(chip);
    if (rc != 0 || error == nullptr) {
        return rc != 0 ? rc : -20;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    return c->intr->ecc_inject(*error);
}

int tide_sim_intr_line_get(uint32_t chip, uint32_t *level)
{
    const int rc = _chip_status(chip);
    if (rc != 0 || level == nullptr) {
        return rc != 0 ? rc : -20;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    *level = c->intr->line() ? 1 : 0;
    return 0;
}

// ---- SerDes lanes -----------------------------------------------------------------

int tide_sim_wait_get(uint32_t chip, uint64_t *usec)
{
    const int rc = _chip_status(chip);
    if (rc != 0 || usec == nullptr) {
        return rc != 0 ? rc : -20;
    }
    *usec = _chip(chip)->waited_us.load();
    return 0;
}

int tide_sim_serdes_link(uint32_t chip_a, uint32_t serdes_a, uint32_t chip_b, uint32_t serdes_b)
{
    int rc = _chip_status(chip_a);
    rc = rc == 0 ? _chip_status(chip_b) : rc;
    return rc != 0 ? rc : _model()->serdes_fabric->link(chip_a, serdes_a, chip_b, serdes_b);
}

int tide_sim_serdes_plug(uint32_t chip, uint32_t serdes_id)
{
    const int rc = _chip_status(chip);
    return rc != 0 ? rc : _model()->serdes_fabric->plug(chip, serdes_id);
}

int tide_sim_serdes_unlink(uint32_t chip, uint32_t serdes_id)
{
    const int rc = _chip_status(chip);
    return rc != 0 ? rc : _model()->serdes_fabric->unlink(chip, serdes_id);
}

int tide_sim_serdes_fault_set(uint32_t chip, uint32_t serdes_id, uint32_t faults)
{
    const int rc = _chip_status(chip);
    if (rc != 0 || serdes_id >= tide::sim::kSerdesLanesPerChip ||
        (faults & ~(TIDE_SIM_SERDES_NEVER_LOCK | TIDE_SIM_SERDES_NEVER_CALIBRATE)) != 0) {
        return rc != 0 ? rc : -4;
    }
    _model()->serdes_fabric->faults_set(chip, serdes_id, faults);
    return 0;
}

int tide_sim_serdes_lane_get(uint32_t chip, uint32_t serdes_id, tide_sim_serdes_lane *lane)
{
    const int rc = _chip_status(chip);
    if (rc != 0 || lane == nullptr || serdes_id >= tide::sim::kSerdesLanesPerChip) {
        return rc != 0 ? rc : (lane == nullptr ? -20 : -4);
    }
    const auto v = _model()->serdes_fabric->view(chip, serdes_id);
    *lane = tide_sim_serdes_lane{};
    lane->connection = static_cast<uint32_t>(v.link);
    lane->peer_chip = v.peer / tide::sim::kSerdesLanesPerChip;
    lane->peer_serdes = v.peer % tide::sim::kSerdesLanesPerChip;
    lane->tx_on = v.facts.tx_on;
    lane->rx_on = v.facts.rx_on;
    lane->rate_bps = v.facts.rate.bps();
    lane->tx_inverted = v.facts.tx_inverted;
    lane->rx_inverted = v.facts.rx_inverted;
    lane->near_loop = v.facts.near_loop;
    lane->far_loop = v.facts.far_loop;
    lane->prbs_generator = v.facts.gen_on;
    lane->prbs_checker = v.facts.chk_on;
    lane->cdr_locked = v.cdr_locked;
    lane->prbs_locked = v.prbs_locked;
    lane->prbs_errors = v.prbs_errors;
    return 0;
}

} // extern "C"

// ---- MAC, PCS and link -----------------------------------------------------------

namespace {

// Runs `fn` on the chip's MAC engine under the chip's mutex.
template <typename F>
int _on_mac(uint32_t chip, F fn)
{
    const int rc = _chip_status(chip);
    if (rc != 0) {
        return rc;
    }
    Chip *c = _chip(chip);
    std::lock_guard<std::mutex> lock(c->mutex);
    return fn(*c->mac);
}

} // namespace

extern "C" {

int tide_sim_clk400_never_lock_set(uint32_t chip, int on)
{
    return _on_mac(chip, [&](tide::sim::MacEngine &mac) {
        mac.clock_never_lock(on != 0);
        return 0;
    });
}

int tide_sim_mac_gating_set(uint32_t chip, int on)
{
    return _on_mac(chip, [&](tide::sim::MacEngine &mac) {
        mac.gating(on != 0);
        return 0;
    });
}

int tide_sim_mac_endpoint_set(uint32_t chip, uint32_t lport, int plugged)
{
    return _on_mac(chip, [&](tide::sim::MacEngine &mac) { return mac.endpoint(lport, plugged != 0); });
}

int tide_sim_mac_partner_set(uint32_t chip, uint32_t lport, const tide_sim_mac_partner *partner)
{
    return _on_mac(chip, [&](tide::sim::MacEngine &mac) { return mac.partner(lport, partner); });
}

int tide_sim_mac_crc_error_set(uint32_t chip, uint32_t lport, uint32_t count)
{
    return _on_mac(chip, [&](tide::sim::MacEngine &mac) { return mac.crc_errors(lport, count); });
}

int tide_sim_mac_phy_line_set(uint32_t chip, uint32_t lport, int up)
{
    return _on_mac(chip, [&](tide::sim::MacEngine &mac) { return mac.phy_line(lport, up != 0); });
}

int tide_sim_mac_port_get(uint32_t chip, uint32_t lport, tide_sim_mac_port *port)
{
    if (port == nullptr) {
        return _chip_status(chip) != 0 ? _chip_status(chip) : -20;
    }
    return _on_mac(chip, [&](tide::sim::MacEngine &mac) { return mac.port_get(lport, port); });
}

int tide_sim_mac_clk_delta_set(uint32_t chip, uint32_t mag, uint32_t rx_sign, uint32_t rx_delta, uint32_t tx_sign,
                               uint32_t tx_delta)
{
    return _on_mac(chip, [&](tide::sim::MacEngine &mac) {
        return mac.diag().drift(mag, rx_sign, rx_delta, tx_sign, tx_delta);
    });
}

} // extern "C"
