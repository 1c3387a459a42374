// ActiveX controls in dialogs and their events.
#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "FakeActiveX.h"
#include "support/TraceRecorder.h"
#include "test_resource.h"
#include "win32/Dialog.h"
#include "win32/DialogDriver.h"

namespace {

using test::FakeActiveX;
using win32::EventArguments;

constexpr DISPID kMoved = 12;
constexpr DISPID kUnknownEvent = 99;
constexpr CLSID kNotRegistered = {0x6c2c9b47, 0x6a5a, 0x4f0e, {0x9d, 0x0b, 0x0b, 0x6e, 0x2a, 0x1c, 0x7f, 0x33}};

class ControlDlg final : public CDialog {
public:
    explicit ControlDlg(const CLSID* classId) : CDialog(IDD_TEST_CONTROL) { m_control.classId = classId; }

    win32::HostedControl m_control = {IDC_TEST_CONTROL, nullptr, &test::kFakeControlEvents};
    std::vector<POINT> m_moves;
    HRESULT m_fail = S_OK;

protected:
    const wchar_t* GetName() const override { return L"ControlDlg"; }
    std::span<const win32::HostedControl> GetHostedControls() const override { return {&m_control, 1}; }
    std::span<const win32::EventEntry> GetEventMap() const override {
        static constexpr win32::EventEntry kMap[] = {
            win32::OnPointerEvent<&ControlDlg::OnMoved>(IDC_TEST_CONTROL, kMoved)};
        return kMap;
    }

private:
    void OnMoved(LONG x, LONG y) {
        if (FAILED(m_fail)) throw _com_error(m_fail);
        m_moves.push_back({x, y});
    }
};

class Controls : public testing::Test {
protected:
    Controls() {
        IUnknown* factory = nullptr;
        com::Create<com::Factory<FakeActiveX>>(IID_IUnknown, reinterpret_cast<void**>(&factory));
        CoRegisterClassObject(test::kFakeControlClass, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie);
        factory->Release();
        test::TakeTraces();
    }
    ~Controls() override {
        CoRevokeClassObject(m_cookie);
        EXPECT_EQ(com::LiveObjects(), 0);
        EXPECT_EQ(test::TakeBoxes().size(), 0U);
    }

    DWORD m_cookie = 0;
};

TEST_F(Controls, EventsReachTheirHandlersAndFailuresStayInside) {
    ControlDlg dialog(&test::kFakeControlClass);
    test::PlayDialog({[&](HWND) {
                          FakeActiveX& control = *FakeActiveX::s_last;
                          EXPECT_EQ(control.Fire(kMoved, {10, -20}), S_OK);
                          EXPECT_EQ(control.Fire(kUnknownEvent, {1}), S_OK);
                          ASSERT_EQ(dialog.m_moves.size(), 1U);
                          EXPECT_EQ(dialog.m_moves[0].x, 10);
                          EXPECT_EQ(dialog.m_moves[0].y, -20);
                          EXPECT_EQ(control.Fire(kMoved, {1}), DISP_E_BADPARAMCOUNT);
                          dialog.m_fail = E_ACCESSDENIED;
                          for (int i = 0; i < 20; ++i) EXPECT_EQ(control.Fire(kMoved, {1, 2}), E_ACCESSDENIED);
                          EXPECT_EQ(test::TakeBoxes().size(), 2U) << "one for each cause";
                      },
                      test::Cancel},
                     [&] { EXPECT_EQ(dialog.DoModal(), IDCANCEL); });
}

TEST_F(Controls, TabEntersTheControlAndLeavesIt) {
    ControlDlg dialog(&test::kFakeControlClass);
    HWND inside = nullptr;
    test::PlayDialog(
        {[](HWND window) { EXPECT_EQ(GetFocus(), GetDlgItem(window, IDOK)); }, [](HWND) { test::PressKey(VK_TAB); },
         [&](HWND window) {
             FakeActiveX::s_last->GetWindow(&inside);
             EXPECT_EQ(GetFocus(), inside);
             EXPECT_EQ(GetParent(inside), GetDlgItem(window, IDC_TEST_CONTROL));
         },
         [](HWND) { test::PressKey(VK_TAB); }, [](HWND window) { EXPECT_EQ(GetFocus(), GetDlgItem(window, IDCANCEL)); },
         [](HWND) { test::PressKey(VK_TAB, VK_SHIFT); }, [&](HWND) { EXPECT_EQ(GetFocus(), inside); },
         [](HWND window) { SetWindowPos(GetDlgItem(window, IDC_TEST_CONTROL), nullptr, 0, 0, 33, 44, SWP_NOMOVE); },
         [&](HWND) {
             RECT rect = {};
             GetClientRect(inside, &rect);
             EXPECT_EQ(rect.right, 33);
             EXPECT_EQ(rect.bottom, 44);
         },
         test::Cancel},
        [&] { dialog.DoModal(); });
}

TEST_F(Controls, AControlThatCannotBeMadeGivesMinusOne) {
    ControlDlg dialog(&kNotRegistered);
    EXPECT_EQ(dialog.DoModal(), -1);
    EXPECT_EQ(test::TakeTraceTexts(),
              std::vector<std::wstring>{L"ControlDlg: a host object failed with status 0x80040154."});
    ControlDlg elsewhere(&test::kFakeControlClass);
    elsewhere.m_control.id = IDC_TEST_OTHER;
    EXPECT_EQ(elsewhere.DoModal(), -1);
    // A control that has other events is there, but cannot be listened to.
    ControlDlg deaf(&test::kFakeControlClass);
    deaf.m_control.events = &kNotRegistered;
    EXPECT_THROW(deaf.DoModal(), _com_error);
}

TEST_F(Controls, MadeInCode) {
    const HWND parent =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 100, 100, nullptr, nullptr, nullptr, nullptr);
    const RECT rect = {1, 2, 31, 42};
    const HWND host = win32::CreateControl(test::kFakeControlClass, L"Page", WS_VISIBLE, rect, parent, 5);
    ASSERT_NE(host, nullptr);
    EXPECT_EQ(GetDlgCtrlID(host), 5);
    EXPECT_EQ(GetTextOfWindow(host), L"Page");
    EXPECT_NE(win32::GetControlUnknown(host), nullptr);
    EXPECT_EQ(win32::CreateControl(kNotRegistered, L"", WS_VISIBLE, rect, parent, 6), nullptr);
    EXPECT_EQ(GetDlgItem(parent, 6), nullptr) << "no empty container is left behind";
    EXPECT_EQ(win32::GetControlUnknown(parent), nullptr);
    DestroyWindow(parent);
}

TEST_F(Controls, ASinkThatIsKeptCallsNobody) {
    IUnknown* control = nullptr;
    com::Create<FakeActiveX>(IID_IUnknown, reinterpret_cast<void**>(&control));
    int calls = 0;
    auto connection = std::make_unique<win32::EventConnection>(control, test::kFakeControlEvents,
                                                               [&](DISPID, const EventArguments&) { ++calls; });
    EXPECT_EQ(FakeActiveX::s_last->Fire(kMoved, {}), S_OK);
    EXPECT_EQ(calls, 1);
    connection.reset();
    EXPECT_FALSE(FakeActiveX::s_last->IsConnected());
    control->Release();
}

VARIANTARG Argument(VARTYPE type, LONGLONG value) {
    VARIANTARG argument = {};
    argument.vt = type;
    argument.llVal = value;
    return argument;
}

TEST(EventArgumentKinds, IntegersOfEveryKind) {
    SHORT small = -7;
    LONG large = 70000;
    VARIANT inner = Argument(VT_I4, 5);
    BSTR text = SysAllocString(L"12");
    const struct {
        VARIANTARG argument;
        std::optional<LONG> value;
    } cases[] = {
        {Argument(VT_I4, -3), -3},
        {Argument(VT_I2, 0xFFFE), -2},
        {Argument(VT_UI1, 200), 200},
        {Argument(VT_I8, 12), 12},
        {Argument(VT_I8, 1LL << 40), std::nullopt},
        {Argument(VT_BYREF | VT_I2, reinterpret_cast<LONGLONG>(&small)), -7},
        {Argument(VT_BYREF | VT_I4, reinterpret_cast<LONGLONG>(&large)), 70000},
        {Argument(VT_BYREF | VT_VARIANT, reinterpret_cast<LONGLONG>(&inner)), 5},
        {Argument(VT_BSTR, reinterpret_cast<LONGLONG>(text)), std::nullopt},
        {Argument(VT_DISPATCH, 0), std::nullopt},
        {Argument(VT_EMPTY, 0), std::nullopt},
        {Argument(VT_ERROR, DISP_E_PARAMNOTFOUND), std::nullopt},
    };
    for (const auto& one : cases) {
        VARIANTARG argument = one.argument;
        DISPPARAMS parameters = {&argument, nullptr, 1, 0};
        std::optional<LONG> value;
        try {
            value = EventArguments(parameters).Integer(0);
        } catch (const _com_error&) {
        }
        EXPECT_EQ(value, one.value) << argument.vt;
        EXPECT_THROW(EventArguments(parameters).Integer(1), _com_error);
    }
    SysFreeString(text);
}

}  // namespace
