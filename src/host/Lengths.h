#pragma once
// Lengths and rectangles as all parts have them: whole tenths of a millimetre.

#include <cstdint>
#include <utility>

namespace host {

inline constexpr int32_t kTenthsPerMillimetre = 10;
inline constexpr int32_t kTenthsPerInch = 254;

// With left <= right and top <= bottom, for any type of rectangle.
template <class Rect>
constexpr Rect Normalized(Rect rect) {
    if (rect.left > rect.right) std::swap(rect.left, rect.right);
    if (rect.top > rect.bottom) std::swap(rect.top, rect.bottom);
    return rect;
}

}  // namespace host
