#include "win32/Wnd.h"

#include <new>
#include <utility>

#include "win32/Failure.h"

CWnd::~CWnd() {
    Detach();
}

HWND CWnd::Detach() {
    if (m_subclassed) RemoveWindowSubclass(m_hWnd, SubclassProc, reinterpret_cast<UINT_PTR>(this));
    m_subclassed = false;
    return std::exchange(m_hWnd, nullptr);
}

bool CWnd::SubclassWindow(HWND hWnd) {
    Detach();
    const auto self = reinterpret_cast<DWORD_PTR>(this);
    if (hWnd == nullptr || !SetWindowSubclass(hWnd, SubclassProc, self, self)) return false;
    m_hWnd = hWnd;
    m_subclassed = true;
    return true;
}

LRESULT CALLBACK CWnd::SubclassProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                    DWORD_PTR self) noexcept {
    auto* window = reinterpret_cast<CWnd*>(self);
    try {
        if (message != WM_NCDESTROY) return window->WindowProc(message, wParam, lParam);
        window->Detach();
    } catch (...) {
        win32::TraceFailure(std::current_exception(), "Zonwick", __LINE__, L"CWnd::WindowProc");
    }
    return DefSubclassProc(hWnd, message, wParam, lParam);
}

std::wstring GetTextOfWindow(HWND hWnd) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(hWnd)), L'\0');
    const int length = GetWindowTextW(hWnd, text.data(), static_cast<int>(text.size()) + 1);
    text.resize(static_cast<size_t>(length));
    return text;
}

std::wstring CWnd::GetWindowText() const {
    return GetTextOfWindow(m_hWnd);
}

RECT CWnd::GetClientRect() const {
    RECT rect = {};
    ::GetClientRect(m_hWnd, &rect);
    return rect;
}

bool CWnd::IsDlgButtonChecked(UINT id) const {
    return ::IsDlgButtonChecked(m_hWnd, static_cast<int>(id)) == BST_CHECKED;
}

void CWnd::CheckDlgButton(UINT id, bool check) {
    ::CheckDlgButton(m_hWnd, static_cast<int>(id), check ? BST_CHECKED : BST_UNCHECKED);
}

int CComboBox::AddString(const std::wstring& text) {
    const auto item = static_cast<int>(SendMessage(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str())));
    if (item < 0) throw std::bad_alloc();
    return item;
}
