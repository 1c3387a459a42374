#include "imaging/TestImage.h"
#include "refhost/reader/Orientation.h"

namespace {

struct Turn {
    uint32_t orientation;
    bool transposed, fromRight, fromBottom;  // where the upright page's first column and row are stored
};
const Turn kTurns[] = {
    {0, false, false, false}, {1, false, false, false}, {2, false, true, false}, {3, false, true, true},
    {4, false, false, true},  {5, true, false, false},  {6, true, false, true},  {7, true, true, true},
    {8, true, true, false},   {9, false, false, false},
};

TEST(Orientation, EveryPixelGoesToItsPlace) {
    constexpr uint32_t kSizes[][2] = {{1, 1}, {13, 7}, {16, 8}, {67, 133}, {200, 3}};
    for (const Turn& turn : kTurns) {
        for (const auto& [width, height] : kSizes) {
            for (const uint32_t bits : {1, 8, 24, 32}) {
                SCOPED_TRACE(testing::Message() << turn.orientation << ": " << width << "x" << height << "x" << bits);
                const auto stored = MakeTestImage(width, height, bits, 204, 98);
                const auto page = reader::Upright(MakeTestImage(width, height, bits, 204, 98), turn.orientation);
                ASSERT_EQ(page->Width(), turn.transposed ? height : width);
                ASSERT_EQ(page->Height(), turn.transposed ? width : height);
                EXPECT_EQ(page->resolution.x, turn.transposed ? 98 : 204);
                EXPECT_EQ(page->resolution.y, turn.transposed ? 204 : 98);
                EXPECT_EQ(page->palette, stored->palette);
                uint32_t wrong = 0;
                for (uint32_t y = 0; y < page->Height(); ++y) {
                    const uint32_t end = bits <= 8 ? (page->Width() * bits + 31) / 32 * 32 / bits : 0;
                    for (uint32_t x = page->Width(); x < end; ++x) wrong += ColourAt(*page, x, y) != 0;  // padding
                    for (uint32_t x = 0; x < page->Width(); ++x) {
                        const uint32_t column = turn.transposed ? y : x;
                        const uint32_t row = turn.transposed ? x : y;
                        wrong +=
                            ColourAt(*page, x, y) != ColourAt(*stored, turn.fromRight ? width - 1 - column : column,
                                                              turn.fromBottom ? height - 1 - row : row);
                    }
                }
                EXPECT_EQ(wrong, 0u);
            }
        }
    }
}

}  // namespace
