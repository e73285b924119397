// Editors inside the running program: hot keys, the way from and to the calibration screen, saving.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "core/binfile.h"
#include "editors/airfueltable.h"
#include "editors/binjgraph.h"
#include "platform/files.h"
#include "platform/frame.h"
#include "screens/standinprogram.h"
#include "shell/mainframe.h"

namespace {

// A second editor, for what Binj_graph does otherwise.
Editor& OrdinaryEditor() {
  static Editor editor = [] {
    Editor made;
    made.name = "KnockCntl";
    made.title = "KNOCK CONTROL";
    made.fields = {{.number = 1, .control = "Text1", .calIndex = 37, .low = 2, .high = 100}};
    made.back = {.screen = "CSForm1", .button = "&Knock Control"};
    return made;
  }();
  return editor;
}

class EditorHotKeys : public StandInProgram {
 protected:
  void SetUp() override {
    StandInProgram::SetUp();
    RegisterEditor(OrdinaryEditor());
    OpenCalibrationFile();
    PressKey("Alt+P");
    RunPending();
    ASSERT_EQ(Top(), "Binj_graph");
  }
  void OpenCalibrationFile() {
    path_ = MakeCalibration("V8.bin", SmallEngine());
    AnswerNextFile(path_);
    PressKey("Alt+E");
    RunPending();
    TakeBox();
  }
  Screen& Injectors() { return BinjGraph().screen; }
  void OpenOrdinary() {
    PressKey("Esc");
    RunPending();
    OpenScreen("KnockCntl");
    RunPending();
  }
};

}  // namespace

TEST_F(EditorHotKeys, BackReturnsToTheButtonOfTheCalibrationScreen) {
  PressKey("Esc");
  RunPending();
  EXPECT_EQ(Top(), "CSForm1");
  EXPECT_EQ(ShownFocus(), "BasicInjectors");
}

TEST_F(EditorHotKeys, LettersPopUpTheirMenus) {
  const std::vector<std::pair<const char*, const char*>> menus = {
      {"Ctrl+C", "mnuCal"}, {"Ctrl+F", "mnuFile"},  {"Ctrl+H", "mnuHelp"},
      {"Ctrl+O", "mnuCom"}, {"Ctrl+T", "mnuTools"}, {"Ctrl+V", "mnuView"}};
  for (const auto& [key, menu] : menus) {
    PressKey(key);
    EXPECT_EQ(TakePopUpMenu(), menu) << key;
  }
}

TEST_F(EditorHotKeys, AreDeadWhileAnEntryIsPending) {
  TypeText("5");
  for (const char* key : {"Ctrl+C", "Ctrl+F", "Ctrl+H", "Ctrl+O", "Ctrl+T", "Ctrl+V", "Ctrl+E",
                          "Ctrl+M", "Ctrl+P", "Ctrl+S", "Ctrl+X", "Ctrl+Z"}) {
    PressKey(key);
    RunPending();
    EXPECT_EQ(Top(), "Binj_graph") << key;
    EXPECT_EQ(TakePopUpMenu(), "") << key;
  }
  EXPECT_EQ(ComPort, 1);
  EXPECT_EQ(opened_, "");
  EXPECT_EQ(ShownText(Injectors(), "Text1"), "5");
}

TEST_F(EditorHotKeys, NoMenuEntryLeavesOrSavesWhileAnEntryIsPending) {
  const auto before = ReadWholeFile(path_);
  TypeText("5");
  for (const char* entry :
       {"mnuFileOpen", "mnuFileSave", "mnuFileSaveAs", "mnuFileExit", "mnuViewMain", "mnuViewCal",
        "mnuViewMonitor", "mnuViewProgram", "mnuCalknock", "mnuComportssub2", "mnuHelpAbout"}) {
    ChooseMenu(entry);
    RunPending();
    EXPECT_EQ(Top(), "Binj_graph") << entry;
    EXPECT_FALSE(AnyBoxShown()) << entry;
  }
  EXPECT_EQ(opened_, "");
  EXPECT_EQ(ComPort, 1);
  EXPECT_EQ(ReadWholeFile(path_), before);
  EXPECT_EQ(ShownFocus(), "Text1");
  EXPECT_EQ(ShownText(Injectors(), "Text1"), "5");
  EXPECT_EQ(At(Injectors(), "Text1").selLength, 1) << "ready to be typed over";
  PressKey("Enter");
  ChooseMenu("mnuCalknock");
  RunPending();
  EXPECT_EQ(CalValues[232], 5);
  EXPECT_EQ(Top(), "KnockCntl");
}

TEST_F(EditorHotKeys, CtrlEShowsTheCalibrationScreen) {
  PressKey("Ctrl+E");
  RunPending();
  EXPECT_EQ(Top(), "CSForm1");
  EXPECT_FALSE(Injectors().loaded);
}

TEST_F(EditorHotKeys, CtrlPOfTheInjectorsFlipsTwoPortsAndSavesNothing) {
  const std::string saved = GetSetting("Options", "Comport");
  PressKey("Ctrl+P");
  EXPECT_EQ(ComPort, 2);
  EXPECT_EQ(frmMain.statusPanels.at(1), "2");
  PressKey("Ctrl+P");
  EXPECT_EQ(ComPort, 1);
  EXPECT_EQ(GetSetting("Options", "Comport"), saved);
}

TEST_F(EditorHotKeys, CtrlPOfOtherEditorsStepsFourPortsAndSaves) {
  OpenOrdinary();
  for (int port : {2, 3, 4, 1, 2}) {
    PressKey("Ctrl+P");
    EXPECT_EQ(ComPort, port);
    EXPECT_EQ(GetSetting("Options", "Comport"), std::to_string(port));
  }
}

TEST_F(EditorHotKeys, CtrlSWritesWhatWasEntered) {
  TypeText("12.5");
  PressKey("Enter");
  EXPECT_TRUE(CalChanged);
  PressKey("Ctrl+S");
  RunPending();
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(Top(), "Binj_graph");
  EXPECT_EQ(BinImage[218], 6);  // 12.5 * 125 / 256 is 6.1
  EXPECT_TRUE(FileExists(TestFolder() + "/V8.S19"));
}

TEST_F(EditorHotKeys, EveryRoadOfASaveShowsWhatItHasPutRight) {
  const std::function<void()> roads[] = {[] { PressKey("Ctrl+S"); },
                                         [] { ChooseMenu("mnuFileSave"); }};
  PressKey("Esc");
  RunPending();
  OpenScreen("EGO_AF_TBL");
  for (const auto& save : roads) {
    CalValues[345] = 40;  // no ratio of a mixture that burns
    ShowScreen(EgoAfTbl().screen);
    RunPending();
    EXPECT_EQ(ShownText(EgoAfTbl().screen, "Table_EGO(1)"), "40");
    const std::string focus = ShownFocus();
    save();
    RunPending();
    EXPECT_EQ(CalValues[345], 14.64F);
    EXPECT_EQ(ShownText(EgoAfTbl().screen, "Table_EGO(1)"), "14.64");
    EXPECT_EQ(ShownFocus(), focus);
  }
}

TEST_F(EditorHotKeys, CtrlAloneDoesNothing) {
  PressKey("Ctrl");
  RunPending();
  EXPECT_EQ(Top(), "Binj_graph");
  EXPECT_FALSE(AnyBoxShown());
  EXPECT_EQ(ShownText(Injectors(), "Text1"), "10.000");
}

TEST_F(EditorHotKeys, ComingBackToTheFrontRewritesTheStatusBar) {
  ChooseMenu("mnuHelpAbout");
  RunPending();
  SetStatusPanel(frmMain, 0, "Status: Framing Error");
  SetStatusPanel(frmMain, 1, "?");
  PressKey("Esc");
  RunPending();
  EXPECT_EQ(Top(), "Binj_graph");
  EXPECT_EQ(frmMain.statusPanels,
            (std::vector<std::string>{" ALT + _Letter = Local HOT KEYS [F1 = HELP] ", "1"}));
}

TEST_F(EditorHotKeys, CtrlMShowsTheMonitor) {
  PressKey("Ctrl+M");
  RunPending();
  EXPECT_EQ(opened_, "Monitor1 ");
}

TEST_F(EditorHotKeys, CtrlXClosesTheEditorAndEndsTheProgram) {
  PressKey("Ctrl+X");
  RunPending();
  EXPECT_FALSE(Injectors().loaded);
  EXPECT_FALSE(frmMain.shown);
}

TEST_F(EditorHotKeys, CtrlZSavesProgramsAndShowsTheMonitor) {
  TypeText("9");
  PressKey("Enter");
  PressKey("Ctrl+Z");
  RunPending();
  EXPECT_FALSE(Injectors().loaded);
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(opened_, "Program_ZEM Monitor1 ");
}

TEST_F(EditorHotKeys, AnotherFileOpenedFromTheMenuShowsInTheEditor) {
  const std::string other = TestFolder() + "/OTHER.bin";
  std::vector<float> values(512, 0);
  values[232] = 21;
  values[459] = 2;
  MakeFile(other, std::string(reinterpret_cast<const char*>(values.data()), 2048));
  ClickOn(Injectors(), "Text8");
  TypeText("60");
  PressKey("Enter");
  EXPECT_EQ(MaxManifoldKpa, 60);
  CalChanged = false;
  AnswerNextFile(other);
  AnswerNextBox(Answer::Yes);
  ChooseMenu("mnuFileOpen");
  RunPending();
  while (AnyBoxShown()) TakeBox();
  EXPECT_EQ(Top(), "Binj_graph");
  EXPECT_EQ(ShownText(Injectors(), "Text1"), "21.000");
  EXPECT_EQ(ShownText(Injectors(), "Text8"), "208");
}
