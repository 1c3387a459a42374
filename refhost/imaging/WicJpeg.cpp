#include "refhost/imaging/WicJpeg.h"

namespace imaging {

void WicJpeg::Decode(std::span<const uint8_t> stream, uint32_t width, uint32_t height, uint32_t samples, uint8_t* to) {
    const GUID& wanted = samples == 1   ? GUID_WICPixelFormat8bppGray
                         : samples == 3 ? GUID_WICPixelFormat24bppBGR
                                        : GUID_WICPixelFormat32bppCMYK;
    if (m_factory == nullptr) m_factory = CreateFactory();
    IWICStreamPtr bytes;
    Check(m_factory->CreateStream(&bytes));
    Check(bytes->InitializeFromMemory(const_cast<BYTE*>(stream.data()), static_cast<DWORD>(stream.size())));
    IWICBitmapDecoderPtr decoder;
    Check(decoder.CreateInstance(CLSID_WICJpegDecoder, nullptr, CLSCTX_INPROC_SERVER));
    if (FAILED(decoder->Initialize(bytes, WICDecodeMetadataCacheOnDemand))) throw BadPiece{L"is no JPEG stream"};
    IWICBitmapFrameDecodePtr frame;
    Check(decoder->GetFrame(0, &frame));
    UINT foundWidth = 0;
    UINT foundHeight = 0;
    GUID format = {};
    Check(frame->GetSize(&foundWidth, &foundHeight));
    Check(frame->GetPixelFormat(&format));
    if (foundWidth != width || foundHeight != height || format != wanted) {
        throw BadPiece{L"is a JPEG of another kind than the page says"};
    }
    const UINT stride = width * samples;
    if (FAILED(frame->CopyPixels(nullptr, stride, stride * height, to))) throw BadPiece{L"is damaged"};
}

// Progressive streams are held as coefficients of two bytes as a whole, and the codec may keep all rows beside them.
uint64_t WicJpeg::Memory(uint32_t width, uint32_t height, uint32_t samples) const {
    return uint64_t{width} * height * samples * 3;
}

}  // namespace imaging
