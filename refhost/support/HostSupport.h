#pragma once
// HostSupport.dll beyond src/host/Support.h: where traces go and how boxes are answered. All functions may be called
// from any thread.
//
// The logger never throws and never recurses: a trace that an observer writes while it is told of one is dropped.
// Box answerers may trace.

#include <windows.h>

extern "C" {

struct HostTrace {
    SYSTEMTIME time;  // local
    int severity;
    const char* source;
    int line;
    const wchar_t* text;       // formatted, without line breaks
    unsigned int stringId;     // 0 for a trace that was no string identifier
    const wchar_t* component;  // as given to CLogBase::InitImpl for the instance, or empty
    HINSTANCE instance;
};
// The pointers are good during the call. Calls come one at a time.
using HostTraceObserver = void(CALLBACK*)(const HostTrace* trace, void* context);

// Appends one line per trace to a file (UTF-8): time, severity, source, line, text. A file beyond 4 MiB is put aside as
// "<path>.old" first. Null ends logging to a file. Returns 0 when the file cannot be opened or, for null, a line
// of the one before was lost (GetLastError tells why).
BOOL HostSupportSetLogFile(const wchar_t* path);
// Called for each trace from now on; null ends that. When it returns, the observer before is not running any more.
void HostSupportSetTraceObserver(HostTraceObserver observer, void* context);
// Copies the text of the last failure (severity 2) of this process; returns its length, 0 when there was none. At most
// `size` units are written, with the terminator.
size_t HostSupportLastFailure(wchar_t* text, size_t size);
// Forgets the failures so far.
void HostSupportForgetFailures(void);

struct HostBox {
    HWND parent;
    const wchar_t* text;
    const wchar_t* caption;
    UINT style;
};
// The button that answers the box (IDOK ...), or 0 to have it shown.
using HostBoxAnswerer = int(CALLBACK*)(const HostBox* box, void* context);

// Asked before any box of the support or the controls library is shown; null ends that.
void HostSupportSetBoxAnswerer(HostBoxAnswerer answerer, void* context);
// Shows a box, or has it answered. A null caption is the application's name.
int HostSupportShowBox(HWND parent, const wchar_t* text, const wchar_t* caption, UINT style);
// The application's name, never null.
const wchar_t* HostSupportApplicationName(void);
}
