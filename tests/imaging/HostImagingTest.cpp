// The built DLL over real files: codecs, handles, outputs and failures.
#include "refhost/imaging/HostImaging.h"

#include <gtest/gtest.h>
#include <objbase.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <fstream>

#include "faults/ImportHook.h"
#include "imaging/TestImage.h"
#include "refhost/imaging/Image.h"

namespace {

using reader::Bitmap;

const std::string kData = TEST_DATA_DIR;
const std::string kFaxPages = std::string(SAMPLES_DIR) + "/fax-pages.tif";

std::wstring Wide(const std::string& text) {
    return {text.begin(), text.end()};
}

std::vector<uint8_t> ReadTestFile(const std::wstring& path) {
    std::ifstream file(path.c_str(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

struct Free {
    void operator()(void* block) const { std::free(block); }
};
template <void (*Release)(void*)>
struct Releaser {
    void operator()(void* handle) const { Release(handle); }
};
using Handle = std::unique_ptr<void, Releaser<HostReleaseImage>>;
using File = std::unique_ptr<void, Releaser<HostCloseImageFile>>;

File Open(const std::wstring& path, uint32_t frames = 1) {
    void* file = nullptr;
    uint32_t count = 0;
    EXPECT_EQ(HostOpenImageFile(path.c_str(), &file, &count), 1) << HostImagingErrorText();
    EXPECT_EQ(count, frames);
    return File(file);
}

Handle Load(void* file, uint32_t frame = 0, double dpiX = 0, double dpiY = 0) {
    void* image = nullptr;
    EXPECT_EQ(HostLoadFrame(file, frame, dpiX, dpiY, &image), 1) << HostImagingErrorText();
    return Handle(image);
}

// The image as the module hands it to its host.
std::vector<uint8_t> CopyBlock(void* image) {
    void* block = nullptr;
    DWORD length = 0;
    EXPECT_EQ(HostCopyImage(image, 4, &block, &length, 0), 1) << HostImagingErrorText();
    const std::unique_ptr<void, Free> owner(block);
    const auto* bytes = static_cast<const uint8_t*>(block);
    return {bytes, bytes + length};
}

std::shared_ptr<const Bitmap> Copied(void* image) {
    return imaging::ReadBmp(CopyBlock(image));
}

Handle ImageOf(const std::shared_ptr<Bitmap>& bitmap) {
    const imaging::Image source(bitmap);
    std::vector<uint8_t> block(source.BmpSize());
    source.WriteBmp(block.data());
    void* image = nullptr;
    EXPECT_EQ(HostImageFromBmp(block.data(), block.size(), &image), 1) << HostImagingErrorText();
    return Handle(image);
}

Handle MaskedBy(void* image, bool keep, const RECT& area) {
    AreaMask mask = {keep ? 1u : 0u, 1, {area}};
    void* masked = nullptr;
    EXPECT_EQ(HostCreateMaskedImage(image, &masked, &mask, 1), 1) << HostImagingErrorText();
    return Handle(masked);
}

void ExpectSamePixels(const Bitmap& left, const Bitmap& right) {
    ASSERT_EQ(left.Width(), right.Width());
    ASSERT_EQ(left.Height(), right.Height());
    for (uint32_t y = 0; y < left.Height(); ++y) {
        for (uint32_t x = 0; x < left.Width(); ++x) {
            ASSERT_EQ(ColourAt(left, x, y), ColourAt(right, x, y)) << x << "," << y;
        }
    }
}

class HostImaging : public testing::Test {
protected:
    static void SetUpTestSuite() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    static void TearDownTestSuite() { CoUninitialize(); }

    HostImaging() {
        wchar_t folder[MAX_PATH];
        GetTempPathW(MAX_PATH, folder);
        m_folder = std::wstring(folder) + L"imaging-test-" + std::to_wstring(GetCurrentProcessId()) + L"\\";
        CreateDirectoryW(m_folder.c_str(), nullptr);
    }
    ~HostImaging() override {
        for (const std::wstring& name : Files()) DeleteFileW((m_folder + name).c_str());
        RemoveDirectoryW(m_folder.c_str());
    }

    std::vector<std::wstring> Files() const {
        std::vector<std::wstring> names;
        WIN32_FIND_DATAW found;
        const HANDLE search = FindFirstFileW((m_folder + L"*").c_str(), &found);
        if (search == INVALID_HANDLE_VALUE) return names;
        do {
            if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) names.emplace_back(found.cFileName);
        } while (FindNextFileW(search, &found));
        FindClose(search);
        return names;
    }

    void Save(const std::wstring& path, HostImageFormat format, const std::vector<void*>& images) const {
        void* output = nullptr;
        ASSERT_EQ(HostCreateOutput(path.c_str(), format, &output), 1) << HostImagingErrorText();
        for (void* image : images) ASSERT_EQ(HostAppendImage(output, image), 1) << HostImagingErrorText();
        ASSERT_EQ(HostCommitOutput(output), 1) << HostImagingErrorText();
    }

    std::wstring m_folder;
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
            Save(m_folder + name, format, {image.get()});
            const File file = Open(m_folder + name);
            const Handle loaded = Load(file.get());
            ExpectSamePixels(*bitmap, *Copied(loaded.get()));
            HostImageInfo info = {};
            ASSERT_EQ(HostGetImageInfo(loaded.get(), &info), 1);
            EXPECT_EQ(info.dpiX, 204);
            EXPECT_EQ(info.dpiY, 196);
            EXPECT_EQ(info.resolutionAssumed, 0u);
            EXPECT_EQ(info.bitsPerPixel == 1, bits % 100 == 1) << "1-bit pages stay packed, and only they";
        }
    }
    EXPECT_EQ(Files().size(), 3u) << "nothing but the pages";
}

TEST_F(HostImaging, DecodesWhatScannersWrite) {
    const File reference = Open(Wide(kData + "/bits-none.tif"));
    const auto expected = Copied(Load(reference.get()).get());
    EXPECT_EQ(ColourAt(*expected, 12, 12), 0u);
    EXPECT_EQ(ColourAt(*expected, 2, 2), 0xFFFFFFu);
    for (const char* codec : {"packbits", "lzw", "zip", "g31d", "g4"}) {
        const File file = Open(Wide(kData + "/bits-" + codec + ".tif"));
        const Handle image = Load(file.get());
        HostImageInfo info = {};
        HostGetImageInfo(image.get(), &info);
        EXPECT_EQ(info.bitsPerPixel, 1u) << codec;
        EXPECT_EQ(info.dpiX * 1000 + info.dpiY, 204196) << codec;
        ExpectSamePixels(*expected, *Copied(image.get()));
    }
    struct Case {
        const char* name;
        uint32_t bits;
        double dpi;
        bool assumed;
    };
    const Case cases[] = {{"rgb.jpg", 24, 300, false},
                          {"grey.jpg", 8, 300, false},
                          {"palette16.png", 8, 300, false},
                          {"no-resolution.png", 24, 200, true},
                          {"grey-packbits-cm.tif", 8, 300, false},
                          {"rgb-zip-bigendian.tif", 24, 300, false},
                          {"rgb-lzw.tif", 24, 300, false},
                          {"rgb16.png", 24, 300, false},
                          {"alpha.png", 24, 300, false}};
    for (const Case& item : cases) {
        const File file = Open(Wide(kData + "/" + item.name));
        const Handle image = Load(file.get());
        HostImageInfo info = {};
        ASSERT_EQ(HostGetImageInfo(image.get(), &info), 1) << item.name;
        EXPECT_EQ(info.bitsPerPixel, item.bits) << item.name;
        EXPECT_EQ(info.dpiX, item.dpi) << item.name;
        EXPECT_EQ(info.resolutionAssumed != 0, item.assumed) << item.name;
        EXPECT_EQ(info.width * 100 + info.height, 6147u) << item.name;
    }
}

TEST_F(HostImaging, FramesAndTheirBytes) {
    const File file = Open(Wide(kFaxPages), 3);
    for (uint32_t frame = 0; frame < 3; ++frame) {
        const auto page = Copied(Load(file.get(), frame).get());
        // Page n has n + 1 bars.
        for (uint32_t bar = 0; bar < 3; ++bar) {
            EXPECT_EQ(ColourAt(*page, 500, 230 + bar * 200), bar <= frame ? 0u : 0xFFFFFFu) << frame;
        }
        void* block = nullptr;
        size_t length = 0;
        ASSERT_EQ(HostCopyFrameBytes(file.get(), frame, &block, &length), 1) << HostImagingErrorText();
        void* single = nullptr;
        uint32_t frames = 0;
        ASSERT_EQ(HostOpenImageMemory(block, length, &single, &frames), 1) << HostImagingErrorText();
        HostFreeBlock(block);
        const File singleFile(single);
        EXPECT_EQ(frames, 1u);
        ExpectSamePixels(*page, *Copied(Load(single).get()));
    }
    void* image = nullptr;
    EXPECT_EQ(HostLoadFrame(file.get(), 3, 0, 0, &image), 0);
    EXPECT_NE(std::wcsstr(HostImagingErrorText(), L"no page 4"), nullptr) << HostImagingErrorText();
}

TEST_F(HostImaging, ResolutionIsOverriddenPerAxis) {
    const File file = Open(Wide(kFaxPages), 3);
    const Handle image = Load(file.get(), 0, 0, 98);
    HostImageInfo info = {};
    HostGetImageInfo(image.get(), &info);
    EXPECT_EQ(info.dpiX, 204);
    EXPECT_EQ(info.dpiY, 98);
    EXPECT_EQ(info.resolutionAssumed, 0u);
    // One inch of page is 98 rows now.
    const auto masked = Copied(MaskedBy(image.get(), false, {0, 0, 3000, 508}).get());
    EXPECT_EQ(ColourAt(*masked, 500, 102), 0xFFFFFFu) << "frame line inside";
    EXPECT_EQ(ColourAt(*masked, 500, 195), 0xFFFFFFu);
    EXPECT_EQ(ColourAt(*masked, 500, 230), 0u) << "bar below";
}

TEST_F(HostImaging, MaskedPagesOfAllKindsAreComplementsInSavedFiles) {
    for (const char* name : {"bits-g4.tif", "grey.jpg", "palette16.png", "rgb.jpg", "alpha.png"}) {
        SCOPED_TRACE(name);
        const File file = Open(Wide(kData + "/" + name));
        const Handle image = Load(file.get());
        const RECT area = {11, 7, 35, 29};
        const Handle kept = MaskedBy(image.get(), true, area);
        const Handle ignored = MaskedBy(image.get(), false, area);
        Save(m_folder + L"both.tif", kHostFormatTiff, {kept.get(), ignored.get()});
        const File both = Open(m_folder + L"both.tif", 2);
        const auto source = Copied(image.get());
        const auto left = Copied(Load(both.get(), 0).get());
        const auto right = Copied(Load(both.get(), 1).get());
        const uint32_t paper = PaperColour(*source);
        for (uint32_t y = 0; y < source->Height(); ++y) {
            for (uint32_t x = 0; x < source->Width(); ++x) {
                const uint32_t colour = ColourAt(*source, x, y);
                const bool keptHere = ColourAt(*left, x, y) == colour && ColourAt(*right, x, y) == paper;
                const bool ignoredHere = ColourAt(*left, x, y) == paper && ColourAt(*right, x, y) == colour;
                ASSERT_TRUE(keptHere || ignoredHere) << x << "," << y;
            }
        }
    }
}

TEST_F(HostImaging, NothingHiddenSurvives) {
    const std::wstring path = Wide(kData + "/alpha.png");
    const std::vector<uint8_t> original = ReadTestFile(path);
    const std::string_view secret = "secret note";
    ASSERT_NE(std::string_view(reinterpret_cast<const char*>(original.data()), original.size()).find(secret),
              std::string_view::npos);
    const File file = Open(path);
    const Handle masked = MaskedBy(Load(file.get()).get(), false, {0, 0, 20, 20});
    Save(m_folder + L"a.png", kHostFormatPng, {masked.get()});
    Save(m_folder + L"a.tif", kHostFormatTiff, {masked.get()});
    for (const wchar_t* name : {L"a.png", L"a.tif"}) {
        const std::vector<uint8_t> bytes = ReadTestFile(m_folder + name);
        EXPECT_EQ(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()).find(secret),
                  std::string_view::npos);
    }
}

TEST_F(HostImaging, CutOffFilesFailAndSayWhy) {
    for (const char* name :
         {"/rgb.jpg", "/palette16.png", "/bits-none.tif", "/rgb-zip-bigendian.tif", "/bits-g4.tif"}) {
        const std::vector<uint8_t> whole = ReadTestFile(Wide(kData + name));
        const File wholeFile = Open(Wide(kData + name));
        const auto expected = Copied(Load(wholeFile.get()).get());
        for (size_t length = 0; length < whole.size(); length += 1 + whole.size() / 97) {
            SCOPED_TRACE(testing::Message() << name << " cut to " << length);
            void* file = nullptr;
            uint32_t frames = 0;
            void* image = nullptr;
            if (HostOpenImageMemory(whole.data(), length, &file, &frames)) {
                const File owner(file);
                if (HostLoadFrame(file, 0, 0, 0, &image)) {
                    // Only what is not needed was missing.
                    ExpectSamePixels(*expected, *Copied(Handle(image).get()));
                    continue;
                }
            }
            EXPECT_GT(std::wcslen(HostImagingErrorText()), 30u) << HostImagingErrorText();
        }
    }
}

TEST_F(HostImaging, BadArgumentsAndHandlesFail) {
    void* out = nullptr;
    uint32_t frames = 0;
    EXPECT_EQ(HostOpenImageFile((m_folder + L"none.tif").c_str(), &out, &frames), 0);
    EXPECT_NE(std::wcsstr(HostImagingErrorText(), L"none.tif: there is no such file"), nullptr)
        << HostImagingErrorText();
    EXPECT_EQ(HostOpenImageFile(m_folder.c_str(), &out, &frames), 0) << "a folder";
    EXPECT_EQ(HostOpenImageFile(nullptr, &out, &frames), 0);
    EXPECT_EQ(HostOpenImageMemory("this is a text, not an image", 28, &out, &frames), 0);
    EXPECT_NE(std::wcsstr(HostImagingErrorText(), L"known format"), nullptr) << HostImagingErrorText();
    EXPECT_EQ(HostLoadFrame(nullptr, 0, 0, 0, &out), 0);

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
    const std::wstring path = m_folder + L"page.png";
    Save(path, kHostFormatPng, {image.get()});
    const std::vector<uint8_t> before = ReadTestFile(path);

    void* output = nullptr;
    ASSERT_EQ(HostCreateOutput(path.c_str(), kHostFormatPng, &output), 1);
    ASSERT_EQ(HostAppendImage(output, image.get()), 1);
    EXPECT_EQ(HostAppendImage(output, image.get()), 0) << "a second page";
    HostDropOutput(output);
    ASSERT_EQ(HostCreateOutput(path.c_str(), kHostFormatTiff, &output), 1);
    EXPECT_EQ(HostCommitOutput(output), 0) << "no page";
    EXPECT_EQ(HostCreateOutput((m_folder + L"no\\such\\folder.png").c_str(), kHostFormatPng, &output), 0);
    EXPECT_EQ(HostCreateOutput(path.c_str(), 9, &output), 0);
    EXPECT_EQ(HostCreateOutput(path.c_str(), kHostFormatPng | kHostFormatNewFile, &output), 1);
    EXPECT_EQ(HostAppendImage(output, image.get()), 1);
    EXPECT_EQ(HostCommitOutput(output), 0) << "a new file in place of another";
    EXPECT_EQ(Files(), std::vector<std::wstring>{L"page.png"});
    EXPECT_EQ(ReadTestFile(path), before);
}

// A disk with room for so many bytes: the write that crosses its end takes a part and succeeds, the next one fails.
size_t g_room = 0;
BOOL WINAPI WriteToFullDisk(HANDLE file, const void* bytes, DWORD length, DWORD* written, OVERLAPPED* place) {
    *written = 0;
    SetLastError(ERROR_DISK_FULL);
    if (g_room == 0) return FALSE;
    const auto part = static_cast<DWORD>(std::min<size_t>(g_room, length));
    g_room -= part;
    return WriteFile(file, bytes, part, written, place);
}

TEST_F(HostImaging, ADiskThatIsFullAtAnyByteKeepsTheOlderFile) {
    const Handle image = ImageOf(MakeTestImage(40, 9, 8, 200, 200));
    const std::wstring path = m_folder + L"page";
    const std::vector<uint8_t> older = {'o', 'l', 'd'};
    test::PointerHooks hooks;
    ASSERT_TRUE(hooks.HookImport(GetModuleHandleW(L"HostImaging.dll"), reinterpret_cast<void*>(&WriteFile),
                                 reinterpret_cast<void*>(&WriteToFullDisk)));
    for (const HostImageFormat format : {kHostFormatPng, kHostFormatTiff, kHostFormatBmp}) {
        g_room = size_t{1} << 30;
        Save(path, format, {image.get()});
        const std::vector<uint8_t> whole = ReadTestFile(path);
        for (size_t room = 0; room < whole.size(); ++room) {
            std::ofstream(std::filesystem::path(path), std::ios::binary) << "old";
            g_room = room;
            void* output = nullptr;
            ASSERT_EQ(HostCreateOutput(path.c_str(), format, &output), 1);
            const bool appended = HostAppendImage(output, image.get()) == 1;
            ASSERT_FALSE(appended && HostCommitOutput(output) == 1) << "format " << format << ", room " << room;
            EXPECT_NE(std::wstring(HostImagingErrorText()).find(L"the disk is full"), std::wstring::npos) << room;
            if (!appended) HostDropOutput(output);
            ASSERT_EQ(Files().size(), 1u);
            ASSERT_EQ(ReadTestFile(path), older) << "format " << format << ", room " << room;
        }
    }
}

}  // namespace
