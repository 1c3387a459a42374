// The exports that open dialogs, over real windows, with a fault at every chance.
#include "faults/DialogFaults.h"

namespace {

using namespace test;

constexpr const wchar_t* kNotOpened = L"2 #34108\n";
constexpr const wchar_t* kNotStored = L"2 #34213\n";
constexpr const wchar_t* kNoPreview = L"6 CSAMgrConfigDlg::OnInitDialog: m_ctrlPreview.SubclassControl failed.\n";

using ExportDialogFaults = DialogFaults;

TEST_F(ExportDialogFaults, ManageAreaSets) {
    const struct {
        const char* name;
        UINT button;
        bool create;
    } cases[] = {{"SAConfigure, OK of a new set", IDOK, true},
                 {"SAConfigure, Cancel", IDCANCEL, false},
                 {"SAConfigure, Cancel of a new set", IDCANCEL, true}};
    for (const auto& [name, button, create] : cases) {
        const auto before = [create = create] {
            if (!create) return;
            Send(FrontDialog(), IDC_MANAGE_CREATE);
            SendMessageW(SetsOf(FrontDialog()), LVM_CANCELEDITLABEL, 0, 0);
        };
        Run({name,
             [&, button = button] { return PressAfter(before, button, [this] { return Open(); }) != FALSE; },
             [] {},
             {kNotOpened, kNotRead, kNotStored, kNoPreview},
             true,
             true},
            button == IDCANCEL && !create ? kFewKinds : kDialogKinds);
    }
}

TEST_F(ExportDialogFaults, ConfigureAreaSet) {
    Press(IDCANCEL, [this] { return Open(); });
    for (const UINT button : {IDOK, IDCANCEL}) {
        Run({button == IDOK ? "SAConfigureSet, OK" : "SAConfigureSet, Cancel",
             [&] { return Press(button, [this] { return m_configureSet(m_owner, 1); }) != FALSE; },
             [] {},
             {kNotOpened, kHostFailed, kOutOfMemory},
             true,
             true},
            button == IDOK ? kDialogKinds : kFewKinds);
    }
}

// The fields keep their places when it fails; the one that has none gets none.
TEST_F(ExportDialogFaults, ConfigurePage) {
    std::vector<SAIndexField> fields;
    UINT button = IDOK;
    const auto call = [&] {
        fields = {Field(L"The total of the invoice", {100, 200, 300, 400}), Field(L"Date")};
        m_host->calls.clear();
        const bool shown = Press(button, [&] { return OpenPage(fields); }) != FALSE;
        EXPECT_EQ(PlaceOf(fields[0]), (RECT{100, 200, 300, 400}));
        EXPECT_EQ(PlaceOf(fields[1]), RECT{});
        return shown;
    };
    Operation operation = {"ConfigurePage, OK", call, [] {}, {kNotOpened, kHostFailed, kOutOfMemory}, true, true};
    Run(operation, kDialogKinds);
    // A host that fails itself is told nothing by a box; where it began, it hears of the end.
    operation.call = [&] {
        const bool shown = call();
        const std::string& calls = m_host->calls;
        EXPECT_TRUE(calls.empty() || calls == "B" || calls == "BQE") << calls;
        return shown;
    };
    operation.box = false;
    Run(operation, {Fault::kConfig, Fault::kConfigNull});
    button = IDCANCEL;
    operation = {"ConfigurePage, Cancel", call, [] {}, {kNotOpened, kHostFailed, kOutOfMemory}, true, true};
    Run(operation, kFewKinds);
}

}  // namespace
