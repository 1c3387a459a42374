#include "refhost/reader/BmpPage.h"

#include <bit>
#include <cstring>

#include "refhost/reader/BmpRle.h"
#include "refhost/reader/Bytes.h"

namespace reader {

namespace {

// A channel of a pixel of 16 or 32 bits, as a byte.
class ColourMask {
public:
    explicit ColourMask(uint32_t mask)
        : m_mask(mask), m_shift(mask == 0 ? 0 : std::countr_zero(mask)), m_most(mask >> m_shift) {
        if (m_most == 0 || m_most > 0xFF) return;
        for (uint32_t value = 0; value <= m_most; ++value) m_scaled[value] = Scaled(value);
    }
    uint8_t Of(uint32_t pixel) const {
        const uint32_t value = (pixel & m_mask) >> m_shift;
        return m_most <= 0xFF ? m_scaled[value] : Scaled(value);
    }

private:
    uint8_t Scaled(uint64_t value) const { return static_cast<uint8_t>((value * 255 + m_most / 2) / m_most); }

    uint32_t m_mask;
    int m_shift;
    uint32_t m_most;
    uint8_t m_scaled[256] = {};
};

class MaskedRows {
public:
    explicit MaskedRows(const BmpLayout& layout)
        : m_layout(layout),
          m_blue(layout.masks[0]),
          m_green(layout.masks[1]),
          m_red(layout.masks[2]),
          m_alpha(layout.masks[3]) {}

    bool IsTransparent(const uint8_t* row) const {
        for (uint32_t x = 0; x < m_layout.width; ++x) {
            if ((Pixel(row, x) & m_layout.masks[3]) != 0) return true;
        }
        return false;
    }

    void Convert(const uint8_t* row, bool alpha, uint8_t* to) const {
        for (uint32_t x = 0; x < m_layout.width; ++x, to += 3) {
            const uint32_t pixel = Pixel(row, x);
            uint32_t colour = uint32_t{m_red.Of(pixel)} << 16 | uint32_t{m_green.Of(pixel)} << 8 | m_blue.Of(pixel);
            if (alpha) colour = OnPaper(uint32_t{m_alpha.Of(pixel)} << 24 | colour);
            for (int i = 0; i < 3; ++i) to[i] = static_cast<uint8_t>(colour >> (8 * i));
        }
    }

private:
    uint32_t Pixel(const uint8_t* row, uint32_t x) const {
        if (m_layout.bits == 16) return row[size_t{x} * 2] | uint32_t{row[size_t{x} * 2 + 1]} << 8;
        uint32_t pixel = 0;
        for (uint32_t i = 0; i < 4; ++i) pixel |= uint32_t{row[size_t{x} * 4 + i]} << (8 * i);
        return pixel;
    }

    const BmpLayout& m_layout;
    const ColourMask m_blue;
    const ColourMask m_green;
    const ColourMask m_red;
    const ColourMask m_alpha;
};

// Indices of 2 or 4 bits to bytes.
void UnpackIndices(const uint8_t* row, uint32_t bits, uint32_t count, uint8_t* to) {
    const uint32_t perByte = 8 / bits;
    const uint32_t mask = (1U << bits) - 1;
    for (uint32_t x = 0; x < count; ++x) {
        to[x] = static_cast<uint8_t>(row[x / perByte] >> (8 - bits * (x % perByte + 1)) & mask);
    }
}

}  // namespace

BmpPage::BmpPage(std::span<const uint8_t> file) : m_file(file), m_layout(ReadBmpLayout(file)) {}

uint64_t BmpPage::WorkingBytes(const JpegDecoder&) const {
    return sizeof(MaskedRows) + m_layout.palette.size() * sizeof(uint32_t);
}

std::span<const uint8_t> BmpPage::StoredRow(uint32_t y) const {
    const auto size = static_cast<size_t>(m_layout.RowBytes());
    return m_file.subspan(m_layout.pixels + size * (m_layout.topDown ? y : m_layout.height - 1 - y), size);
}

std::shared_ptr<Bitmap> BmpPage::Decode(JpegDecoder&) const {
    auto bitmap = std::make_shared<Bitmap>(m_layout.width, m_layout.height, m_layout.ResultBits());
    bitmap->palette = m_layout.palette;
    if (m_layout.runLengths) {
        DecodeBmpRuns(m_file.subspan(m_layout.pixels), m_layout.bits, *bitmap);
        return bitmap;
    }
    const bool masked = m_layout.bits == 16 || m_layout.bits == 32;
    const MaskedRows rows(m_layout);
    // Many writers leave the alpha of opaque pictures 0 all over.
    bool alpha = false;
    for (uint32_t y = 0; m_layout.masks[3] != 0 && !alpha && y < m_layout.height; ++y) {
        alpha = rows.IsTransparent(StoredRow(y).data());
    }
    for (uint32_t y = 0; y < m_layout.height; ++y) {
        const uint8_t* from = StoredRow(y).data();
        uint8_t* to = bitmap->Row(y);
        if (masked) {
            rows.Convert(from, alpha, to);
        } else if (m_layout.bits == m_layout.ResultBits()) {
            std::memcpy(to, from, bitmap->Stride());
        } else {
            UnpackIndices(from, m_layout.bits, m_layout.width, to);
        }
        bitmap->ClearPadding(y);
    }
    return bitmap;
}

}  // namespace reader
