#include "refhost/reader/GifCodes.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace reader {

GifCodes::GifCodes(std::span<const uint8_t> blocks, uint32_t codeSize)
    : m_blocks(blocks), m_clear(uint32_t{1} << codeSize) {
    for (uint32_t code = 0; code < m_clear; ++code) m_strings[code] = {0, 1, static_cast<uint8_t>(code)};
    Clear();
}

void GifCodes::Read(uint8_t* to, size_t count) {
    while (count > 0) {
        if (m_read == m_length) NextString();
        const size_t size = std::min<size_t>(count, m_length - m_read);
        std::memcpy(to, m_pixels + m_read, size);
        m_read += static_cast<uint32_t>(size);
        to += size;
        count -= size;
    }
}

void GifCodes::Clear() {
    m_width = static_cast<uint32_t>(std::bit_width(m_clear));
    m_known = m_clear + 2;
    m_before = kNone;
}

void GifCodes::NextString() {
    uint32_t code = NextCode();
    for (; code == m_clear; code = NextCode()) Clear();
    if (code == m_clear + 1) throw BadPiece{L"ends before its last row"};
    // The string that is not known yet is the one in front with its own first pixel behind it.
    const bool isNew = m_before != kNone && m_known < kMost && code == m_known;
    if (!isNew && code >= m_known) throw BadPiece{L"is damaged"};
    const uint32_t from = isNew ? m_before : code;
    Spell(from, m_strings[from].length);
    if (isNew) m_pixels[m_length++] = m_pixels[0];
    if (m_before != kNone && m_known < kMost) {
        const auto length = static_cast<uint16_t>(m_strings[m_before].length + 1);
        m_strings[m_known++] = {static_cast<uint16_t>(m_before), length, m_pixels[0]};
    }
    if (m_known == uint32_t{1} << m_width && m_width < 12) ++m_width;
    m_before = code;
}

void GifCodes::Spell(uint32_t code, uint32_t length) {
    for (uint32_t i = length; i > 0; --i, code = m_strings[code].front) m_pixels[i - 1] = m_strings[code].last;
    m_read = 0;
    m_length = length;
}

uint32_t GifCodes::NextCode() {
    for (; m_bitCount < m_width; m_bitCount += 8) m_bits |= uint32_t{NextByte()} << m_bitCount;
    const uint32_t code = m_bits & ((uint32_t{1} << m_width) - 1);
    m_bits >>= m_width;
    m_bitCount -= m_width;
    return code;
}

uint8_t GifCodes::NextByte() {
    if (m_blockLeft == 0) {
        // The empty block stays the last.
        m_blockLeft = m_blocks[m_at];
        if (m_blockLeft == 0) throw BadPiece{L"ends before its last row"};
        ++m_at;
    }
    --m_blockLeft;
    return m_blocks[m_at++];
}

}  // namespace reader
