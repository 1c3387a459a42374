#include <gtest/gtest.h>

#include <limits>

#include "store/AreaSetManager.h"
#include "store/SettingsKeys.h"
#include "support/MemoryNode.h"
#include "support/TraceRecorder.h"

namespace {

using test::MemoryNode;
using test::NodeControl;
using test::NodeData;
using Texts = std::vector<std::wstring>;

constexpr const wchar_t* kLoadFailed = L"CAreaSetManager::LoadSettings failed";
constexpr const wchar_t* kStoreSetFailed = L"CAreaSetManager::StoreAreaSet failed";
constexpr const wchar_t* kStoreFailed = L"CAreaSetManager::StoreSettings failed";

// The tree that the manager under test works on.
std::shared_ptr<NodeData> g_root;
NodeControl g_control;

SettingsNodePtr Root() {
    return g_root != nullptr ? std::make_unique<MemoryNode>(g_root, g_control) : nullptr;
}

class PersistenceTest : public testing::Test {
protected:
    void SetUp() override {
        g_root = std::make_shared<NodeData>();
        g_control = {};
        test::TakeTraces();
    }
    void TearDown() override { g_root = nullptr; }

    // Traces of one kind, without those that every look-up for a free identifier leaves.
    static Texts Failures() {
        Texts texts = test::TakeTraceTexts();
        std::erase(texts, L"CAreaSetManager::GetAreaSet: wrong dwID was specified.");
        return texts;
    }

    CAreaSet* Add(const wchar_t* name, uint32_t id, std::vector<PageRect> rects) {
        CAreaSet* set = m_manager.GetAreaSet(m_manager.AddSet(name, id));
        for (const auto& rect : rects) set->AddRect(rect);
        test::TakeTraces();
        return set;
    }

    static void WriteRect(const std::shared_ptr<NodeData>& node, const PageRect& rect) {
        node->integers = {
            {kKeyLeft, rect.left}, {kKeyTop, rect.top}, {kKeyRight, rect.right}, {kKeyBottom, rect.bottom}};
    }

    CAreaSetManager m_manager{Root, L"ZonwickTestMutex"};
};

TEST_F(PersistenceTest, SetKeysReadBackAsSignedHexadecimal) {
    EXPECT_EQ(MakeSetKey(42), L"0x0000002a");
    EXPECT_EQ(MakeSetKey(0xFFFFFFFF), L"0xffffffff");
    const struct {
        const wchar_t* key;
        uint32_t id;
    } cases[] = {
        {L"0x0000002a", 42},
        {L"2A", 42},
        {L" \t+0X2a rest", 42},
        {L"-1", 0xFFFFFFFF},
        {L"0x80000001", 0x7FFFFFFF},
        {L"ffffffffffffffffffff", 0x7FFFFFFF},
        {L"-ffffffffffff", 0x80000000},
        {L"", 0},
        {L"0x", 0},
        {L"Rect", 0},
        {L"0x0000", 0},
        {L"face", 0xFACE},
        {L"- 1", 0},
    };
    for (const auto& [key, id] : cases) EXPECT_EQ(ParseSetKey(key), id) << testing::PrintToString(key);
}

TEST_F(PersistenceTest, StoresInTheDocumentedLayout) {
    CAreaSet* set = Add(L"Invoice", 42, {{100, 200, 500, 400}, {-5, 0, 10, 10}});
    set->SetFlags(kAreasIgnored);
    set->SetDisplayRect({0, 0, 2100, 2970});
    EXPECT_TRUE(m_manager.StoreSettings());
    EXPECT_TRUE(m_manager.WasLastStoreComplete());
    EXPECT_EQ(g_root->Dump(),
              L"{0x0000002a{Name='Invoice' Flags=268435456 "
              L"DisplayRect{Position:bottom=2970 Position:left=0 Position:right=2100 Position:top=0 }"
              L"Rect{0{Position:bottom=400 Position:left=100 Position:right=500 Position:top=200 }"
              L"1{Position:bottom=10 Position:left=-5 Position:right=10 Position:top=0 }}}}");
    const Texts setCalls(g_control.log.begin() + 1, g_control.log.begin() + 9);
    EXPECT_EQ(setCalls, (Texts{L"GetSubNode 0x0000002a", L"SetString Name", L"SetInt64 Flags",
                               L"GetSubNode DisplayRect", L"SetInt64 Position:bottom", L"SetInt64 Position:left",
                               L"SetInt64 Position:right", L"SetInt64 Position:top"}));
}

TEST_F(PersistenceTest, LoadsWhatItStored) {
    const int32_t low = std::numeric_limits<int32_t>::min();
    Add(L"second", 42, {{1, 2, 3, 4}, {low, low, 7, 8}})->SetFlags(0xFFFFFFFF);
    Add(L"first", 3, {});
    EXPECT_TRUE(m_manager.StoreSettings());
    const std::wstring stored = g_root->Dump();

    CAreaSetManager other(Root, L"ZonwickTestMutex");
    EXPECT_TRUE(other.LoadSettings());
    EXPECT_TRUE(other.WasLastLoadComplete());
    ASSERT_EQ(other.GetCount(), 2);
    EXPECT_EQ(other.GetAreaSet(0)->GetID(), 42u);
    EXPECT_EQ(other.GetAreaSet(0)->GetFlags(), 0xFFFFFFFFu);
    EXPECT_EQ(other.GetAreaSet(0)->GetRect(1)->GetRectangle(), (PageRect{low, low, 7, 8}));
    EXPECT_EQ(other.GetAreaSet(other.AddSet(L"", 0))->GetID(), 43u);
    other.RemoveSet(43);
    EXPECT_TRUE(other.StoreSettings());
    EXPECT_EQ(g_root->Dump(), stored);
}

TEST_F(PersistenceTest, StoringReplacesAreasAndForeignSubNodes) {
    CAreaSet* set = Add(L"a", 1, {{1, 1, 1, 1}, {2, 2, 2, 2}, {3, 3, 3, 3}});
    EXPECT_TRUE(m_manager.StoreAreaSet(set));
    set->RemoveAllRects();
    set->AddRect({4, 4, 4, 4});
    EXPECT_TRUE(m_manager.StoreAreaSet(1u));
    EXPECT_EQ(g_root->Child(L"0x00000001")->Child(L"Rect")->children.size(), 1u);
    EXPECT_FALSE(m_manager.StoreAreaSet(9u));
    EXPECT_FALSE(m_manager.StoreAreaSet(nullptr));

    g_root->Child(L"Something else");
    g_root->integers[L"RealWidth"] = 2100;
    m_manager.RemoveAllSets();
    EXPECT_TRUE(m_manager.StoreSettings());
    EXPECT_EQ(g_root->Dump(), L"{RealWidth=2100 }");
}

TEST_F(PersistenceTest, ReadsDamagedSetsAsFarAsTheyGo) {
    g_root->Child(L"no identifier")->strings[L"Name"] = L"skipped";
    auto bare = g_root->Child(L"0x00000001");
    auto partial = g_root->Child(L"0x00000002");
    partial->Child(L"DisplayRect")->integers = {{kKeyBottom, 1}, {kKeyLeft, 2}, {kKeyRight, 3}};
    WriteRect(partial->Child(L"Rect")->Child(L"b"), {9, 9, 1, 1});
    partial->Child(L"Rect")->Child(L"a");
    partial->integers[kKeyFlags] = 0x5'10000001;  // the low 32 bits count
    auto twin = g_root->Child(L"1");              // the same identifier once more
    twin->strings[kKeyName] = L"twin";
    WriteRect(twin->Child(L"Rect")->Child(L"0"), {1, 1, 2, 2});

    EXPECT_TRUE(m_manager.LoadSettings());
    ASSERT_EQ(m_manager.GetCount(), 2);
    EXPECT_EQ(m_manager.GetAreaSet(0)->GetName(), L"twin");
    EXPECT_EQ(m_manager.GetAreaSet(0)->GetRectCount(), 1);
    const CAreaSet* set = m_manager.GetAreaSet(1);
    EXPECT_EQ(set->GetName(), L"");
    EXPECT_EQ(set->GetFlags(), 0x10000001u);
    EXPECT_EQ(set->GetDisplayRect(), PageRect{});
    ASSERT_EQ(set->GetRectCount(), 2);
    EXPECT_EQ(set->GetRect(0)->GetRectangle(), (PageRect{1, 1, 9, 9}));
    EXPECT_EQ(set->GetRect(1)->GetRectangle(), PageRect{});
    EXPECT_EQ(Failures(),
              Texts{L"CAreaSetManager::LoadSettings: sub-node 0 is not named after an identifier, skipped."});
}

TEST_F(PersistenceTest, ListsThatClaimTooMuchFailAfterWhatTheyHold) {
    g_root->Child(L"0x00000001");
    g_root->claimedExtra = 1;
    EXPECT_FALSE(m_manager.LoadSettings());
    EXPECT_EQ(m_manager.GetCount(), 1);
    EXPECT_EQ(Failures(), Texts{kLoadFailed});
}

TEST_F(PersistenceTest, LoadsOncePerCycleAndReportsAFailureOnce) {
    g_root = nullptr;
    EXPECT_FALSE(m_manager.LoadSettings());
    EXPECT_EQ(test::TakeTraceTexts(), Texts{kLoadFailed});
    EXPECT_TRUE(m_manager.LoadSettings());
    EXPECT_FALSE(m_manager.WasLastLoadComplete());
    g_root = std::make_shared<NodeData>();
    g_root->Child(L"0x00000009");
    EXPECT_TRUE(m_manager.LoadSettings());
    EXPECT_EQ(m_manager.GetCount(), 0);
    EXPECT_TRUE(m_manager.ReloadSettings());
    EXPECT_EQ(m_manager.GetCount(), 1);
    EXPECT_TRUE(m_manager.WasLastLoadComplete());
    m_manager.RemoveSet(9);
    EXPECT_TRUE(m_manager.ReloadSettings());
    EXPECT_EQ(m_manager.GetCount(), 1);
    m_manager.Forget();
    EXPECT_EQ(m_manager.GetCount(), 0);
    EXPECT_TRUE(m_manager.LoadSettings());
    EXPECT_EQ(m_manager.GetCount(), 1);
}

// A set that was read by half for want of memory or of the connection must not pass for what is stored: a mask would
// lack areas, and the next commit would store the half. The last node adds to the first set.
TEST_F(PersistenceTest, SetsThatWereLostOnTheWayAreTakenOut) {
    for (const uint32_t id : {1u, 2u}) Add(L"a", id, {{1, 2, 3, 4}, {5, 6, 7, 8}})->SetDisplayRect({0, 0, 10, 10});
    m_manager.StoreSettings();
    *g_root->Child(L"1") = *g_root->Child(L"0x00000002");
    for (const bool lost : {false, true}) {
        g_control.failAt = 0;
        for (bool reached = true; reached;) {
            const int n = g_control.failAt + 1;
            SCOPED_TRACE(n);
            g_control = {};
            g_control.failAt = n;
            g_control.noMemory = !lost;
            g_control.lost = lost;
            CAreaSetManager other(Root, L"ZonwickTestMutex");
            const bool loaded = other.LoadSettings();
            reached = g_control.calls >= n;
            EXPECT_EQ(loaded, !reached);
            EXPECT_EQ(other.WasLastLoadComplete(), !reached);
            for (int32_t i = 0; i < other.GetCount(); ++i) {
                const CAreaSet* set = other.GetAreaSet(i);
                ASSERT_EQ(set->GetRectCount(), loaded && i == 0 ? 4 : 2);
                EXPECT_EQ(set->GetRect(1)->GetRectangle().bottom, 8);
                EXPECT_EQ(set->GetDisplayRect().right, 10);
            }
        }
        EXPECT_GT(g_control.failAt, 10);
    }
}

// A host that calls in the middle of its own calls finds whole sets, and changes nothing that is being read or written.
TEST_F(PersistenceTest, CallsFromWithinACallOfTheHost) {
    Add(L"a", 1, {{1, 2, 3, 4}, {5, 6, 7, 8}});
    Add(L"b", 2, {{1, 2, 3, 4}, {5, 6, 7, 8}});
    m_manager.StoreSettings();
    const std::wstring full = g_root->Dump();
    const CAreaSet detached(L"other", 1);
    int nested = 0;
    g_control.during = [&] {
        ++nested;
        EXPECT_TRUE(m_manager.LoadSettings());
        for (int32_t i = 0; i < m_manager.GetCount(); ++i) EXPECT_EQ(m_manager.GetAreaSet(i)->GetRectCount(), 2);
        EXPECT_FALSE(m_manager.UpdateSet(detached));
        EXPECT_FALSE(m_manager.RemoveSet(1));
        EXPECT_FALSE(m_manager.StoreSettings());
        EXPECT_FALSE(m_manager.StoreAreaSet(2u));
        EXPECT_EQ(m_manager.AddSet(L"c", 0), -1);
        EXPECT_EQ(m_manager.CopySet(1), 0u);
        m_manager.RemoveAllSets();
        m_manager.SetAreaSetName(1, L"other");
    };
    EXPECT_TRUE(m_manager.ReloadSettings());
    EXPECT_TRUE(m_manager.WasLastLoadComplete());
    EXPECT_TRUE(m_manager.StoreSettings());
    EXPECT_TRUE(m_manager.WasLastStoreComplete());
    EXPECT_EQ(m_manager.GetCount(), 2);
    EXPECT_EQ(g_root->Dump(), full);
    EXPECT_GT(nested, 40);
}

// Every call fails once, and once from then on: nothing is thrown, results are as documented, and whenever the result
// is told complete it really is.
TEST_F(PersistenceTest, SurvivesAFailureOfEveryCall) {
    Add(L"a", 1, {{1, 2, 3, 4}, {5, 6, 7, 8}})->SetDisplayRect({0, 0, 10, 10});
    Add(L"b", 2, {{1, 2, 3, 4}});
    m_manager.StoreSettings();
    const std::wstring full = g_root->Dump();
    for (const bool keepFailing : {false, true}) {
        for (int n = 1;; ++n) {
            SCOPED_TRACE(n);
            g_control = {};
            g_control.failAt = n;
            g_control.keepFailing = keepFailing;
            CAreaSetManager other(Root, L"ZonwickTestMutex");
            test::TakeTraces();
            const bool loaded = other.LoadSettings();
            EXPECT_EQ(loaded, other.WasLastLoadComplete());
            EXPECT_EQ(Failures(), loaded ? Texts{} : Texts{kLoadFailed});
            if (g_control.calls < n) break;
        }
        for (int n = 1;; ++n) {
            SCOPED_TRACE(n);
            g_control = {};
            g_control.failAt = n;
            g_control.keepFailing = keepFailing;
            EXPECT_TRUE(m_manager.StoreSettings());
            const bool reached = g_control.calls >= n;
            g_control = {};
            EXPECT_EQ(m_manager.WasLastStoreComplete(), !reached);
            if (!reached) {
                EXPECT_EQ(g_root->Dump(), full);
            }
            for (const auto& text : Failures()) EXPECT_TRUE(text == kStoreSetFailed || text == kStoreFailed);
            m_manager.StoreSettings();
            ASSERT_EQ(g_root->Dump(), full);
            if (!reached) break;
        }
    }
}

}  // namespace
