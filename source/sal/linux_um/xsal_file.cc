// Files: a descriptor, and a stream made on it by the first line
// operation.  Once a stream exists every operation goes through it, so
// that reads, writes and seeks see the stream's buffer.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "sal/linux_um/xsal_int.h"

struct xsal_file_s {
    i32 fd;
    FILE *stream;
};

extern "C" {
const char *const g_sal_new_line_symbol = "\n";
}

namespace {

constexpr u32 kLogBufSize = 1024;
constexpr size_t kMaxDirLen = 1023;

#define XSAL_FILE_ERR(...) SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_TOP, __VA_ARGS__)

// The file's stream, made by the first line operation: "r" for reading
// and "w+" for writing, or the one-way mode where the descriptor is
// open one way only (a stream cannot have more access than its
// descriptor).
FILE *_stream_get(xsal_file_t file, bool for_write)
{
    if (file->stream == nullptr) {
        const int access = fcntl(file->fd, F_GETFL) & O_ACCMODE;
        const char *mode = for_write ? (access == O_WRONLY ? "w" : "w+") : (access == O_RDWR ? "r+" : "r");
        file->stream = fdopen(file->fd, mode);
    }
    return file->stream;
}

} // namespace

extern "C" {

xsal_file_t xsal_file_open(const char *path, u32 flags)
{
    if (path == nullptr) {
        XSAL_FILE_ERR("xsal_file_open input NULL!");
        return nullptr;
    }
    auto *file = static_cast<xsal_file_t>(xsal_malloc(sizeof(xsal_file_s), "file", SHR_MOD_COMMON));
    if (file == nullptr) {
        XSAL_FILE_ERR("xsal_file_open malloc failed!");
        return nullptr;
    }
    file->stream = nullptr;
    file->fd = open(path, static_cast<int>(flags), 0644);
    if (file->fd < 0) {
        SHR_LOG_WRN(SHR_NO_CHIP, SHR_MOD_TOP, "xsal_file_open open file(%s) !\n", path);
        xsal_mem_free(file);
        return nullptr;
    }
    return file;
}

int xsal_file_close(xsal_file_t file)
{
    if (file == nullptr) {
        XSAL_FILE_ERR("xsal_file_close input NULL!");
        return -1;
    }
    int rc = 0;
    if (file->stream != nullptr) {
        if (fclose(file->stream) != 0) {
            XSAL_FILE_ERR("xsal_file_close fclose failed!\n\r");
            rc = -1;
        }
    } else if (file->fd < 0) {
        XSAL_FILE_ERR("xsal_file_close input fd(%d) invalid!", file->fd);
        rc = -1;
    } else if (close(file->fd) != 0) {
        XSAL_FILE_ERR("xsal_file_close close failed!\n\r");
        rc = -1;
    }
    xsal_mem_free(file);
    return rc;
}

int xsal_file_read(xsal_file_t file, void *buffer, i32 length)
{
    if (file == nullptr || buffer == nullptr || length < 0) {
        XSAL_FILE_ERR("xsal_file_read input NULL!");
        return -1;
    }
    const ssize_t n = file->stream != nullptr ? static_cast<ssize_t>(fread(buffer, 1, length, file->stream))
                                              : read(file->fd, buffer, static_cast<size_t>(length));
    if (n < 0 || (file->stream != nullptr && ferror(file->stream))) {
        XSAL_FILE_ERR("xsal_file_read failed!");
        return -1;
    }
    return static_cast<int>(n);
}

char *xsal_file_readline(xsal_file_t file, char *buffer, u32 size)
{
    if (file == nullptr || buffer == nullptr || size == 0) {
        XSAL_FILE_ERR("xsal_file_readline input buffer NULL!");
        return nullptr;
    }
    FILE *stream = _stream_get(file, false);
    if (stream == nullptr) {
        XSAL_FILE_ERR("fopen file faile!");
        return nullptr;
    }
    return fgets(buffer, static_cast<int>(size > 0x7FFFFFFF ? 0x7FFFFFFF : size), stream);
}

int xsal_file_write(xsal_file_t file, const void *buffer, i32 length)
{
    if (file == nullptr || buffer == nullptr || length < 0) {
        XSAL_FILE_ERR("xsal_file_write input NULL!");
        return -1;
    }
    ssize_t n;
    if (file->stream != nullptr) {
        // Written through at once, as a write on the descriptor would be.
        n = static_cast<ssize_t>(fwrite(buffer, 1, static_cast<size_t>(length), file->stream));
        if (fflush(file->stream) != 0) {
            n = -1;
        }
    } else {
        n = write(file->fd, buffer, static_cast<size_t>(length));
    }
    if (n != length) {
        XSAL_FILE_ERR("xsal_file_write failed!\n\r");
        return -1;
    }
    return static_cast<int>(n);
}

int xsal_file_writeline(xsal_file_t file, const char *text)
{
    if (file == nullptr || text == nullptr) {
        XSAL_FILE_ERR("xsal_file_writeline input buffer NULL!\n");
        return -1;
    }
    const size_t len = std::strlen(text);
    const char *newline = std::strchr(text, '\n');
    if (newline != nullptr && newline != text + len - 1) {
        XSAL_FILE_ERR("the \\n not at the end of buffer .\n");
        return -1;
    }
    FILE *stream = _stream_get(file, true);
    if (stream == nullptr) {
        XSAL_FILE_ERR("fopen file faile!\n");
        return -1;
    }
    if (fputs(text, stream) < 0 || (newline == nullptr && fputs(g_sal_new_line_symbol, stream) < 0) ||
        fflush(stream) != 0) {
        return -1;
    }
    return 0;
}

int xsal_file_seek(xsal_file_t file, i32 offset, u32 whence)
{
    if (file == nullptr) {
        XSAL_FILE_ERR("xsal_file_write input NULL!\n\r");
        return -1;
    }
    // Origins of this layer: 0 the current position, 1 the start, 2 the
    // end.
    static constexpr int kWhence[] = {SEEK_CUR, SEEK_SET, SEEK_END};
    if (whence >= sizeof(kWhence) / sizeof(kWhence[0])) {
        return -1;
    }
    const int rc = file->stream != nullptr ? fseek(file->stream, offset, kWhence[whence])
                                           : (lseek(file->fd, offset, kWhence[whence]) < 0 ? -1 : 0);
    return rc == 0 ? 0 : -1;
}

int xsal_file_write_log(xsal_file_t file, const char *format, ...)
{
    auto *buf = static_cast<char *>(xsal_malloc(kLogBufSize, "temp_buf", SHR_MOD_COMMON));
    if (buf == nullptr) {
        XSAL_FILE_ERR("Fail to malloc memory(len=%d)!", static_cast<int>(kLogBufSize));
        return -1;
    }
    va_list args;
    va_start(args, format);
    const int n = vsnprintf(buf, kLogBufSize, format, args);
    va_end(args);
    int rc = -1;
    if (n >= 0) {
        const i32 len = n < static_cast<int>(kLogBufSize) ? n : static_cast<i32>(kLogBufSize - 1);
        rc = xsal_file_write(file, buf, len);
    }
    xsal_mem_free(buf);
    return rc;
}

int sal_disk_available_size(const char *path, u32 *mbytes)
{
    if (mbytes == nullptr) {
        return -1;
    }
    *mbytes = 0;
    if (path == nullptr) {
        return -1;
    }
    // The directory part: up to and including the last '/'.
    const char *slash = std::strrchr(path, '/');
    const size_t dir_len = slash != nullptr ? static_cast<size_t>(slash - path) + 1 : 0;
    if (dir_len > kMaxDirLen) {
        return -1;
    }
    auto *dir = static_cast<char *>(xsal_malloc(kMaxDirLen + 1, "tmp_path", SHR_MOD_COMMON));
    if (dir == nullptr) {
        XSAL_FILE_ERR("Fail to malloc memory(len=%d)!", static_cast<int>(kMaxDirLen + 1));
        return -1;
    }
    if (dir_len == 0) {
        std::strcpy(dir, "./");
    } else {
        std::memcpy(dir, path, dir_len);
        dir[dir_len] = '\0';
    }
    struct statfs st;
    const int rc = statfs(dir, &st);
    xsal_mem_free(dir);
    if (rc != 0) {
        return rc;
    }
    const unsigned __int128 bytes = static_cast<unsigned __int128>(st.f_bavail) * static_cast<u64>(st.f_bsize);
    const unsigned __int128 mib = bytes >> 20;
    *mbytes = mib > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<u32>(mib);
    return 0;
}

} // extern "C"
