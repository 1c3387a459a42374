#include "configure/ListTableCtrl.h"

#include <algorithm>
#include <new>

namespace {

LPARAM Pointer(const void* record) {
    return reinterpret_cast<LPARAM>(record);
}

int Require(LRESULT position) {
    if (position < 0) throw std::bad_alloc();
    return static_cast<int>(position);
}

// A text that the list hands out: asked for its length first.
std::wstring GetText(HWND list, UINT message, WPARAM wParam, int index) {
    listtable::TextRecord record = {nullptr, 0, index};
    const LRESULT length = ::SendMessageW(list, message, wParam, Pointer(&record));
    std::wstring text(static_cast<size_t>(std::max<LRESULT>(length, 0)), L'\0');
    if (text.empty()) return text;
    record.text = text.data();
    record.size = static_cast<int32_t>(text.size()) + 1;
    ::SendMessageW(list, message, wParam, Pointer(&record));
    return text;
}

}  // namespace

DWORD CColumnInfo::GetKind() const {
    return static_cast<DWORD>(::SendMessageW(m_list, listtable::kGetColumnKind, static_cast<WPARAM>(m_column), 0));
}

int CColumnInfo::GetChoiceCount() const {
    return static_cast<int>(::SendMessageW(m_list, listtable::kGetChoiceCount, static_cast<WPARAM>(m_column), 0));
}

std::wstring CColumnInfo::GetChoice(int choice) const {
    return GetText(m_list, listtable::kGetChoice, static_cast<WPARAM>(m_column), choice);
}

void CColumnInfo::AddChoice(const std::wstring& text) {
    Require(::SendMessageW(m_list, listtable::kAddChoice, static_cast<WPARAM>(m_column), Pointer(text.c_str())));
}

void CColumnInfo::RemoveAllChoices() {
    ::SendMessageW(m_list, listtable::kResetChoices, static_cast<WPARAM>(m_column), 0);
}

int CListTableCtrl::InsertItem(const LVITEMW& item) {
    return Require(SendMessage(LVM_INSERTITEMW, 0, Pointer(&item)));
}

int CListTableCtrl::AddColumn(const LVCOLUMNW& column, DWORD kind, LPARAM reserved1, LPARAM reserved2) {
    const auto header = reinterpret_cast<HWND>(SendMessage(LVM_GETHEADER));
    const LRESULT count = ::SendMessageW(header, HDM_GETITEMCOUNT, 0, 0);
    const listtable::ColumnRecord record = {&column, kind, reserved1, reserved2};
    return Require(
        SendMessage(listtable::kInsertColumn, static_cast<WPARAM>(std::max<LRESULT>(count, 0)), Pointer(&record)));
}

void CListTableCtrl::SetItem(const LVITEMW& item) {
    SendMessage(LVM_SETITEMW, 0, Pointer(&item));
}

bool CListTableCtrl::MoveItems(int target, int count, const int32_t* rows) {
    const listtable::MoveOrder order = {target, count, rows};
    return SendMessage(listtable::kMoveItems, 0, Pointer(&order)) != FALSE;
}

bool CListTableCtrl::SetColumnWidths(const std::wstring& widths) {
    return SendMessage(listtable::kSetColumnWidths, 0, Pointer(widths.c_str())) != FALSE;
}

std::wstring CListTableCtrl::GetColumnWidths(DWORD flags) const {
    return GetText(GetSafeHwnd(), listtable::kGetColumnWidths, flags, 0);
}

bool CListTableCtrl::EditCell(int row, int column) {
    return SendMessage(listtable::kEditCell, static_cast<WPARAM>(row), column) != FALSE;
}

bool CListTableCtrl::EndEdit(bool keep) {
    return SendMessage(listtable::kEndEdit, keep ? TRUE : FALSE) != FALSE;
}
