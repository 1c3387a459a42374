#include "win32/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
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

// Of a number outside the range of a double: whether it is too small for it, not too large.
bool IsTiny(std::string_view number) {
    const std::string_view digits = number.substr(0, number.find_first_of("eE"));
    const auto point = static_cast<int64_t>(std::min(digits.find('.'), digits.size()));
    const auto leading = static_cast<int64_t>(digits.find_first_of("123456789"));
    int64_t exponent = 0;
    if (digits.size() < number.size()) {
        std::string_view text = number.substr(digits.size() + 1);
        if (text.starts_with('+')) text.remove_prefix(1);
        constexpr int64_t kBeyondAnyText = int64_t{1} << 60;
        const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
        if (error == std::errc::result_out_of_range) exponent = text.front() == '-' ? -kBeyondAnyText : kBeyondAnyText;
        exponent = std::clamp(exponent, -kBeyondAnyText, kBeyondAnyText);
    }
    return point - leading + exponent <= 0;
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
        if (IsTiny(narrow)) return 0.0;
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
