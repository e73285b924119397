// The software tools, the user's guide and the options.
#include "shell/tools.h"

#include <array>

#include "core/globalstate.h"
#include "platform/files.h"
#include "platform/frame.h"
#include "platform/headless/script.h"
#include "platform/system.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"
#include "shell/shelltest.h"

namespace {

constexpr const char* guide = "/home/user/Halvane_Software_User's_Guide.txt";

class ToolsTest : public ShellTest {
 protected:
  void SetUp() override {
    ShellTest::SetUp();
    StandInForAll();
    Start();
    PutTextFile(guide, "A guide.\n");
    GoTo("STools");
  }
  static void EndEditor() {
    ASSERT_EQ(StartedProcesses().size(), 1u);
    StartedProcesses()[0].ended(0);
    RunPending();
  }
};

TEST_F(ToolsTest, EveryButtonHasItsCaption) {
  const std::array<std::pair<const char*, const char*>, 5> captions = {
      {{"Calculator", "&Calculator"},
       {"MemoPad", "&Memo Pad"},
       {"PrintCalibration", "&Print Calibration File"},
       {"UsersGuide", "&View Software User's Guide"},
       {"Command1", "<< Back"}}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(At(STools, name).caption, caption);
  EXPECT_EQ(ToolRows().size(), captions.size());
}

TEST_F(ToolsTest, ButtonsOpenTheirScreens) {
  const std::array<std::pair<const char*, const char*>, 4> opened = {
      {{"Alt+C", "Calculator"}, {"Alt+M", "Memoedit"}, {"Alt+P", "PRTForm"}, {"Esc", "Form1"}}};
  for (const auto& [key, screen] : opened) {
    GoTo("STools");
    PressKey(key);
    EXPECT_EQ(Top(), screen);
    EXPECT_FALSE(STools.loaded);
  }
  EXPECT_EQ(ShownFocus(), "SoftwareTools");
}

TEST_F(ToolsTest, ButtonsOfUnknownScreensAreOff) {
  ForgetRegisteredScreens();
  ShowScreen(STools);
  EXPECT_FALSE(ShownEnabled(STools, "Calculator"));
  EXPECT_TRUE(ShownEnabled(STools, "UsersGuide"));
}

TEST_F(ToolsTest, TheGuideIsWaitedForAndTheToolsComeBack) {
  PressKey("Alt+V");
  ASSERT_EQ(StartedProcesses().size(), 1u);
  EXPECT_EQ(StartedProcesses()[0].argument, guide);
  AdvanceMs(60'000);
  EXPECT_FALSE(STools.enabled);
  PressKey("Alt+C");
  EXPECT_EQ(Top(), "STools");
  EndEditor();
  EXPECT_TRUE(STools.enabled);
  EXPECT_EQ(Top(), "STools");
  PressKey("Alt+C");
  EXPECT_EQ(Top(), "Calculator");
}

TEST_F(ToolsTest, TheGuideComesBackToTheMainMenuThatOpenedIt) {
  ShowMainMenu();
  PressKey("Alt+U");
  EXPECT_FALSE(Form1.enabled);
  EndEditor();
  EXPECT_TRUE(Form1.enabled);
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(ToolsTest, AScreenOpenedDuringTheWaitStays) {
  PressKey("Alt+V");
  ChooseMenu("mnuCalrev");
  EndEditor();
  EXPECT_EQ(Top(), "Rev_limiter");
  GoTo("STools");
  EXPECT_TRUE(STools.enabled);
  PressKey("Alt+C");
  EXPECT_EQ(Top(), "Calculator");
}

TEST_F(ToolsTest, ComingBackDuringTheWaitFindsTheScreenAnswering) {
  PressKey("Alt+V");
  ChooseMenu("mnuCalrev");
  ShowMainMenu();
  GoTo("STools");
  PressKey("Alt+C");
  EXPECT_EQ(Top(), "Calculator");
  EndEditor();
  EXPECT_EQ(Top(), "Calculator");
}

TEST_F(ToolsTest, WithoutAnEditorTheReasonIsTold) {
  SetTextEditorMissing(true);
  PressKey("Alt+V");
  const ShownBox box = TakeBox();
  EXPECT_EQ(box.title, "Error");
  EXPECT_FALSE(box.text.empty());
  EXPECT_EQ(Top(), "STools");
  EXPECT_TRUE(STools.enabled);
}

TEST_F(ToolsTest, AMissingGuideIsTold) {
  DeleteFile(guide);
  PressKey("Alt+V");
  const ShownBox box = TakeBox();
  EXPECT_EQ(box.title, "Error");
  EXPECT_EQ(box.text.substr(0, 10), "Error # 53");
  EXPECT_TRUE(StartedProcesses().empty());
  EXPECT_EQ(Top(), "STools");
}

// ---- options ------------------------------------------------------------------------------------

class OptionsTest : public ToolsTest {};

TEST_F(OptionsTest, CarriesItsTexts) {
  ChooseMenu("mnuToolsOptions");
  EXPECT_EQ(Options.title, "SCREEN OPTIONS");
  EXPECT_EQ(At(Options, "Monitor").caption, "Engine Monitor Type");
  EXPECT_EQ(At(Options, "Contrast").caption, "Screen Type");
  EXPECT_EQ(At(Options, "Option1").caption, "&Analog Monitor Screen (EDIT Mode)");
  EXPECT_EQ(At(Options, "Option2").caption, "&Digital Monitor Screen (ONFLY Mode)");
  EXPECT_EQ(At(Options, "Option3").caption, "&Normal Contrast Monitor Screen (Blue)");
  EXPECT_EQ(At(Options, "Option4").caption, "&High Contrast Monitor Screen (Black)");
  EXPECT_EQ(At(Options, "Command1").caption, "<< BACK");
}

TEST_F(OptionsTest, ReadsTheSettings) {
  SaveSetting("Options", "Screensetting", "1");
  SaveSetting("Options", "Monitor Screen", "1");
  ChooseMenu("mnuToolsOptions");
  EXPECT_FALSE(At(Options, "Option1").checked);
  EXPECT_TRUE(At(Options, "Option2").checked);
  EXPECT_FALSE(At(Options, "Option3").checked);
  EXPECT_TRUE(At(Options, "Option4").checked);
}

TEST_F(OptionsTest, BackMirrorsTheChoicesIntoTheMenu) {
  ChooseMenu("mnuToolsOptions");
  EXPECT_TRUE(At(Options, "Option1").checked);
  EXPECT_TRUE(At(Options, "Option3").checked);
  PressKey("Alt+D");
  PressKey("Alt+H");
  EXPECT_FALSE(FindMenu(frmMain, "mnuoptionscreen2")->checked);
  ClickOn(Options, "Command1");
  RunPending();
  EXPECT_EQ(GetSetting("Options", "Screensetting"), "1");
  EXPECT_EQ(GetSetting("Options", "Monitor Screen"), "1");
  EXPECT_FALSE(FindMenu(frmMain, "mnuoptionscreen1")->checked);
  EXPECT_TRUE(FindMenu(frmMain, "mnuoptionscreen2")->checked);
  EXPECT_FALSE(FindMenu(frmMain, "mnuoptionnormal")->checked);
  EXPECT_TRUE(FindMenu(frmMain, "mnuoptionHigh")->checked);
  EXPECT_EQ(Top(), "STools");
}

TEST_F(OptionsTest, TheMainMenuReturnsWhenNothingElseIsUp) {
  LeaveWork();
  ChooseMenu("mnuToolsOptions");
  PressKey("Esc");
  RunPending();
  EXPECT_EQ(Top(), "Form1");
}

}  // namespace
