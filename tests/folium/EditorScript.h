#pragma once
// Steps on a model with its editor, on an A4 page.

#include "refhost/folium/RectEditor.h"
#include "support/StepScript.h"

namespace folium {

// Tells events ("added1 selected1"), "no" for each step that was refused, and what "at 1" [bounds], "items" 1[bounds],
// "selection" {ids}, "draft" and "state" ask for.
class EditorScript final : public test::StepScript {
public:
    EditorScript() {
        using test::Step;
        editor.SetPage({2100, 2970});
        editor.SetMode(true, false);
        m_verbs = {
            {"with", [this](const Step& s) { Load(Bounds(s)); }},
            {"insert", [this](const Step& s) { model.Insert(Bounds(s), false); }},
            {"add", [this](const Step& s) { model.Insert(Bounds(s), true); }},
            {"update",
             [this](const Step& s) {
                 Expect(model.Update(s.n[0], {s.n[1], s.n[2], s.n[3], s.n[4]}));
             }},
            {"remove", [this](const Step& s) { Remove(s.n[0]); }},
            {"forget", [this](const Step& s) { editor.Forget(s.n[0]); }},
            {"select", [this](const Step& s) { Expect(model.Select(s.n[0])); }},
            {"toggle", [this](const Step& s) { model.Toggle(s.n[0]); }},
            {"clear", [this](const Step&) { model.ClearSelection(); }},
            {"history", [this](const Step&) { model.StartHistory(); }},
            {"page",
             [this](const Step& s) {
                 editor.SetPage({s.n[0], s.n[1]});
             }},
            {"mode", [this](const Step& s) { editor.SetMode(!s.Has("view"), s.Has("several")); }},
            {"press", [this](const Step& s) { Press(s); }},
            {"move",
             [this](const Step& s) {
                 editor.Drag({s.n[0], s.n[1]}, Held(s));
             }},
            {"release", [this](const Step&) { editor.Release(); }},
            {"click", [this](const Step& s) { Press(s), editor.Release(); }},
            {"drag",
             [this](const Step& s) {
                 Press(s), editor.Drag({s.n[2], s.n[3]}, Held(s)), editor.Release();
             }},
            {"nudge", [this](const Step& s) { editor.Nudge(s.n[0], s.n[1], s.Has("size"), s.Has("held")); }},
            {"tab", [this](const Step&) { Walk(false); }},
            {"back", [this](const Step&) { Walk(true); }},
            {"enter", [this](const Step& s) { editor.StartOrEndNew(Bounds(s)); }},
            {"delete", [this](const Step&) { editor.DeleteSelected(); }},
            {"all", [this](const Step&) { editor.SelectAll(); }},
            {"undo", [this](const Step&) { Expect(editor.Undo()); }},
            {"redo", [this](const Step&) { Expect(editor.Redo()); }},
            {"escape", [this](const Step&) { Expect(editor.Cancel()); }},
            {"at", [this](const Step& s) { Tell(Text(*model.Find(s.n[0]))); }},
            {"draft", [this](const Step&) { Tell(Text(editor.Drafts().front().now)); }},
            {"items", [this](const Step&) { TellItems(); }},
            {"selection", [this](const Step&) { TellSelection(); }},
            {"state",
             [this](const Step&) {
                 Tell(editor.MakingByKeys() ? "making" : editor.Busy() ? "busy" : "idle");
             }},
        };
    }

    std::function<void(const Event&)> onEvent;
    RectModel model{[this](const Event& event) {
        const char* const names[] = {"selected", "changed", "added", "deleted"};
        if (m_loading) return;
        Tell(names[static_cast<int>(event.kind) - 8] + std::to_string(event.id));
        if (onEvent) onEvent(event);
    }};
    RectEditor editor{model};

private:
    static Rect Bounds(const test::Step& s) { return {s.n[0], s.n[1], s.n[2], s.n[3]}; }
    static Modifiers Held(const test::Step& s) { return {s.Has("shift"), s.Has("control"), s.Has("alt")}; }
    static std::string Text(const Rect& r) {
        std::ostringstream text;
        text << '[' << r.left << ',' << r.top << ',' << r.right << ',' << r.bottom << ']';
        return text.str();
    }
    // What was there before is not told.
    void Load(const Rect& rect) {
        m_loading = true;
        model.Insert(rect, false);
        m_loading = false;
    }
    // As the control does it for a program.
    void Remove(int32_t id) {
        editor.Forget(id);
        Expect(model.Delete(id));
    }
    void Press(const test::Step& s) { editor.Press({s.n[0], s.n[1]}, Held(s), {10, 5, 8, 15}); }
    void Walk(bool back) {
        const bool can = editor.CanWalk(back);
        EXPECT_EQ(editor.Walk(back), can);
        Expect(can);
    }
    void TellItems() {
        for (const Item& item : model.Items()) Tell(std::to_string(item.id) + Text(item.rect));
    }
    void TellSelection() {
        std::string ids;
        for (const int32_t id : model.Selection()) ids += std::to_string(id);
        Tell('{' + ids + '}');
    }

    bool m_loading = false;
};

}  // namespace folium
