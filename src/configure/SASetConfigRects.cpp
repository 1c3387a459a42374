// "Configure Area Set": the rectangles of the page and their rows in the list, which follow each other.
#include "configure/ConfigSupport.h"
#include "configure/SASetConfigDlg.h"
#include "host/Controls.h"
#include "resource.h"
#include "win32/Resources.h"

namespace {

using rectlist::Column;
using win32::CallHost;

constexpr UINT kSelected = LVIS_SELECTED | LVIS_FOCUSED;
constexpr const wchar_t* kUnknown = L"?";  // no number: editing another cell of the row keeps this length as it is

}  // namespace

int CSASetConfigDlg::FindRow(LONG id) const {
    // The newest rectangle is asked for most often, while a set is loaded.
    for (int row = m_list.GetItemCount() - 1; row >= 0; --row) {
        if (static_cast<LONG>(m_list.GetItemData(row)) == id) return row;
    }
    return -1;
}

std::vector<std::wstring> CSASetConfigDlg::GetRowFields() const {
    std::vector<std::wstring> fields;
    if (!IsIndexing()) return fields;
    for (int row = 0; row < m_list.GetItemCount(); ++row) {
        fields.push_back(m_list.GetItemText(row, rectlist::kIndexingField));
    }
    return fields;
}

void CSASetConfigDlg::UpdateRectRow(int row, const PageRect& rect) {
    const auto show = [&](const rectlist::RowTexts& texts) {
        for (int column = 0; column < rectlist::kLengthColumns; ++column) {
            m_list.SetItemText(row, column, texts[static_cast<size_t>(column)]);
        }
    };
    try {
        show(rectlist::GetRowTexts(rect, ListUnits()));
    } catch (...) {
        // Neither other lengths than OK will store, nor empty cells, which count as 0.
        show({kUnknown, kUnknown, kUnknown, kUnknown});
        throw;
    }
}

// Asked for at each of thousands of areas; looking the button up takes longer than all else that an area needs.
void CSASetConfigDlg::EnableRemove(bool enable) {
    if (m_removeEnabled == enable) return;
    EnableDlgItem(IDC_CONFIG_REMOVE, enable);
    m_removeEnabled = enable;
}

void CSASetConfigDlg::OnRectAdded(LONG id) {
    if (m_bProcessCtrlEvents) {
        FoliumRect rect = {};
        if (FAILED(m_pFolium->QueryRect(id, &rect))) return;
        const ScopedFlag updating(m_bUpdatingList, true, false);
        int row = 0;
        try {
            row = m_list.InsertItem(m_list.GetItemCount(), {});
        } catch (...) {
            m_pFolium->DeleteRect(id);  // without a row, OK would leave it out
            TellTakenBack(IDS_BACK_AREA);
            throw;
        }
        LVITEMW item = {};
        item.mask = LVIF_PARAM;
        item.iItem = row;
        item.lParam = id;
        m_list.SetItem(item);
        EnableRemove(true);  // also where the lengths cannot be written
        UpdateRectRow(row, FromFolium(rect));
        const auto rectId = static_cast<uint32_t>(id);
        if (!m_removedFields.Holds(rectId)) return;
        const std::wstring field = m_removedFields.TakeBack(rectId, GetRowFields());
        if (!field.empty()) m_list.SetItemText(row, rectlist::kIndexingField, field);
    }
    EnableRemove(true);
}

void CSASetConfigDlg::OnRectDeleted(LONG id) {
    if (!m_bProcessCtrlEvents) return;
    const int row = FindRow(id);
    if (row < 0) return;
    const auto removeRow = [&] {
        m_list.DeleteItem(row);
        if (m_list.GetItemCount() == 0) EnableRemove(false);
    };
    try {
        if (IsIndexing()) {
            m_removedFields.Remember(static_cast<uint32_t>(id), m_list.GetItemText(row, rectlist::kIndexingField));
        }
    } catch (...) {
        removeRow();  // OK could not read the rectangle of a row that stayed
        throw;
    }
    removeRow();
}

void CSASetConfigDlg::OnRectChanged(LONG id) {
    if (!m_bProcessCtrlEvents) return;
    const int row = FindRow(id);
    FoliumRect rect = {};
    if (row < 0 || FAILED(m_pFolium->QueryRect(id, &rect))) return;
    UpdateRectRow(row, FromFolium(rect));
}

void CSASetConfigDlg::OnRectSelected(LONG id) {
    if (!m_bProcessCtrlEvents) return;
    const int row = FindRow(id);
    if (row < 0) return;
    const ScopedFlag updating(m_bUpdatingList, true, false);
    m_list.EnsureVisible(row);
    m_list.SetItemState(row, kSelected, kSelected);
}

void CSASetConfigDlg::OnAdd() {
    const SIZE size = m_pPage ? GetPageSize() : SIZE{};
    const PageRect rect = rectlist::GetMiddleHalf(size.cx, size.cy);
    const FoliumRect bounds = ToFolium(rect);
    LONG id = 0;
    {
        const ScopedFlag own(m_bProcessCtrlEvents, false, true);
        CallHost(m_pFolium.GetInterfacePtr(), &IFolium::InsertRect, &bounds, &id);
        m_pFolium->UpdateRect(id, &bounds);
    }
    {
        const ScopedFlag updating(m_bUpdatingList, true, false);
        std::wstring text;
        LVITEMW item = {};
        item.mask = LVIF_TEXT | LVIF_PARAM | LVIF_STATE;
        item.iItem = m_list.GetItemCount();
        item.pszText = text.data();
        item.lParam = id;
        item.state = item.stateMask = kSelected;
        int row = 0;
        try {
            row = m_list.InsertItem(item);
        } catch (...) {
            m_pFolium->DeleteRect(id);  // without a row, OK would leave it out
            TellTakenBack(IDS_BACK_AREA);
            throw;
        }
        EnableRemove(true);
        UpdateRectRow(row, rect);
        m_list.EnsureVisible(row);
    }
}

void CSASetConfigDlg::OnRemove() {
    const int row = m_list.GetNextItem(-1, LVNI_SELECTED);
    if (row < 0) return;
    m_bProcessCtrlEvents = true;
    CallHost(m_pFolium.GetInterfacePtr(), &IFolium::DeleteRect, static_cast<LONG>(m_list.GetItemData(row)));
}

LRESULT CSASetConfigDlg::OnListItemChanged(NMHDR* header) {
    const auto& change = *reinterpret_cast<const NMLISTVIEW*>(header);
    if (m_bUpdatingList || (change.uChanged & LVIF_STATE) == 0 || (change.uNewState & LVIS_SELECTED) == 0) return 0;
    const ScopedFlag updating(m_bUpdatingList, true, false);
    const ScopedFlag own(m_bProcessCtrlEvents, false, true);
    m_pFolium->SelectRect(static_cast<LONG>(m_list.GetItemData(change.iItem)));
    return 0;
}

LRESULT CSASetConfigDlg::OnListKeyDown(NMHDR* header) {
    const WORD key = reinterpret_cast<const NMLVKEYDOWN*>(header)->wVKey;
    if (key == VK_DELETE) OnRemove();
    if (key == VK_INSERT) OnAdd();
    return 0;
}

LRESULT CSASetConfigDlg::OnItemsMoved(NMHDR* header) {
    const auto& record = *reinterpret_cast<const listtable::MoveRecord*>(header);
    m_list.MoveItems(record.target, record.count, record.rows);
    return 0;
}

LRESULT CSASetConfigDlg::OnCellEdited(NMHDR* header) {
    const auto& edit = *reinterpret_cast<const NMLISTVIEW*>(header);
    if (edit.iSubItem == rectlist::kIndexingField) {
        OnFieldEdited(edit.iItem);
    } else if (edit.iSubItem >= 0 && edit.iSubItem < rectlist::kLengthColumns) {
        OnLengthEdited(edit.iItem, static_cast<Column>(edit.iSubItem));
    }
    return 0;
}

void CSASetConfigDlg::OnFieldEdited(int row) {
    try {
        for (const int other : rectlist::GetRowsLosingField(GetRowFields(), row)) {
            m_list.SetItemText(other, rectlist::kIndexingField, {});
        }
    } catch (...) {
        TellTakenBack(IDS_BACK_FIELD);
        m_list.SetItemText(row, rectlist::kIndexingField, {});  // two rows of one field would lose one of the places
        throw;
    }
}

void CSASetConfigDlg::OnLengthEdited(int row, Column column) {
    const auto id = static_cast<LONG>(m_list.GetItemData(row));
    FoliumRect current = {};
    std::optional<PageRect> shown;
    if (SUCCEEDED(m_pFolium->QueryRect(id, &current))) shown = FromFolium(current);
    try {
        ApplyLength(row, column, id, shown);
    } catch (...) {
        // OK stores what the page has, so the row may not show anything else.
        TellTakenBack(IDS_BACK_LENGTH);
        if (shown) {
            UpdateRectRow(row, *shown);
        } else {
            m_list.SetItemText(row, column, kUnknown);
        }
        throw;
    }
}

void CSASetConfigDlg::ApplyLength(int row, Column column, LONG id, const std::optional<PageRect>& shown) {
    const ListUnits units;
    rectlist::RowTexts texts;
    for (int i = 0; i < rectlist::kLengthColumns; ++i) texts[static_cast<size_t>(i)] = m_list.GetItemText(row, i);
    const auto edit = rectlist::ApplyCellEdit(texts, column, shown, units);
    if (!edit) {
        HostMessageBox(GetSafeHwnd(), win32::LoadText(IDS_WRONG_NUMBER).c_str(), MB_ICONERROR);
        return;
    }
    m_list.SetItemText(row, column, edit->text);
    const FoliumRect bounds = ToFolium(edit->rect);
    CallHost(m_pFolium.GetInterfacePtr(), &IFolium::UpdateRect, id, &bounds);
}
