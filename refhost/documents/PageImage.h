#pragma once
// The page image class: a decoded page, or a blank one.

#include <cstdint>
#include <vector>

#include "host/PageImage.h"
#include "refhost/com/ComObject.h"
#include "refhost/documents/DocumentFiles.h"
#include "refhost/documents/PixelAccess.h"

namespace documents {

class PageImage final : public com::Object<IPageImage, IImageLoader, IPagePixels> {
public:
    HRESULT STDMETHODCALLTYPE GetSize(SIZE* size) noexcept override;

    // A page that cannot be loaded or made leaves the one before in place.
    HRESULT STDMETHODCALLTYPE LoadFromMemory(const BYTE* bytes, LONG length) noexcept override;
    HRESULT STDMETHODCALLTYPE CreateBlank(LONG width, LONG height, LONG xResolution, LONG yResolution,
                                          LONG reserved) noexcept override;
    HRESULT STDMETHODCALLTYPE Reserved4() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved5() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved6() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved7() noexcept override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE GetPixels(PagePixels* pixels) noexcept override;

private:
    HRESULT QueryOther(REFIID iid, void** object) override;

    PagePixels m_pixels = {};         // width 0: no page
    ImageHandle m_image;              // owns the rows of a loaded page
    std::vector<uint8_t> m_blankRow;  // is all rows of a blank one
};

}  // namespace documents
