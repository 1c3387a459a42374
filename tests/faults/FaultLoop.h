#pragma once
// Fails every chance of every kind in turn while an operation runs, and looks afterwards at everything that has to be
// as it was.

#include <memory>
#include <string>
#include <vector>

#include "dialogs/ManageFixture.h"
#include "faults/Faults.h"

namespace test {

struct Operation {
    const char* name;
    // The call itself, with faults; its result.
    std::function<bool()> call;
    // After a call that succeeded, without faults: whether what it gave is right.
    std::function<void()> check = [] {};
    // One of these is among the traces when it fails.
    std::vector<const wchar_t*> told = {};
    bool box = false;  // and a message box with it
    bool dialog = false;
};

// The fixture of "Manage Area Sets" with pages of real files and an image to mask. The sets are "Invoice", "Letter" and
// "Blank".
class FaultLoop : public ManageDialog {
protected:
    void SetUp() override;
    void TearDown() override;

    void Run(const Operation& operation, std::initializer_list<Fault> kinds);
    // The same for a command of an open dialog; `restore` brings the dialog back to where it was, without faults.
    void RunCommand(const char* name, HWND dialog, const std::function<void()>& command,
                    const std::function<void()>& restore, std::initializer_list<Fault> kinds);

    // Ends the faults early: what follows in the operation is no part of the run.
    void EndFaults();
    // Hands over the settings anew and asks for everything.
    void ExpectWhole();
    std::wstring HostSetsWhole() const;
    // The sets as the exports tell them: "1:Invoice:2 ".
    std::wstring Sets();
    template <class Function>
    static Function* Export(const char* name) {
        return reinterpret_cast<Function*>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"Zonwick.dll"), name)));
    }

    void* m_page = nullptr;                // of the imaging library
    std::shared_ptr<FakeTree> m_pristine;  // the host's settings before a run
    std::wstring m_changed;                // and after one without faults, where it changes them

private:
    struct Tally {
        int met = 0, injected = 0, failed = 0, succeeded = 0;
    };
    // True when the n-th chance was met.
    bool Once(const Operation& operation, Fault kind, int n, bool keep, Tally& tally);
    void GateParts();
    void Print(const char* name, Fault kind, const Tally& tally);

    std::unique_ptr<com::HostDll> m_imaging;
    std::unique_ptr<FaultHooks> m_hooks;
    FaultPlan m_done;
    std::wstring m_before;
    int m_failures = 0;
};

}  // namespace test
