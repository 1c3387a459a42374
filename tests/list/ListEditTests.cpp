// Cells edited in place, by real keys and mouse.
#include <gtest/gtest.h>

#include "ListDialog.h"

namespace {

using test::Click;
using test::EditedCell;
using test::Key;
using test::ListDialog;
using test::Type;

TEST(ListEdit, EveryWayInOneWayOut) {
    ListDialog list;
    const std::function<void()> ways[] = {[] { Key(VK_F2); }, [] { Key(VK_RETURN); },
                                          [&] { Click(list.CellPoint(0, 0)); }};
    list.Play([&](HWND) {
        for (const auto& start : ways) {
            const std::wstring before = list.Cell(0, 0);
            start();
            EXPECT_EQ(list.EditedCellText(), L"0,0:" + before);
            Type(L" " + std::to_wstring(list.edited.size()));
            Key(VK_RETURN);
            EXPECT_EQ(list.EditedCellText(), L"");
            EXPECT_TRUE(list.ListHasFocus());
        }
    });
    EXPECT_EQ(list.edited, (std::vector<EditedCell>{{0, 0, L"0", 100}, {0, 0, L"1", 100}, {0, 0, L"2", 100}}));
}

TEST(ListEdit, ClicksThatOnlySelect) {
    ListDialog list;
    list.Play([&](HWND dialog) {
        SetFocus(GetDlgItem(dialog, test::kFieldId));
        Click(list.CellPoint(0, 0));
        EXPECT_EQ(list.EditedCellText(), L"") << "the click brought the focus";
        EXPECT_TRUE(list.ListHasFocus());
        Click(list.CellPoint(1, 1));
        EXPECT_EQ(list.EditedCellText(), L"");
        EXPECT_EQ(list.SelectedRow(), 1);
        Click(list.CellPoint(1, 1));
        EXPECT_EQ(list.EditedCellText(), L"1,1:r1c1");
        for (int i = 0; i < 2; ++i) Click(list.CellPoint(2, 2));
        EXPECT_EQ(list.EditedCellText(), L"") << "read-only";
    });
    EXPECT_TRUE(list.edited.empty());
}

TEST(ListEdit, EscapeTakesTheTextBackAndStaysInside) {
    ListDialog list;
    EXPECT_EQ(list.Play([&](HWND) {
        Key(VK_F2);
        Type(L"99");
        Key(VK_ESCAPE);
        EXPECT_EQ(list.Cell(0, 0), L"r0c0");
        EXPECT_TRUE(list.ListHasFocus());
        // Nothing changed: nobody is told, and a coarse display is not taken for what was typed.
        Key(VK_F2);
        Key(VK_RETURN);
        EXPECT_EQ(list.EditedCellText(), L"");
        // The arrows choose the cell; from the read-only column F2 goes to the first that can be edited.
        Key(VK_DOWN);
        for (const auto& [arrow, times, edited] :
             {std::tuple{VK_RIGHT, 1, L"1,1:r1c1"}, std::tuple{VK_LEFT, 2, L"1,0:r1c0"},
              std::tuple{VK_RIGHT, 2, L"1,0:r1c0"}}) {
            Key(static_cast<WORD>(arrow), 0, times);
            Key(VK_F2);
            EXPECT_EQ(list.EditedCellText(), edited);
            Key(VK_ESCAPE);
        }
        Key(VK_ESCAPE);
    }),
              IDCANCEL);
    EXPECT_TRUE(list.edited.empty());
}

TEST(ListEdit, EnterIsTheDialogsWhereThereIsNothingToEdit) {
    for (const auto& [rows, style] : {std::pair{0, 0x18000020}, std::pair{2, LVS_EX_FULLROWSELECT}}) {
        ListDialog list(rows, static_cast<DWORD>(style));
        EXPECT_EQ(list.Play([&](HWND) {
            Key(VK_F2);
            EXPECT_EQ(list.EditedCellText(), L"");
            Key(VK_RETURN);
        }),
                  IDOK);
    }
}

TEST(ListEdit, TabWalksTheCellsAndLeadsOut) {
    ListDialog list(2);
    list.Play([&](HWND dialog) {
        const auto tab = [&](const wchar_t* edited, WORD modifier = 0) {
            Key(VK_TAB, modifier);
            EXPECT_EQ(list.EditedCellText(), edited);
        };
        Key(VK_F2);
        Type(L"1");
        tab(L"0,1:r0c1");
        Type(L"2");
        tab(L"0,3:");
        tab(L"1,0:r1c0");
        EXPECT_EQ(list.SelectedRow(), 1);
        tab(L"0,3:", VK_SHIFT);
        Key(VK_TAB, 0, 2);
        tab(L"1,3:");
        tab(L"");
        EXPECT_TRUE(list.HasFocus(GetDlgItem(dialog, IDOK)));
        Key(VK_TAB, VK_SHIFT);
        list.List().EditCell(0, 0);
        tab(L"", VK_SHIFT);
        EXPECT_TRUE(list.HasFocus(GetDlgItem(dialog, test::kFieldId)));
    });
    EXPECT_EQ(list.edited, (std::vector<EditedCell>{{0, 0, L"1", 100}, {0, 1, L"2", 100}}));
}

TEST(ListEdit, LosingTheFocusCommits) {
    ListDialog list;
    list.Play([&](HWND dialog) {
        Key(VK_F2);
        Type(L"7");
        Click(GetDlgItem(dialog, test::kFieldId));
        EXPECT_EQ(list.EditedCellText(), L"");
        EXPECT_TRUE(list.HasFocus(GetDlgItem(dialog, test::kFieldId)));
        list.List().SetFocus();
        Key(VK_F2);
        Type(L"8");
        Click(list.CellPoint(2, 0));
        EXPECT_EQ(list.SelectedRow(), 2);
    });
    EXPECT_EQ(list.edited, (std::vector<EditedCell>{{0, 0, L"7", 100}, {0, 0, L"8", 100}}));
}

// A parent that refuses what was typed shows a message box, while the user is on the way to OK or another row.
TEST(ListEdit, ABoxOfTheParentEndsCleanly) {
    ListDialog list;
    list.onEdited = [&](const EditedCell&) {
        MessageBoxW(GetParent(list.List().GetSafeHwnd()), L"Wrong number", L"Box", MB_OK);
    };
    list.Play([&](HWND dialog) {
        const std::pair<const wchar_t*, std::function<void()>> ways[] = {
            {L"", [&] { Click(GetDlgItem(dialog, IDOK)); }},
            {L"", [&] { Click(list.CellPoint(2, 0)); }},
            {L"", [] { Key(VK_RETURN); }},
            {L"0,1:r0c1", [] { Key(VK_TAB); }},  // goes on behind the box
        };
        for (const auto& [edited, leave] : ways) {
            list.List().EditCell(0, 0);
            const std::wstring typed = L"1" + list.Cell(0, 0);
            Type(typed);
            leave();
            EXPECT_EQ(GetTextOfWindow(test::TopDialog()), L"Box");
            Key(VK_RETURN);
            EXPECT_EQ(test::TopDialog(), dialog);
            EXPECT_EQ(GetCapture(), nullptr);
            EXPECT_EQ(list.Cell(0, 0), typed);
            EXPECT_EQ(list.EditedCellText(), edited);
        }
    });
    EXPECT_EQ(list.edited.size(), 4U);
}

TEST(ListEdit, ChoicesByKeysAndMouse) {
    ListDialog list;
    list.Play([&](HWND) {
        for (const WORD end : {WORD{VK_RETURN}, WORD{VK_ESCAPE}}) {
            EXPECT_TRUE(list.List().EditCell(0, 3));
            Key(VK_DOWN);
            Key(end);
            EXPECT_EQ(list.Cell(0, 3), L"Total");
        }
        EXPECT_TRUE(list.List().EditCell(0, 3));
        EXPECT_EQ(list.EditedCellText(), L"0,3:Total");
        COMBOBOXINFO info = {};
        info.cbSize = sizeof(info);
        EXPECT_TRUE(GetComboBoxInfo(list.Editor(), &info));
        test::Wait();
        EXPECT_TRUE(IsWindowVisible(info.hwndList));
        RECT dropped = {};
        GetWindowRect(info.hwndList, &dropped);
        // The first of three is the empty choice.
        Click({dropped.left + 10, dropped.top + 6});
        EXPECT_EQ(list.EditedCellText(), L"");
        EXPECT_TRUE(list.ListHasFocus());
    });
    EXPECT_EQ(list.edited, (std::vector<EditedCell>{{0, 3, L"Total", 100}, {0, 3, L"", 100}}));
}

TEST(ListEdit, PastedAndVeryLongTextBecomesOneLine) {
    const auto paste = [](HWND dialog, const std::wstring& text) {
        const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
        const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes);
        std::copy_n(text.c_str(), text.size() + 1, static_cast<wchar_t*>(GlobalLock(memory)));
        GlobalUnlock(memory);
        ASSERT_TRUE(OpenClipboard(dialog));
        EmptyClipboard();
        SetClipboardData(CF_UNICODETEXT, memory);
        CloseClipboard();
        Key('V', VK_CONTROL);
    };
    ListDialog list;
    list.Play([&](HWND dialog) {
        for (const std::wstring& text : {std::wstring(L"\r\n12.5\r\n13\t14"), std::wstring(100000, L'9')}) {
            Key(VK_F2);
            paste(dialog, text);
            Key(VK_RETURN);
        }
        // A program that sets the text is not bound to one line.
        Key(VK_F2);
        SetWindowTextW(list.Editor(), L"4\n5");
        Key(VK_RETURN);
    });
    ASSERT_EQ(list.edited.size(), 3U);
    EXPECT_EQ(list.edited[0].text, L"12.5");
    EXPECT_EQ(list.edited[1].text, std::wstring(4095, L'9'));
    EXPECT_EQ(list.edited[2].text, L"4");
}

TEST(ListEdit, TheEditorStaysOnItsCell) {
    ListDialog list(200);
    list.Play([&](HWND) {
        const auto place = [&] {
            RECT rect = {};
            GetWindowRect(list.Editor(), &rect);
            return rect;
        };
        EXPECT_TRUE(list.List().EditCell(150, 1));
        EXPECT_EQ(list.EditedCellText(), L"150,1:r150c1");
        const RECT before = place();
        list.List().SendMessage(WM_VSCROLL, SB_LINEDOWN);
        EXPECT_LT(place().top, before.top);
        list.List().SendMessage(WM_VSCROLL, SB_LINEUP);
        list.List().SetColumnWidth(0, 130);
        EXPECT_EQ(place().left, before.left + 50);
        EXPECT_EQ(place().top, before.top);
        list.List().InsertItem(3, L"new");
        EXPECT_EQ(list.EditedCellText(), L"151,1:r150c1");
        list.List().DeleteItem(7);
        EXPECT_EQ(list.EditedCellText(), L"150,1:r150c1");
        Type(L"5");
        list.List().EnsureVisible(0);
        test::Wait();
        EXPECT_EQ(list.EditedCellText(), L"");
        EXPECT_TRUE(list.ListHasFocus());
    });
    EXPECT_EQ(list.edited, (std::vector<EditedCell>{{150, 1, L"5", 250}}));
}

TEST(ListEdit, RowsThatGoTakeTheEditorAlong) {
    ListDialog list;
    list.Play([&](HWND) {
        for (const auto& [message, column] :
             {std::pair{LVM_DELETEITEM, 1}, std::pair{LVM_DELETECOLUMN, 1}, std::pair{LVM_DELETEALLITEMS, 0}}) {
            EXPECT_TRUE(list.List().EditCell(1, column));
            Type(L"5");
            list.List().SendMessage(static_cast<UINT>(message), 1);
            EXPECT_EQ(list.Editor(), nullptr);
            EXPECT_TRUE(list.ListHasFocus());
        }
    });
    EXPECT_TRUE(list.edited.empty());
}

TEST(ListEdit, TheListMayGoAtAnyMoment) {
    ListDialog list;
    const auto destroy = [&] { DestroyWindow(list.List().GetSafeHwnd()); };
    const auto play = [&](const std::function<void()>& end) {
        list.Play([&](HWND) {
            Key(VK_F2);
            Type(L"5");
            end();
        });
    };
    play([] {});
    play([&] {
        destroy();
        test::Wait();
    });
    EXPECT_TRUE(list.edited.empty());
    // From inside its own notification, by each key that goes on afterwards.
    list.onEdited = [&](const EditedCell&) { destroy(); };
    for (const WORD key : {WORD{VK_RETURN}, WORD{VK_TAB}}) play([=] { Key(key); });
    EXPECT_EQ(list.edited.size(), 2U);
}

TEST(ListEdit, TheParentStartsAndEndsIt) {
    ListDialog list;
    list.Play([&](HWND) {
        Key(VK_F2);
        Type(L"5");
        EXPECT_TRUE(list.List().EndEdit(true));
        EXPECT_FALSE(list.List().EndEdit(true));
        Key(VK_F2);
        Type(L"6");
        EXPECT_TRUE(list.List().EndEdit(false));
        for (const int column : {1, 3}) {
            EXPECT_TRUE(list.List().EditCell(2, column));
            const HWND label = GetWindow(list.Editor(), GW_HWNDPREV);
            EXPECT_EQ(GetTextOfWindow(label), column == 1 ? L"Width 3" : L"Field 3") << "for screen readers";
        }
        list.List().EndEdit(false);
        EXPECT_FALSE(list.List().EditCell(0, 2)) << "read-only";
        for (const auto& [row, column] : {std::pair{4, 0}, std::pair{-1, 0}, std::pair{0, 4}, std::pair{0, -1}}) {
            EXPECT_FALSE(list.List().EditCell(row, column)) << row << ',' << column;
        }
        list.List().EnableWindow(false);
        EXPECT_FALSE(list.List().EditCell(0, 0)) << "disabled";
    });
    EXPECT_EQ(list.edited, (std::vector<EditedCell>{{0, 0, L"5", 100}}));
}

}  // namespace
