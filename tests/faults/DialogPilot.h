#pragma once
// Closes whatever dialogs come up while something runs, whether one does or not.

#include <windows.h>

#include <functional>

namespace test {

// What became of the dialogs that came up: closed by what was done first, only when that was done again, or cancelled.
enum class Flight { kNone, kClosed, kAgain, kGivenUp };

// While `body` runs, each new dialog above the one that is in front now is handed to `first`; one that is still there
// afterwards to `again`, if there is one, and one that is there even then is cancelled.
Flight Pilot(const std::function<void(HWND dialog)>& first, const std::function<void(HWND dialog)>& again,
             const std::function<void()>& body);

// The visible and enabled dialog of this thread; null when there is none.
HWND FrontDialog();

}  // namespace test
