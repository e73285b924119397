// The program's encoder and the simulator's decoder were written apart: they must agree, and the
// simulated engine must run well on the factory calibration.
#ifdef HALVANE2_BASE_BIN
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>

#include "core/encoder.h"
#include "core/globalstate.h"
#include "exchange.h"
#include "simulator/calibration.h"

namespace {

using sim::Calibration;
using sim::Image;
namespace cell = sim::cell;

// base.bin, as the program would put it into a ZEM. Leaves the program's state as at start.
class Factory : public testing::Test {
 protected:
  void SetUp() override {
    ResetCalibrationState();
    std::ifstream file(HALVANE2_BASE_BIN, std::ios::binary);
    file.read(reinterpret_cast<char*>(CalValues.data()), 2048);
    ASSERT_TRUE(file);
    BinShortName = "BASE.BIN";
  }
  void TearDown() override { ResetCalibrationState(); }
  Image Encoded() {
    EncodeCalibration();
    Image image;
    std::transform(BinImage.begin(), BinImage.begin() + sim::ImageSize, image.begin(),
                   [](int byte) { return static_cast<std::uint8_t>(byte); });
    return image;
  }
  double Value(int index) const { return CalValues[static_cast<std::size_t>(index)]; }
};

TEST_F(Factory, SpeedsAndLoadsAreReadAsTheyWereMeant) {
  // Rounding of the high byte loses up to half of it, except where the low byte is kept.
  const Calibration cal(Encoded());
  for (int i = 0; i < 8; ++i) {
    const double meant = Value(45 + i);
    const double counts = meant * 8191 / 12000;
    const double lost = std::nearbyint(counts / 256) * 256 > counts ? 128 : 1;
    EXPECT_NEAR(cal.speeds[static_cast<std::size_t>(i)], meant, lost * 12000 / 8191) << i;
    EXPECT_NEAR(cal.loads[static_cast<std::size_t>(i)], Value(53 + i), 0.21) << i;
  }
}

TEST_F(Factory, EveryTableCellIsReadAsItWasMeant) {
  const Calibration cal(Encoded());
  for (int i = 0; i < 64; ++i) {
    EXPECT_NEAR(cal.Scaled(cell::AdvanceTable + i, 4.25), Value(61 + i), 0.12) << i;
    EXPECT_NEAR((cal.Raw(cell::FuelTable + i) - 127) / 255, Value(125 + i), 0.004) << i;
    EXPECT_NEAR(cal.Scaled(cell::Gpo + i, 2.55), Value(261 + i), 0.2) << i;
    const double ratio = 14.64 / ((128 + cal.Raw(cell::AirFuelTable + i)) / 255);
    EXPECT_NEAR(ratio, Value(345 + i), 0.12) << i;
  }
}

TEST_F(Factory, SingleParametersAreReadAsTheyWereMeant) {
  const Calibration cal(Encoded());
  EXPECT_NEAR(sim::SignAndMagnitude(cal.image[cell::InjectorOffset]) / 8.0, Value(2), 0.0625);
  EXPECT_NEAR(cal.Speed(cell::RevLimit), Value(4), 2);
  EXPECT_NEAR(cal.Temperature(cell::CoolantDefault), Value(8), 0.3);
  EXPECT_NEAR(cal.Kpa(cell::MapDefault), Value(17), 0.3);
  EXPECT_NEAR(cal.Scaled(cell::KnockThreshold, 2.55), Value(37), 0.3);
  EXPECT_NEAR(cal.CoarseSpeed(cell::IdleSpeeds), Value(205), 8);
  EXPECT_NEAR(cal.Temperature(cell::IdleTemperatures + 1), Value(203), 0.3);
  EXPECT_NEAR((cal.Raw(cell::IdleWaitUp) + 1) * 4.096, Value(214), 2.1);
  EXPECT_NEAR(cal.Scaled(cell::EgoAuthority, 255), Value(221), 0.002);
  EXPECT_NEAR(cal.Scaled(cell::ClosedThrottle, 51), Value(227) + 0.08, 0.01);
  EXPECT_NEAR(cal.Raw(cell::BatteryCompensation) * 2, Value(229), 1);
  EXPECT_NEAR(cal.Raw(cell::OneGama) * 2.048, Value(232), 2.048);
  EXPECT_NEAR(cal.Signed(cell::AirAdvance, 4.25), Value(466), 0.5);
  EXPECT_NEAR(cal.Scaled(cell::BlendOffset, 51), Value(465), 0.01);
  EXPECT_NEAR(cal.Scaled(cell::EgoHighMap, 2.7128) + 10, Value(410), 0.2);
  EXPECT_NEAR((cal.Raw(cell::EgoHighMapSpeed) * 256 + cal.Raw(cell::EgoHighMapSpeed + 1)) / 5.46125,
              Value(409), 24);
}

TEST_F(Factory, TheSensorCurveIsTheSimulatorsOwn) {
  const Image image = Encoded();
  for (int i = 0; i < 8; ++i) {
    const auto index = static_cast<std::size_t>(cell::EgoCurveVolts + i);
    EXPECT_EQ(image[index], sim::DefaultImage()[index]) << i;
  }
  for (int i = 0; i < 10; ++i) {
    const auto index = static_cast<std::size_t>(cell::EgoCurveRatios + i);
    EXPECT_EQ(image[index], sim::DefaultImage()[index]) << i;
  }
}

TEST_F(Factory, TheThermistorTableIsTheSameOnBothSides) {
  for (int count = 0; count < 256; ++count) {
    EXPECT_EQ(sim::CelsiusOfCount(count), ThermistorTable[static_cast<std::size_t>(count)]);
  }
}

TEST_F(Factory, ProgrammedItStartsIdlesAndReportsItsName) {
  Exchange pc;
  pc.zem.Motor().SetCoolant(15);
  pc.Ask("P1");
  for (const std::string& record : RecordsOf(Encoded())) pc.Ask(record);
  EXPECT_EQ(pc.Ask("B").substr(1, 5), std::string("BASE\0", 5));
  pc.Wait(5);
  EXPECT_EQ(pc.zem.Motor().Now(), sim::Engine::State::Running);
  pc.zem.Motor().SetCoolant(88);
  pc.Wait(40);
  EXPECT_NEAR(pc.zem.Motor().Rpm(), Value(207), 40);
  EXPECT_NEAR(pc.zem.Motor().AirFuelRatio(), 14.64, 0.6);
}

TEST_F(Factory, ItDrivesWithoutStalling) {
  Exchange pc{.zem = sim::Zem({}, Encoded())};
  pc.zem.Motor().driver.Drive();
  for (int i = 0; i < 200; ++i) {
    pc.Wait(1);
    ASSERT_EQ(pc.zem.Motor().Now(), sim::Engine::State::Running) << i;
  }
}

}  // namespace
#endif
