// The control under real mouse and keys. What rectangles become of them is tested without a window: here it is what
// reaches the editor, and what only a window does.
#include "folium/ControlHarness.h"

namespace test {
namespace {

constexpr int kSlack = 3;

// Whether bounds are these, but for the rounding of a pixel: at 100 % one is 2.6 units.
void ExpectNear(const FoliumRect& rect, const FoliumRect& expected) {
    EXPECT_NEAR(rect.left, expected.left, kSlack) << rect;
    EXPECT_NEAR(rect.top, expected.top, kSlack) << rect;
    EXPECT_NEAR(rect.right, expected.right, kSlack) << rect;
    EXPECT_NEAR(rect.bottom, expected.bottom, kSlack) << rect;
}

class ControlInput : public testing::Test {
protected:
    ControlInput() { control.SetUp(); }
    bool Sees(LONG child) const {
        RECT client = {}, seen = {};
        GetClientRect(control.Window(), &client);
        MapWindowPoints(control.Window(), nullptr, reinterpret_cast<POINT*>(&client), 2);
        const RECT place = control.Location(child);
        return IntersectRect(&seen, &place, &client) && EqualRect(&seen, &place);
    }
    FoliumLibrary library;
    ControlHarness control;
};

TEST(ControlSteps, KeysAndPointerReachTheEditor) {
    const FoliumLibrary library;
    const StepCase rows[] = {
        {"drag 300,200 800,600; click 1000,1000; click 550,400; drag 550,400 750,700",
         "added1 selected1 selected1 changed1"},
        // A drag is taken back and tells its size meanwhile; without one Escape is the dialog's.
        {"with 300,300,600,500; move 450,400; press; label; move 650,600; label; key Escape; label; move 750,500; "
         "release; at 1; key Escape",
         "none label none [300,300,600,500] Cancel"},
        {"with 300,300,600,500; move 450,400; press; move 650,600; loseCapture; move 750,500; release; at 1",
         "[300,300,600,500]"},
        {"with 300,300,600,500; key Right 3; key Up; key shift Down; key shift Left; key control Right; hold shift; "
         "key control Up; let shift; at 1",
         "changed1 changed1 changed1 changed1 changed1 changed1 changed1 changed1 [293,309,594,499]"},
        {"with 100,100,200,200; with 300,100,400,200; with 500,100,600,200; click 1000,1000; key Tab 3; who; key Tab; "
         "who",
         "selected1 selected2 selected3 control button"},
        {"with 100,100,200,200; with 300,100,400,200; key shift Tab; who; key shift Tab; who",
         "selected1 control button"},
        // Enter starts and ends a rectangle; where nothing can be drawn it is the dialog's.
        {"key Enter; key shift Right; key control Down; key Enter; key Enter; key Escape; mode 0; key Enter",
         "added1 selected1 OK"},
        // Undo covers all pages and the program's changes, but not what was loaded.
        {"with 300,300,600,500; loaded; update 1 310,300,600,500; page; key Delete; key control Z 3; at 1; key control "
         "Y 3",
         "changed1 deleted1 added1 selected1 changed1 [300,300,600,500] changed1 deleted1"},
        // Several where the mode allows.
        {"with 100,100,300,300; with 400,100,600,300; with 700,100,900,300; key control A; key Delete; mode 3; "
         "click 200,200; move 500,200; hold shift; press; release; let shift; drag 200,200 300,400; key control A; "
         "key Delete",
         "deleted3 selected1 selected2 changed1 changed2 deleted1 deleted2"},
        // Alt with the pointer opens no menu; alone it is the window's.
        {"press; hold alt; let alt; release; key Alt", "alt"},
    };
    for (const StepCase& row : rows) {
        ControlHarness control;
        control.SetUp();
        EXPECT_EQ(control.Play(row.steps), row.told) << row.steps;
    }
}

TEST_F(ControlInput, PlacesAreThoseOfThePage) {
    control.Play("drag 300,200 800,600");
    ExpectNear(control.At(1), MakeRect(300, 200, 800, 600));
    // Handles have one size at any zoom; their outer pixels, 3 from the middle, belong to them as well.
    const FoliumRect original = MakeRect(300, 300, 800, 800);
    for (const int percent : {50, 130}) {
        control.SetZoom(kFoliumZoomPercent, percent);
        for (const POINT side : {POINT{-1, -1}, POINT{1, 0}, POINT{0, 1}}) {
            control.folium->UpdateRect(1, &original);
            control.folium->SelectRect(1);
            const RECT place = control.Location(1);
            const int out = ControlHarness::Scaled(3);
            const POINT handle = {(place.left + place.right + side.x * (place.right - place.left)) / 2 + side.x * out,
                                  (place.top + place.bottom + side.y * (place.bottom - place.top)) / 2 + side.y * out};
            Drag(handle, {handle.x + ControlHarness::Scaled(20), handle.y + ControlHarness::Scaled(30)});
            const double unit = 254.0 / 96 * 100 / percent;
            FoliumRect expected = original;
            (side.x < 0 ? expected.left : expected.right) += side.x == 0 ? 0 : static_cast<int>(20 * unit);
            (side.y < 0 ? expected.top : expected.bottom) += side.y == 0 ? 0 : static_cast<int>(30 * unit);
            ExpectNear(control.At(1), expected);
        }
    }
    POINT offset = {7, 7};
    control.SetZoom(kFoliumZoomPercent, 100);
    control.Play("key Home; move 500,700");
    EXPECT_EQ(control.folium->GetPositionOffset(&offset), S_OK);
    EXPECT_NEAR(control.Pointer().x + offset.x, 500, kSlack);
    EXPECT_NEAR(control.Pointer().y + offset.y, 700, kSlack);
    const POINT last = control.Pointer();
    control.Play("move -20,-20");
    EXPECT_EQ(control.Pointer().x, last.x) << "beside the page there is no position";
}

TEST_F(ControlInput, AHeldKeyIsOneStepAndAltSuspendsSnapping) {
    control.Play("with 300,300,600,500");
    for (int i = 0; i < 5; ++i) KeyDown(VK_RIGHT);
    KeyUp(VK_RIGHT);
    EXPECT_EQ(control.At(1).left, 305);
    control.Play("key control Z; update 1 700,100,900,300");
    EXPECT_EQ(control.At(1).left, 700);
    control.Play("move 8,400; press; move 650,700; move 692,800; release");
    ExpectNear(control.At(2), MakeRect(0, 400, 700, 800));
    EXPECT_EQ(control.At(2).right, 700);
    control.Play("remove 2; move 8,400; press; move 650,700; hold alt; move 692,800; release; let alt");
    ExpectNear(control.At(3), MakeRect(8, 400, 692, 800));
    EXPECT_NE(control.At(3).right, 700);
}

TEST_F(ControlInput, MenuIsAskedForByPointerAndKeys) {
    EXPECT_EQ(control.Play("with 300,300,600,500; rightclick 900,900; rightclick 450,400"), "menu0 menu1");
    EXPECT_EQ(control.MenuPlace().x, control.OnScreen({450, 400}).x);
    EXPECT_EQ(control.Play("key Menu"), "menu1") << "once";
    EXPECT_TRUE(control.Play("key shift F10").starts_with("menu1"));
    const RECT box = control.Location(1);
    EXPECT_TRUE(PtInRect(&box, control.MenuPlace())) << "at the selected rectangle";
}

TEST_F(ControlInput, WheelAndMiddleButtonMoveThePage) {
    control.Play("with 600,600,900,900; move 600,600");
    const RECT start = control.Location(1);
    Wheel(-1);
    const RECT down = control.Location(1);
    EXPECT_LT(down.top, start.top);
    EXPECT_EQ(down.left, start.left);
    control.Play("hold shift");
    Wheel(-1);
    control.Play("let shift");
    const RECT right = control.Location(1);
    EXPECT_LT(right.left, down.left);
    EXPECT_EQ(right.top, down.top);
    MoveTo({right.left, right.top});
    control.Play("hold control");
    Wheel(2);
    control.Play("let control");
    const RECT zoomed = control.Location(1);
    EXPECT_NEAR(zoomed.left, right.left, 1) << "around the pointer";
    EXPECT_NEAR(zoomed.top, right.top, 1);
    EXPECT_NEAR(zoomed.right - zoomed.left, (right.right - right.left) * 1.5625, 2);

    ButtonDown(MOUSEEVENTF_MIDDLEDOWN);
    MoveTo({right.left - 60, right.top - 90});
    ButtonUp(MOUSEEVENTF_MIDDLEUP);
    const RECT dragged = control.Location(1);
    EXPECT_EQ(dragged.left, zoomed.left - 60);
    EXPECT_EQ(dragged.top, zoomed.top - 90);
    MoveTo({dragged.left, dragged.top});
    EXPECT_EQ(control.Location(1).left, dragged.left) << "until it is let go";
    EXPECT_EQ(control.Play(""), "");
}

TEST_F(ControlInput, KeysMoveThePage) {
    RECT client = {};
    GetClientRect(control.Window(), &client);
    const int page = client.bottom * 9 / 10, line = ControlHarness::Scaled(24);
    int minimum = 0, maximum = 0;
    GetScrollRange(control.Window(), SB_VERT, &minimum, &maximum);
    const int end = maximum + 1 - client.bottom;
    const std::pair<WORD, int> keys[] = {{VK_DOWN, line}, {VK_NEXT, line + page}, {VK_UP, page}, {VK_PRIOR, 0},
                                         {VK_END, end},   {VK_PRIOR, end - page}, {VK_HOME, 0}};
    for (const auto& [key, position] : keys) {
        Key(key);
        EXPECT_EQ(control.Scrolled(), position) << key;
    }
    Key(VK_RIGHT);
    EXPECT_EQ(GetScrollPos(control.Window(), SB_HORZ), line);
    // What keys work on comes into sight.
    control.Play("with 100,100,300,300; with 1500,2500,1700,2700; key shift Tab");
    EXPECT_TRUE(Sees(1));
    control.Play("key Tab");
    EXPECT_TRUE(Sees(2));
    const int before = control.Scrolled();
    control.Play("key shift Down 5");
    EXPECT_TRUE(Sees(2));
    EXPECT_GT(control.Scrolled(), before);
    control.Play("key Home; key control Z");
    EXPECT_TRUE(Sees(2)) << "undone as well";
    control.Play("zoom 1600; key Home; key Enter; key shift Down 10");
    EXPECT_GT(control.Scrolled(), 0) << "one that is not there yet";
}

TEST_F(ControlInput, DragScrollsAtTheWindowsEdge) {
    const auto waitUntil = [&](int position) {
        for (int i = 0; i < 500 && control.Scrolled() <= position; ++i) {
            Sleep(10);
            Wait();
        }
    };
    control.Play("with 300,300,600,500; move 700,300; press; move 600,600; move 600,1650");
    waitUntil(100);
    EXPECT_EQ(control.Play("release"), "added2 selected2");
    EXPECT_GT(control.At(2).bottom, 1700) << "further than the window showed";
    control.Play("remove 2; key Home; move 450,400; press; move 600,600; move 600,1650");
    waitUntil(100);
    control.folium->DeleteRect(1);
    const int end = control.Scrolled();
    for (int i = 0; i < 10; ++i) {
        Sleep(10);
        Wait();
    }
    ButtonUp();
    EXPECT_EQ(control.Scrolled(), end) << "there is nothing to drag any more";
}

}  // namespace
}  // namespace test
