// The control with the host's own pages. With ZONWICK_SCREENSHOTS naming a folder, pictures of it are left there.
#include <chrono>
#include <fstream>
#include <iterator>

#include "folium/ControlHarness.h"
#include "host/PageImage.h"
#include "win32/DialogDriver.h"

namespace test {
namespace {

class ControlPicture : public testing::Test {
protected:
    ControlPicture() { control.SetUp(); }

    ComPtr<IPageImage> LoadSample(const wchar_t* name) {
        std::ifstream file((std::wstring(SAMPLES_DIR) + name).c_str(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        ComPtr<IPageImage> page;
        ComPtr<IImageLoader> loader;
        EXPECT_EQ(page.CreateInstance(host::kClsidPageImage), S_OK);
        EXPECT_EQ(page.GetInterfacePtr()->QueryInterface(&loader), S_OK);
        EXPECT_EQ(loader->LoadFromMemory(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<LONG>(bytes.size())),
                  S_OK);
        return page;
    }

    FoliumLibrary library;
    com::ClassRegistration documents{L"HostDocuments.dll", {host::kClsidPageImage}};
    com::ClassRegistration units{L"HostUnits.dll", {host::kClsidMeasureUnits}};
    ControlHarness control;
};

TEST_F(ControlPicture, ShowsAPageWithAreas) {
    const FoliumZoom whole = {kFoliumZoomWholePage, 0};
    const FoliumDisplayOptions options = {
        GetSysColor(COLOR_3DLIGHT), RGB(255, 255, 255), RGB(255, 255, 255), 0, 0, 0, 0, 1};
    control.folium->SetZoom(&whole);
    control.folium->SetDisplayOptions(&options);
    control.folium->SetMode(3);
    const ComPtr<IPageImage> letter = LoadSample(L"/letter.tif");
    SIZE size = {};
    letter->GetSize(&size);
    ASSERT_EQ(control.folium->ShowPage(letter, nullptr), S_OK);
    const auto part = [&](double left, double top, double right, double bottom) {
        return MakeRect(static_cast<int>(size.cx * left), static_cast<int>(size.cy * top),
                        static_cast<int>(size.cx * right), static_cast<int>(size.cy * bottom));
    };
    control.Insert(part(0.1, 0.08, 0.5, 0.2));
    control.Insert(part(0.6, 0.1, 0.9, 0.16));
    control.Insert(part(0.8, 0.3, 1.02, 0.4));
    control.Insert(part(0.12, 0.72, 0.15, 0.73));
    const LONG last = control.Insert(part(0.15, 0.45, 0.7, 0.6));
    EXPECT_GT(control.PixelsOf(RGB(0, 0, 0)), 200);
    Screenshot(control.Window(), L"folium-areas");
    control.KeyWith(VK_CONTROL, 'A');
    Screenshot(control.Window(), L"folium-several");
    control.folium->SelectRect(last);
    const RECT box = control.Location(5);
    control.MoveTo({box.right, box.bottom});
    control.MouseDown();
    control.MoveTo({box.right + 30, box.bottom + 40});
    control.Pump();
    Screenshot(control.Window(), L"folium-drag");
    control.MouseUp();
    const FoliumZoom percent = {kFoliumZoomPercent, 100};
    control.folium->SetZoom(&percent);
    control.folium->SelectRect(last);
    control.Pump();
    Screenshot(control.Window(), L"folium-zoomed");
    control.folium->ShowPage(MakePage({1000, 1000}, 300, 300), nullptr);
    control.folium->SetZoom(&whole);
    control.Pump();
    Screenshot(control.Window(), L"folium-smaller-page");
}

TEST_F(ControlPicture, ShowsABlankPageByItsOtherInterface) {
    ComPtr<IImageLoader> loader;
    ASSERT_EQ(loader.CreateInstance(host::kClsidPageImage), S_OK);
    ASSERT_EQ(loader->CreateBlank(2159, 2794, 200, 200, 0), S_OK);
    void* page = nullptr;
    ASSERT_EQ(loader.GetInterfacePtr()->QueryInterface(host::kIidBlankPageImage, &page), S_OK);
    EXPECT_EQ(control.folium->ShowPage(static_cast<IPageImage*>(page), nullptr), S_OK);
    static_cast<IPageImage*>(page)->Release();
    EXPECT_GT(control.PixelsOf(RGB(255, 255, 255)), 100000);
}

// The figure is printed, not judged: how long it takes is the machine's.
TEST_F(ControlPicture, TurnsPages) {
    const FoliumZoom width = {kFoliumZoomPageWidth, 0};
    control.folium->SetZoom(&width);
    const ComPtr<IPageImage> fax = LoadSample(L"/fax-pages.tif");
    for (const auto& page : {fax, MakePage({2100, 2970}, 2480, 3508, 24), MakePage({2100, 2970}, 4960, 7016, 24)}) {
        const LONG before = library.Counts().paints;
        const auto start = std::chrono::steady_clock::now();
        control.folium->ShowPage(page, nullptr);
        RedrawWindow(control.Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        const auto end = std::chrono::steady_clock::now();
        EXPECT_EQ(library.Counts().paints - before, 1);
        std::printf("page turn %.1f ms\n", std::chrono::duration<double, std::milli>(end - start).count());
    }
}

}  // namespace
}  // namespace test
