// The keyboard's half of the editor.
#include <algorithm>

#include "refhost/folium/RectEditor.h"

namespace folium {

namespace {

Rect NudgedEdges(Rect rect, int32_t dx, int32_t dy, Size page) {
    const auto shift = [](int32_t low, int32_t high, int32_t by, int32_t limit) {
        const int64_t shortest = std::min<int64_t>(RectEditor::kShortestSide, int64_t{high} - low);
        return Saturate(std::max(high + KeepOnPage(by, high, high, limit), low + shortest));
    };
    rect.right = shift(rect.left, rect.right, dx, page.width);
    rect.bottom = shift(rect.top, rect.bottom, dy, page.height);
    return rect;
}

Rect NudgedWhole(const Rect& rect, int32_t dx, int32_t dy, Size page) {
    return Shifted(rect, KeepOnPage(dx, rect.left, rect.right, page.width),
                   KeepOnPage(dy, rect.top, rect.bottom, page.height));
}

}  // namespace

int32_t RectEditor::WalkTarget(bool back) const {
    const auto& items = m_model.Items();
    if (Busy() || items.empty()) return 0;
    const int32_t from = m_model.Primary();
    if (from == 0) {
        // A step back from the place of a deleted one, but from nowhere to the last one.
        if (m_walkFrom == 0 || m_walkFrom > items.size()) return back ? items.back().id : items.front().id;
        if (back) return items[m_walkFrom - 1].id;
        return m_walkFrom < items.size() ? items[m_walkFrom].id : 0;
    }
    for (size_t i = 0; i < items.size(); ++i) {
        if (items[i].id != from) continue;
        if (back) return i == 0 ? 0 : items[i - 1].id;
        return i + 1 == items.size() ? 0 : items[i + 1].id;
    }
    return 0;
}

bool RectEditor::Walk(bool back) {
    const int32_t target = WalkTarget(back);
    m_walkFrom = 0;
    return target != 0 && m_model.Select(target);
}

void RectEditor::Nudge(int32_t dx, int32_t dy, bool size, bool held) {
    if (!CanEdit()) return;
    if (m_action == Action::MakeByKeys) {
        Rect& now = m_drafts.front().now;
        now = size ? NudgedEdges(now, dx, dy, m_page) : NudgedWhole(now, dx, dy, m_page);
        return;
    }
    if (Busy()) return;
    std::vector<Item> items;
    for (const int32_t id : m_model.Selection()) {
        if (const Rect* rect = m_model.Find(id)) items.push_back({id, *rect});
    }
    if (items.empty()) return;
    // Several stay as they are to each other, also at the page's edge.
    Rect all = items.front().rect;
    for (const Item& item : items) all = Union(all, item.rect);
    const Rect moved = NudgedWhole(all, dx, dy, m_page);
    for (Item& item : items) {
        item.rect = size ? NudgedEdges(item.rect, dx, dy, m_page)
                         : Shifted(item.rect, int64_t{moved.left} - all.left, int64_t{moved.top} - all.top);
    }
    m_model.Move(items, held);
}

void RectEditor::StartOrEndNew(const Rect& seen) {
    if (!CanEdit()) return;
    if (m_action == Action::MakeByKeys) {
        const Rect rect = m_drafts.front().now;
        Cancel();
        m_model.Insert(rect, true);
        return;
    }
    if (Busy()) return;
    const auto middle = [](int32_t low, int32_t high, int32_t page, int32_t& from, int32_t& to) {
        low = std::clamp(low, 0, page);
        high = std::clamp(high, low, page);
        const int32_t side = std::min(std::max((high - low) / 4, kShortestSide), page);
        from = std::clamp(low + (high - low - side) / 2, 0, page - side);
        to = from + side;
    };
    Rect rect;
    middle(seen.left, seen.right, m_page.width, rect.left, rect.right);
    middle(seen.top, seen.bottom, m_page.height, rect.top, rect.bottom);
    m_action = Action::MakeByKeys;
    m_drafts = {{0, rect, rect}};
}

void RectEditor::DeleteSelected() {
    if (!m_edit || Cancel()) return;
    const auto& items = m_model.Items();
    m_walkFrom = 0;
    for (size_t i = 0; i < items.size(); ++i) {
        if (items[i].id == m_model.Primary()) m_walkFrom = i;
    }
    m_model.Delete(std::vector<int32_t>(m_model.Selection()));
}

void RectEditor::SelectAll() {
    if (!m_several || Busy()) return;
    m_model.SelectAll();
}

}  // namespace folium
