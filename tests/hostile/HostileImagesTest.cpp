// Damaged page files through the imaging library and the document stack: no crash, no hang, a message, and never pixels
// that look whole but are not.
#include <comdef.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <set>

#include "host/PageImage.h"
#include "hostile/HostileFiles.h"
#include "refhost/com/ClassRegistration.h"
#include "refhost/documents/HostDocuments.h"
#include "refhost/imaging/HostImaging.h"

namespace {

namespace fs = std::filesystem;
using hostile::Bytes;
using hostile::LoadAll;
using hostile::Outcome;
using hostile::Sample;

template <class Interface>
using Ptr = _com_ptr_t<_com_IIID<Interface, &__uuidof(Interface)>>;

class HostileImages : public testing::Test {
protected:
    HostileImages() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~HostileImages() override {
        std::printf("%d damaged files tried, %d told as damaged\n", m_tried, m_refused);
        CoUninitialize();
    }

    Outcome Try(const Bytes& bytes) {
        Outcome outcome = LoadAll(bytes);
        ++m_tried;
        m_refused += outcome.problem.empty() ? 0 : 1;
        return outcome;
    }

    int m_tried = 0;
    int m_refused = 0;
};

// A copy that stopped, a full disk: wherever a file ends too early, it gives its pixels or a message.
TEST_F(HostileImages, FilesThatEndTooEarlyAreTold) {
    for (const Sample& sample : hostile::Samples()) {
        const Outcome whole = LoadAll(sample.bytes);
        ASSERT_EQ(whole.problem, "") << sample.name;
        ASSERT_FALSE(whole.pixels.empty()) << sample.name;
        for (size_t length = 0; length < sample.bytes.size(); ++length) {
            const Outcome cut = Try(Bytes(sample.bytes.begin(), sample.bytes.begin() + static_cast<ptrdiff_t>(length)));
            if (cut.problem.empty()) {
                EXPECT_EQ(cut.pixels, whole.pixels) << sample.name << " of " << length << " bytes";
            } else {
                EXPECT_GT(cut.problem.size(), 20u) << "a message says what to do";
            }
        }
    }
}

TEST_F(HostileImages, ChangedBytesDoNoHarm) {
    const bool thorough = std::getenv("ZONWICK_TEST_LONG") != nullptr;
    for (const Sample& sample : hostile::Samples()) {
        // Headers and directories; pixels in between are of no interest.
        constexpr size_t kHeader = 100;
        for (size_t place = 0; place < sample.bytes.size(); ++place) {
            if (!thorough && place >= kHeader && place + kHeader < sample.bytes.size()) continue;
            Bytes bytes = sample.bytes;
            const uint8_t old = bytes[place];
            for (const int value : {0xFF, old ^ 0x80, old ^ 0x01}) {
                bytes[place] = static_cast<uint8_t>(value);
                if (bytes[place] != old) Try(bytes);
            }
        }
    }
}

TEST_F(HostileImages, MalformedTiffsDoNoHarm) {
    ASSERT_GT(hostile::Collection().size(), 30u) << "install the package checkit-tiff";
    for (const Sample& sample : hostile::Collection()) {
        SCOPED_TRACE(sample.name);
        const Outcome outcome = Try(sample.bytes);
        EXPECT_TRUE(!outcome.pixels.empty() || !outcome.problem.empty());
    }
}

// The way of the host: files in a folder, pages handed out one by one and loaded for the display.
TEST_F(HostileImages, ADocumentOfDamagedFilesTellsEachPage) {
    const com::ClassRegistration classes(L"HostDocuments.dll", {host::kClsidPageImage});
    const fs::path folder = fs::temp_directory_path() / ("hostile-" + std::to_string(GetCurrentProcessId()));
    fs::create_directories(folder);
    for (const Sample& sample : hostile::Collection()) hostile::WriteBytes(folder / sample.name, sample.bytes);
    for (const Sample& sample : hostile::Samples()) {
        for (size_t length = 16; length < sample.bytes.size(); length += sample.bytes.size() / 8) {
            const Bytes cut(sample.bytes.begin(), sample.bytes.begin() + static_cast<ptrdiff_t>(length));
            hostile::WriteBytes(folder / (std::to_string(length) + "-" + sample.name), cut);
        }
    }

    int reports = 0;
    HostDocumentsSetReporter([](void* context, const wchar_t* text) { *static_cast<int*>(context) += *text != L'\0'; },
                             &reports);
    {
        Ptr<IQuire> quire;
        Ptr<IQuireDocument> document;
        const std::wstring path = folder.wstring();
        const wchar_t* const paths[] = {path.c_str()};
        ASSERT_EQ(HostOpenDocuments(paths, 1, &quire), S_OK);
        ASSERT_EQ(quire->GetItem(0, &document), S_OK);
        LONG pages = 0;
        ASSERT_EQ(document->GetCount(&pages), S_OK);
        EXPECT_GT(pages, 100);
        for (LONG index = 0; index < std::min<LONG>(pages, 400); ++index) {
            SCOPED_TRACE(index);
            const int before = reports;
            ++m_tried;
            Ptr<IQuirePage> page;
            ASSERT_EQ(document->GetItem(index, &page), S_OK);
            if (page == nullptr) {
                ++m_refused;
                continue;
            }
            Ptr<IImageSource> source;
            Ptr<IUnknown> unknown;
            SAFEARRAY* array = nullptr;
            ASSERT_EQ(page->GetImageSource(&source), S_OK);
            ASSERT_EQ(source->GetData(&unknown), S_OK);
            ASSERT_EQ(Ptr<IImageData>(unknown)->GetBytes(&array), S_OK);
            Ptr<IImageLoader> loader;
            ASSERT_EQ(loader.CreateInstance(host::kClsidPageImage, nullptr, CLSCTX_INPROC_SERVER), S_OK);
            const HRESULT loaded = loader->LoadFromMemory(static_cast<const BYTE*>(array->pvData),
                                                          static_cast<LONG>(array->rgsabound[0].cElements));
            SafeArrayDestroy(array);
            EXPECT_TRUE(loaded == S_OK || reports > before) << "a page that cannot be shown is told";
            m_refused += loaded == S_OK ? 0 : 1;
        }
    }
    EXPECT_GT(reports, 20);
    HostDocumentsSetReporter(nullptr, nullptr);
    std::error_code error;
    fs::remove_all(folder, error);
}

}  // namespace
