// The tree of the whole program.
#include "shell/diagram.h"

#include <array>
#include <string>

#include "core/globalstate.h"
#include "platform/headless/script.h"
#include "platform/loop.h"
#include "platform/system.h"
#include "shell/calscreen.h"
#include "shell/navigation.h"
#include "shell/shelltest.h"
#include "shell/tools.h"

namespace {

struct Expected {
  const char* text;
  const char* key;
  const char* parent;
  const char* opens;
};
constexpr std::array<Expected, 43> expectedNodes = {{
    {"Main Menu", "r", "", "Form1"},
    {"Tuning Wizard", "child0", "r", "WIZARD"},
    {"Calibration File", "child1", "r", "CSForm1"},
    {"Basic Injectors", "Level1.0", "child1", "Binj_graph"},
    {"TPS Parameters", "inj1.0", "Level1.0", "TPSfrm"},
    {"MAP Parameters", "inj1.1", "Level1.0", "frmMAPfrm"},
    {"Fuel Enrichment", "Level1.1", "child1", "FuelEnrich"},
    {"TPS/MAP Blend", "FEnrich1.0", "Level1.1", "TPSBlend"},
    {"Starting Enrichments", "FEnrich1.1", "Level1.1", "Startfrm"},
    {"Warm-up Enrichments", "FEnrich1.2", "Level1.1", "Warmupfrm"},
    {"TPS Acceleration", "FEnrich1.4", "Level1.1", "Soft_Dia"},
    {"Decel. Fuel Cutoff", "FEnrich1.5", "Level1.1", "FrmDecel"},
    {"MAT/Voltage Comp.", "FEnrich1.6", "Level1.1", "frmMATComp"},
    {"Volumetric Efficiency Table", "Level1.2", "child1", "frmVETable"},
    {"VE Table Graph", "VE1.0", "Level1.2", "frmVETable"},
    {"EGO Air/Fuel Ratio Table", "Level1.3", "child1", "EGO_AF_TBL"},
    {"EGO A/F Ratio Table Graph", "EGO_Feed1.0", "Level1.3", "EGO_AF_TBL"},
    {"EGO Parameters", "EGO_Feed1.1", "Level1.3", "EGO_Parameters"},
    {"Ignition Advance Table", "Level1.4", "child1", "Ign_adv_tbl"},
    {"Main Advance Table Graph", "Ign_Adv1.0", "Level1.4", "Ign_adv_tbl"},
    {"Coolant Advance", "Ign_Adv1.1", "Level1.4", "Cool_Adv"},
    {"Rev Limiter", "Level1.5", "child1", "Rev_limiter"},
    {"Knock Control", "Level1.6", "child1", "KnockCntl"},
    {"Idle Speed", "Level1.7", "child1", "IdleSpd"},
    {"Idle Advance", "Idle_Adv1.0", "Level1.7", "IdleAdv"},
    {"GPO Control Table", "Level1.8", "child1", "GPO_Ctl"},
    {"GPO Table Graph", "GPOCTL1.0", "Level1.8", "GPO_Ctl"},
    {"Sensor Parameters", "Level1.9", "child1", "Sensors"},
    {"Coolant Sensor", "Sensor1.0", "Level1.9", "Clt_sen"},
    {"MAP Sensor", "Sensor1.1", "Level1.9", "Map_sen"},
    {"TPS Sensor", "Sensor1.2", "Level1.9", "Tps_sen"},
    {"EGO Sensor", "Sensor1.3", "Level1.9", "Ego_sen"},
    {"MAT Sensor", "Sensor1.4", "Level1.9", "Mat_sen"},
    {"Monitor Engine Functions", "child2", "r", "Monitor1"},
    {"Program ZEM", "child3", "r", "Program_ZEM"},
    {"Create Datalog File", "child4", "r", "Datpara"},
    {"View Datalog File", "child5", "r", "Viewmap"},
    {"Software Tools", "child7", "r", "STools"},
    {"Calculator", "SoftW1.0", "child7", "Calculator"},
    {"Memo Pad", "SoftW1.1", "child7", "Memoedit"},
    {"Print Calibration File", "SoftW1.2", "child7", "PRTForm"},
    {"View Software User's Guide", "SoftW1.3", "child7", "Form1"},
    {"Program Options", "SoftW1.4", "child7", "Form1"},
}};

class DiagramTest : public ShellTest {
 protected:
  void SetUp() override {
    ShellTest::SetUp();
    StandInForAll();
    Start();
    GoTo("Soft_Dia");
  }
};

TEST_F(DiagramTest, NodesStandAsGiven) {
  const auto& nodes = At(Soft_Dia, "TreeView1").nodes;
  ASSERT_EQ(nodes.size(), expectedNodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    EXPECT_EQ(nodes[i].text, expectedNodes[i].text);
    EXPECT_EQ(nodes[i].key, expectedNodes[i].key);
    EXPECT_EQ(nodes[i].parent, expectedNodes[i].parent);
  }
}

TEST_F(DiagramTest, ADoubleClickClosesTheTreeAndRunsTheCommand) {
  for (const Expected& node : expectedNodes) {
    const std::string_view text = node.text;
    if (text == "TPS Acceleration" || text == "View Software User's Guide" ||
        text == "Program Options" || text == "Program ZEM")
      continue;
    SCOPED_TRACE(node.text);
    CurrentBinPath = SomeFile;
    if (text == "Calibration File") AnswerNextBox(Answer::Yes);
    if (text == "Tuning Wizard") AnswerNextBox(Answer::No);
    GoTo("Soft_Dia");
    DoubleClickNode(Soft_Dia, "TreeView1", node.text);
    EXPECT_FALSE(Soft_Dia.loaded);
    RunPending();
    EXPECT_EQ(Top(), node.opens);
    if (text == "Calibration File" || text == "Tuning Wizard") TakeBox();
  }
}

TEST_F(DiagramTest, TpsAccelerationLeavesTheTreeUp) {
  DoubleClickNode(Soft_Dia, "TreeView1", "TPS Acceleration");
  RunPending();
  EXPECT_EQ(Top(), "Soft_Dia");
  EXPECT_EQ(TakeNotes(), "");
}

TEST_F(DiagramTest, ProgrammingFromTheTreeEndsInTheMainMenu) {
  RegisterScreen("Program_ZEM", [this] { Note("programmed"); });
  DoubleClickNode(Soft_Dia, "TreeView1", "Program ZEM");
  RunPending();
  EXPECT_EQ(TakeNotes(), "programmed");
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(DiagramTest, TheGuideFromTheTreeEndsInTheTools) {
  PutTextFile("/home/user/Halvane_Software_User's_Guide.txt", "A guide.\n");
  DoubleClickNode(Soft_Dia, "TreeView1", "View Software User's Guide");
  RunPending();
  ASSERT_EQ(StartedProcesses().size(), 1u);
  EXPECT_FALSE(Soft_Dia.loaded);
  EXPECT_EQ(Top(), "STools");
  EXPECT_FALSE(STools.enabled);
  StartedProcesses()[0].ended(0);
  RunPending();
  EXPECT_EQ(Top(), "STools");
  EXPECT_TRUE(STools.enabled);
}

TEST_F(DiagramTest, ACommandRefusedInALiveSessionComesBackToTheMainMenu) {
  bool stop = false;
  RunFromQueue([&stop] {
    while (!stop) Yield();
  });
  AfterMs(5, [this] {
    MonitorMode = 3;
    DoubleClickNode(Soft_Dia, "TreeView1", "Software Tools");
    ExpectBox(LiveRefusal);
    EXPECT_EQ(Top(), "Form1");
  });
  AfterMs(10, [&stop] { stop = true; });
  RunPending();
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(DiagramTest, OptionsFromTheTreeEndInTheMainMenu) {
  DoubleClickNode(Soft_Dia, "TreeView1", "Program Options");
  RunPending();
  ASSERT_NE(OpenDialogScreen(), nullptr);
  EXPECT_EQ(OpenDialogScreen()->name, "Options");
  PressKey("Esc");
  RunPending();
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(DiagramTest, ADigitalMonitorFromTheTreeHasTheMainMenuBesideIt) {
  StandIn("Monitor3", ScreenPlacement::Above);
  SaveSetting("Options", "Screensetting", "1");
  DoubleClickNode(Soft_Dia, "TreeView1", "Monitor Engine Functions");
  RunPending();
  EXPECT_EQ(Top(), "Form1");
  EXPECT_EQ(MonitorMode, 3);
}

TEST_F(DiagramTest, NodesOfUnknownScreensAreGreyAndDoNothing) {
  UnloadScreen(Soft_Dia);
  ForgetRegisteredScreens();
  RegisterScreen("Soft_Dia", [] { ShowScreen(Soft_Dia); });
  RegisterScreen("KnockCntl", [this] { Note("knock"); });
  GoTo("Soft_Dia");
  for (const TreeNode& node : At(Soft_Dia, "TreeView1").nodes)
    EXPECT_EQ(node.enabled, node.text == "Knock Control" || node.text == "TPS Acceleration" ||
                                node.text == "View Software User's Guide")
        << node.text;
  DoubleClickNode(Soft_Dia, "TreeView1", "Rev Limiter");
  EXPECT_EQ(Top(), "Soft_Dia");
  DoubleClickNode(Soft_Dia, "TreeView1", "Knock Control");
  EXPECT_EQ(TakeNotes(), "knock");
}

TEST_F(DiagramTest, EnterRunsTheChosenNode) {
  PressKey("End");
  for (int i = 0; i < 21; ++i) PressKey("Up");
  PressKey("Enter");
  RunPending();
  EXPECT_EQ(Top(), "Rev_limiter");
}

// It was pressed on the button that has opened the diagram.
TEST_F(DiagramTest, EnterThatIsHeldDownRunsNoNode) {
  PressKey("End");
  for (int i = 0; i < 21; ++i) PressKey("Up");
  RepeatKey("Enter");
  RunPending();
  EXPECT_EQ(Top(), "Soft_Dia");
}

TEST_F(DiagramTest, BackReturnsToTheCalibrationScreen) {
  QuickStart = 0;
  PressKey("Esc");
  EXPECT_EQ(Top(), "CSForm1");
  EXPECT_EQ(ShownFocus(), "SoftwareDiagram");
}

}  // namespace
