#pragma once
// The host language library. Closed library; the names that it exports stand in cmake/HostLibraries.cmake.

#include <windows.h>

class CLang {
public:
    // The handle from which the dialogs, menus and strings of `instance` are loaded: a localised resource module with
    // the same identifiers, or `instance` itself. Stays valid as long as `instance`.
    static HINSTANCE GetResourceHandle(HINSTANCE instance);
};
