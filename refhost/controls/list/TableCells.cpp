// Rows and cells of the list view, read and written by messages.
#include <algorithm>

#include "refhost/controls/list/TableWindow.h"

namespace listtable {
namespace {

constexpr size_t kFirstTextLength = 256;
constexpr size_t kLongestText = size_t{1} << 20;

LPARAM Pointer(const void* record) {
    return reinterpret_cast<LPARAM>(record);
}

}  // namespace

int Table::GetCurrentRow() const {
    const auto focused = static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
    if (focused >= 0) return focused;
    return static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

std::vector<int> Table::GetSelectedRows() const {
    std::vector<int> rows;
    for (int row = -1;;) {
        row = static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED));
        if (row < 0) return rows;
        rows.push_back(row);
    }
}

bool Table::IsSelected(int row) const {
    return Send(LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_SELECTED) != 0;
}

void Table::SetState(int row, UINT state, UINT mask) const {
    LVITEMW item = {};
    item.state = state;
    item.stateMask = mask;
    Send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), Pointer(&item));
}

LPARAM Table::GetData(int row) const {
    LVITEMW item = {};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    Send(LVM_GETITEMW, 0, Pointer(&item));
    return item.lParam;
}

void Table::SetData(int row, LPARAM data) const {
    LVITEMW item = {};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    item.lParam = data;
    Send(LVM_SETITEMW, 0, Pointer(&item));
}

std::wstring Table::GetText(int row, int column) const {
    for (std::wstring text(kFirstTextLength, L'\0');; text.resize(text.size() * 2)) {
        LVITEMW item = {};
        item.iSubItem = column;
        item.pszText = text.data();
        item.cchTextMax = static_cast<int>(text.size());
        const LRESULT sent = Send(LVM_GETITEMTEXTW, static_cast<WPARAM>(row), Pointer(&item));
        const auto length = static_cast<size_t>(std::max<LRESULT>(sent, 0));
        if (length + 1 < text.size() || text.size() >= kLongestText) return {item.pszText, length};
    }
}

void Table::SetText(int row, int column, const std::wstring& text) const {
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = const_cast<wchar_t*>(text.c_str());
    Send(LVM_SETITEMTEXTW, static_cast<WPARAM>(row), Pointer(&item));
}

RECT Table::GetRowRect(int row) const {
    RECT rect = {};
    rect.left = LVIR_BOUNDS;
    Send(LVM_GETITEMRECT, static_cast<WPARAM>(row), Pointer(&rect));
    return rect;
}

// The header knows the columns' places; the list view gives the whole row for the first one.
RECT Table::GetCellRect(int row, int column) const {
    RECT rect = GetRowRect(row);
    RECT title = {};
    SendMessageW(GetHeader(), HDM_GETITEMRECT, static_cast<WPARAM>(column), Pointer(&title));
    const LONG start = rect.left;
    rect.left = start + title.left;
    rect.right = start + title.right;
    return rect;
}

RECT Table::GetRowsArea() const {
    RECT area = {};
    GetClientRect(m_window, &area);
    RECT header = {};
    if (IsWindowVisible(GetHeader()) && GetWindowRect(GetHeader(), &header)) {
        area.top = std::min(area.top + header.bottom - header.top, area.bottom);
    }
    return area;
}

CellPosition Table::HitTest(POINT point) const {
    LVHITTESTINFO hit = {};
    hit.pt = point;
    if (Send(LVM_SUBITEMHITTEST, 0, Pointer(&hit)) < 0) return {};
    return {hit.iItem, hit.iSubItem};
}

// Pixels at the screen's scaling, for lengths meant at 100 %.
int Table::Scale(int pixels) const {
    const HDC screen = GetDC(m_window);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(m_window, screen);
    return MulDiv(pixels, dpi, USER_DEFAULT_SCREEN_DPI);
}

}  // namespace listtable
