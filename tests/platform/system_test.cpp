// The settings store.
#include "platform/system.h"

#include "support/user.h"

namespace {

class SettingsTest : public PlatformTest {};

TEST_F(SettingsTest, MissingSettingIsTheDefault) {
  EXPECT_EQ(GetSetting("Options", "Comport", "1"), "1");
  EXPECT_EQ(GetSetting("Options", "Comport"), "");
}

TEST_F(SettingsTest, SavedSettingIsReadBackAndReplaced) {
  SaveSetting("Options", "Comport", "2");
  EXPECT_EQ(GetSetting("Options", "Comport", "1"), "2");
  SaveSetting("Options", "Comport", "4");
  EXPECT_EQ(GetSetting("Options", "Comport", "1"), "4");
}

TEST_F(SettingsTest, EmptySettingIsNotMissing) {
  SaveSetting("Options", "Last", "");
  EXPECT_EQ(GetSetting("Options", "Last", "default"), "");
}

TEST_F(SettingsTest, SectionsAreApart) {
  SaveSetting("Options", "Key", "a");
  SaveSetting("Settings", "Key", "b");
  EXPECT_EQ(GetSetting("Options", "Key"), "a");
  EXPECT_EQ(GetSetting("Settings", "Key"), "b");
  EXPECT_EQ(GetSetting("Check", "Key", "none"), "none");
}

TEST_F(SettingsTest, WholeSectionIsATable) {
  EXPECT_TRUE(GetAllSettings("Check").empty());
  SaveSetting("Check", "Viewcheck0", "1");
  SaveSetting("Check", "Viewcheck15", "0");
  SaveSetting("ViewData", "Other", "x");
  EXPECT_EQ(GetAllSettings("Check"),
            (std::map<std::string, std::string>{{"Viewcheck0", "1"}, {"Viewcheck15", "0"}}));
}

TEST_F(SettingsTest, KeysWithBlanksAndValuesWithAnyTextAreKept) {
  for (const char* value : {"C:\\Tuning\\My car.bin", "/home/a b/c;d.bin", "a, b", "\"quoted\"",
                            "  blanks  ", "%20", "@Rect(1 2)", "12.50", "é"}) {
    SaveSetting("Options", "Show Tips at Startup", value);
    EXPECT_EQ(GetSetting("Options", "Show Tips at Startup"), value);
  }
}

}  // namespace
