#!/usr/bin/env python3
"""The generator of the interrupt tree refuses a tree that breaks one of the
chip's totals or rules, with the place and the reason, and gives the same
bytes for the same input.

    intr_checks.py <gen_intr.py> <description dir> <interrupts.txt>
"""
import os
import subprocess
import sys
import tempfile

GEN, DESC, TREE = sys.argv[1], sys.argv[2], sys.argv[3]
failures = []


def run(tree, out=None):
    args = [sys.executable, GEN, DESC, tree]
    if out:
        args += ['--sdk', out, '--model', out, '--doc', os.path.join(out, 'ref.md')]
    p = subprocess.run(args, capture_output=True, text=True)
    return p.returncode, p.stderr


def read_tree(root):
    files = {}
    for n in sorted(os.listdir(root)):
        with open(os.path.join(root, n), 'rb') as f:
            files[n] = f.read()
    return files


with open(TREE) as f:
    TEXT = f.read()


def expect_refused(what, old, new, needle):
    if old not in TEXT:
        failures.append('%s: %r is not in the tree' % (what, old))
        return
    with tempfile.NamedTemporaryFile('w', suffix='.txt', delete=False) as f:
        f.write(TEXT.replace(old, new, 1))
        path = f.name
    try:
        rc, err = run(path)
        if rc == 0 or needle not in err:
            failures.append('%s: rc=%d, stderr=%r (wanted %r)' % (what, rc, err.strip(), needle))
    finally:
        os.unlink(path)


with tempfile.TemporaryDirectory() as a, tempfile.TemporaryDirectory() as b:
    rc1, err1 = run(TREE, a)
    rc2, _ = run(TREE, b)
    if rc1 != 0 or rc2 != 0:
        failures.append('the tree is refused: %s' % err1)
    elif read_tree(a) != read_tree(b):
        failures.append('two runs gave different output')

# The totals of the chip.
expect_refused('a subid with a type too many', 'subid eacl eacl_int_sta count=2', 'subid eacl eacl_int_sta count=3',
               'has 2 types, not 3')
expect_refused('903 types', 'lsw_int_pie count=3 status=lsw_hreg_lsw_int_pie', 'lsw_int_pie count=4 status=lsw_hreg_lsw_int_status',
               'has 904 interrupt types, the chip 903')
expect_refused('a DIRECT row too few', 'ecc mcc 0 13 direct debug=mcc_ecc_mrt_dbg table=mcc_mrt count',
               'ecc mcc 0 13 ram debug=mcc_ecc_mrt_dbg', '74 DIRECT ECC rows, the chip 75')
expect_refused('a HASH row too many', 'ecc arl 0 14 ram', 'ecc arl 0 14 hash debug=arl_ecc_dbg[14] table=arl_em_mac_tbl_key'
               ' #', '11 HASH ECC rows, the chip 10')
expect_refused('a TCAM row too few', 'ecc acl_core 2 0-15 tcam', 'ecc acl_core 2 0-14 tcam', '47 TCAM ECC rows')
expect_refused('an ECC counter too few', 'table=mcc_mlib count', 'table=mcc_mlib', '18 ECC counter rows, the chip has 19')
expect_refused('ECC rows of another module', 'ecc nhp 0 0 ram debug=nhp_ram_chk_dbg[0]\n', '',
               'the chip has them for')
# The dispatch tables.
expect_refused('a row count that does not match', 'top 3 arl:0/6=0-5', 'top 3 arl:0/5=0-5', 'names 6 types, not 5')
expect_refused('a type in no row', 'top 22 eacl:0/2=all\n', '', 'type 0 (eacl_key_err) of eacl_int_sta is in no dispatch row')
expect_refused('a type in two rows', 'top 22 eacl:0/2=all', 'top 22 eacl:0/2=all arl:0/1=0', 'is in top row 3 already')
expect_refused('a row of a second-level bit', 'top 22 eacl:0/2=all', 'top 15 eacl:0/2=all',
               'leads to the second level')
expect_refused('the first table has 107 rows', 'top 99 xsec_enc', 'top 107 xsec_enc', 'beyond the 107 rows')
expect_refused('a second row without its own bit', 'second 8 mag_glb:2/1=8 ', 'second 8 mag_glb:2/1=9 ',
               'must start with its own bit')
expect_refused('a missing second row', 'second 75 xsec_enc:0/1=1 xsec_enc:2/5=all\n', '',
               'lacks rows [75]')
expect_refused('an instance the register lacks', 'mac_port[26-27]:0/1=3', 'mac_port[26-28]:0/1=3',
               'has no instance 28')
# The registers and tables the tree names.
expect_refused('an unknown status register', 'status=eacl_int_sta mask', 'status=eacl_int_stx mask',
               'no register eacl_int_stx')
expect_refused('a direct row on a hash table', 'table=mcc_mlib', 'table=arl_em_mac_tbl_key', 'is not a direct table')
expect_refused('an unknown event type', 'event arl_full arl:0=20', 'event arl_full arl:0=21', 'has no type 21')

for f in failures:
    print('FAIL ' + f)
if failures:
    print('%d failures' % len(failures))
sys.exit(1 if failures else 0)
