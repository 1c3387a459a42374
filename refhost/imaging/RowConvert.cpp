#include "refhost/imaging/RowConvert.h"

#include <algorithm>
#include <cstring>

namespace imaging {

namespace {

template <int Bits, int Factor>
void Unpack(const uint8_t* from, uint8_t* to, uint32_t width) {
    constexpr uint32_t kPerByte = 8 / Bits;
    constexpr uint32_t kMask = (1U << Bits) - 1;
    for (uint32_t x = 0; x < width; ++x) {
        const uint32_t shift = 8 - Bits * (x % kPerByte + 1);
        to[x] = static_cast<uint8_t>(((from[x / kPerByte] >> shift) & kMask) * Factor);
    }
}

uint8_t OverWhite(uint8_t colour, uint8_t alpha) {
    return static_cast<uint8_t>((colour * alpha + 255 * (255 - alpha) + 127) / 255);
}

uint8_t PremultipliedOverWhite(uint8_t colour, uint8_t alpha) {
    return static_cast<uint8_t>(std::min(255, colour + 255 - alpha));
}

uint8_t Colour(uint8_t colour, uint8_t) {
    return colour;
}

template <uint8_t (*Mix)(uint8_t, uint8_t), int TargetBytes>
void Mixed(const uint8_t* from, uint8_t* to, uint32_t width) {
    for (uint32_t x = 0; x < width; ++x, from += 4, to += TargetBytes) {
        for (int channel = 0; channel < 3; ++channel) to[channel] = Mix(from[channel], from[3]);
        if constexpr (TargetBytes == 4) to[3] = 0xFF;
    }
}

}  // namespace

void Copy1(const uint8_t* from, uint8_t* to, uint32_t width) {
    std::memcpy(to, from, (size_t{width} + 7) / 8);
}

void Copy8(const uint8_t* from, uint8_t* to, uint32_t width) {
    std::memcpy(to, from, width);
}

void Copy24(const uint8_t* from, uint8_t* to, uint32_t width) {
    std::memcpy(to, from, size_t{width} * 3);
}

void Index2To8(const uint8_t* from, uint8_t* to, uint32_t width) {
    Unpack<2, 1>(from, to, width);
}

void Index4To8(const uint8_t* from, uint8_t* to, uint32_t width) {
    Unpack<4, 1>(from, to, width);
}

void Grey2To8(const uint8_t* from, uint8_t* to, uint32_t width) {
    Unpack<2, 85>(from, to, width);
}

void Grey4To8(const uint8_t* from, uint8_t* to, uint32_t width) {
    Unpack<4, 17>(from, to, width);
}

void Grey16To8(const uint8_t* from, uint8_t* to, uint32_t width) {
    for (uint32_t x = 0; x < width; ++x) to[x] = from[size_t{x} * 2 + 1];
}

void RgbToBgr(const uint8_t* from, uint8_t* to, uint32_t width) {
    for (uint32_t x = 0; x < width; ++x, from += 3, to += 3) {
        to[0] = from[2];
        to[1] = from[1];
        to[2] = from[0];
    }
}

void BgrxToBgrx(const uint8_t* from, uint8_t* to, uint32_t width) {
    Mixed<Colour, 4>(from, to, width);
}

void BgraToBgrx(const uint8_t* from, uint8_t* to, uint32_t width) {
    Mixed<OverWhite, 4>(from, to, width);
}

void PbgraToBgrx(const uint8_t* from, uint8_t* to, uint32_t width) {
    Mixed<PremultipliedOverWhite, 4>(from, to, width);
}

void BgraToBgr(const uint8_t* from, uint8_t* to, uint32_t width) {
    Mixed<OverWhite, 3>(from, to, width);
}

void BgrxToBgr(const uint8_t* from, uint8_t* to, uint32_t width) {
    Mixed<Colour, 3>(from, to, width);
}

}  // namespace imaging
