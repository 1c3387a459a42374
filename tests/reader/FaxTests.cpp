// Rows that libtiff encodes have to come back as they were.
#include <random>

#include "reader/TiffWriter.h"
#include "refhost/reader/Ccitt.h"
#include "refhost/reader/Tiff.h"

using reader::FaxCoding;
using reader::FaxResult;
using test::Bytes;

namespace {

constexpr uint32_t kFaxRows = 12;

struct Encoding {
    const char* name;
    FaxCoding coding;
    uint32_t compression, options;
};
const Encoding kEncodings[] = {
    {"rows of bytes", FaxCoding::kRowsOfBytes, COMPRESSION_CCITTRLE, 0},
    {"rows of words", FaxCoding::kRowsOfWords, COMPRESSION_CCITTRLEW, 0},
    {"group 3", FaxCoding::kGroup3, COMPRESSION_CCITTFAX3, 0},
    {"group 3, filled", FaxCoding::kGroup3, COMPRESSION_CCITTFAX3, GROUP3OPT_FILLBITS},
    {"group 3, 2-D", FaxCoding::kGroup3TwoDimensional, COMPRESSION_CCITTFAX3, GROUP3OPT_2DENCODING},
    {"group 3, 2-D, filled", FaxCoding::kGroup3TwoDimensional, COMPRESSION_CCITTFAX3,
     GROUP3OPT_2DENCODING | GROUP3OPT_FILLBITS},
    {"group 4", FaxCoding::kGroup4, COMPRESSION_CCITTFAX4, 0},
};

enum class Kind { kRandom, kRuns, kShifted, kWhite };

// Packed rows, black 1, nothing behind the last pixel of a row.
Bytes MakeRows(uint32_t width, Kind kind) {
    std::mt19937 random(width);
    const size_t stride = (width + 7) / 8;
    Bytes rows(kFaxRows * stride);
    std::vector<bool> row(width);
    for (uint32_t y = 0; y < kFaxRows && kind != Kind::kWhite; ++y) {
        const std::vector<bool> above = row;
        const uint32_t shift = static_cast<uint32_t>(random()) % 9;
        bool black = random() % 2 != 0;
        uint32_t left = 0;
        for (uint32_t x = 0; x < width; ++x) {
            if (kind == Kind::kRandom || (kind == Kind::kShifted && y == 0)) {
                row[x] = random() % 2 != 0;
            } else if (kind == Kind::kShifted) {
                row[x] = above[(x + width * 4 + shift - 4) % width] != (random() % 64 == 0);
            } else {
                if (left == 0) {
                    black = !black;
                    left = 1 + static_cast<uint32_t>(random()) % (random() % 4 == 0 ? width : 70);
                }
                --left;
                row[x] = black;
            }
            if (row[x]) rows[y * stride + x / 8] = static_cast<uint8_t>(rows[y * stride + x / 8] | 0x80 >> x % 8);
        }
    }
    return rows;
}

Bytes EncodeFax(const Encoding& encoding, uint32_t width, Bytes rows) {
    const Bytes file = test::WriteTiff("wl", [&](TIFF* tiff) {
        test::SetTags(tiff, {{TIFFTAG_IMAGEWIDTH, width},
                             {TIFFTAG_IMAGELENGTH, kFaxRows},
                             {TIFFTAG_ROWSPERSTRIP, kFaxRows},
                             {TIFFTAG_COMPRESSION, encoding.compression},
                             {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE}});
        if (encoding.options != 0) TIFFSetField(tiff, TIFFTAG_GROUP3OPTIONS, encoding.options);
        TIFFWriteBufferSetup(tiff, nullptr, 1 << 20);
        EXPECT_GE(TIFFWriteEncodedStrip(tiff, 0, rows.data(), static_cast<tmsize_t>(rows.size())), 0);
    });
    const auto directory = reader::TiffFrame(file, 0);
    const auto number = [&](uint32_t tag) { return directory->Number(*directory->Find(tag), 0); };
    const uint8_t* const strip = file.data() + number(TIFFTAG_STRIPOFFSETS);
    return {strip, strip + number(TIFFTAG_STRIPBYTECOUNTS)};
}

// The rows as MakeRows has them, black 1 whatever `white` is.
FaxResult DecodeRows(const Bytes& stream, FaxCoding coding, uint32_t width, uint32_t count, uint8_t white,
                     Bytes& rows) {
    const size_t stride = (width + 7) / 8;
    rows.assign(stride * count, 0xA5);
    const FaxResult result =
        reader::DecodeFax(stream, coding, {rows.data(), static_cast<ptrdiff_t>(stride), width, count, white});
    for (size_t i = 0; i < rows.size(); ++i) {
        const unsigned beyond = (i + 1) % stride == 0 ? 0xFFU >> ((width - 1) % 8 + 1) : 0;
        rows[i] = static_cast<uint8_t>((rows[i] ^ white) & ~beyond);
    }
    return result;
}

TEST(Fax, RowsComeBack) {
    for (const Encoding& encoding : kEncodings) {
        for (const uint32_t width : {1U, 7U, 8U, 9U, 17U, 64U, 65U, 1728U, 2561U, 9000U}) {
            for (const Kind kind : {Kind::kRandom, Kind::kRuns, Kind::kShifted, Kind::kWhite}) {
                SCOPED_TRACE(testing::Message() << encoding.name << ", " << width << ", " << static_cast<int>(kind));
                const Bytes rows = MakeRows(width, kind);
                const Bytes stream = EncodeFax(encoding, width, rows);
                for (const uint8_t white : {uint8_t{0x00}, uint8_t{0xFF}}) {
                    Bytes decoded;
                    ASSERT_EQ(DecodeRows(stream, encoding.coding, width, kFaxRows, white, decoded), FaxResult::kWhole);
                    ASSERT_TRUE(decoded == rows);
                }
                Bytes more;
                EXPECT_EQ(DecodeRows(stream, encoding.coding, width, kFaxRows + 1, 0, more), FaxResult::kEndsEarly);
            }
        }
    }
}

// Cut streams give all rows or none; changed ones end, and write nowhere else.
TEST(Fax, DamagedStreams) {
    for (const Encoding& encoding : kEncodings) {
        for (const uint32_t width : {1U, 7U, 17U, 64U, 150U}) {
            SCOPED_TRACE(testing::Message() << encoding.name << ", " << width);
            const Bytes rows = MakeRows(width, Kind::kShifted);
            Bytes stream = EncodeFax(encoding, width, rows);
            Bytes decoded;
            for (size_t size = 0; size < stream.size(); ++size) {
                const Bytes cut(stream.begin(), stream.begin() + static_cast<ptrdiff_t>(size));
                const FaxResult result = DecodeRows(cut, encoding.coding, width, kFaxRows, 0, decoded);
                EXPECT_TRUE(result == FaxResult::kWhole ? decoded == rows : result == FaxResult::kEndsEarly) << size;
            }
            for (size_t bit = 0; bit < stream.size() * 8; ++bit) {
                const auto mask = static_cast<uint8_t>(0x80 >> bit % 8);
                stream[bit / 8] ^= mask;
                DecodeRows(stream, encoding.coding, width, kFaxRows, 0, decoded);
                stream[bit / 8] ^= mask;
            }
        }
    }
}

TEST(Fax, WhatIsNoRow) {
    struct Case {
        FaxCoding coding;
        Bytes stream;
        FaxResult result;
    };
    const Case cases[] = {
        {FaxCoding::kGroup4, {0x80, 0x08, 0x00, 0x80, 0xFF}, FaxResult::kEndsEarly},  // a row, then the end
        {FaxCoding::kGroup4, {0x03, 0xC0, 0xFF}, FaxResult::kUncompressedMode},
        {FaxCoding::kGroup3, {0x00, 0x10, 0x0F, 0xFF}, FaxResult::kUncompressedMode},
        {FaxCoding::kGroup3, {0x00, 0x10, 0x01, 0x00, 0x10, 0x01}, FaxResult::kEndsEarly},
        {FaxCoding::kGroup3TwoDimensional, {0x00, 0x18, 0x00, 0xC0, 0x06}, FaxResult::kEndsEarly},
        {FaxCoding::kRowsOfBytes, {0x00, 0x80, 0xFF}, FaxResult::kUncompressedMode},
    };
    Bytes rows;
    for (const Case& item : cases) {
        EXPECT_EQ(DecodeRows(item.stream, item.coding, 9, kFaxRows, 0, rows), item.result) << &item - cases;
    }
}

}  // namespace
