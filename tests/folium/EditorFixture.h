#pragma once
// A model and an editor on an A4 page, and everything that was told, as text.

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "refhost/folium/RectEditor.h"

namespace folium {

class EditorFixture : public testing::Test {
protected:
    EditorFixture() {
        editor.SetPage({2100, 2970});
        editor.SetMode(true, false);
    }

    int32_t Add(const Rect& rect) {
        const int32_t id = model.Insert(rect, false);
        told.clear();
        return id;
    }
    void DragFromTo(Point from, Point to, Modifiers modifiers = {}) {
        editor.Press(from, modifiers, reach);
        editor.Drag(to, modifiers);
        editor.Release();
    }
    std::string Told() { return std::exchange(told, {}); }
    Rect At(int32_t id) const { return model.Find(id) == nullptr ? Rect{-1, -1, -1, -1} : *model.Find(id); }

    std::string told;
    RectModel model{[this](const Event& event) {
        const char* names[] = {"selected", "changed", "added", "deleted"};
        told +=
            std::string(told.empty() ? "" : " ") + names[static_cast<int>(event.kind) - 8] + std::to_string(event.id);
        if (onEvent) onEvent(event);
    }};
    std::function<void(const Event&)> onEvent;
    RectEditor editor{model};
    Reach reach = {10, 5, 8, 15};
};

}  // namespace folium
