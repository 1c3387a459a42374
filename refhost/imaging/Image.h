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

// Reads a BMP file of the forms that WriteBmp makes: 1, 8, 24 or 32 bits, not compressed, bottom-up. Throws ImageError.
std::shared_ptr<const Bitmap> ReadBmp(std::span<const uint8_t> bytes);

// Entries of a colour palette that no pixel of `rows` uses become the paper's: what was masked leaves no colour behind.
std::vector<uint32_t> UsedPalette(const Bitmap& image, const uint8_t* rows);

}  // namespace imaging
