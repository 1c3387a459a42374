#include "refhost/reader/CcittCodes.h"

#include <string_view>

namespace reader::ccitt {

namespace {

// Runs of 0 to 63, of 64, 128, ... 1728, and those of 1792, 1856, ... 2560 that both colours share.
constexpr std::string_view kWhite[] = {
    "00110101", "000111",   "0111",     "1000",     "1011",     "1100",     "1110",     "1111",
    "10011",    "10100",    "00111",    "01000",    "001000",   "000011",   "110100",   "110101",
    "101010",   "101011",   "0100111",  "0001100",  "0001000",  "0010111",  "0000011",  "0000100",
    "0101000",  "0101011",  "0010011",  "0100100",  "0011000",  "00000010", "00000011", "00011010",
    "00011011", "00010010", "00010011", "00010100", "00010101", "00010110", "00010111", "00101000",
    "00101001", "00101010", "00101011", "00101100", "00101101", "00000100", "00000101", "00001010",
    "00001011", "01010010", "01010011", "01010100", "01010101", "00100100", "00100101", "01011000",
    "01011001", "01011010", "01011011", "01001010", "01001011", "00110010", "00110011", "00110100"};

constexpr std::string_view kWhiteLong[] = {"11011",     "10010",     "010111",    "0110111",   "00110110",  "00110111",
                                           "01100100",  "01100101",  "01101000",  "01100111",  "011001100", "011001101",
                                           "011010010", "011010011", "011010100", "011010101", "011010110", "011010111",
                                           "011011000", "011011001", "011011010", "011011011", "010011000", "010011001",
                                           "010011010", "011000",    "010011011"};

constexpr std::string_view kBlack[] = {
    "0000110111",   "010",          "11",           "10",           "011",          "0011",         "0010",
    "00011",        "000101",       "000100",       "0000100",      "0000101",      "0000111",      "00000100",
    "00000111",     "000011000",    "0000010111",   "0000011000",   "0000001000",   "00001100111",  "00001101000",
    "00001101100",  "00000110111",  "00000101000",  "00000010111",  "00000011000",  "000011001010", "000011001011",
    "000011001100", "000011001101", "000001101000", "000001101001", "000001101010", "000001101011", "000011010010",
    "000011010011", "000011010100", "000011010101", "000011010110", "000011010111", "000001101100", "000001101101",
    "000011011010", "000011011011", "000001010100", "000001010101", "000001010110", "000001010111", "000001100100",
    "000001100101", "000001010010", "000001010011", "000000100100", "000000110111", "000000111000", "000000100111",
    "000000101000", "000001011000", "000001011001", "000000101011", "000000101100", "000001011010", "000001100110",
    "000001100111"};

constexpr std::string_view kBlackLong[] = {
    "0000001111",    "000011001000",  "000011001001",  "000001011011",  "000000110011",  "000000110100",
    "000000110101",  "0000001101100", "0000001101101", "0000001001010", "0000001001011", "0000001001100",
    "0000001001101", "0000001110010", "0000001110011", "0000001110100", "0000001110101", "0000001110110",
    "0000001110111", "0000001010010", "0000001010011", "0000001010100", "0000001010101", "0000001011010",
    "0000001011011", "0000001100100", "0000001100101"};

constexpr std::string_view kLonger[] = {"00000001000",  "00000001100",  "00000001101",  "000000010010", "000000010011",
                                        "000000010100", "000000010101", "000000010110", "000000010111", "000000011100",
                                        "000000011101", "000000011110", "000000011111"};

template <uint32_t Bits>
class RunTable {
public:
    constexpr RunTable() {
        for (Run& run : m_runs) run = {0, 0};
    }
    template <size_t Count>
    constexpr void Add(const std::string_view (&codes)[Count], uint32_t first, uint32_t step) {
        for (size_t i = 0; i < Count; ++i) Add(codes[i], first + static_cast<uint32_t>(i) * step);
    }
    constexpr const std::array<Run, size_t{1} << Bits>& Runs() const { return m_runs; }

private:
    constexpr void Add(std::string_view code, uint32_t length) {
        size_t first = 0;
        for (const char bit : code) first = first * 2 + (bit == '1' ? 1 : 0);
        const size_t free = Bits - code.size();
        const Run run = {static_cast<uint16_t>(length & 0xFFF), static_cast<uint16_t>(code.size() & 0xF)};
        for (size_t i = 0; i < size_t{1} << free; ++i) m_runs[(first << free) + i] = run;
    }

    std::array<Run, size_t{1} << Bits> m_runs{};
};

constexpr auto WhiteRuns() {
    RunTable<kWhiteBits> table;
    table.Add(kWhite, 0, 1);
    table.Add(kWhiteLong, 64, 64);
    table.Add(kLonger, 1792, 64);
    return table.Runs();
}

constexpr auto BlackRuns() {
    RunTable<kBlackBits> table;
    table.Add(kBlack, 0, 1);
    table.Add(kBlackLong, 64, 64);
    table.Add(kLonger, 1792, 64);
    return table.Runs();
}

constexpr auto Modes() {
    struct Entry {
        std::string_view code;
        Mode mode;
        int8_t offset;
    };
    constexpr Entry kEntries[] = {
        {"1", Mode::kVertical, 0},        {"011", Mode::kVertical, 1},   {"000011", Mode::kVertical, 2},
        {"0000011", Mode::kVertical, 3},  {"010", Mode::kVertical, -1},  {"000010", Mode::kVertical, -2},
        {"0000010", Mode::kVertical, -3}, {"001", Mode::kHorizontal, 0}, {"0001", Mode::kPass, 0},
        {"0000001", Mode::kExtension, 0},
    };
    std::array<ModeCode, size_t{1} << kModeBits> modes{};
    for (const Entry& entry : kEntries) {
        size_t first = 0;
        for (const char bit : entry.code) first = first * 2 + (bit == '1' ? 1 : 0);
        const size_t free = kModeBits - entry.code.size();
        for (size_t i = 0; i < size_t{1} << free; ++i) {
            modes[(first << free) + i] = {entry.mode, static_cast<uint8_t>(entry.code.size()), entry.offset};
        }
    }
    return modes;
}

}  // namespace

constinit const std::array<Run, size_t{1} << kWhiteBits> kWhiteRuns = WhiteRuns();
constinit const std::array<Run, size_t{1} << kBlackBits> kBlackRuns = BlackRuns();
constinit const std::array<ModeCode, size_t{1} << kModeBits> kModes = Modes();

}  // namespace reader::ccitt
