// Rows that are moved, and columns with their widths.
#include <gtest/gtest.h>

#include "ListDialog.h"

namespace {

using test::ListDialog;

TEST(ListMove, ByKeysAndByDragging) {
    const test::StepCase rows[] = {
        // Moving is not taken for selecting, and releasing Alt has not opened a menu: keys still reach the list.
        {"key alt Down; rows; cell 1,2; selected; key alt Up; key alt Up; rows; key Down; selected; selections",
         "2<0 r1c0=101 r0c0=100 r2c0=102 r3c0=103 r0c2 1 0<1 r0c0=100 r1c0=101 r2c0=102 r3c0=103 1 1"},
        {"drag 0,2; capture; release; rows; selected; capture; edited",
         "dragging 3<0 r1c0=101 r2c0=102 r0c0=100 r3c0=103 2 free []"},
        // A drag that ends nowhere changes nothing, and its Escape is not the dialog's.
        {"drag 0,2; key Escape; release; capture", "free"},
        {"drag 0,2; loseCapture; release; capture", "free"},
        {"drag 0,2; deleterow 3; release; capture", "free"},
        {"drag 0,2; outside; capture; release; capture", "dragging free"},
        // Without the style rows stay.
        {"styles; key alt Down; drag 0,2; release", "268435488 268435456 0"},
    };
    for (const test::StepCase& row : rows) EXPECT_EQ(ListDialog().Run(row.steps), row.told) << row.steps;
}

TEST(ListMove, DraggingBeyondTheRowsScrolls) {
    ListDialog list(100);
    list.Show([&](HWND dialog) {
        list.Play("drag 0,1");
        RECT rect = {};
        GetWindowRect(GetDlgItem(dialog, test::kListId), &rect);
        test::MoveTo({rect.left + 30, rect.bottom + 5});
        for (int i = 0; i < 500 && list.List().SendMessage(LVM_GETTOPINDEX) <= 3; ++i) test::Wait();
        EXPECT_GT(std::stoi(list.Play("release")), 5) << "the row before which it is moved";
    });
}

TEST(ListMove, OrdersOfTheParent) {
    ListDialog list(200);
    list.Show([&](HWND) {
        const int32_t rows[] = {199, 0, 5};
        const int before = list.changes;
        EXPECT_TRUE(list.List().MoveItems(100, 3, rows));
        EXPECT_EQ(list.changes, before) << "the data that the rows carry meanwhile was notified";
        for (const auto& [row, column, text] :
             {std::tuple{0, 0, L"r1c0"}, std::tuple{98, 0, L"r199c0"}, std::tuple{99, 1, L"r0c1"},
              std::tuple{100, 2, L"r5c2"}, std::tuple{101, 0, L"r100c0"}}) {
            EXPECT_EQ(list.Cell(row, column), text);
        }
        EXPECT_EQ(list.List().GetItemData(98), 299);
        EXPECT_EQ(list.SelectedRow(), 99);
        EXPECT_EQ(list.List().GetItemCount(), 200);
        const std::string order = list.Rows();
        const int32_t twice[] = {3, 3};
        const int32_t beyond[] = {200};
        EXPECT_FALSE(list.List().MoveItems(0, 2, twice));
        EXPECT_FALSE(list.List().MoveItems(0, 1, beyond));
        EXPECT_FALSE(list.List().MoveItems(201, 1, rows));
        EXPECT_FALSE(list.List().MoveItems(0, -1, rows));
        EXPECT_FALSE(list.List().MoveItems(0, 1, nullptr));
        EXPECT_EQ(list.Rows(), order);
    });
    EXPECT_EQ(list.Play("selections"), "0") << "and no move was asked for";
}

TEST(ListColumns, ChoicesKindsAndWidths) {
    ListDialog list(1);
    list.Show([&](HWND) {
        CListTableCtrl& control = list.List();
        const auto client = [&] { return control.GetClientRect().right; };
        const auto sum = [&] {
            LONG total = 0;
            for (int column = 0; column < 4; ++column) total += control.GetColumnWidth(column);
            return total;
        };
        for (const wchar_t* widths : {L"[%]250,250,250,250", L"[%]100,333,0,567", L"[%]500,500,500,500"}) {
            EXPECT_TRUE(control.SetColumnWidths(widths));
            EXPECT_EQ(control.GetColumnWidths(1), widths);
        }
        EXPECT_TRUE(control.SetColumnWidths(L"[%]250,250,250,250"));
        EXPECT_EQ(sum(), client());
        // The scroll bar takes its room from all columns.
        const LONG before = client();
        for (int row = 0; row < 10; ++row) control.InsertItem(row, L"x");
        EXPECT_LT(client(), before);
        EXPECT_EQ(sum(), client());
        EXPECT_EQ(control.GetColumnWidths(1), L"[%]250,250,250,250");
        // What the user makes of a column counts from then on.
        control.SetColumnWidth(0, 10);
        EXPECT_NE(control.GetColumnWidths(1), L"[%]250,250,250,250");
        EXPECT_TRUE(control.SetColumnWidths(L"11,22"));
        EXPECT_EQ(control.GetColumnWidth(1), 22);
        EXPECT_TRUE(control.GetColumnWidths(0).starts_with(L"11,22,"));
        EXPECT_TRUE(control.SetColumnWidths(L"[%]1,1,1,1,1,1,1"));
        const std::wstring kept = control.GetColumnWidths(1);
        for (const wchar_t* widths : {L"", L"[%]", L"nonsense", L"1,,2"}) {
            EXPECT_FALSE(control.SetColumnWidths(widths));
        }
        EXPECT_EQ(control.GetColumnWidths(1), kept);

        CColumnInfo info = control.GetColumnInfo(3);
        EXPECT_EQ(info.GetKind(), listtable::kKindChoice);
        EXPECT_EQ(info.GetChoiceCount(), 3);
        EXPECT_EQ(info.GetChoice(1), L"Total");
        EXPECT_EQ(info.GetChoice(3), L"");
        info.RemoveAllChoices();
        info.AddChoice(std::wstring(1000, L'x'));
        EXPECT_EQ(info.GetChoice(0).size(), 1000U);
        EXPECT_EQ(control.GetColumnInfo(9).GetKind(), 0U);
        EXPECT_EQ(control.GetColumnInfo(9).GetChoiceCount(), 0);
        // A column put before it keeps the kinds with their columns.
        control.InsertColumn(0, L"First", 50);
        EXPECT_EQ(control.GetColumnInfo(0).GetKind(), 0U);
        EXPECT_EQ(control.GetColumnInfo(4).GetChoiceCount(), 1);
    });
}

WNDPROC g_before = nullptr;
LRESULT CALLBACK PassOn(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    return CallWindowProcW(g_before, dialog, message, wParam, lParam);
}

// Whether a list of the dialog answers for the height of its rows.
bool IsMeasured(HWND dialog, UINT id) {
    MEASUREITEMSTRUCT item = {};
    item.CtlType = ODT_LISTVIEW;
    item.CtlID = id;
    return SendMessageW(dialog, WM_MEASUREITEM, id, reinterpret_cast<LPARAM>(&item)) != FALSE && item.itemHeight > 0;
}

// Also when somebody else replaces the dialog's procedure in between.
TEST(ListLook, ListsOfOneDialogComeAndGo) {
    constexpr UINT kSecond = 200;
    ListDialog list;
    list.Show([&](HWND dialog) {
        const auto create = [=] {
            return CreateWindowExW(0, L"HostListTable", L"", WS_CHILD | LVS_REPORT | LVS_OWNERDRAWFIXED, 0, 0, 50, 50,
                                   dialog, reinterpret_cast<HMENU>(UINT_PTR{kSecond}), nullptr, nullptr);
        };
        for (const bool replaced : {false, true}) {
            const HWND second = create();
            EXPECT_TRUE(IsMeasured(dialog, test::kListId) && IsMeasured(dialog, kSecond));
            DestroyWindow(second);
            EXPECT_TRUE(IsMeasured(dialog, test::kListId));
            EXPECT_FALSE(IsMeasured(dialog, kSecond));
            const int before = list.changes;
            list.List().SetItemState(replaced ? 1 : 2, LVIS_SELECTED, LVIS_SELECTED);
            EXPECT_GT(list.changes, before) << "the dialog hears of it as well";
            if (replaced) break;
            g_before =
                reinterpret_cast<WNDPROC>(SetWindowLongPtrW(dialog, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(PassOn)));
        }
        DestroyWindow(list.List().GetSafeHwnd());
        EXPECT_FALSE(IsMeasured(dialog, test::kListId));
        SetWindowLongPtrW(dialog, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(g_before));
        DestroyWindow(create());
        EXPECT_FALSE(IsMeasured(dialog, kSecond));
    });
}

}  // namespace
