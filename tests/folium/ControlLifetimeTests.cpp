// Controls that come and go, and end at bad moments.
#include <cstdlib>

#include "folium/ControlHarness.h"

namespace test {
namespace {

// A listener may end everything in any event.
TEST(ControlLifetime, EndsInsideAnyEvent) {
    FoliumLibrary library;
    for (int how = 0; how < 8; ++how) {
        auto control = std::make_unique<ControlHarness>();
        control->SetUp();
        const LONG id = control->Insert(MakeRect(300, 300, 600, 500));
        control->Click({1000, 1000});
        control->onEvent = [&](DISPID, LONG) {
            control->onEvent = nullptr;
            if (how % 2 == 0) control->folium = nullptr;
            control->DestroyWindows();
        };
        IFolium* const folium = control->folium;
        const FoliumRect rect = MakeRect(1, 1, 90, 90);
        LONG added = 0;
        switch (how / 2) {
            case 0:
                folium->InsertRect(&rect, &added);
                break;
            case 1:
                folium->DeleteRect(id);
                break;
            case 2:
                control->Click({450, 400});
                break;
            default:
                control->RightClick({450, 400});
        }
        Wait();
        EXPECT_EQ(control->onEvent, nullptr) << how;
        control.reset();
        EXPECT_EQ(library.Counts().windows, 0) << how;
        EXPECT_EQ(library.Counts().objects, 0) << how;
    }
}

// The library is loaded and let go each time as well.
void RunFolium() {
    FoliumLibrary library;
    {
        ControlHarness control;
        control.SetUp();
        control.Insert(MakeRect(300, 300, 600, 500));
        control.Drag({800, 800}, {1100, 1100});
        control.Location(1);
        Key(VK_DELETE);
        EXPECT_EQ(control.Told(), "added2 selected2 deleted2");
    }
    const FoliumCounts counts = library.Counts();
    EXPECT_EQ(counts.windows, 0);
    EXPECT_EQ(counts.gdiObjects, 0);
    EXPECT_EQ(counts.objects, 0);
    EXPECT_EQ(LivePages(), 0);
}

long long HeapInUse() {
    long long bytes = 0;
    PROCESS_HEAP_ENTRY entry = {};
    const HANDLE heap = GetProcessHeap();
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
    }
    HeapUnlock(heap);
    return bytes;
}

TEST(ControlLifetime, LeavesNothingBehind) {
    const int cycles = std::getenv("ZONWICK_TEST_LONG") != nullptr ? 1000 : 16;
    const HMODULE keep = LoadLibraryW(L"oleacc.dll");
    long long heap = 0;
    DWORD userObjects = 0;
    for (int cycle = -8; cycle < cycles && !testing::Test::HasFailure(); ++cycle) {
        if (cycle == 0) {
            heap = HeapInUse();
            userObjects = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
        }
        RunFolium();
    }
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS), userObjects + 2);
    // Wine keeps 64 bytes of each container. Tables of the loader and of COM grow now and then by a few KiB.
    EXPECT_LE(HeapInUse(), heap + cycles * 64 + 12 * 1024);
    FreeLibrary(keep);
}

}  // namespace
}  // namespace test
