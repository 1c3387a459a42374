// The built DLL: stacks over real files that change and vanish, and page images of good and bad bytes.
#include "refhost/documents/HostDocuments.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "host/PageImage.h"
#include "refhost/com/ClassRegistration.h"
#include "refhost/documents/PixelAccess.h"
#include "refhost/imaging/HostImaging.h"

#include <comdef.h>

_COM_SMARTPTR_TYPEDEF(IQuire, __uuidof(IQuire));
_COM_SMARTPTR_TYPEDEF(IQuireDocument, __uuidof(IQuireDocument));
_COM_SMARTPTR_TYPEDEF(IQuirePage, __uuidof(IQuirePage));
_COM_SMARTPTR_TYPEDEF(IImageSource, __uuidof(IImageSource));
_COM_SMARTPTR_TYPEDEF(IImageData, __uuidof(IImageData));
_COM_SMARTPTR_TYPEDEF(IPageImage, __uuidof(IPageImage));
_COM_SMARTPTR_TYPEDEF(IImageLoader, __uuidof(IImageLoader));
_COM_SMARTPTR_TYPEDEF(IPagePixels, __uuidof(IPagePixels));
_COM_SMARTPTR_TYPEDEF(IUnknown, __uuidof(IUnknown));

namespace {

using Bytes = std::vector<uint8_t>;

const std::wstring kSamples = SAMPLES_DIR;
const std::wstring kData = TEST_DATA_DIR;

Bytes ReadTestFile(const std::wstring& path) {
    std::ifstream file(path.c_str(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class HostDocuments : public testing::Test {
protected:
    HostDocuments() {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        m_class = std::make_unique<com::ClassRegistration>(L"HostDocuments.dll",
                                                           std::initializer_list<CLSID>{host::kClsidPageImage});
        wchar_t folder[MAX_PATH];
        GetTempPathW(MAX_PATH, folder);
        m_folder = std::wstring(folder) + L"documents-test-" + std::to_wstring(GetCurrentProcessId());
        CreateDirectoryW(m_folder.c_str(), nullptr);
        HostDocumentsSetReporter(
            [](void* context, const wchar_t* text) {
                static_cast<HostDocuments*>(context)->m_reports.emplace_back(text);
            },
            this);
    }
    ~HostDocuments() override {
        HostDocumentsSetReporter(nullptr, nullptr);
        HostDocumentsSetResolution(0, 0);
        EXPECT_TRUE(m_class->Idle()) << "objects left";
        m_class.reset();
        for (const std::wstring& path : m_written) DeleteFileW(path.c_str());
        RemoveDirectoryW(m_folder.c_str());
        CoUninitialize();
    }

    std::wstring Write(const std::wstring& name, const Bytes& bytes) {
        const std::wstring path = m_folder + L"\\" + name;
        std::ofstream(path.c_str(), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        // The clock of a file system may be coarse.
        const HANDLE file = CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, 7, nullptr, OPEN_EXISTING, 0, nullptr);
        FILETIME time = {static_cast<DWORD>(10000000 * ++m_writes), 30000000};
        SetFileTime(file, nullptr, nullptr, &time);
        CloseHandle(file);
        m_written.push_back(path);
        return path;
    }
    std::wstring Write(const std::wstring& name) { return Write(name, ReadTestFile(kData + L"/" + name)); }

    IQuirePtr Open(const std::vector<std::wstring>& paths, HRESULT expected = S_OK) {
        std::vector<const wchar_t*> texts;
        for (const std::wstring& path : paths) texts.push_back(path.c_str());
        IQuirePtr quire;
        EXPECT_EQ(HostOpenDocuments(texts.data(), static_cast<UINT>(texts.size()), &quire), expected);
        return quire;
    }
    static IQuireDocumentPtr DocumentAt(IQuire* quire, LONG index) {
        IQuireDocumentPtr document;
        EXPECT_EQ(quire->GetItem(index, &document), S_OK);
        return document;
    }
    static LONG Pages(IQuireDocument* document) {
        LONG count = -1;
        EXPECT_EQ(document->GetCount(&count), S_OK);
        return count;
    }
    // The encoded image of a page, on the way that the library takes; empty for a null page.
    static Bytes PageBytes(IQuireDocument* document, LONG index) {
        IQuirePagePtr page;
        EXPECT_EQ(document->GetItem(index, &page), S_OK);
        return page == nullptr ? Bytes{} : BytesOf(page);
    }
    static Bytes BytesOf(IQuirePage* page) {
        IImageSourcePtr source;
        IUnknownPtr unknown;
        SAFEARRAY* array = nullptr;
        EXPECT_EQ(page->GetImageSource(&source), S_OK);
        EXPECT_EQ(source->GetData(&unknown), S_OK);
        const IImageDataPtr data = unknown;
        EXPECT_EQ(data->GetBytes(&array), S_OK);
        LONG upper = -2;
        SafeArrayGetUBound(array, 1, &upper);
        const auto* bytes = static_cast<const uint8_t*>(array->pvData);
        const Bytes copy(bytes, bytes + upper + 1);
        SafeArrayDestroy(array);
        return copy;
    }
    static IImageLoaderPtr MakeImage() {
        IPageImagePtr image;
        EXPECT_EQ(image.CreateInstance(host::kClsidPageImage, nullptr, CLSCTX_INPROC_SERVER), S_OK);
        return image;
    }
    static HRESULT LoadInto(IImageLoader* loader, const Bytes& bytes) {
        return loader->LoadFromMemory(bytes.data(), static_cast<LONG>(bytes.size()));
    }
    static SIZE SizeOf(IImageLoader* loader) {
        SIZE size = {-1, -1};
        EXPECT_EQ(IPageImagePtr(loader)->GetSize(&size), S_OK);
        return size;
    }
    static PagePixels PixelsOf(IImageLoader* loader) {
        PagePixels pixels = {};
        EXPECT_EQ(IPagePixelsPtr(loader)->GetPixels(&pixels), S_OK);
        return pixels;
    }

    std::unique_ptr<com::ClassRegistration> m_class;
    std::wstring m_folder;
    std::vector<std::wstring> m_written;
    int m_writes = 0;
    std::vector<std::wstring> m_reports;
};

bool IsInk(const PagePixels& pixels, uint32_t x, uint32_t y) {
    const uint8_t byte = pixels.topRow[static_cast<ptrdiff_t>(y) * pixels.stride + x / 8];
    return pixels.palette[(byte >> (7 - x % 8)) & 1] == 0;
}

TEST_F(HostDocuments, FilesAndFoldersBecomeDocuments) {
    Write(L"grey.jpg");
    Write(L"page 10.tif", ReadTestFile(kSamples + L"/fax-pages.tif"));
    Write(L"page 9.png", ReadTestFile(kData + L"/palette16.png"));
    Write(L"notes.txt", {1, 2, 3});
    const IQuirePtr quire = Open({m_folder, kSamples + L"/fax-pages.tif", m_folder + L"\\grey.jpg"});
    LONG count = 0;
    ASSERT_EQ(quire->GetCount(&count), S_OK);
    ASSERT_EQ(count, 3);
    const IQuireDocumentPtr folder = DocumentAt(quire, 0);
    EXPECT_EQ(Pages(folder), 5);
    EXPECT_EQ(Pages(DocumentAt(quire, 1)), 3);
    EXPECT_EQ(Pages(DocumentAt(quire, 2)), 1);
    // A file of one page gives its own bytes.
    EXPECT_EQ(PageBytes(folder, 0), ReadTestFile(kData + L"/grey.jpg"));
    EXPECT_EQ(PageBytes(folder, 1), ReadTestFile(kData + L"/palette16.png"));
    // Page n of the sample has n + 1 bars.
    for (LONG page = 0; page < 3; ++page) {
        const IImageLoaderPtr image = MakeImage();
        ASSERT_EQ(LoadInto(image, PageBytes(folder, 2 + page)), S_OK);
        const PagePixels pixels = PixelsOf(image);
        EXPECT_EQ(pixels.bitsPerPixel, 1u);
        EXPECT_EQ(pixels.dpiX * 1000 + pixels.dpiY, 204196);
        for (LONG bar = 0; bar < 3; ++bar) {
            EXPECT_EQ(IsInk(pixels, 500, static_cast<uint32_t>(230 + bar * 200)), bar <= page) << page;
        }
    }
    EXPECT_EQ(m_reports.size(), 0u);
}

TEST_F(HostDocuments, PositionsOutsideGiveNull) {
    const IQuirePtr quire = Open({kSamples + L"/fax-pages.tif"});
    for (const LONG index : {-1L, 1L, 0x7FFFFFFFL}) EXPECT_EQ(DocumentAt(quire, index), nullptr);
    const IQuireDocumentPtr document = DocumentAt(quire, 0);
    for (const LONG index : {-1L, 3L, 0x7FFFFFFFL}) EXPECT_TRUE(PageBytes(document, index).empty());
    EXPECT_EQ(quire->GetCount(nullptr), E_POINTER);
    EXPECT_EQ(quire->GetItem(0, nullptr), E_POINTER);
    EXPECT_EQ(document->GetItem(0, nullptr), E_POINTER);
}

TEST_F(HostDocuments, UnreadableFilesAreNullPagesAmongOthers) {
    Write(L"1.png", ReadTestFile(kData + L"/palette16.png"));
    Write(L"2.tif", {});
    Write(L"3.png", {'n', 'o', ' ', 'i', 'm', 'a', 'g', 'e'});
    Write(L"4.png", ReadTestFile(kData + L"/palette16.png"));
    const IQuirePtr quire = Open({m_folder});
    const IQuireDocumentPtr document = DocumentAt(quire, 0);
    ASSERT_EQ(Pages(document), 4);
    EXPECT_FALSE(PageBytes(document, 0).empty());
    EXPECT_TRUE(PageBytes(document, 1).empty());
    EXPECT_TRUE(PageBytes(document, 1).empty());
    ASSERT_EQ(m_reports.size(), 1u) << "once per cause";
    EXPECT_NE(m_reports[0].find(L"2.tif: the file is empty"), std::wstring::npos);
    EXPECT_TRUE(PageBytes(document, 2).empty());
    ASSERT_EQ(m_reports.size(), 2u);
    EXPECT_NE(m_reports[1].find(L"3.png"), std::wstring::npos);
    EXPECT_FALSE(PageBytes(document, 3).empty());
}

TEST_F(HostDocuments, MissingPathsAndEmptyFolders) {
    EXPECT_EQ(Open({m_folder + L"\\none.tif"}, HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)), nullptr);
    EXPECT_NE(std::wstring(HostDocumentsErrorText()).find(L"none.tif: there is no such file"), std::wstring::npos);
    const IQuirePtr quire = Open({m_folder + L"\\none.tif", m_folder}, S_FALSE);
    LONG count = 0;
    quire->GetCount(&count);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(Pages(DocumentAt(quire, 0)), 0);
    EXPECT_NE(m_reports.back().find(L"holds no pages"), std::wstring::npos);
    EXPECT_EQ(HostOpenDocuments(nullptr, 1, nullptr), E_POINTER);
}

TEST_F(HostDocuments, FilesChangeAndVanishWhileShown) {
    const std::wstring path = Write(L"doc.tif", ReadTestFile(kSamples + L"/fax-pages.tif"));
    const IQuirePtr quire = Open({path});
    const IQuireDocumentPtr document = DocumentAt(quire, 0);
    ASSERT_EQ(Pages(document), 3);
    IQuirePagePtr shown;
    ASSERT_EQ(document->GetItem(1, &shown), S_OK);
    const Bytes before = BytesOf(shown);

    // Fewer pages now.
    const Bytes other = ReadTestFile(kData + L"/bits-g4.tif");
    Write(L"doc.tif", other);
    EXPECT_EQ(BytesOf(shown), before) << "a page that was handed out stays";
    EXPECT_TRUE(PageBytes(document, 1).empty());
    EXPECT_EQ(Pages(document), 1);
    EXPECT_EQ(PageBytes(document, 0), other);

    // Gone: positions stay, pages are null, and it is told.
    DeleteFileW(path.c_str());
    EXPECT_EQ(Pages(document), 1);
    EXPECT_TRUE(PageBytes(document, 0).empty());
    ASSERT_FALSE(m_reports.empty());
    EXPECT_NE(m_reports.back().find(L"doc.tif"), std::wstring::npos);
    EXPECT_EQ(BytesOf(shown), before);

    // Back again.
    Write(L"doc.tif", ReadTestFile(kSamples + L"/fax-pages.tif"));
    EXPECT_EQ(Pages(document), 3);
    EXPECT_EQ(PageBytes(document, 1), before);
}

TEST_F(HostDocuments, SizeComesFromTheImagesOwnResolution) {
    struct Case {
        std::wstring path;
        double dpiX, dpiY;  // override
        LONG width, height;
    };
    const Case cases[] = {{kSamples + L"/fax-pages.tif", 0, 0, 2152, 1426},  // 204 x 196
                          {kSamples + L"/fax-pages.tif", 0, 98, 2152, 2851},
                          {kData + L"/no-resolution.png", 0, 0, 77, 60},     // taken as 200
                          {kData + L"/grey-packbits-cm.tif", 0, 0, 52, 40},  // 300
                          {kData + L"/rgb.jpg", 9600, 9600, 2, 1}};
    for (const Case& item : cases) {
        HostDocumentsSetResolution(item.dpiX, item.dpiY);
        const IImageLoaderPtr image = MakeImage();
        ASSERT_EQ(LoadInto(image, ReadTestFile(item.path)), S_OK);
        EXPECT_EQ(SizeOf(image).cx, item.width);
        EXPECT_EQ(SizeOf(image).cy, item.height);
    }
}

TEST_F(HostDocuments, BadBytesLeaveThePageBefore) {
    const IImageLoaderPtr image = MakeImage();
    SIZE size = {};
    EXPECT_EQ(IPageImagePtr(image)->GetSize(&size), E_UNEXPECTED) << "no page yet";
    ASSERT_EQ(LoadInto(image, ReadTestFile(kData + L"/rgb.jpg")), S_OK);
    const SIZE good = SizeOf(image);
    Bytes cut = ReadTestFile(kData + L"/palette16.png");
    cut.resize(cut.size() / 2);
    EXPECT_TRUE(FAILED(LoadInto(image, cut)));
    EXPECT_TRUE(FAILED(LoadInto(image, {1, 2, 3})));
    EXPECT_EQ(m_reports.size(), 2u);
    EXPECT_EQ(image->LoadFromMemory(nullptr, 5), E_POINTER);
    EXPECT_EQ(image->LoadFromMemory(cut.data(), -1), E_INVALIDARG);
    EXPECT_TRUE(FAILED(image->LoadFromMemory(cut.data(), 0)));
    for (const LONG width : {0L, -1L, 0x7FFFFFFFL}) EXPECT_EQ(image->CreateBlank(width, 10, 200, 200, 0), E_INVALIDARG);
    EXPECT_EQ(SizeOf(image).cx, good.cx);
    EXPECT_EQ(PixelsOf(image).width, 61u);
}

TEST_F(HostDocuments, BlankPages) {
    const IImageLoaderPtr image = MakeImage();
    ASSERT_EQ(image->CreateBlank(2100, 2970, 200, 100, 0), S_OK);
    IUnknownPtr unknown;
    ASSERT_EQ(image->QueryInterface(host::kIidBlankPageImage, reinterpret_cast<void**>(&unknown)), S_OK);
    SIZE size = {};
    ASSERT_EQ(reinterpret_cast<IPageImage*>(unknown.GetInterfacePtr())->GetSize(&size), S_OK);
    EXPECT_EQ(size.cx * 10000 + size.cy, 21002970);
    PagePixels pixels = PixelsOf(image);
    EXPECT_EQ(pixels.width, 1654u);
    EXPECT_EQ(pixels.height, 1170u);
    EXPECT_FALSE(IsInk(pixels, 1653, 1169));
    // Impossible resolutions follow the rule for images.
    ASSERT_EQ(image->CreateBlank(254, 254, 0, 1, 0), S_OK);
    EXPECT_EQ(PixelsOf(image).width, 200u);
    ASSERT_EQ(image->CreateBlank(1, 1, 9600, 9600, 0), S_OK);
    EXPECT_EQ(SizeOf(image).cx, 1);
}

// A page of `side` x `side` pixels, 1-bit, as a BMP file: all paper but for its first pixel.
Bytes SquareBmp(uint32_t side, uint32_t dotsPerMetre) {
    const uint32_t stride = (side + 31) / 32 * 4;
    Bytes file(62 + size_t{stride} * side, 0);
    const auto put = [&](size_t at, uint32_t value) { std::memcpy(file.data() + at, &value, 4); };
    file[0] = 'B';
    file[1] = 'M';
    put(2, static_cast<uint32_t>(file.size()));
    put(10, 62);
    put(14, 40);
    put(18, side);
    put(22, side);
    put(26, 1 | 1 << 16);
    put(34, stride * side);
    put(38, dotsPerMetre);
    put(42, dotsPerMetre);
    put(46, 2);
    put(54, 0xFFFFFF);
    file[62 + size_t{stride} * (side - 1)] = 0x80;
    return file;
}

TEST_F(HostDocuments, SmallestAndLargestPages) {
    struct Case {
        uint32_t side;
        uint32_t dotsPerMetre;
        LONG size;
    };
    const Case cases[] = {{1, 7874, 1}, {1, 377953, 1}, {30000, 23622, 12700}, {30000, 39, 38100}, {30000, 0, 38100}};
    for (const Case& item : cases) {
        const IImageLoaderPtr image = MakeImage();
        ASSERT_EQ(LoadInto(image, SquareBmp(item.side, item.dotsPerMetre)), S_OK);
        const PagePixels pixels = PixelsOf(image);
        EXPECT_EQ(pixels.width, item.side);
        EXPECT_EQ(SizeOf(image).cx, item.size) << item.side << " at " << item.dotsPerMetre;
        EXPECT_TRUE(IsInk(pixels, 0, 0));
        if (item.side > 1) {
            EXPECT_FALSE(IsInk(pixels, item.side - 1, item.side - 1));
        }
    }
}

}  // namespace
