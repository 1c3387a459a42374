#include "faults/DialogPilot.h"

#include <cwchar>
#include <iterator>
#include <utility>

namespace test {

namespace {

constexpr UINT kTick = 10;

struct Course {
    const std::function<void(HWND)>& first;
    const std::function<void(HWND)>& again;
    HWND below;
    HWND seen = nullptr;
    bool busy = false, repeated = false;
    Flight result = Flight::kNone;
};
Course* g_course = nullptr;

BOOL CALLBACK Find(HWND window, LPARAM found) {
    wchar_t name[16] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    if (std::wcscmp(name, L"#32770") != 0 || !IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
    Course* course = g_course;
    const HWND dialog = FrontDialog();
    if (course == nullptr || course->busy || dialog == nullptr || dialog == course->below) return;
    course->busy = true;
    if (dialog != course->seen) {
        course->seen = dialog;
        course->repeated = false;
        if (course->result == Flight::kNone) course->result = Flight::kClosed;
        course->first(dialog);
    } else if (!course->repeated && course->again) {
        course->repeated = true;
        course->result = Flight::kAgain;
        course->again(dialog);
    } else {
        course->result = Flight::kGivenUp;
        SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }
    course->busy = false;
}

}  // namespace

HWND FrontDialog() {
    HWND dialog = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), Find, reinterpret_cast<LPARAM>(&dialog));
    return dialog;
}

Flight Pilot(const std::function<void(HWND dialog)>& first, const std::function<void(HWND dialog)>& again,
             const std::function<void()>& body) {
    Course course = {first, again, FrontDialog()};
    Course* const outer = std::exchange(g_course, &course);
    const UINT_PTR timer = SetTimer(nullptr, 0, kTick, Tick);
    body();
    KillTimer(nullptr, timer);
    g_course = outer;
    return course.result;
}

}  // namespace test
