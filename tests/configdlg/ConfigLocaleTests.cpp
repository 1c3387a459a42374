// "Configure Area Set" where numbers have a decimal comma.
#include <clocale>

#include "configdlg/ConfigFixture.h"

namespace test {
namespace {

// The user's settings and those of the C library, which hosts set as well, while it lives.
class DecimalComma {
public:
    DecimalComma() {
        GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, m_before, 4);
        SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, L",");
        EXPECT_NE(std::setlocale(LC_ALL, "German_Germany.1252"), nullptr);
        EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    }
    ~DecimalComma() {
        std::setlocale(LC_ALL, "C");
        SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, m_before);
    }
    DecimalComma(const DecimalComma&) = delete;
    DecimalComma& operator=(const DecimalComma&) = delete;

private:
    wchar_t m_before[4] = L".";
};

class ConfigLocale : public ConfigDialog {};

TEST_F(ConfigLocale, EditingOneLengthKeepsTheOthers) {
    const DecimalComma comma;
    constexpr RECT kPlace = {101, 203, 1234, 2345};
    const struct {
        bool inches;
        const wchar_t* before;
        const wchar_t* typed;
        LONG expected;
    } cases[] = {{false, L"10.1 20.3 113.3 214.2 Total", L"12.3", 123},
                 {true, L"0.398 0.799 4.461 8.433 Total", L"1.25", 318}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.inches ? "inches" : "metric");
        if (c.inches) UseInches();
        for (int column = 0; column < 4; ++column) {
            std::vector<SAIndexField> fields = {Field(L"Total", kPlace)};
            Steps steps = {[&](HWND dialog) { EXPECT_EQ(RowText(dialog, 0), c.before); }};
            EditCell(steps, 0, column, c.typed);
            steps.push_back(PressOk);
            EXPECT_TRUE(PlayPage(fields, steps));
            LONG lengths[] = {kPlace.left, kPlace.top, kPlace.right - kPlace.left, kPlace.bottom - kPlace.top};
            lengths[column] = c.expected;
            EXPECT_EQ(PlaceOf(fields[0]),
                      (RECT{lengths[0], lengths[1], lengths[0] + lengths[2], lengths[1] + lengths[3]}))
                << column;
        }
    }
    ExpectNothingReported();
}

}  // namespace
}  // namespace test
