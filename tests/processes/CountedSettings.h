#pragma once
// The host's settings store with every call of the module counted on its way there, so that a process can be ended at
// any one of them.

#include <windows.h>

#include <functional>

#include "host/SettingsStore.h"
#include "refhost/com/ClassRegistration.h"
#include "support/FakeObject.h"
#include "win32/ComPtr.h"

namespace test {

// How a process ended.
constexpr UINT kEndedAtCall = 9;
constexpr UINT kFinished = 100;  // and the number of calls

// Shared by all objects of the process.
struct HostCalls {
    int count = 0;
    int endAt = 0;                           // the process ends in this call, before it is carried out; 0 is never
    int failAt = 0;                          // this call fails
    HRESULT failStatus = E_FAIL;             // with this
    std::function<void()> during = nullptr;  // what the host does in each call, but not in calls that come from it
};
HostCalls& Calls();

// While it lives, the store's two classes are had through the counter.
class CountedSettings {
public:
    CountedSettings();
    ~CountedSettings();
    CountedSettings(const CountedSettings&) = delete;
    CountedSettings& operator=(const CountedSettings&) = delete;

    // The root of a settings file, counted.
    win32::ComPtr<ISettingsNode> OpenFile(const wchar_t* path);
    const com::HostDll& Store() const { return m_store; }

private:
    com::HostDll m_store{L"HostSettings.dll"};
    HRESULT m_status = S_OK;
    FakeClass m_nodes, m_transfers;
};

}  // namespace test
