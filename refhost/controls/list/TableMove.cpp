// Moving rows: by dragging, by keys, and by order of the parent.
#include <algorithm>
#include <cstddef>
#include <utility>

#include "refhost/controls/list/TableWindow.h"

namespace listtable {
namespace {

constexpr UINT kDragStep = 60;  // milliseconds from row to row while the pointer is beyond the rows

int CALLBACK CompareKeys(LPARAM first, LPARAM second, LPARAM) {
    return first < second ? -1 : static_cast<int>(first > second);
}

}  // namespace

// The list view sorts its rows by a key, which stands in their data for the time being.
bool Table::MoveItems(const MoveOrder& order) {
    EndDrag(false);
    EndEdit(true);
    if (m_closing || order.count < 0 || (order.count > 0 && order.rows == nullptr)) return false;
    const std::vector<int> rows(order.rows, order.rows + order.count);
    const auto moved = GetMovedOrder(GetRowCount(), order.target, rows);
    if (!moved) return false;

    const int focused = static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
    std::vector<LPARAM> data;
    data.reserve(moved->size());
    for (const int row : *moved) data.push_back(GetData(row));
    {
        const FlagScope silent(m_silent);
        SendMessageW(m_window, WM_SETREDRAW, FALSE, 0);
        for (size_t place = 0; place < moved->size(); ++place) SetData((*moved)[place], static_cast<LPARAM>(place));
        CallBase(LVM_SORTITEMS, 0, reinterpret_cast<LPARAM>(CompareKeys));
        for (size_t place = 0; place < moved->size(); ++place) SetData(static_cast<int>(place), data[place]);
        if (focused >= 0) {
            const auto place = static_cast<int>(std::find(moved->begin(), moved->end(), focused) - moved->begin());
            SetState(place, LVIS_FOCUSED, LVIS_FOCUSED);
            Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(place), FALSE);
        }
        SendMessageW(m_window, WM_SETREDRAW, TRUE, 0);
    }
    InvalidateRect(m_window, nullptr, TRUE);
    NotifyWinEvent(EVENT_OBJECT_REORDER, m_window, OBJID_CLIENT, CHILDID_SELF);
    return true;
}

void Table::RequestMove(int target, const std::vector<int>& rows) {
    const auto order = GetMovedOrder(GetRowCount(), target, rows);
    if (!order || std::is_sorted(order->begin(), order->end())) return;
    std::vector<std::byte> memory(sizeof(MoveRecord) + rows.size() * sizeof(int32_t));
    auto& record = *reinterpret_cast<MoveRecord*>(memory.data());
    record.target = target;
    record.count = static_cast<int32_t>(rows.size());
    std::copy(rows.begin(), rows.end(), record.rows);
    Notify(kItemsMoved, record.hdr);
}

void Table::MoveSelected(bool up) {
    if ((m_style & kExMoveRows) == 0 || IsDragging()) return;
    const std::vector<int> rows = GetSelectedRows();
    if (const auto target = GetNeighbourTarget(GetRowCount(), rows, up)) RequestMove(*target, rows);
}

void Table::StartDrag(int row) {
    m_clickEdits = false;
    if ((m_style & kExMoveRows) == 0 || row < 0 || m_editor.IsOpen()) return;
    m_dragged = IsSelected(row) ? GetSelectedRows() : std::vector{row};
    SetCapture(m_window);
    SetTimer(m_window, kDragTimer, kDragStep, nullptr);
}

void Table::Drag(POINT point) {
    const RECT area = GetRowsArea();
    const bool over = point.x >= area.left && point.x < area.right;
    SetDropTarget(over ? GetDropTarget(point) : -1);
    SetCursor(LoadCursorW(nullptr, over ? IDC_SIZENS : IDC_NO));
}

void Table::ScrollDrag() {
    POINT point = {};
    GetCursorPos(&point);
    ScreenToClient(m_window, &point);
    const RECT area = GetRowsArea();
    if (point.y >= area.top && point.y < area.bottom) return;
    const RECT row = GetRowRect(0);
    const int step = static_cast<int>(row.bottom - row.top);
    SetDropTarget(-1);
    Send(LVM_SCROLL, 0, point.y < area.top ? -step : step);
    UpdateWindow(m_window);
    Drag(point);
}

void Table::EndDrag(bool drop) {
    if (!IsDragging()) return;
    const int target = m_dropTarget;
    SetDropTarget(-1);
    const std::vector<int> rows = std::exchange(m_dragged, {});
    KillTimer(m_window, kDragTimer);
    if (GetCapture() == m_window) ReleaseCapture();
    if (drop && target >= 0) RequestMove(target, rows);
}

// The row before which the pointer stands: the boundary nearest to it.
int Table::GetDropTarget(POINT point) const {
    const int count = GetRowCount();
    const auto top = static_cast<int>(Send(LVM_GETTOPINDEX));
    const RECT area = GetRowsArea();
    const RECT first = GetRowRect(top);
    const LONG height = std::max<LONG>(first.bottom - first.top, 1);
    const LONG y = std::clamp(point.y, area.top, area.bottom);
    return std::clamp(top + static_cast<int>((y - first.top + height / 2) / height), 0, count);
}

void Table::SetDropTarget(int target) {
    if (target == m_dropTarget) return;
    for (const int changed : {std::exchange(m_dropTarget, target), target}) {
        if (changed < 0) continue;
        const RECT mark = GetMarkRect(changed);
        InvalidateRect(m_window, &mark, TRUE);
    }
    UpdateWindow(m_window);
}

RECT Table::GetMarkRect(int target) const {
    const RECT area = GetRowsArea();
    const int count = GetRowCount();
    const LONG y = target < count ? GetRowRect(target).top : GetRowRect(count - 1).bottom;
    const LONG half = Scale(3);
    return {area.left, std::max(y - half, area.top), area.right, std::min(y + half, area.bottom)};
}

}  // namespace listtable
