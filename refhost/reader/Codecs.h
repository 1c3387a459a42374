#pragma once
// The bytes of a piece (a strip or tile) of a page, decoded in the order in which they stand.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace reader {

enum class Coding { kNone, kPackBits, kLzw, kDeflate };

// Thrown when the data of a piece is not what it has to be.
struct BadPiece {
    const wchar_t* what;  // completes "its data ..."
};

class Decoder {
public:
    virtual ~Decoder() = default;
    // The next `size` bytes; valid until the next call. Throws BadPiece when they are not there.
    virtual const uint8_t* Next(size_t size) = 0;
    // To be called behind the last byte: throws BadPiece when a checksum tells that they are not right. What follows
    // them otherwise is of no interest.
    virtual void End() {}
};

// Decodes `bytes`, which have to live as long; `total` is the number of bytes that will be asked for.
std::unique_ptr<Decoder> MakeDecoder(Coding coding, std::span<const uint8_t> bytes, size_t total);

// Inflates a stream that stands in several parts, whose checksum has to be there and right: End throws otherwise.
std::unique_ptr<Decoder> MakeInflater(std::vector<std::span<const uint8_t>> parts, size_t total);

// Turns the bits of each byte around.
void ReverseBits(std::span<uint8_t> bytes);

// The most memory that a decoder for so many bytes takes.
uint64_t DecoderMemory(Coding coding, uint64_t total);

}  // namespace reader
