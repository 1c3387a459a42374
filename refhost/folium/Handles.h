#pragma once
// Where the eight handles of a rectangle are, and what lies under a position. The same rules for painting, in pixels,
// and for the pointer, in page units: `half` is half a handle's side in the unit of the box.

#include <optional>

#include "refhost/folium/RectModel.h"

namespace folium {

enum class Handle : int { None = -1, TopLeft, Top, TopRight, Right, BottomRight, Bottom, BottomLeft, Left };
inline constexpr int kHandleCount = 8;

// -1: it moves the left or top edge; 1: the right or bottom edge; 0: neither.
int HorizontalEdge(Handle handle);
int VerticalEdge(Handle handle);

struct Box {
    double left, top, right, bottom;
};

struct Spot {
    double x, y;
};

// The centre of a handle. A rectangle too small for three handles in a row has none in the middle of that side, and
// those at its corners stand outside of it, so that its inside can still be taken hold of.
std::optional<Spot> HandleSpot(const Box& box, Handle handle, double half);

struct Hit {
    int32_t id = 0;
    Handle handle = Handle::None;
};

// Handles of selected rectangles first, the last selected one's before all; then the smallest rectangle around the
// position, of equal ones the uppermost. `slack` widens rectangles, so that also a line can be hit.
Hit HitTest(const RectModel& model, Point position, double half, double slack);

}  // namespace folium
