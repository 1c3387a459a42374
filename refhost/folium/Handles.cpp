#include "refhost/folium/Handles.h"

#include <cmath>

namespace folium {

namespace {

Box BoxOf(const Rect& rect) {
    return {static_cast<double>(rect.left), static_cast<double>(rect.top), static_cast<double>(rect.right),
            static_cast<double>(rect.bottom)};
}

std::optional<double> HandlePlace(double low, double high, int edge, double half) {
    const bool narrow = high - low < 6 * half;
    if (edge == 0) return narrow ? std::nullopt : std::optional((low + high) / 2);
    const double place = edge < 0 ? low : high;
    return narrow ? place + edge * half : place;
}

Handle HandleUnder(const Rect& rect, Point position, double half) {
    for (int i = 0; i < kHandleCount; ++i) {
        const auto spot = HandleSpot(BoxOf(rect), static_cast<Handle>(i), half);
        if (spot && std::abs(spot->x - position.x) <= half && std::abs(spot->y - position.y) <= half) {
            return static_cast<Handle>(i);
        }
    }
    return Handle::None;
}

}  // namespace

int HorizontalEdge(Handle handle) {
    switch (handle) {
        case Handle::TopLeft:
        case Handle::Left:
        case Handle::BottomLeft:
            return -1;
        case Handle::TopRight:
        case Handle::Right:
        case Handle::BottomRight:
            return 1;
        default:
            return 0;
    }
}

int VerticalEdge(Handle handle) {
    switch (handle) {
        case Handle::TopLeft:
        case Handle::Top:
        case Handle::TopRight:
            return -1;
        case Handle::BottomLeft:
        case Handle::Bottom:
        case Handle::BottomRight:
            return 1;
        default:
            return 0;
    }
}

std::optional<Spot> HandleSpot(const Box& box, Handle handle, double half) {
    const auto x = HandlePlace(box.left, box.right, HorizontalEdge(handle), half);
    const auto y = HandlePlace(box.top, box.bottom, VerticalEdge(handle), half);
    if (!x || !y) return std::nullopt;
    return Spot{*x, *y};
}

Hit HitTest(const RectModel& model, Point position, double half, double slack) {
    const auto& selection = model.Selection();
    for (auto id = selection.rbegin(); id != selection.rend(); ++id) {
        const Rect* rect = model.Find(*id);
        const Handle handle = rect == nullptr ? Handle::None : HandleUnder(*rect, position, half);
        if (handle != Handle::None) return {*id, handle};
    }
    Hit hit;
    double smallest = 0;
    for (const Item& item : model.Items()) {
        const Box box = BoxOf(item.rect);
        if (position.x < box.left - slack || position.x > box.right + slack || position.y < box.top - slack ||
            position.y > box.bottom + slack) {
            continue;
        }
        const double area = (box.right - box.left) * (box.bottom - box.top);
        if (hit.id != 0 && area > smallest) continue;
        smallest = area;
        hit.id = item.id;
    }
    return hit;
}

}  // namespace folium
