// What the operator does to rectangles, and the model and its history beneath.
#include "folium/EditorScript.h"

namespace folium {
namespace {

TEST(Editor, Draws) {
    PlayAll({
        {"drag 900,800 300,200; at 1", "added1 selected1 [300,200,900,800]"},
        // Ends at the page's edge; no side under a millimetre.
        {"drag 1500,2500 5000,4000; at 1", "added1 selected1 [1500,2500,2100,2970]"},
        {"drag 1200,1200 1220,1201; at 1", "added1 selected1 [1200,1200,1220,1210]"},
        // A click and drags beside the page draw nothing and end the selection.
        {"with 300,200,900,800; select 1; drag 1300,1300 1303,1304; selection", "selected1 {}"},
        {"drag -500,100 -100,900; drag 2200,3000 2147483647,2147483647; drag 100,-500 900,-100; drag 100,3000 900,3500",
         ""},
        // Control draws inside another one as well, but where nothing is edited or there is no page it is a click.
        {"with 500,500,1500,1500; drag 700,700 900,900 control alt; items",
         "added2 selected2 1[500,500,1500,1500] 2[700,700,900,900]"},
        {"with 500,500,1500,1500; mode view; drag 700,700 900,900 control; items", "selected1 1[500,500,1500,1500]"},
        {"with 500,500,1500,1500; page 0,0; drag 700,700 900,900 control; items", "selected1 1[500,500,1500,1500]"},
        {"with 500,500,1500,1500; page 2100,0; drag 700,700 900,900 control; items", "selected1 1[500,500,1500,1500]"},
    });
}

TEST(Editor, MovesAndKeepsOnThePage) {
    PlayAll({
        {"with 500,500,700,600; drag 600,550 720,490 alt; at 1", "selected1 changed1 [620,440,820,540]"},
        {"with 500,500,700,600; drag 600,550 -9000,9000 alt; at 1", "selected1 changed1 [0,2870,200,2970]"},
        // One that hangs over the edge may stay there but goes no further out.
        {"with 2000,500,2300,600; drag 2150,550 2200,600 alt; at 1", "selected1 changed1 [2000,550,2300,650]"},
        {"with 2000,500,2300,600; drag 2150,550 1750,600 alt; at 1", "selected1 changed1 [1600,550,1900,650]"},
        {"with -50,-50,2200,3100; drag 1075,1525 1105,1495 alt; at 1", "selected1 [-50,-50,2200,3100]"},
    });
}

TEST(Editor, EightHandlesSize) {
    const char* const cases[][2] = {
        {"500,1000 540,1060", "[540,1060,900,1500]"}, {"700,1000 740,1060", "[500,1060,900,1500]"},
        {"900,1000 940,1060", "[500,1060,940,1500]"}, {"900,1250 940,1310", "[500,1000,940,1500]"},
        {"900,1500 940,1560", "[500,1000,940,1560]"}, {"700,1500 740,1560", "[500,1000,900,1560]"},
        {"500,1500 540,1560", "[540,1000,900,1560]"}, {"500,1250 540,1310", "[540,1000,900,1500]"},
    };
    for (const auto& [way, bounds] : cases) {
        const std::string told = std::string("selected1 changed1 ") + bounds;
        PlayAll({{std::string("with 500,1000,900,1500; select 1; drag ") + way + " alt; at 1", told.c_str()}});
    }
    PlayAll({
        // Not below the shortest side; one that is thinner already can still be moved, and a tiny one has its handles
        // outside.
        {"with 500,500,700,700; select 1; drag 700,700 100,100 alt; at 1", "selected1 changed1 [500,500,510,510]"},
        {"with 1000,1000,1400,1003; select 1; drag 1200,1001 1210,1021 alt; at 1",
         "selected1 changed1 [1010,1020,1410,1023]"},
        {"with 1000,1000,1020,1020; select 1; drag 1010,1010 1110,1110 alt; at 1; drag 1130,1130 1160,1160 alt; at 1",
         "selected1 changed1 [1100,1100,1120,1120] changed1 [1100,1100,1150,1150]"},
    });
}

TEST(Editor, Snaps) {
    const std::string other = "with 1000,1000,1500,1500; ";
    const std::string moved = other + "with 300,300,500,600; drag 400,400 ";
    PlayAll({
        {other + "drag 12,7 990,400; at 2", "added2 selected2 [0,0,1000,400]"},
        {other + "drag 12,7 990,400 alt; at 2", "added2 selected2 [12,7,990,400]"},
        {other + "drag 300,1490 1014,2960; at 2", "added2 selected2 [300,1500,1000,2970]"},
        {other + "drag 300,1480 980,2950; at 2", "added2 selected2 [300,1480,980,2950]"},
        // Any of the four edges goes to the other one's.
        {moved + "890,400; at 2", "selected2 changed2 [800,300,1000,600]"},
        {moved + "1590,400; at 2", "selected2 changed2 [1500,300,1700,600]"},
        {moved + "400,790; at 2", "selected2 changed2 [300,700,500,1000]"},
        {moved + "400,1590; at 2", "selected2 changed2 [300,1500,500,1800]"},
        {moved + "890,790 alt; at 2", "selected2 changed2 [790,690,990,990]"},
        // Sizing at one edge snaps that edge.
        {other + "with 800,300,1000,600; select 2; drag 900,600 930,992; at 2",
         "selected2 changed2 [800,300,1000,1000]"},
        {other + "with 1600,1000,1900,1500; select 2; drag 1600,1250 1508,1250; at 2",
         "selected2 changed2 [1500,1000,1900,1500]"},
    });
    const struct {
        std::vector<int32_t> lines;
        int64_t shift;
    } nearest[] = {{{93, 104}, 4}, {{104, 93}, 4}, {{96, 104}, -4}, {{}, 0},
                   {{89, 111}, 0}, {{110}, 10},    {{207, 96}, -4}, {{198, 96}, -2}};
    for (const auto& test : nearest) {
        EXPECT_EQ(SnapShift(test.lines, {100, 200}, 10), test.shift) << testing::PrintToString(test.lines);
    }
}

TEST(Editor, Picks) {
    const std::string handles = "with 500,500,2000,2000; with 1990,1990,2010,2010; select 1; ";
    PlayAll({
        // The smallest, of equal ones the last; whichever came first.
        {"with 1000,1000,1100,1100; with 500,500,2000,2000; with 800,800,1500,1500; click 1050,1050; click 1400,1400; "
         "click 1900,1900; click 100,100; selection",
         "selected1 selected3 selected2 {}"},
        {"with 1000,1000,1100,1100; with 0,990,1150,1140; with 990,0,1140,1150; click 1050,1050", "selected1"},
        {"with 990,0,1140,1150; with 0,990,1150,1140; with 1000,1000,1100,1100; click 1050,1050", "selected3"},
        {"with 1000,1000,1100,1100; with 1000,1000,1100,1100; click 1050,1050", "selected2"},
        // Handles come before smaller rectangles.
        {handles + "drag 2000,2000 2050,2050 alt; at 1", "selected1 changed1 [500,500,2050,2050]"},
        // What is just beside it still takes it.
        {"with 500,500,700,700; click 496,600; clear; click 704,600; clear; click 600,496; clear; click 600,704",
         "selected1 selected1 selected1 selected1"},
        {"with 500,500,700,700; click 494,600; click 706,600; click 600,494; click 600,706", ""},
        // Shift takes one away only where several can be selected.
        {"with 500,500,700,700; click 600,600 shift; click 600,600 shift; selection", "selected1 {1}"},
        // A click on a handle leaves the selection; where several are not allowed the last one stays.
        {"mode several; with 0,100,300,300; with 400,100,700,300; all; click 700,300; selection; mode edit; selection",
         "selected2 {12} {2}"},
    });
}

TEST(Editor, TakesBack) {
    const std::string start = "with 500,500,700,700; history; select 1; press ";
    const std::string end = "state; escape; move 800,700; release; items; escape; undo";
    const char* const told = "selected1 busy 1[500,500,700,700] no no";
    PlayAll({
        {start + "600,600; move 700,700; " + end, told},
        {start + "700,700; move 800,800; " + end, told},
        {start + "1000,1000; move 1100,1100; " + end, told},
        {"with 500,500,700,700; history; drag 600,600 700,600 alt; undo; undo; at 1; enter 0,0,2100,2970; redo; redo; "
         "redo; at 1; mode view; undo; redo; at 1",
         "selected1 changed1 changed1 no [500,500,700,700] no changed1 no [600,500,800,700] no no [600,500,800,700]"},
    });
}

TEST(Editor, KeysMoveAndSize) {
    PlayAll({
        {"nudge 5,5", ""},
        {"with 500,500,700,700; tab; nudge 1,-1; nudge 0,10; size -250,5; at 1",
         "selected1 changed1 changed1 changed1 [501,509,511,714]"},
        // At the edge there is nothing to tell.
        {"with 500,500,700,700; tab; nudge -2147483648,-2147483648; at 1; nudge -1,0",
         "selected1 changed1 [0,0,200,200]"},
        {"with 500,500,700,700; tab; nudge 2147483647,2147483647; at 1", "selected1 changed1 [1900,2770,2100,2970]"},
        {"with 2000,500,2300,600; tab; nudge 50,0; nudge -50,0; at 1", "selected1 changed1 [1950,500,2250,600]"},
        {"with 500,500,700,700; tab; size 2147483647,2147483647; at 1", "selected1 changed1 [500,500,2100,2970]"},
    });
}

TEST(Editor, TabWalks) {
    const std::string three = "with 0,0,50,50; with 100,0,150,50; with 200,0,250,50; ";
    PlayAll({
        {"tab; back", "no no"},
        {three + "tab; tab; tab; tab; back; back; back", "selected1 selected2 selected3 no selected2 selected1 no"},
        {three + "back", "selected3"},
        // From the place of a deleted one, also when a program took others away since.
        {three + "select 2; delete; tab", "selected2 deleted2 selected3"},
        {three + "select 2; delete; back", "selected2 deleted2 selected1"},
        {three + "select 3; delete; tab", "selected3 deleted3 no"},
        {three + "select 3; delete; back", "selected3 deleted3 selected2"},
        {three + "select 3; delete; remove 2; remove 1; with 0,0,9,9; back",
         "selected3 deleted3 deleted2 deleted1 selected4"},
    });
}

TEST(Editor, EnterStartsAndEndsANewOne) {
    PlayAll({
        {"enter 0,0,2100,2970; nudge 10,20; size 3,4; state; draft; enter; at 1",
         "making [797,1134,1325,1880] added1 selected1 [797,1134,1325,1880]"},
        {"enter 0,0,2100,2970; nudge -5000,5000; draft", "[0,2228,525,2970]"},
        // Undo takes back what is under way; the pointer's button does not end what keys began.
        {"history; enter 0,0,400,400; enter; enter 0,0,1,1; undo; state; items",
         "added1 selected1 idle 1[150,150,250,250]"},
        {"enter 0,0,1,1; release; state", "making"},
        // A page smaller than the shortest side.
        {"page 4,4; enter 0,0,4,4; enter; at 1", "added1 selected1 [0,0,4,4]"},
    });
}

TEST(Editor, ModesLimitWhatIsDone) {
    const std::string three = "with 0,100,200,300; with 300,100,500,300; with 600,100,800,300; ";
    const std::string all = "mode several; " + three + "all; ";
    PlayAll({
        {three + "all; selection", "{}"},
        {"mode several; all", ""},
        {all + "drag 400,200 450,250 alt; items; selection",
         "selected3 changed1 changed2 changed3 1[50,150,250,350] 2[350,150,550,350] 3[650,150,850,350] {123}"},
        // All stop with the first one at the edge.
        {"mode several; with 50,0,90,90; with 200,0,290,90; all; nudge -70,0; items",
         "selected2 changed1 changed2 1[0,0,40,90] 2[150,0,240,90]"},
        // A plain click leaves the one.
        {all + "click 400,200 shift; selection; click 100,200; selection", "selected3 {13} selected1 {1}"},
        {three +
             "select 1; mode view; drag 100,200 900,900; nudge 5,5; enter 0,0,2100,2970; state; delete; undo; redo; "
             "drag 1500,1500 1900,1900; selection",
         "selected1 idle no no {}"},
    });
}

// Keys that come while the pointer's button is down must not do half a thing.
TEST(Editor, KeysWaitForTheDragToEnd) {
    const std::string drag =
        "mode several; with 100,100,300,300; with 600,600,800,800; press 700,700 alt; move 750,700 alt; ";
    const std::string end = "; state; release; at 2";
    const char* const told = "selected2 busy changed2 [650,600,850,800]";
    PlayAll({
        {drag + "nudge 5,5" + end, told},
        {drag + "enter 0,0,2100,2970" + end, told},
        {drag + "all" + end, told},
        {drag + "tab" + end, "selected2 no busy changed2 [650,600,850,800]"},
        // The first press takes the drag back.
        {drag + "delete" + end, "selected2 idle [600,600,800,800]"},
    });
}

// What a program does to a rectangle that is just being dragged, in an event or from a timer.
TEST(Editor, DragEndsWhenItsRectangleGoes) {
    const std::string drag = "with 500,500,700,700; press 600,600; move 700,700; ";
    PlayAll({
        {drag + "remove 1; move 800,800; release", "selected1 deleted1"},
        {drag + "forget 99; state", "selected1 busy"},
        {drag + "forget 0; state", "selected1 idle"},
    });
    EditorScript listener;
    listener.onEvent = [&](const Event& event) {
        if (event.kind == EventKind::Selected) listener.model.Delete(event.id);
    };
    EXPECT_EQ(listener.Play("with 500,500,700,700; drag 600,600 900,900"), "selected1 deleted1");
}

TEST(Model, NumbersAndTells) {
    PlayAll({
        // From one and never again; bounds are kept normalised.
        {"insert 40,30,20,10; add 1,2,3,4; at 1; remove 2; insert 1,2,3,4; remove 2; update 0; select -1; update 99",
         "added1 added2 selected2 [20,10,40,30] deleted2 added3 no no no no"},
        // The one selected last stays it; what is gone is not selected.
        {"mode several; with 0,0,9,9; with 1,1,9,9; with 2,2,9,9; select 2; select 2; all; selection; toggle 2; "
         "toggle 2; remove 2; selection; toggle 2; selection",
         "selected2 {132} selected3 selected2 deleted2 {13} {13}"},
    });
}

TEST(Model, UndoesAndRedoes) {
    const std::string one = "with 0,0,10,10; ";
    PlayAll({
        // What was loaded stays, and what changed nothing is told but not undone.
        {one + "undo; history; update 1 0,0,10,10; undo; update 1 5,5,15,15; undo; undo; at 1",
         "no changed1 no changed1 changed1 selected1 no [0,0,10,10]"},
        // With identifiers, order and bounds; gone once something else is done.
        {"mode several; with 0,0,50,50; with 1,1,51,51; with 2,2,52,52; with 3,3,53,53; history; select 2; toggle 4; "
         "toggle 1; delete; add 7,7,9,9; toggle 3; nudge 1,0; items",
         "selected2 selected4 selected1 deleted2 deleted4 deleted1 added5 selected5 selected3 changed5 changed3 "
         "3[3,2,53,52] 5[8,7,10,9]"},
        {"mode several; with 0,0,50,50; with 1,1,51,51; with 2,2,52,52; with 3,3,53,53; select 2; toggle 4; toggle 1; "
         "history; delete; undo; items; redo; redo; items; undo; insert 1,1,2,2; redo",
         "selected2 selected4 selected1 deleted2 deleted4 deleted1 added1 added4 added2 selected1 1[0,0,50,50] "
         "2[1,1,51,51] 3[2,2,52,52] 4[3,3,53,53] deleted2 deleted4 deleted1 no 3[2,2,52,52] added1 added4 added2 "
         "selected1 added5 no"},
        {one + "history; add 7,7,9,9; nudge 1,0; undo; undo; items; redo; redo; items",
         "added2 selected2 changed2 changed2 deleted2 1[0,0,10,10] added2 selected2 changed2 1[0,0,10,10] 2[8,7,10,9]"},
        // A held key is one step; on others it is a step of its own.
        {one + "history; select 1; nudge 1,0; hold 1,0; hold 1,0; nudge 40,0; undo; at 1; undo; at 1; undo",
         "selected1 changed1 changed1 changed1 changed1 changed1 [3,0,13,10] changed1 [0,0,10,10] no"},
        {"mode several; with 0,0,9,9; with 0,9,9,18; with 0,20,9,29; select 3; nudge 9,0; hold 1,0; history; hold 1,0; "
         "select 1; nudge 50,0; select 2; hold 50,0; toggle 3; hold 10,0; undo; hold 5,0; undo; undo; undo; undo; undo",
         "selected3 changed3 changed3 changed3 selected1 changed1 selected2 changed2 selected3 changed2 changed3 "
         "changed3 changed2 changed2 changed3 changed3 changed2 changed2 changed1 selected1 changed3 selected3 no"},
    });
    EditorScript script;
    script.Play(one + "history");
    for (int i = 1; i <= 1010; ++i) script.model.Update(1, {i, 0, i + 10, 10});
    int steps = 0;
    while (script.model.Undo()) ++steps;
    EXPECT_EQ(steps, 1000);
    EXPECT_EQ(script.model.Find(1)->left, 10) << "the oldest steps are gone";
}

// A listener that works on the control inside an event, as dialogs do.
TEST(Model, ListenerMayCallBack) {
    EditorScript script;
    script.onEvent = [&](const Event& event) {
        if (event == Event{EventKind::Added, 1}) script.model.Insert({1, 1, 2, 2}, true);
        if (event == Event{EventKind::Added, 2}) script.model.Delete(1);
    };
    EXPECT_EQ(script.Play("add 0,0,9,9; selection"), "added1 selected1 added2 selected2 deleted1 {2}")
        << "in the order of the changes";
    script.onEvent = [&](const Event& event) {
        if (event.kind == EventKind::Added) script.model.Delete(event.id);
    };
    EXPECT_EQ(script.Play("add 0,0,9,9; selection"), "added3 deleted3 {}") << "what is gone is not selected";
    script.onEvent = nullptr;
    script.Play("with 0,0,1,1; with 0,0,1,1; with 0,0,1,1; with 0,0,1,1");
    script.onEvent = [&](const Event& event) {
        if (event.kind == EventKind::Deleted && !script.model.Items().empty()) {
            script.model.Delete(script.model.Items().front().id);
        }
    };
    EXPECT_EQ(script.Play("remove 2"), "deleted2 deleted4 deleted5 deleted6 deleted7");
}

}  // namespace
}  // namespace folium
