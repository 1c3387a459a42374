#include "refhost/controls/list/TableWindow.h"

#include <windowsx.h>

#include <algorithm>

#include "refhost/controls/list/ParentHook.h"

namespace listtable {

bool Table::Attach(HWND parent) {
    return HookParent(parent, m_window, {kReflectDraw, kReflectMeasure, kReflectNotify});
}

LRESULT Table::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    if (m_closing) return CallBase(message, wParam, lParam);
    if (message == WM_DESTROY) {
        m_closing = true;
        m_dragged.clear();
        m_editor.Forget();
        UnhookParent(GetAncestor(m_window, GA_PARENT), m_window);
    } else if (HandleOwn(message, wParam, lParam, result) || HandleColumns(message, wParam, lParam, result) ||
               HandleEditor(message, wParam, lParam, result) || HandleReflected(message, lParam, result) ||
               HandleInput(message, wParam, lParam, result)) {
        return result;
    }
    result = HandleListView(message, wParam, lParam);
    if (m_editor.IsOpen() && !m_closing) FollowCell();
    return result;
}

bool Table::HandleOwn(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    switch (message) {
        case kMoveItems:
            result = MoveItems(*reinterpret_cast<const MoveOrder*>(lParam));
            return true;
        case kEditCell:
            result = BeginEdit(static_cast<int>(wParam), static_cast<int>(lParam));
            return true;
        case kEndEdit:
            result = EndEdit(wParam != FALSE);
            return true;
        case kGetEditedCell:
            result = m_editor.IsOpen();
            if (result) {
                const CellPosition cell = m_editor.GetCell();
                *reinterpret_cast<Cell*>(lParam) = {cell.row, cell.column};
            }
            return true;
        case kBeginEdit:
            BeginEdit(static_cast<int>(wParam), static_cast<int>(lParam));
            return true;
        case LVM_SETEXTENDEDLISTVIEWSTYLE:
            result = SetExtendedStyle(static_cast<DWORD>(wParam), static_cast<DWORD>(lParam));
            return true;
        case LVM_GETEXTENDEDLISTVIEWSTYLE:
            result = CallBase(message, wParam, lParam) | static_cast<LRESULT>(m_style);
            return true;
        default:
            return false;
    }
}

LRESULT Table::SetExtendedStyle(DWORD mask, DWORD styles) {
    constexpr DWORD kOwn = kExEditCells | kExMoveRows;
    const auto before = static_cast<LRESULT>(m_style);
    const DWORD changed = mask == 0 ? kOwn : mask & kOwn;
    m_style = (m_style & ~changed) | (styles & changed);
    // A mask of nothing would mean all styles.
    if (mask != 0 && (mask & ~kOwn) == 0) return before | CallBase(LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0);
    return before | CallBase(LVM_SETEXTENDEDLISTVIEWSTYLE, mask & ~kOwn, static_cast<LPARAM>(styles & ~kOwn));
}

// Whatever changes the rows or columns under an editor takes it along or ends it.
LRESULT Table::HandleListView(UINT message, WPARAM wParam, LPARAM lParam) {
    const int edited = m_editor.IsOpen() ? m_editor.GetCell().row : -1;
    switch (message) {
        case LVM_DELETEITEM:
            EndDrag(false);
            if (edited >= 0 && edited == static_cast<int>(wParam)) EndEdit(false);
            break;
        case LVM_DELETEALLITEMS:
        case LVM_SORTITEMS:
        case LVM_SORTITEMSEX:
        case LVM_DELETECOLUMN:
        case LVM_INSERTCOLUMNA:
        case LVM_INSERTCOLUMNW:
            EndDrag(false);
            EndEdit(false);
            break;
        case LVM_INSERTITEMA:
        case LVM_INSERTITEMW:
            EndDrag(false);
            break;
        default:
            break;
    }
    const LRESULT result = CallBase(message, wParam, lParam);
    switch (message) {
        case LVM_DELETEITEM:
            if (result && m_editor.IsOpen() && edited > static_cast<int>(wParam)) m_editor.ShiftRow(-1);
            break;
        case LVM_INSERTITEMA:
        case LVM_INSERTITEMW:
            if (result >= 0 && m_editor.IsOpen() && result <= edited) m_editor.ShiftRow(1);
            break;
        case LVM_INSERTCOLUMNA:
        case LVM_INSERTCOLUMNW:
            if (result >= 0)
                m_columns.insert(m_columns.begin() + std::min<LRESULT>(result, GetColumnCount()), Column());
            break;
        case LVM_DELETECOLUMN:
            if (result && wParam < m_columns.size())
                m_columns.erase(m_columns.begin() + static_cast<std::ptrdiff_t>(wParam));
            break;
        case WM_SIZE:
            FollowListWidth();
            break;
        case WM_SETFONT:
            MeasureAnew();
            break;
        case WM_PAINT:
            if (m_dropTarget >= 0) DrawMark();
            break;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            // The current cell's frame and the selection look otherwise with the focus.
            InvalidateRect(m_window, nullptr, FALSE);
            break;
        default:
            break;
    }
    return result;
}

bool Table::HandleReflected(UINT message, LPARAM lParam, LRESULT& result) {
    switch (message) {
        case kReflectDraw:
            DrawRow(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
            return true;
        case kReflectMeasure:
            Measure(*reinterpret_cast<MEASUREITEMSTRUCT*>(lParam));
            return true;
        case kReflectNotify: {
            const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
            if (header.code == NM_CLICK) OnClick();
            if (header.code == LVN_BEGINDRAG) StartDrag(reinterpret_cast<const NMLISTVIEW*>(lParam)->iItem);
            result = m_silent;
            return true;
        }
        default:
            return false;
    }
}

LRESULT Table::Notify(UINT code, NMHDR& header) const {
    header.hwndFrom = m_window;
    header.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(m_window));
    header.code = code;
    return SendMessageW(GetParent(m_window), WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
}

}  // namespace listtable
