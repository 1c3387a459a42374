#pragma once
// "Configure Area Set": the areas of one set as rectangles over a page, mirrored in a list.

#include <map>
#include <string>
#include <vector>

#include "configure/FoliumCtrl.h"
#include "configure/ListTableCtrl.h"
#include "configure/RectListCells.h"
#include "configure/RectListRules.h"
#include "model/AreaSet.h"
#include "module/ZonwickApp.h"
#include "win32/Dialog.h"

// The page display control holds the rectangles while the dialog runs and the list follows it; the set is rewritten by
// OK alone. With indexing fields the dialog is in indexing mode: each row can carry one of the names.
class CSASetConfigDlg final : public CDialog {
public:
    // The set stays the caller's and outlives the dialog.
    CSASetConfigDlg(CAreaSet* pAreaSet, const AreaColors& colors, std::vector<std::wstring> indexFields, CWnd* pParent);

    // After OK: the rectangle that carries the field, all zero when none does.
    PageRect GetFieldRect(const std::wstring& field) { return m_fieldRects[field]; }

protected:
    const wchar_t* GetName() const override { return L"CSASetConfigDlg"; }
    const char* GetTraceSource() const override { return "SASetConfigDlg"; }
    std::span<const win32::MessageEntry> GetMessageMap() const override;
    std::span<const win32::EventEntry> GetEventMap() const override;
    std::span<const win32::HostedControl> GetHostedControls() const override;
    void DoDataExchange(CDataExchange& exchange) override;
    bool OnInitDialog() override;
    void OnOK() override;

private:
    bool IsIndexing() const { return !m_indexFields.empty(); }

    // Set-up (SASetConfigDlg.cpp)
    void FitToMonitor();
    void InitializeListControl();
    bool InitializePageControl();
    void SetDisplayOptions();
    bool ShowScannedPage();
    void ShowBlankPage();
    void LoadRects();
    void ShowUnits();
    void OnHelpButton() { OnHelp(); }
    LRESULT OnHelpInfo(WPARAM wParam, LPARAM lParam);

    // The list and the rectangles (SASetConfigRects.cpp)
    int FindRow(LONG id) const;
    std::vector<std::wstring> GetRowFields() const;
    void EnableRemove(bool enable);
    void UpdateRectRow(int row, const PageRect& rect);
    void OnRectAdded(LONG id);
    void OnRectDeleted(LONG id);
    void OnRectChanged(LONG id);
    void OnRectSelected(LONG id);
    void OnAdd();
    void OnRemove();
    LRESULT OnListItemChanged(NMHDR* header);
    LRESULT OnListKeyDown(NMHDR* header);
    LRESULT OnCellEdited(NMHDR* header);
    LRESULT OnItemsMoved(NMHDR* header);
    void OnFieldEdited(int row);
    void OnLengthEdited(int row, rectlist::Column column);
    void ApplyLength(int row, rectlist::Column column, LONG id, const std::optional<PageRect>& shown);

    // The view of the page (SASetConfigView.cpp)
    bool GetPage(uint32_t& flags, IPageImagePtr& page);
    void SetPage(const IPageImagePtr& page);
    SIZE GetPageSize() const;
    void UpdateNavigationButtons(uint32_t flags);
    void Navigate(int32_t& position, int32_t step, const wchar_t* failure);
    void OnNextPage();
    void OnPrevPage();
    void OnNextDoc();
    void OnPrevDoc();
    void OnPointerMoved(LONG x, LONG y);
    void OnContextMenuRequested(LONG unused, LONG x, LONG y);
    void OnScale(UINT command);
    void OnSmoothImages();
    bool LoadViewSettings();
    void ApplyColumnWidths();
    void SaveViewSettings();
    LRESULT OnDestroy(WPARAM wParam, LPARAM lParam);

    CFolium m_foliumCtrl;
    IFoliumPtr m_pFolium;
    CListTableCtrl m_list;
    bool m_bProcessCtrlEvents = true;  // the control's rectangle events change the list
    bool m_bUpdatingList = false;      // the dialog itself changes the list's selection
    bool m_removeEnabled = true;
    bool m_bOpened = false;  // the set-up came to its end
    CAreaSet* m_pAreaSet;
    int32_t m_nPage = -1;
    int32_t m_nDoc = -1;
    IPageImagePtr m_pPage;
    AreaColors m_colors;
    bool m_bSmooth = true;
    UINT m_nScaleCmd = rectlist::kWholePageCommand;
    std::wstring m_strColumnWidths;
    std::vector<std::wstring> m_indexFields;
    std::map<std::wstring, PageRect> m_fieldRects;

    rectlist::RemovedFields m_removedFields;
};
