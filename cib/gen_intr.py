#!/usr/bin/env python3
"""Generator of the interrupt tree.

Reads the chip description (cib/atolreef/*.cib) and the interrupt tree
(cib/interrupts.txt), checks them against each other and against the
totals of the chip, and writes:

  --sdk DIR     the constant tables of the SDK's interrupt engine: the type
                records of every module and subid, the two dispatch tables,
                the ECC rows and the ECC counters (atolreef_intr_data.cc)
  --model DIR   the interrupt tree of the chip model, computed from the
                same description but in the model's own form: the nodes
                from the leaves up, the ECC rows and the events of the
                model's engines (atolreef_intr_model.cc)
  --doc FILE    a reference of every interrupt type

A description that breaks a rule or a total stops the build with the place
and the reason.  The format is told in docs/interrupt.md.
"""

import argparse
import os
import re
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import gen_cib  # noqa: E402
from gen_cib import DescError, write  # noqa: E402

# Totals of the chip.
TYPE_TOTAL = 903
LSWTOP_ROWS = 107
SECOND_ROWS = 76
ECC_TOTALS = {'direct': 75, 'hash': 10, 'tcam': 48}
ECC_CNT_ROWS = 19
ECC_TCAM_CNT_ROWS = 48
ECC_MODULES = {'xsec_enc', 'xsec_dec', 'xsec_glb', 'acl_core', 'ipro', 'arl', 'nhp', 'cpacl', 'icar', 'mcc', 'epro',
               'ecar', 'qm', 'sch'}
ECC_CNT_MODULES = ('ipro', 'mcc', 'epro')
KINDS = {'none': 0, 'ram': 1, 'fifo': 2, 'direct': 3, 'hash': 4, 'tcam': 5}
NO_REG = 0xFFFE
NO_DEBUG = 0xFFFFFFFE
NO_START = 255
TCAM_BLOCKS = 16

CATEGORIES = ('fatal', 'ecc', 'event', 'warning')
GROUP0_BITS = [b for b in range(20) if b != 16]
GROUP1_BITS = list(range(8))
# Top ids whose bit leads to the second level: (category, group, bit).
SECOND_LEVEL_TOPS = {15: 'mag', 42: 'mag', 69: 'mag', 96: 'mag', 43: 'xsec_glb', 44: 'xsec_dec', 45: 'xsec_enc',
                     107: 'sds'}
# Rows of the second table by their source: (first row, last row, the top
# id the source's own bit feeds, module of the own bit, its subid, bit of
# the first row).
MAG_SUBID = {'fatal': 2, 'ecc': 3, 'event': 1, 'warning': 0}
SECOND_SOURCES = [(17 * i, 17 * i + 16, [15, 42, 69, 96][i], 'mag_glb', MAG_SUBID[c], 0)
                  for i, c in enumerate(CATEGORIES)] + [
    (68, 69, 107, 'phy_glb', 0, 0), (70, 71, 43, 'xsec_glb', 0, 0), (72, 73, 44, 'xsec_dec', 0, 0),
    (74, 75, 45, 'xsec_enc', 0, 0)]


def top_place(top):
    """(category, group, bit) of a top id."""
    for ci, c in enumerate(CATEGORIES):
        base = 27 * ci
        if base <= top < base + 27:
            k = top - base
            return (c, 0, GROUP0_BITS[k]) if k < 19 else (c, 1, GROUP1_BITS[k - 19])
    raise ValueError(top)


class Type:
    def __init__(self, module, subid, number, field, reg):
        self.module = module
        self.subid = subid
        self.number = number
        self.field = field
        self.reg = reg          # status register Item
        self.mask = None        # mask register Item or None
        self.debug = []         # debug register Items
        self.ecc = None         # EccRow


class Subid:
    def __init__(self, module, index, name, where):
        self.module = module
        self.index = index
        self.name = name
        self.where = where
        self.types = []


class Entry:
    """One module entry of a dispatch row: instance, subid, types."""

    def __init__(self, module, instance, subid, types):
        self.module = module
        self.instance = instance
        self.subid = subid
        self.types = types  # list of Type


class EccRow:
    def __init__(self, kind, where):
        self.kind = kind
        self.where = where
        self.debug_reg = None   # Item (register or table)
        self.debug_index = 0    # instance, or word of the table's entry 0
        self.type_field = None  # (start, width) relative to the word
        self.index_field = None
        self.table_id = NO_REG
        self.table = None       # Item of the table (direct, hash)
        self.counts = []        # [(start, width)] of the debug register
        self.count_row = False


def _field(item, name):
    for f in item.fields:
        if f.name == name:
            return f
    return None


def _types(text, count, where):
    if text == 'all':
        return list(range(count))
    out = []
    for part in text.split(','):
        m = re.fullmatch(r'(\d+)(?:-(\d+))?', part)
        if not m:
            raise DescError('%s: bad type list %r' % (where, text))
        lo = int(m.group(1))
        hi = int(m.group(2)) if m.group(2) else lo
        out.extend(range(lo, hi + 1))
    if out != sorted(set(out)):
        raise DescError('%s: types %r are not ascending' % (where, text))
    return out


class Tree:
    def __init__(self, modules):
        self.modules = {m.name: m for m in modules}
        self.by_id = {m.id: m for m in modules}
        self.items = {it.name: it for m in modules for it in m.items}
        self.subids = {m.name: [] for m in modules}
        self.lswtop = [[] for _ in range(LSWTOP_ROWS)]
        self.second = [None] * SECOND_ROWS
        self.ecc_lines = []
        self.events = []

    # ---- parsing ---------------------------------------------------------

    def item(self, name, kind, where):
        it = self.items.get(name)
        if it is None or it.kind != kind:
            raise DescError('%s: no %s %s in the description' % (where, 'register' if kind == 'reg' else 'table', name))
        return it

    def module(self, name, where):
        if name not in self.modules:
            raise DescError('%s: no module %s' % (where, name))
        return self.modules[name]

    def instances(self, reg):
        return max(len(reg.addrs), 1)

    def parse(self, path):
        with open(path) as f:
            for lineno, raw in enumerate(f, 1):
                where = '%s:%d' % (os.path.relpath(path), lineno)
                words = raw.split('#', 1)[0].split()
                if not words:
                    continue
                handler = {'subid': self._subid, 'top': self._top, 'second': self._second, 'ecc': self._ecc,
                           'event': self._event}.get(words[0])
                if handler is None:
                    raise DescError('%s: unknown keyword %r' % (where, words[0]))
                handler(words[1:], where)

    def _subid(self, words, where):
        if len(words) < 2:
            raise DescError('%s: subid MODULE NAME count=N status=REG mask=REG|none' % where)
        m = self.module(words[0], where)
        attrs = gen_cib.parse_attrs(words[2:], where)
        for k in attrs:
            if k not in ('count', 'status', 'mask', 'debug'):
                raise DescError('%s: unknown attribute %s=' % (where, k))
        s = Subid(m, len(self.subids[m.name]), words[1], where)
        if any(o.name == s.name for o in self.subids[m.name]):
            raise DescError('%s: subid %s named twice' % (where, s.name))
        count = gen_cib.need_int(attrs, 'count', where)
        mask = None
        if attrs.get('mask', 'none') != 'none':
            mask = self.item(attrs['mask'], 'reg', where)
        debug = [self.item(n, 'reg', where) for n in attrs['debug'].split(',')] if 'debug' in attrs else []
        for name in attrs.get('status', '').split(','):
            reg = self.item(name, 'reg', where)
            if reg.module is not m:
                raise DescError('%s: %s is not a register of %s' % (where, name, m.name))
            for f in sorted((f for f in reg.fields), key=lambda f: f.low):
                t = Type(m, s, len(s.types), f, reg)
                t.mask = mask
                t.debug = debug
                s.types.append(t)
            n = self.instances(reg)
            for d in debug + ([mask] if mask else []):
                if self.instances(d) not in (1, n):
                    raise DescError('%s: %s has %d instances, %s %d' % (where, d.name, self.instances(d), name, n))
        if len(s.types) != count:
            raise DescError('%s: subid %s has %d types, not %d' % (where, s.name, len(s.types), count))
        if count > 255:
            raise DescError('%s: more types than a u8 holds' % where)
        self.subids[m.name].append(s)

    def _entries(self, words, where):
        out = []
        for w in words:
            mm = re.fullmatch(r'(\w+)(?:\[(\d+)(?:-(\d+))?\])?:(\d+)/(\d+)=(\S+)', w)
            if not mm:
                raise DescError('%s: bad entry %r (MODULE[INSTANCE]:SUBID/COUNT=TYPES)' % (where, w))
            m = self.module(mm.group(1), where)
            lo = int(mm.group(2) or 0)
            hi = int(mm.group(3) or lo)
            subs = self.subids[m.name]
            si = int(mm.group(4))
            if si >= len(subs):
                raise DescError('%s: %s has no subid %d' % (where, m.name, si))
            s = subs[si]
            numbers = _types(mm.group(6), len(s.types), where)
            if len(numbers) != int(mm.group(5)):
                raise DescError('%s: %s names %d types, not %s' % (where, w, len(numbers), mm.group(5)))
            for n in numbers:
                if n >= len(s.types):
                    raise DescError('%s: %s subid %d has no type %d' % (where, m.name, si, n))
            for inst in range(lo, hi + 1):
                for n in numbers:
                    if inst >= self.instances(s.types[n].reg):
                        raise DescError('%s: %s has no instance %d' % (where, s.types[n].reg.name, inst))
                out.append(Entry(m, inst, s, [s.types[n] for n in numbers]))
        return out

    def _top(self, words, where):
        if not words or not words[0].isdigit():
            raise DescError('%s: top ID ENTRY...' % where)
        top = int(words[0])
        if top >= LSWTOP_ROWS:
            raise DescError('%s: top id %d beyond the %d rows' % (where, top, LSWTOP_ROWS))
        if top in SECOND_LEVEL_TOPS:
            raise DescError('%s: top id %d leads to the second level and has no row' % (where, top))
        if self.lswtop[top]:
            raise DescError('%s: top id %d given twice' % (where, top))
        self.lswtop[top] = self._entries(words[1:], where)
        if not self.lswtop[top]:
            raise DescError('%s: an empty row is left out' % where)

    def _second(self, words, where):
        if not words or not words[0].isdigit():
            raise DescError('%s: second INDEX ENTRY...' % where)
        idx = int(words[0])
        if idx >= SECOND_ROWS or self.second[idx] is not None:
            raise DescError('%s: row %d beyond the table or given twice' % (where, idx))
        row = self._entries(words[1:], where)
        first, _, _, mod, sub, bit0 = next(s for s in SECOND_SOURCES if s[0] <= idx <= s[1])
        own = row[0] if row else None
        if (own is None or own.module.name != mod or own.subid.index != sub or own.instance != 0 or
                [t.number for t in own.types] != [bit0 + idx - first]):
            raise DescError('%s: row %d must start with its own bit, %s:%d/1=%d' % (where, idx, mod, sub,
                                                                                   bit0 + idx - first))
        self.second[idx] = row

    def _ecc(self, words, where):
        if len(words) < 4:
            raise DescError('%s: ecc MODULE SUBID TYPES KIND [debug=...] [table=...] [count]' % where)
        m = self.module(words[0], where)
        subs = self.subids[m.name]
        if not words[1].isdigit() or int(words[1]) >= len(subs):
            raise DescError('%s: %s has no subid %s' % (where, m.name, words[1]))
        s = subs[int(words[1])]
        numbers = _types(words[2], len(s.types), where)
        kind = words[3]
        if kind not in KINDS:
            raise DescError('%s: unknown kind %r' % (where, kind))
        count = 'count' in words[4:]
        attrs = gen_cib.parse_attrs([w for w in words[4:] if w != 'count'], where)
        tables = attrs.get('table', '').split(',') if 'table' in attrs else []
        if tables not in ([], ['block']) and len(tables) != len(numbers):
            raise DescError('%s: %d tables for %d types' % (where, len(tables), len(numbers)))
        for i, n in enumerate(numbers):
            if n >= len(s.types):
                raise DescError('%s: %s subid %d has no type %d' % (where, m.name, s.index, n))
            t = s.types[n]
            if t.ecc is not None:
                raise DescError('%s: type %d of %s has a row already' % (where, n, s.name))
            row = EccRow(KINDS[kind], where)
            row.count_row = count
            if 'debug' in attrs:
                self._ecc_debug(row, attrs['debug'], i, where)
            if kind == 'tcam':
                if tables != ['block'] or n >= TCAM_BLOCKS:
                    raise DescError('%s: a TCAM row names its block by its type number (table=block)' % where)
                row.table_id = n
            elif kind in ('direct', 'hash'):
                if not tables or tables == ['block']:
                    raise DescError('%s: a %s row names its table' % (where, kind))
                tab = self.item(tables[i], 'tab', where)
                want = 1 if kind == 'hash' else 0
                if tab.tab_kind != want or (kind == 'direct' and tab.flags & 4):
                    raise DescError('%s: %s is not a %s table' % (where, tab.name, kind))
                row.table, row.table_id = tab, tab.id
            elif tables:
                raise DescError('%s: a %s row has no table' % (where, kind))
            if count and not row.counts:
                raise DescError('%s: count without a field ecc_cnt' % where)
            t.ecc = row
        self.ecc_lines.append((m, s))

    def _ecc_debug(self, row, text, i, where):
        mm = re.fullmatch(r'(tab:)?(\w+)(?:\[(\d+)\])?', text)
        if not mm:
            raise DescError('%s: bad debug %r' % (where, text))
        first = int(mm.group(3)) if mm.group(3) is not None else None
        if mm.group(1):
            tab = self.item(mm.group(2), 'tab', where)
            word = (first or 0) + i
            if tab.depth < 1 or word >= tab.words:
                raise DescError('%s: %s has no word %d in its entry 0' % (where, tab.name, word))
            row.debug_reg, row.debug_index = tab, word
            tf, xf = _field(tab, 'ecc_type_%d' % word), _field(tab, 'ecc_index_%d' % word)
            base = 32 * word
        else:
            reg = self.item(mm.group(2), 'reg', where)
            inst = (first + i) if first is not None else 0
            if inst >= self.instances(reg):
                raise DescError('%s: %s has no instance %d' % (where, reg.name, inst))
            row.debug_reg, row.debug_index = reg, inst
            tf, xf = _field(reg, 'ecc_type'), _field(reg, 'ecc_index')
            base = 0
            row.counts = [(f.low, f.width) for f in (_field(reg, 'ecc_cnt'), _field(reg, 'ecc_cnt2')) if f]
        if xf is None:
            raise DescError('%s: %s has no ecc_index field' % (where, mm.group(2)))
        row.index_field = (xf.low - base, xf.width)
        row.type_field = (tf.low - base, tf.width) if tf else None

    def _event(self, words, where):
        mm = re.fullmatch(r'(\w+):(\d+)=(\d+|block)', words[1]) if len(words) == 2 else None
        if not mm:
            raise DescError('%s: event NAME MODULE:SUBID=TYPE' % where)
        m = self.module(mm.group(1), where)
        subs = self.subids[m.name]
        si = int(mm.group(2))
        if si >= len(subs):
            raise DescError('%s: %s has no subid %d' % (where, m.name, si))
        t = mm.group(3)
        if t != 'block' and int(t) >= len(subs[si].types):
            raise DescError('%s: %s has no type %s' % (where, subs[si].name, t))
        if any(e[0] == words[0] for e in self.events):
            raise DescError('%s: event %s given twice' % (where, words[0]))
        self.events.append((words[0], m, si, -1 if t == 'block' else int(t)))

    # ---- checks ------------------------------------------------------------

    def check(self):
        total = sum(len(s.types) for subs in self.subids.values() for s in subs)
        if total != TYPE_TOTAL:
            raise DescError('the description has %d interrupt types, the chip %d' % (total, TYPE_TOTAL))
        missing = [i for i, r in enumerate(self.second) if r is None]
        if missing:
            raise DescError('the second dispatch table lacks rows %s' % missing)
        seen = {}
        for where, rows in (('top', self.lswtop), ('second', self.second)):
            for idx, row in enumerate(rows):
                for e in row:
                    for t in e.types:
                        key = (t.module.name, t.subid.index, t.number, e.instance)
                        if key in seen:
                            raise DescError('%s row %d: %s subid %d type %d [%d] is in %s already' % (
                                where, idx, key[0], key[1], key[2], key[3], seen[key]))
                        seen[key] = '%s row %d' % (where, idx)
        for subs in self.subids.values():
            for s in subs:
                if s.module.name == 'lsw_hreg':
                    continue
                for t in s.types:
                    if not any(k[:3] == (s.module.name, s.index, t.number) for k in seen):
                        raise DescError('%s: type %d (%s) of %s is in no dispatch row' % (s.where, t.number,
                                                                                        t.field.name, s.name))
        kinds = {k: 0 for k in ECC_TOTALS}
        mods = set()
        for subs in self.subids.values():
            for s in subs:
                for t in s.types:
                    if t.ecc is not None:
                        mods.add(s.module.name)
                        for k in ECC_TOTALS:
                            if t.ecc.kind == KINDS[k]:
                                kinds[k] += 1
        for k, want in ECC_TOTALS.items():
            if kinds[k] != want:
                raise DescError('the description has %d %s ECC rows, the chip %d' % (kinds[k], k.upper(), want))
        if mods != ECC_MODULES:
            raise DescError('ECC rows for %s, the chip has them for %s' % (sorted(mods), sorted(ECC_MODULES)))
        if len(self.ecc_counts()) != ECC_CNT_ROWS:
            raise DescError('%d ECC counter rows, the chip has %d' % (len(self.ecc_counts()), ECC_CNT_ROWS))
        if len(self.tcam_counts()) != ECC_TCAM_CNT_ROWS:
            raise DescError('%d TCAM ECC counter rows, the chip has %d' % (len(self.tcam_counts()),
                                                                           ECC_TCAM_CNT_ROWS))

    def ecc_counts(self):
        rows = []
        for name in ECC_CNT_MODULES:
            for s in self.subids[name]:
                for t in s.types:
                    if t.ecc is not None and t.ecc.count_row:
                        start, width = t.ecc.counts[0]
                        rows.append((t, start, width))
        return rows

    def tcam_counts(self):
        rows = []
        for s in self.subids['acl_core']:
            for t in s.types:
                if t.ecc is not None and t.ecc.kind == KINDS['tcam']:
                    rows.append(t)
        return rows

    def all_types(self):
        for mid in sorted(self.by_id):
            for s in self.subids[self.by_id[mid].name]:
                yield from s.types


def _short(reg):
    """A register's name without its module's prefix."""
    p = reg.module.name + '_'
    return reg.name[len(p):] if reg.name.startswith(p) else reg.name


def _reg_id(item, instance=0):
    return item.id | instance << 20


# ---- the SDK's tables -----------------------------------------------------------

def gen_sdk(tree):
    out = [gen_cib.HEADER.replace('(cib/atolreef)', '(cib/atolreef, cib/interrupts.txt)').replace(
        'gen_cib.py', 'gen_intr.py'),
        '// The constant tables of the interrupt engine of atolreef.\n',
        '#include "dpl/reef/special/atolreef/dpl_atolreef_intr_tables.h"\n', 'extern "C" {\n']
    for mid in sorted(tree.by_id):
        m = tree.by_id[mid]
        for s in tree.subids[m.name]:
            for t in s.types:
                if t.debug:
                    out.append('static const u16 k_%s_%s_dbg[] = {%s};' % (s.name, t.field.name, ', '.join(
                        str(d.id) for d in t.debug)))
            out.append('static const intr_type_info k_%s_types[] = {' % s.name)
            for t in s.types:
                mask = t.mask
                out.append('    {"%s", "%s", %s, %s, %d, %d, %d, %d, %d},' % (
                    t.field.name, _short(t.reg), '"%s"' % _short(mask) if mask else 'nullptr',
                    'k_%s_%s_dbg' % (s.name, t.field.name) if t.debug else 'nullptr', t.reg.id,
                    mask.id if mask else NO_REG, t.field.low, t.field.width, len(t.debug)))
            out.append('};')
        if tree.subids[m.name]:
            out.append('static const intr_subid_info k_%s_subids[] = {' % m.name)
            for s in tree.subids[m.name]:
                out.append('    {"%s", k_%s_types, %d},' % (s.name, s.name, len(s.types)))
            out.append('};')
    out.append('\nconst intr_module_info g_atolreef_all_intr_module_info[CIB_MODULE_COUNT] = {')
    for mid in sorted(tree.by_id):
        m = tree.by_id[mid]
        subs = tree.subids[m.name]
        out.append('    {%s, %d}, // %s' % ('k_%s_subids' % m.name if subs else 'nullptr', len(subs), m.name))
    out.append('};\n')

    def rows(name, table):
        for idx, row in enumerate(table):
            for j, e in enumerate(row):
                out.append('static const u8 k_%s_%d_%d_types[] = {%s};' % (
                    name, idx, j, ', '.join(str(t.number) for t in e.types)))
                out.append('static const intr_dispatch_subid k_%s_%d_%d_subid[] = {{%d, k_%s_%d_%d_types, %d}};' % (
                    name, idx, j, e.subid.index, name, idx, j, len(e.types)))
            if row:
                out.append('static const intr_dispatch_module k_%s_%d[] = {' % (name, idx))
                for j, e in enumerate(row):
                    out.append('    {%d, %d, k_%s_%d_%d_subid, 1},' % (e.module.id, e.instance, name, idx, j))
                out.append('};')
        out.append('const intr_dispatch_row g_atolreef_intr_%s_dispatch_info[%d] = {' % (name, len(table)))
        for idx, row in enumerate(table):
            out.append('    {%s, %d},' % ('k_%s_%d' % (name, idx) if row else 'nullptr', len(row)))
        out.append('};\n')

    rows('lswtop', tree.lswtop)
    rows('mag_sds_xsec', tree.second)

    for mid in sorted(tree.by_id):
        m = tree.by_id[mid]
        if m.name not in ECC_MODULES:
            continue
        for s in tree.subids[m.name]:
            if not any(t.ecc for t in s.types):
                continue
            out.append('static const intr_ecc_row k_%s_ecc[] = {' % s.name)
            for t in s.types:
                r = t.ecc
                if r is None:
                    out.append('    {0, 0x%x, %d, 0, %d, 0, 0x%x},' % (NO_DEBUG, NO_START, NO_START, NO_REG))
                    continue
                dbg = _reg_id(r.debug_reg, r.debug_index) if r.debug_reg else NO_DEBUG
                ts, tw = r.type_field if r.type_field else (NO_START, 0)
                xs, xw = r.index_field if r.index_field else (NO_START, 0)
                out.append('    {%d, 0x%x, %d, %d, %d, %d, 0x%x},' % (r.kind, dbg, ts, tw, xs, xw, r.table_id))
            out.append('};')
        out.append('static const intr_ecc_row *const k_%s_ecc_subids[] = {%s};' % (m.name, ', '.join(
            'k_%s_ecc' % s.name if any(t.ecc for t in s.types) else 'nullptr' for s in tree.subids[m.name])))
    out.append('const intr_ecc_module_info g_atolreef_all_ecc_module_info[CIB_MODULE_COUNT] = {')
    for mid in sorted(tree.by_id):
        m = tree.by_id[mid]
        if m.name in ECC_MODULES:
            n = sum(1 for s in tree.subids[m.name] for t in s.types if t.ecc and t.ecc.kind)
            out.append('    {%d, k_%s_ecc_subids}, // %s' % (n, m.name, m.name))
        else:
            out.append('    {0, nullptr}, // %s' % m.name)
    out.append('};\n')
    out.append('const intr_ecc_error_cnt g_atolreef_all_ecc_error_cnt[INTR_ECC_ERROR_CNT_ROWS] = {')
    for t, start, width in tree.ecc_counts():
        out.append('    {%d, %d, %d, %d, 0x%x, %d, %d},' % (t.module.id, t.subid.index, t.number, t.ecc.table_id,
                                                          _reg_id(t.ecc.debug_reg, t.ecc.debug_index), start, width))
    out.append('};\n')
    out.append('const intr_ecc_tcam_cnt g_atolreef_all_ecc_error_tcam_cnt[INTR_ECC_TCAM_CNT_ROWS] = {')
    for t in tree.tcam_counts():
        c = t.ecc.counts + [(0, 0)] * (2 - len(t.ecc.counts))
        out.append('    {0x%x, %d, %d, %d, %d},' % (_reg_id(t.ecc.debug_reg, t.ecc.debug_index), c[0][0], c[0][1],
                                                    c[1][0], c[1][1]))
    out.append('};\n')
    out.append('} // extern "C"\n')
    return '\n'.join(out)


# ---- the model's tree ---------------------------------------------------------------

class Node:
    LEAF, SECOND, GROUP = 0, 1, 2

    def __init__(self, t, instance, kind):
        self.t = t
        self.instance = instance
        self.kind = kind
        self.parent = -1
        self.category = -1


def model_nodes(tree):
    """Every (type, instance) of the tree, from the leaves up: leaves, the
    second level, the category groups; each with its parent."""
    nodes = []
    index = {}

    def node(t, inst, kind):
        key = (id(t), inst)
        if key not in index:
            index[key] = len(nodes)
            nodes.append(Node(t, inst, kind))
        n = nodes[index[key]]
        n.kind = max(n.kind, kind)
        return index[key]

    def group(top):
        c, g, bit = top_place(top)
        s = next(s for s in tree.subids['lsw_hreg'] if s.name == 'lsw_%s_%d' % (c, g))
        t = next(t for t in s.types if t.field.low == bit)
        n = node(t, 0, Node.GROUP)
        nodes[n].category = CATEGORIES.index(c)
        return n

    for top, row in enumerate(tree.lswtop):
        if row:
            g = group(top)
            for e in row:
                for t in e.types:
                    nodes[node(t, e.instance, Node.LEAF)].parent = g
    for first, last, top, _, _, _ in SECOND_SOURCES:
        g = group(top)
        for idx in range(first, last + 1):
            row = tree.second[idx]
            own = node(row[0].types[0], 0, Node.SECOND)
            nodes[own].parent = g
            for e in row[1:]:
                for t in e.types:
                    nodes[node(t, e.instance, Node.LEAF)].parent = own
    # Leaves first, then the second level, then the groups: a node's parent
    # comes after it.
    order = sorted(range(len(nodes)), key=lambda i: (nodes[i].kind, i))
    new = {old: i for i, old in enumerate(order)}
    out = [nodes[i] for i in order]
    for n in out:
        if n.parent >= 0:
            n.parent = new[n.parent]
    return out


def gen_model(tree):
    types = list(tree.all_types())
    tindex = {id(t): i for i, t in enumerate(types)}
    out = [gen_cib.HEADER.replace('(cib/atolreef)', '(cib/atolreef, cib/interrupts.txt)').replace(
        'gen_cib.py', 'gen_intr.py'),
        '// The interrupt tree of atolreef as the chip model holds it: every type\n'
        '// with its registers and bits, and the nodes of the tree from the leaves\n'
        '// up, each with the node its status feeds.\n',
        '#include "sim/sim_intr_desc.h"\n', 'namespace tide::sim::desc {\n']
    out.append('const IntrType kIntrTypes[] = {')
    for t in types:
        out.append('    {%d, %d, %d, "%s", %s, %d, %d, %d},' % (
            t.module.id, t.subid.index, t.number, t.reg.name, '"%s"' % t.mask.name if t.mask else 'nullptr',
            t.field.low, t.field.width, tree.instances(t.reg)))
    out.append('};\nconst size_t kIntrTypeCount = sizeof(kIntrTypes) / sizeof(kIntrTypes[0]);\n')
    nodes = model_nodes(tree)
    out.append('const IntrNode kIntrNodes[] = {')
    for n in nodes:
        out.append('    {%d, %d, %d, %d, %d},' % (tindex[id(n.t)], n.instance, n.kind, n.parent, n.category))
    out.append('};\nconst size_t kIntrNodeCount = sizeof(kIntrNodes) / sizeof(kIntrNodes[0]);\n')
    out.append('const IntrEcc kIntrEcc[] = {')
    for t in types:
        r = t.ecc
        if r is None or r.kind == 0:
            continue
        dbg = 'nullptr'
        is_tab = 'false'
        if r.debug_reg is not None:
            dbg = '"%s"' % r.debug_reg.name
            is_tab = 'true' if r.debug_reg.kind == 'tab' else 'false'
        ts, tw = r.type_field if r.type_field else (0, 0)
        xs, xw = r.index_field if r.index_field else (0, 0)
        c = r.counts + [(0, 0)] * (2 - len(r.counts))
        plane = t.subid.index if r.kind == KINDS['tcam'] else -1
        out.append('    {%d, %d, %s, %s, %d, %d, %d, %d, %d, %d, %d, %d, %d, %s, %d},' % (
            tindex[id(t)], r.kind, dbg, is_tab, r.debug_index, ts, tw, xs, xw, c[0][0], c[0][1], c[1][0], c[1][1],
            '"%s"' % r.table.name if r.table else 'nullptr', plane))
    out.append('};\nconst size_t kIntrEccCount = sizeof(kIntrEcc) / sizeof(kIntrEcc[0]);\n')
    out.append('const IntrEvent kIntrEvents[] = {')
    for name, m, si, ty in tree.events:
        out.append('    {"%s", %d, %d, %d},' % (name, m.id, si, ty))
    out.append('};\nconst size_t kIntrEventCount = sizeof(kIntrEvents) / sizeof(kIntrEvents[0]);\n')
    out.append('} // namespace tide::sim::desc\n')
    return '\n'.join(out)


def gen_doc(tree):
    kinds = {v: k for k, v in KINDS.items()}
    out = ['# Interrupt types of atolreef\n',
           'Generated from `cib/interrupts.txt` and the chip description. A type is named by its module, '
           'subid and number; its bits are those of its status register, and of its mask register.\n']
    for mid in sorted(tree.by_id):
        m = tree.by_id[mid]
        for s in tree.subids[m.name]:
            out.append('## %s (module %d), subid %d `%s`\n' % (m.name, m.id, s.index, s.name))
            out.append('| type | name | status | mask | bits | ECC |\n|---|---|---|---|---|---|')
            for t in s.types:
                bits = '%d' % t.field.low if t.field.width == 1 else '%d:%d' % (t.field.high, t.field.low)
                ecc = ''
                if t.ecc is not None and t.ecc.kind:
                    ecc = kinds[t.ecc.kind] + (' %s' % t.ecc.table.name if t.ecc.table else '') + (
                        ' block %d' % t.ecc.table_id if t.ecc.kind == KINDS['tcam'] else '')
                out.append('| %d | %s | %s | %s | %s | %s |' % (t.number, t.field.name, t.reg.name,
                                                               t.mask.name if t.mask else 'none', bits, ecc))
            out.append('')
    return '\n'.join(out) + '\n'


def main():
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument('desc', help='directory of the chip description (*.cib)')
    ap.add_argument('tree', help='the interrupt tree (cib/interrupts.txt)')
    ap.add_argument('--sdk', help='output directory of the SDK tables')
    ap.add_argument('--model', help='output directory of the model tree')
    ap.add_argument('--doc', help='output file of the reference')
    args = ap.parse_args()
    modules = []
    try:
        files = sorted(f for f in os.listdir(args.desc) if f.endswith('.cib'))
        for f in files:
            gen_cib.parse_file(os.path.join(args.desc, f), modules)
        gen_cib.check_and_complete(modules)
        tree = Tree(modules)
        tree.parse(args.tree)
        tree.check()
    except DescError as e:
        print('gen_intr: %s' % e, file=sys.stderr)
        return 1
    if args.sdk:
        write(os.path.join(args.sdk, 'atolreef_intr_data.cc'), gen_sdk(tree))
    if args.model:
        write(os.path.join(args.model, 'atolreef_intr_model.cc'), gen_model(tree))
    if args.doc:
        write(args.doc, gen_doc(tree))
    return 0


if __name__ == '__main__':
    sys.exit(main())
