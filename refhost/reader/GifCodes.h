#pragma once
// The pixels of a GIF image from its codes, lowest bit first, in blocks of up to 255 bytes.

#include <cstddef>
#include <cstdint>
#include <span>

#include "refhost/reader/Codecs.h"

namespace reader {

class GifCodes {
public:
    // `blocks` has whole ones, each behind its length, and an empty one at the end. `codeSize`: bits of a pixel, 1
    // to 8.
    GifCodes(std::span<const uint8_t> blocks, uint32_t codeSize);

    // The next `count` pixels. Throws BadPiece when they are not there.
    void Read(uint8_t* to, size_t count);

private:
    static constexpr uint32_t kMost = 4096;
    static constexpr uint32_t kNone = kMost;

    void NextString();
    uint32_t NextCode();
    uint8_t NextByte();
    void Clear();
    void Spell(uint32_t code, uint32_t length);

    // A string is another one and a pixel behind it.
    struct String {
        uint16_t front;
        uint16_t length;
        uint8_t last;
    };

    std::span<const uint8_t> m_blocks;
    size_t m_at = 0;
    uint32_t m_blockLeft = 0;
    uint32_t m_bits = 0;
    uint32_t m_bitCount = 0;

    const uint32_t m_clear;  // one higher is the end of the pixels
    uint32_t m_width = 0;
    uint32_t m_known = 0;
    uint32_t m_before = kNone;  // the code in front
    String m_strings[kMost];
    // The string being read out.
    uint8_t m_pixels[kMost];
    uint32_t m_read = 0;
    uint32_t m_length = 0;
};

}  // namespace reader
