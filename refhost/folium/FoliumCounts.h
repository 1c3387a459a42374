#pragma once
// What Folium.dll holds and has done, for tests and for hunting leaks: the export FoliumGetCounts.

#include <windows.h>

extern "C" {

struct FoliumCounts {
    LONG objects;      // COM objects and server locks
    LONG windows;      // of the control
    LONG gdiObjects;   // device contexts, bitmaps and fonts of the control
    LONG paints;       // since the DLL was loaded
    LONG tilesScaled;  // squares of a page scaled to the screen, since the DLL was loaded
};

void WINAPI FoliumGetCounts(FoliumCounts* counts);
}
