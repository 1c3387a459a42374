#pragma once
// A PNG file: its chunks checked, its rows inflated and put together here, so that a page is either proven by the
// file's own checksums or refused.
//
// Kinds      Every colour type, depth and interlacing of the format. Chunks that it may do without are passed over.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "refhost/reader/Page.h"
#include "refhost/reader/Samples.h"

namespace reader {

class PngPage final : public Page {
public:
    // Throws ImageError for what cannot be read. `file` has to live as long.
    explicit PngPage(std::span<const uint8_t> file);

    PageFacts Facts() const override { return {m_width, m_height, Bits(), 1, m_dpiX, m_dpiY}; }
    uint64_t WorkingBytes(const JpegDecoder&) const override;
    std::shared_ptr<Bitmap> Decode(JpegDecoder&) const override;

private:
    class Work;
    using Bytes = std::span<const uint8_t>;

    void ReadHeader(Bytes data);
    void ReadChunk(uint32_t name, Bytes data);
    std::vector<uint32_t> Palette() const;
    uint32_t Bits() const { return m_layout.ResultBits(); }
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
