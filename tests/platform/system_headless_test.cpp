// Processes, printer, beep and desktop in memory.
#include "platform/frame.h"
#include "platform/headless/script.h"
#include "platform/system.h"
#include "support/user.h"

namespace {

class SystemTest : public PlatformTest {};

using Lines = std::vector<std::string>;

TEST_F(SystemTest, EndOfAProcessIsToldFromTheQueue) {
  int exitCode = -1;
  ASSERT_TRUE(StartProcess("editor", "guide.txt", [&](int code) { exitCode = code; }));
  ASSERT_EQ(StartedProcesses().size(), 1u);
  EXPECT_EQ(StartedProcesses()[0].program, "editor");
  EXPECT_EQ(StartedProcesses()[0].argument, "guide.txt");
  StartedProcesses()[0].ended(7);
  EXPECT_EQ(exitCode, -1);
  RunPending();
  EXPECT_EQ(exitCode, 7);
}

TEST_F(SystemTest, TextEditorTellsItsEnd) {
  bool ended = false;
  std::string why;
  ASSERT_TRUE(StartTextEditor(
      "guide.txt", [&] { ended = true; }, why));
  EXPECT_EQ(StartedProcesses()[0].argument, "guide.txt");
  RunPending();
  EXPECT_FALSE(ended);
  StartedProcesses()[0].ended(0);
  RunPending();
  EXPECT_TRUE(ended);
}

TEST_F(SystemTest, MissingTextEditorSaysSo) {
  SetTextEditorMissing(true);
  std::string why;
  EXPECT_FALSE(StartTextEditor(
      "guide.txt", [] {}, why));
  EXPECT_EQ(why, "No text editor was found.");
  EXPECT_TRUE(StartedProcesses().empty());
}

TEST_F(SystemTest, BeepsAreCounted) {
  EXPECT_EQ(BeepCount(), 0);
  Beep();
  Beep();
  EXPECT_EQ(BeepCount(), 2);
}

TEST_F(SystemTest, OtherInstanceIsAsTold) {
  EXPECT_FALSE(AnotherInstanceRuns());
  SetOtherInstance(true);
  EXPECT_TRUE(AnotherInstanceRuns());
}

TEST_F(SystemTest, MaximisedWidthIsTheDesktopsAndEight) {
  EXPECT_EQ(MaximisedFrameWidth(), 1032);
  SetDesktopWidth(1600);
  EXPECT_EQ(MaximisedFrameWidth(), 1608);
}

// ---- the printer --------------------------------------------------------------------------------

TEST_F(SystemTest, ColumnsCountFromOne) {
  ASSERT_TRUE(PrinterBegin("Report"));
  PrintAt(3, "ab");
  PrintAt(10, "c");
  PrintLine("d");
  PrintLine();
  PrintAt(1, "e");
  PrintLine();
  PrinterEnd();
  EXPECT_EQ(PrintedPages(), (std::vector<Lines>{{"  ab     cd", "", "e"}}));
}

TEST_F(SystemTest, ColumnThatIsPassedBeginsANewLine) {
  PrinterBegin("Report");
  PrintAt(1, "a long label");
  PrintAt(5, "value");
  PrintLine();
  PrinterEnd();
  EXPECT_EQ(PrintedPages(), (std::vector<Lines>{{"a long label", "    value"}}));
}

TEST_F(SystemTest, ColumnRightBehindTheTextFollowsOnTheSameLine) {
  PrinterBegin("Report");
  PrintAt(1, "abcd");
  PrintAt(5, "e");
  PrintLine();
  PrinterEnd();
  EXPECT_EQ(PrintedPages(), (std::vector<Lines>{{"abcde"}}));
}

TEST_F(SystemTest, PagesBreakWhereAskedAndWhenFull) {
  PrinterBegin("Report");
  PrinterFont("Times New Roman", 10);
  PrintLine("first");
  EXPECT_EQ(PrinterLine(), 1);
  PrinterNewPage();
  EXPECT_EQ(PrinterLine(), 0);
  for (int line = 0; line <= PrinterLinesPerPage(); ++line) PrintLine("x");
  EXPECT_EQ(PrinterLine(), 1);
  PrinterEnd();
  ASSERT_EQ(PrintedPages().size(), 3u);
  EXPECT_EQ(PrintedPages()[1].size(), static_cast<std::size_t>(PrinterLinesPerPage()));
  EXPECT_EQ(PrinterLog(), (Lines{"begin Report", "font Times New Roman 10", "page", "end"}));
}

TEST_F(SystemTest, LargerFontHasFewerLines) {
  PrinterBegin("Report");
  PrinterFont("Times New Roman", 10);
  int lines = PrinterLinesPerPage();
  PrinterFont("Times New Roman", 20);
  EXPECT_EQ(PrinterLinesPerPage(), lines / 2);
  PrinterAbort();
}

TEST_F(SystemTest, RefusedPrinterBeginsNothing) {
  SetPrinterRefused(true);
  EXPECT_FALSE(PrinterBegin("Report"));
  EXPECT_TRUE(PrinterLog().empty());
}

TEST_F(SystemTest, AbortedDocumentIsNotPrinted) {
  PrinterBegin("Report");
  PrintLine("text");
  PrinterAbort();
  EXPECT_TRUE(PrintedPages().empty());
  PrinterBegin("Second");
  PrintLine("other");
  PrinterEnd();
  EXPECT_EQ(PrintedPages(), (std::vector<Lines>{{"other"}}));
}

}  // namespace
