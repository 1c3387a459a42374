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

// Goes from piece to piece, so that what it works with is made once for a page.
class Decoder {
public:
    virtual ~Decoder() = default;
    // Begins a piece: its bytes, in one or several parts that have to live as long, and the number of bytes that will
    // be asked for.
    virtual void Start(std::span<const std::span<const uint8_t>> parts, size_t total) = 0;
    void Start(const std::span<const uint8_t>& bytes, size_t total) { Start({&bytes, 1}, total); }
    // The next `size` bytes; valid until the next call. Throws BadPiece when they are not there.
    virtual const uint8_t* Next(size_t size) = 0;
    // To be called behind the last byte: throws BadPiece when a checksum tells that they are not right. What follows
    // them otherwise is of no interest.
    virtual void End() {}
};

std::unique_ptr<Decoder> MakeDecoder(Coding coding);

// Inflates streams whose checksum has to be there and right: End throws otherwise.
std::unique_ptr<Decoder> MakeInflater();

// Turns the bits of each byte around.
void ReverseBits(std::span<uint8_t> bytes);

// The most memory that a decoder for so many bytes takes.
uint64_t DecoderMemory(Coding coding, uint64_t total);

}  // namespace reader
