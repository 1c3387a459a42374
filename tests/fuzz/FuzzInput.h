#pragma once
// The bytes of one fuzz input, handed out as numbers and texts. Behind their end everything is 0 and empty.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>

namespace fuzz {

class Input {
public:
    Input(const uint8_t* bytes, size_t size) : m_at(bytes), m_end(bytes + size) {}

    bool IsEmpty() const { return m_at == m_end; }
    uint8_t Byte() { return IsEmpty() ? uint8_t{0} : *m_at++; }
    uint32_t Number() {
        uint32_t value = 0;
        for (int i = 0; i < 4; ++i) value |= uint32_t{Byte()} << (8 * i);
        return value;
    }
    // A coordinate: of a page, at the ends of 32 bits, or any.
    int32_t Coordinate() {
        const uint8_t kind = Byte();
        if (kind < 128) return kind * 256 + Byte();
        if (kind < 160) return -Byte();
        if (kind < 176) return std::numeric_limits<int32_t>::max() - Byte();
        if (kind < 192) return std::numeric_limits<int32_t>::min() + Byte();
        return static_cast<int32_t>(Number());
    }
    // Up to a line end. A byte below 0x80 is a character of its own, another one gives a 16-bit unit with the next.
    std::wstring Text() {
        std::wstring text;
        for (uint8_t byte = Byte(); !IsEmpty() && byte != '\n'; byte = Byte()) {
            text += static_cast<wchar_t>(byte < 0x80 ? byte : (byte - 0x80) * 512 + Byte());
        }
        return text;
    }
    std::string_view Rest() const { return {reinterpret_cast<const char*>(m_at), static_cast<size_t>(m_end - m_at)}; }

private:
    const uint8_t* m_at;
    const uint8_t* m_end;
};

// Ends the process as a crash does, so that the fuzzer keeps the input.
inline void Require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "violated: %s\n", what);
    std::fflush(stderr);
    std::abort();
}

}  // namespace fuzz
