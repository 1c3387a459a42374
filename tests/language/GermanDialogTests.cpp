// The three dialogs as an operator with German sees them.
#include "dialogs/ManageFixture.h"

namespace {

using namespace test;

struct German {
    German() { SetEnvironmentVariableW(L"HOST_LANGUAGE", L"de"); }
    ~German() { SetEnvironmentVariableW(L"HOST_LANGUAGE", nullptr); }
};

class GermanDialogs : private German, public ManageDialog {};

TEST_F(GermanDialogs, ManageAndItsDialogs) {
    EXPECT_TRUE(Play({[](HWND) {},
                      [](HWND dialog) {
                          EXPECT_EQ(GetTextOfWindow(dialog), L"Bereichssätze verwalten");
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"210.0 x 297.0 mm");
                          Screenshot(dialog, L"manage-de");
                          Post(dialog, IDC_MANAGE_SETTINGS);
                      },
                      [](HWND) {},
                      [](HWND dialog) {
                          EXPECT_EQ(GetTextOfWindow(dialog), L"Papierformat wählen");
                          Screenshot(dialog, L"paper-de");
                          Push(dialog, IDC_PAPER_CUSTOM);
                          SetDlgItemTextW(dialog, IDC_PAPER_WIDTH, L"breit");
                          PressOk(dialog);
                      },
                      [this](HWND dialog) {
                          const std::vector<std::wstring> boxes = TakeHostBoxes();
                          ASSERT_EQ(boxes.size(), 1u);
                          EXPECT_TRUE(boxes[0].starts_with(L"Breite: Bitte geben Sie eine Zahl von ")) << boxes[0];
                          PressCancel(dialog);
                      },
                      [](HWND) { PressKey('K', VK_MENU); },
                      [](HWND dialog) {
                          EXPECT_EQ(GetTextOfWindow(LabelEdit(dialog)), L"Kopie von Invoice");
                          SelectSet(dialog, 0);
                          Post(dialog, IDC_MANAGE_CONFIGURE);
                      },
                      [](HWND) {},
                      [](HWND dialog) {
                          EXPECT_EQ(GetTextOfWindow(dialog), L"Bereichssatz bearbeiten - Invoice");
                          wchar_t column[32] = {};
                          LVCOLUMNW record = {};
                          record.mask = LVCF_TEXT;
                          record.pszText = column;
                          record.cchTextMax = 32;
                          SendMessageW(ListOf(dialog), LVM_GETCOLUMNW, 1, reinterpret_cast<LPARAM>(&record));
                          EXPECT_STREQ(column, L"Y-Abstand");
                          EXPECT_EQ(RowCount(dialog), 2);
                          Screenshot(dialog, L"configure-de");
                          PressCancel(dialog);
                      },
                      PressCancel}));
    TakeTraces();
}

}  // namespace
