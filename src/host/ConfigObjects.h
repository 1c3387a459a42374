#pragma once
// The host's configuration object that a page configuration works for.

#include <oaidl.h>

#include "host/DocumentStack.h"
#include "host/HostIds.h"

struct IConfigHost : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    // 9: the document stack whose pages are shown; the caller owns the reference.
    virtual HRESULT STDMETHODCALLTYPE GetQuire(IQuire** quire) = 0;
};
ZONWICK_UUID(IConfigHost, ZONWICK_IID_CONFIG_HOST)

// Obtained by querying IConfigHost. Begin and End bracket one page configuration.
struct IConfigScope : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Begin() = 0;  // 7
    virtual HRESULT STDMETHODCALLTYPE End() = 0;    // 8
};
ZONWICK_UUID(IConfigScope, ZONWICK_IID_CONFIG_SCOPE)
