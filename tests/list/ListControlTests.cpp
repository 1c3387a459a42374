// Rows that are moved, and columns with their widths.
#include <gtest/gtest.h>

#include "ListDialog.h"

namespace {

using test::ListDialog;
using test::PressKey;
using test::RequestedMove;
using test::Steps;

using Moves = std::vector<RequestedMove>;

TEST(ListMove, AltArrowsMoveTheSelectedRow) {
    ListDialog list;
    list.Play({[&](HWND) { list.List().SetItemText(0, 3, L"Date"); }, [](HWND) { PressKey(VK_DOWN, VK_MENU); },
               [&](HWND) {
                   EXPECT_EQ(list.Rows(), L"r1c0=101 r0c0=100 r2c0=102 r3c0=103");
                   EXPECT_EQ(list.Cell(1, 3), L"Date");
                   EXPECT_EQ(list.Cell(1, 2), L"r0c2");
                   EXPECT_EQ(list.SelectedRow(), 1);
                   EXPECT_EQ(list.List().GetNextItem(-1, LVNI_FOCUSED), 1);
               },
               [](HWND) { PressKey(VK_UP, VK_MENU); }, [](HWND) { PressKey(VK_UP, VK_MENU); },
               [&](HWND) { EXPECT_EQ(list.Rows(), L"r0c0=100 r1c0=101 r2c0=102 r3c0=103"); },
               // Releasing Alt has not opened a menu: keys still reach the list.
               [](HWND) { PressKey(VK_DOWN); }, [&](HWND) { EXPECT_EQ(list.SelectedRow(), 1); }, test::Close});
    EXPECT_EQ(list.moves, (Moves{{2, {0}}, {0, {1}}}));
    EXPECT_EQ(list.selections, 1) << "moving was taken for selecting";
}

Steps DragSteps(ListDialog& list, int from, int to, LONG below, const std::function<void(HWND)>& end) {
    const auto start = [&list, from] { return list.CellPoint(from, 0); };
    const auto target = [&list, to, below] {
        const POINT point = list.CellPoint(to, 0);
        return POINT{point.x + 5, point.y + below};
    };
    return {[=](HWND) { test::MouseDown(start()); },
            [=](HWND) {
                test::MouseMove({start().x + 3, start().y + 4});
            },
            [=](HWND) {
                test::MouseMove({start().x + 5, start().y + 12});
            },
            [=](HWND) { test::MouseMove(target()); },
            [](HWND) {},
            end,
            [](HWND) {},
            [](HWND) {}};
}

TEST(ListMove, DraggingShowsTheGapAndMovesTheRow) {
    ListDialog list;
    const auto drop = [](HWND dialog) {
        test::Screenshot(dialog, L"list-drag");
        test::MouseUp();
    };
    Steps steps = DragSteps(list, 0, 2, 5, drop);
    steps.push_back([&](HWND) {
        EXPECT_EQ(list.Rows(), L"r1c0=101 r2c0=102 r0c0=100 r3c0=103");
        EXPECT_EQ(list.SelectedRow(), 2);
        EXPECT_EQ(GetCapture(), nullptr);
        EXPECT_EQ(list.Editor(), nullptr);
    });
    steps.push_back(test::Close);
    list.Play(steps);
    EXPECT_EQ(list.moves, (Moves{{3, {0}}}));
}

TEST(ListMove, ADragThatEndsNowhereChangesNothing) {
    const std::pair<const char*, std::function<void(HWND)>> ends[] = {
        {"Escape", [](HWND) { PressKey(VK_ESCAPE); }},
        {"capture lost", [](HWND) { ReleaseCapture(); }},
        {"rows gone", [](HWND dialog) { SendDlgItemMessageW(dialog, test::kListId, LVM_DELETEITEM, 3, 0); }},
        {"outside", [](HWND dialog) {
             RECT rect = {};
             GetWindowRect(dialog, &rect);
             test::MouseMove({rect.right + 50, rect.top + 10});
         }}};
    for (const auto& [name, end] : ends) {
        SCOPED_TRACE(name);
        ListDialog list;
        Steps steps = DragSteps(list, 0, 2, 5, end);
        steps.push_back([](HWND) { test::MouseUp(); });
        steps.push_back([](HWND) {});
        steps.push_back([&](HWND) { EXPECT_EQ(GetCapture(), nullptr); });
        steps.push_back(test::Close);
        EXPECT_EQ(list.Play(steps), 0) << "Escape reached the dialog";
        EXPECT_TRUE(list.moves.empty());
    }
}

TEST(ListMove, DraggingBeyondTheRowsScrolls) {
    ListDialog list(100);
    Steps steps = DragSteps(list, 0, 1, 3, [&](HWND dialog) {
        RECT rect = {};
        GetWindowRect(GetDlgItem(dialog, test::kListId), &rect);
        test::MouseMove({rect.left + 30, rect.bottom + 5});
    });
    test::Pause(steps, 30);
    steps.push_back([&](HWND) { EXPECT_GT(list.List().SendMessage(LVM_GETTOPINDEX), 3); });
    steps.push_back([](HWND) { test::MouseUp(); });
    steps.push_back([](HWND) {});
    steps.push_back(test::Close);
    list.Play(steps);
    ASSERT_EQ(list.moves.size(), 1U);
    EXPECT_GT(list.moves[0].target, 5);
}

TEST(ListMove, OrdersOfTheParent) {
    ListDialog list(2000);
    list.Play({[&](HWND) {
                   const int32_t rows[] = {1999, 0, 5};
                   const int before = list.changes;
                   EXPECT_TRUE(list.List().MoveItems(1000, 3, rows));
                   EXPECT_EQ(list.changes, before) << "the data that the rows carry meanwhile was notified";
                   EXPECT_EQ(list.Cell(0, 0), L"r1c0");
                   EXPECT_EQ(list.Cell(998, 0), L"r1999c0");
                   EXPECT_EQ(list.Cell(999, 1), L"r0c1");
                   EXPECT_EQ(list.Cell(1000, 2), L"r5c2");
                   EXPECT_EQ(list.Cell(1001, 0), L"r1000c0");
                   EXPECT_EQ(list.List().GetItemData(998), 2099);
                   EXPECT_EQ(list.SelectedRow(), 999);
                   EXPECT_EQ(list.List().GetItemCount(), 2000);
                   const std::wstring order = list.Rows();
                   const int32_t twice[] = {3, 3};
                   const int32_t beyond[] = {2000};
                   EXPECT_FALSE(list.List().MoveItems(0, 2, twice));
                   EXPECT_FALSE(list.List().MoveItems(0, 1, beyond));
                   EXPECT_FALSE(list.List().MoveItems(2001, 1, rows));
                   EXPECT_FALSE(list.List().MoveItems(0, -1, rows));
                   EXPECT_FALSE(list.List().MoveItems(0, 1, nullptr));
                   EXPECT_EQ(list.Rows(), order);
               },
               test::Close});
    EXPECT_EQ(list.selections, 0);
    EXPECT_TRUE(list.moves.empty());
}

TEST(ListMove, WithoutTheStyleRowsStay) {
    ListDialog list(3, LVS_EX_FULLROWSELECT | listtable::kExEditCells);
    Steps steps = DragSteps(list, 0, 2, 5, [](HWND) { test::MouseUp(); });
    steps.push_back([](HWND) { PressKey(VK_DOWN, VK_MENU); });
    steps.push_back([](HWND) {});
    steps.push_back(test::Close);
    list.Play(steps);
    EXPECT_TRUE(list.moves.empty());
}

TEST(ListColumns, StylesOfBothKindsAreKeptApart) {
    ListDialog list;
    list.Play({[&](HWND) {
                   const auto styles = [&] { return list.List().SendMessage(LVM_GETEXTENDEDLISTVIEWSTYLE); };
                   EXPECT_EQ(styles(), 0x18000020);
                   list.List().SendMessage(LVM_SETEXTENDEDLISTVIEWSTYLE, listtable::kExEditCells, 0);
                   EXPECT_EQ(styles(), 0x10000020);
                   list.List().SendMessage(LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_FULLROWSELECT, 0);
                   EXPECT_EQ(styles(), 0x10000000);
               },
               test::Close});
}

TEST(ListColumns, ChoicesAndKinds) {
    ListDialog list;
    list.Play({[&](HWND) {
                   CColumnInfo info = list.List().GetColumnInfo(3);
                   EXPECT_EQ(info.GetKind(), listtable::kKindChoice);
                   EXPECT_EQ(info.GetChoiceCount(), 3);
                   EXPECT_EQ(info.GetChoice(1), L"Total");
                   EXPECT_EQ(info.GetChoice(3), L"");
                   info.RemoveAllChoices();
                   info.AddChoice(std::wstring(1000, L'x'));
                   EXPECT_EQ(info.GetChoice(0).size(), 1000U);
                   EXPECT_EQ(list.List().GetColumnInfo(9).GetKind(), 0U);
                   EXPECT_EQ(list.List().GetColumnInfo(9).GetChoiceCount(), 0);
                   // A column put before it keeps the kinds with their columns.
                   list.List().InsertColumn(0, L"First", 50);
                   EXPECT_EQ(list.List().GetColumnInfo(0).GetKind(), 0U);
                   EXPECT_EQ(list.List().GetColumnInfo(4).GetChoiceCount(), 1);
               },
               test::Close});
}

TEST(ListColumns, WidthsComeBackAndFollowTheList) {
    ListDialog list(1);
    list.Play({[&](HWND) {
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
                   for (int row = 0; row < 50; ++row) control.InsertItem(row, L"x");
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
               },
               test::Close});
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
    list.Play({[&](HWND dialog) {
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
        EndDialog(dialog, 0);
    }});
}

TEST(ListLook, Screenshots) {
    ListDialog list(12);
    list.Play({[&](HWND) {
                   list.List().SetColumnWidths(L"[%]250,250,250,250");
                   list.List().SetItemText(1, 3, L"Total");
                   list.List().SetItemText(2, 0, std::wstring(300, L'9'));
               },
               [](HWND) { PressKey(VK_DOWN); }, [](HWND) { PressKey(VK_RIGHT); },
               [](HWND dialog) { test::Screenshot(dialog, L"list-selected"); }, [](HWND) { PressKey(VK_F2); },
               [](HWND) {}, [](HWND dialog) { test::Screenshot(dialog, L"list-edit"); },
               [&](HWND) { list.List().EditCell(1, 3); }, [](HWND) {}, [](HWND) {},
               [](HWND dialog) { test::Screenshot(dialog, L"list-choice"); }, [](HWND) { PressKey(VK_ESCAPE); },
               [](HWND) { PressKey(VK_TAB); }, [](HWND dialog) { test::Screenshot(dialog, L"list-unfocused"); },
               test::Close});
    EXPECT_TRUE(list.edited.empty());
}

}  // namespace
