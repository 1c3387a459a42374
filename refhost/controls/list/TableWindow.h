#pragma once
// The list control behind its window: a system list view whose messages pass through here first.

#include <windows.h>

#include <commctrl.h>

#include <memory>
#include <string>
#include <vector>

#include "host/ListTable.h"
#include "refhost/controls/list/CellEditor.h"
#include "refhost/controls/list/TableRules.h"

namespace listtable {

// Messages to itself and from the parent, whose messages about the list it sees before the parent does.
enum OwnMessage : UINT {
    kBeginEdit = WM_USER + 0x390,  // posted; wParam: row, lParam: column
    kReflectDraw,                  // lParam: const DRAWITEMSTRUCT*
    kReflectMeasure,               // lParam: MEASUREITEMSTRUCT*
    kReflectNotify,                // lParam: NMHDR*; returns TRUE when the parent is not to see it
};

inline constexpr UINT_PTR kDragTimer = 0x7A10;

class Table : public std::enable_shared_from_this<Table> {
public:
    Table(HWND window, WNDPROC base) : m_window(window), m_base(base) {}
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    // Puts itself before the parent; for the list's first message. False when there is no memory.
    bool Attach(HWND parent);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT CallBase(UINT message, WPARAM wParam, LPARAM lParam) const {
        return CallWindowProcW(m_base, m_window, message, wParam, lParam);
    }

private:
    struct Column {
        DWORD kind = 0;
        std::vector<std::wstring> choices;
    };

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return SendMessageW(m_window, message, wParam, lParam);
    }
    LRESULT Notify(UINT code, NMHDR& header) const;

    // --- Messages. Each returns whether it answered; what is not answered goes to the list view.
    bool HandleOwn(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    bool HandleColumns(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    bool HandleInput(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    bool HandleEditor(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    bool HandleReflected(UINT message, LPARAM lParam, LRESULT& result);
    LRESULT HandleListView(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT SetExtendedStyle(DWORD mask, DWORD styles);

    // --- Rows and cells
    int GetRowCount() const { return static_cast<int>(Send(LVM_GETITEMCOUNT)); }
    int GetColumnCount() const { return static_cast<int>(m_columns.size()); }
    int GetCurrentRow() const;
    std::vector<int> GetSelectedRows() const;
    bool IsSelected(int row) const;
    void SetState(int row, UINT state, UINT mask) const;
    LPARAM GetData(int row) const;
    void SetData(int row, LPARAM data) const;
    std::wstring GetText(int row, int column) const;
    void SetText(int row, int column, const std::wstring& text) const;
    RECT GetRowRect(int row) const;
    RECT GetCellRect(int row, int column) const;
    RECT GetRowsArea() const;
    CellPosition HitTest(POINT point) const;
    int Scale(int pixels) const;

    // --- Columns
    HWND GetHeader() const { return reinterpret_cast<HWND>(Send(LVM_GETHEADER)); }
    Column* FindColumn(WPARAM column);
    LRESULT InsertColumn(int position, const ColumnRecord& record);
    std::vector<int> GetShownOrder() const;
    std::wstring GetTitle(int column) const;
    std::vector<int> GetPixelWidths() const;
    int GetListWidth() const;
    bool SetColumnWidths(const wchar_t* text);
    std::wstring GetColumnWidths(bool thousandths) const;
    void SetPixelWidths(const std::vector<int>& pixels);
    void FollowListWidth();

    // --- Editing
    bool CanEdit(int row, int column) const;
    bool BeginEdit(int row, int column);
    bool EndEdit(bool keep);
    void EditNext(bool forward);
    void EditCurrent();
    void FollowCell();
    void SetCurrentColumn(int column);
    void MoveCurrentColumn(int step);
    void ShowColumn(int column) const;
    void OnEditorKey(WPARAM key, bool shift);
    bool OnKeyDown(WPARAM key);
    void OnButtonDown(POINT point);
    void OnClick();

    // --- Moving rows
    bool MoveItems(const MoveOrder& order);
    void RequestMove(int target, const std::vector<int>& rows);
    void MoveSelected(bool up);
    bool IsDragging() const { return !m_dragged.empty(); }
    void StartDrag(int row);
    void Drag(POINT point);
    void ScrollDrag();
    void EndDrag(bool drop);
    int GetDropTarget(POINT point) const;
    void SetDropTarget(int target);
    RECT GetMarkRect(int target) const;

    // --- Drawing
    void Measure(MEASUREITEMSTRUCT& item) const;
    void MeasureAnew() const;
    void DrawRow(const DRAWITEMSTRUCT& item) const;
    void DrawMark() const;

    HWND m_window;
    WNDPROC m_base;
    DWORD m_style = 0;  // of kEx...
    std::vector<Column> m_columns;
    CellEditor m_editor;
    int m_currentColumn = 0;
    bool m_clickEdits = false;
    bool m_following = false;
    bool m_silent = false;  // the parent hears nothing of what the list view does
    bool m_closing = false;

    std::vector<int> m_dragged;
    int m_dropTarget = -1;

    std::vector<int> m_shares;       // of the columns in the list's width, when they follow it
    std::vector<int> m_sharePixels;  // what they came to at m_shareWidth
    int m_shareWidth = 0;
};

// True while it lives.
class FlagScope {
public:
    explicit FlagScope(bool& flag) : m_flag(flag), m_before(flag) { m_flag = true; }
    ~FlagScope() { m_flag = m_before; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& m_flag;
    bool m_before;
};

}  // namespace listtable
