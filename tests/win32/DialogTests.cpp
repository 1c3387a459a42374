// The dialog layer: what becomes of failures, of refused values, of results and of owners.
#include "win32/Dialog.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>

#include "support/TraceRecorder.h"
#include "test_resource.h"
#include "win32/DialogDriver.h"
#include "win32/DialogScript.h"
#include "win32/Resources.h"

namespace {

constexpr UINT kMessageThatFails = WM_APP + 1;
constexpr UINT kCodeWithResult = 77;

using Action = std::function<void()>;

class TestDlg : public CDialog {
public:
    explicit TestDlg(UINT templateId = IDD_TEST_PLAIN) : CDialog(templateId) {}

    float m_fNumber = 1.0F;
    Action m_onInit, m_onButton, m_onNotice, m_onMessage, m_onDestroy;

protected:
    const wchar_t* GetName() const override { return L"TestDlg"; }
    std::span<const win32::MessageEntry> GetMessageMap() const override {
        static constexpr win32::MessageEntry kMap[] = {
            win32::OnClick<&TestDlg::OnButton>(IDC_TEST_BUTTON),
            win32::OnNotify<&TestDlg::OnNotice>(IDC_TEST_NUMBER, kCodeWithResult),
            win32::OnMessage<&TestDlg::OnFailingMessage>(kMessageThatFails),
            win32::OnMessage<&TestDlg::OnDestroy>(WM_DESTROY),
        };
        return kMap;
    }
    void DoDataExchange(CDataExchange& exchange) override {
        if (GetDlgItem(IDC_TEST_NUMBER)) DDX_MinMaxFloat(exchange, IDC_TEST_NUMBER, m_fNumber, 0.0F, 1500.0F);
    }
    bool OnInitDialog() override {
        if (m_onInit) m_onInit();
        return CDialog::OnInitDialog();
    }

private:
    void OnButton() { m_onButton(); }
    LRESULT OnNotice(NMHDR*) {
        if (m_onNotice) m_onNotice();
        return 42;
    }
    LRESULT OnFailingMessage(WPARAM, LPARAM) {
        m_onMessage();
        return 0;
    }
    LRESULT OnDestroy(WPARAM, LPARAM) {
        if (m_onDestroy) m_onDestroy();
        return 0;
    }
};

class DialogLayer : public testing::Test {
protected:
    void SetUp() override {
        test::TakeBoxes();
        test::TakeTraces();
    }
    void TearDown() override { EXPECT_EQ(test::TakeBoxes().size(), 0U); }

    // Runs the script and cancels.
    static void Play(TestDlg& dialog, const test::Script& script) {
        test::PlayScript(
            [&](HWND window) {
                script(window);
                test::Cancel(window);
            },
            [&] { EXPECT_EQ(dialog.DoModal(), IDCANCEL); });
    }
    static void ExpectOk(TestDlg& dialog, const wchar_t* number = L"1") {
        test::PlayScript(
            [&](HWND window) {
                SetDlgItemTextW(window, IDC_TEST_NUMBER, number);
                test::Push(window, IDOK);
            },
            [&] { EXPECT_EQ(dialog.DoModal(), IDOK) << testing::PrintToString(number); });
    }
    static LRESULT Notify(HWND window, UINT code = kCodeWithResult) {
        NMHDR header = {GetDlgItem(window, IDC_TEST_NUMBER), IDC_TEST_NUMBER, code};
        return SendMessageW(window, WM_NOTIFY, IDC_TEST_NUMBER, reinterpret_cast<LPARAM>(&header));
    }
};

TEST_F(DialogLayer, AnExceptionOfTheInitialisationComesOutOfDoModal) {
    TestDlg dialog;
    dialog.m_onInit = [] { throw _com_error(E_POINTER); };
    try {
        dialog.DoModal();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const _com_error& error) {
        EXPECT_EQ(error.Error(), E_POINTER);
    }
    dialog.m_onInit = [] { throw std::bad_alloc(); };
    EXPECT_THROW(dialog.DoModal(), std::bad_alloc);
    // A handler that the initialisation itself sets off counts as part of it.
    dialog.m_onInit = [&dialog] { dialog.SendMessage(kMessageThatFails); };
    dialog.m_onMessage = [] { throw _com_error(E_FAIL); };
    EXPECT_THROW(dialog.DoModal(), _com_error);
    // The object is as good as new.
    dialog.m_onInit = nullptr;
    ExpectOk(dialog);
}

// A command, a key, a double click, an edited cell is told each time; what follows the pointer once for each cause.
TEST_F(DialogLayer, AFailureIsToldAndTheDialogStays) {
    TestDlg dialog;
    int pressed = 0;
    dialog.m_onButton = [&pressed] {
        if (++pressed <= 2) throw _com_error(REGDB_E_CLASSNOTREG);
        if (pressed == 3) throw std::bad_alloc();
    };
    dialog.m_onNotice = [] { throw _com_error(E_FAIL); };
    HRESULT status = E_FAIL;
    dialog.m_onMessage = [&status] { throw _com_error(status); };
    dialog.m_onDestroy = [] { throw _com_error(E_FAIL); };
    Play(dialog, [&](HWND window) {
        for (int i = 0; i < 4; ++i) test::Push(window, IDC_TEST_BUTTON);
        const auto boxes = test::TakeBoxes();
        ASSERT_EQ(boxes.size(), 3U);
        EXPECT_NE(boxes[0].text.find(L"not registered (error 0x80040154)"), std::wstring::npos);
        EXPECT_NE(boxes[2].text.find(L"not enough memory"), std::wstring::npos);
        EXPECT_EQ(boxes[0].style, static_cast<UINT>(MB_ICONERROR));
        const auto traces = test::TakeTraces();
        ASSERT_EQ(traces.size(), 3U);
        EXPECT_EQ(traces[0].severity, 2);
        EXPECT_EQ(traces[0].text, L"TestDlg: a host object failed with status 0x80040154.");

        for (int i = 0; i < 2; ++i) Notify(window);
        EXPECT_EQ(test::TakeBoxes().size(), 2U);
        for (const HRESULT cause : {E_FAIL, E_ACCESSDENIED}) {
            status = cause;
            for (int i = 0; i < 50; ++i) SendMessageW(window, kMessageThatFails, 0, 0);
        }
        EXPECT_EQ(test::TakeBoxes().size(), 2U);
        EXPECT_EQ(test::TakeTraces().size(), 4U);
    });
    EXPECT_EQ(test::TakeTraces().size(), 1U) << "the failure while closing is traced and the result stands";
}

TEST_F(DialogLayer, ResultsOfNotificationsReachTheSender) {
    TestDlg dialog;
    Play(dialog, [](HWND window) {
        EXPECT_EQ(Notify(window), 42);
        EXPECT_EQ(Notify(window, 78), 0);
    });
}

TEST_F(DialogLayer, RefusedNumbersKeepTheDialogOpenWithTheFieldSelected) {
    win32::SetApplicationName(L"Scanner");
    TestDlg dialog;
    dialog.m_onButton = [] {};
    Play(dialog, [&](HWND window) {
        const HWND field = GetDlgItem(window, IDC_TEST_NUMBER);
        for (const wchar_t* text :
             {L"", L"  ", L"12a", L"210,5", L"1500.01", L"-1", L"inf", L"nan", L"0x10", L"1e400"}) {
            SetWindowTextW(field, text);
            SetFocus(GetDlgItem(window, IDC_TEST_BUTTON));
            test::Press(window, IDOK);
            test::AnswerBox(test::TopDialog());
            test::Wait();
            EXPECT_EQ(GetFocus(), field);
            EXPECT_EQ(SendMessageW(field, EM_GETSEL, 0, 0), MAKELONG(0, wcslen(text)));
            EXPECT_EQ(dialog.m_fNumber, 1.0F);
            const auto boxes = test::TakeBoxes();
            ASSERT_EQ(boxes.size(), 1U) << testing::PrintToString(text);
            EXPECT_EQ(boxes[0].caption, L"Scanner");
            EXPECT_EQ(boxes[0].text,
                      L"Field: please enter a number from 0 to 1500. Write decimals with a point, for example 8.5.");
        }
    });
    for (const wchar_t* text : {L"1500", L" 0 ", L"1500.00001", L"1.5e3"}) ExpectOk(dialog, text);
}

TEST_F(DialogLayer, ADialogWithoutParentIsOwnedByTheOneItIsOpenedFrom) {
    TestDlg outer;
    outer.m_onButton = [&outer] {
        TestDlg inner;
        Play(inner, [&](HWND window) {
            EXPECT_NE(window, outer.GetSafeHwnd());
            EXPECT_EQ(GetWindow(window, GW_OWNER), outer.GetSafeHwnd());
            EXPECT_FALSE(IsWindowEnabled(outer.GetSafeHwnd()));
        });
        EXPECT_TRUE(IsWindowEnabled(outer.GetSafeHwnd()));
    };
    Play(outer, [](HWND window) { test::Press(window, IDC_TEST_BUTTON); });
}

TEST_F(DialogLayer, ATemplateThatCannotBeMadeGivesMinusOne) {
    EXPECT_EQ(TestDlg(IDD_TEST_UNKNOWN_CLASS).DoModal(), -1);
    EXPECT_EQ(TestDlg(9999).DoModal(), -1);
    EXPECT_EQ(test::TakeTraces().size(), 0U);
}

}  // namespace
