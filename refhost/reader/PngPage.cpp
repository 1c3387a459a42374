#include "refhost/reader/PngPage.h"

#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "refhost/reader/Bytes.h"
#include "refhost/reader/Codecs.h"
#include "refhost/reader/TiffTags.h"

namespace reader {

namespace {

constexpr uint32_t Name(const char (&name)[5]) {
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value = value << 8 | static_cast<uint8_t>(name[i]);
    return value;
}

constexpr uint32_t kHeader = Name("IHDR");
constexpr uint32_t kPalette = Name("PLTE");
constexpr uint32_t kData = Name("IDAT");
constexpr uint32_t kEnd = Name("IEND");
constexpr uint32_t kTransparency = Name("tRNS");
constexpr uint32_t kResolution = Name("pHYs");

constexpr size_t kSignature = 8;
constexpr size_t kChunkFrame = 12;  // length, name and checksum

// A chunk without which a page cannot be shown has a capital letter in front.
bool IsNeeded(uint32_t name) {
    return (name & 0x20000000) == 0;
}

uint32_t ChecksumOf(std::span<const uint8_t> bytes) {
    return static_cast<uint32_t>(crc32(0, bytes.data(), static_cast<uInt>(bytes.size())));
}

uint8_t Paeth(uint8_t left, uint8_t above, uint8_t corner) {
    const int toLeft = std::abs(above - corner);
    const int toAbove = std::abs(left - corner);
    const int toCorner = std::abs(left + above - 2 * corner);
    if (toLeft <= toAbove && toLeft <= toCorner) return left;
    return toAbove <= toCorner ? above : corner;
}

// Turns a row of differences into what they are the differences of. `step`: bytes from a value to its left neighbour.
void Unfilter(uint32_t filter, const uint8_t* from, const uint8_t* above, uint8_t* to, size_t size, size_t step) {
    const size_t first = std::min(step, size);
    const auto sum = [](uint8_t a, uint32_t b) { return static_cast<uint8_t>(a + b); };
    switch (filter) {
        case 0:
            std::memcpy(to, from, size);
            return;
        case 1:
            std::memcpy(to, from, first);
            for (size_t i = step; i < size; ++i) to[i] = sum(from[i], to[i - step]);
            return;
        case 2:
            for (size_t i = 0; i < size; ++i) to[i] = sum(from[i], above[i]);
            return;
        case 3:
            for (size_t i = 0; i < first; ++i) to[i] = sum(from[i], above[i] / 2U);
            for (size_t i = step; i < size; ++i) to[i] = sum(from[i], (to[i - step] + above[i]) / 2U);
            return;
        case 4:
            for (size_t i = 0; i < first; ++i) to[i] = sum(from[i], above[i]);
            for (size_t i = step; i < size; ++i) to[i] = sum(from[i], Paeth(to[i - step], above[i], above[i - step]));
            return;
        default:
            throw BadPiece{L"is damaged"};
    }
}

// Every how many pixels of the page, and from where on, a pass of an interlaced file has one.
struct Pass {
    uint32_t x, y, stepX, stepY;
};
constexpr Pass kWhole[] = {{0, 0, 1, 1}};
constexpr Pass kInterlaced[] = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                                {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};

std::span<const Pass> PassesOf(bool interlaced) {
    return interlaced ? std::span<const Pass>(kInterlaced) : std::span<const Pass>(kWhole);
}

uint32_t CountOf(uint32_t size, uint32_t from, uint32_t step) {
    return size <= from ? 0 : (size - from + step - 1) / step;
}

}  // namespace

class PngPage::Work {
public:
    explicit Work(const PngPage& page)
        : m_page(page),
          m_converter(page.m_layout),
          m_bitmap(std::make_shared<Bitmap>(page.m_width, page.m_height, page.Bits())),
          m_row(Size(page.m_width)),
          m_above(m_row.size()) {
        m_bitmap->palette = page.Palette();
        // A pixel of the one colour that is transparent has the bytes of this one.
        const uint32_t keyed = page.m_layout.photometric != tiff::kPalette && page.m_layout.alpha == 0 ? 1 : 0;
        if (keyed != 0 && page.m_transparency.size() >= size_t{2} * page.m_layout.colors) m_key = page.m_transparency;
    }

    std::shared_ptr<Bitmap> Run() {
        uint64_t total = 0;
        for (const Pass& pass : PassesOf(m_page.m_interlaced)) total += (Size(Width(pass)) + 1) * Rows(pass);
        const auto decoder = MakeInflater();
        decoder->Start(std::span(m_page.m_data), static_cast<size_t>(total));
        for (const Pass& pass : PassesOf(m_page.m_interlaced)) Decode(*decoder, pass);
        decoder->End();
        for (uint32_t y = 0; y < m_page.m_height; ++y) m_bitmap->ClearPadding(y);
        return m_bitmap;
    }

private:
    size_t Size(uint32_t width) const { return static_cast<size_t>(m_page.RowBytes(width)); }
    uint32_t Width(const Pass& pass) const { return CountOf(m_page.m_width, pass.x, pass.stepX); }
    // A pass without columns has no rows either.
    uint32_t Rows(const Pass& pass) const {
        return Width(pass) == 0 ? 0 : CountOf(m_page.m_height, pass.y, pass.stepY);
    }

    void Decode(Decoder& decoder, const Pass& pass) {
        const uint32_t width = Width(pass);
        const size_t size = Size(width);
        const size_t step = std::max<size_t>(1, size_t{m_page.m_layout.samples} * m_page.m_layout.bits / 8);
        std::ranges::fill(m_above, uint8_t{0});
        for (uint32_t row = 0; row < Rows(pass); ++row) {
            const uint8_t* data = decoder.Next(size + 1);
            Unfilter(data[0], data + 1, m_above.data(), m_row.data(), size, step);
            m_row.swap(m_above);
            Put(pass, width, pass.y + row * pass.stepY);
        }
    }

    // The row that was decoded last stands in m_above.
    void Put(const Pass& pass, uint32_t width, uint32_t y) {
        const uint8_t* row = m_above.data();
        if (m_page.m_layout.bits == 16) {
            m_swapped.assign(m_above.begin(), m_above.begin() + static_cast<ptrdiff_t>(Size(width)));
            SwapBytes(m_swapped.data(), 16, m_swapped.size() / 2);
            row = m_swapped.data();
        }
        if (pass.stepX == 1) {
            m_converter.Convert(&row, width, m_bitmap->Row(y));
            if (!m_key.empty()) ClearKeyed(width, m_bitmap->Row(y));
            return;
        }
        m_pixels.resize(size_t{width} * 3 + 8);
        m_converter.Convert(&row, width, m_pixels.data());
        if (!m_key.empty()) ClearKeyed(width, m_pixels.data());
        for (uint32_t x = 0; x < width; ++x) PutPixel(x, pass.x + x * pass.stepX, m_bitmap->Row(y));
    }

    void PutPixel(uint32_t from, uint32_t to, uint8_t* row) const {
        if (m_page.Bits() == 1) {
            const auto bit = static_cast<uint8_t>(0x80 >> to % 8);
            const bool set = (m_pixels[from / 8] >> (7 - from % 8) & 1) != 0;
            row[to / 8] = static_cast<uint8_t>(set ? row[to / 8] | bit : row[to / 8] & ~bit);
            return;
        }
        const size_t size = m_page.Bits() / 8;
        std::memcpy(row + to * size, m_pixels.data() + from * size, size);
    }

    uint32_t SampleAt(uint32_t index) const {
        const uint32_t bits = m_page.m_layout.bits;
        if (bits == 16) return Get16(m_above, size_t{index} * 2, true);
        const size_t bit = size_t{index} * bits;
        return m_above[bit / 8] >> (8 - bits - bit % 8) & ((1U << bits) - 1);
    }

    // Pixels of the transparent colour become the paper's.
    void ClearKeyed(uint32_t width, uint8_t* to) const {
        const uint32_t samples = m_page.m_layout.samples;
        for (uint32_t x = 0; x < width; ++x) {
            bool keyed = true;
            for (uint32_t s = 0; s < samples; ++s)
                keyed = keyed && SampleAt(x * samples + s) == Get16(m_key, size_t{s} * 2, true);
            if (!keyed) continue;
            if (m_page.Bits() == 1) {
                to[x / 8] = static_cast<uint8_t>(to[x / 8] | 0x80 >> x % 8);
            } else {
                std::memset(to + size_t{x} * samples, 0xFF, samples);
            }
        }
    }

    const PngPage& m_page;
    SampleConverter m_converter;
    std::shared_ptr<Bitmap> m_bitmap;
    std::vector<uint8_t> m_row;
    std::vector<uint8_t> m_above;
    std::vector<uint8_t> m_swapped;
    std::vector<uint8_t> m_pixels;
    Bytes m_key;
};

PngPage::PngPage(Bytes file) {
    size_t at = kSignature;
    for (;;) {
        if (file.size() < at + kChunkFrame) ThrowCutOff();
        const size_t length = Get32(file, at, true);
        if (length > file.size() - at - kChunkFrame) ThrowCutOff();
        const uint32_t name = Get32(file, at + 4, true);
        const bool good = ChecksumOf(file.subspan(at + 4, length + 4)) == Get32(file, at + 8 + length, true);
        if (!good && IsNeeded(name)) ThrowDamaged(L"a part of the file is damaged");
        if (at == kSignature && name != kHeader) ThrowDamaged(L"the file has no header");
        if (name == kEnd) break;
        if (good) ReadChunk(name, file.subspan(at + 8, length));
        at += kChunkFrame + length;
    }
    if (m_data.empty()) ThrowDamaged(L"the file has no pixels");
    if (m_layout.photometric == tiff::kPalette && m_palette.empty()) ThrowDamaged(L"the page's colours are missing");
}

void PngPage::ReadChunk(uint32_t name, Bytes data) {
    switch (name) {
        case kHeader:
            return ReadHeader(data);
        case kPalette:
            m_palette = data;
            return;
        case kTransparency:
            m_transparency = data;
            return;
        case kData:
            m_data.push_back(data);
            return;
        case kResolution:
            if (data.size() != 9 || data[8] != 1) return;
            m_dpiX = DpiOfPixelsPerMetre(Get32(data, 0, true));
            m_dpiY = DpiOfPixelsPerMetre(Get32(data, 4, true));
            return;
        default:
            if (IsNeeded(name)) ThrowDamaged(L"the file has a part of an unknown kind that it says is needed");
    }
}

void PngPage::ReadHeader(Bytes data) {
    enum Type { kGrey = 0, kRgb = 2, kIndexed = 3, kGreyAlpha = 4, kRgbAlpha = 6 };
    if (data.size() != 13 || m_width != 0) ThrowDamaged(L"the file's header is damaged");
    m_width = Get32(data, 0, true);
    m_height = Get32(data, 4, true);
    m_interlaced = data[12] == 1;
    const uint32_t bits = data[8];
    const uint32_t type = data[9];
    const bool colours = type == kRgb || type == kRgbAlpha;
    m_layout.bits = bits;
    m_layout.alpha = type == kGreyAlpha || type == kRgbAlpha ? 2 : 0;
    m_layout.colors = colours ? 3 : 1;
    m_layout.samples = m_layout.colors + (m_layout.alpha != 0 ? 1 : 0);
    m_layout.photometric = type == kIndexed ? tiff::kPalette : colours ? tiff::kRgb : tiff::kBlackIsZero;
    const bool small = bits == 1 || bits == 2 || bits == 4;
    const bool good = type == kGrey      ? small || bits == 8 || bits == 16
                      : type == kIndexed ? small || bits == 8
                                         : (colours || type == kGreyAlpha) && (bits == 8 || bits == 16);
    if (!good || data[10] != 0 || data[11] != 0 || data[12] > 1) ThrowDamaged(L"the file's header is damaged");
    Bitmap::Check(m_width, m_height, Bits());
}

uint64_t PngPage::RowBytes(uint32_t width) const {
    return (uint64_t{width} * m_layout.samples * m_layout.bits + 7) / 8;
}

uint64_t PngPage::WorkingBytes(const JpegDecoder&) const {
    const uint64_t row = RowBytes(m_width);
    return DecoderMemory(Coding::kDeflate, (row + 1) * m_height * 2) + 8 * row + 4 * uint64_t{m_width};
}

std::vector<uint32_t> PngPage::Palette() const {
    if (m_layout.photometric != tiff::kPalette) {
        return Bits() == 1 ? BlackWhitePalette() : Bits() == 8 ? GreyPalette() : std::vector<uint32_t>();
    }
    // Entries that the file does not have are paper white.
    std::vector<uint32_t> palette(size_t{1} << Bits(), 0xFFFFFF);
    for (size_t i = 0; i < std::min(palette.size(), m_palette.size() / 3); ++i) {
        const uint32_t alpha = i < m_transparency.size() ? m_transparency[i] : 255U;
        const uint8_t* colour = m_palette.data() + i * 3;
        palette[i] = OnPaper(alpha << 24 | uint32_t{colour[0]} << 16 | uint32_t{colour[1]} << 8 | colour[2]);
    }
    return palette;
}

std::shared_ptr<Bitmap> PngPage::Decode(JpegDecoder&) const {
    try {
        return Work(*this).Run();
    } catch (const BadPiece& bad) {
        ThrowDamaged(std::wstring(L"the page's data ") + bad.what);
    }
}

}  // namespace reader
