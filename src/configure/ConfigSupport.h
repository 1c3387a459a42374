#pragma once
// Small things that the parts of "Configure Area Set" share.

#include "configure/RectListCells.h"
#include "host/PageDisplay.h"
#include "win32/HostUnits.h"

// Sets a flag for its own life and puts another value there afterwards, also when something is thrown.
class ScopedFlag {
public:
    ScopedFlag(bool& flag, bool during, bool after) : m_flag(flag), m_after(after) { m_flag = during; }
    ~ScopedFlag() { m_flag = m_after; }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;

private:
    bool& m_flag;
    bool m_after;
};

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
