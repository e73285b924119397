// Text fields: what typing does, and who is told of it.
#include "platform/contract.h"

namespace {

class FieldsTest : public ContractTest {
 protected:
  void Show(const std::string& text = {}) {
    KeepJournal(screen, journal);
    ShowScreen(screen);
    SetText(Field(), text);
    Told();
  }
  Control& Field() { return At(screen, "Text1"); }
  std::string Shown() { return ShownText(screen, "Text1"); }
  void Press(std::initializer_list<const char*> keys) {
    for (const char* key : keys) PressKey(key);
  }

  Screen screen{.name = "frmField", .build = [](Screen& s) { Add(s, TextField("Text1")); }};
};

TEST_F(FieldsTest, TypingInsertsAtTheCursor) {
  Show("15");
  Press({"Right", "2", "."});
  EXPECT_EQ(Shown(), "12.5");
  EXPECT_EQ(Field().text, "12.5");
}

TEST_F(FieldsTest, TypingReplacesTheSelection) {
  Show("12.5");
  SelectText(Field(), 0, 4);
  TypeText("7");
  EXPECT_EQ(Shown(), "7");
  TypeText("8");
  EXPECT_EQ(Shown(), "78");
}

TEST_F(FieldsTest, BackspaceAndDeleteRemoveOneCharacterOnTheirSide) {
  Show("1234");
  Press({"Right", "Right", "Backspace"});
  EXPECT_EQ(Shown(), "134");
  PressKey("Delete");
  EXPECT_EQ(Shown(), "14");
}

TEST_F(FieldsTest, BackspaceAndDeleteAtTheEndsChangeNothing) {
  Show("12");
  PressKey("Backspace");
  Press({"End", "Delete"});
  EXPECT_EQ(Shown(), "12");
  for (const std::string& line : Told()) EXPECT_FALSE(line.starts_with("change")) << line;
}

TEST_F(FieldsTest, BackspaceAndDeleteRemoveTheSelection) {
  Show("1234");
  SelectText(Field(), 1, 2);
  PressKey("Backspace");
  EXPECT_EQ(Shown(), "14");
  SelectText(Field(), 0, 1);
  PressKey("Delete");
  EXPECT_EQ(Shown(), "4");
}

TEST_F(FieldsTest, HomeAndEndMoveToTheEnds) {
  Show("12");
  Press({"End", "3", "Home", "0"});
  EXPECT_EQ(Shown(), "0123");
}

TEST_F(FieldsTest, ShiftExtendsTheSelection) {
  Show("1234");
  Press({"Right", "Shift+End"});
  EXPECT_EQ(Field().selStart, 1);
  EXPECT_EQ(Field().selLength, 3);
  PressKey("9");
  EXPECT_EQ(Shown(), "19");
}

TEST_F(FieldsTest, ShiftHomeSelectsBackwards) {
  Show("1234");
  Press({"End", "Left", "Shift+Home"});
  EXPECT_EQ(Field().selStart, 0);
  EXPECT_EQ(Field().selLength, 3);
  Press({"Shift+Right", "9"});
  EXPECT_EQ(Shown(), "194");
}

TEST_F(FieldsTest, ArrowAtASelectionGoesToItsEnd) {
  Show("1234");
  SelectText(Field(), 1, 2);
  Press({"Left", "x"});
  EXPECT_EQ(Shown(), "1x234");
  SelectText(Field(), 1, 2);
  Press({"Right", "y"});
  EXPECT_EQ(Shown(), "1x2y34");
}

TEST_F(FieldsTest, CtrlArrowsGoByWords) {
  Show("ab cd");
  Press({"Ctrl+Right", "x"});
  EXPECT_EQ(Shown(), "ab xcd");
  Press({"End", "Ctrl+Left", "y"});
  EXPECT_EQ(Shown(), "ab yxcd");
}

TEST_F(FieldsTest, CursorKeysChangeNoText) {
  Show("12");
  Press({"Left", "Right", "Home", "End", "Up", "Down", "Shift+Left"});
  EXPECT_EQ(Shown(), "12");
  for (const std::string& line : Told()) EXPECT_FALSE(line.starts_with("change")) << line;
}

TEST_F(FieldsTest, ReadOnlyFieldKeepsItsText) {
  Show("12");
  SetReadOnly(Field(), true);
  Press({"7", "Delete", "Backspace"});
  EXPECT_EQ(Shown(), "12");
  for (const std::string& line : Told()) EXPECT_FALSE(line.starts_with("change")) << line;
}

TEST_F(FieldsTest, EveryTypedCharacterIsAChange) {
  Show();
  Press({"1", "2", "Backspace"});
  Journal changes;
  for (const std::string& line : Told())
    if (line.starts_with("change")) changes.push_back(line);
  EXPECT_EQ(changes, (Journal{"change Text1 1", "change Text1 12", "change Text1 1"}));
}

// ---- text set by the program --------------------------------------------------------------------

TEST_F(FieldsTest, TextSetByTheProgramIsAChangeWhenItDiffers) {
  Show();
  SetText(Field(), "12");
  EXPECT_EQ(Told(), (Journal{"change Text1 12"}));
  EXPECT_EQ(Shown(), "12");
  SetText(Field(), "12");
  EXPECT_EQ(Told(), Journal{});
}

TEST_F(FieldsTest, TextSetByTheProgramPutsTheCursorInFront) {
  Show("99");
  PressKey("End");
  SetText(Field(), "12");
  TypeText("7");
  EXPECT_EQ(Shown(), "712");
}

TEST_F(FieldsTest, TextSetBeforeTheScreenIsShownIsShown) {
  screen.on.load = [](Screen& s) { SetText(At(s, "Text1"), "12"); };
  ShowScreen(screen);
  EXPECT_EQ(Shown(), "12");
}

TEST_F(FieldsTest, RecordFilledInByTheLoadRoutineIsShown) {
  screen.on.load = [](Screen& s) { At(s, "Text1").text = "12"; };
  ShowScreen(screen);
  EXPECT_EQ(Shown(), "12");
}

TEST_F(FieldsTest, ChangeRoutineMayCorrectTheText) {
  screen.on.change = [](Screen&, Control& control) {
    if (control.text == "12") SetText(control, "99");
  };
  Show();
  TypeText("12");
  EXPECT_EQ(Shown(), "99");
  EXPECT_EQ(Field().text, "99");
  TypeText("1");
  EXPECT_EQ(Shown(), "199") << "the cursor stands in front of the corrected text";
}

TEST_F(FieldsTest, KeyPressRoutineMaySetTheTextAndDropTheCharacter) {
  screen.on.keyPress = [](Screen&, Control& control, KeyPress& press) {
    if (press.character != 13) return;
    SetText(control, "12.50");
    SelectText(control, 0, 5);
    press.character = 0;
  };
  Show("12.5");
  PressKey("Enter");
  EXPECT_EQ(Shown(), "12.50");
  TypeText("7");
  EXPECT_EQ(Shown(), "7");
}

TEST_F(FieldsTest, SelectionIsKeptInsideTheText) {
  Show("123");
  SelectText(Field(), 2, 9);
  EXPECT_EQ(Field().selLength, 1);
  SelectText(Field(), 9, 9);
  EXPECT_EQ(Field().selStart, 3);
  EXPECT_EQ(Field().selLength, 0);
  SelectText(Field(), -4, 2);
  TypeText("x");
  EXPECT_EQ(Shown(), "x3");
}

TEST_F(FieldsTest, FieldThatIsDisabledWhileItIsTypedInTakesNoMore) {
  screen.on.change = [](Screen&, Control& control) { SetEnabled(control, false); };
  Show();
  TypeText("12");
  EXPECT_EQ(Shown(), "1");
}

TEST_F(FieldsTest, ScreenUnloadedByItsChangeRoutineIsGoneAfterTheKey) {
  screen.on.change = [](Screen& s, Control& control) {
    if (!control.text.empty()) UnloadScreen(s);
  };
  Show();
  TypeText("1");
  EXPECT_FALSE(screen.loaded);
  EXPECT_EQ(ActiveScreen(), nullptr);
}

// ---- text area ----------------------------------------------------------------------------------

class TextAreaTest : public FieldsTest {
 protected:
  TextAreaTest() {
    screen.build = [](Screen& s) {
      Add(s, {.name = "Text1", .kind = ControlKind::TextArea, .heightLines = 5});
    };
  }
};

TEST_F(TextAreaTest, EnterBeginsANewLine) {
  Show();
  Press({"a", "Enter", "b"});
  EXPECT_EQ(Shown(), "a\nb");
  EXPECT_EQ(Field().text, "a\nb");
}

TEST_F(TextAreaTest, EnterThatIsDroppedBeginsNone) {
  screen.on.keyPress = [](Screen&, Control&, KeyPress& press) {
    if (press.character == 13) press.character = 0;
  };
  Show();
  Press({"a", "Enter", "b"});
  EXPECT_EQ(Shown(), "ab");
}

TEST_F(TextAreaTest, HomeAndEndStayInTheirLine) {
  Show("ab\ncd");
  Press({"Down", "End", "x", "Home", "y", "Up", "End", "z"});
  EXPECT_EQ(Shown(), "abz\nycdx");
}

TEST_F(TextAreaTest, TabLeavesIt) {
  screen.build = [build = screen.build](Screen& s) {
    build(s);
    Add(s, Button("Command1", "Go"));
  };
  Show("ab");
  PressKey("Tab");
  EXPECT_EQ(ShownFocus(), "Command1");
  EXPECT_EQ(Shown(), "ab");
}

}  // namespace
