#include <new>

#include "win32/Wnd.h"

namespace {

constexpr size_t kFirstTextLength = 256;
constexpr size_t kLongestText = size_t{1} << 20;

// The list only reads the text of an item that is set, but takes it as writable.
wchar_t* Writable(const std::wstring& text) {
    return const_cast<wchar_t*>(text.c_str());
}

LPARAM Pointer(const void* record) {
    return reinterpret_cast<LPARAM>(record);
}

}  // namespace

void CListCtrl::InsertColumn(int column, const std::wstring& title, int width, int format) {
    LVCOLUMNW record = {};
    record.mask = LVCF_FMT | LVCF_TEXT | LVCF_WIDTH;
    record.fmt = format;
    record.cx = width;
    record.pszText = Writable(title);
    if (SendMessage(LVM_INSERTCOLUMNW, static_cast<WPARAM>(column), Pointer(&record)) < 0) throw std::bad_alloc();
}

void CListCtrl::SetColumnWidth(int column, int width) {
    SendMessage(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column), MAKELPARAM(width, 0));
}

int CListCtrl::GetColumnWidth(int column) const {
    return static_cast<int>(SendMessage(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)));
}

int CListCtrl::InsertItem(int item, const std::wstring& text, LPARAM data) {
    LVITEMW record = {};
    record.mask = LVIF_TEXT | LVIF_PARAM;
    record.iItem = item;
    record.pszText = Writable(text);
    record.lParam = data;
    const auto position = static_cast<int>(SendMessage(LVM_INSERTITEMW, 0, Pointer(&record)));
    if (position < 0) throw std::bad_alloc();
    return position;
}

std::wstring CListCtrl::GetItemText(int item, int column) const {
    for (std::wstring text(kFirstTextLength, L'\0');; text.resize(text.size() * 2)) {
        LVITEMW record = {};
        record.iSubItem = column;
        record.pszText = text.data();
        record.cchTextMax = static_cast<int>(text.size());
        const auto length =
            static_cast<size_t>(SendMessage(LVM_GETITEMTEXTW, static_cast<WPARAM>(item), Pointer(&record)));
        if (length + 1 < text.size() || text.size() >= kLongestText) {
            // The list may have put its own pointer there.
            return {record.pszText, length};
        }
    }
}

void CListCtrl::SetItemText(int item, int column, const std::wstring& text) {
    LVITEMW record = {};
    record.iSubItem = column;
    record.pszText = Writable(text);
    SendMessage(LVM_SETITEMTEXTW, static_cast<WPARAM>(item), Pointer(&record));
}

LPARAM CListCtrl::GetItemData(int item) const {
    LVITEMW record = {};
    record.mask = LVIF_PARAM;
    record.iItem = item;
    SendMessage(LVM_GETITEMW, 0, Pointer(&record));
    return record.lParam;
}

void CListCtrl::SetItemData(int item, LPARAM data) {
    LVITEMW record = {};
    record.mask = LVIF_PARAM;
    record.iItem = item;
    record.lParam = data;
    SendMessage(LVM_SETITEMW, 0, Pointer(&record));
}

void CListCtrl::SetItemState(int item, UINT state, UINT mask) {
    LVITEMW record = {};
    record.state = state;
    record.stateMask = mask;
    SendMessage(LVM_SETITEMSTATE, static_cast<WPARAM>(item), Pointer(&record));
}

int CListCtrl::GetNextItem(int item, UINT state) const {
    return static_cast<int>(SendMessage(LVM_GETNEXTITEM, static_cast<WPARAM>(item), MAKELPARAM(state, 0)));
}

int CListCtrl::GetStringWidth(const std::wstring& text) const {
    return static_cast<int>(SendMessage(LVM_GETSTRINGWIDTHW, 0, Pointer(text.c_str())));
}

HWND CListCtrl::EditLabel(int item) {
    return reinterpret_cast<HWND>(SendMessage(LVM_EDITLABELW, static_cast<WPARAM>(item)));
}
