// "Configure Area Set": the rectangles of the page and their rows, by real keys and mouse.
#include "configdlg/ConfigFixture.h"

#include "host/ListTable.h"

namespace {

using namespace test;

constexpr RECT kMiddle = {525, 742, 1575, 2227};

class ConfigEdit : public ConfigDialog {};

TEST_F(ConfigEdit, AnAddedAreaIsTheMiddleOfThePageAndIsHandedBack) {
    std::vector<SAIndexField> fields = {Field(L"Total"), Field(L"Date")};
    Steps steps = {[](HWND dialog) {
                       EXPECT_EQ(TextOf(dialog, IDC_CONFIG_SIZE), L"210.0, 297.0");
                       EXPECT_EQ(RowCount(dialog), 0);
                       EXPECT_FALSE(Enabled(dialog, IDC_CONFIG_REMOVE));
                       wchar_t title[64] = {};
                       GetWindowTextW(dialog, title, 64);
                       EXPECT_STREQ(title, L"Configure Area Set - Page");
                   },
                   [](HWND dialog) { ClickOn(GetDlgItem(dialog, IDC_CONFIG_ADD)); },
                   [](HWND dialog) {
                       EXPECT_EQ(RowText(dialog, 0), L"52.5 74.2 105.0 148.5");
                       EXPECT_EQ(RectOfRow(dialog, 0), kMiddle);
                       EXPECT_EQ(SelectedRow(dialog), 0);
                       EXPECT_TRUE(Enabled(dialog, IDC_CONFIG_REMOVE));
                   }};
    ChooseField(steps, 0, VK_DOWN);
    steps.push_back([](HWND dialog) {
        EXPECT_EQ(CellText(dialog, 0, 4), L"Total");
        listtable::Cell cell = {};
        EXPECT_FALSE(SendMessageW(ListOf(dialog), listtable::kGetEditedCell, 0, reinterpret_cast<LPARAM>(&cell)));
        Screenshot(dialog, L"config-fields");
    });
    steps.push_back(PressOk);
    EXPECT_TRUE(PlayPage(fields, steps));
    EXPECT_EQ(PlaceOf(fields[0]), kMiddle);
    EXPECT_EQ(PlaceOf(fields[1]), RECT{});
    EXPECT_EQ(m_host->calls, "BQE");
}

TEST_F(ConfigEdit, NumbersTypedInCells) {
    KeepPages();
    const struct {
        int column;
        const wchar_t* text;
        const wchar_t* row;
        RECT rect;
        bool refused = false;
    } cases[] = {
        {0, L"15.5", L"15.5 20.0 20.0 20.0", {155, 200, 355, 400}},
        {0, L"-5", L"0.0 20.0 20.0 20.0", {0, 200, 200, 400}},
        {1, L" 12.3456 ", L"10.0 12.3 20.0 20.0", {100, 123, 300, 323}},
        {1, L" ", L"10.0 0.0 20.0 20.0", {100, 0, 300, 200}},
        {2, L"-99", L"0.0 20.0 10.0 20.0", {0, 200, 100, 400}},
        {3, L"7", L"10.0 20.0 20.0 7.0", {100, 200, 300, 270}},
        {3, L"12a", L"10.0 20.0 20.0 12a", {100, 200, 300, 400}, true},
        {0, L"1,5", L"1,5 20.0 20.0 20.0", {100, 200, 300, 400}, true},
        {2, L"nan", L"10.0 20.0 nan 20.0", {100, 200, 300, 400}, true},
    };
    for (const auto& edit : cases) {
        SCOPED_TRACE(testing::Message() << "column " << edit.column << ": " << edit.text);
        Steps steps;
        EditCell(steps, 0, edit.column, edit.text);
        steps.push_back([&](HWND dialog) {
            EXPECT_EQ(RowText(dialog, 0), edit.row);
            EXPECT_EQ(RectOfRow(dialog, 0), edit.rect);
            EXPECT_EQ(RectOfRow(dialog, 1), (RECT{500, 600, 900, 1000}));
            std::vector<std::wstring> boxes;
            if (edit.refused) boxes.push_back(L"Wrong number was entered.");
            EXPECT_EQ(TakeHostBoxes(), boxes);
        });
        steps.push_back(PressCancel);
        EXPECT_TRUE(PlaySet(5, steps));
    }
}

// A length that has more digits than its text keeps them while another cell is edited.
TEST_F(ConfigEdit, InInchesTheOtherLengthsStay) {
    UseInches();
    std::vector<SAIndexField> fields = {Field(L"Total", {101, 203, 1234, 2345})};
    Steps steps;
    EditCell(steps, 0, 0, L"1.234");
    steps.push_back([](HWND dialog) {
        EXPECT_EQ(CellText(dialog, 0, 0).substr(0, 4), L"1.22") << "no whole number of internal lengths";
        EXPECT_TRUE(TextOf(dialog, IDC_CONFIG_LIST_LABEL).ends_with(L"[in]:"));
    });
    steps.push_back(PressOk);
    EXPECT_TRUE(PlayPage(fields, steps));
    EXPECT_EQ(PlaceOf(fields[0]), (RECT{312, 203, 312 + 1133, 2345}));
}

TEST_F(ConfigEdit, DrawingOnThePageMakesARow) {
    std::vector<SAIndexField> fields = {};
    std::wstring start, end;
    const auto position = [](HWND dialog) { return TextOf(dialog, IDC_CONFIG_POSITION); };
    EXPECT_TRUE(PlayPage(fields, {[](HWND dialog) { MouseTo(OnPage(dialog, 300, 300)); }, [](HWND) {},
                                  [&](HWND dialog) {
                                      start = position(dialog);
                                      MouseButton(MOUSEEVENTF_LEFTDOWN);
                                  },
                                  [](HWND dialog) { MouseTo(OnPage(dialog, 500, 600)); }, [](HWND) {},
                                  [](HWND dialog) { MouseTo(OnPage(dialog, 600, 700)); }, [](HWND) {},
                                  [&](HWND dialog) {
                                      end = position(dialog);
                                      MouseButton(MOUSEEVENTF_LEFTUP);
                                  },
                                  [](HWND) {},
                                  [&](HWND dialog) {
                                      ASSERT_EQ(RowCount(dialog), 1);
                                      EXPECT_TRUE(Enabled(dialog, IDC_CONFIG_REMOVE));
                                      const RECT rect = RectOfRow(dialog, 0);
                                      // The read-out tells where the corners are, within a pixel of the page.
                                      double x = 0, y = 0;
                                      ASSERT_EQ(swscanf(start.c_str(), L"%lf, %lf", &x, &y), 2) << start;
                                      EXPECT_NEAR(x * 10, rect.left, 10);
                                      EXPECT_NEAR(y * 10, rect.top, 10);
                                      ASSERT_EQ(swscanf(end.c_str(), L"%lf, %lf", &x, &y), 2) << end;
                                      EXPECT_NEAR(x * 10, rect.right, 10);
                                      EXPECT_NEAR(y * 10, rect.bottom, 10);
                                      EXPECT_GT(rect.right - rect.left, 300);
                                      wchar_t row[64];
                                      swprintf(row, 64, L"%.1f %.1f %.1f %.1f", rect.left / 10.0, rect.top / 10.0,
                                               (rect.right - rect.left) / 10.0, (rect.bottom - rect.top) / 10.0);
                                      EXPECT_EQ(RowText(dialog, 0), row);
                                  },
                                  PressCancel}));
}

// Clicking an area selects its row, selecting a row selects its area, which then is the one that the keys remove.
TEST_F(ConfigEdit, RowsAndAreasAreSelectedTogether) {
    KeepPages();
    EXPECT_TRUE(PlaySet(5, {[](HWND dialog) { SelectRow(dialog, 0); },
                            [](HWND dialog) {
                                // The last area (1200..1800, 1500..2200) of a page that fills the height.
                                RECT page;
                                GetClientRect(PageOf(dialog), &page);
                                MouseTo(OnPage(dialog, 710, 620));
                            },
                            [](HWND) {},
                            [](HWND) {
                                MouseButton(MOUSEEVENTF_LEFTDOWN);
                                MouseButton(MOUSEEVENTF_LEFTUP);
                            },
                            [](HWND) {},
                            [](HWND dialog) {
                                EXPECT_EQ(SelectedRow(dialog), 2);
                                SelectRow(dialog, 1);
                            },
                            [](HWND dialog) { SetFocus(PageOf(dialog)); }, [](HWND) { PressKey(VK_DELETE); },
                            [](HWND dialog) {
                                ASSERT_EQ(RowCount(dialog), 2);
                                EXPECT_EQ(RectOfRow(dialog, 1), (RECT{1200, 1500, 1800, 2200}));
                            },
                            PressCancel}));
}

TEST_F(ConfigEdit, AnIndexingFieldStandsOnOneRowAndUndoBringsItBack) {
    std::vector<SAIndexField> fields = {Field(L"Total", {100, 200, 300, 400}), Field(L"Date", {500, 600, 900, 1000}),
                                        Field(L"Sum")};
    Steps steps = {[](HWND dialog) {
        EXPECT_EQ(RowText(dialog, 0), L"10.0 20.0 20.0 20.0 Total");
        EXPECT_EQ(RowText(dialog, 1), L"50.0 60.0 40.0 40.0 Date");
        for (const UINT id : {IDC_CONFIG_IGNORED, IDC_CONFIG_REQUIRED, IDC_CONFIG_AREAS_ARE}) {
            EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, static_cast<int>(id))));
        }
    }};
    ChooseField(steps, 1, VK_UP);
    steps.push_back([](HWND dialog) {
        EXPECT_EQ(RowText(dialog, 0), L"10.0 20.0 20.0 20.0");
        EXPECT_EQ(RowText(dialog, 1), L"50.0 60.0 40.0 40.0 Total");
        Push(dialog, IDC_CONFIG_REMOVE);
    });
    steps.push_back([](HWND dialog) {
        EXPECT_EQ(RowCount(dialog), 1);
        SetFocus(PageOf(dialog));
    });
    steps.push_back([](HWND) { PressKey('Z', VK_CONTROL); });
    steps.push_back([](HWND dialog) {
        ASSERT_EQ(RowCount(dialog), 2);
        EXPECT_EQ(RowText(dialog, 1), L"50.0 60.0 40.0 40.0 Total");
        EXPECT_EQ(RectOfRow(dialog, 1), (RECT{500, 600, 900, 1000}));
    });
    steps.push_back(PressOk);
    EXPECT_TRUE(PlayPage(fields, steps));
    EXPECT_EQ(PlaceOf(fields[0]), (RECT{500, 600, 900, 1000}));
    EXPECT_EQ(PlaceOf(fields[1]), RECT{});
    EXPECT_EQ(PlaceOf(fields[2]), RECT{});
}

TEST_F(ConfigEdit, MovedRowsAreTheNewOrder) {
    KeepPages();
    EXPECT_TRUE(PlaySet(5, {[](HWND dialog) {
                                SelectRow(dialog, 0);
                                SetFocus(ListOf(dialog));
                            },
                            [](HWND) { PressKey(VK_DOWN, VK_MENU); }, [](HWND) { PressKey(VK_DOWN, VK_MENU); },
                            [](HWND dialog) {
                                EXPECT_EQ(RectOfRow(dialog, 2), (RECT{100, 200, 300, 400}));
                            },
                            [](HWND dialog) {
                                EXPECT_EQ(SelectedRow(dialog), 2);
                                PressOk(dialog);
                            }}));
    const std::vector<RECT> order = {{500, 600, 900, 1000}, {1200, 1500, 1800, 2200}, {100, 200, 300, 400}};
    EXPECT_EQ(StoredRects(5), order);
    EXPECT_EQ(WorkingSet(L"0x00000005").Child(L"Rect")->Child(L"2")->integers[L"Position:left"], 100);
}

TEST_F(ConfigEdit, KeyboardAloneMakesAnIgnoredSetOfThreeAreas) {
    KeepPages();
    Steps steps = {[](HWND dialog) { EXPECT_FALSE(Enabled(dialog, IDC_CONFIG_REMOVE)); }};
    const auto key = [&](WORD code, WORD modifier = 0) { steps.push_back([=](HWND) { PressKey(code, modifier); }); };
    const auto type = [&](const wchar_t* text) { steps.push_back([=](HWND) { TypeText(text); }); };
    const wchar_t* const texts[3][4] = {
        {L"10", L"20", L"30", L"40"}, {L"15.5", L"60.5", L"70", L"5"}, {L"0", L"0", L"210", L"12.3"}};
    for (const auto& row : texts) {
        // Tab leads from the button past Remove and the choice to the list, where the new row is selected.
        key('A', VK_MENU);
        key(VK_TAB);
        key(VK_TAB);
        key(VK_TAB);
        steps.push_back([](HWND dialog) { EXPECT_EQ(GetFocus(), ListOf(dialog)); });
        // The list keeps its column from row to row.
        for (int column = 0; column < 3; ++column) key(VK_LEFT);
        key(VK_F2);
        for (int column = 0; column < 4; ++column) {
            type(row[column]);
            key(column < 3 ? VK_TAB : VK_RETURN);
        }
    }
    key('I', VK_MENU);
    steps.push_back([](HWND dialog) {
        EXPECT_EQ(IsDlgButtonChecked(dialog, IDC_CONFIG_IGNORED), BST_CHECKED);
        EXPECT_EQ(IsDlgButtonChecked(dialog, IDC_CONFIG_REQUIRED), BST_UNCHECKED);
    });
    key(VK_RETURN);
    EXPECT_TRUE(PlaySet(9, steps));
    const std::vector<RECT> placed = {{100, 200, 400, 600}, {155, 605, 855, 655}, {0, 0, 2100, 123}};
    EXPECT_EQ(StoredRects(9), placed);
    FakeTree& stored = WorkingSet(L"0x00000009");
    EXPECT_EQ(stored.integers[L"Flags"], 0x10000000);
    EXPECT_EQ(stored.Child(L"DisplayRect")->integers[L"Position:right"], 2100);
    EXPECT_EQ(stored.Child(L"DisplayRect")->integers[L"Position:bottom"], 2970);
}

}  // namespace
