// Each command of "Manage Area Sets" with a fault at every chance.
#include "faults/DialogFaults.h"
#include "refhost/controls/HostControls.h"

namespace {

using namespace test;

class ManageFaults : public DialogFaults {
protected:
    void SetUp() override {
        DialogFaults::SetUp();
        SetHelpOpener([](const HostHelpRequest*, void* self) -> BOOL {
            ++static_cast<ManageFaults*>(self)->m_helped;
            return TRUE;
        });
    }
    void TearDown() override {
        SetHelpOpener(nullptr);
        DialogFaults::TearDown();
    }
    void SetHelpOpener(HostHelpOpener opener) {
        const com::HostDll controls(L"HostControls.dll");
        controls.Export<decltype(::HostControlsSetHelpOpener)>("HostControlsSetHelpOpener")(opener, this);
    }
    static DWORD IdOf(int index) {
        DWORD id = 0;
        ModuleExport<decltype(::SAMapIndex2ID)>("SAMapIndex2ID")(index, &id);
        return id;
    }
    // The rows of the list are the sets of the manager.
    void Check() override {
        SendMessageW(SetsOf(m_dialog), LVM_CANCELEDITLABEL, 0, 0);
        std::wstring names;
        for (int i = 0; IdOf(i) != 0; ++i) {
            SAAreaInfo info = {};
            ModuleExport<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(IdOf(i), &info);
            names += std::wstring(info.szName) + L"|";
        }
        EXPECT_EQ(SetNames(m_dialog), names);
        EXPECT_EQ(StoredRects(1), kInvoice);
    }
    void Rename(int item, const wchar_t* name) {
        SetFocus(SetsOf(m_dialog));
        SendMessageW(SetsOf(m_dialog), LVM_EDITLABELW, static_cast<WPARAM>(item), 0);
        if (LabelEdit(m_dialog) == nullptr) return;
        SetWindowTextW(LabelEdit(m_dialog), name);
        SetFocus(GetDlgItem(m_dialog, IDOK));
    }
    // The three sets that were there.
    void Restore(int selected) override {
        for (int i = 0; SetCount(m_dialog) > 3 && i < 20; ++i) {
            SelectSet(m_dialog, SetCount(m_dialog) - 1);
            Send(m_dialog, IDC_MANAGE_REMOVE);
        }
        for (int i = 0; SetCount(m_dialog) < 3 && i < 20; ++i) Send(m_dialog, IDC_MANAGE_CREATE);
        SendMessageW(SetsOf(m_dialog), LVM_CANCELEDITLABEL, 0, 0);
        if (SetName(m_dialog, 2) != L"Blank") Rename(2, L"Blank");
        Push(m_dialog, IDC_MANAGE_PAGE_SIZE);
        SelectSet(m_dialog, (selected + 1) % 3);
        SelectSet(m_dialog, selected);
        EXPECT_EQ(SetNames(m_dialog), L"Invoice|Letter|Blank|");
    }

    const std::vector<RECT> kInvoice = {{0, 0, 1050, 1485}, {1050, 1485, 2100, 2970}};
    int m_helped = 0;
};

TEST_F(ManageFaults, Commands) {
    static constexpr const wchar_t* kNotAdded = L"CAreaSetManager::AddSet: Out of memory.";
    static constexpr const wchar_t* kName = L"A name that is longer than a short one";
    const auto commands = [this](HWND dialog) -> std::vector<Command> {
        const auto send = [=](UINT id) { return [=] { Send(dialog, id); }; };
        const auto push = [=](UINT id) { return [=] { Push(dialog, id); }; };
        const auto count = [=](int sets) { return [=] { return SetCount(dialog) == sets; }; };
        const auto select = [=] {
            SelectSet(dialog, 1);
            UpdateWindow(dialog);
        };
        const auto help = [=, this] {
            m_helped = 0;
            Send(dialog, IDHELP);
        };
        const auto doubleClick = [=] {
            NMITEMACTIVATE record = {};
            record.hdr = {SetsOf(dialog), IDC_MANAGE_LIST, static_cast<UINT>(NM_DBLCLK)};
            SendMessageW(dialog, WM_NOTIFY, IDC_MANAGE_LIST, reinterpret_cast<LPARAM>(&record));
        };
        const auto source = [=](UINT checked, bool sized) {
            return [=] { return Checked(dialog, checked) && Enabled(dialog, IDC_MANAGE_SETTINGS) == sized; };
        };
        const auto selected = [=] {
            return SelectedSet(dialog) == 1 && TextOf(dialog, IDC_MANAGE_SIZE) == L"297.0 x 210.0 mm";
        };
        return {
            {.name = "Create", .run = send(IDC_MANAGE_CREATE), .done = count(4), .told = kNotAdded},
            {.name = "Copy",
             .run = send(IDC_MANAGE_COPY),
             .done = [=, this] { return SetCount(dialog) == 4 && StoredRects(IdOf(3)) == kInvoice; },
             .told = kNotAdded},
            {.name = "Remove", .run = send(IDC_MANAGE_REMOVE), .done = count(2), .selected = 2},
            {.name = "Scanned", .run = push(IDC_MANAGE_SCANNED), .done = source(IDC_MANAGE_SCANNED, false)},
            {.name = "Page size", .run = push(IDC_MANAGE_PAGE_SIZE), .done = source(IDC_MANAGE_PAGE_SIZE, true)},
            {.name = "Select", .run = select, .done = selected, .notice = true},
            {.name = "Rename",
             .run = [this] { Rename(2, kName); },
             .done = [=] { return SetName(dialog, 2) == kName; },
             .selected = 2,
             .notice = true},
            {.name = "Help", .run = help, .done = [this] { return m_helped == 1; }},
            {.name = "Settings, OK", .run = send(IDC_MANAGE_SETTINGS), .button = IDOK},
            {.name = "Settings, Cancel", .run = send(IDC_MANAGE_SETTINGS), .button = IDCANCEL, .kinds = kFewKinds},
            {.name = "Configure, OK", .run = send(IDC_MANAGE_CONFIGURE), .button = IDOK, .kinds = kFewKinds},
            {.name = "Configure, Cancel", .run = send(IDC_MANAGE_CONFIGURE), .button = IDCANCEL},
            {.name = "Double click", .run = doubleClick, .button = IDCANCEL, .notice = true, .kinds = kFewKinds},
        };
    };
    RunCommands(
        "Manage: ", [this] { Open(); }, commands);
}

}  // namespace
