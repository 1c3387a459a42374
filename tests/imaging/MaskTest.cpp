// Masking against a reference that tests every pixel by itself, in all pixel formats.
#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "imaging/TestImage.h"
#include "refhost/imaging/Image.h"
#include "refhost/imaging/Mask.h"

using namespace imaging;

namespace {

constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr int32_t kMax = std::numeric_limits<int32_t>::max();

// Whether a stretch of the page has a part of a pixel's: both sides multiplied up, so that nothing is rounded.
bool Touches(int64_t from, int64_t to, uint32_t pixel, int64_t dpi) {
    if (from > to) std::swap(from, to);
    return from != to && from * dpi < (int64_t{pixel} + 1) * 254 && to * dpi > int64_t{pixel} * 254;
}

bool InAnArea(const Bitmap& image, const std::vector<Area>& areas, uint32_t x, uint32_t y) {
    return std::ranges::any_of(areas, [&](const Area& area) {
        return Touches(area.left, area.right, x, static_cast<int64_t>(image.resolution.x)) &&
               Touches(area.top, area.bottom, y, static_cast<int64_t>(image.resolution.y));
    });
}

// The masked copy through a BMP file, as a host gets it.
std::shared_ptr<const Bitmap> Masked(const std::shared_ptr<const Bitmap>& image, bool keep,
                                     const std::vector<Area>& areas) {
    const Image masked(Image(image), keep, areas);
    std::vector<uint8_t> block(masked.BmpSize());
    masked.WriteBmp(block.data());
    return ReadBmp(block);
}

void ExpectMasked(const std::shared_ptr<const Bitmap>& image, bool keep, const std::vector<Area>& areas) {
    const auto masked = Masked(image, keep, areas);
    for (uint32_t y = 0; y < image->Height(); ++y) {
        for (uint32_t x = 0; x < image->Width(); ++x) {
            const uint32_t expected =
                InAnArea(*image, areas, x, y) == keep ? ColourAt(*image, x, y) : PaperColour(*image);
            ASSERT_EQ(ColourAt(*masked, x, y), expected) << "at " << x << "," << y << " keep " << keep;
        }
    }
}

const std::vector<std::vector<Area>> kAreaLists = {
    {{0, 0, 10, 10}},
    {{13, 7, 14, 8}},                                          // less than a pixel
    {{0, 0, 127, 127}, {127, 0, 254, 127}},                    // side by side
    {{20, 20, 90, 90}, {50, 50, 70, 200}, {55, 10, 60, 300}},  // overlapping
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
                ExpectMasked(image, true, areas);
                ExpectMasked(image, false, areas);
            }
        }
    }
}

TEST(Masking, RandomAreasAreExactComplements) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int32_t> place(-40, 320);
    for (int round = 0; round < 60; ++round) {
        std::vector<Area> areas(1 + random() % 40);
        for (Area& area : areas) area = {place(random), place(random), place(random), place(random)};
        // All ink, so that every masked pixel shows.
        auto image = std::make_shared<Bitmap>(101 + round, 90, std::array{1u, 8u, 24u, 32u}[random() % 4]);
        image->resolution = {100.0 + round, 237.0, false};
        if (image->Bits() == 1) image->palette = BlackWhitePalette();
        if (image->Bits() == 8) image->palette = GreyPalette();
        std::fill_n(image->Data(), image->Size(), uint8_t{0});
        const auto kept = Masked(image, true, areas);
        const auto ignored = Masked(image, false, areas);
        for (uint32_t y = 0; y < image->Height(); ++y) {
            for (uint32_t x = 0; x < image->Width(); ++x) {
                const bool inArea = InAnArea(*image, areas, x, y);
                ASSERT_EQ(ColourAt(*kept, x, y), inArea ? 0 : 0xFFFFFF) << x << "," << y;
                ASSERT_EQ(ColourAt(*ignored, x, y), inArea ? 0xFFFFFF : 0) << x << "," << y;
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

TEST(Masking, TensOfThousandsOfAreas) {
    std::mt19937 random(11);
    auto image = std::make_shared<Bitmap>(600, 800, 24);
    image->resolution = {254, 254, false};  // one pixel per tenth of a millimetre
    std::fill_n(image->Data(), image->Size(), uint8_t{0});
    std::vector<Area> areas;
    std::vector<uint8_t> covered(600 * 800);
    for (int i = 0; i < 40000; ++i) {
        const auto left = static_cast<int32_t>(random() % 600 & ~1u);
        const auto top = static_cast<int32_t>(random() % 800);
        // Tall and narrow, so that thousands are open at once.
        const auto bottom = std::min<int32_t>(800, top + static_cast<int32_t>(random() % 300));
        areas.push_back({left, top, left + 1, bottom});
        for (int32_t y = top; y < bottom; ++y) covered[static_cast<size_t>(y * 600 + left)] = 1;
    }
    const auto masked = Masked(image, false, areas);
    for (uint32_t y = 0; y < 800; ++y) {
        for (uint32_t x = 0; x < 600; ++x) {
            ASSERT_EQ(ColourAt(*masked, x, y) != 0, covered[y * 600 + x] != 0) << x << "," << y;
        }
    }
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
        const Image masked(Image(image), keep, std::vector<Area>{{3, 0, 20, 5}, {800, 2, 1200, 4}});
        std::vector<uint8_t> before(masked.BmpSize()), after(masked.BmpSize());
        masked.WriteBmp(before.data());
        const auto pixels = masked.Pixels();
        EXPECT_EQ(masked.Pixels(), pixels);
        masked.WriteBmp(after.data());
        EXPECT_EQ(before, after);
        const auto read = ReadBmp(after);
        EXPECT_TRUE(std::equal(pixels->Data(), pixels->Data() + pixels->Size(), read->Data()));
        for (const uint32_t x : {500u, 800u, 1000u, 1199u, 1200u}) {
            const bool inside = x >= 800 && x < 1200;
            EXPECT_EQ(ColourAt(*pixels, x, 3), inside == keep ? ColourAt(*image, x, 3) : 0xFFFFFFu) << x;
        }
    }
}

}  // namespace
