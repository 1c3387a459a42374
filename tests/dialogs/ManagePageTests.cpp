// "Manage Area Sets": page source, page size and the dialogs that it opens.
#include "dialogs/ManageFixture.h"
#include "refhost/controls/HostControls.h"

namespace {

using namespace test;

class ManagePage : public ManageDialog {
protected:
    void UseOnePage() { UsePages({std::wstring(SAMPLES_DIR) + L"/letter.tif"}); }
    void SetRealSize(int64_t width, int64_t height) {
        m_tree->integers[L"RealWidth"] = width;
        m_tree->integers[L"RealHeight"] = height;
        Init();
    }
};

TEST_F(ManagePage, TheSourceFollowsTheStackAndTheSettings) {
    // What the dialog shows and what OK writes.
    const struct {
        bool page;
        int stored;  // -1: nothing
        bool scanned;
    } cases[] = {{true, -1, true}, {true, 1, true}, {true, 0, false}, {false, 1, false}, {false, -1, false}};
    for (const auto& [page, stored, scanned] : cases) {
        SCOPED_TRACE(testing::Message() << page << ' ' << stored);
        m_tree->booleans.clear();
        if (stored >= 0) m_tree->booleans[L"RadioPageSource"] = stored == 1;
        Init();
        page ? UseOnePage() : UsePages({});
        EXPECT_TRUE(Play({[&](HWND dialog) {
                              EXPECT_EQ(Enabled(dialog, IDC_MANAGE_SCANNED), page);
                              EXPECT_EQ(Checked(dialog, IDC_MANAGE_SCANNED), scanned);
                              EXPECT_EQ(Checked(dialog, IDC_MANAGE_PAGE_SIZE), !scanned);
                              EXPECT_EQ(Enabled(dialog, IDC_MANAGE_SETTINGS), !scanned);
                          },
                          PressOk}));
        ExpectNothingReported();
        ASSERT_EQ(m_tree->booleans.count(L"RadioPageSource"), 1u);
        EXPECT_EQ(m_tree->booleans[L"RadioPageSource"], scanned);
    }
}

TEST_F(ManagePage, TheSourceIsChosenByMouseAndKeys) {
    m_tree->booleans.clear();
    Init();
    UseOnePage();
    EXPECT_TRUE(Play({[](HWND dialog) { ClickOn(GetDlgItem(dialog, IDC_MANAGE_PAGE_SIZE)); }, [](HWND) {},
                      [](HWND dialog) {
                          EXPECT_TRUE(Enabled(dialog, IDC_MANAGE_SETTINGS));
                          EXPECT_FALSE(Checked(dialog, IDC_MANAGE_SCANNED));
                      },
                      [](HWND) { PressKey(VK_UP); },
                      [](HWND dialog) {
                          EXPECT_TRUE(Checked(dialog, IDC_MANAGE_SCANNED));
                          EXPECT_FALSE(Enabled(dialog, IDC_MANAGE_SETTINGS));
                      },
                      [](HWND) { PressKey('U', VK_MENU); },
                      [](HWND dialog) {
                          EXPECT_TRUE(Checked(dialog, IDC_MANAGE_PAGE_SIZE));
                          EXPECT_FALSE(Checked(dialog, IDC_MANAGE_SCANNED));
                          EXPECT_TRUE(Enabled(dialog, IDC_MANAGE_SETTINGS));
                      },
                      PressOk}));
    EXPECT_FALSE(m_tree->booleans[L"RadioPageSource"]);
}

TEST_F(ManagePage, ThePageSizeIsThatOfTheCurrentSetAlsoAfterCancel) {
    SetRealSize(1480, 2100);
    HWND manage = nullptr;
    EXPECT_TRUE(Play({[&](HWND dialog) {
                          manage = dialog;
                          SelectSet(dialog, 2);
                          Post(dialog, IDC_MANAGE_SETTINGS);
                      },
                      [&](HWND dialog) {
                          EXPECT_EQ(GetWindow(dialog, GW_OWNER), manage);
                          EXPECT_FALSE(IsWindowEnabled(manage));
                          PressCancel(dialog);
                      },
                      [&](HWND dialog) {
                          ASSERT_EQ(dialog, manage);
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"148.0 x 210.0 mm");
                          SelectSet(dialog, 0);
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"210.0 x 297.0 mm") << "the current set alone";
                          Post(dialog, IDC_MANAGE_SETTINGS);
                      },
                      [](HWND dialog) {
                          Push(dialog, IDC_PAPER_LANDSCAPE);
                          PressOk(dialog);
                      },
                      [](HWND dialog) {
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"297.0 x 210.0 mm");
                          EXPECT_EQ(PreviewAt(dialog, 500, 30), 'f') << "drawn on the new page";
                          EXPECT_EQ(PreviewAt(dialog, 100, 500), 'h');
                          PressOk(dialog);
                      }}));
    EXPECT_EQ(m_tree->integers[L"RealWidth"], 2970);
    EXPECT_EQ(m_tree->Child(L"0x00000001")->Child(L"DisplayRect")->integers[L"Position:right"], 2970);
    EXPECT_EQ(m_tree->Child(L"0x00000003")->Child(L"DisplayRect")->integers[L"Position:bottom"], 2100);
}

TEST_F(ManagePage, NonsenseSizesAreShownAsTheyAre) {
    constexpr LONG kMin = -2147483647 - 1;
    constexpr LONG kMax = 2147483647;
    AddSet(4, L"Negative", 0, {100, 100, -400, 0}, {{0, 0, 50, 50}});
    AddSet(5, L"Everything", 0, {kMin, kMin, kMax, kMax}, {{kMin, kMin, kMax, kMax}});
    AddSet(6, L"Thin", 0, {0, 0, 1, kMax}, {{0, 0, 1, 1}});
    SetRealSize(-1, kMax);
    UseInches();
    EXPECT_TRUE(Play({[](HWND dialog) { EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"8.3 x 11.7 in"); },
                      [](HWND dialog) {
                          SelectSet(dialog, 3);
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"-2.0 x -0.4 in");
                          SelectSet(dialog, 4);
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"8454660.0 x 8454660.0 in");
                          SelectSet(dialog, 5);
                          SelectSet(dialog, 0);
                          Post(dialog, IDC_MANAGE_SETTINGS);
                      },
                      PressCancel,
                      [](HWND dialog) {
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"-0.0 x 8454660.0 in");
                          PressOk(dialog);
                      }}));
    EXPECT_EQ(m_tree->Child(L"0x00000001")->Child(L"DisplayRect")->integers[L"Position:right"], -1);
}

TEST_F(ManagePage, SetsAreConfiguredAlsoWithoutAPageOfNonsenseSize) {
    for (const int64_t size : {int64_t{0}, int64_t{-1}, int64_t{2147483647}}) {
        SCOPED_TRACE(size);
        SetRealSize(size, size);
        EXPECT_TRUE(Play({[](HWND dialog) { Post(dialog, IDC_MANAGE_CONFIGURE); },
                          [](HWND dialog) {
                              EXPECT_EQ(GetTextOfWindow(dialog), L"Configure Area Set - Invoice");
                              EXPECT_EQ(RowCount(dialog), 2);
                              PressCancel(dialog);
                          },
                          [](HWND dialog) {
                              EXPECT_EQ(GetTextOfWindow(dialog), L"Manage Area Sets");
                              PressOk(dialog);
                          }}));
        EXPECT_EQ(TakeTraceTexts(),
                  L"2 CSASetConfigDlg::InitializePageControl: blank page: a host object failed with status "
                  L"0x80070057.\n");
        EXPECT_EQ(m_tree->Child(L"0x00000001")->Child(L"Rect")->children.size(), 2u);
    }
}

TEST_F(ManagePage, ConfiguringReachesTheHostWithOk) {
    const std::wstring before = m_tree->Dump();
    HWND manage = nullptr;
    EXPECT_TRUE(Play({[&](HWND dialog) {
                          manage = dialog;
                          SelectSet(dialog, 2);
                          Post(dialog, IDC_MANAGE_CONFIGURE);
                      },
                      [&](HWND dialog) {
                          EXPECT_EQ(GetWindow(dialog, GW_OWNER), manage);
                          EXPECT_EQ(GetTextOfWindow(dialog), L"Configure Area Set - Blank");
                          EXPECT_FALSE(WorkingRoot().booleans[L"RadioPageSource"]);
                          Push(dialog, IDC_CONFIG_ADD);
                          Push(dialog, IDC_CONFIG_IGNORED);
                          PressOk(dialog);
                      },
                      [&](HWND dialog) {
                          ASSERT_EQ(dialog, manage);
                          EXPECT_EQ(GetFocus(), SetsOf(dialog));
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"210.0 x 297.0 mm");
                          EXPECT_EQ(PreviewAt(dialog, 500, 500), 'w');
                          EXPECT_EQ(PreviewAt(dialog, 500, 100), 'h');
                          EXPECT_EQ(m_tree->Dump(), before) << "the host's settings wait for OK";
                          PressOk(dialog);
                      }}));
    EXPECT_EQ(m_tree->Child(L"0x00000003")->integers[L"Flags"], SA_AREAS_IGNORED);
    EXPECT_EQ(m_tree->Child(L"0x00000003")->Child(L"Rect")->children.size(), 1u);
}

TEST_F(ManagePage, ADoubleClickConfigures) {
    EXPECT_TRUE(Play({[](HWND dialog) {
                          RECT item = {LVIR_LABEL, 0, 0, 0};
                          SendMessageW(SetsOf(dialog), LVM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&item));
                          POINT place = {item.left + 10, (item.top + item.bottom) / 2};
                          ClientToScreen(SetsOf(dialog), &place);
                          MouseTo(place);
                      },
                      [](HWND) {},
                      [](HWND) {
                          for (int i = 0; i < 2; ++i) {
                              MouseButton(MOUSEEVENTF_LEFTDOWN);
                              MouseButton(MOUSEEVENTF_LEFTUP);
                          }
                      },
                      [](HWND) {},
                      [](HWND dialog) {
                          EXPECT_EQ(GetTextOfWindow(dialog), L"Configure Area Set - Letter");
                          PressCancel(dialog);
                      },
                      [](HWND dialog) {
                          EXPECT_EQ(GetTextOfWindow(dialog), L"Manage Area Sets");
                          EXPECT_EQ(SelectedSet(dialog), 1);
                          PressCancel(dialog);
                      }}));
}

TEST_F(ManagePage, HelpIsTheChapterOfThisDialog) {
    const auto setOpener = reinterpret_cast<decltype(&HostControlsSetHelpOpener)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"HostControls.dll"), "HostControlsSetHelpOpener")));
    ASSERT_NE(setOpener, nullptr);
    std::vector<DWORD> asked;
    setOpener(
        [](const HostHelpRequest* request, void* context) -> BOOL {
            static_cast<std::vector<DWORD>*>(context)->push_back(request->context);
            return TRUE;
        },
        &asked);
    EXPECT_TRUE(Play({[](HWND dialog) { Push(dialog, IDHELP); }, [](HWND dialog) { SetFocus(SetsOf(dialog)); },
                      [](HWND) { PressKey(VK_F1); }, PressCancel}));
    setOpener(nullptr, nullptr);
    EXPECT_EQ(asked, (std::vector<DWORD>{0x26C88, 0x26C88}));
}

}  // namespace
