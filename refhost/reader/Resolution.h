#pragma once
// Resolutions, and lengths on the page in terms of them. The one place of the rule for missing and impossible ones.

#include <cstdint>

namespace reader {

inline constexpr double kMinDpi = 10;
inline constexpr double kMaxDpi = 10000;
inline constexpr double kAssumedDpi = 200;  // that of the host's blank pages

struct Resolution {
    double x = kAssumedDpi;  // dots per inch
    double y = kAssumedDpi;
    bool assumed = true;  // at least one axis has neither the file's own value nor the caller's
};

// False for 0, 1, NaN, infinities and whatever else no scanner has.
bool IsPossibleDpi(double dpi);

// Formats that count dots per metre or centimetre lose a little of a whole number of dots per inch; this brings it
// back, so that an edge at a whole inch stays at a whole pixel.
double SnapDpi(double dpi);
double DpiOfPixelsPerMetre(double pixels);
uint32_t PixelsPerMetre(double dpi);

// The rule: per axis the caller's value where it is above 0, else the file's where it is possible, else the other axis'
// by the same order, else kAssumedDpi. A caller's value that is not possible counts as none.
Resolution ResolveResolution(double fileX, double fileY, double callerX, double callerY);

struct PixelRange {
    uint32_t begin = 0;
    uint32_t end = 0;
    bool IsEmpty() const { return begin >= end; }
};

// The pixels of an axis with `count` pixels that the stretch between two positions in tenths of a millimetre touches:
// rounded outward, clipped. Swapped positions name the same stretch; one without length touches nothing.
PixelRange PixelsTouched(int32_t from, int32_t to, double dpi, uint32_t count);

// The length of `count` pixels in tenths of a millimetre, rounded to nearest, at least 1.
int32_t TenthsOfPixels(uint32_t count, double dpi);

}  // namespace reader
