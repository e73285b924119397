// The life of screens: loading, showing, who is active, unloading inside one's own routine.
#include <stdexcept>
#include <utility>

#include "platform/contract.h"
#include "platform/failure.h"

namespace {

class ScreensTest : public ContractTest {
 protected:
  static Screen Make(const std::string& name, ScreenPlacement placement = ScreenPlacement::Work) {
    return {.name = name, .placement = placement, .build = [](Screen& s) {
              Add(s, TextField("Text1"));
              Add(s, Button("Command1", "&Go"));
            }};
  }
  void Keep(std::initializer_list<Screen*> screens) {
    for (Screen* screen : screens) KeepJournal(*screen, journal);
  }
  std::string Active() { return ActiveScreen() ? ActiveScreen()->name : ""; }

  Screen one = Make("one");
  Screen two = Make("two");
  Screen above = Make("above", ScreenPlacement::Above);
  Screen child = Make("child", ScreenPlacement::Child);
  Screen dialog = Make("dialog", ScreenPlacement::Dialog);
};

// ---- loading and showing ------------------------------------------------------------------------

TEST_F(ScreensTest, LoadBuildsAndShowsNothing) {
  Keep({&one});
  LoadScreen(one);
  EXPECT_EQ(Told(), (Journal{"load one"}));
  EXPECT_TRUE(one.loaded);
  EXPECT_FALSE(one.visible);
  EXPECT_EQ(ActiveScreen(), nullptr);
  EXPECT_FALSE(ShownVisible(one, "Text1"));
  LoadScreen(one);
  EXPECT_EQ(Told(), Journal{}) << "a loaded screen is not loaded again";
}

TEST_F(ScreensTest, ShowLoadsShowsAndActivates) {
  Keep({&one});
  ShowScreen(one);
  EXPECT_EQ(Told(), (Journal{"load one", "shown one", "got Text1"}));
  EXPECT_EQ(ActiveScreen(), &one);
  EXPECT_EQ(TopWorkScreen(), &one);
  EXPECT_TRUE(ShownVisible(one, "Text1"));
}

TEST_F(ScreensTest, ShowingAgainTellsShownOnly) {
  Keep({&one});
  ShowScreen(one);
  Told();
  ShowScreen(one);
  EXPECT_EQ(Told(), (Journal{"shown one"}));
}

TEST_F(ScreensTest, LaterWorkScreenCoversTheEarlierOne) {
  ShowScreen(one);
  ShowScreen(two);
  EXPECT_EQ(TopWorkScreen(), &two);
  EXPECT_FALSE(ShownVisible(one, "Text1"));
  EXPECT_TRUE(ShownVisible(two, "Text1"));
  EXPECT_TRUE(one.loaded);
}

TEST_F(ScreensTest, UnloadBringsTheScreenBelowBack) {
  Keep({&one, &two});
  ShowScreen(one);
  ShowScreen(two);
  Told();
  UnloadScreen(two);
  EXPECT_EQ(Told(), (Journal{"unload two", "shown one"}));
  EXPECT_EQ(Active(), "one");
  EXPECT_TRUE(ShownVisible(one, "Text1"));
  EXPECT_EQ(ShownFocus(), "Text1");
}

TEST_F(ScreensTest, HiddenScreenStaysLoadedAndKeepsItsTexts) {
  ShowScreen(one);
  SetText(At(one, "Text1"), "12");
  HideScreen(one);
  EXPECT_TRUE(one.loaded);
  EXPECT_FALSE(ShownVisible(one, "Text1"));
  EXPECT_EQ(Active(), "");
  ShowScreen(one);
  EXPECT_EQ(ShownText(one, "Text1"), "12");
}

TEST_F(ScreensTest, ScreenComesBackWithTheFocusWhereItWas) {
  ShowScreen(one);
  SetFocus(At(one, "Command1"));
  ShowScreen(two);
  EXPECT_EQ(ShownFocus(), "Text1");
  UnloadScreen(two);
  EXPECT_EQ(ShownFocus(), "Command1");
}

TEST_F(ScreensTest, ScreenLoadedAgainBeginsAnew) {
  ShowScreen(one);
  TypeText("12");
  UnloadScreen(one);
  ShowScreen(one);
  EXPECT_EQ(ShownText(one, "Text1"), "");
}

TEST_F(ScreensTest, UnloadingWhatIsNotLoadedDoesNothing) {
  Keep({&one});
  UnloadScreen(one);
  HideScreen(one);
  EXPECT_EQ(Told(), Journal{});
}

TEST_F(ScreensTest, ScreensAreUnloadedLastLoadedFirst) {
  Keep({&one, &two, &above});
  ShowScreen(one);
  ShowScreen(above);
  ShowScreen(two);
  EXPECT_EQ(LoadedScreens(), (std::vector<Screen*>{&one, &above, &two}));
  Told();
  UnloadAllScreens();
  Journal unloads;
  for (const std::string& line : Told())
    if (line.starts_with("unload")) unloads.push_back(line);
  EXPECT_EQ(unloads, (Journal{"unload two", "unload above", "unload one"}));
  EXPECT_TRUE(LoadedScreens().empty());
  EXPECT_EQ(ActiveScreen(), nullptr);
}

// ---- placements ---------------------------------------------------------------------------------

TEST_F(ScreensTest, ScreenAboveHasTheKeysUntilWorkIsShown) {
  ShowScreen(one);
  ShowScreen(above);
  EXPECT_EQ(Active(), "above");
  EXPECT_EQ(TopWorkScreen(), &one);
  ShowScreen(two);
  EXPECT_EQ(Active(), "two");
  EXPECT_TRUE(ShownVisible(above, "Text1"));
  TypeText("5");
  EXPECT_EQ(ShownText(two, "Text1"), "5");
}

TEST_F(ScreensTest, ClickInAnotherWindowMakesItActive) {
  ShowScreen(one);
  ShowScreen(above);
  ClickOn(one, "Text1");
  EXPECT_EQ(Active(), "one");
  TypeText("7");
  EXPECT_EQ(ShownText(one, "Text1"), "7");
  ClickOn(above, "Command1");
  EXPECT_EQ(Active(), "above");
}

TEST_F(ScreensTest, ActivateGivesTheKeysBackWithoutShowing) {
  Keep({&one, &above});
  ShowScreen(one);
  ShowScreen(above);
  Told();
  ActivateScreen(one);
  EXPECT_EQ(Active(), "one");
  EXPECT_EQ(Told(), Journal{});
  TypeText("7");
  EXPECT_EQ(ShownText(one, "Text1"), "7");
}

TEST_F(ScreensTest, UnloadedWorkScreenLeavesTheOneAboveWithTheKeys) {
  ShowScreen(one);
  ShowScreen(above);
  UnloadScreen(one);
  EXPECT_EQ(Active(), "above");
  EXPECT_EQ(TopWorkScreen(), nullptr);
}

TEST_F(ScreensTest, ChildStandsInTheFrameBesideTheWork) {
  ShowScreen(one);
  ShowScreen(child);
  EXPECT_EQ(Active(), "child");
  EXPECT_EQ(TopWorkScreen(), &one);
  EXPECT_TRUE(ShownVisible(one, "Text1"));
  EXPECT_TRUE(ShownVisible(child, "Text1"));
  UnloadScreen(child);
  EXPECT_EQ(Active(), "one");
}

TEST_F(ScreensTest, DialogTakesAllKeysAndClicks) {
  Keep({&one});
  ShowScreen(one);
  ShowScreen(above);
  ShowScreen(dialog);
  EXPECT_EQ(OpenDialogScreen(), &dialog);
  Told();
  TypeText("5");
  ClickOn(one, "Command1");
  ClickOn(above, "Command1");
  CloseByUser(above);
  EXPECT_EQ(Told(), Journal{});
  EXPECT_EQ(ShownText(dialog, "Text1"), "5");
  EXPECT_TRUE(above.loaded);
  UnloadScreen(dialog);
  EXPECT_EQ(OpenDialogScreen(), nullptr);
  EXPECT_EQ(Active(), "above");
}

TEST_F(ScreensTest, DialogKeepsTheKeysWhenWorkIsShownBehindIt) {
  ShowScreen(dialog);
  ShowScreen(one);
  TypeText("5");
  EXPECT_EQ(ShownText(dialog, "Text1"), "5");
  EXPECT_EQ(ShownText(one, "Text1"), "");
}

TEST_F(ScreensTest, DisabledScreenTakesNoKeyAndNoClick) {
  Keep({&one});
  ShowScreen(one);
  SetScreenEnabled(one, false);
  Told();
  TypeText("5");
  PressKey("Alt+G");
  ClickOn(one, "Command1");
  EXPECT_EQ(Told(), Journal{});
  SetScreenEnabled(one, true);
  TypeText("5");
  EXPECT_EQ(ShownText(one, "Text1"), "5");
}

// ---- the close box ------------------------------------------------------------------------------

TEST_F(ScreensTest, CloseBoxRunsItsRoutine) {
  int closed = 0;
  above.on.closeBox = [&](Screen&) { ++closed; };
  above.cancelButton = "Command1";
  Keep({&above});
  ShowScreen(above);
  CloseByUser(above);
  EXPECT_EQ(closed, 1);
  EXPECT_TRUE(above.loaded);
  EXPECT_TRUE(ShownVisible(above, "Text1"));
}

TEST_F(ScreensTest, CloseBoxWithoutARoutineClicksTheCancelButton) {
  above.cancelButton = "Command1";
  Keep({&above});
  ShowScreen(above);
  Told();
  CloseByUser(above);
  EXPECT_EQ(Told(), (Journal{"click Command1"}));
  EXPECT_TRUE(above.loaded);
  EXPECT_TRUE(ShownVisible(above, "Text1"));
}

TEST_F(ScreensTest, CloseBoxWithNeitherUnloads) {
  ShowScreen(above);
  CloseByUser(above);
  EXPECT_FALSE(above.loaded);
}

// ---- unloading inside one's own routine ---------------------------------------------------------

TEST_F(ScreensTest, ScreenUnloadedInItsOwnRoutineIsReleasedAfterIt) {
  one.on.click = [](Screen& s, Control& control) {
    UnloadScreen(s);
    EXPECT_TRUE(s.closing);
    EXPECT_FALSE(s.visible);
    EXPECT_EQ(control.name, "Command1") << "the control is still there";
    SetText(At(s, "Text1"), "late");
    SetFocus(At(s, "Text1"));
  };
  Keep({&one});
  ShowScreen(one);
  Told();
  ClickOn(one, "Command1");
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Command1", "click Command1", "unload one"}));
  EXPECT_FALSE(one.loaded);
  EXPECT_FALSE(one.closing);
  EXPECT_TRUE(one.controls.empty());
  EXPECT_TRUE(one.former.empty());
}

TEST_F(ScreensTest, ScreenUnloadedTwiceIsUnloadedOnce) {
  one.on.click = [](Screen& s, Control&) {
    UnloadScreen(s);
    UnloadScreen(s);
  };
  Keep({&one});
  ShowScreen(one);
  Told();
  ClickOn(one, "Command1");
  EXPECT_EQ(Told(), (Journal{"lost Text1", "got Command1", "click Command1", "unload one"}));
}

TEST_F(ScreensTest, ScreenShownAgainWhileItClosesBeginsANewLife) {
  one.on.click = [](Screen& s, Control& control) {
    UnloadScreen(s);
    ShowScreen(s);
    EXPECT_EQ(control.name, "Command1") << "the old control is still there";
    EXPECT_NE(&control, &At(s, "Command1"));
  };
  Keep({&one});
  ShowScreen(one);
  TypeText("12");
  ClickOn(one, "Command1");
  EXPECT_TRUE(one.loaded);
  EXPECT_TRUE(one.visible);
  EXPECT_EQ(Active(), "one");
  EXPECT_EQ(ShownText(one, "Text1"), "");
  EXPECT_EQ(ShownFocus(), "Text1");
  EXPECT_TRUE(one.former.empty());
  TypeText("7");
  EXPECT_EQ(ShownText(one, "Text1"), "7");
}

TEST_F(ScreensTest, ScreenLoadedAgainByItsUnloadRoutineStays) {
  // Kept by the routine: the fixture unloads the screen once more at the end.
  one.on.unload = [again = true](Screen& s) mutable {
    if (std::exchange(again, false)) ShowScreen(s);
  };
  ShowScreen(one);
  UnloadScreen(one);
  EXPECT_TRUE(one.loaded);
  EXPECT_TRUE(ShownVisible(one, "Text1"));
  EXPECT_EQ(LoadedScreens(), (std::vector<Screen*>{&one}));
  TypeText("7");
  EXPECT_EQ(ShownText(one, "Text1"), "7");
}

TEST_F(ScreensTest, ScreenOnlyLoadedByItsUnloadRoutineIsNotShown) {
  one.on.unload = [again = true](Screen& s) mutable {
    if (std::exchange(again, false)) LoadScreen(s);
  };
  ShowScreen(one);
  UnloadScreen(one);
  EXPECT_TRUE(one.loaded);
  EXPECT_FALSE(one.visible);
  EXPECT_FALSE(ShownVisible(one, "Text1"));
  EXPECT_EQ(ActiveScreen(), nullptr);
}

TEST_F(ScreensTest, RoutineMayUnloadItsScreenAndShowAnother) {
  one.on.click = [&](Screen& s, Control&) {
    UnloadScreen(s);
    ShowScreen(two);
  };
  ShowScreen(one);
  ClickOn(one, "Command1");
  EXPECT_FALSE(one.loaded);
  EXPECT_EQ(Active(), "two");
  TypeText("7");
  EXPECT_EQ(ShownText(two, "Text1"), "7");
}

TEST_F(ScreensTest, ScreenUnloadedByItsLoadRoutineIsNotShown) {
  one.on.load = [](Screen& s) { UnloadScreen(s); };
  Keep({&one});
  ShowScreen(one);
  EXPECT_EQ(Told(), (Journal{"load one", "unload one"}));
  EXPECT_FALSE(one.loaded);
  EXPECT_EQ(ActiveScreen(), nullptr);
}

TEST_F(ScreensTest, ScreenUnloadedByItsShownRoutineIsGone) {
  one.on.shown = [](Screen& s) { UnloadScreen(s); };
  ShowScreen(one);
  EXPECT_FALSE(one.loaded);
  EXPECT_EQ(ActiveScreen(), nullptr);
}

// ---- failures -----------------------------------------------------------------------------------

TEST_F(ScreensTest, FailureOfARoutineIsShownAndGoesNoFurther) {
  one.on.click = [](Screen&, Control&) { RaiseFailure(FailureOverflow); };
  ShowScreen(one);
  ClickOn(one, "Command1");
  ShownBox box = TakeBox();
  EXPECT_EQ(box.title, "Error");
  EXPECT_EQ(box.text, "Error # 6 was generated by Halvane2\rOverflow\n\r");
  TypeText(" ");
  TakeBox();
  EXPECT_TRUE(one.loaded);
}

TEST_F(ScreensTest, ExceptionOfTheStandardLibraryEndsNothing) {
  one.on.click = [](Screen&, Control&) { throw std::out_of_range("no such place"); };
  ShowScreen(one);
  ClickOn(one, "Command1");
  ShownBox box = TakeBox();
  EXPECT_EQ(box.title, "Error");
  EXPECT_EQ(box.text, "Error # 51 was generated by Halvane2\rno such place\n\r");
  EXPECT_TRUE(one.loaded);
}

TEST_F(ScreensTest, ControlThatDoesNotExistIsToldWithItsName) {
  one.on.click = [](Screen& s, Control&) { SetText(At(s, "Text9"), "1"); };
  ShowScreen(one);
  ClickOn(one, "Command1");
  EXPECT_EQ(TakeBox().text,
            "Error # 51 was generated by Halvane2\rScreen one has no control Text9.\n\r");
}

TEST_F(ScreensTest, CancelOfARoutineIsSilent) {
  one.on.click = [](Screen&, Control&) { RaiseFailure(FailureCancel); };
  ShowScreen(one);
  ClickOn(one, "Command1");
  EXPECT_FALSE(AnyBoxShown());
}

TEST_F(ScreensTest, FailureInTheLoadRoutineStillShowsTheScreen) {
  one.on.load = [](Screen&) { RaiseFailure(FailureSubscript); };
  ShowScreen(one);
  EXPECT_EQ(TakeBox().text, "Error # 9 was generated by Halvane2\rSubscript out of range\n\r");
  EXPECT_EQ(Active(), "one");
}

// ---- by name ------------------------------------------------------------------------------------

TEST_F(ScreensTest, ScreensOpenByTheirName) {
  RegisterScreen("one", [&] { ShowScreen(one); });
  EXPECT_TRUE(ScreenRegistered("one"));
  EXPECT_FALSE(ScreenRegistered("two"));
  EXPECT_TRUE(OpenScreen("one"));
  EXPECT_EQ(Active(), "one");
  EXPECT_FALSE(OpenScreen("two"));
  EXPECT_EQ(Active(), "one");
}

}  // namespace
