// The fixture of the 3D graph, opened from a table by its button.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "editors/advancetable.h"
#include "editors/airfueltable.h"
#include "editors/gpotable.h"
#include "editors/graph3d.h"
#include "editors/tableviews.h"
#include "editors/vetable.h"
#include "screens/tablescreens.h"

inline constexpr const char* adjustable = "Use + or - Keys to Adjust Graph Values";

struct TableCase {
  Editor& (*editor)();
  const char* screen;
  const char* button;
  int table;
  std::size_t calBase;
  const char* caption;
  const char* unit;
};
inline const TableCase graphTables[] = {
    {FrmVETable, "frmVETable", "VEGraph", TableVe, 124, "VE &Value =", "% FPW"},
    {GpoCtl, "GPO_Ctl", "Command1", TableGpo, 260, "GPO Duty Cycle &Value =", "%"},
    {IgnAdvTbl, "Ign_adv_tbl", "Command1", TableAdvance, 60, "Advance &Value =", "Degrees"},
    {EgoAfTbl, "EGO_AF_TBL", "Command2", TableAirFuel, 344, "Air/Fuel Ratio &Value =", ""},
};

class Graph3DTest : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    RegisterGraph3D();
  }

  // Opens a table and its graph by the graph button.
  void OpenGraphOf(const TableCase& one) {
    OpenTable(one.editor());
    ClickOn(Up(), one.button);
    RunPending();
    ASSERT_TRUE(Graph3D.visible) << one.screen;
  }
  void OpenVe(int view = 0) {
    VeView = view;
    OpenGraphOf(graphTables[0]);
  }
  // Leaves the graph and its table, for the next one.
  void CloseAll() {
    PressKey("Esc");
    RunPending();
    UnloadScreen(Up());
    RunPending();
    CalChanged = false;
  }

  void WalkTo(int column, int row) {
    for (int i = 0; i < 20 && CursorColumn != column; ++i) PressKey("Right");
    for (int i = 0; i < 20 && CursorRow != row; ++i) PressKey("Up");
    ASSERT_EQ(CursorColumn, column);
    ASSERT_EQ(CursorRow, row);
  }
  void WalkToCell(int cell) { WalkTo(PlaceOfCell(cell).column, PlaceOfCell(cell).row); }
  std::string Shown(const char* control) { return ShownText(Graph3D, control); }
  std::array<std::string, 3> Fields() {
    return {Shown("RPM_Text"), Shown("MAP_Text"), Shown("Value_Text")};
  }
  using Three = std::array<std::string, 3>;

  const std::vector<Primitive>& Picture() { return ::At(Graph3D, "Picture1").drawing.primitives; }
  unsigned long Generation() { return ::At(Graph3D, "Picture1").drawing.generation; }
  bool PictureHas(const std::string& text) {
    for (const Primitive& one : Picture())
      if (one.kind == PrimitiveKind::Text && one.text == text) return true;
    return false;
  }
  std::vector<Primitive> Discs() {
    std::vector<Primitive> discs;
    for (const Primitive& one : Picture())
      if (one.kind == PrimitiveKind::Disc) discs.push_back(one);
    return discs;
  }
};
