#pragma once
// A user at the screen: real keys and mouse, each of which returns when everything that it caused has been handled.

#include <windows.h>

#include <functional>
#include <string>

namespace test {

// Runs `modal`, usually a call that opens a dialog, and beside its message loop the script, as straight code: it starts
// when a dialog stands in front and goes on with whatever dialog its input opens. A dialog that is still open at its
// end is cancelled and the test fails, as it does when dialogs close before. What the script throws comes out here.
using Script = std::function<void(HWND dialog)>;
void PlayScript(const Script& script, const std::function<void()>& modal);

// The dialog in front, of this thread; null when there is none.
HWND TopDialog();

// Lets everything be handled that is under way. Outside of a script it handles messages itself, by the way of a dialog
// for what belongs to the frame.
void Wait();
void SetFrame(HWND frame);

void Key(WORD key, WORD modifier = 0, int times = 1);
void KeyDown(WORD key);
void KeyUp(WORD key);
void Type(const std::wstring& text);
// Of the left button where no other is named.
void MoveTo(POINT screen);
void ButtonDown(DWORD flag = MOUSEEVENTF_LEFTDOWN, DWORD data = 0);
void ButtonUp(DWORD flag = MOUSEEVENTF_LEFTUP);
void Wheel(int notches);
void Click(POINT screen, DWORD down = MOUSEEVENTF_LEFTDOWN, DWORD up = MOUSEEVENTF_LEFTUP);
void Click(HWND window);  // in its middle
void Drag(POINT from, POINT to);

// A command of the dialog, as its button gives it: posted, so that it may open another dialog.
void Press(HWND dialog, UINT id);

}  // namespace test
