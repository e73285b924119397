// BIN files cut at every length and damaged at every byte: opening says so or carries on, and what
// was loaded before stays.
#include <bit>
#include <limits>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "filestest.h"

namespace {

using BinDamage = FilesTest;

constexpr const char* path = "/home/user/v8.bin";

// What is known to become of a file of so many bytes when no file came before it.
void ExpectOutcome(std::size_t bytes) {
  const std::size_t singles = bytes / 4;
  const bool foreign = singles == 133 || singles == 351 || singles == 401 || singles == 433 ||
                       singles == 441 || singles == 501;
  EXPECT_EQ(CurrentBinPath, singles == 512 ? path : "") << bytes;
  // The dialog, and what was said after it.
  const std::size_t boxes = ForgetBoxes();
  EXPECT_EQ(boxes, singles < 4 || singles > 512 || foreign ? 2U : 1U) << bytes;
}

}  // namespace

TEST_F(BinDamage, FileCutAtEveryLengthIsOpenedToldOrLeftAlone) {
  std::vector<float> singles = SoundSingles();
  singles.resize(525, 1.0F);
  const std::vector<std::uint8_t> whole = BinBytes(singles);
  for (std::size_t bytes = 0; bytes <= 2100; ++bytes) {
    ResetCalibrationState();
    const auto before = MarkCalValues();
    PutFile(path, {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(bytes)});
    OpenByDialog(path);
    ExpectOutcome(bytes);
    if (CurrentBinPath.empty()) {
      ASSERT_EQ(CalValues, before) << bytes;
    } else {
      EXPECT_EQ(CalValues[217], 8) << bytes;
    }
  }
}

TEST_F(BinDamage, DamagedByteNeverKeepsTheFileFromOpeningOrTheProgramFromGoingOn) {
  const std::vector<std::uint8_t> whole = BinBytes(SoundSingles());
  for (std::size_t at = 0; at < whole.size(); ++at) {
    ResetCalibrationState();
    std::vector<std::uint8_t> damaged = whole;
    damaged[at] ^= 0xFF;
    PutFile(path, damaged);
    OpenByDialog(path);
    ASSERT_EQ(CurrentBinPath, path) << at;
    ASSERT_EQ(ForgetBoxes(), 1U) << at;
    savedata();
    ASSERT_LE(ForgetBoxes(), 1U) << at;
  }
}

TEST_F(BinDamage, FileOfOneStrangeNumberOpensAndSavesOrTells) {
  constexpr float infinity = std::numeric_limits<float>::infinity();
  for (float number : {std::numeric_limits<float>::quiet_NaN(), infinity, -infinity, 3.4e38F,
                       -3.4e38F, 1e-45F, -0.0F, 40000.0F}) {
    ResetCalibrationState();
    PutFile(path, BinBytes(std::vector<float>(512, number)));
    PutTextFile("/home/user/v8.S19", "old");
    OpenByDialog(path);
    EXPECT_EQ(CurrentBinPath, path) << number;
    EXPECT_EQ(ForgetBoxes(), 1U) << number;
    savedata();
    const std::size_t told = ForgetBoxes();
    EXPECT_EQ(told == 0, FileTextOf("/home/user/v8.S19") != "old") << number;
  }
}

TEST_F(BinDamage, BaseFileCutAtEveryLengthIsLoadedOrTold) {
  const std::vector<std::uint8_t> whole = BinBytes(std::vector<float>(525, 7.0F));
  for (std::size_t bytes = 0; bytes <= 2100; ++bytes) {
    const auto before = MarkCalValues();
    PutFile("/home/user/base.bin",
            {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(bytes)});
    CurrentBinPath = "base.bin";
    LoadBaseCalibration();
    const bool loads = bytes / 4 >= 4 && bytes / 4 <= 512;
    EXPECT_EQ(CurrentBinPath, loads ? "base.bin" : "") << bytes;
    EXPECT_EQ(ForgetBoxes(), loads ? 0U : 1U) << bytes;
    if (!loads) {
      ASSERT_EQ(CalValues, before) << bytes;
    }
  }
}
