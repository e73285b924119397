// A started program on the headless platform.
#include "shell/shelltest.h"

#include <map>
#include <memory>
#include <set>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "link/comm.h"
#include "platform/headless/script.h"
#include "platform/screen.h"
#include "shell/calscreen.h"
#include "shell/commands.h"
#include "shell/diagram.h"
#include "shell/mainmenu.h"
#include "shell/menus.h"
#include "shell/start.h"
#include "shell/tools.h"

namespace {

std::map<std::string, std::unique_ptr<Screen>> standIns;

bool OfTheShell(const std::string& name) {
  static const std::set<std::string> own = {"Form1",   "CSForm1",  "STools",
                                            "Options", "Soft_Dia", "frmAbout"};
  return own.contains(name);
}

std::set<std::string> KnownNames() {
  std::set<std::string> names = {"Monitor1", "Monitor3"};
  for (const MenuRow& row : MenuRows()) names.emplace(row.action.screen);
  for (const ButtonRow& row : MainMenuRows()) names.emplace(row.action.screen);
  for (const ButtonRow& row : ToolRows()) names.emplace(row.action.screen);
  for (const CalibrationRow& row : CalibrationRows()) names.emplace(row.button.action.screen);
  for (const DiagramCommand& row : DiagramCommands()) names.emplace(row.action.screen);
  names.erase("");
  return names;
}

}  // namespace

void ShellTest::SetUp() {
  PlatformTest::SetUp();
  ResetCalibrationState();
  ResetLinkState();
  CommonDialog = {};
  RevLimiterCaller = 0;
  WizardKeepFile = false;
}

void ShellTest::TearDown() {
  PlatformTest::TearDown();
  standIns.clear();
  ResetCalibrationState();
  ResetLinkState();
}

void ShellTest::Start() {
  RegisterShellScreens();
  Main();
  RunPending();
}

Screen& ShellTest::StandIn(const std::string& name, ScreenPlacement placement) {
  auto& screen = standIns[name];
  screen = std::make_unique<Screen>();
  screen->name = name;
  screen->placement = placement;
  screen->build = [](Screen& built) {
    Add(built, {.name = "Button", .kind = ControlKind::Button, .caption = "Button"});
  };
  screen->on.load = [this](Screen& loaded) { Note("+" + loaded.name); };
  screen->on.unload = [this](Screen& unloaded) { Note("-" + unloaded.name); };
  RegisterScreen(name, [opened = screen.get()] { ShowScreen(*opened); });
  return *screen;
}

void ShellTest::StandInForAll() {
  for (const std::string& name : KnownNames())
    if (!OfTheShell(name)) StandIn(name);
}

void PutSomeFile() { PutFile(SomeFile, std::vector<std::uint8_t>(2048, 0)); }

void ShellTest::OpenSomeFile() {
  PutSomeFile();
  AnswerNextFile(SomeFile);
  OpenCalibration();
  ASSERT_EQ(TakeBox().kind, "open");
  ASSERT_EQ(CurrentBinPath, SomeFile);
}

std::string ShellTest::Top() { return TopWorkScreen() ? TopWorkScreen()->name : ""; }

void ShellTest::Note(const std::string& note) { notes += (notes.empty() ? "" : " ") + note; }

std::string ShellTest::TakeNotes() {
  std::string taken;
  taken.swap(notes);
  return taken;
}

void ExpectBox(std::string_view text, std::string_view title, Buttons buttons) {
  const ShownBox box = TakeBox();
  EXPECT_EQ(box.kind, "message");
  EXPECT_EQ(box.text, text);
  EXPECT_EQ(box.title, title);
  EXPECT_EQ(static_cast<int>(box.buttons), static_cast<int>(buttons));
}
