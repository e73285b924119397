// Saving calibrations: the two files, the order of the steps, and what a failure leaves behind.
#include <algorithm>

#include "core/binfile.h"
#include "core/encoder.h"
#include "core/globalstate.h"
#include "core/s19file.h"
#include "core/version.h"
#include "filestest.h"
#include "platform/files.h"
#include "platform/frame.h"

namespace {

using BinSave = FilesTest;

constexpr const char* binPath = "/home/user/v8.bin";
constexpr const char* s19Path = "/home/user/v8.S19";
constexpr const char* report = "Please File a Software Problem Report. (savedata)";

std::vector<std::uint8_t> BytesOfCalibration() {
  return BinBytes({CalValues.begin(), CalValues.begin() + 512});
}

std::vector<std::uint8_t> Old(std::size_t count) { return std::vector<std::uint8_t>(count, 0xEE); }

// A sound calibration, open and changed, with an S19 file of another time beside it.
void OpenAndChange() {
  OpenSound(binPath);
  PutTextFile(s19Path, "old");
  CalValues[232] = 9;
  CalChanged = true;
}

void ExpectSaveDialog(const std::string& preset) {
  ExpectFileDialog("save", " Save BIN file As", preset);
}

}  // namespace

TEST_F(BinSave, WritesTheCalibrationAndItsImage) {
  OpenAndChange();
  EXPECT_TRUE(savedata());
  EXPECT_EQ(FileBytes(binPath), BytesOfCalibration());
  EXPECT_EQ(FileBytes(binPath).size(), 2048U);
  EXPECT_EQ(FileTextOf(s19Path), S19Text(BinImage));
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(AllFiles(), (std::vector<std::string>{s19Path, binPath}));
}

TEST_F(BinSave, BytesThatWaitToBeSentStayInTheImageAndOutOfTheFiles) {
  OpenAndChange();
  BytesWaiting = [] { return ImageBytes{300, 2}; };
  BinImage[299] = BinImage[302] = 77;
  BinImage[300] = 78;
  BinImage[301] = 79;
  EXPECT_TRUE(savedata());
  BytesWaiting = [] { return ImageBytes{}; };
  EXPECT_EQ(BinImage[300], 78);
  EXPECT_EQ(BinImage[301], 79);
  const auto kept = BinImage;
  EncodeCalibration();
  EXPECT_NE(BinImage[300], 78);
  EXPECT_EQ(BinImage[299], kept[299]);
  EXPECT_EQ(BinImage[302], kept[302]);
  EXPECT_EQ(FileTextOf(s19Path), S19Text(BinImage));
}

TEST_F(BinSave, BytesThatWaitStayWhenTheImageCannotBeWritten) {
  OpenAndChange();
  BytesWaiting = [] { return ImageBytes{300, 1}; };
  BinImage[300] = 78;
  FailNthWrite(2, FailureDiskFull);
  EXPECT_FALSE(savedata());
  BytesWaiting = [] { return ImageBytes{}; };
  ExpectErrorBox(61, "Disk full");
  EXPECT_EQ(BinImage[300], 78);
}

TEST_F(BinSave, WithoutAFileSaysSo) {
  EXPECT_FALSE(savedata());
  ExpectMessage("", "No Valid BIN File is currently Open.");
  EXPECT_TRUE(AllFiles().empty());
}

TEST_F(BinSave, OtherExtensionsAreRefusedAndClearTheTarget) {
  for (const char* extension : {".Bin", ".biN", ".txt", "rbin", ".S19"}) {
    OpenSound(binPath);
    CalChanged = true;
    TargetBinPath = std::string("/home/user/v6") + extension;
    const auto before = CalValues;
    EXPECT_FALSE(savedata());
    ExpectMessage("File Extension Error", std::string("INCORRECT FILE EXTENSION:   ") + extension +
                                              "\n\r\n\rReEnter a New FileName");
    EXPECT_EQ(TargetBinPath, "");
    EXPECT_EQ(CurrentBinPath, binPath);
    EXPECT_EQ(CalValues, before);
    EXPECT_TRUE(CalChanged);
    EXPECT_EQ(AllFiles(), (std::vector<std::string>{binPath}));
  }
}

TEST_F(BinSave, NameShorterThanItsExtensionIsShownWhole) {
  TargetBinPath = "bin";
  savedata();
  ExpectMessage("File Extension Error",
                "INCORRECT FILE EXTENSION:   bin\n\r\n\rReEnter a New FileName");
}

TEST_F(BinSave, ExtensionInCapitalsIsGood) {
  OpenSound("/home/user/V8.BIN");
  savedata();
  EXPECT_EQ(AllFiles(), (std::vector<std::string>{"/home/user/V8.BIN", "/home/user/V8.S19"}));
}

TEST_F(BinSave, SetsItsConstants) {
  OpenSound(binPath);
  CalValues[252] = CalValues[256] = CalValues[257] = CalValues[258] = CalValues[234] = 7;
  CalValues[236] = 7;
  savedata();
  EXPECT_EQ(CalValues[252], 400);
  EXPECT_EQ(CalValues[256], 1);
  EXPECT_EQ(CalValues[257], 1);
  EXPECT_EQ(CalValues[258], 0);
  EXPECT_EQ(CalValues[234], 0);
  EXPECT_EQ(CalValues[459], 2);
  EXPECT_EQ(CalValues[236], 0);
  EXPECT_EQ(BinImage[240], 26);
}

TEST_F(BinSave, AirFlowModeIsStoredAsOneBar) {
  OpenSound(binPath);
  LoadMode = "MAF";
  savedata();
  EXPECT_EQ(CalValues[234], -1);
  EXPECT_EQ(CalValues[459], 1);
}

TEST_F(BinSave, NameGoesIntoTheCalibrationAndTheImage) {
  OpenSound("/home/user/ABC.BIN");
  savedata();
  EXPECT_EQ(BinShortName, "ABC.BIN");
  EXPECT_EQ(CalValues[477], 65);
  EXPECT_EQ(CalValues[478], 66);
  EXPECT_EQ(CalValues[479], 67);
  EXPECT_EQ(CalValues[480], 0);
  EXPECT_EQ(std::vector<int>(&BinImage[449], &BinImage[463]),
            (std::vector<int>{65, 66, 67, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(BinSave, InTheRootTheNameLosesItsFirstCharacter) {
  ChangeFolder("/");
  OpenSound("/abc.bin");
  savedata();
  EXPECT_EQ(BinShortName, "bc.bin");
  EXPECT_EQ(CalValues[477], 'b');
}

TEST_F(BinSave, FileElsewhereTakesPartOfItsFolderAsName) {
  OpenSound("/media/stick/engines/v8.bin");
  savedata();
  EXPECT_EQ(BinShortName, "k/engines/v8.bin");
  EXPECT_EQ(std::string(&BinImage[449], &BinImage[463]), std::string("k/engines/v8\0\0", 14));
}

TEST_F(BinSave, CaptionNamesTheSavedFile) {
  Frame frame;
  ShowFrame(frame);
  OpenSound(binPath);
  SetFrameTitle(frame, "other");
  savedata();
  EXPECT_EQ(frame.title, VersionText() + "  Currently Open 'BIN' File = /home/user/v8.bin");
  CloseFrame(frame);
}

TEST_F(BinSave, FileIsWrittenBeforeTheEncoderRepairsTheCalibration) {
  OpenSound(binPath);
  CalValues[345] = 9.75F;
  std::vector<float> expected(CalValues.begin(), CalValues.begin() + 512);
  savedata();
  EXPECT_EQ(CalValues[345], 14.64F);
  const std::vector<std::uint8_t> bytes = FileBytes(binPath);
  const float cell = expected[345];
  EXPECT_TRUE(std::equal(&bytes[345 * 4], &bytes[346 * 4], BinBytes({cell}).begin()));
}

TEST_F(BinSave, LongerFileKeepsWhatStandsBehind) {
  OpenAndChange();
  for (std::size_t more : {1U, 3U, 4U, 1000U}) {
    PutFile(binPath, Old(2048 + more));
    savedata();
    std::vector<std::uint8_t> expected = BytesOfCalibration();
    expected.resize(2048 + more, 0xEE);
    EXPECT_EQ(FileBytes(binPath), expected);
  }
}

TEST_F(BinSave, ShorterOrMissingFileGetsItsFullLength) {
  OpenAndChange();
  for (std::size_t length : {0U, 1U, 2047U, 2048U}) {
    PutFile(binPath, Old(length));
    savedata();
    EXPECT_EQ(FileBytes(binPath), BytesOfCalibration());
  }
  DeleteFile(binPath);
  savedata();
  EXPECT_EQ(FileBytes(binPath), BytesOfCalibration());
}

TEST_F(BinSave, HugeFileGetsItsFirstBytesInPlace) {
  OpenAndChange();
  PutFile(binPath, Old(2 << 20));
  savedata();
  std::vector<std::uint8_t> expected = BytesOfCalibration();
  expected.resize(2 << 20, 0xEE);
  EXPECT_EQ(FileBytes(binPath), expected);
  EXPECT_FALSE(CalChanged);
}

TEST_F(BinSave, OpenedAgainItIsTheSameCalibration) {
  OpenAndChange();
  savedata();
  const auto saved = CalValues;
  CalValues.fill(1);
  OpenByDialog(binPath);
  ForgetBoxes();
  EXPECT_EQ(CalValues, saved);
}

TEST_F(BinSave, FailedOpenOfAnotherFileDoesNotLoseTheWayToSave) {
  OpenAndChange();
  PutFile("/home/user/v6.bin", {});
  OpenByDialog("/home/user/v6.bin");
  ForgetBoxes();
  ASSERT_EQ(CurrentBinPath, "");
  savedata();
  EXPECT_EQ(FileBytes(binPath), BytesOfCalibration());
  EXPECT_EQ(FileTextOf(s19Path), S19Text(BinImage));
  EXPECT_TRUE(FileBytes("/home/user/v6.bin").empty());
}

// ---- failures -----------------------------------------------------------------------------------

TEST_F(BinSave, ValueOutsideOfSixteenBitsLeavesTheBinAndNoS19) {
  OpenAndChange();
  CalValues[4] = 1e8F;
  EXPECT_FALSE(savedata());
  ExpectErrorBox(6, "Overflow", report);
  EXPECT_EQ(FileBytes(binPath), BytesOfCalibration());
  EXPECT_EQ(FileTextOf(s19Path), "old");
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(CurrentBinPath, binPath);
  EXPECT_EQ(TargetBinPath, binPath);
}

TEST_F(BinSave, TemperatureWithoutACountIsASubscriptFailure) {
  OpenAndChange();
  CalValues[491] = 4;
  CalValues[492] = 500;
  savedata();
  ExpectErrorBox(9, "Subscript out of range", report);
  EXPECT_EQ(FileTextOf(s19Path), "old");
}

TEST_F(BinSave, FullDiskLeavesBothFilesAsTheyWere) {
  OpenAndChange();
  const auto before = FileBytes(binPath);
  FailNthWrite(1, FailureDiskFull);
  EXPECT_FALSE(savedata());
  ExpectErrorBox(61, "Disk full", report);
  EXPECT_EQ(FileBytes(binPath), before);
  EXPECT_EQ(FileTextOf(s19Path), "old");
  EXPECT_TRUE(CalChanged);
}

TEST_F(BinSave, DiskThatFillsUpBetweenTheFilesIsToldAndLeavesChangesUnsaved) {
  OpenAndChange();
  FailNthWrite(2, FailureDiskFull);
  EXPECT_FALSE(savedata());
  ExpectErrorBox(61, "Disk full");
  EXPECT_EQ(FileBytes(binPath), BytesOfCalibration());
  EXPECT_EQ(FileTextOf(s19Path), "old");
  EXPECT_TRUE(CalChanged);
  savedata();
  EXPECT_EQ(FileTextOf(s19Path), S19Text(BinImage));
  EXPECT_FALSE(CalChanged);
}

TEST_F(BinSave, DiskThatStaysFullFailsEverySave) {
  OpenAndChange();
  const auto before = FileBytes(binPath);
  FailNthWrite(1, FailureDiskFull, true);
  for (int time = 0; time < 3; ++time) {
    savedata();
    ExpectErrorBox(61, "Disk full", report);
  }
  EXPECT_EQ(FileBytes(binPath), before);
}

TEST_F(BinSave, LongFileThatCannotBeReadIsNotCut) {
  OpenAndChange();
  PutFile(binPath, Old(3000));
  FailNthRead(1, FailureDeviceIo);
  savedata();
  ExpectErrorBox(57, "Device I/O error", report);
  EXPECT_EQ(FileBytes(binPath), Old(3000));
}

TEST_F(BinSave, ReadOnlyFileIsTold) {
  OpenAndChange();
  const auto before = FileBytes(binPath);
  SetReadOnlyFile(binPath, true);
  savedata();
  ExpectErrorBox(70, "Permission denied", report);
  EXPECT_EQ(FileBytes(binPath), before);
  EXPECT_EQ(FileTextOf(s19Path), "old");
}

TEST_F(BinSave, ReadOnlyS19IsTold) {
  OpenAndChange();
  SetReadOnlyFile(s19Path, true);
  savedata();
  ExpectErrorBox(70, "Permission denied");
  EXPECT_EQ(FileBytes(binPath), BytesOfCalibration());
  EXPECT_EQ(FileTextOf(s19Path), "old");
}

TEST_F(BinSave, FileReplacedByAFolderIsTold) {
  OpenAndChange();
  DeleteFile(binPath);
  PutFolder(binPath);
  savedata();
  ExpectErrorBox(75, "Path/File access error", report);
  EXPECT_EQ(FileTextOf(s19Path), "old");
}

TEST_F(BinSave, FolderThatIsGoneIsTold) {
  OpenAndChange();
  TargetBinPath = "/home/user/gone/v8.bin";
  savedata();
  ExpectErrorBox(76, "Path not found", report);
  EXPECT_TRUE(CalChanged);
}

TEST_F(BinSave, KillAtAnyByteLeavesTheOldFile) {
  OpenAndChange();
  const auto before = FileBytes(binPath);
  for (std::size_t bytes = 0; bytes <= 2048; ++bytes) {
    KillSaveAfter(bytes);
    EXPECT_THROW(savedata(), KilledHere);
    ASSERT_EQ(FileBytes(binPath), before) << bytes;
    ASSERT_EQ(FileTextOf(s19Path), "old") << bytes;
  }
  savedata();
  EXPECT_EQ(FileBytes(binPath), BytesOfCalibration());
  EXPECT_EQ(AllFiles(), (std::vector<std::string>{s19Path, binPath}));
}

// ---- Save As ------------------------------------------------------------------------------------

TEST_F(BinSave, SaveAsMakesTheNewNameTheOpenFile) {
  OpenAndChange();
  const auto before = FileBytes(binPath);
  PushFile("/home/user/v6.bin");
  SaveCalibrationAs();
  ExpectSaveDialog(binPath);
  EXPECT_EQ(CurrentBinPath, "/home/user/v6.bin");
  EXPECT_EQ(TargetBinPath, "/home/user/v6.bin");
  EXPECT_EQ(FileBytes("/home/user/v6.bin"), BytesOfCalibration());
  EXPECT_EQ(FileTextOf("/home/user/v6.S19"), S19Text(BinImage));
  EXPECT_EQ(FileBytes(binPath), before);
  EXPECT_FALSE(CalChanged);
}

TEST_F(BinSave, CancelledSaveAsChangesNothing) {
  OpenAndChange();
  PushFile(std::nullopt);
  SaveCalibrationAs();
  ExpectSaveDialog(binPath);
  EXPECT_EQ(CurrentBinPath, binPath);
  EXPECT_TRUE(CalChanged);
}

TEST_F(BinSave, SaveAsWithNothingOpenSaysSoAndAsksAllTheSame) {
  PushFile(std::nullopt);
  SaveCalibrationAs();
  ExpectMessage("", "No Valid BIN File is currently Open.");
  ExpectSaveDialog("");
}

TEST_F(BinSave, SaveAsRefusesTheBaseFileInSmallLettersOnly) {
  OpenAndChange();
  PushFile("/home/user/base.bin");
  PushFile("/home/user/my_base.bin");
  PushFile("/home/user/Base.bin");
  SaveCalibrationAs();
  for (int time = 0; time < 2; ++time) {
    ExpectSaveDialog(binPath);
    ExpectMessage("", "Base.Bin is not a Valid BIN File Name. Please Enter a New File Name.");
  }
  ExpectSaveDialog(binPath);
  EXPECT_EQ(CurrentBinPath, "/home/user/Base.bin");
  EXPECT_TRUE(FileExists("/home/user/Base.bin"));
  EXPECT_FALSE(FileExists("/home/user/base.bin"));
}

TEST_F(BinSave, SaveAsWithNothingOpenRepeatsTheMessageInItsLoop) {
  PushFile("/home/user/base.bin");
  PushFile(std::nullopt);
  SaveCalibrationAs();
  ExpectMessage("", "No Valid BIN File is currently Open.");
  ExpectSaveDialog("");
  ExpectMessage("", "Base.Bin is not a Valid BIN File Name. Please Enter a New File Name.");
  ExpectMessage("", "No Valid BIN File is currently Open.");
  ExpectSaveDialog("");
}

TEST_F(BinSave, SaveAsWithoutAnExtensionIsRefused) {
  OpenAndChange();
  PushFile("/home/user/v6");
  SaveCalibrationAs();
  ExpectSaveDialog(binPath);
  ExpectMessage("File Extension Error",
                "INCORRECT FILE EXTENSION:   r/v6\n\r\n\rReEnter a New FileName");
  EXPECT_EQ(CurrentBinPath, "/home/user/v6");
  EXPECT_EQ(TargetBinPath, "");
  EXPECT_TRUE(CalChanged);
}
