#include "refhost/app/FieldSpec.h"

#include <gtest/gtest.h>

namespace zonhost {
namespace {

TEST(FieldSpec, NamesMayHoldEqualsAndPlacesAreFourNumbers) {
    const struct {
        const char* text;
        const char* shown;  // "" for a text that is no field
    } cases[] = {
        {"Number", "Number: not placed\n"},
        {"Total=1500,2400,1900,2480", "Total: 1500,2400,1900,2480\n"},
        {"a=b=-1,0x10,-2147483648,2147483647", "a=b: -1,16,-2147483648,2147483647\n"},
        {"Total=1,2,3", ""},
        {"Total=1,2,3,4,5", ""},
        {"Total=1,2,3,2147483648", ""},
        {"Total=-2147483649,2,3,4", ""},
        {"Total=0x,2,3,4", ""},
        {"Total=0x-1,2,3,4", ""},
        {"Total=1,2,,4", ""},
        {"Total=", ""},
    };
    for (const auto& c : cases) {
        const auto field = ParseField(c.text);
        EXPECT_EQ(field ? FieldsAsText({*field}) : "", c.shown) << c.text;
    }
}

TEST(FieldSpec, JsonTakesNamesOfAnyBytes) {
    const std::string json = FieldsAsJson({{"\"\xFF", 1, 2, 3, 4}});
    EXPECT_NE(json.find("\"name\": \"\\\"\xEF\xBF\xBD\""), std::string::npos) << json;
    EXPECT_NE(json.find("\"bottom\": 4"), std::string::npos) << json;
}

}  // namespace
}  // namespace zonhost
