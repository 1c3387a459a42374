#include "refhost/app/Interrupt.h"

#include <windows.h>

#include <atomic>

namespace zonhost {

namespace {

std::atomic<bool> g_interrupted = false;

BOOL WINAPI OnControl(DWORD event) {
    g_interrupted = true;
    // The system ends the process as soon as this returns: the time that it gives is for the pages at work.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(INFINITE);
    return TRUE;
}

}  // namespace

InterruptScope::InterruptScope() {
    SetConsoleCtrlHandler(OnControl, TRUE);
}

InterruptScope::~InterruptScope() {
    SetConsoleCtrlHandler(OnControl, FALSE);
}

bool Interrupted() {
    return g_interrupted;
}

}  // namespace zonhost
