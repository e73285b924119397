// Failing disks: the nth access, a full disk, a kill in the middle of a save.
#include "platform/failure.h"
#include "platform/files.h"
#include "platform/headless/script.h"
#include "support/user.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

class DiskTest : public PlatformTest {
 protected:
  static int FailureOf(const std::function<void()>& routine) {
    try {
      routine();
    } catch (const Failure& failure) {
      return failure.number;
    }
    return 0;
  }
  const Bytes older{'o', 'l', 'd', ' ', 'f', 'i', 'l', 'e'};
  const Bytes newer{'n', 'e', 'w'};
};

TEST_F(DiskTest, KillAtEveryByteLeavesTheOldFile) {
  Bytes bytes(512);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i);
  for (std::size_t count = 0; count <= bytes.size(); ++count) {
    PutFile("car.bin", older);
    KillSaveAfter(count);
    EXPECT_THROW(SaveWholeFile("car.bin", bytes), KilledHere);
    EXPECT_EQ(FileBytes("car.bin"), older) << count;
  }
}

TEST_F(DiskTest, KillOfTheFirstSaveLeavesNoFile) {
  KillSaveAfter(2);
  EXPECT_THROW(SaveWholeFile("car.bin", newer), KilledHere);
  EXPECT_FALSE(FileExists("car.bin"));
}

TEST_F(DiskTest, StrayOfAKilledSaveIsNotListedAndGoesWithTheNextSave) {
  PutFile("car.bin", older);
  KillSaveAfter(2);
  EXPECT_THROW(SaveWholeFile("car.bin", newer), KilledHere);
  EXPECT_EQ(AllFiles().size(), 2u) << "the killed save left something beside";
  EXPECT_EQ(ListFiles(".", "*"), (std::vector<std::string>{"car.bin"}));
  SaveWholeFile("car.bin", newer);
  EXPECT_EQ(AllFiles(), (std::vector<std::string>{"/home/user/car.bin"}));
  EXPECT_EQ(FileBytes("car.bin"), newer);
}

TEST_F(DiskTest, FullDiskKeepsTheOldFileAndLeavesNothingBeside) {
  PutFile("car.bin", older);
  FailNthWrite(1, FailureDiskFull);
  EXPECT_EQ(FailureOf([&] { SaveWholeFile("car.bin", newer); }), FailureDiskFull);
  EXPECT_EQ(FileBytes("car.bin"), older);
  EXPECT_EQ(AllFiles().size(), 1u);
  SaveWholeFile("car.bin", newer);
  EXPECT_EQ(FileBytes("car.bin"), newer);
}

TEST_F(DiskTest, NthWriteFailsOnceOrForEver) {
  FileHandle file = OpenFile("log", FileMode::Write);
  FailNthWrite(2, FailureDiskFull);
  WriteText(file, "one");
  EXPECT_EQ(FailureOf([&] { WriteText(file, "two"); }), FailureDiskFull);
  WriteText(file, "three");
  EXPECT_EQ(FileTextOf("log"), "onethree");
  FailNthWrite(1, FailureDeviceIo, true);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(FailureOf([&] { WriteText(file, "x"); }), FailureDeviceIo);
  CloseFile(file);
}

TEST_F(DiskTest, NthReadFailsOnceOrForEver) {
  PutTextFile("a", "one\ntwo\nthree\n");
  FileHandle file = OpenFile("a", FileMode::Read);
  FailNthRead(2, FailureDeviceIo);
  EXPECT_EQ(ReadLine(file), "one");
  EXPECT_EQ(FailureOf([&] { ReadLine(file); }), FailureDeviceIo);
  EXPECT_EQ(ReadLine(file), "two");
  FailNthRead(1, FailureDeviceIo, true);
  EXPECT_EQ(FailureOf([&] { ReadCharacter(file); }), FailureDeviceIo);
  EXPECT_EQ(FailureOf([&] { ReadWholeFile("a"); }), FailureDeviceIo);
  CloseFile(file);
}

TEST_F(DiskTest, NthOpenFails) {
  PutTextFile("a", "text");
  FailNthOpen(1, FailurePermissionDenied);
  EXPECT_EQ(FailureOf([&] { OpenFile("a", FileMode::Read); }), FailurePermissionDenied);
  EXPECT_TRUE(OpenFilePaths().empty());
  FileHandle file = OpenFile("a", FileMode::Read);
  EXPECT_EQ(OpenFilePaths(), (std::vector<std::string>{"/home/user/a"}));
  CloseFile(file);
  EXPECT_TRUE(OpenFilePaths().empty());
}

TEST_F(DiskTest, UnreadableFileIsDenied) {
  PutTextFile("a", "text");
  SetUnreadableFile("a", true);
  EXPECT_EQ(FailureOf([&] { OpenFile("a", FileMode::Read); }), FailurePermissionDenied);
  EXPECT_EQ(FailureOf([&] { ReadWholeFile("a"); }), FailurePermissionDenied);
  EXPECT_TRUE(FileExists("a"));
}

TEST_F(DiskTest, SaveKeepsThePermissionsOfTheFile) {
  PutFile("car.bin", older);
  SetUnreadableFile("car.bin", true);
  SaveWholeFile("car.bin", newer);
  EXPECT_EQ(FailureOf([&] { ReadWholeFile("car.bin"); }), FailurePermissionDenied);
}

TEST_F(DiskTest, PathsAreTakenFromTheCurrentFolderAndTidied) {
  PutTextFile("/home/user/sub/a", "text");
  EXPECT_TRUE(FileExists("sub/../sub/./a"));
  EXPECT_TRUE(FileExists("/home//user/sub/a"));
  ChangeFolder("sub");
  EXPECT_TRUE(FileExists("a"));
  ChangeFolder("..");
  EXPECT_EQ(CurrentFolder(), "/home/user");
  ChangeFolder("/../..");
  EXPECT_EQ(CurrentFolder(), "/");
}

TEST_F(DiskTest, DataStandsInTheFolderOfTheProgram) {
  EXPECT_EQ(DataFile("base.bin"), "/program/base.bin");
}

TEST_F(DiskTest, LinksInACircleAreNotFound) {
  PutLink("a", "b");
  PutLink("b", "a");
  EXPECT_FALSE(FileExists("a"));
  EXPECT_EQ(FailureOf([&] { ReadWholeFile("a"); }), FailureFileNotFound);
}

TEST_F(DiskTest, FileDateIsTheClockOfTheLastWrite) {
  SetClock("2026-03-04", 5 * 3600 + 6 * 60 + 7);
  SaveWholeFile("a", newer);
  AdvanceMs(10000);
  EXPECT_EQ(FileDate("a"), "2026-03-04 05:06:07");
}

}  // namespace
