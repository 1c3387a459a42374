#include "win32/NumberText.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>

namespace {

using win32::FormatFixed;
using win32::FormatGeneral;
using win32::ParseNumber;

// A host may have set a locale with a decimal comma.
class NumberText : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        if (!GetParam()) return;
        const bool german = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr ||
                            std::setlocale(LC_ALL, "German_Germany") != nullptr ||
                            std::setlocale(LC_ALL, "de-DE") != nullptr;
        if (!german) GTEST_SKIP() << "no German locale on this machine";
    }
    void TearDown() override { std::setlocale(LC_ALL, "C"); }
};

TEST_P(NumberText, ReadsWholeNumbersOnly) {
    const double inf = std::numeric_limits<double>::infinity();
    const struct {
        const wchar_t* text;
        double value;
    } good[] = {{L"0", 0},      {L"210.5", 210.5},     {L" 210.5\t", 210.5}, {L"-1", -1},
                {L"+7", 7},     {L"1500.01", 1500.01}, {L".5", 0.5},         {L"5.", 5},
                {L"1e3", 1000}, {L"1E-2", 0.01},       {L"1e400", inf},      {L"-1e400", -inf},
                {L"1e-400", 0}};
    for (const auto& one : good) {
        const auto value = ParseNumber(one.text);
        ASSERT_TRUE(value.has_value()) << testing::PrintToString(one.text);
        EXPECT_DOUBLE_EQ(*value, one.value) << testing::PrintToString(one.text);
    }
    for (const wchar_t* text :
         {L"",         L"   ",  L"210,5", L"1.000,5", L"12a",          L"a12",    L"1 2",   L"1.2.3", L"--1",
          L"+-1",      L"+",    L"-",     L".",       L"e3",           L"1e",     L"inf",   L"-inf",  L"nan",
          L"infinity", L"0x10", L"12 mm", L"1\n2",    L"\u0661\u0662", L"\u0131", L"\uFF11"}) {
        EXPECT_FALSE(ParseNumber(text).has_value()) << testing::PrintToString(text);
    }
    EXPECT_FALSE(ParseNumber(std::wstring_view(L"1\0002", 3)).has_value());
    EXPECT_EQ(ParseNumber(std::wstring(100000, L'0') + L"1"), 1.0);

    // Out of range for their digits, whatever the exponent says.
    const std::wstring zeros(400, L'0');
    EXPECT_EQ(ParseNumber(L"0." + zeros + L"1"), 0.0);
    EXPECT_EQ(ParseNumber(L"-." + zeros + L"1e+5"), 0.0);
    EXPECT_EQ(ParseNumber(L"1" + zeros), inf);
    EXPECT_EQ(ParseNumber(L"-1" + zeros + L"e-5"), -inf);
    EXPECT_EQ(ParseNumber(L"." + zeros + L"1e99999999999999999999"), inf);
    EXPECT_EQ(ParseNumber(L"1" + zeros + L"e-99999999999999999999"), 0.0);
}

TEST_P(NumberText, WritesAPoint) {
    EXPECT_EQ(FormatFixed(12.3456, 1), L"12.3");
    EXPECT_EQ(FormatFixed(-0.25, 2), L"-0.25");
    EXPECT_EQ(FormatGeneral(2101.0F / 254.0F, 6), L"8.27165");
    EXPECT_EQ(FormatGeneral(210.1F, 6), L"210.1");
    EXPECT_EQ(FormatGeneral(1500, 6), L"1500");
    EXPECT_EQ(FormatFixed(std::numeric_limits<double>::max(), 3).size(), 313U);
}

INSTANTIATE_TEST_SUITE_P(Locales, NumberText, testing::Bool());

}  // namespace
