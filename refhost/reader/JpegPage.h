#pragma once
// A JPEG file: its header read here, its pixels decoded by the platform. A file without its end marker is refused; what
// is missing in front of one that was put back is filled up by the decoder, with nothing but what the file itself says.

#include "refhost/reader/Page.h"

namespace reader {

class JpegPage final : public Page {
public:
    explicit JpegPage(std::span<const uint8_t> file);

    PageFacts Facts() const override { return m_facts; }
    uint64_t WorkingBytes(const JpegDecoder& jpeg) const override;
    std::shared_ptr<Bitmap> Decode(JpegDecoder& jpeg) const override;

private:
    using Bytes = std::span<const uint8_t>;

    void ReadSegment(uint8_t marker, Bytes data);
    void ReadFrame(Bytes data);
    void ReadJfif(Bytes data);
    void ReadExif(Bytes data);

    Bytes m_file;
    PageFacts m_facts;
    uint32_t m_samples = 0;
};

}  // namespace reader
