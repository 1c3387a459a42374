#pragma once
// The host's list control as the module sees it: a list view with cells that are edited in place and rows that the user
// moves. The window belongs to a class of the host controls library (host/ListTable.h).

#include <string>

#include "host/ListTable.h"
#include "win32/Wnd.h"

// A column of a list: what its cells can be given. Looks at the list, which lives longer.
class CColumnInfo {
public:
    CColumnInfo(HWND list, int column) : m_list(list), m_column(column) {}

    DWORD GetKind() const;
    int GetChoiceCount() const;
    std::wstring GetChoice(int choice) const;  // empty when there is none
    void AddChoice(const std::wstring& text);
    void RemoveAllChoices();

private:
    HWND m_list;
    int m_column;
};

class CListTableCtrl : public CListCtrl {
public:
    using CListCtrl::InsertItem;
    // The new item's position.
    int InsertItem(const LVITEMW& item);

    // Adds a column to the end; returns its position. The last two arguments are 0.
    virtual int AddColumn(const LVCOLUMNW& column, DWORD kind, LPARAM reserved1, LPARAM reserved2);
    CColumnInfo GetColumnInfo(int column) const { return {GetSafeHwnd(), column}; }

    void SetItem(const LVITEMW& item);

    // What a listtable::MoveRecord carries.
    bool MoveItems(int target, int count, const int32_t* rows);

    // Widths as "[%]250,750" or "90,120"; false, with nothing changed, for another text.
    bool SetColumnWidths(const std::wstring& widths);
    // flags: 1 for thousandths of the list's width, 0 for pixels.
    std::wstring GetColumnWidths(DWORD flags) const;

    bool EditCell(int row, int column);
    // Ends the editing of a cell: what was typed is kept (with its notification) or dropped. False when there was none.
    // Wanted before the rows are read while the user may still be typing.
    bool EndEdit(bool keep);
};
