// Masking against a reference that tests every pixel by itself, in all pixel formats.
#include <gtest/gtest.h>

#include <limits>

#include "imaging/TestImage.h"
#include "refhost/imaging/Mask.h"

using namespace imaging;

namespace {

constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr int32_t kMax = std::numeric_limits<int32_t>::max();

// The masked copy through a BMP file, as a host gets it.
std::shared_ptr<const Bitmap> Masked(const std::shared_ptr<const Bitmap>& image, bool keep,
                                     const std::vector<Area>& areas) {
    return ReadBmp(BmpOf(Image(Image(image), keep, areas)));
}

const std::vector<std::vector<Area>> kAreaLists = {
    {{0, 0, 10, 10}},
    {{13, 7, 14, 8}},                                          // less than a pixel
    {{0, 0, 127, 127}, {127, 0, 254, 127}},                    // side by side
    {{20, 20, 90, 90}, {50, 50, 70, 200}, {55, 10, 60, 300}},  // overlapping
    {{40, 5, 80, 15}, {0, 25, 200, 40}},                       // one below the other and wider
    {{50, 5, 50, 90}, {5, 50, 90, 50}},                        // without width, without height
    {{90, 80, 20, 10}},                                        // edges swapped
    {{kMin, kMin, kMax, kMax}},
    {{kMin, 30, 40, 60}, {60, kMin, 61, kMax}},
    {{kMax - 1, kMax - 1, kMax, kMax}, {kMin, kMin, -1, -1}},  // all outside
    {{-30, -30, 1, 1}},
    {{1, 1, 2, 2}, {1, 1, 2, 2}, {1, 1, 2, 2}},
};

TEST(Masking, EveryPixelIsKeptOrPaper) {
    for (const uint32_t bits : {1u, 8u, 24u, 32u}) {
        for (const uint32_t width : {1u, 7u, 8u, 9u, 31u, 33u, 64u, 203u}) {
            const auto image = MakeTestImage(width, 37, bits, 204, 196);
            for (const auto& areas : kAreaLists) {
                SCOPED_TRACE(testing::Message()
                             << bits << " bits, width " << width << ", list " << &areas - kAreaLists.data());
                for (const bool keep : {true, false}) {
                    EXPECT_EQ(WrongPixels(*image, keep, areas, *Masked(image, keep, areas)), 0u) << keep;
                }
            }
        }
    }
}

TEST(Masking, PaperIsThatOfThePalette) {
    struct Case {
        uint32_t bits;
        std::vector<uint32_t> palette;
        uint32_t paper;
    };
    std::vector<uint32_t> yellowed = GreyPalette();
    for (uint32_t& colour : yellowed) colour &= 0xF0E0A0;
    const std::vector<Case> cases = {{1, {0, 0xFFFFFF}, 0xFFFFFF},
                                     {1, {0xFFFFFF, 0}, 0xFFFFFF},
                                     {1, {0xF0F0E0, 0x202020}, 0xF0F0E0},
                                     {8, yellowed, 0xF0E0A0}};
    for (const Case& item : cases) {
        const auto image = MakeTestImage(19, 5, item.bits, 200, 200);
        image->palette = item.palette;
        const auto masked = Masked(image, false, {{0, 0, 5, 5}});
        EXPECT_EQ(ColourAt(*masked, 0, 0), item.paper);
        EXPECT_EQ(ColourAt(*masked, 18, 4), ColourAt(*image, 18, 4));
    }
}

TEST(Masking, ColoursOfMaskedPixelsLeaveThePalette) {
    const auto image = MakeTestImage(10, 10, 8, 254, 254);
    image->palette.assign(256, 0xFFFFFF);
    image->palette[1] = 0x123456;
    image->palette[2] = 0x654321;
    std::fill_n(image->Data(), image->Size(), uint8_t{1});
    image->Row(0)[0] = 2;
    const auto masked = Masked(image, false, {{0, 0, 1, 1}});
    EXPECT_EQ(std::ranges::count(masked->palette, 0x654321u), 0);
    EXPECT_EQ(ColourAt(*masked, 5, 5), 0x123456u);

    // Of two colours, too; what pads the rows has the masked one.
    const auto bits = MakeTestImage(10, 10, 1, 254, 254);
    bits->palette = {0x123456, 0xF0E0D0};
    for (uint32_t y = 0; y < 10; ++y) {
        std::fill_n(bits->Row(y), 2, uint8_t{0xFF});
        bits->ClearPadding(y);
    }
    bits->Row(0)[0] = 0x7F;
    EXPECT_EQ(Masked(bits, false, {{0, 0, 1, 1}})->palette, std::vector<uint32_t>(2, 0xF0E0D0));
    EXPECT_EQ(Masked(bits, false, {{5, 5, 6, 6}})->palette, bits->palette);
}

TEST(Masking, MaskedImageOutlivesItsSourceAndCanBeMaskedAgain) {
    const auto pixels = MakeTestImage(50, 50, 24, 254, 254);
    std::unique_ptr<Image> twice;
    {
        const Image once(Image(pixels), false, std::vector<Area>{{0, 0, 10, 50}});
        twice = std::make_unique<Image>(once, false, std::vector<Area>{{40, 0, 50, 50}});
    }
    const auto result = twice->Pixels();
    EXPECT_EQ(ColourAt(*result, 5, 5), 0xFFFFFFu);
    EXPECT_EQ(ColourAt(*result, 45, 5), 0xFFFFFFu);
    EXPECT_EQ(ColourAt(*result, 25, 5), ColourAt(*pixels, 25, 5));
}

// Whoever asks first for the pixels or for the file: both are the same, and an image without a mask is not copied.
TEST(Masking, PixelsAndFileAreTheSameInAnyOrder) {
    const auto image = MakeTestImage(1500, 9, 24, 254, 254);
    EXPECT_EQ(Image(image).Pixels(), image);
    for (const bool keep : {true, false}) {
        const std::vector<Area> areas = {{3, 0, 20, 5}, {800, 2, 1200, 4}};
        const Image masked(Image(image), keep, areas);
        const std::vector<uint8_t> before = BmpOf(masked);
        const auto pixels = masked.Pixels();
        EXPECT_EQ(masked.Pixels(), pixels);
        EXPECT_EQ(BmpOf(masked), before);
        const auto read = ReadBmp(before);
        EXPECT_TRUE(std::equal(pixels->Data(), pixels->Data() + pixels->Size(), read->Data()));
        EXPECT_EQ(WrongPixels(*image, keep, areas, *pixels), 0u);
    }
}

}  // namespace
