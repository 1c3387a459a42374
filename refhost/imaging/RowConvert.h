#pragma once
// Rows of decoders' pixel formats into those that a Bitmap holds.

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace imaging {

// Converts `width` pixels of a row. `to` has room for a whole row of the bitmap.
using RowConverter = void (*)(const uint8_t* from, uint8_t* to, uint32_t width);

void Copy1(const uint8_t* from, uint8_t* to, uint32_t width);
void Copy8(const uint8_t* from, uint8_t* to, uint32_t width);
void Copy24(const uint8_t* from, uint8_t* to, uint32_t width);
// Packed indices of 2 and 4 bits, and grey steps, to bytes.
void Index2To8(const uint8_t* from, uint8_t* to, uint32_t width);
void Index4To8(const uint8_t* from, uint8_t* to, uint32_t width);
void Grey2To8(const uint8_t* from, uint8_t* to, uint32_t width);
void Grey4To8(const uint8_t* from, uint8_t* to, uint32_t width);
void Grey16To8(const uint8_t* from, uint8_t* to, uint32_t width);
void RgbToBgr(const uint8_t* from, uint8_t* to, uint32_t width);
// 32 bits: the fourth byte is dropped, or says how much of white paper shows through.
void BgrxToBgrx(const uint8_t* from, uint8_t* to, uint32_t width);
void BgraToBgrx(const uint8_t* from, uint8_t* to, uint32_t width);
void PbgraToBgrx(const uint8_t* from, uint8_t* to, uint32_t width);
void BgraToBgr(const uint8_t* from, uint8_t* to, uint32_t width);
// From a 32-bit bitmap to a row of 24 bits, for files.
void BgrxToBgr(const uint8_t* from, uint8_t* to, uint32_t width);

// Images go through decoders and encoders in strips of about a megabyte: the rows of one.
inline uint32_t RowsOfStrip(size_t stride, uint32_t height) {
    constexpr size_t kStripBytes = size_t{1} << 20;
    return static_cast<uint32_t>(std::clamp<size_t>(kStripBytes / stride, 1, height));
}

}  // namespace imaging
