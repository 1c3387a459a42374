#pragma once
// The control's window: paints the display and turns the user's input into operations on it.
//
// Whatever tells the owner something may end in the window's destruction and in the release of the control. The
// window's procedure therefore holds the owner during each message, and code looks at Handle() again after telling.

#include <windows.h>

#include <optional>

#include "refhost/folium/BackBuffer.h"
#include "refhost/folium/Display.h"
#include "refhost/folium/SizeReadout.h"

namespace folium {

class AccessibleView;

// Registered when the first window is made; the DLL's end unregisters it.
inline constexpr const wchar_t* kWindowClass = L"FoliumPage";

class WindowOwner {
public:
    virtual void Hold() noexcept = 0;
    virtual void LetGo() noexcept = 0;
    virtual void OnPointerMoved(Point position) noexcept = 0;
    // The rectangle there, or 0, and the place in client pixels.
    virtual void OnContextMenu(int32_t id, int x, int y) noexcept = 0;
    virtual void OnFocus(bool has) noexcept = 0;
    // Tab after the last rectangle: true when the focus has gone elsewhere.
    virtual bool LeaveByTab(const MSG& message) noexcept = 0;
    virtual void OnWindowGone() noexcept = 0;

protected:
    ~WindowOwner() = default;
};

class FoliumWindow {
public:
    FoliumWindow(Display& display, WindowOwner& owner) : m_display(display), m_owner(&owner) {}
    ~FoliumWindow();
    FoliumWindow(const FoliumWindow&) = delete;
    FoliumWindow& operator=(const FoliumWindow&) = delete;

    HRESULT Create(HWND parent, const RECT& rect);
    void Destroy();
    // Null before Create and after the window's end, whoever ended it.
    HWND Handle() const { return m_hwnd; }
    // Tells the owner nothing any more.
    void Disown() { m_owner = nullptr; }

    // After a change of rectangles or selection: repaints what is different.
    void ShapesChanged();
    // After a change of page, zoom or options: lays out and repaints all.
    void ViewChanged();
    // Tells screen readers.
    void Notify(const Event& event);
    // Whether a key message is the control's, before the dialog's.
    bool WantsKey(const MSG& message) const;

private:
    using Result = std::optional<LRESULT>;

    static LRESULT CALLBACK Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    Result HandleWindow(UINT message, WPARAM wParam, LPARAM lParam);
    Result HandlePointer(UINT message, WPARAM wParam, LPARAM lParam);
    Result HandleButtons(UINT message, int x, int y);
    Result HandleKeys(UINT message, WPARAM wParam, LPARAM lParam);

    void UpdateLayout();
    void SyncScrollBars();
    void ScrollView(int64_t dx, int64_t dy);
    void OnScrollBar(bool horizontal, WPARAM wParam);
    bool Compose(const RECT& part);
    void Paint();
    void PaintInto(HDC dc);
    void Invalidate(const PixelRect& rect);
    void InvalidateAll();
    void InvalidateShapes();
    void OnGone();

    void PressLeft(int x, int y);
    void ReleaseLeft();
    void MovePointer(int x, int y);
    void ScrollWhileDragging();
    void StartPan(int x, int y);
    void Wheel(UINT message, WPARAM wParam, LPARAM lParam);
    bool ShowCursor() const;
    void RequestMenu(LPARAM lParam);
    bool TakeBack();

    bool KeyDown(WPARAM key, LPARAM lParam);
    bool ArrowKey(WPARAM key, LPARAM lParam);
    bool ControlKey(WPARAM key);
    bool ScrollKey(WPARAM key);
    void TabKey(WPARAM key, LPARAM lParam);
    void RevealPrimary();

    Display& m_display;
    WindowOwner* m_owner;
    HWND m_hwnd = nullptr;
    BackBuffer m_buffer;
    SizeReadout m_readout;
    std::vector<Shape> m_shapes;  // as last asked to be painted, unless all is
    bool m_allInvalid = true;
    size_t m_invalidParts = 0;  // since the last painting
    bool m_inLayout = false;
    bool m_focus = false;
    bool m_releasing = false;
    bool m_panning = false;
    POINT m_panFrom = {};
    int m_wheel[3] = {};  // turns of the wheel that were too small so far: down, sideways, zoom
    Point m_pointer = {-1, -1};
    AccessibleView* m_accessible = nullptr;
};

Modifiers ModifiersNow();

}  // namespace folium
