// The built DLL over real files: codecs, handles, outputs and failures.
#include "refhost/imaging/HostImaging.h"

#include <gtest/gtest.h>
#include <objbase.h>

#include <algorithm>
#include <cstdlib>
#include <cwchar>

#include "imaging/TestImage.h"
#include "support/Files.h"

namespace {

using reader::Bitmap;

namespace fs = std::filesystem;
using test::Bytes;

const fs::path kData = TEST_DATA_DIR;
const fs::path kFaxPages = SAMPLES_DIR "/fax-pages.tif";

struct Free {
    void operator()(void* block) const { std::free(block); }
};
template <void (*Release)(void*)>
struct Releaser {
    void operator()(void* handle) const { Release(handle); }
};
using Handle = std::unique_ptr<void, Releaser<HostReleaseImage>>;
using File = std::unique_ptr<void, Releaser<HostCloseImageFile>>;

File Open(const fs::path& path, uint32_t frames = 1) {
    void* file = nullptr;
    uint32_t count = 0;
    EXPECT_EQ(HostOpenImageFile(path.c_str(), &file, &count), 1) << HostImagingErrorText();
    EXPECT_EQ(count, frames);
    return File(file);
}

Handle Load(void* file, uint32_t frame = 0) {
    void* image = nullptr;
    EXPECT_EQ(HostLoadFrame(file, frame, 0, 0, &image), 1) << HostImagingErrorText();
    return Handle(image);
}

// The image as the module hands it to its host.
std::shared_ptr<const Bitmap> Copied(void* image) {
    void* block = nullptr;
    DWORD length = 0;
    EXPECT_EQ(HostCopyImage(image, 4, &block, &length, 0), 1) << HostImagingErrorText();
    const std::unique_ptr<void, Free> owner(block);
    return imaging::ReadBmp({static_cast<const uint8_t*>(block), length});
}

Handle ImageOf(const std::shared_ptr<Bitmap>& bitmap) {
    const Bytes block = BmpOf(imaging::Image(bitmap));
    void* image = nullptr;
    EXPECT_EQ(HostImageFromBmp(block.data(), block.size(), &image), 1) << HostImagingErrorText();
    return Handle(image);
}

HostImageInfo InfoOf(void* image) {
    HostImageInfo info = {};
    EXPECT_EQ(HostGetImageInfo(image, &info), 1) << HostImagingErrorText();
    return info;
}

bool ErrorHas(const wchar_t* text) {
    return std::wcsstr(HostImagingErrorText(), text) != nullptr;
}

Handle MaskedBy(void* image, bool keep, const RECT& area) {
    AreaMask mask = {keep ? 1u : 0u, 1, {area}};
    void* masked = nullptr;
    EXPECT_EQ(HostCreateMaskedImage(image, &masked, &mask, 1), 1) << HostImagingErrorText();
    return Handle(masked);
}

class HostImaging : public testing::Test {
protected:
    static void SetUpTestSuite() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    static void TearDownTestSuite() { CoUninitialize(); }

    void Save(const fs::path& path, HostImageFormat format, const std::vector<void*>& images) const {
        void* output = nullptr;
        ASSERT_EQ(HostCreateOutput(path.c_str(), format, &output), 1) << HostImagingErrorText();
        for (void* image : images) ASSERT_EQ(HostAppendImage(output, image), 1) << HostImagingErrorText();
        ASSERT_EQ(HostCommitOutput(output), 1) << HostImagingErrorText();
    }

    const test::TempFolder m_temp;
    const fs::path& m_folder = m_temp.path;
};

TEST_F(HostImaging, EveryFormatAndDepthSurvivesAFile) {
    const std::pair<HostImageFormat, const wchar_t*> formats[] = {
        {kHostFormatPng, L"page.png"}, {kHostFormatTiff, L"page.tif"}, {kHostFormatBmp, L"page.bmp"}};
    for (const auto& [format, name] : formats) {
        for (const uint32_t bits : {1u, 8u, 24u, 32u, 108u, 101u}) {
            SCOPED_TRACE(testing::Message() << "format " << format << ", bits " << bits);
            const auto bitmap = MakeTestImage(203, 1100, bits % 100, 204, 196);
            if (bits == 108) {  // a colour palette
                for (uint32_t i = 0; i < 256; ++i) bitmap->palette[i] = i * 0x010203 & 0xFFFFFF;
            }
            if (bits == 101) bitmap->palette = {0xFFFFFF, 0x800000};
            const Handle image = ImageOf(bitmap);
            const uint32_t pages = format == kHostFormatTiff ? 2 : 1;
            Save(m_folder / name, format, std::vector<void*>(pages, image.get()));
            const File file = Open(m_folder / name, pages);
            const Handle loaded = Load(file.get(), pages - 1);
            const HostImageInfo info = InfoOf(loaded.get());
            ASSERT_EQ(info.width * 10000 + info.height, 2031100u);
            EXPECT_EQ(WrongPixels(*bitmap, false, {}, *Copied(loaded.get())), 0u);
            EXPECT_EQ(info.dpiX, 204);
            EXPECT_EQ(info.dpiY, 196);
            EXPECT_EQ(info.resolutionAssumed, 0u);
            EXPECT_EQ(info.bitsPerPixel == 1, bits % 100 == 1) << "1-bit pages stay packed, and only they";
        }
    }
    EXPECT_EQ(m_temp.Files(), 3u) << "nothing but the pages";
}

TEST_F(HostImaging, PagesKeepTheirDepthAndTellTheirResolution) {
    const struct {
        const char* name;
        uint32_t bits;
        double dpi;
    } cases[] = {{"bits-g4.tif", 1, 204},      {"grey.jpg", 8, 300},   {"rgb.jpg", 24, 300}, {"palette16.png", 8, 300},
                 {"no-resolution.png", 24, 0}, {"rgb16.png", 24, 300}, {"cmyk.jpg", 24, 72}};
    for (const auto& item : cases) {
        const File file = Open(kData / item.name);
        const Handle image = Load(file.get());
        const HostImageInfo info = InfoOf(image.get());
        EXPECT_EQ(info.bitsPerPixel, item.bits) << item.name;
        EXPECT_EQ(info.dpiX, item.dpi == 0 ? 200 : item.dpi) << item.name;
        EXPECT_EQ(info.resolutionAssumed != 0, item.dpi == 0) << item.name;
    }
}

TEST_F(HostImaging, NothingHiddenSurvives) {
    constexpr const char* kSecret = "secret note";
    ASSERT_NE(test::ReadAll(kData / "alpha.png").find(kSecret), std::string::npos);
    const File file = Open(kData / "alpha.png");
    const Handle masked = MaskedBy(Load(file.get()).get(), false, {0, 0, 20, 20});
    for (const HostImageFormat format : {kHostFormatPng, kHostFormatTiff}) {
        Save(m_folder / "page", format, {masked.get()});
        EXPECT_EQ(test::ReadAll(m_folder / "page").find(kSecret), std::string::npos);
    }
}

TEST_F(HostImaging, BadArgumentsAndHandlesFail) {
    void* out = nullptr;
    uint32_t frames = 0;
    EXPECT_EQ(HostOpenImageFile((m_folder / L"none.tif").c_str(), &out, &frames), 0);
    EXPECT_TRUE(ErrorHas(L"none.tif: there is no such file")) << HostImagingErrorText();
    EXPECT_EQ(HostOpenImageFile(m_folder.c_str(), &out, &frames), 0) << "a folder";
    EXPECT_EQ(HostOpenImageFile(nullptr, &out, &frames), 0);
    EXPECT_EQ(HostOpenImageMemory("this is a text, not an image", 28, &out, &frames), 0);
    EXPECT_TRUE(ErrorHas(L"known format")) << HostImagingErrorText();
    EXPECT_EQ(HostLoadFrame(nullptr, 0, 0, 0, &out), 0);
    const File file = Open(kFaxPages, 3);
    EXPECT_EQ(HostLoadFrame(file.get(), 3, 0, 0, &out), 0);
    EXPECT_TRUE(ErrorHas(L"no page 4")) << HostImagingErrorText();

    void* stale = ImageOf(MakeTestImage(5, 5, 24, 200, 200)).get();  // released at once
    AreaMask mask = {1, 1, {{0, 0, 1, 1}}};
    DWORD length = 0;
    HostImageInfo info = {};
    for (void* handle : {static_cast<void*>(nullptr), stale, reinterpret_cast<void*>(0x1234)}) {
        EXPECT_EQ(HostCreateMaskedImage(handle, &out, &mask, 1), 0);
        EXPECT_EQ(HostCopyImage(handle, 4, &out, &length, 0), 0);
        EXPECT_EQ(HostGetImageInfo(handle, &info), 0);
        HostReleaseImage(handle);
    }
    const Handle image = ImageOf(MakeTestImage(5, 5, 24, 200, 200));
    EXPECT_EQ(HostCreateMaskedImage(image.get(), &out, nullptr, 1), 0);
    EXPECT_EQ(HostCopyImage(image.get(), 5, &out, &length, 0), 0) << "another format";
    EXPECT_EQ(out, nullptr);
}

TEST_F(HostImaging, UnfinishedOutputsLeaveNothing) {
    const Handle image = ImageOf(MakeTestImage(50, 50, 24, 200, 200));
    const fs::path path = m_folder / L"page.png";
    Save(path, kHostFormatPng, {image.get()});
    const Bytes before = test::ReadBytes(path);

    void* output = nullptr;
    ASSERT_EQ(HostCreateOutput(path.c_str(), kHostFormatPng, &output), 1);
    ASSERT_EQ(HostAppendImage(output, image.get()), 1);
    EXPECT_EQ(HostAppendImage(output, image.get()), 0) << "a second page";
    HostDropOutput(output);
    ASSERT_EQ(HostCreateOutput(path.c_str(), kHostFormatTiff, &output), 1);
    EXPECT_EQ(HostCommitOutput(output), 0) << "no page";
    EXPECT_EQ(HostCreateOutput((m_folder / L"no\\such\\folder.png").c_str(), kHostFormatPng, &output), 0);
    EXPECT_EQ(HostCreateOutput(path.c_str(), 9, &output), 0);
    EXPECT_EQ(HostCreateOutput(path.c_str(), kHostFormatPng | kHostFormatNewFile, &output), 1);
    EXPECT_EQ(HostAppendImage(output, image.get()), 1);
    EXPECT_EQ(HostCommitOutput(output), 0) << "a new file in place of another";
    EXPECT_EQ(m_temp.Files(), 1u);
    EXPECT_EQ(test::ReadBytes(path), before);
}

}  // namespace
