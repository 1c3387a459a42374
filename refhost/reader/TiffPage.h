#pragma once
// A page of a TIFF file: its tags checked against each other, its pieces decoded strictly. Tags are taken as loosely as
// files are written (values left out, pieces larger than the page, one value for all samples), pixels are not: each
// strip or tile has to be there, lie inside the file and decode to all of its rows.
//
// Kinds      Grey, palette, RGB and CMYK of 1 to 16 or 32 bits a sample with any extra samples, chunky or planar,
// strips
//            or tiles; not compressed, fax codings, PackBits, LZW, deflate, JPEG; horizontal differences.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "refhost/reader/Page.h"
#include "refhost/reader/Samples.h"
#include "refhost/reader/Tiff.h"

namespace reader {

// What the tags say, with what they leave out filled in.
struct TiffLayout : SampleLayout {
    uint32_t width = 0;  // pixels of the page, as stored
    uint32_t height = 0;
    uint32_t compression = 1;
    uint32_t predictor = 1;
    bool lowBitFirst = false;
    bool tiled = false;
    uint32_t pieceWidth = 0;  // pixels
    uint32_t pieceHeight = 0;
    uint32_t across = 1;  // pieces of a plane
    uint32_t down = 1;

    // Bytes of a row of a piece, in one plane.
    uint64_t RowBytes() const { return (uint64_t{pieceWidth} * (planar ? 1 : samples) * bits + 7) / 8; }
    // Rows that the pieces of a line of them have to give.
    uint32_t Rows(uint32_t line) const;
};

// Throws ImageError for kinds that are not read.
TiffLayout ReadTiffLayout(const TiffDirectory& directory);

class TiffPage final : public Page {
public:
    // Throws ImageError for what cannot be read. `file` has to live as long.
    TiffPage(std::span<const uint8_t> file, TiffDirectory directory);
    TiffPage(const TiffPage&) = delete;
    TiffPage& operator=(const TiffPage&) = delete;

    PageFacts Facts() const override;
    uint64_t WorkingBytes(const JpegDecoder& jpeg) const override;
    std::shared_ptr<Bitmap> Decode(JpegDecoder& jpeg) const override;

private:
    class Work;

    void CheckPieces() const;
    std::span<const uint8_t> PieceBytes(uint32_t index) const;
    uint32_t PieceCount() const { return m_layout.across * m_layout.down * m_layout.Planes(); }
    std::span<const uint8_t> JpegTables() const;
    std::vector<uint32_t> Palette() const;

    std::span<const uint8_t> m_file;
    TiffDirectory m_directory;
    TiffLayout m_layout;
    const TiffEntry* m_offsets = nullptr;
    const TiffEntry* m_lengths = nullptr;  // null: left out
};

}  // namespace reader
