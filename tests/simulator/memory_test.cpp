// The built-in image, its decoding, the sensor curve, and the file of the 512 bytes.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "simulator/calibration.h"
#include "simulator/image.h"
#include "simulator/records.h"

namespace {

namespace fs = std::filesystem;
using sim::Calibration;
using sim::Image;

// A folder of its own that is gone afterwards.
class ImageFile : public testing::Test {
 protected:
  void SetUp() override {
    folder = fs::temp_directory_path() /
             ("zem-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
              ::testing::UnitTest::GetInstance()->current_test_info()->name() + "-" +
              std::to_string(reinterpret_cast<std::uintptr_t>(this)));
    fs::create_directories(folder);
    path = folder / "memory";
  }
  void TearDown() override { fs::remove_all(folder); }
  void Write(std::size_t bytes) {
    std::ofstream(path, std::ios::binary) << std::string(bytes, 'x');
  }
  fs::path folder;
  fs::path path;
};

TEST_F(ImageFile, ComesBackAsItWasSaved) {
  Image image{};
  for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<std::uint8_t>(i * 3);
  EXPECT_TRUE(sim::SaveImage(path, image));
  EXPECT_EQ(fs::file_size(path), 512u);
  EXPECT_EQ(sim::LoadImage(path), image);
  EXPECT_TRUE(sim::SaveImage(path, sim::DefaultImage()));
  EXPECT_EQ(sim::LoadImage(path), sim::DefaultImage());
}

TEST_F(ImageFile, LeavesNothingBeside) {
  sim::SaveImage(path, sim::DefaultImage());
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
}

TEST_F(ImageFile, OfAnotherLengthIsNone) {
  EXPECT_EQ(sim::LoadImage(path), std::nullopt);
  for (std::size_t bytes : {0u, 1u, 511u, 513u, 2048u}) {
    Write(bytes);
    EXPECT_EQ(sim::LoadImage(path), std::nullopt) << bytes;
  }
  EXPECT_EQ(sim::LoadImage(folder), std::nullopt);
}

TEST_F(ImageFile, AFailedSaveLeavesWhatWasThere) {
  const fs::path blocked = folder / "taken";
  fs::create_directories(blocked / "inside");
  EXPECT_FALSE(sim::SaveImage(blocked, sim::DefaultImage()));
  EXPECT_TRUE(fs::is_directory(blocked / "inside"));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
  EXPECT_FALSE(sim::SaveImage(folder / "nowhere" / "memory", sim::DefaultImage()));
}

TEST(BuiltInImage, HasRisingAxesAndItsName) {
  const Calibration cal(sim::DefaultImage());
  for (std::size_t i = 1; i < 8; ++i) {
    EXPECT_GT(cal.speeds[i], cal.speeds[i - 1]);
    EXPECT_GT(cal.loads[i], cal.loads[i - 1]);
  }
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(&cal.image[449])), "SIMV8");
}

TEST(BuiltInImage, KnownBytes) {
  const Image& image = sim::DefaultImage();
  EXPECT_EQ(image[0], 0xF8);
  EXPECT_EQ(image[2], 4);
  EXPECT_EQ(image[4], 0x0F);  // 5800 rpm: 3959 counts
  EXPECT_EQ(image[5], 0x77);
  EXPECT_EQ(image[28], 26);
  EXPECT_EQ(image[29], 6);
  EXPECT_EQ(image[222], 32);
  EXPECT_EQ(image[324], 255);
  EXPECT_EQ(image[463], 255);
}

TEST(Decoding, SpeedsVoltsAndTemperatures) {
  Image image{};
  image[4] = 0x10;
  image[10] = 255;
  image[448] = 213;
  const Calibration cal(image);
  EXPECT_NEAR(cal.Speed(4), 6000.7, 0.1);
  EXPECT_NEAR(cal.Temperature(10), 80, 0.1);
  EXPECT_NEAR(cal.Signed(448, 4.25), -10.1, 0.1);
}

TEST(Decoding, TablesAreRowByRowAndBetweenTheirCells) {
  Image image = sim::DefaultImage();
  for (int i = 0; i < 64; ++i)
    image[static_cast<std::size_t>(54 + i)] = static_cast<std::uint8_t>(i);
  const Calibration cal(image);
  const auto at = [&](int row, int column) {
    return cal.Table(54, cal.speeds[static_cast<std::size_t>(column)],
                     cal.loads[static_cast<std::size_t>(row)]);
  };
  EXPECT_DOUBLE_EQ(at(0, 0), 0);
  EXPECT_DOUBLE_EQ(at(3, 5), 29);
  EXPECT_DOUBLE_EQ(at(7, 7), 63);
  EXPECT_DOUBLE_EQ(
      cal.Table(54, (cal.speeds[2] + cal.speeds[3]) / 2, (cal.loads[4] + cal.loads[5]) / 2), 38.5);
  EXPECT_DOUBLE_EQ(cal.Table(54, 0, 0), 0);
  EXPECT_DOUBLE_EQ(cal.Table(54, 99999, 999), 63);
}

TEST(Decoding, AnAxisOfZerosIsSurvived) {
  const Calibration cal{Image{}};
  EXPECT_EQ(cal.Table(54, 1000, 50), 0);
}

TEST(SensorCurve, BothWays) {
  EXPECT_EQ(sim::CelsiusOfCount(0), 130);
  EXPECT_EQ(sim::CelsiusOfCount(17), 130);
  EXPECT_EQ(sim::CelsiusOfCount(18), 129);
  EXPECT_EQ(sim::CelsiusOfCount(255), -40);
  EXPECT_EQ(sim::CelsiusOfCount(sim::CountOfCelsius(88)), 88);
  EXPECT_EQ(sim::CelsiusOfCount(sim::CountOfCelsius(0)), 0);
  EXPECT_EQ(sim::CountOfCelsius(200), 0);
  EXPECT_EQ(sim::CountOfCelsius(-60), 255);
  for (int count = 1; count < 256; ++count) {
    EXPECT_LE(sim::CelsiusOfCount(count), sim::CelsiusOfCount(count - 1));
  }
}

sim::Record Read(std::string_view text) {
  sim::RecordReader reader;
  reader.Begin();
  for (std::size_t i = 1; i < text.size(); ++i) {
    const auto step = reader.Feed(static_cast<std::uint8_t>(text[i]));
    EXPECT_EQ(step == sim::RecordReader::Step::Complete, i + 1 == text.size()) << text;
  }
  return reader.TakeRecord();
}

TEST(Records, AreTakenApart) {
  const sim::Record record = Read("S105B6FF112212");
  EXPECT_TRUE(record.sound);
  EXPECT_EQ(record.address, 0xB6FF);
  EXPECT_EQ(record.data, (std::vector<std::uint8_t>{0x11, 0x22}));
  const sim::Record end = Read("S9030000FC");
  EXPECT_TRUE(end.sound);
  EXPECT_EQ(end.type, '9');
  EXPECT_TRUE(end.data.empty());
}

TEST(Records, WrongOnesAreNotSound) {
  EXPECT_FALSE(Read("S9030000FB").sound);
  EXPECT_FALSE(Read("S9030000fc").sound);
  EXPECT_FALSE(Read("S103G000FC").sound);
  EXPECT_FALSE(Read("S10G").sound);
  EXPECT_FALSE(Read("S100").sound);
  EXPECT_FALSE(Read("S102B647").sound);
}

}  // namespace
