// The 3D graph inside the running program, when what it shows changes under it: another file, a
// save, a session that begins.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "core/binfile.h"
#include "editors/graph3d.h"
#include "platform/files.h"
#include "platform/frame.h"
#include "screens/standinprogram.h"
#include "shell/mainframe.h"

namespace {

constexpr const char* unavailable = "This Process is Unavailable while ONFLY Monitoring is Active.";

class GraphInProgram : public StandInProgram {
 protected:
  void SetUp() override {
    StandInProgram::SetUp();
    path_ = MakeCalibration("V8.bin", 0.10F);
    OpenFile(path_);
    CalChanged = false;
  }
  // A file whose VE cells all hold the same correction.
  static std::string MakeCalibration(const char* name, float ve) {
    std::vector<float> values = SmallEngine();
    for (std::size_t i = 0; i < 8; ++i) {
      values[45 + i] =
          ve > 0 ? 500.0F * static_cast<float>(i + 1) : 600.0F * static_cast<float>(i + 1);
      values[53 + i] = 20 + 10.0F * static_cast<float>(i);
    }
    for (std::size_t cell = 1; cell <= 64; ++cell) {
      values[60 + cell] = 20;
      values[124 + cell] = ve;
      values[344 + cell] = 14;
    }
    return StandInProgram::MakeCalibration(name, values);
  }
  static void OpenFile(const std::string& path) {
    AnswerNextFile(path);
    if (!CurrentBinPath.empty()) AnswerNextBox(Answer::Yes);
    ChooseMenu("mnuFileOpen");
    RunPending();
    while (AnyBoxShown()) TakeBox();
    ASSERT_EQ(CurrentBinPath, path);
  }
  static void OpenGraph(const char* entry = "mnuCalVEsubgraph") {
    ChooseMenu(entry);
    RunPending();
    ASSERT_EQ(TopWorkScreen(), &Graph3D);
  }
  static void WalkToFirstCell() {
    for (const char* key : {"Right", "Right", "Right", "Up"}) PressKey(key);
  }
  static std::string Shown(const char* control) { return ShownText(Graph3D, control); }
  static const std::vector<Primitive>& Picture() {
    return At(Graph3D, "Picture1").drawing.primitives;
  }
};

}  // namespace

TEST_F(GraphInProgram, AnotherFileUnderItIsShownAndNotOverwritten) {
  OpenGraph();
  WalkToFirstCell();
  EXPECT_EQ(Shown("Value_Text"), "10.00");
  const auto before = Picture();
  OpenFile(MakeCalibration("Other.bin", -0.25F));
  EXPECT_EQ(TopWorkScreen(), &Graph3D);
  EXPECT_EQ(TableWork[9][11], -25);
  EXPECT_EQ(RpmAxis[5], 1200);
  EXPECT_EQ(Shown("Value_Text"), "-25.00");
  EXPECT_FALSE(Picture() == before);
  const auto read = CalValues;
  EXPECT_EQ(read[125], -0.25F);
  PressKey("Right");
  PressKey("Plus");
  for (std::size_t index = 0; index < read.size(); ++index)
    EXPECT_EQ(CalValues[index], index == 126 ? -0.24F : read[index]) << index;
}

TEST_F(GraphInProgram, WhatASavePutsRightIsNotStepped) {
  OpenGraph("mnuCalEGOsubgraph");
  WalkToFirstCell();
  const std::function<void()> roads[] = {[] { PressKey("Ctrl+S"); },
                                         [] { ChooseMenu("mnuFileSave"); }};
  for (const auto& save : roads) {
    CalValues[408] = 40;  // no ratio: the save takes the stoichiometric one
    TableWork[9][11] = 40;
    save();
    RunPending();
    ASSERT_EQ(CalValues[408], 14.64F);
    EXPECT_EQ(TableWork[9][11], 14.64F);
  }
  PressKey("Plus");
  EXPECT_EQ(CalValues[408], 14.64F);
  EXPECT_EQ(CalValues[345], 14.01F);
}

TEST_F(GraphInProgram, AStepInAMarginStaysUntilTheCalibrationIsAnother) {
  OpenGraph();
  PressKey("Right");
  PressKey("Plus");
  ASSERT_EQ(Shown("Value_Text"), "1.00");
  const auto stepped = Picture();
  ShowScreen(frmerr);
  RunPending();
  ClickOn(frmerr, "Command1");
  RunPending();
  EXPECT_EQ(Shown("Value_Text"), "1.00");
  EXPECT_TRUE(Picture() == stepped);
  PressKey("Ctrl+S");
  RunPending();
  EXPECT_EQ(Shown("Value_Text"), "1.00");
  OpenFile(path_);
  EXPECT_EQ(Shown("Value_Text"), "0") << "opened anew, though with the same values";
}

TEST_F(GraphInProgram, AStepInAMarginIsGoneWhenTheGraphIsOpenedAgain) {
  OpenGraph();
  PressKey("Right");
  PressKey("Plus");
  PressKey("Esc");
  RunPending();
  OpenGraph();
  PressKey("Right");
  EXPECT_EQ(Shown("Value_Text"), "0");
}

TEST_F(GraphInProgram, ItRefusesToStepInASessionThatBeganUnderIt) {
  struct Case {
    const char* entry;
    std::size_t firstCell;
    int mode;
    bool refused;
  };
  for (const Case& c : {Case{"mnuCalVEsubgraph", 125, 1, true},
                        {"mnuCalVEsubgraph", 125, 2, true},
                        {"mnuCalVEsubgraph", 125, 3, true},
                        {"mnuCalignADsubgraph", 61, 1, true},
                        {"mnuCalignADsubgraph", 61, 3, true},
                        {"mnuCalGPOsubgraph", 261, 1, true},
                        {"mnuCalGPOsubgraph", 261, 3, true},
                        {"mnuCalEGOsubgraph", 345, 1, false},
                        {"mnuCalEGOsubgraph", 345, 2, false},
                        {"mnuCalEGOsubgraph", 345, 3, true}}) {
    SCOPED_TRACE(std::string(c.entry) + " in mode " + std::to_string(c.mode));
    OpenGraph(c.entry);
    CalValues[c.firstCell] = 12;
    WalkToFirstCell();
    CalChanged = false;
    MonitorMode = c.mode;
    for (const char* key : {"Plus", "Minus", "KeypadPlus"}) {
      const auto before = CalValues;
      PressKey(key);
      EXPECT_EQ(AnyBoxShown(), c.refused) << key;
      if (AnyBoxShown()) {
        EXPECT_EQ(TakeBox().text, unavailable);
      }
      EXPECT_EQ(CalValues == before, c.refused) << key;
      EXPECT_EQ(CalChanged, !c.refused) << key;
    }
    EXPECT_EQ(OnflyByteCount, 0);
    MonitorMode = 0;
    PressKey("Esc");
    RunPending();
  }
}

// ---- hot keys -----------------------------------------------------------------------------------

TEST_F(GraphInProgram, LettersPopUpTheirMenus) {
  OpenGraph();
  for (const auto& [key, menu] : {std::pair{"Ctrl+C", "mnuCal"},
                                  {"Ctrl+F", "mnuFile"},
                                  {"Ctrl+H", "mnuHelp"},
                                  {"Ctrl+O", "mnuCom"},
                                  {"Ctrl+T", "mnuTools"},
                                  {"Ctrl+V", "mnuView"}}) {
    PressKey(key);
    EXPECT_EQ(TakePopUpMenu(), menu) << key;
  }
  EXPECT_EQ(TopWorkScreen(), &Graph3D);
}

TEST_F(GraphInProgram, CtrlEShowsTheCalibrationScreen) {
  OpenGraph();
  PressKey("Ctrl+E");
  RunPending();
  EXPECT_FALSE(Graph3D.loaded);
  EXPECT_EQ(TopWorkScreen()->name, "CSForm1");
}

TEST_F(GraphInProgram, CtrlPStepsFourPortsAndSaves) {
  OpenGraph();
  for (int port : {2, 3, 4, 1}) {
    PressKey("Ctrl+P");
    EXPECT_EQ(ComPort, port);
    EXPECT_EQ(GetSetting("Options", "Comport"), std::to_string(port));
  }
}

TEST_F(GraphInProgram, CtrlSWritesWhatWasStepped) {
  OpenGraph();
  WalkToFirstCell();
  PressKey("Plus");
  EXPECT_TRUE(CalChanged);
  PressKey("Ctrl+S");
  RunPending();
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(BinImage[118], 127 + 28);  // 255 * 0.11 is 28.05
  EXPECT_EQ(TopWorkScreen(), &Graph3D);
  EXPECT_EQ(CursorColumn, FirstTableColumn);
}

TEST_F(GraphInProgram, CtrlMShowsTheMonitor) {
  OpenGraph();
  PressKey("Ctrl+M");
  RunPending();
  EXPECT_EQ(opened_, "Monitor1 ");
}

TEST_F(GraphInProgram, CtrlXClosesItAndEndsTheProgram) {
  OpenGraph();
  PressKey("Ctrl+X");
  RunPending();
  EXPECT_FALSE(Graph3D.loaded);
  EXPECT_FALSE(frmMain.shown);
}

TEST_F(GraphInProgram, CtrlZSavesProgramsAndShowsTheMonitor) {
  OpenGraph();
  CalChanged = true;
  PressKey("Ctrl+Z");
  RunPending();
  EXPECT_FALSE(Graph3D.loaded);
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(opened_, "Program_ZEM Monitor1 ");
}

TEST_F(GraphInProgram, CtrlAloneAndOtherLettersDoNothing) {
  OpenGraph();
  WalkToFirstCell();
  const auto before = CalValues;
  for (const char* key : {"Ctrl", "Ctrl+A", "Ctrl+Up", "Ctrl+Plus"}) PressKey(key);
  EXPECT_EQ(CalValues, before);
  EXPECT_EQ(CursorRow, FirstTableRow);
  EXPECT_EQ(TopWorkScreen(), &Graph3D);
  EXPECT_EQ(TakePopUpMenu(), "");
}

// ---- sessions -----------------------------------------------------------------------------------

TEST_F(GraphInProgram, WhereKeysChangeNothingNoSessionRefusesThem) {
  OpenGraph();
  MonitorMode = 3;
  PressKey("Plus");  // column 1
  VeView = 1;
  PressKey("Right");
  PressKey("Plus");
  EXPECT_FALSE(AnyBoxShown());
  MonitorMode = 0;
}
