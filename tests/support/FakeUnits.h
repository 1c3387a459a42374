#pragma once
// The host's unit object for tests: millimetres, failures like those of the settings, and what it was asked in order.

#include <string>
#include <vector>

#include "host/MeasureUnits.h"
#include "support/FakeObject.h"

namespace test {

// "ToUserUnits 2100"; of FormatValue the text that it gave.
inline std::vector<std::wstring>& UnitCalls() {
    static std::vector<std::wstring> calls;
    return calls;
}

class FakeUnits final : public FakeObject<IMeasureUnits> {
public:
    HRESULT STDMETHODCALLTYPE GetMeasureSystem(LONG* system) override {
        *system = 1;
        return Asked(L"GetMeasureSystem");
    }
    HRESULT STDMETHODCALLTYPE GetUnitName(BSTR* name) override { return Give(L"GetUnitName", L"mm", name); }
    HRESULT STDMETHODCALLTYPE ToUserUnits(LONG length, double* value) override {
        *value = length / 10.0;
        return Asked(L"ToUserUnits " + std::to_wstring(length));
    }
    HRESULT STDMETHODCALLTYPE FromUserUnits(double value, LONG* length) override {
        *length = static_cast<LONG>(value * 10 + 0.5);
        return Asked(L"FromUserUnits");
    }
    HRESULT STDMETHODCALLTYPE FormatValue(LONG length, BSTR* text) override {
        const std::wstring value = std::to_wstring(length / 10);
        return Give(value, value, text);
    }
    HRESULT STDMETHODCALLTYPE Reserved3() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }

private:
    static HRESULT Asked(std::wstring call) {
        UnitCalls().push_back(std::move(call));
        return Host().Fails() ? E_FAIL : S_OK;
    }
    static HRESULT Give(std::wstring call, const std::wstring& text, BSTR* out) {
        *out = nullptr;
        const HRESULT status = Asked(std::move(call));
        if (SUCCEEDED(status)) *out = SysAllocString(text.c_str());
        return status;
    }
};

// Registered while it lives.
class FakeUnitsClass : public FakeClass {
public:
    explicit FakeUnitsClass(const HRESULT& status)
        : FakeClass(
              host::kClsidMeasureUnits, [] { return static_cast<IUnknown*>(new FakeUnits); }, status) {
        UnitCalls().clear();
    }
};

}  // namespace test
