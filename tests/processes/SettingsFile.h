#pragma once
// "Manage Area Sets" in Zonwick.dll over a settings file of the real store, whose calls are counted.

#include <memory>
#include <string>

#include "dialogs/ManageFixture.h"
#include "processes/CountedSettings.h"

namespace test {

// Before the settings of the dialog's tests, so these are the ones that the module gets.
struct Settings {
    CountedSettings counted;
};

class SettingsFileDialog : private Settings, public ManageDialog {
protected:
    void TearDown() override;
    // Hands the settings of a file to the module.
    void OpenFile(const std::wstring& path);
    // A file of its own for this process, gone after the test.
    void NewFile(const std::string& content);
    void WriteFile(const std::string& content) const;
    std::string ReadFile() const;
    // All sets as the exports tell them, a line each.
    std::wstring Sets();
    void LoadPage();
    // The block of the masked page; empty when it is refused.
    std::string MaskedPage(const wchar_t* set);
    // Whether the lock was met as a dead process left it; takes all traces.
    bool MetAnAbandonedLock();
    template <class Function>
    static Function* Export(const char* name) {
        return reinterpret_cast<Function*>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"Zonwick.dll"), name)));
    }

    using Settings::counted;
    std::wstring m_path;

private:
    std::unique_ptr<com::HostDll> m_imaging;
    void* m_page = nullptr;
};

// Three sets of two areas each.
std::string SampleFile();

}  // namespace test
