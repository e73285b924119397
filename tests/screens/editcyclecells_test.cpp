// Generated cells in the entry cycle: a table of 64 fields.
#include <gtest/gtest.h>

#include "core/globalstate.h"
#include "editors/editlayout.h"
#include "link/postedwrite.h"
#include "screens/editorscreens.h"

namespace {

void CellKeys(Editor& editor, KeyEvent& event) {
  const int step = event.key == KeyUp      ? 8
                   : event.key == KeyDown  ? -8
                   : event.key == KeyRight ? 1
                                           : 0;
  if (step == 0) return;
  event.handled = true;
  FocusField(editor, (ActiveField + step + 63) % 64 + 1);
}

Editor MakeCellEditor() {
  Editor editor;
  editor.name = "CellEditor";
  editor.fields = FieldArray({.number = 1,
                              .control = "Table_ADV",
                              .calIndex = 61,
                              .low = 0,
                              .high = 60,
                              .rangeText = "  (0 to 60 DEG)",
                              .widthChars = 4,
                              .imageByte = 54,
                              .helpTopic = "Table"},
                             1, 64);
  editor.keys = CellKeys;
  editor.fieldColour = [](Editor&, const EditorField& row) {
    return row.number > 32 ? Red : White;
  };
  editor.build = [](Editor& built) {
    Add(built.screen, {.name = "Cells", .kind = ControlKind::Grid});
    for (const EditorField& row : built.fields)
      AddCell(built, row, "Cells", 7 - (row.number - 1) / 8, (row.number - 1) % 8);
    AddFoot(built);
  };
  return editor;
}

class CellsTest : public EditorTest {
 protected:
  void SetUp() override {
    EditorTest::SetUp();
    for (int k = 0; k < 64; ++k)
      CalValues[static_cast<std::size_t>(61 + k)] = static_cast<float>(k);
    static Editor editor = MakeCellEditor();
    Open(editor);
  }
};

}  // namespace

TEST_F(CellsTest, ShowTheirOwnElementAndColour) {
  EXPECT_EQ(Text("Table_ADV(1)"), "0");
  EXPECT_EQ(Text("Table_ADV(64)"), "63");
  EXPECT_EQ(Back("Table_ADV(32)"), White);
  EXPECT_EQ(Back("Table_ADV(33)"), Red);
  EXPECT_EQ(RowOfField(Edited(), 64)->imageByte, 117);
}

TEST_F(CellsTest, ArrowsWalkThemUntilAnEntryIsPending) {
  PressKey("Up");
  EXPECT_EQ(ShownFocus(), "Table_ADV(9)");
  EXPECT_EQ(ActiveField, 9);
  PressKey("Down");
  PressKey("Down");
  EXPECT_EQ(ShownFocus(), "Table_ADV(57)");
  TypeText("3");
  PressKey("Up");
  EXPECT_EQ(ShownFocus(), "Table_ADV(57)");
}

TEST_F(CellsTest, EntryIsStoredInItsElementOrPostedToItsByte) {
  Enter("Table_ADV(10)", "12.5");
  EXPECT_EQ(CalValues[70], 12.5F);
  MonitorMode = 3;
  Enter("Table_ADV(64)", "40");
  EXPECT_EQ(OnflyCalIndex, 124);
  EXPECT_EQ(OnflyImageIndex, 117);
  EXPECT_EQ(BinImage[117], 170);
  EXPECT_EQ(CalValues[124], 63);
}

TEST_F(CellsTest, PendingCellTakesTheFocusBackFromAnother) {
  Type("Table_ADV(10)", "1");
  EXPECT_EQ(ActiveField, 10);
  ClickOn(Up(), "Table_ADV(20)");
  EXPECT_EQ(ShownFocus(), "Table_ADV(10)");
  EXPECT_EQ(Text("Table_ADV(10)"), "1");
}
