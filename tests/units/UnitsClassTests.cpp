// The unit object as the module finds it: through COM, with the system that the user or the host program chose.
#include <gtest/gtest.h>

#include "refhost/com/ClassRegistration.h"
#include "refhost/units/HostUnits.h"
#include "win32/HostUnits.h"

namespace {

class UnitsClass : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))); }
    void TearDown() override { CoUninitialize(); }
};

TEST_F(UnitsClass, FollowsTheRegionUntilTold) {
    const com::ClassRegistration registration(L"HostUnits.dll", {host::kClsidMeasureUnits});
    auto* const set = registration.Dll().Export<decltype(HostSetMeasureSystem)>("HostSetMeasureSystem");
    {
        const win32::HostUnits units;
        wchar_t region[4] = {};
        GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_IMEASURE, region, 4);
        EXPECT_EQ(units.IsMetric(), std::wstring(region) == L"0");

        ASSERT_TRUE(set(2));
        EXPECT_FALSE(units.IsMetric());
        EXPECT_EQ(units.GetUnitName(), L"in");
        EXPECT_EQ(units.FormatValue(2540), L"10.000");
        EXPECT_FALSE(set(3));
        EXPECT_DOUBLE_EQ(units.ToUserUnits(127), 0.5);
        ASSERT_TRUE(set(1));
        EXPECT_EQ(units.FromUserUnits(0.5), 5);
        EXPECT_EQ(units.GetUnitName(), L"mm");
        EXPECT_FALSE(registration.Idle());
    }
    EXPECT_TRUE(registration.Idle());
}

TEST_F(UnitsClass, AnUnknownClassIsThrown) {
    EXPECT_THROW(win32::HostUnits(), _com_error);
}

}  // namespace
