#include "win32/DialogScript.h"

// GCC 12 takes what the header reads of the thread's block for an array of no elements.
#pragma GCC diagnostic ignored "-Warray-bounds"

#include <gtest/gtest.h>

#include <cstdio>
#include <cwchar>
#include <exception>
#include <iterator>
#include <utility>

namespace test {

namespace {

constexpr UINT kTick = 10;          // the shortest that timers have
constexpr int kLongestWait = 1000;  // ticks
constexpr SIZE_T kStack = SIZE_T{1} << 20;

// The script has a fiber of its own: it stands still inside Wait while the dialogs' loops run, however deep they nest.
struct Player {
    const Script& script;
    void* fiber = nullptr;
    void* loop = nullptr;  // whose message loop goes on meanwhile
    int waited = 0;
    bool started = false, done = false, closed = false;
    std::exception_ptr failure = nullptr;
};
Player* g_player = nullptr;
HWND g_frame = nullptr;

// Thrown where a script wants to do more than its dialogs lived for.
struct Closed {};

void CALLBACK RunFiber(void* argument) {
    auto& player = *static_cast<Player*>(argument);
    try {
        player.script(TopDialog());
    } catch (const Closed&) {
        ADD_FAILURE() << "the dialog closed before the end of the script";
    } catch (...) {
        player.failure = std::current_exception();
    }
    player.done = true;
    SwitchToFiber(player.loop);
}

[[noreturn]] void Abort(const char* why) {
    std::fprintf(stderr, "%s\n", why);
    std::fflush(stderr);
    std::terminate();
}

void Resume(Player& player) {
    void* const here = GetCurrentFiber();
    if (here == player.fiber) Abort("the script waits for a call of its own that opened a dialog; Press posts it");
    player.loop = here;
    SwitchToFiber(player.fiber);
}

void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
    const HWND dialog = TopDialog();
    if (dialog == nullptr && ++g_player->waited > kLongestWait) Abort("no dialog came up");
    if (dialog == nullptr) return;
    g_player->waited = 0;
    if (!g_player->done) return Resume(*g_player);
    if (!g_player->failure) ADD_FAILURE() << "the dialog is still open after the script";
    PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
}

BOOL CALLBACK FindDialog(HWND window, LPARAM found) {
    wchar_t name[16] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    if (std::wcscmp(name, L"#32770") != 0 || !IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

void Pump() {
    for (int quiet = 0; quiet < 2; ++quiet) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            quiet = 0;
            if (g_frame != nullptr && IsDialogMessageW(g_frame, &message)) continue;
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        Sleep(1);
    }
}

void SendKey(WORD key, WORD character, DWORD flags) {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.wScan = character;
    input.ki.dwFlags = flags;
    SendInput(1, &input, sizeof input);
}

void SendMouse(DWORD flags, DWORD data = 0, POINT place = {}) {
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    input.mi.mouseData = data;
    input.mi.dx = place.x;
    input.mi.dy = place.y;
    SendInput(1, &input, sizeof input);
}

}  // namespace

HWND TopDialog() {
    HWND dialog = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), FindDialog, reinterpret_cast<LPARAM>(&dialog));
    return dialog;
}

void PlayScript(const Script& script, const std::function<void()>& modal) {
    // For the rest of the thread's life, as nothing depends on it.
    if (!IsThreadAFiber()) ConvertThreadToFiberEx(nullptr, FIBER_FLAG_FLOAT_SWITCH);
    Player player = {script};
    player.fiber = CreateFiberEx(kStack / 16, kStack, FIBER_FLAG_FLOAT_SWITCH, RunFiber, &player);
    Player* const outer = std::exchange(g_player, &player);
    const UINT_PTR timer = SetTimer(nullptr, 0, kTick, Tick);
    std::exception_ptr failure;
    try {
        modal();
    } catch (...) {
        failure = std::current_exception();
    }
    KillTimer(nullptr, timer);
    // Its last input closed the dialog: what it looks at afterwards, and nothing more.
    player.closed = true;
    if (player.loop == nullptr) ADD_FAILURE() << "no dialog came up";
    if (player.loop != nullptr && !player.done) Resume(player);
    DeleteFiber(player.fiber);
    g_player = outer;
    if (failure == nullptr) failure = player.failure;
    if (failure) std::rethrow_exception(failure);
}

void Wait() {
    if (g_player == nullptr || GetCurrentFiber() != g_player->fiber) return Pump();
    if (g_player->closed) throw Closed();
    SwitchToFiber(g_player->loop);
}

void SetFrame(HWND frame) {
    g_frame = frame;
}

void Key(WORD key, WORD modifier, int times) {
    if (modifier != 0) SendKey(modifier, 0, 0);
    for (int i = 0; i < times; ++i) {
        SendKey(key, 0, 0);
        SendKey(key, 0, KEYEVENTF_KEYUP);
    }
    if (modifier != 0) SendKey(modifier, 0, KEYEVENTF_KEYUP);
    Wait();
}
void KeyDown(WORD key) {
    SendKey(key, 0, 0);
    Wait();
}
void KeyUp(WORD key) {
    SendKey(key, 0, KEYEVENTF_KEYUP);
    Wait();
}
void Type(const std::wstring& text) {
    for (const wchar_t c : text) {
        SendKey(0, c, KEYEVENTF_UNICODE);
        SendKey(0, c, KEYEVENTF_UNICODE | KEYEVENTF_KEYUP);
    }
    Wait();
}

void MoveTo(POINT screen) {
    const auto normalized = [](LONG at, int length) { return static_cast<LONG>((at * 65536LL + 32768) / length); };
    SendMouse(
        MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, 0,
        {normalized(screen.x, GetSystemMetrics(SM_CXSCREEN)), normalized(screen.y, GetSystemMetrics(SM_CYSCREEN))});
    Wait();
}
void ButtonDown(DWORD flag, DWORD data) {
    SendMouse(flag, data);
    Wait();
}
void ButtonUp(DWORD flag) {
    SendMouse(flag);
    Wait();
}
void Wheel(int notches) {
    ButtonDown(MOUSEEVENTF_WHEEL, static_cast<DWORD>(notches * WHEEL_DELTA));
}
void Click(POINT screen, DWORD down, DWORD up) {
    MoveTo(screen);
    SendMouse(down);
    ButtonUp(up);
}
void Click(HWND window) {
    RECT rect = {};
    GetWindowRect(window, &rect);
    Click({(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2});
}
void Drag(POINT from, POINT to) {
    MoveTo(from);
    ButtonDown();
    MoveTo({(from.x + to.x) / 2, (from.y + to.y) / 2});
    MoveTo(to);
    ButtonUp();
}

void Press(HWND dialog, UINT id) {
    PostMessageW(GetDlgItem(dialog, static_cast<int>(id)), BM_CLICK, 0, 0);
    Wait();
}

}  // namespace test
