#pragma once
// A BMP file: its header checked, its pixels taken strictly. Headers are taken as loosely as files are written (short
// palettes, sizes left out), pixels are not: all rows have to lie inside the file, and run lengths have to stay inside
// the rows and go on to the end of the bitmap.
//
// Kinds      Headers of OS/2 and Windows; 1, 2, 4, 8, 16, 24 and 32 bits, any masks of colours, RLE8 and RLE4.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "refhost/reader/Page.h"

namespace reader {

// What the header says, with what it leaves out filled in.
struct BmpLayout {
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t bits = 1;  // of a pixel in the file
    bool topDown = false;
    bool runLengths = false;
    size_t pixels = 0;  // offset of the first row
    double dpiX = 0;    // 0: none
    double dpiY = 0;
    std::vector<uint32_t> palette;       // as many as a bitmap of ResultBits has
    std::array<uint32_t, 4> masks = {};  // blue, green, red and alpha, of 16 and 32 bits

    uint64_t RowBytes() const { return (uint64_t{width} * bits + 31) / 32 * 4; }
    // Bits of a pixel in the bitmap.
    uint32_t ResultBits() const { return bits == 1 ? 1 : bits <= 8 ? 8 : 24; }
};

// Throws ImageError for kinds that are not read, and for files whose rows are not all there.
BmpLayout ReadBmpLayout(std::span<const uint8_t> file);

class BmpPage final : public Page {
public:
    // Throws ImageError for what cannot be read. `file` has to live as long.
    explicit BmpPage(std::span<const uint8_t> file);

    PageFacts Facts() const override {
        return {m_layout.width, m_layout.height, m_layout.ResultBits(), 1, m_layout.dpiX, m_layout.dpiY};
    }
    uint64_t WorkingBytes(const JpegDecoder&) const override;
    std::shared_ptr<Bitmap> Decode(JpegDecoder&) const override;

private:
    std::span<const uint8_t> StoredRow(uint32_t y) const;

    std::span<const uint8_t> m_file;
    BmpLayout m_layout;
};

}  // namespace reader
