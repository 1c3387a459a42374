#include "store/SettingsKeys.h"

#include <cstddef>

namespace {

bool IsSpace(wchar_t c) {
    return c == L' ' || (c >= L'\t' && c <= L'\r');
}

int HexDigit(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    if (c >= L'a' && c <= L'f') return c - L'a' + 10;
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    return -1;
}

}  // namespace

std::wstring MakeSetKey(uint32_t dwID) {
    constexpr wchar_t kDigits[] = L"0123456789abcdef";
    std::wstring key = L"0x00000000";
    for (size_t i = key.size(); dwID != 0; dwID >>= 4) key[--i] = kDigits[dwID & 0xF];
    return key;
}

uint32_t ParseSetKey(const std::wstring& key) {
    // The terminator is no digit, so no position needs a bounds check.
    const wchar_t* p = key.c_str();
    while (IsSpace(*p)) ++p;
    const bool negative = *p == L'-';
    if (*p == L'-' || *p == L'+') ++p;
    if (p[0] == L'0' && (p[1] == L'x' || p[1] == L'X') && HexDigit(p[2]) >= 0) p += 2;

    const int64_t limit = negative ? int64_t{0x80000000} : int64_t{0x7FFFFFFF};
    int64_t value = 0;
    for (int digit = HexDigit(*p); digit >= 0; digit = HexDigit(*++p)) {
        value = value * 16 + digit;
        if (value > limit) value = limit;
    }
    return static_cast<uint32_t>(negative ? -value : value);
}
