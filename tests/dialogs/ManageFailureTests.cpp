// "Manage Area Sets" when its host fails: what is told, and that no set is lost.
#include "dialogs/ManageFixture.h"
#include "support/FakeDocuments.h"

namespace {

using namespace test;

class ManageFailure : public ManageDialog {
protected:
    ManageFailure() { m_stack.documents = {1}; }

    FakeStack m_stack;
};

TEST_F(ManageFailure, RefusedWithoutADialog) {
    EXPECT_FALSE(m_configure(m_owner, nullptr, 0, 0));
    ExpectNothingReported();
    EXPECT_TRUE(Play({[&](HWND dialog) {
        EXPECT_FALSE(Open());
        EXPECT_EQ(TakeTraceTexts(), L"6 SAConfigure: called again while its dialog is open.\n");
        PressCancel(dialog);
    }}));
    m_units.reset();
    EXPECT_FALSE(Open()) << "the size of the first set cannot be told";
    const std::wstring traces = TakeTraceTexts();
    EXPECT_TRUE(traces.ends_with(L"2 #34108\n6 SAConfigure: dlg.DoModal failed.\n")) << traces;
    EXPECT_EQ(TakeHostBoxes().size(), 1u);
}

// A load that failed half-way is reported by SAInit's traces alone; the dialog afterwards can only be cancelled.
TEST_F(ManageFailure, SetsThatWereNotReadAreNeverStoredOver) {
    const std::wstring before = m_tree->Dump();
    int stopped = 0;
    for (int n = 1; n < 60 && stopped < 2; ++n) {
        SCOPED_TRACE(n);
        Host().failAt = n;
        Init();
        Host().Reset();
        if (TakeTraceTexts().find(L"CAreaSetManager::LoadSettings failed") == std::wstring::npos) continue;
        ++stopped;
        EXPECT_TRUE(Play({[](HWND) {},
                          [&](HWND dialog) {
                              const std::vector<std::wstring> boxes = TakeHostBoxes();
                              ASSERT_EQ(boxes.size(), 1u);
                              EXPECT_TRUE(boxes[0].starts_with(L"The area sets could not be read completely."));
                              EXPECT_EQ(TakeTraceTexts(), L"2 #34106\n");
                              EXPECT_EQ(SetCount(dialog), 0);
                              for (const UINT id : {IDOK, IDC_MANAGE_CREATE, IDC_MANAGE_COPY, IDC_MANAGE_REMOVE,
                                                    IDC_MANAGE_CONFIGURE, IDC_MANAGE_SETTINGS}) {
                                  EXPECT_FALSE(Enabled(dialog, id)) << id;
                              }
                              Screenshot(dialog, L"manage-stopped");
                              Post(dialog, IDOK);
                              Post(dialog, IDC_MANAGE_PAGE_SIZE);
                              PressKey(VK_INSERT);
                          },
                          [&](HWND dialog) {
                              EXPECT_FALSE(Enabled(dialog, IDC_MANAGE_SETTINGS));
                              EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDCANCEL));
                              PressKey(VK_RETURN);
                          }}));
        EXPECT_EQ(m_tree->Dump(), before);
        EXPECT_TRUE(Play({[](HWND dialog) { EXPECT_EQ(SetCount(dialog), 3); }, PressCancel})) << "Cancel read anew";
    }
    EXPECT_EQ(stopped, 2);
}

// The n-th host call of OK fails: told, and the same dialog's next OK hands everything over.
TEST_F(ManageFailure, AFailingOkKeepsTheDialogOpen) {
    const std::wstring before = m_tree->Dump();
    std::wstring after;
    int n = 0, kept = 0;
    bool done = false;
    Steps steps = {[](HWND) { PressKey(VK_F2); }, [](HWND) { TypeText(L"Kept"); }, [](HWND) { PressKey(VK_RETURN); }};
    const auto fail = [&](HWND dialog) {
        for (n = 1; n < 400 && !done; ++n) {
            SCOPED_TRACE(n);
            Host().Reset();
            Host().failAt = n;
            SendMessageW(dialog, WM_COMMAND, IDOK, 0);
            const bool met = Host().calls >= n;
            Host().Reset();
            const size_t boxes = TakeHostBoxes().size();
            TakeTraces();
            done = !met || boxes == 0;
            if (done) break;
            ++kept;
            EXPECT_EQ(boxes, 1u);
            EXPECT_TRUE(IsWindowVisible(dialog));
            EXPECT_EQ(SetNames(dialog), L"Kept|Letter|Blank|");
            const std::wstring host = m_tree->Dump();
            // This host's settings are not written as a whole: between clearing and copying they are empty.
            EXPECT_TRUE(host == before || host == L"{}") << "nothing is committed in part";
        }
    };
    steps.push_back(fail);
    EXPECT_TRUE(Play(steps));
    EXPECT_GT(kept, 50);
    EXPECT_EQ(HostSets(), L"1:Kept 2:Letter 3:Blank ");
    EXPECT_EQ(m_tree->Child(L"0x00000001")->Child(L"Rect")->children.size(), 2u);
}

TEST_F(ManageFailure, AFailingCancelClosesAndDropsTheCopy) {
    const std::wstring before = m_tree->Dump();
    for (int n = 1; n <= 2; ++n) {
        SCOPED_TRACE(n);
        EXPECT_TRUE(Play({[](HWND) { PressKey(VK_DELETE); },
                          [n](HWND dialog) {
                              Host().Reset();
                              Host().failAt = n;
                              PressCancel(dialog);
                          }}));
        Host().Reset();
        EXPECT_EQ(TakeHostBoxes().size(), 1u);
        TakeTraces();
        EXPECT_FALSE(Open()) << "there are no settings to read";
        EXPECT_EQ(TakeHostBoxes().size(), 1u);
        TakeTraces();
        EXPECT_EQ(m_tree->Dump(), before);
        Init();
        TakeTraces();
        EXPECT_TRUE(Play({[](HWND dialog) { EXPECT_EQ(SetCount(dialog), 3); }, PressCancel}));
    }
}

// The host's settings came back, but the sets in them could not all be read: told at once, not only when the dialog is
// opened again.
TEST_F(ManageFailure, ACancelThatReadsOnlySomeSetsTellsSo) {
    int told = 0;
    for (int n = 1; n < 60 && told < 3; ++n) {
        SCOPED_TRACE(n);
        Init();
        TakeTraces();
        EXPECT_TRUE(Play({[n](HWND dialog) {
            Host().Reset();
            Host().failAt = n;
            PressCancel(dialog);
        }}));
        Host().Reset();
        const std::vector<std::wstring> boxes = TakeHostBoxes();
        const std::wstring traces = TakeTraceTexts();
        if (traces.find(L"LoadSettings failed") == std::wstring::npos) continue;
        ++told;
        EXPECT_EQ(traces, L"6 CAreaSetManager::LoadSettings failed\n2 #34214\n");
        ASSERT_EQ(boxes.size(), 1u);
        EXPECT_TRUE(boxes[0].starts_with(L"The area sets could not be read again after Cancel.")) << boxes[0];
        EXPECT_TRUE(Play({[](HWND) {}, [](HWND dialog) { EXPECT_FALSE(Enabled(dialog, IDOK)); }, PressCancel}));
        EXPECT_EQ(TakeHostBoxes().size(), 1u) << "of the dialog that could only be cancelled";
    }
    EXPECT_EQ(told, 3);
    TakeTraces();
}

TEST_F(ManageFailure, AFailingStackCountsAsNoPage) {
    m_documents.reset();
    const FakePageImageClass images;
    m_stack.byteType = VT_I4;  // a page without bytes is thrown
    m_host->quire.Attach(MakeFakeQuire(m_stack));
    m_tree->booleans[L"RadioPageSource"] = true;
    Init();
    EXPECT_TRUE(Play({[&](HWND dialog) {
        EXPECT_EQ(TakeTraceTexts(),
                  L"2 CSAMgrConfigDlg::OnInitDialog: GetPage: a host object failed with status 0x80070057.\n");
        EXPECT_FALSE(Enabled(dialog, IDC_MANAGE_SCANNED));
        EXPECT_TRUE(Checked(dialog, IDC_MANAGE_PAGE_SIZE));
        EXPECT_TRUE(Enabled(dialog, IDC_MANAGE_SETTINGS));
        PressOk(dialog);
    }}));
    EXPECT_FALSE(m_tree->booleans[L"RadioPageSource"]);
}

// A paper size dialog that cannot open leaves the set's size alone.
TEST_F(ManageFailure, WithoutUnitsTheCommandStops) {
    EXPECT_TRUE(Play({[&](HWND dialog) {
        m_units.reset();
        SendMessageW(dialog, WM_COMMAND, IDC_MANAGE_SETTINGS, 0);
        EXPECT_EQ(TakeHostBoxes().size(), 1u);
        SelectSet(dialog, 2);
        SelectSet(dialog, 1);
        EXPECT_EQ(TakeHostBoxes().size(), 1u) << "once, not for each selection";
        TakeTraces();
        PressOk(dialog);
    }}));
    EXPECT_EQ(m_tree->Child(L"0x00000001")->Child(L"DisplayRect")->integers[L"Position:right"], 2100);
}

// A translation whose dialog has no preview.
struct FaultyLanguage {
    FaultyLanguage() { SetEnvironmentVariableW(L"HOST_LANGUAGE", L"x-nopreview"); }
    ~FaultyLanguage() { SetEnvironmentVariableW(L"HOST_LANGUAGE", nullptr); }
};

class ManageWithoutPreview : private FaultyLanguage, public ManageDialog {};

TEST_F(ManageWithoutPreview, CanOnlyBeCancelled) {
    const std::wstring before = m_tree->Dump();
    EXPECT_TRUE(Play({[](HWND) {},
                      [&](HWND dialog) {
                          EXPECT_EQ(TakeTraceTexts(),
                                    L"6 CPagePreviewCtrl::SubclassControl: SubclassDlgItem failed.\n"
                                    L"6 CSAMgrConfigDlg::OnInitDialog: m_ctrlPreview.SubclassControl failed.\n");
                          const std::vector<std::wstring> boxes = TakeHostBoxes();
                          ASSERT_EQ(boxes.size(), 1u);
                          EXPECT_TRUE(boxes[0].starts_with(L"This window could not be set up completely")) << boxes[0];
                          EXPECT_FALSE(Enabled(dialog, IDOK));
                          EXPECT_EQ(SetCount(dialog), 0);
                          Post(dialog, IDOK);
                      },
                      PressCancel}));
    EXPECT_EQ(m_tree->Dump(), before);
}

// The translation lacks the text too, and hosts may look strings up in the translation alone.
TEST_F(ManageWithoutPreview, TellsInTheModulesOwnLanguageWhatATranslationLacks) {
    EXPECT_TRUE(Play({[](HWND) {},
                      [&](HWND dialog) {
                          TakeTraces();
                          Host().Reset();
                          Host().failAt = 1;
                          PressCancel(dialog);
                      }}));
    Host().Reset();
    EXPECT_EQ(TakeTraceTexts(),
              L"6 CSAMgrConfigDlg: failed with status 0x8007000e.\n"
              L"2 The area sets could not be read again after Cancel. Nothing was saved; restart the application "
              L"before you go on.\n");
    TakeHostBoxes();
}

}  // namespace
