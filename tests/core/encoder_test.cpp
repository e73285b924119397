// What is particular in the encoder: bits, signs, pairs that lose their low byte, modes, the EGO
// curve, the name, and what is left behind by a failure.
#include "core/encoder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "core/calmap.h"
#include "core/numbers.h"
#include "knowncal.h"

namespace {

using Bytes = std::vector<int>;

Bytes Image(std::size_t first, std::size_t count) {
  return {BinImage.begin() + static_cast<long>(first),
          BinImage.begin() + static_cast<long>(first + count)};
}

Bytes EncodedWith(std::size_t calIndex, float value, std::size_t first, std::size_t count = 1) {
  LoadPlainCalibration();
  CalValues[calIndex] = value;
  EncodeCalibration();
  return Image(first, count);
}

int EncodingFailure() {
  try {
    EncodeCalibration();
  } catch (const Failure& failure) {
    return failure.number;
  }
  return 0;
}

class Encoder : public testing::Test {
 protected:
  void SetUp() override { LoadPlainCalibration(); }
  void TearDown() override { ResetCalibrationState(); }
};

class MafEncoder : public Encoder {
 protected:
  void SetUp() override {
    LoadPlainCalibration();
    LoadMode = "MAF";
  }
};

}  // namespace

// ---- Option bits and sensors --------------------------------------------------------------------

TEST_F(Encoder, NoMatFailureVoltageClearsBit7InValueAndByte) {
  EXPECT_EQ(EncodedWith(0, 255, 0), Bytes{127});
  EXPECT_EQ(CalValues[0], 127);
}

TEST_F(Encoder, MatFailureVoltageSetsBit7InValueAndByte) {
  CalValues[9] = 4.92F;
  CalValues[0] = 72.4F;
  EncodeCalibration();
  EXPECT_EQ(BinImage[0], 200);
  EXPECT_EQ(CalValues[0], 200);
}

TEST_F(Encoder, OptionBitsAreRoundedToEven) {
  EXPECT_EQ(EncodedWith(0, 8.5F, 0), Bytes{8});
  EXPECT_EQ(EncodedWith(0, 9.5F, 0), Bytes{10});
}

TEST_F(Encoder, OptionBitsBeyondAByteStayInTheValueAndSaturate) {
  CalValues[9] = 1;
  CalValues[0] = 261;
  EncodeCalibration();
  EXPECT_EQ(CalValues[0], 389);
  EXPECT_EQ(BinImage[0], 255);
}

TEST_F(Encoder, OptionBitsWithoutMatKeepSevenBits) {
  EXPECT_EQ(EncodedWith(0, 261, 0), Bytes{5});
  EXPECT_EQ(CalValues[0], 5);
}

TEST_F(Encoder, RawByteIsRoundedInMapMode) {
  EXPECT_EQ(EncodedWith(1, 7.5F, 1), Bytes{8});
  EXPECT_EQ(EncodedWith(1, 300, 1), Bytes{255});
  EXPECT_EQ(EncodedWith(1, -3, 1), Bytes{0});
}

TEST_F(Encoder, SensorBitsTellWhichFailureVoltagesAreZero) {
  EncodeCalibration();
  EXPECT_EQ(BinImage[221], 7);
  CalValues[6] = 4.9F;
  EncodeCalibration();
  EXPECT_EQ(BinImage[221], 6);
  CalValues[12] = 4.9F;
  EncodeCalibration();
  EXPECT_EQ(BinImage[221], 4);
  CalValues[15] = 4.9F;
  EncodeCalibration();
  EXPECT_EQ(BinImage[221], 0);
}

// ---- Signs --------------------------------------------------------------------------------------

TEST_F(Encoder, InjectorOffsetIsSignAndEighths) {
  EXPECT_EQ(EncodedWith(2, -1.5F, 2), Bytes{140});
  EXPECT_EQ(EncodedWith(2, 1.5F, 2), Bytes{12});
  EXPECT_EQ(EncodedWith(2, 0, 2), Bytes{0});
  EXPECT_EQ(EncodedWith(2, 15.875F, 2), Bytes{127});
  EXPECT_EQ(EncodedWith(2, -15.875F, 2), Bytes{255});
  EXPECT_EQ(EncodedWith(2, -0.1F, 2), Bytes{129});
  EXPECT_EQ(EncodedWith(2, 1.0625F, 2), Bytes{8});
  EXPECT_EQ(EncodedWith(2, 1.1875F, 2), Bytes{10});
  EXPECT_EQ(EncodedWith(2, -0.01F, 2), Bytes{128});
}

TEST_F(Encoder, InjectorOffsetBeyondItsBitsWrapsWhenPositiveAndSaturatesWhenNegative) {
  EXPECT_EQ(EncodedWith(2, 16, 2), Bytes{0});
  EXPECT_EQ(EncodedWith(2, 100, 2), Bytes{32});
  EXPECT_EQ(EncodedWith(2, -100, 2), Bytes{255});
}

TEST_F(Encoder, NegativeDensityRetardAdds255) {
  EXPECT_EQ(EncodedWith(466, -10, 448), Bytes{213});
  EXPECT_EQ(EncodedWith(466, -0.1F, 448), Bytes{255});
  EXPECT_EQ(EncodedWith(466, 5, 448), Bytes{21});
}

TEST_F(Encoder, CorrectionDropsTheFractionBeforeTheShift) {
  EXPECT_EQ(EncodedWith(125, -0.25F, 118), Bytes{64});
  EXPECT_EQ(EncodedWith(125, 0.25F, 118), Bytes{190});
  EXPECT_EQ(EncodedWith(188, 1.2F, 181), Bytes{255});
  EXPECT_EQ(EncodedWith(188, -0.6F, 181), Bytes{0});
}

// ---- Pairs --------------------------------------------------------------------------------------

TEST_F(Encoder, RevLimit6000IsExact) { EXPECT_EQ(EncodedWith(4, 6000, 4, 2), (Bytes{16, 0})); }

TEST_F(Encoder, RevLimit5500LosesItsLowByte) {
  EXPECT_EQ(EncodedWith(4, 5500, 4, 2), (Bytes{15, 0}));
}

TEST_F(Encoder, RevLimit5000KeepsItsLowByte) {
  EXPECT_EQ(EncodedWith(4, 5000, 4, 2), (Bytes{13, 85}));
}

TEST_F(Encoder, EveryBreakpointOfTheRpmAxisHasItsPair) {
  SetValues(45, {500, 1000, 1500, 2000, 3000, 4000, 5500, 6500});
  EncodeCalibration();
  EXPECT_EQ(Image(30, 16), (Bytes{1, 85, 3, 0, 4, 0, 5, 85, 8, 0, 11, 0, 15, 0, 17, 85}));
}

TEST_F(Encoder, EveryBreakpointOfTheLoadAxisHasItsByte) {
  SetValues(53, {20, 32, 44, 56, 68, 80, 92, 104});
  EncodeCalibration();
  EXPECT_EQ(Image(46, 8), (Bytes{49, 78, 107, 137, 166, 195, 225, 254}));
}

TEST_F(Encoder, TimeOnKeepsItsFractionBelowAHalf) {
  EXPECT_EQ(EncodedWith(232, 8.704F, 218, 2), (Bytes{4, 64}));  // 4.25
  EXPECT_EQ(EncodedWith(232, 4.608F, 218, 2), (Bytes{2, 63}));  // a little below 2.25
  EXPECT_EQ(EncodedWith(232, 5, 218, 2), (Bytes{2, 113}));      // 2.44140625
  EXPECT_EQ(EncodedWith(232, 8.3F, 218, 2), (Bytes{4, 13}));    // 4.0527
  EXPECT_EQ(EncodedWith(232, 128, 218, 2), (Bytes{62, 128}));   // 62.5 rounds to the even 62
}

TEST_F(Encoder, TimeOnLosesAFractionAboveAHalf) {
  EXPECT_EQ(EncodedWith(232, 8, 218, 2), (Bytes{4, 0}));      // 3.90625
  EXPECT_EQ(EncodedWith(232, 7.5F, 218, 2), (Bytes{4, 0}));   // 3.662
  EXPECT_EQ(EncodedWith(232, 384, 218, 2), (Bytes{188, 0}));  // 187.5 rounds to the even 188
}

TEST_F(Encoder, WaitPeriodIsRoundedBeforeTheOneIsTaken) {
  EXPECT_EQ(EncodedWith(213, 256, 204), Bytes{61});  // 62.5 rounds to 62
  EXPECT_EQ(EncodedWith(213, 4, 204), Bytes{0});
  EXPECT_EQ(EncodedWith(213, 500, 204), Bytes{121});
  EXPECT_EQ(EncodedWith(214, 0, 205), Bytes{0});  // -1 becomes 0
}

// ---- Constants, what is cleared and what is left ------------------------------------------------

TEST_F(Encoder, ConstantsOfTheImage) {
  BinImage.fill(77);
  EncodeCalibration();
  EXPECT_EQ(Image(28, 2), (Bytes{26, 6}));
  EXPECT_EQ(Image(222, 3), (Bytes{32, 0, 0}));
  EXPECT_EQ(Image(322, 3), (Bytes{0, 0, 255}));
  EXPECT_EQ(BinImage[419], 0);
  EXPECT_EQ(BinImage[463], 255);
}

TEST_F(Encoder, Byte24AndTheEndAreNeverWritten) {
  BinImage.fill(77);
  EncodeCalibration();
  EXPECT_EQ(BinImage[24], 77);
  EXPECT_EQ(Image(466, 46), Bytes(46, 77));
  EXPECT_EQ(BinImage[512], 77);
}

TEST_F(Encoder, Value236IsCleared) {
  EXPECT_EQ(EncodedWith(236, 9, 223), Bytes{0});
  EXPECT_EQ(CalValues[236], 0);
}

TEST_F(Encoder, ValuesWithoutImageByteChangeNothing) {
  EncodeCalibration();
  const auto before = BinImage;
  for (const MapRow& row : CalibrationMap()) {
    if (row.encoding != Encoding::Carried) continue;
    for (int k = 0; k < row.calCount; ++k)
      CalValues[static_cast<std::size_t>(row.calIndex + k)] = 99;
  }
  CalValues[40] = CalValues[411] = 99;
  EncodeCalibration();
  EXPECT_EQ(BinImage, before);
}

TEST_F(Encoder, OnlyThreeKindsOfValueAreWrittenBack) {
  LoadKnownCalibration();
  const auto before = CalValues;
  EncodeCalibration();
  for (std::size_t i = 1; i < 513; ++i) EXPECT_EQ(CalValues[i], before[i]) << i;
  EXPECT_EQ(CalValues[0], 255);
}

TEST_F(Encoder, FinalPassSaturatesWhatIsOutOfRange) {
  EXPECT_EQ(EncodedWith(3, 100, 3), Bytes{255});
  EXPECT_EQ(EncodedWith(3, -5, 3), Bytes{0});
  EXPECT_EQ(EncodedWith(8, -40, 10), Bytes{0});
  EXPECT_EQ(EncodedWith(451, 260, 464), Bytes{255});
  EXPECT_EQ(EncodedWith(443, -30, 439), Bytes{0});
}

TEST_F(Encoder, FinalPassReachesBytesThatOthersPatched) {
  BinImage[24] = 300;
  BinImage[511] = -4;
  EncodeCalibration();
  EXPECT_EQ(BinImage[24], 255);
  EXPECT_EQ(BinImage[511], 0);
}

// ---- Load modes ---------------------------------------------------------------------------------

TEST_F(Encoder, MapModeSaturatesLoads) {
  EXPECT_EQ(EncodedWith(17, 110, 19), Bytes{255});
  EXPECT_EQ(EncodedWith(53, 110, 46), Bytes{255});
  EXPECT_EQ(EncodedWith(228, 110, 214), Bytes{255});
}

TEST_F(MafEncoder, LoadsAreFractionsOfFullFlow) {
  SetValues(53, {0, 10, 20, 40, 60, 80, 100, 120});
  CalValues[17] = 50;
  CalValues[228] = 30;
  EncodeCalibration();
  EXPECT_EQ(Image(46, 8), (Bytes{0, 26, 51, 102, 153, 204, 255, 255}));
  EXPECT_EQ(BinImage[19], 127);  // 2.55 is a little less in binary
  EXPECT_EQ(BinImage[214], 76);
}

TEST_F(MafEncoder, RawByteIsZeroEvenForAValueThatWouldOverflow) {
  CalValues[1] = 1e9F;
  EncodeCalibration();
  EXPECT_EQ(BinImage[1], 0);
}

// ---- GPO ----------------------------------------------------------------------------------------

TEST_F(Encoder, GpoTableModeWrites64Duties) {
  BinImage.fill(77);
  CalValues[261] = 100;
  CalValues[324] = 30;
  EncodeCalibration();
  EXPECT_EQ(BinImage[243], 0);
  EXPECT_EQ(BinImage[244], 255);
  EXPECT_EQ(Image(245, 62), Bytes(62, 0));
  EXPECT_EQ(BinImage[307], 76);
  EXPECT_EQ(BinImage[465], 0);
}

TEST_F(Encoder, GpoTemperatureModeWritesTwoCountsAndKeepsTheRest) {
  BinImage.fill(77);
  SetValues(491, {4, 95, 89, 50, 50, 50, 50});
  EncodeCalibration();
  EXPECT_EQ(Image(244, 2), (Bytes{44, 51}));
  EXPECT_EQ(Image(246, 62), Bytes(62, 77));
  EXPECT_EQ(BinImage[465], 4);
}

TEST_F(Encoder, GpoTemperatureTakesTheFirstCountOrTheOneBeforeAGap) {
  CalValues[491] = 4;
  CalValues[492] = 130;
  CalValues[493] = -40;
  EncodeCalibration();
  EXPECT_EQ(Image(244, 2), (Bytes{0, 254}));
  CalValues[492] = 128;     // between 129 and 127
  CalValues[493] = -37.5F;  // between -35 and -39
  EncodeCalibration();
  EXPECT_EQ(Image(244, 2), (Bytes{18, 252}));
}

TEST_F(Encoder, GpoTemperatureWithoutACountFailsAndLeavesItsByte) {
  SetValues(491, {4, 90, -41});
  BinImage[244] = BinImage[245] = 77;
  BinImage[463] = 1;
  EXPECT_EQ(EncodingFailure(), FailureSubscript);
  EXPECT_EQ(BinImage[244], 50);
  EXPECT_EQ(BinImage[245], 77);
  EXPECT_EQ(BinImage[463], 1);
  CalValues[492] = 131;
  EXPECT_EQ(EncodingFailure(), FailureSubscript);
}

TEST_F(Encoder, GpoThresholdModesWriteEightBytesAndKeepTheRest) {
  for (float mode : {1.0F, 2.0F, 7.0F}) {
    LoadPlainCalibration();
    BinImage.fill(77);
    SetValues(491, {mode, 5000, 250, 80, 95, 70, 100});
    EncodeCalibration();
    EXPECT_EQ(Image(244, 8), (Bytes{13, 85, 1, 0, 195, 232, 171, 244})) << mode;
    EXPECT_EQ(Image(252, 56), Bytes(56, 77)) << mode;
    EXPECT_EQ(BinImage[465], static_cast<int>(mode));
  }
}

TEST_F(Encoder, GpoModeIsComparedAsItStands) {
  BinImage.fill(77);
  SetValues(491, {0.3F, 3000});
  EncodeCalibration();
  EXPECT_EQ(Image(244, 2), (Bytes{8, 0}));
  EXPECT_EQ(BinImage[252], 77);
  EXPECT_EQ(BinImage[465], 0);
  CalValues[491] = 4.2F;
  EncodeCalibration();
  EXPECT_EQ(Image(244, 2), (Bytes{8, 0}));
  EXPECT_EQ(BinImage[465], 4);
}

// ---- Air/fuel -----------------------------------------------------------------------------------

TEST_F(Encoder, AirFuelOutOfRangeBecomesStoichiometricInTheCalibrationToo) {
  SetValues(345, {9.75F, 29.29F, 0, -5, 9.76F, 29.28F});
  EncodeCalibration();
  EXPECT_EQ(Image(325, 6), (Bytes{127, 127, 127, 127, 254, 0}));
  EXPECT_EQ(CalValues[345], 14.64F);
  EXPECT_EQ(CalValues[346], 14.64F);
  EXPECT_EQ(CalValues[348], 14.64F);
  EXPECT_EQ(CalValues[349], 9.76F);
  EXPECT_EQ(CalValues[350], 29.28F);
}

TEST_F(Encoder, AirFuelThatIsNoNumberOverflows) {
  CalValues[345] = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(EncodingFailure(), FailureOverflow);
}

// ---- EGO curve ----------------------------------------------------------------------------------

TEST_F(Encoder, DefaultEgoCurve) {
  EncodeCalibration();
  EXPECT_EQ(Image(389, 9), (Bytes{31, 15, 1, 0, 1, 10, 12, 41, 36}));
  EXPECT_EQ(Image(398, 8), (Bytes{22, 33, 81, 127, 204, 214, 235, 244}));
  EXPECT_EQ(Image(406, 10), (Bytes{216, 148, 132, 129, 128, 122, 112, 87, 50, 10}));
}

TEST_F(Encoder, FirstAndLastEgoVoltagesAreNotUsed) {
  EncodeCalibration();
  const auto before = BinImage;
  CalValues[415] = 0.3F;
  CalValues[424] = 4.9F;
  EncodeCalibration();
  EXPECT_EQ(BinImage, before);
}

TEST_F(Encoder, EgoRatioAndSlopeAreHeldTo255) {
  CalValues[425] = 40;     // 256 - (0.366 - 0.5) * 255 = 290
  CalValues[416] = 0.03F;  // one count
  EncodeCalibration();
  EXPECT_EQ(BinImage[406], 255);
  EXPECT_EQ(BinImage[398], 1);
  EXPECT_EQ(BinImage[389], 255);
}

TEST_F(Encoder, FallingEgoVoltagesGiveASlopeOfZero) {
  CalValues[417] = 0.3F;
  EncodeCalibration();
  EXPECT_EQ(BinImage[390], 0);
}

TEST_F(Encoder, EqualEgoVoltagesOverflow) {
  CalValues[417] = CalValues[416];
  EXPECT_EQ(EncodingFailure(), FailureOverflow);
}

TEST_F(Encoder, EqualEgoPointsOverflow) {
  CalValues[417] = CalValues[416];
  CalValues[427] = CalValues[426];
  EXPECT_EQ(EncodingFailure(), FailureOverflow);
}

TEST_F(Encoder, EgoRatioOfZeroOverflows) {
  CalValues[430] = 0;
  EXPECT_EQ(EncodingFailure(), FailureOverflow);
}

TEST_F(Encoder, EgoRatioMustFit16BitsBeforeItsLimit) {
  CalValues[425] = -0.01F;  // + 373000, which 255 would hide
  EXPECT_EQ(EncodingFailure(), FailureOverflow);
}

// ---- Name ---------------------------------------------------------------------------------------

TEST_F(Encoder, NameStandsWithoutItsExtension) {
  BinImage.fill(77);
  BinShortName = "ABC.BIN";
  EncodeCalibration();
  EXPECT_EQ(Image(449, 14), (Bytes{65, 66, 67, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(Encoder, NameIsCutAt14Characters) {
  BinShortName = "ABCDEFGHIJKLMNOP.BIN";
  EncodeCalibration();
  EXPECT_EQ(Image(449, 15), (Bytes{65, 66, 67, 68, 69, 70, 71, 72, 73, 74, 75, 76, 77, 78, 255}));
}

TEST_F(Encoder, NoNameIsFourteenZeros) {
  BinImage.fill(77);
  BinShortName.clear();
  EncodeCalibration();
  EXPECT_EQ(Image(449, 14), Bytes(14, 0));
  BinShortName = ".bin";
  EncodeCalibration();
  EXPECT_EQ(Image(449, 14), Bytes(14, 0));
}

TEST_F(Encoder, NameHasAnsiCodes) {
  BinShortName =
      "M\xC3\xBC\xE2\x82\xAC\xE4\xB8\xAD.bin";  // u umlaut, euro, a character without code
  EncodeCalibration();
  EXPECT_EQ(Image(449, 5), (Bytes{77, 252, 128, 63, 0}));
}

// ---- Failures -----------------------------------------------------------------------------------

TEST_F(Encoder, OverflowLeavesTheImageHalfDone) {
  BinImage.fill(77);
  CalValues[3] = 100;    // 425, which the final pass would hold to 255
  CalValues[61] = 8000;  // 34000
  CalValues[236] = 9;
  EXPECT_EQ(EncodingFailure(), FailureOverflow);
  EXPECT_EQ(BinImage[3], 425);
  EXPECT_EQ(BinImage[53], 0);
  EXPECT_EQ(BinImage[54], 77);
  EXPECT_EQ(BinImage[463], 77);
  EXPECT_EQ(CalValues[236], 9);
}

TEST_F(Encoder, OverflowStartsAtThe16BitLimits) {
  CalValues[1] = 32767;
  EXPECT_EQ(EncodingFailure(), 0);
  CalValues[1] = 32768;
  EXPECT_EQ(EncodingFailure(), FailureOverflow);
  CalValues[1] = -32768;
  EXPECT_EQ(EncodingFailure(), 0);
  CalValues[1] = -32769;
  EXPECT_EQ(EncodingFailure(), FailureOverflow);
}

TEST_F(Encoder, LimitedLoadOverflowsBeforeItIsLimited) {
  CalValues[17] = 20000;
  EXPECT_EQ(EncodingFailure(), FailureOverflow);
}

TEST_F(MafEncoder, LimitedLoadOverflowsBeforeItIsLimited) {
  CalValues[53] = 20000;
  EXPECT_EQ(EncodingFailure(), FailureOverflow);
}

TEST_F(Encoder, EveryEncodedValueOverflowsWhenItIsNoNumber) {
  const float notANumber = std::numeric_limits<float>::quiet_NaN();
  for (const MapRow& row : CalibrationMap()) {
    const bool reads = row.calIndex != NoIndex && row.encoding != Encoding::Carried &&
                       row.encoding != Encoding::Constant &&
                       row.encoding != Encoding::ClearedValue &&
                       row.encoding != Encoding::GpoSpeed && row.encoding != Encoding::GpoLoad;
    if (!reads) continue;
    LoadPlainCalibration();
    const int at = row.encoding == Encoding::EgoVolts ? 1 : 0;  // the first voltage is not used
    CalValues[static_cast<std::size_t>(row.calIndex + at)] = notANumber;
    EXPECT_EQ(EncodingFailure(), FailureOverflow) << row.meaning;
  }
}

// ---- One parameter ------------------------------------------------------------------------------

TEST_F(Encoder, ParameterWithoutOwnByteHasNoEncoding) {
  for (int index : {19, 40, 217, 234, 415, 424, 425, 459, 512, -1, 513})
    EXPECT_FALSE(EncodeParameter(index, 1).has_value()) << index;
  EXPECT_THROW(EncodedByte(217, 8), Failure);
}

TEST_F(Encoder, GpoParametersAreEncodedInTheModeInForce) {
  EXPECT_FALSE(EncodeParameter(492, 90).has_value());
  EXPECT_FALSE(EncodeParameter(494, 90).has_value());
  CalValues[491] = 2;
  EXPECT_EQ(EncodeParameter(493, 250)->imageByte, 246);
  EXPECT_EQ(EncodeParameter(493, 250)->count, 2);
  EXPECT_EQ(EncodeParameter(497, 100)->imageByte, 251);
  EXPECT_EQ(EncodedByte(497, 100), 244);
  CalValues[491] = 4;
  EXPECT_EQ(EncodeParameter(493, 90)->imageByte, 245);
  EXPECT_EQ(EncodeParameter(493, 90)->count, 1);
  EXPECT_EQ(EncodedByte(493, 90), 50);
  EXPECT_FALSE(EncodeParameter(494, 90).has_value());
}

TEST_F(Encoder, EncodingOneParameterChangesNothing) {
  const auto values = CalValues;
  const auto image = BinImage;
  EXPECT_EQ(EncodedByte(345, 5), 127);
  EXPECT_EQ(EncodedByte(0, 255), 127);
  EXPECT_EQ(EncodedByte(2, -1.5F), 140);
  EXPECT_EQ(EncodedByte(451, 260), 255);
  EXPECT_EQ(EncodedByte(443, -30), 0);
  EXPECT_THROW(EncodedByte(61, 8000), Failure);
  EXPECT_EQ(CalValues, values);
  EXPECT_EQ(BinImage, image);
}
