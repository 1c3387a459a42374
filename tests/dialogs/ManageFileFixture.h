#pragma once
// "Manage Area Sets" over a settings file of the host's real store.

#include <cstdio>
#include <string>

#include "dialogs/ManageFixture.h"
#include "refhost/settings/HostSettings.h"

namespace test {

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
        if (m_path.empty()) return;
        for (const wchar_t* suffix : {L"", L".bak", L".refused-1"}) DeleteFileW((m_path + suffix).c_str());
    }
    Steps Create(const wchar_t* name) {
        return {[](HWND) { PressKey(VK_INSERT); }, [=](HWND) { TypeText(name); }, [](HWND) { PressKey(VK_RETURN); }};
    }

    std::wstring m_path;
};

}  // namespace test
