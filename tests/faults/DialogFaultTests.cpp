// Every dialog and each of its commands, over real windows, with a fault at every chance.
#include "faults/DialogPilot.h"
#include "faults/FaultLoop.h"

namespace {

using namespace test;

constexpr std::initializer_list<Fault> kKinds = {
    Fault::kSettings, Fault::kSettingsNull,  Fault::kPart,       Fault::kObject, Fault::kMemory, Fault::kString,
    Fault::kCodec,    Fault::kLockAbandoned, Fault::kLockFailed, Fault::kWindow, Fault::kDrawing};

class DialogFaults : public FaultLoop {
protected:
    // Opens a dialog by `open` and presses a button in it; one that stays is cancelled without faults.
    template <class Open>
    BOOL Press(UINT button, Open open) {
        BOOL result = FALSE;
        Pilot([button](HWND dialog) { SendMessageW(dialog, WM_COMMAND, button, 0); }, [this] { EndFaults(); },
              [&] { result = open(); });
        return result;
    }
    void Command(HWND dialog, UINT id) {
        SendMessageW(dialog, WM_COMMAND, id, reinterpret_cast<LPARAM>(GetDlgItem(dialog, static_cast<int>(id))));
    }
    // A command that may open a dialog, in which `button` is pressed.
    void CommandAnd(HWND dialog, UINT id, UINT button) {
        Pilot([button](HWND above) { SendMessageW(above, WM_COMMAND, button, 0); }, [this] { EndFaults(); },
              [&] { Command(dialog, id); });
    }
    // The rows of the list are the sets of the manager.
    void ExpectListIsTrue(HWND dialog) {
        std::wstring names;
        DWORD id = 0;
        for (int i = 0; Export<decltype(::SAMapIndex2ID)>("SAMapIndex2ID")(i, &id); ++i) {
            SAAreaInfo info = {};
            Export<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(id, &info);
            names += std::wstring(info.szName) + L"|";
        }
        EXPECT_EQ(SetNames(dialog), names);
    }
    void EndLabel(HWND dialog) { SendMessageW(SetsOf(dialog), LVM_CANCELEDITLABEL, 0, 0); }
    void ThreeSets(HWND dialog) {
        EndLabel(dialog);
        ExpectListIsTrue(dialog);
        for (int i = 0; SetCount(dialog) > 3 && i < 20; ++i) {
            SelectSet(dialog, SetCount(dialog) - 1);
            Command(dialog, IDC_MANAGE_REMOVE);
        }
        for (int i = 0; SetCount(dialog) < 3 && i < 20; ++i) {
            Command(dialog, IDC_MANAGE_CREATE);
            EndLabel(dialog);
        }
        SelectSet(dialog, 0);
    }
};

TEST_F(DialogFaults, ManageAreaSets) {
    for (const UINT button : {IDOK, IDCANCEL}) {
        Run({button == IDOK ? "SAConfigure, OK" : "SAConfigure, Cancel",
             [&] { return Press(button, [this] { return Open(); }) != FALSE; },
             [] {},
             {L"2 #34108\n", L"2 #34106\n"},
             true,
             true},
            kKinds);
    }
}

TEST_F(DialogFaults, ConfigureAreaSet) {
    Press(IDCANCEL, [this] { return Open(); });
    Run({"SAConfigureSet, OK",
         [&] { return Press(IDOK, [this] { return m_configureSet(m_owner, 1); }) != FALSE; },
         [] {},
         {L"2 #34108\n"},
         true,
         true},
        kKinds);
}

// The fields keep their places when it fails; the one that has none gets none.
TEST_F(DialogFaults, ConfigurePage) {
    std::vector<SAIndexField> fields;
    const auto call = [&] {
        fields = {Field(L"The total of the invoice", {100, 200, 300, 400}), Field(L"Date")};
        const bool shown = Press(IDOK, [&] { return OpenPage(fields); }) != FALSE;
        EXPECT_EQ(PlaceOf(fields[0]), (RECT{100, 200, 300, 400}));
        EXPECT_EQ(PlaceOf(fields[1]), RECT{});
        return shown;
    };
    Run({"ConfigurePage, OK", call, [] {}, {L"2 #34108\n"}, true, true},
        {Fault::kSettings, Fault::kSettingsNull, Fault::kPart, Fault::kObject, Fault::kMemory, Fault::kString,
         Fault::kCodec, Fault::kWindow, Fault::kDrawing});
}

TEST_F(DialogFaults, CommandsOfManageAreaSets) {
    Pilot(
        [&](HWND dialog) {
            const auto restore = [&, dialog] { ThreeSets(dialog); };
            const struct {
                const char* name;
                UINT id;
            } simple[] = {{"Manage: Create", IDC_MANAGE_CREATE},
                          {"Manage: Copy", IDC_MANAGE_COPY},
                          {"Manage: Remove", IDC_MANAGE_REMOVE},
                          {"Manage: Scanned", IDC_MANAGE_SCANNED},
                          {"Manage: Page size", IDC_MANAGE_PAGE_SIZE}};
            for (const auto& [name, id] : simple)
                RunCommand(
                    name, dialog, [&, id = id] { Command(dialog, id); }, restore, kKinds);
            RunCommand(
                "Manage: Select", dialog,
                [&] {
                    SelectSet(dialog, 1);
                    UpdateWindow(dialog);
                },
                restore, kKinds);
            RunCommand(
                "Manage: Rename", dialog,
                [&] {
                    SetFocus(SetsOf(dialog));
                    SendMessageW(SetsOf(dialog), LVM_EDITLABELW, 0, 0);
                    if (LabelEdit(dialog) == nullptr) return;
                    SetWindowTextW(LabelEdit(dialog), L"A name that is longer than a short one");
                    SetFocus(GetDlgItem(dialog, IDOK));
                },
                restore, kKinds);
        },
        [this] { EndFaults(); }, [this] { Open(); });
}

TEST_F(DialogFaults, CommandsOfConfigureAreaSet) {
    Press(IDCANCEL, [this] { return Open(); });
    Pilot(
        [&](HWND dialog) {
            const auto restore = [&, dialog] {
                for (int row = 0; row < RowCount(dialog); ++row) EXPECT_GE(RectOfRow(dialog, row).left, 0) << row;
                for (int i = 0; RowCount(dialog) > 2 && i < 20; ++i) {
                    SelectRow(dialog, RowCount(dialog) - 1);
                    Command(dialog, IDC_CONFIG_REMOVE);
                }
                for (int i = 0; RowCount(dialog) < 2 && i < 20; ++i) Command(dialog, IDC_CONFIG_ADD);
                SelectRow(dialog, 0);
            };
            const struct {
                const char* name;
                UINT id;
            } simple[] = {{"Configure: Add", IDC_CONFIG_ADD},
                          {"Configure: Remove", IDC_CONFIG_REMOVE},
                          {"Configure: Next page", IDC_CONFIG_NEXT_PAGE},
                          {"Configure: Previous page", IDC_CONFIG_PREV_PAGE},
                          {"Configure: Next document", IDC_CONFIG_NEXT_DOC},
                          {"Configure: Prev. document", IDC_CONFIG_PREV_DOC},
                          {"Configure: Scale", ID_SCALE_LAST},
                          {"Configure: Smooth", ID_SMOOTH_IMAGES}};
            for (const auto& [name, id] : simple)
                RunCommand(
                    name, dialog, [&, id = id] { Command(dialog, id); }, restore, kKinds);
            RunCommand(
                "Configure: Select", dialog, [&] { SelectRow(dialog, 1); }, restore, kKinds);
        },
        [this] { EndFaults(); }, [this] { m_configureSet(m_owner, 1); });
}

}  // namespace
