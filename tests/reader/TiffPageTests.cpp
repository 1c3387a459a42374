// Pages written by libtiff, against what their samples mean.
#include <cmath>

#include "imaging/TestImage.h"
#include "reader/PageFiles.h"
#include "refhost/reader/Bytes.h"
#include "refhost/reader/Tiff.h"
#include "refhost/reader/TiffTags.h"

namespace tags = reader::tiff;

namespace {

constexpr uint32_t kPageWidth = 37;
constexpr uint32_t kPageHeight = 23;
constexpr uint32_t kTileSide = 16;

struct PageKind {
    uint32_t bits, samples, photometric;
    uint32_t extra = 0;  // kind of the first extra sample
    uint32_t Colors() const { return photometric == tags::kSeparated ? 4 : photometric == tags::kRgb ? 3 : 1; }
};
const PageKind kPageKinds[] = {
    {1, 1, 0},     {2, 1, 0},     {4, 1, 0}, {8, 1, 0},  {12, 1, 0}, {16, 1, 0},   {1, 2, 0},
    {16, 2, 0, 2},                                                                                // white is 0
    {1, 1, 1},     {5, 1, 1},     {8, 1, 1}, {16, 1, 1}, {32, 1, 1}, {8, 2, 1, 1}, {8, 2, 1, 2},  // black is 0
    {1, 3, 2},     {4, 3, 2},     {8, 3, 2}, {10, 3, 2}, {16, 3, 2}, {32, 3, 2},   {8, 4, 2},
    {8, 4, 2, 1},  {16, 5, 2, 2},                                                   // RGB
    {1, 1, 3},     {4, 1, 3},     {8, 1, 3}, {8, 4, 5},  {16, 4, 5}, {8, 5, 5, 2},  // palettes and CMYK
};

struct PageCoding {
    uint32_t compression, predictor = 1;
    bool Fits(const PageKind& kind) const {
        if (tags::IsFax(compression)) return kind.bits * kind.samples == 1 && kind.photometric <= 1;
        return predictor == 1 || kind.bits == 8 || kind.bits == 16 || kind.bits == 32;
    }
};
const PageCoding kPageCodings[] = {{1}, {2}, {3}, {4}, {5}, {5, 2}, {8}, {8, 2}, {32771}, {32773}, {32946}};

struct PageForm {
    bool planar, tiled, bigEndian, lowBitFirst;
    uint32_t stripRows = 5;
};

// Any number there may be; of tiles also beyond the page.
uint32_t SampleAt(uint32_t bits, uint32_t x, uint32_t y, uint32_t sample) {
    const uint32_t mixed = (x * 8 + sample + y * 4096 + 1) * 2654435761U;
    return (mixed ^ mixed << 13 ^ mixed << 7) >> (32 - bits);
}

uint32_t ByteOf(uint32_t value, uint32_t bits) {
    if (bits == 32) return ByteOf(value >> 16, 16);
    return static_cast<uint32_t>(std::lround(value * 255.0 / ((1U << bits) - 1)));
}

uint32_t ColourOf(const PageKind& kind, uint32_t x, uint32_t y, const std::vector<uint16_t>& map) {
    uint32_t result = 0;
    const auto byte = [&](uint32_t index) { return ByteOf(SampleAt(kind.bits, x, y, index), kind.bits); };
    const uint32_t alpha = kind.samples > kind.Colors() ? byte(kind.Colors()) : 255;
    for (uint32_t i = 0; i < 3; ++i) {
        uint32_t value = byte(kind.Colors() == 1 ? 0 : i);
        if (!map.empty()) value = map[i * map.size() / 3 + SampleAt(kind.bits, x, y, 0)] >> 8U;
        if (kind.photometric == tags::kWhiteIsZero) value = 255 - value;
        if (kind.photometric == tags::kSeparated) value = ((255 - value) * (255 - byte(3)) + 127) / 255;
        if (kind.extra == 1) value = std::min(255U, value + 255 - alpha);
        if (kind.extra == 2) value = (value * alpha + 255 * (255 - alpha) + 127) / 255;
        result = result << 8 | value;
    }
    return result;
}

Bytes PieceOf(TIFF* file, const PageKind& kind, const PageForm& form, uint32_t piece) {
    const uint32_t width = form.tiled ? kTileSide : kPageWidth;
    const uint32_t across = (kPageWidth + width - 1) / width;
    const uint32_t height = form.tiled ? kTileSide : form.stripRows;
    const uint32_t down = (kPageHeight + height - 1) / height;
    const uint32_t top = piece / across % down * height;
    const uint32_t samples = form.planar ? 1 : kind.samples;
    const uint32_t rows = form.tiled ? height : std::min(height, kPageHeight - top);
    Bytes bytes(static_cast<size_t>(form.tiled ? TIFFTileSize(file) : TIFFVStripSize(file, rows)));
    for (uint32_t i = 0; i < width * samples * rows; ++i) {
        const uint32_t y = i / (width * samples);
        const uint32_t inRow = i % (width * samples);
        const uint32_t value = SampleAt(kind.bits, piece % across * width + inRow / samples, top + y,
                                        form.planar ? piece / (across * down) : inRow % samples);
        uint8_t* const row = bytes.data() + y * (bytes.size() / rows);
        if (kind.bits >= 16)
            reader::Put(row + size_t{inRow} * kind.bits / 8, value, static_cast<int>(kind.bits / 8), false);
        for (uint32_t bit = inRow * kind.bits, b = kind.bits < 16 ? kind.bits : 0; b-- > 0; ++bit) {
            row[bit / 8] |= static_cast<uint8_t>((value >> b & 1) << (7 - bit % 8));
        }
    }
    return bytes;
}

Bytes WritePage(const PageKind& kind, const PageCoding& coding, const PageForm& form, std::vector<uint16_t>& map) {
    return WriteTiff(form.bigEndian ? "wb" : "wl", [&](TIFF* file) {
        SetTags(file, {tags::kWidth, kPageWidth, tags::kHeight, kPageHeight, tags::kBitsPerSample, kind.bits,
                       tags::kSamplesPerPixel, kind.samples, tags::kCompression, coding.compression, tags::kPhotometric,
                       kind.photometric, tags::kFillOrder, form.lowBitFirst ? 2U : 1U, tags::kPlanarConfiguration,
                       form.planar ? 2U : 1U});
        if (form.tiled) SetTags(file, {tags::kTileWidth, kTileSide, tags::kTileHeight, kTileSide});
        if (!form.tiled) SetTags(file, {tags::kRowsPerStrip, form.stripRows});
        if (coding.predictor != 1) SetTags(file, {tags::kPredictor, coding.predictor});
        const uint16_t extra[4] = {static_cast<uint16_t>(kind.extra)};
        const uint32_t extras = kind.samples - kind.Colors();
        if (extras != 0) TIFFSetField(file, tags::kExtraSamples, extras, extra);
        const size_t colors = map.size() / 3;
        if (colors != 0) TIFFSetField(file, tags::kColorMap, map.data(), map.data() + colors, map.data() + 2 * colors);
        for (uint32_t i = 0; i < (form.tiled ? TIFFNumberOfTiles(file) : TIFFNumberOfStrips(file)); ++i) {
            Bytes bytes = PieceOf(file, kind, form, i);
            const auto write = form.tiled ? TIFFWriteEncodedTile : TIFFWriteEncodedStrip;
            EXPECT_GE(write(file, i, bytes.data(), static_cast<tmsize_t>(bytes.size())), 0);
        }
    });
}

enum Read { kRefused, kRight, kWrong };

// `check(file, kind, coding, read)`, where `read(file)` tells whether its pixels are those that were written.
template <class Check>
void ForEachKind(const PageForm& form, Check check) {
    for (const PageKind& kind : kPageKinds) {
        for (const PageCoding& coding : kPageCodings) {
            if (!coding.Fits(kind) || (form.planar && kind.samples == 1)) continue;
            SCOPED_TRACE(testing::Message() << "kind " << &kind - kPageKinds << ", compression " << coding.compression);
            SCOPED_TRACE(testing::Message() << form.planar << form.tiled << form.bigEndian << form.lowBitFirst);
            std::vector<uint16_t> map(kind.photometric == tags::kPalette ? size_t{3} << kind.bits : 0);
            for (size_t i = 0; i < map.size(); ++i) map[i] = static_cast<uint16_t>(i * 40503 + 999);
            check(WritePage(kind, coding, form, map), kind, coding, [&](const Bytes& file) {
                const auto bitmap = ReadPage(file);
                if (bitmap == nullptr) return kRefused;
                bool same = bitmap->Width() == kPageWidth && bitmap->Height() == kPageHeight;
                for (uint32_t i = 0; same && i < kPageWidth * kPageHeight; ++i) {
                    const uint32_t x = i % kPageWidth;
                    const uint32_t y = i / kPageWidth;
                    same = ColourAt(*bitmap, x, y) == ColourOf(kind, x, y, map);
                }
                return same ? kRight : kWrong;
            });
        }
    }
}

// Value `index` of an entry of the first directory, which is little-endian, or what the entry says of itself.
constexpr size_t kTag = SIZE_MAX;
constexpr size_t kCount = SIZE_MAX - 1;
Bytes Changed(Bytes file, uint32_t tag, size_t index, uint32_t value) {
    const reader::TiffEntry entry = *reader::TiffFrame(file, 0)->Find(tag);
    size_t at = reader::Get32(file, 4, false) + 2;
    while (reader::Get16(file, at, false) != tag) at += 12;
    const size_t size = index == kTag ? 2 : index == kCount ? 4 : entry.size / entry.count;
    at = index == kTag ? at : index == kCount ? at + 4 : entry.offset + index * size;
    reader::Put(&file[at], value, static_cast<int>(size), false);
    return file;
}

TEST(TiffPage, SamplesBecomePixels) {
    for (const unsigned form : {0U, 1U, 2U, 3U, 4U, 6U, 8U, 10U, 13U, 15U}) {
        ForEachKind({(form & 1) != 0, (form & 2) != 0, (form & 4) != 0, (form & 8) != 0},
                    [](const Bytes& file, auto&&, auto&&, auto&& read) { EXPECT_EQ(read(file), kRight); });
    }
}

TEST(TiffPage, PiecesThatAreNotThere) {
    for (const bool tiled : {false, true}) {
        const uint32_t offsets = tiled ? tags::kTileOffsets : tags::kStripOffsets;
        const uint32_t lengths = tiled ? tags::kTileLengths : tags::kStripLengths;
        ForEachKind({false, tiled, false, false}, [&](const Bytes& file, auto&&, auto&&, auto&& read) {
            const auto directory = reader::TiffFrame(file, 0);
            const uint32_t length = directory->Number(*directory->Find(lengths), 2);
            EXPECT_NE(read(Changed(file, lengths, 2, length / 2)), kWrong);
            const auto size = static_cast<uint32_t>(file.size());
            for (const auto& [tag, index, value] :
                 std::initializer_list<std::tuple<uint32_t, size_t, uint32_t>>{{offsets, 2, size},
                                                                               {offsets, 2, 0},
                                                                               {offsets, kCount, 3},
                                                                               {lengths, kCount, 3},
                                                                               {lengths, 2, 0}}) {
                EXPECT_EQ(read(Changed(file, tag, index, value)), kRefused) << tag << ", " << index << ": " << value;
            }
        });
    }
}

TEST(TiffPage, TagsThatAreLeftOut) {
    const auto check = [](const Bytes& file, const PageKind& kind, const PageCoding& coding, auto&& read) {
        EXPECT_EQ(read(Changed(file, tags::kStripLengths, 0, 0)), kRight);
        const Bytes oneNumber = Changed(file, tags::kBitsPerSample, kCount, 1);
        EXPECT_EQ(read(Changed(oneNumber, tags::kBitsPerSample, 0, kind.bits)), kRight);
        const auto usual = kind.samples >= 3                 ? tags::kRgb
                           : tags::IsFax(coding.compression) ? tags::kWhiteIsZero
                                                             : tags::kBlackIsZero;
        for (const uint32_t tag : {tags::kRowsPerStrip, tags::kStripLengths, tags::kPlanarConfiguration,
                                   tags::kSamplesPerPixel, tags::kFillOrder, tags::kPhotometric}) {
            if (tag == tags::kPhotometric && kind.photometric != usual) continue;
            EXPECT_EQ(read(Changed(file, tag, kTag, 60000)), kRight) << tag;
        }
    };
    ForEachKind({false, false, false, false, kPageHeight}, check);
}

}  // namespace
