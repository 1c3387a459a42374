// "Manage Area Sets": what happens in which order, and what the framework shows.
#include <thread>

#include "dialogs/ManageFixture.h"
#include "refhost/support/ApplicationName.h"
#include "support/FakeUnits.h"

namespace test {
namespace {

using ManageCalls = ManageDialog;

int g_rows = 0, g_free = 0;

// Another thread tries to get the lock while a row is inserted.
LRESULT CALLBACK TryLock(int code, WPARAM wParam, LPARAM lParam) {
    if (code >= 0 && reinterpret_cast<const CWPSTRUCT*>(lParam)->message == LVM_INSERTITEMW) {
        ++g_rows;
        std::thread([] {
            const HANDLE mutex = OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, FALSE, L"SASyncMutex");
            if (WaitForSingleObject(mutex, 0) == WAIT_OBJECT_0 && ReleaseMutex(mutex)) ++g_free;
            CloseHandle(mutex);
        }).join();
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

TEST_F(ManageCalls, TheLockIsFreeWhileTheListIsFilled) {
    const HHOOK hook = SetWindowsHookExW(WH_CALLWNDPROC, TryLock, nullptr, GetCurrentThreadId());
    EXPECT_TRUE(Play(PressCancel));
    UnhookWindowsHookEx(hook);
    EXPECT_EQ(g_rows, 3);
    EXPECT_EQ(g_free, 3);
}

TEST_F(ManageCalls, TheSizeIsAskedInTheOrderOfItsText) {
    m_units.reset();
    const FakeUnitsClass units(Host().createTransfer);
    EXPECT_TRUE(Play([](HWND dialog) {
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"210.0 x 297.0 mm");
        UnitCalls().resize(3);
        EXPECT_EQ(UnitCalls(), (std::vector<std::wstring>{L"ToUserUnits 2100", L"ToUserUnits 2970", L"GetUnitName"}));
        PressCancel(dialog);
    }));
}

TEST_F(ManageCalls, ARefusedPaperSizeHasABoxOfItsOwn) {
    EXPECT_TRUE(Play([](HWND dialog) {
        Press(dialog, IDC_MANAGE_SETTINGS);
        const HWND paper = TopDialog();
        Push(paper, IDC_PAPER_CUSTOM);
        SetDlgItemTextW(paper, IDC_PAPER_WIDTH, L"-1");
        Press(paper, IDOK);
        AnswerBox(TopDialog());
        Wait();
        Press(paper, IDCANCEL);
        PressCancel(dialog);
    }));
    const auto boxes = TakeBoxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].caption, support::kApplicationName);
    EXPECT_TRUE(boxes[0].text.starts_with(L"Width: please enter a number from 0 to 1500.")) << boxes[0].text.c_str();
}

}  // namespace
}  // namespace test
