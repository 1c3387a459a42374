#include "refhost/app/Crash.h"

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <exception>

#include "refhost/app/Text.h"

namespace zonhost {

namespace {

// No memory and little stack is needed: both may be what is gone.
[[noreturn]] void End(const char* text) {
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(ExitCode::kCrashed));
    for (;;) Sleep(INFINITE);
}

LONG WINAPI OnCrash(EXCEPTION_POINTERS* pointers) {
    static char text[160];
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    std::snprintf(text, sizeof text,
                  "\nzonhost: the program failed (exception %08lX at %p); report it with the page at work\n",
                  record.ExceptionCode, record.ExceptionAddress);
    End(text);
}

}  // namespace

void EndOnCrash() {
    // Room for the message when it is the stack that is full.
    ULONG reserve = 32 * 1024;
    SetThreadStackGuarantee(&reserve);
    SetUnhandledExceptionFilter(OnCrash);
    std::set_terminate([] { End("\nzonhost: the program failed (an error nobody expected); report it\n"); });
}

}  // namespace zonhost
