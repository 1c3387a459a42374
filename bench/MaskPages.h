#pragma once
// Pages to mask: A4 with a letter's areas, or with any number of small ones.

#include <cstdint>
#include <random>
#include <vector>

#include "refhost/imaging/Mask.h"

namespace bench {

// Tenths of a millimetre on A4: the head, the address, a table and the foot of a letter, about a third of the page.
inline constexpr imaging::Area kLetterAreas[] = {
    {200, 100, 1900, 350}, {200, 450, 1000, 800}, {203, 1207, 1897, 2003}, {200, 2700, 1900, 2900}};

inline std::vector<imaging::Area> AreasOf(int count) {
    if (count == 0) return {std::begin(kLetterAreas), std::end(kLetterAreas)};
    std::mt19937 random(1);
    std::vector<imaging::Area> areas;
    for (int i = 0; i < count; ++i) {
        const auto left = static_cast<int32_t>(random() % 2000);
        const auto top = static_cast<int32_t>(random() % 2900);
        areas.push_back({left, top, left + 60, top + 40});
    }
    return areas;
}

struct MaskPage {
    // `areas` 0: those of the letter.
    MaskPage(uint32_t width, uint32_t height, uint32_t bits, bool keep, int areas = 0) : image(width, height, bits) {
        image.resolution = {width / 8.27, height / 11.69};
        if (bits == 1) image.palette = reader::BlackWhitePalette();
        if (bits == 8) image.palette = reader::GreyPalette();
        uint32_t value = 12345;
        for (size_t i = 0; i < image.Size(); ++i) {
            value = value * 1664525 + 1013904223;
            image.Data()[i] = static_cast<uint8_t>(value >> 24);
        }
        mask = imaging::MakeMask(image, keep, AreasOf(areas));
    }
    reader::Bitmap image;
    imaging::Mask mask;
};

}  // namespace bench
