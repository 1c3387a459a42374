// Opening the dialogs, and loading the DLL.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstdio>

#include "bench/Bench.h"
#include "bench/Library.h"
#include "host/MeasureUnits.h"
#include "refhost/documents/HostDocuments.h"

namespace bench {

namespace {

double g_shown;
LRESULT g_rows;

// Timers come when nothing else waits: the dialog has been made, shown and painted.
void CALLBACK CloseDialog(HWND, UINT, UINT_PTR timer, DWORD) {
    HWND dialog = nullptr;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM found) -> BOOL {
            wchar_t name[16] = {};
            GetClassNameW(window, name, 16);
            if (wcscmp(name, L"#32770") != 0 || !IsWindowVisible(window)) return TRUE;
            *reinterpret_cast<HWND*>(found) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&dialog));
    if (dialog == nullptr) return;
    g_shown = Now();
    g_rows = 0;
    EnumChildWindows(
        dialog,
        [](HWND window, LPARAM) -> BOOL {
            const LRESULT rows = SendMessageW(window, LVM_GETITEMCOUNT, 0, 0);
            g_rows = std::max(g_rows, rows);
            return TRUE;
        },
        0);
    KillTimer(nullptr, timer);
    SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
}

// From the call until the dialog waits for its user.
double OpeningTime(LRESULT rows, const Action& open) {
    g_shown = 0;
    const double start = Now();
    SetTimer(nullptr, 0, USER_TIMER_MINIMUM, CloseDialog);
    open();
    Require(g_shown != 0, "the dialog did not open");
    Require(g_rows >= rows, "the dialog does not show its rows");
    return g_shown - start;
}

// A list as a program would fill it that wanted no more than the rows.
double BareList(int rows, int columns, bool units, const std::function<std::wstring(int, int)>& text) {
    const double start = Now();
    const HWND frame = CreateWindowExW(0, L"#32770", L"Bare", WS_POPUP, 40, 40, 420, 420, nullptr, nullptr,
                                       GetModuleHandleW(nullptr), nullptr);
    const HWND list = CreateWindowExW(WS_EX_CLIENTEDGE, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0,
                                      400, 400, frame, nullptr, GetModuleHandleW(nullptr), nullptr);
    for (int column = 0; column < columns; ++column) {
        LVCOLUMNW record = {};
        record.mask = LVCF_WIDTH;
        record.cx = 80;
        SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&record));
    }
    // What any program would do that knows how many rows come.
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    SendMessageW(list, LVM_SETITEMCOUNT, static_cast<WPARAM>(rows), 0);
    LRESULT widest = 0;
    for (int row = 0; row < rows; ++row) {
        win32::ComPtr<IMeasureUnits> unitObject;
        if (units) {
            CoCreateInstance(host::kClsidMeasureUnits, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IMeasureUnits),
                             reinterpret_cast<void**>(&unitObject));
        }
        for (int column = 0; column < columns; ++column) {
            std::wstring cell = text(row, column);
            LVITEMW item = {};
            item.mask = LVIF_TEXT;
            item.iItem = row;
            item.iSubItem = column;
            item.pszText = cell.data();
            SendMessageW(list, column == 0 ? LVM_INSERTITEMW : LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
            widest =
                std::max(widest, SendMessageW(list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(cell.data())));
        }
    }
    SendMessageW(list, LVM_SETCOLUMNWIDTH, 0, MAKELPARAM(widest, 0));
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    ShowWindow(frame, SW_SHOW);
    UpdateWindow(frame);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    const double time = Now() - start;
    DestroyWindow(frame);
    return time;
}

}  // namespace

void Dialogs() {
    const com::ClassRegistration documents(L"HostDocuments.dll", {host::kClsidPageImage});
    const com::ClassRegistration units(L"HostUnits.dll", {host::kClsidMeasureUnits});
    const com::ClassRegistration control(L"Folium.dll", {host::kClsidFolium});
    win32::ComPtr<IQuire> quire;
    documents.Dll().Export<decltype(HostOpenDocuments)>("HostOpenDocuments")(nullptr, 0, &quire);
    Require(quire != nullptr, "no document stack");
    const HWND owner = CreateWindowExW(0, L"STATIC", L"Owner", WS_POPUP | WS_VISIBLE, 0, 0, 100, 100, nullptr, nullptr,
                                       GetModuleHandleW(nullptr), nullptr);
    const auto manage = [&](const Library& library, int sets) {
        return OpeningTime(sets, [&] { library.Configure(owner, quire, 0, 0); });
    };
    const auto name = [](int row, int) { return L"Set " + std::to_wstring(row + 1); };
    const auto number = [](int row, int column) {
        wchar_t text[32];
        swprintf(text, 32, L"%d.%d", row % 200, column);
        return std::wstring(text);
    };
    {
        const Library library(10000, 1);
        Compare(
            "dialog-manage", "10,000 sets", [&] { return manage(library, 10000); },
            [&] { return BareList(10000, 1, false, name); }, 7);
    }
    for (const int sets : {10, 100, 1000, 10000}) {
        const Library library(sets, 1);
        for (int run = 0; run < 5; ++run) std::printf("pair\tsize-manage\t%d\t%.0f\t1\n", sets, manage(library, sets));
    }
    for (const int areas : {10, 100, 1000, 2000}) {
        const Library library(1, areas);
        manage(library, 1);
        const auto configure = [&] { return OpeningTime(areas, [&] { library.ConfigureSet(owner, 1); }); };
        for (int run = 0; run < 5; ++run) std::printf("pair\tsize-configure\t%d\t%.0f\t1\n", areas, configure());
        if (areas == 2000) {
            Compare(
                "dialog-configure", "2,000 areas", configure, [&] { return BareList(2000, 4, true, number); }, 7);
        }
    }
    quire = nullptr;
    DestroyWindow(owner);
}

void Loading() {
    const std::wstring folder = com::ProgramFolder();
    const auto load = [&](const wchar_t* name) {
        return Timed(
            [path = folder + name] {
                const HMODULE module = LoadLibraryW(path.c_str());
                Require(module != nullptr, "a DLL does not load");
                FreeLibrary(module);
            },
            3);
    };
    Compare("load", "same imports", load(L"Zonwick.dll"), load(L"bench_empty.dll"), 15);
    Compare("load", "same imports and manifest", load(L"Zonwick.dll"), load(L"bench_empty_styles.dll"), 15);
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    Require(GetFileAttributesExW((folder + L"Zonwick.dll").c_str(), GetFileExInfoStandard, &data), "no Zonwick.dll");
    Tell("size", "Zonwick.dll in KB", data.nFileSizeLow / 1024.0);
}

}  // namespace bench
