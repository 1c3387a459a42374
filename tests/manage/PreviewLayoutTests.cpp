#include "manage/PreviewLayout.h"

#include <gtest/gtest.h>

#include <limits>

void PrintTo(const PreviewShape& shape, std::ostream* out) {
    *out << "(" << shape.rect.left << ", " << shape.rect.top << ", " << shape.rect.right << ", " << shape.rect.bottom
         << ") " << static_cast<int>(shape.color);
}

namespace {

constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr PageRect kClient = {0, 0, 200, 240};

TEST(PreviewLayout, PageAndAreas) {
    const struct {
        int32_t width, height;
        PageRect page;
        PageRect area, drawn;  // an empty one is not drawn
    } cases[] = {
        {2100, 2970, {16, 0, 185, 240}, {210, 297, 1050, 1485}, {32, 24, 100, 120}},
        {2970, 2100, {0, 50, 200, 191}, {210, 297, 1050, 1485}, {14, 70, 70, 150}},
        {2100, 2970, {16, 0, 185, 240}, {1050, 1485, 210, 297}, {32, 24, 100, 120}},
        {2100, 2970, {16, 0, 185, 240}, {-100, -100, 9999, 9999}, {16, 0, 185, 240}},
        {2100, 2970, {16, 0, 185, 240}, {2200, 0, 2300, 100}, {}},
        {2100, 2970, {16, 0, 185, 240}, {kMin, kMin, kMax, kMax}, {16, 0, 185, 240}},
        {1, 1, {0, 20, 200, 220}, {kMin, kMin, kMax, kMax}, {0, 20, 200, 220}},
        {0, 0, {100, 0, 100, 240}, {0, 0, 50, 50}, {}},
        {100, 0, {0, 120, 200, 120}, {0, 0, 50, 50}, {}},
        {0, 100, {100, 0, 100, 240}, {0, 0, 50, 50}, {}},
        {1, kMax, {100, 0, 100, 240}, {0, 0, 50, 50}, {}},
        {kMax, kMax, {0, 20, 200, 220}, {0, 0, kMax, kMax}, {0, 20, 200, 220}},
    };
    for (const auto& one : cases) {
        for (const bool ignored : {false, true}) {
            PreviewLayout layout;
            layout.SetClient(kClient);
            layout.SetAreasIgnored(ignored);
            layout.SetPageSize(one.width, one.height);
            EXPECT_EQ(layout.AddRect(one.area), 0);
            const auto page = ignored ? PreviewColor::kHighlight : PreviewColor::kWindow;
            const auto areas = ignored ? PreviewColor::kWindow : PreviewColor::kHighlight;
            std::vector<PreviewShape> expected = {{kClient, PreviewColor::kFace}, {one.page, page}};
            if (one.drawn != PageRect()) expected.push_back({one.drawn, areas});
            EXPECT_EQ(layout.GetShapes(), expected) << one.width << " x " << one.height;
        }
    }
}

// Sizes that no page has must neither trap nor leave the client area's neighbourhood undefined.
TEST(PreviewLayout, AnySizeIsSafe) {
    const int32_t values[] = {kMin, -1, 0, 1, 2100, kMax};
    for (const PageRect& client : {kClient, PageRect{}, PageRect{0, 0, 0, 10}, PageRect{0, 0, 10, 0}}) {
        for (const int32_t width : values) {
            for (const int32_t height : values) {
                PreviewLayout layout;
                layout.SetClient(client);
                layout.SetPageSize(width, height);
                for (const int32_t left : values) {
                    for (const int32_t right : values) layout.AddRect({left, right, right, left});
                }
                EXPECT_GE(layout.GetShapes().size(), 2U);
            }
        }
    }
}

TEST(PreviewLayout, AnUnfedPreviewIsOnePage) {
    PreviewLayout layout;
    layout.SetClient(kClient);
    const std::vector<PreviewShape> expected = {{kClient, PreviewColor::kFace}, {kClient, PreviewColor::kWindow}};
    EXPECT_EQ(layout.GetShapes(), expected);
    layout.AddRect({0, 0, 1, 1});
    layout.RemoveAllRects();
    EXPECT_EQ(layout.GetShapes(), expected);
}

}  // namespace
