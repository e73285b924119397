// Settings on the disk, instances, processes, editors and the printer of the desktop.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QProcess>
#include <QSettings>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "platform/files.h"
#include "platform/loop.h"
#include "platform/qt/qteditor.h"
#include "platform/qt/qtprinter.h"
#include "platform/qt/qtsystem.h"
#include "platform/system.h"
#include "support/testfolder.h"
#include "support/user.h"

namespace {

class SystemQtTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    folder = TestFolder();
    path = std::getenv("PATH");
  }
  void TearDown() override {
    ::setenv("PATH", path.c_str(), 1);
    for (const char* name : {"VISUAL", "EDITOR"}) ::unsetenv(name);
    PrintToFile({});
    PlatformTest::TearDown();
  }
  // A program of the test, alone on the path with what it is given besides.
  std::string Program(const std::string& name, const std::string& script) {
    std::string file = folder + "/" + name;
    MakeFile(file, "#!/bin/sh\n" + script + "\n");
    ::chmod(file.c_str(), 0755);
    return file;
  }
  void OnlyProgramsOfTheTest() { ::setenv("PATH", folder.c_str(), 1); }
  static std::string TextOf(const std::string& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
  }
  template <typename Condition>
  static bool Within(int milliseconds, Condition condition) {
    std::int64_t until = MonotonicMicroseconds() + milliseconds * 1000LL;
    while (!condition() && MonotonicMicroseconds() < until) {
      Yield();
      RunPending();
    }
    return condition();
  }

  std::string folder;
  std::string path;
};

// ---- settings -----------------------------------------------------------------------------------

TEST_F(SystemQtTest, SettingsStandInAFileOfTheUser) {
  SaveSetting("Options", "Show Tips at Startup", "1");
  SettingsStore().sync();
  std::string file = SettingsStore().fileName().toStdString();
  EXPECT_TRUE(file.ends_with("/Halvane2/Halvane2.conf")) << file;
  EXPECT_TRUE(file.starts_with(std::getenv("XDG_CONFIG_HOME"))) << file;
  EXPECT_NE(TextOf(file).find("[Options]"), std::string::npos);
}

TEST_F(SystemQtTest, SettingsAreOnTheDiskWhenTheProgramHasEnded) {
  SaveSetting("Settings", "MainLeft", "1234");
  RunFromQueue([] { EndProgram(3); });
  EXPECT_EQ(RunProgram(), 3);
  std::string file = SettingsStore().fileName().toStdString();
  EXPECT_NE(TextOf(file).find("MainLeft=1234"), std::string::npos);
}

TEST_F(SystemQtTest, SettingWrittenByHandWithACommaIsReadAsItStands) {
  SaveSetting("Options", "Comport", "1");
  SettingsStore().sync();
  std::ofstream(SettingsStore().fileName().toStdString())
      << "[Options]\nComport=1,2\nQuickStart=0\n";
  SettingsStore().sync();
  EXPECT_EQ(GetSetting("Options", "Comport", "none"), "1,2");
  EXPECT_EQ(GetAllSettings("Options"),
            (std::map<std::string, std::string>{{"Comport", "1,2"}, {"QuickStart", "0"}}));
}

// ---- instances ----------------------------------------------------------------------------------

TEST_F(SystemQtTest, FirstInstanceTakesThePlaceAndKeepsIt) {
  EXPECT_FALSE(AnotherInstanceRuns());
  EXPECT_FALSE(AnotherInstanceRuns());
}

// ---- processes ----------------------------------------------------------------------------------

TEST_F(SystemQtTest, ProcessTellsItsExitCodeFromTheQueue) {
  std::string program = Program("seven", "exit 7");
  int code = -5;
  int depth = -1;
  EXPECT_TRUE(StartProcess(program, "", [&](int exitCode) {
    code = exitCode;
    depth = YieldDepth();
  }));
  EXPECT_TRUE(Within(5000, [&] { return code != -5; }));
  EXPECT_EQ(code, 7);
  EXPECT_EQ(depth, 0);
}

TEST_F(SystemQtTest, ArgumentWithBlanksIsOneArgument) {
  std::string out = folder + "/out";
  std::string program = Program("tell", "printf '%s|%s' \"$#\" \"$1\" > '" + out + "'");
  bool ended = false;
  EXPECT_TRUE(StartProcess(program, "User's Guide.txt", [&](int) { ended = true; }));
  EXPECT_TRUE(Within(5000, [&] { return ended; }));
  EXPECT_EQ(TextOf(out), "1|User's Guide.txt");
}

TEST_F(SystemQtTest, MissingProgramCannotBeStarted) {
  EXPECT_FALSE(StartProcess(folder + "/none", "", {}));
}

TEST_F(SystemQtTest, KilledProcessIsToldAsWell) {
  std::string program = Program("dies", "kill -9 $$");
  int code = 0;
  EXPECT_TRUE(StartProcess(program, "", [&](int exitCode) { code = exitCode; }));
  EXPECT_TRUE(Within(5000, [&] { return code != 0; }));
  EXPECT_EQ(code, -1);
}

// ---- the text editor ----------------------------------------------------------------------------

TEST_F(SystemQtTest, EditorOfTheEnvironmentComesFirst) {
  Program("mine", "exit 0");
  Program("gedit", "exit 0");
  OnlyProgramsOfTheTest();
  ::setenv("VISUAL", "mine -x \"two words\"", 1);
  auto editor = FindTextEditor("/a b.txt");
  ASSERT_TRUE(editor);
  EXPECT_EQ(editor->program, "mine");
  EXPECT_EQ(editor->arguments, (QStringList{"-x", "two words", "/a b.txt"}));
}

TEST_F(SystemQtTest, KnownEditorIsMadeToWait) {
  Program("gedit", "exit 0");
  OnlyProgramsOfTheTest();
  auto editor = FindTextEditor("/a.txt");
  ASSERT_TRUE(editor);
  EXPECT_EQ(editor->program, "gedit");
  EXPECT_EQ(editor->arguments, (QStringList{"--standalone", "/a.txt"}));
  ::setenv("VISUAL", "gedit", 1);
  EXPECT_EQ(FindTextEditor("/a.txt")->arguments, (QStringList{"--standalone", "/a.txt"}));
}

TEST_F(SystemQtTest, TerminalEditorRunsInATerminal) {
  Program("xterm", "exit 0");
  Program("nano", "exit 0");
  OnlyProgramsOfTheTest();
  auto editor = FindTextEditor("/a.txt");
  ASSERT_TRUE(editor);
  EXPECT_EQ(editor->program, "xterm");
  EXPECT_EQ(editor->arguments, (QStringList{"-e", "nano", "/a.txt"}));
}

TEST_F(SystemQtTest, NoEditorIsToldInWords) {
  OnlyProgramsOfTheTest();
  MakeFile(folder + "/guide.txt", "x");
  std::string why;
  EXPECT_FALSE(StartTextEditor(folder + "/guide.txt", {}, why));
  EXPECT_EQ(
      why,
      "No text editor was found. Install one (for instance mousepad or gedit), or name one in "
      "the environment variable VISUAL.");
  EXPECT_FALSE(StartTextEditor(folder + "/none.txt", {}, why));
  EXPECT_EQ(why, "There is no file " + folder + "/none.txt.");
}

TEST_F(SystemQtTest, EndOfTheEditorIsToldWhenItsProcessHasEnded) {
  std::string go = folder + "/go";
  Program("mine", "while [ ! -e '" + go + "' ]; do /bin/sleep 0.02; done");
  ::setenv("VISUAL", (folder + "/mine").c_str(), 1);
  MakeFile(folder + "/guide.txt", "x");
  std::string why;
  bool ended = false;
  EXPECT_TRUE(StartTextEditor(
      folder + "/guide.txt", [&] { ended = true; }, why))
      << why;
  Within(150, [&] { return ended; });
  EXPECT_FALSE(ended);
  MakeFile(go, "");
  EXPECT_TRUE(Within(5000, [&] { return ended; }));
}

// ---- the printer
// ----------------------------------------------------------------------------------

TEST_F(SystemQtTest, DocumentIsPrintedPageByPage) {
  std::string file = folder + "/report.pdf";
  PrintToFile(QString::fromStdString(file));
  EXPECT_TRUE(PrinterBegin("Calibration"));
  PrinterFont("Courier New", 10);
  int lines = PrinterLinesPerPage();
  EXPECT_GT(lines, 30);
  EXPECT_EQ(PrinterLine(), 0);
  PrintAt(5, "TOG");
  PrintLine("= 12.0");
  EXPECT_EQ(PrinterLine(), 1);
  PrintAt(20, "first");
  PrintAt(3, "a column that is passed begins a line");
  EXPECT_EQ(PrinterLine(), 2);
  PrintLine();
  EXPECT_EQ(PrinterLine(), 3);
  for (int line = 3; line < lines; ++line) PrintLine("line");
  EXPECT_EQ(PrinterLine(), lines);
  PrintLine("next page");
  EXPECT_EQ(PrinterLine(), 1);
  PrinterNewPage();
  EXPECT_EQ(PrinterLine(), 0);
  PrintLine("last page");
  PrinterEnd();
  std::string pdf = TextOf(file);
  EXPECT_TRUE(pdf.starts_with("%PDF"));
  EXPECT_NE(pdf.find("/Count 3"), std::string::npos);
}

TEST_F(SystemQtTest, EndOfTheProgramLeavesTheChoiceOfAPrinter) {
  std::optional<bool> begun;
  RunFromQueue([&] { begun = PrinterBegin("Calibration"); });
  int timer = StartTimer(20, [] { EndProgram(); });
  RunProgram();
  StopTimer(timer);
  EXPECT_EQ(begun, false);
}

TEST_F(SystemQtTest, LargerFontHasFewerLinesOnAPage) {
  PrintToFile(QString::fromStdString(folder + "/report.pdf"));
  EXPECT_TRUE(PrinterBegin("Calibration"));
  PrinterFont("Courier New", 10);
  int small = PrinterLinesPerPage();
  PrinterFont("Courier New", 20);
  EXPECT_LT(PrinterLinesPerPage(), small * 6 / 10);
  PrinterAbort();
  EXPECT_EQ(PrinterLinesPerPage(), 0);
}

}  // namespace
