#pragma once
// Images for tests, their pixels as colours whatever the format, and what masking has to make of them.

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "refhost/imaging/Image.h"
#include "refhost/reader/Tiff.h"

inline uint32_t ColourAt(const reader::Bitmap& image, uint32_t x, uint32_t y) {
    const uint8_t* row = image.Row(y);
    if (image.Bits() == 1) return image.palette[(row[x / 8] >> (7 - x % 8)) & 1];
    if (image.Bits() == 8) return image.palette[row[x]];
    const uint8_t* pixel = row + size_t{x} * image.Bits() / 8;
    return static_cast<uint32_t>(pixel[0] | pixel[1] << 8 | pixel[2] << 16);
}

inline uint32_t PaperColour(const reader::Bitmap& image) {
    return image.palette.empty() ? 0xFFFFFF : image.palette[image.PaperByte() & (image.palette.size() - 1)];
}

// Random pixels with padding cleared, and for 8 bits a grey palette.
inline std::shared_ptr<reader::Bitmap> MakeTestImage(uint32_t width, uint32_t height, uint32_t bits, double dpiX,
                                                     double dpiY) {
    auto image = std::make_shared<reader::Bitmap>(width, height, bits);
    image->resolution = {dpiX, dpiY, false};
    if (bits == 1) image->palette = reader::BlackWhitePalette();
    if (bits == 8) image->palette = reader::GreyPalette();
    std::mt19937 random(width * 1000 + height * 10 + bits);
    for (size_t i = 0; i < image->Size(); ++i) image->Data()[i] = static_cast<uint8_t>(random());
    for (uint32_t y = 0; y < height; ++y) image->ClearPadding(y);
    if (bits == 32) {
        for (size_t i = 3; i < image->Size(); i += 4) image->Data()[i] = 0xFF;
    }
    return image;
}

// The image as a BMP file.
inline std::vector<uint8_t> BmpOf(const imaging::Image& image) {
    std::vector<uint8_t> file(image.BmpSize());
    image.WriteBmp(file.data());
    return file;
}

// Whether a stretch of the page has a part of a pixel's: multiplied up, so that nothing is rounded.
inline bool Touches(int64_t from, int64_t to, uint32_t pixel, double dpi) {
    const auto scaled = static_cast<int64_t>(dpi * 256);
    constexpr int64_t kPixel = 254 * 256;
    if (from > to) std::swap(from, to);
    return from != to && from * scaled < (int64_t{pixel} + 1) * kPixel && to * scaled > pixel * kPixel;
}

// How many pixels of a masked copy are not the image's where the areas say so, and paper elsewhere.
inline uint32_t WrongPixels(const reader::Bitmap& image, bool keep, const std::vector<imaging::Area>& areas,
                            const reader::Bitmap& masked) {
    uint32_t wrong = 0;
    for (uint32_t y = 0; y < image.Height(); ++y) {
        for (uint32_t x = 0; x < image.Width(); ++x) {
            const bool inside = std::ranges::any_of(areas, [&](const imaging::Area& area) {
                return Touches(area.left, area.right, x, image.resolution.x) &&
                       Touches(area.top, area.bottom, y, image.resolution.y);
            });
            wrong += ColourAt(masked, x, y) != (inside == keep ? ColourAt(image, x, y) : PaperColour(image));
        }
    }
    return wrong;
}

// A file in memory as one that is read in pieces.
inline reader::ReadAt ReaderOf(std::span<const uint8_t> file) {
    return [file](uint32_t offset, uint8_t* to, size_t size) {
        if (offset > file.size() || file.size() - offset < size) return false;
        std::copy_n(file.data() + offset, size, to);
        return true;
    };
}
