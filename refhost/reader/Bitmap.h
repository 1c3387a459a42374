#pragma once
// Decoded pixels of a page: rows bottom-up, each a multiple of 4 bytes, as in a BMP file, so that whole bands of rows
// are copied at once.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "refhost/reader/Resolution.h"

namespace reader {

// A failure with its text for the user.
struct ImageError {
    std::wstring text;
};

// Throw an ImageError for a file that is not what it was: `what` is wrong with it, then what to do about it.
[[noreturn]] void ThrowDamaged(const std::wstring& what);
[[noreturn]] void ThrowCutOff();

inline constexpr uint32_t kMaxSide = 65535;
inline constexpr uint64_t kMaxPixelBytes = (uint64_t{2} << 30) - 1;

class Bitmap {
public:
    // Pixels are not initialised; with ZONHOST_TEST_FILL in the environment they hold random bytes, other ones at each
    // run, so that tests see what a decoder leaves out. Throws ImageError beyond the limits, std::bad_alloc without
    // memory.
    Bitmap(uint32_t width, uint32_t height, uint32_t bits);
    // Throws ImageError for a size that no bitmap can have; gives the bytes that its pixels take.
    static uint64_t Check(uint32_t width, uint32_t height, uint32_t bits);

    uint32_t Width() const { return m_width; }
    uint32_t Height() const { return m_height; }
    uint32_t Bits() const { return m_bits; }
    size_t Stride() const { return m_stride; }
    size_t Size() const { return m_stride * m_height; }

    const uint8_t* Data() const { return m_pixels.get(); }
    uint8_t* Data() { return m_pixels.get(); }
    // Row 0 is the topmost.
    size_t RowOffset(uint32_t y) const { return (size_t{m_height} - 1 - y) * m_stride; }
    const uint8_t* Row(uint32_t y) const { return Data() + RowOffset(y); }
    uint8_t* Row(uint32_t y) { return Data() + RowOffset(y); }

    // Colours 0x00RRGGBB, 2 or 256 of them for 1-bit and 8-bit images, none for the others.
    std::vector<uint32_t> palette;
    Resolution resolution;
    uint32_t orientation = 1;  // that its file has; the bitmap is upright

    // The byte that stands for paper white all over: the palette's entry nearest to white, or full colour.
    uint8_t PaperByte() const;
    bool HasGreyPalette() const;

    // Sets what lies behind the last pixel of a row to zero: a decoder may leave anything there.
    void ClearPadding(uint32_t y);

private:
    uint32_t m_width;
    uint32_t m_height;
    uint32_t m_bits;
    size_t m_stride;
    std::unique_ptr<uint8_t[]> m_pixels;
};

// Black to white in 256 steps, and black and white.
std::vector<uint32_t> GreyPalette();
std::vector<uint32_t> BlackWhitePalette();

// A channel of a colour with an alpha channel as it looks on white paper.
constexpr uint8_t OverWhite(uint32_t colour, uint32_t alpha) {
    return static_cast<uint8_t>((colour * alpha + 255 * (255 - alpha) + 127) / 255);
}
// A colour with an alpha channel as it looks on white paper; 0xAARRGGBB to 0x00RRGGBB.
uint32_t OnPaper(uint32_t argb);

}  // namespace reader
