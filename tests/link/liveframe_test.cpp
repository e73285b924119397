// Every field of the live frame at every byte value, the computed values, and the rules of readers.
#include "link/liveframe.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "core/globalstate.h"
#include "link/comm.h"
#include "platform/failure.h"

namespace {

class LiveFrameTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetCalibrationState();
    ResetLiveState();
    ResetLiveFlags();
  }
  LiveFrame frame{};
  void Decode(FrameReader reader = FrameReader::Monitor) { DecodeFrame(frame, reader); }
  void SetSpeed(int word) {
    frame[0] = static_cast<std::uint8_t>(word >> 8);
    frame[1] = static_cast<std::uint8_t>(word & 255);
  }
  void SetPulse(int word) {
    frame[25] = static_cast<std::uint8_t>(word >> 8);
    frame[26] = static_cast<std::uint8_t>(word & 255);
  }
  // Compares a one-byte field with its formula at all 256 values.
  void AtEveryByte(int byte, LiveField field, const std::function<double(int)>& formula) {
    for (int value = 0; value < 256; ++value) {
      frame[static_cast<std::size_t>(byte)] = static_cast<std::uint8_t>(value);
      Decode();
      EXPECT_DOUBLE_EQ(Live[field], formula(value)) << RowOf(field).name << " of " << value;
    }
  }
};

// ---- the table ----------------------------------------------------------------------------------

TEST_F(LiveFrameTest, RowsStandInTheOrderOfTheFieldsAndCoverEveryByteOnce) {
  std::array<int, 27> covered{};
  std::size_t at = 0;
  for (const LiveFieldRow& row : LiveFieldRows()) {
    EXPECT_EQ(static_cast<std::size_t>(row.field), at++);
    for (int i = 0; i < row.byteCount; ++i) ++covered[static_cast<std::size_t>(row.firstByte + i)];
  }
  for (std::size_t byte = 0; byte < 27; ++byte) EXPECT_EQ(covered[byte], 1) << byte;
}

TEST_F(LiveFrameTest, FieldsStandAtTheirBytesWithTheirUnits) {
  struct Expected {
    std::string_view name;
    int first, count;
    std::string_view unit;
  };
  const Expected expected[] = {
      {"ERPM", 0, 2, "rev/min"},  {"ADV", 2, 1, "deg"},      {"MAP", 3, 1, "kPa or %"},
      {"CLT", 4, 1, "deg C"},     {"GAMA", 5, 2, ""},        {"KNOCK", 7, 1, "%"},
      {"MAT", 8, 1, "deg C"},     {"TPS", 9, 1, "V"},        {"BAT", 10, 1, "V"},
      {"FAILED", 11, 1, ""},      {"GPO", 12, 1, "%"},       {"TOG", 13, 2, "ms"},
      {"AFR actual", 15, 1, ""},  {"INTERMIT", 16, 1, ""},   {"CR", 17, 1, ""},
      {"AFR desired", 18, 1, ""}, {"AFR base", 19, 1, ""},   {"EGO", 20, 1, "V"},
      {"DEFAULT", 21, 1, ""},     {"TPS blend", 22, 1, "V"}, {"signed offset", 23, 1, ""},
      {"REF", 24, 1, ""},         {"PW on", 25, 2, "ms"}};
  const auto rows = LiveFieldRows();
  ASSERT_EQ(rows.size(), std::size(expected));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i].name, expected[i].name);
    EXPECT_EQ(rows[i].firstByte, expected[i].first);
    EXPECT_EQ(rows[i].byteCount, expected[i].count);
    EXPECT_EQ(rows[i].unit, expected[i].unit);
  }
}

// A V8 at cruise: 27 bytes as they come over the wire, and what they mean.
TEST_F(LiveFrameTest, WholeFrameDecodesAsWritten) {
  frame = {0x06, 0x97, 0x77, 0x9C, 0x30, 0x80, 0x00, 0x0A, 0x61, 0x4D, 0xCD, 0x00, 0x80, 0x04,
           0xE2, 0x7F, 0x7F, 0x0D, 0x7F, 0x7C, 0x20, 0x00, 0x33, 0xF0, 0xF5, 0x03, 0xE8};
  Decode();
  const std::pair<LiveField, double> expected[] = {{LiveField::Erpm, 2502},
                                                   {LiveField::Adv, 28},
                                                   {LiveField::Map, 63.8664},
                                                   {LiveField::Clt, ThermistorTable[0x30]},
                                                   {LiveField::Gama, 1},
                                                   {LiveField::Knock, 3.9215686274509807},
                                                   {LiveField::Mat, ThermistorTable[0x61]},
                                                   {LiveField::Tps, 1.50390625},
                                                   {LiveField::Bat, 13.82356},
                                                   {LiveField::Failed, 0},
                                                   {LiveField::Gpo, 50.196078431372548},
                                                   {LiveField::Tog, 10},
                                                   {LiveField::AfrActual, 14.64},
                                                   {LiveField::Intermit, 127},
                                                   {LiveField::Cr, 0.050980392156862744},
                                                   {LiveField::AfrDesired, 14.64},
                                                   {LiveField::AfrBase, 124},
                                                   {LiveField::Ego, 0.62745098039215685},
                                                   {LiveField::Defaulted, 0},
                                                   {LiveField::TpsBlend, 1},
                                                   {LiveField::SignedOffset, -16},
                                                   {LiveField::Ref, 245},
                                                   {LiveField::PwOn, 8}};
  ASSERT_EQ(std::size(expected), LiveFieldCount);
  for (const auto& [field, value] : expected)
    EXPECT_DOUBLE_EQ(Live[field], value) << RowOf(field).name;
}

// ---- single bytes -------------------------------------------------------------------------------

TEST_F(LiveFrameTest, AdvanceIsQuartersAndABit) {
  AtEveryByte(2, LiveField::Adv, [](int b) { return b / 4.25; });
}
TEST_F(LiveFrameTest, MapIsScaledByTheSensorRange) {
  for (MapBar = 1; MapBar <= 4; ++MapBar)
    AtEveryByte(3, LiveField::Map, [](int b) { return b * 0.4094 * MapBar; });
}
TEST_F(LiveFrameTest, MafModeShowsPercentWhateverTheRange) {
  LoadMode = "MAF";
  MapBar = 3;
  AtEveryByte(3, LiveField::Map, [](int b) { return b / 255.0 * 100; });
}
TEST_F(LiveFrameTest, KnockIsPercentOfFullScale) {
  AtEveryByte(7, LiveField::Knock, [](int b) { return b / 2.55; });
}
TEST_F(LiveFrameTest, ThrottleHas51Point2CountsToTheVolt) {
  AtEveryByte(9, LiveField::Tps, [](int b) { return b / 51.2; });
}
TEST_F(LiveFrameTest, BatteryScale) {
  AtEveryByte(10, LiveField::Bat, [](int b) { return b * 0.067432; });
}
TEST_F(LiveFrameTest, GpoIsPercent) {
  AtEveryByte(12, LiveField::Gpo, [](int b) { return b / 255.0 * 100; });
}
TEST_F(LiveFrameTest, EgoHas51CountsToTheVolt) {
  AtEveryByte(20, LiveField::Ego, [](int b) { return b / 51.0; });
}
TEST_F(LiveFrameTest, ActualAndDesiredAirFuelRatio) {
  AtEveryByte(15, LiveField::AfrActual, [](int b) { return 14.64 / ((128 + b) / 255.0); });
  AtEveryByte(18, LiveField::AfrDesired, [](int b) { return 14.64 / ((128 + b) / 255.0); });
}
TEST_F(LiveFrameTest, RawFieldsStayRaw) {
  const std::pair<int, LiveField> raw[] = {{11, LiveField::Failed},
                                           {16, LiveField::Intermit},
                                           {19, LiveField::AfrBase},
                                           {21, LiveField::Defaulted},
                                           {24, LiveField::Ref}};
  for (const auto& [byte, field] : raw) AtEveryByte(byte, field, [](int b) { return b; });
}
TEST_F(LiveFrameTest, SignedOffsetIsNegativeAbove127) {
  AtEveryByte(23, LiveField::SignedOffset, [](int b) { return b < 128 ? b : b - 256; });
}
TEST_F(LiveFrameTest, TpsBlendIsKeptToTwoDecimals) {
  AtEveryByte(22, LiveField::TpsBlend, [](int b) { return std::nearbyint(b / 51.0 * 100) / 100; });
  frame[22] = 76;
  Decode();
  EXPECT_EQ(Live[LiveField::TpsBlend], 1.49);
}

TEST_F(LiveFrameTest, EgoCorrectionChangesSignAt128) {
  AtEveryByte(17, LiveField::Cr, [](int b) { return b < 128 ? b / 255.0 : -((256 - b) / 255.0); });
  const std::pair<int, double> known[] = {{0, 0.0},
                                          {127, 0.49803921568627452},
                                          {128, -0.50196078431372548},
                                          {255, -0.0039215686274509803}};
  for (const auto& [byte, expected] : known) {
    frame[17] = static_cast<std::uint8_t>(byte);
    Decode();
    EXPECT_DOUBLE_EQ(Live[LiveField::Cr], expected) << byte;
  }
}

// ---- words --------------------------------------------------------------------------------------

TEST_F(LiveFrameTest, EngineSpeedIsCutToWholeRevolutionsAtEveryWord) {
  for (int word = 0; word < 65536; ++word) {
    SetSpeed(word);
    Decode();
    ASSERT_EQ(Live[LiveField::Erpm], static_cast<double>(12150LL * word / 8192)) << word;
  }
  EXPECT_EQ(Live[LiveField::Erpm], 97198);
}

TEST_F(LiveFrameTest, GamaAddsItsSecondByteThreefold) {
  for (int first = 0; first < 256; ++first)
    for (int second : {0, 1, 43, 128, 255}) {
      frame[5] = static_cast<std::uint8_t>(first);
      frame[6] = static_cast<std::uint8_t>(second);
      Decode();
      ASSERT_DOUBLE_EQ(Live[LiveField::Gama], (128 + first + 3 * second) / 256.0);
    }
  frame[5] = 128;
  frame[6] = 0;
  Decode();
  EXPECT_EQ(Live[LiveField::Gama], 1.0);
}

TEST_F(LiveFrameTest, TogCountsEightMicrosecondsOverBothBytes) {
  for (int word = 0; word < 65536; word += 7) {
    frame[13] = static_cast<std::uint8_t>(word >> 8);
    frame[14] = static_cast<std::uint8_t>(word & 255);
    Decode();
    ASSERT_NEAR(Live[LiveField::Tog], word / 125.0, 1e-10) << word;
  }
}

TEST_F(LiveFrameTest, PulseWidthCountsEightMicroseconds) {
  for (int word = 0; word < 65536; word += 3) {
    SetPulse(word);
    Decode();
    ASSERT_DOUBLE_EQ(Live[LiveField::PwOn], word / 125.0) << word;
  }
}

// ---- temperatures -------------------------------------------------------------------------------

TEST_F(LiveFrameTest, TemperaturesComeFromTheTableWhileAllIsWell) {
  AtEveryByte(4, LiveField::Clt,
              [](int b) { return ThermistorTable[static_cast<std::size_t>(b)]; });
  AtEveryByte(8, LiveField::Mat,
              [](int b) { return ThermistorTable[static_cast<std::size_t>(b)]; });
}

TEST_F(LiveFrameTest, MonitorsFollowTheFailedFlagOfTheFrameBefore) {
  frame[4] = frame[8] = 200;
  frame[11] = SensorClt | SensorMat;
  Decode();
  EXPECT_EQ(Live[LiveField::Clt], ThermistorTable[200]) << "the flag is read later in the pass";
  EXPECT_EQ(Live[LiveField::Mat], ThermistorTable[200]);
  frame[11] = 0;
  Decode();
  EXPECT_DOUBLE_EQ(Live[LiveField::Clt], 200 / 2.3182 - 30);
  EXPECT_DOUBLE_EQ(Live[LiveField::Mat], 200 / 2.3273 - 30);
  Decode();
  EXPECT_EQ(Live[LiveField::Clt], ThermistorTable[200]);
  EXPECT_EQ(Live[LiveField::Mat], ThermistorTable[200]);
}

TEST_F(LiveFrameTest, EachFailedFlagIsForItsOwnSensor) {
  frame[4] = frame[8] = 200;
  frame[11] = SensorClt;
  Decode();
  Decode();
  EXPECT_DOUBLE_EQ(Live[LiveField::Clt], 200 / 2.3182 - 30);
  EXPECT_EQ(Live[LiveField::Mat], ThermistorTable[200]);
  frame[11] = SensorMat;
  Decode();
  Decode();
  EXPECT_EQ(Live[LiveField::Clt], ThermistorTable[200]);
  EXPECT_DOUBLE_EQ(Live[LiveField::Mat], 200 / 2.3273 - 30);
}

TEST_F(LiveFrameTest, DefaultFlagOfThisFrameTurnsCoolantAtOnce) {
  frame[4] = frame[8] = 100;
  frame[21] = 1;
  Decode();
  EXPECT_DOUBLE_EQ(Live[LiveField::Clt], 100 / 2.3182 - 30);
  EXPECT_EQ(Live[LiveField::Mat], ThermistorTable[100]);
  frame[21] = 254;
  Decode();
  EXPECT_EQ(Live[LiveField::Clt], ThermistorTable[100]);
}

TEST_F(LiveFrameTest, NegativeDefaultAirTemperatureShowsAsZeroAndCoolantStays) {
  frame[11] = SensorClt | SensorMat;
  frame[4] = frame[8] = 20;
  Decode();
  Decode();
  EXPECT_EQ(Live[LiveField::Mat], 0);
  EXPECT_DOUBLE_EQ(Live[LiveField::Clt], 20 / 2.3182 - 30);
}

TEST_F(LiveFrameTest, NegativeTableTemperaturesStayOnTheMonitors) {
  frame[4] = frame[8] = 255;
  Decode();
  EXPECT_EQ(Live[LiveField::Clt], -40);
  EXPECT_EQ(Live[LiveField::Mat], -40);
}

TEST_F(LiveFrameTest, DefaultReadingsAtEveryCount) {
  for (int count = 0; count < 256; ++count) {
    EXPECT_DOUBLE_EQ(DefaultCltCelsius(count), count / 2.3182 - 30);
    EXPECT_DOUBLE_EQ(DefaultMatCelsius(count), count / 2.3273 - 30);
  }
}

TEST_F(LiveFrameTest, LoggerTakesCoolantFromTheTableAlways) {
  frame[4] = 100;
  frame[11] = SensorClt;
  frame[21] = 1;
  Decode(FrameReader::Logger);
  Decode(FrameReader::Logger);
  EXPECT_EQ(Live[LiveField::Clt], ThermistorTable[100]);
}

TEST_F(LiveFrameTest, LoggerFollowsTheAirFlagOfThisFrame) {
  frame[8] = 100;
  frame[11] = SensorMat;
  Decode(FrameReader::Logger);
  EXPECT_DOUBLE_EQ(Live[LiveField::Mat], 100 / 2.3273 - 30);
  frame[11] = 0;
  Decode(FrameReader::Logger);
  EXPECT_EQ(Live[LiveField::Mat], ThermistorTable[100]);
}

TEST_F(LiveFrameTest, LoggerHoldsTemperaturesAtZero) {
  frame[4] = frame[8] = 255;
  Decode(FrameReader::Logger);
  EXPECT_EQ(Live[LiveField::Clt], 0);
  EXPECT_EQ(Live[LiveField::Mat], 0);
  frame[8] = 20;
  frame[11] = SensorMat;
  Decode(FrameReader::Logger);
  EXPECT_EQ(Live[LiveField::Mat], 0);
}

TEST_F(LiveFrameTest, FahrenheitOfCelsius) {
  EXPECT_DOUBLE_EQ(Fahrenheit(-40), -40);
  EXPECT_DOUBLE_EQ(Fahrenheit(0), 32);
  EXPECT_DOUBLE_EQ(Fahrenheit(100), 212);
}

// ---- firing time and duty -----------------------------------------------------------------------

class FiringTest : public LiveFrameTest {
 protected:
  void SetUp() override {
    LiveFrameTest::SetUp();
    CalValues[217] = 8;
    CalValues[233] = 1;
    CalValues[0] = 0;
    SetSpeed(4096);  // 6075 rev/min
    SetPulse(1250);  // 10 ms
  }
  const double eventMs = 1000 / (6075 / (120.0 / 8));
};

TEST_F(FiringTest, EvenFlagsFireHalfTheCylinders) {
  Decode();
  EXPECT_DOUBLE_EQ(Live.eventMs, eventMs);
  EXPECT_EQ(Live.fireFactor, 4);
  EXPECT_EQ(Live.pwOnMs, 10);
  EXPECT_DOUBLE_EQ(Live.duty, 10 / (4 * eventMs));
  EXPECT_DOUBLE_EQ(Live.pwOffMs, 4 * eventMs - 10);
}

TEST_F(FiringTest, OddFlagsFireAllAtOnce) {
  for (float flags : {1.0F, 3.0F, 249.0F, 1.9F, 65537.0F}) {
    CalValues[0] = flags;
    Decode();
    EXPECT_EQ(Live.fireFactor, 1) << flags;
    EXPECT_DOUBLE_EQ(Live.duty, 10 / eventMs);
  }
  for (float flags : {0.0F, 248.0F, 2.9F, 0.9F}) {
    CalValues[0] = flags;
    Decode();
    EXPECT_EQ(Live.fireFactor, 4) << flags;
  }
}

TEST_F(FiringTest, IntervalStretchesTheTime) {
  CalValues[233] = 2;
  Decode();
  EXPECT_DOUBLE_EQ(Live.eventMs, 2 * eventMs);
  Decode(FrameReader::Logger);
  EXPECT_DOUBLE_EQ(Live.eventMs, 2 * eventMs);
}

TEST_F(FiringTest, IntervalBetweenOneAndTwoStretchesToo) {
  CalValues[233] = 1.5F;
  for (FrameReader reader : {FrameReader::Monitor, FrameReader::Logger}) {
    Decode(reader);
    EXPECT_DOUBLE_EQ(Live.eventMs, 1.5 * eventMs);
  }
}

TEST_F(FiringTest, At300RevolutionsAndBelowNothingFires) {
  SetSpeed(202);  // 299.6
  Decode();
  ASSERT_EQ(Live[LiveField::Erpm], 299);
  EXPECT_EQ(Live.eventMs, 0);
  EXPECT_EQ(Live.pwOnMs, 0);
  EXPECT_EQ(Live.duty, 0);
  EXPECT_EQ(Live.pwOffMs, 0);
  SetSpeed(203);  // 301.08
  Decode();
  ASSERT_EQ(Live[LiveField::Erpm], 301);
  EXPECT_EQ(Live.pwOnMs, 10);
  EXPECT_GT(Live.eventMs, 0);
}

TEST_F(FiringTest, WithoutCylindersTheLastResultsStay) {
  Decode();
  const LiveState before = Live;
  CalValues[217] = 0;
  SetSpeed(8192);
  SetPulse(99);
  for (FrameReader reader : {FrameReader::Monitor, FrameReader::Logger}) {
    Decode(reader);
    EXPECT_EQ(Live.eventMs, before.eventMs);
    EXPECT_EQ(Live.fireFactor, before.fireFactor);
    EXPECT_EQ(Live.pwOnMs, before.pwOnMs);
    EXPECT_EQ(Live.pwOffMs, before.pwOffMs);
    EXPECT_EQ(Live.duty, before.duty);
  }
  EXPECT_EQ(Live[LiveField::Erpm], 12150);
}

TEST_F(FiringTest, IntervalBelowOneLeavesTheTimeOfTheMonitorsOnly) {
  Decode();
  CalValues[233] = 0.5F;
  SetSpeed(8192);
  Decode();
  EXPECT_DOUBLE_EQ(Live.eventMs, eventMs);
  Decode(FrameReader::Logger);
  EXPECT_DOUBLE_EQ(Live.eventMs, 1000 / (12150 / (120.0 / 8)))
      << "the logger only does not stretch";
}

// ---- fuel, air/fuel pair, smoothing -------------------------------------------------------------

TEST_F(LiveFrameTest, FuelFlowNeedsAnInjectorSize) {
  EXPECT_FALSE(LitresPerHour(0.5).has_value());
  CalValues[474] = 30;
  CalValues[467] = 8;
  EXPECT_DOUBLE_EQ(LitresPerHour(0.5).value(), 75.6);
  EXPECT_EQ(LitresPerHour(0).value(), 0);
  EXPECT_DOUBLE_EQ(GallonsPerHour(75.8), 20);
}

TEST_F(LiveFrameTest, AirFuelOffsetIsTheDifferenceToTheDesired) {
  for (int desired = 0; desired < 256; ++desired) {
    EXPECT_EQ(AfrOffsetShown(desired, 0), 0);
    EXPECT_DOUBLE_EQ(AfrOffsetShown(desired, 10),
                     14.64 / ((138 + desired) / 255.0) - 14.64 / ((128 + desired) / 255.0));
  }
}

TEST_F(LiveFrameTest, RawMinus128ReadsNinePoint75) {
  EXPECT_EQ(AfrOfRaw(-128), 9.75);
  EXPECT_DOUBLE_EQ(AfrOfRaw(127), 14.64);
  EXPECT_DOUBLE_EQ(AfrOffsetShown(12, -140), 9.75 - 14.64 / (140 / 255.0));
}

TEST_F(LiveFrameTest, EverySecondReadingGivesTheMeanOfItsPair) {
  PairMean mean;
  EXPECT_FALSE(mean.Add(800).has_value());
  EXPECT_EQ(mean.Add(901).value(), 850.5);
  EXPECT_FALSE(mean.Add(1000).has_value());
  EXPECT_EQ(mean.Add(3000).value(), 2000);
}

// ---- the reply ----------------------------------------------------------------------------------

TEST_F(LiveFrameTest, DecodesTheReplyThatStandsInTheBuffer) {
  RxBuffer.assign(27, 0);
  RxBuffer[2] = 85;
  DecodeFrame(FrameReader::Monitor);
  EXPECT_EQ(Live[LiveField::Adv], 20);
  RxBuffer[2] = 170;
  RxBuffer.push_back(99);
  DecodeFrame(FrameReader::Monitor);
  EXPECT_EQ(Live[LiveField::Adv], 40) << "a byte too many is passed over";
  RxBuffer.clear();
}

TEST_F(LiveFrameTest, ShortReplyIsASubscriptFailureAndChangesNothing) {
  frame[2] = 85;
  Decode();
  for (std::size_t length = 0; length < 27; ++length) {
    RxBuffer.assign(length, 1);
    try {
      DecodeFrame(FrameReader::Monitor);
      ADD_FAILURE() << length;
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.number, FailureSubscript);
    }
    EXPECT_EQ(Live[LiveField::Adv], 20);
  }
  RxBuffer.clear();
}

TEST_F(LiveFrameTest, ResetPutsStartValuesBack) {
  frame.fill(200);
  CalValues[217] = 8;
  CalValues[233] = 1;
  Decode();
  ClosedLoop = FuelInLitres = false;
  ImperialUnits = true;
  OptionFlags = 248;
  ResetLiveState();
  ResetLiveFlags();
  EXPECT_EQ(Live.frame, LiveFrame{});
  for (double value : Live.fields) EXPECT_EQ(value, 0);
  EXPECT_EQ(Live.eventMs + Live.fireFactor + Live.pwOnMs + Live.pwOffMs + Live.duty, 0);
  EXPECT_TRUE(ClosedLoop);
  EXPECT_TRUE(FuelInLitres);
  EXPECT_FALSE(ImperialUnits);
  EXPECT_EQ(OptionFlags, 0);
}

}  // namespace
