// BMP files written byte by byte.
#include "imaging/TestImage.h"
#include "refhost/reader/BmpPage.h"
#include "refhost/reader/Bytes.h"
#include "support/FakeJpeg.h"

namespace {

std::shared_ptr<reader::Bitmap> Decoded(std::span<const uint8_t> file) {
    test::FakeJpeg jpeg;
    return reader::BmpPage(file).Decode(jpeg);
}

using Bytes = std::vector<uint8_t>;
using Colours = std::vector<uint32_t>;

// `middle`: what stands between header and pixels, masks and palette.
struct File {
    uint32_t header, bits, compression;
    int32_t width, height;
    Bytes middle, pixels;
    uint32_t colors = 0;

    Bytes Write() const {
        Bytes file(14 + size_t{header});
        file[0] = 'B';
        file[1] = 'M';
        reader::Put32(&file[10], static_cast<uint32_t>(file.size() + middle.size()));
        reader::Put32(&file[14], header);
        const size_t size = header == 12 ? 2 : 4;
        reader::Put(&file[18], static_cast<uint32_t>(width), static_cast<int>(size), false);
        reader::Put(&file[18 + size], static_cast<uint32_t>(height), static_cast<int>(size), false);
        file[18 + 2 * size] = 1;  // planes
        file[20 + 2 * size] = static_cast<uint8_t>(bits);
        if (header >= 40) {
            reader::Put32(&file[30], compression);
            reader::Put32(&file[38], 11811);
            reader::Put32(&file[46], colors);
        }
        file.insert(file.end(), middle.begin(), middle.end());
        file.insert(file.end(), pixels.begin(), pixels.end());
        return file;
    }
};

// The pixels from the top, none when the file is refused.
Colours Read(const Bytes& file) {
    try {
        const auto bitmap = Decoded(file);
        Colours colours;
        for (uint32_t y = 0; y < bitmap->Height(); ++y) {
            for (uint32_t x = 0; x < bitmap->Width(); ++x) colours.push_back(ColourAt(*bitmap, x, y));
        }
        return colours;
    } catch (const reader::ImageError& error) {
        EXPECT_FALSE(error.text.empty());
        return {};
    }
}

TEST(BmpPage, HeadersAndKinds) {
    constexpr uint32_t kWhite = 0xFFFFFF;
    const Bytes masks565 = {0, 0xF8, 0, 0, 0xE0, 7, 0, 0, 0x1F, 0, 0, 0};
    const Bytes wide = {0, 0, 0xF0, 0x3F, 0, 0xFC, 0x0F, 0, 0xFF, 3, 0, 0};  // 10 bits each
    const Bytes overlapping = {0, 0xF8, 0, 0, 0, 0x0F, 0, 0, 0x1F, 0, 0, 0};
    const Bytes torn = {0, 0xE8, 0, 0, 0, 7, 0, 0, 0x1F, 0, 0, 0};
    const Bytes argb = {0, 0, 0xFF, 0, 0, 0xFF, 0, 0, 0xFF, 0, 0, 0, 0, 0, 0, 0xFF};
    const Bytes two3 = {1, 2, 3, 4, 5, 6};
    const Bytes two4 = {1, 2, 3, 0, 4, 5, 6, 0};
    struct Case {
        const char* name;
        File file;
        Colours colours;
    };
    const Case cases[] = {
        {"OS/2 1", {12, 1, 0, 1, 2, two3, {0, 0, 0, 0, 0x80, 0, 0, 0}}, {0x060504, 0x030201}},
        {"OS/2 1, few colours", {12, 4, 0, 3, 1, two3, {0x01, 0x20, 0, 0}}, {0x030201, 0x060504, kWhite}},
        {"OS/2 2, short", {16, 4, 0, 3, 1, two4, {0x10, 0x20, 0, 0}}, {0x060504, 0x030201, kWhite}},
        {"OS/2 2, fax", {64, 1, 3, 2, 1, two4, {0, 0, 0, 0}}, {}},
        {"OS/2 2, RLE24", {64, 24, 4, 1, 1, {}, {1, 0, 0, 0, 0, 1}}, {}},
        {"no such header", {80, 24, 0, 1, 1, {}, {3, 2, 1, 0}}, {}},
        {"1 bit", {40, 1, 0, 1, -2, two4, {0, 0, 0, 0, 0x80, 0, 0, 0}}, {0x030201, 0x060504}},
        {"no colours", {40, 1, 0, 2, 1, {}, {0x40, 0, 0, 0}}, {}},
        {"fewer colours than said", {40, 8, 0, 1, 1, two4, {0, 0, 0, 0}, 3}, {}},
        {"2 bits", {40, 2, 0, 4, 1, two4, {0x1B, 0, 0, 0}, 2}, {0x030201, 0x060504, kWhite, kWhite}},
        {"555", {40, 16, 0, 2, 1, {}, {0x1F, 0x40, 0xE0, 0x83}}, {0x8400FF, 0x00FF00}},
        {"565", {40, 16, 3, 2, 1, masks565, {0x1F, 0x80, 0xE0, 7}}, {0x8400FF, 0x00FF00}},
        {"overlapping masks", {40, 16, 3, 2, 1, overlapping, {0, 0, 0, 0}}, {}},
        {"torn mask", {40, 16, 3, 2, 1, torn, {0, 0, 0, 0}}, {}},
        {"masks of 32 bits in 16", {40, 16, 3, 2, 1, wide, {0, 0, 0, 0}}, {}},
        {"masks of 10 bits", {40, 32, 3, 1, 1, wide, {0xFF, 3, 0xF0, 0x1F}}, {0x7F00FF}},
        {"24 bits, row missing", {40, 24, 0, 1, 2, {}, {3, 2, 1, 0, 3, 2, 1}}, {}},
        {"24 bits", {40, 24, 0, 1, 2, {}, {3, 2, 1, 0, 6, 5, 4, 0}}, {0x040506, 0x010203}},
        {"32 bits, no alpha", {108, 32, 0, 2, 1, {}, {3, 2, 1, 0, 6, 5, 4, 9}}, {0x010203, 0x040506}},
        {"alpha", {40, 32, 6, 2, 1, argb, {0, 0, 0, 0, 0, 255, 51, 51}}, {kWhite, 0xD6FFCC}},
        {"alpha all 0", {40, 32, 6, 2, 1, argb, {3, 2, 1, 0, 6, 5, 4, 0}}, {0x010203, 0x040506}},
        {"PNG inside", {40, 0, 5, 1, 1, {}, {0x89, 'P', 'N', 'G'}}, {}},
        {"no rows", {124, 24, 0, 1, 0, {}, {}}, {}},
        {"negative width", {40, 24, 0, -1, 1, {}, {3, 2, 1, 0}}, {}},
        {"lowest height", {40, 24, 0, 1, INT32_MIN, {}, {3, 2, 1, 0}}, {}},
        {"run lengths from the top", {40, 8, 1, 1, -1, two4, {1, 0, 0, 1}}, {}},
    };
    for (const Case& item : cases) EXPECT_EQ(Read(item.file.Write()), item.colours) << item.name;

    Bytes file = cases[1].file.Write();
    for (const uint32_t offset : {0U, 14U, 25U}) {
        reader::Put32(&file[10], offset);
        EXPECT_EQ(Read(file), Colours()) << "pixels at " << offset;
    }
    const Bytes dots = File{40, 24, 0, 1, 1, {}, {3, 2, 1, 0}}.Write();
    EXPECT_EQ(reader::BmpPage(dots).Facts().dpiX, 300);
    EXPECT_EQ(reader::BmpPage(dots).Facts().dpiY, 0);
}

// 5 x 3 pixels; rows from the top, none when the runs are refused.
TEST(BmpPage, RunLengths) {
    struct Case {
        const char* name;
        uint32_t bits;
        Bytes runs;
        const char* rows;
    };
    const Case cases[] = {
        {"rows without an end", 8, {5, 1, 0, 0, 5, 2, 0, 0, 5, 3}, "333332222211111"},
        {"end of the last row", 8, {5, 1, 0, 0, 5, 2, 0, 0, 5, 3, 0, 0}, "333332222211111"},
        {"everything skipped", 8, {0, 2, 5, 2, 0, 1}, "000000000000000"},
        {"rows that end early", 8, {2, 1, 0, 0, 0, 0, 3, 2, 0, 0, 0, 1}, "222000000011000"},
        {"skip", 8, {1, 1, 0, 2, 2, 1, 2, 2, 0, 0, 0, 0, 0, 1}, "000000002210000"},
        {"as they are, padded", 8, {0, 3, 1, 2, 3, 9, 2, 4, 0, 0, 0, 0, 0, 0, 0, 1}, "000000000012344"},
        {"halves",
         4,
         {5, 0x12, 0, 0, 0, 5, 0x34, 0x56, 0x70, 9, 0, 0, 0, 3, 0x12, 0x30, 0, 0, 0, 1},
         "123003456712121"},
        {"padding in the runs", 8, {8, 1, 0, 0, 5, 2, 3, 9, 0, 0, 0, 6, 3, 3, 3, 3, 3, 9, 0, 1}, "333332222211111"},
        {"run beyond its row", 8, {5, 1, 4, 1, 0, 1}, ""},
        {"pixels beyond their row", 4, {6, 1, 0, 3, 0x12, 0x30, 0, 1}, ""},
        {"skip beyond the row", 8, {1, 1, 0, 2, 8, 0, 0, 1}, ""},
        {"skip beyond the bitmap", 8, {0, 2, 0, 4, 0, 1}, ""},
        {"row beyond the bitmap", 8, {0, 0, 0, 0, 0, 0, 1, 1, 0, 1}, ""},
        {"empty row beyond the bitmap", 8, {0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, ""},
        {"end before the last row", 8, {5, 1, 0, 0, 5, 2, 0, 1}, ""},
        {"no end", 8, {5, 1, 0, 0, 5, 2, 0, 0, 4, 3}, ""},
        {"end within a code", 8, {0, 5, 1, 2, 3}, ""},
    };
    Bytes palette;
    for (uint8_t i = 0; i < 10; ++i) palette.insert(palette.end(), 4, i);
    for (const Case& item : cases) {
        const uint32_t compression = item.bits == 8 ? 1 : 2;
        std::string rows;
        for (const uint32_t colour : Read(File{40, item.bits, compression, 5, 3, palette, item.runs}.Write())) {
            rows += static_cast<char>('0' + (colour & 0xFF));
        }
        EXPECT_EQ(rows, item.rows) << item.name;
    }
}

}  // namespace
