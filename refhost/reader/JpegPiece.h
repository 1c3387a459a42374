#pragma once
// A strip or tile of a TIFF that is coded as JPEG, with the tables that the page has apart, as a stream of its own.

#include <cstdint>
#include <span>
#include <vector>

namespace reader {

enum class JpegColours { kAsTheyAre, kRgb, kYCbCr };

struct JpegPiece {
    std::vector<uint8_t> stream;
    uint32_t width;
    uint32_t height;
    uint32_t samples;
};

// Whether a marker begins a frame's header, which tells its size.
bool IsJpegFrame(uint8_t marker);
// Whether the end marker stands anywhere in what follows the first scan's header; coded data never holds it.
bool HasJpegEnd(std::span<const uint8_t> scans);

// `tables` may be empty. Three samples are taken for what `colours` says, whatever the stream says of itself. Throws
// BadPiece when the stream is not whole.
JpegPiece MakeJpegPiece(std::span<const uint8_t> tables, std::span<const uint8_t> piece, JpegColours colours);

}  // namespace reader
