#include "refhost/folium/Scene.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <unordered_map>

namespace folium {

namespace {

constexpr int kLeastContrast = 100;  // of 255

int Brightness(uint32_t color) {
    const uint32_t weighted = (color >> 16 & 0xff) * 299 + (color >> 8 & 0xff) * 587 + (color & 0xff) * 114;
    return static_cast<int>(weighted / 1000);
}

PixelRect PageBox(const Viewport& view) {
    const int x = view.OriginX();
    const int y = view.OriginY();
    return {x, y, x + view.PageWidth(), y + view.PageHeight()};
}

class ShapePainter {
public:
    ShapePainter(Surface& surface, const Scene& scene)
        : m_surface(surface), m_scene(scene), m_page(PageBox(scene.view)), m_line(std::max(scene.view.Scaled(1), 1)) {}

    void Paint(const Shape& shape) const {
        const SceneColors& colors = m_scene.colors;
        const bool marked = shape.selected || shape.draft;
        const uint32_t line = marked ? colors.selected : colors.area;
        const uint32_t second = SecondColor(line, colors.second);
        // A line has no room inside for a frame.
        PixelRect box = shape.box;
        box.right = std::max(box.right, box.left + 2 * m_line);
        box.bottom = std::max(box.bottom, box.top + 2 * m_line);

        Surface onPage = m_surface.Clipped(m_page);
        if (marked) {
            const PixelRect outer = Inflated(box, m_line);
            m_surface.Frame(outer, 4 * m_line, second);
            m_surface.Frame(box, 2 * m_line, line, DashOutside());
            onPage.Frame(box, 2 * m_line, line);
            if (shape.primary && m_scene.focus && !shape.draft) PaintFocus(box, line, second);
            if (m_scene.handles && shape.selected && !shape.draft) PaintHandles(shape, line, second);
        } else {
            m_surface.Frame(box, 2 * m_line, second);
            m_surface.Frame(box, m_line, line, DashOutside());
            onPage.Frame(box, m_line, line);
        }
    }

private:
    // What lies beside the page is drawn with broken lines.
    int DashOutside() const { return 4 * m_line; }

    void PaintFocus(const PixelRect& box, uint32_t line, uint32_t second) const {
        const PixelRect inner = Inflated(box, -5 * m_line);
        if (inner.right - inner.left < 4 * m_line || inner.bottom - inner.top < 4 * m_line) return;
        m_surface.Frame(inner, m_line, second);
        m_surface.Frame(inner, m_line, line, 2 * m_line);
    }

    void PaintHandles(const Shape& shape, uint32_t line, uint32_t second) const {
        const int half = HalfHandle(m_scene.view);
        const Box box = {static_cast<double>(shape.box.left), static_cast<double>(shape.box.top),
                         static_cast<double>(shape.box.right), static_cast<double>(shape.box.bottom)};
        for (int i = 0; i < kHandleCount; ++i) {
            const auto spot = HandleSpot(box, static_cast<Handle>(i), half);
            if (!spot) continue;
            const int x = static_cast<int>(spot->x);
            const int y = static_cast<int>(spot->y);
            const PixelRect square = {x - half, y - half, x + half + 1, y + half + 1};
            m_surface.Fill(square, second);
            // Those of the one selected last are filled.
            m_surface.Frame(Inflated(square, -m_line), shape.primary ? half : m_line, line);
        }
    }

    Surface& m_surface;
    const Scene& m_scene;
    PixelRect m_page;
    int m_line;
};

}  // namespace

int HalfHandle(const Viewport& view) {
    return std::max(view.Scaled(4), 2);
}

uint32_t SecondColor(uint32_t line, uint32_t wanted) {
    const int brightness = Brightness(line);
    if (std::abs(brightness - Brightness(wanted)) >= kLeastContrast) return wanted;
    return brightness >= 128 ? 0x000000 : 0xFFFFFF;
}

std::vector<Shape> CollectShapes(const RectModel& model, const RectEditor& editor, const Viewport& view) {
    std::vector<int32_t> selection = model.Selection();
    std::sort(selection.begin(), selection.end());
    std::unordered_map<int32_t, Rect> drafts;
    for (const Draft& draft : editor.Drafts()) drafts[draft.id] = draft.now;

    std::vector<Shape> shapes;
    shapes.reserve(model.Items().size() + drafts.size());
    for (const Item& item : model.Items()) {
        const bool selected = std::binary_search(selection.begin(), selection.end(), item.id);
        const auto draft = drafts.find(item.id);
        const bool dragged = draft != drafts.end();
        shapes.push_back({item.id, view.ToClient(dragged ? draft->second : item.rect), selected,
                          model.Primary() == item.id, dragged});
    }
    for (const Draft& draft : editor.Drafts()) {
        if (draft.id == 0) shapes.push_back({0, view.ToClient(draft.now), true, true, true});
    }
    std::stable_sort(shapes.begin(), shapes.end(), [](const Shape& a, const Shape& b) {
        return a.selected + 2 * a.primary < b.selected + 2 * b.primary;
    });
    return shapes;
}

std::vector<Shape> ChangedShapes(const std::vector<Shape>& before, const std::vector<Shape>& after) {
    const auto key = [](const Shape& s) {
        return std::tuple(s.id, s.box.left, s.box.top, s.box.right, s.box.bottom, s.selected, s.primary, s.draft);
    };
    const auto less = [&](const Shape& a, const Shape& b) { return key(a) < key(b); };
    const auto start = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const auto end = std::mismatch(before.rbegin(), std::make_reverse_iterator(start.first), after.rbegin(),
                                   std::make_reverse_iterator(start.second));
    std::vector<Shape> gone(start.first, end.first.base());
    std::vector<Shape> come(start.second, end.second.base());
    std::sort(gone.begin(), gone.end(), less);
    std::sort(come.begin(), come.end(), less);
    std::vector<Shape> changed;
    std::set_symmetric_difference(gone.begin(), gone.end(), come.begin(), come.end(), std::back_inserter(changed),
                                  less);
    return changed;
}

PixelRect ShapeExtent(const Shape& shape, const Viewport& view) {
    // Handles of narrow ones stand outside.
    return Inflated(shape.box, 2 * HalfHandle(view) + view.Scaled(2) + 2);
}

void PaintScene(Surface& surface, const Scene& scene) {
    surface.Fill(surface.Clip(), scene.colors.background);
    if (scene.view.HasPage()) {
        const PixelRect page = PageBox(scene.view);
        surface.Frame(Inflated(page, 1), 1, scene.colors.border);
        if (scene.tiles.HasSource()) {
            scene.tiles.Draw(surface, page.left, page.top);
        } else {
            surface.Fill(page, scene.colors.paper);
        }
    }
    const ShapePainter painter(surface, scene);
    for (const Shape& shape : scene.shapes) {
        if (!Intersection(ShapeExtent(shape, scene.view), surface.Clip()).Empty()) painter.Paint(shape);
    }
}

}  // namespace folium
