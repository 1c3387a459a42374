#pragma once
// Numbers in the bytes of a file, in either byte order. Reading past the end gives 0; callers check what they need.

#include <cstddef>
#include <cstdint>
#include <span>

namespace reader {

inline uint32_t Get16(std::span<const uint8_t> bytes, size_t offset, bool bigEndian) {
    if (offset > bytes.size() || bytes.size() - offset < 2) return 0;
    const uint32_t first = bytes[offset];
    const uint32_t second = bytes[offset + 1];
    return bigEndian ? first << 8 | second : second << 8 | first;
}

inline uint32_t Get32(std::span<const uint8_t> bytes, size_t offset, bool bigEndian) {
    if (offset > bytes.size() || bytes.size() - offset < 4) return 0;
    const uint32_t first = Get16(bytes, offset, bigEndian);
    const uint32_t second = Get16(bytes, offset + 2, bigEndian);
    return bigEndian ? first << 16 | second : second << 16 | first;
}

inline void Put32(uint8_t* at, uint32_t value) {
    for (int i = 0; i < 4; ++i) at[i] = static_cast<uint8_t>(value >> (8 * i));
}

inline void Put(uint8_t* at, uint32_t value, int size, bool bigEndian) {
    for (int i = 0; i < size; ++i) {
        at[i] = static_cast<uint8_t>(value >> (8 * (bigEndian ? size - 1 - i : i)));
    }
}

}  // namespace reader
