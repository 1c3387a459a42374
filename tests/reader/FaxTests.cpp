// Rows that libtiff encodes have to come back as they were.
#include <random>

#include "reader/PageFiles.h"
#include "refhost/reader/Ccitt.h"
#include "refhost/reader/Tiff.h"

using reader::FaxCoding;
using reader::FaxResult;

namespace {

constexpr uint32_t kFaxRows = 12;

struct Encoding {
    FaxCoding coding;
    uint32_t compression, options;
};
const Encoding kEncodings[] = {
    {FaxCoding::kRowsOfBytes, COMPRESSION_CCITTRLE, 0},
    {FaxCoding::kRowsOfWords, COMPRESSION_CCITTRLEW, 0},
    {FaxCoding::kGroup3, COMPRESSION_CCITTFAX3, 0},
    {FaxCoding::kGroup3, COMPRESSION_CCITTFAX3, GROUP3OPT_FILLBITS},
    {FaxCoding::kGroup3TwoDimensional, COMPRESSION_CCITTFAX3, GROUP3OPT_2DENCODING},
    {FaxCoding::kGroup3TwoDimensional, COMPRESSION_CCITTFAX3, GROUP3OPT_2DENCODING | GROUP3OPT_FILLBITS},
    {FaxCoding::kGroup4, COMPRESSION_CCITTFAX4, 0},
};

enum Rows { kRandom, kRuns, kShifted, kWhite, kKinds };

// Packed, black 1, nothing behind the last pixel of a row.
Bytes MakeRows(uint32_t width, size_t kind) {
    std::mt19937 random(width);
    const uint32_t length[] = {2, width / 8 + 2, 64, UINT32_MAX};  // of a run, about
    const size_t stride = (width + 7) / 8;
    Bytes rows(kFaxRows * stride);
    std::vector<bool> row(width);
    for (uint32_t y = 0; y < kFaxRows; ++y) {
        const std::vector<bool> above = row;
        const size_t shift = random() % 9 + size_t{width} * 4 - 4;
        for (uint32_t x = 0; x < width; ++x) {
            const bool like = kind == kShifted && y != 0 ? above[(x + shift) % width] : x != 0 && row[x - 1];
            row[x] = like != (random() % length[kind] == 0);
            if (row[x]) rows[y * stride + x / 8] |= static_cast<uint8_t>(0x80 >> x % 8);
        }
    }
    return rows;
}

Bytes EncodeFax(const Encoding& encoding, uint32_t width, Bytes rows) {
    const Bytes file = WriteTiff("wl", [&](TIFF* tiff) {
        SetTags(tiff, {TIFFTAG_IMAGEWIDTH, width, TIFFTAG_IMAGELENGTH, kFaxRows, TIFFTAG_ROWSPERSTRIP, kFaxRows,
                       TIFFTAG_COMPRESSION, encoding.compression, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE});
        if (encoding.options != 0) SetTags(tiff, {TIFFTAG_GROUP3OPTIONS, encoding.options});
        TIFFWriteBufferSetup(tiff, nullptr, 1 << 20);
        EXPECT_GE(TIFFWriteEncodedStrip(tiff, 0, rows.data(), static_cast<tmsize_t>(rows.size())), 0);
    });
    const auto directory = reader::TiffFrame(file, 0);
    const auto number = [&](uint32_t tag) { return directory->Number(*directory->Find(tag), 0); };
    const uint8_t* const strip = file.data() + number(TIFFTAG_STRIPOFFSETS);
    return {strip, strip + number(TIFFTAG_STRIPBYTECOUNTS)};
}

FaxResult DecodeRows(const Bytes& stream, FaxCoding coding, uint32_t width, Bytes& rows, uint32_t count = kFaxRows) {
    const size_t stride = (width + 7) / 8;
    rows.assign(stride * count, 0xA5);
    return reader::DecodeFax(stream, coding, {rows.data(), static_cast<ptrdiff_t>(stride), width, count, 0});
}

// Cut streams give all rows or none; changed ones end, and write nowhere else.
void CheckDamaged(Bytes stream, FaxCoding coding, uint32_t width, const Bytes& rows) {
    Bytes decoded;
    for (size_t bit = 0; bit < stream.size() * 8; ++bit) {
        Bytes changed = stream;
        changed[bit / 8] ^= static_cast<uint8_t>(0x80 >> bit % 8);
        DecodeRows(changed, coding, width, decoded);
    }
    while (!stream.empty()) {
        stream = Bytes(stream.begin(), stream.end() - 1);
        const FaxResult result = DecodeRows(stream, coding, width, decoded);
        EXPECT_TRUE(result == FaxResult::kWhole ? decoded == rows : result == FaxResult::kEndsEarly) << stream.size();
    }
}

TEST(Fax, RowsComeBack) {
    for (size_t i = 0; i < std::size(kEncodings) * kKinds; ++i) {
        const Encoding& encoding = kEncodings[i / kKinds];
        for (const uint32_t width : {1U, 7U, 8U, 9U, 17U, 64U, 65U, 1728U, 2561U, 9000U}) {
            SCOPED_TRACE(testing::Message() << "encoding " << i / kKinds << ", rows " << i % kKinds << ", " << width);
            const Bytes rows = MakeRows(width, i % kKinds);
            const Bytes stream = EncodeFax(encoding, width, rows);
            Bytes decoded;
            EXPECT_EQ(DecodeRows(stream, encoding.coding, width, decoded), FaxResult::kWhole);
            EXPECT_TRUE(decoded == rows);
            EXPECT_EQ(DecodeRows(stream, encoding.coding, width, decoded, kFaxRows + 1), FaxResult::kEndsEarly);
            if (width <= 65) CheckDamaged(stream, encoding.coding, width, rows);
        }
    }
}

TEST(Fax, WhatIsNoRow) {
    const struct {
        FaxCoding coding;
        Bytes stream;
        FaxResult result;
    } cases[] = {
        {FaxCoding::kGroup4, {0x80, 0x08, 0x00, 0x80, 0xFF}, FaxResult::kEndsEarly},  // a row, then the end
        {FaxCoding::kGroup4, {0x03, 0xC0, 0xFF}, FaxResult::kUncompressedMode},
        {FaxCoding::kGroup3, {0x00, 0x10, 0x0F, 0xFF}, FaxResult::kUncompressedMode},
        {FaxCoding::kGroup3, {0x00, 0x10, 0x01, 0x00, 0x10, 0x01}, FaxResult::kEndsEarly},
        {FaxCoding::kGroup3TwoDimensional, {0x00, 0x18, 0x00, 0xC0, 0x06}, FaxResult::kEndsEarly},
    };
    Bytes rows;
    for (const auto& item : cases) EXPECT_EQ(DecodeRows(item.stream, item.coding, 9, rows), item.result);
}

}  // namespace
