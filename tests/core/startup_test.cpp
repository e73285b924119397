// Start values, the screen class, and what is asked and kept at the end.
#include "core/startup.h"

#include "core/globalstate.h"
#include "core/settings.h"
#include "core/version.h"
#include "filestest.h"
#include "platform/files.h"
#include "platform/frame.h"
#include "platform/system.h"

namespace {

using StartupTest = FilesTest;

std::vector<std::string> StoredPlace() {
  std::vector<std::string> place;
  for (const char* key : {"MainLeft", "MainTop", "MainWidth", "MainHeight"})
    place.push_back(GetSetting("Settings", key, "none"));
  return place;
}

void ExpectSavingQuestion(const std::string& path) {
  ExpectMessage("Save File Data",
                "          Changes have been made to the File " + path +
                    "          \n\r          Do You Wish to Save " + path + " at this time?\n\r",
                Buttons::YesNo);
}

}  // namespace

TEST_F(StartupTest, OtherInstanceEndsTheStart) {
  SetOtherInstance(true);
  CalValues[3] = 7;
  EXPECT_FALSE(StartCore());
  EXPECT_EQ(CalValues[3], 7);
}

TEST_F(StartupTest, StartTakesTheStartValuesAndTheFolder) {
  CalValues[3] = 7;
  LoadMode = "MAF";
  PutFolder("/home/user/tunes");
  ChangeFolder("/home/user/tunes");
  EXPECT_TRUE(StartCore());
  EXPECT_EQ(CalValues[3], 0);
  EXPECT_EQ(LoadMode, "MAP");
  EXPECT_EQ(StartDir, "/home/user/tunes");
}

TEST_F(StartupTest, FourWidthsHaveAClassAndAFontSize) {
  const struct {
    int width, screenClass;
    double pointSize;
  } rows[] = {{640, 1, 8},   {800, 2, 10},  {1024, 3, 12},
              {1152, 4, 14}, {1280, 4, 14}, {3840, 4, 14}};
  for (const auto& row : rows) {
    EXPECT_EQ(ScreenClassOfWidth(row.width), row.screenClass) << row.width;
    EXPECT_EQ(StatusPointSizeOfWidth(row.width), row.pointSize) << row.width;
  }
}

TEST_F(StartupTest, OtherWidthStandsForItsClassAndHasNoFontSize) {
  for (int width : {0, 639, 641, 720, 801, 1023, 1025, 1151}) {
    EXPECT_EQ(ScreenClassOfWidth(width), width);
    EXPECT_FALSE(StatusPointSizeOfWidth(width)) << width;
  }
}

TEST_F(StartupTest, ScreenWidthIsTheMaximisedFrameLessItsBorders) {
  Frame frame;
  ShowFrame(frame);
  SetDesktopWidth(800);
  TakeScreenWidth(frame);
  EXPECT_EQ(ScreenClass, 2);
  EXPECT_EQ(frame.statusPointSize, 10);
  SetDesktopWidth(720);
  TakeScreenWidth(frame);
  EXPECT_EQ(ScreenClass, 720);
  EXPECT_EQ(frame.statusPointSize, 10);
  CloseFrame(frame);
}

TEST_F(StartupTest, VersionStandsInTheCaptions) {
  const std::string number = std::to_string(HALVANE2_VERSION_MAJOR) + "." +
                             std::to_string(HALVANE2_VERSION_MINOR) + "." +
                             std::to_string(HALVANE2_VERSION_REVISION);
  EXPECT_EQ(VersionNumberText(), number);
  EXPECT_EQ(VersionText(), "Halvane2 Version " + number);
  EXPECT_EQ(OpenFileCaption("/home/user/v8.bin"),
            "Halvane2 Version " + number + "  Currently Open 'BIN' File = /home/user/v8.bin");
}

TEST_F(StartupTest, WithoutAFrameThereIsNoCaption) {
  ASSERT_EQ(TheFrame(), nullptr);
  EXPECT_NO_THROW(ShowOpenFile("/home/user/v8.bin"));
  EXPECT_EQ(TheFrame(), nullptr);
}

TEST_F(StartupTest, FrameTakesThePlaceOfTheLastRun) {
  Frame frame;
  StoreSetting("Settings", "MainLeft", 15);
  StoreSetting("Settings", "MainTop", -30);
  StoreSetting("Settings", "MainWidth", 9000);
  RestoreFramePlace(frame);
  EXPECT_EQ(frame.left, 15);
  EXPECT_EQ(frame.top, -30);
  EXPECT_EQ(frame.width, 9000);
  EXPECT_EQ(frame.height, 6500);
}

TEST_F(StartupTest, PlaceIsKeptInWholeUnits) {
  Frame frame;
  frame.left = 20.4;
  frame.top = 30.5;
  frame.width = 7000;
  frame.height = 8000.6;
  StoreFramePlace(frame);
  EXPECT_EQ(StoredPlace(), (std::vector<std::string>{"20", "30", "7000", "8001"}));
}

TEST_F(StartupTest, MinimisedFrameKeepsTheLastStoredPlace) {
  FirstRun();
  Frame frame;
  frame.left = 20;
  frame.minimised = true;
  StoreFramePlace(frame);
  EXPECT_EQ(StoredPlace(), (std::vector<std::string>{"1000", "1000", "6500", "6500"}));
}

TEST_F(StartupTest, NothingIsAskedWithoutChanges) {
  OpenSound("/home/user/v8.bin");
  EXPECT_TRUE(OfferSavingChanges());
}

TEST_F(StartupTest, YesSavesTheChanges) {
  OpenSound("/home/user/v8.bin");
  CalValues[232] = 9;
  CalChanged = true;
  PushAnswer(Answer::Yes);
  EXPECT_TRUE(OfferSavingChanges());
  ExpectSavingQuestion("/home/user/v8.bin");
  EXPECT_FALSE(CalChanged);
  std::vector<float> saved(CalValues.begin(), CalValues.begin() + 512);
  EXPECT_EQ(FileBytes("/home/user/v8.bin"), BinBytes(saved));
}

TEST_F(StartupTest, NoLeavesTheFile) {
  OpenSound("/home/user/v8.bin");
  CalChanged = true;
  PushAnswer(Answer::No);
  EXPECT_TRUE(OfferSavingChanges());
  ExpectSavingQuestion("/home/user/v8.bin");
  EXPECT_EQ(FileBytes("/home/user/v8.bin"), BinBytes(SoundSingles()));
  EXPECT_TRUE(CalChanged);
}

TEST_F(StartupTest, SaveThatFailsAtTheEndIsTold) {
  OpenSound("/home/user/v8.bin");
  CalChanged = true;
  PushAnswer(Answer::Yes);
  FailNthWrite(1, FailureDiskFull);
  EXPECT_FALSE(OfferSavingChanges());
  ExpectSavingQuestion("/home/user/v8.bin");
  ExpectErrorBox(61, "Disk full", "Please File a Software Problem Report. (savedata)");
}
