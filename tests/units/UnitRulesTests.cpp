#include "refhost/units/UnitRules.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cwchar>
#include <limits>

namespace {

using units::Format;
using units::FromUser;
using units::MeasureSystem;
using units::ToUser;

constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(UnitRules, RoundsToNearestAndSaturates) {
    const struct {
        MeasureSystem system;
        double value;
        int32_t length;
    } cases[] = {
        {MeasureSystem::kMetric, 210.0, 2100},      {MeasureSystem::kInches, 8.27F, 2101},
        {MeasureSystem::kInches, 11.69F, 2969},     {MeasureSystem::kMetric, 0.25, 3},
        {MeasureSystem::kMetric, -0.25, -3},        {MeasureSystem::kMetric, 0.04, 0},
        {MeasureSystem::kInches, 1.0, 254},         {MeasureSystem::kMetric, 1e300, kMax},
        {MeasureSystem::kInches, -1e300, kMin},     {MeasureSystem::kMetric, kInfinity, kMax},
        {MeasureSystem::kMetric, -kInfinity, kMin}, {MeasureSystem::kMetric, std::nan(""), 0},
    };
    for (const auto& one : cases) EXPECT_EQ(FromUser(one.value, one.system), one.length) << one.value;
}

TEST(UnitRules, ShownLengthsReadBackToTheSame) {
    for (const MeasureSystem system : {MeasureSystem::kMetric, MeasureSystem::kInches}) {
        for (const int32_t base : {0, 2100, 254000, kMax - 300, kMin + 300}) {
            for (int32_t length = base - 300; length <= base + 299; ++length) {
                const std::wstring text = Format(length, system);
                wchar_t* end = nullptr;
                const double value = std::wcstod(text.c_str(), &end);
                ASSERT_EQ(*end, L'\0');
                ASSERT_EQ(FromUser(value, system), length) << length;
                ASSERT_EQ(FromUser(ToUser(length, system), system), length);
            }
        }
    }
}

TEST(UnitRules, TextsHaveAPointAndTheirDecimals) {
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    EXPECT_EQ(Format(2101, MeasureSystem::kMetric), L"210.1");
    EXPECT_EQ(Format(-5, MeasureSystem::kMetric), L"-0.5");
    EXPECT_EQ(Format(0, MeasureSystem::kInches), L"0.000");
    EXPECT_EQ(Format(2101, MeasureSystem::kInches), L"8.272");
    EXPECT_EQ(Format(-1, MeasureSystem::kInches), L"-0.004");
    EXPECT_EQ(Format(kMin, MeasureSystem::kMetric), L"-214748364.8");
    EXPECT_EQ(units::UnitName(MeasureSystem::kMetric), std::wstring(L"mm"));
    EXPECT_EQ(units::UnitName(MeasureSystem::kInches), std::wstring(L"in"));
    std::setlocale(LC_ALL, "C");
}

}  // namespace
