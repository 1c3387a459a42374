#pragma once
// Folium.dll's control in the system's container, on a window with a button beside it, driven by real mouse and keys.

#include <gtest/gtest.h>
#include <windows.h>

#include <oleacc.h>

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
#include "win32/DialogScript.h"

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

// A picture in memory, 0x00RRGGBB from top to bottom.
class MemoryPicture {
public:
    MemoryPicture(LONG width, LONG height);
    ~MemoryPicture();
    MemoryPicture(const MemoryPicture&) = delete;
    MemoryPicture& operator=(const MemoryPicture&) = delete;
    HDC Dc() const { return m_dc; }
    std::vector<uint32_t> Pixels() const;

private:
    HDC m_dc;
    HGDIOBJ m_before;
    void* m_bits = nullptr;
    size_t m_count;
};

class ControlHarness {
public:
    // Pixels of a length given for 96 dots per inch: the tests hold at any scaling of the screen.
    static int Scaled(int pixels);

    ControlHarness();
    ~ControlHarness();
    ControlHarness(const ControlHarness&) = delete;
    ControlHarness& operator=(const ControlHarness&) = delete;

    // A4 at 100 %, editable, history started.
    void SetUp(LONG mode = 1);
    void SetZoom(LONG mode, LONG percent = 0);
    LONG Insert(const FoliumRect& rect);
    FoliumRect At(LONG id);
    // Events since the last call, without the pointer's moves: "added1 selected1".
    std::string Told() { return std::exchange(m_told, {}); }
    // The commands that keys gave the window around since the last call.
    std::vector<int> Commands() { return std::exchange(m_commands, {}); }
    POINT Pointer() const { return m_pointer; }
    POINT MenuPlace() const { return m_menuPlace; }
    std::function<void(DISPID, LONG)> onEvent;

    // Where a place of the page is, at 100 % and not scrolled.
    POINT OnScreen(POINT page) const;
    // Where a rectangle is, for screen readers; 1 is the first one.
    RECT Location(LONG child) const;
    ComPtr<IAccessible> Accessible() const;
    // Of places of the page.
    void Drag(POINT from, POINT to) const { test::Drag(OnScreen(from), OnScreen(to)); }
    void Click(POINT page) const { test::Click(OnScreen(page)); }
    void RightClick(POINT page) const { test::Click(OnScreen(page), MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP); }
    void Resize(int width, int height);
    // Ends the window as a container does.
    void DestroyWindows();
    bool HasScrollBar(LONG style) const { return (GetWindowLongW(Window(), GWL_STYLE) & style) != 0; }
    int Scrolled() const { return GetScrollPos(m_window, SB_VERT); }
    // How many pixels of the control have this colour on the screen.
    int PixelsOf(COLORREF color);
    // As they are on the screen.
    std::vector<uint32_t> Pixels() const;

    HWND Window() const { return m_window; }
    HWND Button() const { return m_button; }
    ComPtr<IFolium> folium;

private:
    class Sink;
    static HWND SharedFrame();
    static LRESULT CALLBACK FrameProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND m_frame = nullptr, m_host = nullptr, m_button = nullptr, m_window = nullptr;
    ComPtr<IConnectionPoint> m_point;
    DWORD m_cookie = 0;
    std::string m_told;
    std::vector<int> m_commands;
    POINT m_pointer = {}, m_menuPlace = {};
};

}  // namespace test
