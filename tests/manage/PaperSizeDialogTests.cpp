// "Select Paper Size" through its real window, with the host's unit object in both measurement systems.
#include <gtest/gtest.h>

#include "host/MeasureUnits.h"
#include "manage/SAPaperSizeDlg.h"
#include "refhost/com/ClassRegistration.h"
#include "refhost/units/HostUnits.h"
#include "resource.h"
#include "support/FakeSettings.h"
#include "support/TraceRecorder.h"
#include "win32/DialogDriver.h"

namespace {

using test::Host;
using test::PressKey;
using test::Push;
using test::TextOf;

constexpr LONG kMetric = 1;
constexpr LONG kInches = 2;
constexpr DWORD kHelpContext = 0x26C8C;

const auto kOk = [](HWND dialog) { Push(dialog, IDOK); };
const auto kCancel = [](HWND dialog) { Push(dialog, IDCANCEL); };

bool Enabled(HWND dialog, UINT id) {
    return IsWindowEnabled(GetDlgItem(dialog, static_cast<int>(id)));
}
bool Checked(HWND dialog, UINT id) {
    return IsDlgButtonChecked(dialog, static_cast<int>(id)) == BST_CHECKED;
}
LRESULT Selected(HWND dialog) {
    return SendDlgItemMessageW(dialog, IDC_PAPER_FORMAT, CB_GETCURSEL, 0, 0);
}
void Select(HWND dialog, WPARAM item) {
    SendDlgItemMessageW(dialog, IDC_PAPER_FORMAT, CB_SETCURSEL, item, 0);
}
void SetText(HWND dialog, UINT id, const wchar_t* text) {
    SetDlgItemTextW(dialog, static_cast<int>(id), text);
}
void ExpectTexts(HWND dialog, const wchar_t* width, const wchar_t* height, const wchar_t* unit) {
    EXPECT_EQ(TextOf(dialog, IDC_PAPER_WIDTH), width);
    EXPECT_EQ(TextOf(dialog, IDC_PAPER_HEIGHT), height);
    EXPECT_EQ(TextOf(dialog, IDC_PAPER_WIDTH_UNIT), unit);
    EXPECT_EQ(TextOf(dialog, IDC_PAPER_HEIGHT_UNIT), unit);
}

class PaperSizeDialog : public testing::Test {
protected:
    PaperSizeDialog() : m_units(L"HostUnits.dll", {host::kClsidMeasureUnits}) {}

    void SetUp() override {
        UseSystem(kMetric);
        Host().Reset();
        test::TakeBoxes();
        test::TakeHelp();
        test::TakeTraces();
    }
    void TearDown() override {
        Host().Reset();
        EXPECT_EQ(test::TakeBoxes().size(), 0U);
        EXPECT_TRUE(m_units.Idle());
        m_node = nullptr;
        EXPECT_EQ(Host().liveObjects, 0);
    }

    void UseSystem(LONG system) {
        m_units.Dll().Export<decltype(HostSetMeasureSystem)>("HostSetMeasureSystem")(system);
    }

    INT_PTR Play(test::Steps steps) {
        INT_PTR result = 0;
        test::PlayDialog(std::move(steps), [&] { result = CSAPaperSizeDlg([this] { return m_node; }).DoModal(); });
        return result;
    }

    void ExpectStored(int64_t customWidth, int64_t customHeight, bool portrait, int64_t format, bool standard,
                      int64_t realWidth, int64_t realHeight) {
        const std::map<std::wstring, int64_t> integers = {{L"CustomWidth", customWidth},
                                                          {L"CustomHeight", customHeight},
                                                          {L"PageFormat", format},
                                                          {L"RealWidth", realWidth},
                                                          {L"RealHeight", realHeight}};
        const std::map<std::wstring, bool> booleans = {{L"RadioPageOrient", portrait}, {L"RadioPageType", standard}};
        EXPECT_EQ(m_tree->integers, integers);
        EXPECT_EQ(m_tree->booleans, booleans);
        EXPECT_TRUE(m_tree->strings.empty() && m_tree->children.empty());
    }

    com::ClassRegistration m_units;
    std::shared_ptr<test::FakeTree> m_tree = std::make_shared<test::FakeTree>();
    ISettingsNodePtr m_node{test::MakeFakeNode(m_tree), false};
};

TEST_F(PaperSizeDialog, FirstUseInMillimetres) {
    EXPECT_EQ(Play({[](HWND dialog) {
                        ExpectTexts(dialog, L"210.1", L"296.9", L"mm");
                        EXPECT_EQ(SendDlgItemMessageW(dialog, IDC_PAPER_FORMAT, CB_GETCOUNT, 0, 0), 10);
                        EXPECT_EQ(TextOf(dialog, IDC_PAPER_FORMAT), L"A4  210 x 297  mm");
                        EXPECT_TRUE(Checked(dialog, IDC_PAPER_PORTRAIT) && Checked(dialog, IDC_PAPER_STANDARD));
                        EXPECT_FALSE(Checked(dialog, IDC_PAPER_LANDSCAPE) || Checked(dialog, IDC_PAPER_CUSTOM));
                        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDC_PAPER_STANDARD));
                        test::Screenshot(dialog, L"papersize-metric");
                    },
                    kOk}),
              IDOK);
    ExpectStored(2101, 2969, true, 4, true, 2100, 2970);
}

TEST_F(PaperSizeDialog, FirstUseInInches) {
    UseSystem(kInches);
    EXPECT_EQ(Play({[](HWND dialog) {
                        ExpectTexts(dialog, L"8.27165", L"11.689", L"in");
                        EXPECT_EQ(TextOf(dialog, IDC_PAPER_FORMAT), L"A4  8.27 x 11.69  in");
                    },
                    kOk}),
              IDOK);
    ExpectStored(2101, 2969, true, 4, true, 2101, 2969);
}

TEST_F(PaperSizeDialog, LandscapeTurnsAStandardSize) {
    for (const LONG system : {kMetric, kInches}) {
        UseSystem(system);
        Play({[](HWND dialog) {
                  Select(dialog, 7);
                  Push(dialog, IDC_PAPER_LANDSCAPE);
                  EXPECT_TRUE(Checked(dialog, IDC_PAPER_STANDARD)) << "the page type is another choice";
              },
              kOk});
        if (system == kMetric) ExpectStored(2101, 2969, false, 34, true, 3560, 2160);
        if (system == kInches) ExpectStored(2101, 2969, false, 34, true, 3556, 2159);
    }
    // It opens the same way again.
    Play({[](HWND dialog) {
              EXPECT_EQ(Selected(dialog), 7);
              EXPECT_TRUE(Checked(dialog, IDC_PAPER_LANDSCAPE));
              EXPECT_FALSE(Checked(dialog, IDC_PAPER_PORTRAIT));
          },
          kCancel});
}

TEST_F(PaperSizeDialog, ACustomSizeByRealMouseAndKeys) {
    test::Steps steps = {
        [](HWND dialog) { test::ClickOn(GetDlgItem(dialog, IDC_PAPER_LANDSCAPE)); },
        [](HWND) { PressKey('C', VK_MENU); },
        [](HWND dialog) {
            EXPECT_TRUE(Checked(dialog, IDC_PAPER_CUSTOM) && Checked(dialog, IDC_PAPER_LANDSCAPE));
            EXPECT_FALSE(Checked(dialog, IDC_PAPER_STANDARD));
            for (const UINT id : {IDC_PAPER_FORMAT, IDC_PAPER_PORTRAIT, IDC_PAPER_LANDSCAPE}) {
                EXPECT_FALSE(Enabled(dialog, id));
            }
            for (const UINT id : {IDC_PAPER_WIDTH, IDC_PAPER_WIDTH_LABEL, IDC_PAPER_WIDTH_UNIT, IDC_PAPER_HEIGHT,
                                  IDC_PAPER_HEIGHT_LABEL, IDC_PAPER_HEIGHT_UNIT}) {
                EXPECT_TRUE(Enabled(dialog, id));
            }
        },
        [](HWND) { PressKey(VK_TAB); },
        [](HWND) { test::TypeText(L"1500"); },
        [](HWND) { PressKey(VK_TAB); },
        [](HWND) { test::TypeText(L" 12.25 "); },
        [](HWND dialog) {
            ExpectTexts(dialog, L"1500", L" 12.25 ", L"mm");
            test::Screenshot(dialog, L"papersize-custom");
        },
        [](HWND) { PressKey(VK_RETURN); },
    };
    EXPECT_EQ(Play(steps), IDOK);
    ExpectStored(15000, 123, false, 4, false, 15000, 123);
    Play({[](HWND dialog) {
              ExpectTexts(dialog, L"1500", L"12.3", L"mm");
              EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDC_PAPER_CUSTOM));
          },
          [](HWND) { PressKey(VK_UP); },
          [](HWND dialog) {
              EXPECT_TRUE(Checked(dialog, IDC_PAPER_STANDARD) && Enabled(dialog, IDC_PAPER_FORMAT));
              EXPECT_FALSE(Checked(dialog, IDC_PAPER_CUSTOM) || Enabled(dialog, IDC_PAPER_WIDTH));
              EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDC_PAPER_STANDARD));
          },
          [](HWND) { PressKey(VK_RETURN); }});
    ExpectStored(15000, 123, false, 4, true, 2970, 2100);
}

TEST_F(PaperSizeDialog, TabLeavesTheChoicesAlone) {
    test::Steps steps = {};
    for (int i = 0; i < 8; ++i) steps.push_back([](HWND) { PressKey(VK_TAB); });
    steps.push_back([](HWND dialog) {
        EXPECT_TRUE(Checked(dialog, IDC_PAPER_STANDARD) && Checked(dialog, IDC_PAPER_PORTRAIT));
        EXPECT_FALSE(Checked(dialog, IDC_PAPER_CUSTOM));
    });
    steps.push_back([](HWND) { PressKey(VK_ESCAPE); });
    EXPECT_EQ(Play(steps), IDCANCEL);
}

TEST_F(PaperSizeDialog, CancelWritesNothing) {
    EXPECT_EQ(Play({[](HWND dialog) {
                        Select(dialog, 3);
                        Push(dialog, IDC_PAPER_LANDSCAPE);
                        Push(dialog, IDC_PAPER_CUSTOM);
                        SetText(dialog, IDC_PAPER_WIDTH, L"5");
                    },
                    kCancel}),
              IDCANCEL);
    EXPECT_EQ(m_tree->Dump(), test::FakeTree().Dump());
}

TEST_F(PaperSizeDialog, ARefusedSizeWritesNothingAndStaysOpen) {
    for (const wchar_t* text : {L"1500.01", L"-1", L"21 cm", L"210,5", L""}) {
        EXPECT_EQ(
            Play({[&](HWND dialog) {
                      Push(dialog, IDC_PAPER_CUSTOM);
                      SetText(dialog, IDC_PAPER_HEIGHT, text);
                  },
                  kOk, [](HWND dialog) { EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDC_PAPER_HEIGHT)); }, kCancel}),
            IDCANCEL);
        const auto boxes = test::TakeBoxes();
        ASSERT_EQ(boxes.size(), 1U) << testing::PrintToString(text);
        EXPECT_EQ(boxes[0].text.rfind(L"Height: please enter a number from 0 to 1500.", 0), 0U);
        EXPECT_TRUE(m_tree->integers.empty() && m_tree->booleans.empty());
    }
}

// Typed in inches, opened in millimetres: too large, in an edit that is disabled.
TEST_F(PaperSizeDialog, AStoredSizeThatIsRefusedCanBeCorrected) {
    m_tree->integers = {{L"CustomWidth", 1400 * 254}};
    EXPECT_EQ(Play({kOk,
                    [](HWND dialog) {
                        EXPECT_EQ(test::TakeBoxes().size(), 1U);
                        EXPECT_TRUE(Checked(dialog, IDC_PAPER_CUSTOM));
                        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDC_PAPER_WIDTH));
                    },
                    [](HWND) { test::TypeText(L"100"); }, [](HWND dialog) { Push(dialog, IDC_PAPER_STANDARD); }, kOk}),
              IDOK);
    ExpectStored(1000, 2969, true, 4, true, 2100, 2970);
}

TEST_F(PaperSizeDialog, StrangeStoredValues) {
    m_tree->integers = {{L"PageFormat", 0}, {L"CustomWidth", -5}, {L"CustomHeight", 0x100000000 + 100}};
    Play({[](HWND dialog) {
              EXPECT_EQ(Selected(dialog), 1) << "A0 is not offered";
              ExpectTexts(dialog, L"-0.5", L"10", L"mm");
          },
          kCancel});
}

TEST_F(PaperSizeDialog, ReadsThatFailCountAsDefaults) {
    m_tree->integers = {{L"PageFormat", 33}};
    Host().failAt = 1;
    Host().keepFailing = true;
    Play({[](HWND dialog) {
              EXPECT_EQ(Selected(dialog), 1);
              ExpectTexts(dialog, L"210.1", L"296.9", L"mm");
          },
          kCancel});
    Host().Reset();
    m_node = nullptr;
    Play({kOk, [](HWND) { EXPECT_EQ(test::TakeBoxes().size(), 1U) << "no node to write to"; }, kCancel});
}

TEST_F(PaperSizeDialog, AFailingWriteIsToldAndCanBeTriedAgain) {
    for (int n = 1; n <= 7; ++n) {
        EXPECT_EQ(Play({[n](HWND) {
                            Host().calls = 0;
                            Host().failAt = n;
                        },
                        kOk, [](HWND) { EXPECT_EQ(test::TakeBoxes().size(), 1U); }, kOk}),
                  IDOK);
        ExpectStored(2101, 2969, true, 4, true, 2100, 2970);
    }
}

TEST_F(PaperSizeDialog, Help) {
    Play({[](HWND) { PressKey(VK_F1); }, [](HWND dialog) { Push(dialog, IDHELP); }, kCancel});
    const auto help = test::TakeHelp();
    ASSERT_EQ(help.size(), 2U);
    EXPECT_EQ(help[0].context, kHelpContext);
    EXPECT_EQ(help[1].context, kHelpContext);
}

// A unit object whose n-th call fails.
class FailingUnits final : public test::FakeObject<IMeasureUnits> {
public:
    HRESULT STDMETHODCALLTYPE Reserved3() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMeasureSystem(LONG* system) override { return Give(system, kMetric); }
    HRESULT STDMETHODCALLTYPE ToUserUnits(LONG length, double* value) override { return Give(value, length / 10.0); }
    HRESULT STDMETHODCALLTYPE FromUserUnits(double value, LONG* length) override {
        return Give(length, static_cast<LONG>(value * 10.0 + 0.5));
    }
    HRESULT STDMETHODCALLTYPE GetUnitName(BSTR* name) override {
        *name = nullptr;  // an empty name
        return Host().Fails() ? E_FAIL : S_OK;
    }
    HRESULT STDMETHODCALLTYPE FormatValue(LONG, BSTR*) override { return E_NOTIMPL; }

private:
    template <class Value>
    static HRESULT Give(Value* out, Value value) {
        if (Host().Fails()) return E_FAIL;
        *out = value;
        return S_OK;
    }
};

class FailingUnitsDialog : public testing::Test {
protected:
    INT_PTR Play(test::Steps steps) {
        const ISettingsNodePtr node(m_tree ? test::MakeFakeNode(m_tree) : nullptr, false);
        INT_PTR result = 0;
        test::PlayDialog(std::move(steps), [&] { result = CSAPaperSizeDlg([&] { return node; }).DoModal(); });
        return result;
    }
    void TearDown() override {
        Host().Reset();
        EXPECT_EQ(Host().liveObjects, 0);
    }

    HRESULT m_create = S_OK;
    test::FakeClass m_class{host::kClsidMeasureUnits, []() -> IUnknown* { return new FailingUnits; }, m_create};
    std::shared_ptr<test::FakeTree> m_tree = std::make_shared<test::FakeTree>();
};

TEST_F(FailingUnitsDialog, DoesNotOpenWithoutUnits) {
    for (const HRESULT status : {E_OUTOFMEMORY, E_NOINTERFACE}) {
        m_create = status;
        try {
            Play({});
            ADD_FAILURE() << "nothing was thrown";
        } catch (const _com_error& error) {
            EXPECT_EQ(error.Error(), status == E_NOINTERFACE ? E_POINTER : status);
        }
    }
    m_create = S_OK;
    for (const int n :
         {1, 2, 3, 5, 7, 8, 9}) {  // create, two queries, two lengths after their reads, system, unit name
        Host().Reset();
        Host().failAt = n;
        EXPECT_THROW(Play({}), _com_error) << n;
    }
}

TEST_F(FailingUnitsDialog, AFailingConversionWritesNothing) {
    for (int n = 1; n <= 7; ++n) {  // create, query, two lengths, system, two lengths
        Play({[n](HWND) {
                  Host().calls = 0;
                  Host().failAt = n;
              },
              kOk, [](HWND) { EXPECT_EQ(test::TakeBoxes().size(), 1U); }, kCancel});
        EXPECT_TRUE(m_tree->integers.empty() && m_tree->booleans.empty()) << n;
        Host().Reset();
    }
}

}  // namespace
