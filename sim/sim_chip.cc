// One simulated chip: register file, write log, engines, interrupt line.
#include <sys/mman.h>

#include <cstring>

#include "sim/sim_int.h"
#include "sim/sim_arl.h"
#include "sim/sim_em.h"
#include "sim/sim_mcc.h"
#include "sim/sim_intr.h"
#include "sim/sim_mac.h"
#include "sim/sim_macsec.h"
#include "sim/sim_pkt.h"
#include "sim/sim_qos.h"
#include "sim/sim_stat.h"
#include "sim/sim_regmap.h"
#include "sim/sim_serdes.h"
#include "sim/sim_tap.h"
#include "sim/sim_tcam.h"

namespace tide::sim {

namespace {

uint64_t _swap(uint64_t v, uint32_t width)
{
    switch (width) {
    case 2:
        return __builtin_bswap16(static_cast<uint16_t>(v));
    case 4:
        return __builtin_bswap32(static_cast<uint32_t>(v));
    default:
        return __builtin_bswap64(v);
    }
}

uint64_t _key(uint32_t bar, uint32_t addr)
{
    return static_cast<uint64_t>(bar) << 32 | addr;
}

} // namespace

Chip::Chip(uint32_t id, uint32_t bus_number, SerdesFabric *fabric) : id_(id), bus_number_(bus_number)
{
    identity = tide_sim_identity{kDefaultVendor, kDeviceAtolreef, 1, kByteOrderNative, 0};
    for (uint32_t ap = 0; ap < kApCount; ap++) {
        void *p = mmap(nullptr, kApSize[ap], PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1,
                       0);
        if (p == MAP_FAILED) {
            continue;
        }
        regions_[ap] = Region{static_cast<uint8_t *>(p), kApSize[ap], kPhysBase + id * kChipStride + kApOffset[ap]};
    }
    log_.resize(TIDE_SIM_WRITE_LOG_DEPTH);
    arl = std::make_unique<ArlEngine>(*this);
    tcam = std::make_unique<TcamEngine>(*this);
    em = std::make_unique<EmEngine>(*this);
    mcc = std::make_unique<MccEngine>(*this);
    qos = std::make_unique<QosEngine>(*this);
    pkt = std::make_unique<Pipeline>(*this);
    tap = std::make_unique<TapPorts>(*this);
    intr = std::make_unique<IntrTree>(*this);
    serdes = std::make_unique<SerdesEngine>(*this, fabric);
    mac = std::make_unique<MacEngine>(*this, fabric);
    if (ok()) {
        reset_core();
    }
    const uint32_t id_word = identity.device_id << 16 | identity.vendor_id;
    memcpy(pci_config.data(), &id_word, sizeof(id_word));
    install_engines();
    if (fabric != nullptr) {
        fabric->attach(id, this);
    }
    fabric_ = fabric;
}

Chip::~Chip()
{
    // Frames on the board's wires find this chip no more.
    if (fabric_ != nullptr) {
        fabric_->attach(id_, nullptr);
    }
    // The I/O thread stops before the packet path it feeds goes.
    tap->close_all();
    tap.reset();
    intr.reset();
    mac.reset();
    serdes.reset();
    pkt.reset();
    qos.reset();
    tcam.reset();
    em.reset();
    mcc.reset();
    arl.reset();
    for (Region &r : regions_) {
        if (r.mem != nullptr) {
            munmap(r.mem, r.size);
        }
    }
}

bool Chip::ok() const
{
    for (const Region &r : regions_) {
        if (r.mem == nullptr) {
            return false;
        }
    }
    return (arl == nullptr || arl->ok()) && (tcam == nullptr || tcam->ok()) && (em == nullptr || em->ok()) &&
           (mcc == nullptr || mcc->ok()) && (pkt == nullptr || pkt->ok()) && (intr == nullptr || intr->ok()) &&
           (serdes == nullptr || serdes->ok()) && (qos == nullptr || qos->ok()) &&
           (mac == nullptr || mac->ok());
}

int Chip::aperture_of_bar(uint32_t bar)
{
    switch (bar) {
    case 0:
        return kApBar0;
    case 3:
        return kApAxi;
    case 4:
        return kApLsw;
    default:
        return -1;
    }
}

bool Chip::load(uint32_t bar, uint32_t addr, uint32_t width, uint64_t *value) const
{
    const int ap = aperture_of_bar(bar);
    if (ap < 0 || static_cast<uint64_t>(addr) + width > regions_[ap].size) {
        return false;
    }
    uint64_t raw = 0;
    memcpy(&raw, regions_[ap].mem + addr, width);
    *value = identity.byte_order == kByteOrderNative ? raw : _swap(raw, width);
    return true;
}

bool Chip::store(uint32_t bar, uint32_t addr, uint32_t width, uint64_t value)
{
    const int ap = aperture_of_bar(bar);
    if (ap < 0 || static_cast<uint64_t>(addr) + width > regions_[ap].size) {
        return false;
    }
    const uint64_t raw = identity.byte_order == kByteOrderNative ? value : _swap(value, width);
    memcpy(regions_[ap].mem + addr, &raw, width);
    return true;
}

uint32_t Chip::core_read_word(uint32_t addr)
{
    const WordRule rule = RegMap::get().rule(addr);
    uint64_t v = 0;
    load(4, addr, 4, &v);
    if (rule.unreachable) {
        return 0;
    }
    if (rule.rc != 0) {
        store(4, addr, 4, v & ~static_cast<uint64_t>(rule.rc));
    }
    return rule.complement ? ~static_cast<uint32_t>(v) : static_cast<uint32_t>(v);
}

void Chip::core_write_word(uint32_t addr, uint32_t value)
{
    const WordRule rule = RegMap::get().rule(addr);
    if (rule.unreachable) {
        return;
    }
    uint64_t old = 0;
    load(4, addr, 4, &old);
    // Writable bits take the value, write-one-to-clear bits clear where a
    // one is written, everything else keeps what the chip holds.
    uint32_t now = (static_cast<uint32_t>(old) & ~rule.rw) | (value & rule.rw);
    now &= ~(value & rule.w1c);
    store(4, addr, 4, now);
}

void Chip::apply_stuck(uint32_t bar, uint32_t addr)
{
    for (const Stuck &s : stuck) {
        if (s.bar == bar && (s.addr & ~3u) == (addr & ~3u)) {
            uint64_t v = 0;
            load(bar, s.addr & ~3u, 4, &v);
            v = s.value ? v | (1ull << s.bit) : v & ~(1ull << s.bit);
            store(bar, s.addr & ~3u, 4, v);
        }
    }
}

int Chip::bus_read(uint32_t bar, uint32_t addr, uint32_t width, uint64_t *value)
{
    std::lock_guard<std::mutex> lock(mutex);
    hook_reads++;
    uint64_t probe = 0;
    if (!load(bar, addr, width, &probe)) {
        return -4;
    }
    if (bar != 4 || addr % 4 != 0 || width < 4) {
        *value = probe;
        return 0;
    }
    run_read_handler(bar, addr);
    if (width == 8) {
        run_read_handler(bar, addr + 4);
    }
    uint64_t v = core_read_word(addr);
    if (width == 8) {
        v |= static_cast<uint64_t>(core_read_word(addr + 4)) << 32;
    }
    *value = v;
    return 0;
}

int Chip::bus_write(uint32_t bar, uint32_t addr, uint32_t width, uint64_t value)
{
    std::unique_lock<std::mutex> lock(mutex);
    hook_writes++;
    uint64_t probe = 0;
    if (!load(bar, addr, width, &probe)) {
        return -4;
    }
    if (bar == 4 && addr % 4 == 0 && width >= 4) {
        core_write_word(addr, static_cast<uint32_t>(value));
        if (width == 8) {
            core_write_word(addr + 4, static_cast<uint32_t>(value >> 32));
        }
    } else {
        store(bar, addr, width, value);
    }
    apply_stuck(bar, addr);
    if (width == 8) {
        apply_stuck(bar, addr + 4);
    }
    log_[log_next_] = tide_sim_write{bar, addr, value, width * 8};
    log_next_ = (log_next_ + 1) % log_.size();
    if (log_count_ < log_.size()) {
        log_count_++;
    }
    // A handler of the address itself takes the write; otherwise the first
    // range that holds the address does.
    const auto it = write_handlers_.find(_key(bar, addr));
    if (it != write_handlers_.end()) {
        it->second(*this, bar, addr, value);
    } else {
        for (const auto &r : write_ranges_) {
            if (r.bar == bar && addr >= r.first && addr < r.end) {
                r.handler(*this, bar, addr, value);
                break;
            }
        }
    }
    const tide_sim_write_observer fn = observer;
    void *const user = observer_user;
    lock.unlock();
    if (fn != nullptr) {
        const tide_sim_write w{bar, addr, value, width * 8};
        fn(id_, &w, user);
    }
    return 0;
}

void Chip::run_read_handler(uint32_t bar, uint32_t addr)
{
    const auto it = read_handlers_.find(_key(bar, addr));
    if (it != read_handlers_.end()) {
        it->second(*this, bar, addr);
        return;
    }
    for (const auto &r : read_ranges_) {
        if (r.bar == bar && addr >= r.first && addr < r.end) {
            r.handler(*this, bar, addr);
            return;
        }
    }
}

void Chip::on_write(uint32_t bar, uint32_t addr, WriteHandler handler)
{
    // A second handler of the same address runs after the first.
    WriteHandler &slot = write_handlers_[_key(bar, addr)];
    if (slot) {
        slot = [first = std::move(slot), second = std::move(handler)](Chip &c, uint32_t b, uint32_t a, uint64_t v) {
            first(c, b, a, v);
            second(c, b, a, v);
        };
    } else {
        slot = std::move(handler);
    }
}

void Chip::on_write_range(uint32_t bar, uint32_t first, uint32_t end, WriteHandler handler)
{
    write_ranges_.push_back({bar, first, end, std::move(handler)});
}

void Chip::on_read(uint32_t bar, uint32_t addr, ReadHandler handler)
{
    read_handlers_[_key(bar, addr)] = std::move(handler);
}

void Chip::on_read_range(uint32_t bar, uint32_t first, uint32_t end, ReadHandler handler)
{
    read_ranges_.push_back({bar, first, end, std::move(handler)});
}

void Chip::log_get(tide_sim_write *out, uint32_t max, uint32_t *count)
{
    std::lock_guard<std::mutex> lock(mutex);
    const size_t first = (log_next_ + log_.size() - log_count_) % log_.size();
    const size_t n = out == nullptr ? 0 : std::min<size_t>(max, log_count_);
    for (size_t i = 0; i < n; i++) {
        out[i] = log_[(first + i) % log_.size()];
    }
    if (count != nullptr) {
        *count = static_cast<uint32_t>(log_count_);
    }
}

void Chip::log_clear()
{
    std::lock_guard<std::mutex> lock(mutex);
    log_next_ = 0;
    log_count_ = 0;
}

void Chip::reset_core()
{
    // Dropping the pages of the switch-core aperture turns every register
    // of it back to zero, at the cost of the pages that were touched.
    Region &lsw = regions_[kApLsw];
    madvise(lsw.mem, lsw.size, MADV_DONTNEED);
    RegMap::get().for_each_reset([this](uint32_t addr, uint32_t reset) { store(4, addr, 4, reset); });
    macsec_reset(*this);
    if (arl) {
        arl->clear();
    }
    if (tcam) {
        tcam->clear();
    }
    if (em) {
        em->clear();
    }
    if (serdes) {
        serdes->clear();
    }
    if (qos) {
        qos->clear();
    }
    if (mac) {
        mac->clear();
    }
    if (intr) {
        intr->update();
    }
}

// ---- engines -----------------------------------------------------------------

void Chip::install_engines()
{
    arl->install();
    tcam->install();
    em->install();
    intr->install();
    serdes->install();
    qos->install();
    mac->install();
    stat_install(*this);
    macsec_install(*this);
    // Reset controller: a write of 0 to the sequence register starts a
    // reset and clears the done bit; the last step of the sequence (15)
    // resets the switch core and sets the done bit (bit 0 on atolreef,
    // bit 2 on the kelpreef chips), unless the engine is stalled.
    on_write(3, kResetSeqAddr, [](Chip &chip, uint32_t, uint32_t, uint64_t value) {
        const uint32_t done = chip.identity.device_id == kDeviceKelpreef ? 1u << 2 : 1u << 0;
        uint64_t status = 0;
        chip.load(3, kResetStatusAddr, 4, &status);
        if (value == 0) {
            status &= ~static_cast<uint64_t>(done);
        } else if (value == kResetSeqLast && !chip.stalled[TIDE_SIM_ENGINE_RESET]) {
            chip.reset_core();
            status |= done;
        }
        chip.store(3, kResetStatusAddr, 4, status);
    });
}

// ---- interrupt line ----------------------------------------------------------------

int Chip::irq_wait()
{
    std::unique_lock<std::mutex> lock(irq_mutex_);
    const uint64_t generation = irq_exit_generation_;
    irq_waiters_++;
    irq_cv_.wait(lock, [&] {
        return irq_pending_ > 0 || (irq_level_ && irq_enabled_) || irq_exit_generation_ != generation;
    });
    irq_waiters_--;
    if (irq_exit_generation_ != generation) {
        return -12;
    }
    if (irq_pending_ > 0) {
        irq_pending_--;
    } else {
        irq_enabled_ = false;
    }
    return 0;
}

void Chip::irq_enable(uint64_t mask)
{
    irq_mask = mask;
    {
        std::lock_guard<std::mutex> lock(irq_mutex_);
        irq_enabled_ = true;
    }
    irq_cv_.notify_all();
}

void Chip::irq_line_set(bool level)
{
    {
        std::lock_guard<std::mutex> lock(irq_mutex_);
        if (irq_level_ == level) {
            return;
        }
        irq_level_ = level;
    }
    if (level) {
        irq_cv_.notify_all();
    }
}

uint64_t Chip::irq_waiters()
{
    std::lock_guard<std::mutex> lock(irq_mutex_);
    return irq_waiters_;
}

void Chip::irq_exit()
{
    {
        std::lock_guard<std::mutex> lock(irq_mutex_);
        irq_exit_generation_++;
    }
    irq_cv_.notify_all();
}

void Chip::irq_raise()
{
    {
        std::lock_guard<std::mutex> lock(irq_mutex_);
        irq_pending_++;
    }
    irq_cv_.notify_all();
}

} // namespace tide::sim
