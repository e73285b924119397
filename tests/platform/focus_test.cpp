// Who has the focus, how it moves, and what a screen is told of it.
#include <algorithm>
#include <utility>

#include "platform/contract.h"

namespace {

class FocusTest : public ContractTest {
 protected:
  // Three fields and a button; the journal begins after it is shown.
  void Show() {
    KeepJournal(screen, journal);
    ShowScreen(screen);
    Told();
    movesBefore = ShownFocusMoves();
  }
  int Moves() const { return ShownFocusMoves() - movesBefore; }
  std::string Focus() {
    Control* focus = FocusedControl(screen);
    return focus ? focus->name : "";
  }

  int movesBefore = 0;
  Screen screen{.name = "frmFocus", .build = [](Screen& s) {
                  Add(s, TextField("Text1"));
                  Add(s, TextField("Text2"));
                  Add(s, TextField("Text3"));
                  Add(s, Button("Command1", "Go"));
                }};
};

TEST_F(FocusTest, FirstFieldHasTheFocusWhenTheScreenIsShown) {
  KeepJournal(screen, journal);
  ShowScreen(screen);
  EXPECT_EQ(Told(), (Journal{"load frmFocus", "shown frmFocus", "got Text1"}));
  EXPECT_EQ(ShownFocus(), "Text1");
}

TEST_F(FocusTest, DefaultFocusGoesBeforeTheFirstField) {
  screen.defaultFocus = "Text3";
  Show();
  EXPECT_EQ(ShownFocus(), "Text3");
}

TEST_F(FocusTest, DisabledDefaultFocusLeavesTheFocusToTheFirstField) {
  screen.defaultFocus = "Text3";
  screen.on.load = [](Screen& s) { SetEnabled(At(s, "Text3"), false); };
  Show();
  EXPECT_EQ(ShownFocus(), "Text1");
}

TEST_F(FocusTest, FocusSetByTheLoadRoutineStays) {
  screen.on.load = [](Screen& s) { SetFocus(At(s, "Text2")); };
  Show();
  EXPECT_EQ(ShownFocus(), "Text2");
}

TEST_F(FocusTest, SetFocusTellsLostBeforeGot) {
  Show();
  SetFocus(At(screen, "Text2"));
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Text2"}));
  EXPECT_EQ(ShownFocus(), "Text2");
  EXPECT_EQ(Moves(), 1);
}

TEST_F(FocusTest, SetFocusOnTheFocusedFieldTellsNothing) {
  Show();
  SetFocus(At(screen, "Text1"));
  EXPECT_EQ(Told(), Journal{});
  EXPECT_EQ(Moves(), 0);
}

TEST_F(FocusTest, DisabledHiddenAndLabelTakeNoFocus) {
  screen.build = [build = screen.build](Screen& s) {
    build(s);
    Add(s, {.name = "Label1", .caption = "Label"});
  };
  Show();
  SetEnabled(At(screen, "Text2"), false);
  SetVisible(At(screen, "Text3"), false);
  for (const char* name : {"Text2", "Text3", "Label1"}) SetFocus(At(screen, name));
  EXPECT_EQ(Told(), Journal{});
  EXPECT_EQ(Focus(), "Text1");
}

TEST_F(FocusTest, FocusSetInsideGotFocusIsCarriedOutAfterIt) {
  bool inside = false;
  screen.on.gotFocus = [&](Screen& s, Control& control) {
    EXPECT_FALSE(inside) << "got-focus ran inside got-focus";
    inside = true;
    if (control.name == "Text2") SetFocus(At(s, "Text3"));
    inside = false;
  };
  Show();
  PressKey("Tab");
  EXPECT_EQ(Told(), (Journal{"down 9", "down Text1 9", "lost Text1", "got Text2", "lost Text2",
                             "got Text3", "up 9"}));
  EXPECT_EQ(ShownFocus(), "Text3");
  EXPECT_EQ(Moves(), 1) << "the field in between was seen with the focus";
}

TEST_F(FocusTest, FocusTakenBackInsideGotFocusNeverFlickers) {
  screen.on.gotFocus = [&](Screen& s, Control& control) {
    if (control.name != "Text1") SetFocus(At(s, "Text1"));
  };
  Show();
  PressKey("Tab");
  PressKey("Shift+Tab");
  EXPECT_EQ(ShownFocus(), "Text1");
  EXPECT_EQ(Moves(), 0);
}

TEST_F(FocusTest, FocusTakenBackInsideLostFocusIsGotAgain) {
  screen.on.lostFocus = [&](Screen& s, Control& control) {
    if (control.name == "Text1") SetFocus(At(s, "Text1"));
  };
  Show();
  SetFocus(At(screen, "Text2"));
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Text1"}));
  EXPECT_EQ(ShownFocus(), "Text1");
}

TEST_F(FocusTest, LostFocusMaySendTheFocusElsewhere) {
  screen.on.lostFocus = [&](Screen& s, Control& control) {
    if (control.name == "Text1") SetFocus(At(s, "Text3"));
  };
  Show();
  SetFocus(At(screen, "Text2"));
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Text3"}));
}

TEST_F(FocusTest, LastWishOfOneRoutineCounts) {
  screen.on.gotFocus = [&](Screen& s, Control& control) {
    if (control.name != "Text2") return;
    SetFocus(At(s, "Text3"));
    SetFocus(At(s, "Command1"));
  };
  Show();
  SetFocus(At(screen, "Text2"));
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Text2", "lost Text2", "got Command1"}));
}

TEST_F(FocusTest, FieldsThatSendTheFocusToEachOtherComeToAnEnd) {
  screen.on.gotFocus = [&](Screen& s, Control& control) {
    if (control.name == "Text2") SetFocus(At(s, "Text3"));
    if (control.name == "Text3") SetFocus(At(s, "Text2"));
  };
  Show();
  SetFocus(At(screen, "Text2"));
  auto got = std::count_if(journal.begin(), journal.end(),
                           [](const std::string& line) { return line.starts_with("got"); });
  EXPECT_GT(got, 2);
  EXPECT_LE(got, 32);
  EXPECT_EQ(ShownFocus(), Focus());
  Told();
  SetFocus(At(screen, "Text1"));
  EXPECT_EQ(Focus(), "Text1") << "the focus still works";
}

TEST_F(FocusTest, TargetThatLostFocusDisablesGetsNothing) {
  screen.on.lostFocus = [&](Screen& s, Control& control) {
    if (control.name == "Text1") SetEnabled(At(s, "Text2"), false);
  };
  Show();
  SetFocus(At(screen, "Text2"));
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Text1"}));
}

// ---- clicks that the focus refuses --------------------------------------------------------------

TEST_F(FocusTest, ClickOnAButtonTellsFocusThenClick) {
  Show();
  ClickOn(screen, "Command1");
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Command1", "click Command1"}));
}

TEST_F(FocusTest, ButtonWhoseFocusIsRefusedIsNotClicked) {
  screen.on.gotFocus = [&](Screen& s, Control& control) {
    if (control.name == "Command1") SetFocus(At(s, "Text1"));
  };
  Show();
  ClickOn(screen, "Command1");
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Command1", "lost Command1", "got Text1"}));
  EXPECT_EQ(ShownFocus(), "Text1");
}

TEST_F(FocusTest, ClickInAFieldWhoseFocusIsRefusedIsNotTold) {
  screen.on.gotFocus = [&](Screen& s, Control& control) {
    if (control.name == "Text2") SetFocus(At(s, "Text1"));
  };
  Show();
  ClickOn(screen, "Text2");
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "click Text2"), 0);
  EXPECT_EQ(ShownFocus(), "Text1");
}

// ---- tab order ----------------------------------------------------------------------------------

TEST_F(FocusTest, TabGoesThroughTheControlsInTheirOrderAndWraps) {
  Show();
  Journal seen;
  for (int i = 0; i < 5; ++i) {
    PressKey("Tab");
    seen.push_back(ShownFocus());
  }
  EXPECT_EQ(seen, (Journal{"Text2", "Text3", "Command1", "Text1", "Text2"}));
}

TEST_F(FocusTest, ShiftTabGoesBackAndWraps) {
  Show();
  Journal seen;
  for (int i = 0; i < 3; ++i) {
    PressKey("Shift+Tab");
    seen.push_back(ShownFocus());
  }
  EXPECT_EQ(seen, (Journal{"Command1", "Text3", "Text2"}));
}

TEST_F(FocusTest, TabPassesWhatCannotOrShallNotHaveTheFocus) {
  screen.build = [](Screen& s) {
    Add(s, TextField("Text1"));
    Add(s, {.name = "Label1", .caption = "Label"});
    Add(s, TextField("Disabled")).enabled = false;
    Add(s, TextField("Hidden")).visible = false;
    Add(s, {.name = "Group1", .kind = ControlKind::Group, .visible = false});
    Add(s, TextField("InHidden")).place.in = "Group1";
    Add(s, TextField("NoStop")).tabStop = false;
    Add(s, {.name = "Canvas1", .kind = ControlKind::Canvas, .minWidth = 20, .minHeight = 20});
    Add(s, TextField("Text2"));
  };
  Show();
  PressKey("Tab");
  EXPECT_EQ(ShownFocus(), "Text2");
  PressKey("Tab");
  EXPECT_EQ(ShownFocus(), "Text1");
}

TEST_F(FocusTest, RadioGroupIsOneStopAtItsCheckedButton) {
  screen.build = [](Screen& s) {
    Add(s, TextField("Text1"));
    Add(s, {.name = "Group1", .kind = ControlKind::Group});
    Add(s, Radio("Option1", "one", "Group1"));
    Add(s, Radio("Option2", "two", "Group1")).checked = true;
    Add(s, Radio("Option3", "three", "Group1"));
    Add(s, TextField("Text2"));
  };
  Show();
  PressKey("Tab");
  EXPECT_EQ(ShownFocus(), "Option2");
  PressKey("Tab");
  EXPECT_EQ(ShownFocus(), "Text2");
  PressKey("Shift+Tab");
  EXPECT_EQ(ShownFocus(), "Option2");
}

TEST_F(FocusTest, RadioGroupWithNoneCheckedIsEnteredAtItsFirst) {
  screen.build = [](Screen& s) {
    Add(s, TextField("Text1"));
    Add(s, Radio("Option1", "one"));
    Add(s, Radio("Option2", "two"));
  };
  Show();
  PressKey("Tab");
  EXPECT_EQ(ShownFocus(), "Option1");
  EXPECT_FALSE(At(screen, "Option1").checked) << "Tab alone chooses nothing";
  PressKey("Tab");
  EXPECT_EQ(ShownFocus(), "Text1");
}

// ---- a focused control that goes ----------------------------------------------------------------

TEST_F(FocusTest, DisabledFieldHandsTheFocusOnWithTheNextPass) {
  Show();
  SetEnabled(At(screen, "Text1"), false);
  EXPECT_EQ(Told(), Journal{}) << "not inside the routine that disables it";
  RunPending();
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Text2"}));
  EXPECT_EQ(ShownFocus(), "Text2");
}

TEST_F(FocusTest, FieldInAHiddenGroupHandsTheFocusOn) {
  screen.build = [](Screen& s) {
    Add(s, {.name = "Group1", .kind = ControlKind::Group});
    Add(s, TextField("Text1")).place.in = "Group1";
    Add(s, TextField("Text2")).place.in = "Group1";
    Add(s, TextField("Text3"));
  };
  Show();
  SetVisible(At(screen, "Group1"), false);
  RunPending();
  EXPECT_EQ(ShownFocus(), "Text3");
}

TEST_F(FocusTest, FieldThatIsDisabledForAMomentKeepsTheFocus) {
  Show();
  SetEnabled(At(screen, "Text1"), false);
  SetEnabled(At(screen, "Text1"), true);
  RunPending();
  EXPECT_EQ(Told(), Journal{});
  EXPECT_EQ(ShownFocus(), "Text1");
}

TEST_F(FocusTest, FocusSetInTheSameRoutineGoesBeforeHandingOn) {
  Show();
  SetEnabled(At(screen, "Text1"), false);
  SetFocus(At(screen, "Command1"));
  RunPending();
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Command1"}));
}

TEST_F(FocusTest, ScreenWithNothingUsableFindsAFocusWhenOneComesBack) {
  screen.build = [](Screen& s) { Add(s, TextField("Text1")); };
  Show();
  SetEnabled(At(screen, "Text1"), false);
  RunPending();
  EXPECT_EQ(FocusedControl(screen), nullptr);
  EXPECT_EQ(Told(), (Journal{"lost Text1"}));
  SetEnabled(At(screen, "Text1"), true);
  RunPending();
  EXPECT_EQ(Told(), (Journal{"got Text1"}));
}

// ---- selection ----------------------------------------------------------------------------------

TEST_F(FocusTest, TabLeavesTheSelectionOfTheFieldAlone) {
  Show();
  SetText(At(screen, "Text2"), "12.5");
  SelectText(At(screen, "Text2"), 1, 2);
  PressKey("Tab");
  TypeText("7");
  EXPECT_EQ(At(screen, "Text2").text, "175");
}

TEST_F(FocusTest, TabSelectsNothingByItself) {
  Show();
  SetText(At(screen, "Text2"), "12.5");
  PressKey("Tab");
  TypeText("7");
  EXPECT_EQ(At(screen, "Text2").text, "712.5");
}

TEST_F(FocusTest, ClickThatBringsTheFocusKeepsTheSelectionMadeByGotFocus) {
  screen.on.gotFocus = [](Screen&, Control& control) {
    SelectText(control, 0, static_cast<int>(control.text.size()));
  };
  Show();
  SetText(At(screen, "Text2"), "12.5");
  ClickOn(screen, "Text2");
  TypeText("7");
  EXPECT_EQ(At(screen, "Text2").text, "7");
}

TEST_F(FocusTest, ClickInTheFocusedFieldPlacesTheCursor) {
  Show();
  SetText(At(screen, "Text1"), "12");
  SelectText(At(screen, "Text1"), 0, 2);
  ClickOn(screen, "Text1");
  TypeText("7");
  EXPECT_EQ(At(screen, "Text1").text, "127");
}

// ---- screens that go inside a focus event -------------------------------------------------------

TEST_F(FocusTest, ScreenUnloadedInsideLostFocusGivesNobodyTheFocus) {
  screen.on.lostFocus = [](Screen& s, Control&) { UnloadScreen(s); };
  Show();
  SetFocus(At(screen, "Text2"));
  EXPECT_EQ(Told(), (Journal{"lost Text1", "unload frmFocus"}));
  EXPECT_FALSE(screen.loaded);
}

TEST_F(FocusTest, ScreenLoadedAnewInsideGotFocusKeepsItsNewControls) {
  bool done = false;
  screen.on.gotFocus = [&](Screen& s, Control& control) {
    if (control.name != "Text2" || done) return;
    done = true;
    UnloadScreen(s);
    ShowScreen(s);
  };
  Show();
  SetFocus(At(screen, "Text2"));
  ASSERT_TRUE(screen.loaded);
  EXPECT_EQ(FocusedControl(screen), &At(screen, "Text1"));
  EXPECT_EQ(ShownFocus(), "Text1");
  PressKey("Tab");
  EXPECT_EQ(FocusedControl(screen), &At(screen, "Text2"));
}

TEST_F(FocusTest, ScreenLoadedAnewInsideLostFocusForgetsTheOldTarget) {
  bool done = false;
  screen.on.lostFocus = [&](Screen& s, Control&) {
    if (std::exchange(done, true)) return;
    UnloadScreen(s);
    ShowScreen(s);
  };
  Show();
  SetFocus(At(screen, "Text3"));
  EXPECT_EQ(FocusedControl(screen), &At(screen, "Text1"));
  EXPECT_EQ(Told(), (Journal{"lost Text1", "unload frmFocus", "load frmFocus", "shown frmFocus",
                             "got Text1"}));
}

TEST_F(FocusTest, ClickThatLoadsItsScreenAnewClicksNothingThere) {
  bool done = false;
  screen.on.gotFocus = [&](Screen& s, Control& control) {
    if (control.name != "Command1" || std::exchange(done, true)) return;
    UnloadScreen(s);
    ShowScreen(s);
  };
  Show();
  ClickOn(screen, "Command1");
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "click Command1"), 0);
  EXPECT_EQ(ShownFocus(), "Text1");
}

}  // namespace
