/*
 * tide: the chip model, a simulated atolreef behind the HAL.
 *
 * The model stands where the kernel driver would: it answers the device
 * nodes, the command records and the aperture mappings of the HAL, and it
 * receives every register access synchronously through the register hooks
 * of sdk_init_cfg, so that its engines (reset, init-done, ...) react when
 * the SDK writes.
 *
 *   tide_sim_install(2);                  before init_api_base_software_process
 *   sdk_init_cfg cfg = {0};
 *   tide_sim_sdk_init_cfg(&cfg);          register hooks into the model
 *   init_api_base_software_process(&cfg);
 *   init_api_software_process(0, &cfg); ...
 *   ...
 *   deinit_api_base_software_process();
 *   tide_sim_uninstall();
 *
 * Register accesses that bypass the hooks (an application that does not
 * call tide_sim_sdk_init_cfg) still reach the model's register file through
 * the mapped apertures, but no engine sees them.
 */
#ifndef TIDE_SIM_H
#define TIDE_SIM_H

#include <tide/init.h>
#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

/* Installs the model with `chip_count` (1 to 4) atolreef chips: device id
 * 0x2025, byte order 2, bus type 0.  0, or -4 for a bad count, -8 when a
 * model is installed already, -2 for no memory. */
TIDE_API int tide_sim_install(uint32_t chip_count);
/* Removes the model and frees its memory; the C library's calls are the
 * HAL's seam again.  Call it after deinit_api_base_software_process. */
TIDE_API void tide_sim_uninstall(void);
/* Fills the register hooks of a caller's configuration record so that every
 * register access of the SDK reaches the model. */
TIDE_API void tide_sim_sdk_init_cfg(sdk_init_cfg *cfg);

/* ---- knobs --------------------------------------------------------------
 * All knobs return 0, -3 for a chip that the model does not have, or -17
 * when no model is installed. */

typedef struct tide_sim_identity {
    uint32_t vendor_id;
    uint32_t device_id; /* 0x2025 atolreef, 0x9228 kelpreef (revision 1: kelpreef2) */
    uint32_t revision;
    uint32_t byte_order; /* 2: registers as they stand; other: every access byte-swapped */
    uint32_t bus_type;   /* 0 master, 1 slave, 2 SPI */
} tide_sim_identity;

/* Identity the model reports for a chip; set it before the SDK attaches the
 * chip.  The register file keeps its content. */
TIDE_API int tide_sim_identity_set(uint32_t chip, const tide_sim_identity *identity);
TIDE_API int tide_sim_identity_get(uint32_t chip, tide_sim_identity *identity);

/* Number of chips the driver reports, 0 up to the installed count. */
TIDE_API int tide_sim_chip_count_set(uint32_t count);

/* Engines of the chip that a test can make never finish. */
typedef enum tide_sim_engine {
    TIDE_SIM_ENGINE_RESET = 0,    /* hard reset status of the reset controller */
    TIDE_SIM_ENGINE_ARL = 1,      /* command block of the MAC table: never finishes */
    TIDE_SIM_ENGINE_ARL_INIT = 2, /* init of the MAC table: never reports done */
    TIDE_SIM_ENGINE_TCAM = 3,     /* TCAM commands never finish, block resets never report done */
    TIDE_SIM_ENGINE_EM = 4,       /* command block of the exact-match engine: never finishes */
    TIDE_SIM_ENGINE_EM_INIT = 5,  /* init of the exact-match memories: never reports done */
    TIDE_SIM_ENGINE_MACSEC_INIT = 6, /* the MACsec memories' init-done bits never read 1 */
    TIDE_SIM_ENGINE_COUNT
} tide_sim_engine;
/* `stall` 1: the engine never reports completion; 0: normal. */
TIDE_API int tide_sim_engine_stall_set(uint32_t chip, tide_sim_engine engine, int stall);

/* QoS: `on` 1 makes the queues of `lport` never report empty, so that a
 * flush of the port waits in vain; 0 back to normal (the model holds no
 * frames, so a port's queues are empty).  -4 for a port above 31. */
TIDE_API int tide_sim_qos_never_empty_set(uint32_t chip, uint32_t lport, int on);

/* Statistics: entry `index` of the statistics table `table` (its name in
 * the chip description, e.g. "stat_iport_stat_result_tbl") holds `pkts`
 * packets and `bytes` bytes, cut to the entry's 36 and 44 bits; for a wrap
 * test.  -7 for a table that is not a statistics table, -4 for an index
 * beyond it. */
TIDE_API int tide_sim_stat_set(uint32_t chip, const char *table, uint32_t index, uint64_t pkts, uint64_t bytes);

/* MACsec: the encrypt side protects `frames` frames of `bytes` bytes for
 * secure channel `sc` leaving port `port`, with the SC's encoding SA.  No
 * cipher runs: each frame takes the SA's next packet number and counts in
 * the MIB rows (protected or encrypted by the SC's protect mode).  The
 * frame that takes the number just below the SA's pn_th raises PN-expire;
 * a frame that finds no number left (past 0xFFFFFFFF without XPN, unless
 * the chip-wide rollover is on) is not sent and raises SA-expire.
 * `done` gets the frames protected.  -4 for a port, SC or SA beyond the
 * tables, -7 for an SC or SA not valid. */
TIDE_API int tide_sim_macsec_tx(uint32_t chip, uint32_t port, uint32_t sc, uint32_t frames, uint32_t bytes,
                                uint32_t *done);

/* The write log: every register write that reaches the model through the
 * hooks, in order.  It holds the last TIDE_SIM_WRITE_LOG_DEPTH writes. */
#define TIDE_SIM_WRITE_LOG_DEPTH 65536u
typedef struct tide_sim_write {
    uint32_t bar;
    uint32_t addr;
    uint64_t value;
    uint32_t width; /* 16, 32 or 64 */
} tide_sim_write;
/* Copies up to `max` entries, oldest first, and gives the number held. */
TIDE_API int tide_sim_write_log_get(uint32_t chip, tide_sim_write *entries, uint32_t max, uint32_t *count);
TIDE_API int tide_sim_write_log_clear(uint32_t chip);

/* An observer of register writes: called after every write that reaches
 * the model through the hooks, once the write and its side effects are
 * done, on the thread that wrote and without the chip's mutex, so that it
 * may read the model (tide_sim_mcc_walk, tide_sim_reg_peek, ...).  A test
 * checks with it what the chip would see in every intermediate state of a
 * sequence of writes.  NULL removes it; one observer per chip. */
typedef void (*tide_sim_write_observer)(uint32_t chip, const tide_sim_write *write, void *user);
TIDE_API int tide_sim_write_observer_set(uint32_t chip, tide_sim_write_observer fn, void *user);

/* Reads and writes the register file directly, as the chip's own logic
 * would: no engine runs and nothing is logged.  Values are in CPU order. */
TIDE_API int tide_sim_reg_peek(uint32_t chip, uint32_t bar, uint32_t addr, uint32_t *value);
TIDE_API int tide_sim_reg_poke(uint32_t chip, uint32_t bar, uint32_t addr, uint32_t value);

/* Makes one bit of a register word stick at `value` (0 or 1) whatever the
 * CPU writes there, as a broken memory cell would: the RAM test finds it.
 * Up to 64 stuck bits per chip; clear removes them all. */
TIDE_API int tide_sim_stuck_bit_set(uint32_t chip, uint32_t bar, uint32_t addr, uint32_t bit, uint32_t value);
TIDE_API int tide_sim_stuck_bits_clear(uint32_t chip);

/* Raises the chip's interrupt line: a thread blocked in the interrupt wait
 * returns with success.  An interrupt raised while nobody waits is held
 * until the next wait. */
TIDE_API int tide_sim_irq_raise(uint32_t chip);

/* The MAC table as the chip holds it.  `index` runs over bar0, then bar1,
 * then the cam; an entry is 128 bits, entry[0] holding bits 31..0.  -4 for
 * an index beyond the table. */
TIDE_API int tide_sim_arl_entry_get(uint32_t chip, uint32_t index, uint32_t entry[4]);
/* Entries of the table, and the size of the walk of tide_sim_arl_entry_get. */
TIDE_API int tide_sim_arl_count_get(uint32_t chip, uint32_t *static_count, uint32_t *dynamic_count,
                                    uint32_t *entries);

/* The TCAM of acl_core as the chip holds it: a row by (block, index),
 * whatever the block's mode.  `data` and `care` hold the row's bits
 * right-aligned, bit i in word i / 32 (as many bits as the block's rows
 * are wide), `action` its 96-bit action row, action[0] holding bits 31..0.
 * -4 for a block beyond the chip (16 blocks, 32 on kelpreef) or an index
 * above 255, -20 for a NULL row.  The set form stands for a fault of the
 * memory: no command, no log. */
typedef struct tide_sim_tcam_row {
    uint32_t data[10];
    uint32_t care[10];
    uint32_t action[3];
    uint32_t valid;
} tide_sim_tcam_row;
TIDE_API int tide_sim_tcam_row_get(uint32_t chip, uint32_t block, uint32_t index, tide_sim_tcam_row *row);
TIDE_API int tide_sim_tcam_row_set(uint32_t chip, uint32_t block, uint32_t index, const tide_sim_tcam_row *row);
/* The chip's search as the lookups of its stages run it, without its
 * command registers (so it disturbs no command of the CPU in progress):
 * the first valid row that matches `key` (`bits` wide, up to 320, held
 * right-aligned as a row holds it) in ascending block id among the blocks
 * of `block_bitmap`, then in ascending index.  0 with its place, -9 when
 * nothing matches, -4 for a width beyond 320, -20 for NULL. */
TIDE_API int tide_sim_tcam_search(uint32_t chip, const uint32_t key[10], uint32_t bits, uint32_t block_bitmap,
                                  uint32_t *block, uint32_t *index);

/* The exact-match engine of the egress translation as the chip holds it:
 * row `row` of `memory` (0 barrel 0, 1 barrel 1, 2 the CAM) in words of 32
 * bits, words[0] holding bits 31..0, bits beyond the row 0.  -4 for a
 * memory or row beyond the engine, -20 for NULL. */
#define TIDE_SIM_EM_ROW_WORDS 6u
TIDE_API int tide_sim_em_row_get(uint32_t chip, uint32_t memory, uint32_t row,
                                 uint32_t words[TIDE_SIM_EM_ROW_WORDS]);

/* The replication engine as the chip walks it: root `mrt_index` of
 * mcc_mrt, then for rep_num leaves of mcc_mlib from its first leaf, one
 * copy per leaf reached, with the key (oport_inf_causeid) of the leaf's
 * epro_elb_table entry.  `end` tells how the walk ended: */
#define TIDE_SIM_MCC_COMPLETE 0u      /* rep_num copies */
#define TIDE_SIM_MCC_ROOT_INVALID 1u  /* the root is not valid: no copy */
#define TIDE_SIM_MCC_LEAF_INVALID 2u  /* a leaf in the count is not valid */
#define TIDE_SIM_MCC_CUT 3u           /* a leaf in the count has no successor */
#define TIDE_SIM_MCC_LOOP 4u          /* a leaf came again */
typedef struct tide_sim_mcc_copy {
    uint32_t leaf;
    uint32_t key;   /* oport_inf_causeid of the leaf's edit */
    uint32_t valid; /* the edit's valid bit */
} tide_sim_mcc_copy;
/* Copies up to `max` copies, gives their number and the end.  -4 for a
 * root beyond the table (1024 roots). */
TIDE_API int tide_sim_mcc_walk(uint32_t chip, uint32_t mrt_index, tide_sim_mcc_copy *copies, uint32_t max,
                               uint32_t *count, uint32_t *end);

/* ---- the packet path ----------------------------------------------------
 * A frame injected on a port runs through the chip's pipeline as the SDK
 * has programmed it (tag parsing, port and VLAN rows, learning, the MAC
 * table, flooding, egress tag handling) and the copies that leave the chip
 * wait in a queue per port.  Frames are given and returned without their
 * FCS.  Each port keeps the last TIDE_SIM_QUEUE_FRAMES frames it sent;
 * older ones are forgotten (and counted).  Port 31 is the CPU port: frames
 * the chip sends to the CPU wait there with their to-CPU cause. */

#define TIDE_SIM_QUEUE_FRAMES 1024u
/* Longest frame the injection takes; the chip's own length checks apply to
 * shorter ones. */
#define TIDE_SIM_FRAME_MAX 65535u
/* Cause of a frame that was forwarded rather than sent to the CPU. */
#define TIDE_SIM_CAUSE_NONE 0xFFFFFFFFu

/* A frame arrives on `lport` (0 to 31; 31 comes from the CPU).  0 when the
 * chip took it, whatever it then decided; -4 for a bad port or a length of
 * 0 or above TIDE_SIM_FRAME_MAX, -20 for a NULL frame. */
TIDE_API int tide_sim_packet_inject(uint32_t chip, uint32_t lport, const uint8_t *frame, uint32_t len);
/* Takes the oldest frame that left `lport`: copies it into `buf` and its
 * length into `*len`.  -7 when none is waiting; -4 for a bad port, or when
 * `size` is too small (then `*len` gives the size needed and the frame
 * stays); -20 for a NULL pointer. */
TIDE_API int tide_sim_packet_capture(uint32_t chip, uint32_t lport, uint8_t *buf, uint32_t size, uint32_t *len);

typedef struct tide_sim_frame_info {
    uint32_t len;      /* bytes of the frame */
    uint32_t src_port; /* the port it came in by */
    uint32_t cause;    /* to-CPU cause, or TIDE_SIM_CAUSE_NONE */
    uint64_t time_ms;  /* model time when it left */
    uint32_t queue;    /* the queue it left by: lport * 8 + queue offset, the CPU's 240 + offset */
} tide_sim_frame_info;
/* Reads the `index`-th oldest frame waiting on `lport` without taking it:
 * up to `size` bytes into `buf` (which may be NULL) and its description
 * into `info` (which may be NULL).  -7 when there is no such frame. */
TIDE_API int tide_sim_packet_peek(uint32_t chip, uint32_t lport, uint32_t index, uint8_t *buf, uint32_t size,
                                  tide_sim_frame_info *info);

typedef struct tide_sim_port_stats {
    uint64_t rx_frames;       /* frames injected on the port */
    uint64_t rx_bytes;
    uint64_t rx_dropped;      /* of these, dropped by the ingress pipeline */
    uint32_t last_drop_cause; /* cause of the last of them */
    uint32_t waiting;         /* frames sent and not yet captured */
    uint64_t tx_frames;       /* frames the port sent */
    uint64_t tx_bytes;
    uint64_t tx_forgotten;    /* sent frames the full queue forgot */
    uint64_t tx_lost;         /* sent frames no port received (TIDE_SIM_CAUSE_WIRE_NO_PORT) */
    uint32_t last_lost_cause; /* cause of the last of them */
} tide_sim_port_stats;
TIDE_API int tide_sim_port_stats_get(uint32_t chip, uint32_t lport, tide_sim_port_stats *stats);

/* The model's clock, in milliseconds from the start of the model.  It only
 * moves when advanced; aging runs on it. */
TIDE_API int tide_sim_time_advance(uint32_t chip, uint32_t ms);
TIDE_API int tide_sim_time_get(uint32_t chip, uint64_t *ms);

/* From now on every frame in and out of the chip is written to a capture
 * file (pcapng: one interface per port named "port0" to "port31", the
 * direction in each frame's flags, drop and to-CPU causes as comments).
 * -8 when a file is open already, -11 when the file cannot be written,
 * -20 for a NULL path. */
TIDE_API int tide_sim_pcap_open(uint32_t chip, const char *path);
/* Closes the file; -7 when none is open, -11 when writing it failed. */
TIDE_API int tide_sim_pcap_close(uint32_t chip);

/* ---- ports on Linux network interfaces ----------------------------------
 * A front port (0 to 27) bound to a TAP device is a cable to a Linux
 * network interface: every frame the kernel sends on the TAP enters the
 * chip on that port, and every frame the chip sends on the port is written
 * to the TAP instead of waiting in the port's capture queue.  One I/O
 * thread per chip reads the bound TAPs; it runs while a port of the chip is
 * bound.  The interface's state (up, addresses, namespace) is the user's:
 * the model leaves it as it finds it.  A TAP the model created goes away
 * with its binding; one it attached to stays. */

/* Longest interface name, without its NUL (IFNAMSIZ - 1). */
#define TIDE_SIM_IFNAME_MAX 15u
/* Highest port a TAP can be bound to: the front ports 0 to 27. */
#define TIDE_SIM_TAP_PORT_MAX 27u

/* Flags of tide_sim_tap_bind.  Without either, a TAP of that name is
 * attached to when one exists and nobody holds it, else created. */
#define TIDE_SIM_TAP_CREATE 0x1u /* only create: -10 when the name is taken */
#define TIDE_SIM_TAP_ATTACH 0x2u /* only attach: -7 when there is no such interface */

/* Binds `lport` of `chip` to the TAP `ifname` (1 to 15 characters, no
 * '/', ':' or blank; a '%d' in it lets the kernel number the name, which
 * tide_sim_tap_list then gives).  0, or:
 *   -4  a port above 27, a bad name or both flags
 *   -20 NULL name
 *   -8  the port is bound already
 *   -10 the name is in use: a TAP another descriptor holds (another port,
 *       another program), an interface of another kind, or one that exists
 *       under TIDE_SIM_TAP_CREATE
 *   -7  no interface of that name under TIDE_SIM_TAP_ATTACH
 *   -16 /dev/net/tun is missing (no TUN/TAP driver)
 *   -12 no permission (CAP_NET_ADMIN, or the device node's mode)
 *   -14 out of descriptors, -11 any other refusal of the kernel
 *   -17 no model installed, -3 a chip the model does not have
 * Every refusal logs a line (module PKT, level ERROR) and changes nothing. */
TIDE_API int tide_sim_tap_bind(uint32_t chip, uint32_t lport, const char *ifname, uint32_t flags);

/* Unbinds `lport`: when it returns, no frame is written to the TAP any more
 * and its descriptor is closed.  -7 when the port is not bound, -4 for a
 * port above 27. */
TIDE_API int tide_sim_tap_unbind(uint32_t chip, uint32_t lport);

/* What a status of the TAP calls means to a user, in words ("the interface
 * name is in use"); the status text of shr_errmsg for the codes these
 * calls do not give. */
TIDE_API const char *tide_sim_tap_errmsg(int status);

/* Bits of tide_sim_tap_info.state. */
#define TIDE_SIM_TAP_CREATED 0x1u /* the model created the TAP: it goes with the binding */
#define TIDE_SIM_TAP_GONE 0x2u    /* the interface was destroyed (its namespace deleted, ...) */

typedef struct tide_sim_tap_info {
    uint32_t lport;
    char ifname[TIDE_SIM_IFNAME_MAX + 1];
    uint32_t state;       /* TIDE_SIM_TAP_* bits */
    uint64_t rx_frames;   /* frames the kernel sent that entered the chip */
    uint64_t tx_frames;   /* frames the chip sent, written to the TAP */
    uint64_t tx_dropped;  /* frames the chip sent that the TAP refused */
    int32_t tx_errno;     /* errno of the last refusal (EIO: the interface is down) */
} tide_sim_tap_info;

/* The bindings of a chip in port order: up to `max` into `out` (which may
 * be NULL when `max` is 0) and their number into `*count`.  -20 for a NULL
 * count. */
TIDE_API int tide_sim_tap_list(uint32_t chip, tide_sim_tap_info *out, uint32_t max, uint32_t *count);

/* ---- SerDes lanes ---------------------------------------------------------
 * Each chip has eight SerDes lanes (serdes_id 0 to 7).  A lane's
 * transmitter and receiver reach the outside through a cable to another
 * lane (of the same chip or of another chip of the model) or a loopback
 * plug, which returns the lane's own signal to it; a lane with neither
 * receives nothing.  A receiver's clock recovery locks when a signal of
 * its rate arrives; its PRBS checker locks when the signal comes from a
 * generator of the same pattern and arrives upright (the polarity
 * inversions on its way cancel out), and counts every error the generator
 * injects.  Cables and plugs are not chip state: they stay through resets
 * of the chips.  Every call gives -4 for a serdes_id above 7. */

/* A cable between two lanes, both directions.  -4 for a cable from a lane
 * to itself (that is a plug), -8 when either lane has a cable or plug. */
TIDE_API int tide_sim_serdes_link(uint32_t chip_a, uint32_t serdes_a, uint32_t chip_b, uint32_t serdes_b);
/* A loopback plug in a lane; -8 when it has a cable or plug. */
TIDE_API int tide_sim_serdes_plug(uint32_t chip, uint32_t serdes_id);
/* Takes out the lane's cable (both ends) or plug; -7 when it has none. */
TIDE_API int tide_sim_serdes_unlink(uint32_t chip, uint32_t serdes_id);

/* Faults of a lane, for the time-out paths of the SDK: a lane that never
 * locks (its clock recovery and PRBS checker stay unlocked, whatever it
 * receives), a lane whose measurement engine never finishes (the offset
 * calibration reads nothing, an eye measurement never reports done).  0
 * takes them away. */
#define TIDE_SIM_SERDES_NEVER_LOCK 0x1u
#define TIDE_SIM_SERDES_NEVER_CALIBRATE 0x2u
TIDE_API int tide_sim_serdes_fault_set(uint32_t chip, uint32_t serdes_id, uint32_t faults);

/* A lane as the model sees it. */
typedef struct tide_sim_serdes_lane {
    uint32_t connection;  /* 0 none, 1 a cable, 2 a plug */
    uint32_t peer_chip;   /* the cable's other end */
    uint32_t peer_serdes;
    uint32_t tx_on;       /* the transmitter drives its wire */
    uint32_t rx_on;       /* the receiver runs */
    uint64_t rate_bps;    /* line rate of the lane's clock, 0 without one */
    uint32_t tx_inverted;
    uint32_t rx_inverted;
    uint32_t near_loop;   /* the transmitter drives the lane's own receiver */
    uint32_t far_loop;    /* what the receiver recovers is sent out again */
    uint32_t prbs_generator;
    uint32_t prbs_checker;
    uint32_t cdr_locked;
    uint32_t prbs_locked;
    uint32_t prbs_errors; /* counted since the checker started */
} tide_sim_serdes_lane;
TIDE_API int tide_sim_serdes_lane_get(uint32_t chip, uint32_t serdes_id, tide_sim_serdes_lane *lane);

/* Microseconds the SDK has waited for the chip to settle (a PLL to ramp, a
 * lane to calibrate): with the model installed such a wait returns at once
 * and is counted here.  -20 for a NULL pointer. */
TIDE_API int tide_sim_wait_get(uint32_t chip, uint64_t *usec);

/* Counters of the driver side, for tests and for a user's curiosity. */
typedef struct tide_sim_stats {
    uint64_t ioctl_calls;  /* command records on /dev/hal_drv */
    uint64_t dma_blocks;   /* DMA blocks currently allocated */
    uint64_t dma_frees;    /* DMA_FREE commands received */
    uint64_t irq_mask;     /* last mask given by IRQ_ENABLE */
    uint64_t hook_reads;   /* register reads through the hooks */
    uint64_t hook_writes;  /* register writes through the hooks */
    uint64_t irq_waiters;  /* threads blocked in IRQ_WAIT, which IRQ_EXIT ends */
} tide_sim_stats;
TIDE_API int tide_sim_stats_get(uint32_t chip, tide_sim_stats *stats);

/* ---- the interrupt tree -------------------------------------------------
 * Every interrupt type of the chip (module, subid, type, instance: the
 * numbers of interrupt_api_*) has a status bit and, most, a mask bit.  The
 * model computes its tree from the leaves up: the second level of the MAG,
 * SerDes and MACsec sources, the category registers, the top register and
 * the line to the interrupt wait.  The line is level-sensitive: once the
 * SDK enables it again after a wait, it rises again while a cause is
 * pending.  The engines raise their own events (learning, aging, moves and
 * full buckets of the MAC table; errors the TCAM scan finds). */

/* Sets the status bits of a type at one instance, as the chip's logic
 * would.  -4 for a type or instance the chip does not have, and for the
 * types of the category registers and the top, which the tree computes. */
TIDE_API int tide_sim_intr_raise(uint32_t chip, uint32_t module_id, uint32_t subid, uint32_t intr_id,
                                 uint32_t addr_idx);

/* An ECC error of a memory: the details go into the type's debug register
 * (the error type and the entry), its counts grow by one, and the type is
 * raised.  With `corrupt` 1 the stored entry is damaged too (a bit of a
 * direct table entry, of a TCAM row's plane or action), so that a repair
 * shows. */
typedef struct tide_sim_ecc_error {
    uint32_t module_id;
    uint32_t subid;
    uint32_t intr_id;
    uint32_t addr_idx;
    uint32_t ecc_type; /* bit 0 notice, bit 1 single-bit, bit 2 multi-bit error */
    uint32_t index;    /* the damaged entry (the row of a TCAM block) */
    uint32_t corrupt;
} tide_sim_ecc_error;
/* -4 for a type without ECC description or an entry beyond its memory,
 * -20 for NULL. */
TIDE_API int tide_sim_ecc_inject(uint32_t chip, const tide_sim_ecc_error *error);

/* The level of the chip's interrupt line: 1 while a cause is pending and
 * enabled and the line is open. */
TIDE_API int tide_sim_intr_line_get(uint32_t chip, uint32_t *level);

/* ---- MAC, PCS and link ---------------------------------------------------
 * The 400 MHz input clock of the MACs locks when the pulse of bit 20 of the
 * general register 0x47030 (BAR 3) ends: bit 21 of the general register
 * 0x47044 reads 1 from then on, until the next pulse starts. */

/* `on` 1: the clock never locks (bit 21 stays 0); 0: normal. */
TIDE_API int tide_sim_clk400_never_lock_set(uint32_t chip, int on);

/* The link of a front port (0 to 27) is computed from its registers (glue
 * mode, the MAG's protocol and channels, resets, clock gates, force
 * register, auto-negotiation) and from what reaches it: a MAC inner loop,
 * the lane's cable or plug (tide_sim_serdes_link/_plug: the lane's clock
 * recovery locked and the far PCS sending the port's channel), or, for a
 * lane with neither, the model's frame endpoint (the side of
 * tide_sim_packet_inject/_capture and of the TAPs), a partner that is
 * always there unless unplugged.  Ports 28 to 31 are inside the chip. */

/* MAC data path gating: with `on` 1 a frame enters only by a front port
 * whose MAC receives (rx_en) and whose link is up, and leaves only by one
 * whose MAC sends (tx_en) and whose link is up; a frame refused is dropped
 * with its cause.  Off (the default), the MACs let every frame pass. */
TIDE_API int tide_sim_mac_gating_set(uint32_t chip, int on);

/* Drop causes of the MAC stage (in tide_sim_port_stats.last_drop_cause and
 * the capture file); a frame to a port whose link is down is dropped by
 * the egress pipeline with cause 735 DISCARD_PORT_LINK_DOWN. */
#define TIDE_SIM_CAUSE_MAC_RX_DISABLED 2048u
#define TIDE_SIM_CAUSE_MAC_RX_LINK_DOWN 2049u
#define TIDE_SIM_CAUSE_MAC_TX_DISABLED 2050u
#define TIDE_SIM_CAUSE_PORT_LINK_DOWN 735u
#define TIDE_SIM_CAUSE_MAC_RX_FCS_ERR 2051u

/* Frames across cables and loops.  A frame a front port sends goes to the
 * frame endpoint (capture queue or TAP) unless the port loops it back
 * inside its MAC (mac_port_inloop_cfg.inloop_en: it enters the same port's
 * receive side and does not leave on the line) or its lane has a plug (it
 * enters the same port) or a cable (it enters the port on the same channel
 * of the far lane's MAG, through that chip's MAC gate and pipeline).  With
 * mag_map_outloop_cfg.port_outloop_en a frame arriving from the line goes
 * straight back out to the line, not into the pipeline.  Frames cross
 * after the sending chip's pipeline has finished, before the call that
 * injected them (tide_sim_packet_inject, or a TAP's read) returns.  A frame
 * that has crossed TIDE_SIM_WIRE_HOPS wires and is to cross one more, or
 * crosses in a run that has delivered TIDE_SIM_WIRE_FRAMES already, is
 * dropped at the port it would enter with TIDE_SIM_CAUSE_WIRE_HOPS. */
#define TIDE_SIM_WIRE_HOPS 8u
#define TIDE_SIM_WIRE_FRAMES 4096u
#define TIDE_SIM_CAUSE_WIRE_HOPS 2052u
/* A front port whose bit of mag_map_port_clr is set passes no frame in
 * either direction, whatever the gating. */
#define TIDE_SIM_CAUSE_MAC_PATH_CLEAR 2053u
/* Sent over a cable to a lane whose MAG has no port on the channel: lost
 * (tide_sim_port_stats.tx_lost of the sending port). */
#define TIDE_SIM_CAUSE_WIRE_NO_PORT 2054u

/* The MIB of a front port's MAC (the register pairs mac_mib_<item>_l and
 * _h) counts the frames it receives and sends.  The next `count` frames
 * arriving by `lport` have a bad FCS: the MAC counts them as bad (rx bad,
 * FCS error, error items) and drops them with TIDE_SIM_CAUSE_MAC_RX_FCS_ERR,
 * whatever the gating.  0 takes back what is left.  -4 for a port above
 * 27. */
TIDE_API int tide_sim_mac_crc_error_set(uint32_t chip, uint32_t lport, uint32_t count);

/* Plugs (1) or unplugs (0) the frame endpoint of a front port whose lane
 * has no cable or plug: unplugged, its link is down.  -4 for a port above
 * 27. */
TIDE_API int tide_sim_mac_endpoint_set(uint32_t chip, uint32_t lport, int plugged);

/* The abilities the link partner of a front port advertises in
 * auto-negotiation.  The default (a NULL record) is a partner that
 * advertises what the port itself does: the fastest speed of its
 * interface, full duplex, and the port's own pause bits (bits 8:7 of
 * tx_cfg_dat). */
typedef struct tide_sim_mac_partner {
    uint32_t negotiates; /* 0: the partner does not negotiate: AN never completes */
    uint32_t speed;      /* Mbit/s: 10, 100, 1000, 2500, 5000 or 10000 */
    uint32_t duplex;     /* 1 full, 0 half */
    uint32_t pause;      /* the two pause bits: 0 none, 1 symmetric, 2 asymmetric, 3 both */
} tide_sim_mac_partner;
/* -4 for a port above 27 or a speed, duplex or pause out of range. */
TIDE_API int tide_sim_mac_partner_set(uint32_t chip, uint32_t lport, const tide_sim_mac_partner *partner);

/* Why a front port's link is down (tide_sim_mac_port.down): the first
 * that applies, checked in the order 1 to 8, 10, 11, 9, 12. */
#define TIDE_SIM_MAC_UP 0u               /* the link is up */
#define TIDE_SIM_MAC_DOWN_NO_PORT 1u     /* the glue mode has no such port */
#define TIDE_SIM_MAC_DOWN_NO_INTERFACE 2u /* the MAG has no protocol, or the port is beyond its channels */
#define TIDE_SIM_MAC_DOWN_GLUE_RESET 3u  /* mag_glue_rst_cfg holds the glue */
#define TIDE_SIM_MAC_DOWN_PCS_RESET 4u   /* the MAG's PCS held in reset or its clock gated */
#define TIDE_SIM_MAC_DOWN_MAC_RESET 5u   /* the MAC group, the MAC or the port held in reset, or its clock gated */
#define TIDE_SIM_MAC_DOWN_FORCED 6u      /* the force register holds it down */
#define TIDE_SIM_MAC_DOWN_NO_SIGNAL 7u   /* nothing arrives: no locked lane, no endpoint */
#define TIDE_SIM_MAC_DOWN_NO_PARTNER 8u  /* the far PCS sends no idles on this channel (reset, other protocol) */
#define TIDE_SIM_MAC_DOWN_AN 9u          /* auto-negotiation enabled and not complete */
#define TIDE_SIM_MAC_DOWN_CLK_LOST 10u   /* the lane's clock is beyond the clock check's allowance, with
                                            clk_sds_*_err_down_en (checked after NO_PARTNER) */
#define TIDE_SIM_MAC_DOWN_FAULT 11u      /* a 64B/66B fault arrives (pcs_6466b_ch_stat shows which) */
#define TIDE_SIM_MAC_DOWN_PHY_LINK 12u   /* negotiating with phy_link_en, and the partner PHY's line is down */

/* The line of the endpoint's partner, a PHY that reports it in its
 * auto-negotiation word: `up` 0 reports it down.  A port that negotiates
 * with pcs_an_pcs_an_ctrl_2.phy_link_en set follows it (down as
 * TIDE_SIM_MAC_DOWN_PHY_LINK); one without ignores it.  A cable or plug
 * has a MAC at its far end, whose line is always there.  -4 for a port
 * above 27. */
TIDE_API int tide_sim_mac_phy_line_set(uint32_t chip, uint32_t lport, int up);

typedef struct tide_sim_mac_port {
    uint32_t link;      /* 1 up */
    uint32_t down;      /* TIDE_SIM_MAC_* */
    uint32_t mag;       /* the MAG and MAC of the port in the glue mode */
    uint32_t mac;
    uint32_t channel;   /* its PCS channel (pcs_an index) */
    uint32_t rx_en;
    uint32_t tx_en;
    uint32_t an_done;   /* auto-negotiation complete */
    uint32_t an_speed;  /* the resolved an_speed code, an_duplex and an_pause */
    uint32_t an_duplex;
    uint32_t an_pause;
} tide_sim_mac_port;
/* -4 for a port above 27, -20 for NULL. */
TIDE_API int tide_sim_mac_port_get(uint32_t chip, uint32_t lport, tide_sim_mac_port *port);

/* ---- MAC diagnostics: the clock check ---------------------------------------
 * Once pcs_glb_clk_chk_cfg0 (receive) or cfg1 (transmit) of a MAG holds a
 * cycle count, the model measures how far the MAG's lane clocks run from
 * the local one, into pcs_glb_clk_sds_rx_delta and _tx_delta (a sign bit,
 * 1 when the lane's clock is the slower, and 16 bits of difference): the
 * drift set here (0 by default) while something arrives on the lane, and
 * 0xFFFF with sign 1 on receive while nothing does.  A difference beyond
 * clk_sds_*_cfg_delta raises rx_clk_lost_int or tx_clk_lost_int of
 * pcs_glb_int_stat, and with clk_sds_*_err_down_en takes the links of the
 * MAG down (TIDE_SIM_MAC_DOWN_CLK_LOST).
 * The drift of MAG `mag`'s lane clocks: signs 0 or 1, differences up to
 * 0xFFFF.  -4 for a MAG above 7 or a value out of range. */
TIDE_API int tide_sim_mac_clk_delta_set(uint32_t chip, uint32_t mag, uint32_t rx_sign, uint32_t rx_delta,
                                        uint32_t tx_sign, uint32_t tx_delta);

TIDE_END_DECLS

#endif /* TIDE_SIM_H */
