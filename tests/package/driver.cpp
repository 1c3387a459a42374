// Stands in for the user of a host in another process:
//     driver version FILE.dll        prints the version in the file's version resource
//     driver TITLE IDENTIFIER...     waits for a dialog with that title, prints its list's number of items, and presses
//                                    the buttons with these identifiers, one after the other
#include <windows.h>

#include <commctrl.h>

#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string>

namespace {

constexpr int kListOfSets = 27780;
constexpr int kSeconds = 15;
constexpr UINT kPatience = 5000;  // for one message

int PrintVersion(const wchar_t* file) {
    DWORD ignored = 0;
    std::string block(GetFileVersionInfoSizeW(file, &ignored), '\0');
    VS_FIXEDFILEINFO* info = nullptr;
    UINT size = 0;
    if (block.empty() || !GetFileVersionInfoW(file, 0, static_cast<DWORD>(block.size()), block.data()) ||
        !VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&info), &size)) {
        std::printf("no version in %ls\n", file);
        return 1;
    }
    std::printf("%d.%d.%d\n", HIWORD(info->dwFileVersionMS), LOWORD(info->dwFileVersionMS),
                HIWORD(info->dwFileVersionLS));
    return 0;
}

HWND WaitForDialog(const wchar_t* title) {
    for (int i = 0; i < kSeconds * 20; ++i) {
        const HWND dialog = FindWindowW(L"#32770", title);
        if (dialog != nullptr && IsWindowVisible(dialog)) return dialog;
        Sleep(50);
    }
    return nullptr;
}

bool Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR& result) {
    return SendMessageTimeoutW(window, message, wParam, lParam, SMTO_BLOCK, kPatience, &result) != 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 3) return 2;
    if (std::wcscmp(argv[1], L"version") == 0) return PrintVersion(argv[2]);
    const HWND dialog = WaitForDialog(argv[1]);
    DWORD_PTR items = 0;
    if (dialog == nullptr || !Send(GetDlgItem(dialog, kListOfSets), LVM_GETITEMCOUNT, 0, 0, items)) {
        std::printf("no dialog \"%ls\" that answers\n", argv[1]);
        return 1;
    }
    std::printf("%d items\n", static_cast<int>(items));
    for (int i = 2; i < argc; ++i) {
        const int id = static_cast<int>(std::wcstol(argv[i], nullptr, 10));
        DWORD_PTR ignored = 0;
        if (!Send(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)),
                  ignored)) {
            std::printf("button %d does not answer\n", id);
            return 1;
        }
    }
    return 0;
}
