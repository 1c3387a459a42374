// "Manage Area Sets": the list of sets and its commands, by real keys and mouse, checked against the host's settings.
#include "dialogs/ManageFixture.h"

namespace {

using namespace test;

class ManageList : public ManageDialog {
protected:
    static void EnterLabel(Steps& steps, const std::wstring& text) {
        steps.push_back([](HWND dialog) { ASSERT_NE(LabelEdit(dialog), nullptr); });
        steps.push_back([=](HWND) { TypeText(text); });
        steps.push_back([](HWND) { PressKey(VK_RETURN); });
    }
};

TEST_F(ManageList, OpensOnTheFirstSet) {
    EXPECT_TRUE(Play({[](HWND) {},
                      [](HWND dialog) {
                          EXPECT_EQ(SetNames(dialog), L"Invoice|Letter|Blank|");
                          EXPECT_EQ(SelectedSet(dialog), 0);
                          EXPECT_EQ(GetFocus(), SetsOf(dialog));
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"210.0 x 297.0 mm");
                          for (const UINT id : {IDC_MANAGE_COPY, IDC_MANAGE_REMOVE, IDC_MANAGE_CONFIGURE}) {
                              EXPECT_TRUE(Enabled(dialog, id)) << id;
                          }
                          Screenshot(dialog, L"manage");
                      },
                      PressOk}));
    EXPECT_EQ(HostSets(), L"1:Invoice 2:Letter 3:Blank ");
}

TEST_F(ManageList, SelectingPreviews) {
    EXPECT_TRUE(Play({[](HWND dialog) {
                          EXPECT_EQ(PreviewAt(dialog, 300, 300), 'h') << "an area";
                          EXPECT_EQ(PreviewAt(dialog, 700, 300), 'w') << "the page";
                          EXPECT_EQ(PreviewAt(dialog, 700, 700), 'h');
                      },
                      [](HWND) { PressKey(VK_DOWN); },
                      [](HWND dialog) {
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"297.0 x 210.0 mm");
                          EXPECT_EQ(PreviewAt(dialog, 300, 500), 'w') << "an area that is ignored";
                          EXPECT_EQ(PreviewAt(dialog, 700, 500), 'h');
                          EXPECT_EQ(PreviewAt(dialog, 500, 50), 'f') << "beside a page that lies across";
                          Screenshot(dialog, L"manage-ignored");
                      },
                      [](HWND) { PressKey(VK_DOWN); },
                      [](HWND dialog) {
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"100.0 x 50.0 mm");
                          EXPECT_EQ(PreviewAt(dialog, 300, 500), 'f') << "no areas, no page";
                      },
                      [](HWND) { PressKey(VK_HOME); }, [](HWND dialog) { EXPECT_EQ(PreviewAt(dialog, 300, 300), 'h'); },
                      PressCancel}));
}

TEST_F(ManageList, CreatedSetsAreNamedInTheList) {
    Steps steps = {[](HWND dialog) { ClickOn(GetDlgItem(dialog, IDC_MANAGE_CREATE)); }, [](HWND) {},
                   [](HWND dialog) {
                       EXPECT_EQ(SetNames(dialog), L"Invoice|Letter|Blank|New Area Set|");
                       EXPECT_EQ(SelectedSet(dialog), 3);
                       EXPECT_EQ(GetTextOfWindow(LabelEdit(dialog)), L"New Area Set");
                       EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"0.0 x 0.0 mm");
                       EXPECT_EQ(PreviewAt(dialog, 300, 300), 'f');
                       Screenshot(dialog, L"manage-create");
                   }};
    EnterLabel(steps, L"Delivery note");
    steps.push_back([](HWND dialog) { EXPECT_EQ(GetFocus(), SetsOf(dialog)); });
    steps.push_back([](HWND) { PressKey(VK_INSERT); });
    steps.push_back([](HWND dialog) { EXPECT_NE(LabelEdit(dialog), nullptr); });
    steps.push_back([](HWND) { TypeText(L"dropped"); });
    steps.push_back([](HWND) { PressKey(VK_ESCAPE); });
    steps.push_back([](HWND dialog) {
        EXPECT_EQ(LabelEdit(dialog), nullptr);
        EXPECT_EQ(SetName(dialog, 4), L"New Area Set") << "Escape in the label ends its editing alone";
    });
    steps.push_back(PressOk);
    EXPECT_TRUE(Play(steps));
    EXPECT_EQ(HostSets(), L"1:Invoice 2:Letter 3:Blank 4:Delivery note 5:New Area Set ");
}

TEST_F(ManageList, CopiesHaveEverythingOfTheirSource) {
    m_tree->Child(L"0x00000002")->integers[L"Flags"] = 0x10000007;
    Init();
    Steps steps = {[](HWND dialog) { SelectSet(dialog, 1); },
                   [](HWND dialog) { ClickOn(GetDlgItem(dialog, IDC_MANAGE_COPY)); },
                   [](HWND) {},
                   [](HWND dialog) {
                       EXPECT_EQ(GetTextOfWindow(LabelEdit(dialog)), L"Copy of Letter");
                       EXPECT_EQ(SetName(dialog, 3), L"Letter");
                       EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"297.0 x 210.0 mm");
                       EXPECT_EQ(PreviewAt(dialog, 700, 500), 'h');
                   },
                   [](HWND) { PressKey(VK_RETURN); },
                   [](HWND dialog) {
                       EXPECT_EQ(SetNames(dialog), L"Invoice|Letter|Blank|Copy of Letter|");
                       SelectSet(dialog, 0);
                   },
                   [](HWND) { PressKey('O', VK_MENU); },
                   [](HWND dialog) { EXPECT_EQ(GetTextOfWindow(LabelEdit(dialog)), L"Copy of Invoice"); },
                   [](HWND) { PressKey(VK_ESCAPE); },
                   PressOk};
    EXPECT_TRUE(Play(steps));
    EXPECT_EQ(HostSets(), L"1:Invoice 2:Letter 3:Blank 4:Copy of Letter 5:Invoice ");
    m_tree->Child(L"0x00000004")->strings[L"Name"] = L"Letter";
    EXPECT_EQ(m_tree->Child(L"0x00000004")->Dump(), m_tree->Child(L"0x00000002")->Dump());
    EXPECT_EQ(m_tree->Child(L"0x00000005")->Dump(), m_tree->Child(L"0x00000001")->Dump());
}

TEST_F(ManageList, RemovingLeavesTheNextSetAndAtLastNone) {
    EXPECT_TRUE(Play({[](HWND dialog) { SelectSet(dialog, 1); },
                      [](HWND dialog) { ClickOn(GetDlgItem(dialog, IDC_MANAGE_REMOVE)); }, [](HWND) {},
                      [](HWND dialog) {
                          EXPECT_EQ(SetNames(dialog), L"Invoice|Blank|");
                          EXPECT_GE(SelectedSet(dialog), 0);
                          SelectSet(dialog, 0);
                          SetFocus(SetsOf(dialog));
                      },
                      [](HWND) { PressKey(VK_DELETE); },
                      [](HWND dialog) {
                          EXPECT_EQ(SetNames(dialog), L"Blank|");
                          EXPECT_EQ(SelectedSet(dialog), 0);
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"100.0 x 50.0 mm");
                          ClickOn(GetDlgItem(dialog, IDC_MANAGE_REMOVE));
                      },
                      [](HWND) {},
                      [](HWND dialog) {
                          EXPECT_EQ(SetCount(dialog), 0);
                          for (const UINT id : {IDC_MANAGE_COPY, IDC_MANAGE_REMOVE, IDC_MANAGE_CONFIGURE}) {
                              EXPECT_FALSE(Enabled(dialog, id)) << id;
                          }
                          EXPECT_TRUE(Enabled(dialog, IDC_MANAGE_CREATE));
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"100.0 x 50.0 mm") << "stays";
                          EXPECT_EQ(PreviewAt(dialog, 300, 300), 'f');
                          EXPECT_EQ(GetFocus(), SetsOf(dialog)) << "the keyboard still works";
                      },
                      [](HWND) { PressKey(VK_DELETE); }, [](HWND) { PressKey(VK_F2); },
                      [](HWND dialog) { EXPECT_EQ(LabelEdit(dialog), nullptr); }, [](HWND) { PressKey(VK_RETURN); }}));
    EXPECT_EQ(HostSets(), L"");
    // Without sets: a preview that was never fed, and a first set by the keyboard alone.
    EXPECT_TRUE(Play({[](HWND dialog) {
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"...");
                          EXPECT_EQ(PreviewAt(dialog, 20, 20), 'w');
                          EXPECT_FALSE(Enabled(dialog, IDC_MANAGE_COPY));
                          EXPECT_EQ(GetFocus(), SetsOf(dialog));
                          Screenshot(dialog, L"manage-empty");
                      },
                      [](HWND) { PressKey(VK_INSERT); }, [](HWND) { PressKey(VK_RETURN); },
                      [](HWND dialog) { EXPECT_TRUE(Enabled(dialog, IDC_MANAGE_CONFIGURE)); }, PressOk}));
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
    for (unsigned id = 4; id <= std::size(names); ++id) AddSet(id, L"Letter", 0, {}, {});
    Init();
    Steps steps;
    for (int item = 0; item < static_cast<int>(std::size(names)); ++item) {
        const std::wstring& name = names[item];
        steps.push_back([=](HWND dialog) { SelectSet(dialog, item); });
        steps.push_back([](HWND) { PressKey(VK_F2); });
        steps.push_back([&name](HWND dialog) { SetWindowTextW(LabelEdit(dialog), name.c_str()); });
        steps.push_back([](HWND) { PressKey(VK_RETURN); });
    }
    steps.push_back([](HWND dialog) {
        RECT client;
        GetClientRect(SetsOf(dialog), &client);
        EXPECT_GT(ColumnWidth(dialog), client.right) << "the longest name can be scrolled to";
        Screenshot(dialog, L"manage-names");
        PressOk(dialog);
    });
    EXPECT_TRUE(Play(steps));
    EXPECT_TRUE(Play({[&](HWND dialog) {
                          ASSERT_EQ(SetCount(dialog), static_cast<int>(std::size(names)));
                          for (int item = 0; item < SetCount(dialog); ++item) {
                              EXPECT_EQ(SetName(dialog, item), names[item]);
                              EXPECT_EQ(m_tree->children[static_cast<size_t>(item)].second->strings[L"Name"],
                                        names[item]);
                          }
                      },
                      PressCancel}));
}

TEST_F(ManageList, AnEmptiedLabelKeepsTheName) {
    EXPECT_TRUE(Play({[](HWND) { PressKey(VK_F2); }, [](HWND) { PressKey(VK_DELETE); },
                      [](HWND dialog) { EXPECT_EQ(GetTextOfWindow(LabelEdit(dialog)), L""); },
                      [](HWND) { PressKey(VK_RETURN); },
                      [](HWND dialog) { EXPECT_EQ(SetNames(dialog), L"Invoice|Letter|Blank|"); }, PressOk}));
    EXPECT_EQ(HostSets(), L"1:Invoice 2:Letter 3:Blank ");
}

TEST_F(ManageList, ALabelThatIsEditedStillEndsWithTheDialog) {
    const Steps edit = {[](HWND) { PressKey(VK_F2); }, [](HWND) { TypeText(L"Changed"); }};
    Steps steps = edit;
    steps.push_back([](HWND dialog) { PostMessageW(dialog, WM_CLOSE, 0, 0); });
    EXPECT_TRUE(Play(steps));
    EXPECT_EQ(HostSets(), L"1:Invoice 2:Letter 3:Blank ");
    SAAreaInfo info = {};
    EXPECT_TRUE(reinterpret_cast<decltype(&::SAGetAreaInfo)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"Zonwick.dll"), "SAGetAreaInfo")))(1, &info));
    EXPECT_STREQ(info.szName, L"Invoice") << "the name came after the sets had been read anew";
    steps = edit;
    steps.push_back([](HWND dialog) { Post(dialog, IDOK); });
    EXPECT_TRUE(Play(steps));
    EXPECT_EQ(HostSets(), L"1:Changed 2:Letter 3:Blank ");
}

TEST_F(ManageList, CancelDropsEverything) {
    const std::wstring before = m_tree->Dump();
    EXPECT_TRUE(Play({[](HWND) { PressKey(VK_DELETE); }, [](HWND) { PressKey(VK_INSERT); },
                      [](HWND) { TypeText(L"Another"); }, [](HWND) { PressKey(VK_RETURN); },
                      [](HWND dialog) {
                          SelectSet(dialog, 0);
                          Post(dialog, IDC_MANAGE_SETTINGS);
                      },
                      PressOk,
                      [](HWND dialog) {
                          EXPECT_EQ(SetNames(dialog), L"Letter|Blank|Another|");
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"210.0 x 297.0 mm");
                      },
                      [](HWND) { PressKey(VK_ESCAPE); }}));
    EXPECT_EQ(m_tree->Dump(), before);
    EXPECT_TRUE(Play({[](HWND dialog) {
                          EXPECT_EQ(SetNames(dialog), L"Invoice|Letter|Blank|");
                          SelectSet(dialog, 1);
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"297.0 x 210.0 mm");
                      },
                      PressCancel}));
    EXPECT_EQ(m_tree->Dump(), before);
}

}  // namespace
