// Basic injectors by keys and clicks: what stands on the screen, and every field.
#include <gtest/gtest.h>

#include <cmath>

#include "link/postedwrite.h"
#include "screens/binjscreen.h"

namespace {

const std::string offsetMessage =
    "                    Data Input Error\n\r"
    "\n\r"
    "                (-15.875 to 15.875ms)\n\r"
    "System will round to + or -.125ms Increments";

}  // namespace

// ---- what stands on it --------------------------------------------------------------------------

TEST_F(BinjGraphTest, HasItsTitleAndCaptions) {
  EXPECT_EQ(Up().title, "Basic Injector Fuel Graph/Parameters");
  const std::vector<std::pair<const char*, const char*>> captions = {
      {"Label1", "Time &On for One Gama (TOG) ="},
      {"Label2", "&Injector Offset Time (IOT) ="},
      {"Label3", "Injector Recovery Time (IRT) ="},
      {"Label4", "Maximum Controllable TOG ="},
      {"Label7", "Primary &Rev Limiter = "},
      {"Label8", "Max Manifold &Pressure (kPa) ="},
      {"Label9", "Calc. Fund. Fuel WOT PW ="},
      {"Label10", "Rev Limit Max. PW ="},
      {"Label11", "&Minimum Injector Turn-on Time ="},
      {"Label12", "&Number of Cylinders (1 to 12) ="},
      {"Label21", "Injectors are Set to &Fire in "},
      {"Combo1Unit", "Firing Scheme"},
      {"Label22", "Injector Drivers are &Set to Fire with"},
      {"Combo2Unit", "Crank Revolution"},
      {"Command1", "<< Back"},
      {"Command2", "&TPS Parameters"},
      {"Command3", "M&AP Parameters"}};
  for (const auto& [control, caption] : captions) {
    EXPECT_EQ(The(control).caption, caption) << control;
    EXPECT_EQ(Text(control), PlainCaption(caption)) << control;
  }
}

TEST_F(BinjGraphTest, CarriesTheStandingLines) {
  EXPECT_EQ(Text("HelpLine"), "Press F1 For Help");
  EXPECT_EQ(Text("SaveLine"), "Must Press Enter to Save New Values");
  EXPECT_EQ(Text("OnflyLine"), "ONFLY Values have Yellow Background");
}

TEST_F(BinjGraphTest, ShowsEveryFieldThroughItsMask) {
  EXPECT_EQ(Text("Text1"), "10.000");
  EXPECT_EQ(Text("Text2"), "1.000");
  EXPECT_EQ(Text("Text3"), "1.2");
  EXPECT_EQ(Text("Text4"), "7.800");
  EXPECT_EQ(Text("Text7"), "6000");
  EXPECT_EQ(Text("Text8"), "104");
  EXPECT_EQ(Text("Text9"), "11.000");
  EXPECT_EQ(Text("Text10"), "8.800");
  EXPECT_EQ(Text("Text11"), "1.50000");
  EXPECT_EQ(Text("Text12"), "8");
}

TEST_F(BinjGraphTest, SmallValuesShowNoZeroInFrontOfThePoint) {
  CalValues[2] = -0.5F;
  CalValues[344] = 0.75F;
  RedrawFF();
  EXPECT_EQ(Text("Text2"), "-.500");
  EXPECT_EQ(Text("Text11"), ".75000");
}

TEST_F(BinjGraphTest, ListsHaveTheirItems) {
  EXPECT_EQ(The("Combo1").items, (std::vector<std::string>{"ALT", "SIM"}));
  EXPECT_EQ(The("Combo2").items,
            (std::vector<std::string>{"Every", "Every 2nd", "Every 3rd", "Every 4th", "Every 5th",
                                      "Every 6th", "Every 7th", "Every 8th"}));
  EXPECT_EQ(Index("Combo1"), 0);
  EXPECT_EQ(Index("Combo2"), 0);
  CalValues[0] = 9;
  CalValues[233] = 4;
  RedrawFF();
  EXPECT_EQ(Index("Combo1"), 1);
  EXPECT_EQ(Index("Combo2"), 3);
}

TEST_F(BinjGraphTest, FieldNumbersAreThoseOfTheTexts) {
  for (const auto& [control, number] : std::vector<std::pair<const char*, int>>{{"Text1", 1},
                                                                                {"Text2", 2},
                                                                                {"Text7", 7},
                                                                                {"Text8", 8},
                                                                                {"Text11", 11},
                                                                                {"Text12", 12},
                                                                                {"Combo1", 21},
                                                                                {"Combo2", 22}}) {
    SetFocus(The(control));
    EXPECT_EQ(ActiveField, number);
  }
}

TEST_F(BinjGraphTest, AcceleratorsLeadToTheirFields) {
  for (const auto& [key, control] :
       std::vector<std::pair<const char*, const char*>>{{"Alt+O", "Text1"},
                                                        {"Alt+I", "Text2"},
                                                        {"Alt+R", "Text7"},
                                                        {"Alt+P", "Text8"},
                                                        {"Alt+M", "Text11"},
                                                        {"Alt+N", "Text12"},
                                                        {"Alt+F", "Combo1"},
                                                        {"Alt+S", "Combo2"}}) {
    PressKey(key);
    EXPECT_EQ(ShownFocus(), control) << key;
  }
}

TEST_F(BinjGraphTest, OnlyOffsetAndMinimumAreYellowInASession) {
  MonitorMode = 3;
  RedrawFF();
  for (const char* control : {"Text2", "Text11"}) EXPECT_EQ(Back(control), Yellow) << control;
  for (const char* control : {"Text1", "Text7", "Text8", "Text12"})
    EXPECT_EQ(Back(control), SystemWindow) << control;
}

// ---- Text1, TOG ---------------------------------------------------------------------------------

TEST_F(BinjGraphTest, TogIsStoredAndItsTimesFollow) {
  Enter("Text1", "12.5");
  EXPECT_EQ(CalValues[232], 12.5F);
  EXPECT_EQ(WorkTog, 12.5F);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(Text("Text1"), "12.500");
  EXPECT_EQ(Text("Text9"), "13.500");
}

TEST_F(BinjGraphTest, TogTakesBothEndsOfItsRange) {
  Enter("Text1", "3");
  EXPECT_EQ(CalValues[232], 3);
  Enter("Text1", "30");
  EXPECT_EQ(CalValues[232], 30);
}

TEST_F(BinjGraphTest, RefusedTogMustBeCorrected) {
  for (const char* text : {"2.999", "30.001"}) {
    Enter("Text1", text);
    EXPECT_EQ(Message(), "Data Input Error\n\r    (3 to 30ms)");
    EXPECT_EQ(EntryPending, 1);
    EXPECT_EQ(ActiveField, 1);
    EXPECT_TRUE(AllSelected("Text1"));
    EXPECT_EQ(Back("Label1"), White);
    PressKey("Tab");
    EXPECT_EQ(ShownFocus(), "Text1");
  }
  EXPECT_EQ(CalValues[232], 10);
  EXPECT_FALSE(CalChanged);
  TypeText("4");
  PressKey("Enter");
  PressKey("Tab");
  EXPECT_EQ(ShownFocus(), "Text2");
}

TEST_F(BinjGraphTest, TogHasNoOnflyPath) {
  MonitorMode = 3;
  Enter("Text1", "12");
  EXPECT_EQ(CalValues[232], 12);
  EXPECT_EQ(OnflyByteCount, 0);
}

// ---- Text2, injector offset ---------------------------------------------------------------------

TEST_F(BinjGraphTest, OffsetIsRoundedToEighthsOffLine) {
  struct Case {
    const char* entry;
    float stored;
    const char* shown;
  };
  for (const Case& each :
       {Case{"1.06", 1, "1.000"}, Case{"1.0625", 1, "1.000"}, Case{"1.1875", 1.25F, "1.250"},
        Case{"-0.1", -0.125F, "-.125"}, Case{"15.875", 15.875F, "15.875"},
        Case{"-15.875", -15.875F, "-15.875"}}) {
    Enter("Text2", each.entry);
    EXPECT_EQ(CalValues[2], each.stored) << each.entry;
    EXPECT_EQ(Text("Text2"), each.shown) << each.entry;
  }
  EXPECT_EQ(BinImage[2], 0);
  EXPECT_EQ(PendInj, 0);
}

TEST_F(BinjGraphTest, OffsetThatRoundsToZeroFromBelowShowsPlainZero) {
  Enter("Text2", "-0.01");
  EXPECT_EQ(CalValues[2], 0);
  EXPECT_FALSE(std::signbit(CalValues[2]));
  EXPECT_EQ(Text("Text2"), ".000");
}

TEST_F(BinjGraphTest, RefusedOffsetTellsOfTheRoundingAndMustBeCorrected) {
  for (const char* text : {"15.876", "-15.876"}) {
    Enter("Text2", text);
    EXPECT_EQ(Message(), offsetMessage) << text;
    EXPECT_EQ(EntryPending, 1);
    EXPECT_EQ(ActiveField, 2);
    EXPECT_TRUE(AllSelected("Text2"));
  }
  EXPECT_EQ(CalValues[2], 1);
  EXPECT_FALSE(CalChanged);
}

TEST_F(BinjGraphTest, OffsetInASessionIsStoredPostedAndSentAsRunTimeOffset) {
  MonitorMode = 3;
  Enter("Text2", "-0.1");
  EXPECT_EQ(CalValues[2], -0.125F);
  EXPECT_EQ(OnflyCalIndex, 2);
  EXPECT_EQ(OnflyValue, -0.125);
  EXPECT_EQ(OnflyImageIndex, 2);
  EXPECT_EQ(OnflyByteCount, 1);
  EXPECT_EQ(BinImage[2], 129);
  EXPECT_EQ(OnInjOffset, -0.125);
  EXPECT_EQ(PendInj, 1);
}

TEST_F(BinjGraphTest, OffsetBytesReachTheirEnds) {
  MonitorMode = 3;
  for (const auto& [entry, byte] : std::vector<std::pair<const char*, int>>{
           {"15.875", 127}, {"-15.875", 255}, {"0", 0}, {"-0.01", 128}, {"1.1875", 10}}) {
    Enter("Text2", entry);
    EXPECT_EQ(BinImage[2], byte) << entry;
  }
}

TEST_F(BinjGraphTest, LeavingTheOffsetReadsItBackFromTheCalibration) {
  ClickOn(Up(), "Text2");
  PressKey("End");
  PressKey("Backspace");
  EXPECT_EQ(Text("Text2"), "1.00");
  WorkIot = 5;
  PressKey("Tab");
  EXPECT_EQ(Text("Text2"), "1.000");
  EXPECT_EQ(WorkIot, 1);
  EXPECT_EQ(ShownFocus(), "Text7");
  EXPECT_EQ(Back("Label2"), SystemButtonFace);
}

// ---- Text7, rev limit ---------------------------------------------------------------------------

TEST_F(BinjGraphTest, RevLimitIsStoredAndItsTimesFollow) {
  Enter("Text7", "7500");
  EXPECT_EQ(CalValues[4], 7500);
  EXPECT_EQ(WorkRevLimit, 7500);
  EXPECT_EQ(Text("Text10"), "6.800");
  EXPECT_EQ(Text("Text4"), "5.800");
  Enter("Text7", "1000");
  EXPECT_EQ(CalValues[4], 1000);
  Enter("Text7", "12000");
  EXPECT_EQ(CalValues[4], 12000);
}

TEST_F(BinjGraphTest, RevLimitIsRoundedByItsMask) {
  Enter("Text7", "6543.5");
  EXPECT_EQ(CalValues[4], 6544);
}

TEST_F(BinjGraphTest, RefusedRevLimitOnlyTells) {
  for (const char* text : {"999", "12001"}) {
    Enter("Text7", text);
    EXPECT_EQ(Message(), "Data Input Error\n\r  (1000 to 12000 RPM)");
    EXPECT_EQ(Text("Text7"), text);
    EXPECT_FALSE(AllSelected("Text7"));
    EXPECT_EQ(EntryPending, 0);
  }
  EXPECT_EQ(CalValues[4], 6000);
  EXPECT_FALSE(CalChanged);
}

// ---- Text8, manifold pressure -------------------------------------------------------------------

TEST_F(BinjGraphTest, ManifoldPressureChangesTheWorkingValueAlone) {
  const auto before = CalValues;
  Enter("Text8", "57");
  EXPECT_EQ(MaxManifoldKpa, 57);
  EXPECT_EQ(CalValues, before);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(Text("Text8"), "57");
  EXPECT_EQ(Text("Text9"), "6.000");
}

TEST_F(BinjGraphTest, ManifoldPressureIsShownAsItStands) {
  MaxManifoldKpa = 88.25F;
  RedrawFF();
  EXPECT_EQ(Text("Text8"), "88.25");
}

TEST_F(BinjGraphTest, ManifoldPressureRangeFollowsTheSensor) {
  Enter("Text8", "10");
  EXPECT_EQ(MaxManifoldKpa, 10);
  Enter("Text8", "9");
  EXPECT_EQ(Message(), "Data Input Error\n\r  (10 to 104 kPa)");
  Enter("Text8", "105");
  EXPECT_EQ(Message(), "Data Input Error\n\r  (10 to 104 kPa)");
  EXPECT_EQ(Text("Text8"), "105");
  EXPECT_EQ(EntryPending, 0);
  MapBar = 3;
  Enter("Text8", "312");
  EXPECT_EQ(MaxManifoldKpa, 312);
  Enter("Text8", "29");
  EXPECT_EQ(Message(), "Data Input Error\n\r  (30 to 312 kPa)");
}

// ---- Text11, minimum turn-on time ---------------------------------------------------------------

TEST_F(BinjGraphTest, MinimumTurnOnIsStoredOffLine) {
  Enter("Text11", "0.81234");
  EXPECT_EQ(CalValues[344], 0.81234F);
  EXPECT_EQ(MinTurnOnMs, 0.81234F);
  EXPECT_EQ(Text("Text11"), ".81234");
  Enter("Text11", "0");
  EXPECT_EQ(CalValues[344], 0);
  Enter("Text11", "8");
  EXPECT_EQ(CalValues[344], 8);
}

TEST_F(BinjGraphTest, RefusedMinimumOnlyTells) {
  Enter("Text11", "8.00001");
  EXPECT_EQ(Message(), "Data Input Error\n\r    (0 to 8ms)");
  EXPECT_EQ(Text("Text11"), "8.00001");
  EXPECT_FALSE(AllSelected("Text11"));
  EXPECT_EQ(EntryPending, 0);
  EXPECT_EQ(CalValues[344], 1.5F);
}

TEST_F(BinjGraphTest, MinimumInASessionIsPostedAndShownWhenAccepted) {
  MonitorMode = 3;
  Enter("Text11", "2.5");
  EXPECT_EQ(OnflyCalIndex, 344);
  EXPECT_EQ(OnflyValue, 2.5);
  EXPECT_EQ(OnflyImageIndex, 323);
  EXPECT_EQ(OnflyByteCount, 1);
  EXPECT_EQ(BinImage[323], 80);
  EXPECT_EQ(CalValues[344], 1.5F);
  EXPECT_EQ(Text("Text11"), "1.50000");
  EXPECT_EQ(PendInj, 0);
  CalValues[344] = 2.5F;
  RefreshActiveEditor();
  EXPECT_EQ(Text("Text11"), "2.50000");
}

TEST_F(BinjGraphTest, MinimumOfEightMillisecondsIsSentAs255) {
  MonitorMode = 3;
  Enter("Text11", "8");
  EXPECT_EQ(BinImage[323], 255);
  EXPECT_EQ(OnflyValue, 8);
}

TEST_F(BinjGraphTest, LeavingTheMinimumReadsItBackFromTheCalibration) {
  Enter("Text11", "9");
  Message();
  MinTurnOnMs = 7;
  PressKey("Tab");
  EXPECT_EQ(Text("Text11"), "1.50000");
  EXPECT_EQ(MinTurnOnMs, 1.5F);
  EXPECT_EQ(ShownFocus(), "Text12");
}

// ---- Text12, cylinders --------------------------------------------------------------------------

TEST_F(BinjGraphTest, CylindersAreStored) {
  Enter("Text12", "12");
  EXPECT_EQ(CalValues[217], 12);
  EXPECT_EQ(WorkCylinders, 12);
  Enter("Text12", "1");
  EXPECT_EQ(CalValues[217], 1);
}

TEST_F(BinjGraphTest, RefusedCylindersRunTheGotFocusStepAgain) {
  for (const char* text : {"0", "13"}) {
    Enter("Text12", text);
    EXPECT_EQ(Message(), "Data Input Error\n\r  (1 to 12 Cylinders)");
    EXPECT_EQ(Text("Text12"), text);
    EXPECT_TRUE(AllSelected("Text12"));
    EXPECT_EQ(Back("Label12"), White);
    EXPECT_EQ(EntryPending, 0);
  }
  EXPECT_EQ(CalValues[217], 8);
}

TEST_F(BinjGraphTest, MinusIsTakenInTheOffsetAlone) {
  for (const char* control : {"Text1", "Text7", "Text8", "Text11", "Text12"}) {
    ClickOn(Up(), control);
    PressKey("-");
    EXPECT_EQ(Message(), "Data Input Error\n\r  Retype Data") << control;
  }
  ClickOn(Up(), "Text2");
  PressKey("-");
  EXPECT_FALSE(AnyBoxShown());
}
