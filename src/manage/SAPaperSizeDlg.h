#pragma once

#include <functional>

#include "manage/PaperSizes.h"
#include "store/ComSettingsNode.h"
#include "win32/Dialog.h"

// "Select Paper Size": a standard size or one of the user's own. OK writes the choice and the size that it comes to
// into the settings node; everything else leaves the node alone.
class CSAPaperSizeDlg final : public CDialog {
public:
    // Hands out the module's settings node, null when there is none; asked for each use.
    using SettingsSource = std::function<ISettingsNodePtr()>;

    explicit CSAPaperSizeDlg(SettingsSource settings, CWnd* pParent = nullptr);

protected:
    const wchar_t* GetName() const override { return L"CSAPaperSizeDlg"; }
    std::span<const win32::MessageEntry> GetMessageMap() const override;
    void DoDataExchange(CDataExchange& exchange) override;
    bool OnInitDialog() override;
    void OnOK() override;
    void OnDataRefused(UINT id) override;

private:
    // The page type's radio buttons stand apart in the tab order, so the arrow keys are their own.
    class PageTypeButton final : public CWnd {
    public:
        void Bind(HWND hWnd, HWND other);

    protected:
        LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

    private:
        HWND m_other = nullptr;
    };

    void OnPageType(UINT id);
    LRESULT OnHelpInfo(WPARAM, LPARAM);
    void FillFormats(bool metric, const std::wstring& unit);
    void LoadDialogState();
    void SelectPageType(bool standard);
    void UpdateControls();
    PaperChoice GetChoice() const;

    CComboBox m_comboFormat;
    float m_fCustomWidth = 0.0F;  // in the user's unit
    float m_fCustomHeight = 0.0F;

    SettingsSource m_settings;
    PageTypeButton m_standard;
    PageTypeButton m_custom;
};
