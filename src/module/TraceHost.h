#pragma once

#include <windows.h>

namespace trace {

// The module's instance, which every trace hands to the host's logger; null until the module starts.
void SetTraceInstance(HINSTANCE instance) noexcept;

}  // namespace trace
