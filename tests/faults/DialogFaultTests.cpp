// The exports that open dialogs, over real windows, with a fault at every chance.
#include "faults/DialogFaults.h"
#include "processes/CountedSettings.h"

namespace {

using namespace test;

const std::vector<const wchar_t*> kManageTold = {
    kNotOpened, kNotRead, L"2 #34213\n", L"6 CSAMgrConfigDlg::OnInitDialog: m_ctrlPreview.SubclassControl failed.\n"};
const std::vector<const wchar_t*> kConfigureTold = {kNotOpened, kHostFailed, kOutOfMemory};

void CreateSet(HWND dialog) {
    Push(dialog, IDC_MANAGE_CREATE);
    SendMessageW(SetsOf(dialog), LVM_CANCELEDITLABEL, 0, 0);
}
// A third area, whose place is not left to the page.
void AddArea(HWND dialog) {
    Push(dialog, IDC_CONFIG_ADD);
    const FoliumRect bounds = {0, 0, 100, 200, 300, 400};
    FoliumOf(dialog).GetInterfacePtr()->UpdateRect(3, &bounds);
}
std::wstring Text(const std::vector<RECT>& rects) {
    std::wstring text;
    for (const RECT& rect : rects) text += L" " + std::to_wstring(rect.left) + L"," + std::to_wstring(rect.bottom);
    return text;
}

class ExportDialogFaults : public DialogFaults {
protected:
    Operation Manage(const char* name, UINT button, const std::function<void(HWND)>& before) {
        return {.name = name,
                .call =
                    [=, this] {
                        return Press(
                            button, [this] { return Open(); }, before);
                    },
                .told = kManageTold,
                .boxes = 1,
                .dialog = true};
    }
    // The areas of the stored set are the old or the new ones.
    Operation Configure(const char* name, UINT button) {
        return {.name = name,
                .call =
                    [=, this] {
                        return Press(
                            button, [this] { return m_configureSet(m_owner, 1); }, AddArea);
                    },
                .told = kConfigureTold,
                .boxes = 1,
                .dialog = true,
                .state = [this] { return HostState() + Text(StoredRects(1)); }};
    }
};

TEST_F(ExportDialogFaults, ManageAreaSets) {
    Run(Manage("SAConfigure, OK of a new set", IDOK, CreateSet), kDialogKinds);
    Run(Manage("SAConfigure, Cancel", IDCANCEL, {}), kFewKinds);
    Run(Manage("SAConfigure, Cancel of a new set", IDCANCEL, CreateSet), kDialogKinds);
}

TEST_F(ExportDialogFaults, ConfigureAreaSet) {
    Press(IDCANCEL, [this] { return Open(); });
    Run(Configure("SAConfigureSet, OK", IDOK), kDialogKinds);
    Run(Configure("SAConfigureSet, Cancel", IDCANCEL), kFewKinds);
}

// The fields keep their places when it fails; the one that has none gets none.
TEST_F(ExportDialogFaults, ConfigurePage) {
    std::vector<SAIndexField> fields;
    UINT button = IDOK;
    const auto call = [&] {
        fields = {Field(L"The total of the invoice", {100, 200, 300, 400}), Field(L"Date")};
        m_host->calls.clear();
        return Press(button, [&] { return OpenPage(fields); });
    };
    const auto check = [&](bool) {
        EXPECT_EQ(PlaceOf(fields[0]), (RECT{100, 200, 300, 400}));
        EXPECT_EQ(PlaceOf(fields[1]), RECT{});
    };
    Operation operation = {
        .name = "ConfigurePage, OK", .call = call, .check = check, .told = kConfigureTold, .boxes = 1, .dialog = true};
    Run(operation, kDialogKinds);
    button = IDCANCEL;
    operation.name = "ConfigurePage, Cancel";
    Run(operation, kFewKinds);
    // A host that fails itself is told nothing by a box; where it began, it hears of the end.
    button = IDOK;
    operation.name = "ConfigurePage, OK";
    operation.boxes = 0;
    operation.check = [&](bool done) {
        check(done);
        EXPECT_TRUE(m_host->calls.empty() || m_host->calls == "B" || m_host->calls == "BQE") << m_host->calls;
    };
    Run(operation, {Fault::kConfig, Fault::kConfigNull});
}

// Before the settings of the dialog's tests, so these are the ones that the module gets.
struct RealSettings {
    SettingsFile m_file;
};

// Over a settings file of the host's real store: whatever fails, the file is the old or the new one.
class FileFaults : protected RealSettings, public ExportDialogFaults {
protected:
    void SetUp() override {
        ExportDialogFaults::SetUp();
        UsePages({});  // whether there is a page is kept with the sets
        // As OK writes them.
        m_file.Write(SampleFile());
        m_init(m_file.Open());
        Press(IDOK, [this] { return Open(); });
        m_first = m_file.Read();
        m_sets = ModuleSets();
        m_file.ShowClasses([this](void* object, size_t slots) { m_hooks->Gate(object, slots, Fault::kStore); });
    }
    std::wstring HostState() const override {
        const std::string text = m_file.Read();
        return {text.begin(), text.end()};
    }
    // Before the file is put back, what stands there now has to be read whole.
    void PutBack() override {
        if (m_first.empty()) return ExportDialogFaults::PutBack();
        m_init(m_file.Open());
        const std::wstring sets = ModuleSets();
        EXPECT_TRUE(sets == m_sets || sets == m_sets + L"4 New Area Set 0\n") << sets;
        m_init(nullptr);
        m_file.Remove();
        m_file.Write(m_first);
        m_init(m_file.Open());
        EXPECT_EQ(ModuleSets(), m_sets);
    }

    std::string m_first;
};

TEST_F(FileFaults, ManageAreaSets) {
    const auto kinds = {Fault::kStore,  Fault::kMemory,        Fault::kString,    Fault::kObject,
                        Fault::kWindow, Fault::kLockAbandoned, Fault::kLockFailed};
    Run(Manage("SAConfigure, OK over a file", IDOK, CreateSet), kinds);
    Run(Manage("SAConfigure, Cancel over a file", IDCANCEL, CreateSet), kinds);
}

// "Manage Area Sets" alone writes the file.
TEST_F(FileFaults, ConfigureAreaSet) {
    Press(IDCANCEL, [this] { return Open(); });
    Operation operation = Configure("SAConfigureSet, OK over a file", IDOK);
    operation.check = [this](bool) { EXPECT_EQ(m_file.Read(), m_first); };
    Run(operation, {Fault::kStore, Fault::kMemory});
}

}  // namespace
