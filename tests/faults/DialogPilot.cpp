#include "faults/DialogPilot.h"

#include <cwchar>
#include <iterator>
#include <utility>

namespace test {

namespace {

constexpr UINT kTick = 10;

struct Flight {
    const std::function<void(HWND)>& first;
    const std::function<void()>& giveUp;
    HWND below;
    HWND seen = nullptr;
    bool busy = false;
};
Flight* g_flight = nullptr;

BOOL CALLBACK Find(HWND window, LPARAM found) {
    wchar_t name[16] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    if (std::wcscmp(name, L"#32770") != 0 || !IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
    Flight* flight = g_flight;
    const HWND dialog = FrontDialog();
    if (flight == nullptr || flight->busy || dialog == nullptr || dialog == flight->below) return;
    flight->busy = true;
    if (dialog != flight->seen) {
        flight->seen = dialog;
        flight->first(dialog);
    } else {
        flight->giveUp();
        SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }
    flight->busy = false;
}

}  // namespace

HWND FrontDialog() {
    HWND dialog = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), Find, reinterpret_cast<LPARAM>(&dialog));
    return dialog;
}

void Pilot(const std::function<void(HWND dialog)>& first, const std::function<void()>& giveUp,
           const std::function<void()>& body) {
    Flight flight = {first, giveUp, FrontDialog()};
    Flight* const outer = std::exchange(g_flight, &flight);
    const UINT_PTR timer = SetTimer(nullptr, 0, kTick, Tick);
    body();
    KillTimer(nullptr, timer);
    g_flight = outer;
}

}  // namespace test
