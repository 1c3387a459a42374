// What the control shows, what programs may ask of it, and what it leaves behind.
#include <oleacc.h>
#include <oleidl.h>
#include <psapi.h>

#include "folium/ControlHarness.h"
#include "win32/ControlHost.h"

namespace test {
namespace {

class ControlView : public testing::Test {
protected:
    FoliumLibrary library;
    ControlHarness control;
};

TEST_F(ControlView, BadArgumentsAreRefused) {
    control.SetUp();
    const LONG id = control.Insert(MakeRect(1, 2, 30, 40));
    IFolium* const folium = control.folium;
    const FoliumRect rect = {};
    FoliumRect out = {};
    LONG newId = 5;
    const FoliumZoom zooms[] = {{4, 0}, {-1, 0}, {kFoliumZoomPercent, 0}, {kFoliumZoomPercent, INT32_MAX}};
    const std::pair<HRESULT, HRESULT> results[] = {
        {folium->ShowPage(nullptr, nullptr), E_POINTER},
        {folium->SetZoom(nullptr), E_POINTER},
        {folium->SetZoom(&zooms[0]), E_INVALIDARG},
        {folium->SetZoom(&zooms[1]), E_INVALIDARG},
        {folium->SetZoom(&zooms[2]), E_INVALIDARG},
        {folium->SetZoom(&zooms[3]), E_INVALIDARG},
        {folium->GetDisplayOptions(nullptr), E_POINTER},
        {folium->SetDisplayOptions(nullptr), E_POINTER},
        {folium->InsertRect(nullptr, &newId), E_POINTER},
        {folium->InsertRect(&rect, nullptr), E_POINTER},
        {folium->DeleteRect(0), E_INVALIDARG},
        {folium->DeleteRect(id + 1), E_INVALIDARG},
        {folium->SelectRect(-1), E_INVALIDARG},
        {folium->SetMode(4), E_INVALIDARG},
        {folium->SetMode(-1), E_INVALIDARG},
        {folium->QueryRect(id, nullptr), E_POINTER},
        {folium->QueryRect(INT32_MAX, &out), E_INVALIDARG},
        {folium->GetPositionOffset(nullptr), E_POINTER},
        {folium->UpdateRect(id, nullptr), E_POINTER},
        {folium->UpdateRect(id + 1, &rect), E_INVALIDARG},
        {folium->Reserved3(), E_NOTIMPL},
        {folium->Reserved31(), E_NOTIMPL},
    };
    for (const auto& [result, expected] : results) EXPECT_EQ(result, expected) << &result - &results[0].first;
    EXPECT_EQ(newId, 0);
    EXPECT_EQ(control.Told(), "");
    EXPECT_EQ(control.At(id), MakeRect(1, 2, 30, 40));
}

TEST_F(ControlView, LoadingNumbersAndTellsInOrder) {
    control.folium->SetMode(1);
    control.onEvent = [&](DISPID event, LONG id) {
        FoliumRect rect = {};
        EXPECT_EQ(control.folium->QueryRect(id, &rect), S_OK) << event;
    };
    for (LONG i = 1; i <= 3; ++i) {
        LONG id = 0;
        const FoliumRect rect = MakeRect(100, 80, 20, 10);
        EXPECT_EQ(control.folium->InsertRect(&rect, &id), S_OK);
        EXPECT_EQ(id, i);
        EXPECT_EQ(control.Told(), "added" + std::to_string(i)) << "before the call returns";
        EXPECT_EQ(control.At(id), MakeRect(20, 10, 100, 80));
    }
    control.onEvent = nullptr;
    control.folium->UpdateView();
    control.folium->SelectRect(2);
    const FoliumRect same = MakeRect(20, 10, 100, 80);
    control.folium->UpdateRect(2, &same);
    control.folium->DeleteRect(1);
    EXPECT_EQ(control.Told(), "selected2 changed2 deleted1");
    FoliumDisplayOptions options = {1, 2, 3, 4, 5, 6, 0, 1}, read = {};
    control.folium->SetDisplayOptions(&options);
    control.folium->GetDisplayOptions(&read);
    EXPECT_EQ(memcmp(&options, &read, sizeof read), 0) << "also the fields that nobody uses";
}

TEST_F(ControlView, PagesThatCannotBeShownLeaveTheLastOne) {
    control.SetUp();
    control.Insert(MakeRect(100, 100, 500, 500));
    const RECT before = control.Location(1);
    EXPECT_EQ(control.folium->ShowPage(MakeBadPage(E_FAIL, {2100, 2970}, S_OK), nullptr), E_FAIL);
    EXPECT_EQ(control.folium->ShowPage(MakeBadPage(S_OK, {0, 2970}, S_OK), nullptr), E_INVALIDARG);
    EXPECT_EQ(control.folium->ShowPage(MakeBadPage(S_OK, {21, -2}, S_OK), nullptr), E_INVALIDARG);
    EXPECT_EQ(control.folium->ShowPage(MakeBadPage(S_OK, {21, 29}, E_OUTOFMEMORY), nullptr), E_OUTOFMEMORY);
    control.Pump();
    const RECT after = control.Location(1);
    EXPECT_TRUE(EqualRect(&before, &after));
    EXPECT_EQ(LivePages(), 1);
}

TEST_F(ControlView, AnyPageIsShownAndRectanglesStay) {
    control.SetUp();
    const LONG id = control.Insert(MakeRect(100, 100, 2000, 2500));
    struct {
        SIZE size;
        uint32_t width, height, bits;
    } const pages[] = {{{2100, 2970}, 0, 0, 24},        {{1, 1}, 1, 1, 1},          {{762000, 762000}, 30000, 30000, 1},
                       {{7938, 7938}, 30000, 30000, 8}, {{INT32_MAX, 3}, 5, 5, 32}, {{500, 500}, 40, 40, 8}};
    for (const auto& page : pages) {
        const FoliumZoom zooms[] = {{0, 0}, {1, 0}, {2, 0}, {3, 200}, {3, 6400}};
        EXPECT_EQ(control.folium->ShowPage(MakePage(page.size, page.width, page.height, page.bits), nullptr), S_OK);
        for (const FoliumZoom& zoom : zooms) {
            EXPECT_EQ(control.folium->SetZoom(&zoom), S_OK);
            RedrawWindow(control.Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        }
        EXPECT_EQ(control.At(id), MakeRect(100, 100, 2000, 2500));
    }
    PROCESS_MEMORY_COUNTERS memory = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    EXPECT_LT(memory.PeakWorkingSetSize, size_t{400} << 20);
    EXPECT_EQ(control.Told(), "");
    EXPECT_EQ(LivePages(), 1) << "only the page shown is held";
    const FoliumZoom whole = {kFoliumZoomWholePage, 0};
    control.folium->SetZoom(&whole);
    EXPECT_GT(control.PixelsOf(RGB(255, 200, 0)), 50) << "what lies beside the page is drawn, broken";
}

TEST_F(ControlView, ScrollBarsOnlyWhereNeededAndFitFollows) {
    control.SetUp();
    EXPECT_TRUE(control.HasScrollBar(WS_HSCROLL) && control.HasScrollBar(WS_VSCROLL));
    struct {
        FoliumZoomMode mode;
        int width, height;
        bool bars[2];
    } const cases[] = {
        {kFoliumZoomWholePage, 500, 600, {false, false}},  {kFoliumZoomPageWidth, 500, 300, {false, true}},
        {kFoliumZoomPageWidth, 200, 600, {false, false}},  {kFoliumZoomPageHeight, 200, 600, {true, false}},
        {kFoliumZoomPageHeight, 500, 300, {false, false}}, {kFoliumZoomWholePage, 90, 50, {false, false}}};
    control.Insert(MakeRect(0, 0, 2100, 2970));
    for (const auto& test : cases) {
        const FoliumZoom zoom = {test.mode, 0};
        control.folium->SetZoom(&zoom);
        control.Resize(test.width, test.height);
        EXPECT_EQ(control.HasScrollBar(WS_HSCROLL), test.bars[0]) << test.mode << ' ' << test.width;
        EXPECT_EQ(control.HasScrollBar(WS_VSCROLL), test.bars[1]) << test.mode << ' ' << test.width;
        RECT client = {};
        GetClientRect(control.Window(), &client);
        const RECT page = control.Location(1);
        const bool fitsWidth = page.right - page.left == client.right - 2 * ControlHarness::Scaled(8);
        const bool fitsHeight = page.bottom - page.top == client.bottom - 2 * ControlHarness::Scaled(8);
        EXPECT_TRUE(test.mode == kFoliumZoomPageHeight  ? fitsHeight
                    : test.mode == kFoliumZoomPageWidth ? fitsWidth
                                                        : fitsWidth || fitsHeight)
            << test.mode << ' ' << test.width;
    }
}

// One paint for a page turn with the full redraw that dialogs ask for, none scaled twice, and nothing erased before.
TEST_F(ControlView, PaintsOnceAndScalesOnce) {
    control.SetUp();
    const LONG id = control.Insert(MakeRect(300, 300, 600, 500));
    control.Pump();
    FoliumCounts before = library.Counts();
    control.folium->ShowPage(MakePage({2100, 2970}, 827, 1169, 24), nullptr);
    InvalidateRect(control.Window(), nullptr, TRUE);
    UpdateWindow(control.Window());
    control.Pump();
    EXPECT_EQ(library.Counts().paints - before.paints, 1);
    const HDC dc = GetDC(control.Window());
    EXPECT_EQ(SendMessageW(control.Window(), WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0), 1);
    ReleaseDC(control.Window(), dc);

    for (int i = 0; i < 4; ++i) control.Wheel(-5);
    for (int i = 0; i < 4; ++i) control.Wheel(5);
    before = library.Counts();
    for (int i = 0; i < 4; ++i) control.Wheel(-5);
    for (int i = 0; i < 4; ++i) control.Wheel(5);
    control.folium->SelectRect(id);
    control.DragFromTo({450, 400}, {700, 900});
    control.DragFromTo({800, 800}, {900, 900});
    control.Pump();
    const FoliumCounts after = library.Counts();
    EXPECT_EQ(after.tilesScaled, before.tilesScaled);
    EXPECT_GT(after.paints, before.paints);
}

TEST_F(ControlView, DraggingLeavesNoTraces) {
    control.SetUp();
    control.Insert(MakeRect(300, 300, 600, 500));
    control.Insert(MakeRect(500, 400, 505, 900));
    SIZE size = {};
    control.DragFromTo({450, 350}, {700, 900});
    control.KeyWith(VK_CONTROL, 'Z');
    control.Key(VK_RETURN);
    control.KeyWith(VK_SHIFT, VK_RIGHT);
    control.Key(VK_ESCAPE);
    control.Click({1100, 1300});
    const auto painted = control.Pixels(size);
    InvalidateRect(control.Window(), nullptr, FALSE);
    EXPECT_EQ(control.Pixels(size), painted) << "the screen is as a full paint gives it";
}

TEST_F(ControlView, PrintsWhatItShows) {
    control.SetUp();
    control.Insert(MakeRect(300, 300, 600, 500));
    SIZE size = {};
    const auto painted = control.Pixels(size);
    const HDC dc = CreateCompatibleDC(nullptr);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, size.cx, -size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    uint32_t* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, reinterpret_cast<void**>(&bits), nullptr, 0);
    const HGDIOBJ before = SelectObject(dc, bitmap);
    SendMessageW(control.Window(), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
    GdiFlush();
    EXPECT_EQ(std::vector<uint32_t>(bits, bits + painted.size()), painted);
    SelectObject(dc, before);
    DeleteObject(bitmap);
    DeleteDC(dc);
}

TEST_F(ControlView, TellsScreenReaders) {
    control.SetUp();
    control.Insert(MakeRect(300, 300, 600, 500));
    control.Insert(MakeRect(700, 700, 900, 900));
    control.folium->SelectRect(2);
    ComPtr<IAccessible> page;
    AccessibleObjectFromWindow(control.Window(), static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                               reinterpret_cast<void**>(&page));
    ASSERT_NE(page.GetInterfacePtr(), nullptr);
    LONG count = 0;
    EXPECT_EQ(page->get_accChildCount(&count), S_OK);
    EXPECT_EQ(count, 2);
    VARIANT second = {}, out = {}, none = {};
    V_VT(&second) = V_VT(&none) = VT_I4;
    V_I4(&second) = 2;
    V_I4(&none) = 3;
    BSTR name = nullptr;
    EXPECT_EQ(page->get_accName(second, &name), S_OK);
    EXPECT_STREQ(name, L"Area 2");
    SysFreeString(name);
    EXPECT_EQ(page->get_accValue(second, &name), S_OK);
    EXPECT_STREQ(name, L"left 70.0, top 70.0, width 20.0, height 20.0 mm");
    SysFreeString(name);
    EXPECT_EQ(page->get_accState(second, &out), S_OK);
    EXPECT_EQ(V_I4(&out) & STATE_SYSTEM_SELECTED, STATE_SYSTEM_SELECTED);
    const POINT inside = control.OnScreen({450, 400});
    EXPECT_EQ(page->accHitTest(inside.x, inside.y, &out), S_OK);
    EXPECT_EQ(V_I4(&out), 1);
    V_I4(&second) = 1;
    control.Told();
    EXPECT_EQ(page->accDoDefaultAction(second), S_OK);
    EXPECT_EQ(control.Told(), "selected1");
    EXPECT_EQ(page->get_accName(none, &name), E_INVALIDARG);
    control.DestroyWindows();
    EXPECT_EQ(page->get_accChildCount(&count), CO_E_OBJNOTCONNECTED) << "kept beyond the window";
}

TEST_F(ControlView, ServesAnyContainer) {
    control.SetUp();
    ComPtr<IUnknown> unknown;
    control.folium.GetInterfacePtr()->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&unknown));
    const IID interfaces[] = {IID_IOleObject,
                              IID_IOleInPlaceObject,
                              IID_IOleInPlaceActiveObject,
                              IID_IOleWindow,
                              IID_IOleControl,
                              IID_IViewObject,
                              IID_IViewObject2,
                              IID_IPersist,
                              IID_IDispatch,
                              IID_IPersistStreamInit,
                              IID_IProvideClassInfo,
                              IID_IProvideClassInfo2,
                              IID_IConnectionPointContainer,
                              __uuidof(IFolium)};
    for (const IID& iid : interfaces) {
        ComPtr<IUnknown> found, same;
        void* object = nullptr;
        ASSERT_EQ(unknown.GetInterfacePtr()->QueryInterface(iid, &object), S_OK) << &iid - interfaces;
        found.Attach(static_cast<IUnknown*>(object));
        found.GetInterfacePtr()->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&same));
        EXPECT_EQ(same.GetInterfacePtr(), unknown.GetInterfacePtr()) << "one object";
    }
    // The class's information leads to the events by name.
    ComPtr<IProvideClassInfo2> provider;
    unknown.GetInterfacePtr()->QueryInterface(&provider);
    ComPtr<ITypeInfo> info, events;
    ASSERT_EQ(provider->GetClassInfo(&info), S_OK);
    HREFTYPE reference = 0;
    ASSERT_EQ(info->GetRefTypeOfImplType(0, &reference), S_OK);
    ASSERT_EQ(info->GetRefTypeInfo(reference, &events), S_OK);
    MEMBERID id = 0;
    LPOLESTR name = const_cast<LPOLESTR>(L"PointerMoved");
    EXPECT_EQ(events->GetIDsOfNames(&name, 1, &id), S_OK);
    EXPECT_EQ(id, kFoliumPointerMoved);

    // Drawn by its container into a picture, without its window.
    ComPtr<IViewObject2> view;
    unknown.GetInterfacePtr()->QueryInterface(&view);
    const HDC dc = CreateCompatibleDC(nullptr);
    BITMAPINFO bitmapInfo = {};
    bitmapInfo.bmiHeader = {sizeof bitmapInfo.bmiHeader, 100, -140, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(dc, &bitmapInfo, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ before = SelectObject(dc, bitmap);
    const RECTL bounds = {0, 0, 100, 140};
    EXPECT_EQ(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, dc, &bounds, nullptr, nullptr, 0), S_OK);
    EXPECT_EQ(static_cast<uint32_t*>(bits)[70 * 100 + 50] & 0xffffff, 0xc0c0c0u);
    SelectObject(dc, before);
    DeleteObject(bitmap);
    DeleteDC(dc);
}

TEST_F(ControlView, RegistersAndUnregistersItself) {
    using Register = HRESULT STDAPICALLTYPE();
    EXPECT_EQ(library.Dll().Export<Register>("DllRegisterServer")(), S_OK);
    wchar_t key[80] = L"CLSID\\";
    StringFromGUID2(host::kClsidFolium, key + 6, 60);
    HKEY opened = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CLASSES_ROOT, (std::wstring(key) + L"\\InprocServer32").c_str(), 0, KEY_READ, &opened),
              ERROR_SUCCESS);
    RegCloseKey(opened);
    EXPECT_EQ(library.Dll().Export<Register>("DllUnregisterServer")(), S_OK);
    EXPECT_EQ(library.Dll().Export<Register>("DllUnregisterServer")(), S_OK) << "also when it is not registered";
    EXPECT_EQ(RegOpenKeyExW(HKEY_CLASSES_ROOT, key, 0, KEY_READ, &opened), ERROR_FILE_NOT_FOUND);
}

}  // namespace
}  // namespace test
