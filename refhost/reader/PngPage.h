#pragma once
// A PNG file: its chunks checked, its rows inflated and put together here, so that a page is either proven by the
// file's own checksums or refused.
//
// Kinds      Every colour type, depth and interlacing of the format. Chunks that it may do without are passed over.
// Result     1 bit stays 1 bit; grey and palettes get 8 bits, colours 24. Transparency lies on white paper.
// Errors     ImageError, with what to do about it. Threads: a page may be decoded by several at once.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "refhost/reader/Bitmap.h"
#include "refhost/reader/Samples.h"

namespace reader {

class PngPage {
public:
    // Throws ImageError for what cannot be read. `file` has to live as long.
    explicit PngPage(std::span<const uint8_t> file);

    uint32_t Width() const { return m_width; }
    uint32_t Height() const { return m_height; }
    uint32_t Bits() const { return m_layout.ResultBits(); }
    // Dots per inch; 0: the file gives none.
    double DpiX() const { return m_dpiX; }
    double DpiY() const { return m_dpiY; }
    // Memory that decoding takes beside the bitmap, at most.
    uint64_t WorkingBytes() const;
    std::shared_ptr<Bitmap> Decode() const;

private:
    class Work;
    using Bytes = std::span<const uint8_t>;

    void ReadHeader(Bytes data);
    void ReadChunk(uint32_t name, Bytes data);
    std::vector<uint32_t> Palette() const;
    uint64_t RowBytes(uint32_t width) const;

    uint32_t m_width = 0;
    uint32_t m_height = 0;
    bool m_interlaced = false;
    SampleLayout m_layout;
    Bytes m_palette;
    Bytes m_transparency;
    std::vector<Bytes> m_data;
    double m_dpiX = 0;
    double m_dpiY = 0;
};

}  // namespace reader
