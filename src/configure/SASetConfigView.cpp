// "Configure Area Set": pages and documents, the pointer's position, zoom and smoothing, and what is remembered of the
// view.
#include "configure/ConfigSupport.h"
#include "configure/SASetConfigDlg.h"
#include "resource.h"
#include "trace/Trace.h"
#include "win32/Failure.h"
#include "win32/Resources.h"

namespace {

using win32::CallHost;

constexpr const char* kSource = "SASetConfigDlg";
constexpr const wchar_t* kKeySmooth = L"LastGrey";
constexpr const wchar_t* kKeyScale = L"LastScale";
constexpr DWORD kRelativeWidths = 1;

// Column widths, by mode.
struct WidthsSetting {
    const wchar_t* key;
    const wchar_t* fallback;
};
WidthsSetting GetWidthsSetting(bool indexing) {
    if (indexing) return {L"ColumnsWidthWithIndexing", L"[%]200,200,200,200,200"};
    return {L"ColumnsWidth", L"[%]250,250,250,250"};
}

class Menu {
public:
    explicit Menu(UINT id) : m_menu(LoadMenuW(win32::FindResourceInstance(RT_MENU, id), MAKEINTRESOURCEW(id))) {}
    ~Menu() {
        if (m_menu != nullptr) DestroyMenu(m_menu);
    }
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;
    HMENU GetPopup() const { return GetSubMenu(m_menu, 0); }

private:
    HMENU m_menu;
};

void CentreWindow(HWND window) {
    const HWND owner = GetWindow(window, GW_OWNER);
    RECT rect;
    RECT around;
    GetWindowRect(window, &rect);
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    if (!GetMonitorInfoW(MonitorFromWindow(owner != nullptr ? owner : window, MONITOR_DEFAULTTONEAREST), &monitor))
        return;
    around = monitor.rcWork;
    if (owner != nullptr && IsWindowVisible(owner) && !IsIconic(owner)) GetWindowRect(owner, &around);
    const LONG width = rect.right - rect.left;
    const LONG height = rect.bottom - rect.top;
    // Within the monitor, with the upper left corner in sight.
    const auto place = [](LONG middle, LONG extent, LONG low, LONG high) {
        return std::max(low, std::min(middle - extent / 2, high - extent));
    };
    const RECT& work = monitor.rcWork;
    SetWindowPos(window, nullptr, place((around.left + around.right) / 2, width, work.left, work.right),
                 place((around.top + around.bottom) / 2, height, work.top, work.bottom), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

// A page that cannot be had because a host call failed counts as no page. A host need not have a document stack.
bool CSASetConfigDlg::GetPage(uint32_t& flags, IPageImagePtr& page) {
    if (!GetApp().GetQuire()) return false;
    try {
        return GetApp().GetPage(m_nDoc, m_nPage, page, flags);
    } catch (const _com_error&) {
        win32::TraceFailure(std::current_exception(), kSource, __LINE__, L"CSASetConfigDlg::GetPage");
        return false;
    }
}

SIZE CSASetConfigDlg::GetPageSize() const {
    SIZE size = {};
    CallHost(m_pPage.GetInterfacePtr(), &IPageImage::GetSize, &size);
    return size;
}

void CSASetConfigDlg::SetPage(const IPageImagePtr& page) {
    if (!page) return;
    LONGLONG unused = 0;
    m_pFolium->ShowPage(page, &unused);
    m_pPage = page;
    const SIZE size = GetPageSize();
    const win32::HostUnits units;
    SetDlgItemText(IDC_CONFIG_SIZE, units.FormatValue(size.cx) + L", " + units.FormatValue(size.cy));
    SetDlgItemText(IDC_CONFIG_POSITION, L"0, 0");
    m_foliumCtrl.RedrawNow();
}

void CSASetConfigDlg::UpdateNavigationButtons(uint32_t flags) {
    bool disabled = false;
    for (const auto& [flag, button] : rectlist::kNavigationButtons) {
        EnableDlgItem(button, (flags & flag) == 0);
        disabled |= (flags & flag) != 0;
    }
    if (disabled) SetFocus();
}

void CSASetConfigDlg::Navigate(int32_t& position, int32_t step, const wchar_t* failure) {
    position += step;
    uint32_t flags = 0;
    IPageImagePtr page;
    if (!GetPage(flags, page)) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__, failure);
        return;
    }
    SetPage(page);
    UpdateNavigationButtons(flags);
}

void CSASetConfigDlg::OnNextDoc() {
    Navigate(m_nDoc, 1, L"CSASetConfigDlg::OnNextDoc: page from Quire was not obtained.");
}

void CSASetConfigDlg::OnPrevDoc() {
    Navigate(m_nDoc, -1, L"CSASetConfigDlg::OnPrevDoc: page from Quire was not obtained.");
}

void CSASetConfigDlg::OnNextPage() {
    Navigate(m_nPage, 1, L"CSASetConfigDlg::OnNextPage: page from Quire was not obtained.");
}

void CSASetConfigDlg::OnPrevPage() {
    Navigate(m_nPage, -1, L"CSASetConfigDlg::OnPrevPage: page from Quire was not obtained.");
}

void CSASetConfigDlg::OnPointerMoved(LONG x, LONG y) {
    POINT offset = {};
    m_pFolium->GetPositionOffset(&offset);
    const win32::HostUnits units;
    SetDlgItemText(IDC_CONFIG_POSITION, units.FormatValue(x + offset.x) + L", " + units.FormatValue(y + offset.y));
}

void CSASetConfigDlg::OnContextMenuRequested(LONG, LONG x, LONG y) {
    POINT point = {x, y};
    ClientToScreen(m_foliumCtrl.GetSafeHwnd(), &point);
    const Menu menu(IDR_CONFIG_MENU);
    const HMENU popup = menu.GetPopup();
    CheckMenuItem(popup, ID_SMOOTH_IMAGES, MF_BYCOMMAND | (m_bSmooth ? MF_CHECKED : MF_UNCHECKED));
    CheckMenuItem(popup, m_nScaleCmd, MF_BYCOMMAND | MF_CHECKED);
    TrackPopupMenu(popup, TPM_LEFTALIGN, point.x, point.y, 0, GetSafeHwnd(), nullptr);
}

void CSASetConfigDlg::OnScale(UINT command) {
    const auto setting = rectlist::GetZoom(command);
    if (!setting || !m_pFolium) return;
    m_nScaleCmd = command;
    const FoliumZoom zoom = {static_cast<int32_t>(setting->mode), setting->percent};
    m_pFolium->SetZoom(&zoom);
    m_foliumCtrl.RedrawNow();
}

void CSASetConfigDlg::OnSmoothImages() {
    if (!m_pFolium) return;
    m_bSmooth = !m_bSmooth;
    FoliumDisplayOptions options = {};
    m_pFolium->GetDisplayOptions(&options);
    options.smooth = m_bSmooth ? 1 : 0;
    m_pFolium->SetDisplayOptions(&options);
    m_foliumCtrl.RedrawNow();
}

bool CSASetConfigDlg::LoadViewSettings() {
    ComSettingsNode node(GetApp().GetSettingsNode());
    CentreWindow(GetSafeHwnd());

    m_bSmooth = !win32::ReadOr(true, [&] { return node.GetBool(kKeySmooth); });
    SendMessage(WM_COMMAND, ID_SMOOTH_IMAGES);

    const auto scale = win32::ReadOr(int64_t{rectlist::kWholePageCommand}, [&] { return node.GetInt64(kKeyScale); });
    SendMessage(WM_COMMAND, rectlist::GetStartScaleCommand(scale));

    const WidthsSetting widths = GetWidthsSetting(IsIndexing());
    m_strColumnWidths = win32::ReadOr(std::wstring(widths.fallback), [&] { return node.GetString(widths.key); });
    return true;
}

// Remembered widths that the list cannot read are as good as none.
void CSASetConfigDlg::ApplyColumnWidths() {
    if (m_strColumnWidths.empty() || m_list.SetColumnWidths(m_strColumnWidths)) return;
    m_list.SetColumnWidths(GetWidthsSetting(IsIndexing()).fallback);
}

void CSASetConfigDlg::SaveViewSettings() {
    ComSettingsNode node(GetApp().GetSettingsNode());
    node.SetBool(kKeySmooth, m_bSmooth);
    node.SetInt64(kKeyScale, m_nScaleCmd);
    node.SetString(GetWidthsSetting(IsIndexing()).key, m_list.GetColumnWidths(kRelativeWidths));
}

// What cannot be remembered is no reason to lose the dialog's result. A dialog that did not come to show what is
// remembered has nothing to put in its place.
LRESULT CSASetConfigDlg::OnDestroy(WPARAM, LPARAM) {
    try {
        if (m_bOpened) SaveViewSettings();
    } catch (...) {
        win32::TraceFailure(std::current_exception(), kSource, __LINE__, L"CSASetConfigDlg::SaveViewSettings");
    }
    return 0;
}
