// What the window shows and says anew after a change.
#include "refhost/folium/AccessibleView.h"
#include "refhost/folium/FoliumWindow.h"

namespace folium {

namespace {

// More parts than this between two paintings take longer to tell the window one by one than to paint all of it.
constexpr size_t kMostParts = 64;

}  // namespace

void FoliumWindow::Invalidate(const PixelRect& rect) {
    if (rect.Empty()) return;
    const RECT part = {rect.left, rect.top, rect.right, rect.bottom};
    InvalidateRect(m_hwnd, &part, FALSE);
}

void FoliumWindow::InvalidateAll() {
    InvalidateRect(m_hwnd, nullptr, FALSE);
    m_allInvalid = true;
}

void FoliumWindow::InvalidateShapes() {
    if (m_allInvalid) return;
    const Viewport& view = m_display.view;
    std::vector<Shape> shapes = CollectShapes(m_display.model, m_display.editor, view);
    const std::vector<Shape> changed = ChangedShapes(m_shapes, shapes);
    m_invalidParts += changed.size();
    if (m_invalidParts > kMostParts) {
        InvalidateAll();
    } else {
        for (const Shape& shape : changed) Invalidate(ShapeExtent(shape, view));
    }
    m_shapes = std::move(shapes);
}

void FoliumWindow::ShapesChanged() {
    if (m_hwnd == nullptr) return;
    InvalidateShapes();

    const Viewport& view = m_display.view;
    const PixelRect before = m_readout.Place();
    const auto& drafts = m_display.editor.Drafts();
    if (m_display.editor.Busy() && !drafts.empty()) {
        m_readout.Show(view, drafts.front().now, view.ToClient(drafts.front().now));
        Invalidate(m_readout.Place());
    } else {
        m_readout.Hide();
    }
    if (m_readout.Place() != before) Invalidate(before);
}

// Paints a part of the window in memory; false when there is nothing to show or no memory for it.
bool FoliumWindow::Compose(const RECT& part) {
    if (m_allInvalid) m_shapes = CollectShapes(m_display.model, m_display.editor, m_display.view);
    RECT client = {};
    GetClientRect(m_hwnd, &client);
    if (IsRectEmpty(&part) || !m_buffer.Resize(client.right, client.bottom)) return false;
    Surface surface = m_buffer.GetSurface().Clipped({part.left, part.top, part.right, part.bottom});
    m_display.Paint(surface, m_shapes, m_focus);
    m_readout.Paint(m_buffer.Dc());
    return true;
}

void FoliumWindow::Paint() {
    PAINTSTRUCT paint = {};
    const HDC dc = BeginPaint(m_hwnd, &paint);
    const RECT& part = paint.rcPaint;
    if (Compose(part)) {
        BitBlt(dc, part.left, part.top, part.right - part.left, part.bottom - part.top, m_buffer.Dc(), part.left,
               part.top, SRCCOPY);
        ++g_counts.paints;
    }
    EndPaint(m_hwnd, &paint);
    m_allInvalid = false;
    m_invalidParts = 0;
}

void FoliumWindow::PaintInto(HDC dc) {
    RECT client = {};
    GetClientRect(m_hwnd, &client);
    if (Compose(client)) BitBlt(dc, 0, 0, client.right, client.bottom, m_buffer.Dc(), 0, 0, SRCCOPY);
}

void FoliumWindow::Notify(const Event& event) {
    if (m_hwnd == nullptr || m_accessible == nullptr) return;
    const LONG child = AccessibleView::ChildOf(m_display.model, event.id);
    switch (event.kind) {
        case EventKind::Added:
            NotifyWinEvent(EVENT_OBJECT_CREATE, m_hwnd, OBJID_CLIENT, child);
            break;
        case EventKind::Deleted:
            NotifyWinEvent(EVENT_OBJECT_REORDER, m_hwnd, OBJID_CLIENT, CHILDID_SELF);
            break;
        case EventKind::Changed:
            NotifyWinEvent(EVENT_OBJECT_LOCATIONCHANGE, m_hwnd, OBJID_CLIENT, child);
            break;
        case EventKind::Selected:
            NotifyWinEvent(EVENT_OBJECT_SELECTION, m_hwnd, OBJID_CLIENT, child);
            if (m_focus) NotifyWinEvent(EVENT_OBJECT_FOCUS, m_hwnd, OBJID_CLIENT, child);
            break;
    }
}

}  // namespace folium
