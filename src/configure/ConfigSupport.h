#pragma once
// Small things that the parts of "Configure Area Set" share.

#include "configure/RectListCells.h"
#include "host/PageDisplay.h"
#include "win32/HostUnits.h"

// The host's units for the rules of the list.
class ListUnits final : public rectlist::Units {
public:
    bool IsMetric() const override { return m_units.IsMetric(); }
    double ToUser(int32_t length) const override { return m_units.ToUserUnits(length); }
    int32_t FromUser(double value) const override { return m_units.FromUserUnits(value); }
    std::wstring Format(int32_t length) const override { return m_units.FormatValue(length); }

private:
    win32::HostUnits m_units;
};

inline FoliumRect ToFolium(const PageRect& rect) {
    return {0, 0, rect.left, rect.top, rect.right, rect.bottom};
}
inline PageRect FromFolium(const FoliumRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}
