// "Manage Area Sets": set-up of the dialog, the page source, OK and Cancel.
#include "manage/SAMgrConfigDlg.h"

#include "host/Controls.h"
#include "host/Support.h"
#include "manage/PageSettings.h"
#include "manage/SAPaperSizeDlg.h"
#include "resource.h"
#include "trace/Trace.h"
#include "win32/Failure.h"
#include "win32/Resources.h"

namespace {

constexpr const char* kSource = "SAMgrConfigDlg";
constexpr DWORD kListStyle = LVS_EX_FULLROWSELECT | LVS_EX_INFOTIP;
constexpr UINT kStoppedMessage = WM_APP;
constexpr INT_PTR kNotCreated = -1;

}  // namespace

CSAMgrConfigDlg::CSAMgrConfigDlg(CAreaSetManager* pManager, CWnd* pParent)
    : CDialog(IDD_MANAGE, pParent), m_pManager(pManager) {}

std::span<const win32::MessageEntry> CSAMgrConfigDlg::GetMessageMap() const {
    static constexpr win32::MessageEntry kMap[] = {
        win32::OnClick<&CSAMgrConfigDlg::OnConfigure>(IDC_MANAGE_CONFIGURE),
        win32::OnClick<&CSAMgrConfigDlg::OnCreate>(IDC_MANAGE_CREATE),
        win32::OnClick<&CSAMgrConfigDlg::OnRemove>(IDC_MANAGE_REMOVE),
        win32::OnClick<&CSAMgrConfigDlg::OnCopy>(IDC_MANAGE_COPY),
        win32::OnNotify<&CSAMgrConfigDlg::OnEndLabelEdit>(IDC_MANAGE_LIST, LVN_ENDLABELEDITW),
        win32::OnNotify<&CSAMgrConfigDlg::OnItemChanged>(IDC_MANAGE_LIST, LVN_ITEMCHANGED),
        win32::OnNotify<&CSAMgrConfigDlg::OnDblClk>(IDC_MANAGE_LIST, NM_DBLCLK),
        win32::OnClick<&CSAMgrConfigDlg::OnScannedDocuments>(IDC_MANAGE_SCANNED),
        win32::OnClick<&CSAMgrConfigDlg::OnConfigurePageSize>(IDC_MANAGE_PAGE_SIZE),
        win32::OnClick<&CSAMgrConfigDlg::OnSettings>(IDC_MANAGE_SETTINGS),
        win32::OnClick<&CSAMgrConfigDlg::OnHelpButton>(IDHELP),
        win32::OnMessage<&CSAMgrConfigDlg::OnHelpInfo>(WM_HELP),
        win32::OnNotify<&CSAMgrConfigDlg::OnKeyDown>(IDC_MANAGE_LIST, LVN_KEYDOWN),
        win32::OnMessage<&CSAMgrConfigDlg::OnStopped>(kStoppedMessage),
    };
    return kMap;
}

void CSAMgrConfigDlg::DoDataExchange(CDataExchange& exchange) {
    DDX_Control(exchange, IDC_MANAGE_LIST, m_list);
}

bool CSAMgrConfigDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    if (!m_ctrlPreview.SubclassControl(IDC_MANAGE_PREVIEW, GetSafeHwnd())) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__,
                         L"CSAMgrConfigDlg::OnInitDialog: m_ctrlPreview.SubclassControl failed.");
        StopInitialisation(IDS_MANAGE_NO_PREVIEW);
        return false;
    }
    // A load that failed is reported as such once only; what it left behind is not all.
    if (!m_pManager->LoadSettings() || !m_pManager->WasLastLoadComplete()) {
        trace::TraceStringId(trace::kError, kSource, __LINE__, IDS_ERR_READ_SETTINGS);
        StopInitialisation(IDS_MANAGE_NOT_READ);
        return false;
    }
    FillList();
    InitializePageSource();
    UpdateSizeLabel();
    EnableButtons();
    return true;
}

void CSAMgrConfigDlg::FillList() {
    m_list.SetExtendedStyle(kListStyle);
    const RECT client = m_list.GetClientRect();
    m_list.InsertColumn(0, win32::LoadText(IDS_MANAGE_COLUMN),
                        client.right - client.left - GetSystemMetrics(SM_CXHTHUMB));
    {
        const win32::RedrawOff redrawOff(m_list);
        const CSystemLock lock = m_pManager->Lock();  // once, not for each set
        const int32_t count = m_pManager->GetCount();
        m_list.SendMessage(LVM_SETITEMCOUNT, static_cast<WPARAM>(count));
        for (int32_t i = 0; i < count; ++i) {
            const CAreaSet* set = m_pManager->GetAreaSet(i);
            m_list.InsertItem(i, set->GetName(), static_cast<LPARAM>(set->GetID()));
        }
    }
    m_list.SetFocus();
    m_list.SetItemState(0, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    AdjustColumnWidth();
}

void CSAMgrConfigDlg::InitializePageSource() {
    if (!IsPageAvailable()) {
        EnableDlgItem(IDC_MANAGE_SCANNED, false);
        CheckDlgButton(IDC_MANAGE_PAGE_SIZE, true);
        return;
    }
    ComSettingsNode node(GetApp().GetSettingsNode());
    const bool scanned = win32::ReadOr(kDefaultPageScanned, [&] { return node.GetBool(kKeyPageScanned); });
    CheckDlgButton(scanned ? IDC_MANAGE_SCANNED : IDC_MANAGE_PAGE_SIZE, true);
    UpdateSettingsButton();
}

bool CSAMgrConfigDlg::IsPageAvailable() {
    int32_t document = -1;
    int32_t page = -1;
    uint32_t flags = 0;
    IPageImagePtr image;
    try {
        return GetApp().GetPage(document, page, image, flags);
    } catch (const _com_error&) {
        win32::TraceFailure(std::current_exception(), kSource, __LINE__, L"CSAMgrConfigDlg::OnInitDialog: GetPage");
        return false;
    }
}

// Leaves Cancel and Help. The user is told once the window is there.
void CSAMgrConfigDlg::StopInitialisation(UINT reason) {
    m_stopped = reason;
    for (const UINT id : {IDC_MANAGE_LIST, IDC_MANAGE_CREATE, IDC_MANAGE_COPY, IDC_MANAGE_REMOVE, IDC_MANAGE_CONFIGURE,
                          IDC_MANAGE_SCANNED, IDC_MANAGE_PAGE_SIZE, IDC_MANAGE_SETTINGS, IDOK}) {
        EnableDlgItem(id, false);
    }
    SendMessage(DM_SETDEFID, IDCANCEL);
    ::SetFocus(GetDlgItem(IDCANCEL));
    PostMessageW(GetSafeHwnd(), kStoppedMessage, 0, 0);
}

LRESULT CSAMgrConfigDlg::OnStopped(WPARAM, LPARAM) {
    if (m_stopped != 0) HostMessageBox(GetSafeHwnd(), win32::LoadText(m_stopped).c_str(), MB_OK | MB_ICONERROR);
    return 0;
}

// A radio button also sends a click when it only gets the focus, so the state counts.
void CSAMgrConfigDlg::UpdateSettingsButton() {
    EnableDlgItem(IDC_MANAGE_SETTINGS, IsDlgButtonChecked(IDC_MANAGE_PAGE_SIZE));
}

void CSAMgrConfigDlg::WritePageSource() {
    ComSettingsNode(GetApp().GetSettingsNode()).SetBool(kKeyPageScanned, IsDlgButtonChecked(IDC_MANAGE_SCANNED));
}

// The size in effect becomes that of the current set, also when the paper size dialog was cancelled.
void CSAMgrConfigDlg::OnSettings() {
    const auto settings = [] { return GetApp().GetSettingsNode(); };
    if (CSAPaperSizeDlg(settings, this).DoModal() == kNotCreated) {
        TellFailure(IDS_ERR_OPEN_DIALOG, __LINE__);
        return;
    }
    const int item = GetCurrentItem();
    if (item < 0) return;
    ComSettingsNode node(settings());
    const auto read = [&](const wchar_t* key, int32_t fallback) {
        return win32::ReadOr(fallback, [&] { return node.GetInt64(key); });
    };
    const PageRect size = {0, 0, read(kKeyRealWidth, kDefaultRealWidth), read(kKeyRealHeight, kDefaultRealHeight)};
    CAreaSet* set = m_pManager->GetAreaSet(GetItemID(item));  // behind the host's calls, which may let it go
    if (set == nullptr) return;
    set->SetDisplayRect(size);
    UpdatePreviewControl(item);
    UpdateSizeLabel();
}

LRESULT CSAMgrConfigDlg::OnHelpInfo(WPARAM, LPARAM) {
    OnHelp();
    return TRUE;
}

// The support library's box adds what the host itself traced about the failure, as where a refused file is kept.
void CSAMgrConfigDlg::TellFailure(UINT text, int line) {
    if (const std::exception_ptr failure = std::current_exception()) {
        trace::TraceText(trace::kDiagnostic, kSource, line, L"CSAMgrConfigDlg: failed with status 0x%08lx.",
                         static_cast<unsigned long>(win32::StatusOf(failure)));
    }
    if (win32::IsLocalised(text)) {
        trace::TraceStringId(trace::kError, kSource, line, text);
    } else {
        // Loggers look strings up in the translation, and need not know where to go on.
        trace::TraceText(trace::kError, kSource, line, L"%ls", win32::LoadText(text).c_str());
    }
    QWMessageBoxExW(GetSafeHwnd(), nullptr, nullptr, MB_ICONERROR, 0, 0, 0, win32::ModuleInstance());
}

// Nothing goes to the host unless all of it was stored; the dialog stays for another try.
void CSAMgrConfigDlg::OnOK() {
    if (m_stopped != 0) return;
    m_list.SetFocus();  // ends a label's editing, with what was typed
    try {
        if (!m_pManager->StoreSettings() || !m_pManager->WasLastStoreComplete()) {
            TellFailure(IDS_MANAGE_NOT_STORED, __LINE__);
            return;
        }
        WritePageSource();
        GetApp().CommitToHost();
    } catch (...) {
        TellFailure(IDS_MANAGE_NOT_STORED, __LINE__);
        return;
    }
    CDialog::OnOK();
}

void CSAMgrConfigDlg::OnCancel() {
    // A label that is edited still must not give its name to a set that was read anew.
    m_list.SendMessage(LVM_CANCELEDITLABEL);
    try {
        GetApp().RefreshFromHost();
        // Read in part only; who could not do more than cancel has been told already.
        if (m_stopped == 0 && !m_pManager->WasLastLoadComplete()) TellFailure(IDS_MANAGE_NOT_REFILLED, __LINE__);
    } catch (...) {
        TellFailure(IDS_MANAGE_NOT_REFILLED, __LINE__);
    }
    CDialog::OnCancel();
}
