// "Manage Area Sets": the list of sets, its commands and the preview.
#include <algorithm>
#include <limits>

#include "host/Controls.h"
#include "manage/SAMgrConfigDlg.h"
#include "resource.h"
#include "trace/Trace.h"
#include "win32/HostUnits.h"
#include "win32/NumberText.h"
#include "win32/Resources.h"
#include "zonwick/zonwick.h"

namespace {

constexpr const char* kSource = "SAMgrConfigDlg";
constexpr int kTextMargin = 10;
constexpr int kWidestColumn = std::numeric_limits<short>::max();  // the message carries 16 bits

// The size of a display rectangle; coordinates may lie farther apart than a length can tell.
SIZE SizeOf(const PageRect& rect) {
    const auto extent = [](int32_t from, int32_t to) {
        using Limits = std::numeric_limits<int32_t>;
        return static_cast<LONG>(std::clamp<int64_t>(int64_t{to} - from, Limits::min(), Limits::max()));
    };
    return {extent(rect.left, rect.right), extent(rect.top, rect.bottom)};
}

}  // namespace

int CSAMgrConfigDlg::GetCurrentItem() const {
    const int selected = GetSelectedItem();
    const int focused = m_list.GetNextItem(-1, LVNI_FOCUSED);
    if (selected < 0 || focused < 0) return std::max(selected, focused);
    return std::min(selected, focused);
}

// A set that cannot be listed could not be removed again, so it goes.
int CSAMgrConfigDlg::AppendItem(const std::wstring& name, uint32_t dwID) {
    try {
        return m_list.InsertItem(m_list.GetItemCount(), name, static_cast<LPARAM>(dwID));
    } catch (...) {
        m_pManager->RemoveSet(dwID);
        TellTakenBack(IDS_BACK_SET);
        throw;
    }
}

void CSAMgrConfigDlg::EditLabel(int item, const std::wstring& text) {
    m_list.EnsureVisible(item);
    const HWND edit = m_list.EditLabel(item);
    if (edit == nullptr) return;
    ::SetWindowTextW(edit, text.c_str());
    ::SendMessageW(edit, EM_SETSEL, 0, -1);
    ::SendMessageW(edit, EM_SCROLLCARET, 0, 0);
}

// The way of the dialog manager, which also gives OK its frame of the default button back.
void CSAMgrConfigDlg::FocusList() {
    SendMessage(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(m_list.GetSafeHwnd()), TRUE);
}

void CSAMgrConfigDlg::AdjustColumnWidth() {
    const RECT client = m_list.GetClientRect();
    int width = client.right - client.left - GetSystemMetrics(SM_CXHTHUMB);
    for (int item = 0; item < m_list.GetItemCount(); ++item) {
        width = std::max(width, m_list.GetStringWidth(m_list.GetItemText(item, 0)) + kTextMargin);
    }
    m_list.SetColumnWidth(0, std::min(width, kWidestColumn));
}

// A focused button that is disabled would leave the keyboard without any focus.
void CSAMgrConfigDlg::EnableButtons() {
    const bool any = m_list.GetItemCount() > 0;
    for (const UINT id : {IDC_MANAGE_COPY, IDC_MANAGE_REMOVE, IDC_MANAGE_CONFIGURE}) {
        if (!any && GetFocus() == GetDlgItem(id)) FocusList();
        EnableDlgItem(id, any);
    }
}

void CSAMgrConfigDlg::UpdatePreviewControl(int item) {
    m_ctrlPreview.RemoveAllRects();
    if (item < 0 || item >= m_list.GetItemCount()) {
        m_ctrlPreview.SetPageSize({0, 0});
        m_ctrlPreview.InvalidateRect();
        return;
    }
    const CAreaSet* set = m_pManager->GetAreaSet(GetItemID(item));
    if (set == nullptr) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__,
                         L"CSAMgrConfigDlg::UpdatePreviewControl: GetAreaSet failed.");
        return;
    }
    m_ctrlPreview.SetAreasIgnored(set->GetFlags() & kAreasIgnored);
    m_ctrlPreview.SetPageSize(set->GetRectCount() > 0 ? SizeOf(set->GetDisplayRect()) : SIZE{0, 0});
    for (int32_t i = 0; i < set->GetRectCount(); ++i) {
        const PageRect area = set->GetRect(i)->GetRectangle();
        m_ctrlPreview.AddRect({area.left, area.top, area.right, area.bottom});
    }
    m_ctrlPreview.RedrawNow();
}

void CSAMgrConfigDlg::UpdateSizeLabel() {
    const int item = GetSelectedItem();
    if (item < 0) return;
    const CAreaSet* set = m_pManager->GetAreaSet(GetItemID(item));
    if (set == nullptr) return;
    const SIZE size = SizeOf(set->GetDisplayRect());
    const win32::HostUnits units;
    const auto number = [&](LONG length) { return win32::FormatFixed(units.ToUserUnits(length), 1); };
    SetDlgItemText(IDC_MANAGE_SIZE, number(size.cx) + L" x " + number(size.cy) + L" " + units.GetUnitName());
}

void CSAMgrConfigDlg::OnCreate() {
    const std::wstring name = win32::LoadText(IDS_MANAGE_NEW);
    const int32_t position = m_pManager->AddSet(name, 0);
    if (position < 0) {
        HostMessageBox(GetSafeHwnd(), win32::LoadText(IDS_MANAGE_NOT_CREATED).c_str(), MB_OK | MB_ICONERROR);
        return;
    }
    const int item = AppendItem(name, m_pManager->GetAreaSet(position)->GetID());
    FocusList();
    m_list.SetItemState(item, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    EditLabel(item, name);
    EnableButtons();
    UpdatePreviewControl(item);
}

void CSAMgrConfigDlg::OnCopy() {
    const int source = GetCurrentItem();
    if (source < 0) return;
    const std::wstring name = m_list.GetItemText(source, 0);  // before there is a copy that only the list can remove
    const uint32_t dwID = m_pManager->CopySet(GetItemID(source));
    if (dwID == 0) {
        HostMessageBox(GetSafeHwnd(), win32::LoadText(IDS_MANAGE_NOT_CREATED).c_str(), MB_OK | MB_ICONERROR);
        return;
    }
    const int item = AppendItem(name, dwID);
    UpdatePreviewControl(item);
    FocusList();
    m_list.SetItemState(item, LVIS_SELECTED, LVIS_SELECTED);
    EditLabel(item, win32::LoadText(IDS_MANAGE_COPY_OF) + L" " + name);
}

void CSAMgrConfigDlg::OnRemove() {
    const int removed = GetCurrentItem();
    if (removed < 0) return;
    m_pManager->RemoveSet(GetItemID(removed));
    m_list.DeleteItem(removed);
    EnableButtons();
    const int item = GetCurrentItem();
    if (item >= 0) m_list.SetItemState(item, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    UpdatePreviewControl(item >= 0 ? item : m_list.GetItemCount());
    AdjustColumnWidth();
}

// What the other dialog stores stands in the working settings until OK or Cancel here.
void CSAMgrConfigDlg::OnConfigure() {
    const int item = GetCurrentItem();
    if (item < 0) return;
    WritePageSource();
    SAConfigureSet(GetSafeHwnd(), GetItemID(item));
    UpdatePreviewControl(item);
    UpdateSizeLabel();
    FocusList();
}

LRESULT CSAMgrConfigDlg::OnEndLabelEdit(NMHDR* header) {
    const LVITEMW& edited = reinterpret_cast<NMLVDISPINFOW*>(header)->item;
    if (edited.pszText != nullptr) {
        const uint32_t dwID = GetItemID(edited.iItem);
        if (*edited.pszText != L'\0') {
            const std::wstring name = edited.pszText;
            m_pManager->SetAreaSetName(dwID, name);  // first: when it fails, the list must not show another name
            m_list.SetItemText(edited.iItem, 0, name);
        } else if (const CAreaSet* set = m_pManager->GetAreaSet(dwID)) {
            m_list.SetItemText(edited.iItem, 0, set->GetName());
        }
    }
    AdjustColumnWidth();
    return 0;
}

LRESULT CSAMgrConfigDlg::OnItemChanged(NMHDR* header) {
    const auto& change = *reinterpret_cast<NMLISTVIEW*>(header);
    if ((change.uChanged & LVIF_STATE) == 0 || (change.uNewState & LVIS_SELECTED) == 0) return 0;
    UpdatePreviewControl(change.iItem);
    UpdateSizeLabel();
    return 0;
}

LRESULT CSAMgrConfigDlg::OnDblClk(NMHDR*) {
    OnConfigure();
    return 0;
}

LRESULT CSAMgrConfigDlg::OnKeyDown(NMHDR* header) {
    const WORD key = reinterpret_cast<NMLVKEYDOWN*>(header)->wVKey;
    const int selected = GetSelectedItem();
    if (key == VK_INSERT) {
        OnCreate();
    } else if (key == VK_DELETE && selected >= 0) {
        OnRemove();
    } else if (key == VK_F2 && selected >= 0) {
        m_list.SetItemState(selected, LVIS_SELECTED, LVIS_SELECTED);
        m_list.EditLabel(selected);
    }
    return 0;
}
