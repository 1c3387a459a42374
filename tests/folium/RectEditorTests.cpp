#include "folium/EditorFixture.h"

namespace folium {

std::ostream& operator<<(std::ostream& out, const Rect& rect);

namespace {

using RectEditorTest = EditorFixture;

TEST_F(RectEditorTest, DrawsOnThePage) {
    DragFromTo({900, 800}, {300, 200});
    EXPECT_EQ(At(1), (Rect{300, 200, 900, 800}));
    EXPECT_EQ(Told(), "added1 selected1");
    DragFromTo({1500, 2500}, {5000, 4000});
    EXPECT_EQ(At(2), (Rect{1500, 2500, 2100, 2970})) << "ends at the page's edge";
    DragFromTo({1200, 1200}, {1220, 1201});
    EXPECT_EQ(At(3), (Rect{1200, 1200, 1220, 1210})) << "no side under a millimetre";
    Told();
    DragFromTo({1300, 1300}, {1303, 1304});
    DragFromTo({-500, 100}, {-100, 900});
    DragFromTo({2200, 3000}, {INT32_MAX, INT32_MAX});
    DragFromTo({100, -500}, {900, -100});
    DragFromTo({100, 3000}, {900, 3500});
    EXPECT_EQ(Told(), "") << "a click and drags beside the page draw nothing";
    EXPECT_EQ(model.Primary(), 0) << "and end the selection";
}

TEST_F(RectEditorTest, MovesAndKeepsOnThePage) {
    struct {
        Rect rect;
        Point by;
        Rect moved;
    } const cases[] = {
        {{500, 500, 700, 600}, {120, -60}, {620, 440, 820, 540}},
        {{500, 500, 700, 600}, {-9000, 9000}, {0, 2870, 200, 2970}},
        // One that hangs over the edge may stay there but goes no further out.
        {{2000, 500, 2300, 600}, {50, 50}, {2000, 550, 2300, 650}},
        {{2000, 500, 2300, 600}, {-400, 50}, {1600, 550, 1900, 650}},
        {{-50, -50, 2200, 3100}, {30, -30}, {-50, -50, 2200, 3100}},
    };
    for (const auto& test : cases) {
        const int32_t id = Add(test.rect);
        const Point inside = {(test.rect.left + test.rect.right) / 2, (test.rect.top + test.rect.bottom) / 2};
        DragFromTo(inside, {inside.x + test.by.x, inside.y + test.by.y}, {.alt = true});
        EXPECT_EQ(At(id), test.moved);
        model.Delete(id);
    }
}

TEST_F(RectEditorTest, EightHandlesSize) {
    for (int i = 0; i < kHandleCount; ++i) {
        const Rect rect = {500, 1000, 900, 1500};
        const int32_t id = Add(rect);
        model.Select(id);
        const auto handle = static_cast<Handle>(i);
        const auto spot = HandleSpot({500, 1000, 900, 1500}, handle, reach.handle);
        const Point from = {static_cast<int32_t>(spot->x), static_cast<int32_t>(spot->y)};
        DragFromTo(from, {from.x + 40, from.y + 60}, {.alt = true});
        Rect expected = rect;
        if (HorizontalEdge(handle) < 0) expected.left += 40;
        if (HorizontalEdge(handle) > 0) expected.right += 40;
        if (VerticalEdge(handle) < 0) expected.top += 60;
        if (VerticalEdge(handle) > 0) expected.bottom += 60;
        EXPECT_EQ(At(id), expected) << i;
        model.Delete(id);
    }
}

TEST_F(RectEditorTest, SizingStopsAtTheShortestSide) {
    const int32_t id = Add({500, 500, 700, 700});
    model.Select(id);
    DragFromTo({700, 700}, {100, 100}, {.alt = true});
    EXPECT_EQ(At(id), (Rect{500, 500, 510, 510}));
    const int32_t thin = Add({1000, 1000, 1400, 1003});
    model.Select(thin);
    DragFromTo({1200, 1001}, {1210, 1021}, {.alt = true});
    EXPECT_EQ(At(thin), (Rect{1010, 1020, 1410, 1023})) << "one that is thinner already can still be moved";
}

TEST_F(RectEditorTest, TinyRectangleCanBeMovedAndSized) {
    const int32_t id = Add({1000, 1000, 1020, 1020});
    model.Select(id);
    DragFromTo({1010, 1010}, {1110, 1110}, {.alt = true});
    EXPECT_EQ(At(id), (Rect{1100, 1100, 1120, 1120}));
    DragFromTo({1130, 1130}, {1160, 1160}, {.alt = true});
    EXPECT_EQ(At(id), (Rect{1100, 1100, 1150, 1150}));
}

TEST_F(RectEditorTest, EscapeTakesBack) {
    const int32_t id = Add({500, 500, 700, 700});
    model.StartHistory();
    const std::vector<Item> before = model.Items();
    const Point starts[] = {{600, 600}, {700, 700}, {1000, 1000}};
    for (const Point& start : starts) {
        model.Select(id);
        Told();
        editor.Press(start, {}, reach);
        editor.Drag({start.x + 100, start.y + 100}, {});
        EXPECT_TRUE(editor.Busy());
        EXPECT_TRUE(editor.Cancel());
        editor.Drag({start.x + 200, start.y + 100}, {});
        editor.Release();
        EXPECT_EQ(model.Items(), before);
        EXPECT_EQ(Told(), "");
    }
    EXPECT_FALSE(editor.Cancel()) << "Escape is the dialog's now";
    EXPECT_FALSE(model.Undo());
}

TEST_F(RectEditorTest, SmallestOfOverlappingIsPicked) {
    Add({1000, 1000, 1100, 1100});
    Add({500, 500, 2000, 2000});
    Add({800, 800, 1500, 1500});
    Add({1000, 1000, 1100, 1100});
    const std::pair<Point, int32_t> cases[] = {
        {{1050, 1050}, 4}, {{1400, 1400}, 3}, {{1900, 1900}, 2}, {{100, 100}, 0}};
    for (const auto& [position, id] : cases) {
        editor.Press(position, {}, reach);
        editor.Release();
        EXPECT_EQ(model.Primary(), id) << position.x;
    }
    model.Select(2);
    EXPECT_EQ(HitTest(model, {2000, 2000}, 10, 5).handle, Handle::BottomRight);
    model.Update(1, {1990, 1990, 2010, 2010});
    EXPECT_EQ(HitTest(model, {2000, 2000}, 10, 5).id, 2) << "handles come before smaller rectangles";
}

TEST_F(RectEditorTest, SnapsToPageAndOthersUnlessAlt) {
    Add({1000, 1000, 1500, 1500});
    struct {
        Point from, to;
        bool alt;
        Rect rect;
    } const cases[] = {
        {{12, 7}, {990, 400}, false, {0, 0, 1000, 400}},
        {{12, 7}, {990, 400}, true, {12, 7, 990, 400}},
        {{300, 1490}, {1014, 2960}, false, {300, 1500, 1000, 2970}},
        {{300, 1480}, {980, 2950}, false, {300, 1480, 980, 2950}},
    };
    for (const auto& test : cases) {
        DragFromTo(test.from, test.to, {.alt = test.alt});
        const int32_t id = model.Primary();
        EXPECT_EQ(At(id), test.rect);
        model.Delete(id);
    }
    const int32_t id = Add({300, 300, 500, 600});
    DragFromTo({400, 400}, {890, 400});
    EXPECT_EQ(At(id), (Rect{800, 300, 1000, 600})) << "the right edge goes to the other one's left, 10 further";
    model.Select(id);
    DragFromTo({900, 600}, {930, 992});
    EXPECT_EQ(At(id), (Rect{800, 300, 1000, 1000})) << "sizing at one edge snaps that edge";
}

TEST_F(RectEditorTest, KeysMoveAndSize) {
    const int32_t id = Add({500, 500, 700, 700});
    editor.Walk(false);
    editor.Nudge(1, -1, false, false);
    editor.Nudge(0, 10, false, false);
    editor.Nudge(-250, 5, true, false);
    EXPECT_EQ(At(id), (Rect{501, 509, 511, 714}));
    EXPECT_EQ(Told(), "selected1 changed1 changed1 changed1");
    editor.Nudge(INT32_MIN, INT32_MIN, false, false);
    EXPECT_EQ(At(id), (Rect{0, 0, 10, 205}));
    editor.Nudge(-1, 0, false, false);
    EXPECT_EQ(Told(), "changed1") << "at the edge there is nothing to tell";
    editor.Nudge(INT32_MAX, INT32_MAX, true, false);
    EXPECT_EQ(At(id), (Rect{0, 0, 2100, 2970}));
}

TEST_F(RectEditorTest, TabWalksAndLeads) {
    EXPECT_FALSE(editor.CanWalk(false) || editor.Walk(true));
    for (int i = 0; i < 3; ++i) Add({i * 100, 0, i * 100 + 50, 50});
    while (editor.Walk(false)) {
    }
    while (editor.Walk(true)) {
    }
    EXPECT_EQ(Told(), "selected1 selected2 selected3 selected2 selected1");
    editor.Walk(false);
    editor.DeleteSelected();
    editor.Walk(false);
    EXPECT_EQ(Told(), "selected2 deleted2 selected3") << "goes on where the deleted one was";
}

TEST_F(RectEditorTest, EnterStartsAndEndsANewOne) {
    editor.StartOrEndNew({0, 0, 2100, 2970});
    EXPECT_EQ(Told(), "");
    editor.Nudge(10, 20, false, false);
    editor.Nudge(3, 4, true, false);
    const Rect shown = editor.Drafts().front().now;
    EXPECT_TRUE(editor.MakingByKeys());
    editor.StartOrEndNew({});
    EXPECT_EQ(At(1), shown);
    EXPECT_EQ(shown, (Rect{797, 1134, 1325, 1880}));
    EXPECT_EQ(Told(), "added1 selected1");
    editor.StartOrEndNew({0, 0, 1, 1});
    EXPECT_TRUE(editor.Undo());
    EXPECT_EQ(model.Items().size(), 1u) << "undo takes back what is under way";

    editor.SetPage({4, 4});
    editor.StartOrEndNew({0, 0, 4, 4});
    editor.StartOrEndNew({0, 0, 4, 4});
    EXPECT_EQ(At(2), (Rect{0, 0, 4, 4})) << "a page smaller than the shortest side";
}

TEST_F(RectEditorTest, ModesLimitWhatIsDone) {
    for (int i = 0; i < 3; ++i) Add({i * 300, 100, i * 300 + 200, 300});
    editor.SelectAll();
    EXPECT_EQ(model.Primary(), 0);
    editor.SetMode(true, true);
    editor.SelectAll();
    EXPECT_EQ(model.Selection().size(), 3u);
    DragFromTo({400, 200}, {450, 250}, {.alt = true});
    EXPECT_EQ(At(1), (Rect{50, 150, 250, 350}));
    EXPECT_EQ(At(3), (Rect{650, 150, 850, 350}));
    EXPECT_EQ(model.Selection().size(), 3u);
    editor.Nudge(-70, 0, false, false);
    EXPECT_EQ(At(3), (Rect{600, 150, 800, 350})) << "all stop with the first one at the edge";
    editor.Nudge(50, 0, false, false);
    editor.Press({400, 200}, {.shift = true}, reach);
    editor.Release();
    EXPECT_EQ(model.Selection(), (std::vector<int32_t>{1, 3}));
    editor.Press({100, 200}, {}, reach);
    editor.Release();
    EXPECT_EQ(model.Selection(), (std::vector<int32_t>{1})) << "a plain click leaves the one";

    editor.SetMode(false, false);
    Told();
    DragFromTo({100, 200}, {900, 900});
    DragFromTo({1500, 1500}, {1900, 1900});
    editor.Nudge(5, 5, false, false);
    editor.StartOrEndNew({0, 0, 2100, 2970});
    editor.DeleteSelected();
    EXPECT_FALSE(editor.Undo() || editor.Busy());
    EXPECT_EQ(Told(), "");
}

TEST_F(RectEditorTest, ControlDrawsAlsoInsideAnother) {
    const int32_t id = Add({500, 500, 1500, 1500});
    DragFromTo({700, 700}, {900, 900}, {.control = true, .alt = true});
    EXPECT_EQ(At(id), (Rect{500, 500, 1500, 1500}));
    EXPECT_EQ(At(2), (Rect{700, 700, 900, 900}));
    editor.SetMode(false, false);
    DragFromTo({1200, 1200}, {1300, 1300}, {.control = true});
    EXPECT_EQ(model.Items().size(), 2u) << "where nothing is edited it is a click";
    EXPECT_EQ(model.Primary(), id);
    editor.SetMode(true, false);
    for (const Size page : {Size{0, 0}, Size{2100, 0}}) {
        editor.SetPage(page);
        DragFromTo({1200, 1200}, {1300, 1300}, {.control = true});
        EXPECT_EQ(model.Items().size(), 2u) << "nor without a page";
    }
}

TEST_F(RectEditorTest, LeftEdgeSnapsAsTheRightOne) {
    Add({100, 100, 300, 300});
    const int32_t id = Add({600, 100, 900, 300});
    model.Select(id);
    DragFromTo({600, 200}, {308, 200});
    EXPECT_EQ(At(id), (Rect{300, 100, 900, 300}));
}

TEST_F(RectEditorTest, ClickOnAHandleLeavesTheSelection) {
    editor.SetMode(true, true);
    for (int i = 0; i < 2; ++i) Add({i * 400, 100, i * 400 + 300, 300});
    editor.SelectAll();
    editor.Press({700, 300}, {}, reach);
    editor.Release();
    EXPECT_EQ(model.Selection().size(), 2u);
    editor.SetMode(true, false);
    EXPECT_EQ(model.Selection(), (std::vector<int32_t>{2})) << "where several are not allowed the last one stays";
}

// Keys that come while the pointer's button is down, or with nothing to work on, must not do half a thing.
TEST_F(RectEditorTest, KeysWaitForTheDragToEnd) {
    const std::function<void()> keys[] = {[&] { editor.Nudge(5, 5, false, false); },
                                          [&] {
                                              editor.StartOrEndNew({0, 0, 2100, 2970});
                                          },
                                          [&] { editor.SelectAll(); }, [&] { EXPECT_FALSE(editor.Walk(false)); }};
    editor.Nudge(5, 5, false, false);
    EXPECT_EQ(Told(), "") << "nothing is selected";
    editor.SetMode(true, true);
    Add({100, 100, 300, 300});
    const int32_t id = Add({600, 600, 800, 800});
    int32_t left = 600;
    for (const auto& key : keys) {
        editor.Press({left + 100, 700}, {.alt = true}, reach);
        editor.Drag({left + 150, 700}, {.alt = true});
        Told();
        key();
        EXPECT_TRUE(editor.Busy() && !editor.MakingByKeys());
        editor.Release();
        EXPECT_EQ(Told(), "changed2");
        EXPECT_EQ(At(id).left, left += 50);
    }
    editor.Press({left + 100, 700}, {}, reach);
    editor.Drag({left + 150, 700}, {});
    editor.DeleteSelected();
    EXPECT_EQ(model.Items().size(), 2u) << "the first press takes the drag back";
    EXPECT_FALSE(editor.Busy());
    editor.StartOrEndNew({0, 0, 2100, 2970});
    editor.Release();
    EXPECT_TRUE(editor.MakingByKeys()) << "the pointer's button does not end what keys began";
}

TEST_F(RectEditorTest, WalksFromThePlaceOfADeletedOne) {
    const struct {
        int32_t deleted;
        bool back;
        const char* told;
    } cases[] = {{2, false, "selected3"}, {2, true, "selected1"}, {3, false, ""}, {3, true, "selected2"}};
    for (const auto& test : cases) {
        model.StartHistory();
        while (!model.Items().empty()) model.Delete(model.Items().back().id);
        const int32_t first = Add({0, 0, 50, 50});
        for (int i = 1; i < 3; ++i) Add({i * 100, 0, i * 100 + 50, 50});
        model.Select(first + test.deleted - 1);
        editor.DeleteSelected();
        Told();
        const bool walked = editor.Walk(test.back);
        EXPECT_EQ(walked, *test.told != '\0') << test.deleted << test.back;
        const int32_t expected = walked ? first + test.told[8] - '1' : 0;
        EXPECT_EQ(model.Primary(), expected) << test.deleted << test.back;
    }
    // A program took the others away in between.
    Add({300, 0, 350, 50});
    model.Select(model.Items().back().id);
    editor.DeleteSelected();
    while (model.Items().size() > 1) model.Delete(model.Items().back().id);
    EXPECT_TRUE(editor.Walk(true));
    EXPECT_EQ(model.Primary(), model.Items().front().id);
}

TEST(Snap, TheNearestLineWins) {
    const struct {
        std::vector<int32_t> lines;
        int64_t shift;
    } cases[] = {{{93, 104}, 4}, {{104, 93}, 4}, {{96, 104}, -4}, {{}, 0},
                 {{89, 111}, 0}, {{110}, 10},    {{207, 96}, -4}, {{198, 96}, -2}};
    for (const auto& test : cases) {
        EXPECT_EQ(SnapShift(test.lines, {100, 200}, 10), test.shift) << testing::PrintToString(test.lines);
    }
}

TEST_F(RectEditorTest, ClickTakesWhatIsJustBeside) {
    const int32_t id = Add({500, 500, 700, 700});
    for (const auto& [position, taken] :
         {std::pair{Point{496, 600}, true}, std::pair{Point{704, 600}, true}, std::pair{Point{600, 496}, true},
          std::pair{Point{600, 704}, true}, std::pair{Point{494, 600}, false}, std::pair{Point{706, 600}, false},
          std::pair{Point{600, 494}, false}, std::pair{Point{600, 706}, false}}) {
        EXPECT_EQ(HitTest(model, position, -1, 5).id, taken ? id : 0) << position.x << ',' << position.y;
    }
    editor.Press({600, 600}, {.shift = true}, reach);
    editor.Release();
    EXPECT_EQ(model.Primary(), id) << "shift takes one away only where several can be selected";
    editor.Press({600, 600}, {.shift = true}, reach);
    editor.Release();
    EXPECT_EQ(model.Primary(), id);
}

TEST_F(RectEditorTest, UndoAndRedoOnlyWhereEdited) {
    const int32_t id = Add({500, 500, 700, 700});
    model.StartHistory();
    DragFromTo({600, 600}, {700, 600}, {.alt = true});
    EXPECT_TRUE(editor.Undo());
    EXPECT_FALSE(editor.Undo());
    EXPECT_EQ(At(id).left, 500);
    editor.StartOrEndNew({0, 0, 2100, 2970});
    EXPECT_FALSE(editor.Redo()) << "it takes back what is under way";
    EXPECT_TRUE(editor.Redo());
    EXPECT_FALSE(editor.Redo());
    EXPECT_EQ(At(id).left, 600);
    editor.SetMode(false, false);
    EXPECT_FALSE(editor.Undo() || editor.Redo());
    EXPECT_EQ(At(id).left, 600);
}

// What a program does to a rectangle that is just being dragged, in an event or from a timer.
TEST_F(RectEditorTest, DragEndsWhenItsRectangleGoes) {
    const int32_t id = Add({500, 500, 700, 700});
    editor.Press({600, 600}, {}, reach);
    editor.Drag({700, 700}, {});
    model.Delete(id);
    editor.Forget(id);
    editor.Drag({800, 800}, {});
    editor.Release();
    EXPECT_EQ(Told(), "selected1 deleted1");

    for (const int32_t forgotten : {99, 0}) {
        const int32_t other = Add({500, 500, 700, 700});
        editor.Press({600, 600}, {}, reach);
        editor.Drag({700, 700}, {});
        editor.Forget(forgotten);
        EXPECT_EQ(editor.Busy(), forgotten != 0) << "one that is not dragged does not matter";
        editor.Cancel();
        model.Delete(other);
    }
    Told();

    Add({500, 500, 700, 700});
    onEvent = [&](const Event& event) {
        if (event.kind == EventKind::Selected) model.Delete(event.id);
    };
    DragFromTo({600, 600}, {900, 900});
    EXPECT_EQ(Told(), "selected4 deleted4");
}

}  // namespace
}  // namespace folium
