// The exports over a settings node, in the built DLL.
#include <gtest/gtest.h>

#include <optional>

#include "support/FakeSettings.h"
#include "support/LoadedModule.h"

namespace {

using test::FakeTree;
using test::Host;
using test::ModuleTrace;
using Texts = std::vector<std::wstring>;

constexpr const wchar_t* kLoadFailed = L"CAreaSetManager::LoadSettings failed";

class QueryExports : public testing::Test {
protected:
    void SetUp() override {
        Host() = {};
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        m_classes.emplace();
        m_module.emplace();
        m_tree->AddSet(L"0x00000005", L"Invoice", 0x10000000, {{1, 2, 3, 4}, {40, 30, 20, 10}});
        m_tree->AddSet(L"0x00000002", L"Empty", 0, {});
    }
    void TearDown() override {
        m_module.reset();
        m_classes.reset();
        CoUninitialize();
        EXPECT_EQ(Host().liveObjects, 0);
    }

    void Init() {
        ISettingsNode* node = test::MakeFakeNode(m_tree);
        m_module->Init(node);
        node->Release();
    }

    // "Invoice" is an ignored set.
    void ExpectMaskedOrRefused(bool masked) {
        FakeImaging& imaging = m_module->Imaging();
        imaging.keep = imaging.count = 9;
        int image = 0;
        BYTE* block = nullptr;
        DWORD length = 0;
        EXPECT_EQ(m_module->CreateImage(&image, L"Invoice", &block, &length) != FALSE, masked);
        m_module->FreeImage(block);
        if (!masked) return;
        EXPECT_EQ(imaging.keep, 0u);
        EXPECT_EQ(imaging.count, 2u);
        EXPECT_EQ(imaging.rects[0].right, 3);
        EXPECT_EQ(imaging.rects[1].bottom, 30);
    }

    std::shared_ptr<FakeTree> m_tree = std::make_shared<FakeTree>();
    std::optional<test::FakeSettingsClasses> m_classes;
    std::optional<test::LoadedModule> m_module;
};

TEST_F(QueryExports, EnumerateAndReadAllSets) {
    Init();
    DWORD id = 0;
    ASSERT_TRUE(m_module->MapIndex2ID(0, &id));
    EXPECT_EQ(id, 5u);
    SAAreaInfo info = {};
    ASSERT_TRUE(m_module->GetAreaInfo(id, &info));
    EXPECT_STREQ(info.szName, L"Invoice");
    EXPECT_EQ(info.nAreas, 2u);
    EXPECT_EQ(info.dwFlags, SA_AREAS_IGNORED);
    EXPECT_EQ(info.dwID, 5u);
    RECT rects[3] = {{}, {}, {7, 7, 7, 7}};
    ASSERT_TRUE(m_module->GetAreaRects(5, rects));
    EXPECT_EQ(rects[1].left, 20);
    EXPECT_EQ(rects[1].bottom, 30);
    EXPECT_EQ(rects[2].left, 7);

    EXPECT_TRUE(m_module->GetAreaRects(2, nullptr));
    EXPECT_EQ(m_module->MapID2Index(2), 1u);
    EXPECT_EQ(m_module->MapID2Index(3), 0xFFFFFFFFu);
    for (const int position : {-1, 2}) {
        id = 77;
        EXPECT_FALSE(m_module->MapIndex2ID(position, &id));
        EXPECT_EQ(id, 77u);
    }
    EXPECT_EQ(m_module->Boxes(), 0);
}

TEST_F(QueryExports, GiveFailureValuesForMissingPointersAndSets) {
    Init();
    m_module->TakeTraces();
    EXPECT_FALSE(m_module->GetAreaInfo(5, nullptr));
    EXPECT_FALSE(m_module->GetAreaRects(5, nullptr));
    EXPECT_FALSE(m_module->MapIndex2ID(0, nullptr));
    EXPECT_EQ(m_module->TakeTexts(), (Texts{L"SAGetAreaInfo: pInfo is NULL.", L"SAGetAreaRects: pRects is NULL.",
                                            L"SAMapIndex2ID: pID is NULL."}));
    SAAreaInfo info = {};
    EXPECT_FALSE(m_module->GetAreaInfo(99, &info));
    EXPECT_FALSE(m_module->GetAreaRects(99, nullptr));
}

TEST_F(QueryExports, NamesEndAt63Units) {
    const struct {
        size_t length;
        BOOL result;
    } cases[] = {{63, TRUE}, {64, FALSE}, {10000, FALSE}};
    for (const auto& [length, result] : cases) {
        m_tree->Child(L"0x00000005")->strings[L"Name"] = std::wstring(length, L'x');
        Init();
        m_module->TakeTraces();
        SAAreaInfo info = {};
        info.nAreas = 99;
        EXPECT_EQ(m_module->GetAreaInfo(5, &info), result);
        EXPECT_EQ(std::wstring(info.szName), std::wstring(63, L'x'));
        EXPECT_EQ(info.nAreas, result ? 2u : 99u);
        EXPECT_EQ(m_module->TakeTraces(),
                  result ? std::vector<ModuleTrace>{}
                         : (std::vector<ModuleTrace>{{2, "Zonwick", L"AreaSet name too long, maximum: 64"}}));
    }
}

TEST_F(QueryExports, BeforeInitReportOnceThatNothingCanBeRead) {
    DWORD id = 0;
    EXPECT_EQ(m_module->MapID2Index(5), 0u);
    EXPECT_EQ(m_module->TakeTraces(),
              (std::vector<ModuleTrace>{{6, "AreaSetManager", kLoadFailed}, {2, "Zonwick", L"#34106"}}));
    EXPECT_FALSE(m_module->MapIndex2ID(0, &id));
    EXPECT_EQ(m_module->TakeTexts(), Texts{L"CAreaSetManager::GetAreaSet: iIndex out of array bounds."});
    Init();
    EXPECT_TRUE(m_module->MapIndex2ID(0, &id));
}

TEST_F(QueryExports, InitWithoutNodeKeepsTheSetsInMemory) {
    Init();
    ISettingsNode* other = test::MakeFakeNode(std::make_shared<FakeTree>(), E_NOINTERFACE);
    for (IUnknown* host : {static_cast<IUnknown*>(nullptr), static_cast<IUnknown*>(other)}) {
        m_module->Init(host);
        EXPECT_EQ(m_module->MapID2Index(2), 1u);
    }
    other->Release();
    // A node that cannot even be asked changes nothing, the old node included.
    ISettingsNode* broken = test::MakeFakeNode(std::make_shared<FakeTree>(), RPC_E_DISCONNECTED);
    Init();
    m_module->TakeTraces();
    m_module->Init(broken);
    broken->Release();
    EXPECT_EQ(m_module->TakeTraces(),
              (std::vector<ModuleTrace>{{2, "Zonwick", L"SAInit: a host object failed with status 0x80010108."}}));
    EXPECT_EQ(m_module->MapID2Index(2), 1u);
}

TEST_F(QueryExports, WithoutWorkingNodeLoadsFail) {
    Host().createSettingsNode = REGDB_E_CLASSNOTREG;
    Init();
    EXPECT_TRUE(m_module->TakeTraces().empty());
    EXPECT_EQ(m_module->MapID2Index(5), 0u);
    EXPECT_EQ(m_module->TakeTexts(), (Texts{kLoadFailed, L"#34106"}));
}

TEST_F(QueryExports, AHalfFilledWorkingNodeIsNeverUsed) {
    Init();
    Host().createTransfer = E_NOINTERFACE;
    m_module->TakeTraces();
    Init();
    EXPECT_EQ(m_module->TakeTexts(), Texts{L"SAInit: a host object failed with status 0x80004003."});
    EXPECT_EQ(m_module->MapID2Index(5), 0u);
    EXPECT_EQ(m_module->TakeTexts(), (Texts{kLoadFailed, L"#34106"}));
    Host().createTransfer = S_OK;
    Init();
    EXPECT_EQ(m_module->MapID2Index(2), 1u);
}

// What is left of the set "Invoice", as text.
std::wstring DescribeInvoice(const test::LoadedModule& module) {
    SAAreaInfo info = {};
    RECT rects[2] = {};
    if (!module.GetAreaInfo(5, &info)) return L"none";
    EXPECT_TRUE(module.GetAreaRects(5, rects));
    std::wstring text = info.szName + (L" " + std::to_wstring(info.dwFlags >> 28));
    for (UINT i = 0; i < info.nAreas; ++i) {
        text += L" " + std::to_wstring(rects[i].left) + L"," + std::to_wstring(rects[i].top) + L"," +
                std::to_wstring(rects[i].right) + L"," + std::to_wstring(rects[i].bottom);
    }
    return text;
}

// Every host call of SAInit and of the load behind it fails in turn, with a status and with null. Each row says which
// calls these are and what has to come of it; the host's node is never touched, and the next SAInit works.
TEST_F(QueryExports, SurviveAFailureOfEveryHostCall) {
    constexpr const wchar_t* kFailed = L"SAInit: a host object failed with status 0x80004005.";
    constexpr const wchar_t* kNoMemory = L"SAInit: a host object failed with status 0x8007000e.";
    constexpr const wchar_t* kWhole = L"Invoice 1 1,2,3,4 20,10,40,30";
    const struct {
        int last;  // from the row before up to this call
        const wchar_t* what;
        Texts told, toldLater;
        const wchar_t* invoice;
        bool second;                    // whether the set after it is there
        const wchar_t* withNull = L"";  // where null leads to something else
        bool secondWithNull = false;
    } rows[] = {
        {1, L"the host's node is no node: the one before stays", {kFailed}, {}, kWhole, true},
        {4, L"the working node is not made", {}, {kLoadFailed, L"#34106"}, L"none", false},
        {5, L"the transfer object is not made", {kNoMemory}, {kLoadFailed, L"#34106"}, L"none", false},
        {9, L"half is copied", {kFailed}, {kLoadFailed, L"#34106"}, L"none", false},
        {10, L"names of the sets", {kLoadFailed}, {}, L"none", false},
        {11, L"the set's node", {kLoadFailed}, {}, L"none", false, L" 0", false},
        {12, L"its name", {}, {}, L" 1 1,2,3,4 20,10,40,30", true},
        {13, L"its flags", {}, {}, L"Invoice 0 1,2,3,4 20,10,40,30", true},
        {15, L"its page", {}, {}, kWhole, true},
        {17, L"its list of areas", {kLoadFailed}, {}, L"Invoice 1", false},
        {22, L"the first area", {}, {}, L"Invoice 1 0,0,0,0 20,10,40,30", true},
        {27, L"the second area", {}, {}, L"Invoice 1 1,2,3,4 0,0,0,0", true},
        {28, L"the second set's node", {kLoadFailed}, {}, kWhole, false, kWhole, true},
        {32, L"its values", {}, {}, kWhole, true},
        {34, L"its list of areas", {kLoadFailed}, {}, kWhole, true},
        {35, L"none", {}, {}, kWhole, true},
    };
    const std::wstring before = m_tree->Dump();
    Init();
    for (const bool giveNull : {false, true}) {
        int n = 0;
        for (const auto& row : rows) {
            while (++n <= row.last) {
                SCOPED_TRACE(testing::Message() << "call " << n << ", null " << giveNull << ": " << row.what);
                Host().Reset();
                Host().failAt = n;
                Host().giveNull = giveNull;
                Host().copyHalf = true;
                Init();
                EXPECT_EQ(Host().calls < n, &row == std::end(rows) - 1);
                EXPECT_EQ(m_module->TakeTexts(), row.told);
                const bool other = giveNull && *row.withNull != L'\0';
                EXPECT_EQ(DescribeInvoice(*m_module), other ? row.withNull : row.invoice);
                EXPECT_EQ(m_module->TakeTexts(), row.toldLater);
                EXPECT_EQ(m_module->MapID2Index(2) == 1, other ? row.secondWithNull : row.second);
                EXPECT_EQ(m_tree->Dump(), before);
                Host().Reset();
                Init();
                EXPECT_EQ(m_module->MapID2Index(2), 1u);
                m_module->TakeTexts();
            }
            --n;
        }
    }
}

// Where the host has no memory or its object is gone, nothing was found out: a set is whole or not there, also for the
// masking, and what the host keeps stands.
TEST_F(QueryExports, SetsWhoseReadingWasCutOffAreNotServed) {
    constexpr const wchar_t* kWhole = L"Invoice 1 1,2,3,4 20,10,40,30";
    const struct {
        HRESULT status;
        bool lost;
    } rows[] = {{E_OUTOFMEMORY, true},
                {RPC_E_DISCONNECTED, true},
                {RPC_E_SERVER_DIED, true},
                {RPC_E_SERVER_DIED_DNE, true},
                {CO_E_OBJNOTCONNECTED, true},
                {HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), true},
                {HRESULT_FROM_WIN32(RPC_S_CALL_FAILED), true},
                {HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE), true},
                {RPC_E_CALL_REJECTED, false}};
    const std::wstring before = m_tree->Dump();
    Init();
    for (const auto& [status, lost] : rows) {
        int partly = 0, missing = 0;
        for (int n = 1; n < 35; ++n) {
            SCOPED_TRACE(testing::Message() << std::hex << status << std::dec << " at call " << n);
            Host().Reset();
            Host().failAt = n;
            Host().failStatus = status;
            Init();
            Host().Reset();
            const std::wstring invoice = DescribeInvoice(*m_module);
            partly += invoice != kWhole && invoice != L"none";
            missing += invoice == L"none";
            if (lost) ExpectMaskedOrRefused(invoice == kWhole);
            EXPECT_EQ(m_tree->Dump(), before);
        }
        EXPECT_EQ(partly == 0, lost) << std::hex << status;
        EXPECT_EQ(missing > 10, lost) << std::hex << status;
    }
    Host().failStatus = E_FAIL;
    m_module->TakeTexts();
}

}  // namespace
