#pragma once
// Pages on their way into files: packed once, in any thread, and then put into a file in their order. No platform.
//
// Kinds      1-bit pages of black and white stay bilevel, in whatever order their palette has the two; other palettes
// of
//            1 and 8 bits stay palettes, a palette of all greys in order becomes grey, 24 and 32 bits (the fourth byte
//            is of no meaning) become RGB.
// Codings    What EncodePage chooses by itself is lossless and the usual one of the kind: Group 4 (ITU-T T.6) for
//            bilevel pages, deflate (zlib) for the others, rows of grey and RGB as differences from the left.
// Errors     std::bad_alloc. Threads: EncodePage may be called by several at once.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace writer {

// Pixels that are looked at where they are. Row y starts at `top` + y * `stride`; colours of a palette are 0x00RRGGBB.
struct PageView {
    uint32_t width;  // pixels, 1 to 65535
    uint32_t height;
    uint32_t bits;  // of a pixel: 1 and 8 with a palette of 2 and 256 colours, 24 (blue first) or 32
    const uint8_t* top;
    ptrdiff_t stride;
    std::span<const uint32_t> palette;
};

enum class Kind { kBilevel, kGrey, kPalette, kRgb };
enum class Coding { kNone, kGroup4, kDeflate };

struct EncodedPage {
    uint32_t width;
    uint32_t height;
    Kind kind;
    uint32_t bits;  // of a sample: 1 or 8
    Coding coding;
    bool differences;            // each sample of a row but the first is kept as its difference from the one before
    uint32_t rowsPerStrip;       // the last strip may have fewer
    std::vector<size_t> strips;  // bytes of each, one after the other in `bytes`
    std::vector<uint8_t> bytes;  // bilevel: black is 1 in Group 4, and 0 where it is not coded
    std::vector<uint32_t> palette;

    uint32_t Samples() const { return kind == Kind::kRgb ? 3 : 1; }
};

enum class Packing { kAuto, kNone };

// `wholePage`: one strip, for files that know no strips.
EncodedPage EncodePage(const PageView& page, Packing packing, bool wholePage = false);

// The most memory that EncodePage takes for a page of that size, its result included.
uint64_t EncodingBytes(uint32_t width, uint32_t height, uint32_t bits);

}  // namespace writer
