#include "refhost/folium/FoliumWindow.h"

#include <windowsx.h>

#include "refhost/folium/AccessibleView.h"
#include "refhost/folium/Module.h"

namespace folium {

namespace {

int DpiOf(HWND window) {
    using GetDpi = UINT WINAPI(HWND);
    static const auto getDpi = reinterpret_cast<GetDpi*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow")));
    if (getDpi != nullptr) return static_cast<int>(getDpi(window));
    const HDC dc = GetDC(window);
    const int dpi = GetDeviceCaps(dc, LOGPIXELSX);
    ReleaseDC(window, dc);
    return dpi;
}

}  // namespace

FoliumWindow::~FoliumWindow() {
    Disown();
    Destroy();
}

HRESULT FoliumWindow::Create(HWND parent, const RECT& rect) {
    if (m_hwnd != nullptr) return S_OK;
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    description.style = CS_DBLCLKS;
    description.lpfnWndProc = Proc;
    description.hInstance = ModuleInstance();
    description.lpszClassName = kWindowClass;
    if (RegisterClassExW(&description) == 0 && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) {
        return HRESULT_FROM_WIN32(GetLastError());
    }
    const HWND window =
        CreateWindowExW(0, kWindowClass, L"", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP, rect.left, rect.top,
                        rect.right - rect.left, rect.bottom - rect.top, parent, nullptr, ModuleInstance(), this);
    if (window == nullptr) {
        const DWORD error = GetLastError();
        return error == ERROR_SUCCESS ? E_FAIL : HRESULT_FROM_WIN32(error);
    }
    UpdateLayout();
    return S_OK;
}

void FoliumWindow::Destroy() {
    if (m_hwnd != nullptr) DestroyWindow(m_hwnd);
}

LRESULT CALLBACK FoliumWindow::Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    auto* self = reinterpret_cast<FoliumWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_NCCREATE) {
        self = static_cast<FoliumWindow*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
        self->m_hwnd = window;
        ++g_counts.windows;
    }
    if (self == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    WindowOwner* const owner = self->m_owner;
    if (owner != nullptr) owner->Hold();
    LRESULT result = 0;
    try {
        result = self->Handle(message, wParam, lParam);
    } catch (...) {
        // Out of memory: what was asked for is not done, the window stays.
    }
    if (message == WM_NCDESTROY) self->OnGone();
    if (owner != nullptr) owner->LetGo();
    return result;
}

void FoliumWindow::OnGone() {
    SetWindowLongPtrW(m_hwnd, GWLP_USERDATA, 0);
    m_hwnd = nullptr;
    m_focus = m_panning = m_inLayout = false;
    m_allInvalid = true;
    m_display.editor.Cancel();
    --g_counts.windows;
    if (m_owner != nullptr) m_owner->OnWindowGone();
}

LRESULT FoliumWindow::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND window = m_hwnd;
    Result result = HandleWindow(message, wParam, lParam);
    if (!result) result = HandlePointer(message, wParam, lParam);
    if (!result) result = HandleKeys(message, wParam, lParam);
    return result ? *result : DefWindowProcW(window, message, wParam, lParam);
}

FoliumWindow::Result FoliumWindow::HandleWindow(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            Paint();
            return 0;
        case WM_PRINTCLIENT:
            PaintInto(reinterpret_cast<HDC>(wParam));
            return 0;
        case WM_SIZE:
        case 0x02E3:  // WM_DPICHANGED_AFTERPARENT
            UpdateLayout();
            return 0;
        case WM_HSCROLL:
        case WM_VSCROLL:
            OnScrollBar(message == WM_HSCROLL, wParam);
            return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            m_focus = message == WM_SETFOCUS;
            InvalidateAll();
            ShapesChanged();
            if (m_owner != nullptr) m_owner->OnFocus(m_focus);
            return 0;
        case WM_SYSCOLORCHANGE:
        case WM_THEMECHANGED:
        case WM_SETTINGCHANGE:
            m_display.RefreshColors();
            ViewChanged();
            return 0;
        case WM_GETOBJECT:
            if (static_cast<LONG>(lParam) != OBJID_CLIENT) return std::nullopt;
            if (m_accessible == nullptr) m_accessible = new AccessibleView(m_hwnd, m_display);
            return LresultFromObject(__uuidof(IAccessible), wParam, m_accessible);
        case WM_DESTROY:
            if (m_accessible != nullptr) m_accessible->Disconnect();
            m_accessible = nullptr;
            return 0;
        default:
            return std::nullopt;
    }
}

void FoliumWindow::UpdateLayout() {
    if (m_hwnd == nullptr || m_inLayout) return;
    m_inLayout = true;
    RECT rect = {};
    GetWindowRect(m_hwnd, &rect);
    Viewport& view = m_display.view;
    view.SetDpi(DpiOf(m_hwnd));
    view.SetWindow(rect.right - rect.left, rect.bottom - rect.top, GetSystemMetrics(SM_CXVSCROLL),
                   GetSystemMetrics(SM_CYHSCROLL));
    SyncScrollBars();
    m_inLayout = false;
    InvalidateAll();
    ShapesChanged();
}

void FoliumWindow::SyncScrollBars() {
    const auto sync = [this](int bar, LONG style, const Viewport::Scroll& scroll) {
        const bool shown = (GetWindowLongW(m_hwnd, GWL_STYLE) & style) != 0;
        if (shown != scroll.needed) ShowScrollBar(m_hwnd, bar, scroll.needed);
        if (!scroll.needed) return;
        SCROLLINFO info = {sizeof info,
                           SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL,
                           0,
                           scroll.range - 1,
                           static_cast<UINT>(scroll.view),
                           scroll.position,
                           0};
        SetScrollInfo(m_hwnd, bar, &info, TRUE);
    };
    sync(SB_HORZ, WS_HSCROLL, m_display.view.Horizontal());
    sync(SB_VERT, WS_VSCROLL, m_display.view.Vertical());
}

void FoliumWindow::ViewChanged() {
    if (m_hwnd == nullptr) return;
    const bool outer = !m_inLayout;
    m_inLayout = true;
    SyncScrollBars();
    if (outer) m_inLayout = false;
    InvalidateAll();
    ShapesChanged();
}

void FoliumWindow::ScrollView(int64_t dx, int64_t dy) {
    if (m_display.view.ScrollBy(dx, dy)) ViewChanged();
}

void FoliumWindow::OnScrollBar(bool horizontal, WPARAM wParam) {
    const Viewport& view = m_display.view;
    const Viewport::Scroll scroll = horizontal ? view.Horizontal() : view.Vertical();
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS;
    int64_t way = 0;
    switch (LOWORD(wParam)) {
        case SB_LINEUP:
            way = -view.Scaled(24);
            break;
        case SB_LINEDOWN:
            way = view.Scaled(24);
            break;
        case SB_PAGEUP:
            way = -scroll.view * 9 / 10;
            break;
        case SB_PAGEDOWN:
            way = scroll.view * 9 / 10;
            break;
        case SB_TOP:
            way = -int64_t{scroll.range};
            break;
        case SB_BOTTOM:
            way = scroll.range;
            break;
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION:
            if (!GetScrollInfo(m_hwnd, horizontal ? SB_HORZ : SB_VERT, &info)) return;
            way = int64_t{info.nTrackPos} - scroll.position;
            break;
        default:
            return;
    }
    ScrollView(horizontal ? way : 0, horizontal ? 0 : way);
}

}  // namespace folium
