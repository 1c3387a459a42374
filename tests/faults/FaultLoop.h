#pragma once
// Fails the chances of every kind in turn while an operation runs, and looks afterwards at everything that has to be as
// it was.

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "dialogs/ManageFixture.h"
#include "faults/DialogPilot.h"
#include "faults/Faults.h"
#include "support/LoadedModule.h"

namespace test {

inline constexpr const wchar_t* kNotRead = L"2 #34106\n";  // a trace: the settings were not read
// What failures of a handler leave in the trace.
inline constexpr const wchar_t* kOutOfMemory = L"out of memory";
inline constexpr const wchar_t* kHostFailed = L"a host object failed with status";

// An export, or a command of an open dialog.
struct Operation {
    std::string name = {};  // after the export or the dialog: "SAConfigure, OK", "Manage: Create"
    // With faults; whether it did what it is there for.
    std::function<bool()> call = {};
    // Without faults, as all that follows: what has to hold.
    std::function<void(bool done)> check = [](bool) {};
    // One of these is among the traces when it did not,
    std::vector<const wchar_t*> told = {};
    // and a message box was shown, at most so many; 0 is for those that show none.
    size_t boxes = 0;
    bool dialog = false;  // opens one
    // No button or menu: each cause is told once for as long as the dialog is open.
    bool notice = false;
    // Brings everything back to where it was.
    std::function<void()> restore = {};
    // What is stored.
    std::function<std::wstring()> state = {};
};

// The fixture of "Manage Area Sets" with pages of real files and an image to mask. The sets are "Invoice", "Letter" and
// "Blank".
class FaultLoop : public ManageDialog {
protected:
    void SetUp() override;
    void TearDown() override;

    void Run(Operation operation, std::initializer_list<Fault> kinds);

    // Ends the faults early: what follows in the operation is no part of the run.
    void EndFaults();
    // What the host keeps of the sets.
    virtual std::wstring HostState() const;
    // Makes that again what it was before the first run, and asks the module for everything.
    virtual void PutBack();

    std::optional<LoadedPage> m_page;
    std::optional<FaultHooks> m_hooks;
    std::wstring m_sets;              // as the exports tell them before a run
    HWND m_dialog = nullptr;          // whose commands are run
    Fault m_kind = Fault::kCount;     // of the run
    bool m_remembers = false;         // the dialog keeps more the longer it is used
    Flight m_flight = Flight::kNone;  // of the dialog that the operation opens

private:
    // True when the n-th chance was met.
    bool Once(const Operation& operation, Fault kind, int n, bool keep);
    void ExpectTold(const Operation& operation, bool keep, const std::wstring& traces, size_t boxes);
    void ExpectHeld(const Holdings& before);
    void GateParts();

    std::shared_ptr<FakeTree> m_pristine;  // the host's settings before a run
    std::wstring m_changed;                // what is stored after a run without faults
    FaultPlan m_done;
    bool m_told = false;  // something, since the dialog was opened
    int m_failures = 0;
};

}  // namespace test
