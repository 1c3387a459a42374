#pragma once
// What becomes of a process that fails itself.

namespace zonhost {

// From now on a crash, of the libraries too, ends the process with a message on standard error and kCrashed, never with
// a box of the system that holds up whoever waits for the command.
void EndOnCrash();

}  // namespace zonhost
