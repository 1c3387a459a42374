#pragma once
// Names in the area sets' part of the settings node, and how identifiers are written in them.

#include <cstdint>
#include <string>

inline constexpr const wchar_t* kKeyName = L"Name";
inline constexpr const wchar_t* kKeyFlags = L"Flags";
inline constexpr const wchar_t* kKeyDisplayRect = L"DisplayRect";
inline constexpr const wchar_t* kKeyRect = L"Rect";
inline constexpr const wchar_t* kKeyLeft = L"Position:left";
inline constexpr const wchar_t* kKeyTop = L"Position:top";
inline constexpr const wchar_t* kKeyRight = L"Position:right";
inline constexpr const wchar_t* kKeyBottom = L"Position:bottom";

// The key of a set: "0x" and eight lower-case hexadecimal digits.
std::wstring MakeSetKey(uint32_t dwID);

// The identifier of a key, read as a signed 32-bit hexadecimal number: leading white space, a sign and a "0x" prefix
// are taken, reading stops at the first other character, and a number too large ends at the limit (0x7fffffff). 0 when
// the key does not begin with a number.
uint32_t ParseSetKey(const std::wstring& key);
