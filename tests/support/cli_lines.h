// Shell lines run through cli_cmd_execute, with what they printed kept.
// A line's output has a destination only once the server's client list
// exists (the capture buffer while no client is connected), so the runner
// makes it first, as the server's start does.
#ifndef TIDE_TEST_CLI_LINES_H
#define TIDE_TEST_CLI_LINES_H

#include <gtest/gtest.h>

#include <string>

#include "app/diag_shell/shell/cli/cli_core.h"
#include "app/diag_shell/shell/server/user/cli_server.h"

namespace tide::test {

class CliLines {
public:
    CliLines() { EXPECT_EQ(cli_server_client_list_init(), 0); }

    // Runs `line` for `chip`; the text it printed is in out_ ("x" when the
    // run did not touch the buffer at all).
    i32 run(const std::string &line, u32 chip = 0)
    {
        buf_[0] = 'x';
        buf_[1] = '\0';
        const i32 r = cli_cmd_execute(chip, line.c_str(), buf_, sizeof(buf_));
        out_ = buf_;
        return r;
    }
    bool said(const std::string &text) const { return out_.find(text) != std::string::npos; }

protected:
    char buf_[32768];
    std::string out_;
};

} // namespace tide::test

#endif
