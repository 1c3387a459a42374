// "Manage Area Sets": the list of sets and its commands, by real keys and mouse, checked against the host's settings.
#include "dialogs/ManageFixture.h"
#include "refhost/controls/HostControls.h"

namespace {

using namespace test;

constexpr UINT kOfASet[] = {IDC_MANAGE_COPY, IDC_MANAGE_REMOVE, IDC_MANAGE_CONFIGURE};

class ManageList : public ManageDialog {
protected:
    static void ExpectLabel(HWND dialog, const wchar_t* text) {
        ASSERT_NE(LabelEdit(dialog), nullptr);
        EXPECT_EQ(GetTextOfWindow(LabelEdit(dialog)), text);
    }
};

TEST_F(ManageList, SelectingPreviewsAndHelpIsTheChapterOfThisDialog) {
    std::vector<DWORD> asked;
    const com::HostDll controls(L"HostControls.dll");
    const auto setOpener = controls.Export<decltype(HostControlsSetHelpOpener)>("HostControlsSetHelpOpener");
    setOpener(
        [](const HostHelpRequest* request, void* context) -> BOOL {
            static_cast<std::vector<DWORD>*>(context)->push_back(request->context);
            return TRUE;
        },
        &asked);
    EXPECT_TRUE(Play([](HWND dialog) {
        EXPECT_EQ(SetNames(dialog), L"Invoice|Letter|Blank|");
        EXPECT_EQ(SelectedSet(dialog), 0);
        EXPECT_EQ(GetFocus(), SetsOf(dialog));
        for (const UINT id : kOfASet) EXPECT_TRUE(Enabled(dialog, id)) << id;
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"210.0 x 297.0 mm");
        EXPECT_EQ(PreviewAt(dialog, 300, 300), 'h') << "an area";
        EXPECT_EQ(PreviewAt(dialog, 700, 300), 'w') << "the page";
        EXPECT_EQ(PreviewAt(dialog, 700, 700), 'h');
        Key(VK_DOWN);
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"297.0 x 210.0 mm");
        EXPECT_EQ(PreviewAt(dialog, 300, 500), 'w') << "an area that is ignored";
        EXPECT_EQ(PreviewAt(dialog, 700, 500), 'h');
        EXPECT_EQ(PreviewAt(dialog, 500, 50), 'f') << "beside a page that lies across";
        Key(VK_DOWN);
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"100.0 x 50.0 mm");
        EXPECT_EQ(PreviewAt(dialog, 300, 500), 'f') << "no areas, no page";
        Key(VK_HOME);
        EXPECT_EQ(PreviewAt(dialog, 300, 300), 'h');
        Key(VK_F1);
        Push(dialog, IDHELP);
        PressOk(dialog);
    }));
    setOpener(nullptr, nullptr);
    EXPECT_EQ(asked, (std::vector<DWORD>{0x26C88, 0x26C88}));
    EXPECT_EQ(HostSets(), L"1:Invoice 2:Letter 3:Blank ");
}

TEST_F(ManageList, CreatedAndCopiedSetsAreNamedInTheList) {
    m_tree->Child(L"0x00000002")->integers[L"Flags"] = 0x10000007;
    Init();
    EXPECT_TRUE(Play([](HWND dialog) {
        Click(GetDlgItem(dialog, IDC_MANAGE_CREATE));
        EXPECT_EQ(SelectedSet(dialog), 3);
        ExpectLabel(dialog, L"New Area Set");
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"0.0 x 0.0 mm");
        EXPECT_EQ(PreviewAt(dialog, 300, 300), 'f');
        Type(L"Delivery note");
        Key(VK_RETURN);
        EXPECT_EQ(GetFocus(), SetsOf(dialog));
        Key(VK_INSERT);
        Type(L"dropped");
        Key(VK_ESCAPE);
        EXPECT_EQ(LabelEdit(dialog), nullptr) << "Escape in the label ends its editing alone";

        SelectSet(dialog, 1);
        Click(GetDlgItem(dialog, IDC_MANAGE_COPY));
        ExpectLabel(dialog, L"Copy of Letter");
        EXPECT_EQ(SetName(dialog, 5), L"Letter");
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"297.0 x 210.0 mm");
        EXPECT_EQ(PreviewAt(dialog, 700, 500), 'h');
        Key(VK_RETURN);
        SelectSet(dialog, 0);
        Key('O', VK_MENU);
        ExpectLabel(dialog, L"Copy of Invoice");
        Key(VK_ESCAPE);

        SelectSet(dialog, 2);
        Key(VK_F2);
        Key(VK_DELETE);
        ExpectLabel(dialog, L"");
        Key(VK_RETURN);
        EXPECT_EQ(SetNames(dialog), L"Invoice|Letter|Blank|Delivery note|New Area Set|Copy of Letter|Invoice|");
        PressOk(dialog);
    }));
    EXPECT_EQ(HostSets(), L"1:Invoice 2:Letter 3:Blank 4:Delivery note 5:New Area Set 6:Copy of Letter 7:Invoice ");
    m_tree->Child(L"0x00000006")->strings[L"Name"] = L"Letter";
    EXPECT_EQ(m_tree->Child(L"0x00000006")->Dump(), m_tree->Child(L"0x00000002")->Dump());
    EXPECT_EQ(m_tree->Child(L"0x00000007")->Dump(), m_tree->Child(L"0x00000001")->Dump());
}

TEST_F(ManageList, RemovingLeavesTheNextSetAndAtLastNone) {
    EXPECT_TRUE(Play([](HWND dialog) {
        SelectSet(dialog, 1);
        Click(GetDlgItem(dialog, IDC_MANAGE_REMOVE));
        EXPECT_EQ(SetNames(dialog), L"Invoice|Blank|");
        EXPECT_GE(SelectedSet(dialog), 0);
        SelectSet(dialog, 0);
        SetFocus(SetsOf(dialog));
        Key(VK_DELETE);
        EXPECT_EQ(SetNames(dialog), L"Blank|");
        EXPECT_EQ(SelectedSet(dialog), 0);
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"100.0 x 50.0 mm");
        Click(GetDlgItem(dialog, IDC_MANAGE_REMOVE));
        EXPECT_EQ(SetCount(dialog), 0);
        for (const UINT id : kOfASet) EXPECT_FALSE(Enabled(dialog, id)) << id;
        EXPECT_TRUE(Enabled(dialog, IDC_MANAGE_CREATE));
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"100.0 x 50.0 mm") << "stays";
        EXPECT_EQ(PreviewAt(dialog, 300, 300), 'f');
        EXPECT_EQ(GetFocus(), SetsOf(dialog)) << "the keyboard still works";
        Key(VK_DELETE);
        Key(VK_F2);
        EXPECT_EQ(LabelEdit(dialog), nullptr);
        Key(VK_RETURN);
    }));
    EXPECT_EQ(HostSets(), L"");
    // Without sets: a preview that was never fed, and a first set by the keyboard alone.
    EXPECT_TRUE(Play([](HWND dialog) {
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"...");
        EXPECT_EQ(PreviewAt(dialog, 20, 20), 'w');
        EXPECT_FALSE(Enabled(dialog, IDC_MANAGE_COPY));
        EXPECT_EQ(GetFocus(), SetsOf(dialog));
        Key(VK_INSERT);
        Key(VK_RETURN);
        EXPECT_TRUE(Enabled(dialog, IDC_MANAGE_CONFIGURE));
        PressOk(dialog);
    }));
    EXPECT_EQ(HostSets(), L"4:New Area Set ") << "the identifiers of removed sets are not used again";
}

TEST_F(ManageList, AnyNameIsKept) {
    const std::wstring names[] = {std::wstring(64, L'n'),
                                  std::wstring(10000, L'W'),
                                  L" ",
                                  L"two\r\nlines",
                                  L"\x05E9\x05DC\x05D5\x05DD \x0645\x0631\x062D\x0628\x0627",
                                  L"\xD83D\xDCC4 page",
                                  L"%s %n & 100%"};
    constexpr int kCount = static_cast<int>(std::size(names));
    for (unsigned id = 4; id <= kCount; ++id) AddSet(id, L"Letter", 0, {}, {});
    Init();
    EXPECT_TRUE(Play([&](HWND dialog) {
        for (int item = 0; item < kCount; ++item) {
            SelectSet(dialog, item);
            Key(VK_F2);
            SetWindowTextW(LabelEdit(dialog), names[item].c_str());
            Key(VK_RETURN);
        }
        RECT client;
        GetClientRect(SetsOf(dialog), &client);
        EXPECT_GT(SendMessageW(SetsOf(dialog), LVM_GETCOLUMNWIDTH, 0, 0), client.right)
            << "the longest name can be scrolled to";
        PressOk(dialog);
    }));
    for (size_t i = 0; i < std::size(names); ++i) EXPECT_EQ(m_tree->children[i].second->strings[L"Name"], names[i]);
    EXPECT_TRUE(Play([&](HWND dialog) {
        for (int item = 0; item < kCount; ++item) EXPECT_EQ(SetName(dialog, item), names[item]);
        PressCancel(dialog);
    }));
}

TEST_F(ManageList, ALabelThatIsEditedStillEndsWithTheDialog) {
    for (const bool ok : {false, true}) {
        EXPECT_TRUE(Play([=](HWND dialog) {
            Key(VK_F2);
            Type(L"Changed");
            PostMessageW(dialog, ok ? WM_COMMAND : WM_CLOSE, ok ? IDOK : 0, 0);
        }));
        EXPECT_EQ(HostSets(), ok ? L"1:Changed 2:Letter 3:Blank " : L"1:Invoice 2:Letter 3:Blank ");
        SAAreaInfo info = {};
        EXPECT_TRUE(m_module->Export<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(1, &info));
        EXPECT_STREQ(info.szName, ok ? L"Changed" : L"Invoice") << "also where the sets had been read anew before";
    }
}

TEST_F(ManageList, CancelDropsEverything) {
    const std::wstring before = m_tree->Dump();
    EXPECT_TRUE(Play([](HWND dialog) {
        Key(VK_DELETE);
        Key(VK_INSERT);
        Type(L"Another");
        Key(VK_RETURN);
        SelectSet(dialog, 0);
        Press(dialog, IDC_MANAGE_SETTINGS);
        PressOk(TopDialog());
        Wait();
        EXPECT_EQ(SetNames(dialog), L"Letter|Blank|Another|");
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"210.0 x 297.0 mm");
        Key(VK_ESCAPE);
    }));
    EXPECT_EQ(m_tree->Dump(), before);
    EXPECT_TRUE(Play([](HWND dialog) {
        EXPECT_EQ(SetNames(dialog), L"Invoice|Letter|Blank|");
        SelectSet(dialog, 1);
        EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"297.0 x 210.0 mm");
        PressCancel(dialog);
    }));
    EXPECT_EQ(m_tree->Dump(), before);
}

}  // namespace
