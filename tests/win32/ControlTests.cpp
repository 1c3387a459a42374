// ActiveX controls in dialogs and their events: the page display serves as the control.
#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "host/PageDisplay.h"
#include "refhost/com/ClassRegistration.h"
#include "refhost/com/ComObject.h"
#include "support/TraceRecorder.h"
#include "test_resource.h"
#include "win32/Dialog.h"
#include "win32/DialogDriver.h"
#include "win32/DialogScript.h"

namespace {

using win32::ComPtr;
using win32::EventArguments;

constexpr CLSID kNotRegistered = {0x6c2c9b47, 0x6a5a, 0x4f0e, {0x9d, 0x0b, 0x0b, 0x6e, 0x2a, 0x1c, 0x7f, 0x33}};

class ControlDlg final : public CDialog {
public:
    explicit ControlDlg(const CLSID* classId = &host::kClsidFolium) : CDialog(IDD_TEST_CONTROL) {
        m_control.classId = classId;
    }
    ComPtr<IFolium> Folium() const {
        ComPtr<IFolium> folium;
        win32::GetControlUnknown(GetDlgItem(IDC_TEST_CONTROL))->QueryInterface(&folium);
        return folium;
    }
    HWND Inside() const { return GetWindow(GetDlgItem(IDC_TEST_CONTROL), GW_CHILD); }

    win32::HostedControl m_control = {IDC_TEST_CONTROL, nullptr, &host::kDiidFoliumEvents};
    std::vector<POINT> m_menus;
    HRESULT m_fail = S_OK;

protected:
    const wchar_t* GetName() const override { return L"ControlDlg"; }
    std::span<const win32::HostedControl> GetHostedControls() const override { return {&m_control, 1}; }
    std::span<const win32::EventEntry> GetEventMap() const override {
        static constexpr win32::EventEntry kMap[] = {
            win32::OnPointerEvent<&ControlDlg::OnMenu>(IDC_TEST_CONTROL, kFoliumContextMenuRequested),
            win32::OnEvent<&ControlDlg::OnMenu>(IDC_TEST_CONTROL, kFoliumRectAdded)};
        return kMap;
    }

private:
    void OnMenu(LONG, LONG x, LONG y) {
        if (FAILED(m_fail)) throw _com_error(m_fail);
        m_menus.push_back({x, y});
    }
};

class Controls : public testing::Test {
protected:
    Controls() { test::TakeTraces(); }
    ~Controls() override {
        EXPECT_TRUE(m_classes.Idle());
        EXPECT_EQ(test::TakeBoxes().size(), 0U);
    }
    com::ClassRegistration m_classes{L"Folium.dll", {host::kClsidFolium}};
};

TEST_F(Controls, EventsReachTheirHandlersAndFailuresStayInside) {
    ControlDlg dialog;
    test::PlayScript(
        [&](HWND window) {
            POINT place = {10, 20};
            ClientToScreen(dialog.Inside(), &place);
            const auto menu = [&] { SendMessageW(dialog.Inside(), WM_CONTEXTMENU, 0, MAKELPARAM(place.x, place.y)); };
            menu();
            ASSERT_EQ(dialog.m_menus.size(), 1U);
            EXPECT_EQ(dialog.m_menus[0].x, 10);
            EXPECT_EQ(dialog.m_menus[0].y, 20);
            const FoliumRect rect = {0, 0, 1, 2, 30, 40};
            LONG id = 0;
            EXPECT_EQ(dialog.Folium()->InsertRect(&rect, &id), S_OK);
            EXPECT_EQ(test::TakeBoxes().size(), 1U) << "that event has one parameter alone";
            EXPECT_EQ(dialog.Folium()->SelectRect(id), S_OK) << "an event that nobody handles";
            dialog.m_fail = E_ACCESSDENIED;
            for (int i = 0; i < 20; ++i) menu();
            EXPECT_EQ(test::TakeBoxes().size(), 1U) << "one for each cause";
            test::Cancel(window);
        },
        [&] { EXPECT_EQ(dialog.DoModal(), IDCANCEL); });
    EXPECT_EQ(test::TakeTraces().size(), 2U);
}

TEST_F(Controls, TabEntersTheControlAndLeavesIt) {
    ControlDlg dialog;
    test::PlayScript(
        [&](HWND window) {
            EXPECT_EQ(GetFocus(), GetDlgItem(window, IDOK));
            test::Key(VK_TAB);
            EXPECT_EQ(GetFocus(), dialog.Inside());
            test::Key(VK_TAB);
            EXPECT_EQ(GetFocus(), GetDlgItem(window, IDCANCEL));
            test::Key(VK_TAB, VK_SHIFT);
            EXPECT_EQ(GetFocus(), dialog.Inside());
            SetWindowPos(GetDlgItem(window, IDC_TEST_CONTROL), nullptr, 0, 0, 33, 44, SWP_NOMOVE);
            RECT rect = {};
            GetWindowRect(dialog.Inside(), &rect);
            EXPECT_EQ(rect.right - rect.left, 33);
            EXPECT_EQ(rect.bottom - rect.top, 44);
            test::Cancel(window);
        },
        [&] { dialog.DoModal(); });
}

TEST_F(Controls, AControlThatCannotBeMadeGivesMinusOne) {
    ControlDlg dialog(&kNotRegistered);
    EXPECT_EQ(dialog.DoModal(), -1);
    EXPECT_EQ(test::TakeTraceTexts(),
              std::vector<std::wstring>{L"ControlDlg: a host object failed with status 0x80040154."});
    ControlDlg elsewhere;
    elsewhere.m_control.id = IDC_TEST_OTHER;
    EXPECT_EQ(elsewhere.DoModal(), -1);
    // A control that has other events is there, but cannot be listened to.
    ControlDlg deaf;
    deaf.m_control.events = &kNotRegistered;
    EXPECT_THROW(deaf.DoModal(), _com_error);
}

TEST_F(Controls, MadeInCode) {
    const HWND parent =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 100, 100, nullptr, nullptr, nullptr, nullptr);
    const RECT rect = {1, 2, 31, 42};
    const HWND host = win32::CreateControl(host::kClsidFolium, L"Page", WS_VISIBLE, rect, parent, 5);
    ASSERT_NE(host, nullptr);
    EXPECT_EQ(GetDlgCtrlID(host), 5);
    EXPECT_EQ(GetTextOfWindow(host), L"Page");
    EXPECT_NE(win32::GetControlUnknown(host), nullptr);
    EXPECT_EQ(win32::CreateControl(kNotRegistered, L"", WS_VISIBLE, rect, parent, 6), nullptr);
    EXPECT_EQ(GetDlgItem(parent, 6), nullptr) << "no empty container is left behind";
    EXPECT_EQ(win32::GetControlUnknown(parent), nullptr);
    DestroyWindow(parent);
}

// A source of events that never lets go of its listener.
class EventSource final : public com::Object<IConnectionPointContainer, IConnectionPoint> {
public:
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID, IConnectionPoint** point) override {
        return QueryInterface(__uuidof(IConnectionPoint), reinterpret_cast<void**>(point));
    }
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD*) override {
        return sink->QueryInterface(host::kDiidFoliumEvents, reinterpret_cast<void**>(&m_sink));
    }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer**) override { return E_NOTIMPL; }
    HRESULT Fire() const { return m_sink->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr); }

private:
    ComPtr<IDispatch> m_sink;
};

TEST_F(Controls, ASinkThatIsKeptCallsNobody) {
    auto* const source = new EventSource;
    const ComPtr<IConnectionPoint> owned(source, false);
    int calls = 0;
    auto connection = std::make_unique<win32::EventConnection>(owned.GetInterfacePtr(), host::kDiidFoliumEvents,
                                                               [&](DISPID, const EventArguments& arguments) {
                                                                   if (++calls == 2) arguments.RequireCount(1);
                                                               });
    EXPECT_EQ(source->Fire(), S_OK);
    EXPECT_EQ(source->Fire(), DISP_E_BADPARAMCOUNT);
    connection.reset();
    EXPECT_EQ(source->Fire(), S_OK);
    EXPECT_EQ(calls, 2);
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
