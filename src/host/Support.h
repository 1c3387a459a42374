#pragma once
// The host support library: the logger and the message box. Closed library; the names that it exports stand in
// cmake/HostLibraries.cmake. Callable from any thread.

#include <windows.h>

#include <cstdarg>

namespace Log {

enum Severity : int {
    kError = 2,       // concerns the user or the data
    kDiagnostic = 6,  // names the failing operation
};

// A message of the host's own table; its text is the host's.
enum Message : unsigned int {};

}  // namespace Log

class CLogBase {
public:
    // Called once at start-up. `resources` is where string identifiers given to TraceImpl are looked up.
    static void InitImpl(const wchar_t* component, HINSTANCE instance, HINSTANCE resources);
    // One trace each: a printf-style text, a string identifier of the module's resources, a message of the host's.
    // `instance` may be null; `source` is a source file name without folder and extension.
    static void TraceImpl(int severity, HINSTANCE instance, const char* source, int line, const wchar_t* format,
                          va_list arguments);
    static void TraceImpl(int severity, HINSTANCE instance, const char* source, int line, unsigned int stringId,
                          va_list arguments);
    static void TraceImpl(int severity, HINSTANCE instance, const char* source, int line, Log::Message message,
                          va_list arguments);
};

// Shows a box over `parent`. Without a text it tells the last failure traced at severity 2 in the user's words.
extern "C" int QWMessageBoxExW(HWND parent, LPCWSTR text, LPCWSTR caption, UINT style, UINT_PTR reserved1,
                               UINT_PTR reserved2, UINT_PTR reserved3, HINSTANCE instance);
