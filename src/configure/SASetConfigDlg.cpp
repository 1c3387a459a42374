// "Configure Area Set": set-up of the dialog, and OK.
#include "configure/SASetConfigDlg.h"

#include "configure/ConfigSupport.h"
#include "manage/PageSettings.h"
#include "resource.h"
#include "trace/Trace.h"
#include "win32/Failure.h"
#include "win32/Resources.h"

namespace {

using win32::CallHost;

constexpr const char* kSource = "SASetConfigDlg";
constexpr DWORD kListStyle = LVS_EX_FULLROWSELECT | listtable::kExEditCells | listtable::kExMoveRows;
constexpr int kColumnWidth = 90;
constexpr LONG kBlankResolution = 200;
constexpr LONG kEditMode = 1;
constexpr uint32_t kNoWayOn = NAV_NO_PREV_PAGE | NAV_NO_NEXT_PAGE | NAV_NO_PREV_DOC | NAV_NO_NEXT_DOC;
constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kLightGrey = RGB(0xE0, 0xE0, 0xE0);

_COM_SMARTPTR_TYPEDEF(IImageLoader, __uuidof(IImageLoader));

// Moves a control up, or takes height off it.
void Shift(HWND dialog, HWND control, int up, int shrink) {
    RECT rect;
    GetWindowRect(control, &rect);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
    SetWindowPos(control, nullptr, rect.left, rect.top - up, rect.right - rect.left, rect.bottom - rect.top - shrink,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

CSASetConfigDlg::CSASetConfigDlg(CAreaSet* pAreaSet, const AreaColors& colors, std::vector<std::wstring> indexFields,
                                 CWnd* pParent)
    : CDialog(IDD_SET_CONFIG, pParent), m_pAreaSet(pAreaSet), m_colors(colors), m_indexFields(std::move(indexFields)) {}

std::span<const win32::MessageEntry> CSASetConfigDlg::GetMessageMap() const {
    static constexpr win32::MessageEntry kMap[] = {
        win32::OnNotify<&CSASetConfigDlg::OnListItemChanged>(IDC_CONFIG_LIST, LVN_ITEMCHANGED),
        win32::OnNotify<&CSASetConfigDlg::OnListKeyDown>(IDC_CONFIG_LIST, LVN_KEYDOWN),
        win32::OnNotify<&CSASetConfigDlg::OnCellEdited>(IDC_CONFIG_LIST, listtable::kCellEdited),
        win32::OnNotify<&CSASetConfigDlg::OnItemsMoved>(IDC_CONFIG_LIST, listtable::kItemsMoved),
        win32::OnClick<&CSASetConfigDlg::OnAdd>(IDC_CONFIG_ADD),
        win32::OnClick<&CSASetConfigDlg::OnRemove>(IDC_CONFIG_REMOVE),
        win32::OnClick<&CSASetConfigDlg::OnHelpButton>(IDHELP),
        win32::OnMessage<&CSASetConfigDlg::OnHelpInfo>(WM_HELP),
        win32::OnMessage<&CSASetConfigDlg::OnDestroy>(WM_DESTROY),
        win32::OnClick<&CSASetConfigDlg::OnPrevDoc>(IDC_CONFIG_PREV_DOC),
        win32::OnClick<&CSASetConfigDlg::OnNextDoc>(IDC_CONFIG_NEXT_DOC),
        win32::OnClick<&CSASetConfigDlg::OnPrevPage>(IDC_CONFIG_PREV_PAGE),
        win32::OnClick<&CSASetConfigDlg::OnNextPage>(IDC_CONFIG_NEXT_PAGE),
        win32::OnCommandRange<&CSASetConfigDlg::OnScale>(ID_SCALE_FIRST, ID_SCALE_LAST),
        win32::OnClick<&CSASetConfigDlg::OnSmoothImages>(ID_SMOOTH_IMAGES),
    };
    return kMap;
}

std::span<const win32::EventEntry> CSASetConfigDlg::GetEventMap() const {
    static constexpr win32::EventEntry kMap[] = {
        win32::OnEvent<&CSASetConfigDlg::OnRectAdded>(IDC_CONFIG_PAGE, kFoliumRectAdded),
        win32::OnEvent<&CSASetConfigDlg::OnRectDeleted>(IDC_CONFIG_PAGE, kFoliumRectDeleted),
        win32::OnEvent<&CSASetConfigDlg::OnRectChanged>(IDC_CONFIG_PAGE, kFoliumRectChanged),
        win32::OnEvent<&CSASetConfigDlg::OnRectSelected>(IDC_CONFIG_PAGE, kFoliumRectSelected),
        win32::OnPointerEvent<&CSASetConfigDlg::OnPointerMoved>(IDC_CONFIG_PAGE, kFoliumPointerMoved),
        win32::OnEvent<&CSASetConfigDlg::OnContextMenuRequested>(IDC_CONFIG_PAGE, kFoliumContextMenuRequested),
    };
    return kMap;
}

std::span<const win32::HostedControl> CSASetConfigDlg::GetHostedControls() const {
    static constexpr win32::HostedControl kControls[] = {
        {IDC_CONFIG_PAGE, &host::kClsidFolium, &host::kDiidFoliumEvents}};
    return kControls;
}

void CSASetConfigDlg::DoDataExchange(CDataExchange& exchange) {
    DDX_Control(exchange, IDC_CONFIG_PAGE, m_foliumCtrl);
    DDX_Control(exchange, IDC_CONFIG_LIST, m_list);
}

bool CSASetConfigDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    FitToMonitor();
    if (!m_pAreaSet->GetName().empty()) SetWindowText(GetWindowText() + L" - " + m_pAreaSet->GetName());
    InitializeListControl();
    if (!InitializePageControl()) return false;
    LoadViewSettings();
    if (IsIndexing()) {
        for (const UINT id : {IDC_CONFIG_IGNORED, IDC_CONFIG_REQUIRED, IDC_CONFIG_AREAS_ARE}) {
            ShowWindow(GetDlgItem(id), SW_HIDE);
        }
    }
    ShowUnits();
    m_pFolium->UpdateView();
    const bool ignored = (m_pAreaSet->GetFlags() & kAreasIgnored) != 0;
    CheckDlgButton(IDC_CONFIG_IGNORED, ignored);
    CheckDlgButton(IDC_CONFIG_REQUIRED, !ignored);
    ApplyColumnWidths();
    m_bOpened = true;
    return true;
}

// On a monitor too low for the dialog, the page frame and the list give up height, so that the buttons are in reach.
void CSASetConfigDlg::FitToMonitor() {
    const HWND dialog = GetSafeHwnd();
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    if (!GetMonitorInfoW(MonitorFromWindow(dialog, MONITOR_DEFAULTTONEAREST), &monitor)) return;
    const auto place = [](HWND control) {
        RECT rect = {};
        GetWindowRect(control, &rect);
        return rect;
    };
    const RECT window = place(dialog);
    const RECT frame = place(GetDlgItem(IDC_CONFIG_FRAME));
    const RECT list = place(GetDlgItem(IDC_CONFIG_LIST));
    const LONG excess = window.bottom - window.top - (monitor.rcWork.bottom - monitor.rcWork.top);
    if (excess <= 0) return;
    const LONG room = place(GetDlgItem(IDC_CONFIG_LIST_LABEL)).top - place(GetDlgItem(IDC_CONFIG_AREAS_ARE)).bottom;
    const auto [fromPage, fromList] =
        rectlist::GetHeightCuts(excess, room, frame.bottom - frame.top, list.bottom - list.top);

    for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        const int id = GetDlgCtrlID(child);
        const LONG top = place(child).top;
        if (id == IDC_CONFIG_FRAME || id == IDC_CONFIG_PAGE) {
            Shift(dialog, child, 0, fromPage);
        } else if (id == IDC_CONFIG_LIST) {
            Shift(dialog, child, fromPage, fromList);
        } else if (top >= frame.bottom) {
            Shift(dialog, child, top >= list.bottom ? fromPage + fromList : fromPage, 0);
        }
    }
    SetWindowPos(dialog, nullptr, window.left, window.top, window.right - window.left,
                 window.bottom - window.top - fromPage - fromList, SWP_NOZORDER | SWP_NOACTIVATE);
}

void CSASetConfigDlg::InitializeListControl() {
    m_list.SetExtendedStyle(kListStyle);
    const struct {
        UINT title;
        DWORD kind;
    } columns[] = {{IDS_X_OFFSET, listtable::kKindText},
                   {IDS_Y_OFFSET, listtable::kKindText},
                   {IDS_WIDTH, listtable::kKindText},
                   {IDS_HEIGHT, listtable::kKindText},
                   {IDS_INDEXING_FIELD, listtable::kKindChoice}};
    for (const auto& [title, kind] : columns) {
        if (title == IDS_INDEXING_FIELD && !IsIndexing()) break;
        std::wstring text = win32::LoadText(title);
        LVCOLUMNW column = {};
        column.mask = LVCF_TEXT | LVCF_WIDTH;
        column.cx = kColumnWidth;
        column.pszText = text.data();
        m_list.AddColumn(column, kind, 0, 0);
    }
    if (!IsIndexing()) return;
    CColumnInfo fields = m_list.GetColumnInfo(rectlist::kIndexingField);
    fields.AddChoice({});
    for (const auto& field : m_indexFields) fields.AddChoice(field);
}

bool CSASetConfigDlg::InitializePageControl() {
    m_pFolium = m_foliumCtrl.GetFolium();
    if (!m_pFolium) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__,
                         L"CSASetConfigDlg::InitializePageControl: QueryInterface to Folium failed.");
        return false;
    }
    const FoliumZoom zoom = {kFoliumZoomWholePage, 0};
    m_pFolium->SetZoom(&zoom);
    SetDisplayOptions();
    m_pFolium->SetMode(kEditMode);
    if (!ShowScannedPage()) ShowBlankPage();
    LoadRects();
    return true;
}

void CSASetConfigDlg::SetDisplayOptions() {
    FoliumDisplayOptions options = {};
    options.background = GetSysColor(COLOR_3DLIGHT);
    if (options.background == kWhite) options.background = kLightGrey;
    options.area1 = m_colors.first;
    options.area2 = m_colors.second;
    options.area3 = m_colors.third;
    m_pFolium->SetDisplayOptions(&options);
}

bool CSASetConfigDlg::ShowScannedPage() {
    ComSettingsNode node(GetApp().GetSettingsNode());
    if (!win32::ReadOr(kDefaultPageScanned, [&] { return node.GetBool(kKeyPageScanned); })) return false;
    uint32_t flags = kNoWayOn;
    IPageImagePtr page;
    if (!GetPage(flags, page)) return false;
    UpdateNavigationButtons(flags);
    SetPage(page);
    return true;
}

void CSASetConfigDlg::ShowBlankPage() {
    ComSettingsNode node(GetApp().GetSettingsNode());
    const auto read = [&](const wchar_t* key, int32_t fallback) {
        return win32::ReadOr(fallback, [&] { return node.GetInt64(key); });
    };
    const int32_t width = read(kKeyRealWidth, kDefaultRealWidth);
    const int32_t height = read(kKeyRealHeight, kDefaultRealHeight);
    // Without any page the dialog can be looked at and left, and OK changes nothing.
    IPageImagePtr page;
    try {
        IImageLoaderPtr loader;
        win32::CheckHost(CoCreateInstance(host::kClsidPageImage, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IImageLoader),
                                          reinterpret_cast<void**>(&loader)),
                         __uuidof(IImageLoader));
        CallHost(loader.GetInterfacePtr(), &IImageLoader::CreateBlank, LONG{width}, LONG{height}, kBlankResolution,
                 kBlankResolution, LONG{0});
        win32::CheckHost(loader->QueryInterface(host::kIidBlankPageImage, reinterpret_cast<void**>(&page)),
                         host::kIidBlankPageImage);
    } catch (const _com_error&) {
        win32::TraceFailure(std::current_exception(), kSource, __LINE__,
                            L"CSASetConfigDlg::InitializePageControl: blank page");
    }
    SetPage(page);
    UpdateNavigationButtons(kNoWayOn);
}

// The control fires RectAdded for each, which appends its row. An area without its row would be lost by OK, so that
// ends the opening.
void CSASetConfigDlg::LoadRects() {
    const win32::RedrawOff redrawOff(m_list);
    for (int32_t i = 0; i < m_pAreaSet->GetRectCount(); ++i) {
        const CAreaRect* area = m_pAreaSet->GetRect(i);
        const FoliumRect rect = ToFolium(area->GetRectangle());
        LONG id = 0;
        CallHost(m_pFolium.GetInterfacePtr(), &IFolium::InsertRect, &rect, &id);
        const int row = FindRow(id);
        if (row < 0) win32::ThrowHostError(E_UNEXPECTED, __uuidof(IFolium));
        if (!area->m_strIndexField.empty()) m_list.SetItemText(row, rectlist::kIndexingField, area->m_strIndexField);
    }
    if (m_list.GetItemCount() == 0) EnableRemove(false);
}

void CSASetConfigDlg::ShowUnits() {
    const std::wstring unit = win32::HostUnits().GetUnitName();
    for (const UINT id : {IDC_CONFIG_LIST_LABEL, IDC_CONFIG_SIZE_LABEL, IDC_CONFIG_POSITION_LABEL}) {
        SetDlgItemText(id, GetTextOfWindow(GetDlgItem(id)) + L" [" + unit + L"]:");
    }
}

LRESULT CSASetConfigDlg::OnHelpInfo(WPARAM, LPARAM) {
    OnHelp();
    return TRUE;
}

// Everything is read before anything is changed: a rectangle that cannot be had leaves the set as it was. So does one
// that goes while the control is asked, because the rows are taken before.
void CSASetConfigDlg::OnOK() {
    m_list.EndEdit(true);
    if (!m_pFolium || !m_pPage) {
        OnCancel();
        return;
    }
    std::vector<std::pair<LONG, std::wstring>> rows;
    for (int row = 0; row < m_list.GetItemCount(); ++row) {
        rows.emplace_back(static_cast<LONG>(m_list.GetItemData(row)),
                          IsIndexing() ? m_list.GetItemText(row, rectlist::kIndexingField) : std::wstring());
    }
    std::vector<PageRect> rects;
    std::map<std::wstring, PageRect> fieldRects;
    for (const auto& [id, field] : rows) {
        FoliumRect rect = {};
        CallHost(m_pFolium.GetInterfacePtr(), &IFolium::QueryRect, LONG{id}, &rect);
        fieldRects[field] = FromFolium(rect);
        rects.push_back(FromFolium(rect));
    }
    const SIZE size = GetPageSize();

    CAreaSet edited(m_pAreaSet->GetName(), m_pAreaSet->GetID());
    for (const auto& rect : rects) edited.AddRect(rect);
    edited.SetFlags(IsDlgButtonChecked(IDC_CONFIG_IGNORED) ? kAreasIgnored : 0);
    edited.SetDisplayRect({0, 0, size.cx, size.cy});
    *m_pAreaSet = edited;
    m_fieldRects.swap(fieldRects);
    CDialog::OnOK();
}
