#include "dialogs/ManageFixture.h"

namespace test {

HWND SetsOf(HWND dialog) {
    return GetDlgItem(dialog, IDC_MANAGE_LIST);
}
std::wstring SetNames(HWND dialog) {
    std::wstring names;
    for (int item = 0; item < SetCount(dialog); ++item) names += SetName(dialog, item) + L"|";
    return names;
}
HWND LabelEdit(HWND dialog) {
    return reinterpret_cast<HWND>(SendMessageW(SetsOf(dialog), LVM_GETEDITCONTROL, 0, 0));
}
void Post(HWND dialog, UINT id) {
    PostMessageW(dialog, WM_COMMAND, id, reinterpret_cast<LPARAM>(GetDlgItem(dialog, static_cast<int>(id))));
}
char PreviewAt(HWND dialog, int x, int y) {
    const HWND preview = GetDlgItem(dialog, IDC_MANAGE_PREVIEW);
    RECT client = {};
    GetClientRect(preview, &client);
    const HDC dc = GetDC(preview);
    const COLORREF color = GetPixel(dc, MulDiv(client.right, x, 1000), MulDiv(client.bottom, y, 1000));
    ReleaseDC(preview, dc);
    if (color == GetSysColor(COLOR_BTNFACE)) return 'f';
    if (color == GetSysColor(COLOR_WINDOW)) return 'w';
    return color == GetSysColor(COLOR_HIGHLIGHT) ? 'h' : '?';
}

void ManageDialog::SetUp() {
    ConfigDialog::SetUp();
    *m_tree = {};
    AddSet(1, L"Invoice", 0, {0, 0, 2100, 2970}, {{0, 0, 1050, 1485}, {1050, 1485, 2100, 2970}});
    AddSet(2, L"Letter", SA_AREAS_IGNORED, {0, 0, 2970, 2100}, {{0, 0, 1485, 2100}});
    AddSet(3, L"Blank", 0, {0, 0, 1000, 500}, {});
    Init();
    TakeTraces();
    UsePages({});
    m_configure = m_module->Export<decltype(::SAConfigure)>("SAConfigure");
}

void ManageDialog::AddSet(unsigned id, const wchar_t* name, int64_t flags, const RECT& display,
                          const std::vector<RECT>& rects) {
    wchar_t key[16];
    swprintf(key, 16, L"%#010x", id);
    m_tree->AddSet(key, name, flags, rects);
    m_tree->Child(key)->Child(L"DisplayRect")->integers = {{L"Position:left", display.left},
                                                           {L"Position:top", display.top},
                                                           {L"Position:right", display.right},
                                                           {L"Position:bottom", display.bottom}};
}

BOOL ManageDialog::Play(Steps steps) {
    BOOL result = FALSE;
    PlayDialog(std::move(steps), [&] { result = Open(); });
    return result;
}

std::wstring ManageDialog::HostSets() const {
    std::wstring text;
    for (const auto& [key, set] : m_tree->children) {
        text += std::to_wstring(wcstoul(key.c_str(), nullptr, 16)) + L":" + set->strings[L"Name"] + L" ";
    }
    return text;
}

}  // namespace test
