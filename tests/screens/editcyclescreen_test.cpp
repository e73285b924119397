// What the entry cycle does around the fields: Back, other screens, help, lists and pairs.
#include <gtest/gtest.h>

#include "core/globalstate.h"
#include "link/postedwrite.h"
#include "screens/testeditor.h"

// ---- Back ---------------------------------------------------------------------------------------

TEST_F(EditCycleTest, BackReturnsToTheButtonThatOpensTheScreen) {
  ClickOn(Up(), "Command1");
  RunPending();
  EXPECT_FALSE(Up().loaded);
  EXPECT_EQ(ActiveScreen(), &Parent());
  EXPECT_EQ(Focus(), "Button7");
}

TEST_F(EditCycleTest, EscInAFieldRunsBackAndLeavesNothingToJudge) {
  PressKey("Esc");
  EXPECT_FALSE(Up().loaded);
  EXPECT_FALSE(AnyBoxShown());
}

TEST_F(EditCycleTest, EscOnAButtonRunsBack) {
  SetFocus(The("Command3"));
  PressKey("Esc");
  EXPECT_FALSE(Up().loaded);
}

TEST_F(EditCycleTest, EscWithAPendingEntryIsRefusedAndJudgedAsACharacter) {
  TypeText("7");
  PressKey("Esc");
  EXPECT_EQ(Message(), retype);
  EXPECT_TRUE(Up().loaded);
  EXPECT_EQ(Focus(), "Plain");
  EXPECT_EQ(Text("Plain"), "7");
  EXPECT_TRUE(AllSelected("Plain"));
  EXPECT_EQ(EntryPending, 1);
}

TEST_F(EditCycleTest, BackButtonDoesNothingWithAPendingEntry) {
  TypeText("7");
  ClickOn(Up(), "Command1");
  EXPECT_TRUE(Up().loaded);
  EXPECT_EQ(Focus(), "Plain");
}

TEST_F(EditCycleTest, CloseBoxRunsBack) {
  TypeText("7");
  CloseByUser(Up());
  EXPECT_TRUE(Up().loaded);
  PressKey("Enter");
  CloseByUser(Up());
  EXPECT_FALSE(Up().loaded);
  EXPECT_EQ(ActiveScreen(), &Parent());
}

// ---- other screens ------------------------------------------------------------------------------

TEST_F(EditCycleTest, ButtonIsGreyUntilItsScreenIsRegistered) {
  EXPECT_FALSE(ShownEnabled(Up(), "Command2"));
  Screen other;
  other.build = [](Screen&) {};
  RegisterOther(other, "Other");
  UnloadScreen(Up());
  Open(TestEditor());
  EXPECT_TRUE(ShownEnabled(Up(), "Command2"));
  ClickOn(Up(), "Command2");
  EXPECT_FALSE(Up().loaded);
  EXPECT_EQ(ActiveScreen(), &other);
  UnloadScreen(other);
}

TEST_F(EditCycleTest, ButtonThatLeadsElsewhereIsOffInAnOnflySession) {
  EXPECT_TRUE(ShownEnabled(Up(), "Command4"));
  UnloadScreen(Up());
  MonitorMode = 3;
  Open(TestEditor());
  EXPECT_FALSE(ShownEnabled(Up(), "Command4"));
  EXPECT_TRUE(ShownEnabled(Up(), "Command3"));
}

TEST_F(EditCycleTest, ButtonFollowsASessionThatBeginsAndEndsWhileTheScreenIsUp) {
  MonitorMode = 3;
  RefreshActiveEditor();
  EXPECT_FALSE(ShownEnabled(Up(), "Command4"));
  MonitorMode = 0;
  RefreshActiveEditor();
  EXPECT_TRUE(ShownEnabled(Up(), "Command4"));
}

// ---- help ---------------------------------------------------------------------------------------

TEST_F(EditCycleTest, HelpKeyOpensTheTopicOfTheFieldWithNothingPending) {
  std::vector<std::string> topics;
  ShowHelpTopic = [&](std::string_view topic) {
    topics.emplace_back(topic);
    return true;
  };
  PressKey("F1");
  PressKey("7");
  PressKey("F1");
  EXPECT_EQ(topics, (std::vector<std::string>{"TestEditor.Plain"}));
  PressKey("Enter");
  SetFocus(The("Command3"));
  PressKey("F1");
  SetFocus(The("Command4"));
  PressKey("F1");
  EXPECT_EQ(topics, (std::vector<std::string>{"TestEditor.Plain", "Run.Topic", "Screen.Topic"}));
}

TEST_F(EditCycleTest, HelpKeyInAListIgnoresAPendingEntry) {
  std::string topic;
  ShowHelpTopic = [&](std::string_view asked) {
    topic = asked;
    return true;
  };
  SetFocus(The("List"));
  PressKey("Down");
  EXPECT_EQ(EntryPending, 1);
  PressKey("F1");
  EXPECT_EQ(topic, "TestEditor.List");
}

TEST_F(EditCycleTest, HelpKeyWithoutAHelpSystemIsHarmless) {
  PressKey("F1");
  EXPECT_FALSE(AnyBoxShown());
  EXPECT_TRUE(Up().loaded);
}

// ---- lists and pairs ----------------------------------------------------------------------------

TEST_F(EditCycleTest, ListMovesByArrowsAndWaitsForEnter) {
  SetFocus(The("List"));
  EXPECT_EQ(Back("ListLabel"), White);
  PressKey("Down");
  PressKey("Down");
  EXPECT_EQ(The("List").listIndex, 2);
  EXPECT_EQ(EntryPending, 1);
  EXPECT_EQ(ActiveField, 21);
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(CalValues[325], 0);
  PressKey("Up");
  PressKey("Enter");
  EXPECT_EQ(CalValues[325], 1);
  EXPECT_EQ(EntryPending, 0);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(Focus(), "List");
}

TEST_F(EditCycleTest, PendingListBringsTheFocusBack) {
  ChooseItem(Up(), "List", 1);
  EXPECT_EQ(EntryPending, 1);
  ClickOn(Up(), "Plain");
  EXPECT_EQ(Focus(), "List");
  EXPECT_EQ(The("List").listIndex, 1);
}

TEST_F(EditCycleTest, EscInAListRunsBackWithoutAMessage) {
  ChooseItem(Up(), "List", 1);
  PressKey("Esc");
  EXPECT_TRUE(Up().loaded);
  EXPECT_FALSE(AnyBoxShown());
  PressKey("Enter");
  PressKey("Esc");
  EXPECT_FALSE(Up().loaded);
}

TEST_F(EditCycleTest, PairFlipsItsBitOnlyWhenItDiffers) {
  CalValues[0] = 5;
  ClickOn(Up(), "Option1");
  EXPECT_EQ(CalValues[0], 13);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(Back("Option1"), White);
  EXPECT_EQ(Back("Option2"), SystemButtonFace);
  CalChanged = false;
  ClickOn(Up(), "Option1");
  EXPECT_EQ(CalValues[0], 13);
  EXPECT_FALSE(CalChanged);
  ClickOn(Up(), "Option2");
  EXPECT_EQ(CalValues[0], 5);
  EXPECT_EQ(Back("Option2"), White);
}

TEST_F(EditCycleTest, PairTakesTheHighlightOffTheCaptions) {
  ClickOn(Up(), "Option1");
  EXPECT_EQ(Back("PlainLabel"), SystemButtonFace);
}
