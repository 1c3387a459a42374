// CreateAreaSetImage with an imaging library that records and fails on demand.
#include <cstdlib>
#include <cstring>

#include "faults/ImportHook.h"
#include "host/Imaging.h"
#include "module/ModuleFixture.h"

namespace {

using namespace test;

// What the library answers, and what it was asked.
struct Imaging {
    int maskResult = 1, copyResult = 1;
    DWORD copyLength = 4;
    void* source = nullptr;
    int maskConstant = 0, copyFormat = 0, copyConstant = -1;
    uint32_t keep = 9;
    std::vector<RECT> rects;
    int liveImages = 0;
} g_imaging;

int CreateMasked(void* source, void** masked, const AreaMask* mask, int constant) {
    EXPECT_EQ(*masked, nullptr);
    g_imaging.source = source;
    g_imaging.maskConstant = constant;
    g_imaging.keep = mask->dwKeep;
    g_imaging.rects.assign(mask->rects, mask->rects + mask->count);
    if (g_imaging.maskResult == 1) {
        *masked = &g_imaging;
        ++g_imaging.liveImages;
    }
    return g_imaging.maskResult;
}
int Copy(void*, int format, void** block, DWORD* length, int constant) {
    g_imaging.copyFormat = format;
    g_imaging.copyConstant = constant;
    if (g_imaging.copyResult != 1) return g_imaging.copyResult;
    *length = g_imaging.copyLength;
    *block = std::calloc(*length + 1, 1);
    std::memset(*block, 0x5A, *length);
    return 1;
}
void Release(void* image) {
    g_imaging.liveImages -= image != nullptr;
}

class MaskedImage : public ModuleTest {
protected:
    void SetUp() override {
        ModuleTest::SetUp();
        g_imaging = {};
        const HMODULE library = GetModuleHandleW(L"HostImaging.dll");
        const auto hook = [&](WORD ordinal, auto* replacement) {
            void* function = reinterpret_cast<void*>(GetProcAddress(library, MAKEINTRESOURCEA(ordinal)));
            ASSERT_TRUE(m_hooks->HookImport(m_module->Get(), function, reinterpret_cast<void*>(replacement)));
        };
        hook(100, CreateMasked);
        hook(26, Copy);
        hook(83, Release);
        m_tree->AddSet(L"0x00000001", std::wstring(64, L'n').c_str(), 0, {{9, 9, 9, 9}});
        m_tree->AddSet(L"0x00000002", L"Keep", 0, {{1, 2, 3, 4}});
        m_tree->AddSet(L"0x00000003", L"Keep", 0x10000000, {{5, 6, 7, 8}, {5, 6, 7, 8}});
        m_tree->AddSet(L"0x00000004", L"Ignore", 0x1FFFFFFF, {{8, 7, 6, 5}, {-1, -2, 3, 4}});
        m_tree->AddSet(L"0x00000005", L"Empty", 0, {});
        Init();
        TakeTraces();
    }
    void TearDown() override {
        EXPECT_EQ(g_imaging.liveImages, 0);
        m_hooks.reset();
        ModuleTest::TearDown();
    }

    static bool CreateAreaSetImage(void* image, LPCWSTR name, BYTE** block, DWORD* length) {
        return ModuleExport<decltype(::CreateAreaSetImage)>("CreateAreaSetImage")(image, name, block, length) != FALSE;
    }
    static void FreeAreaSetImage(BYTE* block) { ModuleExport<decltype(::FreeAreaSetImage)>("FreeAreaSetImage")(block); }

    std::optional<PointerHooks> m_hooks{std::in_place};
    int m_image = 0;
};

TEST_F(MaskedImage, DescribesTheFirstSetOfThatName) {
    BYTE* block = nullptr;
    DWORD length = 0;
    ASSERT_TRUE(CreateAreaSetImage(&m_image, L"Keep", &block, &length));
    EXPECT_EQ(g_imaging.source, &m_image);
    EXPECT_EQ(g_imaging.keep, 1u);
    ASSERT_EQ(g_imaging.rects.size(), 1u);
    EXPECT_EQ(g_imaging.rects[0].bottom, 4);
    EXPECT_EQ(g_imaging.maskConstant, 1);
    EXPECT_EQ(g_imaging.copyFormat, 4);
    EXPECT_EQ(g_imaging.copyConstant, 0);
    ASSERT_EQ(length, 4u);
    EXPECT_EQ(block[3], 0x5A);
    FreeAreaSetImage(block);

    g_imaging.copyLength = 0;
    ASSERT_TRUE(CreateAreaSetImage(&m_image, L"Ignore", &block, &length));
    EXPECT_EQ(g_imaging.keep, 0u);
    ASSERT_EQ(g_imaging.rects.size(), 2u);
    EXPECT_EQ(g_imaging.rects[0].left, 6);
    EXPECT_EQ(length, 0u);
    EXPECT_NE(block, nullptr);
    FreeAreaSetImage(block);
    FreeAreaSetImage(nullptr);
    // Each of the two looks at all names, and the first name does not fit.
    EXPECT_EQ(TakeTexts(), Texts(2, L"AreaSet name too long, maximum: 64"));
}

TEST_F(MaskedImage, EachFailureHasItsTextAndLeavesTheBlockAlone) {
    const std::wstring longName(64, L'n');
    const std::wstring cutName(63, L'n');
    const struct {
        const wchar_t* name;
        int maskResult, copyResult;
        const wchar_t* text;
        bool noBlock = false, noLength = false;
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
        {L"Keep", 1, 1, L"CreateAreaSetImage: block or length is NULL.", true},
        {L"Keep", 1, 1, L"CreateAreaSetImage: block or length is NULL.", false, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        g_imaging.maskResult = c.maskResult;
        g_imaging.copyResult = c.copyResult;
        BYTE marker = 0;
        BYTE* block = &marker;
        DWORD length = 7;
        EXPECT_FALSE(
            CreateAreaSetImage(&m_image, c.name, c.noBlock ? nullptr : &block, c.noLength ? nullptr : &length));
        EXPECT_EQ(block, &marker);
        EXPECT_EQ(length, 7u);
        const auto traces = TakeTraces();
        ASSERT_FALSE(traces.empty());
        EXPECT_EQ(traces.back(), (ModuleTrace{2, "AreaSetImage", c.text}));
        EXPECT_EQ(g_imaging.liveImages, 0);
    }
}

}  // namespace
