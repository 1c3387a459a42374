#pragma once
// What the exports that open dialogs have in common: telling failures, and one dialog of a kind at a time.

#include <windows.h>

#include <cstdint>

namespace exports {

inline constexpr const char* kSource = "Zonwick";

// The host support library's box, which tells the failure just traced at severity 2.
void ShowFailure(HWND parent) noexcept;
// Traces string 34108 at severity 2 and a text at the given severity, shows the box; the failure value of the exports.
BOOL ReportDialogFailure(HWND parent, int line, int severity, const wchar_t* text) noexcept;
// Loads the sets; a failure is traced as 34106 and shown.
bool LoadSetsOrReport(HWND parent, int line);

// Marks an export as running. One is refused (it is traced, and Refused is true) while another of the same kind runs,
// and within a host's call for loading or storing the sets.
class DialogScope {
public:
    DialogScope(bool& running, const wchar_t* name);
    ~DialogScope();
    DialogScope(const DialogScope&) = delete;
    DialogScope& operator=(const DialogScope&) = delete;
    bool Refused() const { return m_refused; }

private:
    bool& m_running;
    bool m_refused = false;
};

// From before its dialog opens until what it changed is stored: SAInit changes nothing.
class OpenDialog {
public:
    OpenDialog();
    ~OpenDialog();
    OpenDialog(const OpenDialog&) = delete;
    OpenDialog& operator=(const OpenDialog&) = delete;
};

}  // namespace exports
