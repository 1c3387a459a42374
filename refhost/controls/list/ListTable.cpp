#include "refhost/controls/list/ListTable.h"

#include <commctrl.h>

#include <memory>

#include "refhost/controls/list/TableWindow.h"

namespace listtable {
namespace {

using TablePtr = std::shared_ptr<Table>;

// The list view keeps its own data at the start of the window's extra bytes.
constexpr int kListViewExtra = 4 * sizeof(void*);
constexpr int kOwnExtra = kListViewExtra;

TablePtr* FindTable(HWND window) {
    return reinterpret_cast<TablePtr*>(GetWindowLongPtrW(window, kOwnExtra));
}

// Makes the object for a new window; false refuses the window.
bool Create(HWND window, const CREATESTRUCTW& create) {
    const INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_LISTVIEW_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
    WNDCLASSEXW base = {};
    base.cbSize = sizeof(base);
    if (!GetClassInfoExW(nullptr, WC_LISTVIEWW, &base) || base.cbWndExtra > kListViewExtra) return false;
    auto table = std::make_unique<TablePtr>(std::make_shared<Table>(window, base.lpfnWndProc));
    if (!(*table)->Attach(create.hwndParent)) return false;
    SetWindowLongPtrW(window, kOwnExtra, reinterpret_cast<LONG_PTR>(table.release()));
    return true;
}

LRESULT CALLBACK Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    try {
        if (message == WM_NCCREATE && !Create(window, *reinterpret_cast<const CREATESTRUCTW*>(lParam))) return FALSE;
        TablePtr* const owner = FindTable(window);
        if (owner == nullptr) return DefWindowProcW(window, message, wParam, lParam);
        // A handler of the parent may destroy the window while a message of it runs.
        const TablePtr table = *owner;
        const LRESULT result = table->Handle(message, wParam, lParam);
        if (message == WM_NCDESTROY) {
            SetWindowLongPtrW(window, kOwnExtra, 0);
            delete owner;
        }
        return result;
    } catch (...) {
        // No memory: what was asked for has not happened, and the list goes on as it is.
        MessageBeep(MB_ICONERROR);
        return message == WM_CREATE ? -1 : 0;
    }
}

}  // namespace

bool RegisterListTable(HINSTANCE instance) noexcept {
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.style = CS_GLOBALCLASS | CS_DBLCLKS;
    windowClass.lpfnWndProc = Proc;
    windowClass.cbWndExtra = kOwnExtra + static_cast<int>(sizeof(TablePtr*));
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kClassName;
    return RegisterClassExW(&windowClass) != 0;
}

void UnregisterListTable(HINSTANCE instance) noexcept {
    UnregisterClassW(kClassName, instance);
}

}  // namespace listtable
