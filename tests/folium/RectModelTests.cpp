#include "folium/EditorFixture.h"

namespace folium {

std::ostream& operator<<(std::ostream& out, const Rect& rect) {
    return out << rect.left << ',' << rect.top << ',' << rect.right << ',' << rect.bottom;
}

namespace {

using RectModelTest = EditorFixture;

TEST_F(RectModelTest, NumbersFromOneAndNeverAgain) {
    EXPECT_EQ(model.Insert({40, 30, 20, 10}, false), 1);
    EXPECT_EQ(model.Insert({1, 2, 3, 4}, true), 2);
    EXPECT_EQ(At(1), (Rect{20, 10, 40, 30})) << "bounds are kept normalised";
    EXPECT_TRUE(model.Delete(2));
    EXPECT_EQ(model.Insert({1, 2, 3, 4}, false), 3);
    EXPECT_EQ(Told(), "added1 added2 selected2 deleted2 added3");
    EXPECT_FALSE(model.Delete(2) || model.Update(0, {}) || model.Select(-1) || model.Update(99, {}));
    EXPECT_EQ(Told(), "");
}

TEST_F(RectModelTest, UpdateTellsAlsoWhatStays) {
    Add({0, 0, 10, 10});
    model.StartHistory();
    EXPECT_TRUE(model.Update(1, {0, 0, 10, 10}));
    EXPECT_EQ(Told(), "changed1");
    EXPECT_FALSE(model.Undo()) << "nothing changed, so there is nothing to undo";
}

TEST_F(RectModelTest, LoadingIsNotUndone) {
    Add({0, 0, 10, 10});
    EXPECT_FALSE(model.Undo());
    model.StartHistory();
    EXPECT_FALSE(model.Undo());
    model.Update(1, {5, 5, 15, 15});
    EXPECT_TRUE(model.Undo());
    EXPECT_FALSE(model.Undo());
    EXPECT_EQ(At(1), (Rect{0, 0, 10, 10}));
}

TEST_F(RectModelTest, UndoBringsBackIdentifiersOrderAndBounds) {
    for (int i = 0; i < 4; ++i) Add({i, i, i + 50, i + 50});
    model.StartHistory();
    const auto before = model.Items();
    model.Delete({2, 4, 1});
    model.Insert({7, 7, 9, 9}, true);
    model.Move({{3, {0, 0, 1, 1}}, {5, {0, 0, 2, 2}}}, false);
    const auto after = model.Items();
    Told();

    EXPECT_TRUE(model.Undo() && model.Undo() && model.Undo());
    EXPECT_EQ(model.Items(), before);
    EXPECT_EQ(Told(), "changed5 changed3 deleted5 added1 added4 added2 selected1");
    EXPECT_TRUE(model.Redo() && model.Redo() && model.Redo());
    EXPECT_FALSE(model.Redo());
    EXPECT_EQ(model.Items(), after);

    model.Undo();
    model.Insert({1, 1, 2, 2}, false);
    EXPECT_FALSE(model.Redo()) << "what was undone is gone once something else is done";
    EXPECT_EQ(model.Items().back().id, 6);
}

TEST_F(RectModelTest, HeldKeyIsOneStep) {
    Add({0, 0, 10, 10});
    model.StartHistory();
    for (int i = 1; i <= 5; ++i) model.Move({{1, {i, 0, 10 + i, 10}}}, i > 1);
    EXPECT_EQ(Told(), "changed1 changed1 changed1 changed1 changed1");
    model.Move({{1, {50, 0, 60, 10}}}, false);
    EXPECT_TRUE(model.Undo());
    EXPECT_EQ(At(1).left, 5);
    EXPECT_TRUE(model.Undo());
    EXPECT_EQ(At(1).left, 0);
    EXPECT_FALSE(model.Undo());
}

TEST_F(RectModelTest, AHeldKeyOnOthersIsAStepOfItsOwn) {
    model.SelectAll();
    EXPECT_EQ(Told(), "") << "there is none";
    for (int i = 0; i < 3; ++i) Add({i, 0, i + 10, 10});
    for (const bool held : {false, true}) model.Move({{3, {held ? 2 : 9, 0, 12, 10}}}, held);
    model.StartHistory();
    model.Move({{1, {50, 0, 60, 10}}}, false);
    model.Move({{2, {50, 0, 60, 10}}}, true);
    model.Move({{2, {60, 0, 70, 10}}, {3, {60, 0, 70, 10}}}, true);
    model.Move({{2, {60, 0, 70, 10}}, {99, {}}}, true);  // as it is, and one that is gone
    model.Undo();
    model.Move({{2, {70, 0, 80, 10}}}, true);
    int steps = 0;
    while (model.Undo()) ++steps;
    EXPECT_EQ(steps, 3);
    EXPECT_EQ(At(2).left, 1);
}

TEST_F(RectModelTest, HistoryHasAnEnd) {
    Add({0, 0, 10, 10});
    model.StartHistory();
    for (int i = 1; i <= 1010; ++i) model.Update(1, {i, 0, i + 10, 10});
    int steps = 0;
    while (model.Undo()) ++steps;
    EXPECT_EQ(steps, 1000);
    EXPECT_EQ(At(1).left, 10) << "the oldest steps are gone";
}

// A listener that works on the control inside an event, as dialogs do.
TEST_F(RectModelTest, ListenerMayCallBack) {
    onEvent = [this](const Event& event) {
        if (event == Event{EventKind::Added, 1}) model.Insert({1, 1, 2, 2}, true);
        if (event == Event{EventKind::Added, 2}) model.Delete(1);
    };
    EXPECT_EQ(model.Insert({0, 0, 9, 9}, true), 1);
    EXPECT_EQ(Told(), "added1 selected1 added2 selected2 deleted1") << "in the order of the changes";
    EXPECT_EQ(model.Primary(), 2);

    onEvent = [this](const Event& event) {
        if (event.kind == EventKind::Added) model.Delete(event.id);
    };
    model.Insert({0, 0, 9, 9}, true);
    EXPECT_EQ(Told(), "added3 deleted3") << "what is gone is not selected";
    EXPECT_EQ(model.Primary(), 0);

    onEvent = [this](const Event& event) {
        if (event.kind == EventKind::Deleted && !model.Items().empty()) model.Delete(model.Items().front().id);
    };
    for (int i = 0; i < 4; ++i) model.Insert({}, false);
    Told();
    model.Delete(2);
    EXPECT_EQ(Told(), "deleted2 deleted4 deleted5 deleted6 deleted7");
}

TEST_F(RectModelTest, SeveralSelected) {
    for (int i = 0; i < 3; ++i) Add({i, i, i + 50, i + 50});
    model.Select(2);
    model.Select(2);
    model.SelectAll();
    EXPECT_EQ(Told(), "selected2") << "it stays the one selected last";
    EXPECT_EQ(model.Selection(), (std::vector<int32_t>{1, 3, 2}));
    model.Toggle(2);
    model.Toggle(2);
    EXPECT_EQ(Told(), "selected3 selected2");
    model.Delete(2);
    EXPECT_EQ(model.Primary(), 3);
    model.Toggle(2);
    EXPECT_EQ(model.Selection(), (std::vector<int32_t>{1, 3})) << "what is gone is not selected";
}

}  // namespace
}  // namespace folium
