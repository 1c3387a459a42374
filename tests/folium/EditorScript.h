#pragma once
// Plays steps written as text on a model with its editor, on an A4 page, and writes down what comes of them.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "refhost/folium/RectEditor.h"

namespace folium {

class EditorScript {
public:
    EditorScript() {
        editor.SetPage({2100, 2970});
        editor.SetMode(true, false);
    }

    // Steps are separated by ";": a verb, numbers, words. Gives what was told ("added1 selected1"), "no" for each step
    // that was refused, and what "at 1" [bounds], "items" 1[bounds], "selection" {ids} and "state" ask for.
    std::string Play(const std::string& steps) {
        std::istringstream all(steps);
        for (std::string text; std::getline(all, text, ';');) {
            std::replace(text.begin(), text.end(), ',', ' ');
            const auto has = [&](const char* word) { return text.find(word) != std::string::npos; };
            std::istringstream words(text);
            std::string verb;
            words >> verb;
            Step step = {{}, {has("shift"), has("control"), has("alt")}, has("view"), has("several")};
            for (int32_t& number : step.n) words >> number;
            const auto found = m_verbs.find(verb);
            if (found == m_verbs.end()) return "no such step:" + text;
            found->second(step);
        }
        return std::exchange(m_told, {});
    }

    std::function<void(const Event&)> onEvent;
    RectModel model{[this](const Event& event) {
        const char* const names[] = {"selected", "changed", "added", "deleted"};
        Tell(names[static_cast<int>(event.kind) - 8] + std::to_string(event.id));
        if (onEvent) onEvent(event);
    }};
    RectEditor editor{model};

private:
    struct Step {
        int32_t n[5];
        Modifiers modifiers;
        bool view, several;
        Point From() const { return {n[0], n[1]}; }
        Point To() const { return {n[2], n[3]}; }
        Rect Bounds() const { return {n[0], n[1], n[2], n[3]}; }
    };

    void Tell(const std::string& text) { m_told += (m_told.empty() ? "" : " ") + text; }
    void Expect(bool done) {
        if (!done) Tell("no");
    }
    static std::string Text(const Rect& r) {
        std::ostringstream text;
        text << '[' << r.left << ',' << r.top << ',' << r.right << ',' << r.bottom << ']';
        return text.str();
    }
    void Click(const Step& s) {
        editor.Press(s.From(), s.modifiers, kReach);
        editor.Release();
    }
    void DragTo(const Step& s) {
        editor.Press(s.From(), s.modifiers, kReach);
        editor.Drag(s.To(), s.modifiers);
        editor.Release();
    }
    // What was there before is not written down.
    void Load(const Step& s) {
        const std::string told = m_told;
        model.Insert(s.Bounds(), false);
        m_told = told;
    }
    // As the control does it for a program.
    void Remove(int32_t id) {
        editor.Forget(id);
        Expect(model.Delete(id));
    }
    void Walk(bool back) {
        const bool can = editor.CanWalk(back);
        EXPECT_EQ(editor.Walk(back), can);
        Expect(can);
    }
    void TellItems() {
        for (const Item& item : model.Items()) Tell(std::to_string(item.id) + Text(item.rect));
    }
    void TellSelection() {
        Tell("{");
        for (const int32_t id : model.Selection()) m_told += std::to_string(id);
        m_told += '}';
    }
    void TellState() {
        Tell(editor.MakingByKeys() ? "making" : editor.Busy() ? "busy" : editor.Pressed() ? "pressed" : "idle");
    }

    static constexpr Reach kReach = {10, 5, 8, 15};
    std::string m_told;
    const std::map<std::string, std::function<void(const Step&)>> m_verbs = {
        {"with", [this](const Step& s) { Load(s); }},
        {"insert", [this](const Step& s) { model.Insert(s.Bounds(), false); }},
        {"add", [this](const Step& s) { model.Insert(s.Bounds(), true); }},
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
        {"mode", [this](const Step& s) { editor.SetMode(!s.view, s.several); }},
        {"press", [this](const Step& s) { editor.Press(s.From(), s.modifiers, kReach); }},
        {"move", [this](const Step& s) { editor.Drag(s.From(), s.modifiers); }},
        {"release", [this](const Step&) { editor.Release(); }},
        {"click", [this](const Step& s) { Click(s); }},
        {"drag", [this](const Step& s) { DragTo(s); }},
        {"nudge", [this](const Step& s) { editor.Nudge(s.n[0], s.n[1], false, false); }},
        {"hold", [this](const Step& s) { editor.Nudge(s.n[0], s.n[1], false, true); }},
        {"size", [this](const Step& s) { editor.Nudge(s.n[0], s.n[1], true, false); }},
        {"tab", [this](const Step&) { Walk(false); }},
        {"back", [this](const Step&) { Walk(true); }},
        {"enter", [this](const Step& s) { editor.StartOrEndNew(s.Bounds()); }},
        {"delete", [this](const Step&) { editor.DeleteSelected(); }},
        {"all", [this](const Step&) { editor.SelectAll(); }},
        {"undo", [this](const Step&) { Expect(editor.Undo()); }},
        {"redo", [this](const Step&) { Expect(editor.Redo()); }},
        {"escape", [this](const Step&) { Expect(editor.Cancel()); }},
        {"at", [this](const Step& s) { Tell(model.Find(s.n[0]) == nullptr ? "[]" : Text(*model.Find(s.n[0]))); }},
        {"draft", [this](const Step&) { Tell(Text(editor.Drafts().front().now)); }},
        {"items", [this](const Step&) { TellItems(); }},
        {"selection", [this](const Step&) { TellSelection(); }},
        {"state", [this](const Step&) { TellState(); }},
    };
};

// Each row on a page of its own.
struct EditorCase {
    std::string steps;
    const char* told;
};
inline void PlayAll(const std::vector<EditorCase>& cases) {
    for (const EditorCase& test : cases) EXPECT_EQ(EditorScript().Play(test.steps), test.told) << test.steps;
}

}  // namespace folium
