// "Manage Area Sets" when its host fails: what is told, and that no set is lost.
#include "dialogs/ManageFixture.h"
#include "support/FakeObject.h"

namespace {

using namespace test;

class ManageFailure : public ManageDialog {
protected:
    // Plays a dialog that can only be cancelled.
    void PlayStopped() {
        EXPECT_TRUE(Play([this](HWND dialog) {
            Wait();  // for the box behind the opening
            ExpectBox(L"The area sets could not be read completely.");
            EXPECT_EQ(TakeTraceTexts(), L"2 #34106\n");
            EXPECT_EQ(SetCount(dialog), 0);
            Post(dialog, IDOK);
            Post(dialog, IDC_MANAGE_PAGE_SIZE);
            Key(VK_INSERT);
            for (const UINT id : {IDOK, IDC_MANAGE_CREATE, IDC_MANAGE_COPY, IDC_MANAGE_REMOVE, IDC_MANAGE_CONFIGURE,
                                  IDC_MANAGE_SETTINGS}) {
                EXPECT_FALSE(Enabled(dialog, id)) << id;
            }
            EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDCANCEL));
            Key(VK_RETURN);
        }));
    }
};

TEST_F(ManageFailure, RefusedExportsAndCommands) {
    EXPECT_FALSE(m_configure(m_owner, nullptr, 0, 0));
    ExpectNothingReported();
    EXPECT_TRUE(Play([&](HWND dialog) {
        EXPECT_FALSE(Open());
        EXPECT_EQ(TakeTraceTexts(), L"6 SAConfigure: called again while its dialog is open.\n");
        Host().failAt = Host().calls + 1;
        PressOk(dialog);
        ExpectBox(L"The area sets could not be saved.");
        EXPECT_EQ(SetNames(dialog), L"Invoice|Letter|Blank|");
        // A paper size dialog that cannot open leaves the set's size alone.
        m_units.reset();
        SendMessageW(dialog, WM_COMMAND, IDC_MANAGE_SETTINGS, 0);
        ExpectBox(L"");
        SelectSet(dialog, 2);
        SelectSet(dialog, 1);
        ExpectBox(L"");  // once, not for each selection
        TakeTraces();
        PressOk(dialog);
    }));
    EXPECT_EQ(m_tree->Child(L"0x00000001")->Child(L"DisplayRect")->integers[L"Position:right"], 2100);
    EXPECT_FALSE(Open()) << "the size of the first set cannot be told";
    const std::wstring traces = TakeTraceTexts();
    EXPECT_TRUE(traces.ends_with(L"2 #34108\n6 SAConfigure: dlg.DoModal failed.\n")) << traces;
    ExpectBox(L"");
}

// A load that failed half-way is reported by SAInit's traces alone; the dialog afterwards can only be cancelled.
TEST_F(ManageFailure, SetsThatWereNotReadAreNeverStoredOver) {
    const std::wstring before = m_tree->Dump();
    bool failed = false;
    for (int n = 1; n < 60 && !failed; ++n) {
        Host().failAt = n;
        Init();
        Host().Reset();
        failed = TakeTraceTexts().find(L"CAreaSetManager::LoadSettings failed") != std::wstring::npos;
    }
    PlayStopped();
    EXPECT_EQ(m_tree->Dump(), before);
    EXPECT_TRUE(Play([](HWND dialog) {
        EXPECT_EQ(SetCount(dialog), 3) << "Cancel read anew";
        PressCancel(dialog);
    }));
}

// Cancel closes whichever call of the host's settings fails, and tells at once what cannot be had any more.
TEST_F(ManageFailure, AFailingCancelClosesAndDropsTheCopy) {
    const std::wstring before = m_tree->Dump();
    int without = 0, inPart = 0;
    for (int n = 1; n < 60 && inPart < 3; ++n) {
        SCOPED_TRACE(n);
        Init();
        TakeTraces();
        EXPECT_TRUE(Play([n](HWND dialog) {
            Key(VK_DELETE);
            Host().Reset();
            Host().failAt = n;
            PressCancel(dialog);
        }));
        Host().Reset();
        EXPECT_EQ(m_tree->Dump(), before);
        const std::wstring traces = TakeTraceTexts();
        if (traces.empty()) continue;  // a call that need not succeed
        ExpectBox(L"The area sets could not be read again after Cancel.");
        if (traces == L"6 CAreaSetManager::LoadSettings failed\n2 #34214\n") {
            if (++inPart == 1) PlayStopped();
        } else if (++without == 1) {
            EXPECT_FALSE(Open()) << "there are no settings to read";
            ExpectBox(L"");
            TakeTraces();
        }
    }
    EXPECT_GT(without, 1);
    EXPECT_EQ(inPart, 3);
}

class FailingStack final : public FakeDispatch<IQuire> {
public:
    HRESULT STDMETHODCALLTYPE GetCount(LONG*) override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE GetItem(LONG, IQuireDocument**) override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
};

TEST_F(ManageFailure, AFailingStackCountsAsNoPage) {
    m_host->quire.Attach(new FailingStack);
    m_tree->booleans[L"RadioPageSource"] = true;
    Init();
    EXPECT_TRUE(Play([&](HWND dialog) {
        EXPECT_EQ(TakeTraceTexts(),
                  L"2 CSAMgrConfigDlg::OnInitDialog: GetPage: a host object failed with status 0x80004005.\n");
        EXPECT_FALSE(Enabled(dialog, IDC_MANAGE_SCANNED));
        EXPECT_TRUE(Checked(dialog, IDC_MANAGE_PAGE_SIZE));
        EXPECT_TRUE(Enabled(dialog, IDC_MANAGE_SETTINGS));
        PressOk(dialog);
    }));
    EXPECT_FALSE(m_tree->booleans[L"RadioPageSource"]);
}

// A translation that lacks the text of a box: hosts may look strings up in the translation alone.
struct PoorLanguage {
    PoorLanguage() { SetEnvironmentVariableW(L"HOST_LANGUAGE", L"x-poor"); }
    ~PoorLanguage() { SetEnvironmentVariableW(L"HOST_LANGUAGE", nullptr); }
};

class ManageInAPoorLanguage : private PoorLanguage, public ManageDialog {};

TEST_F(ManageInAPoorLanguage, TellsInTheModulesOwn) {
    EXPECT_TRUE(Play([](HWND dialog) {
        Host().failAt = Host().calls + 1;
        PressCancel(dialog);
    }));
    EXPECT_EQ(TakeTraceTexts(),
              L"6 CSAMgrConfigDlg: failed with status 0x8007000e.\n"
              L"2 The area sets could not be read again after Cancel. Nothing was saved; restart the application "
              L"before you go on.\n");
    TakeHostBoxes();
}

}  // namespace
