#pragma once
// Images for tests, and their pixels as colours whatever the format.

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "refhost/reader/Bitmap.h"

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
