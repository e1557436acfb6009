// The shell's parser on the library's whole vocabulary (2,500 items and
// more): realistic command lines parsed for running, completed and
// described.
#include <benchmark/benchmark.h>

#include "tests/support/cli_catalogue.h"

namespace {

i32 _handler(u32, u32, i32, char **)
{
    return 0;
}

void _quiet(const char *, size_t) {}

// A line and the mode it is typed in.
struct Line {
    u32 mode;
    const char *text;
};

constexpr Line k_lines[] = {
    {25, "show stp vlan 5"},
    {25, "stp 3 vlan-list 1-100"},
    {8, "port 3 speed 1G"},
    {8, "port 1-8 autoneg-ability speed 10G duplex full pause symm-pause"},
    {3, "l2 add multicast group 5 mac 00:11:22:33:44:55 vid 3 ports 1,2 ovid 4 src-hit"},
    {3, "l2 mac-limit glb port 3 enable"},
    {3, "clear l2 mac 00:11:22:33:44:55 vid 4"},
    {3, "show l2 mac-info all"},
    {42, "storm rate vid 5 broadcast mode pps cir 1000 cbs 64"},
    {40, "show interrupt status module all sub-id all intr-id all non-zero"},
    {36, "debug-log vlan enable info"},
    {14, "vlan create 10-20 ports 1-4 untagged 1"},
    {0, "chip-id 2"},
    {0, "test ip 10.0.0.1 mask 10.0.0.0/8"},
};
constexpr size_t k_line_count = sizeof(k_lines) / sizeof(k_lines[0]);

cli_tree *tree()
{
    static cli_tree *t = [] {
        cli_print_func_set(_quiet);
        cli_ctree_init();
        tide::test::build_realistic_tree(_handler);
        return g_main_clitree;
    }();
    return t;
}

// 100,000 lines parsed for running, parameters kept and freed.
void BM_Parse100k(benchmark::State &state)
{
    cli_tree *t = tree();
    int failed = 0;
    for (auto _ : state) {
        for (int i = 0; i < 100000; i++) {
            const Line &l = k_lines[static_cast<size_t>(i) % k_line_count];
            failed += cli_cmdstr_parse(t, l.mode, CLI_PRIV_MAX, l.text, 1) != 0;
        }
    }
    cli_free_params(t);
    state.counters["failed"] = failed;
    state.SetItemsProcessed(state.iterations() * 100000);
}
BENCHMARK(BM_Parse100k)->Unit(benchmark::kMillisecond);

void BM_Complete(benchmark::State &state)
{
    cli_tree *t = tree();
    for (auto _ : state) {
        xsal_mem_free(cli_cmdstr_complete(t, 3, CLI_PRIV_MAX, "l2 mac-limit glb "));
    }
}
BENCHMARK(BM_Complete);

void BM_DescribeModeRoot(benchmark::State &state)
{
    cli_tree *t = tree();
    for (auto _ : state) {
        cli_cmdstr_describe(t, 33, CLI_PRIV_MAX, "", CLI_HELP_WIDTH);
    }
}
BENCHMARK(BM_DescribeModeRoot);

// Building the whole tree from the records.
void BM_BuildTree(benchmark::State &state)
{
    for (auto _ : state) {
        cli_ctree_free();
        cli_ctree_init();
        tide::test::build_realistic_tree(_handler);
    }
}
BENCHMARK(BM_BuildTree)->Unit(benchmark::kMillisecond);

} // namespace
