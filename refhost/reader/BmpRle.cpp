#include "refhost/reader/BmpRle.h"

#include <algorithm>
#include <cstring>

namespace reader {

namespace {

class RunReader {
public:
    RunReader(std::span<const uint8_t> runs, uint32_t bits, Bitmap& bitmap)
        : m_runs(runs),
          m_nibbles(bits == 4),
          m_bitmap(bitmap),
          m_paddedWidth((bitmap.Width() * bits + 31) / 32 * 32 / bits) {}

    void Read() {
        std::memset(m_bitmap.Data(), 0, m_bitmap.Size());
        // A last row may be complete without a code for its end.
        while (!IsComplete() || m_at < m_runs.size()) {
            const uint8_t count = Byte();
            const uint8_t value = Byte();
            if (count != 0) {
                Run(count, value);
            } else if (value == kEndOfRow) {
                if (m_row == m_bitmap.Height()) ThrowBeyond();
                m_x = 0;
                ++m_row;
            } else if (value == kEndOfBitmap) {
                // Pixels may be left out within a row, not at the end of all: that is what a cut file looks like.
                if (!IsComplete()) ThrowDamaged(L"the page's run lengths end before its last row");
                return;
            } else if (value == kDelta) {
                Skip();
            } else {
                Absolute(value);
            }
        }
    }

private:
    static constexpr uint8_t kEndOfRow = 0;
    static constexpr uint8_t kEndOfBitmap = 1;
    static constexpr uint8_t kDelta = 2;

    [[noreturn]] static void ThrowBeyond() { ThrowDamaged(L"the page's run lengths are damaged"); }

    bool IsComplete() const {
        const uint32_t height = m_bitmap.Height();
        return m_row == height || (m_row + 1 == height && m_x >= m_bitmap.Width());
    }

    uint8_t Byte() {
        if (m_at == m_runs.size()) {
            ThrowCutOff();
        }
        return m_runs[m_at++];
    }

    // The next `count` pixels: where they go, and how many of them the row has. Rows stand from the bottom up, in the
    // file as in the bitmap. Some writers pack rows with the padding that they have without run lengths.
    std::span<uint8_t> Take(uint32_t count) {
        if (m_row >= m_bitmap.Height() || count > m_paddedWidth - m_x) ThrowBeyond();
        const uint32_t begin = std::min(m_x, m_bitmap.Width());
        m_x += count;
        return {m_bitmap.Data() + m_row * m_bitmap.Stride() + begin, std::min(m_x, m_bitmap.Width()) - begin};
    }

    void Run(uint32_t count, uint8_t value) {
        const std::span<uint8_t> to = Take(count);
        for (uint32_t i = 0; i < to.size(); ++i) to[i] = m_nibbles ? Nibble(value, i) : value;
    }

    void Skip() {
        const uint8_t right = Byte();
        const uint8_t up = Byte();
        if (right > m_paddedWidth - m_x || up > m_bitmap.Height() - m_row) ThrowBeyond();
        m_x += right;
        m_row += up;
    }

    // Pixels as they are, filled up to whole words.
    void Absolute(uint32_t count) {
        const std::span<uint8_t> to = Take(count);
        const uint32_t bytes = m_nibbles ? (count + 1) / 2 : count;
        uint8_t held = 0;
        for (uint32_t i = 0; i < count; ++i) {
            if (!m_nibbles || i % 2 == 0) held = Byte();
            if (i < to.size()) to[i] = m_nibbles ? Nibble(held, i) : held;
        }
        if (bytes % 2 != 0 && m_at < m_runs.size()) ++m_at;
    }

    static uint8_t Nibble(uint8_t pair, uint32_t index) {
        return static_cast<uint8_t>(index % 2 == 0 ? pair >> 4 : pair & 0xF);
    }

    std::span<const uint8_t> m_runs;
    const bool m_nibbles;
    Bitmap& m_bitmap;
    const uint32_t m_paddedWidth;
    size_t m_at = 0;
    uint32_t m_x = 0;
    uint32_t m_row = 0;
};

}  // namespace

void DecodeBmpRuns(std::span<const uint8_t> runs, uint32_t bits, Bitmap& bitmap) {
    RunReader(runs, bits, bitmap).Read();
}

}  // namespace reader
