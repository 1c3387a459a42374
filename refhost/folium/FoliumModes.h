#pragma once
// What IFolium::SetMode takes: any sum of these. A fresh control is in mode 0, in which rectangles can be selected but
// not changed by the user; a program can change them in any mode.

#include <cstdint>

enum FoliumMode : int32_t {
    kFoliumModeEdit = 1,     // the user may draw, change and remove rectangles
    kFoliumModeSeveral = 2,  // several rectangles may be selected at a time
};
