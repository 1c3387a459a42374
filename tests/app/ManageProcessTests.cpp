// zonhost manage, answered by a user in its windows.
#include <windows.h>

#include <commctrl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/ZonhostFixture.h"
#include "resource.h"

using namespace test;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr int kPolls = 1200;
constexpr DWORD kPollTime = 50;

// The dialog of a process that can be used now: the one without a box over it.
HWND WaitForDialog(DWORD process, HWND notThis = nullptr) {
    struct Search {
        DWORD process;
        HWND notThis, found;
    } search{process, notThis, nullptr};
    const WNDENUMPROC look = [](HWND window, LPARAM parameter) -> BOOL {
        Search& wanted = *reinterpret_cast<Search*>(parameter);
        wchar_t name[16] = {};
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        GetClassNameW(window, name, 16);
        if (owner != wanted.process || std::wstring(name) != L"#32770" || window == wanted.notThis) return TRUE;
        if (IsWindowVisible(window) && IsWindowEnabled(window)) wanted.found = window;
        return TRUE;
    };
    for (int i = 0; i < kPolls && search.found == nullptr; ++i) {
        EnumWindows(look, reinterpret_cast<LPARAM>(&search));
        if (search.found == nullptr) Sleep(kPollTime);
    }
    EXPECT_NE(search.found, nullptr) << "no dialog came up";
    return search.found;
}

void Press(HWND dialog, int button) {
    PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), reinterpret_cast<LPARAM>(GetDlgItem(dialog, button)));
}

void AddSet(HWND dialog, const wchar_t* name) {
    SendMessageW(dialog, WM_COMMAND, IDC_MANAGE_CREATE, 0);
    const HWND edit =
        reinterpret_cast<HWND>(SendMessageW(GetDlgItem(dialog, IDC_MANAGE_LIST), LVM_GETEDITCONTROL, 0, 0));
    ASSERT_NE(edit, nullptr);
    SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name));
    SendMessageW(edit, WM_KEYDOWN, VK_RETURN, 0);
}

class ZonhostManage : public ZonhostFolder {
protected:
    // `answer` gets the open dialog.
    template <typename Answer>
    Result Manage(Answer answer) {
        const RunningZonhost zonhost(m_folder, ++m_runs, L"manage");
        if (const HWND dialog = WaitForDialog(zonhost.Id())) answer(dialog, zonhost.Id());
        return zonhost.End();
    }
    std::string Settings() const { return ReadAll(m_folder / "settings.json"); }
};

TEST_F(ZonhostManage, OkSavesToANewFile) {
    const Result result = Manage([](HWND dialog, DWORD) {
        AddSet(dialog, L"First");
        Press(dialog, IDOK);
    });
    EXPECT_EQ(result.code, 0u) << result.err;
    EXPECT_EQ(result.out, "Saved 1 area set to settings.json.\n");
    EXPECT_THAT(Run(L"sets list").out, HasSubstr("First"));
}

TEST_F(ZonhostManage, CancelAndAnOkWithoutAChangeLeaveTheFile) {
    Import();
    // The first OK stores the choice of page source as well, the second one stores it before the sets.
    for (int i = 0; i < 2; ++i) Manage([](HWND dialog, DWORD) { Press(dialog, IDOK); });
    const std::string before = Settings();
    for (const int button : {IDCANCEL, IDOK}) {
        const Result result = Manage([&](HWND dialog, DWORD) {
            if (button == IDCANCEL) AddSet(dialog, L"Dropped");
            Press(dialog, button);
        });
        EXPECT_EQ(result.code, 0u) << result.err;
        EXPECT_EQ(result.out, "Nothing was changed in settings.json.\n");
        EXPECT_EQ(Settings(), before);
    }
}

TEST_F(ZonhostManage, SetsThatAreRefusedAreKeptAndComeBack) {
    Import();
    std::string theirs;
    const Result result = Manage([&](HWND dialog, DWORD process) {
        AddSet(dialog, L"Mine");
        WriteAll(m_folder / "more.json", R"({"sets":[{"name":"Theirs","mode":"required","areas":[]}]})");
        EXPECT_EQ(Run(L"sets import more.json").code, 0u);
        theirs = Settings();
        for (int i = 0; i < 2; ++i) {
            Press(dialog, IDOK);
            const HWND box = WaitForDialog(process, dialog);
            Press(box, IDOK);
            EXPECT_EQ(WaitForDialog(process, box), dialog) << "the dialog stays open";
        }
        EXPECT_FALSE(fs::exists(m_folder / "settings.json.refused-2")) << "kept twice";
        Press(dialog, IDCANCEL);
    });
    EXPECT_EQ(result.code, 3u);
    EXPECT_THAT(result.err, AllOf(HasSubstr("settings.json.refused-1"), HasSubstr("zonhost sets import KEPTFILE")));
    EXPECT_THAT(result.out, Not(HasSubstr("Saved")));
    EXPECT_EQ(Settings(), theirs);
    EXPECT_EQ(Run(L"sets import settings.json.refused-1 --set Mine").code, 0u);
    EXPECT_THAT(Run(L"sets list").out, AllOf(HasSubstr("Theirs"), HasSubstr("Mine")));
}

}  // namespace
