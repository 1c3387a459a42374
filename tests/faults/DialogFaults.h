#pragma once
// The fault loop around the dialogs.

#include "faults/FaultLoop.h"

namespace test {

inline constexpr std::initializer_list<Fault> kDialogKinds = {
    Fault::kSettings, Fault::kSettingsNull,  Fault::kPart,       Fault::kObject, Fault::kMemory, Fault::kString,
    Fault::kCodec,    Fault::kLockAbandoned, Fault::kLockFailed, Fault::kWindow, Fault::kDrawing};

// Where another operation has gone the same way already.
inline constexpr std::initializer_list<Fault> kFewKinds = {Fault::kSettings, Fault::kPart, Fault::kMemory,
                                                           Fault::kWindow};

class DialogFaults : public FaultLoop {
protected:
    static void Send(HWND dialog, UINT id) {
        SendMessageW(dialog, WM_COMMAND, id, reinterpret_cast<LPARAM>(GetDlgItem(dialog, static_cast<int>(id))));
    }
    // Presses a button in the dialog that `open` opens; one that stays is cancelled without faults.
    template <class Open>
    BOOL Press(UINT button, Open open) {
        return PressAfter([] {}, button, open);
    }
    // The same after something that meets no faults.
    template <class Open>
    BOOL PressAfter(const std::function<void()>& before, UINT button, Open open) {
        BOOL result = FALSE;
        m_flight = Pilot(
            [&](HWND dialog) {
                FaultHooks::Hold(true);
                before();
                FaultHooks::Hold(false);
                Send(dialog, button);
            },
            [this] { EndFaults(); }, [&] { result = open(); });
        return result && m_flight != Flight::kGivenUp;
    }
};

}  // namespace test
