// The masking core natively, for the comparison with native libraries in one process.
#include "bench/MaskPages.h"
#include "refhost/reader/Ccitt.h"

extern "C" {

void* BenchMakePage(uint32_t width, uint32_t height, uint32_t bits, int keep) {
    return new bench::MaskPage(width, height, bits, keep != 0);
}
void BenchFreePage(void* page) {
    delete static_cast<bench::MaskPage*>(page);
}
const uint8_t* BenchPixels(void* page, uint64_t* size, uint64_t* stride) {
    const auto& image = static_cast<bench::MaskPage*>(page)->image;
    *size = image.Size();
    *stride = image.Stride();
    return image.Data();
}
// The areas' pixels, four numbers each: left, top, right, bottom; returns how many areas.
int BenchRects(void* page, uint32_t* numbers, int room) {
    int count = 0;
    for (const imaging::PixelRect& rect : static_cast<bench::MaskPage*>(page)->mask.rects) {
        if (count == room) break;
        const uint32_t edges[] = {rect.left, rect.top, rect.right, rect.bottom};
        for (int i = 0; i < 4; ++i) numbers[count * 4 + i] = edges[i];
        ++count;
    }
    return count;
}
void BenchMask(void* page, uint8_t* target) {
    const auto* made = static_cast<bench::MaskPage*>(page);
    imaging::CopyMasked(made->image, made->mask, target);
}
// Decodes a strip of Group 4 into packed rows; 1 when all are there.
int BenchFax(const uint8_t* bytes, uint64_t size, uint32_t width, uint32_t rows, uint8_t* to) {
    const reader::FaxRows target = {to, static_cast<ptrdiff_t>((width + 7) / 8), width, rows, 0};
    return reader::DecodeFax({bytes, size}, reader::FaxCoding::kGroup4, target) == reader::FaxResult::kWhole ? 1 : 0;
}
}
