#include "refhost/units/UnitRules.h"

#include <cmath>
#include <cstdlib>
#include <limits>

namespace units {
namespace {

constexpr int32_t kPerMillimetre = 10;
constexpr int32_t kPerInch = 254;
constexpr int kInchDecimals = 1000;

int32_t PerUnit(MeasureSystem system) {
    return system == MeasureSystem::kMetric ? kPerMillimetre : kPerInch;
}

std::wstring Digits(int64_t value, int64_t scale) {
    std::wstring text = value < 0 ? L"-" : L"";
    const int64_t magnitude = std::abs(value);
    text += std::to_wstring(magnitude / scale);
    text += L'.';
    // The leading 1 keeps the zeros after the point.
    text += std::to_wstring(scale + magnitude % scale).substr(1);
    return text;
}

}  // namespace

double ToUser(int32_t length, MeasureSystem system) {
    return static_cast<double>(length) / PerUnit(system);
}

int32_t FromUser(double value, MeasureSystem system) {
    using Limits = std::numeric_limits<int32_t>;
    const double length = std::round(value * PerUnit(system));
    if (std::isnan(length)) return 0;
    if (length >= static_cast<double>(Limits::max())) return Limits::max();
    if (length <= static_cast<double>(Limits::min())) return Limits::min();
    return static_cast<int32_t>(length);
}

std::wstring Format(int32_t length, MeasureSystem system) {
    if (system == MeasureSystem::kMetric) return Digits(length, kPerMillimetre);
    const int64_t half = length < 0 ? -(kPerInch / 2) : kPerInch / 2;
    return Digits((int64_t{length} * kInchDecimals + half) / kPerInch, kInchDecimals);
}

const wchar_t* UnitName(MeasureSystem system) {
    return system == MeasureSystem::kMetric ? L"mm" : L"in";
}

}  // namespace units
