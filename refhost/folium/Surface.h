#pragma once
// A picture in memory to draw on: 32 bits for each pixel, 0x00RRGGBB, topmost row first.

#include <cstddef>
#include <cstdint>

#include "refhost/folium/Geometry.h"

namespace folium {

class Surface {
public:
    Surface(uint32_t* pixels, int width, int height) : m_pixels(pixels), m_width(width), m_clip{0, 0, width, height} {}

    const PixelRect& Clip() const { return m_clip; }
    // Draws only inside `clip` from now on, as far as it lies on the surface.
    Surface Clipped(const PixelRect& clip) const {
        Surface part = *this;
        part.m_clip = Intersection(m_clip, clip);
        return part;
    }
    uint32_t* At(int x, int y) { return m_pixels + static_cast<ptrdiff_t>(y) * m_width + x; }

    void Fill(const PixelRect& rect, uint32_t color);
    // A frame inside the rectangle's edges. With a dash length every other stretch of that length is left out.
    void Frame(const PixelRect& rect, int thickness, uint32_t color, int dash = 0);

private:
    void FillDashed(const PixelRect& rect, uint32_t color, int dash, bool across);

    uint32_t* m_pixels;
    int m_width;
    PixelRect m_clip;
};

}  // namespace folium
