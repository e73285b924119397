// Editing while the engine runs: an editor below the digital monitor, and the simulated unit that
// takes each change; saving and programming from there, over and over.
#include <algorithm>
#include <set>

#include "link/onfly.h"
#include "monitors/onflytest.h"
#include "shell/mainframe.h"

// The injector offset is in the calibration at once, since it goes out as a run-time offset too;
// every other field waits for the unit.
TEST_F(OnflyEditing, ChangesOfBothFieldsArriveInTheUnit) {
  GoTo("Binj_graph");
  int step = 0;
  Every20Ms([&] {
    if (!Idle() || OnflyByteCount > 0) return;
    switch (step++) {
      case 0:
        EXPECT_EQ(At(Editor(), "Text2").backColour, Yellow);
        ClickOn(Editor(), "Text2");
        TypeText("2.5");
        PressKey("Enter");
        EXPECT_EQ(CalValues[2], 2.5F);
        return;
      case 1:
        EXPECT_EQ(InUnit(offsetByte), 20);
        EXPECT_EQ(ShownText(Editor(), "Text2"), "2.500");
        ClickOn(Editor(), "Text11");
        TypeText("1.2");
        PressKey("Enter");
        EXPECT_EQ(CalValues[344], 1.5F);
        return;
      case 2:
        EXPECT_EQ(CalValues[344], 1.2F);
        EXPECT_EQ(InUnit(turnOnByte), 38);
        EXPECT_EQ(ShownText(Editor(), "Text11"), "1.20000");
        ClickOn(Editor(), "Text2");
        TypeText("-3");
        PressKey("Enter");
        return;
      default:
        EXPECT_EQ(CalValues[2], -3);
        EXPECT_EQ(InUnit(offsetByte), 128 | 24);
        StopLive();
    }
  });
  Run();
  EXPECT_EQ(step, 4);
  EXPECT_TRUE(CalChanged);
  ExpectReleased();
}

TEST_F(OnflyEditing, RefusedWriteShowsFrmerrAndLeavesTheOldValue) {
  GoTo("Binj_graph");
  const int before = InUnit(turnOnByte);
  int step = 0;
  Every20Ms([&] {
    if (step == 0 && Idle()) {
      device->Fail("refuse:1:1");
      ClickOn(Editor(), "Text11");
      TypeText("1.2");
      PressKey("Enter");
      step = 1;
    } else if (step == 1 && frmerr.visible) {
      EXPECT_EQ(ShownText(frmerr, "Label1"), " DATA NOT ACCEPTED");
      EXPECT_EQ(ShownText(frmerr, "Command1"), "Please Enter Data Again");
      EXPECT_EQ(CalValues[344], 1.5F);
      EXPECT_EQ(InUnit(turnOnByte), before);
      PressKey("Enter");
      EXPECT_EQ(ShownText(Editor(), "Text11"), "1.50000");
      EXPECT_EQ(ActiveScreen(), &Editor());
      step = 2;
    } else if (step == 2 && Idle()) {
      StopLive();
    }
  });
  Run();
  EXPECT_EQ(step, 2);
  EXPECT_EQ(CalValues[344], 1.5F);
}

TEST_F(OnflyEditing, FieldsAreYellowOnlyDuringTheSession) {
  GoTo("Binj_graph");
  EXPECT_EQ(At(Editor(), "Text11").backColour, SystemWindow);
  Every20Ms([&] {
    if (!Idle()) return;
    EXPECT_EQ(At(Editor(), "Text11").backColour, Yellow);
    EXPECT_EQ(At(Editor(), "Text7").backColour, SystemWindow);
    UnloadNamed("Monitor3");
  });
  Run();
  EXPECT_EQ(Top(), "Binj_graph");
  EXPECT_EQ(At(Editor(), "Text11").backColour, SystemWindow);
}

TEST_F(OnflyEditing, OfTwoQuickEntriesTheLastIsSentAndTheOtherStaysUnchanged) {
  GoTo("frmVETable");
  const int firstBefore = InUnit(118);
  int step = 0;
  Every20Ms([&] {
    if (!Idle() || OnflyByteCount > 0) return;
    if (step++ > 0) return StopLive();
    EnterIn(FrmVETable().screen, "Table_VE(1)", "50");
    EnterIn(FrmVETable().screen, "Table_VE(2)", "20");
    EXPECT_EQ(CalValues[126], 0);
  });
  Run();
  EXPECT_EQ(step, 2);
  EXPECT_EQ(CalValues[125], 0);
  EXPECT_EQ(InUnit(118), firstBefore);
  EXPECT_EQ(CalValues[126], 0.2F);
  EXPECT_EQ(InUnit(119), 127 + 51);
}

TEST_F(OnflyEditing, CWhileATransferRunsChangesTheLoopAtOnceAndIsSentAtTheNextPass) {
  int step = 0;
  Every20Ms([&] {
    if (step == 0 && Idle()) {
      device->Fail("slow:100");
      PostWrite(2, 2.5, offsetByte, 1);
      BinImage[offsetByte] = 20;
      step = 1;
    } else if (step == 1 && Seen("Status") == "ONFLY ACTIVE") {
      device->TakeHistory();
      PressKey("C");
      EXPECT_FALSE(ClosedLoop);
      step = 2;
    } else if (step == 2 && PendEgo == 0) {
      const auto heard = device->TakeHistory();
      const auto end = std::find(heard.begin(), heard.end(), "S9");
      ASSERT_GE(heard.end() - end, 3);
      EXPECT_EQ(std::vector<std::string>(end, end + 3),
                (std::vector<std::string>{"S9", "F", "RU FF"}));
      EXPECT_EQ(CalValues[2], 2.5F);
      step = 3;
      StopLive();
    }
  });
  Run();
  EXPECT_EQ(step, 3);
}

TEST_F(OnflyEditing, CtrlZProgramsTheUnitAndOpensTheMonitorAgain) {
  GoTo("Binj_graph");
  int step = 0;
  Every20Ms([&] {
    if (!Idle()) return;
    if (step++ == 0) {
      ClickOn(Editor(), "Text7");
      TypeText("6500");
      PressKey("Enter");
      PressKey("Ctrl+Z");
      EXPECT_FALSE(Monitor3.loaded);
      EXPECT_FALSE(Editor().loaded);
      return;
    }
    EXPECT_EQ(MonitorMode, 3);
    for (int i = 0; i < 512; ++i) ASSERT_EQ(InUnit(i), BinImage[static_cast<std::size_t>(i)]) << i;
    StopLive();
  });
  Run();
  EXPECT_EQ(step, 2);
  EXPECT_FALSE(CalChanged);
  EXPECT_FALSE(KillFirst);
  ExpectReleased();
  EXPECT_EQ(Top(), "CSForm1");
}

// Each time the stack, the screens, the port and the memory are what they were the time before.
TEST_F(OnflyEditing, CtrlZTwoHundredTimesInARowLeavesNoTrace) {
  device.emplace(sim::ZemSettings{.paced = false});
  int times = 0;
  int opens = 0, closes = 0;
  DeviceNamed("COM1")->opened = [&] { ++opens; };
  DeviceNamed("COM1")->closed = [&] { ++closes; };
  std::set<int> depths;
  std::set<std::ptrdiff_t> stack;
  std::set<std::size_t> screens;
  std::size_t early = 0, late = 0;
  GoTo("Binj_graph");
  Every20Ms([&] {
    if (!Idle()) return;
    if (times == 200) return StopLive();
    if (Top() != "Binj_graph") GoTo("Binj_graph");
    depths.insert(YieldDepth());
    screens.insert(LoadedScreens().size());
    stack.insert(reinterpret_cast<std::ptrdiff_t>(__builtin_frame_address(0)));
    ForgetWritten("COM1");
    if (times == 50) early = AllocatedBytes();
    if (times == 199) late = AllocatedBytes();
    ++times;
    PressKey("Ctrl+Z");
  });
  Run();
  EXPECT_EQ(times, 200);
  EXPECT_EQ(opens, closes);
  EXPECT_EQ(opens, 401);  // monitor and programmer take turns
  EXPECT_EQ(depths, std::set<int>{1});
  EXPECT_LE(screens.size(), 2U);  // the main menu is up the first time
  EXPECT_LE(stack.size(), 2U);    // the first session was opened from the menu
  EXPECT_NEAR(static_cast<double>(late), static_cast<double>(early), 4096);
  ExpectReleased();
}

TEST_F(OnflyEditing, CtrlZDuringAWaitThatHangsEndsItAtOnce) {
  for (const char* fault : {"silent", "silent@F", "silent@P2", "silent@S1", "silent@S9"}) {
    SCOPED_TRACE(fault);
    device.emplace();
    CalValues[2] = 1;
    GoTo("Binj_graph");
    int step = 0;
    std::int64_t pressed = 0, released = 0;
    DeviceNamed("COM1")->closed = [&] {
      if (released == 0) released = NowUs();
    };
    const int timer = StartTimer(20, [&] {
      if (step == 0 && Idle()) {
        device->Fail(fault);
        PostWrite(2, 2.5, offsetByte, 1);
        step = 1;
        AfterMs(700, [&] {
          EXPECT_EQ(released, 0);
          pressed = NowUs();
          step = 2;
          ActivateScreen(Editor());
          PressKey("Ctrl+Z");
          device->zem.ClearFaults();
        });
      } else if (step == 2 && Idle()) {
        StopLive();
      }
    });
    Run();
    StopTimer(timer);
    EXPECT_EQ(step, 2);
    EXPECT_GT(released, pressed);
    EXPECT_LT(released - pressed, 100'000);
    const bool sent = fault == std::string("silent@F");
    EXPECT_EQ(CalValues[2], sent ? 2.5F : 1.0F);
    EXPECT_EQ(frmerr.visible, !sent);
    UnloadScreen(frmerr);
    while (AnyBoxShown()) TakeBox();
    ExpectReleased();
  }
}
