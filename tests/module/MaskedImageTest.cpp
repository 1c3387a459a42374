// CreateAreaSetImage against an imaging library that records and fails on demand.
#include <gtest/gtest.h>

#include <optional>

#include "support/FakeSettings.h"
#include "support/LoadedModule.h"

namespace {

using test::Host;
using test::ModuleTrace;

class MaskedImage : public testing::Test {
protected:
    void SetUp() override {
        Host() = {};
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        m_classes.emplace();
        m_module.emplace();
        const auto tree = std::make_shared<test::FakeTree>();
        tree->AddSet(L"0x00000001", std::wstring(64, L'n').c_str(), 0, {{9, 9, 9, 9}});
        tree->AddSet(L"0x00000002", L"Keep", 0, {{1, 2, 3, 4}});
        tree->AddSet(L"0x00000003", L"Keep", 0x10000000, {{5, 6, 7, 8}, {5, 6, 7, 8}});
        tree->AddSet(L"0x00000004", L"Ignore", 0x1FFFFFFF, {{8, 7, 6, 5}, {-1, -2, 3, 4}});
        tree->AddSet(L"0x00000005", L"Empty", 0, {});
        ISettingsNode* node = test::MakeFakeNode(tree);
        m_module->Init(node);
        node->Release();
        m_module->TakeTraces();
    }
    void TearDown() override {
        EXPECT_EQ(m_module->Imaging().liveImages, 0);
        m_module.reset();
        m_classes.reset();
        CoUninitialize();
        EXPECT_EQ(Host().liveObjects, 0);
    }

    std::optional<test::FakeSettingsClasses> m_classes;
    std::optional<test::LoadedModule> m_module;
    int m_image = 0;
};

TEST_F(MaskedImage, DescribesTheFirstSetOfThatName) {
    BYTE* block = nullptr;
    DWORD length = 0;
    ASSERT_TRUE(m_module->CreateImage(&m_image, L"Keep", &block, &length));
    auto& imaging = m_module->Imaging();
    EXPECT_EQ(imaging.source, &m_image);
    EXPECT_EQ(imaging.keep, 1u);
    EXPECT_EQ(imaging.count, 1u);
    EXPECT_EQ(imaging.rects[0].bottom, 4);
    EXPECT_EQ(imaging.maskConstant, 1);
    EXPECT_EQ(imaging.copyFormat, 4);
    EXPECT_EQ(imaging.copyConstant, 0);
    ASSERT_EQ(length, 4u);
    EXPECT_EQ(block[3], 0x5A);
    m_module->FreeImage(block);

    imaging.copyLength = 0;
    ASSERT_TRUE(m_module->CreateImage(&m_image, L"Ignore", &block, &length));
    EXPECT_EQ(imaging.keep, 0u);
    EXPECT_EQ(imaging.count, 2u);
    EXPECT_EQ(imaging.rects[0].left, 6);
    EXPECT_EQ(length, 0u);
    EXPECT_NE(block, nullptr);
    m_module->FreeImage(block);
    m_module->FreeImage(nullptr);
    // Each of the two looks at all names, and the first name does not fit.
    EXPECT_EQ(m_module->TakeTexts(), std::vector<std::wstring>(2, L"AreaSet name too long, maximum: 64"));
}

TEST_F(MaskedImage, EachFailureHasItsTextAndLeavesTheBlockAlone) {
    const std::wstring longName(64, L'n');
    const std::wstring cutName(63, L'n');
    const struct {
        const wchar_t* name;
        int maskResult, copyResult;
        const wchar_t* text;
    } cases[] = {
        {L"keep", 1, 1, L"unknown areaset name requested"},
        {L"", 1, 1, L"unknown areaset name requested"},
        {nullptr, 1, 1, L"unknown areaset name requested"},
        {longName.c_str(), 1, 1, L"unknown areaset name requested"},
        {cutName.c_str(), 1, 1, L"unknown areaset name requested"},
        {L"Empty", 1, 1, L"areaset has no areas defined"},
        {L"Keep", 0, 1, L"cannot create masked image"},
        {L"Keep", 2, 1, L"cannot create masked image"},
        {L"Keep", 1, -1, L"cannot copy masked image"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text));
        m_module->Imaging().maskResult = c.maskResult;
        m_module->Imaging().copyResult = c.copyResult;
        BYTE marker = 0;
        BYTE* block = &marker;
        DWORD length = 7;
        EXPECT_FALSE(m_module->CreateImage(&m_image, c.name, &block, &length));
        EXPECT_EQ(block, &marker);
        EXPECT_EQ(length, 7u);
        const auto traces = m_module->TakeTraces();
        ASSERT_FALSE(traces.empty());
        EXPECT_EQ(traces.back(), (ModuleTrace{2, "AreaSetImage", c.text}));
        EXPECT_EQ(m_module->Imaging().liveImages, 0);
    }
}

TEST_F(MaskedImage, NullResultsAreRefused) {
    BYTE* block = nullptr;
    DWORD length = 0;
    EXPECT_FALSE(m_module->CreateImage(&m_image, L"Keep", nullptr, &length));
    EXPECT_FALSE(m_module->CreateImage(&m_image, L"Keep", &block, nullptr));
    EXPECT_EQ(m_module->TakeTexts().size(), 2u);
}

TEST_F(MaskedImage, SetsThatCannotBeLoadedAreUnknown) {
    Host().createSettingsNode = E_FAIL;
    m_module.reset();
    m_module.emplace();
    BYTE* block = nullptr;
    DWORD length = 0;
    EXPECT_FALSE(m_module->CreateImage(&m_image, L"Keep", &block, &length));
    EXPECT_EQ(m_module->TakeTexts(), (std::vector<std::wstring>{L"CAreaSetManager::LoadSettings failed", L"#34106",
                                                                L"unknown areaset name requested"}));
}

}  // namespace
