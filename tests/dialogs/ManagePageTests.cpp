// "Manage Area Sets": page source, page size and the dialogs that it opens.
#include "dialogs/ManageFixture.h"

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
    static void ExpectSource(HWND dialog, bool scanned) {
        EXPECT_EQ(Checked(dialog, IDC_MANAGE_SCANNED), scanned);
        EXPECT_EQ(Checked(dialog, IDC_MANAGE_PAGE_SIZE), !scanned);
        EXPECT_EQ(Enabled(dialog, IDC_MANAGE_SETTINGS), !scanned);
    }
    // Opens a dialog over this one, closes it with the button and is back.
    static void OpenAndClose(HWND dialog, UINT command, const Script& look, UINT button) {
        Press(dialog, command);
        const HWND opened = TopDialog();
        EXPECT_EQ(GetWindow(opened, GW_OWNER), dialog);
        EXPECT_FALSE(IsWindowEnabled(dialog));
        look(opened);
        Press(opened, button);
        EXPECT_EQ(TopDialog(), dialog);
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
        EXPECT_TRUE(Play([page = page, scanned = scanned](HWND dialog) {
            EXPECT_EQ(Enabled(dialog, IDC_MANAGE_SCANNED), page);
            ExpectSource(dialog, scanned);
            // By mouse and keys.
            Click(GetDlgItem(dialog, IDC_MANAGE_PAGE_SIZE));
            ExpectSource(dialog, false);
            Key(VK_UP);
            ExpectSource(dialog, page);
            Key('U', VK_MENU);
            ExpectSource(dialog, false);
            if (scanned) Push(dialog, IDC_MANAGE_SCANNED);
            PressOk(dialog);
        }));
        ExpectNothingReported();
        ASSERT_TRUE(m_tree->booleans.contains(L"RadioPageSource"));
        EXPECT_EQ(m_tree->booleans[L"RadioPageSource"], scanned);
    }
}

TEST_F(ManagePage, ThePageSizeIsThatOfTheCurrentSetAlsoAfterCancel) {
    SetRealSize(1480, 2100);
    EXPECT_TRUE(Play([](HWND dialog) {
        const auto nothing = [](HWND) {};
        const auto turn = [](HWND paper) { Push(paper, IDC_PAPER_LANDSCAPE); };
        SelectSet(dialog, 2);
        OpenAndClose(dialog, IDC_MANAGE_SETTINGS, nothing, IDCANCEL);
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"148.0 x 210.0 mm");
        SelectSet(dialog, 0);
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"210.0 x 297.0 mm") << "the current set alone";
        OpenAndClose(dialog, IDC_MANAGE_SETTINGS, turn, IDOK);
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"297.0 x 210.0 mm");
        EXPECT_EQ(PreviewAt(dialog, 500, 30), 'f') << "drawn on the new page";
        EXPECT_EQ(PreviewAt(dialog, 100, 500), 'h');
        PressOk(dialog);
    }));
    EXPECT_EQ(m_tree->integers[L"RealWidth"], 2970);
    EXPECT_EQ(m_tree->Child(L"0x00000001")->Child(L"DisplayRect")->integers[L"Position:right"], 2970);
    EXPECT_EQ(m_tree->Child(L"0x00000003")->Child(L"DisplayRect")->integers[L"Position:bottom"], 2100);
}

TEST_F(ManagePage, NonsenseSizesAreShownAsTheyAreAndSetsStillConfigured) {
    constexpr LONG kMin = -2147483647 - 1, kMax = 2147483647;
    constexpr const wchar_t* kNoPage =
        L"2 CSASetConfigDlg::InitializePageControl: blank page: a host object failed with status 0x80070057.\n";
    AddSet(4, L"Negative", 0, {100, 100, -400, 0}, {{0, 0, 50, 50}});
    AddSet(5, L"Everything", 0, {kMin, kMin, kMax, kMax}, {{kMin, kMin, kMax, kMax}});
    AddSet(6, L"Thin", 0, {0, 0, 1, kMax}, {{0, 0, 1, 1}});
    SetRealSize(-1, kMax);
    UseSystem(2);
    const std::pair<int, const wchar_t*> sizes[] = {
        {3, L"-2.0 x -0.4 in"}, {4, L"8454660.0 x 8454660.0 in"}, {5, L"0.0 x 8454660.0 in"}, {0, L"8.3 x 11.7 in"}};
    EXPECT_TRUE(Play([&](HWND dialog) {
        for (const auto& [item, size] : sizes) {
            SelectSet(dialog, item);
            EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), size);
        }
        OpenAndClose(
            dialog, IDC_MANAGE_SETTINGS, [](HWND) {}, IDCANCEL);
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"-0.0 x 8454660.0 in");
        OpenAndClose(
            dialog, IDC_MANAGE_CONFIGURE, [](HWND configure) { EXPECT_EQ(RowCount(configure), 2); }, IDOK);
        EXPECT_EQ(TakeTraceTexts(), kNoPage);
        PressOk(dialog);
    }));
    EXPECT_EQ(m_tree->Child(L"0x00000001")->Child(L"DisplayRect")->integers[L"Position:right"], -1);
    EXPECT_EQ(m_tree->Child(L"0x00000001")->Child(L"Rect")->children.size(), 2u);
}

TEST_F(ManagePage, ConfiguringReachesTheHostWithOk) {
    const std::wstring before = m_tree->Dump();
    EXPECT_TRUE(Play([&](HWND dialog) {
        const auto configure = [&](HWND opened) {
            EXPECT_EQ(TitleOf(opened), L"Configure Area Set - Blank");
            EXPECT_FALSE(WorkingRoot().booleans[L"RadioPageSource"]);
            Push(opened, IDC_CONFIG_ADD);
            Push(opened, IDC_CONFIG_IGNORED);
        };
        SelectSet(dialog, 2);
        OpenAndClose(dialog, IDC_MANAGE_CONFIGURE, configure, IDOK);
        EXPECT_EQ(GetFocus(), SetsOf(dialog));
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"210.0 x 297.0 mm");
        EXPECT_EQ(PreviewAt(dialog, 500, 500), 'w');
        EXPECT_EQ(PreviewAt(dialog, 500, 100), 'h');

        RECT item = {LVIR_LABEL, 0, 0, 0};
        SendMessageW(SetsOf(dialog), LVM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&item));
        POINT place = {item.left + 10, (item.top + item.bottom) / 2};
        ClientToScreen(SetsOf(dialog), &place);
        Click(place);
        Click(place);
        EXPECT_EQ(TitleOf(TopDialog()), L"Configure Area Set - Letter") << "by a double click";
        Press(TopDialog(), IDCANCEL);
        EXPECT_EQ(SelectedSet(dialog), 1);
        EXPECT_EQ(m_tree->Dump(), before) << "the host's settings wait for OK";
        PressOk(dialog);
    }));
    EXPECT_EQ(m_tree->Child(L"0x00000003")->integers[L"Flags"], SA_AREAS_IGNORED);
    EXPECT_EQ(m_tree->Child(L"0x00000003")->Child(L"Rect")->children.size(), 1u);
}

}  // namespace
