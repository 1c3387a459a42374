#include "refhost/imaging/WicJpeg.h"

#include "refhost/imaging/RowConvert.h"
#include "refhost/reader/Codecs.h"

namespace imaging {

namespace {

const GUID& FormatOf(uint32_t samples) {
    return samples == 1   ? GUID_WICPixelFormat8bppGray
           : samples == 3 ? GUID_WICPixelFormat24bppBGR
                          : GUID_WICPixelFormat32bppCMYK;
}

}  // namespace

IWICBitmapFrameDecodePtr WicJpeg::Open(std::span<const uint8_t> stream) {
    if (m_factory == nullptr) m_factory = CreateFactory();
    IWICStreamPtr bytes;
    Check(m_factory->CreateStream(&bytes));
    Check(bytes->InitializeFromMemory(const_cast<BYTE*>(stream.data()), static_cast<DWORD>(stream.size())));
    IWICBitmapDecoderPtr decoder;
    // The system's own; the factory would look through all that are registered.
    Check(decoder.CreateInstance(CLSID_WICJpegDecoder, nullptr, CLSCTX_INPROC_SERVER));
    IWICBitmapFrameDecodePtr frame;
    HRESULT status = decoder->Initialize(bytes, WICDecodeMetadataCacheOnDemand);
    if (SUCCEEDED(status)) status = decoder->GetFrame(0, &frame);
    if (status == E_OUTOFMEMORY) throw std::bad_alloc();
    if (FAILED(status)) throw BadPiece{L"is no JPEG stream that the system can read"};
    return frame;
}

void WicJpeg::Decode(std::span<const uint8_t> stream, uint32_t width, uint32_t height, uint32_t samples,
                     const Rows& rows) {
    const IWICBitmapFrameDecodePtr frame = Open(stream);
    UINT foundWidth = 0;
    UINT foundHeight = 0;
    GUID format = {};
    Check(frame->GetSize(&foundWidth, &foundHeight));
    Check(frame->GetPixelFormat(&format));
    if (foundWidth != width || foundHeight != height || format != FormatOf(samples)) {
        throw BadPiece{L"is of another kind than its header says"};
    }
    const UINT stride = width * samples;
    const UINT most = RowsOfStrip(stride, height);
    std::vector<uint8_t> strip(size_t{stride} * most);
    for (UINT top = 0; top < height; top += most) {
        const UINT count = std::min(most, height - top);
        const WICRect rect = {0, static_cast<INT>(top), static_cast<INT>(width), static_cast<INT>(count)};
        if (FAILED(frame->CopyPixels(&rect, stride, stride * count, strip.data()))) throw BadPiece{L"is damaged"};
        for (UINT y = 0; y < count; ++y) rows(top + y, strip.data() + size_t{y} * stride);
    }
}

// Progressive streams are held as coefficients of two bytes as a whole, and the codec keeps all rows beside them.
uint64_t WicJpeg::Memory(uint32_t width, uint32_t height, uint32_t samples) const {
    constexpr uint64_t kStrips = uint64_t{4} << 20;
    return uint64_t{width} * height * samples * 3 + kStrips;
}

}  // namespace imaging
