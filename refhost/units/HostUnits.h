#pragma once
// HostUnits.dll: the unit object of src/host/MeasureUnits.h, and the choice of the measurement system for the process.

#include <windows.h>

extern "C" {

// 1 metric, 2 inches, 0 (the start) by the user's regional setting. Returns FALSE for anything else, which changes
// nothing. Callable from any thread; objects that live already follow too.
BOOL WINAPI HostSetMeasureSystem(LONG system);
}
