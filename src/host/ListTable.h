#pragma once
// The list control of the host controls library: a window class over the system's list view in report style, which the
// library registers for the process while it is loaded. Everything of a list view works on it (items, columns, states,
// notifications); here stands what it has beyond that: cells that are edited in place, rows that are moved by the user,
// and column widths as a text. Messages are sent from the window's thread.
//
// It draws its rows itself: give it LVS_REPORT | LVS_OWNERDRAWFIXED. WM_DRAWITEM and WM_MEASUREITEM need no answer of
// the parent.

#include <windows.h>

#include <commctrl.h>

#include <cstddef>
#include <cstdint>

namespace listtable {

inline constexpr wchar_t kClassName[] = L"HostListTable";

// Styles set by LVM_SETEXTENDEDLISTVIEWSTYLE beside those of the list view.
inline constexpr DWORD kExEditCells = 0x08000000;  // F2, Enter or a second click on the selected cell edits it
inline constexpr DWORD kExMoveRows = 0x10000000;   // rows move by dragging and by Alt+Up and Alt+Down

// How the cells of a column are edited. Any other kind is shown only.
inline constexpr DWORD kKindText = 0x201;   // a line of text
inline constexpr DWORD kKindChoice = 0x12;  // one of the column's choices

// --- Notifications (WM_NOTIFY) ---------------------------------------------------------------------------------------

// NMLISTVIEW with iItem, iSubItem and the item's lParam: the user gave a cell another text, which already stands in it.
// The result is ignored.
inline constexpr UINT kCellEdited = static_cast<UINT>(-198);

// MoveRecord: the user moved rows. Nothing has changed yet; a receiver that agrees hands target, count and rows on to
// kMoveItems as they are. The result is ignored.
inline constexpr UINT kItemsMoved = static_cast<UINT>(-197);

struct MoveRecord {
    NMHDR hdr;
    int32_t target;   // the rows come before the row that now stands here; the number of rows is the end
    int32_t count;    // of rows
    int32_t rows[1];  // `count` of them, in the order that they get
};
static_assert(sizeof(NMHDR) == 24 && offsetof(MoveRecord, target) == 24 && offsetof(MoveRecord, rows) == 32);

// --- Messages --------------------------------------------------------------------------------------------------------

enum Message : UINT {
    // wParam: column, lParam: const ColumnRecord*. Returns the new column's position, or -1.
    kInsertColumn = WM_USER + 0x300,
    // wParam: column. Returns its kind; 0 when there is no such column.
    kGetColumnKind,
    // wParam: column, lParam: the text, copied. Adds a choice to the end. Returns its position, or -1.
    kAddChoice,
    // wParam: column. Removes all choices.
    kResetChoices,
    // wParam: column. Returns the number of choices.
    kGetChoiceCount,
    // wParam: column, lParam: TextRecord*, with `index` the choice. Returns as TextRecord says.
    kGetChoice,
    // lParam: const MoveOrder*. Moves rows with their texts, data and states, and without a notification. Returns
    // FALSE,
    // with nothing changed, for positions that are not there or stand twice.
    kMoveItems,
    // lParam: the widths of the columns as a text: "90,120" in pixels, "[%]250,750" in thousandths of the list's width,
    // which the columns then follow when the list gets another width. Columns without a number keep their width,
    // numbers
    // without a column are ignored. Returns FALSE, with nothing changed, for anything else.
    kSetColumnWidths,
    // wParam: 1 for thousandths, 0 for pixels, lParam: TextRecord*. The text that kSetColumnWidths takes.
    kGetColumnWidths,
    // wParam: row, lParam: column. Starts editing the cell. Returns FALSE when it cannot be edited.
    kEditCell,
    // wParam: TRUE keeps what was typed (and notifies), FALSE drops it. Returns whether a cell was being edited.
    kEndEdit,
    // lParam: Cell*, filled with the cell being edited. Returns FALSE when there is none.
    kGetEditedCell,
};

struct ColumnRecord {
    const LVCOLUMNW* column;
    DWORD kind;
    LPARAM reserved1;  // 0
    LPARAM reserved2;  // 0
};

// A text that the list hands out: up to `size` characters with the final NUL, cut where they do not suffice. The
// message returns the length of the whole text without the NUL, or -1 when there is none.
struct TextRecord {
    wchar_t* text;
    int32_t size;
    int32_t index;
};

struct MoveOrder {
    int32_t target;
    int32_t count;
    const int32_t* rows;
};

struct Cell {
    int32_t row;
    int32_t column;
};

}  // namespace listtable
