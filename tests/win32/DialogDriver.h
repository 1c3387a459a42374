#pragma once
// Plays a modal dialog from inside its own message loop, and stands in for the host controls library.

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace test {

// One after the other, each when everything that the one before caused has been handled. The argument is the dialog in
// front. After the last one a dialog that is still open is cancelled and the test fails.
using Steps = std::vector<std::function<void(HWND dialog)>>;

// Runs `modal`, usually a call of DoModal, and plays the steps meanwhile.
void PlayDialog(Steps steps, const std::function<void()>& modal);

// Real input, to whatever has the focus.
void PressKey(WORD key, WORD modifier = 0);
void TypeText(const std::wstring& text);
// A real click in the middle of a window.
void ClickOn(HWND window);

std::wstring TextOf(HWND dialog, UINT id);
void Push(HWND dialog, UINT id);  // by message
inline void Cancel(HWND dialog) {
    Push(dialog, IDCANCEL);
}

// What was shown and asked for since the last call.
struct Box {
    HWND owner;
    std::wstring text;
    UINT style;
};
std::vector<Box> TakeBoxes();
struct Help {
    HWND owner;
    DWORD context;
};
std::vector<Help> TakeHelp();

// Writes the windows on the screen to NAME.bmp in the folder that ZONWICK_SCREENSHOTS names; nothing without it.
void Screenshot(HWND window, const std::wstring& name);

}  // namespace test
