#include "refhost/imaging/RowConvert.h"

#include <gtest/gtest.h>

#include <vector>

namespace imaging {
namespace {

using Row = std::vector<uint8_t>;

// Rows whose last byte is not full, and colours at both ends of an alpha channel.
TEST(RowConvert, EveryFormatOfDecoders) {
    const struct {
        const char* name;
        RowConverter convert;
        uint32_t width;
        Row from;
        Row to;
    } cases[] = {
        {"1 bit", Copy1, 9, {0xA5, 0x80}, {0xA5, 0x80}},
        {"8 bits", Copy8, 3, {1, 2, 3}, {1, 2, 3}},
        {"24 bits", Copy24, 1, {1, 2, 3}, {1, 2, 3}},
        {"2-bit indices", Index2To8, 5, {0x1B, 0xC0}, {0, 1, 2, 3, 3}},
        {"4-bit indices", Index4To8, 3, {0x0F, 0x70}, {0, 15, 7}},
        {"2-bit grey", Grey2To8, 4, {0x1B}, {0, 85, 170, 255}},
        {"4-bit grey", Grey4To8, 2, {0x0F}, {0, 255}},
        {"16-bit grey", Grey16To8, 2, {0xFF, 0x12, 0x00, 0x34}, {0x12, 0x34}},
        {"RGB", RgbToBgr, 1, {1, 2, 3}, {3, 2, 1}},
        {"BGRX", BgrxToBgrx, 1, {1, 2, 3, 0}, {1, 2, 3, 255}},
        {"BGRA", BgraToBgrx, 2, {1, 2, 3, 0, 1, 2, 3, 255}, {255, 255, 255, 255, 1, 2, 3, 255}},
        {"premultiplied", PbgraToBgrx, 2, {0, 64, 128, 128, 200, 0, 0, 100}, {127, 191, 255, 255, 255, 155, 155, 255}},
        {"BGRA to 24", BgraToBgr, 1, {0, 100, 255, 128}, {127, 177, 255}},
        {"BGRX to 24", BgrxToBgr, 1, {1, 2, 3, 9}, {1, 2, 3}},
    };
    for (const auto& c : cases) {
        Row to(c.to.size(), 0xEE);
        c.convert(c.from.data(), to.data(), c.width);
        EXPECT_EQ(to, c.to) << c.name;
    }
}

}  // namespace
}  // namespace imaging
