// Editing a cell: how it starts, where it goes on, and how it ends.
#include <algorithm>

#include "refhost/controls/list/TableWindow.h"

namespace listtable {

bool Table::CanEdit(int row, int column) const {
    if ((m_style & kExEditCells) == 0 || row < 0 || row >= GetRowCount() || column < 0 || column >= GetColumnCount()) {
        return false;
    }
    const DWORD kind = m_columns[static_cast<size_t>(column)].kind;
    return (kind == kKindText || kind == kKindChoice) && IsWindowEnabled(m_window);
}

bool Table::BeginEdit(int row, int column) {
    EndEdit(true);
    if (m_closing || IsDragging() || !CanEdit(row, column)) return false;
    if (!IsSelected(row)) SetState(-1, 0, LVIS_SELECTED);
    SetState(row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    SetCurrentColumn(column);
    ShowColumn(column);
    // The parent was told of the selection and may have changed the rows.
    if (m_closing || !CanEdit(row, column)) return false;

    const Column& edited = m_columns[static_cast<size_t>(column)];
    EditorContent content;
    content.cell = {row, column};
    content.text = GetText(row, column);
    content.choices = edited.kind == kKindChoice ? &edited.choices : nullptr;
    content.label = GetTitle(column) + L" " + std::to_wstring(row + 1);
    content.rect = GetCellRect(row, column);
    if (!m_editor.Open(m_window, content)) return false;
    FollowCell();
    if (content.choices != nullptr) SendMessageW(m_editor.GetWindow(), CB_SHOWDROPDOWN, TRUE, 0);
    return true;
}

bool Table::EndEdit(bool keep) {
    if (!m_editor.IsOpen()) return false;
    const CellPosition cell = m_editor.GetCell();
    const std::wstring text = m_editor.GetText();
    const bool changed = keep && m_editor.IsChanged();
    m_editor.Close();
    if (!changed || cell.row >= GetRowCount()) return true;
    SetText(cell.row, cell.column, text);
    NMLISTVIEW record = {};
    record.iItem = cell.row;
    record.iSubItem = cell.column;
    record.uChanged = LVIF_TEXT;
    record.lParam = GetData(cell.row);
    Notify(kCellEdited, record.hdr);
    return true;
}

void Table::EditNext(bool forward) {
    std::vector<int> editable = GetShownOrder();
    const CellPosition cell = m_editor.GetCell();
    std::erase_if(editable, [&](int column) { return !CanEdit(cell.row, column); });
    EndEdit(true);
    // The parent may have ended up elsewhere, with a message box or a window of its own.
    if (m_closing || GetFocus() != m_window) return;
    if (const auto next = GetNeighbourCell(cell, editable, GetRowCount(), forward)) {
        BeginEdit(next->row, next->column);
    } else {
        PostMessageW(GetParent(m_window), WM_NEXTDLGCTL, !forward, FALSE);
    }
}

void Table::EditCurrent() {
    const int row = GetCurrentRow();
    if (CanEdit(row, m_currentColumn)) {
        BeginEdit(row, m_currentColumn);
        return;
    }
    for (const int column : GetShownOrder()) {
        if (!CanEdit(row, column)) continue;
        BeginEdit(row, column);
        return;
    }
}

// Keeps the editor on its cell; one whose cell is scrolled out of sight is done.
void Table::FollowCell() {
    if (m_following) return;
    const FlagScope following(m_following);
    const CellPosition cell = m_editor.GetCell();
    RECT rect = GetCellRect(cell.row, cell.column);
    const RECT area = GetRowsArea();
    rect.left = std::max(rect.left, area.left);
    rect.right = std::min(rect.right, area.right);
    const bool rowShown = rect.top >= area.top && rect.top < area.bottom;
    if (rowShown && rect.left < rect.right) {
        m_editor.Place(rect);
    } else {
        SetFocus(m_window);
        PostMessageW(m_window, kEditorLeft, m_editor.GetSerial(), 0);
    }
}

void Table::SetCurrentColumn(int column) {
    if (column == m_currentColumn) return;
    m_currentColumn = column;
    const int row = GetCurrentRow();
    if (row >= 0) Send(LVM_REDRAWITEMS, static_cast<WPARAM>(row), row);
}

void Table::MoveCurrentColumn(int step) {
    const std::vector<int> order = GetShownOrder();
    const auto here = std::find(order.begin(), order.end(), m_currentColumn);
    const auto place = here - order.begin() + step;
    if (here == order.end() || place < 0 || place >= static_cast<std::ptrdiff_t>(order.size())) return;
    SetCurrentColumn(order[static_cast<size_t>(place)]);
    ShowColumn(m_currentColumn);
}

void Table::ShowColumn(int column) const {
    const RECT area = GetRowsArea();
    const RECT rect = GetCellRect(std::max(GetCurrentRow(), 0), column);
    LONG step = 0;
    if (rect.right > area.right) step = rect.right - area.right;
    if (rect.left - step < area.left) step = rect.left - area.left;
    if (step != 0) Send(LVM_SCROLL, static_cast<WPARAM>(step), 0);
}

bool Table::HandleEditor(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    result = 0;
    switch (message) {
        case kEditorKey:
            if (m_editor.IsOpen()) OnEditorKey(wParam, lParam != 0);
            return true;
        case kEditorLeft:
            if (wParam == m_editor.GetSerial() && m_editor.IsOpen() && GetFocus() != m_editor.GetWindow()) {
                EndEdit(true);
            }
            return true;
        case kEditorChosen:
            if (wParam == m_editor.GetSerial()) EndEdit(true);
            return true;
        case WM_COMMAND:
            if (!m_editor.IsOpen() || reinterpret_cast<HWND>(lParam) != m_editor.GetWindow()) return false;
            m_editor.OnCommand(HIWORD(wParam));
            return true;
        default:
            return false;
    }
}

void Table::OnEditorKey(WPARAM key, bool shift) {
    if (key == VK_TAB) {
        EditNext(!shift);
    } else {
        EndEdit(key == VK_RETURN);
    }
}

}  // namespace listtable
