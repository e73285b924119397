// The tree of the whole program: its nodes, and the commands that are found by a node's text.
#include "shell/diagram.h"

#include <array>
#include <string>

#include "platform/loop.h"
#include "shell/calscreen.h"
#include "shell/commands.h"
#include "shell/guide.h"
#include "shell/hotkeys.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"

namespace {

constexpr std::array<DiagramNode, 43> nodes = {{
    {"r", "", "Main Menu"},
    {"child0", "r", "Tuning Wizard"},
    {"child1", "r", "Calibration File"},
    {"Level1.0", "child1", "Basic Injectors"},
    {"inj1.0", "Level1.0", "TPS Parameters"},
    {"inj1.1", "Level1.0", "MAP Parameters"},
    {"Level1.1", "child1", "Fuel Enrichment"},
    {"FEnrich1.0", "Level1.1", "TPS/MAP Blend"},
    {"FEnrich1.1", "Level1.1", "Starting Enrichments"},
    {"FEnrich1.2", "Level1.1", "Warm-up Enrichments"},
    {"FEnrich1.4", "Level1.1", "TPS Acceleration"},
    {"FEnrich1.5", "Level1.1", "Decel. Fuel Cutoff"},
    {"FEnrich1.6", "Level1.1", "MAT/Voltage Comp."},
    {"Level1.2", "child1", "Volumetric Efficiency Table"},
    {"VE1.0", "Level1.2", "VE Table Graph"},
    {"Level1.3", "child1", "EGO Air/Fuel Ratio Table"},
    {"EGO_Feed1.0", "Level1.3", "EGO A/F Ratio Table Graph"},
    {"EGO_Feed1.1", "Level1.3", "EGO Parameters"},
    {"Level1.4", "child1", "Ignition Advance Table"},
    {"Ign_Adv1.0", "Level1.4", "Main Advance Table Graph"},
    {"Ign_Adv1.1", "Level1.4", "Coolant Advance"},
    {"Level1.5", "child1", "Rev Limiter"},
    {"Level1.6", "child1", "Knock Control"},
    {"Level1.7", "child1", "Idle Speed"},
    {"Idle_Adv1.0", "Level1.7", "Idle Advance"},
    {"Level1.8", "child1", "GPO Control Table"},
    {"GPOCTL1.0", "Level1.8", "GPO Table Graph"},
    {"Level1.9", "child1", "Sensor Parameters"},
    {"Sensor1.0", "Level1.9", "Coolant Sensor"},
    {"Sensor1.1", "Level1.9", "MAP Sensor"},
    {"Sensor1.2", "Level1.9", "TPS Sensor"},
    {"Sensor1.3", "Level1.9", "EGO Sensor"},
    {"Sensor1.4", "Level1.9", "MAT Sensor"},
    {"child2", "r", "Monitor Engine Functions"},
    {"child3", "r", "Program ZEM"},
    {"child4", "r", "Create Datalog File"},
    {"child5", "r", "View Datalog File"},
    {"child7", "r", "Software Tools"},
    {"SoftW1.0", "child7", "Calculator"},
    {"SoftW1.1", "child7", "Memo Pad"},
    {"SoftW1.2", "child7", "Print Calibration File"},
    {"SoftW1.3", "child7", "View Software User's Guide"},
    {"SoftW1.4", "child7", "Program Options"},
}};

// "TPS/MAP Acceleration" is no text of a node: the node "TPS Acceleration" has no command.
constexpr std::array<DiagramCommand, 43> commands = {{
    {"Main Menu", {"Form1"}},
    {"Tuning Wizard", {"WIZARD", RunWizard}},
    {"Calibration File", {"CSForm1", EditCalibration}},
    {"Basic Injectors", {"Binj_graph"}},
    {"TPS Parameters", {"TPSfrm"}},
    {"MAP Parameters", {"frmMAPfrm"}},
    {"Fuel Enrichment", {"FuelEnrich"}},
    {"TPS/MAP Blend", {"TPSBlend"}},
    {"Starting Enrichments", {"Startfrm"}},
    {"Warm-up Enrichments", {"Warmupfrm"}},
    {"TPS/MAP Acceleration", {"frmTPSAccl"}},
    {"Decel. Fuel Cutoff", {"FrmDecel"}},
    {"MAT/Voltage Comp.", {"frmMATComp"}},
    {"Volumetric Efficiency Table", {"frmVETable"}},
    {"VE Table Graph", {.screen = "frmVETable", .press = "VE Table &Graph"}},
    {"EGO Air/Fuel Ratio Table", {"EGO_AF_TBL"}},
    {"EGO A/F Ratio Table Graph", {.screen = "EGO_AF_TBL", .press = "A/F Ratio &Graph"}},
    {"EGO Parameters", {"EGO_Parameters"}},
    {"Ignition Advance Table", {"Ign_adv_tbl"}},
    {"Main Advance Table Graph", {.screen = "Ign_adv_tbl", .press = "Main Advance Table &Graph"}},
    {"Coolant Advance", {"Cool_Adv"}},
    {"Rev Limiter", {"Rev_limiter"}},
    {"Knock Control", {"KnockCntl"}},
    {"Idle Speed", {"IdleSpd"}},
    {"Idle Advance", {"IdleAdv"}},
    {"GPO Control Table", {"GPO_Ctl"}},
    {"GPO Table Graph", {.screen = "GPO_Ctl", .press = " GPO Table   &Graph"}},
    {"Sensor Parameters", {"Sensors"}},
    {"Coolant Sensor", {"Clt_sen"}},
    {"MAP Sensor", {"Map_sen"}},
    {"TPS Sensor", {"Tps_sen"}},
    {"EGO Sensor", {"Ego_sen"}},
    {"MAT Sensor", {"Mat_sen"}},
    {"Monitor Engine Functions", {.run = ViewMonitor, .screenNow = MonitorOfSetting}},
    {"Program ZEM", {"Program_ZEM", ProgramZem}},
    {"Create Datalog File", {"Datpara", CreateDatalog}},
    {"View Datalog File", {"Viewmap", ViewDatalog}},
    {"Software Tools", {"STools", ShowTools}},
    {"Calculator", {"Calculator"}},
    {"Memo Pad", {"Memoedit"}},
    {"Print Calibration File", {"PRTForm"}},
    {"View Software User's Guide", {.run = ViewGuideFromTools}},
    {"Program Options", {"Options", ShowOptions}},
}};

const Action* ActionOf(std::string_view text) {
  for (const DiagramCommand& command : commands)
    if (command.text == text) return &command.action;
  return nullptr;
}

bool HasEffect(std::string_view text) {
  const Action* action = ActionOf(text);
  return action && IsReady(*action);
}

void Build(Screen& screen) {
  Control tree{.name = "TreeView1",
               .kind = ControlKind::TreeView,
               .place = {.align = Align::Fill, .stretch = 1},
               .heightLines = 20};
  tree.accessibleName = "Software Diagram";
  for (const DiagramNode& node : nodes)
    tree.nodes.push_back({.text = std::string(node.text),
                          .key = std::string(node.key),
                          .parent = std::string(node.parent),
                          .enabled = HasEffect(node.text) || !ActionOf(node.text)});
  Add(screen, std::move(tree));
  Add(screen, {.name = "Leaving", .kind = ControlKind::Row});
  Add(screen, {.name = "Command1",
               .kind = ControlKind::Button,
               .caption = "<< Back",
               .place = {.in = "Leaving"}});
  Add(screen, {.name = "Rest", .kind = ControlKind::Spacer, .place = {.in = "Leaving"}});
}

void RunNode(Screen& screen, std::size_t node) {
  if (node >= nodes.size() || !HasEffect(nodes[node].text)) return;
  UnloadScreen(screen);
  Run(*ActionOf(nodes[node].text));
  // In a live session the queue waits for its end; a command that was refused must not leave the
  // frame empty until then.
  if (YieldDepth() > 0 && !AnythingUp())
    ShowMainMenu();
  else
    ReturnToMainMenu();
}

void OnKey(Screen& screen, KeyEvent& event) {
  if (HandleHotKey(event)) return;
  Control& tree = At(screen, "TreeView1");
  if (event.key != KeyEnter || screen.focus != &tree || tree.listIndex < 0) return;
  event.handled = true;
  if (!event.repeat) RunNode(screen, static_cast<std::size_t>(tree.listIndex));
}

}  // namespace

Screen Soft_Dia{.name = "Soft_Dia",
                .title = "Software Diagram",
                .build = Build,
                .on = {.shown = [](Screen&) { DoStats(); },
                       .keyDown = OnKey,
                       .click =
                           [](Screen&, Control& control) {
                             if (control.name == "Command1") ShowCalibrationScreen("Soft_Dia");
                           },
                       .doubleClick =
                           [](Screen& screen, Control& tree) {
                             RunNode(screen, static_cast<std::size_t>(tree.listIndex));
                           }},
                .cancelButton = "Command1"};

std::span<const DiagramNode> DiagramNodes() { return nodes; }
std::span<const DiagramCommand> DiagramCommands() { return commands; }
