#pragma once

#include <cstdint>

// A rectangle on a page in tenths of a millimetre, origin at the page's top-left corner; in memory like a Win32 RECT.
struct PageRect {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    bool operator==(const PageRect&) const = default;
};
static_assert(sizeof(PageRect) == 16);
