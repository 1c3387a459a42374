// Cells edited in place, by real keys and mouse.
#include <gtest/gtest.h>

#include "ListDialog.h"

namespace {

using test::Key;
using test::ListDialog;
using test::Type;

TEST(ListEdit, ByKeysClicksAndOrders) {
    const test::StepCase rows[] = {
        // Every way in, one way out; white space around what is typed goes.
        {"key F2; edited; type  a ; key Enter; edited; who; key Enter; edited; type b; key Enter; click 0,0; edited; "
         "type c; key Enter",
         "[0,0:r0c0] 0,0=a(100) [] list [0,0:a] 0,0=b(100) [0,0:b] 0,0=c(100)"},
        // A click that brings the focus or selects does not edit, and one into the read-only column never does.
        {"focus field; click 0,0; edited; who; click 1,1; edited; selected; click 1,1; edited; click 2,2; click 2,2; "
         "edited",
         "[] list [] 1 [1,1:r1c1] []"},
        // Escape takes the text back. Where nothing changed nobody is told, and a coarse display is not taken for what
        // was typed.
        {"key F2; type 99; key Escape; cell 0,0; who; key F2; key Enter; edited; key Escape", "r0c0 list [] Cancel"},
        // The arrows choose the cell; from the read-only column F2 goes to the first that can be edited.
        {"key Down; key Right; key F2; edited; key Escape; key Left 2; key F2; edited; key Escape; key Right 2; key "
         "F2; "
         "edited",
         "[1,1:r1c1] [1,0:r1c0] [1,0:r1c0]"},
        // Tab walks the cells and leads out.
        {"key F2; type 1; key Tab; edited; type 2; key Tab; edited; key Tab; edited; selected; key shift Tab; edited",
         "0,0=1(100) [0,1:r0c1] 0,1=2(100) [0,3:] [1,0:r1c0] 1 [0,3:]"},
        {"edit 3,1; key Tab; edited; key Tab; edited; who", "[3,3:] [] control 1"},
        {"edit 0,0; key shift Tab; edited; who", "[] control 102"},
        // Losing the focus commits.
        {"key F2; type 7; field; edited; who; focus list; key F2; type 8; click 2,0; selected",
         "0,0=7(100) [] control 102 0,0=8(100) 2"},
        {"edit 0,3; edited; key Down; key Enter; cell 0,3; edit 0,3; key Down; key Escape; cell 0,3",
         "[0,3:] 0,3=Total(100) Total Total"},
        // By the parent; the label is for screen readers.
        {"key F2; type 5; end keep; end keep; key F2; type 6; end drop; edit 2,1; label; edit 2,3; label; end drop",
         "0,0=5(100) no Width 3 Field 3"},
        {"edit 0,2; edit 4,0; edit -1,0; edit 0,4; disable; edit 0,0", "no no no no no"},
        // Rows that go take the editor along, and the list may go itself.
        {"edit 1,1; type 5; deleterow 1; edited; who; edit 1,1; type 5; deletecolumn 1; edited; who; edit 1,0; type 5; "
         "deleteall; edited; who",
         "[] list [] list [] list"},
        {"key F2; type 5; destroy; wait", ""},
        {"key F2; type 5", ""},
    };
    for (const test::StepCase& row : rows) EXPECT_EQ(ListDialog().Run(row.steps), row.told) << row.steps;
    // Enter is the dialog's where there is nothing to edit.
    EXPECT_EQ(ListDialog(0).Run("key F2; edited; key Enter"), "[] OK");
    EXPECT_EQ(ListDialog(2, LVS_EX_FULLROWSELECT).Run("key F2; edited; key Enter"), "[] OK");
    // The list goes inside its own notification, by each key that goes on afterwards.
    for (const char* const key : {"Enter", "Tab"}) {
        ListDialog list;
        list.onEdited = [&] { DestroyWindow(list.List().GetSafeHwnd()); };
        EXPECT_EQ(list.Run(std::string("key F2; type 5; key ") + key), "0,0=5(100)");
    }
}

// A parent that refuses what was typed shows a message box, while the user is on the way to OK or another row.
TEST(ListEdit, ABoxOfTheParentEndsCleanly) {
    ListDialog list;
    list.onEdited = [&] { MessageBoxW(GetParent(list.List().GetSafeHwnd()), L"Wrong number", L"Box", MB_OK); };
    list.Show([&](HWND dialog) {
        const std::pair<const char*, std::function<void()>> ways[] = {
            {"[]", [&] { test::Click(GetDlgItem(dialog, IDOK)); }},
            {"[]", [&] { test::Click(list.CellPoint(2, 0)); }},
            {"[]", [] { Key(VK_RETURN); }},
            {"[0,1:r0c1]", [] { Key(VK_TAB); }},  // goes on behind the box
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
}

TEST(ListEdit, AChoiceIsClicked) {
    ListDialog list;
    list.Show([&](HWND) {
        list.List().SetItemText(0, 3, L"Total");
        EXPECT_EQ(list.Play("edit 0,3; wait; edited"), "[0,3:Total]");
        COMBOBOXINFO info = {};
        info.cbSize = sizeof(info);
        EXPECT_TRUE(GetComboBoxInfo(list.Editor(), &info));
        EXPECT_TRUE(IsWindowVisible(info.hwndList));
        RECT dropped = {};
        GetWindowRect(info.hwndList, &dropped);
        // The first of three is the empty choice.
        test::Click({dropped.left + 10, dropped.top + 6});
        EXPECT_EQ(list.Play("edited; who"), "0,3=(100) [] list");
    });
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
    list.Show([&](HWND dialog) {
        for (const auto& [text, line] : {std::pair{std::wstring(L"\r\n12.5\r\n13\t14"), std::wstring(L"12.5")},
                                         std::pair{std::wstring(100000, L'9'), std::wstring(4095, L'9')}}) {
            Key(VK_F2);
            paste(dialog, text);
            Key(VK_RETURN);
            EXPECT_EQ(list.Cell(0, 0), line);
        }
        // A program that sets the text is not bound to one line.
        Key(VK_F2);
        SetWindowTextW(list.Editor(), L"4\n5");
        Key(VK_RETURN);
        EXPECT_EQ(list.Cell(0, 0), L"4");
    });
}

TEST(ListEdit, TheEditorStaysOnItsCell) {
    ListDialog list(40);
    list.Show([&](HWND) {
        const auto place = [&] {
            RECT rect = {};
            GetWindowRect(list.Editor(), &rect);
            return rect;
        };
        EXPECT_EQ(list.Play("edit 30,1; edited"), "[30,1:r30c1]");
        const RECT before = place();
        list.List().SendMessage(WM_VSCROLL, SB_LINEDOWN);
        EXPECT_LT(place().top, before.top);
        list.List().SendMessage(WM_VSCROLL, SB_LINEUP);
        list.List().SetColumnWidth(0, 130);
        EXPECT_EQ(place().left, before.left + 50);
        EXPECT_EQ(place().top, before.top);
        list.List().InsertItem(3, L"new");
        EXPECT_EQ(list.EditedCellText(), "[31,1:r30c1]");
        EXPECT_EQ(list.Play("deleterow 7; edited; type 5"), "[30,1:r30c1]");
        list.List().EnsureVisible(0);
        EXPECT_EQ(list.Play("wait; edited; who"), "30,1=5(130) [] list");
    });
}

}  // namespace
