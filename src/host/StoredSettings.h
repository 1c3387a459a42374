#pragma once
// What the module keeps in its settings node: names of values and nodes, how a rectangle stands there, how identifiers
// are written as names.

#include <cstddef>
#include <cstdint>
#include <string>

#include "host/WhiteSpace.h"

namespace host {

// A set's node.
inline constexpr const wchar_t* kKeyName = L"Name";
inline constexpr const wchar_t* kKeyFlags = L"Flags";
inline constexpr const wchar_t* kKeyDisplayRect = L"DisplayRect";
inline constexpr const wchar_t* kKeyRect = L"Rect";
// A rectangle's node.
inline constexpr const wchar_t* kKeyLeft = L"Position:left";
inline constexpr const wchar_t* kKeyTop = L"Position:top";
inline constexpr const wchar_t* kKeyRight = L"Position:right";
inline constexpr const wchar_t* kKeyBottom = L"Position:bottom";
// The page of the configuration dialog.
inline constexpr const wchar_t* kKeyPageFormat = L"PageFormat";         // identifier of a standard size
inline constexpr const wchar_t* kKeyPagePortrait = L"RadioPageOrient";  // true: portrait
inline constexpr const wchar_t* kKeyPageStandard = L"RadioPageType";    // true: a standard size
inline constexpr const wchar_t* kKeyCustomWidth = L"CustomWidth";       // last custom size
inline constexpr const wchar_t* kKeyCustomHeight = L"CustomHeight";
inline constexpr const wchar_t* kKeyRealWidth = L"RealWidth";  // the size in effect
inline constexpr const wchar_t* kKeyRealHeight = L"RealHeight";
inline constexpr const wchar_t* kKeyPageScanned = L"RadioPageSource";  // true: scanned documents, false: blank page
// Its view.
inline constexpr const wchar_t* kKeySmooth = L"LastGrey";
inline constexpr const wchar_t* kKeyScale = L"LastScale";
inline constexpr const wchar_t* kKeyWidths = L"ColumnsWidth";
inline constexpr const wchar_t* kKeyWidthsIndexing = L"ColumnsWidthWithIndexing";

// All values, for who copies nodes that do not list theirs.
inline constexpr const wchar_t* kStoredValues[] = {
    kKeyName,       kKeyFlags,        kKeyLeft,         kKeyTop,         kKeyRight,        kKeyBottom,
    kKeyPageFormat, kKeyPagePortrait, kKeyPageStandard, kKeyCustomWidth, kKeyCustomHeight, kKeyRealWidth,
    kKeyRealHeight, kKeyPageScanned,  kKeySmooth,       kKeyScale,       kKeyWidths,       kKeyWidthsIndexing,
};

// The flag of a set whose areas are the parts of the page to leave out; the public header gives it to hosts.
inline constexpr uint32_t kAreasIgnored = 0x10000000;

// A coordinate of a rectangle node, in the order in which they are read and written.
template <class Rect>
struct StoredCoordinate {
    const wchar_t* name;
    int32_t Rect::*member;
};
template <class Rect>
inline constexpr StoredCoordinate<Rect> kStoredCoordinates[] = {
    {kKeyBottom, &Rect::bottom}, {kKeyLeft, &Rect::left}, {kKeyRight, &Rect::right}, {kKeyTop, &Rect::top}};

// The key of a set: "0x" and eight lower-case hexadecimal digits.
inline std::wstring MakeSetKey(uint32_t id) {
    std::wstring key = L"0x00000000";
    for (size_t i = key.size(); id != 0; id >>= 4) key[--i] = L"0123456789abcdef"[id & 0xF];
    return key;
}

// What keys with a number beyond it are read as.
inline constexpr uint32_t kLargestSetKey = 0x7FFFFFFF;

// The identifier of a key, read as a signed 32-bit hexadecimal number: leading white space, a sign and a "0x" prefix
// are taken, reading stops at the first other character, and a number too large ends at the limit. 0 when the key does
// not begin with a number.
inline uint32_t ParseSetKey(const std::wstring& key) {
    const auto digit = [](wchar_t c) {
        if (c >= L'0' && c <= L'9') return c - L'0';
        if (c >= L'a' && c <= L'f') return c - L'a' + 10;
        if (c >= L'A' && c <= L'F') return c - L'A' + 10;
        return -1;
    };
    // The terminator is no digit, so no position needs a bounds check.
    const wchar_t* p = key.c_str();
    while (IsSpace(*p)) ++p;
    const bool negative = *p == L'-';
    if (*p == L'-' || *p == L'+') ++p;
    if (p[0] == L'0' && (p[1] == L'x' || p[1] == L'X') && digit(p[2]) >= 0) p += 2;

    const int64_t limit = int64_t{kLargestSetKey} + (negative ? 1 : 0);
    int64_t value = 0;
    for (int next = digit(*p); next >= 0; next = digit(*++p)) {
        value = value * 16 + next;
        if (value > limit) value = limit;
    }
    return static_cast<uint32_t>(negative ? -value : value);
}

}  // namespace host
