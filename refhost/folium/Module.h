#pragma once

#include <windows.h>

namespace folium {

// Folium.dll.
HINSTANCE ModuleInstance() noexcept;

}  // namespace folium
