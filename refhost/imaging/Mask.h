#pragma once
// Masking: which pixels a set of areas leaves, and the copy of an image without the others. A pixel belongs to an area
// when the area touches it, so keeping and ignoring the same areas are exact complements.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "refhost/reader/Bitmap.h"

namespace imaging {

using namespace reader;  // pages as they are read are what is masked

// An area in tenths of a millimetre on the page.
struct Area {
    int32_t left, top, right, bottom;
};

// Pixels of an image: right and bottom excluded.
struct PixelRect {
    uint32_t left, top, right, bottom;
};

struct Mask {
    bool keep = false;             // true: what no rectangle covers is masked, false: what one covers
    std::vector<PixelRect> rects;  // clipped, none empty, by their top
};

Mask MakeMask(const Bitmap& image, bool keep, std::span<const Area> areas);

// Rows top to bottom (excluded) in which the same pixels are masked: `masked`, ascending, apart from each other.
using BandVisitor = std::function<void(uint32_t top, uint32_t bottom, std::span<const PixelRange> masked)>;

// Calls `visit` for bands that together are all rows, from the top down. Costs at most sorting the rectangles and, per
// band, the lesser of the edges that cross it and the width.
void ForEachBand(uint32_t width, uint32_t height, const Mask& mask, const BandVisitor& visit);

// Writes the image with masked pixels as paper white: `target` has image.Size() bytes in the same layout.
void CopyMasked(const Bitmap& image, const Mask& mask, uint8_t* target);

}  // namespace imaging
