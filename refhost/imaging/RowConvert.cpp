#include "refhost/imaging/RowConvert.h"

#include <cstring>

namespace imaging {

void Copy1(const uint8_t* from, uint8_t* to, uint32_t width) {
    std::memcpy(to, from, (size_t{width} + 7) / 8);
}

void Copy8(const uint8_t* from, uint8_t* to, uint32_t width) {
    std::memcpy(to, from, width);
}

void Copy24(const uint8_t* from, uint8_t* to, uint32_t width) {
    std::memcpy(to, from, size_t{width} * 3);
}

void BgrxToBgr(const uint8_t* from, uint8_t* to, uint32_t width) {
    for (uint32_t x = 0; x < width; ++x) std::memcpy(to + size_t{x} * 3, from + size_t{x} * 4, 3);
}

}  // namespace imaging
