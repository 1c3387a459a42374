#include "refhost/controls/list/CellEditor.h"

#include <commctrl.h>

#include <algorithm>
#include <string_view>

namespace listtable {
namespace {

constexpr size_t kLongestLine = 4095;
constexpr int kShownChoices = 10;
constexpr int kEditorId = 1;
constexpr int kNoControl = -1;

std::wstring GetWindowString(HWND window) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)), L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()) + 1)));
    return text;
}

// The clipboard's first line, as far as it can go into the edit control.
std::wstring GetClipboardLine(HWND window) {
    std::wstring line;
    if (!OpenClipboard(window)) return line;
    if (const HANDLE data = GetClipboardData(CF_UNICODETEXT)) {
        if (const auto* text = static_cast<const wchar_t*>(GlobalLock(data))) {
            const size_t room = GlobalSize(data) / sizeof(wchar_t);
            const std::wstring_view whole(text, std::min(room, 2 * kLongestLine));
            line = GetOneLine(whole.substr(0, whole.find(L'\0')));
            GlobalUnlock(data);
        }
    }
    CloseClipboard();
    return line;
}

void Paste(HWND edit) {
    std::wstring line = GetClipboardLine(edit);
    DWORD first = 0;
    DWORD end = 0;
    SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&first), reinterpret_cast<LPARAM>(&end));
    const size_t kept = static_cast<size_t>(GetWindowTextLengthW(edit)) - (end - first);
    line.resize(std::min(line.size(), kLongestLine - std::min(kept, kLongestLine)));
    if (!line.empty()) SendMessageW(edit, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(line.c_str()));
}

HWND CreateChild(HWND list, const wchar_t* className, const std::wstring& text, DWORD style, int id) {
    return CreateWindowExW(0, className, text.c_str(), WS_CHILD | style, 0, 0, 0, 0, list,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
}

}  // namespace

bool CellEditor::Open(HWND list, const EditorContent& content) {
    ++m_serial;
    m_cell = content.cell;
    m_text = content.text;
    m_choice = content.choices != nullptr;
    m_accepted = false;
    m_rect = {};
    // A control is called by the static text before it, which need not be visible.
    m_label = CreateChild(list, WC_STATICW, content.label, SS_NOPREFIX, kNoControl);
    if (!(m_choice ? OpenChoice(list, content) : OpenText(list))) {
        Close();
        return false;
    }
    SetWindowPos(m_label, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    SetWindowPos(m_window, m_label, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    Place(content.rect);
    ShowWindow(m_window, SW_SHOW);
    SetFocus(m_window);
    if (!m_choice) SendMessageW(m_window, EM_SETSEL, 0, -1);
    SetWindowSubclass(m_window, Proc, m_serial, reinterpret_cast<DWORD_PTR>(list));
    return true;
}

bool CellEditor::OpenText(HWND list) {
    m_window = CreateChild(list, WC_EDITW, m_text, WS_BORDER | ES_AUTOHSCROLL, kEditorId);
    if (m_window == nullptr) return false;
    SendMessageW(m_window, WM_SETFONT, static_cast<WPARAM>(SendMessageW(list, WM_GETFONT, 0, 0)), FALSE);
    SendMessageW(m_window, EM_LIMITTEXT, kLongestLine, 0);
    return true;
}

bool CellEditor::OpenChoice(HWND list, const EditorContent& content) {
    m_window = CreateChild(list, WC_COMBOBOXW, {}, CBS_DROPDOWNLIST | WS_VSCROLL, kEditorId);
    if (m_window == nullptr) return false;
    SendMessageW(m_window, WM_SETFONT, static_cast<WPARAM>(SendMessageW(list, WM_GETFONT, 0, 0)), FALSE);
    auto selected = static_cast<WPARAM>(-1);
    for (size_t choice = 0; choice < content.choices->size(); ++choice) {
        const std::wstring& text = (*content.choices)[choice];
        if (SendMessageW(m_window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str())) < 0) return false;
        if (text == m_text) selected = choice;
    }
    SendMessageW(m_window, CB_SETCURSEL, selected, 0);
    return true;
}

void CellEditor::Place(const RECT& rect) {
    if (EqualRect(&rect, &m_rect)) return;
    m_rect = rect;
    RECT place = rect;
    if (m_choice) {
        // A drop-down list chooses its own height; it is centred on the row, and its list hangs below it.
        SendMessageW(m_window, CB_SHOWDROPDOWN, FALSE, 0);
        const auto line = static_cast<LONG>(SendMessageW(m_window, CB_GETITEMHEIGHT, 0, 0));
        RECT own = {};
        GetWindowRect(m_window, &own);
        place.top -= (own.bottom - own.top - (rect.bottom - rect.top)) / 2;
        place.bottom = place.top + own.bottom - own.top + line * kShownChoices;
    }
    MoveWindow(m_window, place.left, place.top, place.right - place.left, place.bottom - place.top, TRUE);
}

std::wstring CellEditor::GetText() const {
    if (!m_choice) return GetOneLine(GetWindowString(m_window));
    const LRESULT selected = SendMessageW(m_window, CB_GETCURSEL, 0, 0);
    if (selected < 0) return m_text;
    const LRESULT length = SendMessageW(m_window, CB_GETLBTEXTLEN, static_cast<WPARAM>(selected), 0);
    std::wstring text(static_cast<size_t>(std::max<LRESULT>(length, 0)), L'\0');
    SendMessageW(m_window, CB_GETLBTEXT, static_cast<WPARAM>(selected), reinterpret_cast<LPARAM>(text.data()));
    return text;
}

void CellEditor::Close() {
    const HWND window = m_window;
    const HWND label = m_label;
    Forget();
    if (window != nullptr) {
        if (GetFocus() == window) SetFocus(GetParent(window));
        DestroyWindow(window);
    }
    if (label != nullptr) DestroyWindow(label);
}

void CellEditor::OnCommand(UINT code) {
    if (!m_choice) return;
    // Moving through the closed list accepts at every step; only a click into the open one is a decision.
    if (code == CBN_SELENDOK) m_accepted = SendMessageW(m_window, CB_GETDROPPEDSTATE, 0, 0) != FALSE;
    if (code == CBN_CLOSEUP && m_accepted) PostMessageW(GetParent(m_window), kEditorChosen, m_serial, 0);
}

LRESULT CALLBACK CellEditor::Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR serial,
                                  DWORD_PTR list) noexcept {
    const HWND owner = reinterpret_cast<HWND>(list);
    switch (message) {
        case WM_GETDLGCODE:
            return DefSubclassProc(window, message, wParam, lParam) | DLGC_WANTALLKEYS;
        case WM_KEYDOWN:
            if (wParam != VK_RETURN && wParam != VK_ESCAPE && wParam != VK_TAB) break;
            // The editor may be gone when this returns.
            SendMessageW(owner, kEditorKey, wParam, GetKeyState(VK_SHIFT) < 0);
            return 0;
        case WM_CHAR:
            if (wParam == VK_RETURN || wParam == VK_ESCAPE || wParam == VK_TAB) return 0;
            break;
        case WM_PASTE:
            try {
                Paste(window);
            } catch (...) {
                MessageBeep(MB_ICONERROR);
            }
            return 0;
        case WM_KILLFOCUS:
            // Ending here would open message boxes in the middle of a change of focus.
            PostMessageW(owner, kEditorLeft, serial, 0);
            break;
        case WM_NCDESTROY:
            RemoveWindowSubclass(window, Proc, serial);
            break;
        default:
            break;
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

}  // namespace listtable
