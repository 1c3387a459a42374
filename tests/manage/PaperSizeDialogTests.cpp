// "Select Paper Size" through its real window, with the host's unit object in both measurement systems.
#include <gtest/gtest.h>

#include <algorithm>

#include "manage/SAPaperSizeDlg.h"
#include "refhost/com/ClassRegistration.h"
#include "refhost/units/HostUnits.h"
#include "resource.h"
#include "support/FakeSettings.h"
#include "support/FakeUnits.h"
#include "support/TraceRecorder.h"
#include "win32/DialogDriver.h"
#include "win32/DialogScript.h"

namespace {

using test::Host;
using test::Push;
using test::TextOf;

constexpr std::initializer_list<CLSID> kUnits = {host::kClsidMeasureUnits};
constexpr LONG kMetric = 1;
constexpr LONG kInches = 2;

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
void ExpectTexts(HWND dialog, const wchar_t* width, const wchar_t* height, const wchar_t* unit) {
    EXPECT_EQ(TextOf(dialog, IDC_PAPER_WIDTH), width);
    EXPECT_EQ(TextOf(dialog, IDC_PAPER_HEIGHT), height);
    EXPECT_EQ(TextOf(dialog, IDC_PAPER_WIDTH_UNIT), unit);
    EXPECT_EQ(TextOf(dialog, IDC_PAPER_HEIGHT_UNIT), unit);
}
void ExpectType(HWND dialog, bool standard) {
    EXPECT_EQ(Checked(dialog, IDC_PAPER_STANDARD), standard);
    EXPECT_EQ(Checked(dialog, IDC_PAPER_CUSTOM), !standard);
    for (const UINT id : {IDC_PAPER_FORMAT, IDC_PAPER_PORTRAIT, IDC_PAPER_LANDSCAPE}) {
        EXPECT_EQ(Enabled(dialog, id), standard) << id;
    }
    for (const UINT id : {IDC_PAPER_WIDTH, IDC_PAPER_WIDTH_LABEL, IDC_PAPER_WIDTH_UNIT, IDC_PAPER_HEIGHT,
                          IDC_PAPER_HEIGHT_LABEL, IDC_PAPER_HEIGHT_UNIT}) {
        EXPECT_EQ(Enabled(dialog, id), !standard) << id;
    }
}

class PaperSizeDialog : public testing::Test {
protected:
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
        EXPECT_TRUE(!m_units || m_units->Idle());
        m_node = nullptr;
        EXPECT_EQ(Host().liveObjects, 0);
    }

    void UseSystem(LONG system) {
        m_units->Dll().Export<decltype(HostSetMeasureSystem)>("HostSetMeasureSystem")(system);
    }
    void Play(INT_PTR result, const test::Script& script) {
        test::PlayScript(script, [&] { EXPECT_EQ(CSAPaperSizeDlg([this] { return m_node; }).DoModal(), result); });
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

    std::optional<com::ClassRegistration> m_units{std::in_place, L"HostUnits.dll", kUnits};
    std::shared_ptr<test::FakeTree> m_tree = std::make_shared<test::FakeTree>();
    ISettingsNodePtr m_node{test::MakeFakeNode(m_tree), false};
};

TEST_F(PaperSizeDialog, FirstUseThenTheSameAgain) {
    const struct {
        LONG system;
        const wchar_t *width, *height, *unit, *format;
        bool landscape;  // of the eighth format, "Legal"
        LONG realWidth, realHeight;
    } cases[] = {{kMetric, L"210.1", L"296.9", L"mm", L"A4  210 x 297  mm", false, 2100, 2970},
                 {kInches, L"8.27165", L"11.689", L"in", L"A4  8.27 x 11.69  in", false, 2101, 2969},
                 {kMetric, L"210.1", L"296.9", L"mm", L"A4  210 x 297  mm", true, 3560, 2160},
                 {kInches, L"8.27165", L"11.689", L"in", L"A4  8.27 x 11.69  in", true, 3556, 2159}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.system << c.landscape);
        *m_tree = {};
        UseSystem(c.system);
        const auto expectStored = [&] {
            ExpectStored(2101, 2969, !c.landscape, c.landscape ? 34 : 4, true, c.realWidth, c.realHeight);
        };
        Play(IDOK, [&](HWND dialog) {
            ExpectTexts(dialog, c.width, c.height, c.unit);
            EXPECT_EQ(SendDlgItemMessageW(dialog, IDC_PAPER_FORMAT, CB_GETCOUNT, 0, 0), 10);
            EXPECT_EQ(TextOf(dialog, IDC_PAPER_FORMAT), c.format);
            EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDC_PAPER_STANDARD));
            if (c.landscape) {
                Select(dialog, 7);
                Push(dialog, IDC_PAPER_LANDSCAPE);
            }
            ExpectType(dialog, true);
            Push(dialog, IDOK);
        });
        expectStored();
        Play(IDCANCEL, [&](HWND dialog) {
            EXPECT_EQ(Selected(dialog), c.landscape ? 7 : 1);
            EXPECT_EQ(Checked(dialog, IDC_PAPER_LANDSCAPE), c.landscape);
            EXPECT_EQ(Checked(dialog, IDC_PAPER_PORTRAIT), !c.landscape);
            Select(dialog, 3);
            Push(dialog, IDC_PAPER_LANDSCAPE);
            Push(dialog, IDC_PAPER_CUSTOM);
            SetDlgItemTextW(dialog, IDC_PAPER_WIDTH, L"5");
            Push(dialog, IDCANCEL);
        });
        expectStored();
    }
}

TEST_F(PaperSizeDialog, ACustomSizeByRealMouseAndKeys) {
    Play(IDOK, [](HWND dialog) {
        test::Key(VK_TAB, 0, 8);  // leaves the choices alone
        ExpectType(dialog, true);
        EXPECT_TRUE(Checked(dialog, IDC_PAPER_PORTRAIT));
        test::Key(VK_F1);
        Push(dialog, IDHELP);
        test::Click(GetDlgItem(dialog, IDC_PAPER_LANDSCAPE));
        test::Key('C', VK_MENU);
        ExpectType(dialog, false);
        EXPECT_TRUE(Checked(dialog, IDC_PAPER_LANDSCAPE));
        test::Key(VK_TAB);
        test::Type(L"1500");
        test::Key(VK_TAB);
        test::Type(L" 12.25 ");
        ExpectTexts(dialog, L"1500", L" 12.25 ", L"mm");
        test::Key(VK_RETURN);
    });
    ExpectStored(15000, 123, false, 4, false, 15000, 123);
    const auto help = test::TakeHelp();
    EXPECT_TRUE(help.size() == 2 && help[0].context == 0x26C8C && help[1].context == 0x26C8C);
    Play(IDOK, [](HWND dialog) {
        ExpectTexts(dialog, L"1500", L"12.3", L"mm");
        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDC_PAPER_CUSTOM));
        test::Key(VK_UP);
        ExpectType(dialog, true);
        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDC_PAPER_STANDARD));
        test::Key(VK_RETURN);
    });
    ExpectStored(15000, 123, false, 4, true, 2970, 2100);
}

TEST_F(PaperSizeDialog, ARefusedSizeWritesNothingAndCanBeCorrected) {
    m_tree->integers = {{L"CustomWidth", 1400 * 254}};  // typed in inches, opened in millimetres
    Play(IDOK, [&](HWND dialog) {
        const auto refuse = [&](const wchar_t* name, UINT id) {
            test::Press(dialog, IDOK);
            test::AnswerBox(test::TopDialog());
            test::Wait();
            const auto boxes = test::TakeBoxes();
            ASSERT_EQ(boxes.size(), 1U);
            EXPECT_EQ(boxes[0].text.find(name + std::wstring(L": please enter a number from 0 to 1500.")), 0U);
            EXPECT_EQ(GetFocus(), GetDlgItem(dialog, static_cast<int>(id)));
            ExpectType(dialog, false);  // so that it can be corrected
            EXPECT_TRUE(m_tree->integers.size() == 1 && m_tree->booleans.empty());
        };
        refuse(L"Width", IDC_PAPER_WIDTH);
        test::Type(L"100");
        for (const wchar_t* text : {L"1500.01", L"-1", L"210,5"}) {
            SetDlgItemTextW(dialog, IDC_PAPER_HEIGHT, text);
            refuse(L"Height", IDC_PAPER_HEIGHT);
        }
        SetDlgItemTextW(dialog, IDC_PAPER_HEIGHT, L"200");
        Push(dialog, IDC_PAPER_STANDARD);
        Push(dialog, IDOK);
    });
    ExpectStored(1000, 2000, true, 4, true, 2100, 2970);
}

TEST_F(PaperSizeDialog, WhatIsStrangeOrCannotBeReadCountsAsDefault) {
    m_tree->integers = {{L"PageFormat", 0}, {L"CustomWidth", -5}, {L"CustomHeight", 0x100000000 + 100}};
    Play(IDCANCEL, [](HWND dialog) {
        EXPECT_EQ(Selected(dialog), 1) << "A0 is not offered";
        ExpectTexts(dialog, L"-0.5", L"10", L"mm");
        Push(dialog, IDCANCEL);
    });
    Host().failAt = 1;
    Host().keepFailing = true;
    Play(IDCANCEL, [](HWND dialog) {
        ExpectTexts(dialog, L"210.1", L"296.9", L"mm");
        Push(dialog, IDCANCEL);
    });
}

TEST_F(PaperSizeDialog, AFailingOkIsToldAndCanBeTriedAgain) {
    constexpr int kConversions = 8, kWrites = 7;  // calls of the host
    m_units.reset();
    const test::FakeUnitsClass units(Host().createTransfer);
    Play(IDOK, [&](HWND dialog) {
        for (int n = 1; n <= kConversions + kWrites; ++n) {
            Host().Reset();
            Host().failAt = n;
            Push(dialog, IDOK);
            EXPECT_EQ(test::TakeBoxes().size(), 1U) << n;
            EXPECT_EQ(m_tree->integers.empty() && m_tree->booleans.empty(), n <= kConversions + 1) << n;
        }
        test::UnitCalls().clear();
        Push(dialog, IDOK);
    });
    ExpectStored(2101, 2969, true, 4, true, 2100, 2970);
    const auto asked = [] { return std::ranges::count(test::UnitCalls(), L"GetMeasureSystem"); };
    EXPECT_EQ(asked(), 1);
    Play(IDOK, [](HWND dialog) {
        Push(dialog, IDC_PAPER_CUSTOM);
        test::UnitCalls().clear();
        Push(dialog, IDOK);
    });
    EXPECT_EQ(asked(), 0) << "a custom size needs no system";
}

}  // namespace
