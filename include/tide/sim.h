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
    TIDE_SIM_ENGINE_COUNT
} tide_sim_engine;
/* `stall` 1: the engine never reports completion; 0: normal. */
TIDE_API int tide_sim_engine_stall_set(uint32_t chip, tide_sim_engine engine, int stall);

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

TIDE_END_DECLS

#endif /* TIDE_SIM_H */
