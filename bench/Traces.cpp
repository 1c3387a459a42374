#include "bench/Traces.h"

#include <windows.h>

#include <cstdarg>
#include <utility>

#include "host/Support.h"
#include "trace/Trace.h"

namespace {

int64_t g_count;

template <class Payload>
void Forward(int severity, const char* source, int line, Payload payload, va_list arguments) {
    ++g_count;
    CLogBase::TraceImpl(severity, GetModuleHandleW(nullptr), source, line, payload, arguments);
}

}  // namespace

namespace bench {

int64_t TakeTraceCount() {
    return std::exchange(g_count, 0);
}

}  // namespace bench

namespace trace {

void TraceText(int severity, const char* source, int line, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Forward(severity, source, line, format, arguments);
    va_end(arguments);
}

void TraceStringId(int severity, const char* source, int line, uint32_t stringId) {
    Forward(severity, source, line, static_cast<unsigned int>(stringId), nullptr);
}

void TraceMessage(int severity, const char* source, int line, HostMessage message, ...) {
    va_list arguments;
    va_start(arguments, message);
    Forward(severity, source, line, static_cast<Log::Message>(message), arguments);
    va_end(arguments);
}

}  // namespace trace
