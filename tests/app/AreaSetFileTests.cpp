#include "refhost/app/AreaSetFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "refhost/app/Text.h"

using namespace zonhost;
using testing::HasSubstr;

namespace {

std::string MessageFor(const std::string& text) {
    try {
        ParseAreaSets(text, "sets.json");
    } catch (const CommandError& error) {
        return error.what();
    }
    return "no error";
}

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    quoted += text;
    quoted += "\"";
    return quoted;
}

// One set with the given entries in place of the good ones.
std::string SetWith(const std::string& name, const std::string& rest) {
    return R"({"sets":[{"name":)" + name + "," + rest + "}]}";
}

constexpr const char* kGoodRest = R"("mode":"required","areas":[])";

TEST(AreaSetFile, WrittenSetsAreReadBackTheSame) {
    constexpr int32_t kLow = std::numeric_limits<int32_t>::min();
    constexpr int32_t kHigh = std::numeric_limits<int32_t>::max();
    const std::vector<AreaSetRecord> sets{
        {0, "Rechnung \"A\\4\" \xC3\xBC\xF0\x9F\x93\x84", 0, {0, 0, 2100, 2970}, {{0, 0, 10, 10}, {-5, 20, 30, 40}}},
        {0, "without areas", kAreasIgnored, {0, 0, 2100, 2970}, {}},
        {0, "other flags", kAreasIgnored | 0x5, {0, 0, 1, 1}, {{kLow, kLow, kHigh, kHigh}}},
    };
    const std::string text = FormatAreaSets(sets);
    EXPECT_EQ(ParseAreaSets(text, "sets.json"), sets);
    EXPECT_EQ(FormatAreaSets(ParseAreaSets(text, "sets.json")), text);
}

// What the module stored may have no usable page, and an identifier is shown where there is one.
TEST(AreaSetFile, WritesOnlyPagesThatCanBeReadAgain) {
    constexpr int32_t kHigh = std::numeric_limits<int32_t>::max();
    EXPECT_EQ(ParseAreaSets(FormatAreaSets({{7, "a", 0, {0, 0, 10, 10}, {}}}), "f").at(0).page, (Rect{0, 0, 10, 10}));
    for (const Rect& page : {Rect{}, Rect{0, 0, 0, 10}, Rect{0, 0, 10, 0}, Rect{9, 9, 0, 0}, Rect{-2, 0, kHigh, 10},
                             Rect{0, -2, 10, kHigh}}) {
        const std::string text = FormatAreaSets({{7, "a", 0, page, {}}});
        EXPECT_THAT(text, HasSubstr("\"id\": 7,"));
        EXPECT_THAT(text, testing::Not(HasSubstr("\"page\""))) << page.right << ' ' << page.bottom;
        EXPECT_EQ(ParseAreaSets(text, "f").size(), 1u);
    }
    EXPECT_EQ(MessageFor(FormatAreaSets({})), "sets.json: sets: holds no area set");
}

// Somebody may hand over the settings file itself: that is told, not taken for a mistake in an area set file.
TEST(AreaSetFile, TellsASettingsFileFromAnother) {
    for (const auto& [text, isSettings] :
         std::initializer_list<std::pair<const char*, bool>>{{R"({"RealWidth":1,"0x0000002a":{"Name":"a"}})", true},
                                                             {R"({"0x0000002a":5})", false},
                                                             {R"({"View":{}})", false},
                                                             {R"({"sets":[],"0x0000002a":{}})", false},
                                                             {"[]", false},
                                                             {"{", false}}) {
        EXPECT_EQ(IsSettings(text), isSettings) << text;
    }
}

TEST(AreaSetFile, SetWithoutPageGetsA4ThatHoldsItsAreas) {
    const auto sets = ParseAreaSets(
        SetWith("\"A3\"", R"("mode":"ignored","areas":[{"left":0,"top":0,"right":2970,"bottom":100}])"), "f");
    EXPECT_EQ(sets.at(0).page, (Rect{0, 0, 2970, 2970}));
}

TEST(AreaSetFile, EveryMistakeIsToldWithItsPlace) {
    const std::string longest(kLongestName, 'x');
    const struct {
        std::string text;
        const char* message;
    } cases[] = {
        {"", "sets.json: line 1: no valid JSON"},
        {"{\n\"sets\": [\n{,", "sets.json: line 3: no valid JSON"},
        {"[1e999]", "sets.json: no valid JSON: number overflow"},
        {"[]", "sets.json: the file: must be an object"},
        {R"({"sets":{}})", "sets.json: sets: must be a list"},
        {R"({"sets":[]})", "sets.json: sets: holds no area set"},
        {R"({"unit":"mm","sets":[]})", "sets.json: unit: must be \"0.1 mm\""},
        {R"({"sets":[7]})", "sets.json: sets[0]: must be an object"},
        {SetWith("\"a\\u0007\"", kGoodRest), "sets.json: sets[0].name: must not hold control characters"},
        {SetWith("\"\"", kGoodRest), "sets[0].name: must not be empty"},
        {SetWith("5", kGoodRest), "sets[0].name: must be a text"},
        {SetWith(Quoted(longest + "x"), kGoodRest), "sets[0].name: longer than 63 characters"},
        {SetWith(Quoted(longest), kGoodRest), "no error"},
        // 62 units and a character of two.
        {SetWith(Quoted(longest.substr(1) + "\xF0\x9F\x93\x84"), kGoodRest), "longer than 63 characters"},
        {SetWith("\"\xFF\"", kGoodRest), "no valid JSON"},
        {SetWith("\"a\"", R"("mode":"keep","areas":[])"), "sets[0].mode: must be \"required\" or \"ignored\""},
        {SetWith("\"a\"", R"("mode":"required","flags":268435456,"areas":[])"), "sets[0].flags: does not agree"},
        {SetWith("\"a\"", R"("mode":"required","aeras":[],"areas":[])"), "sets[0].aeras: unknown entry"},
        {SetWith("\"a\"", R"("mode":"required","areas":[],"areas":[])"), "two entries \"areas\""},
        {SetWith("\"a\"", R"("mode":"required","page":{"width":0,"height":9},"areas":[])"), "sets[0].page.width: must"},
        {SetWith("\"a\"", R"("mode":"required","areas":[{"left":1,"top":1,"right":0,"bottom":2}])"),
         "sets[0].areas[0]: left is greater than right"},
        {SetWith("\"a\"", R"("mode":"required","areas":[{"left":1,"top":1,"right":2}])"), "areas[0].bottom: missing"},
        {SetWith("\"a\"", R"("mode":"required","areas":[{"left":1.5,"top":1,"right":2,"bottom":3}])"),
         "areas[0].left: must be a whole number from -2147483648 to 2147483647"},
        {SetWith("\"a\"", R"("mode":"required","areas":[{"left":1,"top":1,"right":18446744073709551615,"bottom":3}])"),
         "areas[0].right: must be a whole number"},
        {SetWith("\"a\"", R"("mode":"required","areas":[{"left":1,"top":1,"right":2147483648,"bottom":3}])"),
         "areas[0].right: must be a whole number"},
        {SetWith("\"a\"", R"("mode":"required","areas":[{"left":-2147483649,"top":1,"right":2,"bottom":3}])"),
         "areas[0].left: must be a whole number"},
        {SetWith("\"a\"", R"("areas":[])"), "sets[0].mode: must be"},
        {SetWith("\"a\"", R"("mode":"required")"), "sets[0].areas: must be a list of areas"},
        {SetWith("\"a\"", R"("mode":"required","areas":{})"), "sets[0].areas: must be a list of areas"},
        {R"({"sets":[],"unit":"0.1 mm","sets":[],"unit":"0.1 mm"})", "two entries \"sets\""},
        {SetWith("\"a\x7F\"", kGoodRest), "must not hold control characters"},
        {R"({"sets":[{"name":"a","mode":"ignored","areas":[]},{"name":"a","mode":"ignored","areas":[]}]})",
         "sets[1].name: another set of this file is called \"a\""},
    };
    for (const auto& c : cases) EXPECT_THAT(MessageFor(c.text), HasSubstr(c.message)) << c.text;
}

// An import may be handed anything: deep nesting must not exhaust the stack.
TEST(AreaSetFile, DeepNestingIsRefusedWithoutHarm) {
    EXPECT_NE(MessageFor(std::string(1000000, '[')), "no error");
    EXPECT_NE(MessageFor("{\"sets\":" + std::string(100000, '[') + std::string(100000, ']') + "}"), "no error");
}

}  // namespace
