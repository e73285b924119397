// The analog monitor's nine run-time offsets: keys, formats, ranges, refusals, and the bytes that
// go out.
#include "link/liveframe.h"
#include "link/onfly.h"
#include "monitors/monitor1test.h"

namespace {

using Monitor1Entry = Monitor1Test;

struct Field {
  const char* key;
  const char* control;
};
constexpr Field numberFields[] = {{"Alt+3", "Text3"}, {"Alt+4", "Text4"}, {"Alt+5", "Text5"},
                                  {"Alt+6", "Text6"}, {"Alt+7", "Text7"}, {"Alt+8", "Text8"}};

}  // namespace

TEST_F(Monitor1Entry, EachFieldIsReachedByItsNumberAndSuspendsTheDisplay) {
  Work([] {
    for (const Field& field : numberFields) {
      const Colour plain = At(Monitor1, std::string(field.control) + "Label").backColour;
      PressKey(field.key);
      EXPECT_EQ(ShownFocus(), field.control);
      EXPECT_TRUE(FieldEditing);
      EXPECT_EQ(Shown("EntryStatus"), "SUSPENDED");
      EXPECT_NE(At(Monitor1, std::string(field.control) + "Label").backColour, plain);
      SetFocus(At(Monitor1, "Command1"));
      EXPECT_FALSE(FieldEditing);
      EXPECT_EQ(Shown("EntryStatus"), "ACTIVE");
      EXPECT_EQ(At(Monitor1, std::string(field.control) + "Label").backColour, plain);
    }
    PressKey("Alt+9");
    EXPECT_EQ(ShownFocus(), "Text9");
    EXPECT_EQ(Shown("EntryStatus"), "SUSPENDED");
  });
}

TEST_F(Monitor1Entry, CaptionsAreThoseOfTheOffsets) {
  Work([] {
    EXPECT_EQ(At(Monitor1, "Option1").caption, "&1. SET ADVANCE TO ZERO");
    EXPECT_EQ(At(Monitor1, "Option2").caption, "&2. CLEAR ZERO ADVANCE");
    const char* captions[] = {"&3. ADD FIXED ADV/RTD (-10 to 10 Deg) =",
                              "&4. ADD GAMA OFFSET(-40% to 40% Gama) =",
                              "&5. CHANGE TOG ( 3 to 30 ms) =",
                              "&6. CHANGE INJ. OFFSET ( -15.875 to 15.875 ms) =",
                              "&7. CHANGE TPS BLEND OFFSET (0 to 1.5 Volts) =",
                              "&8. CHANGE GPO OFFSET ( -30% to +30%) =",
                              "&9. CHANGE AFR OFFSET (UP/ DOWN Arrow Keys) ="};
    for (int i = 0; i < 7; ++i)
      EXPECT_EQ(At(Monitor1, "Text" + std::to_string(i + 3) + "Label").caption, captions[i]);
    EXPECT_EQ(Shown("EnterLine"), "Must Press Enter to Change Values");
  });
}

TEST_F(Monitor1Entry, AcceptedValuesAreShownInTheirFormatAndGoOut) {
  struct Case {
    const char* key;
    const char* control;
    const char* typed;
    const char* shown;
    double& value;
    double stored;
    const char* sent;
  };
  const Case cases[] = {
      {"Alt+3", "Text3", "-10", "-10", OnAdvance, -10, "R3AA"},
      {"Alt+3", "Text3", "10", "10", OnAdvance, 10, "R32A"},
      {"Alt+3", "Text3", "3.4", "3", OnAdvance, 3, "R30C"},
      {"Alt+4", "Text4", "40", "40", OnGama, 0.4, "R466"},
      {"Alt+4", "Text4", "-40", "-40", OnGama, -0.4, "R4E6"},
      {"Alt+5", "Text5", "3", "3.00", OnTog, 3, "R801 R977"},
      {"Alt+5", "Text5", "10", "10.00", OnTog, 10, "R804 R9E2"},
      {"Alt+5", "Text5", "30", "30.00", OnTog, 30, "R80E R9A6"},
      {"Alt+6", "Text6", "1.07", "1.07", OnInjOffset, 1.125, "R609"},
      {"Alt+6", "Text6", "15.875", "15.875", OnInjOffset, 15.875, "R67F"},
      {"Alt+6", "Text6", "-15.875", "-15.875", OnInjOffset, -15.875, "R6FF"},
      {"Alt+7", "Text7", "1.5", "1.50", OnTpsBlend, 1.5, "R54C"},
      {"Alt+7", "Text7", "0", ".00", OnTpsBlend, 0, "R500"},
      {"Alt+8", "Text8", "-30", "-30", OnGpo, -30, "R7B4"},
      {"Alt+8", "Text8", "+30", "30", OnGpo, 30, "R74C"},
  };
  for (const Case& row : cases) {
    unit.frames = 0;
    Work([&] {
      Enter(row.key, row.typed);
      EXPECT_EQ(Shown(row.control), row.shown) << row.typed;
      EXPECT_EQ(ShownFocus(), "Command1") << row.typed;
      EXPECT_FALSE(FieldEditing);
      EXPECT_EQ(Shown("EntryStatus"), "ACTIVE");
      Later([&] {
        EXPECT_DOUBLE_EQ(row.value, row.stored) << row.typed;
        EXPECT_EQ(unit.TakeHeard(), row.sent) << row.typed;
      });
    });
  }
}

TEST_F(Monitor1Entry, ValuesOutOfRangeOpenThePanelAndTheSavedTextReturns) {
  struct Case {
    const char* key;
    const char* control;
    const char* low;
    const char* high;
    const char* range;
  };
  const Case cases[] = {
      {"Alt+3", "Text3", "-11", "10.1", "  (-10 to 10 Degrees)"},
      {"Alt+4", "Text4", "-41", "41", "  (-40% to 40% Gama)"},
      {"Alt+5", "Text5", "2.999", "30.001", "  (3 to 30 ms)"},
      {"Alt+6", "Text6", "-15.88", "15.876", "  (-15.875 to 15.875 ms)"},
      {"Alt+7", "Text7", "-.01", "1.51", "  (0 to 1.5 Volts)"},
      {"Alt+8", "Text8", "-31", "31", "  (-30% to +30%)"},
  };
  Work([&] {
    for (const Case& row : cases)
      for (const char* typed : {row.low, row.high}) {
        const std::string saved = Shown(row.control);
        Enter(row.key, typed);
        EXPECT_EQ(Shown(row.control), saved) << typed;
        ASSERT_TRUE(MonitorInputError.loaded) << typed;
        EXPECT_EQ(MonitorInputError.title, "DATA INPUT ERROR");
        EXPECT_EQ(ShownText(MonitorInputError, "Label1"), "  Enter New Value");
        EXPECT_EQ(ShownText(MonitorInputError, "Label2"), "    in the Range:");
        EXPECT_EQ(ShownText(MonitorInputError, "Label3"), row.range);
        EXPECT_EQ(ShownText(MonitorInputError, "Command1"), "OK");
        PressKey("Enter");
        EXPECT_FALSE(MonitorInputError.loaded);
        EXPECT_EQ(ShownFocus(), row.control);
        EXPECT_TRUE(FieldEditing);
        SetFocus(At(Monitor1, "Command1"));
        EXPECT_EQ(Shown(row.control), saved);
      }
    Later([&] { EXPECT_EQ(unit.TakeHeard(), ""); });
  });
}

TEST_F(Monitor1Entry, WholeNumberFieldsRefuseAPeriod) {
  Work([&] {
    Enter("Alt+4", "3.5");
    EXPECT_EQ(TakeBox().text, "  Data Input Error\n\rWhole Numbers Only");
    EXPECT_EQ(Shown("Text4"), "0");
    Enter("Alt+8", "7.");
    EXPECT_EQ(TakeBox().text, "  Data Input Error\n\rEnter Whole Numbers Only");
    EXPECT_EQ(Shown("Text8"), "0");
    EXPECT_TRUE(FieldEditing);
    SetFocus(At(Monitor1, "Command1"));
    Later([&] { EXPECT_EQ(unit.TakeHeard(), ""); });
  });
}

TEST_F(Monitor1Entry, WhatIsNoNumberIsRefused) {
  struct Case {
    const char* key;
    const char* control;
    const char* text;
  };
  Work([&] {
    for (const Case& row :
         {Case{"Alt+3", "Text3", "-"}, Case{"Alt+4", "Text4", "-"}, Case{"Alt+6", "Text6", "."},
          Case{"Alt+7", "Text7", "-."}, Case{"Alt+8", "Text8", "+"}, Case{"Alt+6", "Text6", "3-4"},
          Case{"Alt+3", "Text3", "5 deg"}, Case{"Alt+7", "Text7", "one"}}) {
      const std::string saved = Shown(row.control);
      PressKey(row.key);
      SetText(At(Monitor1, row.control), row.text);  // the clipboard brings letters too
      PressKey("Enter");
      EXPECT_TRUE(MonitorInputError.loaded) << row.text;
      EXPECT_EQ(Shown(row.control), saved) << row.text;
      PressKey("Enter");
      SetFocus(At(Monitor1, "Command1"));
    }
    Later([&] { EXPECT_EQ(unit.TakeHeard(), ""); });
  });
}

TEST_F(Monitor1Entry, HeldEnterDoesNotLeaveTheMonitor) {
  Work([&] {
    PressKey("Alt+3");
    TypeText("5");
    PressKey("Enter");
    for (int i = 0; i < 3; ++i) RepeatKey("Enter");
    EXPECT_EQ(MonitorStop, 0);
    Enter("Alt+3", "99");
    RepeatKey("Enter");
    EXPECT_TRUE(MonitorInputError.loaded) << "nor is the refusal gone before it is read";
    PressKey("Enter");
    EXPECT_FALSE(MonitorInputError.loaded);
  });
}

TEST_F(Monitor1Entry, SecondEntryDuringTheCommandOfTheFirstGoesOutToo) {
  Work(
      [&] {
        unit.mute = [&](std::string_view command) {
          if (command != "R315") return false;
          AfterMs(20, [] { Enter("Alt+3", "2"); });
          AfterMs(30, [] { DeliverAt("COM1", NowUs(), {'A', 'X'}); });
          return true;
        };
        Enter("Alt+3", "5");
        AfterMs(500, [&] {
          EXPECT_EQ(unit.TakeHeard(), "R315 R308");
          EXPECT_EQ(Shown("Text3"), "2");
          EXPECT_EQ(OnAdvance, 2);
        });
      },
      700);
}

TEST_F(Monitor1Entry, InjectorOffsetIsShownAsItIsInForce) {
  Work([] {
    Enter("Alt+6", "1.07");
    EXPECT_EQ(Shown("Text6"), "1.07");
    Later([] {
      EXPECT_EQ(Shown("Text6"), "1.125");
      Enter("Alt+6", "-.12");
      Later([] { EXPECT_EQ(Shown("Text6"), "-.125"); });
    });
  });
}

TEST_F(Monitor1Entry, EmptyFieldIsPassedOver) {
  Work([&] {
    PressKey("Alt+3");
    PressKey("Backspace");
    PressKey("Enter");
    EXPECT_EQ(ShownFocus(), "Text3");
    EXPECT_EQ(PendAdv, 0);
    SetFocus(At(Monitor1, "Command1"));
    EXPECT_EQ(Shown("Text3"), "0");
  });
}

TEST_F(Monitor1Entry, LeavingAFieldWithoutEnterKeepsTheOldText) {
  Work([&] {
    PressKey("Alt+3");
    TypeText("7");
    PressKey("Alt+8");
    EXPECT_EQ(Shown("Text3"), "0");
    SetFocus(At(Monitor1, "Command1"));
    Later([&] { EXPECT_EQ(unit.TakeHeard(), ""); });
  });
}

TEST_F(Monitor1Entry, WhileAFieldIsEditedFramesFlowAndTheDisplayStands) {
  Work([&] {
    PressKey("Alt+3");
    const int before = unit.frames;
    unit.frame[2] = 34;
    unit.frame[13] = 9;
    Later([&, before] {
      EXPECT_GT(unit.frames, before + 2);
      EXPECT_EQ(Shown("Adv"), "20.0");
      EXPECT_EQ(Shown("Text5"), "10.00");
      SetFocus(At(Monitor1, "Command1"));
      Later([] { EXPECT_EQ(Shown("Adv"), "8.0"); });
    });
  });
}

TEST_F(Monitor1Entry, TogAndBlendFollowTheFrameUntilTogIsChanged) {
  Work([&] {
    EXPECT_EQ(Shown("Text5"), "10.00");
    EXPECT_EQ(Shown("Text7"), "1.00");
    TogChanged = 1;
    unit.frame[13] = 8;
    unit.frame[14] = 0;
    unit.frame[22] = 26;
    Later([] {
      EXPECT_EQ(Shown("Text5"), "16.38");
      EXPECT_EQ(Shown("Text7"), "1.00");
      TogChanged = 0;
      Later([] { EXPECT_EQ(Shown("Text7"), ".51"); });
    });
  });
}

// TOG was changed in a session before; byte 22 is what the unit has.
TEST_F(Monitor1Entry, BlendIsThatOfTheFirstFrameAlsoAfterTogWasChanged) {
  TogChanged = 1;
  Work([&] {
    EXPECT_EQ(Shown("Text7"), "1.00");
    unit.frame[22] = 26;
    Later([] { EXPECT_EQ(Shown("Text7"), "1.00"); });
  });
}

TEST_F(Monitor1Entry, KillAskedForDuringACommandGoesOutOnceThoughAFieldIsEntered) {
  Work(
      [&] {
        unit.mute = [&](std::string_view command) {
          if (command != "R315") return false;
          AfterMs(5, [] {
            PressKey("K");
            PressKey("Alt+8");
          });
          AfterMs(30, [] { DeliverAt("COM1", NowUs(), {'A', 'X'}); });
          return true;
        };
        Enter("Alt+3", "5");
        AfterMs(300, [&] {
          EXPECT_TRUE(FieldEditing);
          EXPECT_EQ(unit.TakeHeard(), "R315 K");
          SetFocus(At(Monitor1, "Command1"));
          AfterMs(200, [&] { EXPECT_EQ(unit.TakeHeard(), ""); });
        });
      },
      700);
}

// The first wish waits behind a command; what the arrows step through for the next one is not sent.
TEST_F(Monitor1Entry, AWishThatWaitsIsNotSentWhileTheNextIsStepped) {
  Work(
      [&] {
        unit.mute = [&](std::string_view command) {
          if (command != "RUFF") return false;
          AfterMs(10, [] {
            PressKey("Alt+9");
            PressKey("Up");
            PressKey("Enter");
            EXPECT_EQ(PendAfr, 1);
            PressKey("Alt+9");
            PressKey("Up");
            PressKey("Up");
          });
          AfterMs(60, [] { DeliverAt("COM1", NowUs(), {'A', 'X'}); });
          return true;
        };
        PressKey("C");
        AfterMs(300, [&] {
          EXPECT_EQ(unit.TakeHeard(), "RUFF");
          SetFocus(At(Monitor1, "Command1"));
          EXPECT_EQ(PendAfr, 1);
          AfterMs(200, [&] { EXPECT_EQ(unit.TakeHeard(), "ROFF"); });  // one up
        });
      },
      700);
}

TEST_F(Monitor1Entry, OptionsActOnlyWhenTheyAreNotTheCurrentState) {
  Work([&] {
    EXPECT_TRUE(At(Monitor1, "Option2").checked);
    PressKey("Alt+2");
    EXPECT_EQ(PendClearZero, 0);
    PressKey("Alt+1");
    EXPECT_EQ(PendZeroAdv, 1);
    Later([&] {
      EXPECT_EQ(unit.TakeHeard(), "Z");
      PressKey("Alt+1");
      EXPECT_EQ(PendZeroAdv, 0);
      PressKey("Alt+2");
      EXPECT_EQ(PendClearZero, 1);
      Later([&] { EXPECT_EQ(unit.TakeHeard(), "C"); });
    });
  });
}

TEST_F(Monitor1Entry, OfTwoOptionsChosenAtOnceTheLastIsSent) {
  Work([&] {
    PressKey("Alt+1");
    PressKey("Alt+2");
    EXPECT_EQ(PendZeroAdv, 0);
    EXPECT_EQ(PendClearZero, 1);
    Later([&] {
      EXPECT_EQ(unit.TakeHeard(), "C");
      EXPECT_TRUE(At(Monitor1, "Option2").checked);
    });
  });
}

TEST_F(Monitor1Entry, ArrowsShowTheWishedRatioAndEnterSendsIt) {
  Work([&] {
    PressKey("Alt+9");
    EXPECT_EQ(OnAfr, 117);
    PressKey("Up");
    PressKey("Up");
    EXPECT_EQ(OnAfr, 115);
    EXPECT_EQ(Shown("AfrDesired"), "15.36");  // 14.64 * 255 / 243
    PressKey("Down");
    EXPECT_EQ(OnAfr, 116);
    EXPECT_EQ(PendAfr, 0);
    EXPECT_EQ(Shown("EntryStatus"), "SUSPENDED");
    PressKey("Enter");
    EXPECT_EQ(PendAfr, 1);
    EXPECT_EQ(ShownFocus(), "Command1");
    Later([&] {
      EXPECT_EQ(AfrOffset, 1);
      EXPECT_EQ(unit.TakeHeard(), "ROFF");
    });
  });
}

TEST_F(Monitor1Entry, EscClearsTheAfrOffsetAndDoesNotLeave) {
  Work([&] {
    AfrOffset = 5;
    PressKey("Alt+9");
    EXPECT_EQ(OnAfr, 112);
    PressKey("Up");
    PressKey("Esc");
    EXPECT_EQ(PendAfr, 1);
    EXPECT_EQ(MonitorStop, 0);
    EXPECT_FALSE(FieldEditing);
    Later([&] {
      EXPECT_EQ(AfrOffset, 0);
      EXPECT_EQ(unit.TakeHeard(), "RO00");
    });
  });
}

TEST_F(Monitor1Entry, EscClearsTheAfrOffsetWhileTheBaseMoves) {
  auto work = [&] {
    PressKey("Alt+9");
    unit.frame[19] = 137;  // the engine is in another cell now
    Later([&] {
      PressKey("Esc");
      Later([&] {
        EXPECT_EQ(AfrOffset, 0);
        EXPECT_EQ(unit.TakeHeard(), "RO00");
        EXPECT_EQ(Shown("Text9"), ".00");
        PressKey("Alt+9");
        EXPECT_EQ(OnAfr, 137);
        PressKey("Up");
        PressKey("Enter");
        Later([&] { EXPECT_EQ(unit.TakeHeard(), "ROFF"); });
      });
    });
  };
  Work(work, 300);
}

TEST_F(Monitor1Entry, ArrowsThatEnterHasNotConfirmedChangeNothing) {
  Work([&] {
    PressKey("Alt+9");
    PressKey("Up");
    PressKey("Enter");
    PressKey("Alt+9");  // before the first is sent
    EXPECT_EQ(OnAfr, 116);
    PressKey("Up");
    SetFocus(At(Monitor1, "Command1"));
    Later([&] {
      EXPECT_EQ(unit.TakeHeard(), "ROFF");
      EXPECT_EQ(AfrOffset, 1);
    });
  });
}

TEST_F(Monitor1Entry, ArrowsStopAtTheEnds) {
  Work([&] {
    PressKey("Alt+9");
    OnAfr = 1;
    for (int i = 0; i < 3; ++i) PressKey("Up");
    EXPECT_EQ(OnAfr, 0);
    OnAfr = 254;
    for (int i = 0; i < 3; ++i) PressKey("Down");
    EXPECT_EQ(OnAfr, 255);
    TypeText("77");
    EXPECT_EQ(OnAfr, 255);
    SetFocus(At(Monitor1, "Command1"));
  });
}

TEST_F(Monitor1Entry, ArrowsBeginInsideTheRangeWhateverTheOffset) {
  Work([] {
    for (auto [offset, begin] :
         {std::pair{200.0, 0.0}, {117.0, 0.0}, {-138.0, 255.0}, {-200.0, 255.0}}) {
      AfrOffset = offset;
      PressKey("Alt+9");
      EXPECT_EQ(OnAfr, begin) << offset;
      SetFocus(At(Monitor1, "Command1"));
    }
  });
}

TEST_F(Monitor1Entry, AfrOffsetIsShownBetweenEntries) {
  Work([] {
    AfrOffset = 5;
    Later([] { EXPECT_EQ(Shown("Text9"), "-.30"); });  // 3733.2 / 250 less 3733.2 / 245
  });
}

TEST_F(Monitor1Entry, InjectorOffsetReadBackIsShownWithThreeDecimals) {
  InjectorOffset = 7;
  Work([] { EXPECT_EQ(Shown("Text6"), ".000"); });
}

TEST_F(Monitor1Entry, AReopenedSessionShowsWhatTheUnitHas) {
  auto work = [&] {
    PressKey("Alt+1");
    Enter("Alt+3", "8");
    Enter("Alt+8", "20");
    Enter("Alt+4", "30");
    AfterMs(150, [&] {  // all of it has been sent
      EXPECT_EQ(PendZeroAdv, 0);
      EXPECT_EQ(Shown("Text3"), "8");
      unit.wrongSecond = "R7";
      Enter("Alt+8", "25");
      AfterMs(5, [&] { unit.wrongSecond.clear(); });
      AfterMs(500, [&] {
        EXPECT_EQ(TakeBox().title, "INVALID PROM ERROR");
        EXPECT_EQ(Shown("Text3"), "0");
        EXPECT_EQ(Shown("Text8"), "0");
        EXPECT_EQ(Shown("Text4"), "30");
        EXPECT_TRUE(At(Monitor1, "Option2").checked);
        PressKey("Alt+1");
        EXPECT_EQ(PendZeroAdv, 1);
      });
    });
  };
  Work(work, 1000);
}
