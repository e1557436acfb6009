// Log lines on standard output: an optional header, then the text.
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "sal/linux_um/xsal_int.h"
#include "shared/shr_int.h"

extern "C" {

u32 g_xsal_log_header_state = 1;

const char *xsal_log_levelname_get(u32 level)
{
    return level <= SHR_LOG_DEBUG ? g_sal_loglevel_name[level] : "UNKNOWN";
}

void xsal_log_log_header_set(u32 state)
{
    g_xsal_log_header_state = state;
}

static const char *_xsal_basename(const char *path)
{
    if (path == nullptr) {
        return "";
    }
    const char *slash = strrchr(path, '/');
    return slash != nullptr ? slash + 1 : path;
}

void xsal_log_vprintf(i32 chip_id, u32 level, const char *module_name, const char *file, i32 line,
                      const char *format, va_list args)
{
    if (module_name == nullptr) {
        module_name = "";
    }
    if (g_xsal_log_header_state == 1 && strcmp(module_name, "COMMON") != 0) {
        xsal_calendar now{};
        xsal_get_current_time(&now);
        const u32 shown = level > SHR_LOG_DEBUG ? SHR_LOG_DEBUG : level;
        printf(" [%d-%d-%d %d:%d:%d %6s %s %16s:%05d chip_id:%2d] ", (int)now.year, (int)now.mon, (int)now.mday,
               (int)now.hour, (int)now.min, (int)now.sec, module_name, g_sal_loglevel_name[shown],
               _xsal_basename(file), (int)line, (int)chip_id);
    }
    vprintf(format, args);
}

} // extern "C"

// ---- the debug buffers -----------------------------------------------------------
//
// Buffer 0 records bring-up: text is appended while there is room, and a
// text that does not fit is dropped whole, so the buffer keeps the earliest
// lines.  Chips may come up on several threads at once: every change of a
// buffer's record happens under one lock, which a thread holds across the
// header and the lines of one `xsal_log` record so that records never
// interleave.  The lock is recursive for that reason.

namespace {

pthread_mutex_t g_xsal_debug_buf_lock = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;

struct DebugBufLock {
    DebugBufLock() { pthread_mutex_lock(&g_xsal_debug_buf_lock); }
    ~DebugBufLock() { pthread_mutex_unlock(&g_xsal_debug_buf_lock); }
    DebugBufLock(const DebugBufLock &) = delete;
    DebugBufLock &operator=(const DebugBufLock &) = delete;
};

// Cuts a text of at most 1,023 characters into lines: at each newline and
// at 512 characters; each line is handed to `put` with `line_end` or, for
// a last piece without a newline, without it.
template <typename Put>
void _xsal_lines(const char *text, bool end_every_line, Put put)
{
    const char *p = text;
    while (*p != '\0') {
        const char *nl = strchr(p, '\n');
        size_t len = nl != nullptr ? static_cast<size_t>(nl - p) : strlen(p);
        const bool cut = len > XSAL_LOG_LINE_MAX;
        if (cut) {
            len = XSAL_LOG_LINE_MAX;
        }
        const bool ended = nl != nullptr || cut || end_every_line;
        put(p, len, ended);
        p += len;
        if (!cut && nl != nullptr) {
            p++; // past the newline
        } else if (cut) {
            break; // the rest of an over-long line is dropped
        }
    }
}

} // namespace

extern "C" {

u32 g_sal_loglevel = 1;
xsal_debug_buf g_sal_debug_buf[XSAL_DEBUG_BUF_COUNT];

void xsal_log_level_set(u32 level)
{
    g_sal_loglevel = level;
}

u32 xsal_log_level_get(void)
{
    return g_sal_loglevel;
}

int xsal_log_debug_buffer_allocate(u32 buffer)
{
    DebugBufLock lock;
    if (buffer >= XSAL_DEBUG_BUF_COUNT) {
        return -1;
    }
    xsal_debug_buf &b = g_sal_debug_buf[buffer];
    if (b.data != nullptr) {
        return 0;
    }
    b.data = static_cast<char *>(xsal_malloc(XSAL_DEBUG_BUF_SIZE, "debug buffer", SHR_MOD_COMMON));
    if (b.data == nullptr) {
        return -1;
    }
    b.size = XSAL_DEBUG_BUF_SIZE;
    b.used = 0;
    b.data[0] = '\0';
    b.outside = 0;
    return 0;
}

int xsal_log_debug_outside_buffer_allocate(u32 buffer, u8 *memory, u32 size)
{
    DebugBufLock lock;
    if (buffer >= XSAL_DEBUG_BUF_COUNT || memory == nullptr || size == 0) {
        return -1;
    }
    xsal_log_debug_buffer_clear(buffer);
    xsal_debug_buf &b = g_sal_debug_buf[buffer];
    b.data = reinterpret_cast<char *>(memory);
    b.size = size;
    b.used = 0;
    b.data[0] = '\0';
    b.outside = 1;
    return 0;
}

int xsal_log_debug_buffer_clear(u32 buffer)
{
    DebugBufLock lock;
    if (buffer >= XSAL_DEBUG_BUF_COUNT) {
        return -1;
    }
    xsal_debug_buf &b = g_sal_debug_buf[buffer];
    if (!b.outside) {
        xsal_mem_free(b.data);
    }
    b = xsal_debug_buf{};
    return 0;
}

char *xsal_log_debug_obtain_buffer_get(u32 buffer, u32 *used)
{
    DebugBufLock lock;
    if (buffer >= XSAL_DEBUG_BUF_COUNT) {
        return nullptr;
    }
    if (used != nullptr) {
        *used = g_sal_debug_buf[buffer].used;
    }
    return g_sal_debug_buf[buffer].data;
}

int xsal_log_buffter_utilization_get(u32 buffer, u32 *size, u32 *used)
{
    DebugBufLock lock;
    if (buffer >= XSAL_DEBUG_BUF_COUNT || g_sal_debug_buf[buffer].data == nullptr) {
        return -1;
    }
    if (size != nullptr) {
        *size = g_sal_debug_buf[buffer].size;
    }
    if (used != nullptr) {
        *used = g_sal_debug_buf[buffer].used;
    }
    return 0;
}

int xsal_log_str_to_buf_put(const char *text, u32 length, u32 buffer)
{
    DebugBufLock lock;
    if (text == nullptr || buffer >= XSAL_DEBUG_BUF_COUNT) {
        return -1;
    }
    xsal_debug_buf &b = g_sal_debug_buf[buffer];
    if (b.data == nullptr || b.size - 1 - b.used < length) {
        return -1;
    }
    memcpy(b.data + b.used, text, length);
    b.used += length;
    b.data[b.used] = '\0';
    return 0;
}

static void _xsal_buf_vput(const char *format, va_list args)
{
    char text[XSAL_LOG_TEXT_MAX + 1];
    const int n = vsnprintf(text, sizeof(text), format, args);
    if (n > 0) {
        xsal_log_str_to_buf_put(text, static_cast<u32>(strlen(text)), 0);
    }
}

int xsal_log_print_buf(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    _xsal_buf_vput(format, args);
    va_end(args);
    return 0;
}

int xsal_log_buffer(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    _xsal_buf_vput(format, args);
    va_end(args);
    return 0;
}

int xsal_log_printf(const char *format, ...)
{
    char text[XSAL_LOG_TEXT_MAX + 1];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof(text), format, args);
    va_end(args);
    _xsal_lines(text, false, [](const char *line, size_t len, bool ended) {
        printf(ended ? "%.*s\r\n" : "%.*s", static_cast<int>(len), line);
    });
    fflush(stdout);
    return 0;
}

int xsal_log(i32 chip_id, u32 level, const char *file, i32 line, const char *format, ...)
{
    DebugBufLock lock;
    const u32 shown = level > SHR_LOG_DEBUG ? SHR_LOG_DEBUG : level;
    xsal_calendar now{};
    xsal_get_current_time(&now);
    xsal_log_print_buf("[%d-%d-%d %d:%d:%d %s %20s:%06d chip_id:%2d]", (int)now.year, (int)now.mon, (int)now.mday,
                       (int)now.hour, (int)now.min, (int)now.sec, g_sal_loglevel_name[shown],
                       _xsal_basename(file), (int)line, (int)chip_id);
    char text[XSAL_LOG_TEXT_MAX + 1];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof(text), format, args);
    va_end(args);
    _xsal_lines(text, true, [](const char *piece, size_t len, bool) {
        char buf[XSAL_LOG_LINE_MAX + 3];
        memcpy(buf, piece, len);
        memcpy(buf + len, "\r\n", 2);
        xsal_log_str_to_buf_put(buf, static_cast<u32>(len + 2), 0);
    });
    return 0;
}

} // extern "C"
