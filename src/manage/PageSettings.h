#pragma once
// Plain values of the module's settings node that describe the page of the configuration dialog, with the values that
// count when one cannot be read.

#include <cstdint>

inline constexpr const wchar_t* kKeyPageFormat = L"PageFormat";         // identifier in kPaperSizes
inline constexpr const wchar_t* kKeyPagePortrait = L"RadioPageOrient";  // true: portrait
inline constexpr const wchar_t* kKeyPageStandard = L"RadioPageType";    // true: a standard size
inline constexpr const wchar_t* kKeyCustomWidth = L"CustomWidth";       // last custom size
inline constexpr const wchar_t* kKeyCustomHeight = L"CustomHeight";
inline constexpr const wchar_t* kKeyRealWidth = L"RealWidth";  // the size in effect
inline constexpr const wchar_t* kKeyRealHeight = L"RealHeight";
inline constexpr const wchar_t* kKeyPageScanned = L"RadioPageSource";  // true: scanned documents, false: blank page

inline constexpr int32_t kDefaultPageFormat = 4;  // A4
inline constexpr bool kDefaultPagePortrait = true;
inline constexpr bool kDefaultPageStandard = true;
inline constexpr int32_t kDefaultCustomWidth = 2101;
inline constexpr int32_t kDefaultCustomHeight = 2969;
inline constexpr int32_t kDefaultRealWidth = 2100;
inline constexpr int32_t kDefaultRealHeight = 2970;
inline constexpr bool kDefaultPageScanned = true;
