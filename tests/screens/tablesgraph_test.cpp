// From each table to the 3D graph and back.
#include <gtest/gtest.h>

#include "editors/advancetable.h"
#include "editors/airfueltable.h"
#include "editors/gpotable.h"
#include "editors/graph3d.h"
#include "editors/vetable.h"
#include "screens/tablescreens.h"

namespace {

class TableGraphTest : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    RegisterGraph3D();
  }
};

}  // namespace

TEST_F(TableGraphTest, AValueRaisedOnTheGraphShowsInTheTableAgain) {
  struct Case {
    Editor& editor;
    const char* button;
    int position;  // of the first cell
    const char* before;
    const char* after;
  };
  for (const Case& c :
       {Case{FrmVETable(), "VEGraph", 1, "-31", "-30"},
        Case{EgoAfTbl(), "Command2", 1, "10.25", "10.26"},
        Case{IgnAdvTbl(), "Command1", 10, "0.5", "1.5"}, Case{GpoCtl(), "Command1", 1, "1", "2"}}) {
    OpenTable(c.editor);
    EXPECT_EQ(CellText(c.position), c.before);
    ClickOn(Up(), c.button);
    RunPending();
    ASSERT_FALSE(Up().loaded);
    for (const char* key : {"Right", "Right", "Right", "Up", "Plus"}) PressKey(key);
    EXPECT_TRUE(CalChanged);
    PressKey("Esc");
    RunPending();
    ASSERT_TRUE(Up().loaded) << c.editor.name;
    EXPECT_EQ(Focused(), c.button);
    EXPECT_EQ(CellText(c.position), c.after);
    UnloadScreen(Up());
  }
}
