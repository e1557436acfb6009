#!/usr/bin/env python3
"""Writes the binary seeds of fuzz_l2_msg and fuzz_hal_cmd into seeds/.

The seeds are valid inputs that start the fuzzers deep: L2 event messages
of every destination kind, and programs of driver commands and HAL calls
as a bring-up runs them.  The text seeds (cli_*, property) are written by
hand.  Run it again after changing an input format:
    tests/fuzz/make_seeds.py
"""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))

# ---- L2 event messages --------------------------------------------------------
# A message is the 128-bit table entry, bit 127 first (bit 7 of byte 0).


def l2_message(mac, vid, opcode=0, learn_data=0, static=False, msg_type=0, age=0, ovid=0, gid=0, lrnclass=0,
               blk=0, key_check=0, valid=1):
    e = 0

    def put(lsb, width, value):
        nonlocal e
        e |= (value & ((1 << width) - 1)) << lsb

    put(118, 4, msg_type)
    put(117, 1, valid)
    put(115, 2, key_check)
    put(102, 12, vid)
    put(54, 48, mac)
    put(37, 1, 1 if static else 0)
    put(35, 2, age)
    put(32, 3, opcode)
    put(22, 10, learn_data)
    put(10, 12, ovid)
    put(8, 2, lrnclass)
    put(2, 6, gid)
    put(0, 2, blk)
    return e.to_bytes(16, "big")


def l2_seeds():
    learned = [l2_message(0x0000_1122_3344 + i, 1 + i, learn_data=i % 28, msg_type=i % 16, age=i % 4)
               for i in range(8)]
    kinds = [
        l2_message(0x0200_0000_0001, 10, opcode=0, learn_data=5, static=True),   # port
        l2_message(0x0200_0000_0002, 10, opcode=1, learn_data=3, static=True),   # trunk
        l2_message(0x0100_5E00_0001, 20, opcode=5, learn_data=100, static=True),  # multicast group
        l2_message(0x0200_0000_0003, 30, opcode=6, learn_data=7, static=True),   # drop
        l2_message(0x0200_0000_0004, 4095, opcode=7, learn_data=9, static=True),  # to the CPU
        l2_message(0x0200_0000_0005, 40, opcode=2, learn_data=1),                # dvp: not on atolreef
        l2_message(0x0200_0000_0006, 50, learn_data=6, ovid=0x5A5, gid=33, lrnclass=3, blk=3),
        l2_message(0x0200_0000_0007, 60, key_check=1),                            # an IPv6 key: skipped
    ]
    return {
        "learned": b"".join(learned),
        "kinds": b"".join(kinds),
        "one": kinds[0],
        "same_key_twice": kinds[0] + kinds[0],
        "full_buffer": b"".join(learned * 14),  # 112 messages, the most a buffer holds
    }


# ---- HAL command programs -----------------------------------------------------
# Opcodes of fuzz_hal_cmd (the byte modulo 25).
OP_RAW_DRV, OP_RAW_PKT, OP_MAP, OP_BAD, OP_REG, OP_TYPE = 0, 2, 3, 4, 5, 6
HAL_CALL = 7  # plus the number of the call
(CALL_NUM, CALL_INFO, CALL_IOMEM, CALL_BUS_TYPE, CALL_PCI_RD, CALL_PCI_WR, CALL_DMA_ALLOC, CALL_DMA_FREE,
 CALL_DMA_FREE_ALL, CALL_IRQ_EN, CALL_IRQ_EXIT, CALL_IRQ_WAIT, CALL_VP, CALL_BY_BUS, CALL_BUS_MAP, CALL_PKT,
 CALL_MEM_INIT, CALL_MEM_DEINIT) = range(18)

DRV_CMDS = [0x4C01, 0x4C05, 0x4C06, 0x4C0D, 0x4C0E, 0x4C11, 0x4C12, 0x4C14, 0x4C15, 0x4C16, 0x4C18, 0x4C1A,
            0x4C1B, 0x4C1C]
PKT_CMDS = [0x5001, 0x5002, 0x5003, 0x5004]

CHIP_BASE = 0x1_0000_0000
CHIP_STRIDE = 0x4000_0000
BAR0, AXI, LSW = 0x0, 0x2000_0000, 0x1000_0000  # offsets of the apertures
DMA_BASE = 0x8_0000_0000


def record(chip=0, arg0=0, arg1=0, data=b""):
    return struct.pack("<IiIIII", chip, -1, 0, arg0, arg1, 0) + data.ljust(96, b"\0")


def raw(cmd, rec, pkt=False):
    cmds = PKT_CMDS if pkt else DRV_CMDS
    return bytes([OP_RAW_PKT if pkt else OP_RAW_DRV, cmds.index(cmd)]) + rec


def hal(call, chip, *operands, tamper=(0,)):
    """A HAL call: its operands, then one tamper byte (and its bytes) per command."""
    out = bytes([HAL_CALL + call, chip]) + b"".join(operands)
    for t in tamper:
        out += t if isinstance(t, bytes) else bytes([t])
    return out


def tamper(result=None, arg0=None, arg1=None, data=None):
    flags = 0
    out = b""
    if result is not None:
        flags |= 1
        out += struct.pack("<i", result)
    if arg0 is not None:
        flags |= 2
        out += struct.pack("<I", arg0)
    if arg1 is not None:
        flags |= 4
        out += struct.pack("<I", arg1)
    if data is not None:
        flags |= 8
        out += data.ljust(96, b"\0")
    return bytes([flags]) + out


def reg(chip, kind, bar, addr, value=0):
    """kind: 0 read16, 1 write16, 2 read32, 3 write32, 4 read64, 5 write64."""
    return bytes([OP_REG, chip << 3 | kind, bar]) + struct.pack("<IQ", addr, value)


def u16(v):
    return struct.pack("<H", v)


def u32(v):
    return struct.pack("<I", v)


def u64(v):
    return struct.pack("<Q", v)


def hal_seeds():
    seeds = {}
    # The driver's side: every command as the back end sends it.
    seeds["driver_commands"] = b"".join([
        raw(0x4C01, record()),
        raw(0x4C15, record(chip=0)),
        raw(0x4C16, record(chip=1)),
        raw(0x4C1A, record(chip=0)),
        raw(0x4C05, record(chip=0, arg0=0)),
        raw(0x4C06, record(chip=1, arg0=8, data=bytes(16) + u64(0x12345678))),
        raw(0x4C0D, record(chip=0, arg0=4096)),
        raw(0x4C0E, record(chip=0, arg0=4096, data=bytes(16) + u64(DMA_BASE))),
        raw(0x4C12, record(chip=0, arg0=0xFFFF, arg1=1)),
        raw(0x4C11, record(chip=1)),
        raw(0x4C14, record(chip=0)),
        raw(0x4C18, record(chip=0, data=u64(1) + u64(2) + u64(3))),
        raw(0x4C1B, record(chip=2)),
        raw(0x4C1C, record()),
    ])
    seeds["packet_commands"] = b"".join(raw(c, record(chip=i % 2, arg0=7), pkt=True)
                                        for i, c in enumerate(PKT_CMDS))
    seeds["bad_records"] = b"".join([
        raw(0x4C15, record(chip=3)),
        raw(0x4C05, record(chip=0, arg0=4094)),
        raw(0x4C06, record(chip=0, arg0=0xFFFFFFFC)),
        raw(0x4C0D, record(chip=0, arg0=0)),
        raw(0x4C0E, record(chip=0, arg0=1, data=bytes(16) + u64(0x1234))),
        bytes([OP_RAW_DRV, 0xF0]) + u32(0x4C99) + record(),
        bytes([OP_RAW_PKT, 0xF0]) + u32(0x5099) + record(),
        bytes([OP_BAD, 0]), bytes([OP_BAD, 1]),
    ])
    # Mappings of every aperture of both chips and of a DMA block.
    maps = b""
    for chip in range(2):
        for off, size in ((BAR0, 0x10_0000), (AXI, 0x10_0000), (LSW, 0x1000_0000)):
            base = CHIP_BASE + chip * CHIP_STRIDE + off
            maps += bytes([OP_MAP]) + u64(base) + u64(size)
            maps += bytes([OP_MAP]) + u64(base + size - 4096) + u64(4096)
    maps += raw(0x4C0D, record(chip=0, arg0=8192)) + bytes([OP_MAP]) + u64(DMA_BASE) + u64(8192)
    maps += bytes([OP_MAP]) + u64(CHIP_BASE + 0x10) + u64(2 ** 64 - 8)
    seeds["maps"] = maps
    # The back end as a bring-up drives it: count, map chip 0, registers,
    # a DMA block, interrupts, bus numbers, unmap.
    bring_up = b"".join([
        hal(CALL_NUM, 0),
        hal(CALL_BUS_TYPE, 0),
        hal(CALL_MEM_INIT, 0, b"\0", tamper=(0, 0, 0)),
        reg(0, 3, 0, 0x100, 0xABCD),
        reg(0, 2, 0, 0x100),
        reg(0, 5, 4, 0x1000, 2 ** 40),
        reg(0, 4, 3, 0x47014),
        reg(0, 1, 4, 0x2, 7),
        reg(0, 0, 4, 0xFFFFFFE),
        hal(CALL_INFO, 0),
        hal(CALL_PCI_RD, 0, u32(0)),
        hal(CALL_PCI_WR, 1, u32(4), u32(0xBEEF)),
        hal(CALL_DMA_ALLOC, 0, u16(4095)),
        hal(CALL_DMA_FREE, 0, b"\0"),
        hal(CALL_DMA_ALLOC, 1, u16(100)),
        hal(CALL_DMA_FREE_ALL, 1, tamper=(0,)),
        hal(CALL_IRQ_EN, 0, u64(0xFF)),
        hal(CALL_IRQ_WAIT, 0),
        hal(CALL_IRQ_EXIT, 1),
        hal(CALL_VP, 0, u64(1) + u64(2) + u64(3)),
        hal(CALL_BY_BUS, 0, u16(2)),
        hal(CALL_BUS_MAP, 0),
        hal(CALL_PKT, 0, u32(5), b"\3"),
        hal(CALL_MEM_DEINIT, 0, tamper=()),
    ])
    seeds["hal_bring_up"] = bring_up
    # A chip mapped twice, then once more as a kelpreef: each mapping gives
    # the earlier ones back.
    seeds["hal_map_twice"] = b"".join([
        hal(CALL_MEM_INIT, 0, b"\0", tamper=(0, 0, 0)),
        hal(CALL_MEM_INIT, 0, b"\0", tamper=(0, 0, 0)),
        bytes([OP_TYPE, 0 | 2 << 2]),
        hal(CALL_MEM_INIT, 0, b"\0", tamper=(0, 0, 0)),
        reg(0, 2, 4, 0x4000000),
    ])
    # A kelpreef: the switch core in ten pieces.
    seeds["hal_kelpreef"] = b"".join([
        bytes([OP_TYPE, 0 | 1 << 2]),
        hal(CALL_MEM_INIT, 0, b"\0", tamper=(0, 0, 0)),
        reg(0, 2, 4, 0x1800000),
        reg(0, 3, 4, 0x400004, 1),
        reg(0, 2, 4, 0x600),
        hal(CALL_MEM_DEINIT, 0, tamper=()),
    ])
    # A driver that answers wrongly: a failed result, ranges beyond the
    # model's memory and sizes that wrap, too many bus pairs, a DMA block
    # at an address the model never gave.
    def ranges(bar0_paddr, bar0_size):
        return u64(bar0_paddr) + u64(bar0_size) + u64(0) + u64(CHIP_BASE + LSW) + u64(0x1000_0000) + u64(0) + \
            u64(CHIP_BASE + AXI) + u64(0x10_0000) + u64(0)
    seeds["hal_broken_driver"] = b"".join([
        hal(CALL_NUM, 0, tamper=(tamper(result=-5),)),
        hal(CALL_NUM, 0, tamper=(tamper(arg0=1000),)),
        hal(CALL_INFO, 0, tamper=(tamper(result=-1),)),
        hal(CALL_MEM_INIT, 0, b"\0", tamper=(0, tamper(data=ranges(CHIP_BASE, 2 ** 64 - 0x800)), 0)),
        reg(0, 2, 0, 0x4000_0000),
        hal(CALL_MEM_DEINIT, 0, tamper=()),
        # The end of BAR 0 wraps around 2^64 past a page offset.
        hal(CALL_MEM_INIT, 0, b"\0", tamper=(0, tamper(data=ranges(CHIP_BASE + 0x900, 2 ** 64 - 0x800)), 0)),
        reg(0, 2, 0, 0x4000_0000),
        hal(CALL_MEM_DEINIT, 0, tamper=()),
        hal(CALL_MEM_INIT, 1, b"\0", tamper=(0, tamper(data=u64(0x1234) + u64(0x10)), 0)),
        hal(CALL_BUS_MAP, 0, tamper=(tamper(arg0=1000, data=bytes(range(96))),)),
        hal(CALL_DMA_ALLOC, 0, u16(4096), tamper=(tamper(data=bytes(16) + u64(CHIP_BASE)),)),
        hal(CALL_DMA_ALLOC, 0, u16(4096), tamper=(tamper(data=bytes(16) + u64(0xDEAD_0000)),)),
        hal(CALL_PCI_RD, 0, u32(0), tamper=(tamper(result=-3),)),
        hal(CALL_PKT, 0, u32(5), b"\3", tamper=(tamper(result=-1, arg0=9),)),
    ])
    return seeds


def write(kind, seeds):
    d = os.path.join(HERE, "seeds", kind)
    os.makedirs(d, exist_ok=True)
    for name, data in seeds.items():
        with open(os.path.join(d, name), "wb") as f:
            f.write(data)


if __name__ == "__main__":
    write("l2_msg", l2_seeds())
    write("hal_cmd", hal_seeds())
