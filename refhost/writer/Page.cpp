#include "refhost/writer/Page.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "refhost/writer/Group4.h"

namespace writer {

namespace {

constexpr uint32_t kBlack = 0x000000;
constexpr uint32_t kWhite = 0xFFFFFF;
// Readers take a strip at a time: about a megabyte, which a bilevel page of A4 at 300 dpi is as a whole.
constexpr size_t kStripBytes = size_t{1} << 20;

// A bilevel page's white is the bit of this palette's entry; false for other colours.
bool IsBilevel(const PageView& page, bool& whiteIsOne) {
    if (page.bits != 1 || page.palette.size() != 2) return false;
    whiteIsOne = page.palette[1] == kWhite;
    return page.palette[whiteIsOne ? 0 : 1] == kBlack && page.palette[whiteIsOne ? 1 : 0] == kWhite;
}

bool IsGrey(const PageView& page) {
    if (page.bits != 8 || page.palette.size() != 256) return false;
    for (uint32_t i = 0; i < 256; ++i) {
        if (page.palette[i] != i * 0x010101) return false;
    }
    return true;
}

// A row as files have it, packed without a gap.
class RowSource {
public:
    RowSource(const PageView& page, const EncodedPage& out, bool invert)
        : m_page(page), m_differences(out.differences), m_samples(out.Samples()), m_invert(invert) {
        m_bytes = page.bits == 1 ? (size_t{page.width} + 7) / 8 : size_t{page.width} * m_samples;
    }
    size_t Bytes() const { return m_bytes; }
    void Take(uint32_t y, uint8_t* row) const {
        const uint8_t* from = m_page.top + static_cast<ptrdiff_t>(y) * m_page.stride;
        if (m_page.bits <= 8) {
            std::memcpy(row, from, m_bytes);
            if (m_page.bits == 1) FinishBits(row);
        } else {
            const size_t step = m_page.bits / 8;
            for (size_t x = 0; x < m_page.width; ++x, from += step, row += 3) {
                row[0] = from[2];
                row[1] = from[1];
                row[2] = from[0];
            }
            row -= m_bytes;
        }
        if (!m_differences) return;
        for (size_t at = m_bytes - 1; at >= m_samples; --at) {
            row[at] = static_cast<uint8_t>(row[at] - row[at - m_samples]);
        }
    }

private:
    // Nothing of the memory behind the last pixel goes into a file.
    void FinishBits(uint8_t* row) const {
        if (m_invert) std::transform(row, row + m_bytes, row, [](uint8_t byte) { return static_cast<uint8_t>(~byte); });
        if (m_page.width % 8 != 0) row[m_bytes - 1] &= static_cast<uint8_t>(0xFF << (8 - m_page.width % 8));
    }

    const PageView& m_page;
    const bool m_differences;
    const uint32_t m_samples;
    const bool m_invert;
    size_t m_bytes;
};

// Strips that are deflated, each by itself.
class Deflater {
public:
    Deflater() {
        if (deflateInit(&m_stream, Z_DEFAULT_COMPRESSION) != Z_OK) throw std::bad_alloc();
    }
    ~Deflater() { deflateEnd(&m_stream); }
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;

    void Append(std::span<const uint8_t> bytes, bool end, std::vector<uint8_t>& out) {
        m_stream.next_in = const_cast<uint8_t*>(bytes.data());
        m_stream.avail_in = static_cast<uInt>(bytes.size());
        int result = Z_OK;
        do {
            const size_t at = out.size();
            out.resize(at + bytes.size() / 2 + 4096);
            m_stream.next_out = out.data() + at;
            m_stream.avail_out = static_cast<uInt>(out.size() - at);
            result = deflate(&m_stream, end ? Z_FINISH : Z_NO_FLUSH);
            out.resize(out.size() - m_stream.avail_out);
        } while (end ? result != Z_STREAM_END : m_stream.avail_in > 0);
        if (end) deflateReset(&m_stream);
    }

private:
    z_stream m_stream = {};
};

void EncodeStrips(const RowSource& rows, EncodedPage& out) {
    constexpr size_t kBlock = size_t{1} << 18;
    Deflater deflater;
    const auto blockRows = static_cast<uint32_t>(std::clamp<size_t>(kBlock / rows.Bytes(), 1, out.rowsPerStrip));
    std::vector<uint8_t> block(blockRows * rows.Bytes());
    for (uint32_t top = 0; top < out.height; top += out.rowsPerStrip) {
        const size_t before = out.bytes.size();
        const uint32_t end = std::min(out.height, top + out.rowsPerStrip);
        for (uint32_t y = top; y < end;) {
            const uint32_t count = std::min(blockRows, end - y);
            for (uint32_t i = 0; i < count; ++i) rows.Take(y + i, block.data() + i * rows.Bytes());
            y += count;
            const std::span<const uint8_t> bytes(block.data(), count * rows.Bytes());
            if (out.coding == Coding::kDeflate) {
                deflater.Append(bytes, y == end, out.bytes);
            } else {
                out.bytes.insert(out.bytes.end(), bytes.begin(), bytes.end());
            }
        }
        out.strips.push_back(out.bytes.size() - before);
    }
}

void EncodeBilevel(const PageView& page, bool whiteIsOne, EncodedPage& out) {
    for (uint32_t top = 0; top < out.height; top += out.rowsPerStrip) {
        const size_t before = out.bytes.size();
        EncodeGroup4({page.top + static_cast<ptrdiff_t>(top) * page.stride, page.stride, page.width,
                      std::min(out.rowsPerStrip, out.height - top), static_cast<uint8_t>(whiteIsOne ? 0xFF : 0)},
                     out.bytes);
        out.strips.push_back(out.bytes.size() - before);
    }
}

}  // namespace

EncodedPage EncodePage(const PageView& page, Packing packing, bool wholePage) {
    EncodedPage out = {};
    out.width = page.width;
    out.height = page.height;
    out.bits = page.bits == 1 ? 1 : 8;
    bool whiteIsOne = true;
    out.kind = IsBilevel(page, whiteIsOne) ? Kind::kBilevel
               : IsGrey(page)              ? Kind::kGrey
               : page.bits <= 8            ? Kind::kPalette
                                           : Kind::kRgb;
    if (out.kind == Kind::kPalette) out.palette.assign(page.palette.begin(), page.palette.end());
    if (packing == Packing::kAuto) out.coding = out.kind == Kind::kBilevel ? Coding::kGroup4 : Coding::kDeflate;
    out.differences = out.coding == Coding::kDeflate && out.kind != Kind::kPalette;
    const RowSource rows(page, out, out.kind == Kind::kBilevel && !whiteIsOne);
    out.rowsPerStrip =
        wholePage ? page.height : static_cast<uint32_t>(std::clamp<size_t>(kStripBytes / rows.Bytes(), 1, page.height));
    if (out.coding == Coding::kGroup4) {
        EncodeBilevel(page, whiteIsOne, out);
    } else {
        EncodeStrips(rows, out);
    }
    return out;
}

uint64_t EncodingBytes(uint32_t width, uint32_t height, uint32_t bits) {
    // Group 4 takes six bits for a pixel at its worst; results grow by halves.
    const uint64_t row = bits == 1 ? uint64_t{width} * 6 / 8 + 16 : uint64_t{width} * (bits == 8 ? 1 : 3);
    return row * height * 3 / 2 + (uint64_t{2} << 20);
}

}  // namespace writer
