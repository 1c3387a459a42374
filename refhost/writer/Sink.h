#pragma once
// Where the bytes of a file go. Whoever gives one sees to failures: what it throws comes out of the call.

#include <cstdint>
#include <span>

namespace writer {

class Sink {
public:
    virtual ~Sink() = default;
    virtual void Append(std::span<const uint8_t> bytes) = 0;
    // Over bytes that were appended before.
    virtual void Replace(uint64_t position, std::span<const uint8_t> bytes) = 0;
};

}  // namespace writer
