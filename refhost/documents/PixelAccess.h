#pragma once
// The way from a page image to its pixels, between the reference host's page images and its page display control.
// A control of another maker would not find this interface; IPageImage alone is the host's contract.

#include <oaidl.h>

#include <cstddef>
#include <cstdint>

#include "host/HostIds.h"

#define REFHOST_IID_PAGE_PIXELS 0x6c1c2b5e, 0x0d0c, 0x4b27, 0x9d, 0x31, 0x5e, 0x1b, 0x77, 0xe4, 0xa0, 0x52

struct PagePixels {
    uint32_t width;           // pixels, at least 1
    uint32_t height;          // pixels, at least 1
    uint32_t bitsPerPixel;    // 1 (packed, leftmost pixel in the highest bit), 8, 24 (BGR) or 32 (BGRX)
    uint32_t colors;          // entries of the palette: 2, 256 or 0
    const uint32_t* palette;  // colours 0x00RRGGBB of 1-bit and 8-bit pages, also grey ones; else null
    const uint8_t* topRow;    // row y starts at topRow + y * stride
    ptrdiff_t stride;         // negative for pages stored bottom-up; 0 for a blank page, whose rows are all one
    double dpiX;              // resolution in force: 10 to 10000 dots per inch, may differ per axis
    double dpiY;
    SIZE size;  // the page in tenths of a millimetre, as IPageImage::GetSize gives it; at least 1 x 1
};

// Found by QueryInterface on a page image. Everything in the record stays valid until the page image is loaded or made
// blank anew or released. A page image that holds no page gives E_UNEXPECTED.
struct IPagePixels : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetPixels(PagePixels* pixels) = 0;  // 3
};
ZONWICK_UUID(IPagePixels, REFHOST_IID_PAGE_PIXELS)
