#pragma once
// The system's imaging component.

#include <windows.h>

#include <comdef.h>
#include <wincodec.h>

#include "refhost/imaging/Image.h"

namespace imaging {

_COM_SMARTPTR_TYPEDEF(IWICImagingFactory, __uuidof(IWICImagingFactory));
_COM_SMARTPTR_TYPEDEF(IWICStream, __uuidof(IWICStream));
_COM_SMARTPTR_TYPEDEF(IWICPalette, __uuidof(IWICPalette));
_COM_SMARTPTR_TYPEDEF(IWICBitmapDecoder, __uuidof(IWICBitmapDecoder));
_COM_SMARTPTR_TYPEDEF(IWICBitmapFrameDecode, __uuidof(IWICBitmapFrameDecode));
_COM_SMARTPTR_TYPEDEF(IWICBitmapEncoder, __uuidof(IWICBitmapEncoder));
_COM_SMARTPTR_TYPEDEF(IWICBitmapFrameEncode, __uuidof(IWICBitmapFrameEncode));

// Throws a failing status as _com_error.
inline void Check(HRESULT status) {
    if (FAILED(status)) throw _com_error(status);
}

inline IWICImagingFactoryPtr CreateFactory() {
    IWICImagingFactoryPtr factory;
    const HRESULT status = factory.CreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER);
    if (status == CO_E_NOTINITIALIZED) {
        throw ImageError{L"COM is not initialised on this thread; call CoInitializeEx before using images"};
    }
    Check(status);
    return factory;
}

}  // namespace imaging
