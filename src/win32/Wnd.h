#pragma once
// Windows and the common controls, as far as the module uses them.

#include <windows.h>

#include <commctrl.h>

#include <string>

// A window, not owned: destroying the object leaves the window alone. A subclass derives from it and overrides
// WindowProc; it must outlive its window or is taken off it with the object.
class CWnd {
public:
    CWnd() = default;
    explicit CWnd(HWND hWnd) : m_hWnd(hWnd) {}
    virtual ~CWnd();
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    HWND GetSafeHwnd() const { return m_hWnd; }
    void Attach(HWND hWnd) { m_hWnd = hWnd; }
    HWND Detach();

    // Routes the window's messages through WindowProc; false when there is no such window.
    bool SubclassWindow(HWND hWnd);
    bool SubclassDlgItem(UINT id, HWND parent) { return SubclassWindow(::GetDlgItem(parent, static_cast<int>(id))); }

    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return ::SendMessageW(m_hWnd, message, wParam, lParam);
    }
    std::wstring GetWindowText() const;
    void SetWindowText(const std::wstring& text) { ::SetWindowTextW(m_hWnd, text.c_str()); }
    void EnableWindow(bool enable) { ::EnableWindow(m_hWnd, enable); }
    void SetFocus() { ::SetFocus(m_hWnd); }
    RECT GetClientRect() const;
    void InvalidateRect(bool erase = true) { ::InvalidateRect(m_hWnd, nullptr, erase); }
    // Repaints at once.
    void RedrawNow() { ::RedrawWindow(m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW); }

    // Controls of a dialog.
    HWND GetDlgItem(UINT id) const { return ::GetDlgItem(m_hWnd, static_cast<int>(id)); }
    void EnableDlgItem(UINT id, bool enable) const { ::EnableWindow(GetDlgItem(id), enable); }
    void SetDlgItemText(UINT id, const std::wstring& text) { ::SetWindowTextW(GetDlgItem(id), text.c_str()); }
    bool IsDlgButtonChecked(UINT id) const;
    void CheckDlgButton(UINT id, bool check);

protected:
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
        return DefSubclassProc(m_hWnd, message, wParam, lParam);
    }

private:
    static LRESULT CALLBACK SubclassProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                         DWORD_PTR self) noexcept;

    HWND m_hWnd = nullptr;
    bool m_subclassed = false;
};

// The text of any window.
std::wstring GetTextOfWindow(HWND hWnd);

class CStatic : public CWnd {};

class CComboBox : public CWnd {
public:
    int GetCount() const { return static_cast<int>(SendMessage(CB_GETCOUNT)); }
    // The new entry's position.
    int AddString(const std::wstring& text);
    LPARAM GetItemData(int item) const { return SendMessage(CB_GETITEMDATA, static_cast<WPARAM>(item)); }
    void SetItemData(int item, LPARAM data) { SendMessage(CB_SETITEMDATA, static_cast<WPARAM>(item), data); }
    int GetCurSel() const { return static_cast<int>(SendMessage(CB_GETCURSEL)); }  // -1: none
    void SetCurSel(int item) { SendMessage(CB_SETCURSEL, static_cast<WPARAM>(item)); }
};

class CListCtrl : public CWnd {
public:
    void SetExtendedStyle(DWORD styles) { SendMessage(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, static_cast<LPARAM>(styles)); }
    void InsertColumn(int column, const std::wstring& title, int width, int format = LVCFMT_LEFT);
    void SetColumnWidth(int column, int width);
    int GetColumnWidth(int column) const;

    int GetItemCount() const { return static_cast<int>(SendMessage(LVM_GETITEMCOUNT)); }
    // The new item's position.
    int InsertItem(int item, const std::wstring& text, LPARAM data = 0);
    void DeleteItem(int item) { SendMessage(LVM_DELETEITEM, static_cast<WPARAM>(item)); }
    std::wstring GetItemText(int item, int column) const;
    void SetItemText(int item, int column, const std::wstring& text);
    LPARAM GetItemData(int item) const;
    void SetItemData(int item, LPARAM data);
    void SetItemState(int item, UINT state, UINT mask);
    // The first item after `item` (-1: from the start) in the state, as LVNI_SELECTED; -1 when there is none.
    int GetNextItem(int item, UINT state) const;
    void EnsureVisible(int item) { SendMessage(LVM_ENSUREVISIBLE, static_cast<WPARAM>(item), FALSE); }
    int GetStringWidth(const std::wstring& text) const;
    // The edit control of the item's label; null when the list refuses.
    HWND EditLabel(int item);
};

namespace win32 {

// Keeps a window from painting, while it lives: a list that is filled would otherwise paint row by row.
class RedrawOff {
public:
    explicit RedrawOff(const CWnd& window) : m_window(window) { m_window.SendMessage(WM_SETREDRAW, FALSE); }
    ~RedrawOff() {
        m_window.SendMessage(WM_SETREDRAW, TRUE);
        ::InvalidateRect(m_window.GetSafeHwnd(), nullptr, TRUE);
    }
    RedrawOff(const RedrawOff&) = delete;
    RedrawOff& operator=(const RedrawOff&) = delete;

private:
    const CWnd& m_window;
};

}  // namespace win32
