#pragma once
// The rectangles of the control: their identifiers, bounds, order and selection, what was done to them, and who is
// told.
//
// Every operation first brings the model into its new state and then tells the listener, event by event in the order of
// the changes. The listener may call any operation again: events that still wait are told before the new ones.

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

#include "refhost/folium/Geometry.h"

namespace folium {

// The numbers are those of the control's events.
enum class EventKind : int32_t { Selected = 8, Changed = 9, Added = 10, Deleted = 11 };

struct Event {
    EventKind kind;
    int32_t id;
    bool operator==(const Event&) const = default;
};

struct Item {
    int32_t id;
    Rect rect;
    bool operator==(const Item&) const = default;
};

class RectModel {
public:
    using Listener = std::function<void(const Event&)>;
    explicit RectModel(Listener listener) : m_listener(std::move(listener)) {}

    // In the order of adding; a later one lies over an earlier one.
    const std::vector<Item>& Items() const { return m_items; }
    // Null for an unknown identifier.
    const Rect* Find(int32_t id) const;
    // The one selected last stands last.
    const std::vector<int32_t>& Selection() const { return m_selection; }
    // The one selected last, or 0.
    int32_t Primary() const { return m_selection.empty() ? 0 : m_selection.back(); }
    bool IsSelected(int32_t id) const;

    // The identifier, 1, 2, 3, ...; never used twice. 0 when there are none left.
    int32_t Insert(const Rect& rect, bool select);
    bool Delete(int32_t id) { return Delete(std::vector<int32_t>{id}); }
    // Unknown ones are left out; false when none was known.
    bool Delete(const std::vector<int32_t>& ids);
    // Tells RectChanged also when the bounds stay, so that who asked sees what is in force.
    bool Update(int32_t id, const Rect& rect);
    // One step of the history. `extend` adds to the step before when that one was made so as well, for a held key.
    void Move(const std::vector<Item>& items, bool extend);

    bool Select(int32_t id);
    void Toggle(int32_t id);
    void SelectAll();
    // Nobody is told: there is no event for it.
    void ClearSelection() { m_selection.clear(); }

    // Forgets what was done so far, and keeps a history from now on.
    void StartHistory();
    bool HasHistory() const { return m_recording; }
    bool Undo();
    bool Redo();

private:
    // Without `before` the rectangle came, without `after` it went.
    struct Change {
        int32_t id;
        size_t place;
        std::optional<Rect> before, after;
    };
    using Step = std::vector<Change>;

    size_t PlaceOf(int32_t id) const;
    void Record(Step step, bool mayGrow);
    bool Grow(const Step& step);
    void Apply(const Change& change, bool forward);
    void SelectAfter(const Step& step, bool forward);
    void SetSelection(std::vector<int32_t> selection);
    void Post(EventKind kind, int32_t id) { m_events.push_back({kind, id}); }
    void Tell();

    Listener m_listener;
    std::vector<Item> m_items;
    std::vector<int32_t> m_selection;
    int32_t m_lastId = 0;
    bool m_recording = false;
    bool m_lastStepMayGrow = false;
    std::deque<Step> m_done, m_undone;
    std::deque<Event> m_events;
};

}  // namespace folium
