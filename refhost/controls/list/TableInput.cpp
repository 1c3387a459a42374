// Keys and mouse in the list itself.
#include <windowsx.h>

#include "refhost/controls/list/TableWindow.h"

namespace listtable {

// A click on the cell that is selected already edits it, once it is clear that no dragging begins.
void Table::OnButtonDown(POINT point) {
    const CellPosition cell = HitTest(point);
    m_clickEdits = cell.row >= 0 && GetFocus() == m_window && IsSelected(cell.row) && cell.row == GetCurrentRow() &&
                   cell.column == m_currentColumn && CanEdit(cell.row, cell.column);
    if (cell.row >= 0) SetCurrentColumn(cell.column);
}

void Table::OnClick() {
    if (!m_clickEdits) return;
    m_clickEdits = false;
    PostMessageW(m_window, kBeginEdit, static_cast<WPARAM>(GetCurrentRow()), m_currentColumn);
}

// Returns whether the key is used up.
bool Table::OnKeyDown(WPARAM key) {
    if (key == VK_ESCAPE && IsDragging()) {
        EndDrag(false);
        return true;
    }
    if ((m_style & kExEditCells) == 0 || GetKeyState(VK_CONTROL) < 0 || GetKeyState(VK_SHIFT) < 0) return false;
    switch (key) {
        case VK_F2:
        case VK_RETURN:
            EditCurrent();
            return true;
        case VK_LEFT:
        case VK_RIGHT:
            MoveCurrentColumn(key == VK_LEFT ? -1 : 1);
            return true;
        default:
            return false;
    }
}

bool Table::HandleInput(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    const POINT point = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    result = 0;
    switch (message) {
        case WM_GETDLGCODE: {
            const auto* key = reinterpret_cast<const MSG*>(lParam);
            result = CallBase(message, wParam, lParam);
            if (key == nullptr || key->message != WM_KEYDOWN) return true;
            const bool edits = key->wParam == VK_RETURN && (m_style & kExEditCells) != 0 && GetCurrentRow() >= 0;
            if (edits || (key->wParam == VK_ESCAPE && IsDragging())) result |= DLGC_WANTMESSAGE;
            return true;
        }
        case WM_KEYDOWN:
            return OnKeyDown(wParam);
        case WM_SYSKEYDOWN:
            if (wParam == VK_UP || wParam == VK_DOWN) MoveSelected(wParam == VK_UP);
            // The system has to see the key, or releasing Alt opens the menu.
            return false;
        case WM_LBUTTONDOWN:
            OnButtonDown(point);
            return false;
        case WM_LBUTTONDBLCLK: {
            const CellPosition cell = HitTest(point);
            if (!CanEdit(cell.row, cell.column)) return false;
            PostMessageW(m_window, kBeginEdit, static_cast<WPARAM>(cell.row), cell.column);
            return true;
        }
        case WM_MOUSEMOVE:
            if (IsDragging()) Drag(point);
            return IsDragging();
        case WM_TIMER:
            if (wParam != kDragTimer || !IsDragging()) return false;
            ScrollDrag();
            return true;
        case WM_LBUTTONUP:
        case WM_RBUTTONDOWN:
        case WM_CAPTURECHANGED:
            if (!IsDragging()) return false;
            EndDrag(message == WM_LBUTTONUP);
            return true;
        default:
            return false;
    }
}

}  // namespace listtable
