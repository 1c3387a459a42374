#include "refhost/app/ImportPlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "refhost/app/Text.h"

using namespace zonhost;

namespace {

AreaSetRecord Named(const char* name) {
    AreaSetRecord set;
    set.name = name;
    return set;
}

std::vector<uint32_t> IdsFor(const std::vector<StoredSet>& stored, bool replace,
                             std::initializer_list<const char*> names) {
    std::vector<AreaSetRecord> sets;
    for (const char* name : names) sets.push_back(Named(name));
    std::vector<uint32_t> ids;
    for (const PlannedSet& planned : PlanImport(std::move(sets), stored, replace)) ids.push_back(planned.set.id);
    return ids;
}

TEST(ImportPlan, NewSetsNeverTakeAnIdentifierThatIsThere) {
    using Ids = std::vector<uint32_t>;
    EXPECT_EQ(IdsFor({}, false, {"a", "b"}), (Ids{1, 2}));
    EXPECT_EQ(IdsFor({{42, "x", "0x0000002a"}, {3, "y", ""}}, false, {"a", "b"}), (Ids{43, 44}));
    EXPECT_EQ(IdsFor({{0x7FFFFFFE, "x", ""}, {1, "y", ""}, {3, "z", ""}}, false, {"a", "b"}), (Ids{2, 4}));
    EXPECT_EQ(IdsFor({{0x7FFFFFFD, "x", ""}, {1, "y", ""}}, false, {"a"}), (Ids{0x7FFFFFFE}));
    EXPECT_EQ(IdsFor({{0x7FFFFFFF, "x", ""}}, false, {"a"}), (Ids{1}));
}

TEST(ImportPlan, ReplacingKeepsTheIdentifierOfTheFirstSetOfTheName) {
    EXPECT_EQ(IdsFor({{7, "a", ""}, {9, "a", ""}}, true, {"b", "a"}), (std::vector<uint32_t>{10, 7}));
}

TEST(ImportPlan, KeysAreReadAsTheModuleReadsThem) {
    for (const auto& [key, id] : std::initializer_list<std::pair<const char*, uint32_t>>{{"0x0000002a", 42},
                                                                                         {"2A", 42},
                                                                                         {" 0x1g", 1},
                                                                                         {"", 0},
                                                                                         {"Forms", 0xF},
                                                                                         {"View", 0},
                                                                                         {"0xffffffff", 0x7FFFFFFF}}) {
        EXPECT_EQ(IdOfKey(key), id) << key;
    }
    EXPECT_EQ(KeyOfId(42), "0x0000002a");
    AreaSetRecord set = Named("a");
    EXPECT_EQ(PlanImport({set}, {{42, "a", "2A"}}, true).at(0).key, "2A");
}

TEST(ImportPlan, WhatWouldHideASetIsRefused) {
    EXPECT_THROW(IdsFor({{7, "a", ""}}, false, {"b", "a"}), CommandError);
    EXPECT_THROW(IdsFor({}, true, {"a", "a"}), CommandError);
    EXPECT_NO_THROW(IdsFor({{7, "a", ""}}, false, {"A"}));
}

}  // namespace
