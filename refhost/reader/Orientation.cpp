#include "refhost/reader/Orientation.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "refhost/reader/Codecs.h"

namespace reader {

namespace {

template <size_t kBytes>
void SwapPixels(uint8_t* row, size_t count) {
    uint8_t* left = row;
    for (uint8_t* right = row + count * kBytes; (right -= kBytes) > left; left += kBytes) {
        for (size_t i = 0; i < kBytes; ++i) std::swap(left[i], right[i]);
    }
}

void MirrorBits(uint8_t* row, uint32_t width) {
    const size_t bytes = (size_t{width} + 7) / 8;
    std::reverse(row, row + bytes);
    ReverseBits({row, bytes});
    // The padding is in front now.
    const auto shift = static_cast<uint32_t>(bytes * 8 - width);
    if (shift == 0) return;
    for (size_t i = 0; i < bytes; ++i) {
        const uint32_t next = i + 1 < bytes ? row[i + 1] : 0U;
        row[i] = static_cast<uint8_t>((uint32_t{row[i]} << 8 | next) >> (8 - shift));
    }
}

void MirrorRow(Bitmap& bitmap, uint32_t y) {
    uint8_t* row = bitmap.Row(y);
    switch (bitmap.Bits()) {
        case 1:
            return MirrorBits(row, bitmap.Width());
        case 8:
            return std::reverse(row, row + bitmap.Width());
        case 24:
            return SwapPixels<3>(row, bitmap.Width());
        default:
            return SwapPixels<4>(row, bitmap.Width());
    }
}

void TurnInPlace(Bitmap& bitmap, bool mirror, bool flip) {
    const uint32_t height = bitmap.Height();
    for (uint32_t y = 0; mirror && y < height; ++y) MirrorRow(bitmap, y);
    for (uint32_t y = 0; flip && y < height / 2; ++y) {
        uint8_t* row = bitmap.Row(y);
        std::swap_ranges(row, row + bitmap.Stride(), bitmap.Row(height - 1 - y));
    }
    for (uint32_t y = 0; y < height; ++y) bitmap.ClearPadding(y);
}

// Rows of the result are columns of the source, from the left or from the right; their pixels are its rows, from the
// top or from the bottom.
class Transposition {
public:
    Transposition(const Bitmap& from, Bitmap& to, bool fromRight, bool fromBottom)
        : m_from(from), m_to(to), m_fromRight(fromRight), m_fromBottom(fromBottom) {}

    // In blocks that stay in the processor's cache.
    template <size_t kBytes>
    void Pixels() const {
        constexpr uint32_t kBlock = 256;
        const uint8_t* rows[kBlock];
        for (uint32_t left = 0; left < m_to.Width(); left += kBlock) {
            const uint32_t count = std::min(kBlock, m_to.Width() - left);
            for (uint32_t i = 0; i < count; ++i) rows[i] = SourceRow(left + i);
            for (uint32_t x = 0; x < m_from.Width(); ++x) {
                uint8_t* to = TargetRow(x) + left * kBytes;
                for (uint32_t i = 0; i < count; ++i) std::memcpy(to + i * kBytes, rows[i] + x * kBytes, kBytes);
            }
        }
    }

    // 8 x 8 pixels at a time; what lies beyond the source's edges becomes padding.
    void PackedBits() const {
        constexpr uint32_t kBlock = 128;
        const uint8_t* rows[kBlock];
        for (uint32_t left = 0; left < m_to.Width(); left += kBlock) {
            const uint32_t count = std::min(kBlock, m_to.Width() - left);
            for (uint32_t i = 0; i < count; ++i) rows[i] = SourceRow(left + i);
            for (uint32_t x = 0; x < m_from.Width(); x += 8) {
                for (uint32_t i = 0; i < count; i += 8) Block(rows + i, std::min(8U, count - i), x, left + i);
            }
        }
    }

private:
    const uint8_t* SourceRow(uint32_t x) const { return m_from.Row(m_fromBottom ? m_from.Height() - 1 - x : x); }
    uint8_t* TargetRow(uint32_t x) const { return m_to.Row(m_fromRight ? m_from.Width() - 1 - x : x); }

    void Block(const uint8_t* const* rows, uint32_t count, uint32_t x, uint32_t left) const {
        uint64_t bits = 0;
        for (uint32_t i = 0; i < count; ++i) bits |= uint64_t{rows[i][x / 8]} << (56 - 8 * i);
        // Exchanges, in turn, bits of 2 x 2, pairs of 4 x 4 and halves of 8 x 8.
        const auto exchange = [&bits](uint64_t mask, int distance) {
            const uint64_t changed = (bits ^ bits >> distance) & mask;
            bits ^= changed ^ changed << distance;
        };
        exchange(0x00AA00AA00AA00AA, 7);
        exchange(0x0000CCCC0000CCCC, 14);
        exchange(0x00000000F0F0F0F0, 28);
        const uint32_t columns = std::min(8U, m_from.Width() - x);
        uint8_t* to = TargetRow(x) + left / 8;
        const auto stride = static_cast<ptrdiff_t>(m_to.Stride());
        const ptrdiff_t down = m_fromRight ? stride : -stride;
        for (uint32_t i = 0; i < columns; ++i) to[down * i] = static_cast<uint8_t>(bits >> (56 - 8 * i));
    }

    const Bitmap& m_from;
    Bitmap& m_to;
    const bool m_fromRight;
    const bool m_fromBottom;
};

std::shared_ptr<Bitmap> Transposed(const Bitmap& from, bool fromRight, bool fromBottom) {
    auto to = std::make_shared<Bitmap>(from.Height(), from.Width(), from.Bits());
    to->palette = from.palette;
    to->resolution = {from.resolution.y, from.resolution.x, from.resolution.assumed};
    const Transposition transposition(from, *to, fromRight, fromBottom);
    switch (from.Bits()) {
        case 1:
            transposition.PackedBits();
            break;
        case 8:
            transposition.Pixels<1>();
            break;
        case 24:
            transposition.Pixels<3>();
            break;
        default:
            transposition.Pixels<4>();
    }
    for (uint32_t y = 0; y < to->Height(); ++y) to->ClearPadding(y);
    return to;
}

}  // namespace

std::shared_ptr<Bitmap> Upright(std::shared_ptr<Bitmap> bitmap, uint32_t orientation) {
    switch (orientation) {
        case 2:
            TurnInPlace(*bitmap, true, false);
            return bitmap;
        case 3:
            TurnInPlace(*bitmap, true, true);
            return bitmap;
        case 4:
            TurnInPlace(*bitmap, false, true);
            return bitmap;
        case 5:
            return Transposed(*bitmap, false, false);
        case 6:
            return Transposed(*bitmap, false, true);
        case 7:
            return Transposed(*bitmap, true, true);
        case 8:
            return Transposed(*bitmap, true, false);
        default:
            return bitmap;
    }
}

}  // namespace reader
