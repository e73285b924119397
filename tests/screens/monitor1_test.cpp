// The analog monitor as its user meets it, by keys and clicks, on both platforms; without a unit.
#include "monitors/monitor1.h"

#include <set>

#include "monitors/monitor1entry.h"
#include "screens/monitorscreens.h"

namespace {

class Monitor1Screen : public MonitorScreenTest {
 protected:
  void SetUp() override {
    MonitorScreenTest::SetUp();
    Start();
  }
  // As a session shows it with its first frame.
  void Show() {
    ShowScreen(Monitor1);
    BeginOffsets(Monitor1);
    DecodeFrame(LiveFrame{}, FrameReader::Monitor);
    RunPending();
  }
  static std::string Shown(std::string_view control) { return ShownText(Monitor1, control); }
  static std::multiset<std::string> DrawnTexts() {
    std::multiset<std::string> texts;
    for (const Primitive& primitive : At(Monitor1, "Dials").drawing.primitives)
      if (primitive.kind == PrimitiveKind::Text) texts.insert(primitive.text);
    return texts;
  }
  static void ExpectEditing(const std::string& field) {
    EXPECT_EQ(ShownFocus(), field);
    EXPECT_TRUE(FieldEditing) << field;
    EXPECT_EQ(Shown("EntryStatus"), "SUSPENDED") << field;
    EXPECT_NE(At(Monitor1, field + "Label").backColour, Monitor1.backColour) << field;
  }
  static void ExpectAtRest() {
    EXPECT_EQ(ShownFocus(), "Command1");
    EXPECT_FALSE(FieldEditing);
    EXPECT_EQ(Shown("EntryStatus"), "ACTIVE");
    for (int number = 3; number <= 9; ++number)
      EXPECT_EQ(At(Monitor1, "Text" + std::to_string(number) + "Label").backColour,
                Monitor1.backColour)
          << number;
  }
};

struct Field {
  const char* key;
  const char* control;
  const char* label;
};
constexpr Field fields[] = {
    {"Alt+3", "Text3", "3. ADD FIXED ADV/RTD (-10 to 10 Deg) ="},
    {"Alt+4", "Text4", "4. ADD GAMA OFFSET(-40% to 40% Gama) ="},
    {"Alt+5", "Text5", "5. CHANGE TOG ( 3 to 30 ms) ="},
    {"Alt+6", "Text6", "6. CHANGE INJ. OFFSET ( -15.875 to 15.875 ms) ="},
    {"Alt+7", "Text7", "7. CHANGE TPS BLEND OFFSET (0 to 1.5 Volts) ="},
    {"Alt+8", "Text8", "8. CHANGE GPO OFFSET ( -30% to +30%) ="},
    {"Alt+9", "Text9", "9. CHANGE AFR OFFSET (UP/ DOWN Arrow Keys) ="},
};

}  // namespace

// ---- what stands there --------------------------------------------------------------------------

TEST_F(Monitor1Screen, FiguresHaveCaptionAndUnitAndNoValueBeforeAFrame) {
  Show();
  for (const LiveFigure& figure : Monitor1Figures()) {
    EXPECT_EQ(ShownText(Monitor1, CaptionLabel(figure)), figure.caption);
    EXPECT_EQ(ShownText(Monitor1, UnitLabel(figure)), FigureUnit(figure));
    EXPECT_EQ(ShownText(Monitor1, figure.control), "");
    EXPECT_TRUE(ShownVisible(Monitor1, figure.control));
  }
}

TEST_F(Monitor1Screen, TextsStandAsGiven) {
  Show();
  EXPECT_EQ(Monitor1.title, "ENGINE MONITOR");
  EXPECT_EQ(Shown("BinCaption"), "Loaded ZEM \"BIN\" File");
  EXPECT_EQ(Shown("PromCaption"), "Halvane Prom Version");
  EXPECT_EQ(Shown("NoBin"), "NO BIN FILE OPEN");
  EXPECT_EQ(Shown("Sensors"), "Sensors Status");
  EXPECT_EQ(Shown("FailedTitle"), "FAILED");
  EXPECT_EQ(Shown("DisabledTitle"), "DISABLED");
  EXPECT_EQ(Shown("IntermitTitle"), "INTERMIT");
  EXPECT_EQ(Shown("OverRev"), "OverRev");
  EXPECT_EQ(Shown("SensorFailed"), "Sensor Failed");
  EXPECT_EQ(Shown("IntermittentFail"), "Intermittent Fail");
  EXPECT_EQ(Shown("EnterLine"), "Must Press Enter to Change Values");
  EXPECT_EQ(Shown("EntryStatus"), "ACTIVE");
  EXPECT_EQ(Shown("Command1"), "<< BACK");
  EXPECT_EQ(Shown("Option1"), "1. SET ADVANCE TO ZERO");
  EXPECT_EQ(Shown("Option2"), "2. CLEAR ZERO ADVANCE");
  for (const Field& field : fields)
    EXPECT_EQ(Shown(std::string(field.control) + "Label"), field.label);
}

TEST_F(Monitor1Screen, DialsAreDrawnInTheSizeThatTheyHave) {
  Show();
  const Control& dials = At(Monitor1, "Dials");
  ASSERT_GT(dials.canvasWidth, 0);
  ASSERT_GT(dials.canvasHeight, 0);
  const auto texts = DrawnTexts();
  for (const char* text : {" ERPM   X1000", "CLT \u00B0C", "MAT \u00B0C", "TPS V", "MAP  kPa",
                           "LEAN", "RICH", "INJECTOR DUTY CYCLE"})
    EXPECT_EQ(texts.count(text), 1u) << text;
  for (const Primitive& primitive : dials.drawing.primitives)
    for (const Point& point : primitive.points) {
      EXPECT_LE(point.x, dials.canvasWidth);
      EXPECT_LE(point.y, dials.canvasHeight);
    }
}

// ---- letters ------------------------------------------------------------------------------------

TEST_F(Monitor1Screen, LettersToggleInUpperAndLowerCase) {
  Show();
  TypeText("t");
  EXPECT_TRUE(ImperialUnits);
  EXPECT_TRUE(DrawnTexts().contains("CLT \u00B0F"));
  EXPECT_TRUE(DrawnTexts().contains("MAP  IN-Hg"));
  TypeText("T");
  EXPECT_FALSE(ImperialUnits);
  EXPECT_TRUE(DrawnTexts().contains("CLT \u00B0C"));
  ExpectLettersToggle();
  ExpectAtRest();
}

TEST_F(Monitor1Screen, LettersActDuringAnEntryAndAreNotTyped) {
  Show();
  PressKey("Alt+3");
  TypeText("t5x");
  EXPECT_TRUE(ImperialUnits);
  EXPECT_EQ(Shown("Text3"), "5");
  ExpectEditing("Text3");
}

TEST_F(Monitor1Screen, KeysWithCtrlAreNoLettersOfTheMonitor) {
  Show();
  KillFirst = true;
  PressKey("Ctrl+K");
  PressKey("Ctrl+T");
  EXPECT_TRUE(KillFirst);
  EXPECT_FALSE(ImperialUnits);
  KillFirst = false;
}

// ---- the help panel -----------------------------------------------------------------------------

TEST_F(Monitor1Screen, F1OpensThePanelAndEscOrItsButtonClosesIt) {
  Show();
  for (auto close : {+[] { PressKey("Esc"); }, +[] { ClickOn(Monitor1Help, "Command1"); }}) {
    PressKey("F1");
    RunPending();
    ASSERT_TRUE(Monitor1Help.visible);
    EXPECT_EQ(Monitor1Help.title, "Halvane Monitor Help Screen");
    EXPECT_EQ(ShownText(Monitor1Help, "Command1"), "<< BACK");
    int number = 1;
    for (const char* line : Monitor1HelpLines())
      EXPECT_EQ(ShownText(Monitor1Help, "Label" + std::to_string(number++)), line);
    close();
    RunPending();
    EXPECT_FALSE(Monitor1Help.loaded);
    EXPECT_EQ(ShownFocus(), "Command1");
  }
}

// ---- entries ------------------------------------------------------------------------------------

TEST_F(Monitor1Screen, EveryNumberReachesItsFieldAndAClickDoesToo) {
  Show();
  for (const Field& field : fields)
    for (bool byKey : {true, false}) {
      if (byKey)
        PressKey(field.key);
      else
        ClickOn(Monitor1, field.control);
      ExpectEditing(field.control);
      SetFocus(At(Monitor1, "Command1"));
      RunPending();
      ExpectAtRest();
    }
}

TEST_F(Monitor1Screen, NumbersWalkFromFieldToField) {
  Show();
  const Field* former = nullptr;
  for (const Field& field : fields) {
    PressKey(field.key);
    ExpectEditing(field.control);
    if (former) {
      EXPECT_EQ(At(Monitor1, std::string(former->control) + "Label").backColour,
                Monitor1.backColour);
    }
    former = &field;
  }
}

TEST_F(Monitor1Screen, EnterTakesTheValueAndReturnsToTheButton) {
  struct Case {
    const char* key;
    const char* control;
    const char* typed;
    const char* shown;
    double& value;
    double stored;
    int& pending;
  };
  const Case cases[] = {
      {"Alt+3", "Text3", "-10", "-10", OnAdvance, -10, PendAdv},
      {"Alt+4", "Text4", "40", "40", OnGama, 0.4, PendGama},
      {"Alt+5", "Text5", "12.5", "12.50", OnTog, 12.5, PendTog},
      {"Alt+6", "Text6", "-15.875", "-15.875", OnInjOffset, -15.875, PendInj},
      {"Alt+7", "Text7", ".5", ".50", OnTpsBlend, 0.5, PendTpsBlend},
      {"Alt+8", "Text8", "-30", "-30", OnGpo, -30, PendGpo},
  };
  Show();
  for (const Case& row : cases) {
    PressKey(row.key);
    TypeText(row.typed);
    EXPECT_EQ(row.pending, 0) << row.control;
    PressKey("Enter");
    EXPECT_EQ(row.pending, 1) << row.control;
    EXPECT_DOUBLE_EQ(row.value, row.stored);
    EXPECT_EQ(Shown(row.control), row.shown);
    ExpectAtRest();
  }
}

TEST_F(Monitor1Screen, LeavingAFieldByAClickKeepsTheOldText) {
  Show();
  ClickOn(Monitor1, "Text3");
  TypeText("7");
  ClickOn(Monitor1, "Text8");
  EXPECT_EQ(Shown("Text3"), "0");
  EXPECT_EQ(PendAdv, 0);
  ExpectEditing("Text8");
}

TEST_F(Monitor1Screen, RefusalIsAnsweredByButtonEnterOrEscAndTheSavedTextReturns) {
  Show();
  for (auto answer : {+[] { ClickOn(MonitorInputError, "Command1"); }, +[] { PressKey("Enter"); },
                      +[] { PressKey("Esc"); }}) {
    PressKey("Alt+5");
    TypeText("31");
    PressKey("Enter");
    RunPending();
    ASSERT_TRUE(MonitorInputError.visible);
    EXPECT_EQ(MonitorInputError.title, "DATA INPUT ERROR");
    EXPECT_EQ(ShownText(MonitorInputError, "Label1"), "  Enter New Value");
    EXPECT_EQ(ShownText(MonitorInputError, "Label2"), "    in the Range:");
    EXPECT_EQ(ShownText(MonitorInputError, "Label3"), "  (3 to 30 ms)");
    EXPECT_EQ(ShownText(MonitorInputError, "Command1"), "OK");
    EXPECT_EQ(Shown("Text5"), "0");
    answer();
    RunPending();
    EXPECT_FALSE(MonitorInputError.loaded);
    ExpectEditing("Text5");
    EXPECT_EQ(PendTog, 0);
    SetFocus(At(Monitor1, "Command1"));
    RunPending();
  }
}

TEST_F(Monitor1Screen, WholeNumberFieldsRefuseAFraction) {
  Show();
  PressKey("Alt+4");
  TypeText("3.5");
  PressKey("Enter");
  ShownBox box = TakeBox();
  EXPECT_EQ(box.text, "  Data Input Error\n\rWhole Numbers Only");
  EXPECT_EQ(Shown("Text4"), "0");
  ExpectEditing("Text4");
  PressKey("Alt+8");
  TypeText("7.");
  PressKey("Enter");
  box = TakeBox();
  EXPECT_EQ(box.text, "  Data Input Error\n\rEnter Whole Numbers Only");
  EXPECT_EQ(Shown("Text8"), "0");
  EXPECT_EQ(PendGama + PendGpo, 0);
}

TEST_F(Monitor1Screen, OptionsAreAPairAndActWhenTheyAreNotCurrent) {
  Show();
  EXPECT_TRUE(At(Monitor1, "Option2").checked);
  ClickOn(Monitor1, "Option2");
  EXPECT_EQ(PendClearZero, 0);
  PressKey("Alt+1");
  EXPECT_TRUE(At(Monitor1, "Option1").checked);
  EXPECT_FALSE(At(Monitor1, "Option2").checked);
  EXPECT_EQ(PendZeroAdv, 1);
  EXPECT_FALSE(FieldEditing);
  PendZeroAdv = 0;
  ClickOn(Monitor1, "Option1");
  EXPECT_EQ(PendZeroAdv, 0);
  PressKey("Alt+2");
  EXPECT_TRUE(At(Monitor1, "Option2").checked);
  EXPECT_EQ(PendClearZero, 1);
}

TEST_F(Monitor1Screen, ArrowsChangeTheAfrOffsetEnterSendsAndEscClears) {
  Show();
  Live.frame[19] = 117;
  PressKey("Alt+9");
  EXPECT_EQ(OnAfr, 117);
  PressKey("Up");
  PressKey("Up");
  EXPECT_EQ(OnAfr, 115);
  EXPECT_EQ(Shown("Text9"), "15.36");  // 14.64 * 255 / 243
  EXPECT_EQ(Shown("AfrDesired"), "15.36");
  PressKey("Down");
  EXPECT_EQ(OnAfr, 116);
  TypeText("7");
  EXPECT_EQ(OnAfr, 116);
  ExpectEditing("Text9");
  EXPECT_EQ(PendAfr, 0);
  PressKey("Enter");
  EXPECT_EQ(PendAfr, 1);
  ExpectAtRest();
  PendAfr = 0;
  PressKey("Alt+9");
  PressKey("Down");
  PressKey("Esc");
  EXPECT_EQ(OnAfr, 117);
  EXPECT_EQ(PendAfr, 1);
  ExpectAtRest();
}

// ---- opening ------------------------------------------------------------------------------------

TEST_F(Monitor1Screen, WithoutAPortTheFailureScreenComesAndCancelReturnsToTheMainMenu) {
  ExpectFailureAndBack(Monitor1, 0, [] { EXPECT_FALSE(Form1.visible); });
}
