#pragma once
// Pages that scanners and cameras store turned or mirrored, with a number that says how.

#include <cstdint>
#include <memory>

#include "refhost/reader/Bitmap.h"

namespace reader {

// The page as it has to be seen: `orientation` is that of TIFF and EXIF, 1 to 8; others count as 1, upright. 2 to 4
// change the bitmap itself; 5 to 8 give a new one, whose sides and resolutions have changed places. Throws ImageError
// for a size that no bitmap can have.
std::shared_ptr<Bitmap> Upright(std::shared_ptr<Bitmap> bitmap, uint32_t orientation);

}  // namespace reader
