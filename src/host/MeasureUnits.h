#pragma once
// The host's unit object: knows the user's measurement system and converts lengths. Internal lengths are whole tenths
// of a millimetre, user lengths are millimetres in the metric system and inches otherwise.

#include <oaidl.h>

#include "host/HostIds.h"

struct IMeasureUnits : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Reserved3() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved4() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved5() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved6() = 0;
    // 7: 1 is metric, any other value inches.
    virtual HRESULT STDMETHODCALLTYPE GetMeasureSystem(LONG* system) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    // 9: the unit's label; the caller frees it.
    virtual HRESULT STDMETHODCALLTYPE GetUnitName(BSTR* name) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    // 11 and 13: between internal lengths and the user's unit; rounding is the host's.
    virtual HRESULT STDMETHODCALLTYPE ToUserUnits(LONG length, double* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved12() = 0;
    virtual HRESULT STDMETHODCALLTYPE FromUserUnits(double value, LONG* length) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved14() = 0;
    // 15: an internal length as display text in the user's unit; the caller frees it.
    virtual HRESULT STDMETHODCALLTYPE FormatValue(LONG length, BSTR* text) = 0;
};
ZONWICK_UUID(IMeasureUnits, ZONWICK_IID_MEASURE_UNITS)
