// The table of settings: what the first run stores, and what a reader makes of a store.
#include "core/settings.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "core/globalstate.h"
#include "platform/failure.h"
#include "platform/headless/script.h"
#include "platform/system.h"

namespace {

using Section = std::map<std::string, std::string>;

class SettingsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetHeadless();
    ResetCalibrationState();
  }
};

// "Viewcheck0" to "Viewcheck15" of a first run.
std::string SelectedGraphs(int screenClass) {
  ResetHeadless();
  ScreenClass = screenClass;
  FirstRun();
  std::string selected;
  for (int graph = 0; graph <= 15; ++graph)
    selected += GetSetting("Check", "Viewcheck" + std::to_string(graph), "?");
  return selected;
}

template <typename Action>
int FailureOf(Action action) {
  try {
    action();
  } catch (const Failure& failure) {
    return failure.number;
  }
  return 0;
}

}  // namespace

TEST_F(SettingsTest, FirstRunStoresOptions) {
  EXPECT_TRUE(FirstRun());
  EXPECT_EQ(GetAllSettings("Options"), (Section{{"Comport", "1"},
                                                {"Screensetting", "0"},
                                                {"Monitor Screen", "0"},
                                                {"QuickStart", "-1"},
                                                {"Show Tips at Startup", "1"},
                                                {"Current Tip Value", "0"}}));
}

TEST_F(SettingsTest, FirstRunStoresThePlaceOfTheFrame) {
  FirstRun();
  EXPECT_EQ(GetAllSettings("Settings"), (Section{{"MainLeft", "1000"},
                                                 {"MainTop", "1000"},
                                                 {"MainWidth", "6500"},
                                                 {"MainHeight", "6500"}}));
}

TEST_F(SettingsTest, FirstRunLaysTheGraphsOutInTwoColumns) {
  FirstRun();
  EXPECT_EQ(
      GetAllSettings("ViewData"),
      (Section{{"View1X", "0"},  {"View1Y", "540"},    {"View2X", "5160"},  {"View2Y", "540"},
               {"View3X", "0"},  {"View3Y", "2580"},   {"View4X", "5160"},  {"View4Y", "2580"},
               {"View5X", "0"},  {"View5Y", "4620"},   {"View6X", "5160"},  {"View6Y", "4620"},
               {"View7X", "0"},  {"View7Y", "6660"},   {"View8X", "5160"},  {"View8Y", "6660"},
               {"View9X", "0"},  {"View9Y", "8700"},   {"View10X", "5160"}, {"View10Y", "8700"},
               {"View11X", "0"}, {"View11Y", "10740"}, {"View12X", "5160"}, {"View12Y", "10740"},
               {"View13X", "0"}, {"View13Y", "12780"}, {"View14X", "5160"}, {"View14Y", "12780"},
               {"View15X", "0"}, {"View15Y", "14820"}, {"View16X", "5160"}, {"View16Y", "14820"}}));
}

TEST_F(SettingsTest, FirstRunSelectsAllGraphsForTheMultiView) {
  FirstRun();
  const Section section = GetAllSettings("MultiG");
  ASSERT_EQ(section.size(), 16U);
  for (int graph = 0; graph <= 15; ++graph)
    EXPECT_EQ(section.at("Multicheck" + std::to_string(graph)), "1");
}

TEST_F(SettingsTest, FirstRunSelectsGraphsByTheScreenClass) {
  EXPECT_EQ(SelectedGraphs(1), "1111110000000000");
  EXPECT_EQ(SelectedGraphs(2), "1111111100000000");
  EXPECT_EQ(SelectedGraphs(3), "1111111111111110");
  EXPECT_EQ(SelectedGraphs(4), "1111111111111111");
}

TEST_F(SettingsTest, WidthWithoutClassSelectsAllGraphsButTheLast) {
  EXPECT_EQ(SelectedGraphs(720), "1111111111111110");
}

TEST_F(SettingsTest, FirstRunIsKnownByTheMissingPortNumber) {
  SaveSetting("Options", "Comport", "3");
  EXPECT_FALSE(FirstRun());
  EXPECT_EQ(GetAllSettings("Options"), (Section{{"Comport", "3"}}));
  EXPECT_TRUE(GetAllSettings("ViewData").empty());
}

TEST_F(SettingsTest, DamagedPortNumberIsNoFirstRun) {
  FirstRun();
  StoreSetting("Options", "QuickStart", 0);
  for (const char* damaged : {"", "1,2", "COM2"}) {
    SaveSetting("Options", "Comport", damaged);
    EXPECT_FALSE(FirstRun()) << damaged;
    EXPECT_EQ(ReadSetting("Options", "Comport"), 1) << damaged;
    EXPECT_EQ(ReadSetting("Options", "QuickStart"), 0) << damaged;
  }
}

TEST_F(SettingsTest, SecondRunKeepsWhatTheUserChose) {
  FirstRun();
  StoreSetting("Options", "QuickStart", 0);
  EXPECT_FALSE(FirstRun());
  EXPECT_EQ(ReadSetting("Options", "QuickStart"), 0);
}

TEST_F(SettingsTest, FirstRunThatWasCutShortIsTakenUpAgain) {
  EXPECT_EQ(SettingRows().back().key, "Comport");
  SaveSetting("Options", "Screensetting", "0");
  SaveSetting("MultiG", "Multicheck0", "1");
  EXPECT_TRUE(FirstRun());
  EXPECT_EQ(GetAllSettings("MultiG").size(), 16U);
}

TEST_F(SettingsTest, ReaderFallsBackToTheFirstRunWhereTheStoreHasNothing) {
  EXPECT_EQ(ReadSetting("Options", "Comport"), 1);
  EXPECT_EQ(ReadSetting("Settings", "MainWidth"), 6500);
  EXPECT_EQ(ReadSetting("ViewData", "View#X", 16), 5160);
  EXPECT_EQ(ReadSetting("ViewData", "View16Y"), 14820);
  ScreenClass = 2;
  EXPECT_EQ(ReadSetting("Check", "Viewcheck#", 7), 1);
  EXPECT_EQ(ReadSetting("Check", "Viewcheck#", 8), 0);
}

TEST_F(SettingsTest, PortNumberOutsideOfOneToFourCountsAsMissing) {
  for (const char* text : {"0", "5", "-1", "COM2", "", "2 and", "1e9", "nan"}) {
    SaveSetting("Options", "Comport", text);
    EXPECT_EQ(ReadSetting("Options", "Comport"), 1) << text;
  }
  SaveSetting("Options", "Comport", "4");
  EXPECT_EQ(ReadSetting("Options", "Comport"), 4);
}

TEST_F(SettingsTest, ChoiceOfTwoWithAnotherNumberIsLeftToItsReader) {
  SaveSetting("Options", "Screensetting", "7");
  EXPECT_EQ(ReadSetting("Options", "Screensetting"), 7);
}

TEST_F(SettingsTest, FractionsAreRoundedAndHugeNumbersPassedOver) {
  SaveSetting("Settings", "MainLeft", "-15.5");
  EXPECT_EQ(ReadSetting("Settings", "MainLeft"), -16);
  SaveSetting("Settings", "MainLeft", "99999999999");
  EXPECT_EQ(ReadSetting("Settings", "MainLeft"), 1000);
  SaveSetting("Settings", "MainWidth", "0");
  EXPECT_EQ(ReadSetting("Settings", "MainWidth"), 6500);
}

TEST_F(SettingsTest, StoredValuesAreTexts) {
  StoreSetting("Options", "QuickStart", -1);
  StoreSetting("MultiG", "Multicheck#", 15, 0);
  EXPECT_EQ(GetSetting("Options", "QuickStart"), "-1");
  EXPECT_EQ(GetSetting("MultiG", "Multicheck15"), "0");
}

TEST_F(SettingsTest, KeyOutsideOfTheTableIsAFailure) {
  EXPECT_EQ(FailureOf([] { ReadSetting("Options", "Colour"); }), FailureSubscript);
  EXPECT_EQ(FailureOf([] { ReadSetting("Settings", "Comport"); }), FailureSubscript);
  EXPECT_EQ(FailureOf([] { ReadSetting("ViewData", "View#X", 17); }), FailureSubscript);
  EXPECT_EQ(FailureOf([] { StoreSetting("MultiG", "Multicheck#", 16, 1); }), FailureSubscript);
}

TEST_F(SettingsTest, EveryKeyOfTheTableIsUnique) {
  std::set<std::string> keys;
  std::size_t count = 0;
  for (const SettingRow& row : SettingRows()) {
    EXPECT_FALSE(row.meaning.empty());
    for (int number = row.first; number <= row.last; ++number, ++count)
      keys.insert(std::string(row.section) + "/" + SettingKey(row, number));
  }
  EXPECT_EQ(count, 10U + 32U + 16U + 16U);
  EXPECT_EQ(keys.size(), count);
}
