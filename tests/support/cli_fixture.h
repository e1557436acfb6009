// Test support of the shell's command language: a fresh tree with only
// the test's own commands, the parser's output captured, and a handler
// that records its calls.
#ifndef TIDE_TEST_CLI_FIXTURE_H
#define TIDE_TEST_CLI_FIXTURE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/diag_shell/shell/cli/cli_core.h"
#include "tests/support/cli_catalogue.h"

namespace tide::test {

// The last call of the recording handler.
struct HandlerCall {
    int calls = 0;
    u32 chip = 0;
    u32 mode = 0;
    std::vector<std::string> argv;
    i32 result = 0; // what the handler returns
};

inline HandlerCall &last_call()
{
    static HandlerCall c;
    return c;
}

inline i32 record_handler(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    HandlerCall &c = last_call();
    c.calls++;
    c.chip = chip_id;
    c.mode = view_mode;
    c.argv.assign(argv, argv + argc);
    return c.result;
}

inline std::string &cli_out()
{
    static std::string s;
    return s;
}

inline void cli_capture_sink(const char *text, size_t len)
{
    cli_out().append(text, len);
}

// A tree of the test's own: the library's init list is set aside while the
// test runs, and everything the core prints is captured.
class CliTree : public ::testing::Test {
protected:
    void SetUp() override
    {
        saved_ = cli_cmd_init_list;
        cli_list_init(&cli_cmd_init_list);
        cli_print_func_set(cli_capture_sink);
        cli_out().clear();
        last_call() = HandlerCall{};
        ASSERT_EQ(cli_ctree_init(), 0);
        t_ = g_main_clitree;
    }
    void TearDown() override
    {
        cli_ctree_free();
        cli_print_func_set(nullptr);
        cli_cmd_init_list = saved_;
    }

    int add(const char *cmd, u32 mode = 3, u32 flags = 0) { return register_with_help(record_handler, cmd, mode, flags); }
    int parse(const char *line, u32 mode = 3, u32 set_params = 1, u32 priv = CLI_PRIV_MAX)
    {
        return cli_cmdstr_parse(t_, mode, priv, line, set_params);
    }
    std::vector<std::string> args() const { return {t_->argv, t_->argv + t_->argc}; }
    std::vector<std::string> complete(const char *line, u32 mode = 3)
    {
        std::vector<std::string> words;
        const char **w = cli_cmdstr_complete(t_, mode, CLI_PRIV_MAX, line);
        for (u32 i = 0; w != nullptr && w[i] != nullptr; i++) {
            words.emplace_back(w[i]);
        }
        xsal_mem_free(w);
        return words;
    }
    std::string describe(const char *line, u32 mode = 3, u32 width = CLI_HELP_WIDTH)
    {
        cli_out().clear();
        cli_cmdstr_describe(t_, mode, CLI_PRIV_MAX, line, width);
        return cli_out();
    }
    // The successor of `node` with this word.
    static const cli_node *child(const cli_node *node, const char *word)
    {
        for (u32 i = 0; i < node->next->count; i++) {
            auto *n = static_cast<const cli_node *>(node->next->items[i]);
            if (std::string(n->str) == word) {
                return n;
            }
        }
        return nullptr;
    }
    const cli_node *root(u32 mode = 3) const { return static_cast<const cli_node *>(cli_search_carrier(t_->roots, mode)); }

    cli_list_link saved_{};
    cli_tree *t_ = nullptr;
};

} // namespace tide::test

#endif // TIDE_TEST_CLI_FIXTURE_H
