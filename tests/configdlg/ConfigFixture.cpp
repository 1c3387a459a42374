#include "configdlg/ConfigFixture.h"

#include <commctrl.h>

#include <ostream>

#include "host/ListTable.h"
#include "refhost/documents/HostDocuments.h"
#include "refhost/support/HostSupport.h"
#include "refhost/units/HostUnits.h"
#include "win32/ControlHost.h"

std::ostream& operator<<(std::ostream& out, const RECT& rect) {
    return out << '(' << rect.left << ',' << rect.top << ',' << rect.right << ',' << rect.bottom << ')';
}

namespace test {

namespace {

// The module's own copy of the settings: the newest node that it made.
std::shared_ptr<FakeTree> g_working;

}  // namespace

HRESULT STDMETHODCALLTYPE TestConfigHost::QueryInterface(REFIID iid, void** object) {
    *object = nullptr;
    const auto result = iid == __uuidof(IConfigScope) ? instead() : std::nullopt;
    return result ? *result : Object::QueryInterface(iid, object);
}
HRESULT STDMETHODCALLTYPE TestConfigHost::GetQuire(IQuire** out) {
    calls += 'Q';
    *out = nullptr;
    if (const auto result = instead()) return *result;
    *out = win32::ComPtr<IQuire>(quire).Detach();
    return S_OK;
}
HRESULT STDMETHODCALLTYPE TestConfigHost::Begin() {
    calls += 'B';
    return instead().value_or(S_OK);
}
HRESULT STDMETHODCALLTYPE TestConfigHost::End() {
    calls += 'E';
    return instead().value_or(S_OK);
}

win32::ComPtr<IFolium> FoliumOf(HWND dialog) {
    win32::ComPtr<IFolium> folium;
    const auto control = win32::GetControlUnknown(GetDlgItem(dialog, IDC_CONFIG_PAGE));
    if (control != nullptr) control.GetInterfacePtr()->QueryInterface(&folium);
    return folium;
}
HWND ListOf(HWND dialog) {
    return GetDlgItem(dialog, IDC_CONFIG_LIST);
}
HWND PageOf(HWND dialog) {
    return FindWindowExW(GetDlgItem(dialog, IDC_CONFIG_PAGE), nullptr, L"FoliumPage", nullptr);
}
bool Enabled(HWND dialog, UINT id) {
    return IsWindowEnabled(GetDlgItem(dialog, static_cast<int>(id))) != FALSE;
}
bool Checked(HWND dialog, UINT id) {
    return IsDlgButtonChecked(dialog, static_cast<int>(id)) == BST_CHECKED;
}
std::wstring TitleOf(HWND dialog) {
    wchar_t title[64] = {};
    GetWindowTextW(dialog, title, 64);
    return title;
}
int ItemCount(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
}
std::wstring ItemText(HWND list, int item, int column) {
    std::wstring text(20000, L'\0');
    LVITEMW record = {};
    record.iSubItem = column;
    record.pszText = text.data();
    record.cchTextMax = static_cast<int>(text.size());
    text.resize(static_cast<size_t>(
        SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&record))));
    return text;
}
int SelectedItem(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}
void SelectItem(HWND list, int item) {
    LVITEMW record = {};
    record.state = record.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&record));
}
std::wstring RowText(HWND dialog, int row) {
    std::wstring text = CellText(dialog, row, 0);
    for (int column = 1; column < 5; ++column) {
        const std::wstring cell = CellText(dialog, row, column);
        if (!cell.empty()) text += L' ' + cell;
    }
    return text;
}
RECT RectOfRow(HWND dialog, int row) {
    LVITEMW item = {};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    SendMessageW(ListOf(dialog), LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    FoliumRect rect = {};
    const auto folium = FoliumOf(dialog);
    if (folium == nullptr || FAILED(folium->QueryRect(static_cast<LONG>(item.lParam), &rect))) return {-1, -1, -1, -1};
    return {rect.left, rect.top, rect.right, rect.bottom};
}
POINT OnPage(HWND dialog, int x, int y) {
    RECT rect = {};
    GetWindowRect(PageOf(dialog), &rect);
    return {rect.left + MulDiv(rect.right - rect.left, x, 1000), rect.top + MulDiv(rect.bottom - rect.top, y, 1000)};
}

static void StartEditing(HWND dialog, int row, int column) {
    SetFocus(ListOf(dialog));
    EXPECT_TRUE(SendMessageW(ListOf(dialog), listtable::kEditCell, static_cast<WPARAM>(row), column));
}
void EditCell(HWND dialog, int row, int column, const std::wstring& text) {
    StartEditing(dialog, row, column);
    Type(text);
    Key(VK_RETURN);
}
void ChooseField(HWND dialog, int row, WORD key) {
    StartEditing(dialog, row, 4);
    Key(key);
    Key(VK_RETURN);
}

// The first class of two with the same identifier is the one that is used.
struct ConfigDialog::Classes {
    FakeClass nodes{host::kClsidSettingsNode,
                    [] {
                        g_working = std::make_shared<FakeTree>();
                        return static_cast<IUnknown*>(MakeFakeNode(g_working));
                    },
                    Host().createSettingsNode};
    FakeSettingsClasses rest;
};

ConfigDialog::ConfigDialog() : m_host(new TestConfigHost) {
    Host() = {};
    m_classes = std::make_unique<Classes>();
    m_documents.reset(new com::ClassRegistration(L"HostDocuments.dll", {host::kClsidPageImage}));
    MakeUnits();
    m_folium.reset(new com::ClassRegistration(L"Folium.dll", {host::kClsidFolium}));
    m_module = std::make_unique<com::HostDll>(L"Zonwick.dll");
    m_init = m_module->Export<decltype(::SAInit)>("SAInit");
    m_configureSet = m_module->Export<decltype(::SAConfigureSet)>("SAConfigureSet");
    m_configurePage = m_module->Export<decltype(::ConfigurePage)>("ConfigurePage");
    HostSupportSetTraceObserver(
        [](const HostTrace* trace, void* self) {
            static_cast<ConfigDialog*>(self)->m_traces.push_back({trace->severity, trace->stringId, trace->text});
        },
        this);
    HostSupportSetBoxAnswerer(
        [](const HostBox* box, void* self) -> int {
            static_cast<ConfigDialog*>(self)->m_boxes.emplace_back(box->text != nullptr ? box->text : L"");
            return IDOK;
        },
        this);
}

ConfigDialog::~ConfigDialog() {
    HostSupportSetBoxAnswerer(nullptr, nullptr);
    HostSupportSetTraceObserver(nullptr, nullptr);
}

void ConfigDialog::SetUp() {
    SetCursorPos(0, 0);
    m_owner = CreateWindowExW(0, L"STATIC", L"owner", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    m_tree->booleans[L"RadioPageSource"] = false;
    m_tree->AddSet(L"0x00000005", L"Invoice", 0, kInvoiceAreas);
    m_tree->AddSet(L"0x00000009", L"Empty", 0, {});
    Init();
    TakeTraces();
}

// Everything that the module took from the host is back when it is gone.
void ConfigDialog::TearDown() {
    Host().Reset();
    ExpectNothingReported();
    m_init(nullptr);
    m_module.reset();
    EXPECT_EQ(GetModuleHandleW(L"Zonwick.dll"), nullptr);
    m_host->quire = nullptr;
    EXPECT_EQ(m_host->Release(), 0u);
    EXPECT_TRUE(m_documents == nullptr || m_documents->Idle());
    EXPECT_TRUE(m_units == nullptr || m_units->Idle());
    EXPECT_TRUE(m_folium == nullptr || m_folium->Idle());
    m_classes.reset();
    EXPECT_EQ(Host().liveObjects, 0);
    g_working = nullptr;
    DestroyWindow(m_owner);
}

void ConfigDialog::Init() {
    const win32::ComPtr<ISettingsNode> node(MakeFakeNode(m_tree), false);
    m_init(node);
}

void ConfigDialog::MakeUnits() {
    m_units.reset(new com::ClassRegistration(L"HostUnits.dll", {host::kClsidMeasureUnits}));
    UseSystem(1);
}
void ConfigDialog::UseSystem(LONG system) {
    m_units->Dll().Export<decltype(HostSetMeasureSystem)>("HostSetMeasureSystem")(system);
}

void ConfigDialog::UsePages(const std::vector<std::wstring>& files) {
    std::vector<const wchar_t*> names;
    for (const auto& file : files) names.push_back(file.c_str());
    const auto open = m_documents->Dll().Export<decltype(HostOpenDocuments)>("HostOpenDocuments");
    m_host->quire = nullptr;
    ASSERT_EQ(open(names.data(), static_cast<UINT>(names.size()), &m_host->quire), S_OK);
}

BOOL ConfigDialog::OpenPage(std::vector<SAIndexField>& fields, const wchar_t* name, int document, int page) {
    return m_configurePage(m_owner, name, fields.data(), static_cast<int>(fields.size()), m_host, document, page);
}
BOOL ConfigDialog::PlayPage(std::vector<SAIndexField>& fields, const Script& script, const wchar_t* name) {
    BOOL result = FALSE;
    PlayScript(script, [&] { result = OpenPage(fields, name); });
    return result;
}
void ConfigDialog::KeepPages() {
    if (m_host->quire == nullptr) UsePages({});
    std::vector<SAIndexField> none;
    EXPECT_TRUE(PlayPage(none, PressCancel));
    ExpectNothingReported();
}
BOOL ConfigDialog::PlaySet(DWORD id, Steps steps) {
    BOOL result = FALSE;
    PlayDialog(std::move(steps), [&] { result = m_configureSet(m_owner, id); });
    return result;
}
std::vector<RECT> ConfigDialog::StoredRects(DWORD id) {
    SAAreaInfo info = {};
    if (!m_module->Export<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(id, &info)) return {};
    std::vector<RECT> rects(info.nAreas);
    EXPECT_TRUE(m_module->Export<decltype(::SAGetAreaRects)>("SAGetAreaRects")(id, rects.data()));
    return rects;
}
FakeTree& ConfigDialog::WorkingRoot() {
    return *g_working;
}
FakeTree& ConfigDialog::WorkingSet(const wchar_t* key) {
    return *g_working->Child(key);
}

std::wstring ConfigDialog::TakeTraceTexts() {
    std::wstring texts;
    for (const Trace& trace : TakeTraces()) {
        if (trace.text == L"CAreaSetManager::GetAreaSet: wrong dwID was specified.") continue;
        texts += std::to_wstring(trace.severity) + L" ";
        texts += trace.stringId != 0 ? L"#" + std::to_wstring(trace.stringId) : trace.text;
        texts += L"\n";
    }
    return texts;
}
void ConfigDialog::ExpectBox(const std::wstring& text) {
    const auto boxes = TakeHostBoxes();
    EXPECT_TRUE(boxes.size() == 1 && boxes[0].find(text) != std::wstring::npos)
        << boxes.size() << " boxes, not one with " << testing::PrintToString(text) << ": "
        << testing::PrintToString(boxes);
}
void ConfigDialog::ExpectNothingReported() {
    EXPECT_EQ(TakeTraceTexts(), L"");
    EXPECT_EQ(TakeHostBoxes(), std::vector<std::wstring>());
}

}  // namespace test
