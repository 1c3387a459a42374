#include "refhost/app/Text.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <cwctype>
#include <fstream>

namespace zonhost {

namespace fs = std::filesystem;

namespace {

constexpr uintmax_t kMebibyte = uintmax_t{1} << 20;

bool IsContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

std::optional<double> ParseDots(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    if (!(value >= 1 && value <= 20000)) return std::nullopt;
    return value;
}

}  // namespace

std::string Utf8FromPath(const fs::path& path) {
    try {
        const std::u8string text = path.u8string();
        return {text.begin(), text.end()};
    } catch (const std::exception&) {
        // A name with half a surrogate pair has no UTF-8 form; it can still be opened, only not be shown exactly.
        return "(a file name that is no valid Unicode)";
    }
}

fs::path PathFromUtf8(std::string_view text) {
    return fs::path(std::u8string(text.begin(), text.end())).make_preferred();
}

size_t Utf16Length(std::string_view text) {
    size_t units = 0;
    for (const char c : text) {
        if (IsContinuation(c)) continue;
        units += static_cast<unsigned char>(c) >= 0xF0 ? 2 : 1;
    }
    return units;
}

std::string FoldCase(std::string_view text) {
    std::string folded;
    try {
        std::wstring wide = PathFromUtf8(text).wstring();
        for (wchar_t& c : wide) c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
        folded = Utf8FromPath(fs::path(wide));
    } catch (const std::exception&) {
        folded.assign(text);
    }
    for (char& c : folded) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return folded;
}

std::string Printable(std::string_view text, bool lines) {
    std::string shown;
    shown.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const auto unit = [&](size_t at) { return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U; };
        const unsigned byte = unit(i);
        unsigned code = 0;
        size_t length = 1;
        if (byte < 0x20 || byte == 0x7F) {
            code = byte;
        } else if (byte == 0xC2 && unit(i + 1) < 0xA0) {
            code = unit(i + 1);
            length = 2;
        } else if (byte == 0xE2 && (unit(i + 1) == 0x80 || unit(i + 1) == 0x81)) {
            code = 0x2000 | (unit(i + 1) & 0x3F) << 6 | (unit(i + 2) & 0x3F);
            length = 3;
        }
        const bool turns = (code >= 0x200E && code <= 0x200F) || (code >= 0x2028 && code <= 0x202E) ||
                           (code >= 0x2066 && code <= 0x2069);
        const bool escaped = length == 3 ? turns : code != 0 || byte == 0;
        if (!escaped || (lines && byte == '\n')) {
            shown += text[i];
            continue;
        }
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", code & 0xFFFF);
        shown += escape;
        i += length - 1;
    }
    return shown;
}

std::optional<int64_t> ParseNumber(std::string_view text) {
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        text.remove_prefix(2);
        if (text[0] == '-') return std::nullopt;
        base = 16;
    }
    int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::optional<Resolution> ParseResolution(std::string_view text) {
    const size_t times = text.find_first_of("xX");
    const auto x = ParseDots(text.substr(0, times));
    const auto y = times == std::string_view::npos ? x : ParseDots(text.substr(times + 1));
    if (!x || !y) return std::nullopt;
    return Resolution{*x, *y};
}

std::string ReadTextFile(const fs::path& path, uintmax_t limit) {
    const std::string name = Utf8FromPath(path);
    std::error_code error;
    if (fs::is_directory(path, error)) throw CommandError(ExitCode::kNothingDone, name + ": is a folder, not a file");
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        const char* reason = fs::exists(path, error) ? "cannot be opened for reading" : "no such file";
        throw CommandError(ExitCode::kNothingDone, name + ": " + reason);
    }
    std::string text;
    char buffer[65536];
    while (file.read(buffer, sizeof buffer) || file.gcount() > 0) {
        text.append(buffer, static_cast<size_t>(file.gcount()));
        if (text.size() > limit) {
            throw CommandError(ExitCode::kNothingDone, name + ": longer than the " + std::to_string(limit / kMebibyte) +
                                                           " MiB that such a file can have");
        }
    }
    if (file.bad()) throw CommandError(ExitCode::kNothingDone, name + ": cannot be read");
    return text;
}

std::string Join(const std::vector<std::string>& parts, std::string_view separator) {
    std::string joined;
    for (const std::string& part : parts) {
        if (!joined.empty()) joined += separator;
        joined += part;
    }
    return joined;
}

}  // namespace zonhost
