#pragma once
// Fails every chance of every kind in turn while an operation runs, and looks afterwards at everything that has to be
// as it was.

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "dialogs/ManageFixture.h"
#include "faults/DialogPilot.h"
#include "faults/Faults.h"

namespace test {

inline constexpr const wchar_t* kNotRead = L"2 #34106\n";  // a trace: the settings were not read

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

// What failures of a handler leave in the trace.
inline constexpr const wchar_t* kOutOfMemory = L"out of memory";
inline constexpr const wchar_t* kHostFailed = L"a host object failed with status";

// A command of an open dialog.
struct Command {
    const char* name;
    std::function<void()> run;
    // Brings the dialog back to where it was; without faults, as all that follows.
    std::function<void()> restore;
    // Whether it did what it is there for.
    std::function<bool()> done;
    // What has to hold whether it did or not.
    std::function<void()> check = [] {};
    // One of these is among the traces when it did not, and a message box was shown.
    std::vector<const wchar_t*> told = {kOutOfMemory, kHostFailed};
    bool box = true;
    // No button or menu: each cause is told once for as long as the dialog is open.
    bool notice = false;
    bool dialog = false;  // opens one
};

// The fixture of "Manage Area Sets" with pages of real files and an image to mask. The sets are "Invoice", "Letter" and
// "Blank".
class FaultLoop : public ManageDialog {
protected:
    void SetUp() override;
    void TearDown() override;

    void Run(const Operation& operation, std::initializer_list<Fault> kinds);
    void RunCommand(HWND dialog, const Command& command, std::initializer_list<Fault> kinds);

    // Ends the faults early: what follows in the operation is no part of the run.
    void EndFaults();
    // What the host keeps of the sets.
    virtual std::wstring HostState() const;
    // Makes that again what it was before the first run, and asks the module for everything.
    virtual void PutBack();
    // The sets as the exports tell them: "1:Invoice:2 ".
    std::wstring Sets();
    template <class Function>
    static Function* Export(const char* name) {
        return reinterpret_cast<Function*>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"Zonwick.dll"), name)));
    }

    static constexpr const wchar_t* kSets = L"1:Invoice:2 2:Letter:1 3:Blank:0 ";

    std::unique_ptr<FaultHooks> m_hooks;
    void* m_page = nullptr;           // of the imaging library
    Fault m_kind = Fault::kCount;     // of the command's run
    bool m_remembers = false;         // the dialog keeps more the longer it is used
    Flight m_flight = Flight::kNone;  // of the operation's dialog

private:
    struct Tally {
        int met = 0, injected = 0, failed = 0, succeeded = 0;
    };
    // True when the n-th chance was met.
    bool Once(const Operation& operation, Fault kind, int n, bool keep, Tally& tally);
    void CommandOnce(HWND dialog, const Command& command, Fault kind, int n, bool keep, Tally& tally);
    void ExpectHeld(const Holdings& before);
    void GateParts();
    void Print(const char* name, Fault kind, const Tally& tally);

    std::unique_ptr<com::HostDll> m_imaging;
    std::shared_ptr<FakeTree> m_pristine;  // the host's settings before a run
    std::wstring m_before, m_changed;      // what the host keeps before a run, and after one without faults
    FaultPlan m_done;
    bool m_told = false;  // something, since the dialog was opened
    int m_failures = 0;
};

}  // namespace test
