#pragma once
// A JPEG decoder that knows no JPEG: each row is full of its number.

#include <vector>

#include "refhost/reader/Page.h"

namespace test {

class FakeJpeg final : public reader::JpegDecoder {
public:
    void Decode(std::span<const uint8_t>, uint32_t width, uint32_t height, uint32_t samples,
                const Rows& rows) override {
        for (uint32_t y = 0; y < height; ++y) {
            rows(y, std::vector<uint8_t>(size_t{width} * samples, static_cast<uint8_t>(y)).data());
        }
    }
    uint64_t Memory(uint32_t, uint32_t, uint32_t) const override { return 0; }
};

}  // namespace test
