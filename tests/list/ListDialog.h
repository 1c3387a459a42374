#pragma once
// The list control in a plain dialog, as the module has it: two columns of numbers, a read-only one, one of choices.

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "configure/ListTableCtrl.h"
#include "win32/DialogScript.h"

namespace test {

struct EditedCell {
    int row;
    int column;
    std::wstring text;  // what stands in the cell when the parent hears of it
    LPARAM data;
    bool operator==(const EditedCell&) const = default;
};

struct RequestedMove {
    int target;
    std::vector<int> rows;
    bool operator==(const RequestedMove&) const = default;
};

enum : int { kListId = 101, kFieldId = 102 };

class ListDialog {
public:
    // Rows: "r0c0", "r0c1", ..., a choice of "", "Total" and "Date", and data 100, 101, ...
    explicit ListDialog(int rows = 4, DWORD style = 0x18000020) : m_rows(rows), m_style(style) {}

    // Shows it, with the focus in the list and row 0 selected when there is one, plays the script and closes it with 0.
    INT_PTR Play(const Script& script);

    CListTableCtrl& List() { return m_list; }
    std::wstring Cell(int row, int column) const { return m_list.GetItemText(row, column); }
    // The first column from top to bottom, with the data: "r0c0=100 r1c0=101".
    std::wstring Rows() const;
    int SelectedRow() const { return m_list.GetNextItem(-1, LVNI_SELECTED); }
    HWND Editor() const;                  // of a cell; null when there is none
    std::wstring EditedCellText() const;  // "row,column:text"; empty when there is none
    // The middle of a cell on the screen.
    POINT CellPoint(int row, int column) const;
    bool HasFocus(HWND window) const { return GetFocus() == window; }
    bool ListHasFocus() const { return HasFocus(m_list.GetSafeHwnd()); }

    std::vector<EditedCell> edited;
    std::vector<RequestedMove> moves;
    int selections = 0;  // notifications of a newly selected row
    int changes = 0;     // of any change of a row
    std::function<void(const EditedCell&)> onEdited;

private:
    static INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    void Fill(HWND dialog);
    void OnNotify(NMHDR* header);

    int m_rows;
    DWORD m_style;
    CListTableCtrl m_list;
};

}  // namespace test
