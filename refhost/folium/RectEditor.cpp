#include "refhost/folium/RectEditor.h"

#include <algorithm>
#include <cstdlib>

namespace folium {

int64_t KeepOnPage(int64_t shift, int64_t low, int64_t high, int64_t page) {
    return std::clamp(shift, std::min<int64_t>(0, -low), std::max<int64_t>(0, page - high));
}

void RectEditor::SetPage(Size page) {
    Cancel();
    m_page = page;
}

void RectEditor::SetMode(bool edit, bool several) {
    Cancel();
    m_edit = edit;
    m_several = several;
    if (!several && m_model.Selection().size() > 1) m_model.Select(m_model.Primary());
}

void RectEditor::Press(Point position, Modifiers modifiers, const Reach& reach) {
    Cancel();
    const Hit hit = HitTest(m_model, position, CanEdit() ? reach.handle : -1, reach.slack);
    m_start = position;
    m_reach = reach;
    m_handle = hit.handle;
    m_pressedId = hit.id;
    m_armed = Action::None;
    m_action = Action::Click;
    if (hit.handle != Handle::None) {
        m_armed = Action::Size;
    } else if (hit.id == 0 || (modifiers.control && CanEdit())) {
        m_pressedId = 0;
        m_armed = Action::Create;
    } else {
        PressInside(hit.id, modifiers.shift && m_several);
    }
    // The listener may have ended it.
    if (m_action != Action::Click) return;
    m_action = CanEdit() ? Action::Arm : Action::Click;
}

void RectEditor::PressInside(int32_t id, bool shift) {
    if (shift) {
        m_action = Action::None;
        m_model.Toggle(id);
        return;
    }
    m_armed = Action::Move;
    if (!m_model.IsSelected(id)) m_model.Select(id);
}

void RectEditor::Drag(Point position, Modifiers modifiers) {
    if (m_action == Action::Arm) {
        const int64_t way =
            std::max(std::abs(int64_t{position.x} - m_start.x), std::abs(int64_t{position.y} - m_start.y));
        if (static_cast<double>(way) < m_reach.click) return;
        Begin();
    }
    if (m_action == Action::Create) DragCreate(position, !modifiers.alt);
    if (m_action == Action::Move) DragMove(position, !modifiers.alt);
    if (m_action == Action::Size) DragSize(position, !modifiers.alt);
}

void RectEditor::Begin() {
    std::vector<int32_t> dragged;
    if (m_armed == Action::Move) dragged = m_model.Selection();
    if (m_armed == Action::Size) dragged = {m_pressedId};
    m_drafts.clear();
    for (const int32_t id : dragged) {
        if (const Rect* rect = m_model.Find(id)) m_drafts.push_back({id, *rect, *rect});
    }
    m_action = m_armed;
    if (m_armed != Action::Create && m_drafts.empty()) m_action = Action::None;
    m_lines = CollectSnapLines(m_model.Items(), dragged, m_page);
}

void RectEditor::DragCreate(Point position, bool snap) {
    const auto place = [&](int32_t at, const std::vector<int32_t>& lines, int32_t page) {
        const int64_t shift = snap ? SnapShift(lines, {at}, m_reach.snap) : 0;
        return static_cast<int32_t>(std::clamp<int64_t>(at + shift, 0, page));
    };
    Rect rect = Normalized({place(m_start.x, m_lines.x, m_page.width), place(m_start.y, m_lines.y, m_page.height),
                            place(position.x, m_lines.x, m_page.width), place(position.y, m_lines.y, m_page.height)});
    const Rect way = Normalized({m_start.x, m_start.y, position.x, position.y});
    m_drafts.clear();
    // Wholly beside the page there is nothing to draw on.
    if (way.right < 0 || way.bottom < 0 || way.left > m_page.width || way.top > m_page.height) return;
    const auto widen = [](int32_t& low, int32_t& high, int32_t page) {
        if (high - low >= kShortestSide) return;
        high = std::min(low + kShortestSide, page);
        low = std::max(high - kShortestSide, 0);
    };
    widen(rect.left, rect.right, m_page.width);
    widen(rect.top, rect.bottom, m_page.height);
    m_drafts.push_back({0, rect, rect});
}

void RectEditor::DragMove(Point position, bool snap) {
    int64_t dx = int64_t{position.x} - m_start.x;
    int64_t dy = int64_t{position.y} - m_start.y;
    Rect all = m_drafts.front().before;
    for (const Draft& draft : m_drafts) all = Union(all, draft.before);
    if (snap) {
        dx += SnapShift(m_lines.x, {all.left + dx, all.right + dx}, m_reach.snap);
        dy += SnapShift(m_lines.y, {all.top + dy, all.bottom + dy}, m_reach.snap);
    }
    dx = KeepOnPage(dx, all.left, all.right, m_page.width);
    dy = KeepOnPage(dy, all.top, all.bottom, m_page.height);
    for (Draft& draft : m_drafts) draft.now = Shifted(draft.before, dx, dy);
}

namespace {

// Shifts one edge of a side; `edge` is -1 for the low one, 1 for the high one.
void ShiftEdge(int32_t& low, int32_t& high, int edge, int64_t shift, int32_t page) {
    if (edge == 0) return;
    int32_t& moved = edge < 0 ? low : high;
    shift = KeepOnPage(shift, moved, moved, page);
    // A side that is shorter already may stay so.
    const int64_t shortest = std::min<int64_t>(RectEditor::kShortestSide, int64_t{high} - low);
    if (edge < 0) {
        low = Saturate(std::min(low + shift, high - shortest));
    } else {
        high = Saturate(std::max(high + shift, low + shortest));
    }
}

}  // namespace

void RectEditor::DragSize(Point position, bool snap) {
    Draft& draft = m_drafts.front();
    draft.now = draft.before;
    const auto shift = [&](int edge, int32_t low, int32_t high, int64_t way, const std::vector<int32_t>& lines) {
        if (edge == 0 || !snap) return way;
        return way + SnapShift(lines, {(edge < 0 ? low : high) + way}, m_reach.snap);
    };
    const int x = HorizontalEdge(m_handle);
    const int y = VerticalEdge(m_handle);
    const int64_t dx = shift(x, draft.before.left, draft.before.right, int64_t{position.x} - m_start.x, m_lines.x);
    const int64_t dy = shift(y, draft.before.top, draft.before.bottom, int64_t{position.y} - m_start.y, m_lines.y);
    ShiftEdge(draft.now.left, draft.now.right, x, dx, m_page.width);
    ShiftEdge(draft.now.top, draft.now.bottom, y, dy, m_page.height);
}

void RectEditor::Release() {
    const Action action = m_action;
    const std::vector<Draft> drafts = std::move(m_drafts);
    m_drafts.clear();
    if (action == Action::MakeByKeys) return;
    m_action = Action::None;
    if (action == Action::Click || action == Action::Arm) {
        ClickDone();
    } else if (action == Action::Create) {
        if (!drafts.empty()) m_model.Insert(drafts.front().now, true);
    } else if (action == Action::Move || action == Action::Size) {
        std::vector<Item> items;
        for (const Draft& draft : drafts) items.push_back({draft.id, draft.now});
        m_model.Move(items, false);
    }
}

void RectEditor::ClickDone() {
    if (m_handle != Handle::None) return;
    if (m_pressedId == 0) {
        m_model.ClearSelection();
    } else if (m_model.Selection().size() > 1) {
        m_model.Select(m_pressedId);
    }
}

bool RectEditor::Cancel() {
    const bool busy = Busy();
    m_action = Action::None;
    m_drafts.clear();
    return busy;
}

void RectEditor::Forget(int32_t id) {
    const bool concerned = std::any_of(m_drafts.begin(), m_drafts.end(), [id](const Draft& d) { return d.id == id; });
    if (id == 0 || concerned) Cancel();
}

}  // namespace folium
