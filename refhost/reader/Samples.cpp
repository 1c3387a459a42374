#include "refhost/reader/Samples.h"

#include <tmmintrin.h>

#include <algorithm>
#include <cstring>

#include "refhost/reader/TiffTags.h"

namespace reader {

namespace {

// The nearest of 256 steps to one of 65,536.
uint8_t WideToByte(uint32_t value) {
    return static_cast<uint8_t>((value * 255 + 32895) >> 16);
}

uint8_t ScaledToByte(uint32_t value, uint32_t bits) {
    if (bits >= 16) return WideToByte(value);
    const uint32_t most = (1U << bits) - 1;
    return static_cast<uint8_t>((value * 255 + most / 2) / most);
}

// Values of any number of bits, packed from the highest bit on.
template <class Put>
void Unpack(const uint8_t* row, uint32_t bits, size_t count, Put put) {
    uint32_t held = 0;
    uint32_t free = 0;
    const uint32_t mask = (1U << bits) - 1;
    for (size_t i = 0; i < count; ++i) {
        for (; free < bits; free += 8) held = held << 8 | *row++;
        free -= bits;
        put(i, held >> free & mask);
    }
}

template <class Value>
Value Load(const uint8_t* at) {
    Value value = 0;
    std::memcpy(&value, at, sizeof value);
    return value;
}

template <class Value>
void Accumulate(uint8_t* row, size_t count, size_t step) {
    if (step == 1) {
        Value sum = 0;
        for (size_t i = 0; i < count; ++i) {
            sum = static_cast<Value>(sum + Load<Value>(row + i * sizeof(Value)));
            std::memcpy(row + i * sizeof(Value), &sum, sizeof sum);
        }
        return;
    }
    for (size_t i = step; i < count; ++i) {
        const auto sum =
            static_cast<Value>(Load<Value>(row + i * sizeof(Value)) + Load<Value>(row + (i - step) * sizeof(Value)));
        std::memcpy(row + i * sizeof(Value), &sum, sizeof sum);
    }
}

bool CanShuffle() {
    static const bool can = __builtin_cpu_supports("ssse3") != 0;
    return can;
}

// Red and blue of each pixel change places, four pixels at a time; gives how many were done. Reads and writes up to
// four bytes behind them, which lie within the pixels that follow.
__attribute__((target("ssse3"))) uint32_t SwapEnds(const uint8_t* from, uint32_t count, uint8_t* to) {
    const __m128i order = _mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 12, 13, 14, 15);
    uint32_t x = 0;
    for (; x + 6 <= count; x += 4, from += 12, to += 12) {
        const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_shuffle_epi8(pixels, order));
    }
    return x;
}

// Colours that were multiplied by their alpha before.
uint8_t PremultipliedOverWhite(uint32_t colour, uint32_t alpha) {
    return static_cast<uint8_t>(std::min(255U, colour + 255 - alpha));
}

}  // namespace

void UndoDifferences(uint8_t* row, uint32_t bits, size_t count, size_t step) {
    if (bits == 8 && step == 1) {
        uint8_t sum = 0;
        for (size_t i = 0; i < count; ++i) row[i] = sum = static_cast<uint8_t>(sum + row[i]);
    } else if (bits == 8 && step == 3) {
        uint8_t sums[3] = {};
        for (size_t i = 0; i + 3 <= count; i += 3) {
            for (size_t c = 0; c < 3; ++c) row[i + c] = sums[c] = static_cast<uint8_t>(sums[c] + row[i + c]);
        }
    } else if (bits == 8) {
        for (size_t i = step; i < count; ++i) row[i] = static_cast<uint8_t>(row[i] + row[i - step]);
    } else if (bits == 16) {
        Accumulate<uint16_t>(row, count, step);
    } else {
        Accumulate<uint32_t>(row, count, step);
    }
}

void SwapBytes(uint8_t* row, uint32_t bits, size_t count) {
    const size_t size = bits / 8;
    for (size_t i = 0; i < count; ++i) std::reverse(row + i * size, row + (i + 1) * size);
}

uint32_t SampleLayout::ResultBits() const {
    if (colors > 1) return 24;
    return bits == 1 && samples == 1 ? 1 : 8;
}

SampleConverter::SampleConverter(const SampleLayout& layout, bool blueFirst)
    : m_layout(layout), m_blueFirst(blueFirst) {
    if (layout.bits > 8) return;
    const bool inverted = layout.photometric == tiff::kWhiteIsZero;
    const uint32_t most = (1U << layout.bits) - 1;
    for (uint32_t value = 0; value <= most; ++value) {
        if (layout.photometric == tiff::kPalette) {
            m_scaled[value] = static_cast<uint8_t>(value);
        } else {
            m_scaled[value] = ScaledToByte(inverted && layout.samples == 1 ? most - value : value, layout.bits);
        }
    }
}

void SampleConverter::Indices(const uint8_t* from, uint32_t count, uint8_t* to) const {
    if (m_layout.bits == 8) {
        if (m_layout.photometric != tiff::kWhiteIsZero) {
            std::memcpy(to, from, count);
        } else {
            for (uint32_t x = 0; x < count; ++x) to[x] = static_cast<uint8_t>(~from[x]);
        }
        return;
    }
    Unpack(from, m_layout.bits, count, [&](size_t x, uint32_t value) { to[x] = m_scaled[value]; });
}

// All samples as bytes, those of a pixel behind each other.
const uint8_t* SampleConverter::Bytes(const uint8_t* const* planes, uint32_t count) {
    const uint32_t bits = m_layout.bits;
    const uint32_t samples = m_layout.samples;
    if (bits == 8 && !m_layout.planar) return planes[0];
    m_bytes.resize(size_t{count} * samples);
    const size_t values = m_layout.planar ? count : size_t{count} * samples;
    const size_t step = m_layout.planar ? samples : 1;
    for (uint32_t plane = 0; plane < m_layout.Planes(); ++plane) {
        const uint8_t* from = planes[plane];
        uint8_t* to = m_bytes.data() + plane;
        if (bits == 8) {
            for (size_t i = 0; i < values; ++i) to[i * step] = from[i];
        } else if (bits < 8) {
            Unpack(from, bits, values, [&](size_t i, uint32_t value) { to[i * step] = m_scaled[value]; });
        } else if (bits < 16) {
            Unpack(from, bits, values, [&](size_t i, uint32_t value) { to[i * step] = ScaledToByte(value, bits); });
        } else if (bits == 16) {
            for (size_t i = 0; i < values; ++i) to[i * step] = ScaledToByte(Load<uint16_t>(from + i * 2), 16);
        } else {
            for (size_t i = 0; i < values; ++i) to[i * step] = ScaledToByte(Load<uint32_t>(from + i * 4) >> 16, 16);
        }
    }
    return m_bytes.data();
}

void SampleConverter::ThreeColours(const uint8_t* from, uint32_t count, uint8_t* to) const {
    if (m_blueFirst) {
        std::memcpy(to, from, size_t{count} * 3);
        return;
    }
    const uint32_t done = CanShuffle() ? SwapEnds(from, count, to) : 0;
    from += size_t{done} * 3;
    to += size_t{done} * 3;
    for (uint32_t x = done; x < count; ++x, from += 3, to += 3) {
        to[0] = from[2];
        to[1] = from[1];
        to[2] = from[0];
    }
}

void SampleConverter::WideGrey(const uint8_t* from, uint32_t count, uint8_t* to) const {
    const uint32_t turned = m_layout.photometric == tiff::kWhiteIsZero ? 0xFFFF : 0;
    for (uint32_t x = 0; x < count; ++x) to[x] = WideToByte(Load<uint16_t>(from + size_t{x} * 2) ^ turned);
}

template <class Mix>
void SampleConverter::Pixels(const uint8_t* from, uint32_t count, uint8_t* to, Mix mix) const {
    const uint32_t colors = m_layout.ResultBits() / 8;
    for (uint32_t x = 0; x < count; ++x, from += m_layout.samples, to += colors) {
        for (uint32_t c = 0; c < colors; ++c) {
            // Bitmaps have blue first.
            const uint32_t sample = colors == 3 && !m_blueFirst ? 2 - c : c;
            to[c] = mix(from, sample);
        }
    }
}

void SampleConverter::Convert(const uint8_t* const* planes, uint32_t count, uint8_t* to) {
    const bool single = m_layout.samples == 1;
    if (single && m_layout.bits == 1) {
        const size_t bytes = (size_t{count} + 7) / 8;
        std::memcpy(to, planes[0], bytes);
        if (m_layout.photometric != tiff::kWhiteIsZero) return;
        for (size_t i = 0; i < bytes; ++i) to[i] = static_cast<uint8_t>(~to[i]);
        return;
    }
    if (single && m_layout.bits <= 8) return Indices(planes[0], count, to);
    if (single && m_layout.bits == 16) return WideGrey(planes[0], count, to);
    const uint8_t* from = Bytes(planes, count);
    const uint32_t colors = m_layout.colors;
    if (colors == 3 && m_layout.samples == 3) return ThreeColours(from, count, to);
    if (m_layout.photometric == tiff::kSeparated) {
        return Pixels(from, count, to, [this](const uint8_t* pixel, uint32_t ink) {
            const uint32_t colour = ((255U - pixel[ink]) * (255U - pixel[3]) + 127) / 255;
            return m_layout.alpha != 0 ? OverWhite(colour, pixel[4]) : static_cast<uint8_t>(colour);
        });
    }
    const bool inverted = m_layout.photometric == tiff::kWhiteIsZero;
    const auto colour = [inverted](uint8_t value) { return inverted ? 255U - value : uint32_t{value}; };
    switch (m_layout.alpha) {
        case 1:
            return Pixels(from, count, to, [&](const uint8_t* pixel, uint32_t c) {
                // Ink that was multiplied lies on the paper as it is.
                return inverted ? static_cast<uint8_t>(255 - pixel[c])
                                : PremultipliedOverWhite(pixel[c], pixel[colors]);
            });
        case 2:
            return Pixels(from, count, to,
                          [&](const uint8_t* pixel, uint32_t c) { return OverWhite(colour(pixel[c]), pixel[colors]); });
        default:
            return Pixels(from, count, to,
                          [&](const uint8_t* pixel, uint32_t c) { return static_cast<uint8_t>(colour(pixel[c])); });
    }
}

}  // namespace reader
