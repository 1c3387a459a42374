#pragma once
// The values of the module's settings node that describe the page of the configuration dialog (host/StoredSettings.h),
// with those that count when one cannot be read.

#include <cstdint>

#include "host/StoredSettings.h"
#include "store/ComSettingsNode.h"

inline constexpr int32_t kDefaultPageFormat = 4;  // A4
inline constexpr bool kDefaultPagePortrait = true;
inline constexpr bool kDefaultPageStandard = true;
inline constexpr int32_t kDefaultCustomWidth = 2101;
inline constexpr int32_t kDefaultCustomHeight = 2969;
inline constexpr int32_t kDefaultRealWidth = 2100;
inline constexpr int32_t kDefaultRealHeight = 2970;
inline constexpr bool kDefaultPageScanned = true;

namespace pagesettings {

inline int32_t ReadInteger(ComSettingsNode& node, const wchar_t* key, int32_t fallback) {
    return win32::ReadOr(fallback, [&] { return node.GetInt64(key); });
}
inline bool ReadBool(ComSettingsNode& node, const wchar_t* key, bool fallback) {
    return win32::ReadOr(fallback, [&] { return node.GetBool(key); });
}

// The size in effect.
inline SIZE ReadSize(ComSettingsNode& node) {
    const LONG width = ReadInteger(node, host::kKeyRealWidth, kDefaultRealWidth);
    return {width, ReadInteger(node, host::kKeyRealHeight, kDefaultRealHeight)};
}
// Whether pages come from scanned documents.
inline bool ReadScanned(ComSettingsNode& node) {
    return ReadBool(node, host::kKeyPageScanned, kDefaultPageScanned);
}

}  // namespace pagesettings
