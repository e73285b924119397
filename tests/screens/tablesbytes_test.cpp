// The bytes that the table screens post in a session, as numbers; the encoder gives the same.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "core/encoder.h"
#include "editors/advancetable.h"
#include "editors/airfueltable.h"
#include "editors/gpotable.h"
#include "editors/vetable.h"
#include "link/postedwrite.h"
#include "screens/tablescreens.h"

namespace {

struct PostedByte {
  std::string entry;
  int byte;
};

// The bytes of whole entries, each 1 above the one before.
std::vector<PostedByte> ByWholeEntries(int first, std::initializer_list<int> bytes) {
  std::vector<PostedByte> posted;
  for (const int byte : bytes) posted.push_back({std::to_string(first++), byte});
  return posted;
}

class TableBytes : public TableTest {
 protected:
  void ExpectBytes(Editor& editor, int position, int calIndex, int imageIndex,
                   const std::vector<PostedByte>& posted) {
    OpenTable(editor);
    MonitorMode = 3;
    const auto at = static_cast<std::size_t>(imageIndex);
    for (const PostedByte& one : posted) {
      BinImage[at] = -1;
      CalValues[491] = 4;  // an output by temperature, until a duty is entered
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
  ExpectBytes(
      FrmVETable(), 1, 125, 118,
      ByWholeEntries(
          -50, {0,   3,   5,   8,   10,  13,  15,  18,  20,  23,  25,  28,  31,  33,  36,  38,  41,
                43,  46,  48,  51,  54,  56,  59,  61,  64,  66,  69,  71,  74,  76,  79,  82,  84,
                87,  89,  92,  94,  97,  99,  102, 105, 107, 110, 112, 115, 117, 120, 122, 125, 127,
                129, 132, 134, 137, 139, 142, 144, 147, 149, 152, 155, 157, 160, 162, 165, 167, 170,
                172, 175, 178, 180, 183, 185, 188, 190, 193, 195, 198, 200, 203, 206, 208, 211, 213,
                216, 218, 221, 223, 226, 229, 231, 234, 236, 239, 241, 244, 246, 249, 251, 254}));
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
  // Ties go to the even byte: 10 % is 25.5, 30 % is 76.5, 50 % is 127.5.
  ExpectBytes(
      GpoCtl(), 1, 261, 244,
      ByWholeEntries(
          0, {0,   3,   5,   8,   10,  13,  15,  18,  20,  23,  26,  28,  31,  33,  36,  38,  41,
              43,  46,  48,  51,  54,  56,  59,  61,  64,  66,  69,  71,  74,  76,  79,  82,  84,
              87,  89,  92,  94,  97,  99,  102, 105, 107, 110, 112, 115, 117, 120, 122, 125, 128,
              130, 133, 135, 138, 140, 143, 145, 148, 150, 153, 156, 158, 161, 163, 166, 168, 171,
              173, 176, 178, 181, 184, 186, 189, 191, 194, 196, 199, 201, 204, 207, 209, 212, 214,
              217, 219, 222, 224, 227, 230, 232, 235, 237, 240, 242, 245, 247, 250, 252, 255}));
}
