// What a host sees of SAInit and of the module's start-up by the order and the number of its calls.
#include <gtest/gtest.h>

#include <vector>

#include "support/FakeSettings.h"
#include "support/LoadedModule.h"

namespace {

std::vector<int> g_live;  // the host's objects at each of its calls
int g_foreign = 0;        // calls outside the module's activation context

void Note(int) {
    g_live.push_back(test::Host().liveObjects);
    HANDLE context = nullptr;
    GetCurrentActCtx(&context);
    if (context == nullptr) ++g_foreign;
    ReleaseActCtx(context);
}

TEST(HostCalls, OfStartUpAndInit) {
    test::Host() = {};
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    {
        const test::FakeSettingsClasses classes;
        const test::LoadedModule module;
        const auto asked = reinterpret_cast<FakeLanguageAskedFunction>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"HostLanguage.dll"), "FakeLanguageAsked")));
        EXPECT_EQ(asked(), 2) << "for the logger, and for the module";

        const auto tree = std::make_shared<test::FakeTree>();
        tree->AddSet(L"0x00000005", L"Invoice", 0, {});
        ISettingsNode* node = test::MakeFakeNode(tree);
        test::Host().during = Note;
        module.Init(node);
        test::Host().during = nullptr;
        node->Release();
        EXPECT_EQ(g_foreign, 0);
        constexpr size_t kCopy = 8, kNames = 9;  // CopyNode, and the first call of the load
        ASSERT_GT(g_live.size(), kNames);
        EXPECT_EQ(g_live[kNames], g_live[kCopy]) << "the transfer object lives while the sets are read";
    }
    CoUninitialize();
    EXPECT_EQ(test::Host().liveObjects, 0);
}

}  // namespace
