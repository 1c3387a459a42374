#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "store/AreaSetManager.h"
#include "support/TraceRecorder.h"

namespace {

using Texts = std::vector<std::wstring>;

constexpr const wchar_t* kWrongId = L"CAreaSetManager::GetAreaSet: wrong dwID was specified.";
constexpr const wchar_t* kBadIndex = L"CAreaSetManager::GetAreaSet: iIndex out of array bounds.";

SettingsNodePtr NoNode() {
    return nullptr;
}

class ManagerTest : public testing::Test {
protected:
    void SetUp() override { test::TakeTraces(); }

    std::vector<uint32_t> Ids() {
        std::vector<uint32_t> ids;
        for (int32_t i = 0; i < m_manager.GetCount(); ++i) ids.push_back(m_manager.GetAreaSet(i)->GetID());
        return ids;
    }

    CAreaSetManager m_manager{NoNode, L"ZonwickTestMutex"};
};

TEST_F(ManagerTest, HandsOutIdentifiersAndNeverReusesThem) {
    EXPECT_EQ(m_manager.AddSet(L"a", 0), 0);
    EXPECT_EQ(m_manager.AddSet(L"b", 0), 1);
    EXPECT_EQ(m_manager.AddSet(L"c", 7), 2);
    EXPECT_EQ(m_manager.AddSet(L"low", 5), 3);
    EXPECT_EQ(test::TakeTraceTexts(), (Texts{kWrongId, kWrongId}));
    EXPECT_EQ(m_manager.AddSet(L"again", 5), -1);
    EXPECT_TRUE(test::TakeTraceTexts().empty());
    EXPECT_TRUE(m_manager.RemoveSet(7));
    EXPECT_EQ(m_manager.AddSet(L"d", 0), 3);
    EXPECT_EQ(Ids(), (std::vector<uint32_t>{1, 2, 5, 8}));
}

TEST_F(ManagerTest, EndsAtTheHighestIdentifier) {
    EXPECT_EQ(m_manager.AddSet(L"", 0xFFFFFFFF), 0);
    test::TakeTraces();
    EXPECT_EQ(m_manager.AddSet(L"", 0), -1);
    EXPECT_EQ(test::TakeTraces(),
              (std::vector<test::TraceLine>{{6, "AreaSetManager", L"CAreaSetManager::AddSet: Out of memory."}}));
    EXPECT_EQ(m_manager.GetCount(), 1);
}

TEST_F(ManagerTest, LooksUpByIdentifierAndPositionAfterRemovals) {
    for (int i = 0; i < 5; ++i) m_manager.AddSet(std::to_wstring(i), 0);
    EXPECT_TRUE(m_manager.RemoveSet(1));
    EXPECT_TRUE(m_manager.RemoveSet(4));
    EXPECT_EQ(Ids(), (std::vector<uint32_t>{2, 3, 5}));
    const struct {
        uint32_t id;
        int32_t position;
    } cases[] = {{1, -1}, {2, 0}, {3, 1}, {4, -1}, {5, 2}, {0, -1}};
    for (const auto& [id, position] : cases) {
        int32_t found = 99;
        test::TakeTraces();
        const CAreaSet* set = m_manager.GetAreaSet(id, &found);
        EXPECT_EQ(found, position) << id;
        EXPECT_EQ(set != nullptr, position >= 0) << id;
        EXPECT_EQ(test::TakeTraceTexts(), position >= 0 ? Texts{} : Texts{kWrongId}) << id;
    }
    for (const int32_t position : {-1, 3}) EXPECT_EQ(m_manager.GetAreaSet(position), nullptr);
    EXPECT_EQ(test::TakeTraceTexts(), (Texts{kBadIndex, kBadIndex}));
    EXPECT_FALSE(m_manager.RemoveSet(9));
    EXPECT_EQ(test::TakeTraceTexts(), (Texts{kWrongId, L"CAreaSetManager::RemoveSet: wrong dwID was specified."}));
}

TEST_F(ManagerTest, CopiesRenamesAndUpdates) {
    CAreaSet* set = m_manager.GetAreaSet(m_manager.AddSet(L"A", 0));
    set->AddRect({1, 2, 3, 4}, L"Field");
    set->AddRect({5, 6, 7, 8});
    set->SetFlags(kAreasIgnored);
    set->SetDisplayRect({0, 0, 21, 29});
    const uint32_t copy = m_manager.CopySet(1);
    EXPECT_EQ(copy, 2u);
    EXPECT_EQ(m_manager.CopySet(77), 0u);
    const CAreaSet* copied = m_manager.GetAreaSet(copy);
    EXPECT_EQ(copied->GetName(), L"A");
    EXPECT_EQ(copied->GetFlags(), kAreasIgnored);
    EXPECT_EQ(copied->GetDisplayRect(), (PageRect{0, 0, 21, 29}));
    EXPECT_EQ(copied->GetRectCount(), 2);

    m_manager.SetAreaSetName(2, L"B");
    EXPECT_EQ(copied->GetName(), L"B");
    m_manager.SetAreaSetName(77, L"B");
    CAreaSet detached(L"C", 2);
    EXPECT_TRUE(m_manager.UpdateSet(detached));
    EXPECT_EQ(copied->GetName(), L"C");
    EXPECT_EQ(copied->GetRectCount(), 0);
    EXPECT_FALSE(m_manager.UpdateSet(CAreaSet(L"D", 3)));
    EXPECT_EQ(m_manager.GetCount(), 2);
}

TEST_F(ManagerTest, SerialisesThreadsAndNestsForTheOwner) {
    constexpr int kThreads = 4;
    constexpr int kSets = 250;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([this] {
            for (int i = 0; i < kSets; ++i) {
                const auto outer = m_manager.Lock();
                const int32_t position = m_manager.AddSet(L"", 0);
                // Held over both calls, so nobody came between them.
                EXPECT_EQ(position, m_manager.GetCount() - 1);
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(m_manager.GetCount(), kThreads * kSets);
    EXPECT_EQ(m_manager.AddSet(L"", 0), kThreads * kSets);
    EXPECT_EQ(m_manager.GetAreaSet(kThreads * kSets)->GetID(), uint32_t{kThreads * kSets + 1});
}

}  // namespace
