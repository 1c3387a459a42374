// Decoding a page of each kind, by the imaging library of an earlier release and by this one, in turns in one process.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include "bench/Bench.h"
#include "refhost/imaging/HostImaging.h"

namespace bench {

namespace {

namespace fs = std::filesystem;

class Imaging {
public:
    explicit Imaging(const fs::path& dll)
        : m_dll(LoadLibraryExW(dll.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)),
          m_open(Export<decltype(&HostOpenImageFile)>("HostOpenImageFile")),
          m_load(Export<decltype(&HostLoadFrame)>("HostLoadFrame")),
          m_close(Export<decltype(&HostCloseImageFile)>("HostCloseImageFile")),
          m_text(Export<decltype(&HostImagingErrorText)>("HostImagingErrorText")),
          m_release(reinterpret_cast<decltype(&HostReleaseImage)>(
              reinterpret_cast<void*>(GetProcAddress(m_dll, MAKEINTRESOURCEA(83))))) {}

    bool Decodes(const fs::path& page) const {
        void* file = nullptr;
        void* image = nullptr;
        uint32_t frames = 0;
        if (m_open(page.c_str(), &file, &frames) != 1) return false;
        const bool good = m_load(file, 0, 0, 0, &image) == 1;
        if (good) m_release(image);
        m_close(file);
        return good;
    }
    void Decode(const fs::path& page) const {
        if (!Decodes(page)) Fail(page.filename().string() + ": " + fs::path(m_text()).string());
    }

private:
    template <class Function>
    Function Export(const char* name) const {
        void* found = reinterpret_cast<void*>(GetProcAddress(m_dll, name));
        Require(found != nullptr, "an imaging library cannot be loaded");
        return reinterpret_cast<Function>(found);
    }

    HMODULE m_dll;
    decltype(&HostOpenImageFile) m_open;
    decltype(&HostLoadFrame) m_load;
    decltype(&HostCloseImageFile) m_close;
    decltype(&HostImagingErrorText) m_text;
    decltype(&HostReleaseImage) m_release;
};

}  // namespace

// The environment names the earlier library and a folder of pages.
void Decoding() {
    const char* before = std::getenv("BENCH_BEFORE");
    const char* folder = std::getenv("BENCH_PAGES");
    Require(before != nullptr && folder != nullptr, "decode needs BENCH_BEFORE and BENCH_PAGES");
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    const Imaging theirs{fs::path(before)};
    const Imaging ours{fs::path(self).replace_filename(L"HostImaging.dll")};
    std::vector<fs::path> pages;
    for (const auto& entry : fs::directory_iterator(folder)) pages.push_back(entry.path());
    std::sort(pages.begin(), pages.end());
    for (const fs::path& page : pages) {
        if (!theirs.Decodes(page)) {
            std::fprintf(stderr, "bench: the earlier library cannot read %s\n", page.filename().string().c_str());
            continue;
        }
        Compare(
            "decode", page.filename().string(), [&] { return TimeOf([&] { ours.Decode(page); }, 1); },
            [&] { return TimeOf([&] { theirs.Decode(page); }, 1); }, 9);
    }
}

}  // namespace bench
