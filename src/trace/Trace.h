#pragma once
// The module's traces. Every message goes through one of these three functions to the host's logger, with a severity,
// the name of the source that writes it and the line of the call. Callable from any thread; they report nothing about
// themselves. Example: TraceText(kDiagnostic, kSource, __LINE__, L"CClass::Operation failed.");

#include <cstdint>

namespace trace {

// Severities, as the host's logger numbers them.
inline constexpr int kError = 2;       // concerns the user or the data
inline constexpr int kDiagnostic = 6;  // names the failing operation

// A number of the host's own message table.
enum class HostMessage : uint32_t {};

// printf-style; formats are the module's own, texts from outside only ever stand as arguments. Wide strings: %ls.
void TraceText(int severity, const char* source, int line, const wchar_t* format, ...);
// A string of the module's resources (res/resource.h).
void TraceStringId(int severity, const char* source, int line, uint32_t stringId);
// A message of the host's table with its arguments.
void TraceMessage(int severity, const char* source, int line, HostMessage message, ...);

}  // namespace trace
