// A shell test on one simulated chip that is up, in one mode: the fixture
// enters the mode before the test and frees the command tree after it.
// With `library_output`, `out_` also gets what the library printed on its
// output while the line ran (dumps and summaries print there).
#ifndef TIDE_TEST_MODE_CLI_H
#define TIDE_TEST_MODE_CLI_H

#include <string>

#include "support/cli_lines.h"
#include "support/fixture.h"

namespace tide::test {

class ModeCli : public SimChips, public CliLines {
protected:
    explicit ModeCli(const char *mode, bool library_output = false)
        : SimChips(1, 1), mode_(mode), library_output_(library_output)
    {
    }
    void SetUp() override
    {
        SimChips::SetUp();
        ASSERT_EQ(run(mode_), 0) << out_;
    }
    void TearDown() override
    {
        cli_ctree_free();
        SimChips::TearDown();
    }
    i32 run(const std::string &line)
    {
        Capture::clear();
        const i32 r = CliLines::run(line);
        if (library_output_) {
            out_ += Capture::output();
        }
        return r;
    }

private:
    const char *mode_;
    bool library_output_;
};

// A shell fixture over another fixture: chip 0's shell takes ports by their
// logical numbers and stands in `mode` for each test; afterwards the
// command tree is freed and the shell's port numbering restored.
template <class Base>
class ShellModeOver : public Base, public CliLines {
protected:
    explicit ShellModeOver(const char *mode) : mode_(mode) {}
    void SetUp() override
    {
        Base::SetUp();
        ASSERT_EQ(cli_shell_mode_set(0, 1), 0);
        ASSERT_EQ(run(mode_), 0) << out_;
    }
    void TearDown() override
    {
        cli_view_config(0);
        cli_ctree_free();
        cli_shell_mode_set(0, 0);
        Base::TearDown();
    }

private:
    const char *mode_;
};

} // namespace tide::test

#endif
