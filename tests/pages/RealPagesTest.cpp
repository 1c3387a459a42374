// Real fax pages masked by a required and by an ignored set with the same area: what one keeps the other leaves out.
#include <gtest/gtest.h>

#include <memory>

#include "refhost/com/ClassRegistration.h"
#include "refhost/imaging/HostImaging.h"
#include "refhost/settings/HostSettings.h"
#include "zonwick/zonwick.h"

namespace {

struct ReleaseImage {
    void operator()(void* image) const { HostReleaseImage(image); }
};
using Image = std::unique_ptr<void, ReleaseImage>;

Image LoadPage(const std::wstring& path) {
    void* file = nullptr;
    void* image = nullptr;
    uint32_t frames = 0;
    if (!HostOpenImageFile(path.c_str(), &file, &frames)) return nullptr;
    HostLoadFrame(file, 0, 0, 0, &image);
    HostCloseImageFile(file);
    return Image(image);
}

// The colour of a pixel of a 1-bit image.
uint32_t Pixel(const HostImagePixels& pixels, uint32_t x, uint32_t y) {
    const uint8_t* row = pixels.topRow + static_cast<ptrdiff_t>(y) * pixels.stride;
    return pixels.palette[(row[x / 8] >> (7 - x % 8)) & 1];
}

// Whether a pixel of an axis lies at least partly between two lengths: 254 tenths of a millimetre are an inch.
bool Touches(uint32_t pixel, uint32_t dpi, uint32_t low, uint32_t high) {
    return pixel * 254 < high * dpi && (pixel + 1) * 254 > low * dpi;
}

TEST(RealPages, TheTwoResultsOfAPageAreExactComplements) {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    {
        const com::ClassRegistration settings(L"HostSettings.dll",
                                              {host::kClsidSettingsNode, host::kClsidSettingsTransfer});
        const com::HostDll module(L"Zonwick.dll");
        const auto init = module.Export<decltype(SAInit)>("SAInit");
        const auto create = module.Export<decltype(CreateAreaSetImage)>("CreateAreaSetImage");
        const auto release = module.Export<decltype(FreeAreaSetImage)>("FreeAreaSetImage");
        ISettingsNode* root = nullptr;
        const auto open = settings.Dll().Export<decltype(HostSettingsOpenFile)>("HostSettingsOpenFile");
        ASSERT_EQ(open(SETTINGS_FILE, &root), S_OK);
        init(root);
        root->Release();

        const auto mask = [&](void* image, const wchar_t* name) {
            BYTE* block = nullptr;
            DWORD length = 0;
            void* masked = nullptr;
            if (create(image, name, &block, &length)) HostImageFromBmp(block, length, &masked);
            release(block);
            return Image(masked);
        };
        // Both samples have the one area (200, 600) to (2000, 2400).
        for (int page = 1; page <= 8; ++page) {
            SCOPED_TRACE(page);
            const Image source = LoadPage(std::wstring(PAGES_DIR) + L"/ccitt" + std::to_wstring(page) + L".tif");
            ASSERT_NE(source, nullptr) << "scripts/test and scripts/run decode the pages into build/pages";
            const Image kept = mask(source.get(), L"Letter body");
            const Image left = mask(source.get(), L"Without letter body");
            ASSERT_TRUE(kept != nullptr && left != nullptr);
            HostImageInfo info = {};
            HostImagePixels whole = {}, inside = {}, outside = {};
            ASSERT_TRUE(HostGetImageInfo(source.get(), &info) && HostGetImagePixels(source.get(), &whole) &&
                        HostGetImagePixels(kept.get(), &inside) && HostGetImagePixels(left.get(), &outside));
            ASSERT_EQ(info.bitsPerPixel, 1u);
            EXPECT_NEAR(info.dpiX, 204, 0.5);
            EXPECT_NEAR(info.dpiY, 196, 0.5);

            uint64_t wrong = 0;
            uint64_t black = 0;
            for (uint32_t y = 0; y < info.height; ++y) {
                for (uint32_t x = 0; x < info.width; ++x) {
                    const bool in = Touches(x, 204, 200, 2000) && Touches(y, 196, 600, 2400);
                    const uint32_t was = Pixel(whole, x, y);
                    wrong += Pixel(inside, x, y) != (in ? was : 0xFFFFFF);
                    wrong += Pixel(outside, x, y) != (in ? 0xFFFFFF : was);
                    black += was == 0;
                }
            }
            EXPECT_EQ(wrong, 0u);
            EXPECT_GT(black, 10000u);
        }
        init(nullptr);
    }
    CoUninitialize();
}

}  // namespace
