#pragma once
// How area sets stand in a settings node, for whoever reads or writes them there.

#include <cstdint>

#include "refhost/app/AreaSetRecord.h"

namespace zonhost {

// A coordinate of a rectangle node, and the name of its value.
struct StoredCoordinate {
    const wchar_t* name;
    int32_t Rect::*coordinate;
};
inline constexpr StoredCoordinate kCoordinates[] = {{L"Position:bottom", &Rect::bottom},
                                                    {L"Position:left", &Rect::left},
                                                    {L"Position:right", &Rect::right},
                                                    {L"Position:top", &Rect::top}};

}  // namespace zonhost
