#pragma once

#include "manage/PagePreviewCtrl.h"
#include "module/ZonwickApp.h"
#include "win32/Dialog.h"

// "Manage Area Sets": creates, copies, renames, removes and previews the sets and opens the dialogs that configure one.
//
// Every command changes the manager's sets at once. OK stores them and hands the working settings to the host; Cancel
// makes the working settings what the host has, and the sets with them. A dialog that could not be set up, or whose
// sets were not read completely, can only be cancelled: nothing is ever stored over sets that were not read.
class CSAMgrConfigDlg final : public CDialog {
public:
    // The manager stays the caller's and outlives the dialog.
    explicit CSAMgrConfigDlg(CAreaSetManager* pManager, CWnd* pParent = nullptr);

protected:
    const wchar_t* GetName() const override { return L"CSAMgrConfigDlg"; }
    const char* GetTraceSource() const override { return "SAMgrConfigDlg"; }
    std::span<const win32::MessageEntry> GetMessageMap() const override;
    void DoDataExchange(CDataExchange& exchange) override;
    bool OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;
    bool IsBusy() const override { return m_pManager->IsExclusive(); }

private:
    // Set-up, page source, OK and Cancel (SAMgrConfigDlg.cpp)
    void FillList();
    void InitializePageSource();
    static bool IsPageAvailable();
    void StopInitialisation(UINT reason);
    void WritePageSource();
    LRESULT OnStopped(WPARAM wParam, LPARAM lParam);
    void OnScannedDocuments() { UpdateSettingsButton(); }
    void OnConfigurePageSize() { UpdateSettingsButton(); }
    void UpdateSettingsButton();
    void OnSettings();
    void OnHelpButton() { OnHelp(); }
    LRESULT OnHelpInfo(WPARAM wParam, LPARAM lParam);
    void TellFailure(UINT text, int line);

    // The list of sets (SAMgrConfigDlgSets.cpp)
    uint32_t GetItemID(int item) const { return static_cast<uint32_t>(m_list.GetItemData(item)); }
    int GetCurrentItem() const;
    int GetSelectedItem() const { return m_list.GetNextItem(-1, LVNI_SELECTED); }
    int AppendItem(const std::wstring& name, uint32_t dwID);
    void EditLabel(int item, const std::wstring& text);
    void FocusList();
    void AdjustColumnWidth();
    void EnableButtons();
    void UpdatePreviewControl(int item);
    void UpdateSizeLabel();
    void OnCreate();
    void OnCopy();
    void OnRemove();
    void OnConfigure();
    LRESULT OnEndLabelEdit(NMHDR* header);
    LRESULT OnItemChanged(NMHDR* header);
    LRESULT OnDblClk(NMHDR* header);
    LRESULT OnKeyDown(NMHDR* header);

    CListCtrl m_list;
    CAreaSetManager* m_pManager;
    CPagePreviewCtrl m_ctrlPreview;

    UINT m_stopped = 0;  // the text that tells why the initialisation stopped
};
