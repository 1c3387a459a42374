#pragma once
// Folium.dll's control in the system's container, on a window with a button beside it, driven by real mouse and keys.

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/PageDisplay.h"
#include "refhost/com/ClassRegistration.h"
#include "refhost/com/ComObject.h"
#include "refhost/documents/PixelAccess.h"
#include "refhost/folium/FoliumCounts.h"
#include "win32/ComPtr.h"

inline bool operator==(const FoliumRect& a, const FoliumRect& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}
std::ostream& operator<<(std::ostream& out, const FoliumRect& rect);

namespace test {

using win32::ComPtr;

inline FoliumRect MakeRect(int left, int top, int right, int bottom) {
    return {0, 0, left, top, right, bottom};
}

// A page of one grey, in the depth asked for, of the size given in tenths of a millimetre; or one without pixels.
ComPtr<IPageImage> MakePage(SIZE size, uint32_t width = 0, uint32_t height = 0, uint32_t bits = 24);
// A page whose calls fail.
ComPtr<IPageImage> MakeBadPage(HRESULT sizeStatus, SIZE size, HRESULT pixelStatus);
// Pages that live.
int LivePages();

// The library, registered in this process.
class FoliumLibrary {
public:
    FoliumLibrary() : m_classes(L"Folium.dll", {host::kClsidFolium}) {}
    FoliumCounts Counts() const;
    bool Idle() const { return m_classes.Idle(); }
    const com::HostDll& Dll() const { return m_classes.Dll(); }

private:
    com::ClassRegistration m_classes;
};

class ControlHarness {
public:
    // Pixels of a length given for 96 dots per inch: the tests hold at any scaling of the screen.
    static int Scaled(int pixels);

    // The window around, one for all.
    static HWND SharedFrame();
    ControlHarness();
    ~ControlHarness();
    ControlHarness(const ControlHarness&) = delete;
    ControlHarness& operator=(const ControlHarness&) = delete;

    // A4 at 100 %, editable, history started.
    void SetUp(LONG mode = 1);
    LONG Insert(const FoliumRect& rect);
    FoliumRect At(LONG id);
    // Events since the last call, without the pointer's moves: "added1 selected1".
    std::string Told() { return std::exchange(m_told, {}); }
    // The commands that keys gave the window around since the last call.
    std::vector<int> Commands() { return std::exchange(m_commands, {}); }
    POINT Pointer() const { return m_pointer; }
    POINT MenuPlace() const { return m_menuPlace; }
    LONG MenuId() const { return m_menuId; }
    std::function<void(DISPID, LONG)> onEvent;

    // Where a place of the page is, at 100 % and not scrolled.
    POINT OnScreen(POINT page) const;
    // Where a rectangle is, for screen readers; 1 is the first one.
    RECT Location(LONG child) const;
    void MoveTo(POINT screen);
    void MouseDown(DWORD flag = MOUSEEVENTF_LEFTDOWN) { Mouse(flag, 0); }
    void MouseUp(DWORD flag = MOUSEEVENTF_LEFTUP) { Mouse(flag, 0); }
    void Click(POINT page, DWORD down = MOUSEEVENTF_LEFTDOWN, DWORD up = MOUSEEVENTF_LEFTUP);
    void DragFromTo(POINT from, POINT to);
    void DragPixels(POINT screenFrom, int dx, int dy);
    void Wheel(int notches) { Mouse(MOUSEEVENTF_WHEEL, static_cast<DWORD>(notches * WHEEL_DELTA)); }
    void Key(WORD key, int times = 1);
    void Press(WORD key) { SendKey(key, 0); }
    void Hold(WORD key);
    void LetGo(WORD key) { SendKey(key, KEYEVENTF_KEYUP); }
    void KeyWith(WORD modifier, WORD key);
    void Pump();
    void Resize(int width, int height);
    void Focus();
    // Ends the window as a container does.
    void DestroyWindows();
    bool HasScrollBar(LONG style) const { return (GetWindowLongW(Window(), GWL_STYLE) & style) != 0; }
    // How many pixels of the control have this colour on the screen.
    int PixelsOf(COLORREF color);
    // 0x00RRGGBB, as they are on the screen.
    std::vector<uint32_t> Pixels(SIZE& size);

    HWND Window() const { return m_window; }
    HWND Button() const { return m_button; }
    HWND Frame() const { return m_frame; }
    ComPtr<IFolium> folium;

private:
    class Sink;
    static LRESULT CALLBACK FrameProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Mouse(DWORD flags, DWORD data);
    void SendKey(WORD key, DWORD flags);

    HWND m_frame = nullptr, m_host = nullptr, m_button = nullptr, m_window = nullptr;
    ComPtr<IConnectionPoint> m_point;
    DWORD m_cookie = 0;
    std::string m_told;
    std::vector<int> m_commands;
    POINT m_pointer = {}, m_menuPlace = {};
    LONG m_menuId = -1;
};

}  // namespace test
