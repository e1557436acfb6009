// Console output of the diagnostic code: formatted on the heap (the
// buffer doubles until the text fits) and handed to the output hook as
// plain text.
#include <cstdarg>
#include <cstdio>

#include "csl/common/reg_tab/csl_reg.h"

extern "C" {

int csl_output_func(u32 chip_id, u32 to_file, const char *format, ...)
{
    if (to_file == 1) {
        // Output goes to a file only while one is open for the chip.
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "chip%d no file open.\n", (int)chip_id);
        return SHR_E_FAIL;
    }
    u64 size = 1024;
    for (;;) {
        char *buf = static_cast<char *>(xsal_malloc(size, "csl_output", SHR_MOD_REG_TAB));
        if (buf == nullptr) {
            return 0;
        }
        va_list args;
        va_start(args, format);
        const int n = vsnprintf(buf, size, format, args);
        va_end(args);
        if (n < 0) {
            xsal_mem_free(buf);
            return 0;
        }
        if (static_cast<u64>(n) < size) {
            shr_debug_base_cli_printf_func_get()("%s", buf);
            xsal_mem_free(buf);
            return n;
        }
        xsal_mem_free(buf);
        size *= 2;
    }
}

} // extern "C"
