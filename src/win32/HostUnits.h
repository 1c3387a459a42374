#pragma once
// The host's unit object, made for one operation; a failing call throws _com_error.

#include <string>

#include "host/MeasureUnits.h"
#include "win32/HostCall.h"

namespace win32 {

class HostUnits {
public:
    HostUnits() : m_units(CreateHostObject<IMeasureUnits>(host::kClsidMeasureUnits)) {}

    bool IsMetric() const {
        LONG system = 0;
        CallHost(Units(), &IMeasureUnits::GetMeasureSystem, &system);
        return system == 1;
    }
    std::wstring GetUnitName() const {
        Bstr name;
        CallHost(Units(), &IMeasureUnits::GetUnitName, name.Out());
        return std::wstring(name.View());
    }
    double ToUserUnits(LONG length) const {
        double value = 0.0;
        CallHost(Units(), &IMeasureUnits::ToUserUnits, length, &value);
        return value;
    }
    LONG FromUserUnits(double value) const {
        LONG length = 0;
        CallHost(Units(), &IMeasureUnits::FromUserUnits, value, &length);
        return length;
    }
    std::wstring FormatValue(LONG length) const {
        Bstr text;
        CallHost(Units(), &IMeasureUnits::FormatValue, length, text.Out());
        return std::wstring(text.View());
    }

private:
    IMeasureUnits* Units() const { return m_units.GetInterfacePtr(); }

    _com_ptr_t<_com_IIID<IMeasureUnits, &__uuidof(IMeasureUnits)>> m_units;
};

}  // namespace win32
