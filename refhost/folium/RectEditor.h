#pragma once
// What the operator does to the rectangles with pointer and keys. While a drag or a new rectangle made by keys is under
// way, the model keeps the rectangles as they were; the end of it is one change, and taking it back is none.

#include <cstdint>
#include <vector>

#include "refhost/folium/Handles.h"
#include "refhost/folium/RectModel.h"
#include "refhost/folium/Snap.h"

namespace folium {

struct Modifiers {
    bool shift = false;
    bool control = false;
    bool alt = false;
};

// Distances on the screen, in page units at the zoom in force.
struct Reach {
    double handle = 0;  // half a handle's side
    double slack = 0;   // how far beside a rectangle a click still takes it
    double click = 0;   // a shorter way than this is a click, not a drag
    double snap = 0;
};

// A rectangle while it is dragged or made; 0 stands for a new one.
struct Draft {
    int32_t id;
    Rect before;
    Rect now;
};

class RectEditor {
public:
    // No side shorter than a millimetre comes out of a drag or of sizing by keys.
    static constexpr int32_t kShortestSide = 10;

    explicit RectEditor(RectModel& model) : m_model(model) {}

    void SetPage(Size page);
    void SetMode(bool edit, bool several);
    bool CanEdit() const { return m_edit && m_page.width > 0 && m_page.height > 0; }

    void Press(Point position, Modifiers modifiers, const Reach& reach);
    void Drag(Point position, Modifiers modifiers);
    void Release();
    // Takes back what is under way; false when there is nothing.
    bool Cancel();

    // Something is being dragged or made.
    bool Busy() const { return m_action >= Action::Create; }
    // The pointer's button is down on a rectangle or on the page.
    bool Pressed() const { return m_action != Action::None && m_action != Action::MakeByKeys; }
    bool MakingByKeys() const { return m_action == Action::MakeByKeys; }
    const std::vector<Draft>& Drafts() const { return m_drafts; }

    // To the next or previous rectangle; false when there is none that way.
    bool CanWalk(bool back) const { return WalkTarget(back) != 0; }
    bool Walk(bool back);
    // Moves what is selected, or its right and lower edge. A held key makes one step of the history.
    void Nudge(int32_t dx, int32_t dy, bool size, bool held);
    // Begins a rectangle in the middle of what is seen, or ends it.
    void StartOrEndNew(const Rect& seen);
    void DeleteSelected();
    void SelectAll();
    // What is under way is what Undo takes back first.
    bool Undo() { return Cancel() || (m_edit && m_model.Undo()); }
    bool Redo() { return !Cancel() && m_edit && m_model.Redo(); }
    // A program changed or removed this rectangle, or all when 0: a drag of it is over.
    void Forget(int32_t id);

private:
    enum class Action { None, Click, Arm, Create, Move, Size, MakeByKeys };

    int32_t WalkTarget(bool back) const;
    void PressInside(int32_t id, bool shift);
    void Begin();
    void DragCreate(Point position, bool snap);
    void DragMove(Point position, bool snap);
    void DragSize(Point position, bool snap);
    void ClickDone();

    RectModel& m_model;
    Size m_page;
    bool m_edit = false;
    bool m_several = false;

    Action m_action = Action::None;
    Action m_armed = Action::None;  // what a drag from here will be
    Handle m_handle = Handle::None;
    int32_t m_pressedId = 0;
    Point m_start;
    Reach m_reach;
    SnapLines m_lines;
    std::vector<Draft> m_drafts;
    size_t m_walkFrom = 0;  // place of the rectangle that was deleted last, for the next walk
};

// The shift of an edge or a box that keeps it on the page, or lets it come no further out than it is.
int64_t KeepOnPage(int64_t shift, int64_t low, int64_t high, int64_t page);

}  // namespace folium
