// The door to the disk: modes, ends of files, lines, whole files, lists.
#include "platform/files.h"

#include <functional>

#include "platform/failure.h"
#include "support/testfolder.h"
#include "support/user.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

class FilesTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    folder = TestFolder();
  }
  void TearDown() override {
    CloseAllFiles();
    PlatformTest::TearDown();
  }
  std::string In(const std::string& name) const { return folder + "/" + name; }
  std::string Text(const std::string& name) const {
    Bytes bytes = ReadWholeFile(In(name));
    return {bytes.begin(), bytes.end()};
  }
  // The number of the failure, 0 when there was none.
  static int FailureOf(const std::function<void()>& routine) {
    try {
      routine();
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.source, "Halvane2");
      EXPECT_FALSE(failure.description.empty());
      return failure.number;
    }
    return 0;
  }
  FileHandle Open(const std::string& name, const std::string& text) {
    MakeFile(In(name), text);
    return OpenFile(In(name), FileMode::Read);
  }

  std::string folder;
};

Bytes operator""_bytes(const char* text, std::size_t size) { return {text, text + size}; }

// ---- modes --------------------------------------------------------------------------------------

TEST_F(FilesTest, WriteCreatesAndTruncates) {
  MakeFile(In("a"), "a long old text");
  for (const char* name : {"a", "b"}) {
    FileHandle file = OpenFile(In(name), FileMode::Write);
    WriteText(file, "new");
    CloseFile(file);
    EXPECT_EQ(Text(name), "new");
  }
}

TEST_F(FilesTest, AppendCreatesAndWritesBehindTheEnd) {
  for (int i = 0; i < 2; ++i) {
    FileHandle file = OpenFile(In("log"), FileMode::Append);
    WriteText(file, "line\r\n");
    SeekFile(file, 0);
    WriteText(file, "more");
    CloseFile(file);
  }
  EXPECT_EQ(Text("log"), "line\r\nmoreline\r\nmore");
}

TEST_F(FilesTest, ReadWriteKeepsTheRestOfTheFile) {
  MakeFile(In("a"), "0123456789");
  FileHandle file = OpenFile(In("a"), FileMode::ReadWrite);
  SeekFile(file, 4);
  WriteFile(file, "ab"_bytes);
  EXPECT_EQ(FilePosition(file), 6);
  Bytes rest(10);
  EXPECT_EQ(ReadFile(file, rest), 4u);
  CloseFile(file);
  EXPECT_EQ(Text("a"), "0123ab6789");
}

TEST_F(FilesTest, ReadWriteCreatesAnEmptyFile) {
  CloseFile(OpenFile(In("a"), FileMode::ReadWrite));
  EXPECT_TRUE(FileExists(In("a")));
  EXPECT_EQ(Text("a"), "");
}

TEST_F(FilesTest, WritingBehindTheEndFillsUpWithZeros) {
  FileHandle file = OpenFile(In("a"), FileMode::ReadWrite);
  SeekFile(file, 3);
  EXPECT_TRUE(EndOfFile(file));
  WriteText(file, "x");
  EXPECT_EQ(FileLength(file), 4);
  CloseFile(file);
  EXPECT_EQ(ReadWholeFile(In("a")), (Bytes{0, 0, 0, 'x'}));
}

TEST_F(FilesTest, WrongDirectionIsADeviceFailure) {
  MakeFile(In("a"), "abc");
  FileHandle reading = OpenFile(In("a"), FileMode::Read);
  EXPECT_EQ(FailureOf([&] { WriteText(reading, "x"); }), FailureDeviceIo);
  FileHandle writing = OpenFile(In("b"), FileMode::Write);
  Bytes one(1);
  EXPECT_EQ(FailureOf([&] { ReadFile(writing, one); }), FailureDeviceIo);
  EXPECT_EQ(FailureOf([&] { ReadLine(writing); }), FailureDeviceIo);
  EXPECT_EQ(FailureOf([&] { ReadCharacter(writing); }), FailureDeviceIo);
  EXPECT_EQ(Text("a"), "abc");
}

TEST_F(FilesTest, ClosedHandleIsADeviceFailureButMayBeClosedAgain) {
  FileHandle file = Open("a", "abc");
  CloseFile(file);
  CloseFile(file);
  CloseFile(0);
  EXPECT_EQ(FailureOf([&] { ReadLine(file); }), FailureDeviceIo);
  EXPECT_EQ(FailureOf([&] { FileLength(file); }), FailureDeviceIo);
}

TEST_F(FilesTest, SeekBeforeTheStartIsADeviceFailure) {
  FileHandle file = Open("a", "abc");
  EXPECT_EQ(FailureOf([&] { SeekFile(file, -1); }), FailureDeviceIo);
  EXPECT_EQ(ReadLine(file), "abc");
}

TEST_F(FilesTest, TwoHandlesReadOneFileEachAtItsPlace) {
  FileHandle first = Open("a", "one\ntwo\n");
  FileHandle second = OpenFile(In("a"), FileMode::Read);
  EXPECT_NE(first, second);
  EXPECT_EQ(ReadLine(first), "one");
  EXPECT_EQ(ReadLine(second), "one");
  EXPECT_EQ(ReadLine(first), "two");
}

TEST_F(FilesTest, WhatIsFlushedIsThere) {
  FileHandle file = OpenFile(In("log"), FileMode::Append);
  WriteText(file, "line");
  FlushFile(file);
  EXPECT_EQ(Text("log"), "line");
}

// ---- opening what is not there ------------------------------------------------------------------

TEST_F(FilesTest, MissingFileIsNotFound) {
  EXPECT_EQ(FailureOf([&] { OpenFile(In("a"), FileMode::Read); }), FailureFileNotFound);
  EXPECT_EQ(FailureOf([&] { ReadWholeFile(In("a")); }), FailureFileNotFound);
  EXPECT_EQ(FailureOf([&] { DeleteFile(In("a")); }), FailureFileNotFound);
  EXPECT_EQ(FailureOf([&] { CopyFile(In("a"), In("b")); }), FailureFileNotFound);
  EXPECT_EQ(FailureOf([&] { FileDate(In("a")); }), FailureFileNotFound);
  EXPECT_FALSE(FileExists(In("b")));
}

TEST_F(FilesTest, MissingFolderIsPathNotFound) {
  EXPECT_EQ(FailureOf([&] { OpenFile(In("no/a"), FileMode::Read); }), FailurePathNotFound);
  EXPECT_EQ(FailureOf([&] { OpenFile(In("no/a"), FileMode::Write); }), FailurePathNotFound);
  EXPECT_EQ(FailureOf([&] { SaveWholeFile(In("no/a"), "x"_bytes); }), FailurePathNotFound);
  EXPECT_EQ(FailureOf([&] { ReadWholeFile(In("no/a")); }), FailurePathNotFound);
  EXPECT_EQ(FailureOf([&] { ChangeFolder(In("no")); }), FailurePathNotFound);
}

TEST_F(FilesTest, FolderInsteadOfAFileIsAPathAccessFailure) {
  MakeFolder(In("sub"));
  for (FileMode mode : {FileMode::Read, FileMode::Write, FileMode::Append, FileMode::ReadWrite})
    EXPECT_EQ(FailureOf([&] { OpenFile(In("sub"), mode); }), FailurePathFileAccess);
  EXPECT_EQ(FailureOf([&] { ReadWholeFile(In("sub")); }), FailurePathFileAccess);
  EXPECT_EQ(FailureOf([&] { SaveWholeFile(In("sub"), "x"_bytes); }), FailurePathFileAccess);
  EXPECT_EQ(FailureOf([&] { DeleteFile(In("sub")); }), FailurePathFileAccess);
  EXPECT_TRUE(FolderExists(In("sub")));
}

TEST_F(FilesTest, ReadOnlyFileIsReadAndNotWritten) {
  MakeFile(In("a"), "abc");
  MakeReadOnly(In("a"));
  EXPECT_EQ(Text("a"), "abc");
  for (FileMode mode : {FileMode::Write, FileMode::Append, FileMode::ReadWrite})
    EXPECT_EQ(FailureOf([&] { OpenFile(In("a"), mode); }), FailurePermissionDenied);
  EXPECT_EQ(FailureOf([&] { SaveWholeFile(In("a"), "x"_bytes); }), FailurePermissionDenied);
  MakeFile(In("b"), "new");
  EXPECT_EQ(FailureOf([&] { CopyFile(In("b"), In("a")); }), FailurePermissionDenied);
  EXPECT_EQ(FailureOf([&] { DeleteFile(In("a")); }), FailurePermissionDenied);
  EXPECT_EQ(Text("a"), "abc");
  EXPECT_EQ(ListFiles(folder, "*"), (std::vector<std::string>{"a", "b"}));
}

// ---- reading ------------------------------------------------------------------------------------

TEST_F(FilesTest, ReadIsShortAtTheEndOnly) {
  FileHandle file = Open("a", "abcde");
  Bytes three(3, 0xEE);
  EXPECT_EQ(ReadFile(file, three), 3u);
  EXPECT_EQ(three, "abc"_bytes);
  EXPECT_FALSE(EndOfFile(file));
  EXPECT_EQ(ReadFile(file, three), 2u);
  EXPECT_EQ(three, "dec"_bytes);
  EXPECT_TRUE(EndOfFile(file));
  EXPECT_EQ(ReadFile(file, three), 0u);
  EXPECT_EQ(FilePosition(file), 5);
}

TEST_F(FilesTest, EndOfFileComesWithTheLastByte) {
  FileHandle file = Open("a", "a");
  EXPECT_FALSE(EndOfFile(file));
  ReadCharacter(file);
  EXPECT_TRUE(EndOfFile(file));
  EXPECT_TRUE(EndOfFile(Open("empty", "")));
}

TEST_F(FilesTest, LinesEndWithAnyOfTheThreeEnds) {
  FileHandle file = Open("a", "one\r\ntwo\nthree\rfour");
  for (const char* line : {"one", "two", "three", "four"}) {
    EXPECT_FALSE(EndOfFile(file));
    EXPECT_EQ(ReadLine(file), line);
  }
  EXPECT_TRUE(EndOfFile(file));
}

TEST_F(FilesTest, LineEndAtTheEndBeginsNoFurtherLine) {
  for (const char* end : {"\r\n", "\n", "\r"}) {
    FileHandle file = Open("a", std::string("one") + end);
    EXPECT_EQ(ReadLine(file), "one");
    EXPECT_TRUE(EndOfFile(file));
    EXPECT_EQ(FailureOf([&] { ReadLine(file); }), FailureInputPastEnd);
    CloseFile(file);
  }
}

TEST_F(FilesTest, EmptyLinesAreLines) {
  FileHandle file = Open("a", "\n\r\n\r\rx");
  for (const char* line : {"", "", "", "", "x"}) EXPECT_EQ(ReadLine(file), line);
  EXPECT_TRUE(EndOfFile(file));
}

TEST_F(FilesTest, LineKeepsEveryOtherByte) {
  std::string odd("a\0b\x1a\xff\t ", 7);
  FileHandle file = Open("a", odd + "\nnext");
  EXPECT_EQ(ReadLine(file), odd);
  EXPECT_EQ(ReadLine(file), "next");
}

TEST_F(FilesTest, LongLineIsRead) {
  std::string line(100000, 'x');
  FileHandle file = Open("a", line + "\r\ny");
  EXPECT_EQ(ReadLine(file), line);
  EXPECT_EQ(FilePosition(file), 100002);
  EXPECT_EQ(ReadLine(file), "y");
}

TEST_F(FilesTest, CharactersAreBytesAndPastTheEndIsAFailure) {
  FileHandle file = Open("a", "a\xff\n");
  EXPECT_EQ(ReadCharacter(file), 'a');
  EXPECT_EQ(ReadCharacter(file), 255);
  EXPECT_EQ(ReadCharacter(file), 10);
  EXPECT_EQ(FailureOf([&] { ReadCharacter(file); }), FailureInputPastEnd);
  EXPECT_EQ(FailureOf([&] { ReadCharacter(file); }), FailureInputPastEnd);
}

TEST_F(FilesTest, ReadersShareOnePlace) {
  FileHandle file = Open("a", "one\r\n23\r\nrest");
  EXPECT_EQ(ReadLine(file), "one");
  EXPECT_EQ(FilePosition(file), 5);
  EXPECT_EQ(ReadCharacter(file), '2');
  EXPECT_EQ(ReadLine(file), "3");
  Bytes two(2);
  ReadFile(file, two);
  EXPECT_EQ(two, "re"_bytes);
  SeekFile(file, 0);
  EXPECT_EQ(ReadLine(file), "one");
}

// ---- whole files --------------------------------------------------------------------------------

TEST_F(FilesTest, SavedFileHasExactlyItsBytes) {
  Bytes bytes(2048);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i * 7);
  SaveWholeFile(In("a.bin"), bytes);
  EXPECT_EQ(ReadWholeFile(In("a.bin")), bytes);
  SaveWholeFile(In("a.bin"), "short"_bytes);
  EXPECT_EQ(Text("a.bin"), "short");
  SaveWholeFile(In("a.bin"), {});
  EXPECT_EQ(Text("a.bin"), "");
}

TEST_F(FilesTest, SaveLeavesNothingBeside) {
  SaveWholeFile(In("a.bin"), "one"_bytes);
  SaveWholeFile(In("a.bin"), "two"_bytes);
  EXPECT_EQ(ListFiles(folder, "*"), (std::vector<std::string>{"a.bin"}));
}

TEST_F(FilesTest, SaveFollowsALink) {
  MakeFolder(In("real"));
  MakeFile(In("real/a.bin"), "old");
  MakeLink(In("link.bin"), In("real/a.bin"));
  SaveWholeFile(In("link.bin"), "new"_bytes);
  EXPECT_EQ(Text("real/a.bin"), "new");
  EXPECT_EQ(Text("link.bin"), "new");
  MakeFile(In("real/a.bin"), "again");
  EXPECT_EQ(Text("link.bin"), "again") << "the link is still a link";
}

TEST_F(FilesTest, SaveThroughALinkToAReadOnlyFileFails) {
  MakeFile(In("a.bin"), "old");
  MakeLink(In("link.bin"), In("a.bin"));
  MakeReadOnly(In("a.bin"));
  EXPECT_EQ(FailureOf([&] { SaveWholeFile(In("link.bin"), "new"_bytes); }),
            FailurePermissionDenied);
  EXPECT_EQ(Text("a.bin"), "old");
}

TEST_F(FilesTest, DeletedLinkLeavesItsFile) {
  MakeFile(In("a.bin"), "old");
  MakeLink(In("link.bin"), In("a.bin"));
  DeleteFile(In("link.bin"));
  EXPECT_FALSE(FileExists(In("link.bin")));
  EXPECT_EQ(Text("a.bin"), "old");
}

TEST_F(FilesTest, FileThatIsOpenForReadingKeepsItsOldTextWhenItIsSaved) {
  FileHandle file = Open("a", "one\ntwo\n");
  EXPECT_EQ(ReadLine(file), "one");
  SaveWholeFile(In("a"), "new"_bytes);
  EXPECT_EQ(ReadLine(file), "two") << "a save replaces the file, it does not write into it";
}

TEST_F(FilesTest, CopyReplacesTheTarget) {
  MakeFile(In("a"), "text");
  MakeFile(In("b"), "a longer old text");
  CopyFile(In("a"), In("b"));
  EXPECT_EQ(Text("b"), "text");
  EXPECT_EQ(Text("a"), "text");
}

TEST_F(FilesTest, CopyOntoItselfKeepsTheFile) {
  MakeFile(In("a"), "text");
  CopyFile(In("a"), In("a"));
  EXPECT_EQ(Text("a"), "text");
}

TEST_F(FilesTest, DeletedFileIsGone) {
  MakeFile(In("a"), "text");
  DeleteFile(In("a"));
  EXPECT_FALSE(FileExists(In("a")));
}

TEST_F(FilesTest, FolderIsNoFileAndAFileNoFolder) {
  MakeFile(In("a"), "text");
  MakeFolder(In("sub"));
  EXPECT_TRUE(FileExists(In("a")));
  EXPECT_FALSE(FileExists(In("sub")));
  EXPECT_FALSE(FileExists(In("none")));
  EXPECT_TRUE(FolderExists(In("sub")));
  EXPECT_FALSE(FolderExists(In("a")));
  EXPECT_FALSE(FolderExists(In("none")));
}

TEST_F(FilesTest, FileDateIsDateAndTime) {
  MakeFile(In("a"), "text");
  std::string date = FileDate(In("a"));
  ASSERT_EQ(date.size(), 19u) << date;
  EXPECT_EQ(date.substr(4, 1) + date[7] + date[10] + date[13] + date[16], "-- ::");
}

// ---- lists and places ---------------------------------------------------------------------------

TEST_F(FilesTest, FilesAreListedByPatternInAnyCaseAndSorted) {
  for (const char* name : {"b.BIN", "A.bin", "c.Bin", "d.s19", "bin", "e.bin.old"})
    MakeFile(In(name), "");
  MakeFolder(In("folder.bin"));
  EXPECT_EQ(ListFiles(folder, "*.bin"), (std::vector<std::string>{"A.bin", "b.BIN", "c.Bin"}));
  EXPECT_EQ(ListFiles(folder, "*.S19;b.*"), (std::vector<std::string>{"b.BIN", "d.s19"}));
  EXPECT_EQ(ListFiles(folder, "?.bin").size(), 3u);
  EXPECT_EQ(ListFiles(folder, "*").size(), 6u);
}

TEST_F(FilesTest, FoldersAreListedSorted) {
  for (const char* name : {"beta", "Alpha", "gamma"}) MakeFolder(In(name));
  MakeFile(In("file"), "");
  EXPECT_EQ(ListFolders(folder), (std::vector<std::string>{"Alpha", "beta", "gamma"}));
  EXPECT_EQ(ListFolders(In("beta")), std::vector<std::string>{});
}

TEST_F(FilesTest, FolderThatIsNotThereHasNothingInIt) {
  EXPECT_EQ(ListFiles(In("none"), "*"), std::vector<std::string>{});
  EXPECT_EQ(ListFolders(In("none")), std::vector<std::string>{});
}

TEST_F(FilesTest, ThereIsADrive) { EXPECT_FALSE(ListDrives().empty()); }

TEST_F(FilesTest, NamesWithoutAFolderStandInTheCurrentOne) {
  std::string before = CurrentFolder();
  ChangeFolder(folder);
  EXPECT_EQ(CurrentFolder(), folder);
  SaveWholeFile("a.bin", "here"_bytes);
  EXPECT_TRUE(FileExists("a.bin"));
  EXPECT_EQ(Text("a.bin"), "here");
  ChangeFolder(before);
  EXPECT_FALSE(FileExists("a.bin"));
}

TEST_F(FilesTest, DataFileOfTheCurrentFolderComesFirst) {
  std::string before = CurrentFolder();
  ChangeFolder(folder);
  EXPECT_NE(DataFile("no_such_data.bin"), In("no_such_data.bin"));
  EXPECT_TRUE(DataFile("no_such_data.bin").ends_with("/no_such_data.bin"));
  MakeFile(In("no_such_data.bin"), "x");
  EXPECT_EQ(DataFile("no_such_data.bin"), In("no_such_data.bin"));
  ChangeFolder(before);
}

}  // namespace
