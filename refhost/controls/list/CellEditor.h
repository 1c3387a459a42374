#pragma once
// The control that stands over a cell while it is edited: an edit control or a drop-down list, child of the list. It
// tells the list by message what the user did; the list ends the editing.

#include <windows.h>

#include <string>
#include <vector>

#include "refhost/controls/list/TableRules.h"

namespace listtable {

// From the editor to the list.
enum EditorMessage : UINT {
    kEditorKey = WM_USER + 0x380,  // sent; wParam: VK_RETURN, VK_ESCAPE or VK_TAB, lParam: Shift is down
    kEditorLeft,                   // posted; wParam: serial. It lost the focus
    kEditorChosen,                 // posted; wParam: serial. A choice was made with the mouse
};

struct EditorContent {
    CellPosition cell;
    std::wstring text;
    const std::vector<std::wstring>* choices;  // null for text
    std::wstring label;                        // what a screen reader calls it
    RECT rect;
};

class CellEditor {
public:
    CellEditor() = default;
    CellEditor(const CellEditor&) = delete;
    CellEditor& operator=(const CellEditor&) = delete;

    bool IsOpen() const { return m_window != nullptr; }
    HWND GetWindow() const { return m_window; }
    CellPosition GetCell() const { return m_cell; }
    UINT_PTR GetSerial() const { return m_serial; }

    // False when its windows could not be made.
    bool Open(HWND list, const EditorContent& content);
    // The rows of the list have moved by `rows` under it.
    void ShiftRow(int rows) { m_cell.row += rows; }
    void Place(const RECT& rect);
    std::wstring GetText() const;
    bool IsChanged() const { return GetText() != m_text; }
    // Gives the focus back to the list when it has it.
    void Close();
    // The windows are gone or going with the list.
    void Forget() { m_window = m_label = nullptr; }
    // WM_COMMAND of the drop-down list.
    void OnCommand(UINT code);

private:
    bool OpenText(HWND list);
    bool OpenChoice(HWND list, const EditorContent& content);

    static LRESULT CALLBACK Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR serial,
                                 DWORD_PTR list) noexcept;

    HWND m_window = nullptr;
    HWND m_label = nullptr;
    bool m_choice = false;
    bool m_accepted = false;
    UINT_PTR m_serial = 0;
    CellPosition m_cell;
    std::wstring m_text;  // at the start
    RECT m_rect = {};
};

}  // namespace listtable
