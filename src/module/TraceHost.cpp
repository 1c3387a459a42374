// The three trace functions: each forwards to its overload of the host's logger.
#include "module/TraceHost.h"

#include <cstdarg>

#include "host/Support.h"
#include "trace/Trace.h"

namespace {

HINSTANCE g_instance = nullptr;

template <class Payload>
void Forward(int severity, const char* source, int line, Payload payload, va_list arguments) {
    CLogBase::TraceImpl(severity, g_instance, source, line, payload, arguments);
}

}  // namespace

namespace trace {

void SetTraceInstance(HINSTANCE instance) noexcept {
    g_instance = instance;
}

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
