#pragma once
// Makes the C++ runtime ready for throwing when there is no memory at all.

namespace exports {

// The runtime takes memory for some things when they are first used, and ends the process when it gets none: the
// thread's state of exceptions, and the lock of the reserve in which an exception is made that has no memory otherwise.
// Called on the window thread, when the module is loaded.
void PrepareForLackOfMemory() noexcept;

}  // namespace exports
