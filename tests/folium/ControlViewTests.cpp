// What the control shows, what programs may ask of it, and what it leaves behind.
#include <oleidl.h>
#include <psapi.h>

#include "folium/ControlHarness.h"
#include "host/PageImage.h"
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
    const FoliumZoom zooms[] = {{4, 0}, {kFoliumZoomPercent, INT32_MAX}};
    const std::pair<HRESULT, HRESULT> results[] = {
        {folium->ShowPage(nullptr, nullptr), E_POINTER},
        {folium->SetZoom(nullptr), E_POINTER},
        {folium->SetZoom(&zooms[0]), E_INVALIDARG},
        {folium->SetZoom(&zooms[1]), E_INVALIDARG},
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
    const struct {
        HRESULT sizeStatus;
        SIZE size;
        HRESULT pixelStatus, status;
    } pages[] = {{E_FAIL, {2100, 2970}, S_OK, E_FAIL},
                 {S_OK, {0, 2970}, S_OK, E_INVALIDARG},
                 {S_OK, {21, -2}, S_OK, E_INVALIDARG},
                 {S_OK, {21, 29}, E_OUTOFMEMORY, E_OUTOFMEMORY}};
    for (const auto& page : pages) {
        EXPECT_EQ(control.folium->ShowPage(MakeBadPage(page.sizeStatus, page.size, page.pixelStatus), nullptr),
                  page.status);
    }
    Wait();
    const RECT after = control.Location(1);
    EXPECT_TRUE(EqualRect(&before, &after));
    EXPECT_EQ(LivePages(), 1);
}

// A page without an image is known by another interface, and stays what it is when its owner asks for that.
TEST_F(ControlView, ShowsABlankPageByItsOtherInterface) {
    const com::ClassRegistration documents(L"HostDocuments.dll", {host::kClsidPageImage});
    control.SetUp();
    ComPtr<IImageLoader> loader;
    ASSERT_EQ(loader.CreateInstance(host::kClsidPageImage), S_OK);
    ASSERT_EQ(loader->CreateBlank(2159, 2794, 200, 200, 0), S_OK);
    void* page = nullptr;
    ASSERT_EQ(loader.GetInterfacePtr()->QueryInterface(host::kIidBlankPageImage, &page), S_OK);
    EXPECT_EQ(control.folium->ShowPage(static_cast<IPageImage*>(page), nullptr), S_OK);
    static_cast<IPageImage*>(page)->Release();
    EXPECT_GT(control.PixelsOf(RGB(255, 255, 255)), 100000);
    control.folium->ShowPage(MakePage({2100, 2970}), nullptr);
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
        EXPECT_EQ(control.folium->ShowPage(MakePage(page.size, page.width, page.height, page.bits), nullptr), S_OK);
        for (const auto& [mode, percent] : {std::pair{0, 0}, std::pair{1, 0}, std::pair{2, 0}, std::pair{3, 6400}}) {
            control.SetZoom(mode, percent);
            RedrawWindow(control.Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        }
        EXPECT_EQ(control.At(id), MakeRect(100, 100, 2000, 2500));
    }
    PROCESS_MEMORY_COUNTERS memory = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    EXPECT_LT(memory.PeakWorkingSetSize, size_t{400} << 20);
    EXPECT_EQ(control.Told(), "");
    EXPECT_EQ(LivePages(), 1) << "only the page shown is held";
    control.SetZoom(kFoliumZoomWholePage);
    EXPECT_GT(control.PixelsOf(RGB(255, 200, 0)), 50) << "what lies beside the page is drawn, broken";
}

TEST_F(ControlView, ScrollBarsOnlyWhereNeededAndFitFollows) {
    control.SetUp();
    EXPECT_TRUE(control.HasScrollBar(WS_HSCROLL) && control.HasScrollBar(WS_VSCROLL));
    struct {
        FoliumZoomMode mode;
        int width, height;
        bool bars[2];
    } const cases[] = {{kFoliumZoomWholePage, 500, 600, {false, false}},
                       {kFoliumZoomPageWidth, 500, 300, {false, true}},
                       {kFoliumZoomPageHeight, 200, 600, {true, false}},
                       {kFoliumZoomWholePage, 90, 50, {false, false}}};
    control.Insert(MakeRect(0, 0, 2100, 2970));
    for (const auto& test : cases) {
        control.SetZoom(test.mode);
        control.Resize(test.width, test.height);
        EXPECT_EQ(control.HasScrollBar(WS_HSCROLL), test.bars[0]) << test.mode << ' ' << test.width;
        EXPECT_EQ(control.HasScrollBar(WS_VSCROLL), test.bars[1]) << test.mode << ' ' << test.width;
        RECT client = {};
        GetClientRect(control.Window(), &client);
        const RECT page = control.Location(1);
        const int margins = 2 * ControlHarness::Scaled(8);
        EXPECT_TRUE(page.right - page.left == client.right - margins ||
                    page.bottom - page.top == client.bottom - margins)
            << test.mode << ' ' << test.width;
    }
}

// One paint for a page turn with the full redraw that dialogs ask for, none scaled twice, and nothing erased before.
TEST_F(ControlView, PaintsOnceAndScalesOnce) {
    control.SetUp();
    const LONG id = control.Insert(MakeRect(300, 300, 600, 500));
    Wait();
    FoliumCounts before = library.Counts();
    control.folium->ShowPage(MakePage({2100, 2970}, 827, 1169, 24), nullptr);
    InvalidateRect(control.Window(), nullptr, TRUE);
    UpdateWindow(control.Window());
    Wait();
    EXPECT_EQ(library.Counts().paints - before.paints, 1);
    EXPECT_EQ(SendMessageW(control.Window(), WM_ERASEBKGND, 0, 0), 1);

    for (int round = 0; round < 2; ++round) {
        before = library.Counts();
        Wheel(-20);
        Wheel(20);
    }
    control.folium->SelectRect(id);
    control.Drag({450, 400}, {700, 900});
    const FoliumCounts after = library.Counts();
    EXPECT_EQ(after.tilesScaled, before.tilesScaled);
    EXPECT_GT(after.paints, before.paints);
}

TEST_F(ControlView, LeavesNoTracesAndPrintsWhatItShows) {
    control.SetUp();
    control.Insert(MakeRect(300, 300, 600, 500));
    control.Insert(MakeRect(500, 400, 505, 900));
    control.Drag({450, 350}, {700, 900});
    Key('Z', VK_CONTROL);
    Key(VK_RETURN);
    Key(VK_RIGHT, VK_SHIFT);
    Key(VK_ESCAPE);
    control.Click({1100, 1300});
    const auto painted = control.Pixels();
    InvalidateRect(control.Window(), nullptr, FALSE);
    EXPECT_EQ(control.Pixels(), painted) << "the screen is as a full paint gives it";
    RECT rect = {};
    GetClientRect(control.Window(), &rect);
    const MemoryPicture picture(rect.right, rect.bottom);
    SendMessageW(control.Window(), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(picture.Dc()), PRF_CLIENT);
    EXPECT_EQ(picture.Pixels(), painted);
}

TEST_F(ControlView, TellsScreenReaders) {
    control.SetUp();
    control.Insert(MakeRect(300, 300, 600, 500));
    control.Insert(MakeRect(700, 700, 900, 900));
    control.folium->SelectRect(2);
    const ComPtr<IAccessible> page = control.Accessible();
    LONG count = 0;
    EXPECT_EQ(page->get_accChildCount(&count), S_OK);
    EXPECT_EQ(count, 2);
    const _variant_t first(1L), second(2L), none(3L);
    BSTR text = nullptr;
    EXPECT_EQ(page->get_accName(second, &text), S_OK);
    EXPECT_STREQ(_bstr_t(text, false), L"Area 2");
    EXPECT_EQ(page->get_accValue(second, &text), S_OK);
    EXPECT_STREQ(_bstr_t(text, false), L"left 70.0, top 70.0, width 20.0, height 20.0 mm");
    _variant_t out;
    EXPECT_EQ(page->get_accState(second, &out), S_OK);
    EXPECT_EQ(V_VT(&out), VT_I4);
    EXPECT_EQ(V_I4(&out) & STATE_SYSTEM_SELECTED, STATE_SYSTEM_SELECTED);
    const POINT inside = control.OnScreen({450, 400});
    EXPECT_EQ(page->accHitTest(inside.x, inside.y, &out), S_OK);
    EXPECT_EQ(V_I4(&out), 1);
    control.Told();
    EXPECT_EQ(page->accDoDefaultAction(first), S_OK);
    EXPECT_EQ(control.Told(), "selected1");
    EXPECT_EQ(page->get_accName(none, &text), E_INVALIDARG);
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

    // It is called by the table of its operations alone.
    UINT infos = 5;
    ComPtr<IDispatch> dispatch;
    unknown.GetInterfacePtr()->QueryInterface(&dispatch);
    EXPECT_EQ(dispatch->GetTypeInfoCount(&infos), S_OK);
    EXPECT_EQ(infos, 0U);

    // Drawn by its container into a picture, without its window.
    ComPtr<IViewObject2> view;
    unknown.GetInterfacePtr()->QueryInterface(&view);
    const MemoryPicture picture(100, 140);
    const RECTL bounds = {0, 0, 100, 140};
    EXPECT_EQ(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, picture.Dc(), &bounds, nullptr, nullptr, 0),
              S_OK);
    EXPECT_EQ(picture.Pixels()[70 * 100 + 50], 0xc0c0c0U);
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
