#include "refhost/app/ZoneFile.h"

#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace zonhost {

namespace {

constexpr double kTenthsPerInch = 254.0;
constexpr size_t kMostProblems = 10;

std::string_view NextWord(std::string_view& line) {
    constexpr std::string_view kBlanks = " \t\r\f\v";
    const size_t begin = line.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) {
        line = {};
        return {};
    }
    line.remove_prefix(begin);
    const size_t end = std::min(line.find_first_of(kBlanks), line.size());
    const std::string_view word = line.substr(0, end);
    line.remove_prefix(end);
    return word;
}

// The edge at a pixel position, or nothing when it does not fit.
std::optional<int32_t> EdgeOf(int64_t pixels, double dotsPerInch) {
    const double tenths = std::round(static_cast<double>(pixels) * kTenthsPerInch / dotsPerInch);
    if (tenths > std::numeric_limits<int32_t>::max()) return std::nullopt;
    return static_cast<int32_t>(tenths);
}

struct Zone {
    std::optional<Rect> rect;
    std::string problem;
};

Zone ParseZone(std::string_view line, const Resolution& resolution) {
    std::array<int64_t, 4> numbers{};
    constexpr std::array<const char*, 4> kNames{"left", "top", "width", "height"};
    for (size_t i = 0; i < numbers.size(); ++i) {
        const std::string_view word = NextWord(line);
        if (word.empty()) return {{}, std::string(kNames[i]) + " is missing"};
        const auto number = ParseNumber(word);
        if (!number) return {{}, std::string(kNames[i]) + " is no whole number: " + std::string(word.substr(0, 40))};
        if (*number < (i < 2 ? 0 : 1) || *number > std::numeric_limits<int32_t>::max()) {
            return {{}, std::string(kNames[i]) + (i < 2 ? " is negative" : " is not positive") + " or too large"};
        }
        numbers[i] = *number;
    }
    const auto left = EdgeOf(numbers[0], resolution.x);
    const auto top = EdgeOf(numbers[1], resolution.y);
    const auto right = EdgeOf(numbers[0] + numbers[2], resolution.x);
    const auto bottom = EdgeOf(numbers[1] + numbers[3], resolution.y);
    if (!left || !top || !right || !bottom) return {{}, "lies too far out for this resolution"};
    return {Rect{*left, *top, *right, *bottom}, {}};
}

bool IsBlank(std::string_view line) {
    return NextWord(line).empty();
}

}  // namespace

std::vector<Rect> ParseZones(std::string_view text, const std::string& fileName, const Resolution& resolution) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    std::vector<Rect> zones;
    std::vector<std::string> problems;
    for (size_t number = 1; !text.empty(); ++number) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (IsBlank(line)) continue;
        const Zone zone = ParseZone(line, resolution);
        if (zone.rect) {
            zones.push_back(*zone.rect);
        } else if (problems.size() < kMostProblems) {
            problems.push_back(fileName + ": line " + std::to_string(number) + ": " + zone.problem);
        }
    }
    if (!problems.empty()) throw CommandError(ExitCode::kNothingDone, Join(problems, "\n"));
    if (zones.empty()) throw CommandError(ExitCode::kNothingDone, fileName + ": holds no zone");
    return zones;
}

Rect PageOfPixels(uint32_t width, uint32_t height, const Resolution& resolution) {
    return {0, 0, EdgeOf(width, resolution.x).value_or(0), EdgeOf(height, resolution.y).value_or(0)};
}

}  // namespace zonhost
