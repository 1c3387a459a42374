// "Manage Area Sets" over a settings file of the host's real store: whatever fails, the file is the old or the new one.
#include <cstdio>

#include "faults/DialogFaults.h"
#include "refhost/settings/HostSettings.h"

namespace {

using namespace test;

constexpr const wchar_t* kSuffixes[] = {L"", L".bak", L".lock", L".refused-1"};

// Registered before the settings of the tests, so these are the ones that the module gets.
struct RealSettings {
    com::ClassRegistration m_store{L"HostSettings.dll", {host::kClsidSettingsNode, host::kClsidSettingsTransfer}};
};

class FileFaults : private RealSettings, public DialogFaults {
protected:
    void SetUp() override {
        DialogFaults::SetUp();
        UsePages({});  // whether there is a page is kept with the sets
        wchar_t folder[MAX_PATH];
        GetTempPathW(MAX_PATH, folder);
        m_path = std::wstring(folder) + L"faults" + std::to_wstring(GetCurrentProcessId()) + L".json";
        WriteFirstFile();
        PutBack();
        win32::ComPtr<ISettingsTransfer> transfer;
        ASSERT_EQ(CoCreateInstance(host::kClsidSettingsTransfer, nullptr, CLSCTX_ALL, __uuidof(ISettingsTransfer),
                                   reinterpret_cast<void**>(&transfer)),
                  S_OK);
        m_hooks->Gate(OpenFile().GetInterfacePtr(), 21, Fault::kStore);
        m_hooks->Gate(transfer.GetInterfacePtr(), 9, Fault::kStore);
    }
    void TearDown() override {
        DialogFaults::TearDown();
        Remove();
        EXPECT_TRUE(m_store.Idle());
    }
    std::wstring HostState() const override {
        FILE* file = _wfopen(m_path.c_str(), L"rb");
        if (file == nullptr) return L"no file";
        std::string text(size_t{1} << 16, '\0');
        text.resize(fread(text.data(), 1, text.size(), file));
        fclose(file);
        return {text.begin(), text.end()};
    }
    // Before the file is put back, what stands there now has to be read whole.
    void PutBack() override {
        if (m_first.empty()) return DialogFaults::PutBack();
        m_init(OpenFile());
        const std::wstring sets = Sets();
        EXPECT_TRUE(sets == kSets || sets == std::wstring(kSets) + L"4:New Area Set:0 ") << sets;
        m_init(nullptr);
        Remove();
        FILE* file = _wfopen(m_path.c_str(), L"wb");
        ASSERT_NE(file, nullptr);
        fwrite(m_first.data(), 1, m_first.size(), file);
        fclose(file);
        m_init(OpenFile());
        EXPECT_EQ(Sets(), kSets);
        TakeTraces();
        TakeHostBoxes();
    }
    win32::ComPtr<ISettingsNode> OpenFile() {
        win32::ComPtr<ISettingsNode> root;
        EXPECT_EQ(m_store.Dll().Export<decltype(HostSettingsOpenFile)>("HostSettingsOpenFile")(m_path.c_str(), &root),
                  S_OK);
        return root;
    }
    // The sets of the fixture, as OK writes them.
    void WriteFirstFile() {
        Remove();
        const auto root = OpenFile();
        win32::ComPtr<ISettingsTransfer> transfer;
        CoCreateInstance(host::kClsidSettingsTransfer, nullptr, CLSCTX_ALL, __uuidof(ISettingsTransfer),
                         reinterpret_cast<void**>(&transfer));
        const win32::ComPtr<ISettingsNode> sets(MakeFakeNode(m_tree), false);
        ASSERT_EQ(transfer.GetInterfacePtr()->CopyNode(root, sets), S_OK);
        m_init(root);
        Press(IDOK, [this] { return Open(); });
        const std::wstring state = HostState();
        m_first.assign(state.begin(), state.end());
        TakeTraces();
        TakeHostBoxes();
    }
    void Remove() {
        for (const wchar_t* suffix : kSuffixes) DeleteFileW((m_path + suffix).c_str());
    }

    std::wstring m_path;
    std::string m_first;
};

TEST_F(FileFaults, ManageAreaSets) {
    for (const UINT button : {IDOK, IDCANCEL}) {
        const auto create = [] {
            Send(FrontDialog(), IDC_MANAGE_CREATE);
            SendMessageW(SetsOf(FrontDialog()), LVM_CANCELEDITLABEL, 0, 0);
        };
        Run({button == IDOK ? "SAConfigure, OK over a file" : "SAConfigure, Cancel over a file",
             [&] { return PressAfter(create, button, [this] { return Open(); }) != FALSE; },
             [] {},
             {L"2 #34108\n", L"2 #34106\n", L"2 #34213\n", L"m_ctrlPreview.SubclassControl failed."},
             true,
             true},
            {Fault::kStore, Fault::kMemory, Fault::kString, Fault::kObject, Fault::kWindow, Fault::kLockAbandoned,
             Fault::kLockFailed});
    }
}

}  // namespace
