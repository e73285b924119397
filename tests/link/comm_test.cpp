// The serial control, the receive event, the polling wait, the link test and the failure screen.
#include "link/comm.h"

#include <cmath>

#include "platform/frame.h"
#include "platform/headless/script.h"
#include "platform/loop.h"
#include "platform/system.h"
#include "support/headless/linktest.h"
#include "support/headless/zemdevice.h"

namespace {

// ---- threshold and input ------------------------------------------------------------------------

TEST_F(LinkTest, EventFiresOnceWhenTheThresholdIsReached) {
  ASSERT_TRUE(OpenCommPort(27, 0));
  for (int i = 0; i < 26; ++i) Arrive(Bytes{static_cast<std::uint8_t>(i)});
  EXPECT_TRUE(RxBuffer.empty());
  Arrive(Bytes{26});
  ASSERT_EQ(RxBuffer.size(), 27u);
  EXPECT_EQ(RxBuffer[0], 0);
  EXPECT_EQ(RxBuffer[26], 26);
  EXPECT_EQ(MSComm1.CommEvent, CommEvReceive);
}

TEST_F(LinkTest, LateByteFiresNothingAndStandsInFrontOfTheNextReply) {
  ASSERT_TRUE(OpenCommPort(27, 0));
  Arrive(Bytes(27, 1));
  RxBuffer.clear();
  Arrive(Bytes{99});
  EXPECT_TRUE(RxBuffer.empty());
  for (int i = 0; i < 26; ++i) Arrive(Bytes{2});
  ASSERT_EQ(RxBuffer.size(), 27u);
  EXPECT_EQ(RxBuffer[0], 99);
  EXPECT_EQ(RxBuffer[26], 2);
  RxBuffer.clear();
  Arrive(Bytes{2});
  EXPECT_TRUE(RxBuffer.empty()) << "the last byte of the reply waits for the next threshold";
}

TEST_F(LinkTest, NextInputReplacesWhatWasThere) {
  ASSERT_TRUE(OpenCommPort(2, 0));
  Arrive("AX");
  Arrive("PN");
  EXPECT_EQ(RxBuffer, BytesOf("PN"));
}

TEST_F(LinkTest, OneArrivalIsOneEventAndInputLengthZeroTakesAll) {
  ASSERT_TRUE(OpenCommPort(2, 0));
  Arrive("PNPC");
  EXPECT_EQ(RxBuffer, BytesOf("PNPC"));
  EXPECT_TRUE(MSComm1.unread.empty());
}

TEST_F(LinkTest, InputLengthLeavesTheRestForTheNextEvent) {
  ASSERT_TRUE(OpenCommPort(1, 2));
  Arrive("AXY");
  EXPECT_EQ(RxBuffer, BytesOf("AX"));
  EXPECT_EQ(MSComm1.unread.size(), 1u);
  Arrive("Z");
  EXPECT_EQ(RxBuffer, BytesOf("YZ"));
}

TEST_F(LinkTest, LoweredThresholdTakesStaleBytesWithTheNextArrival) {
  ASSERT_TRUE(OpenCommPort(27, 0));
  Arrive("abcde");
  MSComm1.RThreshold = 2;
  Yield();
  EXPECT_TRUE(RxBuffer.empty()) << "a changed threshold is no arrival";
  Arrive("A");
  EXPECT_EQ(RxBuffer, BytesOf("abcdeA"));
}

TEST_F(LinkTest, ThresholdZeroNeverFires) {
  ASSERT_TRUE(OpenCommPort(0, 0));
  Arrive("AX");
  EXPECT_TRUE(RxBuffer.empty());
}

TEST_F(LinkTest, OpeningAgainForgetsWhatWasUnread) {
  ASSERT_TRUE(OpenCommPort(27, 0));
  Arrive("stale");
  ASSERT_TRUE(OpenCommPort(2, 0));
  Arrive("AX");
  EXPECT_EQ(RxBuffer, BytesOf("AX"));
}

TEST_F(LinkTest, InputOverflowIsToldAndKeepsTheFirstBytes) {
  Frame frame{.statusPanels = {"", ""}};
  ShowFrame(frame);
  ASSERT_TRUE(OpenCommPort(0, 0));
  Arrive(Bytes(1024, 7));
  EXPECT_EQ(frame.statusPanels[0], "");
  Arrive(Bytes{8});
  EXPECT_EQ(frame.statusPanels[0], "Status: Receive Buffer Overflow");
  EXPECT_EQ(MSComm1.unread.size(), 1024u);
  EXPECT_EQ(MSComm1.unread.back(), 7);
  CloseFrame(frame);
}

TEST_F(LinkTest, OutputSendsEachCharacterAsOneByte) {
  ASSERT_TRUE(OpenCommPort(2, 0));
  for (int byte = 0; byte < 256; ++byte) MSComm1.OutputByte(byte);
  const Bytes sent = WrittenTo("COM1");
  ASSERT_EQ(sent.size(), 256u);
  for (std::size_t i = 0; i < 256; ++i) EXPECT_EQ(sent[i], i);
}

TEST_F(LinkTest, OutputOnAClosedPortDoesNothing) {
  MSComm1.Output("E");
  EXPECT_EQ(Sent(), "");
}

// ---- events -------------------------------------------------------------------------------------

TEST_F(LinkTest, EventTextsStandInTheFirstPanel) {
  struct Row {
    int event;
    std::string text;
  };
  const Row rows[] = {{3, "Change in CTS Detected"},
                      {4, "Change in DSR Detected"},
                      {5, "Change in CD Detected"},
                      {6, "The Phone is Ringing"},
                      {1001, "Break Received"},
                      {1002, "CTS Timeout"},
                      {1003, "DSR Timeout"},
                      {1004, "Framing Error"},
                      {1006, "Overrun Error"},
                      {1007, "Carrier Detect Timeout"},
                      {1008, "Receive Buffer Overflow"},
                      {1009, "Parity Error"},
                      {1010, "Transmit Buffer Full"},
                      {1011, "Error retrieving DCB"},
                      {1005, "Unknown error or event"},
                      {0, "Unknown error or event"},
                      {8, "Unknown error or event"}};
  Frame frame{.statusPanels = {"first", "1"}};
  ShowFrame(frame);
  for (const Row& row : rows) {
    MSComm1.CommEvent = row.event;
    MSComm1_OnComm();
    EXPECT_EQ(frame.statusPanels[0], "Status: " + row.text) << row.event;
  }
  EXPECT_EQ(frame.statusPanels[1], "1");
  CloseFrame(frame);
}

TEST_F(LinkTest, SendAndEndOfFileEventsSayNothing) {
  Frame frame{.statusPanels = {"first", "1"}};
  ShowFrame(frame);
  for (int event : {CommEvSend, CommEvEndOfFile}) {
    MSComm1.CommEvent = event;
    MSComm1_OnComm();
    EXPECT_EQ(frame.statusPanels[0], "first");
  }
  EXPECT_TRUE(RxBuffer.empty());
  CloseFrame(frame);
}

TEST_F(LinkTest, LineEventOfTheDeviceIsToldAndStopsNothing) {
  Frame frame{.statusPanels = {"", ""}};
  ShowFrame(frame);
  ASSERT_TRUE(OpenCommPort(2, 0));
  DeliverLineEvent("COM1", 1004);
  Yield();
  EXPECT_EQ(frame.statusPanels[0], "Status: Framing Error");
  Arrive("AX");
  EXPECT_EQ(RxBuffer, BytesOf("AX"));
  CloseFrame(frame);
}

TEST_F(LinkTest, UnpluggedDeviceIsToldOnceAndKeepsThePortToClose) {
  Frame frame{.statusPanels = {"", ""}};
  ShowFrame(frame);
  ASSERT_TRUE(OpenCommPort(2, 0));
  EXPECT_FALSE(LinkLost());
  DeviceNamed("COM1")->gone = true;
  Yield();
  EXPECT_TRUE(LinkLost());
  EXPECT_TRUE(MSComm1.PortOpen);
  EXPECT_EQ(frame.statusPanels[0], "Status: COM1 has been unplugged.");
  EXPECT_EQ(PortTrouble, "COM1 has been unplugged.");
  SetStatusPanel(frame, 0, "other");
  MSComm1.Output("E");
  Yield();
  EXPECT_EQ(frame.statusPanels[0], "other");
  MSComm1.Close();
  EXPECT_FALSE(DeviceIsOpen("COM1"));
  CloseFrame(frame);
}

// ---- the polling wait ---------------------------------------------------------------------------

struct LimitCase {
  WaitRule rule;
  std::int64_t passes;
};

class WaitLimit : public LinkTest, public ::testing::WithParamInterface<LimitCase> {};

TEST_P(WaitLimit, TimesOutAfterExactlySoManyPasses) {
  ASSERT_TRUE(OpenCommPort(2, 0));
  const std::int64_t before = PassCount();
  EXPECT_EQ(PollingWait(GetParam().rule), WaitEnd::TimeOut);
  EXPECT_EQ(PassCount() - before, GetParam().passes);
  EXPECT_GE(WaitCount, GetParam().rule.limit);
}

// A tenth is no single: the sum of so many of them reaches the limit a little later than ten times
// the limit.
INSTANTIATE_TEST_SUITE_P(Rules, WaitLimit,
                         ::testing::Values(LimitCase{WaitForLinkTest, 328578},
                                           LimitCase{WaitForOffset, 327905},
                                           LimitCase{WaitForFrame, 32720},
                                           LimitCase{WaitForOnflyFrame, 32767},
                                           LimitCase{{10000, 1, WaitTest::Equal}, 10000},
                                           LimitCase{{32721, 1, WaitTest::Equal}, 32721}));

TEST_F(LinkTest, EqualityWithStepsOfATenthNeverLands) {
  for (float limit : {32766.0F, 32721.0F, 32745.0F}) {
    float count = 0;
    bool landed = false;
    for (float before = -1; count != before && !landed;) {
      before = count;
      count = static_cast<float>(count + 0.1);
      landed = count == limit;
    }
    EXPECT_FALSE(landed) << limit;
  }
}

TEST_F(LinkTest, WaitEndsInThePassThatBringsTheReply) {
  ASSERT_TRUE(OpenCommPort(2, 0));
  DeliverAt("COM1", NowUs() + 10 * PassMicroseconds, BytesOf("AX"));
  EXPECT_EQ(PollingWait(WaitForFrame), WaitEnd::Reply);
  EXPECT_EQ(WaitCount, 10);
}

TEST_F(LinkTest, ReplyInTheLastPassCounts) {
  ASSERT_TRUE(OpenCommPort(2, 0));
  DeliverAt("COM1", NowUs() + 32720 * PassMicroseconds, BytesOf("AX"));
  EXPECT_EQ(PollingWait(WaitForFrame), WaitEnd::Reply);
  EXPECT_EQ(WaitCount, 32720);
}

TEST_F(LinkTest, WaitEndsWhenTheUserLeaves) {
  ASSERT_TRUE(OpenCommPort(2, 0));
  AfterMs(5, [] { MonitorStop = 1; });
  EXPECT_EQ(PollingWait(WaitForOffset, LoopMustEnd), WaitEnd::Left);
  EXPECT_LE(NowUs(), 5100);
}

TEST_F(LinkTest, WaitThatDoesNotAskForTheUserGoesOn) {
  ASSERT_TRUE(OpenCommPort(2, 0));
  MonitorStop = 1;
  EXPECT_EQ(PollingWait({100, 1, WaitTest::Equal}), WaitEnd::TimeOut);
}

TEST_F(LinkTest, WaitEndsWhenThePortGoesClosesOrTheProgramEnds) {
  ASSERT_TRUE(OpenCommPort(2, 0));
  AfterMs(5, [] { DeviceNamed("COM1")->gone = true; });
  EXPECT_EQ(PollingWait(WaitForOffset), WaitEnd::Left);
  DeviceNamed("COM1")->gone = false;
  ASSERT_TRUE(OpenCommPort(2, 0));
  AfterMs(5, [] { MSComm1.Close(); });
  EXPECT_EQ(PollingWait(WaitForOffset), WaitEnd::Left);
  ASSERT_TRUE(OpenCommPort(2, 0));
  AfterMs(5, [] { EndProgram(); });
  EXPECT_EQ(PollingWait(WaitForOffset), WaitEnd::Left);
}

// ---- ZEMLive ------------------------------------------------------------------------------------

TEST_F(LinkTest, ZemLiveFindsAUnitAndLeavesThePortOpen) {
  AnswerWith("AX");
  EXPECT_TRUE(ZEMLive());
  EXPECT_EQ(Sent(), "E");
  EXPECT_TRUE(MSComm1.PortOpen);
  EXPECT_EQ(MSComm1.Settings, "9600,N,8,1");
  EXPECT_EQ(MSComm1.RThreshold, 1);
  EXPECT_EQ(MSComm1.InputLen, 2);
  EXPECT_TRUE(MSComm1.unread.empty());
}

TEST_F(LinkTest, ZemLiveSeesBothBytesHoweverFarApart) {
  for (std::int64_t gapUs : {0, 30, 1042, 16000, 500000}) {
    AnswerWith("AX", 1000, gapUs);
    EXPECT_TRUE(ZEMLive()) << gapUs;
    EXPECT_TRUE(MSComm1.unread.empty()) << gapUs;
    MSComm1.Close();
  }
}

TEST_F(LinkTest, ZemLiveTakesAReplyThatComesInOneArrival) {
  DeviceNamed("COM1")->written = [](std::span<const std::uint8_t>, std::int64_t nowUs) {
    DeliverAt("COM1", nowUs + 10000, {'A', 'X'});
  };
  EXPECT_TRUE(ZEMLive());
}

TEST_F(LinkTest, ZemLiveOnAnOpenPortSendsNothing) {
  ASSERT_TRUE(OpenCommPort(27, 0));
  EXPECT_TRUE(ZEMLive());
  EXPECT_EQ(Sent(), "");
  EXPECT_EQ(MSComm1.RThreshold, 27);
}

TEST_F(LinkTest, ZemLiveUsesThePortOfTheSetting) {
  SaveSetting("Options", "Comport", "3");
  SetDeviceOfPort(3, "elsewhere");
  AddDevice("elsewhere", {});
  DeviceNamed("elsewhere")->written = [](std::span<const std::uint8_t>, std::int64_t nowUs) {
    DeliverAt("elsewhere", nowUs + 1000, {'A', 'X'});
  };
  EXPECT_TRUE(ZEMLive());
  EXPECT_EQ(MSComm1.CommPort, 3);
  EXPECT_TRUE(DeviceIsOpen("elsewhere"));
}

TEST_F(LinkTest, ZemLiveTellsOfAnOldPromWithThePortClosed) {
  AnswerWith("AV");
  bool openInTheBox = true;
  WhileNextBoxIsOpen([&] { openInTheBox = MSComm1.PortOpen; });
  EXPECT_FALSE(ZEMLive());
  const ShownBox box = TakeBox();
  EXPECT_EQ(box.title, "INVALID PROM ERROR");
  EXPECT_EQ(box.text,
            " SOFTWARE CONFIGUATION ERROR\n\r"
            " You may have the Incorrect PROM Version Installed.\n\r"
            "\n\r"
            " PROM Version HV201xx or Greater Required.");
  EXPECT_FALSE(openInTheBox);
  EXPECT_FALSE(DeviceIsOpen("COM1"));
}

TEST_F(LinkTest, ZemLiveGivesUpOnSilenceAfterItsLimit) {
  EXPECT_FALSE(ZEMLive());
  EXPECT_GE(WaitCount, 32767);
  EXPECT_FALSE(DeviceIsOpen("COM1"));
  EXPECT_EQ(PortTrouble, "");
}

TEST_F(LinkTest, ZemLiveIsNotFooledByGarbageOrHalfAReply) {
  for (const char* reply : {"B", "XA", "xAX", "A"}) {
    AnswerWith(reply);
    EXPECT_FALSE(ZEMLive()) << reply;
    EXPECT_FALSE(DeviceIsOpen("COM1")) << reply;
  }
}

TEST_F(LinkTest, ZemLiveSaysWhyThePortCannotOpen) {
  DeviceNamed("COM1")->refusal = "No permission to use COM1. Join the group dialout.";
  EXPECT_FALSE(ZEMLive());
  EXPECT_EQ(PortTrouble, "No permission to use COM1. Join the group dialout.");
  EXPECT_FALSE(MSComm1.PortOpen);
  EXPECT_EQ(Sent(), "");
}

TEST_F(LinkTest, ZemLiveEndsAtOnceWhenTheDeviceIsPulled) {
  AfterMs(20, [] { DeviceNamed("COM1")->gone = true; });
  EXPECT_FALSE(ZEMLive());
  EXPECT_LE(NowUs(), 21000);
  EXPECT_FALSE(MSComm1.PortOpen);
}

TEST_F(LinkTest, ZemLiveFindsTheSimulatedUnit) {
  ZemDevice device;
  EXPECT_TRUE(ZEMLive());
  EXPECT_EQ(device.TakeHistory(), std::vector<std::string>{"E"});
  // "E" and its answer at 9600 baud, within a pass or the pause.
  EXPECT_LE(NowUs(), 5200);
}

// ---- ComErrorDialog -----------------------------------------------------------------------------

TEST_F(LinkTest, ComErrorDialogShowsTheNumberAndWaitsForRetry) {
  CommError = 7;
  DialogChoice = 2;
  int choiceWhileOpen = -1;
  AfterMs(10, [&] {
    choiceWhileOpen = DialogChoice;
    EXPECT_EQ(helpfrm.title, "Halvane2  -  COM ERROR  7");
    EXPECT_FALSE(ShownVisible(helpfrm, "Reason"));
    EXPECT_EQ(ShownFocus(), "Command1");
    ClickOn(helpfrm, "Command1");
  });
  ComErrorDialog();
  EXPECT_EQ(choiceWhileOpen, 0);
  EXPECT_EQ(DialogChoice, 7);
  EXPECT_FALSE(helpfrm.loaded);
}

TEST_F(LinkTest, ComErrorDialogCancelsByButtonEscapeAndCloseBox) {
  const std::function<void()> ways[] = {[] { ClickOn(helpfrm, "Command2"); },
                                        [] { PressKey("Esc"); }, [] { CloseByUser(helpfrm); },
                                        [] { UnloadAllScreens(); }, [] { EndProgram(); }};
  for (const auto& way : ways) {
    AfterMs(10, way);
    ComErrorDialog();
    EXPECT_EQ(DialogChoice, 2);
    EXPECT_FALSE(helpfrm.loaded);
  }
}

TEST_F(LinkTest, ComErrorDialogRefreshesTheStatusLineWithEachAnswer) {
  static int refreshed = 0;
  auto former = std::exchange(RefreshStatusLine, [] { ++refreshed; });
  for (const char* button : {"Command1", "Command2"}) {
    AfterMs(10, [=] { ClickOn(helpfrm, button); });
    ComErrorDialog();
  }
  EXPECT_EQ(refreshed, 2);
  RefreshStatusLine = former;
}

TEST_F(LinkTest, ComErrorDialogShowsTheWaitCountOfAProgrammingAsASingle) {
  CommError = 12.3F;
  AfterMs(10, [] {
    EXPECT_EQ(helpfrm.title, "Halvane2  -  COM ERROR  12.3");
    ClickOn(helpfrm, "Command2");
  });
  ComErrorDialog();
}

TEST_F(LinkTest, ComErrorDialogGivesTheReasonOfThePortInWords) {
  PortTrouble = "There is no device COM1.";
  AfterMs(10, [] {
    EXPECT_EQ(ShownText(helpfrm, "Reason"), "There is no device COM1.");
    EXPECT_TRUE(ShownVisible(helpfrm, "Reason"));
    ClickOn(helpfrm, "Command2");
  });
  ComErrorDialog();
}

TEST_F(LinkTest, ComErrorDialogFlipsItsPages) {
  const std::string pageOne =
      " This error is caused by a failure of the PC to communicate with the ZEM Unit.  Two "
      "conditions must\n\r"
      "  be examined to determine the cause:\n\r"
      "  1). Computer always displays COM or DEVICE I/O ERROR.\n\r"
      "       This may be caused by any of the following conditions:\n\r"
      "       a. ZEM not powered by at least 10 volts.\n\r"
      "       b. Communication cable disconnected or broken:\n\r"
      "           Check the hookup.\n\r"
      "               DB25-(white-3,red-2,black-7,jump 4-5)\n\r"
      "               DB9 -(white-2,red-3,black-5,jump 7-8)\n\r"
      "               ZEM -(white-TXD,red-RXD,black-GND\n\r"
      "       c. Serial port not configured as COM1 or 2, or no serial port.\n\r"
      "       d. Other Programs are currently using the same COM Port\n\r"
      "       e. Incompatible ground on ZEM or computer.  Try a 3 to 2 prong adapter on the "
      "computer or\n\r"
      "           ground the engine.\n\r"
      "       f. Computer has old +12v, -12v RS232 port that is incompatible with the 0 to 5 volt "
      "serial\n\r"
      "           data that ZEM uses.";
  const std::string pageTwo =
      "   2). Computer was communicating but failed while it was running.\n\r"
      "       This is usually caused by battery supply or noise problems:\n\r"
      "       a. Starter motor is poorly grounded back to battery causing excessive ground voltage "
      "at\n\r"
      "           the engine.\n\r"
      "       b. Sparkplug wires are too low resistance (5000 ohm per/foot minimum) causing "
      "excess\n\r"
      "           radiated interference.\n\r"
      "       c. Discharged, old or broken battery.  Intermittent or weak plates cause the voltage "
      "to drop\n\r"
      "           out intermittently forcing the ZEM into reset.\n\r"
      "       d. Other motors or solenoids running cause voltage spikes on the 12-volt battery "
      "supply.\n\r"
      "           Try separating circuits and switches; run relays and dedicated lines.\n\r"
      "       e. Alternator generates excessive noise.  Brushes and field controls on alternators "
      "generate\n\r"
      "           radiated interference.  Try disconnecting the alternator. Add filter "
      "capacitors\n\r"
      "           (20,000 MFD, 20 WVDC minimum).";
  AfterMs(10, [&] {
    EXPECT_EQ(At(helpfrm, "Command1").caption, "Retry COM Port");
    EXPECT_EQ(At(helpfrm, "Command2").caption, "Cancel Session");
    EXPECT_EQ(At(helpfrm, "Command3").caption, "View Page Two");
    EXPECT_EQ(At(helpfrm, "Label1").caption, pageOne);
    ClickOn(helpfrm, "Command3");
    EXPECT_EQ(At(helpfrm, "Label1").caption, pageTwo);
    ClickOn(helpfrm, "Command3");
    EXPECT_EQ(At(helpfrm, "Label1").caption, pageOne);
    EXPECT_EQ(DialogChoice, 0);
    ClickOn(helpfrm, "Command2");
  });
  ComErrorDialog();
}

TEST_F(LinkTest, RefusedWriteScreenClosesByItsButton) {
  ShowScreen(frmerr);
  EXPECT_EQ(ShownText(frmerr, "Label1"), " DATA NOT ACCEPTED");
  EXPECT_EQ(At(frmerr, "Command1").caption, "Please Enter Data Again");
  ClickOn(frmerr, "Command1");
  EXPECT_FALSE(frmerr.loaded);
}

TEST_F(LinkTest, ResetClosesThePortAndPutsStartValuesBack) {
  ASSERT_TRUE(OpenCommPort(2, 0));
  RxBuffer = {1};
  WaitCount = CommError = OnflyFault = 5;
  PortHeld = true;
  MonitorStop = DialogChoice = 1;
  PortTrouble = "x";
  ResetLinkState();
  EXPECT_FALSE(DeviceIsOpen("COM1"));
  EXPECT_FALSE(MSComm1.PortOpen);
  EXPECT_TRUE(RxBuffer.empty());
  EXPECT_EQ(WaitCount + CommError + OnflyFault, 0);
  EXPECT_FALSE(PortHeld);
  EXPECT_EQ(MonitorStop + DialogChoice, 0);
  EXPECT_EQ(PortTrouble, "");
}

}  // namespace
