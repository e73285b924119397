// The bytes that the table screens post in a session, as numbers; the encoder gives the same.
#include <gtest/gtest.h>

#include "core/encoder.h"
#include "editors/advancetable.h"
#include "editors/airfueltable.h"
#include "editors/gpotable.h"
#include "editors/vetable.h"
#include "link/postedwrite.h"
#include "screens/tablescreens.h"

namespace {

struct PostedByte {
  const char* entry;
  int byte;
};

class TableBytes : public TableTest {
 protected:
  void ExpectBytes(Editor& editor, int position, int calIndex, int imageIndex,
                   const std::vector<PostedByte>& posted) {
    OpenTable(editor);
    MonitorMode = 3;
    const auto at = static_cast<std::size_t>(imageIndex);
    for (const PostedByte& one : posted) {
      BinImage[at] = -1;
      EnterCell(position, one.entry);
      EXPECT_EQ(BinImage[at], one.byte) << one.entry;
      EXPECT_EQ(OnflyImageIndex, imageIndex);
      EXPECT_EQ(EncodedByte(calIndex, static_cast<float>(OnflyValue)), one.byte) << one.entry;
    }
    MonitorMode = 0;
  }
};

}  // namespace

TEST_F(TableBytes, OfCorrectionsAreCutTowardsZeroAround127) {
  ExpectBytes(FrmVETable(), 1, 125, 118,
              {{"-50", 0},
               {"-25", 64},
               {"-20", 76},
               {"-1", 125},
               {"0", 127},
               {"1", 129},
               {"10", 152},
               {"20", 178},
               {"29", 200},
               {"50", 254}});
}

TEST_F(TableBytes, OfAdvanceAreRoundedQuartersAndABit) {
  ExpectBytes(IgnAdvTbl(), 10, 61, 54,
              {{"0", 0},
               {"0.1", 0},
               {"0.5", 2},
               {"2", 8},      // 8.5
               {"6", 26},     // 25.5
               {"10", 42},    // 42.5
               {"12.5", 53},  // 53.125
               {"33.3", 142},
               {"59.9", 255},
               {"60", 255}});
}

TEST_F(TableBytes, OfRatiosAreCutAndFallWithTheRatio) {
  ExpectBytes(EgoAfTbl(), 1, 345, 325,
              {{"9.76", 254},  // as a single it is a little more
               {"10", 245},
               {"12.6", 168},
               {"13.5", 149},
               {"14.64", 127},
               {"14.7", 126},
               {"20.05", 58},
               {"29.28", 0}});
}

TEST_F(TableBytes, OfDutyAreRounded) {
  ExpectBytes(GpoCtl(), 1, 261, 244,
              {{"0", 0},
               {"1", 3},    // 2.55
               {"7", 18},   // 17.85
               {"10", 26},  // 25.5
               {"30", 76},  // 76.5
               {"40", 102},
               {"50", 128},  // 127.5
               {"100", 255}});
}
