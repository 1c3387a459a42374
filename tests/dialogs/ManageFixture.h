#pragma once
// "Manage Area Sets" played through its window, in Zonwick.dll among the host's real libraries.

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "configdlg/ConfigFixture.h"
#include "win32/Wnd.h"

namespace test {

HWND SetsOf(HWND dialog);
inline int SetCount(HWND dialog) {
    return ItemCount(SetsOf(dialog));
}
inline std::wstring SetName(HWND dialog, int item) {
    return ItemText(SetsOf(dialog), item);
}
inline int SelectedSet(HWND dialog) {
    return SelectedItem(SetsOf(dialog));
}
inline void SelectSet(HWND dialog, int item) {
    SelectItem(SetsOf(dialog), item);
}
// All names, each followed by a bar: "Invoice|Letter|Blank|".
std::wstring SetNames(HWND dialog);
// The edit control of the label that is edited; null when there is none.
HWND LabelEdit(HWND dialog);
// As a user's command that may open another dialog: handled after the step.
void Post(HWND dialog, UINT id);
// What the preview shows at a place in thousandths of its size: 'f'ace, 'w'indow, 'h'ighlight, '?'.
char PreviewAt(HWND dialog, int x, int y);

// The host's settings have the sets 1 "Invoice" (A4, two areas kept), 2 "Letter" (A4 across, the left half ignored) and
// 3 "Blank" (100 x 50 mm, no areas); the document stack is empty.
class ManageDialog : public ConfigDialog {
protected:
    void SetUp() override;

    // Adds a set of a display rectangle to the host's settings.
    void AddSet(unsigned id, const wchar_t* name, int64_t flags, const RECT& display, const std::vector<RECT>& rects);
    BOOL Open() { return m_configure(m_owner, m_host->quire, 0, 0); }
    template <std::invocable<HWND> Moves>
    BOOL Play(const Moves& script) {
        BOOL result = FALSE;
        PlayScript(script, [&] { result = Open(); });
        return result;
    }
    BOOL Play(Steps steps);  // for what still plays steps
    // What the host's settings hold of sets: "1:Invoice 2:Letter ".
    std::wstring HostSets() const;

    decltype(&::SAConfigure) m_configure;
};

}  // namespace test
