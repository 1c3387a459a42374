#pragma once
// Points and rectangles on a page, in tenths of a millimetre from its top-left corner, and on the control's window, in
// pixels. Arithmetic on them is done wide and saturates: a program may hand in any 32-bit value.

#include <algorithm>
#include <cstdint>
#include <limits>

namespace folium {

struct Point {
    int32_t x = 0, y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    int32_t width = 0, height = 0;
    bool operator==(const Size&) const = default;
};

struct Rect {
    int32_t left = 0, top = 0, right = 0, bottom = 0;
    bool operator==(const Rect&) const = default;
};

// Pixels of the window; right and bottom are outside.
struct PixelRect {
    int left = 0, top = 0, right = 0, bottom = 0;
    bool operator==(const PixelRect&) const = default;
    bool Empty() const { return left >= right || top >= bottom; }
};

inline int32_t Saturate(int64_t value) {
    constexpr int64_t kLow = std::numeric_limits<int32_t>::min();
    constexpr int64_t kHigh = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::clamp(value, kLow, kHigh));
}

inline Rect Normalized(Rect rect) {
    if (rect.left > rect.right) std::swap(rect.left, rect.right);
    if (rect.top > rect.bottom) std::swap(rect.top, rect.bottom);
    return rect;
}

inline Rect Shifted(const Rect& rect, int64_t dx, int64_t dy) {
    return {Saturate(rect.left + dx), Saturate(rect.top + dy), Saturate(rect.right + dx), Saturate(rect.bottom + dy)};
}

inline Rect Union(const Rect& a, const Rect& b) {
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

inline int64_t WidthOf(const Rect& rect) {
    return int64_t{rect.right} - rect.left;
}
inline int64_t HeightOf(const Rect& rect) {
    return int64_t{rect.bottom} - rect.top;
}

inline PixelRect Intersection(const PixelRect& a, const PixelRect& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}
inline PixelRect Inflated(const PixelRect& rect, int by) {
    return {rect.left - by, rect.top - by, rect.right + by, rect.bottom + by};
}

}  // namespace folium
