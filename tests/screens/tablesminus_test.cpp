// Which fields of the table screens take a minus.
#include <gtest/gtest.h>

#include "editors/advancetable.h"
#include "editors/airfueltable.h"
#include "editors/gpotable.h"
#include "editors/vetable.h"
#include "screens/tablescreens.h"

using TableMinus = TableTest;

TEST_F(TableMinus, OnlyACorrectionIsSigned) {
  struct Case {
    Editor& (*editor)();
    const char* field;
    bool taken;
  };
  for (const Case& c : {Case{FrmVETable, "Table_VE(1)", true},
                        {IgnAdvTbl, "Table_ADV(10)", false},
                        {IgnAdvTbl, "Table_ADV(1)", false},
                        {IgnAdvTbl, "Table_ADV(8)", false},
                        {IgnAdvTbl, "Table_ADV(9)", false},
                        {IgnAdvTbl, "Table_ADV(72)", false},
                        {IgnAdvTbl, "InitAdv", false},
                        {GpoCtl, "Table_GPO(1)", false},
                        {EgoAfTbl, "Table_EGO(1)", false}}) {
    SCOPED_TRACE(c.field);
    OpenTable(c.editor());
    const std::string before = Text(c.field);
    Type(c.field, "-");
    EXPECT_EQ(EntryPending, 0);
    EXPECT_EQ(AnyBoxShown(), !c.taken);
    if (AnyBoxShown()) EXPECT_EQ(Message(), "Data Input Error\n\r  Retype Data");
    EXPECT_EQ(Text(c.field), c.taken ? "-" : before);
    EXPECT_EQ(AllSelected(c.field), !c.taken);
    EXPECT_EQ(ShownFocus(), c.field);
    UnloadScreen(Up());
  }
}
