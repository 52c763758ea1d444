#include "process/process_error.h"

#include <cassert>
#include <cstdarg>

#include "log/log.h"
#include "log/text.h"
#include "process/reader_state.h"

void process_error(const char *format, ...) {
    assert(format != nullptr);
    va_list arguments;
    va_start(arguments, format);
    const NarrowText message = text_format_narrow(format, arguments);
    va_end(arguments);
    if (g_reader.line_number >= 1) {
        console_printf("Error in line %d: %s\r\n", g_reader.line_number, message.get());
    } else {
        console_printf("Error: %s\r\n", message.get());
    }
    g_reader.fault_seen = true;
    ++g_reader.fault_count;
}
