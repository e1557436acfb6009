#!/usr/bin/env python3
"""The generator of the catalogue refuses a broken chip description with the
place and the reason, and gives the same bytes for the same description.

    cib_checks.py <gen_cib.py> <description dir>
"""
import os
import shutil
import subprocess
import sys
import tempfile

GEN, DESC = sys.argv[1], sys.argv[2]
failures = []


def run(desc, out=None):
    args = [sys.executable, GEN, desc]
    if out:
        args += ['--sdk', os.path.join(out, 'sdk'), '--model', os.path.join(out, 'model'),
                 '--doc', os.path.join(out, 'doc.md')]
    p = subprocess.run(args, capture_output=True, text=True)
    return p.returncode, p.stderr


def read_tree(root):
    files = {}
    for d, _, names in os.walk(root):
        for n in names:
            with open(os.path.join(d, n), 'rb') as f:
                files[os.path.relpath(os.path.join(d, n), root)] = f.read()
    return files


def mutated(edit):
    """A copy of the description with one file changed by edit(dir)."""
    tmp = tempfile.mkdtemp()
    desc = os.path.join(tmp, 'desc')
    shutil.copytree(DESC, desc)
    edit(desc)
    return tmp, desc


def append(name, text):
    def edit(desc):
        with open(os.path.join(desc, name), 'a') as f:
            f.write(text)
    return edit


def replace(name, old, new):
    def edit(desc):
        path = os.path.join(desc, name)
        with open(path) as f:
            s = f.read()
        assert old in s, (name, old)
        with open(path, 'w') as f:
            f.write(s.replace(old, new, 1))
    return edit


def expect_refused(what, edit, needle):
    tmp, desc = mutated(edit)
    try:
        rc, err = run(desc)
        if rc == 0 or needle not in err:
            failures.append('%s: rc=%d, stderr=%r (wanted %r)' % (what, rc, err.strip(), needle))
    finally:
        shutil.rmtree(tmp)


# The description as it stands: accepted, and the output is a pure function
# of it.
with tempfile.TemporaryDirectory() as a, tempfile.TemporaryDirectory() as b:
    rc1, err1 = run(DESC, a)
    rc2, err2 = run(DESC, b)
    if rc1 != 0 or rc2 != 0:
        failures.append('clean description refused: %s' % err1)
    elif read_tree(a) != read_tree(b):
        failures.append('two runs gave different output')

MCC = '49_mcc.cib'
expect_refused('overlapping fields', append(MCC, '\nreg mcc_probe_a id=3849 addr=0x1c1fff0\n    a 7:0\n    b 4\n'),
               'overlaps a at bit 4')
expect_refused('field beyond the register', append(MCC, '\nreg mcc_probe_b id=3849 addr=0x1c1fff0\n    a 32\n'),
               'reaches bit 32')
expect_refused('id outside the range', append(MCC, '\nreg mcc_probe_c id=3850 addr=0x1c1fff0\n    a 0\n'),
               'outside the module range')
expect_refused('id used twice', append(MCC, '\nreg mcc_probe_d id=3738 addr=0x1c1fff0\n    a 0\n'),
               'id 3738 used by mcc_en_mode_cfg')
expect_refused('address used twice', append(MCC, '\nreg mcc_probe_e id=3849 addr=0x1c00060\n    a 0\n'),
               'overlaps mcc_en_mode_cfg')
expect_refused('address outside the window', append(MCC, '\nreg mcc_probe_f id=3849 addr=0x1c20000\n    a 0\n'),
               'outside the window of mcc')
expect_refused('table over a register', append(MCC, '\ntab mcc_probe_g id=425 addr=0x1c00050 depth=8 width=32\n    a 0\n'),
               'overlaps')
expect_refused('unknown access type', append(MCC, '\nreg mcc_probe_h id=3849 addr=0x1c1fff0\n    a 0 RX\n'),
               "unknown field word 'RX'")
expect_refused('reset value too wide', append(MCC, '\nreg mcc_probe_i id=3849 addr=0x1c1fff0\n    a 1:0 reset=4\n'),
               'reset value of a does not fit')
expect_refused('named reserved bits', append(MCC, '\nreg mcc_probe_j id=3849 addr=0x1c1fff0\n    rsv 3:0\n'),
               'reserved bits are left out')
expect_refused('field wider than 64 bits',
               append(MCC, '\ntab mcc_probe_k id=425 addr=0x1c1f000 depth=1 width=96\n    a 95:0\n'),
               'wider than 64 bits')
expect_refused('members that miss a field',
               replace('00_lsw_hreg.cib', 'members=tm_act_gating_cfg,cfg_lp_en,tick_en_nempty_thr_cfg',
                       'members=tm_act_gating_cfg,cfg_lp_en'),
               'members= must name every field once')
expect_refused('missing module', lambda d: os.remove(os.path.join(d, '55_tgs.cib')), 'lacks modules [55]')
expect_refused('unaligned address', append(MCC, '\nreg mcc_probe_l id=3849 addr=0x1c1fff2\n    a 0\n'),
               'not a multiple of 4')

for f in failures:
    print('FAIL', f)
print('%d failures' % len(failures))
sys.exit(1 if failures else 0)
