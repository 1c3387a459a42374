#pragma once

#include "manage/PreviewLayout.h"
#include "win32/Wnd.h"

// Draws a miniature of an area set in system colours: areas that are kept stand out on a light page, areas that are
// ignored are holes in a page that stands out. Takes over a static control; its owner asks for every redraw.
class CPagePreviewCtrl final : public CStatic {
public:
    // False, and traced, when there is no such control.
    bool SubclassControl(UINT id, HWND parent);
    // The area's position, -1 when there is no memory for it.
    int AddRect(const RECT& area);
    void RemoveAllRects() { m_layout.RemoveAllRects(); }
    // Nonzero: the areas are ignored.
    void SetAreasIgnored(DWORD ignored) { m_layout.SetAreasIgnored(ignored != 0); }
    void SetPageSize(SIZE size) { m_layout.SetPageSize(size.cx, size.cy); }

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void OnPaint();
    void Draw(HDC dc) const;

    PreviewLayout m_layout;
};
