#include "refhost/app/ZoneFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace zonhost;
using testing::HasSubstr;

namespace {

constexpr Resolution kFax{204, 196};

TEST(ZoneFile, PixelsBecomeTenthsOfAMillimetrePerAxis) {
    const auto zones =
        ParseZones("\xEF\xBB\xBF 204 196 408 98 Text/Latin\r\n\r\n\t0\t0\t1\t1\r\n204 0 204 196", "f", kFax);
    const std::vector<Rect> expected{{254, 254, 762, 381}, {0, 0, 1, 1}, {254, 0, 508, 254}};
    EXPECT_EQ(zones, expected);
    // Beyond 2^31 / 254 pixels: no overflow on the way.
    EXPECT_EQ(ParseZones("20000000 0 1000000 1", "f", {600, 600}).at(0).right, 8890000);
    EXPECT_EQ(PageOfPixels(1728, 2376, kFax), (Rect{0, 0, 2152, 3079}));
}

TEST(ZoneFile, EveryBadLineIsToldByItsNumber) {
    const std::string text =
        "10 10 10 10 good\nten 10 10 10\n\n10 10 10\n10 10 0 10 x\n-1 0 5 5\n1.5 0 5 5\n99999999999999999999 0 1 1\n"
        "2147483647 0 2147483647 1\n";
    try {
        ParseZones(text, "letter.uzn", {10, 10});
        FAIL() << "the bad lines were taken";
    } catch (const CommandError& error) {
        const std::string message = error.what();
        EXPECT_THAT(message, HasSubstr("letter.uzn: line 2: left is no whole number: ten\n"));
        EXPECT_THAT(message, HasSubstr("letter.uzn: line 4: height is missing\n"));
        EXPECT_THAT(message, HasSubstr("letter.uzn: line 5: width is not positive or too large\n"));
        EXPECT_THAT(message, HasSubstr("letter.uzn: line 6: left is negative or too large\n"));
        EXPECT_THAT(message, HasSubstr("letter.uzn: line 7: left is no whole number: 1.5\n"));
        EXPECT_THAT(message, HasSubstr("letter.uzn: line 8: left is no whole number"));
        EXPECT_THAT(message, HasSubstr("letter.uzn: line 9: lies too far out"));
        EXPECT_THAT(message, testing::Not(HasSubstr("line 1:")));
    }
    std::string many;
    for (int line = 0; line < 1000; ++line) many += "0 0 1 x\n";
    try {
        ParseZones(many, "many.uzn", kFax);
        FAIL() << "the bad lines were taken";
    } catch (const CommandError& error) {
        const std::string message = error.what();
        EXPECT_EQ(std::count(message.begin(), message.end(), '\n'), 9) << "the first ten say enough";
    }
    EXPECT_THROW(ParseZones("0 2147483647 1 2147483647", "f", {1, 1}), CommandError);
    EXPECT_THROW(ParseZones("0 1 1 2147483647", "f", {300, 1}), CommandError);
    EXPECT_THROW(ParseZones("\n \n", "empty.uzn", kFax), CommandError);
}

TEST(Resolution, TakesOneOrTwoNumbersAndNothingElse) {
    EXPECT_EQ(ParseResolution("204x196")->y, 196);
    EXPECT_EQ(ParseResolution("299.999")->x, 299.999);
    for (const char* text : {"", "x", "300x", "x300", "0", "-300", "nan", "inf", "1e3", "0x12C", "300 ", "300x200x100",
                             "20001", "300,5"}) {
        EXPECT_FALSE(ParseResolution(text)) << text;
    }
}

}  // namespace
