// The tree of settings and the text of its file.
#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <functional>
#include <string>

#include "refhost/settings/StoreError.h"
#include "refhost/settings/TreeText.h"
#include "refhost/settings/Unicode.h"

namespace settings {
namespace {

std::string RoundTrip(const std::string& text) {
    return WriteTree(*ReadTree(text));
}

Failure FailureOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const StoreError& error) {
        EXPECT_GT(std::string(error.what()).size(), 15u) << "a message for people";
        return error.What();
    }
    ADD_FAILURE() << "did not fail";
    return Failure::kDamaged;
}

// What we write ourselves, and what others wrote, comes back byte for byte.
TEST(TreeText, KeepsEverythingInOrder) {
    const std::string text = R"({
  "RealWidth": 2100,
  "0x0000002a": {
    "Name": "Umlaut \u0000 ä \"x\" 😀 \u0001\n",
    "Flags": 268435456,
    "DisplayRect": {"Position:bottom": 2970, "Position:left": -5, "Position:right": 2100, "Position:top": 0},
    "Rect": {}
  },
  "RadioPageSource": true,
  "null": null,
  "fraction": 1.50,
  "small": -2.5e-300,
  "beyond": 18446744073709551616,
  "most": 18446744073709551615,
  "least": -9223372036854775808,
  "greatest": 9223372036854775807,
  "list": [1, "a\"b", null, [], {}, {"x": [1.0, false], "y": {"z": "\t"}}],
  "units": ["utf-16", 55357, 65],
  "a list of numbers": ["utf-16", 65, 66],
  "no units": ["utf-16", 55357, 65536],
  "negative units": ["utf-16", -55357, [1]],
  "nothing in them": ["utf-16"],
  "signs": [-1, true],
  "off": false,
  "back\\slash\u007f": ["a\\b\u007f"],
  "0x00000001": {}
}
)";
    EXPECT_EQ(text, RoundTrip(text));
    EXPECT_EQ(text, RoundTrip("\xEF\xBB\xBF" + RoundTrip(text)));
    const NodePtr root = ReadTree(text);
    EXPECT_EQ(u"\xD83D\x41", root->Value<std::u16string>(u"units"));
    EXPECT_TRUE(root->Value<bool>(u"RadioPageSource"));
    EXPECT_EQ(INT64_MIN, root->Value<int64_t>(u"least"));
    EXPECT_EQ(Failure::kWrongKind, FailureOf([&] { root->Value<int64_t>(u"most"); }));
    EXPECT_EQ(root->Child(u"0x0000002a")->Value<std::u16string>(u"Name").size(), 20u);
}

// Half of a pair and bytes that are no UTF-8 become the replacement character, each by itself, and nothing behind them
// is lost.
TEST(Unicode, WhatIsNoCharacterIsReplaced) {
    const struct {
        const char* bytes;
        const char16_t* units;
    } cases[] = {
        {"\xC3\xA4\xF0\x9F\x98\x80", u"\u00E4\xD83D\xDE00"},
        {"\x80x", u"\xFFFDx"},                    // a byte of the middle alone
        {"\xC1\x81x", u"\xFFFD\xFFFDx"},          // longer than needed
        {"\xE0\x80\x80", u"\xFFFD\xFFFD\xFFFD"},  // the same with three
        {"\xC3", u"\xFFFD"},                      // cut off
        {"\xE2\x82x", u"\xFFFD\xFFFDx"},
        {"\xED\xA0\xBD", u"\xFFFD\xFFFD\xFFFD"},  // half a pair
        {"\xED\xB0\x80", u"\xFFFD\xFFFD\xFFFD"},
        {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},  // beyond the last character
        {"\xF5\x80\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
        {"\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF"},
    };
    for (const auto& test : cases) EXPECT_EQ(Utf16From(test.bytes), test.units) << testing::PrintToString(test.bytes);
    const struct {
        std::u16string units;
        const char* bytes;
    } halves[] = {
        {u"\xD83D", "\xEF\xBF\xBD"}, {u"\xD83Dx", "\xEF\xBF\xBDx"}, {u"\xDE00\xD83D", "\xEF\xBF\xBD\xEF\xBF\xBD"}};
    for (const auto& test : halves) {
        EXPECT_EQ(Utf8From(test.units), test.bytes);
        EXPECT_FALSE(IsValidUtf16(test.units));
    }
}

TEST(TreeText, DoesNotDependOnTheLocale) {
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr && std::setlocale(LC_ALL, "German") == nullptr) {
        GTEST_SKIP() << "no German locale here";
    }
    const std::string text = "{\n  \"a\": 1.50,\n  \"b\": [-0.25e3]\n}\n";
    const std::string result = RoundTrip(text);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(text, result);
}

TEST(TreeText, WrapsLongNumberGroups) {
    Node root;
    const NodePtr group = root.Child(u"group");
    for (int i = 0; i < 20; ++i) group->SetValue(Utf16From("number " + std::to_string(i)), int64_t{i});
    const std::string text = WriteTree(root);
    EXPECT_EQ(24, std::count(text.begin(), text.end(), '\n'));
    EXPECT_EQ(text, RoundTrip(text));
}

TEST(TreeText, NamesTheLineOfDamage) {
    const std::string deep(101, '[');
    const struct {
        const char* what;
        std::string text;
        size_t line;
        const char* reason;
    } cases[] = {
        {"empty", "", 1, "end of input"},
        {"cut off", "{\n  \"a\": 1,\n  \"b\": {", 3, "end of input"},
        {"no comma", "{\n\"a\": 1\n\"b\": 2}", 3, "expected"},
        {"word", "{\n\"a\": tru\n}", 2, "invalid literal"},
        {"twice", "{\n\"a\": 1,\n\"b\": {},\n\n\"a\":\n2}", 6, "\"a\" stands twice"},
        {"twice in a group", "{\"g\": {\"x\": 1,\n\"x\": {}}}", 2, "\"x\" stands twice"},
        {"no object", "\n[1]", 2, "object"},
        {"number alone", "12", 1, "object"},
        {"rest", "{}\n\n}", 3, "end of input"},
        {"no UTF-8", "{\n\"a\": \"\xFF\xFE\"}", 2, "UTF-8"},
        {"half a character", "{\n\n\"a\": \"\\ud800\"}", 3, "surrogate"},
        {"zeros behind", std::string("{\n}\n\0\0{}", 8), 3, "value 0"},
        {"overflow", "{\"a\": 1e999}", 1, "number overflow"},
        {"long", "{\"a\": \"" + std::string(5000, 'x'), 1, "missing closing quote"},
        {"deep list", "{\n\"a\": " + deep, 2, "levels deep"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.what);
        try {
            ReadTree(test.text);
            ADD_FAILURE() << "was read";
        } catch (const DamageError& error) {
            EXPECT_EQ(test.line, error.Line()) << error.what();
            EXPECT_NE(std::string(error.what()).find(test.reason), std::string::npos) << error.what();
            EXPECT_LT(std::string(error.what()).size(), 400u);
        }
    }
}

TEST(TreeText, StatesItsLimits) {
    std::string nested;
    for (int i = 1; i < kMaxDepth; ++i) nested += "{\"a\": ";
    const std::string deepest = nested + "{}" + std::string(kMaxDepth - 1, '}');
    EXPECT_NO_THROW(ReadTree(deepest));
    EXPECT_THROW(ReadTree("{\"a\": " + deepest + "}"), DamageError);
    EXPECT_THROW(ReadTree(std::string(kMaxFileSize + 1, ' ')), DamageError);

    // What was written can always be read again, so a text that could not be is not written.
    Node root;
    root.SetValue(u"big", std::u16string(kMaxFileSize / 6 + 1, u'\x1'));
    EXPECT_EQ(Failure::kTooLarge, FailureOf([&] { WriteTree(root); }));
}

TEST(Tree, KeepsValuesAndGroupsApart) {
    Node root;
    root.SetValue(u"value", int64_t{1});
    const NodePtr group = root.Child(u"group");
    EXPECT_EQ(group, root.Child(u"group"));
    EXPECT_EQ(Failure::kWrongKind, FailureOf([&] { root.Child(u"value"); }));
    EXPECT_EQ(Failure::kWrongKind, FailureOf([&] { root.SetValue(u"group", true); }));
    EXPECT_EQ(Failure::kWrongKind, FailureOf([&] { root.Value<bool>(u"value"); }));
    EXPECT_EQ(Failure::kWrongKind, FailureOf([&] { root.Value<std::u16string>(u"value"); }));
    EXPECT_EQ(Failure::kMissing, FailureOf([&] { root.RemoveChild(u"value"); }));
    EXPECT_EQ(Failure::kMissing, FailureOf([&] { root.RemoveChild(u"other"); }));
    EXPECT_EQ(Failure::kMissing, FailureOf([&] { root.Value<bool>(u"other"); }));
    EXPECT_EQ(Failure::kBadName, FailureOf([&] { root.Child(u""); }));
    EXPECT_EQ(Failure::kBadName, FailureOf([&] { root.SetValue(u"\xDC00", true); }));
    EXPECT_EQ(Failure::kBadName, FailureOf([&] { root.Child(std::u16string(kMaxNameLength + 1, u'x')); }));
    root.SetValue(u"value", std::u16string(u"text"));
    EXPECT_EQ("{\n  \"value\": \"text\",\n  \"group\": {}\n}\n", WriteTree(root));
}

TEST(Tree, FindsManyMembersAndKeepsTheirOrder) {
    constexpr int kCount = 20000;
    Node root;
    const auto name = [](int i) { return Utf16From("0x" + std::to_string(i)); };
    for (int i = 0; i < kCount; ++i) root.Child(name(i))->SetValue(u"i", int64_t{i});
    for (int i = 0; i < kCount; i += 2) root.RemoveChild(name(i));
    root.Child(name(0));
    int next = 1;
    for (const Member& member : root.Members()) {
        if (next < kCount) {
            EXPECT_EQ(name(next), member.name);
        }
        next += 2;
    }
    EXPECT_EQ(name(0), root.Members().back().name);
    EXPECT_EQ(7, root.Child(name(7))->Value<int64_t>(u"i"));
}

// Two trees change places at a commit: each finds its members by name after that.
TEST(Tree, SwapsMembersWithTheirNames) {
    Node few, many;
    few.SetValue(u"only", int64_t{1});
    for (int i = 0; i < 50; ++i) many.SetValue(Utf16From(std::to_string(i)), int64_t{i});
    few.SwapMembers(many);
    EXPECT_EQ(many.Value<int64_t>(u"only"), 1);
    EXPECT_EQ(few.Value<int64_t>(u"49"), 49);
    few.SetValue(u"49", int64_t{7});
    EXPECT_EQ(few.Members().size(), 50u);
    EXPECT_EQ(Failure::kMissing, FailureOf([&] { many.Value<int64_t>(u"49"); }));
}

TEST(Tree, MergesCopies) {
    const auto merged = [](const char* target, const char* source) {
        const NodePtr node = ReadTree(target);
        node->Merge(*ReadTree(source)->Clone());
        return WriteTree(*node);
    };
    EXPECT_EQ(RoundTrip(R"({"a": 2, "g": {"x": 1, "y": [1]}, "b": {"c": {}}})"),
              merged(R"({"a": {"gone": 1}, "g": {"x": 1}, "b": 5})", R"({"g": {"y": [1]}, "a": 2, "b": {"c": {}}})"));
    // Into a node below itself, which must neither run for ever nor change what is copied.
    const NodePtr root = ReadTree(R"({"a": 1, "in": {"b": 2}})");
    root->Child(u"in")->Merge(*root->Clone());
    EXPECT_EQ(RoundTrip(R"({"a": 1, "in": {"b": 2, "a": 1, "in": {"b": 2}}})"), WriteTree(*root));

    Node deep;
    NodePtr inner = deep.Child(u"a");
    while (inner->Depth() < kMaxDepth) inner = inner->Child(u"a");
    EXPECT_EQ(Failure::kTooDeep, FailureOf([&] { inner->Child(u"a"); }));
    const std::string before = WriteTree(deep);
    EXPECT_EQ(Failure::kTooDeep, FailureOf([&] { deep.Child(u"a")->Merge(*deep.Clone()); }));
    EXPECT_EQ(before, WriteTree(deep));
}

}  // namespace
}  // namespace settings
