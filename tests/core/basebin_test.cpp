// The factory calibration, as the build has made it: each value within what its editor lets in, and
// what a tuner would look at before the first start.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "core/calmap.h"
#include "core/encoder.h"
#include "knowncal.h"

namespace {

std::vector<unsigned char> BytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

float SingleAt(const std::vector<unsigned char>& bytes, std::size_t at) {
  std::uint32_t bits = 0;
  for (std::size_t k = 0; k < 4; ++k) bits |= std::uint32_t{bytes.at(at + k)} << (8 * k);
  return std::bit_cast<float>(bits);
}

void LoadBase() {
  ResetCalibrationState();
  const std::vector<unsigned char> bytes = BytesOf(HALVANE2_BASE_BIN);
  for (std::size_t i = 0; i < 512; ++i) CalValues[i] = SingleAt(bytes, 4 * i);
}

float Cell(std::size_t base, std::size_t load, std::size_t speed) {
  return CalValues[base + 8 * load + speed];
}

int At(std::size_t imageByte) { return BinImage[imageByte]; }

// The engine speed that the control unit reads from a pair of image bytes.
double SpeedOfPair(std::size_t imageByte) {
  return (At(imageByte) * 256.0 + At(imageByte + 1)) * 12000 / 8191;
}

class BaseBin : public testing::Test {
 protected:
  void SetUp() override { LoadBase(); }
  void TearDown() override { ResetCalibrationState(); }
};

class MakeBase : public testing::Test {
 protected:
  void SetUp() override {
    const std::string name = "halvane2-makebase-" + std::to_string(std::random_device{}());
    folder = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directory(folder);
  }
  void TearDown() override { std::filesystem::remove_all(folder); }

  int Make(const std::string& source) {
    std::ofstream(folder / "source.csv") << source;
    const std::string command =
        std::string(HALVANE2_MAKEBASE) + " '" + (folder / "source.csv").string() + "' '" +
        (folder / "made.bin").string() + "' 2> '" + (folder / "errors").string() + "'";
    return std::system(command.c_str()) == 0 ? 0 : 1;
  }
  std::string Errors() const {
    const std::vector<unsigned char> bytes = BytesOf(folder / "errors");
    const std::string text(bytes.begin(), bytes.end());
    return text.substr(std::min(text.find("source.csv"), text.size()));
  }

  std::filesystem::path folder;
};

}  // namespace

TEST_F(BaseBin, Has512Singles) { EXPECT_EQ(BytesOf(HALVANE2_BASE_BIN).size(), 2048); }

TEST_F(BaseBin, EveryValueIsWithinItsRange) {
  for (const MapRow& row : CalibrationMap()) {
    if (!row.range) continue;
    for (int k = 0; k < row.calCount; ++k) {
      const float value = CalValues[static_cast<std::size_t>(row.calIndex + k)];
      const bool unusedGpo =
          row.encoding == Encoding::GpoSpeed || row.encoding == Encoding::GpoLoad;
      if (unusedGpo) {
        EXPECT_EQ(value, 0) << row.meaning;
        continue;
      }
      EXPECT_GE(value, static_cast<float>(row.range->low)) << row.meaning << " " << k;
      EXPECT_LE(value, static_cast<float>(row.range->high)) << row.meaning << " " << k;
    }
  }
}

TEST_F(BaseBin, ListsThatAllowOnlySomeValuesHoldOneOfThem) {
  EXPECT_TRUE(std::set<float>({2, 4, 8, 16, 32, 64}).contains(CalValues[413]));
  EXPECT_TRUE(std::set<float>({2, 4, 8, 16, 32, 64}).contains(CalValues[414]));
  EXPECT_TRUE(std::set<float>({15, 10, 8, 4, 2, 1}).contains(CalValues[325]));
  EXPECT_EQ(CalValues[199] * 4, std::round(CalValues[199] * 4));
  EXPECT_EQ(CalValues[2] * 8, std::round(CalValues[2] * 8));
  EXPECT_EQ(std::fmod(CalValues[451], 13), 0);
  EXPECT_TRUE(std::set<float>({1, 2, 4}).contains(CalValues[470]));
  EXPECT_LE(CalValues[227], 2.5F);
  for (std::size_t k = 0; k < 64; ++k) {
    const double percent = CalValues[125 + k] * 100.0;
    EXPECT_NEAR(percent, std::round(percent), 1e-4) << k;
  }
}

TEST_F(BaseBin, AxesAscend) {
  for (std::size_t first : {45, 53, 435})
    for (std::size_t i = 1; i < 8; ++i)
      EXPECT_LT(CalValues[first + i - 1], CalValues[first + i]) << first + i;
  EXPECT_EQ(CalValues[52], CalValues[4]);
  EXPECT_EQ(CalValues[435], 400);
  EXPECT_EQ(CalValues[442], CalValues[4]);
  EXPECT_EQ(CalValues[443], 0);
}

TEST_F(BaseBin, EgoCurveRisesInVoltsAndFallsInRatio) {
  for (std::size_t i = 1; i < 10; ++i) {
    EXPECT_LT(CalValues[415 + i - 1], CalValues[415 + i]);
    EXPECT_GT(CalValues[425 + i - 1], CalValues[425 + i]);
  }
}

TEST_F(BaseBin, AdvanceRisesWithSpeedAndFallsWithLoad) {
  for (std::size_t load = 0; load < 8; ++load)
    for (std::size_t speed = 1; speed < 8; ++speed)
      EXPECT_GE(Cell(61, load, speed), Cell(61, load, speed - 1)) << load << " " << speed;
  for (std::size_t load = 1; load < 8; ++load)
    for (std::size_t speed = 0; speed < 8; ++speed)
      EXPECT_LE(Cell(61, load, speed), Cell(61, load - 1, speed)) << load << " " << speed;
  EXPECT_LE(Cell(61, 7, 7), 34);
}

TEST_F(BaseBin, MixtureIsStoichiometricAtCruiseAndRichAtFullLoad) {
  for (std::size_t load = 0; load < 5; ++load)
    for (std::size_t speed = 0; speed < 4; ++speed) EXPECT_EQ(Cell(345, load, speed), 14.64F);
  for (std::size_t speed = 0; speed < 8; ++speed) {
    EXPECT_NEAR(Cell(345, 7, speed), 12.8, 0.25);
    for (std::size_t load = 1; load < 8; ++load)
      EXPECT_LE(Cell(345, load, speed), Cell(345, load - 1, speed)) << load << " " << speed;
  }
}

TEST_F(BaseBin, NeighbouringVeCellsAreClose) {
  for (std::size_t load = 0; load < 8; ++load)
    for (std::size_t speed = 1; speed < 8; ++speed)
      EXPECT_NEAR(Cell(125, load, speed), Cell(125, load, speed - 1), 0.0601);
  for (std::size_t load = 1; load < 8; ++load)
    for (std::size_t speed = 0; speed < 8; ++speed)
      EXPECT_NEAR(Cell(125, load, speed), Cell(125, load - 1, speed), 0.0401);
}

TEST_F(BaseBin, ColdEngineGetsMoreFuelAdvanceAndSpeed) {
  for (std::size_t i = 1; i < 11; ++i) EXPECT_LT(CalValues[328 + i], CalValues[328 + i - 1]);
  for (std::size_t i = 1; i < 12; ++i) EXPECT_LE(CalValues[237 + i], CalValues[237 + i - 1]);
  EXPECT_EQ(CalValues[338], 0);
  EXPECT_EQ(CalValues[248], 0);
  for (std::size_t i : {203, 204}) EXPECT_GT(CalValues[i], CalValues[i - 1]);
  for (std::size_t i : {206, 207}) EXPECT_LT(CalValues[i], CalValues[i - 1]);
}

TEST_F(BaseBin, SensorFailureVoltagesEncloseTheWorkingRange) {
  for (std::size_t high : {6, 9, 12, 15}) EXPECT_LT(CalValues[high + 1] + 4, CalValues[high]);
  EXPECT_GT(CalValues[227], CalValues[13]);
  EXPECT_GT(CalValues[14], CalValues[227]);
}

// The pulse at every cell fits the time between injections, less the injector's recovery, and
// stays above the time below which the injector no longer opens.
TEST_F(BaseBin, InjectorsReachEveryCell) {
  PublishCalGlobals();
  ComputeInjectorLimits();
  EXPECT_LT(FullLoadPulseMs, RevLimitPulseMs);
  CopyTablesToWork();
  for (std::size_t load = 0; load < 8; ++load)
    for (std::size_t speed = 0; speed < 8; ++speed) {
      const double pulse = WorkIot + WorkTog * (1 + Cell(125, load, speed)) *
                                         (LoadAxis[2 + load] - MapLow) / (MapHigh - MapLow);
      EXPECT_GT(pulse, MinTurnOnMs) << load << " " << speed;
      EXPECT_LT(pulse / (60000 / RpmAxis[4 + speed] - InjectorRecoveryMs), 0.9);
    }
}

TEST_F(BaseBin, TimeOnIsWhatTheWizardWouldReckon) {
  const double flow = CalValues[472] / CalValues[467] * CalValues[471];
  const double interval = 60000 / CalValues[4];
  EXPECT_NEAR(CalValues[232], interval * flow / CalValues[474], 0.001);
  EXPECT_NEAR(CalValues[465], 1.45 - CalValues[227], 1e-6);
}

TEST_F(BaseBin, SwitchesNothingOnThatItCannotKnow) {
  EXPECT_EQ(CalValues[491], 0);
  for (std::size_t k = 0; k < 64; ++k) EXPECT_EQ(CalValues[261 + k], 0);
  const int bits = static_cast<int>(CalValues[0]);
  EXPECT_EQ(bits & 16, 0);     // no knock sensor
  EXPECT_EQ(bits & 8, 8);      // rev limiter
  EXPECT_EQ(bits & 128, 128);  // as the MAT failure voltage says
  EXPECT_NE(CalValues[9], 0);
}

TEST_F(BaseBin, EncodesWithoutSaturatingOrLosingAByte) {
  const auto values = CalValues;
  BinShortName = "base.bin";
  EncodeCalibration();
  EXPECT_EQ(CalValues, values);
  for (const MapRow& row : CalibrationMap()) {
    const bool speed = row.encoding == Encoding::SpeedPair;
    for (int k = 0; speed && k < row.calCount; ++k) {
      const auto index = static_cast<std::size_t>(row.calIndex + k);
      EXPECT_NEAR(SpeedOfPair(static_cast<std::size_t>(row.imageByte + 2 * k)), CalValues[index], 2)
          << row.meaning;
    }
  }
  EXPECT_NEAR((At(416) * 256 + At(417)) / 5.46125, CalValues[409], 2);
  EXPECT_NEAR((At(218) + At(219) / 256.0) * 256 / 125, CalValues[232], 0.01);
  for (std::size_t n = 54; n < 118; ++n) EXPECT_LT(At(n), 255);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(At(449 + i), CalValues[477 + i]);
}

TEST_F(BaseBin, OpenWouldChangeNothing) {
  for (std::size_t i = 425; i < 435; ++i) {
    EXPECT_GE(CalValues[i], 9.8F);
    EXPECT_LE(CalValues[i], 29.3F);
  }
  EXPECT_LE(CalValues[424], 5);
  EXPECT_EQ(CalValues[234], 0);
  EXPECT_EQ(CalValues[339], 0);
  EXPECT_NE(CalValues[435], 0);
  EXPECT_EQ(CalValues[252], 400);
  EXPECT_EQ(CalValues[256], 1);
  EXPECT_EQ(CalValues[257], 1);
  EXPECT_EQ(CalValues[258], 0);
}

TEST_F(MakeBase, ValuesFollowTheFirstIndexInLittleEndianOrder) {
  ASSERT_EQ(Make("# a comment\n\n2,1.5,An offset\n510,1  -2,The end, with a comma\n"), 0);
  const std::vector<unsigned char> bytes = BytesOf(folder / "made.bin");
  ASSERT_EQ(bytes.size(), 2048);
  EXPECT_EQ(std::vector(bytes.begin() + 8, bytes.begin() + 12),
            (std::vector<unsigned char>{0x00, 0x00, 0xC0, 0x3F}));
  EXPECT_EQ(SingleAt(bytes, 4 * 510), 1);
  EXPECT_EQ(SingleAt(bytes, 4 * 511), -2);
  EXPECT_EQ(SingleAt(bytes, 0), 0);
}

TEST_F(MakeBase, SaysWhatIsWrongWithALine) {
  const std::vector<std::pair<std::string, std::string>> faults = {
      {"2,1.5\n", "source.csv:1: not index, values and meaning\n"},
      {"2,1.5,\n", "source.csv:1: no meaning\n"},
      {"2,,Nothing\n", "source.csv:1: no value\n"},
      {"x,1,Index\n", "source.csv:1: no index\n"},
      {"-1,1,Index\n", "source.csv:1: no index\n"},
      {"2,1 2x,Number\n", "source.csv:1: no number: 2x\n"},
      {"511,1 2,End\n", "source.csv:1: index beyond 511\n"},
      {"2,1 1,Twice\n3,1,Again\n", "source.csv:2: named twice: 3\n"},
      {"", "source.csv: cannot be read\n"}};
  for (const auto& [source, message] : faults) {
    EXPECT_NE(Make(source), 0) << source;
    EXPECT_EQ(Errors(), message);
    EXPECT_FALSE(std::filesystem::exists(folder / "made.bin"));
  }
}
