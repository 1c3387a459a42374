#pragma once
// Rows of bitmaps into those that encoders take.

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace imaging {

// Converts `width` pixels of a row.
using RowConverter = void (*)(const uint8_t* from, uint8_t* to, uint32_t width);

void Copy1(const uint8_t* from, uint8_t* to, uint32_t width);
void Copy8(const uint8_t* from, uint8_t* to, uint32_t width);
void Copy24(const uint8_t* from, uint8_t* to, uint32_t width);
// From a 32-bit bitmap to a row of 24 bits, for files.
void BgrxToBgr(const uint8_t* from, uint8_t* to, uint32_t width);

// Images go through decoders and encoders in strips of about a megabyte: the rows of one.
inline uint32_t RowsOfStrip(size_t stride, uint32_t height) {
    constexpr size_t kStripBytes = size_t{1} << 20;
    return static_cast<uint32_t>(std::clamp<size_t>(kStripBytes / stride, 1, height));
}

}  // namespace imaging
