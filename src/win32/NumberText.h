#pragma once
// Numbers as the user types and sees them, always with a decimal point: a host may have set another locale.

#include <optional>
#include <string>
#include <string_view>

namespace win32 {

// The number that the whole text is; blanks around it are allowed. Nothing for an empty text, for anything left over
// (a comma, a unit, a second number), for inf, nan and hexadecimal. Too large for a double is infinite, so that a range
// check refuses it.
std::optional<double> ParseNumber(std::wstring_view text);

// As %.*f.
std::wstring FormatFixed(double value, int decimals);
// As %.*g: the shortest form with so many significant digits.
std::wstring FormatGeneral(double value, int digits);

}  // namespace win32
