// The control under real mouse and keys: what an operator does, and the rectangles and events that come of it.
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

class ControlInput : public testing::Test {
protected:
    ControlInput() { control.SetUp(); }
    FoliumLibrary library;
    ControlHarness control;
};

TEST_F(ControlInput, DrawsByDragging) {
    control.DragFromTo({300, 200}, {800, 600});
    EXPECT_EQ(control.Told(), "added1 selected1");
    ExpectNear(control.At(1), MakeRect(300, 200, 800, 600));
    control.Click({1000, 1000});
    EXPECT_EQ(control.Told(), "") << "a click draws nothing";
    control.DragFromTo({900, 900}, {920, 1200});
    EXPECT_NEAR(control.At(2).right - control.At(2).left, 20, kSlack) << "as wide as drawn";
    control.DragFromTo({1000, 900}, {1001, 1200});
    EXPECT_EQ(control.At(3).right - control.At(3).left, 10) << "but at least a millimetre";
}

TEST_F(ControlInput, MovesByDraggingInside) {
    const LONG id = control.Insert(MakeRect(300, 300, 600, 500));
    control.DragFromTo({450, 400}, {650, 700});
    EXPECT_EQ(control.Told(), "changed1");
    ExpectNear(control.At(id), MakeRect(500, 600, 800, 800));
}

TEST_F(ControlInput, HandlesHaveOneSizeAtAnyZoom) {
    const LONG id = control.Insert(MakeRect(300, 300, 800, 800));
    for (const int percent : {50, 100, 130}) {
        const FoliumZoom zoom = {kFoliumZoomPercent, percent};
        control.folium->SetZoom(&zoom);
        control.folium->SelectRect(id);
        const FoliumRect original = MakeRect(300, 300, 800, 800);
        for (int x = -1; x <= 1; ++x) {
            for (int y = -1; y <= 1; ++y) {
                if (x == 0 && y == 0) continue;
                control.folium->UpdateRect(id, &original);
                const RECT place = control.Location(1);
                POINT handle = {(place.left + place.right) / 2 + x * (place.right - place.left) / 2,
                                (place.top + place.bottom) / 2 + y * (place.bottom - place.top) / 2};
                // Its outer pixels, 3 from the middle, belong to it as well.
                handle.x += x * ControlHarness::Scaled(3);
                handle.y += y * ControlHarness::Scaled(3);
                control.Told();
                control.DragPixels(handle, ControlHarness::Scaled(20), ControlHarness::Scaled(30));
                EXPECT_EQ(control.Told(), "changed1") << percent << ' ' << x << ' ' << y;
                const double unit = 254.0 / 96 * 100 / percent;
                FoliumRect expected = original;
                (x < 0 ? expected.left : expected.right) += x == 0 ? 0 : static_cast<int>(20 * unit);
                (y < 0 ? expected.top : expected.bottom) += y == 0 ? 0 : static_cast<int>(30 * unit);
                ExpectNear(control.At(id), expected);
            }
        }
    }
}

TEST_F(ControlInput, EscapeTakesADragBack) {
    const LONG id = control.Insert(MakeRect(300, 300, 600, 500));
    for (const POINT from : {POINT{450, 400}, POINT{600, 500}, POINT{800, 800}}) {
        control.folium->SelectRect(id);
        control.Told();
        control.MoveTo(control.OnScreen(from));
        control.MouseDown();
        control.MoveTo(control.OnScreen({from.x + 200, from.y + 200}));
        control.Key(VK_ESCAPE);
        control.MoveTo(control.OnScreen({from.x + 300, from.y + 100}));
        control.MouseUp();
        EXPECT_EQ(control.At(id), MakeRect(300, 300, 600, 500));
        EXPECT_EQ(control.Told(), "");
    }
    EXPECT_TRUE(control.Commands().empty());
    control.Key(VK_ESCAPE);
    EXPECT_EQ(control.Commands(), std::vector<int>{IDCANCEL}) << "without a drag it is the dialog's";
}

TEST_F(ControlInput, SizeIsReadWhileDragging) {
    const COLORREF label = GetSysColor(COLOR_INFOBK);
    control.MoveTo(control.OnScreen({300, 300}));
    control.MouseDown();
    EXPECT_EQ(control.PixelsOf(label), 0);
    control.MoveTo(control.OnScreen({700, 600}));
    EXPECT_GT(control.PixelsOf(label), 300);
    control.MouseUp();
    EXPECT_EQ(control.PixelsOf(label), 0);
}

TEST_F(ControlInput, KeysMoveAndSize) {
    const LONG id = control.Insert(MakeRect(300, 300, 600, 500));
    control.Key(VK_RIGHT, 3);
    control.Key(VK_UP);
    EXPECT_EQ(control.At(id), MakeRect(303, 299, 603, 499));
    control.KeyWith(VK_SHIFT, VK_DOWN);
    control.KeyWith(VK_SHIFT, VK_LEFT);
    EXPECT_EQ(control.At(id), MakeRect(293, 309, 593, 509));
    control.KeyWith(VK_CONTROL, VK_RIGHT);
    control.Hold(VK_SHIFT);
    control.KeyWith(VK_CONTROL, VK_UP);
    control.LetGo(VK_SHIFT);
    EXPECT_EQ(control.At(id), MakeRect(293, 309, 594, 499));
    EXPECT_EQ(control.Told(), "changed1 changed1 changed1 changed1 changed1 changed1 changed1 changed1");
}

TEST_F(ControlInput, TabWalksAndLeadsOut) {
    for (int i = 0; i < 3; ++i) control.Insert(MakeRect(100 + i * 200, 100, 200 + i * 200, 200));
    control.Click({1000, 1000});
    control.Key(VK_TAB, 3);
    EXPECT_EQ(control.Told(), "selected1 selected2 selected3");
    EXPECT_EQ(GetFocus(), control.Window());
    control.Key(VK_TAB);
    EXPECT_EQ(GetFocus(), control.Button());
    control.KeyWith(VK_SHIFT, VK_TAB);
    EXPECT_EQ(GetFocus(), control.Window());
    control.Hold(VK_SHIFT);
    control.Key(VK_TAB, 2);
    EXPECT_EQ(control.Told(), "selected2 selected1");
    control.Key(VK_TAB);
    control.LetGo(VK_SHIFT);
    EXPECT_EQ(GetFocus(), control.Button()) << "before the first one as well";
}

TEST_F(ControlInput, EnterStartsAndEndsARectangle) {
    control.Key(VK_RETURN);
    EXPECT_EQ(control.Told(), "");
    control.KeyWith(VK_SHIFT, VK_RIGHT);
    control.KeyWith(VK_CONTROL, VK_DOWN);
    control.Key(VK_RETURN);
    EXPECT_EQ(control.Told(), "added1 selected1");
    const FoliumRect first = control.At(1);
    EXPECT_GE(first.right - first.left, 10);
    control.Key(VK_RETURN);
    control.Key(VK_ESCAPE);
    EXPECT_EQ(control.Told(), "");
    EXPECT_TRUE(control.Commands().empty());
    control.folium->SetMode(0);
    control.Key(VK_RETURN);
    EXPECT_EQ(control.Commands(), std::vector<int>{IDOK}) << "where nothing can be drawn it is the dialog's";
}

TEST_F(ControlInput, DeleteUndoRedoOverAllPages) {
    control.DragFromTo({300, 300}, {600, 500});
    control.DragFromTo({450, 400}, {750, 700});
    const FoliumRect moved = control.At(1);
    control.folium->ShowPage(MakePage({2100, 2970}, 100, 140), nullptr);
    control.Key(VK_DELETE);
    EXPECT_EQ(control.Told(), "added1 selected1 changed1 deleted1");
    control.KeyWith(VK_CONTROL, 'Z');
    EXPECT_EQ(control.Told(), "added1 selected1");
    EXPECT_EQ(control.At(1), moved) << "with its identifier and place";
    control.KeyWith(VK_CONTROL, 'Z');
    ExpectNear(control.At(1), MakeRect(300, 300, 600, 500));
    control.KeyWith(VK_CONTROL, 'Z');
    control.KeyWith(VK_CONTROL, 'Z');
    EXPECT_EQ(control.Told(), "changed1 deleted1");
    for (int i = 0; i < 4; ++i) control.KeyWith(VK_CONTROL, 'Y');
    EXPECT_EQ(control.Told(), "added1 selected1 changed1 deleted1");
}

TEST_F(ControlInput, UndoCoversTheProgramsChangesButNotLoading) {
    const LONG id = control.Insert(MakeRect(300, 300, 600, 500));
    control.folium->UpdateView();
    control.KeyWith(VK_CONTROL, 'Z');
    EXPECT_EQ(control.Told(), "") << "what was loaded stays";
    const FoliumRect typed = MakeRect(310, 300, 600, 500);
    control.folium->UpdateRect(id, &typed);
    control.folium->DeleteRect(id);
    control.KeyWith(VK_CONTROL, 'Z');
    control.KeyWith(VK_CONTROL, 'Z');
    EXPECT_EQ(control.Told(), "changed1 deleted1 added1 selected1 changed1");
    EXPECT_EQ(control.At(id), MakeRect(300, 300, 600, 500));
}

TEST_F(ControlInput, HeldKeyIsOneStepOfUndo) {
    const LONG id = control.Insert(MakeRect(300, 300, 600, 500));
    for (int i = 0; i < 5; ++i) control.Press(VK_RIGHT);
    control.LetGo(VK_RIGHT);
    EXPECT_EQ(control.At(id).left, 305);
    control.KeyWith(VK_CONTROL, 'Z');
    EXPECT_EQ(control.At(id).left, 300);
}

TEST_F(ControlInput, SeveralWhereTheModeAllows) {
    for (int i = 0; i < 3; ++i) control.Insert(MakeRect(100 + i * 300, 100, 300 + i * 300, 300));
    control.KeyWith(VK_CONTROL, 'A');
    control.Key(VK_DELETE);
    EXPECT_EQ(control.Told(), "deleted3") << "one at a time in this mode";
    control.folium->SetMode(3);
    control.Click({200, 200});
    control.MoveTo(control.OnScreen({500, 200}));
    control.Hold(VK_SHIFT);
    control.MouseDown();
    control.MouseUp();
    control.LetGo(VK_SHIFT);
    control.DragFromTo({200, 200}, {300, 400});
    EXPECT_EQ(control.Told(), "selected1 selected2 changed1 changed2");
    control.KeyWith(VK_CONTROL, 'A');
    control.Key(VK_DELETE);
    EXPECT_EQ(control.Told(), "deleted1 deleted2");
    control.KeyWith(VK_CONTROL, 'Z');
    EXPECT_EQ(control.Told(), "added2 added1 selected2");
}

TEST_F(ControlInput, ClickPicksTheSmallest) {
    control.Insert(MakeRect(300, 300, 400, 400));
    control.Insert(MakeRect(100, 100, 1000, 1000));
    control.Insert(MakeRect(200, 200, 700, 700));
    control.Click({350, 350});
    control.Click({600, 600});
    control.Click({900, 900});
    EXPECT_EQ(control.Told(), "selected1 selected3 selected2");
}

TEST_F(ControlInput, SnapsToEdgesUnlessAlt) {
    control.Insert(MakeRect(700, 100, 900, 300));
    control.DragFromTo({8, 400}, {692, 800});
    const FoliumRect snapped = control.At(2);
    EXPECT_EQ(snapped.left, 0) << "to the page";
    EXPECT_EQ(snapped.right, 700) << "to another rectangle";
    control.folium->DeleteRect(2);
    control.MoveTo(control.OnScreen({8, 400}));
    control.MouseDown();
    control.MoveTo(control.OnScreen({650, 700}));
    control.Hold(VK_MENU);
    control.MoveTo(control.OnScreen({692, 800}));
    control.MouseUp();
    control.LetGo(VK_MENU);
    ExpectNear(control.At(3), MakeRect(8, 400, 692, 800));
    EXPECT_NE(control.At(3).right, 700);
}

TEST_F(ControlInput, AltWithThePointerOpensNoMenu) {
    control.MoveTo(control.OnScreen({400, 400}));
    control.Hold(VK_MENU);
    control.MouseDown();
    control.MouseUp();
    control.LetGo(VK_MENU);
    control.MouseDown();
    control.Hold(VK_MENU);
    control.LetGo(VK_MENU);
    control.MouseUp();
    EXPECT_TRUE(control.Commands().empty());
    control.Key(VK_MENU);
    EXPECT_EQ(control.Commands(), std::vector<int>{SC_KEYMENU}) << "alone it is the window's";
}

TEST_F(ControlInput, MenuIsAskedForByPointerAndKeys) {
    control.Insert(MakeRect(300, 300, 600, 500));
    control.Click({450, 400}, MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
    EXPECT_EQ(control.Told(), "menu1");
    POINT place = control.MenuPlace();
    ClientToScreen(control.Window(), &place);
    EXPECT_EQ(place.x, control.OnScreen({450, 400}).x);
    control.Click({900, 900}, MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
    EXPECT_EQ(control.Told(), "menu0");

    const RECT box = control.Location(1);
    control.KeyWith(VK_SHIFT, VK_F10);
    EXPECT_EQ(control.Told(), "menu1");
    place = control.MenuPlace();
    ClientToScreen(control.Window(), &place);
    EXPECT_TRUE(PtInRect(&box, place)) << "at the selected rectangle";
    control.Key(VK_APPS);
    EXPECT_EQ(control.Told(), "menu1") << "once";
}

TEST_F(ControlInput, WheelScrollsAndZoomsAroundThePointer) {
    control.Insert(MakeRect(600, 600, 900, 900));
    const RECT start = control.Location(1);
    control.MoveTo(control.OnScreen({600, 600}));
    control.Wheel(-1);
    const RECT down = control.Location(1);
    EXPECT_LT(down.top, start.top);
    EXPECT_EQ(down.left, start.left);
    control.Hold(VK_SHIFT);
    control.Wheel(-1);
    control.LetGo(VK_SHIFT);
    const RECT right = control.Location(1);
    EXPECT_LT(right.left, down.left);
    EXPECT_EQ(right.top, down.top);
    control.MoveTo({right.left, right.top});
    control.Hold(VK_CONTROL);
    control.Wheel(2);
    control.LetGo(VK_CONTROL);
    const RECT zoomed = control.Location(1);
    EXPECT_NEAR(zoomed.left, right.left, 1);
    EXPECT_NEAR(zoomed.top, right.top, 1);
    EXPECT_NEAR(zoomed.right - zoomed.left, (right.right - right.left) * 1.5625, 2);
    EXPECT_EQ(control.Told(), "");
}

TEST_F(ControlInput, MiddleButtonDragsThePage) {
    control.Insert(MakeRect(600, 600, 900, 900));
    const RECT before = control.Location(1);
    control.MoveTo(control.OnScreen({800, 800}));
    control.MouseDown(MOUSEEVENTF_MIDDLEDOWN);
    control.MoveTo({control.OnScreen({800, 800}).x - 60, control.OnScreen({800, 800}).y - 90});
    control.MouseUp(MOUSEEVENTF_MIDDLEUP);
    const RECT after = control.Location(1);
    EXPECT_EQ(after.left, before.left - 60);
    EXPECT_EQ(after.top, before.top - 90);
    control.MoveTo({after.left, after.top});
    EXPECT_EQ(control.Location(1).left, after.left) << "until it is let go";
}

TEST_F(ControlInput, PointerIsToldInPageUnits) {
    POINT offset = {7, 7};
    EXPECT_EQ(control.folium->GetPositionOffset(&offset), S_OK);
    control.MoveTo(control.OnScreen({500, 700}));
    EXPECT_NEAR(control.Pointer().x + offset.x, 500, kSlack);
    EXPECT_NEAR(control.Pointer().y + offset.y, 700, kSlack);
    const POINT last = control.Pointer();
    control.MoveTo({control.OnScreen({0, 0}).x - 5, control.OnScreen({0, 0}).y - 5});
    EXPECT_EQ(control.Pointer().x, last.x) << "beside the page there is no position";
}

TEST_F(ControlInput, DragScrollsAtTheWindowsEdge) {
    control.MoveTo(control.OnScreen({300, 300}));
    control.MouseDown();
    control.MoveTo(control.OnScreen({600, 600}));
    const POINT below = control.OnScreen({600, 1650});
    control.MoveTo(below);
    for (int i = 0; i < 100; ++i) {
        Sleep(10);
        control.Pump();
    }
    control.MouseUp();
    EXPECT_EQ(control.Told(), "added1 selected1");
    EXPECT_GT(control.At(1).bottom, 1800) << "further than the window showed";
}

}  // namespace
}  // namespace test
