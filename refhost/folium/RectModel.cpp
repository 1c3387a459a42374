#include "refhost/folium/RectModel.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace folium {

namespace {

constexpr size_t kLongestHistory = 1000;

}  // namespace

size_t RectModel::PlaceOf(int32_t id) const {
    const auto found = std::find_if(m_items.begin(), m_items.end(), [id](const Item& item) { return item.id == id; });
    return static_cast<size_t>(found - m_items.begin());
}

const Rect* RectModel::Find(int32_t id) const {
    const size_t place = PlaceOf(id);
    return place < m_items.size() ? &m_items[place].rect : nullptr;
}

bool RectModel::IsSelected(int32_t id) const {
    return std::find(m_selection.begin(), m_selection.end(), id) != m_selection.end();
}

int32_t RectModel::Insert(const Rect& rect, bool select) {
    if (m_lastId == std::numeric_limits<int32_t>::max()) return 0;
    const Change change = {++m_lastId, m_items.size(), std::nullopt, Normalized(rect)};
    // The listener may change the model: what follows the first event must not look at it again.
    const int32_t id = change.id;
    Apply(change, true);
    Record({change}, false);
    if (select) SetSelection({id});
    Tell();
    return id;
}

bool RectModel::Delete(const std::vector<int32_t>& ids) {
    Step step;
    for (const int32_t id : ids) {
        const size_t place = PlaceOf(id);
        if (place == m_items.size()) continue;
        step.push_back({id, place, m_items[place].rect, std::nullopt});
        Apply(step.back(), true);
    }
    if (step.empty()) return false;
    Record(std::move(step), false);
    Tell();
    return true;
}

bool RectModel::Update(int32_t id, const Rect& rect) {
    const Rect* before = Find(id);
    if (before == nullptr) return false;
    const Change change = {id, 0, *before, Normalized(rect)};
    Apply(change, true);
    if (change.before != change.after) Record({change}, false);
    Tell();
    return true;
}

void RectModel::Move(const std::vector<Item>& items, bool extend) {
    Step step;
    for (const Item& item : items) {
        const Rect* before = Find(item.id);
        if (before == nullptr || *before == Normalized(item.rect)) continue;
        step.push_back({item.id, 0, *before, Normalized(item.rect)});
        Apply(step.back(), true);
    }
    if (!step.empty() && !(extend && Grow(step))) Record(std::move(step), true);
    Tell();
}

bool RectModel::Grow(const Step& step) {
    if (!m_lastStepMayGrow || m_done.empty()) return false;
    Step& last = m_done.back();
    if (last.size() != step.size()) return false;
    for (size_t i = 0; i < step.size(); ++i) {
        if (last[i].id != step[i].id) return false;
    }
    for (size_t i = 0; i < step.size(); ++i) last[i].after = step[i].after;
    return true;
}

void RectModel::Record(Step step, bool mayGrow) {
    m_lastStepMayGrow = mayGrow;
    if (!m_recording) return;
    m_undone.clear();
    m_done.push_back(std::move(step));
    if (m_done.size() > kLongestHistory) m_done.pop_front();
}

void RectModel::Apply(const Change& change, bool forward) {
    const auto& from = forward ? change.before : change.after;
    const auto& to = forward ? change.after : change.before;
    if (!from && to) {
        const size_t place = std::min(change.place, m_items.size());
        m_items.insert(m_items.begin() + static_cast<ptrdiff_t>(place), {change.id, *to});
        Post(EventKind::Added, change.id);
        return;
    }
    const size_t place = PlaceOf(change.id);
    if (place == m_items.size()) return;
    if (to) {
        m_items[place].rect = *to;
        Post(EventKind::Changed, change.id);
        return;
    }
    m_items.erase(m_items.begin() + static_cast<ptrdiff_t>(place));
    std::erase(m_selection, change.id);
    Post(EventKind::Deleted, change.id);
}

void RectModel::StartHistory() {
    m_recording = true;
    m_lastStepMayGrow = false;
    m_done.clear();
    m_undone.clear();
}

bool RectModel::Undo() {
    if (m_done.empty()) return false;
    Step step = std::move(m_done.back());
    m_done.pop_back();
    std::for_each(step.rbegin(), step.rend(), [this](const Change& change) { Apply(change, false); });
    SelectAfter(step, false);
    m_undone.push_back(std::move(step));
    m_lastStepMayGrow = false;
    Tell();
    return true;
}

bool RectModel::Redo() {
    if (m_undone.empty()) return false;
    Step step = std::move(m_undone.back());
    m_undone.pop_back();
    for (const Change& change : step) Apply(change, true);
    SelectAfter(step, true);
    m_done.push_back(std::move(step));
    m_lastStepMayGrow = false;
    Tell();
    return true;
}

// Shows the user what came back or changed, unless it was selected anyway.
void RectModel::SelectAfter(const Step& step, bool forward) {
    const auto last = std::find_if(step.rbegin(), step.rend(), [forward](const Change& change) {
        return (forward ? change.after : change.before).has_value();
    });
    if (last != step.rend() && !IsSelected(last->id)) SetSelection({last->id});
}

void RectModel::SetSelection(std::vector<int32_t> selection) {
    const int32_t before = Primary();
    m_selection = std::move(selection);
    if (Primary() != 0 && Primary() != before) Post(EventKind::Selected, Primary());
}

bool RectModel::Select(int32_t id) {
    if (Find(id) == nullptr) return false;
    SetSelection({id});
    Tell();
    return true;
}

void RectModel::Toggle(int32_t id) {
    if (Find(id) == nullptr) return;
    std::vector<int32_t> selection = m_selection;
    if (std::erase(selection, id) == 0) selection.push_back(id);
    SetSelection(std::move(selection));
    Tell();
}

void RectModel::SelectAll() {
    std::vector<int32_t> selection;
    const int32_t primary = Primary();
    for (const Item& item : m_items) {
        if (item.id != primary) selection.push_back(item.id);
    }
    if (primary != 0) selection.push_back(primary);
    SetSelection(std::move(selection));
    Tell();
}

// Empties the queue front to back. A listener that calls back lands here again and goes on where this left off.
void RectModel::Tell() {
    while (!m_events.empty()) {
        const Event event = m_events.front();
        m_events.pop_front();
        // What an earlier listener removed in between is neither changed nor selected any more.
        const bool about = event.kind == EventKind::Changed || event.kind == EventKind::Selected;
        if (!about || Find(event.id) != nullptr) m_listener(event);
    }
}

}  // namespace folium
