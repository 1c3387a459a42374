#include "refhost/documents/PageImage.h"

#include <algorithm>

#include "refhost/documents/Report.h"
#include "refhost/reader/Resolution.h"

namespace documents {

namespace {

constexpr uint32_t kWhite[] = {0xFFFFFF, 0xFFFFFF};

HRESULT Failed(HRESULT status) {
    Report(HostImagingErrorText());
    return status;
}

}  // namespace

HRESULT PageImage::QueryOther(REFIID iid, void** object) {
    if (iid != host::kIidBlankPageImage) return E_NOINTERFACE;
    *object = static_cast<IPageImage*>(this);
    AddRef();
    return S_OK;
}

HRESULT PageImage::GetSize(SIZE* size) noexcept {
    if (size == nullptr) return E_POINTER;
    if (m_pixels.width == 0) return E_UNEXPECTED;
    *size = m_pixels.size;
    return S_OK;
}

HRESULT PageImage::GetPixels(PagePixels* pixels) noexcept {
    if (pixels == nullptr) return E_POINTER;
    if (m_pixels.width == 0) return E_UNEXPECTED;
    *pixels = m_pixels;
    return S_OK;
}

HRESULT PageImage::LoadFromMemory(const BYTE* bytes, LONG length) noexcept {
    if (bytes == nullptr) return E_POINTER;
    if (length < 0) return E_INVALIDARG;
    return com::Guard([&] {
        const Override dpi = ResolutionOverride();
        void* raw = nullptr;
        uint32_t frames = 0;
        if (!HostOpenImageMemory(bytes, static_cast<size_t>(length), &raw, &frames)) return Failed(E_INVALIDARG);
        const FileHandle file(raw);
        if (!HostLoadFrame(file.get(), 0, dpi.dpiX, dpi.dpiY, &raw)) return Failed(E_FAIL);
        ImageHandle image(raw);
        HostImageInfo info = {};
        HostImagePixels rows = {};
        if (!HostGetImageInfo(raw, &info) || !HostGetImagePixels(raw, &rows)) return Failed(E_FAIL);

        m_image = std::move(image);
        m_blankRow.clear();
        m_pixels = {info.width,
                    info.height,
                    info.bitsPerPixel,
                    rows.colors,
                    rows.palette,
                    rows.topRow,
                    rows.stride,
                    info.dpiX,
                    info.dpiY,
                    {reader::TenthsOfPixels(info.width, info.dpiX), reader::TenthsOfPixels(info.height, info.dpiY)}};
        return S_OK;
    });
}

HRESULT PageImage::CreateBlank(LONG width, LONG height, LONG xResolution, LONG yResolution, LONG) noexcept {
    if (width <= 0 || height <= 0) return E_INVALIDARG;
    return com::Guard([&] {
        const reader::Resolution dpi = reader::ResolveResolution(0, 0, xResolution, yResolution);
        const reader::PixelRange x = reader::PixelsTouched(0, width, dpi.x, kHostMaxImageSide + 1);
        const reader::PixelRange y = reader::PixelsTouched(0, height, dpi.y, kHostMaxImageSide + 1);
        if (x.end > kHostMaxImageSide || y.end > kHostMaxImageSide) return E_INVALIDARG;
        m_blankRow.assign((size_t{x.end} + 31) / 32 * 4, 0);
        m_image.reset();
        m_pixels = {x.end, y.end, 1, 2, kWhite, m_blankRow.data(), 0, dpi.x, dpi.y, {width, height}};
        return S_OK;
    });
}

}  // namespace documents
