#pragma once
// Group 4 fax coding (ITU-T T.6) of bilevel rows.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace writer {

// Row y is packed at `first` + y * `stride`, the leftmost pixel in the highest bit; bits of `white` (0x00 or 0xFF) are
// white. What is behind the last pixel of a row is of no meaning.
struct BilevelRows {
    const uint8_t* first;
    ptrdiff_t stride;
    uint32_t width;  // 1 to 65535
    uint32_t count;
    uint8_t white;
};

// Appends the rows as one block, with its end, filled up to a whole byte.
void EncodeGroup4(const BilevelRows& rows, std::vector<uint8_t>& out);

}  // namespace writer
