// The parents' window procedures are replaced here and not by SetWindowSubclass, which looks up a property of the
// window for every message: with thousands of rows that took longer than the list view itself.
#include "refhost/controls/list/ParentHook.h"

#include <commctrl.h>

#include <algorithm>
#include <vector>

namespace listtable {
namespace {

struct Hook {
    HWND parent;
    WNDPROC before;
    std::vector<HWND> lists;
    ReflectedMessages messages;
};

// Dialogs of several threads may have lists.
SRWLOCK g_lock = SRWLOCK_INIT;
std::vector<Hook> g_hooks;

class Lock {
public:
    Lock() { AcquireSRWLockExclusive(&g_lock); }
    ~Lock() { ReleaseSRWLockExclusive(&g_lock); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
};

std::vector<Hook>::iterator Find(HWND parent) {
    return std::find_if(g_hooks.begin(), g_hooks.end(), [=](const Hook& hook) { return hook.parent == parent; });
}

// What a message of a parent means for one of its lists.
struct Target {
    WNDPROC before = nullptr;
    HWND list = nullptr;
    UINT message = 0;
};

bool IsFrom(HWND list, UINT message, LPARAM lParam) {
    switch (message) {
        case WM_DRAWITEM:
            return reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)->hwndItem == list;
        case WM_MEASUREITEM: {
            const auto* item = reinterpret_cast<const MEASUREITEMSTRUCT*>(lParam);
            return item->CtlType == ODT_LISTVIEW && item->CtlID == static_cast<UINT>(GetDlgCtrlID(list));
        }
        default:
            return reinterpret_cast<const NMHDR*>(lParam)->hwndFrom == list;
    }
}

Target FindTarget(HWND parent, UINT message, LPARAM lParam) {
    const Lock lock;
    const auto hook = Find(parent);
    if (hook == g_hooks.end()) return {};
    Target target = {hook->before};
    if (message == WM_NCDESTROY) {
        g_hooks.erase(hook);
        return target;
    }
    const UINT reflected = message == WM_DRAWITEM      ? hook->messages.draw
                           : message == WM_MEASUREITEM ? hook->messages.measure
                           : message == WM_NOTIFY      ? hook->messages.notify
                                                       : 0;
    if (reflected == 0) return target;
    for (const HWND list : hook->lists) {
        if (!IsFrom(list, message, lParam)) continue;
        target.list = list;
        target.message = reflected;
    }
    return target;
}

LRESULT CALLBACK ParentProc(HWND parent, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    const Target target = FindTarget(parent, message, lParam);
    if (target.before == nullptr) return DefWindowProcW(parent, message, wParam, lParam);
    if (target.list != nullptr) {
        const LRESULT handled = SendMessageW(target.list, target.message, 0, lParam);
        if (message != WM_NOTIFY) return TRUE;
        if (handled) return 0;
    }
    return CallWindowProcW(target.before, parent, message, wParam, lParam);
}

WNDPROC ProcOf(HWND window) {
    return reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC));
}

WNDPROC Replace(HWND window, WNDPROC proc) {
    return reinterpret_cast<WNDPROC>(SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(proc)));
}

}  // namespace

bool HookParent(HWND parent, HWND list, const ReflectedMessages& messages) noexcept {
    try {
        const Lock lock;
        auto hook = Find(parent);
        if (hook == g_hooks.end()) {
            g_hooks.push_back({parent, ProcOf(parent), {list}, messages});
            Replace(parent, ParentProc);
        } else {
            hook->lists.push_back(list);
        }
        return true;
    } catch (...) {
        return false;
    }
}

void UnhookParent(HWND parent, HWND list) noexcept {
    const Lock lock;
    const auto hook = Find(parent);
    if (hook == g_hooks.end()) return;
    std::erase(hook->lists, list);
    // A procedure that somebody else put before this one still calls it: it stays until the window is gone.
    if (!hook->lists.empty() || ProcOf(parent) != ParentProc) return;
    Replace(parent, hook->before);
    g_hooks.erase(hook);
}

}  // namespace listtable
