// What becomes of an entry of an ONFLY session when something comes between it and the unit: a
// save, a refusal, the end of the session, a unit that is silent.
#include <cstring>

#include "editors/editcycle.h"
#include "editors/gpotable.h"
#include "monitors/onflytest.h"
#include "platform/failure.h"
#include "platform/files.h"
#include "shell/mainmenu.h"

namespace {

constexpr const char* binPath = "/home/user/V8.bin";

float InFile(std::size_t index) {
  float value = 0;
  std::memcpy(&value, ReadWholeFile(binPath).data() + 4 * index, 4);
  return value;
}

}  // namespace

// ---- the GPO word -------------------------------------------------------------------------------

TEST_F(OnflyEditing, TheGpoCellsOfTheGpoWordAreStoredWhenTheUnitHasThem) {
  GoTo("GPO_Ctl");
  Screen& table = GpoCtl().screen;
  int step = 0;
  Every20Ms([&] {
    if (!Idle() || OnflyByteCount > 0) return;
    if (++step > 3) return StopLive();
    EnterIn(table, "Table_GPO(" + std::to_string(step) + ")", "40");
    EXPECT_EQ(CalValues[static_cast<std::size_t>(260 + step)], 0) << "stored before it is accepted";
    CalChanged = false;
  });
  AfterFrames(40, [&] {
    for (int cell = 1; cell <= 3; ++cell) {
      EXPECT_EQ(InUnit(243 + cell), 102);
      EXPECT_EQ(CalValues[static_cast<std::size_t>(260 + cell)], 40);
      EXPECT_EQ(ShownText(table, "Table_GPO(" + std::to_string(cell) + ")"), "40");
    }
    EXPECT_TRUE(CalChanged);
  });
  Run();
  EXPECT_EQ(step, 4);
  EXPECT_TRUE(savedata());
  for (std::size_t byte = 244; byte <= 246; ++byte) EXPECT_EQ(BinImage[byte], 102);
}

TEST_F(OnflyEditing, ARefusedGpoCellKeepsItsValue) {
  GoTo("GPO_Ctl");
  const int before = InUnit(244);
  int step = 0;
  Every20Ms([&] {
    if (step == 0 && Idle()) {
      device->Fail("refuse:1:1");
      EnterIn(GpoCtl().screen, "Table_GPO(1)", "40");
      step = 1;
    } else if (step == 1 && frmerr.visible) {
      PressKey("Enter");
      EXPECT_EQ(CalValues[261], 0);
      EXPECT_EQ(InUnit(244), before);
      EXPECT_EQ(ShownText(GpoCtl().screen, "Table_GPO(1)"), "0");
      step = 2;
      StopLive();
    }
  });
  Run();
  EXPECT_EQ(step, 2);
}

// ---- a save in between --------------------------------------------------------------------------

TEST_F(OnflyEditing, ASaveBetweenEntryAndSendingLeavesThePostedByte) {
  GoTo("Binj_graph");
  int step = 0;
  Every20Ms([&] {
    if (!Idle() || OnflyByteCount > 0) return;
    if (step++ > 0) return StopLive();
    EnterIn(Editor(), "Text11", "1.2");
    PressKey("Ctrl+S");
    EXPECT_FALSE(CalChanged);
    EXPECT_EQ(BinImage[turnOnByte], 38);
    EXPECT_EQ(InFile(344), 1.5F) << "the unit has not accepted it yet";
  });
  Run();
  EXPECT_EQ(step, 2);
  EXPECT_EQ(InUnit(turnOnByte), 38);
  EXPECT_EQ(CalValues[344], 1.2F);
  EXPECT_TRUE(CalChanged) << "the file has the old value";
}

TEST_F(OnflyEditing, ASaveDuringTheTransferIsFollowedByAChange) {
  GoTo("Binj_graph");
  int step = 0;
  Every20Ms([&] {
    if (step == 0 && Idle()) {
      device->Fail("slow:100");
      EnterIn(Editor(), "Text11", "1.2");
      step = 1;
    } else if (step == 1 && Seen("Status") == "ONFLY ACTIVE") {
      PressKey("Ctrl+S");
      EXPECT_FALSE(CalChanged);
      EXPECT_EQ(CalValues[344], 1.5F);
      step = 2;
    } else if (step == 2 && Idle()) {
      StopLive();
    }
  });
  Run();
  EXPECT_EQ(step, 2);
  EXPECT_EQ(InUnit(turnOnByte), 38);
  EXPECT_EQ(CalValues[344], 1.2F);
  EXPECT_EQ(InFile(344), 1.5F);
  EXPECT_TRUE(CalChanged);
}

// ---- the end of the session ---------------------------------------------------------------------

TEST_F(OnflyEditing, AnEntryThatIsNotSentAnyMoreIsToldOf) {
  struct Way {
    const char* name;
    void (*leave)();
    const char* top;
  };
  for (const Way& way : {Way{"EXIT", [] { ClickOn(Monitor3, "Command1"); }, "CSForm1"},
                         Way{"Esc",
                             [] {
                               ActivateScreen(Monitor3);
                               PressKey("Esc");
                             },
                             "CSForm1"},
                         Way{"unloaded", [] { UnloadNamed("Monitor3"); }, "Binj_graph"}}) {
    SCOPED_TRACE(way.name);
    GoTo("Binj_graph");
    const int before = InUnit(turnOnByte);
    const int timer = StartTimer(20, [&] {
      if (!Idle() || OnflyByteCount > 0) return;
      EnterIn(Editor(), "Text11", "1.2");
      way.leave();
    });
    Run();
    StopTimer(timer);
    ASSERT_TRUE(frmerr.visible);
    EXPECT_EQ(ShownText(frmerr, "Label1"), " DATA NOT ACCEPTED");
    PressKey("Enter");
    RunPending();
    EXPECT_FALSE(frmerr.loaded);
    EXPECT_EQ(Top(), way.top);
    if (Editor().loaded) EXPECT_EQ(ShownText(Editor(), "Text11"), "1.50000");
    EXPECT_EQ(CalValues[344], 1.5F);
    EXPECT_EQ(InUnit(turnOnByte), before);
    ExpectReleased();
  }
}

TEST_F(OnflyEditing, AValueThatIsTypedAndNotEnteredKeepsItsEditorWhenTheMonitorIsLeft) {
  GoTo("frmVETable");
  Screen& table = FrmVETable().screen;
  int step = 0;
  Every20Ms([&] {
    if (!Idle() || step++ > 0) return;
    ClickOn(table, "Table_VE(3)");
    SelectText(At(table, "Table_VE(3)"), 0, 100);
    TypeText("12");
    StopLive();
  });
  Run();
  EXPECT_EQ(Top(), "frmVETable");
  EXPECT_EQ(EntryPending, 1);
  EXPECT_EQ(ShownFocus(), "Table_VE(3)");
  EXPECT_EQ(At(table, "Table_VE(3)").selLength,
            static_cast<int>(At(table, "Table_VE(3)").text.size()));
  TypeText("7");
  PressKey("Enter");
  EXPECT_EQ(CalValues[127], 0.07F) << "the session is over: it goes to the calibration";
  ExpectReleased();
}

TEST_F(OnflyEditing, AnEntryBeforeCtrlZIsToldOfWhileTheUnitIsProgrammed) {
  GoTo("Binj_graph");
  int step = 0;
  Every20Ms([&] {
    if (!Idle()) return;
    if (step++ == 0) {
      EnterIn(Editor(), "Text11", "1.2");
      PressKey("Ctrl+Z");
      return;
    }
    ASSERT_TRUE(frmerr.visible);
    PressKey("Enter");
    EXPECT_FALSE(frmerr.loaded);
    EXPECT_EQ(InUnit(turnOnByte), 48);
    StopLive();
  });
  Run();
  EXPECT_EQ(step, 2);
  EXPECT_EQ(CalValues[344], 1.5F);
  ExpectReleased();
}

// The message stands over nothing that comes back.
TEST_F(OnflyEditing, AFailedSaveAfterCtrlZBringsTheMainMenuBehindTheMessage) {
  GoTo("Binj_graph");
  bool pressed = false;
  Every20Ms([&] {
    if (!Idle() || pressed) return;
    pressed = true;
    EnterIn(Editor(), "Text11", "1.2");
    FailNthWrite(1, FailureDiskFull);
    PressKey("Ctrl+Z");
  });
  Run();
  EXPECT_EQ(TakeBox().title, "Error");
  EXPECT_TRUE(frmerr.visible);
  EXPECT_EQ(Top(), "Form1");
  UnloadScreen(frmerr);
}

TEST_F(OnflyEditing, AProgramThatEndsTellsOfNothing) {
  GoTo("Binj_graph");
  Every20Ms([&] {
    if (!Idle() || ProgramEnding()) return;
    EnterIn(Editor(), "Text11", "1.2");
    EndProgram();
  });
  Run();
  EXPECT_TRUE(ProgramEnding());
  EXPECT_FALSE(frmerr.loaded);
  EXPECT_EQ(OnflyByteCount, 0);
}

TEST_F(OnflyEditing, AnEntryCutOffByTheCableGoesOutAfterTheRetry) {
  GoTo("Binj_graph");
  int step = 0;
  Every20Ms([&] {
    if (step == 0 && Idle()) {
      device->Fail("slow:100");
      EnterIn(Editor(), "Text11", "1.2");
      step = 1;
    } else if (step == 1 && Seen("Status") == "ONFLY ACTIVE") {
      device->Unplug();
      step = 2;
    } else if (step == 2 && helpfrm.visible) {
      PressKey("Ctrl+S");
      device->ClearAll();
      ClickOn(helpfrm, "Command1");
      step = 3;
    } else if (step == 3 && Idle() && OnflyByteCount == 0) {
      StopLive();
      step = 4;
    }
  });
  Run();
  EXPECT_EQ(step, 4);
  EXPECT_FALSE(frmerr.loaded);
  EXPECT_EQ(InUnit(turnOnByte), 38);
  EXPECT_EQ(CalValues[344], 1.2F);
}

// ---- save and program twice ---------------------------------------------------------------------

TEST_F(OnflyEditing, CtrlZAgainWhileTheSessionIsReleasedProgramsOnce) {
  int programmed = 0;
  RegisterScreen("Program_ZEM", [&] {
    ++programmed;
    OpenProgram_ZEM();
  });
  GoTo("Binj_graph");
  int step = 0;
  Every20Ms([&] {
    if (step == 0 && Idle()) {
      device->Fail("silent@F");
      step = 1;
      AfterMs(100, [&] {
        PressKey("Ctrl+Z");
        PressKey("Ctrl+Z");
        EXPECT_TRUE(PortHeld);
        AfterMs(1, [] { PressKey("Ctrl+Z"); });
        device->zem.ClearFaults();
        step = 2;
      });
    } else if (step == 2 && Idle()) {
      EXPECT_EQ(programmed, 1);
      StopLive();
    }
  });
  Run();
  EXPECT_EQ(step, 2);
  EXPECT_EQ(programmed, 1);
  ExpectReleased();
}

// ---- a silent unit ------------------------------------------------------------------------------

TEST_F(OnflyEditing, TheMainMenuKeepsTheModeOfASessionWhoseUnitIsSilent) {
  int step = 0;
  Every20Ms([&] {
    if (step > 0 || !Idle()) return;
    step = 1;
    device->Fail("silent");
    AfterMs(300, [&] {
      GoTo("CSForm1");
      GoTo("Form1");
      EXPECT_EQ(MonitorMode, 3);
      EXPECT_FALSE(ShownEnabled(Form1, "SoftwareTools"));
      GoTo("frmVETable");
      EXPECT_EQ(At(FrmVETable().screen, "Table_VE(1)").backColour, Yellow);
      EnterIn(FrmVETable().screen, "Table_VE(1)", "50");
      EXPECT_EQ(CalValues[125], 0);
      EXPECT_EQ(OnflyCalIndex, 125);
      EXPECT_EQ(OnflyByteCount, 1);
      step = 2;
      StopLive();
    });
  });
  Run();
  EXPECT_EQ(step, 2);
  UnloadScreen(frmerr);
  ExpectReleased();
  LoadScreen(Form1);
  EXPECT_EQ(MonitorMode, 0);
}
