// "Configure Area Set": the rectangles of the page and their rows, by real keys and mouse.
#include <clocale>
#include <cmath>

#include "configdlg/ConfigFixture.h"

namespace {

using namespace test;

constexpr RECT kMiddle = {525, 742, 1575, 2227};

using ConfigEdit = ConfigDialog;

// A field stands on one row; undo brings it back.
TEST_F(ConfigEdit, AreasOfIndexingFields) {
    std::vector<SAIndexField> fields = {Field(L"Total", kInvoiceAreas[0]), Field(L"Date", kInvoiceAreas[1]),
                                        Field(L"Sum")};
    EXPECT_TRUE(PlayPage(fields, [](HWND dialog) {
        EXPECT_EQ(TitleOf(dialog), L"Configure Area Set - Page");
        EXPECT_EQ(TextOf(dialog, IDC_CONFIG_SIZE), L"210.0, 297.0");
        for (const UINT id : {IDC_CONFIG_IGNORED, IDC_CONFIG_REQUIRED, IDC_CONFIG_AREAS_ARE}) {
            EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, static_cast<int>(id))));
        }
        EXPECT_EQ(RowText(dialog, 0), L"10.0 20.0 20.0 20.0 Total");
        EXPECT_EQ(RowText(dialog, 1), L"50.0 60.0 40.0 40.0 Date");
        Click(GetDlgItem(dialog, IDC_CONFIG_ADD));
        EXPECT_EQ(RowText(dialog, 2), L"52.5 74.2 105.0 148.5");
        EXPECT_EQ(RectOfRow(dialog, 2), kMiddle);
        EXPECT_EQ(SelectedRow(dialog), 2);
        ChooseField(dialog, 2, VK_DOWN);
        EXPECT_EQ(RowText(dialog, 2), L"52.5 74.2 105.0 148.5 Total");
        EXPECT_EQ(RowText(dialog, 0), L"10.0 20.0 20.0 20.0");
        Push(dialog, IDC_CONFIG_REMOVE);
        EXPECT_EQ(RowCount(dialog), 2);
        SetFocus(PageOf(dialog));
        Key('Z', VK_CONTROL);
        EXPECT_EQ(RowText(dialog, 2), L"52.5 74.2 105.0 148.5 Total");
        PressOk(dialog);
    }));
    EXPECT_EQ(PlaceOf(fields[0]), kMiddle);
    EXPECT_EQ(PlaceOf(fields[1]), kInvoiceAreas[1]);
    EXPECT_EQ(PlaceOf(fields[2]), RECT{});
    EXPECT_EQ(m_host->calls, "BQE");
}

TEST_F(ConfigEdit, NumbersTypedInCells) {
    // One after the other, in one row.
    const struct {
        int column;
        const wchar_t *text, *row;
        RECT rect;
        bool refused = false;
    } edits[] = {
        {0, L"15.5", L"15.5 20.0 20.0 20.0", {155, 200, 355, 400}},
        {0, L"-5", L"0.0 20.0 20.0 20.0", {0, 200, 200, 400}},
        {0, L" 12.3456 ", L"12.3 20.0 20.0 20.0", {123, 200, 323, 400}},
        {2, L"-99", L"0.0 20.0 12.3 20.0", {0, 200, 123, 400}},
        {1, L" ", L"0.0 0.0 12.3 20.0", {0, 0, 123, 200}},
        {3, L"7", L"0.0 0.0 12.3 7.0", {0, 0, 123, 70}},
        {3, L"12a", L"0.0 0.0 12.3 12a", {0, 0, 123, 70}, true},
        {0, L"1,5", L"1,5 0.0 12.3 12a", {0, 0, 123, 70}, true},
        {2, L"nan", L"1,5 0.0 nan 12a", {0, 0, 123, 70}, true},
        {1, L"3", L"0.0 3.0 12.3 7.0", {0, 30, 123, 100}},  // what is no number counts as what was there before
    };
    KeepPages();
    EXPECT_TRUE(PlaySet(5, [&](HWND dialog) {
        for (const auto& [column, text, row, rect, refused] : edits) {
            SCOPED_TRACE(testing::PrintToString(text));
            EditCell(dialog, 0, column, text);
            EXPECT_EQ(RowText(dialog, 0), row);
            EXPECT_EQ(RectOfRow(dialog, 0), rect);
            refused ? ExpectBox(L"Wrong number was entered.") : ExpectNothingReported();
        }
        EXPECT_EQ(RectOfRow(dialog, 1), kInvoiceAreas[1]);
        PressCancel(dialog);
    }));
}

// A length that has more digits than its text keeps them while another cell is edited.
TEST_F(ConfigEdit, OtherLengthsStayWithInchesAndADecimalComma) {
    // The user's settings and those of the C library, which hosts set as well.
    wchar_t before[4] = L".";
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, before, 4);
    SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, L",");
    EXPECT_NE(std::setlocale(LC_ALL, "German_Germany.1252"), nullptr);
    const struct {
        LONG system;
        const wchar_t *label, *row, *typed;
        LONG length;
    } cases[] = {{1, L"[mm]:", L"10.1 20.3 113.3 214.2 Total", L"12.3", 123},
                 {2, L"[in]:", L"0.398 0.799 4.461 8.433 Total", L"1.234", 312}};
    for (const auto& [system, label, row, typed, length] : cases) {
        UseSystem(system);
        std::vector<SAIndexField> fields = {Field(L"Total", {101, 203, 1234, 2345})};
        LONG lengths[] = {101, 203, 1133, 2142};
        const auto rect = [&] {
            return RECT{lengths[0], lengths[1], lengths[0] + lengths[2], lengths[1] + lengths[3]};
        };
        EXPECT_TRUE(PlayPage(fields, [&](HWND dialog) {
            EXPECT_TRUE(TextOf(dialog, IDC_CONFIG_LIST_LABEL).ends_with(label));
            EXPECT_EQ(RowText(dialog, 0), row);
            for (int column = 0; column < 4; ++column) {
                EditCell(dialog, 0, column, typed);
                lengths[column] = length;
                EXPECT_EQ(RectOfRow(dialog, 0), rect()) << label << column;
            }
            PressOk(dialog);
        }));
        EXPECT_EQ(PlaceOf(fields[0]), rect());
    }
    std::setlocale(LC_ALL, "C");
    SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, before);
}

TEST_F(ConfigEdit, DrawingOnThePageMakesARow) {
    std::vector<SAIndexField> fields;
    EXPECT_TRUE(PlayPage(fields, [](HWND dialog) {
        EXPECT_FALSE(Enabled(dialog, IDC_CONFIG_REMOVE));
        // The read-out, in the page's lengths.
        const auto position = [=] {
            double x = 0, y = 0;
            EXPECT_EQ(swscanf(TextOf(dialog, IDC_CONFIG_POSITION).c_str(), L"%lf, %lf", &x, &y), 2);
            return POINT{std::lround(x * 10), std::lround(y * 10)};
        };
        MoveTo(OnPage(dialog, 300, 300));
        const POINT start = position();
        ButtonDown();
        MoveTo(OnPage(dialog, 500, 600));
        MoveTo(OnPage(dialog, 600, 700));
        const POINT end = position();
        ButtonUp();
        const RECT rect = RectOfRow(dialog, 0);
        constexpr double kPixel = 10;
        EXPECT_NEAR(start.x, rect.left, kPixel);
        EXPECT_NEAR(start.y, rect.top, kPixel);
        EXPECT_NEAR(end.x, rect.right, kPixel);
        EXPECT_NEAR(end.y, rect.bottom, kPixel);
        EXPECT_GT(rect.right - rect.left, 300);
        wchar_t row[64];
        swprintf(row, 64, L"%.1f %.1f %.1f %.1f", rect.left / 10.0, rect.top / 10.0, (rect.right - rect.left) / 10.0,
                 (rect.bottom - rect.top) / 10.0);
        EXPECT_EQ(RowText(dialog, 0), row);
        EXPECT_TRUE(Enabled(dialog, IDC_CONFIG_REMOVE));
        PressCancel(dialog);
    }));
}

// Clicking an area selects its row, selecting a row selects its area, which then is the one that the keys remove.
TEST_F(ConfigEdit, RowsAndAreasAreSelectedTogetherAndRowsGiveTheOrder) {
    KeepPages();
    EXPECT_TRUE(PlaySet(5, [](HWND dialog) {
        SelectRow(dialog, 0);
        Click(OnPage(dialog, 710, 620));  // the last area, on a page that fills the height
        EXPECT_EQ(SelectedRow(dialog), 2);
        SelectRow(dialog, 1);
        SetFocus(PageOf(dialog));
        Key(VK_DELETE);
        ASSERT_EQ(RowCount(dialog), 2);
        EXPECT_EQ(RectOfRow(dialog, 1), kInvoiceAreas[2]);
        SetFocus(ListOf(dialog));
        Key(VK_INSERT, 0, 2);
        Key(VK_DELETE);
        ASSERT_EQ(RowCount(dialog), 3);
        SelectRow(dialog, 0);
        Key(VK_DOWN, VK_MENU, 2);
        EXPECT_EQ(SelectedRow(dialog), 2);
        PressOk(dialog);
    }));
    EXPECT_EQ(StoredRects(5), (std::vector<RECT>{kInvoiceAreas[2], kMiddle, kInvoiceAreas[0]}));
    EXPECT_EQ(WorkingSet(L"0x00000005").Child(L"Rect")->Child(L"2")->integers[L"Position:left"], 100);
}

TEST_F(ConfigEdit, KeyboardAloneMakesAnIgnoredSet) {
    const wchar_t* const texts[][4] = {{L"10", L"20", L"30", L"40"}, {L"0", L"60.5", L"210", L"12.3"}};
    KeepPages();
    EXPECT_TRUE(PlaySet(9, [&](HWND dialog) {
        EXPECT_FALSE(Enabled(dialog, IDC_CONFIG_REMOVE));
        for (const auto& row : texts) {
            // Tab leads from the button past Remove and the choice to the list, where the new row is selected.
            Key('A', VK_MENU);
            Key(VK_TAB, 0, 3);
            EXPECT_EQ(GetFocus(), ListOf(dialog));
            Key(VK_LEFT, 0, 3);  // the list keeps its column from row to row
            Key(VK_F2);
            for (int column = 0; column < 4; ++column) {
                Type(row[column]);
                Key(column < 3 ? VK_TAB : VK_RETURN);
            }
        }
        Key('I', VK_MENU);
        EXPECT_TRUE(Checked(dialog, IDC_CONFIG_IGNORED) && !Checked(dialog, IDC_CONFIG_REQUIRED));
        Key(VK_RETURN);
    }));
    EXPECT_EQ(StoredRects(9), (std::vector<RECT>{{100, 200, 400, 600}, {0, 605, 2100, 728}}));
    FakeTree& stored = WorkingSet(L"0x00000009");
    EXPECT_EQ(stored.integers[L"Flags"], 0x10000000);
    EXPECT_EQ(stored.Child(L"DisplayRect")->integers[L"Position:right"], 2100);
    EXPECT_EQ(stored.Child(L"DisplayRect")->integers[L"Position:bottom"], 2970);
}

}  // namespace
