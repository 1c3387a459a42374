#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>

#include "refhost/folium/Scene.h"

namespace folium {
namespace {

constexpr int kSide = 300;

// A window with a page of one colour at one pixel for each unit, and what is painted there.
class Canvas {
public:
    explicit Canvas(uint32_t paper) : m_row(300 * 3), m_pixels(kSide * kSide) {
        for (size_t i = 0; i < m_row.size(); ++i) m_row[i] = static_cast<uint8_t>(paper >> i % 3 * 8);
        view.SetPage({254, 254});
        view.SetWindow(kSide, kSide, 17, 17);
        view.SetDpi(254);
        view.SetZoom(ZoomMode::Percent, 100);
        tiles.SetSource(PageSource{300, 300, 24, nullptr, m_row.data(), 0});
        editor.SetPage(view.Page());
        editor.SetMode(true, true);
    }
    void Paint(bool focus = false, bool handles = true) {
        tiles.SetView(view.PageWidth(), view.PageHeight(), true);
        const std::vector<Shape> shapes = CollectShapes(model, editor, view);
        Surface surface(m_pixels.data(), kSide, kSide);
        PaintScene(surface, {view, tiles, shapes, colors, handles, focus});
    }
    uint32_t At(int x, int y) const { return m_pixels[static_cast<size_t>(y * kSide + x)]; }
    std::set<uint32_t> Along(PixelRect rect) const {
        std::set<uint32_t> found;
        for (int y = rect.top; y < rect.bottom; ++y) {
            for (int x = rect.left; x < rect.right; ++x) found.insert(At(x, y));
        }
        return found;
    }
    const std::vector<uint32_t>& Pixels() const { return m_pixels; }
    const uint8_t* Row() const { return m_row.data(); }

    Viewport view;
    PageTiles tiles;
    RectModel model{[](const Event&) {}};
    RectEditor editor{model};
    SceneColors colors;

private:
    std::vector<uint8_t> m_row;
    std::vector<uint32_t> m_pixels;
};

int Difference(uint32_t a, uint32_t b) {
    int most = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        most = std::max(most, std::abs(static_cast<int>(a >> shift & 0xff) - static_cast<int>(b >> shift & 0xff)));
    }
    return most;
}

// Also where all colours are the paper's.
TEST(Scene, AreasAreSeenOnAnyPaperInAnyColors) {
    const uint32_t colors[] = {0xffffff, 0x000000, 0x808080, 0xffff00, 0x0000ff, 0xf8f0d0};
    for (const uint32_t paper : colors) {
        for (const uint32_t line : colors) {
            for (const uint32_t second : colors) {
                for (const bool selected : {false, true}) {
                    Canvas canvas(paper);
                    canvas.colors.area = canvas.colors.selected = line;
                    canvas.colors.second = second;
                    canvas.model.Insert({50, 50, 200, 150}, selected);
                    canvas.Paint();
                    const PixelRect box = canvas.view.ToClient(Rect{50, 50, 200, 150});
                    int most = 0;
                    for (const uint32_t seen : canvas.Along({box.left + 60, box.top, box.left + 61, box.top + 8})) {
                        most = std::max(most, Difference(seen, paper));
                    }
                    EXPECT_GE(most, 45) << std::hex << paper << ' ' << line << ' ' << second << ' ' << selected;
                }
            }
        }
    }
}

TEST(Scene, SelectedIsToldApartWithoutColor) {
    Canvas plain(0xffffff), selected(0xffffff), several(0xffffff);
    for (Canvas* canvas : {&plain, &selected, &several}) {
        canvas->colors.area = canvas->colors.selected = 0xff0000;
        canvas->model.Insert({50, 50, 200, 150}, false);
        canvas->model.Insert({60, 180, 120, 220}, false);
    }
    selected.model.Select(1);
    several.model.SelectAll();
    plain.Paint();
    selected.Paint();
    several.Paint();
    EXPECT_NE(plain.Pixels(), selected.Pixels());
    const PixelRect box = plain.view.ToClient(Rect{50, 50, 200, 150});
    const PixelRect handle = {box.right - 2, box.bottom + 2, box.right + 3, box.bottom + 5};
    EXPECT_EQ(plain.Along(handle), (std::set<uint32_t>{0xffffff}));
    EXPECT_NE(selected.Along(handle).count(0xff0000), 0u);
    // Which of several was selected last is seen at the handles' middle.
    EXPECT_EQ(several.At(box.right, box.bottom), SecondColor(0xff0000, 0x000000));
    EXPECT_EQ(selected.At(box.right, box.bottom), 0xff0000u);
    selected.Paint(false, false);
    EXPECT_EQ(selected.Along(handle).count(0xff0000), 0u) << "where nothing can be sized";
}

TEST(Scene, WhatLiesBesideThePageIsBroken) {
    Canvas canvas(0xffffff);
    canvas.view.SetPage({100, 100});
    canvas.colors.area = 0xff0000;
    canvas.model.Insert({20, 20, 200, 60}, false);
    canvas.Paint();
    const PixelRect box = canvas.view.ToClient(Rect{20, 20, 200, 60});
    const int edge = canvas.view.ToClientX(100);
    EXPECT_EQ(canvas.Along({box.left, box.top, edge, box.top + 1}), (std::set<uint32_t>{0xff0000}));
    EXPECT_EQ(canvas.Along({edge + 1, box.top, box.right, box.top + 1}),
              (std::set<uint32_t>{0xff0000, SecondColor(0xff0000, 0x000000)}));
}

// Painting part of the window must give what painting all of it gives, or dragging leaves traces.
TEST(Scene, PartsAreLikeTheWhole) {
    Canvas canvas(0xf0f0f0);
    canvas.model.Insert({-50, 20, 400, 60}, false);
    canvas.model.Insert({50, 50, 58, 150}, true);
    canvas.model.Insert({70, 70, 70, 70}, false);
    canvas.model.Insert({20, 200, 150, 200}, false);
    canvas.model.Insert({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, false);
    canvas.Paint();
    std::vector<uint32_t> pixels(kSide * kSide);
    Surface surface(pixels.data(), kSide, kSide);
    const std::vector<Shape> shapes = CollectShapes(canvas.model, canvas.editor, canvas.view);
    for (int y = 0; y < kSide; y += 37) {
        for (int x = 0; x < kSide; x += 41) {
            Surface part = surface.Clipped({x, y, x + 41, y + 37});
            PaintScene(part, {canvas.view, canvas.tiles, shapes, canvas.colors, true, false});
        }
    }
    EXPECT_EQ(pixels, canvas.Pixels());
}

TEST(Scene, FocusIsSeenInsideTheSelectedOneWhereThereIsRoom) {
    for (const auto& [rect, seen] : {std::pair{Rect{50, 50, 200, 150}, true}, std::pair{Rect{50, 50, 58, 150}, false},
                                     std::pair{Rect{50, 50, 200, 58}, false}}) {
        Canvas without(0xffffff), with(0xffffff);
        for (Canvas* canvas : {&without, &with}) {
            canvas->model.Insert({60, 180, 120, 220}, false);
            canvas->model.Insert(rect, true);
            canvas->Paint(canvas == &with);
        }
        EXPECT_EQ(without.Pixels() != with.Pixels(), seen);
        const PixelRect box = with.view.ToClient(rect);
        for (int x = 0; x < kSide; ++x) {
            if (x < box.left || x >= box.right) {
                ASSERT_EQ(with.At(x, box.top + 20), without.At(x, box.top + 20)) << x;
            }
        }
    }
}

TEST(Scene, WhatIsDraggedOrMadeIsShownThere) {
    Canvas canvas(0xffffff);
    canvas.colors.selected = 0xff0000;
    canvas.model.Insert({50, 50, 200, 150}, true);
    const Reach reach = {10, 5, 8, 0};
    canvas.editor.Press({100, 100}, {}, reach);
    canvas.editor.Drag({120, 130}, {});
    auto shapes = CollectShapes(canvas.model, canvas.editor, canvas.view);
    ASSERT_EQ(shapes.size(), 1u);
    EXPECT_EQ(shapes[0], (Shape{1, canvas.view.ToClient(Rect{70, 80, 220, 180}), true, true, true}));
    canvas.Paint(true);
    const PixelRect box = shapes[0].box;
    EXPECT_EQ(canvas.At(box.right + 3, box.bottom + 3), 0xffffffu) << "no handles while it moves";
    canvas.model.ClearSelection();
    canvas.Paint(true);
    EXPECT_EQ(canvas.At(box.right - 1, box.bottom - 20), 0xff0000u) << "marked for as long as it is dragged";
    canvas.editor.Cancel();
    canvas.editor.Press({10, 200}, {}, reach);
    canvas.editor.Drag({40, 240}, {});
    shapes = CollectShapes(canvas.model, canvas.editor, canvas.view);
    ASSERT_EQ(shapes.size(), 2u);
    EXPECT_EQ(shapes[1], (Shape{0, canvas.view.ToClient(Rect{10, 200, 40, 240}), true, true, true})) << "above all";
}

TEST(Scene, WithoutAnImageThereIsPaperAndWithoutAPageNothing) {
    Canvas canvas(0x123456);
    canvas.colors.paper = 0xabcdef;
    canvas.colors.background = 0x654321;
    canvas.tiles.SetSource(PageSource{300, 300, 16, nullptr, canvas.Row(), 0});
    canvas.Paint();
    EXPECT_EQ(canvas.At(kSide / 2, kSide / 2), 0xabcdefu) << "no bitmap of this kind can be shown";
    canvas.view.SetPage({254, 0});
    canvas.Paint();
    EXPECT_EQ(canvas.Along({0, 0, kSide, kSide}), (std::set<uint32_t>{0x654321}));
}

TEST(Scene, ExtentHoldsAllThatAShapeDraws) {
    for (const Rect& rect :
         {Rect{80, 80, 160, 150}, Rect{80, 80, 84, 84}, Rect{90, 90, 90, 90}, Rect{80, 80, 95, 200}}) {
        Canvas empty(0xffffff), canvas(0xffffff);
        empty.Paint();
        canvas.model.Insert(rect, true);
        canvas.Paint();
        const PixelRect extent =
            ShapeExtent(CollectShapes(canvas.model, canvas.editor, canvas.view).front(), canvas.view);
        for (int y = 0; y < kSide; ++y) {
            for (int x = 0; x < kSide; ++x) {
                const bool inside = x >= extent.left && x < extent.right && y >= extent.top && y < extent.bottom;
                ASSERT_TRUE(inside || canvas.At(x, y) == empty.At(x, y)) << x << ',' << y;
            }
        }
    }
}

TEST(Scene, ChangesAreWhatOneListHasAlone) {
    std::vector<Shape> before;
    for (int id = 1; id <= 20; ++id) before.push_back({id, {id, 0, id + 5, 5}, false, false, false});
    const auto expectChanged = [&](std::vector<Shape> after, std::multiset<int> ids) {
        std::multiset<int> found, back;
        for (const Shape& shape : ChangedShapes(before, after)) found.insert(shape.id);
        for (const Shape& shape : ChangedShapes(after, before)) back.insert(shape.id);
        EXPECT_EQ(found, ids);
        EXPECT_EQ(back, ids);
    };
    expectChanged(before, {});
    auto after = before;
    after[4].box.right += 1;
    after[17].selected = true;
    expectChanged(after, {5, 5, 18, 18});
    std::rotate(after.begin() + 2, after.begin() + 3, after.end());
    expectChanged(after, {5, 5, 18, 18});  // another order looks the same
    after = before;
    after.erase(after.begin() + 7);
    after.insert(after.begin() + 3, {21, {9, 9, 12, 12}, true, true, false});
    expectChanged(after, {8, 21});
    after.clear();
    expectChanged(after, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20});
}

}  // namespace
}  // namespace folium
