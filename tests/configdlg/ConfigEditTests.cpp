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
    EditCell(steps, 0, 4, L"T");
    steps.push_back([](HWND dialog) {
        EXPECT_EQ(CellText(dialog, 0, 4), L"Total");
        Screenshot(dialog, L"config-fields");
    });
    steps.push_back(PressOk);
    EXPECT_TRUE(PlayPage(fields, steps));
    EXPECT_EQ(PlaceOf(fields[0]), kMiddle);
    EXPECT_EQ(PlaceOf(fields[1]), RECT{});
    EXPECT_EQ(m_host->calls, "BQE");
}

}  // namespace
