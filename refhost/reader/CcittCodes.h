#pragma once
// The codes of ITU-T T.4 and T.6 as look-up tables, made when the program is compiled.

#include <array>
#include <cstddef>
#include <cstdint>

namespace reader::ccitt {

// A run: its length, and the bits of its code. Lengths from 64 on are followed by another code of the same colour.
// 0 bits: no such code.
struct Run {
    uint16_t length : 12;
    uint16_t bits : 4;
};

inline constexpr uint32_t kWhiteBits = 12;
inline constexpr uint32_t kBlackBits = 13;

enum class Mode : uint8_t { kNone, kVertical, kHorizontal, kPass, kExtension };

// How the end of a run lies to the change above it.
struct ModeCode {
    Mode mode = Mode::kNone;
    uint8_t bits = 0;
    int8_t offset = 0;  // of vertical modes
};
inline constexpr uint32_t kModeBits = 7;

extern const std::array<Run, size_t{1} << kWhiteBits> kWhiteRuns;
extern const std::array<Run, size_t{1} << kBlackBits> kBlackRuns;
extern const std::array<ModeCode, size_t{1} << kModeBits> kModes;

}  // namespace reader::ccitt
