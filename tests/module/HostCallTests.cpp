// What a host sees of SAInit and of the module's start-up by the order and the number of its calls.
#include <cstring>

#include "module/ModuleFixture.h"

namespace {

using namespace test;

std::vector<int> g_live;  // the host's objects at each of its calls
int g_foreign;            // calls outside the module's activation context
int g_asked;              // for resources

void Note(int) {
    g_live.push_back(Host().liveObjects);
    HANDLE context = nullptr;
    GetCurrentActCtx(&context);
    if (context == nullptr) ++g_foreign;
    ReleaseActCtx(context);
}

HINSTANCE GiveResources(HINSTANCE instance) {
    ++g_asked;
    return instance;
}

using HostCalls = ModuleTest;

TEST_F(HostCalls, OfStartUpAndInit) {
    m_module.reset();
    const com::HostDll language(L"HostLanguage.dll");
    // The module asks before its imports can be led elsewhere, so the function itself begins with a jump.
    BYTE jump[] = {0x48, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xe0};  // mov rax,...; jmp rax
    const auto replacement = reinterpret_cast<uintptr_t>(&GiveResources);
    std::memcpy(jump + 2, &replacement, sizeof replacement);
    void* place =
        reinterpret_cast<void*>(GetProcAddress(language.Get(), "_ZN5CLang17GetResourceHandleEP11HINSTANCE__"));
    ASSERT_NE(place, nullptr);
    const auto exchange = [&] {
        BYTE old[sizeof jump];
        DWORD access = 0;
        ASSERT_TRUE(VirtualProtect(place, sizeof jump, PAGE_EXECUTE_READWRITE, &access));
        std::memcpy(old, place, sizeof jump);
        std::memcpy(place, jump, sizeof jump);
        std::memcpy(jump, old, sizeof jump);
        VirtualProtect(place, sizeof jump, access, &access);
    };
    exchange();
    m_module.emplace(L"Zonwick.dll");
    exchange();
    EXPECT_EQ(g_asked, 2) << "for the logger, and for the module";

    m_tree->AddSet(L"0x00000005", L"Invoice", 0, {});
    Host().during = Note;
    Init();
    Host().during = nullptr;
    EXPECT_EQ(g_foreign, 0);
    constexpr size_t kCopy = 8, kNames = 9;  // CopyNode, and the first call of the load
    ASSERT_GT(g_live.size(), kNames);
    EXPECT_EQ(g_live[kNames], g_live[kCopy]) << "the transfer object lives while the sets are read";
}

}  // namespace
