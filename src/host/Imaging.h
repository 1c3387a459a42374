#pragma once
// The host imaging library: closed, imported by ordinal only (cmake/HostLibraries.cmake).

#include <windows.h>

#include <cstddef>
#include <cstdint>

// The mask description: this header, then `count` rectangles of four 32-bit signed integers (left, top, right, bottom)
// in tenths of a millimetre on the page. Built by the module for one call; the library does not hold on to it.
struct AreaMask {
    uint32_t dwKeep;  // 1: the areas are kept and all else is masked, 0: the areas are masked
    uint32_t count;   // at least 1
    RECT rects[1];    // `count` of them
};
static_assert(offsetof(AreaMask, count) == 4 && offsetof(AreaMask, rects) == 8);

extern "C" {
// Ordinal 100: makes a masked copy of `source`; 1 on success. The module passes 1 as the last argument.
int HostCreateMaskedImage(void* source, void** masked, const AreaMask* mask, int reserved);
// Ordinal 26: copies an image into a block of memory taken with malloc of the module's runtime; 1 on success. The
// module passes 4 and 0 for the two constants and frees the block with free.
int HostCopyImage(void* image, int format, void** block, DWORD* length, int reserved);
// Ordinal 83: releases an image handle.
void HostReleaseImage(void* image);
}
