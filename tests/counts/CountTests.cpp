// What each operation costs in locks, calls of the host and blocks of a page's size, in Zonwick.dll among the host's
// real libraries.
#include <gtest/gtest.h>

#include <functional>
#include <optional>

#include "processes/CountedSettings.h"
#include "support/LoadedModule.h"

namespace {

using test::ModuleExport;

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
        m_hooks.emplace();
        const HMODULE imaging = GetModuleHandleW(L"HostImaging.dll");
        ASSERT_TRUE(m_hooks->HookImport(m_module->Get(), Pointer(&WaitForSingleObject), Pointer(&CountedWait)));
        ASSERT_TRUE(m_hooks->HookImport(m_module->Get(), Pointer(&ReleaseMutex), Pointer(&CountedRelease)));
        ASSERT_TRUE(m_hooks->HookImport(m_module->Get(), SystemMalloc(), Pointer(&CountedMalloc)));
        ASSERT_TRUE(m_hooks->HookImport(imaging, SystemMalloc(), Pointer(&CountedMalloc)));
    }
    void TearDown() override {
        m_hooks.reset();
        m_module.reset();
        m_settings.reset();
        CoUninitialize();
    }

    void Use(int sets, int areas) {
        m_settings->Write(test::SampleFile(sets, areas));
        ModuleExport<decltype(::SAInit)>("SAInit")(m_settings->Open());
        DWORD id = 0;
        ASSERT_TRUE(ModuleExport<decltype(::SAMapIndex2ID)>("SAMapIndex2ID")(sets - 1, &id));
    }
    static Locks LocksOf(const std::function<void()>& operation) {
        g_locks = {};
        operation();
        return g_locks;
    }

    std::optional<test::CountedSettings> m_settings;
    std::optional<com::HostDll> m_module;
    std::optional<test::PointerHooks> m_hooks;
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
        {"SAMapIndex2ID", [&] { ModuleExport<decltype(::SAMapIndex2ID)>("SAMapIndex2ID")(7, &id); }},
        {"SAMapID2Index", [&] { ModuleExport<decltype(::SAMapID2Index)>("SAMapID2Index")(8); }},
        {"SAGetAreaInfo", [&] { ModuleExport<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(8, &info); }},
        {"SAGetAreaRects", [&] { ModuleExport<decltype(::SAGetAreaRects)>("SAGetAreaRects")(8, rects); }},
        {"no such set", [&] { ModuleExport<decltype(::SAGetAreaInfo)>("SAGetAreaInfo")(99, &info); }},
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
    const test::LoadedPage page(SAMPLES_DIR L"/letter.tif");
    g_pageBytes = page.Masked(L"Set 10000").size() / 2;
    ASSERT_GT(g_pageBytes, 10000u);
    g_pageBlocks = 0;
    const Locks locks = LocksOf([&] { page.Masked(L"Set 10000"); });
    g_pageBytes = 0;
    EXPECT_EQ(locks.taken, 1);
    EXPECT_EQ(locks.open, 0);
    EXPECT_EQ(g_pageBlocks, 2);
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
