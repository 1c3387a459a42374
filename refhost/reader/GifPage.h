#pragma once
// A GIF file: each of its images that fills the whole picture is a page. Its blocks are followed to its end, and its
// codes have to come to just its pixels.
//
// Colours    The image's own palette goes before the file's. Transparent pixels are paper white, as are colours that
// the
//            palette does not have. No resolution: the format has pixels' proportions at most.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "refhost/reader/Page.h"

namespace reader {

bool IsGif(std::span<const uint8_t> file);

// Where what belongs to an image begins: the parts in front of it, or itself. Also where a file breaks off, or goes on
// with what is no part of one, so that a loss is told when that page is asked for.
std::vector<uint32_t> GifImages(std::span<const uint8_t> file);

class GifPage final : public Page {
public:
    // `place` is one of GifImages. Throws ImageError for what cannot be read. `file` has to live as long.
    GifPage(std::span<const uint8_t> file, uint32_t place);

    PageFacts Facts() const override { return {m_width, m_height, 8, 1, 0, 0}; }
    uint64_t WorkingBytes(const JpegDecoder&) const override;
    std::shared_ptr<Bitmap> Decode(JpegDecoder&) const override;

private:
    using Bytes = std::span<const uint8_t>;

    uint32_t m_width = 0;
    uint32_t m_height = 0;
    bool m_interlaced = false;
    Bytes m_colours;         // red, green, blue
    int m_transparent = -1;  // the index
    uint32_t m_codeSize = 0;
    Bytes m_blocks;  // of the codes, with their lengths, to the empty one
};

}  // namespace reader
