#pragma once
// Pages of image files, read without the platform: TIFF, PNG, BMP, GIF and JPEG. A page is either proven by its file
// (all pieces are there, lie inside the file and decode to all of their rows) or refused.
//
// Result     1-bit bitmaps keep 1 bit; grey and palettes get 8 bits, colours 24. Transparency lies on white paper.
// Ownership  The file's bytes have to live as long as a page of them.
// Errors     ImageError, with what to do about it; std::bad_alloc. Threads: a page may be decoded by several at once.
//
//     const std::unique_ptr<Page> page = OpenPage(bytes, 0);
//     const std::shared_ptr<Bitmap> shown = DecodeUpright(*page, jpeg, 0, 0);

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "refhost/reader/Bitmap.h"

namespace reader {

// Whoever can decode JPEG streams: the platform.
class JpegDecoder {
public:
    // Takes row `y`, counted from the top; the bytes are valid during the call.
    using Rows = std::function<void(uint32_t y, const uint8_t* row)>;

    virtual ~JpegDecoder() = default;
    // Decodes a whole stream, whose header says `width` x `height` and so many samples. Rows have 1 sample a pixel,
    // grey, or 3, blue, green and red, or 4, cyan, magenta, yellow and black. Throws BadPiece (Codecs.h).
    virtual void Decode(std::span<const uint8_t> stream, uint32_t width, uint32_t height, uint32_t samples,
                        const Rows& rows) = 0;
    // The most memory that it takes for a stream of that size.
    virtual uint64_t Memory(uint32_t width, uint32_t height, uint32_t samples) const = 0;
};

struct PageFacts {
    uint32_t width = 0;  // pixels, as stored
    uint32_t height = 0;
    uint32_t bits = 0;         // of a pixel of the bitmap: 1, 8 or 24
    uint32_t orientation = 1;  // 1 to 8, as TIFF and EXIF count them
    double dpiX = 0;           // along the stored axes; 0: the file gives none
    double dpiY = 0;
};

class Page {
public:
    virtual ~Page() = default;
    virtual PageFacts Facts() const = 0;
    // Memory that decoding takes beside the bitmap, at most.
    virtual uint64_t WorkingBytes(const JpegDecoder& jpeg) const = 0;
    // The page as it is stored, without a resolution.
    virtual std::shared_ptr<Bitmap> Decode(JpegDecoder& jpeg) const = 0;
};

// Where the pages of a file stand: one number for each, for OpenPage. Throws ImageError for what is no image of a known
// format.
std::vector<uint32_t> FindPages(std::span<const uint8_t> file);
// `place` is one of those.
std::unique_ptr<Page> OpenPage(std::span<const uint8_t> file, uint32_t place);

// Bytes that DecodeUpright takes: those of the bitmap, and the most that it takes beside it.
struct PageMemory {
    uint64_t bitmap;
    uint64_t working;
};
PageMemory MemoryOf(const Page& page, const JpegDecoder& jpeg);

// The page as viewers show it, with its resolution; values given go before the file's, along the stored axes.
std::shared_ptr<Bitmap> DecodeUpright(const Page& page, JpegDecoder& jpeg, double dpiX, double dpiY);

}  // namespace reader
