#include "refhost/units/HostUnits.h"

#include <atomic>

#include "host/MeasureUnits.h"
#include "refhost/com/ComObject.h"
#include "refhost/units/UnitRules.h"

namespace {

using units::MeasureSystem;

constexpr LONG kByRegion = 0;
constexpr LONG kMetric = static_cast<LONG>(MeasureSystem::kMetric);
constexpr LONG kInches = static_cast<LONG>(MeasureSystem::kInches);

std::atomic<LONG> g_system = kByRegion;

MeasureSystem RegionalSystem() noexcept {
    constexpr DWORD kRegionMetric = 0;
    DWORD region = kRegionMetric;
    GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_IMEASURE | LOCALE_RETURN_NUMBER, reinterpret_cast<LPWSTR>(&region),
                    sizeof(region) / sizeof(WCHAR));
    return region == kRegionMetric ? MeasureSystem::kMetric : MeasureSystem::kInches;
}

MeasureSystem CurrentSystem() noexcept {
    const LONG system = g_system;
    return system == kByRegion ? RegionalSystem() : static_cast<MeasureSystem>(system);
}

HRESULT HandOut(const std::wstring& text, BSTR* out) noexcept {
    *out = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return *out == nullptr ? E_OUTOFMEMORY : S_OK;
}

class Units final : public com::Object<IMeasureUnits> {
public:
    HRESULT STDMETHODCALLTYPE Reserved3() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved4() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved5() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved6() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMeasureSystem(LONG* system) noexcept override {
        if (system == nullptr) return E_POINTER;
        *system = static_cast<LONG>(CurrentSystem());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reserved8() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetUnitName(BSTR* name) noexcept override {
        if (name == nullptr) return E_POINTER;
        return com::Guard([&] { return HandOut(units::UnitName(CurrentSystem()), name); });
    }
    HRESULT STDMETHODCALLTYPE Reserved10() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ToUserUnits(LONG length, double* value) noexcept override {
        if (value == nullptr) return E_POINTER;
        *value = units::ToUser(length, CurrentSystem());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reserved12() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FromUserUnits(double value, LONG* length) noexcept override {
        if (length == nullptr) return E_POINTER;
        *length = units::FromUser(value, CurrentSystem());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reserved14() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FormatValue(LONG length, BSTR* text) noexcept override {
        if (text == nullptr) return E_POINTER;
        return com::Guard([&] { return HandOut(units::Format(length, CurrentSystem()), text); });
    }
};

}  // namespace

extern "C" BOOL WINAPI HostSetMeasureSystem(LONG system) {
    if (system != kByRegion && system != kMetric && system != kInches) return FALSE;
    g_system = system;
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object) {
    return com::GetClassObject<Units>(host::kClsidMeasureUnits, classId, iid, object);
}

STDAPI DllCanUnloadNow() {
    return com::CanUnloadNow();
}
