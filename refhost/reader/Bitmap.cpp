#include "refhost/reader/Bitmap.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <random>

namespace reader {

namespace {

constexpr uint32_t kWhite = 0xFFFFFF;

uint32_t Channel(uint32_t colour, int shift) {
    return (colour >> shift) & 0xFF;
}

uint32_t DistanceToWhite(uint32_t colour) {
    uint32_t sum = 0;
    for (const int shift : {0, 8, 16}) sum += (255 - Channel(colour, shift)) * (255 - Channel(colour, shift));
    return sum;
}

void FillForTests(uint8_t* pixels, size_t size) {
    static const bool wanted = std::getenv("ZONHOST_TEST_FILL") != nullptr;
    if (!wanted) return;
    static std::atomic<uint64_t> seed{std::random_device{}()};
    std::mt19937_64 random(seed++);
    for (size_t at = 0; at < size; at += sizeof(uint64_t)) {
        const uint64_t value = random();
        std::memcpy(pixels + at, &value, std::min(sizeof value, size - at));
    }
}

}  // namespace

void ThrowDamaged(const std::wstring& what) {
    throw ImageError{what + L"; copy the file anew from its source or scan the page again"};
}

void ThrowCutOff() {
    ThrowDamaged(L"the end of the file is missing");
}

uint64_t Bitmap::Check(uint32_t width, uint32_t height, uint32_t bits) {
    if (width == 0 || height == 0) throw ImageError{L"the image has no pixels; scan or export the page again"};
    if (width > kMaxSide || height > kMaxSide) {
        throw ImageError{L"the image has more than 65535 pixels on a side; scan it at a lower resolution"};
    }
    const uint64_t stride = (uint64_t{width} * bits + 31) / 32 * 4;
    if (stride * height > kMaxPixelBytes) {
        throw ImageError{L"the image takes 2 GiB or more when decoded; scan it at a lower resolution"};
    }
    return stride * height;
}

Bitmap::Bitmap(uint32_t width, uint32_t height, uint32_t bits) : m_width(width), m_height(height), m_bits(bits) {
    m_stride = static_cast<size_t>(Check(width, height, bits) / height);
    m_pixels = std::make_unique_for_overwrite<uint8_t[]>(Size());
    FillForTests(m_pixels.get(), Size());
}

uint8_t Bitmap::PaperByte() const {
    if (palette.empty()) return 0xFF;
    size_t nearest = 0;
    for (size_t i = 1; i < palette.size(); ++i) {
        if (DistanceToWhite(palette[i]) < DistanceToWhite(palette[nearest])) nearest = i;
    }
    if (m_bits == 1) return nearest == 0 ? 0x00 : 0xFF;
    return static_cast<uint8_t>(nearest);
}

bool Bitmap::HasGreyPalette() const {
    return m_bits == 8 && palette == GreyPalette();
}

void Bitmap::ClearPadding(uint32_t y) {
    const size_t usedBits = size_t{m_width} * m_bits;
    size_t used = usedBits / 8;
    uint8_t* row = Row(y);
    if (usedBits % 8 != 0) {
        row[used] = static_cast<uint8_t>(row[used] & (0xFF00 >> (usedBits % 8)));
        ++used;
    }
    if (used < m_stride) std::memset(row + used, 0, m_stride - used);
}

std::vector<uint32_t> GreyPalette() {
    std::vector<uint32_t> palette(256);
    for (uint32_t i = 0; i < 256; ++i) palette[i] = i * 0x010101;
    return palette;
}

std::vector<uint32_t> BlackWhitePalette() {
    return {0, kWhite};
}

uint32_t OnPaper(uint32_t argb) {
    const uint32_t alpha = argb >> 24;
    if (alpha == 255) return argb & kWhite;
    uint32_t result = 0;
    for (const int shift : {0, 8, 16}) {
        result |= uint32_t{OverWhite(Channel(argb, shift), alpha)} << shift;
    }
    return result;
}

}  // namespace reader
