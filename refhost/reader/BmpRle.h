#pragma once
// Run lengths of BMP files.

#include <cstddef>
#include <cstdint>
#include <span>

#include "refhost/reader/Bitmap.h"

namespace reader {

// Decodes run lengths of 8 or 4 bits into a bitmap of 8; pixels that they skip get colour 0. Throws ImageError for
// runs beyond the bitmap, and where they end before it is complete.
void DecodeBmpRuns(std::span<const uint8_t> runs, uint32_t bits, Bitmap& bitmap);

}  // namespace reader
