#pragma once
// The fault loop around the dialogs.

#include "faults/FaultLoop.h"

namespace test {

inline constexpr std::initializer_list<Fault> kDialogKinds = {
    Fault::kSettings, Fault::kSettingsNull, Fault::kPart,          Fault::kPartNull,   Fault::kObject, Fault::kMemory,
    Fault::kString,   Fault::kCodec,        Fault::kLockAbandoned, Fault::kLockFailed, Fault::kWindow, Fault::kDrawing};

// Where another operation has gone the same way already.
inline constexpr std::initializer_list<Fault> kFewKinds = {Fault::kSettings, Fault::kPart, Fault::kMemory,
                                                           Fault::kWindow};

inline constexpr const wchar_t* kNotOpened = L"2 #34108\n";

// A command of an open dialog.
struct Command {
    const char* name = nullptr;
    std::function<void()> run = {};
    // Whether it did what it is there for; when there is none, whether the dialog that it opened was closed.
    std::function<bool()> done = {};
    int selected = 0;  // the row that it is about
    UINT button = 0;   // closes the dialog that it opens
    bool notice = false;
    const wchar_t* told = kOutOfMemory;  // besides what failures of a handler leave
    bool box = true;
    std::initializer_list<Fault> kinds = kDialogKinds;
};

class DialogFaults : public FaultLoop {
protected:
    static void Send(HWND dialog, UINT id) {
        SendMessageW(dialog, WM_COMMAND, id, reinterpret_cast<LPARAM>(GetDlgItem(dialog, static_cast<int>(id))));
    }
    // Presses a button in the dialog that `open` opens, after what meets no faults; in one that stays it is pressed
    // again without faults, which has to close it. False when that was needed, or by what `open` gives.
    bool Press(UINT button, const std::function<BOOL()>& open, const std::function<void(HWND)>& before = {}) {
        BOOL result = FALSE;
        const auto first = [&](HWND dialog) {
            FaultHooks::Hold(true);
            if (before) before(dialog);
            FaultHooks::Hold(false);
            Send(dialog, button);
        };
        bool offered = true;  // a dialog that could not be set up has no OK
        const auto again = [&](HWND dialog) {
            EndFaults();
            offered = Enabled(dialog, button);
            if (offered) Send(dialog, button);
        };
        m_flight = Pilot(first, again, [&] { result = open(); });
        EXPECT_TRUE(m_flight != Flight::kGivenUp || !offered);
        return result && m_flight != Flight::kAgain && m_flight != Flight::kGivenUp;
    }
    // Runs the commands of the dialog that `open` opens.
    void RunCommands(const std::string& prefix, const std::function<void()>& open,
                     const std::function<std::vector<Command>(HWND)>& commands) {
        const auto run = [&](HWND dialog) {
            m_dialog = dialog;
            for (const Command& command : commands(dialog)) RunCommand(prefix, command);
            m_dialog = nullptr;
        };
        EXPECT_NE(Pilot(run, {}, open), Flight::kNone);
    }
    // Brings the dialog back to where it was, the row selected, and looks whether it tells the truth.
    virtual void Restore(int) {}
    virtual void Check() {}

private:
    void RunCommand(const std::string& prefix, const Command& command) {
        const bool opens = command.button != 0;
        Operation operation = {.name = prefix + command.name};
        operation.call = [&] {
            const auto run = [&] {
                command.run();
                return TRUE;
            };
            opens ? Press(command.button, run) : run();
            EndFaults();
            return command.done ? command.done() : m_flight == Flight::kClosed;
        };
        operation.check = [&](bool) { Check(); };
        operation.restore = [&] { Restore(command.selected); };
        operation.told = {kOutOfMemory, kHostFailed, command.told};
        if (opens) operation.told.insert(operation.told.end(), {kNotOpened, kNotRead});
        // Of the other dialog, and of this one afterwards.
        operation.boxes = !command.box ? 0 : opens ? 2 : 1;
        operation.dialog = opens;
        operation.notice = command.notice;
        Run(operation, command.kinds);
    }
};

}  // namespace test
