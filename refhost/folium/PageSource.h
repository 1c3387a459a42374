#pragma once
// The pixels of a page and their scaling to the screen.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace folium {

struct PageSource {
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t bitsPerPixel = 0;          // 1 (leftmost pixel in the highest bit), 8, 24 (BGR) or 32 (BGRX)
    const uint32_t* palette = nullptr;  // 0x00RRGGBB; 2 or 256 of them for 1 and 8 bits
    const uint8_t* topRow = nullptr;
    ptrdiff_t stride = 0;

    bool operator==(const PageSource&) const = default;
    bool Valid() const;
    const uint8_t* Row(uint32_t y) const { return topRow + static_cast<ptrdiff_t>(y) * stride; }
};

// A part of the page, of the page scaled to width x height pixels. Inside it.
struct ScaledPart {
    uint32_t width, height;
    uint32_t left, top;
    uint32_t partWidth, partHeight;
};

// Fill partWidth x partHeight pixels 0x00RRGGBB, row by row.
// The average of all that lies under a pixel, weighted by how much of it does.
void ScaleSmooth(const PageSource& page, const ScaledPart& part, uint32_t* out);
// The pixel under the middle.
void ScaleNearest(const PageSource& page, const ScaledPart& part, uint32_t* out);

}  // namespace folium
