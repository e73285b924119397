// Every field with an ONFLY path against the encoder: a live entry must reach the same bytes as a
// programmed one.
#include <gtest/gtest.h>

#include "core/encoder.h"
#include "core/globalstate.h"
#include "editors/advancetable.h"
#include "editors/airfueltable.h"
#include "editors/binjgraph.h"
#include "editors/gpotable.h"
#include "editors/vetable.h"

namespace {

// Result: how many fields of the screen post.
int CheckFields(const Editor& editor) {
  int posting = 0;
  for (const EditorField& row : editor.fields) {
    if (row.imageByte == NoImageByte) continue;
    ++posting;
    const auto encoded = EncodeParameter(row.calIndex, 10);
    if (!encoded) {
      ADD_FAILURE() << editor.name << " " << row.control << " has no byte of its own";
      continue;
    }
    EXPECT_EQ(encoded->imageByte, row.imageByte) << editor.name << " " << row.control;
    EXPECT_EQ(encoded->count, row.byteCount) << editor.name << " " << row.control;
  }
  return posting;
}

}  // namespace

TEST(OnflyFields, PostToTheBytesThatTheEncoderWrites) {
  ResetCalibrationState();
  CalValues[491] = 0;  // the GPO table is what is encoded
  EXPECT_EQ(CheckFields(BinjGraph()), 2);
  EXPECT_EQ(CheckFields(FrmVETable()), 64);
  EXPECT_EQ(CheckFields(EgoAfTbl()), 64);
  EXPECT_EQ(CheckFields(IgnAdvTbl()), 65);
  EXPECT_EQ(CheckFields(GpoCtl()), 64);
}
