// Opening calibrations: the dialogs, the types by length, and what a failure leaves behind.
#include <algorithm>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "core/singles.h"
#include "core/version.h"
#include "filestest.h"
#include "platform/files.h"
#include "platform/frame.h"

namespace {

using BinOpen = FilesTest;

constexpr const char* openTitle = "Open Halvane2 User BIN Files";
constexpr const char* notFoundText =
    "\n\rFile Name does not exists\n\r\n\rType OK: To Try Again\n\r\n\rType CANCEL: To Return";

// A file of so many singles, each its position plus a number.
void PutSingles(const std::string& path, std::size_t count, float plus = 0) {
  std::vector<float> singles(count);
  for (std::size_t i = 0; i < count; ++i) singles[i] = plus + static_cast<float>(i);
  PutFile(path, BinBytes(singles));
}

std::string ExtensionText(const std::string& extension) {
  return "INCORRECT FILE EXTENSION:   " + extension + "\n\r\n\rDo You Want to Enter a New FileName";
}

void ExpectNothingOpen(const std::array<float, 513>& before) {
  EXPECT_EQ(CurrentBinPath, "");
  EXPECT_EQ(TargetBinPath, "");
  EXPECT_EQ(CalValues, before);
  EXPECT_FALSE(CalChanged);
}

}  // namespace

// ---- the dialog loop ----------------------------------------------------------------------------

TEST_F(BinOpen, SoundFileBecomesTheOpenCalibration) {
  PutFile("/home/user/v8.bin", BinBytes(SoundSingles()));
  PushFile("/home/user/v8.bin");
  OpenCalibration();
  ExpectFileDialog("open", openTitle);
  EXPECT_EQ(CurrentBinPath, "/home/user/v8.bin");
  EXPECT_EQ(TargetBinPath, "/home/user/v8.bin");
  EXPECT_EQ(BinShortName, "v8.bin");
  EXPECT_EQ(BinFileType, "Halv2");
  EXPECT_TRUE(FileIsOpen);
  EXPECT_FALSE(CalChanged);
  const std::vector<float> sound = SoundSingles();
  EXPECT_TRUE(std::equal(sound.begin(), sound.end(), CalValues.begin()));
}

TEST_F(BinOpen, WorkingValuesFollowTheFile) {
  MaxManifoldKpa = 50;
  OpenSound("/home/user/v8.bin");
  EXPECT_EQ(MapBar, 2);
  EXPECT_EQ(MapFullScale, 208);
  EXPECT_EQ(MaxManifoldKpa, 208);
  EXPECT_EQ(WorkRevLimit, 6000);
  EXPECT_EQ(WorkCylinders, 8);
  EXPECT_EQ(AfrWork[2][4], 13.5F);
  EXPECT_EQ(OpenedEgoAuthority, 0.25F);
}

TEST_F(BinOpen, CaptionOfTheFrameNamesTheFile) {
  Frame frame;
  ShowFrame(frame);
  OpenSound("/home/user/v8.bin");
  EXPECT_EQ(frame.title, VersionText() + "  Currently Open 'BIN' File = /home/user/v8.bin");
  CloseFrame(frame);
}

TEST_F(BinOpen, CancelledDialogChangesNothing) {
  OpenSound("/home/user/v8.bin");
  const auto before = MarkCalValues();
  PushFile(std::nullopt);
  OpenCalibration();
  ExpectFileDialog("open", openTitle);
  EXPECT_EQ(CurrentBinPath, "/home/user/v8.bin");
  EXPECT_EQ(TargetBinPath, "/home/user/v8.bin");
  EXPECT_EQ(CalValues, before);
}

TEST_F(BinOpen, EmptyNameEndsInSilence) {
  PushFile("");
  OpenCalibration();
  ExpectFileDialog("open", openTitle);
  EXPECT_FALSE(FileIsOpen);
}

TEST_F(BinOpen, BaseFileIsRefusedInTwoSpellings) {
  for (const char* name : {"base.bin", "Base.bin", "mybase.bin"}) {
    const std::string path = std::string("/home/user/") + name;
    PutFile(path, BinBytes(SoundSingles()));
    PushFile(path);
    OpenCalibration();
    ExpectFileDialog("open", openTitle);
    ExpectMessage("", "Base.Bin is not a Valid BIN File. Please Enter a New Name.");
    ExpectFileDialog("open", openTitle);
    EXPECT_EQ(CurrentBinPath, "") << name;
  }
}

TEST_F(BinOpen, BaseFileInCapitalsPasses) {
  OpenSound("/home/user/BASE.BIN");
  EXPECT_EQ(CurrentBinPath, "/home/user/BASE.BIN");
}

TEST_F(BinOpen, MissingFileCanBeTriedAgain) {
  PutFile("/home/user/v8.bin", BinBytes(SoundSingles()));
  PushFile("/home/user/v6.bin");
  PushAnswer(Answer::Ok);
  PushFile("/home/user/v8.bin");
  OpenCalibration();
  ExpectFileDialog("open", openTitle);
  ExpectMessage("File Open Error", notFoundText, Buttons::OkCancel);
  ExpectFileDialog("open", openTitle);
  EXPECT_EQ(CurrentBinPath, "/home/user/v8.bin");
}

TEST_F(BinOpen, MissingFileCanBeGivenUp) {
  const auto before = MarkCalValues();
  PushFile("/home/user/v6.bin");
  PushAnswer(Answer::Cancel);
  OpenCalibration();
  ExpectFileDialog("open", openTitle);
  ExpectMessage("File Open Error", notFoundText, Buttons::OkCancel);
  ExpectNothingOpen(before);
}

TEST_F(BinOpen, FolderInsteadOfAFileCountsAsMissing) {
  PutFolder("/home/user/tunes.bin");
  PushFile("/home/user/tunes.bin");
  OpenCalibration();
  ExpectFileDialog("open", openTitle);
  ExpectMessage("File Open Error", notFoundText, Buttons::OkCancel);
}

TEST_F(BinOpen, OtherAndMixedCaseExtensionsAreQuestioned) {
  for (const char* extension : {"Bin", "biN", "BIn", "txt", "S19"}) {
    const std::string path = std::string("/home/user/v8.") + extension;
    PutFile(path, BinBytes(SoundSingles()));
    PushFile(path);
    PushAnswer(Answer::No);
    OpenCalibration();
    ExpectFileDialog("open", openTitle);
    ExpectMessage("File Extension Error", ExtensionText(extension), Buttons::YesNo);
    EXPECT_EQ(CurrentBinPath, "") << extension;
  }
}

TEST_F(BinOpen, WrongExtensionCanBeCorrected) {
  PutFile("/home/user/v8.txt", BinBytes(SoundSingles()));
  PutFile("/home/user/V8.BIN", BinBytes(SoundSingles()));
  PushFile("/home/user/v8.txt");
  PushAnswer(Answer::Yes);
  PushFile("/home/user/V8.BIN");
  OpenCalibration();
  ExpectFileDialog("open", openTitle);
  ExpectMessage("File Extension Error", ExtensionText("txt"), Buttons::YesNo);
  ExpectFileDialog("open", openTitle);
  EXPECT_EQ(CurrentBinPath, "/home/user/V8.BIN");
}

TEST_F(BinOpen, NameWithoutPointIsJudgedByItsLastThreeCharacters) {
  OpenSound("/home/user/robin");
  EXPECT_EQ(CurrentBinPath, "/home/user/robin");
}

TEST_F(BinOpen, OtherFileReplacesTheOpenOneOnYes) {
  OpenSound("/home/user/v8.bin");
  std::vector<float> other = SoundSingles();
  other[217] = 6;
  PutFile("/home/user/v6.bin", BinBytes(other));
  PushFile("/home/user/v6.bin");
  PushAnswer(Answer::Yes);
  OpenCalibration();
  ExpectFileDialog("open", openTitle);
  ExpectMessage("",
                "Current Open Halvane2 Edit file is /home/user/v8.bin\n\r"
                "Do you want to CHANGE this file to /home/user/v6.bin?",
                Buttons::YesNoCancel);
  EXPECT_EQ(CurrentBinPath, "/home/user/v6.bin");
  EXPECT_EQ(TargetBinPath, "/home/user/v6.bin");
  EXPECT_EQ(CalValues[217], 6);
}

TEST_F(BinOpen, AnythingButYesKeepsTheOpenFile) {
  OpenSound("/home/user/v8.bin");
  PutSingles("/home/user/v6.bin", 512);
  for (Answer answer : {Answer::No, Answer::Cancel}) {
    PushFile("/home/user/v6.bin");
    PushAnswer(answer);
    OpenCalibration();
    EXPECT_EQ(ForgetBoxes(), 2U);
    EXPECT_EQ(CurrentBinPath, "/home/user/v8.bin");
    EXPECT_EQ(TargetBinPath, "/home/user/v8.bin");
    EXPECT_EQ(BinShortName, "v6.bin");
    EXPECT_EQ(CalValues[217], 8);
  }
}

TEST_F(BinOpen, NameOfTheDialogIsTakenWithoutADialog) {
  OpenSound("/home/user/v8.bin");
  std::vector<float> other = SoundSingles();
  other[217] = 6;
  PutFile("/home/user/v6.Bin", BinBytes(other));
  CommonDialog.fileName = "/home/user/v6.Bin";
  UseDialogName = true;
  OpenCalibration();
  EXPECT_FALSE(UseDialogName);
  EXPECT_EQ(CurrentBinPath, "/home/user/v6.Bin");
  EXPECT_EQ(CalValues[217], 6);
  EXPECT_EQ(BinShortName, "v8.bin");
}

TEST_F(BinOpen, NameOfTheDialogThatIsMissingIsAnError) {
  const auto before = MarkCalValues();
  CommonDialog.fileName = "/home/user/v6.bin";
  UseDialogName = true;
  OpenCalibration();
  ExpectErrorBox(53, "File not found");
  EXPECT_FALSE(UseDialogName);
  ExpectNothingOpen(before);
}

// ---- lengths and types --------------------------------------------------------------------------

TEST_F(BinOpen, FileOfTwelveBytesIsError53) {
  const auto before = MarkCalValues();
  PutSingles("/home/user/v8.bin", 3);
  OpenByDialog("/home/user/v8.bin");
  ExpectFileDialog("open", openTitle);
  ExpectErrorBox(53, "File not found");
  ExpectNothingOpen(before);
  EXPECT_TRUE(FileIsOpen);
}

TEST_F(BinOpen, EmptyFileIsError53) {
  const auto before = MarkCalValues();
  PutFile("/home/user/v8.bin", {});
  OpenByDialog("/home/user/v8.bin");
  ExpectFileDialog("open", openTitle);
  ExpectErrorBox(53, "File not found");
  ExpectNothingOpen(before);
}

TEST_F(BinOpen, FileOfSixteenBytesEndsWithoutAWordWhenNoneCameBefore) {
  const auto before = MarkCalValues();
  PutSingles("/home/user/v8.bin", 4);
  OpenByDialog("/home/user/v8.bin");
  ExpectFileDialog("open", openTitle);
  ExpectNothingOpen(before);
  EXPECT_EQ(BinFileType, "");
}

TEST_F(BinOpen, OddSizedFileIsReadAsTheTypeBefore) {
  OpenSound("/home/user/v8.bin");
  PutSingles("/home/user/odd.bin", 511, 100);
  OpenByDialog("/home/user/odd.bin");
  EXPECT_EQ(ForgetBoxes(), 2U);
  EXPECT_EQ(CurrentBinPath, "/home/user/odd.bin");
  EXPECT_EQ(BinFileType, "Halv2");
  EXPECT_EQ(CalValues[3], 103);
  EXPECT_EQ(CalValues[510], 610);
  EXPECT_EQ(CalValues[511], 0);  // of the file before
}

TEST_F(BinOpen, ShortFileOfTheTypeBeforeKeepsTheEndOfTheFileBefore) {
  OpenSound("/home/user/v8.bin");
  CalValues[217] = 3;
  PutSingles("/home/user/odd.bin", 4, 100);
  OpenByDialog("/home/user/odd.bin");
  EXPECT_EQ(ForgetBoxes(), 2U);
  EXPECT_EQ(CalValues[3], 103);
  EXPECT_EQ(CalValues[4], 6000);
  EXPECT_EQ(CalValues[217], 8);
}

TEST_F(BinOpen, BytesBehindTheLastSingleAreNoSingle) {
  for (std::size_t more = 1; more <= 3; ++more) {
    std::vector<std::uint8_t> bytes = BinBytes(SoundSingles());
    bytes.resize(2048 + more, 0xEE);
    PutFile("/home/user/v8.bin", bytes);
    OpenByDialog("/home/user/v8.bin");
    ForgetBoxes();
    EXPECT_EQ(CurrentBinPath, "/home/user/v8.bin") << more;
    EXPECT_EQ(CalValues[512], 0);
  }
}

TEST_F(BinOpen, MoreThan512SinglesAreASubscriptFailure) {
  for (std::size_t count : {513U, 514U, 600U, 5000U}) {
    ResetCalibrationState();
    const auto before = MarkCalValues();
    PutSingles("/home/user/v8.bin", count);
    OpenByDialog("/home/user/v8.bin");
    ExpectFileDialog("open", openTitle);
    ExpectErrorBox(9, "Subscript out of range");
    ExpectNothingOpen(before);
  }
}

TEST_F(BinOpen, FailureClosesTheNameOfTheFileBefore) {
  OpenSound("/home/user/v8.bin");
  const auto before = MarkCalValues();
  PutSingles("/home/user/v6.bin", 2);
  OpenByDialog("/home/user/v6.bin");
  ForgetBoxes();
  EXPECT_EQ(CurrentBinPath, "");
  EXPECT_EQ(TargetBinPath, "/home/user/v8.bin");
  EXPECT_EQ(CalValues, before);
}

TEST_F(BinOpen, UnreadableFileIsTold) {
  const auto before = MarkCalValues();
  PutFile("/home/user/v8.bin", BinBytes(SoundSingles()));
  SetUnreadableFile("/home/user/v8.bin", true);
  OpenByDialog("/home/user/v8.bin");
  ExpectFileDialog("open", openTitle);
  ExpectErrorBox(70, "Permission denied");
  ExpectNothingOpen(before);
}

TEST_F(BinOpen, ReadThatFailsIsTold) {
  const auto before = MarkCalValues();
  PutFile("/home/user/v8.bin", BinBytes(SoundSingles()));
  FailNthRead(1, FailureDeviceIo);
  OpenByDialog("/home/user/v8.bin");
  ExpectFileDialog("open", openTitle);
  ExpectErrorBox(57, "Device I/O error");
  ExpectNothingOpen(before);
}

TEST_F(BinOpen, ReadOnlyFileOpens) {
  PutFile("/home/user/v8.bin", BinBytes(SoundSingles()));
  SetReadOnlyFile("/home/user/v8.bin", true);
  OpenByDialog("/home/user/v8.bin");
  ForgetBoxes();
  EXPECT_EQ(CurrentBinPath, "/home/user/v8.bin");
}

TEST_F(BinOpen, ZerosLoadAsNative) {
  PutFile("/home/user/v8.bin", std::vector<std::uint8_t>(2048, 0));
  OpenByDialog("/home/user/v8.bin");
  ForgetBoxes();
  EXPECT_EQ(CurrentBinPath, "/home/user/v8.bin");
  EXPECT_EQ(CalValues[345], 14.64F);
  EXPECT_EQ(CalValues[205], 500);
  EXPECT_EQ(CalValues[425], 22.4F);
  EXPECT_EQ(CalValues[435], 400);
}

TEST_F(BinOpen, UnsavedChangesAreStillUnsavedAfterAnotherOpen) {
  OpenSound("/home/user/v8.bin");
  CalChanged = true;
  OpenSound("/home/user/v6.bin");
  EXPECT_TRUE(CalChanged);
}

// ---- the base calibration -----------------------------------------------------------------------

TEST_F(BinOpen, BaseLoadsWithoutADialog) {
  PutFile("/home/user/base.bin", BinBytes(SoundSingles()));
  CurrentBinPath = "base.bin";
  CalValues[512] = 5;
  LoadBaseCalibration();
  EXPECT_EQ(CurrentBinPath, "base.bin");
  EXPECT_EQ(TargetBinPath, "base.bin");
  EXPECT_EQ(CalValues[217], 8);
  EXPECT_EQ(CalValues[512], 5);
  EXPECT_EQ(MapBar, 2);
  EXPECT_EQ(MaxManifoldKpa, 208);
  EXPECT_EQ(WorkRevLimit, 6000);
  EXPECT_EQ(BinFileType, "");
}

TEST_F(BinOpen, BaseIsFoundBesideTheProgram) {
  PutFile("/program/base.bin", BinBytes(SoundSingles()));
  CurrentBinPath = "base.bin";
  LoadBaseCalibration();
  EXPECT_EQ(CurrentBinPath, "base.bin");
  EXPECT_EQ(CalValues[217], 8);
}

TEST_F(BinOpen, BaseOfTheCurrentFolderComesFirst) {
  std::vector<float> singles = SoundSingles();
  PutFile("/program/base.bin", BinBytes(singles));
  singles[217] = 4;
  PutFile("/home/user/base.bin", BinBytes(singles));
  CurrentBinPath = "base.bin";
  LoadBaseCalibration();
  EXPECT_EQ(CalValues[217], 4);
}

TEST_F(BinOpen, BaseIsCaptionedRepairedAndKeepsItsBlendAxis) {
  std::vector<float> singles = SoundSingles();
  singles[339] = 3;
  singles[345] = 1;
  singles[434] = 1;
  singles[206] = 9000;
  singles[234] = -1;
  singles[435] = 0;
  PutFile("/home/user/base.bin", BinBytes(singles));
  Frame frame;
  ShowFrame(frame);
  CurrentBinPath = "base.bin";
  LoadBaseCalibration();
  EXPECT_EQ(frame.title, VersionText() + "  Currently Open 'BIN' File = base.bin");
  CloseFrame(frame);
  EXPECT_EQ(CalValues[345], 14.64F);
  EXPECT_EQ(CalValues[434], 10);
  EXPECT_EQ(CalValues[206], 2000);
  EXPECT_EQ(CalValues[234], 0);
  EXPECT_EQ(CalValues[339], 3);
  EXPECT_EQ(CalValues[435], 0);
}

TEST_F(BinOpen, ShortBaseReplacesOnlyItsOwnPart) {
  CalValues[4] = 5500;
  PutSingles("/home/user/base.bin", 4, 10);
  CurrentBinPath = "base.bin";
  LoadBaseCalibration();
  EXPECT_EQ(CurrentBinPath, "base.bin");
  EXPECT_EQ(CalValues[3], 13);
  EXPECT_EQ(CalValues[4], 5500);
}

TEST_F(BinOpen, BaseThatCannotBeLoadedClearsTheName) {
  const struct {
    int singles, number;
    const char* description;
  } rows[] = {{-1, 53, "File not found"},
              {0, 53, "File not found"},
              {3, 53, "File not found"},
              {513, 9, "Subscript out of range"}};
  for (const auto& row : rows) {
    const auto before = MarkCalValues();
    if (row.singles >= 0) PutSingles("/home/user/base.bin", static_cast<std::size_t>(row.singles));
    CurrentBinPath = "base.bin";
    TargetBinPath = "/home/user/v8.bin";
    LoadBaseCalibration();
    ExpectErrorBox(row.number, row.description);
    EXPECT_EQ(CurrentBinPath, "");
    EXPECT_EQ(TargetBinPath, "/home/user/v8.bin");
    EXPECT_EQ(CalValues, before) << row.singles;
  }
}
