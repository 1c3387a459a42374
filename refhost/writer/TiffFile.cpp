#include "refhost/writer/TiffFile.h"

#include <cmath>
#include <numeric>

#include "refhost/reader/TiffTags.h"

namespace writer {

namespace {

namespace tiff = reader::tiff;

constexpr uint16_t kResolutionX = 282;
constexpr uint16_t kResolutionY = 283;
constexpr uint16_t kResolutionUnit = 296;

constexpr uint16_t kShort = 3;
constexpr uint16_t kLong = 4;
constexpr uint16_t kRational = 5;
constexpr uint16_t kLong8 = 16;

void PutNumber(std::vector<uint8_t>& bytes, uint64_t number, size_t length) {
    for (size_t i = 0; i < length; ++i) bytes.push_back(static_cast<uint8_t>(number >> (8 * i)));
}

std::vector<uint8_t> Numbers(const std::vector<uint64_t>& numbers, size_t length) {
    std::vector<uint8_t> bytes;
    for (const uint64_t number : numbers) PutNumber(bytes, number, length);
    return bytes;
}

std::vector<uint8_t> Rational(double value) {
    constexpr uint64_t kParts = 100000;
    uint64_t numerator = static_cast<uint64_t>(std::llround(value * static_cast<double>(kParts)));
    const uint64_t common = std::gcd(numerator, kParts);
    return Numbers({numerator / common, kParts / common}, 4);
}

uint16_t PhotometricOf(const EncodedPage& page) {
    switch (page.kind) {
        case Kind::kPalette:
            return tiff::kPalette;
        case Kind::kRgb:
            return tiff::kRgb;
        default:
            return page.coding == Coding::kGroup4 ? tiff::kWhiteIsZero : tiff::kBlackIsZero;
    }
}

uint16_t CompressionOf(Coding coding) {
    switch (coding) {
        case Coding::kGroup4:
            return tiff::kFaxGroup4;
        case Coding::kDeflate:
            return tiff::kDeflate;
        default:
            return tiff::kUncompressed;
    }
}

// All reds, then all greens, then all blues, in 16 bits.
std::vector<uint64_t> ColorMap(const std::vector<uint32_t>& palette) {
    std::vector<uint64_t> map;
    for (const int shift : {16, 8, 0}) {
        for (const uint32_t colour : palette) map.push_back((colour >> shift & 0xFF) * 0x101);
    }
    return map;
}

}  // namespace

struct TiffFile::Field {
    Field(uint32_t fieldTag, uint16_t fieldType, const std::vector<uint64_t>& numbers)
        : tag(static_cast<uint16_t>(fieldTag)),
          type(fieldType),
          count(numbers.size()),
          bytes(Numbers(numbers, fieldType == kShort  ? 2
                                 : fieldType == kLong ? 4
                                                      : 8)) {}
    Field(uint16_t fieldTag, double rational) : tag(fieldTag), type(kRational), count(1), bytes(Rational(rational)) {}

    uint16_t tag;
    uint16_t type;
    uint64_t count;
    std::vector<uint8_t> bytes;
};

TiffFile::TiffFile(Sink& sink, bool big, uint64_t limit) : m_sink(sink), m_big(big), m_limit(limit) {
    std::vector<uint8_t> header = {'I', 'I'};
    if (big) {
        PutNumber(header, 43, 2);
        PutNumber(header, 8, 2);
        PutNumber(header, 0, 2);
    } else {
        PutNumber(header, 42, 2);
    }
    m_link = header.size();
    PutNumber(header, 0, big ? 8 : 4);
    Put(header);
}

void TiffFile::Put(std::span<const uint8_t> bytes) {
    m_sink.Append(bytes);
    m_position += bytes.size();
}

void TiffFile::Append(const EncodedPage& page, const PrintedSize& size) {
    // Beside the strips and their places there are at most a palette and some twenty fields.
    constexpr uint64_t kRest = 4096;
    if (!m_big && m_position + page.bytes.size() + page.strips.size() * 8 + kRest > m_limit) throw TooLargeForTiff();

    std::vector<uint64_t> offsets;
    uint64_t at = m_position;
    for (const size_t strip : page.strips) {
        offsets.push_back(at);
        at += strip;
    }
    Put(page.bytes);
    constexpr uint8_t kFill[8] = {};
    Put(std::span(kFill).first((8 - m_position % 8) % 8));

    const uint16_t place = m_big ? kLong8 : kLong;
    std::vector<Field> fields = {
        {tiff::kWidth, kLong, {page.width}},
        {tiff::kHeight, kLong, {page.height}},
        {tiff::kBitsPerSample, kShort, std::vector<uint64_t>(page.Samples(), page.bits)},
        {tiff::kCompression, kShort, {CompressionOf(page.coding)}},
        {tiff::kPhotometric, kShort, {PhotometricOf(page)}},
        {tiff::kStripOffsets, place, offsets},
        {tiff::kSamplesPerPixel, kShort, {page.Samples()}},
        {tiff::kRowsPerStrip, kLong, {page.rowsPerStrip}},
        {tiff::kStripLengths, place, {page.strips.begin(), page.strips.end()}},
        {kResolutionX, size.x},
        {kResolutionY, size.y},
        {kResolutionUnit, kShort, {size.centimetres ? 3U : 2U}},
    };
    if (page.differences) fields.push_back({tiff::kPredictor, kShort, {2}});
    if (page.kind == Kind::kPalette) fields.push_back({tiff::kColorMap, kShort, ColorMap(page.palette)});
    WriteDirectory(std::move(fields));
}

// Values that do not fit into the directory stand in front of it. The link to it is written when it is there.
void TiffFile::WriteDirectory(std::vector<Field> fields) {
    const size_t room = m_big ? 8 : 4;
    for (Field& field : fields) {
        if (field.bytes.size() > room) {
            const uint64_t place = m_position;
            field.bytes.resize((field.bytes.size() + 7) / 8 * 8);
            Put(field.bytes);
            field.bytes.clear();
            PutNumber(field.bytes, place, room);
        }
        field.bytes.resize(room);
    }
    const uint64_t start = m_position;
    std::vector<uint8_t> directory;
    PutNumber(directory, fields.size(), m_big ? 8 : 2);
    for (const Field& field : fields) {
        PutNumber(directory, field.tag, 2);
        PutNumber(directory, field.type, 2);
        PutNumber(directory, field.count, room);
        directory.insert(directory.end(), field.bytes.begin(), field.bytes.end());
    }
    const uint64_t link = start + directory.size();
    PutNumber(directory, 0, room);
    directory.resize((directory.size() + 7) / 8 * 8);
    Put(directory);
    PointTo(start);
    m_link = link;
}

void TiffFile::PointTo(uint64_t directory) {
    std::vector<uint8_t> link;
    PutNumber(link, directory, m_big ? 8 : 4);
    m_sink.Replace(m_link, link);
}

}  // namespace writer
