// Scaling by areas. Rows are added up first, over all columns at once, which the compiler turns into vector code; only
// the sums are then gone through column by column, once for each row of the result.
#include <algorithm>
#include <array>
#include <cstring>

#include "refhost/folium/PageSource.h"

namespace folium {

namespace {

constexpr uint32_t kOne = 256;  // the weight of a pixel that lies wholly under one of the result

// The pixels of one axis under a pixel of the result.
struct Span {
    uint32_t first, count;
    uint32_t firstWeight, lastWeight;
    uint64_t Weight() const { return count == 1 ? firstWeight : firstWeight + lastWeight + uint64_t{count - 2} * kOne; }
};

uint64_t Boundary(uint32_t position, uint32_t source, uint32_t target) {
    return uint64_t{position} * source * kOne / target;
}

Span SpanOf(uint32_t position, uint32_t source, uint32_t target) {
    const uint64_t from = Boundary(position, source, target);
    const uint64_t to = std::max(Boundary(position + 1, source, target), from + 1);
    const auto first = static_cast<uint32_t>(from / kOne);
    const auto last = static_cast<uint32_t>((to - 1) / kOne);
    if (first == last) return {first, 1, static_cast<uint32_t>(to - from), 0};
    return {first, last - first + 1, kOne - static_cast<uint32_t>(from % kOne),
            static_cast<uint32_t>((to - 1) % kOne) + 1};
}

// One bit of a byte in each byte of the result.
const std::array<uint64_t, 256>& SpreadBits() {
    static const std::array<uint64_t, 256> table = [] {
        std::array<uint64_t, 256> spread{};
        for (size_t value = 0; value < spread.size(); ++value) {
            std::array<uint8_t, 8> bits{};
            for (size_t bit = 0; bit < bits.size(); ++bit) bits[bit] = value >> (7 - bit) & 1;
            std::memcpy(&spread[value], bits.data(), bits.size());
        }
        return spread;
    }();
    return table;
}

bool IsGrey(uint32_t color) {
    return (color & 0xff) == (color >> 8 & 0xff) && (color & 0xff) == (color >> 16 & 0xff);
}

class SmoothScaler {
public:
    SmoothScaler(const PageSource& page, const ScaledPart& part);
    void Run(uint32_t* out);

private:
    void PrepareColors();
    void AddRows(const Span& rows);
    void AddWholeRow(uint32_t y);
    void AddWeightedRow(uint32_t y, uint32_t weight);
    void Flush();
    const uint8_t* Bytes(uint32_t y);
    void ReduceRow(double rowWeight, uint32_t* out) const;
    template <size_t kChannels>
    uint32_t Reduce(const Span& span, double rowWeight) const;

    const PageSource& m_page;
    const ScaledPart m_part;
    std::vector<Span> m_columns;
    uint32_t m_first = 0;  // the first column that counts
    size_t m_bytes = 0;    // of a row from there on, as it is added up
    size_t m_channels = 1;
    bool m_translate = false;  // by the palette
    std::array<uint8_t, 256> m_grey{};
    std::array<uint32_t, 256> m_ramp{};  // the colours of one channel's levels
    std::vector<uint8_t> m_row;
    std::vector<uint64_t> m_bits;   // 1-bit rows added up, a byte for each column
    std::vector<uint16_t> m_whole;  // other rows added up
    uint32_t m_waiting = 0;         // rows in one of the two
    std::vector<uint32_t> m_sums;   // weighted
};

SmoothScaler::SmoothScaler(const PageSource& page, const ScaledPart& part) : m_page(page), m_part(part) {
    for (uint32_t x = 0; x < part.partWidth; ++x) m_columns.push_back(SpanOf(part.left + x, page.width, part.width));
    m_first = m_columns.front().first;
    if (page.bitsPerPixel == 1) m_first &= ~7u;
    const Span& last = m_columns.back();
    const size_t columns = last.first + last.count - m_first;
    PrepareColors();
    m_bytes = columns * m_channels;
    if (page.bitsPerPixel == 1) {
        m_bits.resize((columns + 7) / 8);
        m_bytes = m_bits.size() * 8;
    } else {
        m_whole.resize(m_bytes);
    }
    m_row.resize(m_bytes);
    m_sums.resize(m_bytes);
}

void SmoothScaler::PrepareColors() {
    for (uint32_t level = 0; level < 256; ++level) m_ramp[level] = level * 0x010101;
    if (m_page.bitsPerPixel == 1) {
        const auto mix = [this](uint32_t level, int shift) {
            const uint32_t from = m_page.palette[0] >> shift & 0xff;
            const uint32_t to = m_page.palette[1] >> shift & 0xff;
            return (from * (255 - level) + to * level + 127) / 255 << shift;
        };
        for (uint32_t level = 0; level < 256; ++level) m_ramp[level] = mix(level, 0) | mix(level, 8) | mix(level, 16);
    } else if (m_page.bitsPerPixel == 8) {
        const uint32_t* palette = m_page.palette;
        if (std::all_of(palette, palette + 256, IsGrey)) {
            for (uint32_t i = 0; i < 256; ++i) {
                m_grey[i] = static_cast<uint8_t>(palette[i]);
                m_translate = m_translate || m_grey[i] != i;
            }
        } else {
            m_channels = 3;
        }
    } else {
        m_channels = m_page.bitsPerPixel / 8;
    }
}

// The row from the first column on, a byte for each channel of each column.
const uint8_t* SmoothScaler::Bytes(uint32_t y) {
    const uint8_t* row = m_page.Row(y);
    if (m_page.bitsPerPixel == 1) {
        for (size_t i = 0; i < m_bits.size(); ++i) {
            std::memcpy(&m_row[i * 8], &SpreadBits()[row[m_first / 8 + i]], 8);
        }
        return m_row.data();
    }
    row += size_t{m_first} * (m_page.bitsPerPixel / 8);
    if (m_page.bitsPerPixel > 8) return row;
    if (m_channels == 3) {
        for (size_t i = 0; i < m_bytes; i += 3) {
            const uint32_t color = m_page.palette[*row++];
            m_row[i] = static_cast<uint8_t>(color);
            m_row[i + 1] = static_cast<uint8_t>(color >> 8);
            m_row[i + 2] = static_cast<uint8_t>(color >> 16);
        }
        return m_row.data();
    }
    if (!m_translate) return row;
    for (size_t i = 0; i < m_bytes; ++i) m_row[i] = m_grey[row[i]];
    return m_row.data();
}

void SmoothScaler::AddWholeRow(uint32_t y) {
    if (m_page.bitsPerPixel == 1) {
        const uint8_t* row = m_page.Row(y) + m_first / 8;
        const auto& spread = SpreadBits();
        for (size_t i = 0; i < m_bits.size(); ++i) m_bits[i] += spread[row[i]];
    } else {
        const uint8_t* row = Bytes(y);
        for (size_t i = 0; i < m_bytes; ++i) m_whole[i] = static_cast<uint16_t>(m_whole[i] + row[i]);
    }
    // Neither a byte of ones nor 16 bits of 255s hold more.
    if (++m_waiting == 255) Flush();
}

void SmoothScaler::Flush() {
    if (m_waiting == 0) return;
    m_waiting = 0;
    if (m_page.bitsPerPixel == 1) {
        std::memcpy(m_row.data(), m_bits.data(), m_bytes);
        for (size_t i = 0; i < m_bytes; ++i) m_sums[i] += uint32_t{m_row[i]} * kOne;
        std::fill(m_bits.begin(), m_bits.end(), 0);
    } else {
        for (size_t i = 0; i < m_bytes; ++i) m_sums[i] += uint32_t{m_whole[i]} * kOne;
        std::fill(m_whole.begin(), m_whole.end(), uint16_t{0});
    }
}

void SmoothScaler::AddWeightedRow(uint32_t y, uint32_t weight) {
    const uint8_t* row = Bytes(y);
    const auto factor = static_cast<uint16_t>(weight);
    for (size_t i = 0; i < m_bytes; ++i) m_sums[i] += static_cast<uint16_t>(row[i] * factor);
}

void SmoothScaler::AddRows(const Span& rows) {
    std::fill(m_sums.begin(), m_sums.end(), 0u);
    AddWeightedRow(rows.first, rows.firstWeight);
    for (uint32_t i = 1; i + 1 < rows.count; ++i) AddWholeRow(rows.first + i);
    if (rows.count > 1) AddWeightedRow(rows.first + rows.count - 1, rows.lastWeight);
    Flush();
}

template <size_t kChannels>
uint32_t SmoothScaler::Reduce(const Span& span, double rowWeight) const {
    const uint32_t* sums = m_sums.data() + size_t{span.first - m_first} * kChannels;
    const double factor = 1 / (rowWeight * static_cast<double>(span.Weight()));
    uint32_t color = 0;
    for (size_t channel = 0; channel < std::min<size_t>(kChannels, 3); ++channel) {
        uint64_t total = uint64_t{sums[channel]} * span.firstWeight;
        uint64_t whole = 0;
        for (size_t i = 1; i + 1 < span.count; ++i) whole += sums[i * kChannels + channel];
        total += whole * kOne;
        if (span.count > 1) total += uint64_t{sums[(span.count - 1) * kChannels + channel]} * span.lastWeight;
        color |= static_cast<uint32_t>(static_cast<double>(total) * factor + 0.5) << channel * 8;
    }
    return color;
}

void SmoothScaler::ReduceRow(double rowWeight, uint32_t* out) const {
    // A bit counts as much as a whole byte.
    if (m_page.bitsPerPixel == 1) rowWeight /= 255;
    for (const Span& span : m_columns) {
        switch (m_channels) {
            case 1:
                *out++ = m_ramp[std::min(Reduce<1>(span, rowWeight), 255u)];
                break;
            case 3:
                *out++ = Reduce<3>(span, rowWeight);
                break;
            default:
                *out++ = Reduce<4>(span, rowWeight);
        }
    }
}

void SmoothScaler::Run(uint32_t* out) {
    // Sums of 32 bits hold so many rows; more are only met where a page becomes a line.
    constexpr uint32_t kMostRows = 65000;
    Span before = {};
    for (uint32_t y = 0; y < m_part.partHeight; ++y, out += m_part.partWidth) {
        Span rows = SpanOf(m_part.top + y, m_page.height, m_part.height);
        rows.count = std::min(rows.count, kMostRows);
        // Enlarged pages repeat rows.
        if (y == 0 || rows.count > 1 || before.count > 1 || rows.first != before.first) {
            AddRows(rows);
            ReduceRow(static_cast<double>(rows.Weight()), out);
        } else {
            std::copy(out - m_part.partWidth, out, out);
        }
        before = rows;
    }
}

}  // namespace

void ScaleSmooth(const PageSource& page, const ScaledPart& part, uint32_t* out) {
    SmoothScaler(page, part).Run(out);
}

}  // namespace folium
