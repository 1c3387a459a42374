// Rows that are moved, and columns with their widths.
#include <gtest/gtest.h>

#include "ListDialog.h"

namespace {

using test::Key;
using test::ListDialog;
using test::MoveTo;
using test::RequestedMove;

using Moves = std::vector<RequestedMove>;

// From row to row, a little below the middle of the last one; the button is down still.
void StartDrag(const ListDialog& list, int from, int to, LONG below) {
    const POINT start = list.CellPoint(from, 0), target = list.CellPoint(to, 0);
    MoveTo(start);
    test::ButtonDown();
    MoveTo({start.x + 3, start.y + 4});
    MoveTo({start.x + 5, start.y + 12});
    MoveTo({target.x + 5, target.y + below});
}

TEST(ListMove, AltArrowsMoveTheSelectedRow) {
    ListDialog list;
    list.Play([&](HWND) {
        list.List().SetItemText(0, 3, L"Date");
        Key(VK_DOWN, VK_MENU);
        EXPECT_EQ(list.Rows(), L"r1c0=101 r0c0=100 r2c0=102 r3c0=103");
        EXPECT_EQ(list.Cell(1, 3), L"Date");
        EXPECT_EQ(list.Cell(1, 2), L"r0c2");
        EXPECT_EQ(list.SelectedRow(), 1);
        EXPECT_EQ(list.List().GetNextItem(-1, LVNI_FOCUSED), 1);
        Key(VK_UP, VK_MENU);
        Key(VK_UP, VK_MENU);
        EXPECT_EQ(list.Rows(), L"r0c0=100 r1c0=101 r2c0=102 r3c0=103");
        // Releasing Alt has not opened a menu: keys still reach the list.
        Key(VK_DOWN);
        EXPECT_EQ(list.SelectedRow(), 1);
        EXPECT_EQ(list.selections, 1) << "moving was taken for selecting";

        const auto styles = [&](DWORD mask, DWORD set) {
            list.List().SendMessage(LVM_SETEXTENDEDLISTVIEWSTYLE, mask, static_cast<LPARAM>(set));
            return list.List().SendMessage(LVM_GETEXTENDEDLISTVIEWSTYLE);
        };
        EXPECT_EQ(styles(listtable::kExEditCells, 0), 0x10000020);
        EXPECT_EQ(styles(LVS_EX_FULLROWSELECT, 0), 0x10000000);
        EXPECT_EQ(styles(listtable::kExMoveRows, 0), 0);
        // Without the style rows stay.
        Key(VK_DOWN, VK_MENU);
        StartDrag(list, 0, 2, 5);
        test::ButtonUp();
    });
    EXPECT_EQ(list.moves, (Moves{{2, {0}}, {0, {1}}}));
}

TEST(ListMove, DraggingMovesTheRow) {
    const std::pair<const char*, std::function<void(HWND)>> ends[] = {
        {"Escape", [](HWND) { Key(VK_ESCAPE); }},
        {"capture lost", [](HWND) { ReleaseCapture(); }},
        {"rows gone", [](HWND dialog) { SendDlgItemMessageW(dialog, test::kListId, LVM_DELETEITEM, 3, 0); }},
        {"outside", [](HWND dialog) {
             RECT rect = {};
             GetWindowRect(dialog, &rect);
             MoveTo({rect.right + 50, rect.top + 10});
         }}};
    ListDialog list;
    const INT_PTR result = list.Play([&](HWND dialog) {
        int from = 0;
        for (const auto& [name, end] : ends) {
            StartDrag(list, from, 2, 5);
            EXPECT_EQ(GetCapture(), list.List().GetSafeHwnd()) << name;
            from = 1 - from;  // no double click
            end(dialog);
            test::ButtonUp();
            EXPECT_EQ(GetCapture(), nullptr) << name;
            EXPECT_TRUE(list.moves.empty()) << name;
        }
        StartDrag(list, 0, 2, 5);
        test::ButtonUp();
        EXPECT_EQ(list.Rows(), L"r1c0=101 r2c0=102 r0c0=100");
        EXPECT_EQ(list.SelectedRow(), 2);
        EXPECT_EQ(GetCapture(), nullptr);
        EXPECT_EQ(list.Editor(), nullptr);
    });
    EXPECT_EQ(result, 0) << "Escape reached the dialog";
    EXPECT_EQ(list.moves, (Moves{{3, {0}}}));
}

TEST(ListMove, DraggingBeyondTheRowsScrolls) {
    ListDialog list(100);
    list.Play([&](HWND dialog) {
        StartDrag(list, 0, 1, 3);
        RECT rect = {};
        GetWindowRect(GetDlgItem(dialog, test::kListId), &rect);
        MoveTo({rect.left + 30, rect.bottom + 5});
        for (int i = 0; i < 500 && list.List().SendMessage(LVM_GETTOPINDEX) <= 3; ++i) test::Wait();
        test::ButtonUp();
    });
    ASSERT_EQ(list.moves.size(), 1U);
    EXPECT_GT(list.moves[0].target, 5);
}

TEST(ListMove, OrdersOfTheParent) {
    ListDialog list(200);
    list.Play([&](HWND) {
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
        const std::wstring order = list.Rows();
        const int32_t twice[] = {3, 3};
        const int32_t beyond[] = {200};
        EXPECT_FALSE(list.List().MoveItems(0, 2, twice));
        EXPECT_FALSE(list.List().MoveItems(0, 1, beyond));
        EXPECT_FALSE(list.List().MoveItems(201, 1, rows));
        EXPECT_FALSE(list.List().MoveItems(0, -1, rows));
        EXPECT_FALSE(list.List().MoveItems(0, 1, nullptr));
        EXPECT_EQ(list.Rows(), order);
    });
    EXPECT_EQ(list.selections, 0);
    EXPECT_TRUE(list.moves.empty());
}

TEST(ListColumns, ChoicesKindsAndWidths) {
    ListDialog list(1);
    list.Play([&](HWND) {
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
    list.Play([&](HWND dialog) {
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
