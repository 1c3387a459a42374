#pragma once
// The page display control's zoom, for the platform-neutral parts too.

#include <cstddef>
#include <cstdint>

enum FoliumZoomMode : int32_t {
    kFoliumZoomPageHeight = 0,
    kFoliumZoomPageWidth = 1,
    kFoliumZoomWholePage = 2,
    kFoliumZoomPercent = 3,
};

struct FoliumZoom {
    int32_t mode;     // FoliumZoomMode
    int32_t percent;  // read only with kFoliumZoomPercent
};
static_assert(sizeof(FoliumZoom) == 8 && offsetof(FoliumZoom, percent) == 4, "layout of FoliumZoom");
