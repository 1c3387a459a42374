#pragma once
// The host's page display ActiveX control, Folium: its own interface, records and events. Lengths are tenths of a
// millimetre on the page but for the position of ContextMenuRequested, which is in the control window's client pixels.
// Events are fired on the calling thread, inside the calls that cause them.

#include <oaidl.h>

#include <cstddef>
#include <cstdint>

#include "host/HostIds.h"
#include "host/PageImage.h"

enum FoliumZoomMode : int32_t {
    kFoliumZoomPageHeight = 0,
    kFoliumZoomPageWidth = 1,
    kFoliumZoomWholePage = 2,
    kFoliumZoomPercent = 3,
};

struct FoliumZoom {
    int32_t mode;     // FoliumZoomMode
    int32_t percent;  // read only with kFoliumZoomPercent
};
static_assert(sizeof(FoliumZoom) == 8 && offsetof(FoliumZoom, percent) == 4);

struct FoliumRect {
    int32_t reserved0;
    int32_t reserved4;
    int32_t left, top, right, bottom;
};
static_assert(sizeof(FoliumRect) == 24 && offsetof(FoliumRect, left) == 8 && offsetof(FoliumRect, bottom) == 20);

struct FoliumDisplayOptions {
    COLORREF background;
    COLORREF area1, area2, area3;
    int32_t reserved16;
    int32_t reserved20;
    int32_t reserved24;  // set to 0 at set-up
    int32_t smooth;      // nonzero: smoothing on
};
static_assert(sizeof(FoliumDisplayOptions) == 32 && offsetof(FoliumDisplayOptions, area3) == 12 &&
              offsetof(FoliumDisplayOptions, reserved24) == 24 && offsetof(FoliumDisplayOptions, smooth) == 28);

struct IFolium : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Reserved3() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved4() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved5() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved6() = 0;
    // 7: shows the page; the out value is not used. The rectangles stay.
    virtual HRESULT STDMETHODCALLTYPE ShowPage(IPageImage* page, LONGLONG* unused) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    // 11
    virtual HRESULT STDMETHODCALLTYPE SetZoom(const FoliumZoom* zoom) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved12() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved13() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved14() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved15() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved16() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved17() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved18() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved19() = 0;
    // 20, 21: the options in force; applies options.
    virtual HRESULT STDMETHODCALLTYPE GetDisplayOptions(FoliumDisplayOptions* options) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDisplayOptions(const FoliumDisplayOptions* options) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved22() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved23() = 0;
    // 24: adds a rectangle and fires RectAdded before returning; identifiers 1, 2, 3, ... on a fresh control.
    virtual HRESULT STDMETHODCALLTYPE InsertRect(const FoliumRect* rect, LONG* id) = 0;
    // 25: removes it and fires RectDeleted.
    virtual HRESULT STDMETHODCALLTYPE DeleteRect(LONG id) = 0;
    // 26: selects it; may fire RectSelected.
    virtual HRESULT STDMETHODCALLTYPE SelectRect(LONG id) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved27() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved28() = 0;
    // 29: called once with 1 during set-up.
    virtual HRESULT STDMETHODCALLTYPE SetMode(LONG mode) = 0;
    // 30: the rectangle's bounds.
    virtual HRESULT STDMETHODCALLTYPE QueryRect(LONG id, FoliumRect* rect) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved31() = 0;
    // 32: an offset to add to every PointerMoved position.
    virtual HRESULT STDMETHODCALLTYPE GetPositionOffset(POINT* offset) = 0;
    // 33: called once at the end of the set-up.
    virtual HRESULT STDMETHODCALLTYPE UpdateView() = 0;
    // 34: sets the rectangle's bounds; may fire RectChanged.
    virtual HRESULT STDMETHODCALLTYPE UpdateRect(LONG id, const FoliumRect* rect) = 0;
};
ZONWICK_UUID(IFolium, ZONWICK_IID_FOLIUM)

// Events: methods of the outgoing dispatch interface kDiidFoliumEvents; all parameters are VT_I4.
enum FoliumEvent : DISPID {
    kFoliumContextMenuRequested = 2,  // (unused, x, y) in client pixels
    kFoliumRectSelected = 8,          // (id)
    kFoliumRectChanged = 9,           // (id)
    kFoliumRectAdded = 10,            // (id)
    kFoliumRectDeleted = 11,          // (id)
    kFoliumPointerMoved = 12,         // (x, y)
};
