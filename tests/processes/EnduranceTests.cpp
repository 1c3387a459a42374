// A working day of a host, over and over: nothing grows.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include "processes/SettingsFileDialog.h"

namespace test {
namespace {

struct Holdings {
    long handles, userObjects, gdiObjects;
    long long heap;
};

// The highest of a few new handles, which fill the gaps first: Wine does not count a process's handles.
long HighestHandle() {
    std::array<HANDLE, 32> made;
    for (HANDLE& handle : made) handle = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const auto highest = reinterpret_cast<intptr_t>(*std::max_element(made.begin(), made.end()));
    for (const HANDLE handle : made) CloseHandle(handle);
    return static_cast<long>(highest / 4);
}

Holdings Measure() {
    Holdings now = {};
    now.handles = HighestHandle();
    now.userObjects = static_cast<long>(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS));
    now.gdiObjects = static_cast<long>(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS));
    PROCESS_HEAP_ENTRY entry = {};
    const HANDLE heap = GetProcessHeap();
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) now.heap += entry.cbData;
    }
    HeapUnlock(heap);
    return now;
}

class Endurance : public SettingsFileDialog {
protected:
    // Load, query, mask, and a dialog in a dialog: OK in all of them in one round, Cancel in the next.
    void Round(bool ok) {
        Load();
        EXPECT_NE(ModuleSets(), L"");
        EXPECT_GT(m_page.Masked(L"Set 2").size(), 1000u);
        const UINT button = ok ? IDOK : IDCANCEL;
        const auto edit = [&](HWND dialog) {
            Push(dialog, IDC_MANAGE_CREATE);
            SetWindowTextW(LabelEdit(dialog), L"Round");
            SetFocus(GetDlgItem(dialog, IDOK));
            const auto add = [&](HWND inner) {
                Push(inner, IDC_CONFIG_ADD);
                Push(inner, button);
            };
            EXPECT_EQ(Pilot(add, {}, [&] { Push(dialog, IDC_MANAGE_CONFIGURE); }), Flight::kClosed);
        };
        PlayManage(edit, button);
        EXPECT_EQ(ModuleSets().find(L"Round") != std::wstring::npos, ok);
        const auto remove = [](HWND dialog) {
            SelectSet(dialog, SetCount(dialog) - 1);
            Push(dialog, IDC_MANAGE_REMOVE);
        };
        if (ok) PlayManage(remove, IDOK);
        TakeTraces();
        EXPECT_TRUE(TakeHostBoxes().empty());
    }

    const LoadedPage m_page{SAMPLES_DIR L"/letter.tif"};
};

TEST_F(Endurance, NothingGrows) {
    const int rounds = std::getenv("ZONWICK_TEST_LONG") != nullptr ? 10000 : 40;
    file.Write(SampleFile());
    UsePages({SAMPLES_DIR L"/letter.tif"});
    Holdings first = {};
    for (int round = 1; round <= rounds && !HasFailure(); ++round) {
        Round(round % 2 != 0);
        if (round == rounds / 4) first = Measure();
    }
    const Holdings last = Measure();
    EXPECT_LE(last.handles, first.handles + 2);
    EXPECT_LE(last.userObjects, first.userObjects + 2);
    EXPECT_LE(last.gdiObjects, first.gdiObjects + 2);
    // Wine itself keeps 24 bytes of each static text (two in the one dialog, five in the other) and 64 of each
    // container of a control. Tables of the loader and of COM grow now and then.
    constexpr long long kOfTwoRounds = 2 * (7 * 24 + 64) + 2 * 24;
    const long long later = rounds - rounds / 4;
    EXPECT_LE(last.heap, first.heap + 32 * 1024 + later * kOfTwoRounds / 2);
    std::printf(
        "%d rounds, growth after the first quarter: handles %+ld, user objects %+ld, GDI objects %+ld, heap %+lld "
        "bytes\n",
        rounds, last.handles - first.handles, last.userObjects - first.userObjects, last.gdiObjects - first.gdiObjects,
        last.heap - first.heap);
}

}  // namespace
}  // namespace test
