// Boxes: what they show, what they answer, what runs while they are open.
#include <functional>
#include <optional>

#include "platform/contract.h"
#include "platform/failure.h"
#include "platform/loop.h"
#include "support/testfolder.h"

namespace {

class BoxesTest : public ContractTest {
 protected:
  static int FailureOf(const std::function<void()>& routine) {
    try {
      routine();
    } catch (const Failure& failure) {
      return failure.number;
    }
    return 0;
  }

  Screen screen{.name = "frmBox", .build = [](Screen& s) { Add(s, TextField("Text1")); }};
};

// ---- messages -----------------------------------------------------------------------------------

TEST_F(BoxesTest, AnswersAreTakenInTheirOrder) {
  AnswerNextBox(Answer::Yes);
  AnswerNextBox(Answer::No);
  AnswerNextBox(Answer::Cancel);
  AnswerNextBox(Answer::Ok);
  EXPECT_EQ(MsgBox("one", Buttons::YesNo), Answer::Yes);
  EXPECT_EQ(MsgBox("two", Buttons::YesNoCancel), Answer::No);
  EXPECT_EQ(MsgBox("three", Buttons::YesNoCancel), Answer::Cancel);
  EXPECT_EQ(MsgBox("four", Buttons::OkCancel), Answer::Ok);
  for (const char* text : {"one", "two", "three", "four"}) EXPECT_EQ(TakeBox().text, text);
}

TEST_F(BoxesTest, CloseBoxAnswersTheMildest) {
  EXPECT_EQ(MsgBox("a", Buttons::Ok), Answer::Ok);
  EXPECT_EQ(MsgBox("b", Buttons::OkCancel), Answer::Cancel);
  EXPECT_EQ(MsgBox("c", Buttons::YesNo), Answer::No);
  EXPECT_EQ(MsgBox("d", Buttons::YesNoCancel), Answer::Cancel);
  for (int i = 0; i < 4; ++i) TakeBox();
}

TEST_F(BoxesTest, MessageIsShownWithItsTitleAndButtons) {
  AnswerNextBox(Answer::Yes);
  MsgBox("Do you wish to save?", Buttons::YesNoCancel, "File Close", BoxIcon::Question);
  ShownBox box = TakeBox();
  EXPECT_EQ(box.kind, "message");
  EXPECT_EQ(box.title, "File Close");
  EXPECT_EQ(box.text, "Do you wish to save?");
  EXPECT_EQ(box.buttons, Buttons::YesNoCancel);
}

TEST_F(BoxesTest, LineBreaksOfAMessageArePassedOnAsGiven) {
  for (const char* text : {"Data Input Error\n\r  Retype Data", "a\r\nb", "Error # 6\rOverflow\n\r",
                           "a\nb", "\n\r\n\rTwo empty lines"}) {
    MsgBox(text);
    EXPECT_EQ(TakeBox().text, text);
  }
}

TEST_F(BoxesTest, AmpersandsAndAnglesOfAMessageAreText) {
  MsgBox("Press '<< BACK' & wait <b>now</b>");
  EXPECT_EQ(TakeBox().text, "Press '<< BACK' & wait <b>now</b>");
}

TEST_F(BoxesTest, QueueRunsWhileABoxIsOpen) {
  int depth = -1;
  RunSoon([&] { depth = YieldDepth(); });
  MsgBox("wait");
  EXPECT_GE(depth, 1);
  TakeBox();
}

TEST_F(BoxesTest, RoutineForTheQueueWaitsUntilTheBoxIsClosed) {
  bool ran = false;
  RunFromQueue([&] { ran = true; });
  MsgBox("wait");
  EXPECT_FALSE(ran);
  RunPending();
  EXPECT_TRUE(ran);
  TakeBox();
}

TEST_F(BoxesTest, BoxInsideABoxIsAnsweredFirst) {
  Answer inner = Answer::Ok;
  RunSoon([&] { inner = MsgBox("inner", Buttons::YesNo); });
  AnswerNextBox(Answer::Yes);
  AnswerNextBox(Answer::Cancel);
  Answer outer = MsgBox("outer", Buttons::OkCancel);
  EXPECT_EQ(inner, Answer::Yes);
  EXPECT_EQ(outer, Answer::Cancel);
  EXPECT_EQ(TakeBox().text, "outer");
  EXPECT_EQ(TakeBox().text, "inner");
}

TEST_F(BoxesTest, FocusOfTheScreenIsTheSameAfterABox) {
  KeepJournal(screen, journal);
  ShowScreen(screen);
  Told();
  MsgBox("wait");
  TakeBox();
  EXPECT_EQ(Told(), Journal{});
  EXPECT_EQ(ShownFocus(), "Text1");
  TypeText("7");
  EXPECT_EQ(ShownText(screen, "Text1"), "7");
}

// ---- the input box ------------------------------------------------------------------------------

TEST_F(BoxesTest, InputBoxGivesTheText) {
  AnswerNextInput("12.5");
  EXPECT_EQ(InputBox("Value?", "Fill", "1"), "12.5");
  ShownBox box = TakeBox();
  EXPECT_EQ(box.kind, "input");
  EXPECT_EQ(box.title, "Fill");
  EXPECT_EQ(box.text, "Value?");
}

TEST_F(BoxesTest, EmptyInputIsNotACancel) {
  AnswerNextInput("");
  AnswerNextInput(std::nullopt);
  EXPECT_EQ(InputBox("Value?", "Fill", "1"), std::optional<std::string>(""));
  EXPECT_EQ(InputBox("Value?", "Fill", "1"), std::nullopt);
  EXPECT_EQ(InputBox("Value?", "Fill"), std::nullopt) << "left by its close box";
  for (int i = 0; i < 3; ++i) TakeBox();
}

// ---- file dialogs -------------------------------------------------------------------------------

TEST_F(BoxesTest, ChosenFileStandsInTheDialog) {
  std::string path = TestFolder() + "/Engine.BIN";
  AnswerNextFile(path);
  FileDialog dialog{.title = "Open User BIN Files",
                    .filter = "Halvane2 File(*.BIN)|*.bin",
                    .fileName = "old.bin",
                    .folder = TestFolder()};
  ShowOpenDialog(dialog);
  EXPECT_EQ(dialog.fileName, path) << "a name that does not exist passes";
  ShownBox box = TakeBox();
  EXPECT_EQ(box.kind, "open");
  EXPECT_EQ(box.title, "Open User BIN Files");
  EXPECT_EQ(box.text, "old.bin");
  EXPECT_EQ(box.filter, "Halvane2 File(*.BIN)|*.bin");
}

TEST_F(BoxesTest, SaveDialogDoesNotAskAboutReplacing) {
  std::string path = TestFolder() + "/there.bin";
  MakeFile(path, "x");
  AnswerNextFile(path);
  FileDialog dialog{.title = "Save As", .fileName = "there.bin", .folder = TestFolder()};
  ShowSaveDialog(dialog);
  EXPECT_EQ(dialog.fileName, path);
  EXPECT_EQ(TakeBox().kind, "save");
  EXPECT_FALSE(AnyBoxShown());
}

TEST_F(BoxesTest, CancelledFileDialogRaisesCancelAndKeepsTheName) {
  FileDialog dialog{.title = "Open", .fileName = "old.bin"};
  AnswerNextFile(std::nullopt);
  EXPECT_EQ(FailureOf([&] { ShowOpenDialog(dialog); }), 32755);
  EXPECT_EQ(FailureOf([&] { ShowSaveDialog(dialog); }), 32755) << "left by its close box";
  EXPECT_EQ(dialog.fileName, "old.bin");
  TakeBox();
  TakeBox();
}

}  // namespace
