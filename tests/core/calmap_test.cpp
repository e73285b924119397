// The map is walked here without the checks that it makes of itself while compiling.
#include "core/calmap.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>
#include <vector>

#include "core/encoder.h"
#include "knowncal.h"

namespace {

bool IsGpoParameter(const MapRow& row) {
  return row.encoding == Encoding::GpoSpeed || row.encoding == Encoding::GpoLoad;
}

class CalibrationMapRows : public testing::Test {
 protected:
  void TearDown() override { ResetCalibrationState(); }
};

}  // namespace

TEST_F(CalibrationMapRows, EachImageByteBelongsToOneRow) {
  std::array<int, 512> owners{};
  for (const MapRow& row : CalibrationMap()) {
    if (row.imageByte == NoIndex || IsGpoParameter(row)) continue;
    for (int k = 0; k < row.imageCount; ++k)
      ++owners.at(static_cast<std::size_t>(row.imageByte + k));
  }
  for (std::size_t n = 0; n < owners.size(); ++n) EXPECT_EQ(owners[n], 1) << n;
}

TEST_F(CalibrationMapRows, EachValueBelongsToOneRow) {
  std::array<int, 513> owners{};
  for (const MapRow& row : CalibrationMap())
    for (int k = 0; k < row.calCount; ++k) ++owners.at(static_cast<std::size_t>(row.calIndex + k));
  for (std::size_t i = 0; i < owners.size(); ++i) EXPECT_EQ(owners[i], 1) << i;
}

TEST_F(CalibrationMapRows, GpoParametersLieWithinTheTablesBytes) {
  std::vector<int> bytes;
  for (const MapRow& row : CalibrationMap())
    if (IsGpoParameter(row))
      for (int k = 0; k < row.imageCount; ++k) bytes.push_back(row.imageByte + k);
  EXPECT_EQ(bytes, (std::vector<int>{244, 245, 246, 247, 248, 249, 250, 251}));
}

TEST_F(CalibrationMapRows, EachRowSaysWhatItIsAndHasARangeThatIsOne) {
  for (const MapRow& row : CalibrationMap()) {
    EXPECT_FALSE(row.meaning.empty());
    EXPECT_TRUE(!row.range || row.range->low < row.range->high) << row.meaning;
    EXPECT_EQ(row.calIndex == NoIndex, row.calCount == 0) << row.meaning;
    EXPECT_EQ(row.imageByte == NoIndex, row.imageCount == 0) << row.meaning;
    EXPECT_EQ(row.encoding == Encoding::Carried, row.imageByte == NoIndex) << row.meaning;
  }
}

TEST_F(CalibrationMapRows, RowsAreFoundByValueAndByByte) {
  EXPECT_EQ(RowOfValue(0)->encoding, Encoding::OptionBits);
  EXPECT_EQ(RowOfValue(188)->calIndex, 125);
  EXPECT_EQ(RowOfValue(512)->encoding, Encoding::Carried);
  EXPECT_EQ(RowOfImageByte(45)->calIndex, 45);
  EXPECT_EQ(RowOfImageByte(244)->encoding, Encoding::GpoTable);
  EXPECT_EQ(RowOfImageByte(24)->encoding, Encoding::NeverWritten);
  EXPECT_EQ(RowOfImageByte(511)->encoding, Encoding::NeverWritten);
  for (int index : {-1, 513}) EXPECT_EQ(RowOfValue(index), nullptr);
  for (int byte : {-1, 512}) EXPECT_EQ(RowOfImageByte(byte), nullptr);
}

TEST_F(CalibrationMapRows, OneValueHasOneOrTwoBytes) {
  EXPECT_EQ(BytesPerValue(*RowOfValue(3)), 1);
  EXPECT_EQ(BytesPerValue(*RowOfValue(4)), 2);
  EXPECT_EQ(BytesPerValue(*RowOfValue(50)), 2);
  EXPECT_EQ(BytesPerValue(*RowOfValue(217)), 0);
  EXPECT_EQ(BytesPerValue(*RowOfImageByte(449)), 0);
}

// What a row says about its bytes is what the encoder does: a change of a value moves no byte but
// those of its row. The points of the EGO curve share its slopes, and the GPO mode moves a table.
TEST_F(CalibrationMapRows, ChangingAValueChangesOnlyTheBytesOfItsRow) {
  for (int index = 0; index < 513; ++index) {
    const MapRow& row = *RowOfValue(index);
    if (index == 491 || row.encoding == Encoding::EgoVolts || row.encoding == Encoding::EgoRatios)
      continue;
    LoadKnownCalibration();
    EncodeCalibration();
    const auto before = BinImage;
    float& value = CalValues[static_cast<std::size_t>(index)];
    value = value == 13 ? 12.0F : 13.0F;
    EncodeCalibration();
    std::set<int> changed;
    for (int n = 0; n < 512; ++n)
      if (BinImage[static_cast<std::size_t>(n)] != before[static_cast<std::size_t>(n)])
        changed.insert(n);
    const std::optional<EncodedParameter> own = EncodeParameter(index, value);
    for (int n : changed) {
      EXPECT_TRUE(own && n >= own->imageByte && n < own->imageByte + own->count)
          << "value " << index << " byte " << n;
    }
    const bool constant =
        row.encoding == Encoding::Constant || row.encoding == Encoding::ClearedValue;
    EXPECT_EQ(changed.empty(), !own || constant) << "value " << index;
  }
}

TEST_F(CalibrationMapRows, RangesAreAsTheEditorsLetValuesIn) {
  struct Expected {
    int calIndex;
    double low;
    double high;
  };
  const std::vector<Expected> expected = {
      {2, -15.875, 15.875}, {3, 0, 30},         {4, 1000, 12000},
      {5, 0, 1500},         {6, 0, 5},          {8, -30, 80},
      {11, -30, 80},        {14, 0, 5},         {17, 10, 104},
      {18, 1, 255},         {37, 2, 100},       {38, 0.25, 5},
      {39, 0.25, 10},       {41, 1, 30},        {42, 800, 8000},
      {45, 0, 12000},       {53, 10, 104},      {61, 0, 60},
      {125, -0.5, 0.5},     {189, 0, 2.5},      {191, 0, 1.5},
      {193, 0, 2.5},        {194, 0, 1.5},      {195, 0.75, 52.5},
      {196, 0.06, 4},       {197, 0, 2.5},      {198, 0, 1.5},
      {199, 0.25, 2},       {200, 0, 2.5},      {201, 0, 0.5},
      {204, -30, 80},       {205, 500, 2000},   {208, 1, 25},
      {209, 1, 25},         {210, 10, 255},     {211, 46, 300},
      {212, 0, 25},         {213, 4, 500},      {214, 4, 500},
      {215, 0, 80},         {217, 1, 12},       {221, 0, 0.5},
      {222, 0, 3900},       {223, 0, 3900},     {224, 0.75, 52.5},
      {225, 10, 104},       {226, 0, 1.5},      {227, 0, 5},
      {228, 10, 104},       {229, 0, 510},      {230, 0, 2.5},
      {231, 0, 1.5},        {232, 3, 30},       {233, 1, 8},
      {237, 0, 60},         {249, 0, 10},       {250, 0, 10},
      {251, -30, 80},       {253, 0, 15},       {254, 0, 15},
      {255, 0, 15},         {261, 0, 100},      {325, 1, 15},
      {326, 1500, 12000},   {338, 0, 2.5},      {344, 0, 8},
      {345, 9.76, 29.28},   {409, 1000, 11000}, {410, 10, 104},
      {412, 1, 12},         {413, 2, 64},       {414, 2, 64},
      {415, 0, 5},          {434, 10, 29.28},   {435, 0, 12000},
      {443, -30, 100},      {451, 13, 260},     {459, 1, 4},
      {465, 0, 1.5},        {466, -10, 5},      {467, 1, 24},
      {471, 0.4, 1.2},      {474, 0, 160},      {497, 0, 416},
      {498, 0, 7}};
  for (const Expected& row : expected) {
    const std::optional<ValueRange> range = RowOfValue(row.calIndex)->range;
    ASSERT_TRUE(range.has_value()) << row.calIndex;
    EXPECT_EQ(range->low, row.low) << row.calIndex;
    EXPECT_EQ(range->high, row.high) << row.calIndex;
  }
}
