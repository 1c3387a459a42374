// How rows look: as the system's lists do, in the user's colours, with a frame around the current cell.
#include <algorithm>

#include "refhost/controls/list/TableWindow.h"

namespace listtable {
namespace {

constexpr int kShownText = 260;
constexpr int kCellMargin = 4;  // at 100 %

struct RowColours {
    int background;
    int text;
};

RowColours GetColours(bool enabled, bool selected, bool focused) {
    if (!enabled) return {COLOR_BTNFACE, COLOR_GRAYTEXT};
    if (!selected) return {COLOR_WINDOW, COLOR_WINDOWTEXT};
    return focused ? RowColours{COLOR_HIGHLIGHT, COLOR_HIGHLIGHTTEXT} : RowColours{COLOR_BTNFACE, COLOR_BTNTEXT};
}

UINT GetAlignment(int format) {
    if ((format & LVCFMT_JUSTIFYMASK) == LVCFMT_RIGHT) return DT_RIGHT;
    return (format & LVCFMT_JUSTIFYMASK) == LVCFMT_CENTER ? DT_CENTER : DT_LEFT;
}

}  // namespace

// Room for the text and for the frame of an edit control around it. The first measuring comes before the list has its
// font; its dialog has it already.
void Table::Measure(MEASUREITEMSTRUCT& item) const {
    auto font = reinterpret_cast<HGDIOBJ>(CallBase(WM_GETFONT, 0, 0));
    if (font == nullptr)
        font = reinterpret_cast<HGDIOBJ>(SendMessageW(GetAncestor(m_window, GA_PARENT), WM_GETFONT, 0, 0));
    if (font == nullptr) font = GetStockObject(DEFAULT_GUI_FONT);
    const HDC dc = GetDC(m_window);
    const HGDIOBJ before = SelectObject(dc, font);
    TEXTMETRICW metric = {};
    GetTextMetricsW(dc, &metric);
    SelectObject(dc, before);
    ReleaseDC(m_window, dc);
    item.itemHeight = static_cast<UINT>(metric.tmHeight + 2 * std::max(2L, metric.tmHeight / 6));
}

// The list view asks for the height of its rows when it is placed, and not when it gets another font.
void Table::MeasureAnew() const {
    RECT rect = {};
    GetWindowRect(m_window, &rect);
    WINDOWPOS place = {};
    place.hwnd = m_window;
    place.cx = static_cast<int>(rect.right - rect.left);
    place.cy = static_cast<int>(rect.bottom - rect.top);
    place.flags = SWP_NOACTIVATE | SWP_NOMOVE | SWP_NOOWNERZORDER | SWP_NOZORDER;
    CallBase(WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&place));
}

void Table::DrawRow(const DRAWITEMSTRUCT& item) const {
    const auto row = static_cast<int>(item.itemID);
    if (row < 0) return;
    const HWND focus = GetFocus();
    const bool focused = focus != nullptr && (focus == m_window || IsChild(m_window, focus));
    const RowColours colours = GetColours(IsWindowEnabled(m_window) != FALSE, IsSelected(row), focused);
    const int saved = SaveDC(item.hDC);
    FillRect(item.hDC, &item.rcItem, GetSysColorBrush(colours.background));
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, GetSysColor(colours.text));

    const int margin = Scale(kCellMargin);
    for (int column = 0; column < GetColumnCount(); ++column) {
        const RECT cell = GetCellRect(row, column);
        wchar_t text[kShownText] = L"";
        LVITEMW record = {};
        record.iSubItem = column;
        record.pszText = text;
        record.cchTextMax = kShownText;
        Send(LVM_GETITEMTEXTW, item.itemID, reinterpret_cast<LPARAM>(&record));
        LVCOLUMNW format = {};
        format.mask = LVCF_FMT;
        Send(LVM_GETCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&format));
        RECT inner = {cell.left + margin, cell.top, std::max(cell.right - margin, cell.left + margin), cell.bottom};
        DrawTextW(item.hDC, record.pszText, -1, &inner,
                  DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS | GetAlignment(format.fmt));
    }
    if (focused && row == GetCurrentRow() && m_currentColumn < GetColumnCount()) {
        // Only inside the item: what lies beyond it is not repainted with it.
        RECT cell = GetCellRect(row, m_currentColumn);
        IntersectRect(&cell, &cell, &item.rcItem);
        // The frame is drawn by inverting; black on white makes it show on every background.
        SetBkColor(item.hDC, RGB(255, 255, 255));
        SetTextColor(item.hDC, RGB(0, 0, 0));
        DrawFocusRect(item.hDC, &cell);
    }
    RestoreDC(item.hDC, saved);
}

// A line between two rows with a foot at each end, where dragged rows would go.
void Table::DrawMark() const {
    const RECT mark = GetMarkRect(m_dropTarget);
    const HBRUSH brush = GetSysColorBrush(COLOR_WINDOWTEXT);
    const LONG thickness = Scale(2);
    const LONG middle = (mark.top + mark.bottom) / 2;
    const RECT parts[] = {{mark.left, middle - thickness / 2, mark.right, middle - thickness / 2 + thickness},
                          {mark.left, mark.top, mark.left + thickness, mark.bottom},
                          {mark.right - thickness, mark.top, mark.right, mark.bottom}};
    const HDC dc = GetDC(m_window);
    for (const RECT& part : parts) FillRect(dc, &part, brush);
    ReleaseDC(m_window, dc);
}

}  // namespace listtable
