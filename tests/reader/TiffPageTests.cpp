// Pages of random samples written by libtiff, against what their samples mean.
#include <cmath>
#include <random>

#include "imaging/TestImage.h"
#include "reader/TiffWriter.h"
#include "refhost/reader/Bytes.h"
#include "refhost/reader/Page.h"
#include "refhost/reader/Tiff.h"
#include "support/FakeJpeg.h"

using test::Bytes;

namespace {

constexpr uint32_t kPageWidth = 37;
constexpr uint32_t kPageHeight = 23;
constexpr uint32_t kTileSide = 16;
constexpr uint32_t kStripRows = 5;
using PageColours = std::vector<uint32_t>;

enum { kInverted, kGrey, kColours, kMap, kInks = 5 };

struct PageKind {
    uint32_t bits, samples, photometric;
    uint32_t extra = 0;  // kind of the first extra sample
    uint32_t Colors() const { return photometric == kInks ? 4 : photometric == kColours ? 3 : 1; }
};
const PageKind kPageKinds[] = {
    {1, 1, kInverted},   {1, 1, kGrey},       {2, 1, kGrey},        {4, 1, kInverted}, {5, 1, kGrey},
    {8, 1, kGrey},       {8, 1, kInverted},   {12, 1, kInverted},   {16, 1, kGrey},    {16, 1, kInverted},
    {32, 1, kGrey},      {1, 2, kInverted},   {8, 2, kGrey, 1},     {8, 2, kGrey, 2},  {16, 2, kInverted, 2},
    {1, 1, kMap},        {4, 1, kMap},        {8, 1, kMap},         {1, 3, kColours},  {4, 3, kColours},
    {8, 3, kColours},    {10, 3, kColours},   {16, 3, kColours},    {32, 3, kColours}, {8, 4, kColours, 0},
    {8, 4, kColours, 1}, {8, 4, kColours, 2}, {16, 5, kColours, 2}, {8, 4, kInks},     {16, 4, kInks},
    {8, 5, kInks, 2},
};

struct PageCoding {
    uint32_t compression, predictor = 1;
    bool Fits(const PageKind& kind) const {
        if (compression >= 2 && compression <= 4) return kind.bits * kind.samples == 1 && kind.photometric != kMap;
        return predictor == 1 || kind.bits == 8 || kind.bits == 16 || kind.bits == 32;
    }
};
const PageCoding kPageCodings[] = {{COMPRESSION_NONE},     {COMPRESSION_PACKBITS},      {COMPRESSION_LZW},
                                   {COMPRESSION_LZW, 2},   {COMPRESSION_ADOBE_DEFLATE}, {COMPRESSION_ADOBE_DEFLATE, 2},
                                   {COMPRESSION_DEFLATE},  {COMPRESSION_CCITTRLE},      {COMPRESSION_CCITTFAX3},
                                   {COMPRESSION_CCITTFAX4}};

struct PageForm {
    bool planar = false, tiled = false, bigEndian = false, lowBitFirst = false;
    uint32_t stripRows = kStripRows;
};

uint32_t ByteOf(uint32_t value, uint32_t bits) {
    if (bits == 32) return ByteOf(value >> 16, 16);
    return static_cast<uint32_t>(std::lround(value * 255.0 / ((1U << bits) - 1)));
}

uint32_t ColourOf(const PageKind& kind, const uint32_t* samples, const std::vector<uint16_t>& map) {
    uint32_t result = 0;
    const auto byte = [&](uint32_t index) { return ByteOf(samples[index], kind.bits); };
    for (uint32_t i = 0; i < 3; ++i) {
        uint32_t value = byte(kind.Colors() == 1 ? 0 : i);
        if (kind.photometric == kMap) value = map[i * map.size() / 3 + samples[0]] >> 8U;
        if (kind.photometric == kInverted) value = 255 - value;
        if (kind.photometric == kInks) value = ((255 - value) * (255 - byte(3)) + 127) / 255;
        const uint32_t alpha = kind.extra == 0 ? 255 : byte(kind.Colors());
        if (kind.extra == 1) value = std::min(255U, value + 255 - alpha);
        if (kind.extra == 2) value = (value * alpha + 255 * (255 - alpha) + 127) / 255;
        result = result << 8 | value;
    }
    return result;
}

struct WrittenPage {
    WrittenPage(const PageKind& kind, const PageCoding& coding, const PageForm& form) {
        std::mt19937 random(kind.bits);
        std::vector<uint32_t> samples(size_t{kPageWidth} * kPageHeight * kind.samples);
        for (uint32_t& value : samples) value = static_cast<uint32_t>(random() >> (32 - kind.bits));
        std::vector<uint16_t> map(kind.photometric == kMap ? size_t{3} << kind.bits : 0);
        for (uint16_t& value : map) value = static_cast<uint16_t>(random());
        for (size_t i = 0; i < samples.size(); i += kind.samples) colours.push_back(ColourOf(kind, &samples[i], map));
        file = test::WriteTiff(form.bigEndian ? "wb" : "wl", [&](TIFF* tiff) {
            test::SetTags(tiff, {{TIFFTAG_IMAGEWIDTH, kPageWidth},
                                 {TIFFTAG_IMAGELENGTH, kPageHeight},
                                 {TIFFTAG_BITSPERSAMPLE, kind.bits},
                                 {TIFFTAG_SAMPLESPERPIXEL, kind.samples},
                                 {TIFFTAG_COMPRESSION, coding.compression},
                                 {TIFFTAG_PHOTOMETRIC, kind.photometric},
                                 {TIFFTAG_FILLORDER, form.lowBitFirst ? 2 : 1},
                                 {TIFFTAG_PLANARCONFIG, form.planar ? 2 : 1},
                                 {form.tiled ? TIFFTAG_TILELENGTH : TIFFTAG_ROWSPERSTRIP,
                                  form.tiled ? kTileSide : form.stripRows}});
            if (form.tiled) test::SetTags(tiff, {{TIFFTAG_TILEWIDTH, kTileSide}});
            if (coding.predictor != 1) test::SetTags(tiff, {{TIFFTAG_PREDICTOR, coding.predictor}});
            const uint16_t extra[4] = {static_cast<uint16_t>(kind.extra)};
            if (kind.samples > kind.Colors())
                TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, kind.samples - kind.Colors(), extra);
            if (!map.empty())
                TIFFSetField(tiff, TIFFTAG_COLORMAP, &map[0], &map[map.size() / 3], &map[map.size() / 3 * 2]);
            WritePieces(tiff, kind, form, samples);
        });
    }

    // Pixels of a tile beyond the page are 1.
    static void WritePieces(TIFF* tiff, const PageKind& kind, const PageForm& form,
                            const std::vector<uint32_t>& samples) {
        const uint32_t pieceWidth = form.tiled ? kTileSide : kPageWidth;
        const uint32_t pieceHeight = form.tiled ? kTileSide : form.stripRows;
        const uint32_t together = form.planar ? 1 : kind.samples;
        uint32_t piece = 0;
        for (uint32_t plane = 0; plane < kind.samples; plane += together) {
            for (uint32_t top = 0; top < kPageHeight; top += pieceHeight) {
                for (uint32_t left = 0; left < kPageWidth; left += pieceWidth, ++piece) {
                    Bytes bytes;
                    for (uint32_t y = top; y < top + pieceHeight && (form.tiled || y < kPageHeight); ++y) {
                        size_t bit = bytes.size() * 8;
                        bytes.resize(bytes.size() + (size_t{pieceWidth} * together * kind.bits + 7) / 8);
                        for (uint32_t i = 0; i < pieceWidth * together; ++i, bit += kind.bits) {
                            const uint32_t x = left + i / together;
                            const size_t at = (size_t{y} * kPageWidth + x) * kind.samples + plane + i % together;
                            PutBits(bytes, bit, kind.bits, x < kPageWidth && y < kPageHeight ? samples[at] : 1);
                        }
                    }
                    const auto write = form.tiled ? TIFFWriteEncodedTile : TIFFWriteEncodedStrip;
                    EXPECT_GE(write(tiff, piece, bytes.data(), static_cast<tmsize_t>(bytes.size())), 0);
                }
            }
        }
    }
    static void PutBits(Bytes& bytes, size_t at, uint32_t bits, uint32_t value) {
        if (bits >= 16) return reader::Put(&bytes[at / 8], value, static_cast<int>(bits / 8), false);
        for (uint32_t i = 0; i < bits; ++i) {
            const uint32_t bit = value >> (bits - 1 - i) & 1;
            bytes[(at + i) / 8] = static_cast<uint8_t>(bytes[(at + i) / 8] | bit << (7 - (at + i) % 8));
        }
    }

    Bytes file;
    PageColours colours;
};

// None when the page is refused.
PageColours ReadPage(const Bytes& file) {
    try {
        test::FakeJpeg jpeg;
        const auto bitmap = reader::OpenPage(file, reader::FindPages(file).at(0))->Decode(jpeg);
        PageColours colours;
        for (uint32_t i = 0; i < bitmap->Width() * bitmap->Height(); ++i) {
            colours.push_back(ColourAt(*bitmap, i % bitmap->Width(), i / bitmap->Width()));
        }
        return colours;
    } catch (const reader::ImageError& error) {
        EXPECT_FALSE(error.text.empty());
        return {};
    }
}

template <class Check>
void ForEachKind(const PageForm& form, Check check) {
    for (const PageKind& kind : kPageKinds) {
        for (const PageCoding& coding : kPageCodings) {
            if (!coding.Fits(kind) || (form.planar && kind.samples == 1)) continue;
            SCOPED_TRACE(testing::Message()
                         << kind.bits << " x " << kind.samples << ", colours " << kind.photometric << ", extra "
                         << kind.extra << ", compression " << coding.compression << "/" << coding.predictor
                         << (form.planar ? ", planar" : "") << (form.tiled ? ", tiled" : "")
                         << (form.bigEndian ? ", big-endian" : "") << (form.lowBitFirst ? ", low bit first" : ""));
            const WrittenPage page(kind, coding, form);
            check(page, kind, coding);
        }
    }
}

TEST(TiffPage, SamplesBecomePixels) {
    for (const unsigned form : {0, 1, 2, 3, 4, 6, 8, 10, 13, 15}) {
        ForEachKind({(form & 1) != 0, (form & 2) != 0, (form & 4) != 0, (form & 8) != 0},
                    [](const WrittenPage& page, auto&&...) { EXPECT_TRUE(ReadPage(page.file) == page.colours); });
    }
}

// Values of an entry of the first directory, or with index -1 their number, or with -2 the tag.
constexpr int kCount = -1;
constexpr int kTag = -2;
Bytes Changed(Bytes file, uint32_t tag, int index, uint32_t value) {
    const auto directory = reader::TiffFrame(file, 0);
    const reader::TiffEntry& entry = *directory->Find(tag);
    size_t at = reader::Get32(file, 4, false) + 2;
    while (reader::Get16(file, at, false) != tag) at += 12;
    const size_t size = entry.type == TIFF_LONG ? 4 : 2;
    at = index == kCount ? at + 4 : index == kTag ? at : entry.offset + static_cast<size_t>(index) * size;
    reader::Put(&file[at], value, index == kCount ? 4 : index == kTag ? 2 : static_cast<int>(size), false);
    return file;
}

TEST(TiffPage, PiecesThatAreNotThere) {
    for (const bool tiled : {false, true}) {
        const uint32_t offsets = tiled ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS;
        const uint32_t lengths = tiled ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS;
        ForEachKind({false, tiled}, [&](const WrittenPage& page, auto&&...) {
            const auto directory = reader::TiffFrame(page.file, 0);
            const uint32_t length = directory->Number(*directory->Find(lengths), 2);
            const auto size = static_cast<uint32_t>(page.file.size());
            const PageColours halved = ReadPage(Changed(page.file, lengths, 2, length / 2));
            EXPECT_TRUE(halved.empty() || halved == page.colours);
            EXPECT_EQ(ReadPage(Changed(page.file, offsets, 2, size)), PageColours());
            EXPECT_EQ(ReadPage(Changed(page.file, offsets, 2, 0)), PageColours());
            EXPECT_EQ(ReadPage(Changed(page.file, offsets, kCount, 3)), PageColours());
            EXPECT_EQ(ReadPage(Changed(page.file, lengths, kCount, 3)), PageColours());
            EXPECT_EQ(ReadPage(Changed(page.file, lengths, 2, 0)), PageColours());
        });
    }
}

TEST(TiffPage, TagsThatAreLeftOut) {
    ForEachKind({false, false, false, false, kPageHeight}, [](const WrittenPage& page, const PageKind& kind,
                                                              const PageCoding& coding) {
        EXPECT_TRUE(ReadPage(Changed(page.file, TIFFTAG_STRIPBYTECOUNTS, 0, 0)) == page.colours);
        EXPECT_TRUE(ReadPage(Changed(page.file, TIFFTAG_BITSPERSAMPLE, kCount, 1)) == page.colours || kind.samples > 2);
        const bool fax = coding.compression >= 2 && coding.compression <= 4;
        const auto colours = kind.samples >= 3 ? kColours : fax ? kInverted : kGrey;
        for (const uint32_t tag : {TIFFTAG_ROWSPERSTRIP, TIFFTAG_STRIPBYTECOUNTS, TIFFTAG_PLANARCONFIG,
                                   TIFFTAG_SAMPLESPERPIXEL, TIFFTAG_FILLORDER, TIFFTAG_PHOTOMETRIC}) {
            if (tag == TIFFTAG_PHOTOMETRIC && kind.photometric != colours) continue;
            EXPECT_TRUE(ReadPage(Changed(page.file, tag, kTag, 60000)) == page.colours) << tag;
        }
    });
}

}  // namespace
