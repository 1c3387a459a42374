// Real mouse and keys.
#include "folium/ControlHarness.h"

namespace test {

int ControlHarness::Scaled(int pixels) {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return MulDiv(pixels, dpi, 96);
}

// At 100 % and not scrolled: the page has a margin of 8 pixels.
POINT ControlHarness::OnScreen(POINT page) const {
    const auto convert = [](LONG units) { return Scaled(8) + static_cast<LONG>(units * Scaled(96) / 254.0 + 0.5); };
    POINT point = {convert(page.x), convert(page.y)};
    ClientToScreen(m_window, &point);
    return point;
}

// Keys go the way that a dialog sends them.
void ControlHarness::Pump() {
    for (int quiet = 0; quiet < 2; ++quiet) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            quiet = 0;
            if (IsDialogMessageW(m_frame, &message)) continue;
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        Sleep(1);
    }
}

void ControlHarness::Mouse(DWORD flags, DWORD data) {
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    input.mi.mouseData = data;
    SendInput(1, &input, sizeof input);
    Pump();
}

void ControlHarness::MoveTo(POINT screen) {
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
    const auto normalized = [](LONG at, int length) { return static_cast<LONG>((at * 65536LL + 32768) / length); };
    input.mi.dx = normalized(screen.x, GetSystemMetrics(SM_CXSCREEN));
    input.mi.dy = normalized(screen.y, GetSystemMetrics(SM_CYSCREEN));
    SendInput(1, &input, sizeof input);
    Pump();
}

void ControlHarness::Click(POINT page, DWORD down, DWORD up) {
    MoveTo(OnScreen(page));
    MouseDown(down);
    MouseUp(up);
}

void ControlHarness::DragFromTo(POINT from, POINT to) {
    const POINT start = OnScreen(from), end = OnScreen(to);
    DragPixels(start, end.x - start.x, end.y - start.y);
}

void ControlHarness::DragPixels(POINT from, int dx, int dy) {
    MoveTo(from);
    MouseDown();
    MoveTo({from.x + dx / 2, from.y + dy / 2});
    MoveTo({from.x + dx, from.y + dy});
    MouseUp();
}

void ControlHarness::SendKey(WORD key, DWORD flags) {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.dwFlags = flags;
    SendInput(1, &input, sizeof input);
    Pump();
}

// What the display server tells late of the pointer's last move would let go of the key.
void ControlHarness::Hold(WORD key) {
    for (int i = 0; i < 5; ++i) {
        Sleep(10);
        Pump();
    }
    SendKey(key, 0);
}

void ControlHarness::Key(WORD key, int times) {
    for (int i = 0; i < times; ++i) {
        SendKey(key, 0);
        SendKey(key, KEYEVENTF_KEYUP);
    }
}

void ControlHarness::KeyWith(WORD modifier, WORD key) {
    Hold(modifier);
    Key(key);
    LetGo(modifier);
}

}  // namespace test
