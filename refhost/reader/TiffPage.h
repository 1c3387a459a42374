#pragma once
// A page of a TIFF file: its tags checked against each other, its pieces decoded strictly. Tags are taken as loosely as
// files are written (values left out, pieces larger than the page, one value for all samples), pixels are not: each
// strip or tile has to be there, lie inside the file and decode to all of its rows.
//
// Kinds      Grey, palette, RGB and CMYK of 1 to 16 or 32 bits a sample with any extra samples, chunky or planar,
// strips
//            or tiles; not compressed, fax codings, PackBits, LZW, deflate, JPEG; horizontal differences.
// Result     1 bit stays 1 bit; grey and palettes get 8 bits, colours 24. Transparency lies on white paper.
// Errors     ImageError, with what to do about it. Threads: a page may be decoded by several at once.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "refhost/reader/Bitmap.h"
#include "refhost/reader/Codecs.h"
#include "refhost/reader/Samples.h"
#include "refhost/reader/Tiff.h"

namespace reader {

// Whoever can decode JPEG streams: the platform.
class JpegDecoder {
public:
    virtual ~JpegDecoder() = default;
    // Decodes a whole stream, whose header says `width` x `height` and so many samples, into rows from the top down
    // without padding: 1 sample grey, 3 blue, green and red, 4 cyan, magenta, yellow and black. Throws BadPiece.
    virtual void Decode(std::span<const uint8_t> stream, uint32_t width, uint32_t height, uint32_t samples,
                        uint8_t* to) = 0;
    // The most memory that it takes for a stream of that size, beside the rows.
    virtual uint64_t Memory(uint32_t width, uint32_t height, uint32_t samples) const = 0;
};

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

class TiffPage {
public:
    // Throws ImageError for what cannot be read. `file` has to live as long.
    TiffPage(std::span<const uint8_t> file, TiffDirectory directory);
    TiffPage(const TiffPage&) = delete;
    TiffPage& operator=(const TiffPage&) = delete;

    const TiffLayout& Layout() const { return m_layout; }
    // Memory that decoding takes beside the bitmap, at most.
    uint64_t WorkingBytes(const JpegDecoder& jpeg) const;
    std::shared_ptr<Bitmap> Decode(JpegDecoder& jpeg) const;

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
