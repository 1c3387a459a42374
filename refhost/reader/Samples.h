#pragma once
// Rows of samples as files have them, turned into rows of a bitmap.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "refhost/reader/Bitmap.h"

namespace reader {

// What the samples of a pixel are.
struct SampleLayout {
    uint32_t bits = 1;  // of a sample
    uint32_t samples = 1;
    uint32_t colors = 1;       // samples without the extra ones
    uint32_t photometric = 0;  // as TIFF counts them
    uint32_t alpha = 0;        // kind of the first extra sample: 1 premultiplied, 2 not; 0: none, or of no meaning
    bool planar = false;

    uint32_t Planes() const { return planar ? samples : 1; }
    // Bits of a pixel in the bitmap.
    uint32_t ResultBits() const;
};

class SampleConverter {
public:
    // `blueFirst`: colours come as blue, green, red.
    SampleConverter(const SampleLayout& layout, bool blueFirst = false);

    // Writes the first `count` pixels of a row of a piece to `to`. `planes` are the rows of its planes, or the one of
    // all; samples of 16 and 32 bits are in the byte order of this machine.
    void Convert(const uint8_t* const* planes, uint32_t count, uint8_t* to);

private:
    void Indices(const uint8_t* from, uint32_t count, uint8_t* to) const;
    const uint8_t* Bytes(const uint8_t* const* planes, uint32_t count);
    void WideGrey(const uint8_t* from, uint32_t count, uint8_t* to) const;
    void ThreeColours(const uint8_t* from, uint32_t count, uint8_t* to) const;
    template <class Mix>
    void Pixels(const uint8_t* from, uint32_t count, uint8_t* to, Mix mix) const;

    const SampleLayout& m_layout;
    const bool m_blueFirst;
    uint8_t m_scaled[256] = {};  // bytes of samples of up to 8 bits
    std::vector<uint8_t> m_bytes;
};

// Undoes differences between neighbouring pixels of a row of `count` values, each to the one `step` before it.
void UndoDifferences(uint8_t* row, uint32_t bits, size_t count, size_t step);
// Values of 16 or 32 bits into the byte order of this machine.
void SwapBytes(uint8_t* row, uint32_t bits, size_t count);

}  // namespace reader
