#!/usr/bin/env python3
"""Generator of the chip catalogue.

Reads the chip description (cib/atolreef/*.cib), checks it, and writes:

  --sdk DIR     the catalogue of the SDK: records, lists, typed records and
                the generated accessors (atolreef_cib.h, atolreef_cib_data.cc,
                atolreef_cib_access.cc)
  --model DIR   the register and table geometry the chip model loads
                (atolreef_model_desc.cc); no code of the SDK is shared
  --doc FILE    a reference of every module, register, table and field
  --tcam FILE   the registry of the logical TCAM tables (cib/tcam_tables.txt);
                with --sdk also the registry's records and the typed
                _set/_get/_del and conversions of every TCAM table
                (atolreef_tcam_table.h, atolreef_tcam_table.cc)
  --serdes FILE the SerDes macros (cib/serdes/atolreef.cib); with --sdk the
                macro's register catalogue (atolreef_serdes_reg.h,
                atolreef_serdes_reg.cc), with --model its geometry
                (atolreef_serdes_desc.cc), with --doc a section of the
                reference

The description format is told in docs/chip-description.md.  Output is a pure
function of the input: the same description gives the same bytes.
"""

import argparse
import os
import re
import sys

ACCESS_TYPES = ['RW', 'RO', 'RWW', 'RC_H', 'WC', 'RC_P', 'WC_H', 'W1C_H', 'IPSC', 'IPSC2', 'IPSC_RC', 'BPSC',
                'BPSC2', 'RW1C', 'INTWC', 'ELOGF', 'ELOGF_RC', 'ELOGL', 'ELOGL_RC', 'WRC', 'TAB', 'CAM']
ACCESS = {name: i for i, name in enumerate(ACCESS_TYPES)}
RSV_FIELD_ID = 18
MODULE_COUNT = 58
REG_LIST_SLOTS = 4467
TAB_LIST_SLOTS = 557
REG_ID_MAX = 4506
TAB_ID_MAX = 563
NO_RANGE = 0xFFFFFFFE  # -2 as u32


class DescError(Exception):
    pass


class Field:
    def __init__(self, name, low, width, access, reset, comment, where):
        self.name = name
        self.low = low
        self.width = width
        self.access = access
        self.reset = reset
        self.comment = comment
        self.where = where
        self.field_id = None

    @property
    def high(self):
        return self.low + self.width - 1


class Item:
    def __init__(self, kind, name, attrs, doc, where, module):
        self.kind = kind  # 'reg' or 'tab'
        self.name = name
        self.attrs = attrs
        self.doc = doc
        self.where = where
        self.module = module
        self.fields = []
        self.id = None
        self.addrs = []
        self.access = 'RW'
        self.members = []  # fields in typed-record order
        self.records = []  # field records, highest first, with reserved gaps


class Module:
    def __init__(self, name, attrs, where):
        self.name = name
        self.where = where
        self.id = need_int(attrs, 'id', where)
        self.regs = parse_range(attrs.get('regs', 'none'), where)
        self.tabs = parse_range(attrs.get('tabs', 'none'), where)
        self.copies = need_int(attrs, 'copies', where)
        win = attrs.get('window')
        if win is None:
            raise DescError('%s: module %s has no window' % (where, name))
        for k in attrs:
            if k not in ('id', 'regs', 'tabs', 'copies', 'window'):
                raise DescError('%s: unknown module attribute %s=' % (where, k))
        self.items = []
        self.doc = []
        if win == 'none':
            if self.regs or self.tabs:
                raise DescError('%s: module %s has content and no window' % (where, name))
            self.base = self.size = 0
            return
        m = re.fullmatch(r'(0x[0-9a-fA-F]+|\d+)\+(0x[0-9a-fA-F]+|\d+)', win)
        if not m:
            raise DescError('%s: bad window %r' % (where, win))
        self.base = int(m.group(1), 0)
        self.size = int(m.group(2), 0)


def need_int(attrs, key, where):
    if key not in attrs:
        raise DescError('%s: missing %s=' % (where, key))
    try:
        return int(attrs[key], 0)
    except ValueError:
        raise DescError('%s: %s=%r is not a number' % (where, key, attrs[key]))


def parse_range(text, where):
    if text == 'none':
        return None
    m = re.fullmatch(r'(\d+)-(\d+)', text)
    if not m:
        raise DescError('%s: bad range %r' % (where, text))
    return (int(m.group(1)), int(m.group(2)))


def parse_addrs(text, where):
    """0x100 | 0x100,0x200 | 0x100+0x40*4 | 0x100+0x4*8+0x1000*4 | - (a
    placeholder without address).  With two strides the first runs fastest:
    instance i is at base + s1 * (i % n1) + s2 * (i // n1)."""
    if text == '-':
        return []
    num = r'(0x[0-9a-fA-F]+|\d+)'
    m = re.fullmatch(num + r'\+' + num + r'\*(\d+)(?:\+' + num + r'\*(\d+))?', text)
    if m:
        base, stride, count = int(m.group(1), 0), int(m.group(2), 0), int(m.group(3))
        outer, copies = (int(m.group(4), 0), int(m.group(5))) if m.group(4) else (0, 1)
        return [base + outer * k + stride * i for k in range(copies) for i in range(count)]
    try:
        return [int(a, 0) for a in text.split(',')]
    except ValueError:
        raise DescError('%s: bad address list %r' % (where, text))


def parse_attrs(tokens, where):
    attrs = {}
    for t in tokens:
        if '=' not in t:
            raise DescError('%s: expected key=value, got %r' % (where, t))
        k, v = t.split('=', 1)
        if k in attrs:
            raise DescError('%s: %s= given twice' % (where, k))
        attrs[k] = v
    return attrs


def parse_file(path, modules):
    module = None
    doc = []
    item = None
    with open(path) as f:
        for lineno, raw in enumerate(f, 1):
            where = '%s:%d' % (os.path.relpath(path), lineno)
            line = raw.rstrip('\n')
            if not line.strip():
                doc = []
                item = None if not raw.startswith((' ', '\t')) else item
                continue
            if line.lstrip().startswith('#'):
                if not line.startswith((' ', '\t')):
                    doc.append(line.lstrip()[1:].strip())
                continue
            comment = ''
            if '#' in line:
                line, comment = line.split('#', 1)
                comment = comment.strip()
            if line.startswith((' ', '\t')):
                if item is None:
                    raise DescError('%s: field outside a register or table' % where)
                item.fields.append(parse_field(line.split(), item, comment, where))
                continue
            tokens = line.split()
            word = tokens[0]
            if word == 'module':
                if module is not None:
                    raise DescError('%s: second module in one file' % where)
                module = Module(tokens[1], parse_attrs(tokens[2:], where), where)
                module.doc = doc
                modules.append(module)
            elif word in ('reg', 'tab'):
                if module is None:
                    raise DescError('%s: %s before the module line' % (where, word))
                if len(tokens) < 2:
                    raise DescError('%s: %s without a name' % (where, word))
                item = Item(word, tokens[1], parse_attrs(tokens[2:], where), doc, where, module)
                module.items.append(item)
            else:
                raise DescError('%s: unknown keyword %r' % (where, word))
            doc = []


def parse_field(tokens, item, comment, where):
    if len(tokens) < 2:
        raise DescError('%s: a field needs a name and its bits' % where)
    name, bits = tokens[0], tokens[1]
    m = re.fullmatch(r'(\d+)(?::(\d+))?', bits)
    if not m:
        raise DescError('%s: bad bits %r' % (where, bits))
    hi = int(m.group(1))
    lo = int(m.group(2)) if m.group(2) is not None else hi
    if lo > hi:
        raise DescError('%s: bits %r: low above high' % (where, bits))
    access = None
    reset = 0
    for t in tokens[2:]:
        if t.startswith('reset='):
            reset = int(t[6:], 0)
        elif t in ACCESS:
            access = t
        else:
            raise DescError('%s: unknown field word %r' % (where, t))
    return Field(name, lo, hi - lo + 1, access, reset, comment, where)


def check_and_complete(modules):
    by_id = {}
    for m in modules:
        if m.id in by_id:
            raise DescError('%s: module id %d used twice' % (m.where, m.id))
        if not 0 <= m.id < MODULE_COUNT:
            raise DescError('%s: module id %d out of range' % (m.where, m.id))
        by_id[m.id] = m
    names = {}
    reg_ids, tab_ids = {}, {}
    spans = []  # (start, end, item)
    for m in modules:
        for it in m.items:
            w = it.where
            if it.name in names:
                raise DescError('%s: name %s used again (first at %s)' % (w, it.name, names[it.name].where))
            names[it.name] = it
            if not re.fullmatch(r'[a-z][a-z0-9_]*', it.name):
                raise DescError('%s: bad name %r' % (w, it.name))
            it.id = need_int(it.attrs, 'id', w)
            rng = m.regs if it.kind == 'reg' else m.tabs
            ids = reg_ids if it.kind == 'reg' else tab_ids
            if rng is None or not rng[0] <= it.id <= rng[1]:
                raise DescError('%s: %s id %d outside the module range %s' % (w, it.kind, it.id, rng))
            slots = REG_LIST_SLOTS if it.kind == 'reg' else TAB_LIST_SLOTS
            if it.id >= slots:
                raise DescError('%s: id %d is beyond the %d slots of the list' % (w, it.id, slots))
            if it.id in ids:
                raise DescError('%s: id %d used by %s too' % (w, it.id, ids[it.id].name))
            ids[it.id] = it
            it.access = it.attrs.get('access', 'RW')
            if it.access not in ACCESS:
                raise DescError('%s: unknown access %r' % (w, it.access))
            it.addrs = parse_addrs(it.attrs.get('addr', '-'), w)
            known = {'id', 'addr', 'access', 'members', 'special', 'reset'}
            if it.kind == 'reg':
                it.width = 32
            else:
                known |= {'depth', 'width', 'flags', 'kind', 'index_min', 'inst_b'}
                it.depth = need_int(it.attrs, 'depth', w)
                it.width = need_int(it.attrs, 'width', w)
                it.flags = int(it.attrs.get('flags', '0'), 0)
                it.tab_kind = int(it.attrs.get('kind', '0'), 0)
                it.index_min = int(it.attrs.get('index_min', '0'), 0)
                if it.depth < 1 or it.width < 1:
                    raise DescError('%s: depth and width must be positive' % w)
            for k in it.attrs:
                if k not in known:
                    raise DescError('%s: unknown attribute %s=' % (w, k))
            it.special = it.attrs.get('special', '')
            if it.special not in ('', 'complement'):
                raise DescError('%s: unknown special %r' % (w, it.special))
            # Fields: inside the width, no overlaps, unique names.
            seen = {}
            bits = [None] * it.width
            for f in it.fields:
                if f.name in seen:
                    raise DescError('%s: field %s twice in %s' % (f.where, f.name, it.name))
                seen[f.name] = f
                if f.name in ('rsv', 'reserve'):
                    raise DescError('%s: reserved bits are left out, not named' % f.where)
                if f.high >= it.width:
                    raise DescError('%s: field %s reaches bit %d of a %d-bit %s' % (
                        f.where, f.name, f.high, it.width, 'register' if it.kind == 'reg' else 'entry'))
                if f.width > 64:
                    raise DescError('%s: field %s is wider than 64 bits; split it' % (f.where, f.name))
                for b in range(f.low, f.high + 1):
                    if bits[b] is not None:
                        raise DescError('%s: field %s overlaps %s at bit %d' % (f.where, f.name, bits[b].name, b))
                    bits[b] = f
                if f.access is None:
                    f.access = it.access
                if f.reset >> f.width:
                    raise DescError('%s: reset value of %s does not fit' % (f.where, f.name))
            if not it.fields:
                raise DescError('%s: %s has no fields' % (w, it.name))
            # Field records: highest first, with the gaps as reserved pieces.
            recs = []

            def reserve(low, high, where):
                # Pieces of at most 64 bits, like every other field.
                while high >= low:
                    piece_low = max(low, high - 63)
                    recs.append(Field('rsv', piece_low, high - piece_low + 1, 'RO', 0, '', where))
                    high = piece_low - 1

            pos = it.width
            for f in sorted(it.fields, key=lambda f: -f.low):
                reserve(f.high + 1, pos - 1, f.where)
                recs.append(f)
                pos = f.low
            reserve(0, pos - 1, it.where)
            it.records = recs
            # Typed-record members: descending bit position unless given.
            if 'members' in it.attrs:
                order = it.attrs['members'].split(',')
                if sorted(order) != sorted(seen):
                    raise DescError('%s: members= must name every field once' % w)
                it.members = [seen[n] for n in order]
            else:
                it.members = [f for f in recs if f.name != 'rsv']
            limit = 32 if it.kind == 'reg' else 128
            if len(it.members) > limit:
                raise DescError('%s: %d fields: more than the %d bits of the mask' % (w, len(it.members), limit))
            # Addresses: inside the module window, instances as copies.
            if it.kind == 'reg':
                for a in it.addrs:
                    if a % 4:
                        raise DescError('%s: address 0x%x is not a multiple of 4' % (w, a))
                    spans.append((a, a + 4, it))
            else:
                words = (it.width + 31) // 32
                it.words = words
                # Tables reached through an engine take no address room of
                # their entries.
                span = 0x100 if it.flags & 4 else it.depth * words * 4
                it.span = span
                for a in it.addrs:
                    if a % 4:
                        raise DescError('%s: address 0x%x is not a multiple of 4' % (w, a))
                    spans.append((a, a + span, it))
            for a in it.addrs:
                if not m.base <= a < m.base + m.size:
                    raise DescError('%s: address 0x%x outside the window of %s' % (w, a, m.name))
    spans.sort(key=lambda s: s[0])
    for (a0, e0, i0), (a1, e1, i1) in zip(spans, spans[1:]):
        if a1 < e0:
            raise DescError('%s: %s at 0x%x overlaps %s (0x%x..0x%x)' % (i1.where, i1.name, a1, i0.name, a0, e0))
    if sorted(by_id) != list(range(MODULE_COUNT)):
        missing = sorted(set(range(MODULE_COUNT)) - set(by_id))
        raise DescError('the description lacks modules %s' % missing)
    for m in modules:
        end = m.base + m.size
        for n in modules:
            if n is not m and m.base < n.base + n.size and n.base < end:
                raise DescError('%s: window of %s overlaps %s' % (m.where, m.name, n.name))
    return by_id


def assign_field_ids(modules):
    """One number per distinct field name, in the order of first appearance
    (module, register, then table, members in record order); "rsv" is 18."""
    ids = {'rsv': RSV_FIELD_ID}
    nxt = 0
    for m in sorted(modules, key=lambda m: m.id):
        for it in sorted(m.items, key=lambda i: (i.kind != 'reg', i.id)):
            for f in it.members:
                if f.name not in ids:
                    if nxt == RSV_FIELD_ID:
                        nxt += 1
                    ids[f.name] = nxt
                    nxt += 1
    for m in modules:
        for it in m.items:
            for f in it.records:
                f.field_id = ids[f.name]
    return ids


def c_type(width):
    for bits, name in ((8, 'u8'), (16, 'u16'), (32, 'u32'), (64, 'u64')):
        if width <= bits:
            return name
    raise AssertionError(width)


def cident(name):
    return 'cib_' + name


def write(path, text):
    os.makedirs(os.path.dirname(path) or '.', exist_ok=True)
    # Only touch the file when its content changes, so that a regeneration
    # that changes nothing rebuilds nothing.
    try:
        with open(path) as f:
            if f.read() == text:
                return
    except FileNotFoundError:
        pass
    with open(path, 'w') as f:
        f.write(text)


HEADER = '// Generated from the chip description (cib/atolreef) by cib/gen_cib.py. Do not edit.\n'


def gen_sdk_header(modules, field_ids):
    out = [HEADER, '#ifndef TIDE_ATOLREEF_CIB_H\n#define TIDE_ATOLREEF_CIB_H\n',
           '#include "csl/reef/reg_tbl/csl_reef_cib.h"\n',
           '#ifdef __cplusplus\nextern "C" {\n#endif\n']
    out.append('/* Chip modules: cib module ids. */')
    out.append('enum cib_module_id {')
    for m in sorted(modules, key=lambda m: m.id):
        out.append('    cib_module_%s = %d,' % (m.name, m.id))
    out.append('};\n')
    out.append('/* Field ids of the global dictionary. */')
    out.append('enum cib_field_id {')
    for name, fid in sorted(field_ids.items(), key=lambda kv: kv[1]):
        out.append('    cib_f_%s = %d,' % (name, fid))
    out.append('};\n')
    out.append('/* Register ids. */')
    out.append('enum cib_reg_id {')
    for m in sorted(modules, key=lambda m: m.id):
        for it in sorted((i for i in m.items if i.kind == 'reg'), key=lambda i: i.id):
            out.append('    %s = %d,' % (cident(it.name), it.id))
    out.append('};\n')
    out.append('/* Table ids. */')
    out.append('enum cib_tab_id {')
    for m in sorted(modules, key=lambda m: m.id):
        for it in sorted((i for i in m.items if i.kind == 'tab'), key=lambda i: i.id):
            out.append('    %s = %d,' % (cident(it.name), it.id))
    out.append('};\n')
    for m in sorted(modules, key=lambda m: m.id):
        for it in sorted(m.items, key=lambda i: (i.kind != 'reg', i.id)):
            c = cident(it.name)
            out.append('/* %s %s */' % ('register' if it.kind == 'reg' else 'table', it.name))
            out.append('typedef struct %s_s {' % c)
            for f in it.members:
                out.append('    %s %s;' % (c_type(f.width), f.name))
            out.append('} %s_t;' % c)
            out.append('/* mask bits of the members */')
            out.append('enum {')
            for i, f in enumerate(it.members):
                out.append('    %s__%s = %d,' % (c, f.name, i))
            out.append('};')
            if it.kind == 'reg':
                out.append('extern const cib_reg_info atolreef_%s_reg;' % c)
                out.append('int csl_reef_%s_get(u32 chip_id, u32 addr_index, %s_t *out);' % (c, c))
                out.append('int csl_reef_%s_set(u32 chip_id, u32 addr_index, %s_t *in, u8 mask[4]);' % (c, c))
            else:
                out.append('extern const cib_tab_info atolreef_%sm;' % c)
                out.append('int csl_reef_%s_get(u32 chip_id, u32 addr_index, u32 index, %s_t *out);' % (c, c))
                out.append('int csl_reef_%s_set(u32 chip_id, u32 addr_index, u32 index, %s_t *in, u64 mask[2]);' % (c, c))
            out.append('int _csl_reef_%s_all_TO_data(u32 chip_id, %s_t *in, u8 *data);' % (c, c))
            out.append('int _csl_reef_%s_TO_data(u32 chip_id, %s_t *in, u8 *data, const void *mask);' % (c, c))
            out.append('int _csl_reef_data_TO_%s(u32 chip_id, %s_t *out, u8 *data);\n' % (c, c))
    out.append('#ifdef __cplusplus\n}\n#endif\n\n#endif /* TIDE_ATOLREEF_CIB_H */\n')
    return '\n'.join(out)


def gen_sdk_data(modules, by_id):
    out = [HEADER, '#include <cstddef>\n', '#include "atolreef_cib.h"\n', 'extern "C" {\n']
    for m in sorted(modules, key=lambda m: m.id):
        for it in sorted(m.items, key=lambda i: (i.kind != 'reg', i.id)):
            c = cident(it.name)
            out.append('static const cib_field_info %s_af[] = {' % c)
            for f in it.records:
                out.append('    {"%s", %d, %d, %d, 0, %d},' % (f.name, f.field_id, f.width, f.low, ACCESS[f.access]))
            out.append('};')
            if it.addrs:
                out.append('static const u32 atolreef_%s_addr[] = {%s};' % (
                    c, ', '.join('0x%x' % a for a in it.addrs)))
            idx = {id(f): i for i, f in enumerate(it.records)}
            out.append('static const cib_member %s_members[] = {' % c)
            for f in it.members:
                out.append('    {offsetof(%s_t, %s), sizeof(((%s_t *)0)->%s), %d},' % (c, f.name, c, f.name, idx[id(f)]))
            out.append('};')
            addr = 'atolreef_%s_addr' % c if it.addrs else 'nullptr'
            if it.kind == 'reg':
                out.append('const cib_reg_info atolreef_%s_reg = {"%s", %s, %s_af, 0, %d, 1, %d, %s_members, %d};' % (
                    c, it.name, addr, c, len(it.addrs), len(it.records), c, len(it.members)))
            else:
                out.append('static const cib_tab_mode atolreef_%s_mf[] = {{0, %d, %d, 0, %s_af}};' % (
                    c, it.width, len(it.records), c))
                out.append('const cib_tab_info atolreef_%sm = {"%s", %s, atolreef_%s_mf, nullptr, %d, %d, %d, %d, %d, %d, 1, 1, %s_members, %d};' % (
                    c, it.name, addr, c, it.tab_kind, it.index_min, it.index_min + it.depth - 1, it.flags, it.width,
                    max(len(it.addrs), 1) if it.addrs else 0, c, len(it.members)))
    regs = {}
    tabs = {}
    for m in modules:
        for it in m.items:
            (regs if it.kind == 'reg' else tabs)[it.id] = it
    out.append('\nconst cib_reg_info *const g_atolreef_reg_list[%d] = {' % REG_LIST_SLOTS)
    for i in range(REG_LIST_SLOTS):
        out.append('    &atolreef_%s_reg,' % cident(regs[i].name) if i in regs else '    nullptr,')
    out.append('};')
    out.append('\nconst cib_tab_info *const g_atolreef_tab_list[%d] = {' % TAB_LIST_SLOTS)
    for i in range(TAB_LIST_SLOTS):
        out.append('    &atolreef_%sm,' % cident(tabs[i].name) if i in tabs else '    nullptr,')
    out.append('};')
    out.append('\nconst cib_module_info atolreef_allmodule_list[%d] = {' % MODULE_COUNT)
    for mid in range(MODULE_COUNT):
        m = by_id[mid]
        if m.regs is None and m.tabs is None:
            out.append('    {nullptr, 0, 0, 0, 0, 0, 0, 0}, // %s' % m.name)
            continue
        rr = m.regs or (NO_RANGE, NO_RANGE)
        tr = m.tabs or (NO_RANGE, NO_RANGE)
        out.append('    {"cib_%s", 0, 0, 0x%x, 0x%x, 0x%x, 0x%x, %d},' % (m.name, rr[0], rr[1], tr[0], tr[1], m.copies))
    out.append('};')
    out.append('\n// Names of all chip modules, also those without content.')
    out.append('const char *const g_cib_module_name[%d] = {' % MODULE_COUNT)
    for mid in range(MODULE_COUNT):
        out.append('    "%s",' % by_id[mid].name)
    out.append('};')
    out.append('\nconst u16 g_direct_tab_id_to_module_id[%d] = {' % (TAB_ID_MAX + 1))
    owner = {}
    for m in modules:
        if m.tabs:
            for t in range(m.tabs[0], m.tabs[1] + 1):
                owner[t] = m.id
    row = []
    for t in range(TAB_ID_MAX + 1):
        row.append('%d' % owner.get(t, 0xFFFF))
        if len(row) == 16:
            out.append('    ' + ', '.join(row) + ',')
            row = []
    if row:
        out.append('    ' + ', '.join(row) + ',')
    out.append('};')
    out.append('\n} // extern "C"\n')
    return '\n'.join(out)


def gen_sdk_access(modules):
    out = [HEADER, '#include "atolreef_cib.h"\n', 'extern "C" {\n']
    for m in sorted(modules, key=lambda m: m.id):
        for it in sorted(m.items, key=lambda i: (i.kind != 'reg', i.id)):
            c = cident(it.name)
            if it.kind == 'reg':
                desc = '&atolreef_%s_reg' % c
                out.append('int csl_reef_%s_get(u32 chip_id, u32 addr_index, %s_t *out)\n{\n'
                           '    return csl_reef_cib_reg_record_get(chip_id, %s, addr_index, %d, %s, out);\n}\n' % (
                               c, c, c, m.id, desc))
                out.append('int csl_reef_%s_set(u32 chip_id, u32 addr_index, %s_t *in, u8 mask[4])\n{\n'
                           '    return csl_reef_cib_reg_record_set(chip_id, %s, addr_index, %d, %s, in, mask);\n}\n' % (
                               c, c, c, m.id, desc))
                obj = desc[1:]
                rec = '%s.fields, %s.members, %s.member_count' % (obj, obj, obj)
                mask_bytes = 4
            else:
                desc = '&atolreef_%sm' % c
                out.append('int csl_reef_%s_get(u32 chip_id, u32 addr_index, u32 index, %s_t *out)\n{\n'
                           '    return csl_reef_cib_tab_record_get(chip_id, %s, addr_index, index, %s, out);\n}\n' % (
                               c, c, c, desc))
                out.append('int csl_reef_%s_set(u32 chip_id, u32 addr_index, u32 index, %s_t *in, u64 mask[2])\n{\n'
                           '    return csl_reef_cib_tab_record_set(chip_id, %s, addr_index, index, %s, in, mask);\n}\n' % (
                               c, c, c, desc))
                obj = desc[1:]
                rec = '%s.modes[0].fields, %s.members, %s.member_count' % (obj, obj, obj)
                mask_bytes = 16
            out.append('int _csl_reef_%s_all_TO_data(u32 chip_id, %s_t *in, u8 *data)\n{\n'
                       '    (void)chip_id;\n    return csl_reef_cib_record_to_data(%s, in, data, nullptr, 0);\n}\n' % (c, c, rec))
            out.append('int _csl_reef_%s_TO_data(u32 chip_id, %s_t *in, u8 *data, const void *mask)\n{\n'
                       '    (void)chip_id;\n    return csl_reef_cib_record_to_data(%s, in, data, static_cast<const u8 *>(mask), %d);\n}\n' % (
                           c, c, rec, mask_bytes))
            out.append('int _csl_reef_data_TO_%s(u32 chip_id, %s_t *out, u8 *data)\n{\n'
                       '    (void)chip_id;\n    return csl_reef_cib_data_to_record(%s, out, data);\n}\n' % (c, c, rec))
    out.append('} // extern "C"\n')
    return '\n'.join(out)


def bit_masks(it, word_count):
    """Per 32-bit word: writable, read-only, read-clear, write-1-clear masks
    and the reset value."""
    rw = [0] * word_count
    ro = [0] * word_count
    rc = [0] * word_count
    w1c = [0] * word_count
    reset = [0] * word_count
    for f in it.records:
        if f.name == 'rsv':
            continue
        a = f.access
        for b in range(f.low, f.high + 1):
            w, bit = divmod(b, 32)
            if a in ('RW', 'RWW', 'TAB', 'CAM', 'IPSC', 'IPSC2', 'BPSC', 'BPSC2', 'ELOGF', 'ELOGL'):
                rw[w] |= 1 << bit
            elif a in ('RC_H', 'RC_P', 'IPSC_RC', 'ELOGF_RC', 'ELOGL_RC', 'WRC'):
                rc[w] |= 1 << bit
            elif a in ('WC', 'WC_H', 'W1C_H', 'RW1C', 'INTWC'):
                w1c[w] |= 1 << bit
            else:
                ro[w] |= 1 << bit
            if (f.reset >> (b - f.low)) & 1:
                reset[w] |= 1 << bit
    return rw, ro, rc, w1c, reset


def gen_model(modules):
    out = [HEADER, '// The geometry of the chip as the model needs it: where each register and\n'
           '// table lies, and how each bit answers the CPU.\n',
           '#include "sim/sim_desc.h"\n', 'namespace tide::sim::desc {\n']
    regs = []
    tabs = []
    for m in sorted(modules, key=lambda m: m.id):
        for it in sorted(m.items, key=lambda i: (i.kind != 'reg', i.id)):
            (regs if it.kind == 'reg' else tabs).append(it)
    out.append('static const uint32_t kAddrs[] = {')
    offsets = {}
    pos = 0
    for it in regs + tabs:
        offsets[it.name] = pos
        out.append('    %s, // %s' % (', '.join('0x%x' % a for a in it.addrs) or '0', it.name))
        pos += max(len(it.addrs), 1)
    out.append('};\n')
    out.append('static const uint32_t kMasks[] = {')
    moff = {}
    pos = 0
    for it in regs + tabs:
        words = 1 if it.kind == 'reg' else it.words
        moff[it.name] = pos
        rw, ro, rc, w1c, reset = bit_masks(it, words)
        vals = rw + ro + rc + w1c + reset
        out.append('    %s, // %s' % (', '.join('0x%x' % v for v in vals), it.name))
        pos += 5 * words
    out.append('};\n')
    out.append('static const Field kFields[] = {')
    foff = {}
    pos = 0
    for it in regs + tabs:
        foff[it.name] = pos
        named = [f for f in it.records if f.name != 'rsv']
        out.append('    %s // %s' % (' '.join('{"%s", %d, %d},' % (f.name, f.low, f.width) for f in named), it.name))
        pos += len(named)
    out.append('};\n')
    out.append('const Register kRegisters[] = {')
    for it in regs:
        out.append('    {"%s", %d, &kAddrs[%d], %d, &kMasks[%d], %s, &kFields[%d], %d},' % (
            it.name, it.id, offsets[it.name], len(it.addrs), moff[it.name],
            'true' if it.special == 'complement' else 'false', foff[it.name],
            len([f for f in it.records if f.name != 'rsv'])))
    out.append('};\nconst size_t kRegisterCount = sizeof(kRegisters) / sizeof(kRegisters[0]);\n')
    out.append('const Table kTables[] = {')
    for it in tabs:
        out.append('    {"%s", %d, &kAddrs[%d], %d, %d, %d, %d, &kMasks[%d], &kFields[%d], %d},' % (
            it.name, it.id, offsets[it.name], len(it.addrs), it.depth, it.words, it.flags, moff[it.name],
            foff[it.name], len([f for f in it.records if f.name != 'rsv'])))
    out.append('};\nconst size_t kTableCount = sizeof(kTables) / sizeof(kTables[0]);\n')
    out.append('} // namespace tide::sim::desc\n')
    return '\n'.join(out)


def gen_doc(modules):
    out = ['# Chip catalogue of atolreef\n',
           'Generated from the chip description `cib/atolreef`. Bits are given high:low; '
           'the access type follows each field.\n']
    for m in sorted(modules, key=lambda m: m.id):
        out.append('## %s (module %d)\n' % (m.name, m.id))
        out.append('Window 0x%x, size 0x%x, %d cop%s. Registers %s, tables %s.\n' % (
            m.base, m.size, m.copies, 'y' if m.copies == 1 else 'ies',
            '%d-%d' % m.regs if m.regs else 'none', '%d-%d' % m.tabs if m.tabs else 'none'))
        for it in sorted(m.items, key=lambda i: (i.kind != 'reg', i.id)):
            kind = 'register' if it.kind == 'reg' else 'table'
            where = ', '.join('0x%x' % a for a in it.addrs[:4]) + (' ...' if len(it.addrs) > 4 else '')
            geo = '' if it.kind == 'reg' else ', depth %d, width %d, flags %d' % (it.depth, it.width, it.flags)
            out.append('### %s `cib_%s`\n' % (kind, it.name))
            out.append('id %d, address %s (%d instance%s)%s.\n' % (
                it.id, where or 'none', len(it.addrs), '' if len(it.addrs) == 1 else 's', geo))
            if it.doc:
                out.append(' '.join(it.doc) + '\n')
            out.append('| field | bits | access | reset | meaning |\n|---|---|---|---|---|')
            for f in it.records:
                if f.name == 'rsv':
                    continue
                bits = '%d' % f.low if f.width == 1 else '%d:%d' % (f.high, f.low)
                out.append('| %s | %s | %s | 0x%x | %s |' % (f.name, bits, f.access, f.reset, f.comment))
            out.append('')
    return '\n'.join(out) + '\n'


# ---- the logical TCAM tables ---------------------------------------------------

class TcamTable:
    def __init__(self, tid, name, tag, sub, action, where):
        self.id = tid
        self.name = name
        self.tag = tag      # (start, width, value)
        self.sub = sub      # (start, width, value) or None
        self.action = action  # action table name or None
        self.where = where
        self.key = None     # the key table Item when the chip has it
        self.ad = None
        # The name of the typed record and functions: the key table's name
        # without "_key".
        self.short = name[:-4] if name.endswith('_key') else name


def parse_tcam(path, items):
    """The registry: one line per table, ids from 0 in order."""
    tables = []
    with open(path) as f:
        for lineno, raw in enumerate(f, 1):
            where = '%s:%d' % (os.path.relpath(path), lineno)
            line = raw.split('#', 1)[0].split()
            if not line:
                continue
            try:
                tid = int(line[0])
                tag = tuple(int(x) for x in line[2:5])
                rest = line[5:]
                sub = None
                if rest[:1] != ['-']:
                    sub = tuple(int(x) for x in rest[:3])
                    rest = rest[3:]
                else:
                    rest = rest[1:]
                if len(rest) != 1 or len(tag) != 3 or (sub is not None and len(sub) != 3):
                    raise ValueError
            except (ValueError, IndexError):
                raise DescError('%s: expected: id name tag-start tag-width tag-value (sub-tag | -) (action | -)' % where)
            if tid != len(tables):
                raise DescError('%s: tcam id %d out of order (expected %d)' % (where, tid, len(tables)))
            t = TcamTable(tid, line[1], tag, sub, None if rest[0] == '-' else rest[0], where)
            if any(o.name == t.name for o in tables):
                raise DescError('%s: tcam table %s named twice' % (where, t.name))
            key = items.get(t.name)
            if key is not None:
                if key.kind != 'tab' or key.tab_kind != 2:
                    raise DescError('%s: %s is not a TCAM table of the description' % (where, t.name))
                for what, f3 in (('tag', t.tag), ('sub-tag', t.sub)):
                    if f3 is not None and (f3[0] + f3[1] > key.width or f3[2] >> f3[1]):
                        raise DescError('%s: %s %r does not fit the %d-bit key' % (where, what, f3, key.width))
                ad = items.get(t.action) if t.action else None
                if ad is None or ad.kind != 'tab' or ad.tab_kind != 2:
                    raise DescError('%s: the action table %s of %s is not a TCAM table of the description' % (
                        where, t.action, t.name))
                if 'cib_' + t.short in {cident(n) for n in items}:
                    raise DescError('%s: the record name cib_%s is taken' % (where, t.short))
                t.key = key
            ad = items.get(t.action) if t.action else None
            t.ad = ad if ad is not None and ad.kind == 'tab' and ad.tab_kind == 2 else None
            tables.append(t)
    if not tables:
        raise DescError('%s: no tcam tables' % path)
    return tables


def gen_tcam_header(tables):
    out = [HEADER, '#ifndef TIDE_ATOLREEF_TCAM_TABLE_H\n#define TIDE_ATOLREEF_TCAM_TABLE_H\n',
           '#include "atolreef_cib.h"', '#include "csl/reef/reg_tbl/csl_reef_tcam_tab_op.h"\n',
           '#ifdef __cplusplus\nextern "C" {\n#endif\n',
           '/* Tcam ids: the index of g_tcam_tab_name_id and g_tcam_tid_subid. */', 'enum csl_tcam_id {']
    for t in tables:
        out.append('    CSL_TCAM_ID_%s = %d,' % (t.name.upper(), t.id))
    out.append('};\n')
    out.append('#ifdef __cplusplus\nstatic_assert(%d == CSL_TCAM_TAB_COUNT, "the registry has CSL_TCAM_TAB_COUNT tables");\n'
               '#endif\n' % len(tables))
    done_ad = set()
    for t in tables:
        c = 'cib_' + t.short
        if t.key is None:
            out.append('/* %s: not on this chip; the functions answer -24. */' % t.name)
            out.append('int csl_reef_%s_set(u32 chip_id, u32 block, u32 index, void *record);' % c)
            out.append('int csl_reef_%s_get(u32 chip_id, u32 block, u32 index, void *record);' % c)
            out.append('int csl_reef_%s_del(u32 chip_id, u32 block, u32 index);\n' % c)
            continue
        k, a = cident(t.key.name), cident(t.ad.name)
        out.append('/* %s: key, mask (the key\'s record) and action of one entry. */' % t.name)
        out.append('typedef struct %s_s {\n    %s_t key;\n    %s_t mask;\n    %s_t ad;\n} %s_t;' % (c, k, k, a, c))
        out.append('int csl_reef_%s_set(u32 chip_id, u32 block, u32 index, %s_t *record);' % (c, c))
        out.append('int csl_reef_%s_get(u32 chip_id, u32 block, u32 index, %s_t *record);' % (c, c))
        out.append('int csl_reef_%s_del(u32 chip_id, u32 block, u32 index);' % c)
        conv = [t.key] + ([t.ad] if t.ad.name not in done_ad else [])
        done_ad.add(t.ad.name)
        for it in conv:
            ci = cident(it.name)
            out.append('int csl_reef_%s_TO_entry(u32 chip_id, %s_t *record, const void *mask, u8 *data, u32 write_bits);' % (ci, ci))
            out.append('int csl_reef_entry_TO_%s(u32 chip_id, %s_t *record, const u8 *data);' % (ci, ci))
        out.append('')
    out.append('#ifdef __cplusplus\n}\n#endif\n\n#endif /* TIDE_ATOLREEF_TCAM_TABLE_H */\n')
    return '\n'.join(out)


def gen_tcam_source(tables):
    out = [HEADER, '#include <cstddef>\n', '#include "atolreef_tcam_table.h"\n', 'extern "C" {\n']
    out.append('const csl_tcam_tab_name_id g_tcam_tab_name_id[CSL_TCAM_TAB_COUNT] = {')
    for t in tables:
        key_id = '%d' % t.key.id if t.key else 'CSL_TCAM_NO_TAB'
        ad_id = '%d' % t.ad.id if t.ad else 'CSL_TCAM_NO_TAB'
        out.append('    {"%s", %s, %s, %s},' % (t.name, key_id, '"%s"' % t.action if t.action else 'nullptr', ad_id))
    out.append('};\n')
    out.append('const csl_tcam_tid_subid g_tcam_tid_subid[CSL_TCAM_TAB_COUNT] = {')
    for t in tables:
        sub = t.sub or (0, 0, 0)
        out.append('    {%d, %d, %d, %d, %d, %d},' % (t.tag + sub))
    out.append('};\n')
    done_ad = set()
    for t in tables:
        c = 'cib_' + t.short
        if t.key is None:
            for op, args in (('set', 'u32 block, u32 index, void *record'), ('get', 'u32 block, u32 index, void *record'),
                             ('del', 'u32 block, u32 index')):
                names = [a.split()[-1].lstrip('*') for a in args.split(', ')]
                out.append('int csl_reef_%s_%s(u32 chip_id, %s)\n{\n%s    return csl_reef_tcam_record_absent(chip_id, %d);\n}\n' % (
                    c, op, args, ''.join('    (void)%s;\n' % n for n in names), t.id))
            continue
        k, a = cident(t.key.name), cident(t.ad.name)
        out.append('static const csl_tcam_record_layout k_%s_layout = {%d, &atolreef_%sm, &atolreef_%sm, '
                   'offsetof(%s_t, key), offsetof(%s_t, mask), offsetof(%s_t, ad)};' % (c, t.id, k, a, c, c, c))
        out.append('int csl_reef_%s_set(u32 chip_id, u32 block, u32 index, %s_t *record)\n{\n'
                   '    return csl_reef_tcam_record_set(chip_id, block, index, record, &k_%s_layout);\n}\n' % (c, c, c))
        out.append('int csl_reef_%s_get(u32 chip_id, u32 block, u32 index, %s_t *record)\n{\n'
                   '    return csl_reef_tcam_record_get(chip_id, block, index, record, &k_%s_layout);\n}\n' % (c, c, c))
        out.append('int csl_reef_%s_del(u32 chip_id, u32 block, u32 index)\n{\n'
                   '    return csl_reef_tcam_record_del(chip_id, block, index, %d);\n}\n' % (c, t.id))
        conv = [t.key] + ([t.ad] if t.ad.name not in done_ad else [])
        done_ad.add(t.ad.name)
        for it in conv:
            ci = cident(it.name)
            out.append('int csl_reef_%s_TO_entry(u32 chip_id, %s_t *record, const void *mask, u8 *data, u32 write_bits)\n{\n'
                       '    return csl_reef_tcam_record_to_entry(chip_id, &atolreef_%sm, record, mask, data, write_bits);\n}\n' % (
                           ci, ci, ci))
            out.append('int csl_reef_entry_TO_%s(u32 chip_id, %s_t *record, const u8 *data)\n{\n'
                       '    return csl_reef_tcam_entry_to_record(chip_id, &atolreef_%sm, record, data);\n}\n' % (ci, ci, ci))
    out.append('} // extern "C"\n')
    return '\n'.join(out)


# ---- the SerDes macros ------------------------------------------------------------

SDS_REG_COUNT = 104
SDS_ACCESS = ('RW', 'RO')


class SdsMacro:
    def __init__(self, name, attrs, where):
        self.name = name
        self.where = where
        for k in attrs:
            if k not in ('bases', 'size', 'lanes', 'lane_shift', 'order'):
                raise DescError('%s: unknown macro attribute %s=' % (where, k))
        try:
            self.bases = [int(b, 0) for b in attrs['bases'].split(',')]
        except (KeyError, ValueError):
            raise DescError('%s: bases= needs a list of addresses' % where)
        self.size = need_int(attrs, 'size', where)
        self.lanes = need_int(attrs, 'lanes', where)
        self.lane_shift = need_int(attrs, 'lane_shift', where)
        if self.lanes < 1 or (self.lanes - 1) << self.lane_shift >= self.size:
            raise DescError('%s: %d lanes of 2^%d bytes do not fit a macro of 0x%x' % (
                where, self.lanes, self.lane_shift, self.size))
        try:
            self.order = [int(v, 0) for v in attrs['order'].split(',')]
        except (KeyError, ValueError):
            raise DescError('%s: order= needs the place of every serdes_id' % where)
        if sorted(self.order) != list(range(len(self.bases) * self.lanes)):
            raise DescError('%s: order= must name each lane of the macros once' % where)


class SdsReg:
    def __init__(self, kind, name, attrs, doc, where):
        self.kind = kind  # 'reg' (named, in the catalogue) or 'word' (by offset only)
        self.name = name
        self.doc = doc
        self.where = where
        self.fields = []
        for k in attrs:
            if k not in ('ofs', 'scope', 'access'):
                raise DescError('%s: unknown attribute %s=' % (where, k))
        self.offset = need_int(attrs, 'ofs', where)
        self.scope = attrs.get('scope')
        if self.scope not in ('lane', 'macro'):
            raise DescError('%s: scope= must be lane or macro' % where)
        self.access = attrs.get('access', 'RW')
        if self.access not in SDS_ACCESS:
            raise DescError('%s: a SerDes word is RW or RO, not %r' % (where, self.access))

    @property
    def per_lane(self):
        return self.scope == 'lane'


def parse_serdes(path):
    macro = None
    regs = []
    doc = []
    item = None
    with open(path) as f:
        for lineno, raw in enumerate(f, 1):
            where = '%s:%d' % (os.path.relpath(path), lineno)
            line = raw.rstrip('\n')
            if not line.strip():
                doc = []
                item = None
                continue
            if line.lstrip().startswith('#'):
                if not line.startswith((' ', '\t')):
                    doc.append(line.lstrip()[1:].strip())
                continue
            comment = ''
            if '#' in line:
                line, comment = line.split('#', 1)
                comment = comment.strip()
            if line.startswith((' ', '\t')):
                if item is None:
                    raise DescError('%s: field outside a register' % where)
                item.fields.append(parse_field(line.split(), item, comment, where))
                continue
            tokens = line.split()
            if tokens[0] == 'macro':
                if macro is not None:
                    raise DescError('%s: second macro line' % where)
                if len(tokens) < 2:
                    raise DescError('%s: macro without a name' % where)
                macro = SdsMacro(tokens[1], parse_attrs(tokens[2:], where), where)
            elif tokens[0] in ('reg', 'word'):
                if macro is None:
                    raise DescError('%s: %s before the macro line' % (where, tokens[0]))
                if len(tokens) < 2:
                    raise DescError('%s: %s without a name' % (where, tokens[0]))
                item = SdsReg(tokens[0], tokens[1], parse_attrs(tokens[2:], where), doc, where)
                regs.append(item)
            else:
                raise DescError('%s: unknown keyword %r' % (where, tokens[0]))
            doc = []
    if macro is None:
        raise DescError('%s: no macro line' % path)
    return macro, regs


def check_serdes(macro, regs, modules):
    """Names, offsets, fields and the macros' place in the switch-core space."""
    names = {}
    for r in regs:
        if not re.fullmatch(r'[a-z][a-z0-9_]*', r.name):
            raise DescError('%s: bad name %r' % (r.where, r.name))
        if r.name in names:
            raise DescError('%s: name %s used again (first at %s)' % (r.where, r.name, names[r.name].where))
        names[r.name] = r
        if r.offset % 4:
            raise DescError('%s: offset 0x%x is not a multiple of 4' % (r.where, r.offset))
        limit = 1 << macro.lane_shift if r.per_lane else macro.size
        if r.offset >= limit:
            raise DescError('%s: offset 0x%x beyond its %s (0x%x)' % (r.where, r.offset, r.scope, limit))
        if not r.fields:
            raise DescError('%s: %s has no fields' % (r.where, r.name))
        seen = {}
        bits = [None] * 32
        for f in r.fields:
            if f.name in seen:
                raise DescError('%s: field %s twice in %s' % (f.where, f.name, r.name))
            seen[f.name] = f
            if f.high >= 32:
                raise DescError('%s: field %s reaches bit %d of a 32-bit register' % (f.where, f.name, f.high))
            for b in range(f.low, f.high + 1):
                if bits[b] is not None:
                    raise DescError('%s: field %s overlaps %s at bit %d' % (f.where, f.name, bits[b].name, b))
                bits[b] = f
            if f.access is None:
                f.access = r.access
            if f.access not in SDS_ACCESS:
                raise DescError('%s: a SerDes field is RW or RO, not %s' % (f.where, f.access))
            if f.reset >> f.width:
                raise DescError('%s: reset value of %s does not fit' % (f.where, f.name))
    named = [r for r in regs if r.kind == 'reg']
    if len(named) != SDS_REG_COUNT:
        raise DescError('%s: the catalogue of the macro has %d registers, not %d' % (
            macro.where, len(named), SDS_REG_COUNT))
    # Every word of a macro, lanes unrolled: no two registers share one.
    where_at = {}
    for r in regs:
        for lane in range(macro.lanes) if r.per_lane else [None]:
            a = r.offset | (lane << macro.lane_shift) if lane is not None else r.offset
            if a in where_at:
                raise DescError('%s: %s at offset 0x%x meets %s' % (r.where, r.name, a, where_at[a].name))
            where_at[a] = r
    for i, b in enumerate(macro.bases):
        if b % 4:
            raise DescError('%s: base 0x%x is not a multiple of 4' % (macro.where, b))
        for c in macro.bases[i + 1:]:
            if b < c + macro.size and c < b + macro.size:
                raise DescError('%s: macros at 0x%x and 0x%x overlap' % (macro.where, b, c))
        for m in modules:
            if m.size and b < m.base + m.size and m.base < b + macro.size:
                raise DescError('%s: macro at 0x%x overlaps the window of %s' % (macro.where, b, m.name))


def sds_masks(r):
    """The bits a CPU write stores (all but RO fields), and the reset."""
    ro = reset = 0
    for f in r.fields:
        m = ((1 << f.width) - 1) << f.low
        if f.access == 'RO':
            ro |= m
        reset |= f.reset << f.low
    return (~ro) & 0xFFFFFFFF, ro, reset


SDS_HEADER = '// Generated from the SerDes description (cib/serdes) by cib/gen_cib.py. Do not edit.\n'


def gen_serdes_header(macro, regs):
    named = [r for r in regs if r.kind == 'reg']
    out = [SDS_HEADER, '#ifndef TIDE_ATOLREEF_SERDES_REG_H\n#define TIDE_ATOLREEF_SERDES_REG_H\n',
           '#include "csl/reef/driver/serdes/csl_serdes_reg.h"\n',
           '#ifdef __cplusplus\nextern "C" {\n#endif\n',
           '#define ATOLREEF_SDS_MACROS %du' % len(macro.bases),
           '#define ATOLREEF_SDS_LANES_PER_MACRO %du' % macro.lanes,
           '#define ATOLREEF_SDS_LANE_SHIFT %du' % macro.lane_shift,
           '#define ATOLREEF_SDS_REG_COUNT %du\n' % len(named),
           '/* Base of each macro in the switch-core space. */',
           'extern const u32 g_serdes_base_addr[ATOLREEF_SDS_MACROS];',
           '/* The place of each serdes_id: macro * ATOLREEF_SDS_LANES_PER_MACRO + lane. */',
           'extern const u8 g_serdes_lane_order[ATOLREEF_SDS_MACROS * ATOLREEF_SDS_LANES_PER_MACRO];',
           '/* The named registers of the macro; a row\'s index is its reg_name_id. */',
           'extern const csl_serdes_reg_t g_atolreef_serdes_reg[ATOLREEF_SDS_REG_COUNT];\n',
           '/* reg_name_id of each register. */', 'enum atolreef_serdes_reg_id {']
    for i, r in enumerate(named):
        out.append('    sds_reg_%s = %d,' % (r.name, i))
    out.append('};\n')
    out.append('/* bit_name_id of each field: its place in the register\'s field table. */')
    out.append('enum atolreef_serdes_field_id {')
    for r in named:
        for i, f in enumerate(r.fields):
            out.append('    sds_f_%s__%s = %d,' % (r.name, f.name, i))
    out.append('};\n')
    out.append('#ifdef __cplusplus\n}\n#endif\n\n#endif /* TIDE_ATOLREEF_SERDES_REG_H */\n')
    return '\n'.join(out)


def c_text(s):
    return '"%s"' % s.replace('\\', '\\\\').replace('"', '\\"')


def gen_serdes_source(macro, regs):
    named = [r for r in regs if r.kind == 'reg']
    out = [SDS_HEADER, '#include "atolreef_serdes_reg.h"\n', 'extern "C" {\n',
           'const u32 g_serdes_base_addr[ATOLREEF_SDS_MACROS] = {%s};' % ', '.join('0x%x' % b for b in macro.bases),
           'const u8 g_serdes_lane_order[ATOLREEF_SDS_MACROS * ATOLREEF_SDS_LANES_PER_MACRO] = {%s};\n' % ', '.join(
               str(v) for v in macro.order)]
    for r in named:
        out.append('static const csl_serdes_field_t atolreef_%s_f[] = {%s};' % (
            r.name, ', '.join('{"%s", %d, %d}' % (f.name, f.low, f.high) for f in r.fields)))
    out.append('\nconst csl_serdes_reg_t g_atolreef_serdes_reg[ATOLREEF_SDS_REG_COUNT] = {')
    for r in named:
        out.append('    {"%s", atolreef_%s_f, 0x%x, %d, %d, %s},' % (
            r.name, r.name, r.offset, 1 if r.per_lane else 0, len(r.fields), c_text(' '.join(r.doc))))
    out.append('};\n')
    out.append('} // extern "C"\n')
    return '\n'.join(out)


def gen_serdes_model(macro, regs):
    out = [SDS_HEADER, '// The SerDes macros as the model needs them: where each word lies, which\n'
           '// bits the macro drives, and the names of the bits the model reads.\n',
           '#include "sim/sim_desc.h"\n', 'namespace tide::sim::desc {\n',
           'const uint32_t kSerdesBases[] = {%s};' % ', '.join('0x%x' % b for b in macro.bases),
           'const uint32_t kSerdesMacros = %d;' % len(macro.bases),
           'const uint32_t kSerdesMacroSize = 0x%x;' % macro.size,
           'const uint32_t kSerdesLanes = %d;' % macro.lanes,
           'const uint32_t kSerdesLaneShift = %d;' % macro.lane_shift,
           'const uint8_t kSerdesLaneOrder[] = {%s};\n' % ', '.join(str(v) for v in macro.order)]
    out.append('static const Field kSdsFields[] = {')
    pos = {}
    n = 0
    for r in regs:
        pos[r.name] = n
        out.append('    %s // %s' % (' '.join('{"%s", %d, %d},' % (f.name, f.low, f.width) for f in r.fields), r.name))
        n += len(r.fields)
    out.append('};\n')
    out.append('const SerdesWord kSerdesWords[] = {')
    for r in regs:
        rw, ro, reset = sds_masks(r)
        out.append('    {"%s", 0x%x, %s, %s, 0x%x, 0x%x, &kSdsFields[%d], %d},' % (
            r.name, r.offset, 'true' if r.per_lane else 'false', 'true' if r.kind == 'reg' else 'false',
            ro, reset, pos[r.name], len(r.fields)))
    out.append('};\nconst size_t kSerdesWordCount = sizeof(kSerdesWords) / sizeof(kSerdesWords[0]);\n')
    out.append('} // namespace tide::sim::desc\n')
    return '\n'.join(out)


def gen_serdes_doc(macro, regs):
    out = ['## SerDes macros\n',
           'Bases %s, 0x%x bytes each; %d lanes, a lane register at base + (offset | lane << %d). '
           'Registers marked *by offset* are not in the catalogue `g_atolreef_serdes_reg`.\n' % (
               ', '.join('0x%x' % b for b in macro.bases), macro.size, macro.lanes, macro.lane_shift)]
    for r in regs:
        out.append('### %s`%s`\n' % ('' if r.kind == 'reg' else 'by offset: ', r.name))
        out.append('offset 0x%x, one per %s.\n' % (r.offset, r.scope))
        if r.doc:
            out.append(' '.join(r.doc) + '\n')
        out.append('| field | bits | access | reset | meaning |\n|---|---|---|---|---|')
        for f in r.fields:
            bits = '%d' % f.low if f.width == 1 else '%d:%d' % (f.high, f.low)
            out.append('| %s | %s | %s | 0x%x | %s |' % (f.name, bits, f.access, f.reset, f.comment))
        out.append('')
    return '\n'.join(out) + '\n'


def main():
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument('desc', help='directory of the chip description (*.cib)')
    ap.add_argument('--sdk', help='output directory of the SDK catalogue')
    ap.add_argument('--model', help='output directory of the model geometry')
    ap.add_argument('--doc', help='output file of the reference')
    ap.add_argument('--tcam', help='registry of the logical TCAM tables')
    ap.add_argument('--serdes', help='description of the SerDes macros')
    args = ap.parse_args()
    modules = []
    try:
        files = sorted(f for f in os.listdir(args.desc) if f.endswith('.cib'))
        if not files:
            raise DescError('%s: no .cib files' % args.desc)
        for f in files:
            parse_file(os.path.join(args.desc, f), modules)
        by_id = check_and_complete(modules)
        tcam = None
        if args.tcam:
            tcam = parse_tcam(args.tcam, {it.name: it for m in modules for it in m.items})
        serdes = None
        if args.serdes:
            serdes = parse_serdes(args.serdes)
            check_serdes(serdes[0], serdes[1], modules)
    except DescError as e:
        print('gen_cib: %s' % e, file=sys.stderr)
        return 1
    field_ids = assign_field_ids(modules)
    if args.sdk:
        write(os.path.join(args.sdk, 'atolreef_cib.h'), gen_sdk_header(modules, field_ids))
        write(os.path.join(args.sdk, 'atolreef_cib_data.cc'), gen_sdk_data(modules, by_id))
        write(os.path.join(args.sdk, 'atolreef_cib_access.cc'), gen_sdk_access(modules))
        if tcam:
            write(os.path.join(args.sdk, 'atolreef_tcam_table.h'), gen_tcam_header(tcam))
            write(os.path.join(args.sdk, 'atolreef_tcam_table.cc'), gen_tcam_source(tcam))
        if serdes:
            write(os.path.join(args.sdk, 'atolreef_serdes_reg.h'), gen_serdes_header(*serdes))
            write(os.path.join(args.sdk, 'atolreef_serdes_reg.cc'), gen_serdes_source(*serdes))
    if args.model:
        write(os.path.join(args.model, 'atolreef_model_desc.cc'), gen_model(modules))
        if serdes:
            write(os.path.join(args.model, 'atolreef_serdes_desc.cc'), gen_serdes_model(*serdes))
    if args.doc:
        write(args.doc, gen_doc(modules) + (gen_serdes_doc(*serdes) if serdes else ''))
    return 0


if __name__ == '__main__':
    sys.exit(main())
