// The masked copy itself. Runs of pixels are copied and filled as runs of bytes; only the two ends of a run in a 1-bit
// row need single bits.
#include <cstring>

#include "refhost/imaging/Mask.h"

namespace imaging {

namespace {

// The bits of a byte from `begin` to `end` (excluded), the leftmost pixel in the highest bit.
uint8_t BitsBetween(size_t begin, size_t end) {
    return static_cast<uint8_t>((0xFFu >> begin) & ~(0xFFu >> end));
}

uint8_t Merged(uint8_t to, uint8_t from, uint8_t bits) {
    return static_cast<uint8_t>((to & ~bits) | (from & bits));
}

// Splits a run of bits into a leading part of a byte, whole bytes and a trailing part; `part(index, bits)` and
// `whole(index, count)` do them.
template <class Part, class Whole>
void ForBits(size_t begin, size_t end, Part part, Whole whole) {
    const size_t first = begin / 8;
    const size_t last = end / 8;
    if (first == last) {
        part(first, BitsBetween(begin % 8, end % 8));
        return;
    }
    size_t from = first;
    if (begin % 8 != 0) part(from++, BitsBetween(begin % 8, 8));
    if (from < last) whole(from, last - from);
    if (end % 8 != 0) part(last, BitsBetween(0, end % 8));
}

void FillBits(uint8_t* row, size_t begin, size_t end, uint8_t paper) {
    ForBits(
        begin, end, [&](size_t i, uint8_t bits) { row[i] = Merged(row[i], paper, bits); },
        [&](size_t i, size_t count) { std::memset(row + i, paper, count); });
}

void CopyBits(uint8_t* row, const uint8_t* source, size_t begin, size_t end) {
    ForBits(
        begin, end, [&](size_t i, uint8_t bits) { row[i] = Merged(row[i], source[i], bits); },
        [&](size_t i, size_t count) { std::memcpy(row + i, source + i, count); });
}

class Copier {
public:
    Copier(const Bitmap& image, uint8_t* target)
        : m_image(image), m_target(target), m_paper(image.PaperByte()), m_pixelBytes(image.Bits() / 8) {}

    void Band(uint32_t top, uint32_t bottom, std::span<const PixelRange> masked) const {
        // Rows lie bottom-up: the lowest one comes first in memory.
        const size_t offset = m_image.RowOffset(bottom - 1);
        const size_t size = (bottom - top) * m_image.Stride();
        if (masked.empty()) {
            std::memcpy(m_target + offset, m_image.Data() + offset, size);
        } else if (masked.size() == 1 && masked[0].begin == 0 && masked[0].end == m_image.Width()) {
            std::memset(m_target + offset, m_paper, size);
        } else if (m_image.Bits() == 1) {
            BitBand(offset, size, masked);
        } else {
            for (size_t row = offset; row < offset + size; row += m_image.Stride()) ByteRow(row, masked);
        }
    }

private:
    // The end of the last run of a row takes what lies behind it along.
    size_t ByteEnd(uint32_t x) const { return x == m_image.Width() ? m_image.Stride() : x * m_pixelBytes; }
    size_t BitEnd(uint32_t x) const { return x == m_image.Width() ? m_image.Stride() * 8 : x; }

    void ByteRow(size_t row, std::span<const PixelRange> masked) const {
        uint8_t* to = m_target + row;
        const uint8_t* from = m_image.Data() + row;
        size_t done = 0;
        for (const PixelRange& range : masked) {
            const size_t begin = range.begin * m_pixelBytes;
            const size_t end = ByteEnd(range.end);
            if (begin > done) std::memcpy(to + done, from + done, begin - done);
            std::memset(to + begin, m_paper, end - begin);
            done = end;
        }
        if (done < m_image.Stride()) std::memcpy(to + done, from + done, m_image.Stride() - done);
    }

    // The greater part of a band at once, then the runs of the lesser part row by row.
    void BitBand(size_t offset, size_t size, std::span<const PixelRange> masked) const {
        size_t count = 0;
        for (const PixelRange& range : masked) count += range.end - range.begin;
        const bool fillFirst = count > m_image.Width() / 2;
        if (fillFirst) {
            std::memset(m_target + offset, m_paper, size);
        } else {
            std::memcpy(m_target + offset, m_image.Data() + offset, size);
        }
        for (size_t row = offset; row < offset + size; row += m_image.Stride()) {
            uint8_t* to = m_target + row;
            if (!fillFirst) {
                for (const PixelRange& range : masked) FillBits(to, range.begin, BitEnd(range.end), m_paper);
                continue;
            }
            const uint8_t* from = m_image.Data() + row;
            size_t done = 0;
            for (const PixelRange& range : masked) {
                if (range.begin > done) CopyBits(to, from, done, range.begin);
                done = BitEnd(range.end);
            }
            if (done < m_image.Width()) CopyBits(to, from, done, m_image.Stride() * 8);
        }
    }

    const Bitmap& m_image;
    uint8_t* m_target;
    uint8_t m_paper;
    size_t m_pixelBytes;
};

}  // namespace

void CopyMasked(const Bitmap& image, const Mask& mask, uint8_t* target) {
    const Copier copier(image, target);
    ForEachBand(
        image.Width(), image.Height(), mask,
        [&](uint32_t top, uint32_t bottom, std::span<const PixelRange> masked) { copier.Band(top, bottom, masked); });
}

}  // namespace imaging
