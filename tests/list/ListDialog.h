#pragma once
// The list control in a plain dialog, as the module has it: two columns of numbers, a read-only one, one of choices.

#include <windows.h>

#include <functional>
#include <string>

#include "configure/ListTableCtrl.h"
#include "win32/WindowScript.h"

namespace test {

enum : int { kListId = 101, kFieldId = 102 };

// Tells "0,1=12(100)" when a cell was edited, with the row's data, "2<0" when row 0 is to be moved before row 2, and
// "OK" and "Cancel" when it is closed so. Steps beside those of any window:
//   click 0,1  edit 0,1  end keep  end drop  field  focus field  focus list  drag 0,2  deleterow 1  deletecolumn 1
//   deleteall  destroy  disable  loseCapture  outside (moves the pointer there)
// and these, which tell: styles (as each of them is dropped)  edited [0,1:text]  cell 0,1  label  rows  selected
// selections  who (has the focus)  capture
class ListDialog final : public WindowScript {
public:
    // Rows: "r0c0", "r0c1", ..., a choice of "", "Total" and "Date", and data 100, 101, ...
    explicit ListDialog(int rows = 4, DWORD style = 0x18000020);

    // Shows it, with the focus in the list and row 0 selected when there is one, plays the script and closes it.
    void Show(const Script& script);
    std::string Run(const std::string& steps);

    CListTableCtrl& List() { return m_list; }
    std::wstring Cell(int row, int column) const { return m_list.GetItemText(row, column); }
    // The first column from top to bottom, with the data: "r0c0=100 r1c0=101".
    std::string Rows() const;
    int SelectedRow() const { return m_list.GetNextItem(-1, LVNI_SELECTED); }
    HWND Editor() const;                 // of a cell; null when there is none
    std::string EditedCellText() const;  // "[row,column:text]"; "[]" when there is none
    // The middle of a cell on the screen.
    POINT CellPoint(int row, int column) const;

    int changes = 0;  // notifications of any change of a row
    std::function<void()> onEdited;

private:
    static INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    void Fill(HWND dialog);
    void OnNotify(NMHDR* header);
    void StartDrag(int from, int to);
    void DropStyles();
    std::string FocusName() const;

    int m_rows;
    DWORD m_style;
    CListTableCtrl m_list;
    int m_selections = 0;
};

}  // namespace test
