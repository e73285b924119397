// Names cut out of paths: always by the length of the current folder, never at a separator.
#include "core/shortname.h"

#include <gtest/gtest.h>

#include <vector>

#include "core/globalstate.h"

namespace {

std::vector<int> StoredCodes() { return {&CalValues[477], &CalValues[491]}; }

}  // namespace

TEST(ShortName, IsWhatFollowsTheCurrentFolder) {
  EXPECT_EQ(ShortNameOnOpen("/home/user/v8.bin", "/home/user"), "v8.bin");
  EXPECT_EQ(ShortNameOnSave("/home/user/v8.bin", "/home/user"), "v8.bin");
  EXPECT_EQ(ShortNameOnOpen("C:\\TUNES\\ABC.BIN", "C:\\TUNES"), "ABC.BIN");
}

TEST(ShortName, EndsAfterTwentyCharacters) {
  EXPECT_EQ(ShortNameOnOpen("/a/12345678901234567890.bin", "/a"), "12345678901234567890");
  EXPECT_EQ(ShortNameOnSave("/a/123456789012345678901", "/a"), "12345678901234567890");
}

TEST(ShortName, OpenInTheRootStartsRightAfterTheSeparator) {
  EXPECT_EQ(ShortNameOnOpen("/v8.bin", "/"), "v8.bin");
  EXPECT_EQ(ShortNameOnOpen("C:\\V8.BIN", "C:\\"), "V8.BIN");
}

TEST(ShortName, SaveInTheRootLosesTheFirstCharacter) {
  EXPECT_EQ(ShortNameOnSave("/v8.bin", "/"), "8.bin");
  EXPECT_EQ(ShortNameOnSave("C:\\V8.BIN", "C:\\"), "8.BIN");
}

TEST(ShortName, FolderOfThreeCharactersIsNoRoot) {
  EXPECT_EQ(ShortNameOnOpen("/ab/v8.bin", "/ab"), "v8.bin");
}

TEST(ShortName, FileElsewhereKeepsPartOfItsFolder) {
  EXPECT_EQ(ShortNameOnOpen("/media/stick/engines/v8.bin", "/home/user"), "k/engines/v8.bin");
  EXPECT_EQ(ShortNameOnSave("/media/stick/engines/v8.bin", "/home/user"), "k/engines/v8.bin");
}

TEST(ShortName, PathNoLongerThanTheFolderHasNone) {
  EXPECT_EQ(ShortNameOnOpen("/v8.bin", "/home/user"), "");
  EXPECT_EQ(ShortNameOnSave("", "/home/user"), "");
}

TEST(ShortName, CountsCharactersAndNotBytes) {
  EXPECT_EQ(ShortNameOnOpen("/home/m\xC3\xBCller/\xC3\xA4.bin", "/home/m\xC3\xBCller"),
            "\xC3\xA4.bin");
}

TEST(LastCharacters, AreTheWholeTextWhenItIsShort) {
  EXPECT_EQ(LastCharacters("v8.bin", 3), "bin");
  EXPECT_EQ(LastCharacters("in", 3), "in");
  EXPECT_EQ(LastCharacters("", 3), "");
  EXPECT_EQ(LastCharacters("x.b\xC3\xAFn", 3), "b\xC3\xAFn");
}

TEST(StoreNameInCalibration, StoresCodesUpToTheFirstPoint) {
  ResetCalibrationState();
  BinShortName = "ABC.x.BIN";
  StoreNameInCalibration();
  EXPECT_EQ(StoredCodes(), (std::vector<int>{65, 66, 67, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(StoreNameInCalibration, StopsAfterFourteen) {
  ResetCalibrationState();
  BinShortName = "ABCDEFGHIJKLMNOPQR";
  StoreNameInCalibration();
  EXPECT_EQ(StoredCodes(),
            (std::vector<int>{65, 66, 67, 68, 69, 70, 71, 72, 73, 74, 75, 76, 77, 78}));
  EXPECT_EQ(CalValues[476], 0);
  EXPECT_EQ(CalValues[491], 0);
}

TEST(StoreNameInCalibration, KeepsWhatALongerNameLeft) {
  ResetCalibrationState();
  BinShortName = "LONG";
  StoreNameInCalibration();
  BinShortName = "s.bin";
  StoreNameInCalibration();
  EXPECT_EQ(StoredCodes(), (std::vector<int>{115, 79, 78, 71, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(StoreNameInCalibration, UsesAnsiCodes) {
  ResetCalibrationState();
  BinShortName = "\xC3\xA4\xE2\x82\xAC.bin";  // a with dots, the euro sign
  StoreNameInCalibration();
  EXPECT_EQ(CalValues[477], 228);
  EXPECT_EQ(CalValues[478], 128);
}

TEST(StoreNameInCalibration, EmptyNameChangesNothing) {
  ResetCalibrationState();
  CalValues[477] = 7;
  StoreNameInCalibration();
  EXPECT_EQ(CalValues[477], 7);
}
