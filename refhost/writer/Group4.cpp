// A row is held as its changes of colour: the pixels from which on it is black, white, black and so on. They ascend,
// and the row's width stands four times behind the last one, so that looking for a change needs no bounds.
#include "refhost/writer/Group4.h"

#include <array>
#include <bit>
#include <cstring>

#include "refhost/reader/CcittCodes.h"

namespace writer {

namespace {

namespace ccitt = reader::ccitt;

struct Code {
    uint32_t code = 0;
    uint32_t bits = 0;
};

constexpr uint32_t kLongestRun = 2560;

// Room behind the changes of a row: its end, and what the bits behind its last pixel look like.
constexpr size_t kBehind = 16;

// Of runs up to 63 pixels, and of 64, 128, ... 2560 behind them.
using RunCodes = std::array<Code, 64 + kLongestRun / 64>;

template <size_t Size>
RunCodes CodesOf(const std::array<ccitt::Run, Size>& runs) {
    constexpr uint32_t kBits = std::countr_zero(Size);
    RunCodes codes;
    for (uint32_t i = 0; i < Size; ++i) {
        const ccitt::Run run = runs[i];
        if (run.bits == 0) continue;
        const uint32_t place = run.length < 64 ? run.length : 63 + run.length / 64;
        codes[place] = {i >> (kBits - run.bits), run.bits};
    }
    return codes;
}

std::array<Code, 7> VerticalCodes() {
    std::array<Code, 7> codes;
    for (uint32_t i = 0; i < ccitt::kModes.size(); ++i) {
        const ccitt::ModeCode& mode = ccitt::kModes[i];
        if (mode.mode == ccitt::Mode::kVertical) {
            codes[static_cast<size_t>(mode.offset + 3)] = {i >> (ccitt::kModeBits - mode.bits), mode.bits};
        }
    }
    return codes;
}

constexpr Code kPass = {0b0001, 4};
constexpr Code kHorizontal = {0b001, 3};
constexpr Code kEndOfLine = {1, 12};

// Bits, the first in the highest place. The caller sees to the room.
class BitWriter {
public:
    explicit BitWriter(std::vector<uint8_t>& out) : m_out(out), m_at(out.size()) {}

    // So many bytes may be written before the next call.
    void Reserve(size_t bytes) {
        if (m_out.size() - m_at < bytes + 8) m_out.resize(m_at + bytes + 8 + m_out.size() / 2);
    }
    void Put(Code code) {
        m_bits |= uint64_t{code.code} << (64 - m_count - code.bits);
        m_count += code.bits;
        if (m_count >= 32) Flush();
    }
    // So many ones.
    void PutOnes(uint32_t count) {
        for (; count >= 16; count -= 16) Put({0xFFFF, 16});
        if (count > 0) Put({(1U << count) - 1, count});
    }
    void End() {
        Flush();
        m_at += m_count > 0 ? 1 : 0;
        m_out.resize(m_at);
    }

private:
    void Flush() {
        const uint64_t big = __builtin_bswap64(m_bits);
        std::memcpy(m_out.data() + m_at, &big, sizeof big);
        m_at += m_count / 8;
        m_bits = m_count >= 64 ? 0 : m_bits << (m_count / 8 * 8);
        m_count %= 8;
    }

    std::vector<uint8_t>& m_out;
    size_t m_at;
    uint64_t m_bits = 0;
    uint32_t m_count = 0;
};

class Encoder {
public:
    Encoder(const BilevelRows& rows, std::vector<uint8_t>& out)
        : m_rows(rows), m_bits(out), m_above(rows.width + kBehind), m_row(rows.width + kBehind) {
        EndRow(m_row.data());
    }

    void Encode() {
        const size_t rowBytes = (size_t{m_rows.width} + 7) / 8;
        // Single pixels, the worst row that there is, take six bits each.
        const size_t most = size_t{m_rows.width} * 6 / 8 + 16;
        const uint8_t* above = nullptr;
        for (uint32_t y = 0; y < m_rows.count; ++y) {
            const uint8_t* row = m_rows.first + static_cast<ptrdiff_t>(y) * m_rows.stride;
            m_bits.Reserve(most);
            if (above != nullptr && std::memcmp(row, above, rowBytes) == 0) {
                m_bits.PutOnes(m_count + 1);
            } else {
                m_above.swap(m_row);
                FindChanges(row, rowBytes);
                EncodeRow();
            }
            above = row;
        }
        m_bits.Reserve(16);
        m_bits.Put(kEndOfLine);
        m_bits.Put(kEndOfLine);
        m_bits.End();
    }

private:
    void EndRow(uint32_t* behind) {
        for (int i = 0; i < 4; ++i) behind[i] = m_rows.width;
    }

    void FindChanges(const uint8_t* row, size_t rowBytes) {
        uint32_t* next = m_row.data();
        const uint64_t white = m_rows.white != 0 ? ~uint64_t{0} : 0;
        uint64_t before = 0;  // the pixel to the left, in the highest place
        for (size_t at = 0; at < rowBytes; at += 8) {
            uint64_t pixels = white;
            std::memcpy(&pixels, row + at, rowBytes - at < 8 ? rowBytes - at : 8);
            pixels = __builtin_bswap64(pixels ^ white);
            uint64_t changes = pixels ^ (pixels >> 1 | before);
            before = pixels << 63;
            while (changes != 0) {
                const auto place = static_cast<uint32_t>(std::countl_zero(changes));
                *next++ = static_cast<uint32_t>(at * 8) + place;
                changes &= ~(uint64_t{1} << (63 - place));
            }
        }
        while (next != m_row.data() && next[-1] >= m_rows.width) --next;
        m_count = static_cast<uint32_t>(next - m_row.data());
        EndRow(next);
    }

    // a0 is where coding has come to, a1 the next change of the row, b1 the next one above to the other colour.
    void EncodeRow() {
        const uint32_t width = m_rows.width;
        const uint32_t* const first = m_above.data();
        const uint32_t* b = first;
        const uint32_t* a = m_row.data();
        uint32_t a0 = 0;
        bool black = false;
        while (a0 < width) {
            const int64_t apart = int64_t{*a} - *b;
            if (b[1] < *a) {
                m_bits.Put(kPass);
                a0 = b[1];
                b += 2;
            } else if (apart >= -3 && apart <= 3) {
                m_bits.Put(kVertical[static_cast<size_t>(apart + 3)]);
                a0 = *a++;
                black = !black;
                // To the left, the change before may be to the right of a0 already.
                b += apart < 0 && b != first ? -1 : 1;
            } else {
                m_bits.Put(kHorizontal);
                PutRun(black, a[0] - a0);
                PutRun(!black, a[1] - a[0]);
                a0 = a[1];
                a += 2;
            }
            if (a0 < width) {
                while (*b <= a0) b += 2;
            }
        }
    }

    void PutRun(bool black, uint32_t length) {
        const RunCodes& codes = black ? kBlack : kWhite;
        for (; length >= kLongestRun + 64; length -= kLongestRun) m_bits.Put(codes.back());
        if (length >= 64) m_bits.Put(codes[63 + length / 64]);
        m_bits.Put(codes[length % 64]);
    }

    inline static const RunCodes kWhite = CodesOf(ccitt::kWhiteRuns);
    inline static const RunCodes kBlack = CodesOf(ccitt::kBlackRuns);
    inline static const std::array<Code, 7> kVertical = VerticalCodes();

    const BilevelRows m_rows;
    BitWriter m_bits;
    std::vector<uint32_t> m_above;
    std::vector<uint32_t> m_row;
    uint32_t m_count = 0;  // changes of m_row
};

}  // namespace

void EncodeGroup4(const BilevelRows& rows, std::vector<uint8_t>& out) {
    Encoder(rows, out).Encode();
}

}  // namespace writer
