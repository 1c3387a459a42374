#include <tiffio.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <random>

#include "refhost/reader/Ccitt.h"
#include "refhost/writer/Group4.h"
#include "refhost/writer/TiffFile.h"

namespace {

using Bytes = std::vector<uint8_t>;

bool Bit(const uint8_t* row, uint32_t x) {
    return (row[x / 8] >> (7 - x % 8) & 1) != 0;
}

// Rows of noise, of runs, of single pixels, alike or not: each comes back, whatever stands behind its last pixel.
TEST(Group4, RowsComeBack) {
    std::mt19937 random(4);
    const auto below = [&](uint32_t count) { return static_cast<uint32_t>(random() % count); };
    for (int round = 0; round < 3000; ++round) {
        const uint32_t width = round % 100 == 0 ? 1 + below(65535) : 1 + below(300);
        const uint32_t height = 1 + below(6);
        const size_t stride = (width + 7) / 8 + random() % 3;
        const auto white = static_cast<uint8_t>(random() % 2 * 0xFF);
        Bytes rows(stride * height);
        const int kind = round % 4;
        for (uint8_t& byte : rows)
            byte = static_cast<uint8_t>(kind == 0 ? 0x55 : random() % (20 * kind) ? 0 : random());
        for (uint32_t y = 1; y < height; ++y) {
            if (random() % 2 == 0) std::memcpy(&rows[y * stride], &rows[(y - 1) * stride], stride);
        }
        Bytes coded, back(rows.size());
        const auto step = static_cast<ptrdiff_t>(stride);
        writer::EncodeGroup4({rows.data(), step, width, height, white}, coded);
        ASSERT_EQ(reader::DecodeFax(coded, reader::FaxCoding::kGroup4, {back.data(), step, width, height, white}),
                  reader::FaxResult::kWhole);
        for (uint32_t y = 0; y < height; ++y) {
            for (uint32_t x = 0; x < width; ++x) {
                ASSERT_EQ(Bit(&rows[y * stride], x), Bit(&back[y * stride], x)) << round << ": " << x << ", " << y;
            }
        }
    }
}

class File final : public writer::Sink {
public:
    void Append(std::span<const uint8_t> more) override { bytes.insert(bytes.end(), more.begin(), more.end()); }
    void Replace(uint64_t position, std::span<const uint8_t> with) override {
        ASSERT_LE(position + with.size(), bytes.size());
        std::copy(with.begin(), with.end(), bytes.begin() + static_cast<ptrdiff_t>(position));
    }
    Bytes bytes;
};

struct Source {
    uint32_t width, height, bits;
    std::vector<uint32_t> palette;
    uint16_t compression;  // that is chosen
    Bytes pixels = {};     // bottom-up, as bitmaps lie

    size_t Stride() const { return (size_t{width} * bits + 31) / 32 * 4; }
    writer::PageView View() const {
        return {width, height, bits, &pixels[Stride() * (height - 1)], -static_cast<ptrdiff_t>(Stride()), palette};
    }
    uint32_t Colour(uint32_t x, uint32_t y) const {
        const uint8_t* row = &pixels[Stride() * (height - 1 - y)];
        if (bits <= 8) return palette[bits == 1 ? Bit(row, x) : row[x]];
        const uint8_t* at = row + size_t{x} * bits / 8;
        return static_cast<uint32_t>(at[2] << 16 | at[1] << 8 | at[0]);
    }
};

void ExpectPage(TIFF* tiff, const Source& source) {
    std::vector<uint32_t> raster(size_t{source.width} * source.height);
    ASSERT_EQ(TIFFReadRGBAImageOriented(tiff, source.width, source.height, raster.data(), ORIENTATION_TOPLEFT, 1), 1);
    for (uint32_t y = 0; y < source.height; ++y) {
        for (uint32_t x = 0; x < source.width; ++x) {
            const uint32_t is = raster[size_t{y} * source.width + x];
            const uint32_t colour = TIFFGetR(is) << 16 | TIFFGetG(is) << 8 | TIFFGetB(is);
            ASSERT_EQ(colour, source.Colour(x, y)) << x << ", " << y;
        }
    }
}

TEST(TiffFile, AnotherLibraryReadsPagesOfAllKinds) {
    std::vector<uint32_t> grey, colours;
    for (uint32_t i = 0; i < 256; ++i) {
        grey.push_back(i * 0x010101);
        colours.push_back(i * 0x050301 & 0xFFFFFF);
    }
    Source sources[] = {{61, 40, 1, {0, 0xFFFFFF}, COMPRESSION_CCITTFAX4},
                        {61, 40, 1, {0xFFFFFF, 0}, COMPRESSION_CCITTFAX4},
                        {9, 3, 1, {0x102030, 0xFFFFFF}, COMPRESSION_ADOBE_DEFLATE},
                        {50, 20, 8, grey, COMPRESSION_ADOBE_DEFLATE},
                        {51, 20, 8, colours, COMPRESSION_ADOBE_DEFLATE},
                        {1, 1, 24, {}, COMPRESSION_ADOBE_DEFLATE},
                        {701, 1100, 32, {}, COMPRESSION_ADOBE_DEFLATE}};  // of several strips
    std::mt19937 random(7);
    for (Source& source : sources) {
        source.pixels.resize(source.Stride() * source.height);
        for (uint8_t& byte : source.pixels) byte = static_cast<uint8_t>(random() % 3 == 0 ? random() : 0xFF);
    }
    for (const auto packing : {writer::Packing::kAuto, writer::Packing::kNone}) {
        for (const bool big : {false, true}) {
            File file;
            writer::TiffFile out(file, big);
            for (const Source& source : sources) {
                out.Append(writer::EncodePage(source.View(), packing), {203.2, 98, source.bits == 24});
            }
            FILE* const stream = std::tmpfile();
            ASSERT_EQ(std::fwrite(file.bytes.data(), 1, file.bytes.size(), stream), file.bytes.size());
            std::rewind(stream);
            TIFF* const tiff = TIFFFdOpen(dup(fileno(stream)), "page", "r");
            ASSERT_NE(tiff, nullptr);
            EXPECT_EQ(TIFFIsBigTIFF(tiff) != 0, big);
            EXPECT_EQ(TIFFNumberOfDirectories(tiff), std::size(sources));
            for (uint16_t page = 0; page < std::size(sources); ++page) {
                SCOPED_TRACE(testing::Message() << "page " << page << (big ? ", big" : ""));
                ASSERT_EQ(TIFFSetDirectory(tiff, page), 1);
                ExpectPage(tiff, sources[page]);
                uint16_t compression = 0, unit = 0;
                float x = 0, y = 0;
                TIFFGetField(tiff, TIFFTAG_COMPRESSION, &compression);
                TIFFGetField(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
                TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &x);
                TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &y);
                const bool packed = packing == writer::Packing::kAuto;
                EXPECT_EQ(compression, packed ? sources[page].compression : COMPRESSION_NONE);
                EXPECT_EQ(unit, sources[page].bits == 24 ? RESUNIT_CENTIMETER : RESUNIT_INCH);
                EXPECT_FLOAT_EQ(x, 203.2F);
                EXPECT_FLOAT_EQ(y, 98);
            }
            TIFFClose(tiff);
            std::fclose(stream);
        }
    }
}

TEST(TiffFile, APageThatDoesNotFitIsToldBeforeItIsWritten) {
    const Bytes pixels(4000, 0x5A);
    const auto page = writer::EncodePage({100, 10, 32, pixels.data(), 400, {}}, writer::Packing::kNone);
    File file;
    writer::TiffFile out(file, false, 12000);
    out.Append(page, {200, 200});
    const Bytes before = file.bytes;
    EXPECT_THROW(for (int i = 0; i < 3; ++i) out.Append(page, {200, 200}), writer::TooLargeForTiff);
    EXPECT_LE(file.bytes.size(), 12000U);
    EXPECT_GT(file.bytes.size(), before.size());
}

}  // namespace
