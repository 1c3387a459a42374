// Controls that come and go, and end at bad moments.
#include <ole2.h>

#include <cstdio>
#include <cstdlib>

#include "folium/ControlHarness.h"
#include "win32/ControlHost.h"

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
                control->MoveTo(control->OnScreen({450, 400}));
                control->MouseDown();
                control->MouseUp();
                break;
            default:
                control->Click({450, 400}, MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
        }
        control->Pump();
        EXPECT_EQ(control->onEvent, nullptr) << how;
        control.reset();
        EXPECT_EQ(library.Counts().windows, 0) << how;
        EXPECT_EQ(library.Counts().objects, 0) << how;
    }
}

// A control that does nothing: what a run with it shows is the container's.
class EmptyControl final : public com::Object<IOleObject> {
public:
    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) noexcept override {
        m_site = site;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR, LPCOLESTR) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Close(DWORD) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetMoniker(DWORD, IMoniker*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InitFromData(IDataObject*, BOOL, DWORD) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD, IDataObject**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DoVerb(LONG, LPMSG, IOleClientSite*, LONG, HWND, LPCRECT) noexcept override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Update() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE IsUpToDate() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetUserType(DWORD, LPOLESTR*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetExtent(DWORD, SIZEL*) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD, SIZEL*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Advise(IAdviseSink*, DWORD*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD, DWORD* status) noexcept override {
        *status = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE*) noexcept override { return E_NOTIMPL; }

private:
    ComPtr<IOleClientSite> m_site;
};

struct Holdings {
    long handles, userObjects;
    long long heap;
};

Holdings Measure() {
    Holdings now = {};
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    now.handles = static_cast<long>(handles);
    now.userObjects = static_cast<long>(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS));
    PROCESS_HEAP_ENTRY entry = {};
    const HANDLE heap = GetProcessHeap();
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) now.heap += entry.cbData;
    }
    HeapUnlock(heap);
    return now;
}

// What is held more after `cycles` runs than after a fifth of them.
Holdings Growth(const char* name, int cycles, const std::function<void()>& body) {
    Holdings first = {};
    for (int cycle = 1; cycle <= cycles && !testing::Test::HasFailure(); ++cycle) {
        body();
        if (cycle == cycles / 5) first = Measure();
    }
    const Holdings last = Measure();
    const Holdings growth = {last.handles - first.handles, last.userObjects - first.userObjects,
                             last.heap - first.heap};
    std::printf("%s, cycle %d to %d: handles %+ld, user objects %+ld, heap %+lld bytes\n", name, cycles / 5, cycles,
                growth.handles, growth.userObjects, growth.heap);
    return growth;
}

void RunEmptyControl(const CLSID& classId) {
    const HWND window =
        win32::CreateControl(classId, L"", WS_CHILD | WS_VISIBLE, {0, 0, 100, 100}, ControlHarness::SharedFrame(), 1);
    EXPECT_NE(window, nullptr);
    DestroyWindow(window);
}

// The library is loaded and let go each time as well.
void RunFolium() {
    FoliumLibrary library;
    {
        ControlHarness control;
        control.SetUp();
        control.Insert(MakeRect(300, 300, 600, 500));
        control.DragFromTo({800, 800}, {1100, 1100});
        control.Location(1);
        control.Key(VK_DELETE);
        EXPECT_EQ(control.Told(), "added2 selected2 deleted2");
    }
    const FoliumCounts counts = library.Counts();
    EXPECT_EQ(counts.windows, 0);
    EXPECT_EQ(counts.gdiObjects, 0);
    EXPECT_EQ(counts.objects, 0);
    EXPECT_EQ(LivePages(), 0);
}

TEST(ControlLifetime, LeavesNothingBehind) {
    const int cycles = std::getenv("ZONWICK_TEST_LONG") != nullptr ? 1000 : 200;
    constexpr CLSID kClassId = {0x6f0e3a52, 0x6d0f, 0x4be1, {0x94, 0x27, 0x3d, 0x0b, 0x71, 0xe1, 0xa4, 0x6b}};
    auto* const factory = new com::Factory<EmptyControl>;
    DWORD cookie = 0;
    ASSERT_EQ(CoRegisterClassObject(kClassId, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie), S_OK);
    factory->Release();
    const HMODULE keep = LoadLibraryW(L"oleacc.dll");
    const Holdings empty = Growth("empty control", cycles, [&] { RunEmptyControl(kClassId); });
    const Holdings folium = Growth("Folium", cycles, RunFolium);
    FreeLibrary(keep);
    CoRevokeClassObject(cookie);
    EXPECT_EQ(com::LiveObjects(), 0);
    EXPECT_LE(folium.handles, empty.handles + 2);
    EXPECT_LE(folium.userObjects, empty.userObjects + 2);
    // Tables of the loader and of COM grow now and then by a few KiB.
    EXPECT_LE(folium.heap, empty.heap + 12 * 1024);
}

}  // namespace
}  // namespace test
