#pragma once
// What an image handle stands for: decoded pixels, and maybe a mask over them. A masked image shares the pixels of its
// source and is written out only where its bytes are asked for, so that masking and copying cost one block together.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "refhost/imaging/Mask.h"
#include "refhost/reader/Bitmap.h"

namespace imaging {

class Image {
public:
    explicit Image(std::shared_ptr<const Bitmap> bitmap) : m_bitmap(std::move(bitmap)) {}
    // The masked copy of `source`, which may be masked itself.
    Image(const Image& source, bool keep, std::span<const Area> areas);

    // Size, format and resolution; its pixels are those before masking.
    const Bitmap& Geometry() const { return *m_bitmap; }

    // The pixels after masking; written out at the first call, by one thread.
    std::shared_ptr<const Bitmap> Pixels() const;

    // The image as a BMP file. `block` has BmpSize() bytes.
    size_t BmpSize() const;
    void WriteBmp(uint8_t* block) const;

private:
    void Render(uint8_t* target) const;

    std::shared_ptr<const Bitmap> m_bitmap;
    Mask m_mask;
    bool m_masked = false;
    mutable std::mutex m_mutex;
    mutable std::shared_ptr<const Bitmap> m_rendered;
};

// Pixels that are looked at where they are: of a bitmap or of a BMP file in memory, which have to outlive it.
struct PixelView {
    uint32_t width;
    uint32_t height;
    uint32_t bits;
    size_t stride;
    const uint8_t* lowest;  // rows lie bottom-up
    std::vector<uint32_t> palette;
    Resolution resolution;

    const uint8_t* Row(uint32_t y) const { return lowest + (size_t{height} - 1 - y) * stride; }
};
PixelView ViewOf(const Bitmap& image);
// Of a BMP file of the forms that WriteBmp makes: 1, 8, 24 or 32 bits, not compressed, bottom-up. Throws ImageError.
PixelView ViewBmp(std::span<const uint8_t> bytes);
// The same as a bitmap of its own.
std::shared_ptr<const Bitmap> ReadBmp(std::span<const uint8_t> bytes);

// Entries of a palette that no pixel of `rows` uses become the paper's: what was masked leaves no colour behind. Plain
// grey, and plain black and white, are no colours of the page.
std::vector<uint32_t> UsedPalette(const Bitmap& image, const uint8_t* rows);

}  // namespace imaging
