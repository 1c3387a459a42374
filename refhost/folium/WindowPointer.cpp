// The pointer's half of the window.
#include <windowsx.h>

#include <cmath>

#include "refhost/folium/FoliumWindow.h"

namespace folium {

namespace {

constexpr UINT_PTR kDragTimer = 1;
constexpr UINT kDragTick = 40;
constexpr double kZoomStep = 1.25;

}  // namespace

Modifiers ModifiersNow() {
    return {GetKeyState(VK_SHIFT) < 0, GetKeyState(VK_CONTROL) < 0, GetKeyState(VK_MENU) < 0};
}

FoliumWindow::Result FoliumWindow::HandlePointer(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_MOUSEWHEEL:
        case WM_MOUSEHWHEEL:
            Wheel(message, wParam, lParam);
            return 0;
        case WM_SETCURSOR:
            if (LOWORD(lParam) == HTCLIENT && ShowCursor()) return TRUE;
            return std::nullopt;
        case WM_CONTEXTMENU:
            RequestMenu(lParam);
            return 0;
        case WM_TIMER:
            if (wParam == kDragTimer) ScrollWhileDragging();
            return 0;
        case WM_CAPTURECHANGED:
            // Something else took the pointer away, a message box say.
            if (!m_releasing) TakeBack();
            return 0;
        default:
            if (message < WM_MOUSEFIRST || message > WM_MOUSELAST) return std::nullopt;
            return HandleButtons(message, GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
    }
}

FoliumWindow::Result FoliumWindow::HandleButtons(UINT message, int x, int y) {
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            PressLeft(x, y);
            // By default it also makes the system forget that Alt was pressed before.
            return std::nullopt;
        case WM_LBUTTONUP:
            ReleaseLeft();
            return 0;
        case WM_MOUSEMOVE:
            MovePointer(x, y);
            return 0;
        case WM_MBUTTONDOWN:
        case WM_MBUTTONDBLCLK:
            StartPan(x, y);
            return 0;
        case WM_MBUTTONUP:
            if (m_panning) ReleaseCapture();
            return 0;
        case WM_RBUTTONDOWN: {
            if (m_display.editor.Pressed()) return 0;
            SetFocus(m_hwnd);
            if (m_hwnd == nullptr) return 0;
            const Viewport& view = m_display.view;
            const Hit hit = HitTest(m_display.model, view.ToPage(x, y), -1, m_display.ReachNow().slack);
            if (hit.id != 0 && !m_display.model.IsSelected(hit.id)) m_display.model.Select(hit.id);
            ShapesChanged();
            return 0;
        }
        case WM_RBUTTONUP:
            // What follows from it by default, the request for a menu, would end the drag.
            if (m_display.editor.Pressed()) return 0;
            return std::nullopt;
        default:
            return std::nullopt;
    }
}

void FoliumWindow::PressLeft(int x, int y) {
    if (m_panning) return;
    SetFocus(m_hwnd);
    // Taking the focus tells others, who may end it all.
    if (m_hwnd == nullptr) return;
    SetCapture(m_hwnd);
    m_display.editor.Press(m_display.view.ToPage(x, y), ModifiersNow(), m_display.ReachNow());
    ShapesChanged();
}

void FoliumWindow::ReleaseLeft() {
    if (m_panning) return;
    if (m_hwnd != nullptr) KillTimer(m_hwnd, kDragTimer);
    m_releasing = true;
    if (GetCapture() == m_hwnd) ReleaseCapture();
    m_releasing = false;
    m_display.editor.Release();
    ShapesChanged();
}

bool FoliumWindow::TakeBack() {
    if (m_hwnd != nullptr) KillTimer(m_hwnd, kDragTimer);
    const bool panned = m_panning;
    m_panning = false;
    const bool busy = m_display.editor.MakingByKeys() ? false : m_display.editor.Cancel();
    ShapesChanged();
    return panned || busy;
}

void FoliumWindow::MovePointer(int x, int y) {
    Viewport& view = m_display.view;
    if (m_panning) {
        const POINT from = m_panFrom;
        m_panFrom = {x, y};
        ScrollView(int64_t{from.x} - x, int64_t{from.y} - y);
        return;
    }
    Point position = view.ToPage(x, y);
    if (m_display.editor.Pressed()) {
        m_display.editor.Drag(position, ModifiersNow());
        ShapesChanged();
        const bool outside = x < 0 || y < 0 || x >= view.ViewWidth() || y >= view.ViewHeight();
        if (outside && m_display.editor.Busy()) SetTimer(m_hwnd, kDragTimer, kDragTick, nullptr);
        if (!outside) KillTimer(m_hwnd, kDragTimer);
        position = {std::clamp(position.x, 0, view.Page().width), std::clamp(position.y, 0, view.Page().height)};
    }
    const bool onPage = position.x >= 0 && position.y >= 0 && position.x <= view.Page().width &&
                        position.y <= view.Page().height && view.HasPage();
    if (!onPage || position == m_pointer) return;
    m_pointer = position;
    if (m_owner != nullptr) m_owner->OnPointerMoved(position);
}

// The page comes along when a drag reaches beyond the window.
void FoliumWindow::ScrollWhileDragging() {
    Viewport& view = m_display.view;
    if (!m_display.editor.Busy() || GetCapture() != m_hwnd) {
        KillTimer(m_hwnd, kDragTimer);
        return;
    }
    POINT point = {};
    GetCursorPos(&point);
    ScreenToClient(m_hwnd, &point);
    const auto beyond = [&](int at, int length) {
        const int way = at < 0 ? at : std::max(at - length + 1, 0);
        return std::clamp(way, -view.Scaled(40), view.Scaled(40));
    };
    ScrollView(beyond(point.x, view.ViewWidth()), beyond(point.y, view.ViewHeight()));
    MovePointer(point.x, point.y);
}

void FoliumWindow::StartPan(int x, int y) {
    if (m_display.editor.Pressed()) return;
    SetFocus(m_hwnd);
    if (m_hwnd == nullptr) return;
    SetCapture(m_hwnd);
    m_panning = true;
    m_panFrom = {x, y};
    ShowCursor();
}

void FoliumWindow::Wheel(UINT message, WPARAM wParam, LPARAM lParam) {
    const bool zoom = (GET_KEYSTATE_WPARAM(wParam) & MK_CONTROL) != 0;
    const bool sideways = message == WM_MOUSEHWHEEL || (GET_KEYSTATE_WPARAM(wParam) & MK_SHIFT) != 0;
    // Fine wheels turn by less than a notch at a time.
    int& turned = m_wheel[zoom ? 2 : sideways ? 1 : 0];
    turned += message == WM_MOUSEHWHEEL ? -GET_WHEEL_DELTA_WPARAM(wParam) : GET_WHEEL_DELTA_WPARAM(wParam);
    Viewport& view = m_display.view;
    if (zoom) {
        POINT point = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        ScreenToClient(m_hwnd, &point);
        const int notches = turned / WHEEL_DELTA;
        turned -= notches * WHEEL_DELTA;
        if (notches == 0 || m_display.editor.Pressed()) return;
        view.ZoomAround(std::pow(kZoomStep, notches), point.x, point.y);
        ViewChanged();
        return;
    }
    UINT lines = 3;
    SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
    const int full = sideways ? view.ViewWidth() : view.ViewHeight();
    const int notch = lines == WHEEL_PAGESCROLL ? full : view.Scaled(20) * static_cast<int>(std::min(lines, 50u));
    const int way = turned * std::min(notch, std::max(full, 1)) / WHEEL_DELTA;
    turned = way == 0 ? turned : 0;
    ScrollView(sideways ? -way : 0, sideways ? 0 : -way);
}

bool FoliumWindow::ShowCursor() const {
    static const LPCWSTR kSizing[] = {IDC_SIZENWSE, IDC_SIZENS, IDC_SIZENESW, IDC_SIZEWE,
                                      IDC_SIZENWSE, IDC_SIZENS, IDC_SIZENESW, IDC_SIZEWE};
    LPCWSTR shape = IDC_ARROW;
    if (m_panning) {
        shape = IDC_SIZEALL;
    } else if (m_display.editor.CanEdit()) {
        POINT point = {};
        GetCursorPos(&point);
        ScreenToClient(m_hwnd, &point);
        const Reach reach = m_display.ReachNow();
        const Hit hit = HitTest(m_display.model, m_display.view.ToPage(point.x, point.y), reach.handle, reach.slack);
        shape = IDC_CROSS;
        if (hit.handle != Handle::None) {
            shape = kSizing[static_cast<int>(hit.handle)];
        } else if (hit.id != 0 && !ModifiersNow().control) {
            shape = IDC_SIZEALL;
        }
    }
    SetCursor(LoadCursorW(nullptr, shape));
    return true;
}

// By the pointer where it is; by keys, which give no place, at the rectangle selected last.
void FoliumWindow::RequestMenu(LPARAM lParam) {
    if (m_display.editor.Pressed() || m_owner == nullptr) return;
    const Viewport& view = m_display.view;
    POINT point = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    int32_t id = 0;
    if (lParam == -1) {
        id = m_display.model.Primary();
        RevealPrimary();
        point = {view.ViewWidth() / 2, view.ViewHeight() / 2};
        if (const Rect* rect = m_display.model.Find(id)) {
            const PixelRect window = {0, 0, view.ViewWidth(), view.ViewHeight()};
            const PixelRect box = Intersection(view.ToClient(*rect), window);
            if (!box.Empty()) point = {(box.left + box.right) / 2, (box.top + box.bottom) / 2};
        }
    } else {
        ScreenToClient(m_hwnd, &point);
        id = HitTest(m_display.model, view.ToPage(point.x, point.y), -1, m_display.ReachNow().slack).id;
    }
    m_owner->OnContextMenu(id, point.x, point.y);
}

}  // namespace folium
