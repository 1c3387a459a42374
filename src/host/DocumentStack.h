#pragma once
// The host's document stack: documents, their pages, and each page's image in encoded form.
// All are dispatch interfaces of the host (positions 0 to 6), used on the host's window thread only. Every pointer that
// comes back carries a reference for the caller.

#include <oaidl.h>

#include "host/HostIds.h"

struct IImageData : IDispatch {
    // 7: the encoded image: one dimension of VT_UI1. The caller destroys it.
    virtual HRESULT STDMETHODCALLTYPE GetBytes(SAFEARRAY** bytes) = 0;
};
ZONWICK_UUID(IImageData, ZONWICK_IID_IMAGE_DATA)

struct IImageSource : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved11() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved12() = 0;
    // 13: an object to be queried for IImageData.
    virtual HRESULT STDMETHODCALLTYPE GetData(IUnknown** data) = 0;
};
ZONWICK_UUID(IImageSource, ZONWICK_IID_IMAGE_SOURCE)

struct IQuirePage : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    // 11
    virtual HRESULT STDMETHODCALLTYPE GetImageSource(IImageSource** source) = 0;
};
ZONWICK_UUID(IQuirePage, ZONWICK_IID_QUIRE_PAGE)

struct IQuireDocument : IDispatch {
    // 7: number of pages.
    virtual HRESULT STDMETHODCALLTYPE GetCount(LONG* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    // 9: the page at a 0-based index; may be null.
    virtual HRESULT STDMETHODCALLTYPE GetItem(LONG index, IQuirePage** page) = 0;
};
ZONWICK_UUID(IQuireDocument, ZONWICK_IID_QUIRE_DOCUMENT)

struct IQuire : IDispatch {
    // 7: number of documents.
    virtual HRESULT STDMETHODCALLTYPE GetCount(LONG* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    // 9: the document at a 0-based index; may be null.
    virtual HRESULT STDMETHODCALLTYPE GetItem(LONG index, IQuireDocument** document) = 0;
};
ZONWICK_UUID(IQuire, ZONWICK_IID_QUIRE)
