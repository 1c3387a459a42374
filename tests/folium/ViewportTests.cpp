#include <gtest/gtest.h>

#include <tuple>

#include "refhost/folium/Viewport.h"

namespace folium {
namespace {

constexpr int kBar = 17;
constexpr int kMargin = 8;

Viewport Shown(Size page, int width, int height, ZoomMode mode, int32_t percent = 100) {
    Viewport view;
    view.SetPage(page);
    view.SetWindow(width, height, kBar, kBar);
    EXPECT_TRUE(view.SetZoom(mode, percent));
    return view;
}

TEST(Viewport, FitsWithoutNeedlessScrollBars) {
    struct {
        ZoomMode mode;
        int width, height;
        bool bars[2];
        int32_t page[2];
    } const cases[] = {
        {ZoomMode::WholePage, 416, 616, {false, false}, {400, 566}},
        {ZoomMode::WholePage, 816, 313, {false, false}, {210, 297}},
        {ZoomMode::PageHeight, 816, 313, {false, false}, {210, 297}},
        {ZoomMode::PageHeight, 216, 630, {true, false}, {422, 597}},
        {ZoomMode::PageWidth, 443, 400, {false, true}, {410, 580}},
        {ZoomMode::PageWidth, 226, 400, {false, false}, {210, 297}},
        {ZoomMode::WholePage, 0, 0, {false, false}, {1, 1}},
    };
    for (const auto& test : cases) {
        const Viewport view = Shown({2100, 2970}, test.width, test.height, test.mode);
        EXPECT_EQ(view.Horizontal().needed, test.bars[0]) << test.width;
        EXPECT_EQ(view.Vertical().needed, test.bars[1]) << test.width;
        EXPECT_NEAR(view.PageWidth(), test.page[0], 1) << test.width;
        EXPECT_NEAR(view.PageHeight(), test.page[1], 1) << test.width;
    }
}

TEST(Viewport, HundredPercentIsTheDevicesResolution) {
    Viewport view = Shown({2540, 2540}, 300, 300, ZoomMode::Percent, 100);
    EXPECT_EQ(view.PageWidth(), 960);
    view.SetDpi(192);
    EXPECT_EQ(view.PageWidth(), 1920);
    EXPECT_FALSE(view.SetZoom(ZoomMode::Percent, 0));
    EXPECT_FALSE(view.SetZoom(ZoomMode::Percent, 1000000));
    for (const int mode : {-1, 4}) EXPECT_FALSE(view.SetZoom(static_cast<ZoomMode>(mode), 100));
    EXPECT_EQ(view.PageWidth(), 1920) << "a refused zoom changes nothing";
}

TEST(Viewport, OneBarCallsForTheOther) {
    const int page = 960;
    Viewport view = Shown({2540, 2540}, page + 2 * kMargin, page + 2 * kMargin, ZoomMode::Percent);
    EXPECT_FALSE(view.Horizontal().needed || view.Vertical().needed);
    view.SetWindow(page + 2 * kMargin, page + 2 * kMargin - 1, kBar, kBar);
    EXPECT_TRUE(view.Horizontal().needed && view.Vertical().needed);
    EXPECT_EQ(view.ViewWidth(), page + 2 * kMargin - kBar);
    view.SetWindow(page + 2 * kMargin + kBar, page + 2 * kMargin - 1, kBar, kBar);
    EXPECT_TRUE(!view.Horizontal().needed && view.Vertical().needed);
}

TEST(Viewport, ZoomKeepsThePlaceUnderThePointer) {
    Viewport view = Shown({2100, 2970}, 400, 400, ZoomMode::Percent, 100);
    view.ScrollTo(150, 300);
    for (const double factor : {1.25, 1.25, 1.25, 3.0, 0.8, 0.5}) {
        const Point before = view.ToPage(123, 234);
        view.ZoomAround(factor, 123, 234);
        EXPECT_NEAR(view.ToPage(123, 234).x, before.x, 4) << factor;
        EXPECT_NEAR(view.ToPage(123, 234).y, before.y, 4) << factor;
    }
}

TEST(Viewport, SizingKeepsTheMiddle) {
    Viewport view = Shown({2100, 2970}, 400, 400, ZoomMode::Percent, 200);
    view.ScrollTo(500, 700);
    const Point before = view.ToPage(view.ViewWidth() / 2, view.ViewHeight() / 2);
    view.SetWindow(500, 300, kBar, kBar);
    view.SetZoom(ZoomMode::Percent, 400);
    const Point after = view.ToPage(view.ViewWidth() / 2, view.ViewHeight() / 2);
    EXPECT_NEAR(after.x, before.x, 4);
    EXPECT_NEAR(after.y, before.y, 4);
}

TEST(Viewport, NothingNewLeavesThePageInItsPlace) {
    Viewport view = Shown({2100, 2970}, 401, 399, ZoomMode::Percent, 37);
    view.SetWindow(301, 277, kBar, kBar);
    view.SetDpi(97);
    const Viewport before = view;
    for (int i = 0; i < 100; ++i) {
        view.SetWindow(301, 277, kBar, kBar);
        view.SetDpi(97);
    }
    EXPECT_EQ(view.OriginX(), before.OriginX());
    EXPECT_EQ(view.OriginY(), before.OriginY());
    // Any one of the sizes alone is new.
    for (const auto& [height, vertical, horizontal] :
         {std::tuple{278, kBar, kBar}, std::tuple{278, kBar + 5, kBar}, std::tuple{278, kBar + 5, kBar + 6}}) {
        view.SetWindow(301, height, vertical, horizontal);
        EXPECT_EQ(view.ViewWidth(), 301 - vertical);
        EXPECT_EQ(view.ViewHeight(), height - horizontal);
    }
}

TEST(Viewport, RevealScrollsAsLittleAsNeeded) {
    Viewport view = Shown({2100, 2970}, 400, 400, ZoomMode::Percent, 200);
    const Rect rects[] = {{1900, 2800, 2000, 2900}, {10, 10, 60, 60}, {100, 100, 2000, 2000}, {3000, 4000, 3001, 4001}};
    for (const Rect& rect : rects) {
        view.Reveal(rect);
        EXPECT_FALSE(view.Reveal(rect)) << rect.left;
    }
    view.Reveal(rects[0]);
    const PixelRect shown = view.ToClient(rects[0]);
    EXPECT_TRUE(shown.left >= 0 && shown.top >= 0 && shown.right <= 400 && shown.bottom <= 400);
}

TEST(Viewport, PositionsGoThereAndBack) {
    for (const int32_t percent : {1, 20, 100, 6400}) {
        const Viewport view = Shown({2100, 2970}, 500, 500, ZoomMode::Percent, percent);
        const double slack = view.UnitsPerPixel() + 1;
        for (const int32_t place : {0, 1, 777, 2100}) {
            const Point back = view.ToPage(view.ToClientX(place), view.ToClientY(place));
            EXPECT_NEAR(back.x, place, slack);
            EXPECT_NEAR(back.y, place, slack);
        }
    }
}

TEST(Viewport, ExtremesSaturate) {
    const Size pages[] = {{INT32_MAX, INT32_MAX}, {INT32_MAX, 1}, {1, 1}, {0, 0}, {-5, 10}};
    for (const Size& page : pages) {
        for (const int32_t percent : {1, 6400}) {
            Viewport view = Shown(page, 1, 30000, ZoomMode::Percent, percent);
            view.ScrollTo(INT64_MAX / 4, INT64_MIN / 4);
            view.ZoomAround(1e9, INT32_MAX, INT32_MIN);
            const PixelRect all = view.ToClient(Rect{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX});
            EXPECT_LE(all.left, all.right);
            EXPECT_LE(all.right, 1 << 28);
            view.ToPage(INT32_MAX, INT32_MIN);
            view.Reveal({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX});
            view.SeenPart();
        }
    }
}

}  // namespace
}  // namespace folium
