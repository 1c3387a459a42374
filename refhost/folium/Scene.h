#pragma once
// What the window shows: background, page, and the rectangles over it. Only texts are left to the window.

#include <cstdint>
#include <vector>

#include "refhost/folium/PageTiles.h"
#include "refhost/folium/RectEditor.h"
#include "refhost/folium/Surface.h"
#include "refhost/folium/Viewport.h"

namespace folium {

// 0x00RRGGBB throughout.
struct SceneColors {
    uint32_t background = 0xE0E0E0;
    uint32_t paper = 0xFFFFFF;  // a page without pixels
    uint32_t border = 0x808080;
    uint32_t area = 0xFFFFFF;      // the line of a rectangle
    uint32_t selected = 0xFFFFFF;  // the line of a selected one
    uint32_t second = 0x000000;    // the line beside it
};

// A rectangle on the screen.
struct Shape {
    int32_t id;
    PixelRect box;
    bool selected;
    bool primary;  // the one selected last
    bool draft;    // while it is dragged or made
    bool operator==(const Shape&) const = default;
};

// In painting order: selected ones and drafts over the others.
std::vector<Shape> CollectShapes(const RectModel& model, const RectEditor& editor, const Viewport& view);
// What stands in one list alone: all that looks different. Quick when the lists are alike at their ends, as they are
// unless many shapes changed.
std::vector<Shape> ChangedShapes(const std::vector<Shape>& before, const std::vector<Shape>& after);
// Everything that the shape draws lies in it.
PixelRect ShapeExtent(const Shape& shape, const Viewport& view);
// Half the side of a handle, in pixels.
int HalfHandle(const Viewport& view);

// The colour beside a line: the wanted one, or black or white where that is too close to the line's own. One of the two
// then stands out from paper of any colour.
uint32_t SecondColor(uint32_t line, uint32_t wanted);

struct Scene {
    const Viewport& view;
    PageTiles& tiles;
    const std::vector<Shape>& shapes;
    const SceneColors& colors;
    bool handles;  // rectangles can be sized
    bool focus;
};
// Fills all of the surface's clip.
void PaintScene(Surface& surface, const Scene& scene);

}  // namespace folium
