#include "manage/SAPaperSizeDlg.h"

#include "manage/PageSettings.h"
#include "resource.h"
#include "win32/HostUnits.h"

namespace {

constexpr float kSmallestSize = 0.0F;
constexpr float kLargestSize = 1500.0F;
constexpr int kPositionOfA4 = 1;

int32_t ReadInteger(ComSettingsNode& node, const wchar_t* key, int32_t fallback) {
    return win32::ReadOr(fallback, [&] { return node.GetInt64(key); });
}

bool ReadBool(ComSettingsNode& node, const wchar_t* key, bool fallback) {
    return win32::ReadOr(fallback, [&] { return node.GetBool(key); });
}

}  // namespace

CSAPaperSizeDlg::CSAPaperSizeDlg(SettingsSource settings, CWnd* pParent)
    : CDialog(IDD_PAPER_SIZE, pParent), m_settings(std::move(settings)) {}

std::span<const win32::MessageEntry> CSAPaperSizeDlg::GetMessageMap() const {
    static constexpr win32::MessageEntry kMap[] = {
        win32::OnClick<&CSAPaperSizeDlg::OnPageType>(IDC_PAPER_STANDARD),
        win32::OnClick<&CSAPaperSizeDlg::OnPageType>(IDC_PAPER_CUSTOM),
        win32::OnClick<&CSAPaperSizeDlg::OnHelp>(IDHELP),
        win32::OnMessage<&CSAPaperSizeDlg::OnHelpInfo>(WM_HELP),
    };
    return kMap;
}

void CSAPaperSizeDlg::DoDataExchange(CDataExchange& exchange) {
    DDX_Control(exchange, IDC_PAPER_FORMAT, m_comboFormat);
    DDX_MinMaxFloat(exchange, IDC_PAPER_WIDTH, m_fCustomWidth, kSmallestSize, kLargestSize);
    DDX_MinMaxFloat(exchange, IDC_PAPER_HEIGHT, m_fCustomHeight, kSmallestSize, kLargestSize);
}

bool CSAPaperSizeDlg::OnInitDialog() {
    const win32::HostUnits units;
    ComSettingsNode node(m_settings());
    m_fCustomWidth = static_cast<float>(units.ToUserUnits(ReadInteger(node, kKeyCustomWidth, kDefaultCustomWidth)));
    m_fCustomHeight = static_cast<float>(units.ToUserUnits(ReadInteger(node, kKeyCustomHeight, kDefaultCustomHeight)));
    CDialog::OnInitDialog();

    const bool metric = units.IsMetric();
    const std::wstring unit = units.GetUnitName();
    FillFormats(metric, unit);
    SetDlgItemText(IDC_PAPER_WIDTH_UNIT, unit);
    SetDlgItemText(IDC_PAPER_HEIGHT_UNIT, unit);
    m_standard.Bind(GetDlgItem(IDC_PAPER_STANDARD), GetDlgItem(IDC_PAPER_CUSTOM));
    m_custom.Bind(GetDlgItem(IDC_PAPER_CUSTOM), GetDlgItem(IDC_PAPER_STANDARD));
    LoadDialogState();

    // The system would put the focus on the first radio button, checked or not.
    (IsDlgButtonChecked(IDC_PAPER_STANDARD) ? m_standard : m_custom).SetFocus();
    return false;
}

void CSAPaperSizeDlg::FillFormats(bool metric, const std::wstring& unit) {
    for (const int32_t iFormat : kOfferedPaperSizes) {
        const int item = m_comboFormat.AddString(GetPaperSizeText(*GetPaperSize(iFormat), metric, unit));
        m_comboFormat.SetItemData(item, iFormat);
    }
    m_comboFormat.SetCurSel(kPositionOfA4);
}

void CSAPaperSizeDlg::LoadDialogState() {
    ComSettingsNode node(m_settings());
    const bool portrait = ReadBool(node, kKeyPagePortrait, kDefaultPagePortrait);
    CheckDlgButton(IDC_PAPER_PORTRAIT, portrait);
    CheckDlgButton(IDC_PAPER_LANDSCAPE, !portrait);

    const int32_t iFormat = ReadInteger(node, kKeyPageFormat, kDefaultPageFormat);
    for (int item = 0; item < m_comboFormat.GetCount(); ++item) {
        if (static_cast<int32_t>(m_comboFormat.GetItemData(item)) != iFormat) continue;
        m_comboFormat.SetCurSel(item);
        break;
    }
    SelectPageType(ReadBool(node, kKeyPageStandard, kDefaultPageStandard));
}

void CSAPaperSizeDlg::SelectPageType(bool standard) {
    CheckDlgButton(IDC_PAPER_STANDARD, standard);
    CheckDlgButton(IDC_PAPER_CUSTOM, !standard);
    UpdateControls();
}

void CSAPaperSizeDlg::UpdateControls() {
    const bool standard = IsDlgButtonChecked(IDC_PAPER_STANDARD);
    for (const UINT id : {IDC_PAPER_FORMAT, IDC_PAPER_PORTRAIT, IDC_PAPER_LANDSCAPE}) EnableDlgItem(id, standard);
    for (const UINT id : {IDC_PAPER_WIDTH_LABEL, IDC_PAPER_WIDTH, IDC_PAPER_WIDTH_UNIT, IDC_PAPER_HEIGHT_LABEL,
                          IDC_PAPER_HEIGHT, IDC_PAPER_HEIGHT_UNIT}) {
        EnableDlgItem(id, !standard);
    }
}

// A radio button also sends a click when it only gets the focus; then it is not checked.
void CSAPaperSizeDlg::OnPageType(UINT id) {
    if (IsDlgButtonChecked(id)) SelectPageType(id == IDC_PAPER_STANDARD);
}

LRESULT CSAPaperSizeDlg::OnHelpInfo(WPARAM, LPARAM) {
    OnHelp();
    return TRUE;
}

// A refused size may have been stored in another unit, and its edit be disabled.
void CSAPaperSizeDlg::OnDataRefused(UINT) {
    SelectPageType(false);
}

PaperChoice CSAPaperSizeDlg::GetChoice() const {
    PaperChoice choice;
    choice.standard = IsDlgButtonChecked(IDC_PAPER_STANDARD);
    choice.landscape = !IsDlgButtonChecked(IDC_PAPER_PORTRAIT);
    choice.iFormat = static_cast<int32_t>(m_comboFormat.GetItemData(m_comboFormat.GetCurSel()));
    choice.custom = {m_fCustomWidth, m_fCustomHeight};
    return choice;
}

// All lengths are converted before anything is written, so that a failing conversion leaves the node alone.
void CSAPaperSizeDlg::OnOK() {
    if (!UpdateData(true)) return;
    const PaperChoice choice = GetChoice();
    const win32::HostUnits units;
    const LONG customWidth = units.FromUserUnits(choice.custom.fWidth);
    const LONG customHeight = units.FromUserUnits(choice.custom.fHeight);
    const UserPageSize size = GetEffectiveSize(choice, units.IsMetric());
    const LONG realWidth = units.FromUserUnits(size.fWidth);
    const LONG realHeight = units.FromUserUnits(size.fHeight);

    ComSettingsNode node(m_settings());
    node.SetInt64(kKeyCustomWidth, customWidth);
    node.SetInt64(kKeyCustomHeight, customHeight);
    node.SetBool(kKeyPagePortrait, !choice.landscape);
    node.SetInt64(kKeyPageFormat, choice.iFormat);
    node.SetBool(kKeyPageStandard, choice.standard);
    node.SetInt64(kKeyRealWidth, realWidth);
    node.SetInt64(kKeyRealHeight, realHeight);
    EndDialog(IDOK);
}

void CSAPaperSizeDlg::PageTypeButton::Bind(HWND hWnd, HWND other) {
    m_other = other;
    SubclassWindow(hWnd);
}

LRESULT CSAPaperSizeDlg::PageTypeButton::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    const bool arrow = wParam == VK_UP || wParam == VK_DOWN || wParam == VK_LEFT || wParam == VK_RIGHT;
    if (message == WM_KEYDOWN && arrow) {
        ::SetFocus(m_other);
        ::SendMessageW(m_other, BM_CLICK, 0, 0);
        return 0;
    }
    const LRESULT result = CWnd::WindowProc(message, wParam, lParam);
    return message == WM_GETDLGCODE ? result | DLGC_WANTARROWS : result;
}
