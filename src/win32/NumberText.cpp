#include "win32/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace win32 {
namespace {

constexpr std::wstring_view kBlanks = L" \t";
// Enough for the largest double in full and for any number of decimals that is shown.
constexpr size_t kLongestNumber = 400;

std::wstring_view WithoutBlanks(std::wstring_view text) {
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::wstring_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::wstring Format(double value, std::chars_format format, int precision) {
    std::array<char, kLongestNumber> buffer;
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format, precision);
    if (error != std::errc()) return {};
    return {buffer.data(), end};
}

}  // namespace

std::optional<double> ParseNumber(std::wstring_view text) {
    std::wstring_view digits = WithoutBlanks(text);
    if (!digits.empty() && digits.front() == L'+') {
        digits.remove_prefix(1);
        if (!digits.empty() && digits.front() == L'-') return std::nullopt;
    }
    if (digits.empty() || digits.find_first_not_of(L"0123456789.eE+-") != std::wstring_view::npos) return std::nullopt;

    std::string narrow(digits.size(), '\0');
    std::transform(digits.begin(), digits.end(), narrow.begin(), [](wchar_t c) { return static_cast<char>(c); });
    double value = 0.0;
    const char* const end = narrow.data() + narrow.size();
    const auto [stop, error] = std::from_chars(narrow.data(), end, value);
    if (stop != end || error == std::errc::invalid_argument) return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        // The function does not say at which end: a number with so small an exponent is nothing.
        const size_t exponent = narrow.find_first_of("eE");
        const bool tiny = exponent != std::string::npos && narrow.find('-', exponent) != std::string::npos;
        if (tiny) return 0.0;
        const double huge = std::numeric_limits<double>::infinity();
        return narrow.front() == '-' ? -huge : huge;
    }
    return value;
}

std::wstring FormatFixed(double value, int decimals) {
    return Format(value, std::chars_format::fixed, decimals);
}

std::wstring FormatGeneral(double value, int digits) {
    return Format(value, std::chars_format::general, digits);
}

}  // namespace win32
