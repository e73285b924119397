// Basic injectors by keys and clicks: computed times, both lists, both buttons, Back, the graph.
#include <gtest/gtest.h>

#include "editors/paramgraph.h"
#include "screens/binjscreen.h"

// ---- computed times -----------------------------------------------------------------------------

TEST_F(BinjGraphTest, EverySecondEventDoublesTheTimeAndSimultaneousDividesIt) {
  CalValues[0] = 1;
  RedrawFF();
  EXPECT_EQ(Text("Text10"), "1.300");
  SetFocus(The("Combo2"));
  PressKey("Down");
  PressKey("Enter");
  EXPECT_EQ(CalValues[233], 2);
  EXPECT_EQ(Text("Text10"), "3.800");
}

TEST_F(BinjGraphTest, CalibrationOfZerosShowsWhatDivisionGives) {
  CalValues.fill(0);
  MaxManifoldKpa = 0;
  RedrawFF();
  EXPECT_EQ(Text("Text10"), "NaN");
  EXPECT_EQ(Text("Text4"), "NaN");
  CalValues[233] = 1;
  RedrawFF();
  EXPECT_EQ(Text("Text10"), "Inf");
  EXPECT_EQ(Text("Text7"), "0");
  EXPECT_TRUE(GraphSays("Displayed MAP (kPa)"));
}

TEST_F(BinjGraphTest, NoSensorRangeDrawsWithoutFailing) {
  MapBar = 0;
  CalValues[0] = 1;
  CalValues[217] = 0;
  RedrawFF();
  EXPECT_EQ(Text("Text10"), "Inf");
  Enter("Text8", "5");
  EXPECT_EQ(Message(), "Data Input Error\n\r  (0 to 0 kPa)");
}

// ---- Combo1 -------------------------------------------------------------------------------------

TEST_F(BinjGraphTest, DownFlipsTheSchemeAndEnterTakesIt) {
  SetFocus(The("Combo1"));
  EXPECT_EQ(Back("Label21"), White);
  PressKey("Down");
  EXPECT_EQ(Index("Combo1"), 1);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(EntryPending, 1);
  EXPECT_EQ(ActiveField, 21);
  EXPECT_EQ(ShownFocus(), "Combo1");
  EXPECT_EQ(CalValues[0], 0);
  PressKey("Enter");
  EXPECT_EQ(CalValues[0], 1);
  EXPECT_EQ(EntryPending, 0);
  EXPECT_EQ(Text("Text10"), "1.300");
  PressKey("Down");
  EXPECT_EQ(Index("Combo1"), 0);
  PressKey("Enter");
  EXPECT_EQ(CalValues[0], 0);
}

TEST_F(BinjGraphTest, ClickFlipsTheScheme) {
  ChooseItem(Up(), "Combo1", 1);
  EXPECT_EQ(Index("Combo1"), 1);
  EXPECT_EQ(EntryPending, 1);
  EXPECT_EQ(ActiveField, 21);
  PressKey("Enter");
  EXPECT_EQ(CalValues[0], 1);
}

TEST_F(BinjGraphTest, SecondFlipShowsTheOldSchemeButEnterFlipsTheBit) {
  SetFocus(The("Combo1"));
  PressKey("Down");
  PressKey("Down");
  EXPECT_EQ(Index("Combo1"), 0);
  PressKey("Enter");
  EXPECT_EQ(CalValues[0], 1);
  EXPECT_EQ(Index("Combo1"), 1);
}

TEST_F(BinjGraphTest, EnterWithoutAFlipFlipsTheSchemeWithoutAChangeMark) {
  CalValues[0] = 254.4F;
  RedrawFF();
  SetFocus(The("Combo1"));
  PressKey("Enter");
  EXPECT_EQ(CalValues[0], 255);
  EXPECT_EQ(Index("Combo1"), 1);
  EXPECT_FALSE(CalChanged);
}

TEST_F(BinjGraphTest, SchemeBeyondSixteenBitsTellsAndFreesTheFocus) {
  CalValues[0] = 1e9F;
  RedrawFF();
  SetFocus(The("Combo1"));
  PressKey("Down");
  PressKey("Enter");
  EXPECT_EQ(TakeBox().title, "Error");
  EXPECT_EQ(EntryPending, 0);
  EXPECT_EQ(CalValues[0], 1e9F);
}

// ---- Combo2 -------------------------------------------------------------------------------------

TEST_F(BinjGraphTest, IntervalMovesByArrowsAndClicks) {
  SetFocus(The("Combo2"));
  EXPECT_EQ(Back("Label22"), White);
  PressKey("Down");
  PressKey("Down");
  PressKey("Up");
  EXPECT_EQ(Index("Combo2"), 1);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(EntryPending, 1);
  EXPECT_EQ(ActiveField, 22);
  EXPECT_EQ(CalValues[233], 1);
  ChooseItem(Up(), "Combo2", 7);
  PressKey("Enter");
  EXPECT_EQ(CalValues[233], 8);
  EXPECT_EQ(EntryPending, 0);
  EXPECT_EQ(Text("Text10"), "78.800");
}

TEST_F(BinjGraphTest, ArrowAtTheEndOfTheIntervalsCountsAsAChange) {
  SetFocus(The("Combo2"));
  PressKey("Up");
  EXPECT_EQ(Index("Combo2"), 0);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(EntryPending, 1);
}

TEST_F(BinjGraphTest, PendingListKeepsTheFocusFromTheFields) {
  ChooseItem(Up(), "Combo2", 3);
  ClickOn(Up(), "Text1");
  EXPECT_EQ(ShownFocus(), "Combo2");
  ChooseItem(Up(), "Combo1", 1);
  EXPECT_EQ(ShownFocus(), "Combo2");
  EXPECT_EQ(Index("Combo1"), 0);
}

TEST_F(BinjGraphTest, EscInAListRunsBack) {
  SetFocus(The("Combo1"));
  PressKey("Esc");
  EXPECT_FALSE(Up().loaded);
}

TEST_F(BinjGraphTest, EscInAPendingListStaysWithoutAMessage) {
  SetFocus(The("Combo2"));
  PressKey("Down");
  PressKey("Esc");
  EXPECT_TRUE(Up().loaded);
  EXPECT_EQ(ShownFocus(), "Combo2");
}

// ---- Back and the other screens -----------------------------------------------------------------

TEST_F(BinjGraphTest, BackStoresTheIntervalAndReturnsToItsButton) {
  CalValues[233] = 3.4F;
  RedrawFF();
  ClickOn(Up(), "Command1");
  RunPending();
  EXPECT_EQ(CalValues[233], 3);
  EXPECT_EQ(ActiveScreen(), &Parent());
  EXPECT_EQ(ShownFocus(), "Button7");
}

TEST_F(BinjGraphTest, BackKeepsAnIntervalThatTheListDoesNotKnow) {
  CalValues[233] = 12;
  RedrawFF();
  EXPECT_EQ(Index("Combo2"), -1);
  PressKey("Esc");
  EXPECT_EQ(CalValues[233], 12);
}

TEST_F(BinjGraphTest, ButtonsAreGreyUntilTheirScreensExist) {
  EXPECT_FALSE(ShownEnabled(Up(), "Command2"));
  EXPECT_FALSE(ShownEnabled(Up(), "Command3"));
  EXPECT_FALSE(ShownEnabled(Up(), "Command2Picture"));
  EXPECT_FALSE(ShownEnabled(Up(), "Command3Picture"));
}

TEST_F(BinjGraphTest, ButtonAndPictureCloseTheScreenAndOpenTheSensor) {
  Screen tps;
  Screen map;
  tps.build = map.build = [](Screen&) {};
  RegisterOther(tps, "TPSfrm");
  RegisterOther(map, "frmMAPfrm");
  Reopen();
  for (const auto& [control, screen] :
       std::vector<std::pair<const char*, Screen*>>{{"Command2", &tps},
                                                    {"Command2Picture", &tps},
                                                    {"Command3", &map},
                                                    {"Command3Picture", &map}}) {
    ClickOn(Up(), control);
    EXPECT_FALSE(Up().loaded) << control;
    EXPECT_EQ(ActiveScreen(), screen) << control;
    UnloadScreen(*screen);
    Open(BinjGraph());
  }
  PressKey("7");
  ClickOn(Up(), "Command2Picture");
  EXPECT_TRUE(Up().loaded);
  EXPECT_FALSE(tps.loaded);
  UnloadScreen(Up());
}

TEST_F(BinjGraphTest, HelpTopicsAreNamedAfterTheFields) {
  std::vector<std::string> topics;
  ShowHelpTopic = [&](std::string_view topic) {
    topics.emplace_back(topic);
    return true;
  };
  for (const char* control : {"Text1", "Text12", "Combo1", "Combo2"}) {
    SetFocus(The(control));
    PressKey("F1");
  }
  EXPECT_EQ(topics, (std::vector<std::string>{"Binj_graph.Text1", "Binj_graph.Text12",
                                              "Binj_graph.Combo1", "Binj_graph.Combo2"}));
}

// ---- graph --------------------------------------------------------------------------------------

TEST_F(BinjGraphTest, GraphHasItsTitlesAndTheFailZone) {
  EXPECT_EQ(GraphKind, 0);
  EXPECT_TRUE(GraphSays("Displayed MAP (kPa)"));
  EXPECT_TRUE(GraphSays("Fundamental Pulsewidth (ms)"));
  EXPECT_TRUE(GraphSays(" INJECTOR  FAIL  ZONE"));
  EXPECT_TRUE(GraphSays("Minimum Injector Turn-on Time"));
}

TEST_F(BinjGraphTest, FailZoneGoesWithAMinimumBelowTheAxis) {
  Enter("Text11", "0");
  EXPECT_FALSE(GraphSays(" INJECTOR  FAIL  ZONE"));
  EXPECT_FALSE(GraphSays("Minimum Injector Turn-on Time"));
}

TEST_F(BinjGraphTest, RedLineMarksTheRevLimitPulseInsideTheAxis) {
  EXPECT_EQ(LinesIn(Red), 1);
  Enter("Text7", "1000");
  EXPECT_EQ(LinesIn(Red), 0);
}

TEST_F(BinjGraphTest, RedrawTakesThisGraphBackFromAnotherScreen) {
  GraphKind = 3;
  RedrawFF();
  EXPECT_EQ(GraphKind, 0);
  EXPECT_TRUE(GraphSays("Displayed MAP (kPa)"));
}
