#pragma once
// Fax coding of bilevel rows: modified Huffman, Group 3 (ITU-T T.4) with one and two dimensions, Group 4 (T.6).
//
// The decoder is strict about rows and about nothing else: each row has to be its exact width, made of codes that
// exist, and all rows have to be there. End-of-line codes, fill bits, a missing or an early end behind the last row,
// and whatever follows are taken as they come. Uncompressed mode is refused.

#include <cstddef>
#include <cstdint>
#include <span>

namespace reader {

enum class FaxCoding {
    kRowsOfBytes,  // modified Huffman, each row from a whole byte on
    kRowsOfWords,  // the same from a whole pair of bytes on
    kGroup3,       // one-dimensional
    kGroup3TwoDimensional,
    kGroup4,
};

enum class FaxResult { kWhole, kEndsEarly, kDamaged, kUncompressedMode };

// Where the rows go: row y at `first` + y * `stride`, packed, the leftmost pixel in the highest bit. White runs become
// bits of `white` (0x00 or 0xFF), black ones the others. What is behind the last pixel of a row is of no meaning; each
// row has room for (width + 7) / 8 bytes.
struct FaxRows {
    uint8_t* first;
    ptrdiff_t stride;
    uint32_t width;  // 1 to 65535
    uint32_t count;
    uint8_t white;
};

// Rows that were not decoded are left as they are; anything but kWhole means that the rows are not to be used.
FaxResult DecodeFax(std::span<const uint8_t> bytes, FaxCoding coding, const FaxRows& rows);

}  // namespace reader
