#pragma once
// What tests ask Zonwick.dll for when it is loaded, and a page for it to mask.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "refhost/com/ClassRegistration.h"
#include "refhost/imaging/HostImaging.h"
#include "zonwick/zonwick.h"

namespace test {

template <class Function>
Function* ModuleExport(const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"Zonwick.dll"), name)));
}

// All sets as the exports tell them, a line each: identifier, name, flags, the sides of each area.
inline std::wstring ModuleSets() {
    std::wstring text;
    DWORD id = 0;
    for (int i = 0; ModuleExport<decltype(::SAMapIndex2ID)>("SAMapIndex2ID")(i, &id); ++i) {
        SAAreaInfo info = {};
        EXPECT_TRUE(ModuleExport<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(id, &info));
        std::vector<RECT> rects(info.nAreas);
        EXPECT_TRUE(ModuleExport<decltype(::SAGetAreaRects)>("SAGetAreaRects")(id, rects.data()));
        text += std::to_wstring(id) + L" " + info.szName + L" " + std::to_wstring(info.dwFlags);
        for (const RECT& rect : rects) {
            for (const LONG side : {rect.left, rect.top, rect.right, rect.bottom}) text += L" " + std::to_wstring(side);
        }
        text += L"\n";
    }
    return text;
}

// The first page of a file, as the imaging library has it.
class LoadedPage {
public:
    explicit LoadedPage(const wchar_t* path) {
        void* file = nullptr;
        uint32_t frames = 0;
        EXPECT_TRUE(m_library.Export<decltype(::HostOpenImageFile)>("HostOpenImageFile")(path, &file, &frames));
        EXPECT_TRUE(m_library.Export<decltype(::HostLoadFrame)>("HostLoadFrame")(file, 0, 0, 0, &m_image));
        m_library.Export<decltype(::HostCloseImageFile)>("HostCloseImageFile")(file);
    }
    ~LoadedPage() {
        // Exported without a name.
        reinterpret_cast<decltype(&::HostReleaseImage)>(
            reinterpret_cast<void*>(GetProcAddress(m_library.Get(), MAKEINTRESOURCEA(83))))(m_image);
    }
    LoadedPage(const LoadedPage&) = delete;
    LoadedPage& operator=(const LoadedPage&) = delete;

    void* Get() const { return m_image; }
    // The block of the page masked by a set; empty when it is refused.
    std::string Masked(const wchar_t* set) const {
        BYTE* block = nullptr;
        DWORD length = 0;
        if (!ModuleExport<decltype(::CreateAreaSetImage)>("CreateAreaSetImage")(m_image, set, &block, &length))
            return {};
        std::string content(block, block + length);
        ModuleExport<decltype(::FreeAreaSetImage)>("FreeAreaSetImage")(block);
        return content;
    }

private:
    com::HostDll m_library{L"HostImaging.dll"};
    void* m_image = nullptr;
};

}  // namespace test
