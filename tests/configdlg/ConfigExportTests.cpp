// The exports that open "Configure Area Set": what they hand back, what they refuse, and what is left after failures.
#include "configdlg/ConfigFixture.h"
#include "support/FakeUnits.h"

namespace {

using namespace test;

constexpr const wchar_t* kNotOpened = L"The window for configuring area sets could not be opened.\n\n";
using ConfigExports = ConfigDialog;

TEST_F(ConfigExports, RefusedBeforeAnyDialog) {
    EXPECT_FALSE(m_configureSet(m_owner, 5)) << "no pages yet";
    EXPECT_FALSE(m_configurePage(m_owner, L"", nullptr, 0, nullptr, 0, 0)) << "no host object";
    ExpectNothingReported();
    EXPECT_FALSE(m_configurePage(m_owner, L"", nullptr, 1, m_host, 0, 0));
    EXPECT_EQ(TakeTraceTexts(), L"6 ConfigurePage: fields is NULL.\n");
    EXPECT_EQ(m_host->calls, "") << "left before Begin";

    KeepPages();
    m_host->calls.clear();
    const auto gone = reinterpret_cast<HWND>(UINT_PTR{0xDEAD});
    const struct {
        HWND parent;
        DWORD set;  // 0: a page
        const wchar_t* trace;
    } cases[] = {{m_owner, 6, L"pSet or pNewSet is NULL."},
                 {nullptr, 5, L"CWnd::FromHandle(hParent) returned NULL."},
                 {gone, 5, L"CWnd::FromHandle(hParent) returned NULL."},
                 {nullptr, 0, L"CWnd::FromHandle(a_hParent) returned NULL."},
                 {gone, 0, L"CWnd::FromHandle(a_hParent) returned NULL."}};
    for (const auto& [parent, set, trace] : cases) {
        EXPECT_FALSE(set != 0 ? m_configureSet(parent, set) : m_configurePage(parent, L"", nullptr, 0, m_host, 0, 0));
        EXPECT_EQ(TakeTraceTexts(), std::wstring(L"2 #34108\n6 SAConfigureSet: ") + trace + L"\n");
        ExpectBox(kNotOpened);
    }
    EXPECT_EQ(m_host->calls, "BQEBQE");
}

TEST_F(ConfigExports, WhatCannotBeOpenedIsReported) {
    const struct {
        std::function<void()> take;
        const wchar_t *traces, *box;
    } cases[] = {{[&] {
                      Host().createTransfer = E_NOINTERFACE;
                      Init();
                      Host().createTransfer = S_OK;
                  },
                  L"2 #34106\n", L""},
                 {[&] {
                      Init();
                      m_units.reset();
                  },
                  L"2 #34108\n2 Hint: check if Folium.dll is registered properly.\n", kNotOpened},
                 {[&] {
                      MakeUnits();
                      m_folium.reset();
                  },
                  L"2 #34108\n6 SAConfigureSet: dlg.DoModal failed.\n", kNotOpened}};
    KeepPages();
    for (const auto& [take, traces, box] : cases) {
        for (const bool page : {false, true}) {
            SCOPED_TRACE(testing::PrintToString(traces) + (page ? ", page" : ", set"));
            take();
            m_host->calls.clear();
            std::vector<SAIndexField> fields = {Field(L"Total", {1, 2, 3, 4})};
            EXPECT_FALSE(page ? OpenPage(fields) : m_configureSet(m_owner, 5));
            EXPECT_EQ(m_host->calls, page ? "BQE" : "");
            EXPECT_EQ(PlaceOf(fields[0]), (RECT{1, 2, 3, 4}));
            const std::wstring told = TakeTraceTexts();
            EXPECT_TRUE(told.ends_with(traces)) << told;
            ExpectBox(box);
        }
    }
    EXPECT_EQ(StoredRects(5), kInvoiceAreas);
    EXPECT_FALSE(WorkingRoot().integers.contains(L"LastScale")) << "no view was shown that could be remembered";
}

TEST_F(ConfigExports, EveryBeginThatSucceededHasItsEnd) {
    std::vector<SAIndexField> fields = {Field(L"Total", {1, 2, 3, 4})};
    const std::pair<int, const char*> cases[] = {{1, ""}, {2, "B"}, {3, "BQE"}};  // the query for the scope comes first
    for (const auto& [failing, calls] : cases) {
        int call = 0;
        m_host->instead = [&, failing = failing] {
            return ++call == failing ? std::optional(E_NOINTERFACE) : std::nullopt;
        };
        EXPECT_FALSE(OpenPage(fields));
        EXPECT_EQ(std::exchange(m_host->calls, {}), calls);
        EXPECT_EQ(PlaceOf(fields[0]), (RECT{1, 2, 3, 4}));
        EXPECT_TRUE(TakeTraceTexts().starts_with(L"2 "));
    }
    // When only End fails, the work is done.
    m_host->instead = [this] { return m_host->calls == "BQE" ? std::optional(E_FAIL) : std::nullopt; };
    EXPECT_TRUE(PlayPage(fields, [](HWND dialog) {
        SelectRow(dialog, 0);
        Push(dialog, IDC_CONFIG_REMOVE);
        PressOk(dialog);
    }));
    EXPECT_EQ(PlaceOf(fields[0]), RECT{});
    EXPECT_TRUE(TakeTraceTexts().starts_with(L"2 "));
}

TEST_F(ConfigExports, FieldsThatAreOddStillComeBack) {
    const std::wstring longName(1000, L'n');
    const struct {
        const wchar_t* name;
        RECT before, after;
    } cases[] = {{L"Same", {10, 20, 30, 40}, {50, 60, 70, 80}},  // fields of one name share a rectangle
                 {L"Same", {50, 60, 70, 80}, {50, 60, 70, 80}},
                 {L"", {90, 100, 110, 120}, {90, 100, 110, 120}},
                 {nullptr, {}, {90, 100, 110, 120}},
                 {L"Turned", {300, 400, 100, 200}, {100, 200, 300, 400}},
                 {longName.c_str(), {1, 2, 3, 4}, {1, 2, 3, 4}}};
    std::vector<SAIndexField> fields;
    for (const auto& one : cases) fields.push_back(Field(one.name, one.before));
    const auto play = [](HWND dialog) {
        EXPECT_EQ(TitleOf(dialog), L"Configure Area Set");
        EXPECT_EQ(RowCount(dialog), 5);
        PressOk(dialog);
    };
    EXPECT_TRUE(PlayPage(fields, play, nullptr));
    for (size_t i = 0; i < fields.size(); ++i) EXPECT_EQ(PlaceOf(fields[i]), cases[i].after) << i;

    PlayScript(
        [](HWND dialog) {
            EXPECT_EQ(RowCount(dialog), 0);
            EXPECT_TRUE(IsWindowVisible(GetDlgItem(dialog, IDC_CONFIG_IGNORED))) << "no indexing";
            PressOk(dialog);
        },
        [&] { EXPECT_TRUE(m_configurePage(m_owner, L"", nullptr, -1, m_host, 0, 0)); });
}

// While it is open, the same export and new settings are refused.
TEST_F(ConfigExports, CancelChangesNothing) {
    KeepPages();
    const std::wstring before = WorkingSet(L"0x00000005").Dump();
    std::vector<SAIndexField> fields = {Field(L"Total", {10, 20, 30, 40})};
    const auto leave = [&](bool page) {
        return [&, page](HWND dialog) {
            EXPECT_FALSE(page ? OpenPage(fields) : m_configureSet(m_owner, 5));
            m_init(nullptr);
            EXPECT_EQ(TakeTraceTexts(), (page ? std::wstring(L"6 ConfigurePage") : L"6 SAConfigureSet") +
                                            L": called again while its dialog is open.\n"
                                            L"6 SAInit: a dialog is open, nothing was changed.\n");
            Push(dialog, IDC_CONFIG_ADD);
            CheckRadioButton(dialog, IDC_CONFIG_REQUIRED, IDC_CONFIG_IGNORED, IDC_CONFIG_IGNORED);
            Key(VK_ESCAPE);
        };
    };
    for (int i = 0; i < 2; ++i) {  // the refusal ends with the dialog
        EXPECT_TRUE(PlayPage(fields, leave(true)));
        EXPECT_TRUE(PlaySet(5, leave(false)));
    }
    EXPECT_EQ(PlaceOf(fields[0]), (RECT{10, 20, 30, 40}));
    EXPECT_EQ(WorkingSet(L"0x00000005").Dump(), before);
    EXPECT_EQ(StoredRects(5), kInvoiceAreas);
}

TEST_F(ConfigExports, OkReplacesTheFlagsAndTheHostsNodeWaitsForACommit) {
    m_tree->Child(L"0x00000005")->integers[L"Flags"] = 0x10000007;
    const std::wstring host = m_tree->Dump();
    Init();
    KeepPages();
    for (const int64_t flags : {0x10000000, 0}) {
        EXPECT_TRUE(PlaySet(5, [=](HWND dialog) {
            EXPECT_TRUE(Checked(dialog, IDC_CONFIG_IGNORED));
            if (flags == 0) Push(dialog, IDC_CONFIG_REQUIRED);
            PressOk(dialog);
        }));
        EXPECT_EQ(WorkingSet(L"0x00000005").integers[L"Flags"], flags);
    }
    EXPECT_EQ(m_tree->Dump(), host);
}

TEST_F(ConfigExports, UnitsAreAskedInTheOrderOfTheText) {
    KeepPages();
    m_units.reset();
    const FakeUnitsClass units(Host().createTransfer);
    EXPECT_TRUE(PlaySet(9, [](HWND dialog) {
        const auto pair = [] { return UnitCalls().at(0) + L", " + UnitCalls().at(1); };
        EXPECT_EQ(TextOf(dialog, IDC_CONFIG_SIZE), L"210, 297");
        EXPECT_EQ(pair(), L"210, 297");
        UnitCalls().clear();
        MoveTo(OnPage(dialog, 300, 700));
        EXPECT_EQ(UnitCalls().size(), 2u);
        EXPECT_EQ(TextOf(dialog, IDC_CONFIG_POSITION), pair());
        EXPECT_NE(UnitCalls()[0], UnitCalls()[1]);
        PressCancel(dialog);
    }));
}

}  // namespace
