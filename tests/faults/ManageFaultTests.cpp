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
        Export<decltype(::SAMapIndex2ID)>("SAMapIndex2ID")(index, &id);
        return id;
    }
    // The rows of the list are the sets of the manager.
    void ExpectListIsTrue(HWND dialog) {
        std::wstring names;
        for (int i = 0; IdOf(i) != 0; ++i) {
            SAAreaInfo info = {};
            Export<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(IdOf(i), &info);
            names += std::wstring(info.szName) + L"|";
        }
        EXPECT_EQ(SetNames(dialog), names);
        EXPECT_EQ(StoredRects(1), kInvoice);
    }
    void Rename(HWND dialog, int item, const wchar_t* name) {
        SetFocus(SetsOf(dialog));
        SendMessageW(SetsOf(dialog), LVM_EDITLABELW, static_cast<WPARAM>(item), 0);
        if (LabelEdit(dialog) == nullptr) return;
        SetWindowTextW(LabelEdit(dialog), name);
        SetFocus(GetDlgItem(dialog, IDOK));
    }
    // The three sets that were there, the given one selected.
    void Restore(HWND dialog, int selected) {
        const HWND list = SetsOf(dialog);
        for (int i = 0; SetCount(dialog) > 3 && i < 20; ++i) {
            SelectSet(dialog, SetCount(dialog) - 1);
            Send(dialog, IDC_MANAGE_REMOVE);
        }
        for (int i = 0; SetCount(dialog) < 3 && i < 20; ++i) Send(dialog, IDC_MANAGE_CREATE);
        SendMessageW(list, LVM_CANCELEDITLABEL, 0, 0);
        if (SetName(dialog, 2) != L"Blank") Rename(dialog, 2, L"Blank");
        Push(dialog, IDC_MANAGE_PAGE_SIZE);
        SelectSet(dialog, (selected + 1) % 3);
        SelectSet(dialog, selected);
        EXPECT_EQ(SetNames(dialog), L"Invoice|Letter|Blank|");
    }
    Command Make(const char* name, HWND dialog, const std::function<void()>& run, const std::function<bool()>& done,
                 int selected = 0) {
        return {name, run, [=, this] { Restore(dialog, selected); }, done,
                [=, this] {
                    SendMessageW(SetsOf(dialog), LVM_CANCELEDITLABEL, 0, 0);
                    ExpectListIsTrue(dialog);
                }};
    }
    // A command that opens another dialog, in which `button` is pressed. Done when that closed it.
    Command Opening(const char* name, HWND dialog, UINT button, const std::function<void()>& run) {
        const auto open = [=, this] {
            Press(button, [=] {
                run();
                return TRUE;
            });
        };
        Command command = Make(name, dialog, open, [this] { return m_flight == Flight::kClosed; });
        command.told.insert(command.told.end(), {L"2 #34108\n", L"2 #34106\n"});
        command.dialog = true;
        return command;
    }
    void RunListCommands(HWND dialog);
    void RunOpeningCommands(HWND dialog);

    const std::vector<RECT> kInvoice = {{0, 0, 1050, 1485}, {1050, 1485, 2100, 2970}};
    int m_helped = 0;
};

void ManageFaults::RunListCommands(HWND dialog) {
    const auto count = [=](int sets) { return [=] { return SetCount(dialog) == sets; }; };
    Command command = Make(
        "Manage: Create", dialog, [=] { Send(dialog, IDC_MANAGE_CREATE); }, count(4));
    command.told.push_back(L"CAreaSetManager::AddSet: Out of memory.");
    RunCommand(dialog, command, kDialogKinds);
    command = Make(
        "Manage: Copy", dialog, [=] { Send(dialog, IDC_MANAGE_COPY); },
        [=, this] { return SetCount(dialog) == 4 && StoredRects(IdOf(3)) == kInvoice; });
    command.told.push_back(L"CAreaSetManager::AddSet: Out of memory.");
    RunCommand(dialog, command, kDialogKinds);
    RunCommand(dialog,
               Make(
                   "Manage: Remove", dialog, [=] { Send(dialog, IDC_MANAGE_REMOVE); }, count(2), 2),
               kDialogKinds);
    RunCommand(dialog,
               Make(
                   "Manage: Scanned", dialog, [=] { Push(dialog, IDC_MANAGE_SCANNED); },
                   [=] { return Checked(dialog, IDC_MANAGE_SCANNED) && !Enabled(dialog, IDC_MANAGE_SETTINGS); }),
               kDialogKinds);
    RunCommand(dialog,
               Make(
                   "Manage: Page size", dialog, [=] { Push(dialog, IDC_MANAGE_PAGE_SIZE); },
                   [=] { return Checked(dialog, IDC_MANAGE_PAGE_SIZE) && Enabled(dialog, IDC_MANAGE_SETTINGS); }),
               kDialogKinds);
    command = Make(
        "Manage: Select", dialog,
        [=] {
            SelectSet(dialog, 1);
            UpdateWindow(dialog);
        },
        [=] { return SelectedSet(dialog) == 1 && TextOf(dialog, IDC_MANAGE_SIZE) == L"297.0 x 210.0 mm"; });
    command.notice = true;
    RunCommand(dialog, command, kDialogKinds);
    command = Make(
        "Manage: Rename", dialog, [=, this] { Rename(dialog, 2, L"A name that is longer than a short one"); },
        [=] { return SetName(dialog, 2) == L"A name that is longer than a short one"; }, 2);
    command.notice = true;
    RunCommand(dialog, command, kDialogKinds);
    RunCommand(dialog,
               Make(
                   "Manage: Help", dialog,
                   [=, this] {
                       m_helped = 0;
                       Send(dialog, IDHELP);
                   },
                   [this] { return m_helped == 1; }),
               kDialogKinds);
}

void ManageFaults::RunOpeningCommands(HWND dialog) {
    const auto send = [=](UINT id) { return [=] { Send(dialog, id); }; };
    RunCommand(dialog, Opening("Manage: Settings, OK", dialog, IDOK, send(IDC_MANAGE_SETTINGS)), kDialogKinds);
    RunCommand(dialog, Opening("Manage: Settings, Cancel", dialog, IDCANCEL, send(IDC_MANAGE_SETTINGS)), kFewKinds);
    RunCommand(dialog, Opening("Manage: Configure, OK", dialog, IDOK, send(IDC_MANAGE_CONFIGURE)), kFewKinds);
    RunCommand(dialog, Opening("Manage: Configure, Cancel", dialog, IDCANCEL, send(IDC_MANAGE_CONFIGURE)),
               kDialogKinds);
    Command command = Opening("Manage: Double click", dialog, IDCANCEL, [=] {
        NMITEMACTIVATE record = {};
        record.hdr = {SetsOf(dialog), IDC_MANAGE_LIST, static_cast<UINT>(NM_DBLCLK)};
        SendMessageW(dialog, WM_NOTIFY, IDC_MANAGE_LIST, reinterpret_cast<LPARAM>(&record));
    });
    command.notice = true;
    RunCommand(dialog, command, kFewKinds);
}

TEST_F(ManageFaults, CommandsOfTheList) {
    EXPECT_NE(Pilot([this](HWND dialog) { RunListCommands(dialog); }, [this] { EndFaults(); }, [this] { Open(); }),
              Flight::kNone);
}

TEST_F(ManageFaults, CommandsThatOpenDialogs) {
    EXPECT_NE(Pilot([this](HWND dialog) { RunOpeningCommands(dialog); }, [this] { EndFaults(); }, [this] { Open(); }),
              Flight::kNone);
}

}  // namespace
