// Cells edited in place, by real keys and mouse.
#include <gtest/gtest.h>

#include "ListDialog.h"

namespace {

using test::EditedCell;
using test::ListDialog;
using test::PressKey;
using test::Steps;
using test::TypeText;

// A step that presses a key, and one that looks.
std::function<void(HWND)> Key(WORD key, WORD modifier = 0) {
    return [=](HWND) { PressKey(key, modifier); };
}
std::function<void(HWND)> Type(const wchar_t* text) {
    return [=](HWND) { TypeText(text); };
}
std::function<void(HWND)> Expect(const ListDialog& list, const wchar_t* edited) {
    return [=, &list](HWND) { EXPECT_EQ(list.EditedCellText(), edited); };
}

TEST(ListEdit, EveryWayInOneWayOut) {
    ListDialog list;
    const auto click = [&](HWND) { test::ClickAt(list.CellPoint(0, 0)); };
    const std::pair<const char*, std::function<void(HWND)>> ways[] = {
        {"F2", Key(VK_F2)}, {"Enter", Key(VK_RETURN)}, {"click", click}};
    for (const auto& [name, start] : ways) {
        SCOPED_TRACE(name);
        list.edited.clear();
        const INT_PTR result = list.Play({start,
                                          {[](HWND) {}},
                                          Expect(list, L"0,0:r0c0"),
                                          Type(L" 12"),
                                          Key(VK_RETURN),
                                          [&](HWND) {
                                              EXPECT_EQ(list.EditedCellText(), L"");
                                              EXPECT_TRUE(list.ListHasFocus());
                                          },
                                          test::Close});
        EXPECT_EQ(result, 0) << "Enter reached the dialog";
        EXPECT_EQ(list.edited, (std::vector<EditedCell>{{0, 0, L" 12", 100}}));
    }
}

TEST(ListEdit, TheFirstClickOnlySelects) {
    ListDialog list;
    const auto click = [&](HWND) { test::ClickAt(list.CellPoint(1, 1)); };
    list.Play({click, [](HWND) {}, [](HWND) {}, Expect(list, L""), [&](HWND) { EXPECT_EQ(list.SelectedRow(), 1); },
               click, [](HWND) {}, Expect(list, L"1,1:r1c1"),
               // The read-only column only selects, however often it is clicked.
               [&](HWND) { test::ClickAt(list.CellPoint(2, 2)); }, [](HWND) {},
               [&](HWND) { test::ClickAt(list.CellPoint(2, 2)); }, [](HWND) {}, Expect(list, L""), test::Close});
    EXPECT_TRUE(list.edited.empty());
}

TEST(ListEdit, AClickThatBringsTheFocusDoesNotEdit) {
    ListDialog list;
    const auto click = [&](HWND) { test::ClickAt(list.CellPoint(0, 0)); };
    list.Play({[](HWND dialog) { SetFocus(GetDlgItem(dialog, test::kFieldId)); }, click, [](HWND) {}, [](HWND) {},
               Expect(list, L""), [&](HWND) { EXPECT_TRUE(list.ListHasFocus()); }, test::Close});
}

TEST(ListEdit, EscapeTakesTheTextBackAndStaysInside) {
    ListDialog list;
    EXPECT_EQ(list.Play({Key(VK_F2), Type(L"99"), Key(VK_ESCAPE),
                         [&](HWND) {
                             EXPECT_EQ(list.Cell(0, 0), L"r0c0");
                             EXPECT_TRUE(list.ListHasFocus());
                         },
                         // Nothing changed: nobody is told, and a coarse display is not taken for what was typed.
                         Key(VK_F2), Key(VK_RETURN), Expect(list, L""), Key(VK_ESCAPE)}),
              IDCANCEL);
    EXPECT_TRUE(list.edited.empty());
}

TEST(ListEdit, EnterIsTheDialogsWhereThereIsNothingToEdit) {
    ListDialog empty(0);
    EXPECT_EQ(empty.Play({Key(VK_F2), Key(VK_RETURN)}), IDOK);
    ListDialog plain(2, LVS_EX_FULLROWSELECT);
    EXPECT_EQ(plain.Play({Key(VK_F2), Expect(plain, L""), Key(VK_RETURN)}), IDOK);
}

TEST(ListEdit, TabWalksTheCellsAndLeadsOut) {
    ListDialog list(2);
    list.Play({Key(VK_F2),
               Type(L"1"),
               Key(VK_TAB),
               Expect(list, L"0,1:r0c1"),
               Type(L"2"),
               Key(VK_TAB),
               Expect(list, L"0,3:"),
               Key(VK_TAB),
               Expect(list, L"1,0:r1c0"),
               [&](HWND) { EXPECT_EQ(list.SelectedRow(), 1); },
               Key(VK_TAB, VK_SHIFT),
               Expect(list, L"0,3:"),
               Key(VK_TAB),
               Key(VK_TAB),
               Key(VK_TAB),
               Expect(list, L"1,3:"),
               Key(VK_TAB),
               [](HWND) {},
               [&](HWND dialog) { EXPECT_TRUE(list.HasFocus(GetDlgItem(dialog, IDOK))); },
               Key(VK_TAB, VK_SHIFT),
               [&](HWND) { list.List().EditCell(0, 0); },
               Key(VK_TAB, VK_SHIFT),
               [](HWND) {},
               [&](HWND dialog) { EXPECT_TRUE(list.HasFocus(GetDlgItem(dialog, test::kFieldId))); },
               test::Close});
    EXPECT_EQ(list.edited, (std::vector<EditedCell>{{0, 0, L"1", 100}, {0, 1, L"2", 100}}));
}

TEST(ListEdit, ArrowsChooseTheCellThatF2Edits) {
    ListDialog list;
    list.Play({Key(VK_DOWN), Key(VK_RIGHT), Key(VK_F2), Expect(list, L"1,1:r1c1"), Key(VK_ESCAPE), Key(VK_LEFT),
               Key(VK_LEFT), Key(VK_F2), Expect(list, L"1,0:r1c0"), Key(VK_ESCAPE),
               // From the read-only column F2 goes to the first that can be edited.
               Key(VK_RIGHT), Key(VK_RIGHT), Key(VK_F2), Expect(list, L"1,0:r1c0"), test::Close});
}

TEST(ListEdit, LosingTheFocusCommits) {
    ListDialog list;
    list.Play({Key(VK_F2), Type(L"7"), [&](HWND dialog) { test::ClickOn(GetDlgItem(dialog, test::kFieldId)); },
               [](HWND) {}, Expect(list, L""),
               [&](HWND dialog) { EXPECT_TRUE(list.HasFocus(GetDlgItem(dialog, test::kFieldId))); },
               [&](HWND) { list.List().SetFocus(); }, Key(VK_F2), Type(L"8"),
               [&](HWND) { test::ClickAt(list.CellPoint(2, 0)); }, [](HWND) {},
               [&](HWND) { EXPECT_EQ(list.SelectedRow(), 2); }, test::Close});
    EXPECT_EQ(list.edited, (std::vector<EditedCell>{{0, 0, L"7", 100}, {0, 0, L"8", 100}}));
}

// A parent that refuses what was typed shows a message box, while the user is on the way to OK or another row.
TEST(ListEdit, ABoxOfTheParentEndsCleanly) {
    ListDialog list;
    list.onEdited = [&](const EditedCell&) {
        MessageBoxW(GetParent(list.List().GetSafeHwnd()), L"Wrong number", L"Box", MB_OK);
    };
    const auto leave = [&](const std::function<void(HWND)>& action) {
        return Steps{Key(VK_F2),
                     Type(L"12a"),
                     action,
                     [](HWND) {},
                     [](HWND) {},
                     [](HWND box) {
                         EXPECT_EQ(GetTextOfWindow(box), L"Box");
                         PressKey(VK_RETURN);
                     },
                     [](HWND) {},
                     [](HWND) {},
                     [&](HWND dialog) {
                         EXPECT_EQ(GetTextOfWindow(dialog), L"List");
                         EXPECT_EQ(GetCapture(), nullptr);
                         EXPECT_EQ(list.Cell(0, 0), L"12a");
                     },
                     test::Close};
    };
    const std::function<void(HWND)> actions[] = {[](HWND dialog) { test::ClickOn(GetDlgItem(dialog, IDOK)); },
                                                 [&](HWND) { test::ClickAt(list.CellPoint(2, 0)); }, Key(VK_RETURN)};
    for (const auto& action : actions) EXPECT_EQ(list.Play(leave(action)), 0);
    // Tab goes on behind the box.
    Steps steps = leave(Key(VK_TAB));
    steps.insert(steps.end() - 1, Expect(list, L"0,1:r0c1"));
    EXPECT_EQ(list.Play(steps), 0);
    EXPECT_EQ(list.edited.size(), 4U);
}

TEST(ListEdit, ChoicesByKeysAndMouse) {
    ListDialog list;
    RECT dropped = {};
    const auto edit = [&](HWND) { EXPECT_TRUE(list.List().EditCell(0, 3)); };
    list.Play(
        {edit, Expect(list, L"0,3:"), Key(VK_DOWN), Key(VK_RETURN), [&](HWND) { EXPECT_EQ(list.Cell(0, 3), L"Total"); },
         edit, Key(VK_DOWN), Key(VK_ESCAPE), [&](HWND) { EXPECT_EQ(list.Cell(0, 3), L"Total"); }, edit, [](HWND) {},
         [&](HWND) {
             COMBOBOXINFO info = {};
             info.cbSize = sizeof(info);
             EXPECT_TRUE(GetComboBoxInfo(list.Editor(), &info));
             EXPECT_TRUE(IsWindowVisible(info.hwndList));
             GetWindowRect(info.hwndList, &dropped);
             test::MouseMove({dropped.left + 10, dropped.top + 6});
         },
         // The first of three is the empty choice.
         [&](HWND) {
             test::ClickAt({dropped.left + 10, dropped.top + 6});
         },
         [](HWND) {}, [](HWND) {}, Expect(list, L""), [&](HWND) { EXPECT_TRUE(list.ListHasFocus()); }, test::Close});
    EXPECT_EQ(list.edited, (std::vector<EditedCell>{{0, 3, L"Total", 100}, {0, 3, L"", 100}}));
}

TEST(ListEdit, PastedAndVeryLongTextBecomesOneLine) {
    const auto paste = [](const std::wstring& text) {
        return [=](HWND dialog) {
            const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
            const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes);
            std::copy_n(text.c_str(), text.size() + 1, static_cast<wchar_t*>(GlobalLock(memory)));
            GlobalUnlock(memory);
            ASSERT_TRUE(OpenClipboard(dialog));
            EmptyClipboard();
            SetClipboardData(CF_UNICODETEXT, memory);
            CloseClipboard();
            PressKey('V', VK_CONTROL);
        };
    };
    ListDialog list;
    list.Play({Key(VK_F2), paste(L"\r\n12.5\r\n13\t14"), [](HWND) {}, Expect(list, L"0,0:12.5"), Key(VK_RETURN),
               Key(VK_F2), paste(std::wstring(100000, L'9')), [](HWND) {}, Key(VK_RETURN), Key(VK_F2),
               // A program that sets the text is not bound to one line.
               [&](HWND) { SetWindowTextW(list.Editor(), L"4\n5"); }, Key(VK_RETURN), test::Close});
    ASSERT_EQ(list.edited.size(), 3U);
    EXPECT_EQ(list.edited[0].text, L"12.5");
    EXPECT_EQ(list.edited[1].text, std::wstring(4095, L'9'));
    EXPECT_EQ(list.edited[2].text, L"4");
}

TEST(ListEdit, TheEditorStaysOnItsCell) {
    ListDialog list(2000);
    RECT before = {};
    const auto remember = [&](HWND) { GetWindowRect(list.Editor(), &before); };
    const auto moved = [&] {
        RECT now = {};
        GetWindowRect(list.Editor(), &now);
        return POINT{now.left - before.left, now.top - before.top};
    };
    list.Play({[&](HWND) { EXPECT_TRUE(list.List().EditCell(1500, 1)); }, Expect(list, L"1500,1:r1500c1"), remember,
               [&](HWND) {
                   list.List().SendMessage(WM_VSCROLL, SB_LINEDOWN);
                   EXPECT_LT(moved().y, 0);
                   list.List().SendMessage(WM_VSCROLL, SB_LINEUP);
                   list.List().SetColumnWidth(0, 130);
                   EXPECT_EQ(moved().x, 50);
                   EXPECT_EQ(moved().y, 0);
                   list.List().InsertItem(3, L"new");
               },
               Expect(list, L"1501,1:r1500c1"), [&](HWND) { list.List().DeleteItem(7); },
               Expect(list, L"1500,1:r1500c1"), Type(L"5"), [&](HWND) { list.List().EnsureVisible(0); }, [](HWND) {},
               Expect(list, L""), [&](HWND) { EXPECT_TRUE(list.ListHasFocus()); }, test::Close});
    EXPECT_EQ(list.edited, (std::vector<EditedCell>{{1500, 1, L"5", 1600}}));
}

TEST(ListEdit, RowsThatGoTakeTheEditorAlong) {
    for (const auto& remove : {+[](CListTableCtrl& list) { list.DeleteItem(1); },
                               +[](CListTableCtrl& list) { list.SendMessage(LVM_DELETEALLITEMS); },
                               +[](CListTableCtrl& list) { list.SendMessage(LVM_DELETECOLUMN, 1); }}) {
        ListDialog list;
        list.Play({[&](HWND) { EXPECT_TRUE(list.List().EditCell(1, 1)); }, Type(L"5"),
                   [&](HWND) {
                       remove(list.List());
                       EXPECT_EQ(list.Editor(), nullptr);
                       EXPECT_TRUE(list.ListHasFocus());
                   },
                   test::Close});
        EXPECT_TRUE(list.edited.empty());
    }
}

TEST(ListEdit, TheListMayGoAtAnyMoment) {
    ListDialog list;
    const auto destroy = [&] { DestroyWindow(list.List().GetSafeHwnd()); };
    list.Play({Key(VK_F2), Type(L"5"), [&](HWND) { destroy(); }, [](HWND) {}, test::Close});
    EXPECT_TRUE(list.edited.empty());
    list.Play({Key(VK_F2), Type(L"5"), test::Close});
    EXPECT_TRUE(list.edited.empty());
    // From inside its own notification, by each key that goes on afterwards.
    list.onEdited = [&](const EditedCell&) { destroy(); };
    for (const WORD key : {WORD{VK_RETURN}, WORD{VK_TAB}})
        list.Play({Key(VK_F2), Type(L"5"), Key(key), [](HWND) {}, test::Close});
    EXPECT_EQ(list.edited.size(), 2U);
}

TEST(ListEdit, TheParentCanEndIt) {
    ListDialog list;
    list.Play({Key(VK_F2), Type(L"5"),
               [&](HWND) {
                   EXPECT_TRUE(list.List().EndEdit(true));
                   EXPECT_FALSE(list.List().EndEdit(true));
               },
               Key(VK_F2), Type(L"6"), [&](HWND) { EXPECT_TRUE(list.List().EndEdit(false)); }, test::Close});
    EXPECT_EQ(list.edited, (std::vector<EditedCell>{{0, 0, L"5", 100}}));
    list.Play({[&](HWND) {
                   EXPECT_FALSE(list.List().EditCell(0, 2)) << "read-only";
                   EXPECT_FALSE(list.List().EditCell(4, 0));
                   EXPECT_FALSE(list.List().EditCell(-1, 0));
                   EXPECT_FALSE(list.List().EditCell(0, 4));
                   list.List().EnableWindow(false);
                   EXPECT_FALSE(list.List().EditCell(0, 0)) << "disabled";
               },
               test::Close});
}

TEST(ListEdit, ScreenReadersHearTheColumn) {
    ListDialog list;
    list.Play({[&](HWND) {
                   for (const int column : {1, 3}) {
                       EXPECT_TRUE(list.List().EditCell(2, column));
                       const HWND label = GetWindow(list.Editor(), GW_HWNDPREV);
                       EXPECT_EQ(GetTextOfWindow(label), column == 1 ? L"Width 3" : L"Field 3");
                   }
               },
               test::Close});
}

}  // namespace
