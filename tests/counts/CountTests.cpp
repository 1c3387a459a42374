// What each operation costs in locks, calls of the host and blocks of a page's size, in Zonwick.dll among the host's
// real libraries.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "faults/ImportHook.h"
#include "processes/CountedSettings.h"
#include "refhost/imaging/HostImaging.h"
#include "refhost/imaging/Image.h"
#include "zonwick/zonwick.h"

namespace {

struct Locks {
    int taken = 0, open = 0, deepest = 0;
};
Locks g_locks;
size_t g_pageBytes;
int g_pageBlocks;

DWORD WINAPI CountedWait(HANDLE handle, DWORD milliseconds) {
    const DWORD result = WaitForSingleObject(handle, milliseconds);
    ++g_locks.taken;
    g_locks.deepest = std::max(g_locks.deepest, ++g_locks.open);
    return result;
}
BOOL WINAPI CountedRelease(HANDLE handle) {
    --g_locks.open;
    return ReleaseMutex(handle);
}
void* CountedMalloc(size_t size) {
    if (g_pageBytes != 0 && size >= g_pageBytes) ++g_pageBlocks;
    return std::malloc(size);
}

template <class Function>
void* Pointer(Function* function) {
    return reinterpret_cast<void*>(function);
}

// The function that the libraries import; its name here stands for a jump to it.
void* SystemMalloc() {
    return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"msvcrt.dll"), "malloc"));
}

class Counts : public testing::Test {
protected:
    void SetUp() override {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        m_settings.emplace();
        m_module.emplace(L"Zonwick.dll");
        g_locks = {};
        ASSERT_TRUE(m_hooks.HookImport(m_module->Get(), Pointer(&WaitForSingleObject), Pointer(&CountedWait)));
        ASSERT_TRUE(m_hooks.HookImport(m_module->Get(), Pointer(&ReleaseMutex), Pointer(&CountedRelease)));
        ASSERT_TRUE(m_hooks.HookImport(m_module->Get(), SystemMalloc(), Pointer(&CountedMalloc)));
        ASSERT_TRUE(m_hooks.HookImport(GetModuleHandleW(L"HostImaging.dll"), SystemMalloc(), Pointer(&CountedMalloc)));
    }
    void TearDown() override {
        m_hooks.~PointerHooks();
        new (&m_hooks) test::PointerHooks;
        m_module.reset();
        m_settings.reset();
        DeleteFileW(m_path.c_str());
        CoUninitialize();
    }

    template <class Function>
    Function* Export(const char* name) const {
        return m_module->Export<Function>(name);
    }
    // `count` sets "Set 1" and so on.
    void Use(int count, int areas) {
        wchar_t folder[MAX_PATH];
        GetTempPathW(MAX_PATH, folder);
        m_path = std::wstring(folder) + L"counts" + std::to_wstring(GetCurrentProcessId()) + L".json";
        FILE* file = _wfopen(m_path.c_str(), L"wb");
        ASSERT_NE(file, nullptr);
        constexpr const char* kRect =
            "{\"Position:left\":100,\"Position:top\":100,\"Position:right\":300,\"Position:bottom\":300}";
        for (int id = 1; id <= count; ++id) {
            std::fprintf(file, "%s\"%#010x\":{\"Name\":\"Set %d\",\"Flags\":0,\"DisplayRect\":%s,\"Rect\":{",
                         id == 1 ? "{" : ",", static_cast<unsigned>(id), id, kRect);
            for (int i = 0; i < areas; ++i) std::fprintf(file, "%s\"%d\":%s", i > 0 ? "," : "", i, kRect);
            std::fputs("}}", file);
        }
        std::fputs("}", file);
        std::fclose(file);
        m_root = m_settings->OpenFile(m_path.c_str());
        ASSERT_NE(m_root, nullptr);
        Export<decltype(::SAInit)>("SAInit")(m_root);
        m_root = nullptr;
        DWORD id = 0;
        ASSERT_TRUE(Export<decltype(::SAMapIndex2ID)>("SAMapIndex2ID")(count - 1, &id));
    }
    static Locks LocksOf(const std::function<void()>& operation) {
        g_locks = {};
        operation();
        return g_locks;
    }

    std::wstring m_path;
    win32::ComPtr<ISettingsNode> m_root;
    std::optional<test::CountedSettings> m_settings;
    std::optional<com::HostDll> m_module;
    test::PointerHooks m_hooks;
};

TEST_F(Counts, EachQueryTakesTheLockOnce) {
    Use(20, 3);
    DWORD id = 0;
    SAAreaInfo info = {};
    RECT rects[3];
    const struct {
        const char* name;
        std::function<void()> query;
    } cases[] = {
        {"SAMapIndex2ID", [&] { Export<decltype(::SAMapIndex2ID)>("SAMapIndex2ID")(7, &id); }},
        {"SAMapID2Index", [&] { Export<decltype(::SAMapID2Index)>("SAMapID2Index")(8); }},
        {"SAGetAreaInfo", [&] { Export<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(8, &info); }},
        {"SAGetAreaRects", [&] { Export<decltype(::SAGetAreaRects)>("SAGetAreaRects")(8, rects); }},
        {"no such set", [&] { Export<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(99, &info); }},
    };
    for (const auto& [name, query] : cases) {
        const Locks locks = LocksOf(query);
        EXPECT_EQ(locks.taken, 1) << name;
        EXPECT_EQ(locks.deepest, 1) << name;
        EXPECT_EQ(locks.open, 0) << name;
    }
}

// An image by the last of many sets: one hold of the lock, and one block for the masked pixels besides the caller's.
TEST_F(Counts, CreateAreaSetImageAmongManySets) {
    Use(10000, 1);
    auto page = std::make_shared<reader::Bitmap>(1240, 1754, 24);
    page->resolution = {150, 150};
    std::fill_n(page->Data(), page->Size(), uint8_t{0});
    const imaging::Image source(page);
    std::vector<uint8_t> bmp(source.BmpSize());
    source.WriteBmp(bmp.data());
    void* image = nullptr;
    ASSERT_TRUE(HostImageFromBmp(bmp.data(), bmp.size(), &image));

    const auto create = Export<decltype(::CreateAreaSetImage)>("CreateAreaSetImage");
    BYTE* block = nullptr;
    DWORD length = 0;
    g_pageBytes = page->Size();
    g_pageBlocks = 0;
    const Locks locks = LocksOf([&] { EXPECT_TRUE(create(image, L"Set 10000", &block, &length)); });
    g_pageBytes = 0;
    EXPECT_EQ(locks.taken, 1);
    EXPECT_EQ(locks.open, 0);
    EXPECT_EQ(g_pageBlocks, 2);
    EXPECT_EQ(length, bmp.size());
    Export<decltype(::FreeAreaSetImage)>("FreeAreaSetImage")(block);
    HostReleaseImage(image);
}

// Loading asks the host a fixed number of times for each set and each area.
TEST_F(Counts, LoadingIsLinear) {
    const auto calls = [&](int sets, int areas) {
        test::Calls().count = 0;
        Use(sets, areas);
        return test::Calls().count;
    };
    const int base = calls(10, 0);
    const int perSet = (calls(110, 0) - base) / 100;
    const int perArea = (calls(10, 10) - base) / 100;
    EXPECT_LE(perSet, 12);
    EXPECT_LE(perArea, 5);
    EXPECT_EQ(calls(1000, 10), base + 990 * perSet + 10000 * perArea);
}

}  // namespace
