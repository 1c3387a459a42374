#include "refhost/settings/Unicode.h"

#include <cstddef>
#include <cstdint>

namespace settings {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsLead(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool IsTrail(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

struct CodePoint {
    char32_t value = kReplacement;
    size_t length = 1;  // units taken from the text
    bool valid = false;
};

CodePoint DecodeUtf16(std::u16string_view text) {
    const char32_t unit = text[0];
    if (!IsLead(unit) && !IsTrail(unit)) return {unit, 1, true};
    if (IsTrail(unit) || text.size() < 2 || !IsTrail(text[1])) return {};
    return {0x10000 + ((unit - 0xD800) << 10) + (text[1] - 0xDC00u), 2, true};
}

CodePoint DecodeUtf8(std::string_view text) {
    const auto first = static_cast<uint8_t>(text[0]);
    if (first < 0x80) return {first, 1, true};
    const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length) return {};
    char32_t value = first & (0xFFu >> (length + 1));
    for (size_t i = 1; i < length; ++i) {
        const auto next = static_cast<uint8_t>(text[i]);
        if ((next & 0xC0) != 0x80) return {};
        value = (value << 6) | (next & 0x3Fu);
    }
    const char32_t least = length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
    if (value < least || value > 0x10FFFF || IsLead(value) || IsTrail(value)) return {};
    return {value, length, true};
}

void AppendUtf8(std::string& result, char32_t value) {
    const auto append = [&](char32_t byte) { result.push_back(static_cast<char>(static_cast<uint8_t>(byte))); };
    if (value < 0x80) {
        append(value);
        return;
    }
    if (value < 0x800) {
        append(0xC0 | (value >> 6));
    } else {
        if (value < 0x10000) {
            append(0xE0 | (value >> 12));
        } else {
            append(0xF0 | (value >> 18));
            append(0x80 | ((value >> 12) & 0x3F));
        }
        append(0x80 | ((value >> 6) & 0x3F));
    }
    append(0x80 | (value & 0x3F));
}

}  // namespace

bool IsValidUtf16(std::u16string_view text) {
    while (!text.empty()) {
        const CodePoint next = DecodeUtf16(text);
        if (!next.valid) return false;
        text.remove_prefix(next.length);
    }
    return true;
}

std::string Utf8From(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const CodePoint next = DecodeUtf16(text);
        AppendUtf8(result, next.value);
        text.remove_prefix(next.length);
    }
    return result;
}

std::u16string Utf16From(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const CodePoint next = DecodeUtf8(text);
        if (next.value < 0x10000) {
            result.push_back(static_cast<char16_t>(next.value));
        } else {
            result.push_back(static_cast<char16_t>(0xD800 + ((next.value - 0x10000) >> 10)));
            result.push_back(static_cast<char16_t>(0xDC00 + ((next.value - 0x10000) & 0x3FF)));
        }
        text.remove_prefix(next.length);
    }
    return result;
}

}  // namespace settings
