#pragma once
// Steps of a user at a window: "key control Z", "key shift Tab 3", "hold shift", "let shift", "type 12", "press",
// "release", "wait".

#include "support/StepScript.h"
#include "win32/DialogScript.h"

namespace test {

class WindowScript : public StepScript {
protected:
    WindowScript() {
        m_verbs = {
            {"key", [](const Step& s) { Key(KeyOf(s), ModifierOf(s), std::max(s.n[0], 1)); }},
            {"hold", [](const Step& s) { Hold(ModifierOf(s)); }},
            {"let", [](const Step& s) { KeyUp(ModifierOf(s)); }},
            {"type",
             [](const Step& s) {
                 Type({s.text.begin(), s.text.end()});
             }},
            {"press", [](const Step&) { ButtonDown(); }},
            {"release", [](const Step&) { ButtonUp(); }},
            {"wait", [](const Step&) { Wait(); }},
        };
    }

private:
    static WORD ModifierOf(const Step& step) {
        if (step.Has("shift")) return VK_SHIFT;
        return step.Has("control") ? VK_CONTROL : step.Has("alt") ? VK_MENU : 0;
    }
    static WORD KeyOf(const Step& step) {
        static const std::map<std::string, int> keys = {
            {"Tab", VK_TAB},   {"Enter", VK_RETURN}, {"Escape", VK_ESCAPE}, {"Delete", VK_DELETE},
            {"Left", VK_LEFT}, {"Right", VK_RIGHT},  {"Up", VK_UP},         {"Down", VK_DOWN},
            {"Home", VK_HOME}, {"End", VK_END},      {"PageUp", VK_PRIOR},  {"PageDown", VK_NEXT},
            {"F2", VK_F2},     {"F10", VK_F10},      {"Menu", VK_APPS},     {"Alt", VK_MENU},
        };
        const std::string name = step.words.substr(step.words.rfind(' ') + 1);
        return static_cast<WORD>(name.size() == 1 ? name[0] : keys.at(name));
    }
    // What the display server tells late of the pointer's last move would let go of the key.
    static void Hold(WORD key) {
        for (int i = 0; i < 3; ++i) {
            Sleep(10);
            Wait();
        }
        KeyDown(key);
    }
};

}  // namespace test
