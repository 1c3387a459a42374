#pragma once
// Edges that a dragged edge is drawn to: those of the page and of the other rectangles.

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "refhost/folium/RectModel.h"

namespace folium {

struct SnapLines {
    std::vector<int32_t> x, y;
};

// Without the rectangles that are dragged themselves.
SnapLines CollectSnapLines(const std::vector<Item>& items, const std::vector<int32_t>& dragged, Size page);

// How far to shift so that one of the edges lies on the nearest line within reach; 0 when none does.
int64_t SnapShift(const std::vector<int32_t>& lines, std::initializer_list<int64_t> edges, double reach);

}  // namespace folium
