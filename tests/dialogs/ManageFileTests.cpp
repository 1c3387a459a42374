// "Manage Area Sets" over the host's settings file: what OK, Cancel and a second host leave on the disk.
#include <cstdio>
#include <fstream>
#include <iterator>

#include "dialogs/ManageFixture.h"
#include "refhost/settings/HostSettings.h"

namespace {

using namespace test;

// Registered before the settings of the tests, so these are the ones that the module gets.
struct RealSettings {
    com::ClassRegistration classes{L"HostSettings.dll", {host::kClsidSettingsNode, host::kClsidSettingsTransfer}};
};

class ManageFile : private RealSettings, public ManageDialog {
protected:
    void SetUp() override {
        ManageDialog::SetUp();
        wchar_t folder[MAX_PATH];
        GetTempPathW(MAX_PATH, folder);
        m_path = std::wstring(folder) + L"manage" + std::to_wstring(GetCurrentProcessId()) + L".json";
        Remove();
        OpenFile();
    }
    void TearDown() override {
        ManageDialog::TearDown();
        Remove();
        EXPECT_TRUE(classes.Idle());
    }
    void OpenFile() {
        win32::ComPtr<ISettingsNode> root;
        ASSERT_EQ(classes.Dll().Export<decltype(HostSettingsOpenFile)>("HostSettingsOpenFile")(m_path.c_str(), &root),
                  S_OK);
        m_init(root);
        TakeTraces();
    }
    std::string Content(const std::wstring& suffix = {}) {
        FILE* file = _wfopen((m_path + suffix).c_str(), L"rb");
        if (file == nullptr) return {};
        std::string text(size_t{1} << 16, '\0');
        text.resize(fread(text.data(), 1, text.size(), file));
        fclose(file);
        return text;
    }
    void Append(const char* text) {
        FILE* file = _wfopen(m_path.c_str(), L"ab");
        ASSERT_NE(file, nullptr);
        fputs(text, file);
        fclose(file);
    }
    void Remove() {
        for (const wchar_t* suffix : {L"", L".bak", L".refused-1"}) DeleteFileW((m_path + suffix).c_str());
    }
    Steps Create(const wchar_t* name) {
        return {[](HWND) { PressKey(VK_INSERT); }, [=](HWND) { TypeText(name); }, [](HWND) { PressKey(VK_RETURN); }};
    }

    std::wstring m_path;
};

TEST_F(ManageFile, OkIsOnTheDiskAndCancelIsNot) {
    Steps steps = Create(L"Delivery note");
    steps.push_back(PressOk);
    EXPECT_TRUE(Play(steps));
    const std::string stored = Content();
    EXPECT_NE(stored.find("Delivery note"), std::string::npos) << stored;
    EXPECT_NE(stored.find("0x00000001"), std::string::npos);
    steps = Create(L"Dropped");
    steps.push_back(PressCancel);
    EXPECT_TRUE(Play(steps));
    EXPECT_EQ(Content(), stored);
    OpenFile();
    EXPECT_TRUE(Play({[](HWND dialog) { EXPECT_EQ(SetNames(dialog), L"Delivery note|"); }, PressCancel}));
}

TEST_F(ManageFile, AFileThatAnotherHostChangedIsNotOverwritten) {
    Steps steps = Create(L"First");
    steps.push_back(PressOk);
    EXPECT_TRUE(Play(steps));
    std::string others;
    steps = Create(L"Second");
    steps.push_back([&](HWND dialog) {
        Append("\n");
        others = Content();
        PressOk(dialog);
        const std::vector<std::wstring> boxes = TakeHostBoxes();
        ASSERT_EQ(boxes.size(), 1u);
        EXPECT_TRUE(boxes[0].starts_with(L"The area sets could not be saved.")) << boxes[0];
        EXPECT_NE(boxes[0].find(m_path.substr(m_path.rfind(L'\\')) + L".refused-1"), std::wstring::npos) << boxes[0];
        EXPECT_EQ(SetNames(dialog), L"First|Second|");
        TakeTraces();
        PressCancel(dialog);
    });
    EXPECT_TRUE(Play(steps));
    EXPECT_EQ(Content(), others);
    EXPECT_NE(Content(L".refused-1").find("Second"), std::string::npos);
}

}  // namespace
