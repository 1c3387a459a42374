#pragma once
// The host's page image: a decoded page that the page display control can show.

#include <oaidl.h>

#include "host/HostIds.h"

struct IPageImage : IUnknown {
    // 3: width and height of the page in tenths of a millimetre.
    virtual HRESULT STDMETHODCALLTYPE GetSize(SIZE* size) = 0;
};
ZONWICK_UUID(IPageImage, ZONWICK_IID_PAGE_IMAGE)

struct IImageLoader : IUnknown {
    // 3: takes a copy of `length` bytes of an encoded image and decodes them.
    virtual HRESULT STDMETHODCALLTYPE LoadFromMemory(const BYTE* bytes, LONG length) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved4() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved5() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved6() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    // 8: makes the object a blank page; width and height in tenths of a millimetre, resolutions in dots per inch, the
    // last argument 0.
    virtual HRESULT STDMETHODCALLTYPE CreateBlank(LONG width, LONG height, LONG xResolution, LONG yResolution,
                                                  LONG reserved) = 0;
};
ZONWICK_UUID(IImageLoader, ZONWICK_IID_IMAGE_LOADER)
