// The exports over a settings node, in the built DLL.
#include <set>

#include "module/ModuleFixture.h"

namespace {

using namespace test;

constexpr const wchar_t* kLoadFailed = L"CAreaSetManager::LoadSettings failed";
constexpr const wchar_t* kWhole = L"Invoice 1 1,2,3,4 20,10,40,30";

class QueryExports : public ModuleTest {
protected:
    void SetUp() override {
        ModuleTest::SetUp();
        m_tree->AddSet(L"0x00000005", L"Invoice", 0x10000000, {{1, 2, 3, 4}, {40, 30, 20, 10}});
        m_tree->AddSet(L"0x00000002", L"Empty", 0, {});
    }
    // What is left of the set "Invoice", as text.
    std::wstring DescribeInvoice() const {
        SAAreaInfo info = {};
        RECT rects[2] = {};
        if (!GetAreaInfo(5, &info)) return L"none";
        EXPECT_TRUE(GetAreaRects(5, rects));
        std::wstring text = info.szName + (L" " + std::to_wstring(info.dwFlags >> 28));
        for (UINT i = 0; i < info.nAreas; ++i) {
            text += L" " + std::to_wstring(rects[i].left) + L"," + std::to_wstring(rects[i].top) + L"," +
                    std::to_wstring(rects[i].right) + L"," + std::to_wstring(rects[i].bottom);
        }
        return text;
    }
};

TEST_F(QueryExports, EnumerateAndReadAllSets) {
    Init();
    DWORD id = 0;
    ASSERT_TRUE(MapIndex2ID(0, &id));
    EXPECT_EQ(id, 5u);
    SAAreaInfo info = {};
    ASSERT_TRUE(GetAreaInfo(id, &info));
    EXPECT_EQ(info.dwFlags, SA_AREAS_IGNORED);
    EXPECT_EQ(info.dwID, 5u);
    EXPECT_EQ(DescribeInvoice(), kWhole);
    RECT rects[3] = {{}, {}, {7, 7, 7, 7}};
    ASSERT_TRUE(GetAreaRects(5, rects));
    EXPECT_EQ(rects[2].left, 7);

    EXPECT_TRUE(GetAreaRects(2, nullptr));
    EXPECT_EQ(MapID2Index(2), 1u);
    EXPECT_EQ(MapID2Index(3), 0xFFFFFFFFu);
    for (const int position : {-1, 2}) {
        id = 77;
        EXPECT_FALSE(MapIndex2ID(position, &id));
        EXPECT_EQ(id, 77u);
    }
    TakeTraces();
    EXPECT_FALSE(GetAreaInfo(5, nullptr));
    EXPECT_FALSE(GetAreaRects(5, nullptr));
    EXPECT_FALSE(MapIndex2ID(0, nullptr));
    EXPECT_EQ(TakeTexts(), (Texts{L"SAGetAreaInfo: pInfo is NULL.", L"SAGetAreaRects: pRects is NULL.",
                                  L"SAMapIndex2ID: pID is NULL."}));
    EXPECT_FALSE(GetAreaInfo(99, &info));
    EXPECT_FALSE(GetAreaRects(99, nullptr));
}

TEST_F(QueryExports, NamesEndAt63Units) {
    const struct {
        size_t length;
        BOOL result;
    } cases[] = {{63, TRUE}, {64, FALSE}, {10000, FALSE}};
    for (const auto& [length, result] : cases) {
        m_tree->Child(L"0x00000005")->strings[L"Name"] = std::wstring(length, L'x');
        Init();
        TakeTraces();
        SAAreaInfo info = {};
        info.nAreas = 99;
        EXPECT_EQ(GetAreaInfo(5, &info), result);
        EXPECT_EQ(std::wstring(info.szName), std::wstring(63, L'x'));
        EXPECT_EQ(info.nAreas, result ? 2u : 99u);
        EXPECT_EQ(TakeTraces(),
                  result ? std::vector<ModuleTrace>{}
                         : (std::vector<ModuleTrace>{{2, "Zonwick", L"AreaSet name too long, maximum: 64"}}));
    }
}

TEST_F(QueryExports, BeforeInitReportOnceThatNothingCanBeRead) {
    DWORD id = 0;
    EXPECT_EQ(MapID2Index(5), 0u);
    EXPECT_EQ(TakeTraces(), (std::vector<ModuleTrace>{{6, "AreaSetManager", kLoadFailed}, {2, "Zonwick", L"#34106"}}));
    EXPECT_FALSE(MapIndex2ID(0, &id));
    EXPECT_EQ(TakeTexts(), Texts{L"CAreaSetManager::GetAreaSet: iIndex out of array bounds."});
    Init();
    EXPECT_TRUE(MapIndex2ID(0, &id));
}

TEST_F(QueryExports, InitWithoutNodeKeepsTheSetsInMemory) {
    Init();
    Init(nullptr);
    EXPECT_EQ(MapID2Index(2), 1u);
    Init(MakeFakeNode(std::make_shared<FakeTree>(), E_NOINTERFACE));
    EXPECT_EQ(MapID2Index(2), 1u);
    // A node that cannot even be asked changes nothing, the old node included.
    Init();
    TakeTraces();
    Init(MakeFakeNode(std::make_shared<FakeTree>(), RPC_E_DISCONNECTED));
    EXPECT_EQ(TakeTraces(),
              (std::vector<ModuleTrace>{{2, "Zonwick", L"SAInit: a host object failed with status 0x80010108."}}));
    EXPECT_EQ(MapID2Index(2), 1u);
}

TEST_F(QueryExports, WithoutAFilledWorkingNodeNothingIsServed) {
    const struct {
        HRESULT node, transfer;
        Texts told;
    } cases[] = {{REGDB_E_CLASSNOTREG, S_OK, {}},
                 {S_OK, E_NOINTERFACE, {L"SAInit: a host object failed with status 0x80004003."}}};
    for (const auto& [node, transfer, told] : cases) {
        Init();
        TakeTraces();
        Host().createSettingsNode = node;
        Host().createTransfer = transfer;
        Init();
        EXPECT_EQ(TakeTexts(), told);
        EXPECT_EQ(MapID2Index(5), 0u);
        EXPECT_EQ(TakeTexts(), (Texts{kLoadFailed, L"#34106"}));
        Host().createSettingsNode = Host().createTransfer = S_OK;
        Init();
        EXPECT_EQ(MapID2Index(2), 1u);
    }
}

// Every host call of SAInit and of the load behind it fails in turn. A value that the host cannot give counts as
// missing; where the host has no memory or its object is gone nothing was found out, so a set is whole or not there.
// What is missing was told, the host's node is never touched, and the next SAInit works.
TEST_F(QueryExports, AFailingCallGivesWholeSetsOrIsTold) {
    const struct {
        HRESULT status;
        bool lost;
        bool giveNull = false;
    } rows[] = {{E_FAIL, false},
                {E_FAIL, false, true},
                {E_OUTOFMEMORY, true},
                {RPC_E_DISCONNECTED, true},
                {RPC_E_SERVER_DIED, true},
                {RPC_E_SERVER_DIED_DNE, true},
                {CO_E_OBJNOTCONNECTED, true},
                {HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), true},
                {HRESULT_FROM_WIN32(RPC_S_CALL_FAILED), true},
                {HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE), true},
                {RPC_E_CALL_REJECTED, false}};
    // Without its name, its flags, its list of areas, one of its areas, or all of it.
    const std::set<std::wstring> parts = {
        L" 1 1,2,3,4 20,10,40,30",        L"Invoice 0 1,2,3,4 20,10,40,30", L"Invoice 1",
        L"Invoice 1 0,0,0,0 20,10,40,30", L"Invoice 1 1,2,3,4 0,0,0,0",     L" 0"};
    const std::wstring before = m_tree->Dump();
    Init();
    for (const auto& [status, lost, giveNull] : rows) {
        std::set<std::wstring> met;
        int n = 0;
        for (bool reached = true; reached;) {
            ++n;
            SCOPED_TRACE(testing::Message()
                         << std::hex << status << std::dec << ", null " << giveNull << ", call " << n);
            Host().Reset();
            Host().failAt = n;
            Host().failStatus = status;
            Host().giveNull = giveNull;
            Host().copyHalf = true;
            TakeTexts();
            Init();
            reached = Host().calls >= n;
            Host().Reset();
            const std::wstring invoice = DescribeInvoice();
            const bool second = MapID2Index(2) == 1;
            const Texts told = TakeTexts();
            EXPECT_TRUE(!told.empty() || (invoice != L"none" && second));
            // A copy that was cut off is not served in part.
            if (!told.empty() && told[0].starts_with(L"SAInit:")) {
                EXPECT_EQ(invoice == kWhole, second);
            }
            EXPECT_TRUE(invoice == kWhole || invoice == L"none" || (!lost && parts.contains(invoice)))
                << invoice.c_str();
            met.insert(invoice);
            EXPECT_EQ(m_tree->Dump(), before);
            Init();
            EXPECT_EQ(MapID2Index(2), 1u);
        }
        EXPECT_GT(n, 30);
        EXPECT_EQ(met.size(), lost ? 2u : giveNull ? 8u : 7u);
    }
}

}  // namespace
