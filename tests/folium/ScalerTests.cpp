#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "refhost/folium/PageTiles.h"

namespace folium {
namespace {

// A page of random pixels in any depth, and its colours as they are.
struct RandomPage {
    RandomPage(uint32_t width, uint32_t height, uint32_t bits, bool colors = true, bool bottomUp = false) {
        std::mt19937 random(width * 31 + height * 7 + bits);
        const size_t stride = (size_t{width} * bits + 7) / 8 + 3;
        bytes.resize(stride * height);
        for (auto& byte : bytes) byte = static_cast<uint8_t>(random());
        for (uint32_t i = 0; i < 256; ++i) palette.push_back(colors ? random() & 0xffffff : (255 - i) * 0x010101);
        source = {
            width, height, bits, bits <= 8 ? palette.data() : nullptr, bytes.data(), static_cast<ptrdiff_t>(stride)};
        if (bottomUp) {
            source.topRow = bytes.data() + stride * (height - 1);
            source.stride = -source.stride;
        }
    }
    uint32_t At(uint32_t x, uint32_t y) const {
        const uint8_t* row = source.Row(y);
        if (source.bitsPerPixel == 1) return palette[row[x / 8] >> (7 - x % 8) & 1];
        if (source.bitsPerPixel == 8) return palette[row[x]];
        const uint8_t* pixel = row + size_t{x} * (source.bitsPerPixel / 8);
        return pixel[0] | uint32_t{pixel[1]} << 8 | uint32_t{pixel[2]} << 16;
    }
    // The average of what lies under a pixel, the plain way.
    double Average(uint32_t x, uint32_t y, uint32_t width, uint32_t height, int shift) const {
        const double left = double(x) * source.width / width, right = double(x + 1) * source.width / width;
        const double top = double(y) * source.height / height, bottom = double(y + 1) * source.height / height;
        double sum = 0;
        for (auto row = static_cast<uint32_t>(top); row < std::min<double>(std::ceil(bottom), source.height); ++row) {
            const double down = std::min<double>(row + 1, bottom) - std::max<double>(row, top);
            for (auto c = static_cast<uint32_t>(left); c < std::min<double>(std::ceil(right), source.width); ++c) {
                const double across = std::min<double>(c + 1, right) - std::max<double>(c, left);
                sum += (At(c, row) >> shift & 0xff) * across * down;
            }
        }
        return sum / ((right - left) * (bottom - top));
    }
    std::vector<uint8_t> bytes;
    std::vector<uint32_t> palette;
    PageSource source;
};

struct Sizes {
    uint32_t sourceWidth, sourceHeight, width, height;
};
constexpr Sizes kSizes[] = {{1, 1, 1, 1},      {1, 1, 40, 30},     {61, 43, 61, 43}, {61, 43, 20, 10},
                            {61, 43, 13, 200}, {600, 1, 7, 1},     {97, 700, 3, 1},  {130, 90, 83, 61},
                            {33, 35, 1, 1},    {1000, 900, 11, 9}, {17, 19, 40, 50}};
constexpr uint32_t kDepths[] = {1, 8, 24, 32};

TEST(Scaler, SmoothIsTheAverageOfTheArea) {
    for (const Sizes& sizes : kSizes) {
        for (const uint32_t bits : kDepths) {
            for (const bool colors : {true, false}) {
                const RandomPage page(sizes.sourceWidth, sizes.sourceHeight, bits, colors, colors);
                std::vector<uint32_t> scaled(size_t{sizes.width} * sizes.height);
                ScaleSmooth(page.source, {sizes.width, sizes.height, 0, 0, sizes.width, sizes.height}, scaled.data());
                double worst = 0;
                for (uint32_t i = 0; i < scaled.size(); ++i) {
                    for (const int shift : {0, 8, 16}) {
                        const double exact =
                            page.Average(i % sizes.width, i / sizes.width, sizes.width, sizes.height, shift);
                        worst = std::max(worst, std::abs(exact - (scaled[i] >> shift & 0xff)));
                    }
                }
                // Edges are cut at 1/256 of a pixel.
                EXPECT_LT(worst, 4) << sizes.sourceWidth << 'x' << sizes.sourceHeight << " to " << sizes.width << 'x'
                                    << sizes.height << ' ' << bits;
            }
        }
    }
}

TEST(Scaler, NearestTakesTheMiddle) {
    for (const Sizes& sizes : kSizes) {
        for (const uint32_t bits : kDepths) {
            const RandomPage page(sizes.sourceWidth, sizes.sourceHeight, bits);
            std::vector<uint32_t> scaled(size_t{sizes.width} * sizes.height);
            ScaleNearest(page.source, {sizes.width, sizes.height, 0, 0, sizes.width, sizes.height}, scaled.data());
            for (uint32_t i = 0; i < scaled.size(); ++i) {
                const double x = (i % sizes.width + 0.5) * sizes.sourceWidth / sizes.width;
                const double y = (i / sizes.width + 0.5) * sizes.sourceHeight / sizes.height;
                ASSERT_EQ(scaled[i], page.At(static_cast<uint32_t>(x), static_cast<uint32_t>(y)));
            }
        }
    }
}

TEST(Scaler, WhiteStaysWhiteAndBlackBlack) {
    const uint32_t palette[256] = {0x000000, 0xffffff};
    for (const uint32_t bits : {1u, 24u, 32u}) {
        for (const uint8_t fill : {uint8_t{0}, uint8_t{255}}) {
            const std::vector<uint8_t> row(5000 * 4, fill);
            const PageSource page = {5000, 7000, bits, palette, row.data(), 0};
            std::vector<uint32_t> scaled(81 * 113);
            ScaleSmooth(page, {81, 113, 0, 0, 81, 113}, scaled.data());
            for (const uint32_t color : scaled) ASSERT_EQ(color, fill == 0 ? 0u : 0xffffffu);
        }
    }
}

// Most scanned pages: the bytes are the grey levels themselves.
TEST(Scaler, PlainGreyIsScaledAsAnyPalette) {
    RandomPage page(61, 43, 8, false);
    for (uint32_t i = 0; i < 256; ++i) page.palette[i] = i * 0x010101;
    std::vector<uint32_t> scaled(20 * 10);
    ScaleSmooth(page.source, {20, 10, 0, 0, 20, 10}, scaled.data());
    for (uint32_t i = 0; i < scaled.size(); ++i) {
        ASSERT_NEAR(scaled[i] & 0xff, page.Average(i % 20, i / 20, 20, 10, 0), 1.1) << i;
        ASSERT_EQ(scaled[i], (scaled[i] & 0xff) * 0x010101) << i;
    }
    page.palette[7] = 0x080707;  // one that is not grey
    page.bytes.assign(page.bytes.size(), 7);
    ScaleSmooth(page.source, {20, 10, 0, 0, 20, 10}, scaled.data());
    EXPECT_EQ(scaled[55], 0x080707u);
}

// A picture put together from tiles, drawn in strips, is the one scaled at once.
TEST(PageTiles, SeamlessAndScaledOnce) {
    const RandomPage page(900, 1400, 24);
    const int width = 1100, height = 1300;
    std::vector<uint32_t> whole(size_t{1100} * 1300), drawn(whole.size());
    ScaleSmooth(page.source, {1100, 1300, 0, 0, 1100, 1300}, whole.data());
    PageTiles tiles;
    tiles.SetSource(page.source);
    tiles.SetView(width, height, true);
    Surface surface(drawn.data(), width, height);
    for (int top = 0; top < height; top += 70) {
        Surface strip = surface.Clipped({0, top, width, top + 70});
        tiles.Draw(strip, 0, 0);
    }
    EXPECT_EQ(drawn, whole);
    EXPECT_EQ(tiles.TilesScaled(), 9u);
    for (int scroll = 0; scroll < 500; scroll += 90) tiles.Draw(surface, -scroll, -scroll);
    tiles.SetView(width, height, true);
    EXPECT_EQ(tiles.TilesScaled(), 9u) << "scrolling scales nothing again";
    tiles.SetView(width, height, false);
    tiles.Draw(surface, 0, 0);
    EXPECT_EQ(tiles.TilesScaled(), 18u);
}

TEST(PageTiles, LargePageTakesNoMoreThanItsShare) {
    const std::vector<uint8_t> row(30000 / 8, 0x5a);
    const uint32_t palette[] = {0, 0xffffff};
    PageTiles tiles;
    tiles.SetSource(PageSource{30000, 30000, 1, palette, row.data(), 0});
    tiles.SetView(60000, 60000, true);
    std::vector<uint32_t> pixels(800 * 600);
    Surface surface(pixels.data(), 800, 600);
    Surface corner = surface.Clipped({0, 0, 1, 1});
    tiles.Draw(corner, 0, 0);
    for (int scroll = 700; scroll < 59000; scroll += 700) {
        tiles.Draw(surface, -scroll, -scroll);
        const uint64_t scaled = tiles.TilesScaled();
        tiles.Draw(corner, 0, 0);
        ASSERT_EQ(tiles.TilesScaled(), scaled) << "what was drawn lately is kept";
    }
    EXPECT_LE(tiles.TilesKept(), PageTiles::kMostKept);
    tiles.Draw(surface, -59999, -59999);
    const size_t kept = tiles.TilesKept();
    tiles.Draw(surface, 801, 0);
    EXPECT_EQ(tiles.TilesKept(), kept) << "nothing of the page is seen";
    tiles.SetView(60000, 60000, false);
    EXPECT_EQ(tiles.TilesKept(), 0u) << "no mixture of smooth and plain";
    tiles.SetSource(std::nullopt);
    EXPECT_FALSE(tiles.HasSource());
    EXPECT_EQ(pixels[0] & 0xff, palette[1] & row[0] & 0) << "the last pixel of the page";
}

TEST(PageTiles, UnusableSourceIsNone) {
    const uint8_t row[16] = {};
    const uint32_t palette[256] = {};
    PageTiles tiles;
    for (const PageSource& source : {PageSource{4, 4, 1, palette, row, 1}, PageSource{4, 4, 8, palette, row, 4},
                                     PageSource{4, 4, 24, nullptr, row, 12}, PageSource{4, 4, 32, nullptr, row, 16}}) {
        tiles.SetSource(source);
        EXPECT_TRUE(tiles.HasSource()) << source.bitsPerPixel;
    }
    for (const PageSource& source :
         {PageSource{}, PageSource{4, 4, 1, nullptr, row, 1}, PageSource{4, 4, 16, nullptr, row, 8},
          PageSource{4, 4, 24, nullptr, nullptr, 12}, PageSource{4, 4, 8, nullptr, row, 4},
          PageSource{0, 4, 24, nullptr, row, 12}, PageSource{4, 0, 24, nullptr, row, 12}}) {
        tiles.SetSource(source);
        EXPECT_FALSE(tiles.HasSource());
    }
}

}  // namespace
}  // namespace folium
