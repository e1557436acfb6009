// The bring-up record under concurrent writers: chips may come up on
// several threads at once, and every thread logs into buffer 0.
#include <gtest/gtest.h>

#include <cstring>
#include <latch>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "sal/linux_um/xsal_int.h"

namespace {

constexpr int kThreads = 8;
// Records per thread: all of them fit in the buffer together (about 80
// bytes each), so every one of them must be there.
constexpr int kRecords = 180;

// Each thread waits for the others, then writes its records, mixing the
// three writers of buffer 0.
void _writer(int id, std::latch *start, int records)
{
    start->arrive_and_wait();
    for (int i = 0; i < records; i++) {
        switch (i % 3) {
        case 0:
            xsal_log(id, 3, "writer.cc", i, "thread %d record %d\n", id, i);
            break;
        case 1:
            xsal_log_buffer("thread %d text %d\r\n", id, i);
            break;
        default:
            xsal_log_print_buf("thread %d piece %d\r\n", id, i);
            break;
        }
    }
}

// Runs the writers on all threads at once.
void _write_concurrently(int records)
{
    std::latch start(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; t++) {
        threads.emplace_back(_writer, t, &start, records);
    }
    for (auto &t : threads) {
        t.join();
    }
}

// Writes records that fit into buffer 0 from all threads at once and
// checks what it holds.
void _fill_and_check()
{
    ASSERT_EQ(xsal_log_debug_buffer_allocate(0), 0);
    _write_concurrently(kRecords);
    u32 size = 0;
    u32 used = 0;
    ASSERT_EQ(xsal_log_buffter_utilization_get(0, &size, &used), 0);
    ASSERT_LT(used, size);
    const char *data = xsal_log_debug_obtain_buffer_get(0, &used);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(strlen(data), used);

    // Every line is one whole record: a header followed by its own text,
    // or a text of one writer; nothing torn or spliced.
    std::istringstream in(std::string(data, used));
    std::string line;
    int lines = 0;
    while (std::getline(in, line)) {
        ASSERT_FALSE(line.empty());
        ASSERT_EQ(line.back(), '\r') << "line " << lines << ": " << line;
        line.pop_back();
        int id = -1;
        int n = -1;
        int chip = -1;
        char kind[16] = {};
        if (line[0] == '[') {
            const size_t close = line.find(']');
            ASSERT_NE(close, std::string::npos) << line;
            const size_t at = line.rfind("chip_id:", close);
            ASSERT_NE(at, std::string::npos) << line;
            ASSERT_EQ(sscanf(line.c_str() + at, "chip_id:%d]", &chip), 1) << line;
            ASSERT_EQ(sscanf(line.c_str() + close + 1, "thread %d %15s %d", &id, kind, &n), 3) << line;
            EXPECT_EQ(chip, id) << line;
            EXPECT_STREQ(kind, "record") << line;
        } else {
            ASSERT_EQ(sscanf(line.c_str(), "thread %d %15s %d", &id, kind, &n), 3) << line;
            EXPECT_TRUE(strcmp(kind, "text") == 0 || strcmp(kind, "piece") == 0) << line;
        }
        EXPECT_GE(id, 0);
        EXPECT_LT(id, kThreads);
        lines++;
    }
    EXPECT_EQ(lines, kThreads * kRecords);
    EXPECT_EQ(xsal_log_debug_buffer_clear(0), 0);
}

} // namespace

TEST(LogThreads, ConcurrentWritersKeepEveryRecordWhole)
{
    for (int round = 0; round < 20 && !HasFailure(); round++) {
        SCOPED_TRACE("round " + std::to_string(round));
        _fill_and_check();
    }
}

TEST(LogThreads, AFullBufferDropsTextWithinItsSize)
{
    for (int round = 0; round < 20 && !HasFailure(); round++) {
        SCOPED_TRACE("round " + std::to_string(round));
        ASSERT_EQ(xsal_log_debug_buffer_allocate(0), 0);
        _write_concurrently(2000); // far more than fits
        u32 size = 0;
        u32 used = 0;
        ASSERT_EQ(xsal_log_buffter_utilization_get(0, &size, &used), 0);
        EXPECT_LT(used, size);
        EXPECT_GT(used, size - 1200); // full but for less than one record
        EXPECT_EQ(strlen(xsal_log_debug_obtain_buffer_get(0, nullptr)), used);
        EXPECT_EQ(xsal_log_debug_buffer_clear(0), 0);
    }
}
