#pragma once
// JPEG streams on the system's codec.

#include "refhost/imaging/Wic.h"
#include "refhost/reader/Page.h"

namespace imaging {

class WicJpeg final : public JpegDecoder {
public:
    void Decode(std::span<const uint8_t> stream, uint32_t width, uint32_t height, uint32_t samples,
                const Rows& rows) override;
    uint64_t Memory(uint32_t width, uint32_t height, uint32_t samples) const override;

private:
    IWICBitmapFrameDecodePtr Open(std::span<const uint8_t> stream);

    IWICImagingFactoryPtr m_factory;  // made when the first stream is decoded
};

}  // namespace imaging
