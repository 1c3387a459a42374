// The masked copy itself. Runs of pixels are copied and filled as runs of bytes; only the two ends of a run in a 1-bit
// row need single bits.
#include <cstring>

#include "refhost/imaging/Mask.h"

namespace imaging {

namespace {

// The bits of a byte from `begin` to `end` (excluded), the leftmost pixel in the highest bit.
uint8_t BitsBetween(size_t begin, size_t end) {
    return static_cast<uint8_t>((0xFFU >> begin) & ~(0xFFU >> end));
}

uint8_t Merged(uint8_t to, uint8_t from, uint8_t bits) {
    return static_cast<uint8_t>((to & ~bits) | (from & bits));
}

// A run of pixels as whole bytes between two parts of a byte; for formats of whole bytes the parts are empty.
struct Run {
    size_t first;   // the byte of the leading part
    size_t whole;   // the first whole byte
    size_t count;   // of whole bytes
    uint8_t lead;   // bits of the leading part
    uint8_t trail;  // and of the one behind the whole bytes
};

Run RunOfBits(size_t begin, size_t end) {
    const size_t first = begin / 8;
    const size_t last = end / 8;
    if (first == last) return {first, first, 0, BitsBetween(begin % 8, end % 8), 0};
    const uint8_t lead = begin % 8 == 0 ? uint8_t{0} : BitsBetween(begin % 8, 8);
    const size_t whole = lead == 0 ? first : first + 1;
    return {first, whole, last - whole, lead, BitsBetween(0, end % 8)};
}

// Fills what is behind each other in memory; for runs as short as those of a 1-bit row a call of memset takes longer
// than its work.
class Paper {
public:
    explicit Paper(uint8_t value) { std::memset(m_bytes, value, sizeof m_bytes); }
    uint8_t Value() const { return m_bytes[0]; }

    void Fill(uint8_t* to, size_t count) const {
        if (count < sizeof m_bytes || count > kShort) {
            std::memset(to, Value(), count);
            return;
        }
        for (size_t at = 0; at + sizeof m_bytes <= count; at += sizeof m_bytes) Put(to + at);
        Put(to + count - sizeof m_bytes);
    }

private:
    static constexpr size_t kShort = 512;
    void Put(uint8_t* to) const { std::memcpy(to, m_bytes, sizeof m_bytes); }

    uint8_t m_bytes[16];
};

class Copier {
public:
    Copier(const Bitmap& image, uint8_t* target) : m_image(image), m_target(target), m_paper(image.PaperByte()) {}

    void Band(uint32_t top, uint32_t bottom, std::span<const PixelRange> masked) const {
        size_t count = 0;
        for (const PixelRange& range : masked) count += range.end - range.begin;
        // Rows lie bottom-up: the lowest one comes first in memory. What the greater part of them needs is done at
        // once, then the runs of the lesser part one below the other.
        const Rows rows = {m_image.RowOffset(bottom - 1), m_image.RowOffset(top) + m_image.Stride()};
        if (count <= m_image.Width() / 2) {
            std::memcpy(m_target + rows.begin, m_image.Data() + rows.begin, rows.end - rows.begin);
            for (const PixelRange& range : masked) Fill(rows, RunOf(range.begin, range.end));
            return;
        }
        std::memset(m_target + rows.begin, m_paper.Value(), rows.end - rows.begin);
        uint32_t done = 0;
        for (const PixelRange& range : masked) {
            if (range.begin > done) Copy(rows, RunOf(done, range.begin));
            done = range.end;
        }
        if (done < m_image.Width()) Copy(rows, RunOf(done, m_image.Width()));
    }

private:
    struct Rows {
        size_t begin;  // of the band, in bytes
        size_t end;
    };

    Run RunOf(uint32_t begin, uint32_t end) const {
        if (m_image.Bits() == 1) return RunOfBits(begin, end);
        const size_t pixel = m_image.Bits() / 8;
        return {begin * pixel, begin * pixel, (end - begin) * pixel, 0, 0};
    }

    void Fill(Rows rows, const Run& run) const {
        const bool parts = (run.lead | run.trail) != 0;
        for (size_t row = rows.begin; row < rows.end; row += m_image.Stride()) {
            uint8_t* to = m_target + row;
            m_paper.Fill(to + run.whole, run.count);
            if (!parts) continue;
            to[run.first] = Merged(to[run.first], m_paper.Value(), run.lead);
            const size_t last = run.whole + run.count;
            if (run.trail != 0) to[last] = Merged(to[last], m_paper.Value(), run.trail);
        }
    }

    void Copy(Rows rows, const Run& run) const {
        for (size_t row = rows.begin; row < rows.end; row += m_image.Stride()) {
            uint8_t* to = m_target + row;
            const uint8_t* from = m_image.Data() + row;
            std::memcpy(to + run.whole, from + run.whole, run.count);
            if (run.lead != 0) to[run.first] = Merged(to[run.first], from[run.first], run.lead);
            const size_t last = run.whole + run.count;
            if (run.trail != 0) to[last] = Merged(to[last], from[last], run.trail);
        }
    }

    const Bitmap& m_image;
    uint8_t* m_target;
    Paper m_paper;
};

}  // namespace

void CopyMasked(const Bitmap& image, const Mask& mask, uint8_t* target) {
    const Copier copier(image, target);
    ForEachBand(
        image.Width(), image.Height(), mask,
        [&](uint32_t top, uint32_t bottom, std::span<const PixelRange> masked) { copier.Band(top, bottom, masked); });
}

}  // namespace imaging
