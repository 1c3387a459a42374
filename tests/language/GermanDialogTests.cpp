// Dialogs as an operator with German sees them.
#include "dialogs/ManageFixture.h"

namespace {

using namespace test;

struct German {
    German() { SetEnvironmentVariableW(L"HOST_LANGUAGE", L"de"); }
    ~German() { SetEnvironmentVariableW(L"HOST_LANGUAGE", nullptr); }
};

class GermanDialogs : private German, public ManageDialog {};

TEST_F(GermanDialogs, ManageAndConfigure) {
    EXPECT_TRUE(Play({[](HWND) {},
                      [](HWND dialog) {
                          EXPECT_EQ(GetTextOfWindow(dialog), L"Bereichssätze verwalten");
                          EXPECT_EQ(TextOf(dialog, IDC_MANAGE_SIZE), L"210.0 x 297.0 mm");
                          PressKey('K', VK_MENU);
                      },
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
                          PressCancel(dialog);
                      },
                      PressCancel}));
    TakeTraces();
}

}  // namespace
