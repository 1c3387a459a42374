// HostControls.dll: application name, message box and help.
#include "refhost/controls/HostControls.h"

#include <shellapi.h>

#include <string>

#include "host/Controls.h"
#include "refhost/controls/HelpChapter.h"
#include "refhost/support/HostSupport.h"

namespace {

// ShellExecute gives a value above this on success.
constexpr INT_PTR kShellFailure = 32;

struct Opener {
    HostHelpOpener function = nullptr;
    void* context = nullptr;
};
// Used on the host's window thread alone, like all help.
Opener g_opener;

std::wstring ProgramFolder() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) return path.substr(0, path.find_last_of(L'\\', length) + 1);
        path.resize(path.size() * 2);
    }
}

bool Exists(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// The page with its anchor, or the text: a file name takes no anchor.
std::wstring HelpTarget(const std::wstring& guide, const std::wstring& chapter) {
    if (Exists(guide + L".html")) return controls::FileUrl(guide + L".html", chapter);
    return Exists(guide + L".md") ? guide + L".md" : std::wstring();
}

void OpenHelp(HWND owner, DWORD context) {
    const std::wstring guide = ProgramFolder() + L"docs\\operator";
    const std::wstring chapter = controls::ChapterOf(context);
    const std::wstring target = HelpTarget(guide, chapter);
    const HostHelpRequest request{owner, context, chapter.c_str(), target.c_str()};
    if (g_opener.function != nullptr && g_opener.function(&request, g_opener.context)) return;
    if (target.empty()) {
        const std::wstring text =
            L"The guide is missing. It should be here:\n\n" + guide + L".html\n\nInstall the program again to get it.";
        HostSupportShowBox(owner, text.c_str(), nullptr, MB_ICONWARNING);
        return;
    }
    const HINSTANCE opened = ShellExecuteW(owner, L"open", target.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    if (reinterpret_cast<INT_PTR>(opened) > kShellFailure) return;
    const std::wstring text =
        L"The guide could not be opened. Open it yourself in a browser or a text editor:\n\n" + target;
    HostSupportShowBox(owner, text.c_str(), nullptr, MB_ICONWARNING);
}

}  // namespace

extern "C" {

const wchar_t* HostApplicationName(void) {
    return HostSupportApplicationName();
}

int HostMessageBox(HWND owner, const wchar_t* text, UINT style) {
    return HostSupportShowBox(owner, text, nullptr, style);
}

void HostHelp(HWND owner, DWORD context, DWORD_PTR) {
    try {
        OpenHelp(owner, context);
    } catch (...) {
        HostSupportShowBox(owner, L"There is not enough memory to open the guide. Close other programs and try again.",
                           nullptr, MB_ICONWARNING);
    }
}

void HostControlsSetHelpOpener(HostHelpOpener opener, void* context) {
    g_opener = {opener, context};
}
}
