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

}  // namespace

INT_PTR ListDialog::Play(const Script& script) {
    INT_PTR result = -1;
    const auto playAndClose = [&](HWND dialog) {
        script(dialog);
        if (IsWindow(dialog)) EndDialog(dialog, 0);
    };
    PlayScript(playAndClose, [&] {
        result = DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(kTemplate), nullptr, Proc,
                                 reinterpret_cast<LPARAM>(this));
    });
    m_list.Detach();
    EXPECT_TRUE(TakeTraces().empty()) << "a failure was swallowed";
    return result;
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
    if (message == WM_COMMAND && (wParam == IDOK || wParam == IDCANCEL)) EndDialog(dialog, static_cast<int>(wParam));
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
    selections = 0;
}

void ListDialog::OnNotify(NMHDR* header) {
    if (header->idFrom != kListId) return;
    const auto* record = reinterpret_cast<const NMLISTVIEW*>(header);
    if (header->code == LVN_ITEMCHANGED || header->code == LVN_ITEMCHANGING) ++changes;
    if (header->code == LVN_ITEMCHANGED && (record->uChanged & LVIF_STATE) && (record->uNewState & LVIS_SELECTED) &&
        !(record->uOldState & LVIS_SELECTED)) {
        ++selections;
    }
    if (header->code == listtable::kCellEdited) {
        const EditedCell cell = {record->iItem, record->iSubItem, Cell(record->iItem, record->iSubItem),
                                 record->lParam};
        edited.push_back(cell);
        if (onEdited) onEdited(cell);
    }
    if (header->code == listtable::kItemsMoved) {
        const auto* move = reinterpret_cast<const listtable::MoveRecord*>(header);
        moves.push_back({move->target, {move->rows, move->rows + move->count}});
        EXPECT_TRUE(m_list.MoveItems(move->target, move->count, move->rows));
    }
}

std::wstring ListDialog::Rows() const {
    std::wstring rows;
    for (int row = 0; row < m_list.GetItemCount(); ++row) {
        rows += (row > 0 ? L" " : L"") + Cell(row, 0) + L"=" + std::to_wstring(m_list.GetItemData(row));
    }
    return rows;
}

HWND ListDialog::Editor() const {
    listtable::Cell cell = {};
    if (!m_list.SendMessage(listtable::kGetEditedCell, 0, reinterpret_cast<LPARAM>(&cell))) return nullptr;
    HWND editor = FindWindowExW(m_list.GetSafeHwnd(), nullptr, WC_EDITW, nullptr);
    if (editor == nullptr) editor = FindWindowExW(m_list.GetSafeHwnd(), nullptr, WC_COMBOBOXW, nullptr);
    return editor;
}

std::wstring ListDialog::EditedCellText() const {
    listtable::Cell cell = {};
    if (!m_list.SendMessage(listtable::kGetEditedCell, 0, reinterpret_cast<LPARAM>(&cell))) return {};
    EXPECT_TRUE(HasFocus(Editor())) << "the editor lacks the focus";
    return std::to_wstring(cell.row) + L"," + std::to_wstring(cell.column) + L":" + GetTextOfWindow(Editor());
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
