// A row is held as its changes of colour: the pixels from which on it is black, white, black and so on. They ascend,
// and four times the row's width stands behind the last one, so that looking for a change needs no bounds.
#include "refhost/reader/Ccitt.h"

#include <cstring>
#include <vector>

#include "refhost/reader/BitReader.h"
#include "refhost/reader/CcittCodes.h"

namespace reader {

namespace {

using ccitt::Mode;

constexpr uint32_t kEndOfLineZeros = 11;
constexpr uint32_t kBad = UINT32_MAX;

class FaxDecoder {
public:
    FaxDecoder(std::span<const uint8_t> bytes, FaxCoding coding, const FaxRows& rows)
        : m_bits(bytes), m_coding(coding), m_rows(rows), m_above(rows.width + 6), m_row(rows.width + 6) {
        m_next = m_row.data();
        EndRow();
    }

    FaxResult Decode() {
        for (uint32_t y = 0; y < m_rows.count; ++y) {
            m_above.swap(m_row);
            m_next = m_row.data();
            if (!DecodeRow() || m_bits.IsBeyond()) return m_bits.IsBeyond() ? FaxResult::kEndsEarly : m_failure;
            EndRow();
            Draw(m_rows.first + static_cast<ptrdiff_t>(y) * m_rows.stride);
        }
        return FaxResult::kWhole;
    }

private:
    bool DecodeRow() {
        switch (m_coding) {
            case FaxCoding::kGroup4:
                return TwoDimensional();
            case FaxCoding::kRowsOfBytes:
                m_bits.Align(1);
                return OneDimensional();
            case FaxCoding::kRowsOfWords:
                m_bits.Align(2);
                return OneDimensional();
            default:
                return Group3Row();
        }
    }

    // Rows begin with an end-of-line code; without its tag a row of two dimensions cannot be told from one of one.
    bool Group3Row() {
        const bool tagged = m_coding == FaxCoding::kGroup3TwoDimensional;
        const bool marked = SkipEndOfLine();
        if (!marked && tagged) return Fail(m_bits.IsAtEnd() ? FaxResult::kEndsEarly : FaxResult::kDamaged);
        const bool oneDimensional = !tagged || TakeBit();
        // Twice the code is the end of the block.
        if (marked && IsAtEndOfLine()) return Fail(FaxResult::kEndsEarly);
        return oneDimensional ? OneDimensional() : TwoDimensional();
    }

    bool TakeBit() {
        m_bits.FillBelow(1);
        const bool bit = m_bits.Peek(1) != 0;
        m_bits.Skip(1);
        return bit;
    }

    bool IsAtEndOfLine() {
        m_bits.FillBelow(kEndOfLineZeros);
        return m_bits.LeadingZeros() >= kEndOfLineZeros;
    }

    // Fill bits are zeros in front of the code, as many as there may be.
    bool SkipEndOfLine() {
        if (!IsAtEndOfLine()) return false;
        while (!m_bits.IsAtEnd()) {
            m_bits.Fill();
            const uint32_t zeros = m_bits.LeadingZeros();
            const bool one = zeros < m_bits.AtHand();
            m_bits.Skip(one ? zeros + 1 : zeros);
            if (one) return true;
        }
        return false;
    }

    bool OneDimensional() {
        uint32_t at = 0;
        for (bool black = false; at < m_rows.width; black = !black) {
            const uint32_t length = TakeRun(black);
            if (length == kBad) return false;
            if (length > m_rows.width - at) return Fail(FaxResult::kDamaged);
            at += length;
            AddChange(at);
        }
        return true;
    }

    // a0 is where the row has come to, b points at the change above it that the next code is about: the first one to
    // the right of a0 from the colour of the row at a0 to the other.
    bool TwoDimensional() {
        const uint32_t width = m_rows.width;
        const uint32_t* const first = m_above.data();
        const uint32_t* b = first;
        uint32_t a0 = 0;
        while (a0 < width) {
            m_bits.FillBelow(32);
            // Changes straight below those above make the most of a page; each is a single one.
            if (const uint32_t ones = m_bits.LeadingOnes(); ones > 0) {
                uint32_t used = 0;
                do {
                    *m_next++ = a0 = *b++;
                } while (++used < ones && a0 < width);
                m_bits.Skip(used);
                continue;
            }
            const ccitt::ModeCode code = ccitt::kModes[m_bits.Peek(ccitt::kModeBits)];
            m_bits.Skip(code.bits);
            if (code.mode == Mode::kVertical) {
                const int64_t a1 = int64_t{*b} + code.offset;
                if (a1 < a0 || a1 > width) return Fail(FaxResult::kDamaged);
                a0 = static_cast<uint32_t>(a1);
                AddChange(a0);
                // To the left, the change before may be to the right of a0 already.
                b += code.offset < 0 && b != first ? -1 : 1;
            } else if (code.mode == Mode::kHorizontal) {
                const bool black = IsBlack();
                for (const bool colour : {black, !black}) {
                    const uint32_t length = TakeRun(colour);
                    if (length == kBad) return false;
                    if (length > width - a0) return Fail(FaxResult::kDamaged);
                    a0 += length;
                    AddChange(a0);
                }
            } else if (code.mode == Mode::kPass) {
                a0 = b[1];
                b += 2;
            } else {
                return NoCode(code.mode == Mode::kExtension);
            }
            if (a0 == width) break;
            while (*b <= a0) b += 2;
        }
        return true;
    }

    uint32_t TakeRun(bool black) {
        uint32_t length = 0;
        for (;;) {
            m_bits.FillBelow(ccitt::kBlackBits);
            const ccitt::Run run = black ? ccitt::kBlackRuns[m_bits.Peek(ccitt::kBlackBits)]
                                         : ccitt::kWhiteRuns[m_bits.Peek(ccitt::kWhiteBits)];
            if (run.bits == 0) {
                constexpr uint32_t kExtension = 1;  // eight zeros and a one
                NoCode(m_bits.Peek(9) == kExtension);
                return kBad;
            }
            m_bits.Skip(run.bits);
            length += run.length;
            if (run.length < 64) return length;
            if (length > m_rows.width) {
                Fail(FaxResult::kDamaged);
                return kBad;
            }
        }
    }

    // The next code is none of a row: its end, or what no encoder writes.
    bool NoCode(bool extension) {
        if (extension) return Fail(FaxResult::kUncompressedMode);
        return Fail(IsAtEndOfLine() ? FaxResult::kEndsEarly : FaxResult::kDamaged);
    }

    bool Fail(FaxResult result) {
        m_failure = result;
        return false;
    }

    bool IsBlack() const { return (m_next - m_row.data()) % 2 != 0; }

    // Two changes at one place are none. The colour is told by their number, which is odd or even either way.
    void AddChange(uint32_t at) {
        if (m_next != m_row.data() && m_next[-1] == at) {
            --m_next;
        } else {
            *m_next++ = at;
        }
    }

    void EndRow() {
        for (int i = 0; i < 4; ++i) m_next[i] = m_rows.width;
    }

    void Draw(uint8_t* row) const {
        std::memset(row, m_rows.white, (m_rows.width + 7) / 8);
        // A row that ends white has a change at its end, which may be behind the last byte.
        for (const uint32_t* at = m_row.data(); *at < m_rows.width; at += 2) Flip(row, at[0], at[1]);
    }

    // Makes white pixels black.
    void Flip(uint8_t* row, uint32_t from, uint32_t to) const {
        const uint32_t first = from / 8;
        const uint32_t last = to / 8;
        const auto lead = static_cast<uint8_t>(0xFF >> (from % 8));
        const auto trail = static_cast<uint8_t>(~(0xFF >> (to % 8)));
        if (first == last) {
            row[first] = static_cast<uint8_t>(row[first] ^ (lead & trail));
            return;
        }
        row[first] = static_cast<uint8_t>(row[first] ^ lead);
        std::memset(row + first + 1, ~m_rows.white, last - first - 1);
        if (to % 8 != 0) row[last] = static_cast<uint8_t>(row[last] ^ trail);
    }

    BitReader m_bits;
    const FaxCoding m_coding;
    const FaxRows m_rows;
    std::vector<uint32_t> m_above;
    std::vector<uint32_t> m_row;
    uint32_t* m_next;
    FaxResult m_failure = FaxResult::kDamaged;
};

}  // namespace

FaxResult DecodeFax(std::span<const uint8_t> bytes, FaxCoding coding, const FaxRows& rows) {
    return FaxDecoder(bytes, coding, rows).Decode();
}

}  // namespace reader
