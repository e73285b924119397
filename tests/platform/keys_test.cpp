// The way of a key: accelerators, the screen, the control, the key-press, the field.
#include <algorithm>
#include <utility>

#include "platform/contract.h"

namespace {

class KeysTest : public ContractTest {
 protected:
  void Show() {
    KeepJournal(screen, journal);
    ShowScreen(screen);
    Told();
  }
  bool WasTold(const std::string& line) const {
    return std::find(journal.begin(), journal.end(), line) != journal.end();
  }

  Screen screen{.name = "frmKeys", .build = [](Screen& s) {
                  Add(s, {.name = "Label2", .caption = "&Offset =", .labelFor = "Text2"});
                  Add(s, TextField("Text1"));
                  Add(s, TextField("Text2"));
                  Add(s, Button("Command1", "&Go"));
                  Add(s, Button("Back", "<< &Back"));
                }};
};

// ---- the order ----------------------------------------------------------------------------------

TEST_F(KeysTest, CharacterIsToldToScreenThenControlThenPressedThenChanges) {
  Show();
  PressKey("7");
  EXPECT_EQ(Told(),
            (Journal{"down 55", "down Text1 55", "press Text1 55", "change Text1 7", "up 55"}));
}

TEST_F(KeysTest, KeyTakenByTheScreenGoesNoFurther) {
  screen.on.keyDown = [](Screen&, KeyEvent& event) { event.handled = true; };
  Show();
  PressKey("7");
  PressKey("Tab");
  EXPECT_EQ(Told(), (Journal{"down 55", "up 55", "down 9", "up 9"}));
  EXPECT_EQ(At(screen, "Text1").text, "");
  EXPECT_EQ(ShownFocus(), "Text1");
}

TEST_F(KeysTest, KeyTakenByTheControlsRoutineGoesNoFurther) {
  screen.on.controlKeyDown = [](Screen&, Control&, KeyEvent& event) { event.handled = true; };
  Show();
  PressKey("7");
  EXPECT_EQ(Told(), (Journal{"down 55", "down Text1 55", "up 55"}));
}

TEST_F(KeysTest, DroppedCharacterIsNotTyped) {
  screen.on.keyPress = [](Screen&, Control&, KeyPress& press) { press.character = 0; };
  Show();
  PressKey("7");
  EXPECT_EQ(ShownText(screen, "Text1"), "");
  EXPECT_FALSE(WasTold("change Text1 7"));
}

TEST_F(KeysTest, ChangedCharacterIsTypedInstead) {
  screen.on.keyPress = [](Screen&, Control&, KeyPress& press) {
    if (press.character == ',') press.character = '.';
  };
  Show();
  TypeText("1,5");
  EXPECT_EQ(ShownText(screen, "Text1"), "1.5");
}

TEST_F(KeysTest, KeysWithoutACharacterAreNotPressed) {
  Show();
  for (const char* key : {"Left", "Home", "Delete", "F5", "Insert", "PageUp", "Shift", "Ctrl"})
    PressKey(key);
  for (const std::string& line : journal) EXPECT_FALSE(line.starts_with("press")) << line;
  EXPECT_TRUE(WasTold("down 305"));
}

TEST_F(KeysTest, CapitalAndSmallLetterAreOneKeyAndTwoCharacters) {
  Show();
  TypeText("aA");
  EXPECT_TRUE(WasTold("press Text1 97"));
  EXPECT_TRUE(WasTold("press Text1 65"));
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "down 65"), 2);
}

TEST_F(KeysTest, KeypadIsToldApart) {
  std::vector<bool> keypad;
  screen.on.keyDown = [&](Screen&, KeyEvent& event) {
    EXPECT_EQ(event.key, '+');
    keypad.push_back(event.keypad);
  };
  Show();
  PressKey("Plus");
  PressKey("KeypadPlus");
  EXPECT_EQ(keypad, (std::vector<bool>{false, true}));
  EXPECT_EQ(At(screen, "Text1").text, "++");
}

TEST_F(KeysTest, ControlAloneIsAKeyOfItsOwn) {
  Show();
  PressKey("Ctrl");
  EXPECT_EQ(journal.front().substr(journal.front().size() - 3), std::to_string(KeyControl));
}

// ---- hot keys -----------------------------------------------------------------------------------

TEST_F(KeysTest, NoCtrlLetterIsSwallowedByATextField) {
  Show();
  SetText(At(screen, "Text1"), "12.5");
  SelectText(At(screen, "Text1"), 0, 4);
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    Told();
    PressKey(std::string("Ctrl+") + letter);
    std::string key = "+" + std::to_string(letter);
    EXPECT_EQ(Told(), (Journal{"down " + key, "down Text1 " + key, "up " + key})) << letter;
    EXPECT_EQ(ShownText(screen, "Text1"), "12.5") << letter;
  }
  TypeText("3");
  EXPECT_EQ(ShownText(screen, "Text1"), "3") << "the selection has stayed";
}

TEST_F(KeysTest, CopyAndPasteWorkInATextAreaThatTheScreenLeavesThem) {
  screen.build = [](Screen& s) {
    Add(s, {.name = "Memo", .kind = ControlKind::TextArea, .heightLines = 4});
  };
  Show();
  SetText(At(screen, "Memo"), "abc");
  PressKey("Ctrl+A");
  PressKey("Ctrl+C");
  PressKey("Right");
  PressKey("Ctrl+V");
  EXPECT_EQ(ShownText(screen, "Memo"), "abcabc");
}

TEST_F(KeysTest, HotKeyThatUnloadsItsScreenEndsThere) {
  screen.on.keyDown = [](Screen& s, KeyEvent& event) {
    if (event.ctrl && event.key == 'E') UnloadScreen(s);
  };
  Show();
  PressKey("Ctrl+E");
  EXPECT_FALSE(screen.loaded);
  EXPECT_TRUE(WasTold("unload frmKeys"));
  EXPECT_FALSE(WasTold("down Text1 +69"));
}

TEST_F(KeysTest, KeyThatLoadsItsScreenAnewDoesNotReachTheNewLife) {
  bool done = false;
  screen.on.keyDown = [&](Screen& s, KeyEvent&) {
    if (std::exchange(done, true)) return;
    UnloadScreen(s);
    ShowScreen(s);
  };
  Show();
  PressKey("7");
  EXPECT_FALSE(WasTold("down Text1 55"));
  EXPECT_EQ(ShownText(screen, "Text1"), "");
  PressKey("8");
  EXPECT_EQ(ShownText(screen, "Text1"), "8");
}

// ---- Alt and a letter ---------------------------------------------------------------------------

TEST_F(KeysTest, AltLetterOfALabelFocusesItsField) {
  Show();
  PressKey("Alt+O");
  EXPECT_EQ(ShownFocus(), "Text2");
  EXPECT_FALSE(WasTold("down alt+79")) << "the screen's routine sees no accelerator";
}

TEST_F(KeysTest, AltLetterOfTheFocusedFieldSelectsItsTextForTypingOver) {
  Show();
  PressKey("Alt+O");
  TypeText("1.5");
  Told();
  PressKey("Alt+O");
  EXPECT_FALSE(WasTold("got Text2")) << "the focus did not move";
  EXPECT_EQ(At(screen, "Text2").selStart, 0);
  EXPECT_EQ(At(screen, "Text2").selLength, 3);
  EXPECT_EQ(ShownText(screen, "Text2"), "1.5");
  TypeText("0.75");
  EXPECT_EQ(ShownText(screen, "Text2"), "0.75");
}

TEST_F(KeysTest, AltLetterOfTheFocusedMemoLeavesItsCaret) {
  screen.build = [](Screen& s) {
    Add(s, {.name = "Label1", .caption = "&Memo", .labelFor = "Memo"});
    Add(s, {.name = "Memo", .kind = ControlKind::TextArea});
  };
  Show();
  PressKey("Alt+M");
  TypeText("one");
  PressKey("Alt+M");
  TypeText(" two");
  EXPECT_EQ(ShownText(screen, "Memo"), "one two");
}

TEST_F(KeysTest, AltLetterOfAButtonClicksIt) {
  Show();
  PressKey("Alt+G");
  EXPECT_TRUE(WasTold("click Command1"));
  EXPECT_EQ(ShownFocus(), "Command1");
}

TEST_F(KeysTest, AltLetterThatIsHeldDownClicksNothingMore) {
  screen.build = [](Screen& s) {
    Add(s, TextField("Text1"));
    Add(s, Button("Command1", "&Go"));
    Add(s, {.name = "Check1", .kind = ControlKind::CheckBox, .caption = "&Show tips"});
  };
  Show();
  RepeatKey("Alt+G");
  RepeatKey("Alt+S");
  EXPECT_FALSE(WasTold("click Command1"));
  EXPECT_FALSE(WasTold("click Check1"));
  EXPECT_FALSE(At(screen, "Check1").checked);
  EXPECT_EQ(ShownFocus(), "Text1");
  PressKey("Alt+G");
  EXPECT_TRUE(WasTold("click Command1"));
}

TEST_F(KeysTest, AltLetterOfACheckBoxTogglesIt) {
  screen.build = [](Screen& s) {
    Add(s, {.name = "Check1", .kind = ControlKind::CheckBox, .caption = "&Show tips"});
  };
  Show();
  PressKey("Alt+S");
  EXPECT_TRUE(At(screen, "Check1").checked);
  PressKey("Alt+S");
  EXPECT_FALSE(At(screen, "Check1").checked);
}

TEST_F(KeysTest, AltLetterOfAHiddenOrDisabledControlDoesNothing) {
  Show();
  SetEnabled(At(screen, "Command1"), false);
  SetVisible(At(screen, "Label2"), false);
  PressKey("Alt+G");
  PressKey("Alt+O");
  EXPECT_FALSE(WasTold("click Command1"));
  EXPECT_EQ(ShownFocus(), "Text1");
}

TEST_F(KeysTest, AltLetterOfALabelWithADisabledFieldDoesNothing) {
  Show();
  SetEnabled(At(screen, "Text2"), false);
  PressKey("Alt+O");
  EXPECT_EQ(ShownFocus(), "Text1");
}

TEST_F(KeysTest, DoubledAmpersandIsNoAccelerator) {
  screen.build = [](Screen& s) {
    Add(s, TextField("Text1"));
    Add(s, Button("Command1", "Fuel && Ai&r"));
  };
  Show();
  EXPECT_EQ(ShownText(screen, "Command1"), "Fuel & Air");
  PressKey("Alt+F");
  PressKey("Alt+A");
  EXPECT_FALSE(WasTold("click Command1"));
  PressKey("Alt+R");
  EXPECT_TRUE(WasTold("click Command1"));
}

TEST_F(KeysTest, ScreenComesBeforeTheMenuBar) {
  int chosen = 0;
  frame.menus = {{.name = "mnuGo",
                  .caption = "&Go",
                  .items = {{.name = "mnuGoOn", .caption = "&On", .click = [&] { ++chosen; }}}}};
  ShowFrame(frame);
  Show();
  PressKey("Alt+G");
  EXPECT_TRUE(WasTold("click Command1"));
  TypeText("o");
  EXPECT_EQ(chosen, 0) << "the menu had opened too";
}

TEST_F(KeysTest, AltLetterThatNobodyHasReachesTheScreensRoutine) {
  Show();
  PressKey("Alt+Q");
  EXPECT_TRUE(WasTold("down alt+81"));
  EXPECT_EQ(ShownText(screen, "Text1"), "");
}

TEST_F(KeysTest, AltLetterWhoseFocusIsRefusedDoesNotClick) {
  screen.on.gotFocus = [](Screen& s, Control& control) {
    if (control.name != "Text1") SetFocus(At(s, "Text1"));
  };
  Show();
  PressKey("Alt+G");
  EXPECT_FALSE(WasTold("click Command1"));
  EXPECT_EQ(ShownFocus(), "Text1");
}

TEST_F(KeysTest, AltLetterPassesADisabledControlForTheNextOfTheSameLetter) {
  screen.build = [](Screen& s) {
    Add(s, Button("First", "&Go")).enabled = false;
    Add(s, Button("Second", "&Get"));
  };
  Show();
  PressKey("Alt+G");
  EXPECT_TRUE(WasTold("click Second"));
}

// ---- Enter and Esc ------------------------------------------------------------------------------

TEST_F(KeysTest, EnterInAFieldIsPressedAndClicksNoButton) {
  Show();
  PressKey("Enter");
  EXPECT_EQ(Told(), (Journal{"down 13", "down Text1 13", "press Text1 13", "up 13"}));
}

TEST_F(KeysTest, EnterInAFieldOfADialogClicksNoButton) {
  screen.placement = ScreenPlacement::Dialog;
  Show();
  PressKey("Enter");
  EXPECT_FALSE(WasTold("click Command1"));
  EXPECT_FALSE(WasTold("click Back"));
}

TEST_F(KeysTest, EnterOnAButtonClicksIt) {
  Show();
  SetFocus(At(screen, "Command1"));
  Told();
  PressKey("Enter");
  EXPECT_EQ(Told(), (Journal{"down 13", "down Command1 13", "press Command1 13", "click Command1",
                             "up 13"}));
}

// The button has got the focus by the Enter that is still held down.
TEST_F(KeysTest, KeyThatIsHeldDownOperatesNoButton) {
  Show();
  SetFocus(At(screen, "Command1"));
  Told();
  RepeatKey("Enter");
  EXPECT_TRUE(WasTold("down 13"));
  RepeatKey("Space");
  EXPECT_FALSE(WasTold("click Command1"));
  PressKey("Enter");
  EXPECT_TRUE(WasTold("click Command1"));
}

TEST_F(KeysTest, EnterThatTheKeyPressDropsClicksNothing) {
  screen.on.keyPress = [](Screen&, Control&, KeyPress& press) { press.character = 0; };
  Show();
  SetFocus(At(screen, "Command1"));
  PressKey("Enter");
  PressKey("Space");
  EXPECT_FALSE(WasTold("click Command1"));
}

TEST_F(KeysTest, EscClicksTheCancelButton) {
  screen.cancelButton = "Back";
  Show();
  PressKey("Esc");
  EXPECT_TRUE(WasTold("click Back"));
  EXPECT_FALSE(WasTold("press Text1 27"));
}

TEST_F(KeysTest, EscThatIsHeldDownLeavesNothingMore) {
  screen.cancelButton = "Back";
  Show();
  RepeatKey("Esc");
  EXPECT_TRUE(WasTold("down 27"));
  EXPECT_FALSE(WasTold("click Back"));
  EXPECT_FALSE(WasTold("press Text1 27"));
  PressKey("Esc");
  EXPECT_TRUE(WasTold("click Back"));
}

TEST_F(KeysTest, EscThatIsHeldDownIsPressedOnceInAField) {
  Show();
  PressKey("Esc");
  RepeatKey("Esc");
  RepeatKey("Esc");
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "press Text1 27"), 1);
}

TEST_F(KeysTest, EscTakenByTheScreenDoesNotCancel) {
  screen.cancelButton = "Back";
  screen.on.keyDown = [](Screen&, KeyEvent& event) { event.handled = event.key == KeyEscape; };
  Show();
  PressKey("Esc");
  EXPECT_FALSE(WasTold("click Back"));
}

TEST_F(KeysTest, EscWithoutAUsableCancelButtonIsPressed) {
  screen.cancelButton = "Back";
  Show();
  SetEnabled(At(screen, "Back"), false);
  PressKey("Esc");
  EXPECT_TRUE(WasTold("press Text1 27"));
  EXPECT_FALSE(WasTold("click Back"));
}

TEST_F(KeysTest, EscDoesNotCloseADialogByItself) {
  screen.placement = ScreenPlacement::Dialog;
  Show();
  PressKey("Esc");
  EXPECT_TRUE(screen.loaded);
  EXPECT_TRUE(ShownVisible(screen, "Text1"));
  EXPECT_TRUE(WasTold("press Text1 27"));
}

TEST_F(KeysTest, BackspaceIsPressedAndCanBeDropped) {
  screen.on.keyPress = [](Screen&, Control&, KeyPress& press) {
    if (press.character == 8) press.character = 0;
  };
  Show();
  TypeText("12");
  PressKey("Backspace");
  EXPECT_TRUE(WasTold("press Text1 8"));
  EXPECT_EQ(ShownText(screen, "Text1"), "12");
}

TEST_F(KeysTest, ArrowsAndTypedKeysThatAreHeldDownGoOn) {
  Show();
  RepeatKey("7");
  RepeatKey("7");
  RepeatKey("Backspace");
  EXPECT_EQ(ShownText(screen, "Text1"), "7");
  SetFocus(At(screen, "Command1"));
  RepeatKey("Down");
  EXPECT_EQ(ShownFocus(), "Back");
  RepeatKey("Up");
  EXPECT_EQ(ShownFocus(), "Command1");
}

// ---- keys that operate a control ----------------------------------------------------------------

TEST_F(KeysTest, SpaceClicksTheFocusedButtonOnce) {
  Show();
  SetFocus(At(screen, "Command1"));
  PressKey("Space");
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "click Command1"), 1);
}

TEST_F(KeysTest, ArrowsMoveBetweenButtons) {
  Show();
  SetFocus(At(screen, "Command1"));
  PressKey("Down");
  EXPECT_EQ(ShownFocus(), "Back");
  PressKey("Left");
  EXPECT_EQ(ShownFocus(), "Command1");
}

class RadioKeysTest : public KeysTest {
 protected:
  RadioKeysTest() {
    screen.build = [](Screen& s) {
      Add(s, {.name = "Group1", .kind = ControlKind::Group});
      Add(s, {.name = "Group2", .kind = ControlKind::Group});
      Add(s, Radio("Option1", "one", "Group1")).checked = true;
      Add(s, Radio("Option2", "two", "Group1")).enabled = false;
      Add(s, Radio("Other", "other", "Group2")).checked = true;
      Add(s, Radio("Option3", "three", "Group1"));
    };
  }
};

TEST_F(RadioKeysTest, ArrowChoosesTheNextUsableButtonOfTheGroup) {
  Show();
  PressKey("Down");
  EXPECT_EQ(Told(), (Journal{"down 259", "down Option1 259", "lost Option1", "got Option3",
                             "click Option3", "up 259"}));
  EXPECT_TRUE(At(screen, "Option3").checked);
  EXPECT_FALSE(At(screen, "Option1").checked);
  EXPECT_TRUE(At(screen, "Other").checked);
}

TEST_F(RadioKeysTest, ArrowsWrapAtBothEnds) {
  Show();
  PressKey("Up");
  EXPECT_EQ(ShownFocus(), "Option3");
  PressKey("Right");
  EXPECT_EQ(ShownFocus(), "Option1");
}

TEST_F(RadioKeysTest, ArrowTakenByTheScreenChoosesNothing) {
  screen.on.keyDown = [](Screen&, KeyEvent& event) { event.handled = true; };
  Show();
  PressKey("Down");
  EXPECT_TRUE(At(screen, "Option1").checked);
}

// ---- keys of no screen --------------------------------------------------------------------------

TEST_F(KeysTest, KeysWithoutAScreenGoToTheFrame) {
  Journal keys;
  frame.keyDown = [&](KeyEvent& event) { keys.push_back(std::to_string(event.key)); };
  PressKey("Ctrl+S");
  EXPECT_EQ(keys, (Journal{"83"}));
  Show();
  PressKey("Ctrl+S");
  EXPECT_EQ(keys.size(), 1u) << "the screen has the keys now";
  UnloadScreen(screen);
  PressKey("Ctrl+S");
  EXPECT_EQ(keys.size(), 2u);
}

TEST_F(KeysTest, AcceleratorsAndPlainCaptions) {
  EXPECT_EQ(AcceleratorOf("Time &on"), 'O');
  EXPECT_EQ(AcceleratorOf("A && &b"), 'B');
  EXPECT_EQ(AcceleratorOf("&&"), 0);
  EXPECT_EQ(AcceleratorOf("end &"), 0);
  EXPECT_EQ(AcceleratorOf(""), 0);
  EXPECT_EQ(PlainCaption("Time &On"), "Time On");
  EXPECT_EQ(PlainCaption("A && B"), "A & B");
  EXPECT_EQ(PlainCaption("end &"), "end &");
}

}  // namespace
