// The keyboard's half of the window.
#include "refhost/folium/FoliumWindow.h"

namespace folium {

namespace {

constexpr int32_t kFineStep = 1;     // 0.1 mm
constexpr int32_t kCoarseStep = 10;  // 1 mm

bool IsHeld(LPARAM lParam) {
    return (lParam & 0x40000000) != 0;
}

}  // namespace

// Tab is the dialog's again after the last rectangle, Escape while nothing is under way, and Enter where nothing can be
// drawn.
bool FoliumWindow::WantsKey(const MSG& message) const {
    if (message.message != WM_KEYDOWN) return false;
    const RectEditor& editor = m_display.editor;
    const Modifiers modifiers = ModifiersNow();
    switch (message.wParam) {
        case VK_TAB:
            return !modifiers.control && editor.CanWalk(modifiers.shift);
        case VK_RETURN:
            return editor.CanEdit() && !modifiers.control;
        case VK_ESCAPE:
            return editor.Busy() || m_panning;
        case VK_LEFT:
        case VK_RIGHT:
        case VK_UP:
        case VK_DOWN:
        case VK_DELETE:
        case VK_PRIOR:
        case VK_NEXT:
        case VK_HOME:
        case VK_END:
            return true;
        default:
            return modifiers.control && (message.wParam == 'A' || message.wParam == 'Z' || message.wParam == 'Y');
    }
}

FoliumWindow::Result FoliumWindow::HandleKeys(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_GETDLGCODE: {
            const auto* key = reinterpret_cast<const MSG*>(lParam);
            const bool wants = key != nullptr && WantsKey(*key);
            return DLGC_WANTARROWS | (wants ? DLGC_WANTMESSAGE : 0);
        }
        case WM_KEYDOWN:
            if (!KeyDown(wParam, lParam)) return std::nullopt;
            return 0;
        case WM_SYSKEYDOWN:
        case WM_SYSKEYUP:
            // Alt suspends snapping; the window around must not open its menu for that.
            if (wParam != VK_MENU || !m_display.editor.Pressed()) return std::nullopt;
            return 0;
        default:
            return std::nullopt;
    }
}

bool FoliumWindow::KeyDown(WPARAM key, LPARAM lParam) {
    RectEditor& editor = m_display.editor;
    switch (key) {
        case VK_TAB:
            TabKey(key, lParam);
            return true;
        case VK_ESCAPE:
            if (m_panning || editor.Pressed()) {
                if (GetCapture() == m_hwnd) ReleaseCapture();
            }
            editor.Cancel();
            ShapesChanged();
            return true;
        case VK_RETURN:
            if (IsHeld(lParam)) return true;
            editor.StartOrEndNew(m_display.view.SeenPart());
            ShapesChanged();
            return true;
        case VK_DELETE:
            editor.DeleteSelected();
            ShapesChanged();
            return true;
        default:
            return ArrowKey(key, lParam) || ControlKey(key) || ScrollKey(key);
    }
}

bool FoliumWindow::ArrowKey(WPARAM key, LPARAM lParam) {
    const int32_t x = key == VK_LEFT ? -1 : key == VK_RIGHT ? 1 : 0;
    const int32_t y = key == VK_UP ? -1 : key == VK_DOWN ? 1 : 0;
    if (x == 0 && y == 0) return false;
    const RectEditor& editor = m_display.editor;
    const bool concerned = editor.MakingByKeys() || m_display.model.Primary() != 0;
    if (!editor.CanEdit() || !concerned) {
        const int step = m_display.view.Scaled(24);
        ScrollView(x * step, y * step);
        return true;
    }
    const Modifiers modifiers = ModifiersNow();
    const int32_t step = modifiers.shift ? kCoarseStep : kFineStep;
    m_display.editor.Nudge(x * step, y * step, modifiers.control, IsHeld(lParam));
    RevealPrimary();
    ShapesChanged();
    return true;
}

bool FoliumWindow::ControlKey(WPARAM key) {
    if (!ModifiersNow().control) return false;
    RectEditor& editor = m_display.editor;
    switch (key) {
        case 'A':
            editor.SelectAll();
            break;
        case 'Z':
            editor.Undo();
            RevealPrimary();
            break;
        case 'Y':
            editor.Redo();
            RevealPrimary();
            break;
        default:
            return false;
    }
    ShapesChanged();
    return true;
}

bool FoliumWindow::ScrollKey(WPARAM key) {
    const Viewport& view = m_display.view;
    const int64_t whole = int64_t{view.PageHeight()} + view.PageWidth();
    switch (key) {
        case VK_PRIOR:
            ScrollView(0, -view.ViewHeight() * 9 / 10);
            return true;
        case VK_NEXT:
            ScrollView(0, view.ViewHeight() * 9 / 10);
            return true;
        case VK_HOME:
            ScrollView(-whole, -whole);
            return true;
        case VK_END:
            ScrollView(whole, whole);
            return true;
        default:
            return false;
    }
}

// Only a container that asks nobody what keys are wanted lets Tab come here at the end of the walk.
void FoliumWindow::TabKey(WPARAM key, LPARAM lParam) {
    const bool back = ModifiersNow().shift;
    if (!m_display.editor.Walk(back)) {
        const MSG message = {m_hwnd, WM_KEYDOWN, key, lParam, 0, {}};
        if (m_owner == nullptr || m_owner->LeaveByTab(message)) return;
        const auto& items = m_display.model.Items();
        if (!items.empty() && !m_display.editor.Busy()) {
            m_display.model.Select(back ? items.back().id : items.front().id);
        }
    }
    RevealPrimary();
    ShapesChanged();
}

void FoliumWindow::RevealPrimary() {
    const auto& drafts = m_display.editor.Drafts();
    const Rect* rect = drafts.empty() ? m_display.model.Find(m_display.model.Primary()) : &drafts.front().now;
    if (rect != nullptr && m_display.view.Reveal(*rect)) ViewChanged();
}

}  // namespace folium
