#include "model/AreaSet.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/TraceRecorder.h"

namespace {

constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr int32_t kMax = std::numeric_limits<int32_t>::max();

TEST(AreaRect, IsNormalisedPerAxis) {
    const struct {
        PageRect given, stored;
    } cases[] = {
        {{30, 20, 10, 5}, {10, 5, 30, 20}},
        {{10, 20, 30, 5}, {10, 5, 30, 20}},
        {{7, 1, 7, 9}, {7, 1, 7, 9}},  // no width is no error
        {{-5, -1, -10, -20}, {-10, -20, -5, -1}},
        {{kMax, kMax, kMin, kMin}, {kMin, kMin, kMax, kMax}},
    };
    for (const auto& [given, stored] : cases) EXPECT_EQ(CAreaRect(given).GetRectangle(), stored);
}

TEST(AreaSet, GetRectOutsideTracesAndGivesNull) {
    CAreaSet set(L"A", 1);
    set.AddRect({0, 0, 1, 1});
    for (const int32_t position : {-1, 1, kMin, kMax}) {
        EXPECT_EQ(set.GetRect(position), nullptr) << position;
        EXPECT_EQ(test::TakeTraces(),
                  (std::vector<test::TraceLine>{{6, "AreaSet", L"CAreaSet::GetRect: iIndex out of array bounds."}}));
    }
}

TEST(AreaSet, CopiesAreasDeepAndWithoutTheirFields) {
    CAreaSet source(L"Source", 7);
    source.SetFlags(0x90000001);
    source.SetDisplayRect({0, 0, 2100, -5});
    source.AddRect({1, 2, 3, 4}, L"Total");
    source.AddRect({5, 6, 7, 8}, L"");
    EXPECT_TRUE(source.GetRect(0)->m_bIndexField);
    EXPECT_FALSE(source.GetRect(1)->m_bIndexField);

    CAreaSet assigned(L"Old", 1);
    assigned.AddRect({9, 9, 9, 9});
    assigned = source;
    CAreaSet copied(L"Old", 1);
    copied.CopyFrom(source);
    assigned = *&assigned;  // to itself: nothing happens
    copied.CopyFrom(copied);

    EXPECT_EQ(assigned.GetID(), 7u);
    EXPECT_EQ(copied.GetID(), 1u);
    for (const CAreaSet* set : {&assigned, &copied}) {
        EXPECT_EQ(set->GetName(), L"Source");
        EXPECT_EQ(set->GetFlags(), 0x90000001u);
        EXPECT_EQ(set->GetDisplayRect(), (PageRect{0, 0, 2100, -5}));
        ASSERT_EQ(set->GetRectCount(), 2);
        EXPECT_EQ(set->GetRect(0)->GetRectangle(), (PageRect{1, 2, 3, 4}));
        EXPECT_EQ(set->GetRect(0)->m_strIndexField, L"");
        EXPECT_FALSE(set->GetRect(0)->m_bIndexField);
        EXPECT_NE(set->GetRect(0), source.GetRect(0));
    }
}

}  // namespace
