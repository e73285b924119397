// The S19 file byte by byte.
#include "core/s19file.h"

#include "core/globalstate.h"
#include "filestest.h"

namespace {

using S19Test = FilesTest;

// Byte n is 7 n + 3.
void FillImage() {
  for (std::size_t n = 0; n < 512; ++n) BinImage[n] = static_cast<std::int16_t>((7 * n + 3) % 256);
}

constexpr const char* knownFile =
    "S113B600030A11181F262D343B424950575E656CBE\r\n"
    "S113B610737A81888F969DA4ABB2B9C0C7CED5DCAE\r\n"
    "S113B620E3EAF1F8FF060D141B222930373E454C9E\r\n"
    "S113B630535A61686F767D848B9299A0A7AEB5BC8E\r\n"
    "S113B640C3CAD1D8DFE6EDF4FB020910171E252C7E\r\n"
    "S113B650333A41484F565D646B727980878E959C6E\r\n"
    "S113B660A3AAB1B8BFC6CDD4DBE2E9F0F7FE050C5E\r\n"
    "S113B670131A21282F363D444B525960676E757C4E\r\n"
    "S113B680838A91989FA6ADB4BBC2C9D0D7DEE5EC3E\r\n"
    "S113B690F3FA01080F161D242B323940474E555C2E\r\n"
    "S113B6A0636A71787F868D949BA2A9B0B7BEC5CC1E\r\n"
    "S113B6B0D3DAE1E8EFF6FD040B121920272E353C0E\r\n"
    "S113B6C0434A51585F666D747B828990979EA5ACFE\r\n"
    "S113B6D0B3BAC1C8CFD6DDE4EBF2F900070E151CEE\r\n"
    "S113B6E0232A31383F464D545B626970777E858CDE\r\n"
    "S113B6F0939AA1A8AFB6BDC4CBD2D9E0E7EEF5FCCE\r\n"
    "S113B700030A11181F262D343B424950575E656CBD\r\n"
    "S113B710737A81888F969DA4ABB2B9C0C7CED5DCAD\r\n"
    "S113B720E3EAF1F8FF060D141B222930373E454C9D\r\n"
    "S113B730535A61686F767D848B9299A0A7AEB5BC8D\r\n"
    "S113B740C3CAD1D8DFE6EDF4FB020910171E252C7D\r\n"
    "S113B750333A41484F565D646B727980878E959C6D\r\n"
    "S113B760A3AAB1B8BFC6CDD4DBE2E9F0F7FE050C5D\r\n"
    "S113B770131A21282F363D444B525960676E757C4D\r\n"
    "S113B780838A91989FA6ADB4BBC2C9D0D7DEE5EC3D\r\n"
    "S113B790F3FA01080F161D242B323940474E555C2D\r\n"
    "S113B7A0636A71787F868D949BA2A9B0B7BEC5CC1D\r\n"
    "S113B7B0D3DAE1E8EFF6FD040B121920272E353C0D\r\n"
    "S113B7C0434A51585F666D747B828990979EA5ACFD\r\n"
    "S113B7D0B3BAC1C8CFD6DDE4EBF2F900070E151CED\r\n"
    "S113B7E0232A31383F464D545B626970777E858CDD\r\n"
    "S113B7F0939AA1A8AFB6BDC4CBD2D9E0E7EEF5FCCD\r\n"
    "S9030000FC\r\n";

// Of an image of zeros, line by line.
constexpr const char* zeroChecksums[] = {
    "36", "26", "16", "06", "F6", "E6", "D6", "C6", "B6", "A6", "96", "86", "76", "66", "56", "46",
    "35", "25", "15", "05", "F5", "E5", "D5", "C5", "B5", "A5", "95", "85", "75", "65", "55", "45"};

}  // namespace

TEST(S1Record, HasLengthAddressDataAndChecksum) {
  const std::int16_t bytes[] = {0x7F};
  EXPECT_EQ(S1Record(0xB7FF, bytes), "S104B7FF7FC6");
}

TEST(S1Record, PrintsSmallBytesWithALeadingZeroInUpperCase) {
  const std::int16_t bytes[] = {0, 9, 10, 171, 255};
  EXPECT_EQ(S1Record(0xB60A, bytes), "S108B60A00090AABFF7A");
}

TEST(S19Text, IsTheKnownFileByteForByte) {
  ResetCalibrationState();
  FillImage();
  EXPECT_EQ(S19Text(BinImage), knownFile);
}

TEST(S19Text, OfZerosHasThirtyThreeLinesAndTheirChecksums) {
  ResetCalibrationState();
  const std::string text = S19Text(BinImage);
  std::string expected;
  for (unsigned line = 0; line < 32; ++line) {
    const char* digits = "0123456789ABCDEF";
    expected += line < 16 ? "S113B6" : "S113B7";
    expected += digits[line % 16];
    expected += "0" + std::string(32, '0') + zeroChecksums[line] + "\r\n";
  }
  EXPECT_EQ(text, expected + "S9030000FC\r\n");
  EXPECT_EQ(text.size(), 32U * 44U + 12U);
}

TEST(S19Text, LeavesTheElementBehindTheImageOut) {
  ResetCalibrationState();
  const std::string before = S19Text(BinImage);
  BinImage[512] = 99;
  EXPECT_EQ(S19Text(BinImage), before);
}

TEST(S19Path, ReplacesTheLastFourCharacters) {
  EXPECT_EQ(S19Path("/home/user/v8.bin"), "/home/user/v8.S19");
  EXPECT_EQ(S19Path("/home/user/V8.BIN"), "/home/user/V8.S19");
  EXPECT_EQ(S19Path("a.b.bin"), "a.b.S19");
  EXPECT_EQ(S19Path("bin"), ".S19");
}

TEST_F(S19Test, IsNamedAfterTheOpenFile) {
  CurrentBinPath = "/home/user/v8.bin";
  TargetBinPath = "/home/user/other.bin";
  FillImage();
  EXPECT_TRUE(WriteS19());
  EXPECT_EQ(AllFiles(), (std::vector<std::string>{"/home/user/v8.S19"}));
  EXPECT_EQ(FileTextOf("/home/user/v8.S19"), knownFile);
}

TEST_F(S19Test, IsNamedAfterTheSavedFileWhenAFailedOpenClearedTheName) {
  TargetBinPath = "/home/user/v8.bin";
  EXPECT_TRUE(WriteS19());
  EXPECT_EQ(AllFiles(), (std::vector<std::string>{"/home/user/v8.S19"}));
}

TEST_F(S19Test, ReplacesALongerFileWhole) {
  CurrentBinPath = "/home/user/v8.bin";
  PutTextFile("/home/user/v8.S19", std::string(5000, 'x'));
  FillImage();
  EXPECT_TRUE(WriteS19());
  EXPECT_EQ(FileTextOf("/home/user/v8.S19"), knownFile);
}

TEST_F(S19Test, FullDiskIsToldAndLeavesTheOldFile) {
  CurrentBinPath = "/home/user/v8.bin";
  PutTextFile("/home/user/v8.S19", "old");
  FailNthWrite(1, FailureDiskFull);
  EXPECT_FALSE(WriteS19());
  EXPECT_EQ(FileTextOf("/home/user/v8.S19"), "old");
  ExpectErrorBox(61, "Disk full");
}

TEST_F(S19Test, KillAtAnyByteLeavesTheOldFile) {
  CurrentBinPath = "/home/user/v8.bin";
  FillImage();
  for (std::size_t bytes = 0; bytes <= std::string_view(knownFile).size(); ++bytes) {
    PutTextFile("/home/user/v8.S19", "old");
    KillSaveAfter(bytes);
    EXPECT_THROW(WriteS19(), KilledHere);
    EXPECT_EQ(FileTextOf("/home/user/v8.S19"), "old") << bytes;
  }
  EXPECT_TRUE(WriteS19());
  EXPECT_EQ(AllFiles(), (std::vector<std::string>{"/home/user/v8.S19"}));
}
