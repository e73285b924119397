// Radio buttons, check boxes, lists, the tree, labels and canvases under the user's hands.
#include "platform/contract.h"

namespace {

class ControlsTest : public ContractTest {
 protected:
  void Show() {
    KeepJournal(screen, journal);
    ShowScreen(screen);
    Told();
  }
  Control& operator[](const char* name) { return At(screen, name); }

  Screen screen{.name = "frmControls", .build = [](Screen& s) {
                  Add(s, TextField("Text1"));
                  Add(s, {.name = "Label1", .caption = "&Label"});
                  Add(s, {.name = "Group1", .kind = ControlKind::Group, .caption = "Type"});
                  Add(s, Radio("Option1", "one", "Group1")).checked = true;
                  Add(s, Radio("Option2", "two", "Group1"));
                  Add(s, {.name = "Group2", .kind = ControlKind::Group});
                  Add(s, Radio("Option3", "three", "Group2")).checked = true;
                  Add(s, {.name = "Check1", .kind = ControlKind::CheckBox, .caption = "Check"});
                  Add(s, {.name = "Combo1",
                          .kind = ControlKind::DropDownList,
                          .items = {"Alpha", "Beta", "Gamma"},
                          .listIndex = 0});
                  Add(s, {.name = "List1",
                          .kind = ControlKind::ListBox,
                          .heightLines = 4,
                          .items = {"Ada", "Bob", "Cid", "Dan", "Eve", "Fay"}});
                }};
};

// ---- radio buttons and check boxes --------------------------------------------------------------

TEST_F(ControlsTest, ClickedRadioButtonUnchecksThoseOfItsContainerOnly) {
  Show();
  ClickOn(screen, "Option2");
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Option2", "click Option2"}));
  EXPECT_FALSE((*this)["Option1"].checked);
  EXPECT_TRUE((*this)["Option2"].checked);
  EXPECT_TRUE((*this)["Option3"].checked);
}

TEST_F(ControlsTest, ClickRoutineSeesTheRadioButtonChecked) {
  bool seen = false;
  screen.on.click = [&](Screen&, Control& control) { seen = control.checked; };
  Show();
  ClickOn(screen, "Option2");
  EXPECT_TRUE(seen);
}

TEST_F(ControlsTest, ProgramChecksWithoutAClick) {
  Show();
  SetChecked((*this)["Option2"], true);
  SetChecked((*this)["Check1"], true);
  EXPECT_EQ(Told(), Journal{});
  EXPECT_FALSE((*this)["Option1"].checked);
  EXPECT_TRUE((*this)["Option2"].checked);
  EXPECT_TRUE((*this)["Check1"].checked);
}

TEST_F(ControlsTest, CheckBoxTogglesAtEachClickAndAtSpace) {
  Show();
  ClickOn(screen, "Check1");
  EXPECT_TRUE((*this)["Check1"].checked);
  ClickOn(screen, "Check1");
  EXPECT_FALSE((*this)["Check1"].checked);
  PressKey("Space");
  EXPECT_TRUE((*this)["Check1"].checked);
}

TEST_F(ControlsTest, RefusedFocusLeavesRadioAndCheckBoxAsTheyAre) {
  screen.on.gotFocus = [](Screen& s, Control& control) {
    if (control.name != "Text1") SetFocus(At(s, "Text1"));
  };
  Show();
  ClickOn(screen, "Option2");
  ClickOn(screen, "Check1");
  EXPECT_TRUE((*this)["Option1"].checked);
  EXPECT_FALSE((*this)["Option2"].checked);
  EXPECT_FALSE((*this)["Check1"].checked);
}

TEST_F(ControlsTest, ClickControlActsAsTheUserWould) {
  Show();
  ClickControl((*this)["Option2"]);
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Option2", "click Option2"}));
  SetEnabled((*this)["Check1"], false);
  ClickControl((*this)["Check1"]);
  EXPECT_FALSE((*this)["Check1"].checked);
}

TEST_F(ControlsTest, DisabledAndHiddenControlsAreNotClicked) {
  Show();
  SetEnabled((*this)["Check1"], false);
  SetVisible((*this)["Option2"], false);
  ClickOn(screen, "Check1");
  ClickOn(screen, "Option2");
  EXPECT_EQ(Told(), Journal{});
}

TEST_F(ControlsTest, ControlOfADisabledGroupIsNotUsable) {
  Show();
  SetEnabled((*this)["Group1"], false);
  EXPECT_FALSE(IsUsable((*this)["Option2"]));
  EXPECT_TRUE((*this)["Option2"].enabled);
  EXPECT_FALSE(ShownEnabled(screen, "Option2"));
  ClickOn(screen, "Option2");
  EXPECT_EQ(Told(), Journal{});
}

TEST_F(ControlsTest, ControlOfAHiddenGroupIsNotSeen) {
  Show();
  EXPECT_TRUE(ShownVisible(screen, "Option2"));
  SetVisible((*this)["Group1"], false);
  EXPECT_FALSE(ShownVisible(screen, "Option2"));
  EXPECT_FALSE(IsShown((*this)["Option2"]));
}

// ---- lists --------------------------------------------------------------------------------------

TEST_F(ControlsTest, ChosenItemIsAClickWithTheNewIndex) {
  int index = -1;
  screen.on.click = [&](Screen&, Control& control) { index = control.listIndex; };
  Show();
  ChooseItem(screen, "Combo1", 2);
  EXPECT_EQ(index, 2);
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Combo1", "click Combo1"}));
  EXPECT_EQ(ShownText(screen, "Combo1"), "Gamma");
}

TEST_F(ControlsTest, ChoiceOfAListBoxIsAClick) {
  Show();
  ChooseItem(screen, "List1", 1);
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got List1", "click List1"}));
  EXPECT_EQ(ShownText(screen, "List1"), "Bob");
}

TEST_F(ControlsTest, RefusedFocusLeavesTheListAtItsItem) {
  screen.on.gotFocus = [](Screen& s, Control& control) {
    if (control.name != "Text1") SetFocus(At(s, "Text1"));
  };
  Show();
  ChooseItem(screen, "Combo1", 2);
  EXPECT_EQ((*this)["Combo1"].listIndex, 0);
  EXPECT_EQ(ShownText(screen, "Combo1"), "Alpha");
}

TEST_F(ControlsTest, ProgramChoosesWithoutAClick) {
  Show();
  SetListIndex((*this)["Combo1"], 1);
  EXPECT_EQ(Told(), Journal{});
  EXPECT_EQ(ShownText(screen, "Combo1"), "Beta");
}

TEST_F(ControlsTest, IndexOutsideTheListIsNone) {
  Show();
  SetListIndex((*this)["Combo1"], 3);
  EXPECT_EQ((*this)["Combo1"].listIndex, -1);
  EXPECT_EQ(ShownText(screen, "Combo1"), "");
  SetListIndex((*this)["Combo1"], -7);
  EXPECT_EQ((*this)["Combo1"].listIndex, -1);
}

TEST_F(ControlsTest, ShorterListForgetsAnIndexBehindItsEnd) {
  Show();
  SetListIndex((*this)["Combo1"], 2);
  SetItems((*this)["Combo1"], {"One", "Two"});
  EXPECT_EQ((*this)["Combo1"].listIndex, -1);
  EXPECT_EQ(ShownText(screen, "Combo1"), "");
  SetListIndex((*this)["Combo1"], 1);
  SetItems((*this)["Combo1"], {"Uno", "Due"});
  EXPECT_EQ(ShownText(screen, "Combo1"), "Due");
}

TEST_F(ControlsTest, ArrowsWalkThroughADropDownList) {
  Show();
  SetFocus((*this)["Combo1"]);
  PressKey("Down");
  EXPECT_EQ((*this)["Combo1"].listIndex, 1);
  PressKey("Down");
  PressKey("Up");
  EXPECT_EQ(ShownText(screen, "Combo1"), "Beta");
}

TEST_F(ControlsTest, ArrowAtTheEndOfAListIsNoClick) {
  Show();
  SetFocus((*this)["Combo1"]);
  Told();
  PressKey("Up");
  for (const std::string& line : Told()) EXPECT_FALSE(line.starts_with("click")) << line;
  EXPECT_EQ((*this)["Combo1"].listIndex, 0);
}

TEST_F(ControlsTest, HomeEndAndArrowsWalkThroughAListBox) {
  Show();
  SetListIndex((*this)["List1"], 2);
  SetFocus((*this)["List1"]);
  Told();
  PressKey("End");
  EXPECT_EQ(ShownText(screen, "List1"), "Fay");
  EXPECT_EQ(Told(), (Journal{"down 261", "down List1 261", "click List1", "up 261"}));
  PressKey("Up");
  EXPECT_EQ(ShownText(screen, "List1"), "Eve");
  PressKey("Home");
  EXPECT_EQ(ShownText(screen, "List1"), "Ada");
}

TEST_F(ControlsTest, KeyThatTheScreenTakesMovesNoList) {
  screen.on.keyDown = [](Screen&, KeyEvent& event) { event.handled = true; };
  Show();
  SetFocus((*this)["Combo1"]);
  PressKey("Down");
  EXPECT_EQ((*this)["Combo1"].listIndex, 0);
}

TEST_F(ControlsTest, ClickRoutineMayUnloadTheScreenOfItsList) {
  screen.on.click = [](Screen& s, Control&) { UnloadScreen(s); };
  Show();
  ChooseItem(screen, "List1", 1);
  EXPECT_FALSE(screen.loaded);
}

// ---- the tree -----------------------------------------------------------------------------------

class TreeTest : public ControlsTest {
 protected:
  TreeTest() {
    screen.build = [](Screen& s) {
      Add(s, {.name = "Tree1",
              .kind = ControlKind::TreeView,
              .heightLines = 8,
              .nodes = {{.text = "Root", .key = "root"},
                        {.text = "Fuel", .key = "fuel", .parent = "root"},
                        {.text = "Blend", .key = "blend", .parent = "fuel"},
                        {.text = "Idle", .key = "idle", .parent = "root"}}});
    };
  }
};

TEST_F(TreeTest, DoubleClickIsToldWithTheNode) {
  int index = -1;
  screen.on.doubleClick = [&](Screen&, Control& control) { index = control.listIndex; };
  Show();
  DoubleClickNode(screen, "Tree1", "Blend");
  EXPECT_EQ(index, 2) << "the tree opens fully expanded";
  EXPECT_EQ(Told().back(), "double Tree1");
  EXPECT_EQ(ShownText(screen, "Tree1"), "Blend");
}

TEST_F(TreeTest, DoubleClickRoutineMayUnloadItsScreen) {
  screen.on.doubleClick = [](Screen& s, Control&) { UnloadScreen(s); };
  Show();
  DoubleClickNode(screen, "Tree1", "Idle");
  EXPECT_FALSE(screen.loaded);
}

TEST_F(TreeTest, ArrowsWalkThroughTheNodes) {
  Show();
  SetListIndex((*this)["Tree1"], 0);
  PressKey("Down");
  PressKey("Down");
  EXPECT_EQ(ShownText(screen, "Tree1"), "Blend");
  EXPECT_EQ((*this)["Tree1"].listIndex, 2);
}

// ---- labels, canvases and the rest --------------------------------------------------------------

TEST_F(ControlsTest, ClickOnALabelIsToldAndMovesNoFocus) {
  Show();
  ClickOn(screen, "Label1");
  EXPECT_EQ(Told(), (Journal{"click Label1"}));
}

TEST_F(ControlsTest, CaptionIsShownWithoutItsMark) {
  Show();
  EXPECT_EQ(ShownText(screen, "Label1"), "Label");
  SetCaption((*this)["Label1"], "Fuel && &Air");
  EXPECT_EQ(ShownText(screen, "Label1"), "Fuel & Air");
}

TEST_F(ControlsTest, EnabledIsShown) {
  Show();
  EXPECT_TRUE(ShownEnabled(screen, "Check1"));
  SetEnabled((*this)["Check1"], false);
  EXPECT_FALSE(ShownEnabled(screen, "Check1"));
}

TEST_F(ControlsTest, FieldsTakeTheColourOfAWindowWhenTheirsIsNotGiven) {
  screen.build = [](Screen& s) {
    Add(s, TextField("Text1"));
    Add(s, TextField("Yellow")).backColour = Yellow;
    Add(s, Button("Command1", "Go"));
  };
  Show();
  EXPECT_EQ((*this)["Text1"].backColour, SystemWindow);
  EXPECT_EQ((*this)["Text1"].foreColour, SystemWindowText);
  EXPECT_EQ((*this)["Yellow"].backColour, Yellow);
  EXPECT_EQ((*this)["Command1"].backColour, SystemButtonFace);
}

TEST_F(ControlsTest, CanvasIsToldThePressTheReleaseAndTheClick) {
  screen.build = [](Screen& s) {
    Add(s, {.name = "Canvas1", .kind = ControlKind::Canvas, .minWidth = 80, .minHeight = 60});
  };
  screen.on.mouse = [&](Screen&, Control& control, const MouseEvent& event) {
    journal.push_back("mouse " + std::to_string(event.kind) + " " + std::to_string(event.button));
    EXPECT_GT(event.x, 0);
    EXPECT_LT(event.x, control.canvasWidth);
    EXPECT_GT(event.y, 0);
    EXPECT_LT(event.y, control.canvasHeight);
  };
  Show();
  ClickOn(screen, "Canvas1");
  EXPECT_EQ(Told(), (Journal{"mouse 0 1", "mouse 2 1", "click Canvas1"}));
}

TEST_F(ControlsTest, CanvasHasItsSizeBeforeTheScreenIsShown) {
  screen.build = [](Screen& s) {
    Add(s, {.name = "Canvas1", .kind = ControlKind::Canvas, .minWidth = 80, .minHeight = 60});
  };
  screen.on.resized = [&](Screen&, Control& control) {
    journal.push_back("resized " + control.name);
    EXPECT_GE(control.canvasWidth, 80);
    EXPECT_GE(control.canvasHeight, 60);
  };
  KeepJournal(screen, journal);
  ShowScreen(screen);
  Journal told = Told();
  ASSERT_GE(told.size(), 3u);
  EXPECT_EQ(told[0], "load frmControls");
  EXPECT_EQ(told[1], "resized Canvas1");
  EXPECT_EQ(told.back(), "shown frmControls");
}

}  // namespace
