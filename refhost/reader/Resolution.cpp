#include "refhost/reader/Resolution.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace reader {

namespace {

constexpr double kMetresPerInch = 0.0254;
constexpr double kSnap = 0.026;  // one dot per metre
constexpr int64_t kTenthsPerInch = 254;
constexpr int64_t kUnitsPerDot = 1'000'000;  // resolutions as integers: at most 10^10 units

int64_t DpiUnits(double dpi) {
    return std::llround(dpi * static_cast<double>(kUnitsPerDot));
}

// position * dpi / 254 rounded down or up. Positions of 32 bits reach 2 * 10^19 with units of 10^-6, which is too wide:
// the whole inches and the rest of the position are taken apart.
int64_t PixelAt(int64_t position, int64_t units, bool up) {
    int64_t inches = position / kTenthsPerInch;
    int64_t rest = position % kTenthsPerInch;
    if (rest < 0) {
        rest += kTenthsPerInch;
        --inches;
    }
    // Whole dots and their fraction of `inches`, then the fraction of an inch on top of it.
    const int64_t dots = units / kUnitsPerDot;
    const int64_t fraction = units % kUnitsPerDot;
    const int64_t scaled = inches * fraction * kTenthsPerInch + rest * units;
    const int64_t divisor = kUnitsPerDot * kTenthsPerInch;
    int64_t whole = scaled / divisor;
    const int64_t left = scaled % divisor;
    if (left < 0) --whole;
    if (up && left != 0) ++whole;
    return inches * dots + whole;
}

}  // namespace

bool IsPossibleDpi(double dpi) {
    return dpi >= kMinDpi && dpi <= kMaxDpi;
}

double SnapDpi(double dpi) {
    const double whole = std::round(dpi);
    return std::fabs(dpi - whole) <= kSnap ? whole : dpi;
}

double DpiOfPixelsPerMetre(double pixels) {
    return SnapDpi(pixels * kMetresPerInch);
}

uint32_t PixelsPerMetre(double dpi) {
    return static_cast<uint32_t>(std::llround(dpi / kMetresPerInch));
}

Resolution ResolveResolution(double fileX, double fileY, double callerX, double callerY) {
    const auto pick = [](double caller, double file) {
        if (IsPossibleDpi(caller)) return caller;
        return IsPossibleDpi(SnapDpi(file)) ? SnapDpi(file) : 0.0;
    };
    const double x = pick(callerX, fileX);
    const double y = pick(callerY, fileY);
    Resolution result;
    result.x = x != 0 ? x : y != 0 ? y : kAssumedDpi;
    result.y = y != 0 ? y : x != 0 ? x : kAssumedDpi;
    result.assumed = x == 0 || y == 0;
    return result;
}

PixelRange PixelsTouched(int32_t from, int32_t to, double dpi, uint32_t count) {
    if (from > to) std::swap(from, to);
    if (from == to) return {};
    const int64_t units = DpiUnits(dpi);
    const int64_t begin = std::clamp<int64_t>(PixelAt(from, units, false), 0, count);
    const int64_t end = std::clamp<int64_t>(PixelAt(to, units, true), 0, count);
    return {static_cast<uint32_t>(begin), static_cast<uint32_t>(end)};
}

int32_t TenthsOfPixels(uint32_t count, double dpi) {
    const double tenths = std::round(static_cast<double>(count) * static_cast<double>(kTenthsPerInch) / dpi);
    return static_cast<int32_t>(std::clamp(tenths, 1.0, static_cast<double>(std::numeric_limits<int32_t>::max())));
}

}  // namespace reader
