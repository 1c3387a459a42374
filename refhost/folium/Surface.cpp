#include "refhost/folium/Surface.h"

namespace folium {

void Surface::Fill(const PixelRect& rect, uint32_t color) {
    const PixelRect part = Intersection(rect, m_clip);
    if (part.Empty()) return;
    for (int y = part.top; y < part.bottom; ++y) std::fill(At(part.left, y), At(part.right, y), color);
}

void Surface::Frame(const PixelRect& rect, int thickness, uint32_t color, int dash) {
    if (rect.right - rect.left <= 2 * thickness || rect.bottom - rect.top <= 2 * thickness) {
        FillDashed(rect, color, dash, rect.right - rect.left > rect.bottom - rect.top);
        return;
    }
    FillDashed({rect.left, rect.top, rect.right, rect.top + thickness}, color, dash, true);
    FillDashed({rect.left, rect.bottom - thickness, rect.right, rect.bottom}, color, dash, true);
    FillDashed({rect.left, rect.top + thickness, rect.left + thickness, rect.bottom - thickness}, color, dash, false);
    FillDashed({rect.right - thickness, rect.top + thickness, rect.right, rect.bottom - thickness}, color, dash, false);
}

void Surface::FillDashed(const PixelRect& rect, uint32_t color, int dash, bool across) {
    if (dash <= 0) {
        Fill(rect, color);
        return;
    }
    const PixelRect part = Intersection(rect, m_clip);
    if (part.Empty()) return;
    const int start = across ? rect.left : rect.top;
    const int from = across ? part.left : part.top;
    const int to = across ? part.right : part.bottom;
    for (int low = start + (from - start) / dash * dash; low < to; low += dash) {
        if ((low - start) / dash % 2 != 0) continue;
        Fill(across ? PixelRect{low, part.top, low + dash, part.bottom}
                    : PixelRect{part.left, low, part.right, low + dash},
             color);
    }
}

}  // namespace folium
