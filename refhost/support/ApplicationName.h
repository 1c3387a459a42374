#pragma once
// What the host calls itself in the captions of its boxes.

namespace support {

inline constexpr wchar_t kApplicationName[] = L"Zonwick Reference Host";

}  // namespace support
