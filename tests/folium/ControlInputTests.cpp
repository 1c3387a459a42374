// The control under real mouse and keys. What rectangles become of them is tested without a window: here it is what
// reaches the editor, and what only a window does.
#include "folium/ControlHarness.h"

namespace test {
namespace {

// At 100 % a pixel is 2.6 units.
constexpr int kSlack = 3;

void ExpectNear(const FoliumRect& rect, const FoliumRect& expected) {
    EXPECT_NEAR(rect.left, expected.left, kSlack) << rect;
    EXPECT_NEAR(rect.top, expected.top, kSlack) << rect;
    EXPECT_NEAR(rect.right, expected.right, kSlack) << rect;
    EXPECT_NEAR(rect.bottom, expected.bottom, kSlack) << rect;
}

// What the display server tells late of the pointer's last move would let go of the key.
void Hold(WORD key) {
    for (int i = 0; i < 3; ++i) {
        Sleep(10);
        Wait();
    }
    KeyDown(key);
}

class ControlInput : public testing::Test {
protected:
    ControlInput() { control.SetUp(); }
    bool Sees(LONG child) const {
        RECT client = {};
        GetClientRect(control.Window(), &client);
        MapWindowPoints(control.Window(), nullptr, reinterpret_cast<POINT*>(&client), 2);
        const RECT place = control.Location(child);
        return place.left >= client.left && place.top >= client.top && place.right <= client.right &&
               place.bottom <= client.bottom;
    }
    FoliumLibrary library;
    ControlHarness control;
};

TEST_F(ControlInput, DrawsMovesAndSizes) {
    control.Drag({300, 200}, {800, 600});
    ExpectNear(control.At(1), MakeRect(300, 200, 800, 600));
    control.Click({1000, 1000});
    control.Drag({550, 400}, {750, 700});
    ExpectNear(control.At(1), MakeRect(500, 500, 1000, 900));
    EXPECT_EQ(control.Told(), "added1 selected1 selected1 changed1") << "a click draws nothing";
    // Handles have one size at any zoom; their outer pixels, 3 from the middle, belong to them as well.
    const FoliumRect original = MakeRect(300, 300, 800, 800);
    for (const int percent : {50, 100, 130}) {
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
}

TEST_F(ControlInput, ADragIsTakenBackAndTellsItsSizeMeanwhile) {
    const LONG id = control.Insert(MakeRect(300, 300, 600, 500));
    const COLORREF label = GetSysColor(COLOR_INFOBK);
    const std::function<void()> ends[] = {[] { Key(VK_ESCAPE); }, [] { ReleaseCapture(); }};
    control.Click({450, 400});
    control.Told();
    for (const auto& end : ends) {
        MoveTo(control.OnScreen({450, 400}));
        ButtonDown();
        EXPECT_EQ(control.PixelsOf(label), 0);
        MoveTo(control.OnScreen({650, 600}));
        EXPECT_GT(control.PixelsOf(label), 300);
        end();
        EXPECT_EQ(control.PixelsOf(label), 0);
        MoveTo(control.OnScreen({750, 500}));
        ButtonUp();
        EXPECT_EQ(control.At(id), MakeRect(300, 300, 600, 500));
        EXPECT_EQ(control.Told(), "");
    }
    EXPECT_TRUE(control.Commands().empty());
    Key(VK_ESCAPE);
    EXPECT_EQ(control.Commands(), std::vector<int>{IDCANCEL}) << "without a drag it is the dialog's";
}

TEST_F(ControlInput, KeysMoveAndSize) {
    const LONG id = control.Insert(MakeRect(300, 300, 600, 500));
    Key(VK_RIGHT, 0, 3);
    Key(VK_UP);
    EXPECT_EQ(control.At(id), MakeRect(303, 299, 603, 499));
    Key(VK_DOWN, VK_SHIFT);
    Key(VK_LEFT, VK_SHIFT);
    EXPECT_EQ(control.At(id), MakeRect(293, 309, 593, 509));
    Key(VK_RIGHT, VK_CONTROL);
    Hold(VK_SHIFT);
    Key(VK_UP, VK_CONTROL);
    KeyUp(VK_SHIFT);
    EXPECT_EQ(control.At(id), MakeRect(293, 309, 594, 499));
    EXPECT_EQ(control.Told(), "changed1 changed1 changed1 changed1 changed1 changed1 changed1 changed1");
    // A held key is one step of undo.
    for (int i = 0; i < 5; ++i) KeyDown(VK_RIGHT);
    KeyUp(VK_RIGHT);
    EXPECT_EQ(control.At(id).left, 298);
    Key('Z', VK_CONTROL);
    EXPECT_EQ(control.At(id).left, 293);
}

TEST_F(ControlInput, TabWalksAndLeadsOut) {
    for (int i = 0; i < 3; ++i) control.Insert(MakeRect(100 + i * 200, 100, 200 + i * 200, 200));
    control.Click({1000, 1000});
    Key(VK_TAB, 0, 3);
    EXPECT_EQ(control.Told(), "selected1 selected2 selected3");
    EXPECT_EQ(GetFocus(), control.Window());
    Key(VK_TAB);
    EXPECT_EQ(GetFocus(), control.Button());
    Key(VK_TAB, VK_SHIFT, 3);
    EXPECT_EQ(control.Told(), "selected2 selected1");
    EXPECT_EQ(GetFocus(), control.Window());
    Key(VK_TAB, VK_SHIFT);
    EXPECT_EQ(GetFocus(), control.Button()) << "before the first one as well";
}

TEST_F(ControlInput, EnterStartsAndEndsARectangle) {
    Key(VK_RETURN);
    EXPECT_EQ(control.Told(), "");
    Key(VK_RIGHT, VK_SHIFT);
    Key(VK_DOWN, VK_CONTROL);
    Key(VK_RETURN);
    EXPECT_EQ(control.Told(), "added1 selected1");
    EXPECT_GE(control.At(1).right - control.At(1).left, 10);
    Key(VK_RETURN);
    Key(VK_ESCAPE);
    EXPECT_EQ(control.Told(), "");
    EXPECT_TRUE(control.Commands().empty());
    control.folium->SetMode(0);
    Key(VK_RETURN);
    EXPECT_EQ(control.Commands(), std::vector<int>{IDOK}) << "where nothing can be drawn it is the dialog's";
}

TEST_F(ControlInput, UndoCoversAllPagesAndTheProgramsChangesButNotLoading) {
    const LONG id = control.Insert(MakeRect(300, 300, 600, 500));
    control.folium->UpdateView();
    const FoliumRect typed = MakeRect(310, 300, 600, 500);
    control.folium->UpdateRect(id, &typed);
    control.folium->ShowPage(MakePage({2100, 2970}, 100, 140), nullptr);
    Key(VK_DELETE);
    EXPECT_EQ(control.Told(), "changed1 deleted1");
    Key('Z', VK_CONTROL, 3);
    EXPECT_EQ(control.Told(), "added1 selected1 changed1");
    EXPECT_EQ(control.At(id), MakeRect(300, 300, 600, 500));
    Key('Y', VK_CONTROL, 3);
    EXPECT_EQ(control.Told(), "changed1 deleted1");
}

TEST_F(ControlInput, SeveralWhereTheModeAllows) {
    for (int i = 0; i < 3; ++i) control.Insert(MakeRect(100 + i * 300, 100, 300 + i * 300, 300));
    Key('A', VK_CONTROL);
    Key(VK_DELETE);
    EXPECT_EQ(control.Told(), "deleted3") << "one at a time in this mode";
    control.folium->SetMode(3);
    control.Click({200, 200});
    MoveTo(control.OnScreen({500, 200}));
    Hold(VK_SHIFT);
    ButtonDown();
    ButtonUp();
    KeyUp(VK_SHIFT);
    control.Drag({200, 200}, {300, 400});
    EXPECT_EQ(control.Told(), "selected1 selected2 changed1 changed2");
    Key('A', VK_CONTROL);
    Key(VK_DELETE);
    EXPECT_EQ(control.Told(), "deleted1 deleted2");
}

TEST_F(ControlInput, AltSuspendsSnappingAndOpensNoMenu) {
    control.Insert(MakeRect(700, 100, 900, 300));
    for (const bool alt : {false, true}) {
        MoveTo(control.OnScreen({8, 400}));
        ButtonDown();
        MoveTo(control.OnScreen({650, 700}));
        if (alt) Hold(VK_MENU);
        MoveTo(control.OnScreen({692, 800}));
        ButtonUp();
        if (alt) KeyUp(VK_MENU);
        const LONG id = alt ? 3 : 2;
        ExpectNear(control.At(id), alt ? MakeRect(8, 400, 692, 800) : MakeRect(0, 400, 700, 800));
        EXPECT_EQ(control.At(id).right == 700, !alt);
        control.folium->DeleteRect(id);
    }
    ButtonDown();
    Hold(VK_MENU);
    KeyUp(VK_MENU);
    ButtonUp();
    EXPECT_TRUE(control.Commands().empty());
    Key(VK_MENU);
    EXPECT_EQ(control.Commands(), std::vector<int>{SC_KEYMENU}) << "alone it is the window's";
}

TEST_F(ControlInput, MenuIsAskedForByPointerAndKeys) {
    control.Insert(MakeRect(300, 300, 600, 500));
    control.RightClick({450, 400});
    POINT place = control.MenuPlace();
    ClientToScreen(control.Window(), &place);
    EXPECT_EQ(place.x, control.OnScreen({450, 400}).x);
    control.RightClick({900, 900});
    EXPECT_EQ(control.Told(), "menu1 menu0");
    Key(VK_F10, VK_SHIFT);
    place = control.MenuPlace();
    ClientToScreen(control.Window(), &place);
    const RECT box = control.Location(1);
    EXPECT_TRUE(PtInRect(&box, place)) << "at the selected rectangle";
    Key(VK_APPS);
    EXPECT_EQ(control.Told(), "menu1 menu1") << "once each";
}

TEST_F(ControlInput, WheelAndMiddleButtonMoveThePage) {
    control.Insert(MakeRect(600, 600, 900, 900));
    const RECT start = control.Location(1);
    MoveTo(control.OnScreen({600, 600}));
    Wheel(-1);
    const RECT down = control.Location(1);
    EXPECT_LT(down.top, start.top);
    EXPECT_EQ(down.left, start.left);
    Hold(VK_SHIFT);
    Wheel(-1);
    KeyUp(VK_SHIFT);
    const RECT right = control.Location(1);
    EXPECT_LT(right.left, down.left);
    EXPECT_EQ(right.top, down.top);
    MoveTo({right.left, right.top});
    Hold(VK_CONTROL);
    Wheel(2);
    KeyUp(VK_CONTROL);
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
    EXPECT_EQ(control.Told(), "");
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
    control.Insert(MakeRect(100, 100, 300, 300));
    control.Insert(MakeRect(1500, 2500, 1700, 2700));
    Key(VK_TAB, VK_SHIFT);
    EXPECT_TRUE(Sees(1));
    Key(VK_TAB);
    EXPECT_TRUE(Sees(2));
    const int before = control.Scrolled();
    Key(VK_DOWN, VK_SHIFT, 5);
    EXPECT_TRUE(Sees(2));
    EXPECT_GT(control.Scrolled(), before);
    Key(VK_HOME);
    Key('Z', VK_CONTROL);
    EXPECT_TRUE(Sees(2)) << "undone as well";
    control.SetZoom(kFoliumZoomPercent, 1600);
    Key(VK_HOME);
    Key(VK_RETURN);
    Key(VK_DOWN, VK_SHIFT, 10);
    EXPECT_GT(control.Scrolled(), 0) << "one that is not there yet";
}

TEST_F(ControlInput, PointerIsToldInPageUnits) {
    POINT offset = {7, 7};
    EXPECT_EQ(control.folium->GetPositionOffset(&offset), S_OK);
    MoveTo(control.OnScreen({500, 700}));
    EXPECT_NEAR(control.Pointer().x + offset.x, 500, kSlack);
    EXPECT_NEAR(control.Pointer().y + offset.y, 700, kSlack);
    const POINT last = control.Pointer();
    MoveTo({control.OnScreen({0, 0}).x - 5, control.OnScreen({0, 0}).y - 5});
    EXPECT_EQ(control.Pointer().x, last.x) << "beside the page there is no position";
}

TEST_F(ControlInput, DragScrollsAtTheWindowsEdge) {
    const LONG id = control.Insert(MakeRect(300, 300, 600, 500));
    const auto scrollBeyond = [&](int position) {
        for (int i = 0; i < 500 && control.Scrolled() <= position; ++i) {
            Sleep(10);
            Wait();
        }
    };
    for (const POINT from : {POINT{700, 300}, POINT{450, 400}}) {
        MoveTo(control.OnScreen(from));
        ButtonDown();
        MoveTo(control.OnScreen({600, 600}));
        MoveTo(control.OnScreen({600, 1650}));
        scrollBeyond(100);
        if (from.x == 700) {
            ButtonUp();
            EXPECT_EQ(control.Told(), "added2 selected2");
            EXPECT_GT(control.At(2).bottom, 1700) << "further than the window showed";
            control.folium->DeleteRect(2);
            Key(VK_HOME);
        }
    }
    control.folium->DeleteRect(id);
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
