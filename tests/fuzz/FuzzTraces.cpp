// Traces are formatted, so that a format that does not fit its arguments is found, and dropped.
#include <cstdarg>
#include <cwchar>
#include <iterator>

#include "trace/Trace.h"

namespace trace {

void TraceText(int, const char*, int, const wchar_t* format, ...) {
    wchar_t text[256];
    va_list arguments;
    va_start(arguments, format);
    std::vswprintf(text, std::size(text), format, arguments);
    va_end(arguments);
}

void TraceStringId(int, const char*, int, uint32_t) {}

void TraceMessage(int, const char*, int, HostMessage, ...) {}

}  // namespace trace
