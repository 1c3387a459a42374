#include "manage/PagePreviewCtrl.h"

#include <new>

#include "trace/Trace.h"
#include "win32/Gdi.h"

namespace {

constexpr const char* kSource = "PagePreviewCtrl";

HBRUSH BrushOf(PreviewColor color) {
    switch (color) {
        case PreviewColor::kWindow:
            return GetSysColorBrush(COLOR_WINDOW);
        case PreviewColor::kHighlight:
            return GetSysColorBrush(COLOR_HIGHLIGHT);
        case PreviewColor::kFace:
            break;
    }
    return GetSysColorBrush(COLOR_BTNFACE);
}

}  // namespace

bool CPagePreviewCtrl::SubclassControl(UINT id, HWND parent) {
    if (!SubclassDlgItem(id, parent)) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__,
                         L"CPagePreviewCtrl::SubclassControl: SubclassDlgItem failed.");
        return false;
    }
    const RECT client = GetClientRect();
    m_layout.SetClient({client.left, client.top, client.right, client.bottom});
    return true;
}

int CPagePreviewCtrl::AddRect(const RECT& area) {
    try {
        return m_layout.AddRect({area.left, area.top, area.right, area.bottom});
    } catch (const std::bad_alloc&) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__, L"CPagePreviewCtrl::AddRect: Out of memory.");
        return -1;
    }
}

LRESULT CPagePreviewCtrl::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_PAINT:
            OnPaint();
            return 0;
        case WM_ERASEBKGND:
            return TRUE;  // the paint covers everything
        case WM_PRINTCLIENT:
            Draw(reinterpret_cast<HDC>(wParam));
            return 0;
        default:
            return CStatic::WindowProc(message, wParam, lParam);
    }
}

void CPagePreviewCtrl::OnPaint() {
    const win32::PaintDC paint(GetSafeHwnd());
    const win32::BufferedDC buffer(paint.Get(), GetClientRect());
    Draw(buffer.Get());
}

void CPagePreviewCtrl::Draw(HDC dc) const {
    for (const PreviewShape& shape : m_layout.GetShapes()) {
        const RECT rect = {shape.rect.left, shape.rect.top, shape.rect.right, shape.rect.bottom};
        FillRect(dc, &rect, BrushOf(shape.color));
    }
}
