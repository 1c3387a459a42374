#include "win32/DialogDriver.h"

#include <gtest/gtest.h>
#include <ole2.h>

#include <cstdio>
#include <cwchar>
#include <exception>
#include <utility>

#include "host/Controls.h"

namespace {

constexpr UINT kTick = 20;
constexpr int kLongestWait = 500;  // ticks

std::vector<test::Box> g_boxes;
std::vector<test::Help> g_help;

struct Player {
    test::Steps steps;
    size_t next = 0;
    int waited = 0;
};
Player* g_player = nullptr;

class OleEnvironment final : public testing::Environment {
    void SetUp() override {
        SetProcessDPIAware();
        ASSERT_TRUE(SUCCEEDED(OleInitialize(nullptr)));
    }
    void TearDown() override { OleUninitialize(); }
};
testing::Environment* const g_ole = testing::AddGlobalTestEnvironment(new OleEnvironment);

BOOL CALLBACK FindDialog(HWND window, LPARAM found) {
    wchar_t name[16] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    if (std::wcscmp(name, L"#32770") != 0 || !IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

void CALLBACK PlayNext(HWND, UINT, UINT_PTR, DWORD) {
    HWND dialog = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), FindDialog, reinterpret_cast<LPARAM>(&dialog));
    if (dialog == nullptr && ++g_player->waited > kLongestWait) {
        std::fprintf(stderr, "no dialog came up\n");
        std::fflush(stderr);
        std::terminate();
    }
    if (dialog == nullptr) return;
    g_player->waited = 0;
    if (g_player->next < g_player->steps.size()) {
        g_player->steps[g_player->next++](dialog);
        return;
    }
    ADD_FAILURE() << "the dialog is still open after the last step";
    PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
}

INPUT KeyInput(WORD key, WORD character, DWORD flags) {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.wScan = character;
    input.ki.dwFlags = flags;
    return input;
}

void Send(std::vector<INPUT> inputs) {
    SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
}

}  // namespace

extern "C" {
const wchar_t* HostApplicationName(void) {
    return L"Test";
}
int HostMessageBox(HWND owner, const wchar_t* text, UINT style) {
    g_boxes.push_back({owner, text, style});
    return IDOK;
}
void HostHelp(HWND owner, DWORD context, DWORD_PTR) {
    g_help.push_back({owner, context});
}
}

namespace test {

void PlayDialog(Steps steps, const std::function<void()>& modal) {
    Player player = {std::move(steps)};
    Player* const outer = std::exchange(g_player, &player);
    const UINT_PTR timer = SetTimer(nullptr, 0, kTick, PlayNext);
    std::exception_ptr failure;
    try {
        modal();
    } catch (...) {
        failure = std::current_exception();
    }
    KillTimer(nullptr, timer);
    g_player = outer;
    EXPECT_EQ(player.next, player.steps.size()) << "the dialog closed before the last step";
    if (failure) std::rethrow_exception(failure);
}

void PressKey(WORD key, WORD modifier) {
    std::vector<INPUT> inputs;
    if (modifier != 0) inputs.push_back(KeyInput(modifier, 0, 0));
    inputs.push_back(KeyInput(key, 0, 0));
    inputs.push_back(KeyInput(key, 0, KEYEVENTF_KEYUP));
    if (modifier != 0) inputs.push_back(KeyInput(modifier, 0, KEYEVENTF_KEYUP));
    Send(std::move(inputs));
}

void TypeText(const std::wstring& text) {
    std::vector<INPUT> inputs;
    for (const wchar_t c : text) {
        inputs.push_back(KeyInput(0, c, KEYEVENTF_UNICODE));
        inputs.push_back(KeyInput(0, c, KEYEVENTF_UNICODE | KEYEVENTF_KEYUP));
    }
    Send(std::move(inputs));
}

void ClickOn(HWND window) {
    RECT rect = {};
    GetWindowRect(window, &rect);
    SetCursorPos((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
    std::vector<INPUT> inputs(2);
    for (INPUT& input : inputs) input.type = INPUT_MOUSE;
    inputs[0].mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
    inputs[1].mi.dwFlags = MOUSEEVENTF_LEFTUP;
    Send(std::move(inputs));
}

std::wstring TextOf(HWND dialog, UINT id) {
    wchar_t text[512] = {};
    GetDlgItemTextW(dialog, static_cast<int>(id), text, static_cast<int>(std::size(text)));
    return text;
}

void Push(HWND dialog, UINT id) {
    SendDlgItemMessageW(dialog, static_cast<int>(id), BM_CLICK, 0, 0);
}

std::vector<Box> TakeBoxes() {
    return std::exchange(g_boxes, {});
}
std::vector<Help> TakeHelp() {
    return std::exchange(g_help, {});
}

}  // namespace test
