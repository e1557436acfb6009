// What the fuzzers of the library share: sinks that format every log line
// and every output text (so that a bad argument of a format is seen) and
// keep nothing, and a reader that takes the input from the front.
#ifndef TIDE_FUZZ_SUPPORT_H
#define TIDE_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <tide/init.h>

namespace tide::fuzz {

// The log and output sinks of sdk_init_cfg.
void log_sink(int32_t chip, uint32_t module, uint32_t level, const char *file, uint32_t line, const char *format,
              ...);
int output_sink(const char *format, ...);
// Puts both sinks in force for code that runs without a bring-up.
void quiet();
// A configuration record with both sinks.
sdk_init_cfg quiet_cfg();

// Stops the fuzzer with a report: an invariant does not hold.
[[noreturn]] void fail(const char *what);

// Reads the input from the front; past its end every read gives zeros.
class Input {
public:
    Input(const uint8_t *data, size_t size) : p_(data), end_(data + size) {}
    bool empty() const { return p_ >= end_; }
    size_t left() const { return static_cast<size_t>(end_ - p_); }
    // Copies `n` bytes, zero-filled past the end.
    void bytes(void *out, size_t n)
    {
        const size_t have = n < left() ? n : left();
        std::memcpy(out, p_, have);
        std::memset(static_cast<uint8_t *>(out) + have, 0, n - have);
        p_ += have;
    }
    template <typename T>
    T take()
    {
        T v;
        bytes(&v, sizeof(v));
        return v;
    }

private:
    const uint8_t *p_;
    const uint8_t *end_;
};

} // namespace tide::fuzz

#endif
