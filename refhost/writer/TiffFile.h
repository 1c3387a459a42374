#pragma once
// A TIFF file of any number of pages (TIFF 6.0, little-endian), or a BigTIFF. Each page goes to the sink at once; a
// file whose last call succeeded is whole after each of its pages.

#include <cstdint>
#include <vector>

#include "refhost/writer/Page.h"
#include "refhost/writer/Sink.h"

namespace writer {

// Pixels an inch or a centimetre, as the unit says.
struct PrintedSize {
    double x;
    double y;
    bool centimetres = false;
};

// The page does not fit into a file that counts to 4 GiB: write all of them into a BigTIFF.
struct TooLargeForTiff {};

inline constexpr uint64_t kTiffLimit = UINT32_MAX;

class TiffFile {
public:
    // A plain TIFF may have so many bytes.
    TiffFile(Sink& sink, bool big, uint64_t limit = kTiffLimit);
    // Throws TooLargeForTiff before it writes anything.
    void Append(const EncodedPage& page, const PrintedSize& size);

private:
    struct Field;
    void Put(std::span<const uint8_t> bytes);
    void WriteDirectory(std::vector<Field> fields);
    void PointTo(uint64_t directory);

    Sink& m_sink;
    const bool m_big;
    const uint64_t m_limit;
    uint64_t m_position = 0;
    uint64_t m_link;  // where the position of the next directory is to stand
};

}  // namespace writer
