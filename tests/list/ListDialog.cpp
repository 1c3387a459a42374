#include "ListDialog.h"

#include <gtest/gtest.h>

#include "support/TraceRecorder.h"

namespace test {
namespace {

constexpr int kTemplate = 100;
constexpr int kColumns = 4;

// The library brings the window class with it and takes it along.
class LibraryEnvironment final : public testing::Environment {
    void SetUp() override {
        m_library = LoadLibraryW(L"HostControls.dll");
        ASSERT_NE(m_library, nullptr);
    }
    void TearDown() override {
        FreeLibrary(m_library);
        WNDCLASSEXW left = {};
        left.cbSize = sizeof(left);
        EXPECT_FALSE(GetClassInfoExW(nullptr, listtable::kClassName, &left));
    }
    HMODULE m_library = nullptr;
};
testing::Environment* const g_class = testing::AddGlobalTestEnvironment(new LibraryEnvironment);

void MoveOutside(HWND dialog) {
    RECT rect = {};
    GetWindowRect(dialog, &rect);
    MoveTo({rect.right + 50, rect.top + 10});
}

std::string Narrow(const std::wstring& text) {
    std::string narrow;
    for (const wchar_t c : text) narrow += static_cast<char>(c);
    return narrow;
}

}  // namespace

ListDialog::ListDialog(int rows, DWORD style) : m_rows(rows), m_style(style) {
    const auto send = [this](UINT message) {
        return [=, this](const Step& s) { m_list.SendMessage(message, static_cast<WPARAM>(s.n[0])); };
    };
    const Verbs verbs = {
        {"click", [this](const Step& s) { Click(CellPoint(s.n[0], s.n[1])); }},
        {"edit", [this](const Step& s) { Expect(m_list.EditCell(s.n[0], s.n[1])); }},
        {"end", [this](const Step& s) { Expect(m_list.EndEdit(s.Has("keep"))); }},
        {"field", [this](const Step&) { Click(GetDlgItem(TopDialog(), kFieldId)); }},
        {"focus", [](const Step& s) { SetFocus(GetDlgItem(TopDialog(), s.Has("list") ? kListId : kFieldId)); }},
        {"drag", [this](const Step& s) { StartDrag(s.n[0], s.n[1]); }},
        {"deleterow", send(LVM_DELETEITEM)},
        {"deletecolumn", send(LVM_DELETECOLUMN)},
        {"deleteall", send(LVM_DELETEALLITEMS)},
        {"loseCapture", [](const Step&) { ReleaseCapture(); }},
        {"outside", [](const Step&) { MoveOutside(TopDialog()); }},
        {"styles", [this](const Step&) { DropStyles(); }},
        {"destroy", [this](const Step&) { DestroyWindow(m_list.GetSafeHwnd()); }},
        {"disable", [this](const Step&) { m_list.EnableWindow(false); }},
        {"edited", [this](const Step&) { Tell(EditedCellText()); }},
        {"cell", [this](const Step& s) { Tell(Narrow(Cell(s.n[0], s.n[1]))); }},
        {"label", [this](const Step&) { Tell(Narrow(GetTextOfWindow(GetWindow(Editor(), GW_HWNDPREV)))); }},
        {"rows", [this](const Step&) { Tell(Rows()); }},
        {"selected", [this](const Step&) { Tell(std::to_string(SelectedRow())); }},
        {"selections", [this](const Step&) { Tell(std::to_string(m_selections)); }},
        {"who", [this](const Step&) { Tell(FocusName()); }},
        {"capture", [this](const Step&) { Tell(GetCapture() == nullptr ? "free" : "dragging"); }},
    };
    m_verbs.insert(verbs.begin(), verbs.end());
}

void ListDialog::Show(const Script& script) {
    const auto playAndClose = [&](HWND dialog) {
        script(dialog);
        if (IsWindow(dialog)) EndDialog(dialog, 0);
    };
    PlayScript(playAndClose, [&] {
        DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(kTemplate), nullptr, Proc,
                        reinterpret_cast<LPARAM>(this));
    });
    m_list.Detach();
    EXPECT_TRUE(TakeTraces().empty()) << "a failure was swallowed";
}

std::string ListDialog::Run(const std::string& steps) {
    std::string told;
    Show([&](HWND) { told = Play(steps); });
    return told;
}

INT_PTR CALLBACK ListDialog::Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        auto* self = reinterpret_cast<ListDialog*>(lParam);
        self->Fill(dialog);
        self->m_list.SetFocus();
        return FALSE;
    }
    auto* self = reinterpret_cast<ListDialog*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (message == WM_NOTIFY && self != nullptr) self->OnNotify(reinterpret_cast<NMHDR*>(lParam));
    if (message == WM_COMMAND && (wParam == IDOK || wParam == IDCANCEL)) {
        self->Tell(wParam == IDOK ? "OK" : "Cancel");
        EndDialog(dialog, 0);
    }
    return FALSE;
}

void ListDialog::Fill(HWND dialog) {
    m_list.Attach(GetDlgItem(dialog, kListId));
    m_list.SetExtendedStyle(m_style);
    const wchar_t* const titles[kColumns] = {L"X Offset", L"Width", L"Page", L"Field"};
    const DWORD kinds[kColumns] = {listtable::kKindText, listtable::kKindText, 0, listtable::kKindChoice};
    for (int column = 0; column < kColumns; ++column) {
        LVCOLUMNW record = {};
        record.mask = LVCF_TEXT | LVCF_WIDTH;
        record.cx = 80;
        record.pszText = const_cast<wchar_t*>(titles[column]);
        EXPECT_EQ(m_list.AddColumn(record, kinds[column], 0, 0), column);
    }
    for (const wchar_t* choice : {L"", L"Total", L"Date"}) m_list.GetColumnInfo(3).AddChoice(choice);
    for (int row = 0; row < m_rows; ++row) {
        const std::wstring name = L"r" + std::to_wstring(row) + L"c";
        m_list.InsertItem(row, name + L"0", 100 + row);
        for (int column = 1; column < kColumns - 1; ++column) {
            m_list.SetItemText(row, column, name + std::to_wstring(column));
        }
    }
    m_list.SetItemState(0, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    m_selections = 0;
}

void ListDialog::OnNotify(NMHDR* header) {
    if (header->idFrom != kListId) return;
    const auto* record = reinterpret_cast<const NMLISTVIEW*>(header);
    if (header->code == LVN_ITEMCHANGED || header->code == LVN_ITEMCHANGING) ++changes;
    if (header->code == LVN_ITEMCHANGED && (record->uChanged & LVIF_STATE) && (record->uNewState & LVIS_SELECTED) &&
        !(record->uOldState & LVIS_SELECTED)) {
        ++m_selections;
    }
    if (header->code == listtable::kCellEdited) {
        Tell(std::to_string(record->iItem) + ',' + std::to_string(record->iSubItem) + '=' +
             Narrow(Cell(record->iItem, record->iSubItem)) + '(' + std::to_string(record->lParam) + ')');
        if (onEdited) onEdited();
    }
    if (header->code == listtable::kItemsMoved) {
        const auto* move = reinterpret_cast<const listtable::MoveRecord*>(header);
        EXPECT_EQ(move->count, 1);
        Tell(std::to_string(move->target) + '<' + std::to_string(move->rows[0]));
        EXPECT_TRUE(m_list.MoveItems(move->target, move->count, move->rows));
    }
}

void ListDialog::DropStyles() {
    for (const DWORD style : {listtable::kExEditCells, DWORD{LVS_EX_FULLROWSELECT}, listtable::kExMoveRows}) {
        m_list.SendMessage(LVM_SETEXTENDEDLISTVIEWSTYLE, style, 0);
        Tell(std::to_string(m_list.SendMessage(LVM_GETEXTENDEDLISTVIEWSTYLE)));
    }
}

// To a little below the middle of the other row; the button is down still.
void ListDialog::StartDrag(int from, int to) {
    const POINT start = CellPoint(from, 0), target = CellPoint(to, 0);
    MoveTo(start);
    ButtonDown();
    MoveTo({start.x + 3, start.y + 4});
    MoveTo({start.x + 5, start.y + 12});
    MoveTo({target.x + 5, target.y + 5});
}

std::string ListDialog::Rows() const {
    std::string rows;
    for (int row = 0; row < m_list.GetItemCount(); ++row) {
        rows += (row > 0 ? " " : "") + Narrow(Cell(row, 0)) + '=' + std::to_string(m_list.GetItemData(row));
    }
    return rows;
}

std::string ListDialog::FocusName() const {
    const HWND focus = GetFocus();
    return focus == m_list.GetSafeHwnd() ? "list" : "control " + std::to_string(GetDlgCtrlID(focus));
}

HWND ListDialog::Editor() const {
    listtable::Cell cell = {};
    if (!m_list.SendMessage(listtable::kGetEditedCell, 0, reinterpret_cast<LPARAM>(&cell))) return nullptr;
    HWND editor = FindWindowExW(m_list.GetSafeHwnd(), nullptr, WC_EDITW, nullptr);
    if (editor == nullptr) editor = FindWindowExW(m_list.GetSafeHwnd(), nullptr, WC_COMBOBOXW, nullptr);
    return editor;
}

std::string ListDialog::EditedCellText() const {
    listtable::Cell cell = {};
    if (!m_list.SendMessage(listtable::kGetEditedCell, 0, reinterpret_cast<LPARAM>(&cell))) return "[]";
    EXPECT_EQ(GetFocus(), Editor()) << "the editor lacks the focus";
    return '[' + std::to_string(cell.row) + ',' + std::to_string(cell.column) + ':' +
           Narrow(GetTextOfWindow(Editor())) + ']';
}

POINT ListDialog::CellPoint(int row, int column) const {
    RECT rect = {};
    rect.top = column;
    rect.left = LVIR_LABEL;
    m_list.SendMessage(LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&rect));
    POINT point = {rect.left + 20, (rect.top + rect.bottom) / 2};
    ClientToScreen(m_list.GetSafeHwnd(), &point);
    return point;
}

}  // namespace test
