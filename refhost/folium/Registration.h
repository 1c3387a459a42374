#pragma once

#include <windows.h>

namespace folium {

// Writes and removes what the system needs to find the control by its class identifier. What could be written only in
// part is removed again.
HRESULT RegisterControl() noexcept;
HRESULT UnregisterControl() noexcept;

}  // namespace folium
