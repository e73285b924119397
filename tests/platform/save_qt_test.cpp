// Saves on a real disk: full, linked, forbidden, killed.
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/failure.h"
#include "platform/files.h"
#include "platform/qt/qtdisk.h"
#include "support/qt/otheruser.h"
#include "support/testfolder.h"
#include "support/user.h"

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

class SaveQtTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    folder = TestFolder();
    file = folder + "/Engine.bin";
  }
  static std::string TextOf(const std::string& name) {
    std::ostringstream text;
    text << std::ifstream(name, std::ios::binary).rdbuf();
    return text.str();
  }
  // Number of the failure, 0 when there is none.
  template <typename Routine>
  static int FailureOf(Routine routine) {
    try {
      routine();
    } catch (const Failure& failure) {
      return failure.number;
    }
    return 0;
  }
  std::size_t FilesInFolder() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
  }

  std::string folder;
  std::string file;
};

// A limit on the size of files fails the write where a full disk would.
void LimitFiles() {
  ::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{.rlim_cur = 1000, .rlim_max = 1000};
  ::setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(SaveQtTest, FullDiskIsToldByFlushAndClose) {
  auto numbers = [&] {
    LimitFiles();
    FileHandle open = OpenFile(file, FileMode::Write);
    WriteText(open, std::string(2000, 'a'));
    int flushed = FailureOf([&] { FlushFile(open); });
    CloseAllFiles();
    open = OpenFile(file, FileMode::Write);
    WriteText(open, std::string(2000, 'a'));
    int closed = FailureOf([&] { CloseFile(open); });
    return std::to_string(flushed) + " " + std::to_string(closed);
  };
  ASSERT_EQ(::chmod(folder.c_str(), 0777), 0);
  EXPECT_EQ(AsOrdinaryUser(numbers), "61 61");
}

TEST_F(SaveQtTest, EveryWayOfADiskToBeFullHasOneNumber) {
  for (int error : {ENOSPC, EDQUOT, EFBIG})
    EXPECT_EQ(FailureOf([&] { RaiseDiskFailure(error, file); }), FailureDiskFull) << error;
}

TEST_F(SaveQtTest, PipesAndDevicesAreRefusedAtOnce) {
  ASSERT_EQ(::mkfifo(file.c_str(), 0666), 0);
  fs::create_symlink(file, folder + "/Link.bin");
  for (const std::string& name : {file, folder + "/Link.bin", std::string("/dev/zero")}) {
    for (FileMode mode : {FileMode::Read, FileMode::Write, FileMode::Append, FileMode::ReadWrite})
      EXPECT_EQ(FailureOf([&] { OpenFile(name, mode); }), FailurePathFileAccess) << name;
    EXPECT_EQ(FailureOf([&] { SaveWholeFile(name, Bytes{1}); }), FailurePathFileAccess) << name;
    EXPECT_EQ(FailureOf([&] { CopyFile(name, folder + "/copy"); }), FailurePathFileAccess) << name;
  }
  EXPECT_TRUE(fs::is_fifo(file)) << "it is still what it was";
  try {
    ReadWholeFile(file);
    ADD_FAILURE() << "a pipe was read";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.description, file + " is no file: it is a pipe or a device.");
  }
}

TEST_F(SaveQtTest, SaveThatDoesNotFitLeavesTheOldFileAndNothingElse) {
  MakeFile(file, "old");
  pid_t child = ::fork();
  if (child == 0) {
    LimitFiles();
    ::_exit(FailureOf([&] { SaveWholeFile(file, Bytes(2048, 7)); }));
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(WEXITSTATUS(status), FailureDiskFull);
  EXPECT_EQ(TextOf(file), "old");
  EXPECT_EQ(FilesInFolder(), 1u);
}

TEST_F(SaveQtTest, KilledSaveLeavesTheOldFileAndTheNextOneCleansUp) {
  MakeFile(file, "old");
  pid_t child = ::fork();
  if (child == 0) {
    rlimit limit{.rlim_cur = 1000, .rlim_max = 1000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    ::setrlimit(RLIMIT_CORE, &limit);
    ::signal(SIGXFSZ, SIG_DFL);
    SaveWholeFile(file, Bytes(2048, 7));
    ::_exit(0);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status)) << "killed in the middle of the write";
  EXPECT_EQ(TextOf(file), "old");
  EXPECT_EQ(FilesInFolder(), 2u);
  EXPECT_EQ(ListFiles(folder, "*"), std::vector<std::string>{"Engine.bin"});
  SaveWholeFile(file, Bytes{'n', 'e', 'w'});
  EXPECT_EQ(TextOf(file), "new");
  EXPECT_EQ(FilesInFolder(), 1u);
}

TEST_F(SaveQtTest, PermissionsStay) {
  MakeFile(file, "old");
  ::chmod(file.c_str(), 0640);
  SaveWholeFile(file, Bytes{1});
  struct stat status {};
  ASSERT_EQ(::stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640u);
}

// A file that several people tune: of one owner and one group, in a folder that all may write.
class SharedFileTest : public SaveQtTest {
 protected:
  static constexpr uid_t alice = 61001;
  static constexpr gid_t tuners = 61002, others = 61003;

  void SetUp() override {
    SaveQtTest::SetUp();
    if (::geteuid() != 0) GTEST_SKIP() << "only root makes files of somebody else";
    MakeFile(file, "an old text");
    ASSERT_EQ(::chmod(folder.c_str(), 0777), 0);
    ASSERT_EQ(::chown(file.c_str(), alice, tuners), 0);
  }
  std::string SaveAsMemberOf(gid_t group) const {
    return AsOrdinaryUser(
        [&] {
          return std::to_string(FailureOf([&] { SaveWholeFile(file, Bytes{'n', 'e', 'w'}); }));
        },
        group);
  }
  struct stat Status() const {
    struct stat status {};
    EXPECT_EQ(::stat(file.c_str(), &status), 0);
    return status;
  }
};

TEST_F(SharedFileTest, StaysWithItsGroupWhenAMemberSaves) {
  ASSERT_EQ(::chmod(file.c_str(), 0664), 0);
  const ino_t before = Status().st_ino;
  EXPECT_EQ(SaveAsMemberOf(tuners), "0");
  EXPECT_EQ(TextOf(file), "new");
  EXPECT_EQ(Status().st_gid, tuners);
  EXPECT_EQ(Status().st_mode & 07777, 0664u) << "all members write it as before";
  EXPECT_NE(Status().st_ino, before) << "safe against a power cut";
  EXPECT_EQ(FilesInFolder(), 1u);
}

TEST_F(SharedFileTest, StaysWithItsOwnerWhenSomebodySavesWhoCannotGiveItToItsGroup) {
  ASSERT_EQ(::chmod(file.c_str(), 0666), 0);
  EXPECT_EQ(SaveAsMemberOf(others), "0");
  EXPECT_EQ(TextOf(file), "new");
  EXPECT_EQ(Status().st_uid, alice);
  EXPECT_EQ(Status().st_gid, tuners);
  EXPECT_EQ(Status().st_mode & 07777, 0666u);
  EXPECT_EQ(FilesInFolder(), 1u);
}

TEST_F(SharedFileTest, RootLeavesItToItsOwner) {
  SaveWholeFile(file, Bytes{'n', 'e', 'w'});
  EXPECT_EQ(TextOf(file), "new");
  EXPECT_EQ(Status().st_uid, alice);
  EXPECT_EQ(Status().st_gid, tuners);
}

TEST_F(SaveQtTest, LinkOfALinkIsFollowedAlsoWhereNothingIsYet) {
  fs::create_directory(folder + "/there");
  fs::create_symlink("there/target.bin", folder + "/first");
  fs::create_symlink(folder + "/first", folder + "/second");
  SaveWholeFile(folder + "/second", Bytes{'x'});
  EXPECT_TRUE(fs::is_symlink(folder + "/second"));
  EXPECT_TRUE(fs::is_symlink(folder + "/first"));
  EXPECT_EQ(TextOf(folder + "/there/target.bin"), "x");
  EXPECT_FALSE(fs::is_symlink(folder + "/there/target.bin"));
}

TEST_F(SaveQtTest, FileThatIsReplacedWhileItIsOpenIsReadAsItWas) {
  MakeFile(file, "old");
  FileHandle open = OpenFile(file, FileMode::Read);
  SaveWholeFile(file, Bytes{'n', 'e', 'w'});
  EXPECT_EQ(ReadLine(open), "old");
  CloseFile(open);
}

TEST_F(SaveQtTest, NamesThatAreNotAsciiWork) {
  std::string name = folder + "/M\u00fcller \u00b0.bin";
  SaveWholeFile(name, Bytes{'x'});
  EXPECT_EQ(ListFiles(folder, "*.BIN"), std::vector<std::string>{"M\u00fcller \u00b0.bin"});
  EXPECT_EQ(ReadWholeFile(name), Bytes{'x'});
}

TEST_F(SaveQtTest, RemovedWorkingFolderIsRememberedAndNoSaveFails) {
  const std::string before = CurrentFolder();
  const std::string working = folder + "/working";
  MakeFolder(working);
  ChangeFolder(working);
  EXPECT_EQ(CurrentFolder(), working);
  ASSERT_TRUE(fs::remove(working));
  EXPECT_EQ(CurrentFolder(), working);
  SaveWholeFile(file, Bytes{'n', 'e', 'w'});
  EXPECT_EQ(TextOf(file), "new");
  EXPECT_EQ(FailureOf([] { SaveWholeFile("Relative.bin", Bytes{1}); }), FailureFileNotFound);
  EXPECT_EQ(FailureOf([] { ReadWholeFile("Relative.bin"); }), FailureFileNotFound);
  EXPECT_TRUE(DataFile("no_such_data.bin").ends_with("/no_such_data.bin"));
  ChangeFolder(before);
}

TEST_F(SaveQtTest, FolderThatMayNotBeWrittenIsNoPermission) {
  ASSERT_EQ(::chmod(folder.c_str(), 0555), 0);
  auto save = [&] { return std::to_string(FailureOf([&] { SaveWholeFile(file, Bytes{1}); })); };
  EXPECT_EQ(AsOrdinaryUser(save), std::to_string(FailurePermissionDenied));
  ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
}

TEST_F(SaveQtTest, FileInAFolderThatMayNotBeWrittenIsWrittenOver) {
  MakeFile(file, "a long old text");
  ASSERT_EQ(::chmod(file.c_str(), 0666), 0);
  ASSERT_EQ(::chmod(folder.c_str(), 0555), 0);
  auto save = [&] {
    return std::to_string(FailureOf([&] { SaveWholeFile(file, Bytes{'n', 'e', 'w'}); }));
  };
  EXPECT_EQ(AsOrdinaryUser(save), "0");
  EXPECT_EQ(TextOf(file), "new");
  ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
}

TEST_F(SaveQtTest, WritingOverThatDoesNotFitPutsTheOldBytesBack) {
  MakeFile(file, "old");
  ASSERT_EQ(::chmod(file.c_str(), 0666), 0);
  ASSERT_EQ(::chmod(folder.c_str(), 0555), 0);
  auto save = [&] {
    LimitFiles();
    return std::to_string(FailureOf([&] { SaveWholeFile(file, Bytes(2048, 7)); }));
  };
  EXPECT_EQ(AsOrdinaryUser(save), std::to_string(FailureDiskFull));
  EXPECT_EQ(TextOf(file), "old");
  ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
}

TEST_F(SaveQtTest, StrayThatCannotBeRemovedKeepsNobodyFromSaving) {
  const std::string stray = folder + "/.Engine.bin.halvane2-save";
  MakeFile(file, "old");
  MakeFolder(stray);
  MakeFile(stray + "/kept", "in the way");
  SaveWholeFile(file, Bytes{'n', 'e', 'w'});
  EXPECT_EQ(TextOf(file), "new");
  EXPECT_EQ(TextOf(stray + "/kept"), "in the way");
}

TEST_F(SaveQtTest, LongestNameOfAFileIsSaved) {
  const std::string name = folder + "/" + std::string(251, 'n') + ".bin";
  MakeFile(name, "old");
  SaveWholeFile(name, Bytes{'n', 'e', 'w'});
  EXPECT_EQ(TextOf(name), "new");
  EXPECT_EQ(FilesInFolder(), 1u);
}

TEST_F(SaveQtTest, FileOfSomebodyElseIsNotReplaced) {
  MakeFile(file, "theirs");
  ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
  ASSERT_EQ(::chmod(folder.c_str(), 0777), 0);
  auto save = [&] { return std::to_string(FailureOf([&] { SaveWholeFile(file, Bytes{1}); })); };
  EXPECT_EQ(AsOrdinaryUser(save), std::to_string(FailurePermissionDenied));
  EXPECT_EQ(TextOf(file), "theirs");
}

}  // namespace
