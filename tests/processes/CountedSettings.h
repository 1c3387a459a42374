#pragma once
// The host's real settings store over a file of the test's own. Its calls can be led through gates: counted on their
// way, so that a process can be ended at any one of them.

#include <windows.h>

#include <functional>
#include <string>

#include "faults/ImportHook.h"
#include "host/SettingsStore.h"
#include "refhost/com/ClassRegistration.h"
#include "win32/ComPtr.h"

namespace test {

// Registered before other settings classes, so these are the ones that the module gets.
class SettingsFile {
public:
    SettingsFile();
    ~SettingsFile();
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;

    // The root of the file; null when it is damaged.
    win32::ComPtr<ISettingsNode> Open() const;
    void Write(const std::string& content) const;
    std::string Read() const;
    // The file and what the store leaves beside it.
    void Remove() const;
    // Shows an object of each class with the length of its table, which all of the class share.
    void ShowClasses(const std::function<void(void* object, size_t slots)>& show) const;

    const com::ClassRegistration classes{L"HostSettings.dll", {host::kClsidSettingsNode, host::kClsidSettingsTransfer}};
    std::wstring path;  // one of this process
};

// How a process ended.
constexpr UINT kEndedAtCall = 9;
constexpr UINT kFinished = 100;  // and the number of calls

struct HostCalls {
    int count = 0;
    int endAt = 0;                           // the process ends in this call, before it is carried out; 0 is never
    int failAt = 0;                          // this call fails
    intptr_t failStatus = E_FAIL;            // with this
    std::function<void()> during = nullptr;  // what the host does in each call, but not in calls that come from it
};
HostCalls& Calls();

class CountedSettings : public SettingsFile {
public:
    CountedSettings();

private:
    PointerHooks m_hooks;
};

// Three sets of two areas each, "Set 1" and so on.
std::string SampleFile(int sets = 3, int areas = 2);

}  // namespace test
