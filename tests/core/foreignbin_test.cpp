// Foreign BIN types: known by their length, asked about, and not taken in.
#include "core/foreignbin.h"

#include "core/binfile.h"
#include "core/globalstate.h"
#include "filestest.h"

namespace {

using ForeignBin = FilesTest;

struct Row {
  const char* type;
  std::size_t singles;
  const char* question;
  const char* plainName;
};
constexpr Row rows[] = {
    {"RUX3", 133, " is a 'RUX-3' Type BIN File", "RUX3"},
    {"LUMENB", 401, " is a 'LUMEN BLEND' Type BIN File", "LUMEN BLEND"},
    {"KORZ", 433, " is a 'KORZ' Type BIN File", "KORZ"},
    {"KOR", 441, " is a 'KOR' Type BIN File", "KOR"},
    {"LUMEN2", 351, " is a 'LUMEN2' Type BIN File", "LUMEN2"},
    {"KORB", 501, " is a 'KORB Or Halvane1' Type BIN File", "KORB/Halvane1"},
};

void PutForeign(const Row& row) {
  PutFile("/home/user/old.bin", BinBytes(std::vector<float>(row.singles, 3.0F)));
}

void ExpectQuestion(const Row& row) {
  ExpectMessage("Convert File Type",
                std::string("/home/user/old.bin ") + row.question +
                    "\n\r\n\rDo You Wish to Convert This File to Halvane2 Type Bin File.",
                Buttons::YesNo);
}

void OpenOldFile(Answer answer) {
  PushFile("/home/user/old.bin");
  PushAnswer(answer);
  OpenCalibration();
  ExpectFileDialog("open", "Open Halvane2 User BIN Files");
}

}  // namespace

TEST_F(ForeignBin, TypesAreKnownByTheirLength) {
  EXPECT_EQ(BinTypeOfLength(512)->name, "Halv2");
  for (const Row& row : rows)
    EXPECT_EQ(BinTypeOfLength(static_cast<int>(row.singles))->name, row.type);
  int known = 0;
  for (int singles = 0; singles <= 600; ++singles) known += BinTypeOfLength(singles) ? 1 : 0;
  EXPECT_EQ(known, 7);
  EXPECT_EQ(BinTypes().size(), 7U);
}

TEST_F(ForeignBin, NoEndsWithNothingOpen) {
  for (const Row& row : rows) {
    ResetCalibrationState();
    const auto before = MarkCalValues();
    PutForeign(row);
    OpenOldFile(Answer::No);
    ExpectQuestion(row);
    EXPECT_EQ(BinFileType, row.type);
    EXPECT_EQ(CurrentBinPath, "");
    EXPECT_EQ(TargetBinPath, "");
    EXPECT_EQ(CalValues, before);
    EXPECT_FALSE(CalChanged);
  }
}

TEST_F(ForeignBin, YesTellsThatTheTypeCannotBeTakenInAndEndsLikeNo) {
  for (const Row& row : rows) {
    ResetCalibrationState();
    const auto before = MarkCalValues();
    PutForeign(row);
    OpenOldFile(Answer::Yes);
    ExpectQuestion(row);
    ExpectMessage(
        "Convert File Type",
        std::string("This version of Halvane2 cannot convert '") + row.plainName +
            "' files yet.\n\r\n\rThe file has not been changed, and no BIN file is open.");
    EXPECT_EQ(CurrentBinPath, "");
    EXPECT_EQ(CalValues, before);
    EXPECT_FALSE(CalChanged);
  }
}

TEST_F(ForeignBin, SaveAfterNoDoesNotGoOverTheForeignFile) {
  PutForeign(rows[0]);
  const auto before = FileBytes("/home/user/old.bin");
  OpenOldFile(Answer::No);
  ExpectQuestion(rows[0]);
  savedata();
  ExpectMessage("", "No Valid BIN File is currently Open.");
  EXPECT_EQ(FileBytes("/home/user/old.bin"), before);
}

TEST_F(ForeignBin, FileBeforeStaysInMemoryWithoutItsName) {
  OpenSound("/home/user/v8.bin");
  const auto before = CalValues;
  PutForeign(rows[5]);
  PushFile("/home/user/old.bin");
  PushAnswer(Answer::Yes);  // change the file
  PushAnswer(Answer::No);   // do not convert
  OpenCalibration();
  EXPECT_EQ(ForgetBoxes(), 3U);
  EXPECT_EQ(CurrentBinPath, "");
  EXPECT_EQ(TargetBinPath, "/home/user/v8.bin");
  EXPECT_EQ(CalValues, before);
}

TEST_F(ForeignBin, OddSizedFileAfterAForeignOneIsAskedAboutAsThatType) {
  PutForeign(rows[3]);
  OpenOldFile(Answer::No);
  ExpectQuestion(rows[3]);
  PutFile("/home/user/old.bin", BinBytes(std::vector<float>(440, 3.0F)));
  OpenOldFile(Answer::No);
  ExpectQuestion(rows[3]);
}

TEST_F(ForeignBin, NativeFileAfterAForeignOneIsNative) {
  PutForeign(rows[1]);
  OpenOldFile(Answer::No);
  ForgetBoxes();
  OpenSound("/home/user/v8.bin");
  EXPECT_EQ(BinFileType, "Halv2");
}
