#pragma once
// Bits of a piece of a file, the first in the highest place. Behind the end stand zeros; IsBeyond tells.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace reader {

class BitReader {
public:
    explicit BitReader(std::span<const uint8_t> bytes) : m_bytes(bytes) {}

    // Has at least 56 bits at hand afterwards.
    void Fill() {
        if (m_at + 8 <= m_bytes.size()) {
            uint64_t next = 0;
            std::memcpy(&next, m_bytes.data() + m_at, sizeof next);
            m_bits |= __builtin_bswap64(next) >> m_count;
            m_at += (63 - m_count) / 8;
            m_count |= 56;
            return;
        }
        for (; m_count < 56; m_count += 8, ++m_at) {
            const uint64_t next = m_at < m_bytes.size() ? m_bytes[m_at] : 0;
            m_bits |= next << (56 - m_count);
        }
    }
    void FillBelow(uint32_t count) {
        if (m_count < count) Fill();
    }

    // The next bits, of those at hand.
    uint32_t Peek(uint32_t count) const { return static_cast<uint32_t>(m_bits >> (64 - count)); }
    uint32_t LeadingZeros() const { return Fewer(std::countl_zero(m_bits)); }
    uint32_t LeadingOnes() const { return Fewer(std::countl_one(m_bits)); }
    uint32_t AtHand() const { return m_count; }
    void Skip(uint32_t count) {
        m_bits <<= count;
        m_count -= count;
    }

    // To the next whole number of `bytes`, 1 or 2, from the beginning.
    void Align(uint32_t bytes) {
        Skip(m_count % 8);
        if (bytes == 2 && (m_at - m_count / 8) % 2 != 0) {
            FillBelow(8);
            Skip(8);
        }
    }

    // Whether more bits were taken than there are.
    bool IsBeyond() const { return m_at > m_bytes.size() && (m_at - m_bytes.size()) * 8 > m_count; }
    bool IsAtEnd() const { return m_at >= m_bytes.size() && (m_at - m_bytes.size()) * 8 >= m_count; }

private:
    uint32_t Fewer(int found) const {
        return static_cast<uint32_t>(found) < m_count ? static_cast<uint32_t>(found) : m_count;
    }

    std::span<const uint8_t> m_bytes;
    size_t m_at = 0;
    uint64_t m_bits = 0;
    uint32_t m_count = 0;
};

}  // namespace reader
