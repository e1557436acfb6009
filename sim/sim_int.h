// The chip model: internal structure.
//
// A model holds up to four chips.  Each chip has a register file per
// aperture (BAR 0, BAR 3 and BAR 4), backed by anonymous memory that is
// reserved but only materialised where it is touched, so the 256 MiB
// switch-core aperture costs what is written into it.  The HAL maps these
// same pages through the model's OS seam, so register accesses that bypass
// the hooks still land in the register file.
//
// Side effects are handlers keyed by (BAR, address), run synchronously for
// every write that comes through the register hooks.
#ifndef TIDE_SIM_INT_H
#define TIDE_SIM_INT_H

#include <tide/hal_os.h>
#include <tide/sim.h>

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstring>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace tide::sim {

constexpr uint32_t kMaxChips = 4;
constexpr uint32_t kDeviceAtolreef = 0x2025;
constexpr uint32_t kDeviceKelpreef = 0x9228;
constexpr uint32_t kDefaultVendor = 0x1F2E;
constexpr uint32_t kByteOrderNative = 2;

// Apertures of a chip and where they sit in the model's physical space.
enum Aperture : uint32_t { kApBar0 = 0, kApAxi = 1, kApLsw = 2, kApCount = 3 };
constexpr uint64_t kPhysBase = 0x100000000ull;
constexpr uint64_t kChipStride = 0x40000000ull;
constexpr uint64_t kApOffset[kApCount] = {0x00000000ull, 0x20000000ull, 0x10000000ull};
constexpr uint64_t kApSize[kApCount] = {0x00100000ull, 0x00100000ull, 0x10000000ull};
constexpr uint64_t kDmaPhysBase = 0x800000000ull;

// Reset controller on BAR 3.
constexpr uint32_t kResetSeqAddr = 0x47200;
constexpr uint32_t kResetStatusAddr = 0x47014;
constexpr uint32_t kResetSeqLast = 15;

constexpr uint32_t kPciConfigSize = 4096;

class Chip;
class ArlEngine;
class TcamEngine;
class EmEngine;
class MccEngine;
class Pipeline;
class TapPorts;
class IntrTree;
class SerdesEngine;
class SerdesFabric;
class QosEngine;
class MacEngine;
using WriteHandler = std::function<void(Chip &, uint32_t bar, uint32_t addr, uint64_t value)>;
// Runs before a CPU read of the address: the chip's logic brings the word
// up to date.
using ReadHandler = std::function<void(Chip &, uint32_t bar, uint32_t addr)>;

struct Region {
    uint8_t *mem = nullptr;
    uint64_t size = 0;
    uint64_t paddr = 0;
};

class Chip {
public:
    Chip(uint32_t id, uint32_t bus_number, SerdesFabric *fabric = nullptr);
    ~Chip();
    Chip(const Chip &) = delete;
    Chip &operator=(const Chip &) = delete;

    bool ok() const;
    uint32_t id() const { return id_; }
    // The board's SerDes fabric: its cables, and the chips frames cross to.
    SerdesFabric *fabric() const { return fabric_; }
    uint32_t bus_number() const { return bus_number_; }

    tide_sim_identity identity;
    std::array<bool, TIDE_SIM_ENGINE_COUNT> stalled{};

    const Region &region(uint32_t ap) const { return regions_[ap]; }
    // Aperture index of a BAR id, or -1.
    static int aperture_of_bar(uint32_t bar);

    // Register file in CPU order; false for an access outside the aperture
    // or on a BAR that does not exist.
    bool load(uint32_t bar, uint32_t addr, uint32_t width, uint64_t *value) const;
    bool store(uint32_t bar, uint32_t addr, uint32_t width, uint64_t value);
    // One word of the switch core as the chip's own logic reads and writes
    // it (the engines and the packet path); 0 outside the aperture.
    uint32_t core_word(uint32_t addr) const
    {
        const Region &r = regions_[kApLsw];
        if (static_cast<uint64_t>(addr) + 4 > r.size) {
            return 0;
        }
        uint32_t raw = 0;
        memcpy(&raw, r.mem + addr, 4);
        return identity.byte_order == kByteOrderNative ? raw : __builtin_bswap32(raw);
    }
    void set_core_word(uint32_t addr, uint32_t value)
    {
        Region &r = regions_[kApLsw];
        if (static_cast<uint64_t>(addr) + 4 <= r.size) {
            const uint32_t raw = identity.byte_order == kByteOrderNative ? value : __builtin_bswap32(value);
            memcpy(r.mem + addr, &raw, 4);
        }
    }

    // The bus side: an access of the SDK through the hooks.  Writes are
    // logged and run their handler.
    int bus_read(uint32_t bar, uint32_t addr, uint32_t width, uint64_t *value);
    int bus_write(uint32_t bar, uint32_t addr, uint32_t width, uint64_t value);

    void on_write(uint32_t bar, uint32_t addr, WriteHandler handler);
    // A handler of every 32-bit word in [first, end) that has none of its
    // own.
    void on_write_range(uint32_t bar, uint32_t first, uint32_t end, WriteHandler handler);
    void on_read(uint32_t bar, uint32_t addr, ReadHandler handler);
    void on_read_range(uint32_t bar, uint32_t first, uint32_t end, ReadHandler handler);

    // Called after every write through the hooks, once the write and its
    // side effects are done, on the writing thread and without the mutex.
    tide_sim_write_observer observer = nullptr;
    void *observer_user = nullptr;

    // Write log.
    void log_get(tide_sim_write *out, uint32_t max, uint32_t *count);
    void log_clear();

    // Interrupt line.  A wait returns for a raise (held until a wait takes
    // it) or while the level of the line is high and the line enabled; a
    // wait that returns for the level disables the line until the next
    // enable, as a driver masks a level-sensitive interrupt until it is
    // served.
    int irq_wait();
    void irq_exit();
    // Threads inside irq_wait, past the point from which an exit ends
    // their wait.
    uint64_t irq_waiters();
    void irq_raise();
    void irq_enable(uint64_t mask);
    void irq_line_set(bool level);
    std::atomic<uint64_t> irq_mask{0};

    std::array<uint8_t, kPciConfigSize> pci_config{};
    std::array<uint64_t, 3> vp_conf{};

    // Counters.
    uint64_t hook_reads = 0;
    uint64_t hook_writes = 0;

    std::mutex mutex; // guards the register file, handlers, engines and log

    // The MAC table.
    std::unique_ptr<ArlEngine> arl;
    // The TCAM blocks of acl_core.
    std::unique_ptr<TcamEngine> tcam;
    // The exact-match engine of the egress translation.
    std::unique_ptr<EmEngine> em;
    // The replication engine.
    std::unique_ptr<MccEngine> mcc;
    // The packet path.
    std::unique_ptr<Pipeline> pkt;
    // The front ports bound to TAP devices, and their I/O thread.
    std::unique_ptr<TapPorts> tap;
    // The interrupt tree and the line.
    std::unique_ptr<IntrTree> intr;
    // The SerDes lanes.
    std::unique_ptr<SerdesEngine> serdes;
    // Classification, policers, queues and remark.
    std::unique_ptr<QosEngine> qos;
    // Clocks, glue, PCS, MACs and link of the ports.
    std::unique_ptr<MacEngine> mac;

    // Microseconds the SDK waited for the chip to settle.
    std::atomic<uint64_t> waited_us{0};

    // Back to the state after power-on: LSW registers at reset values.
    void reset_core();

    // Bits that a test has made stick at a value, whatever is written.
    struct Stuck {
        uint32_t bar;
        uint32_t addr;
        uint32_t bit;
        uint32_t value;
    };
    std::vector<Stuck> stuck;

private:
    uint32_t id_;
    uint32_t bus_number_;
    SerdesFabric *fabric_ = nullptr;
    std::array<Region, kApCount> regions_{};
    std::unordered_map<uint64_t, WriteHandler> write_handlers_;
    std::unordered_map<uint64_t, ReadHandler> read_handlers_;
    template <typename H>
    struct RangeHandler {
        uint32_t bar, first, end;
        H handler;
    };
    std::vector<RangeHandler<WriteHandler>> write_ranges_;
    std::vector<RangeHandler<ReadHandler>> read_ranges_;
    void run_read_handler(uint32_t bar, uint32_t addr);
    std::vector<tide_sim_write> log_;
    size_t log_next_ = 0;
    size_t log_count_ = 0;

    std::mutex irq_mutex_;
    std::condition_variable irq_cv_;
    uint64_t irq_pending_ = 0;
    uint64_t irq_exit_generation_ = 0;
    bool irq_level_ = false;
    bool irq_enabled_ = true;
    uint64_t irq_waiters_ = 0;

    void install_engines();
    // A CPU access of one 32-bit word of the switch core, as its register
    // or table describes it.
    uint32_t core_read_word(uint32_t addr);
    void core_write_word(uint32_t addr, uint32_t value);
    void apply_stuck(uint32_t bar, uint32_t addr);
};

struct DmaBlock {
    uint8_t *mem = nullptr;
    uint64_t size = 0; // bytes reserved, a whole number of pages
    uint32_t chip = 0;
};

class Model {
public:
    explicit Model(uint32_t chip_count);
    bool ok() const;

    uint32_t installed() const { return static_cast<uint32_t>(chips_.size()); }
    std::atomic<uint32_t> reported{0}; // what CHIP_NUM_GET answers
    Chip *chip(uint32_t id) { return id < chips_.size() ? chips_[id].get() : nullptr; }
    // A chip the driver reports; NULL for one it does not.
    Chip *reported_chip(uint32_t id) { return id < reported ? chip(id) : nullptr; }

    // The device side.
    int ioctl_drv(unsigned long request, hal_devio *io);
    int ioctl_pkt(unsigned long request, hal_devio *io);
    void *map(uint64_t paddr, uint64_t length);
    // Whether an address lies in memory of the model.
    bool owns(const void *addr) const;

    std::atomic<uint64_t> ioctl_calls{0};
    uint64_t dma_frees = 0; // under the DMA mutex
    uint64_t dma_count() const;
    uint64_t dma_frees_get() const;
    ~Model();

private:
    std::vector<std::unique_ptr<Chip>> chips_;
    mutable std::mutex dma_mutex_;
    std::map<uint64_t, DmaBlock> dma_; // by physical address
    uint64_t dma_next_ = kDmaPhysBase;

    int dma_alloc(hal_devio *io);
    int dma_free(hal_devio *io);

public:
    // The cables between the chips' SerDes lanes; it outlives the chips.
    std::unique_ptr<SerdesFabric> serdes_fabric;
};

} // namespace tide::sim

#endif // TIDE_SIM_INT_H
