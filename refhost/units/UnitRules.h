#pragma once
// How lengths are converted and shown in the user's measurement system. Internal lengths are whole tenths of a
// millimetre.

#include <cstdint>
#include <string>

namespace units {

enum class MeasureSystem : int32_t { kMetric = 1, kInches = 2 };

double ToUser(int32_t length, MeasureSystem system);
// Rounded to the nearest length, halves away from zero; what is too large ends at the largest length. NaN gives 0.
int32_t FromUser(double value, MeasureSystem system);
// A bare number with a decimal point whatever the locale: one decimal in millimetres, three in inches. Reading it back
// gives the same length.
std::wstring Format(int32_t length, MeasureSystem system);
const wchar_t* UnitName(MeasureSystem system);

}  // namespace units
