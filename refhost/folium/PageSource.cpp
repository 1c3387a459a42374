#include "refhost/folium/PageSource.h"

namespace folium {

bool PageSource::Valid() const {
    if (width == 0 || height == 0 || topRow == nullptr) return false;
    if (bitsPerPixel != 1 && bitsPerPixel != 8 && bitsPerPixel != 24 && bitsPerPixel != 32) return false;
    return bitsPerPixel > 8 || palette != nullptr;
}

void ScaleNearest(const PageSource& page, const ScaledPart& part, uint32_t* out) {
    const auto middle = [](uint32_t position, uint32_t source, uint32_t target) {
        return static_cast<uint32_t>((uint64_t{position} * 2 + 1) * source / (uint64_t{target} * 2));
    };
    std::vector<uint32_t> columns(part.partWidth);
    for (uint32_t x = 0; x < part.partWidth; ++x) columns[x] = middle(part.left + x, page.width, part.width);
    for (uint32_t y = 0; y < part.partHeight; ++y) {
        const uint8_t* row = page.Row(middle(part.top + y, page.height, part.height));
        switch (page.bitsPerPixel) {
            case 1:
                for (const uint32_t x : columns) *out++ = page.palette[row[x / 8] >> (7 - x % 8) & 1];
                break;
            case 8:
                for (const uint32_t x : columns) *out++ = page.palette[row[x]];
                break;
            case 24:
                for (const uint32_t x : columns) {
                    const uint8_t* pixel = row + size_t{x} * 3;
                    *out++ = pixel[0] | uint32_t{pixel[1]} << 8 | uint32_t{pixel[2]} << 16;
                }
                break;
            default:
                for (const uint32_t x : columns) {
                    const uint8_t* pixel = row + size_t{x} * 4;
                    *out++ = pixel[0] | uint32_t{pixel[1]} << 8 | uint32_t{pixel[2]} << 16;
                }
        }
    }
}

}  // namespace folium
