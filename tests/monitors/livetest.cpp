// The fixture of the monitors' tests.
#include "monitors/livetest.h"

#include <malloc.h>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "core/numbers.h"
#include "editors/editors.h"
#include "link/comm.h"
#include "link/onfly.h"
#include "monitors/monitors.h"
#include "platform/loop.h"
#include "shell/mainframe.h"
#include "shell/navigation.h"
#include "support/programtest.h"

#if defined(__SANITIZE_ADDRESS__)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
std::size_t AllocatedBytes() { return __sanitizer_get_current_allocated_bytes(); }
#else
std::size_t AllocatedBytes() { return mallinfo2().uordblks; }
#endif

// ---- the unit -----------------------------------------------------------------------------------

namespace {

std::size_t LengthOf(const std::string& part) {
  if (part[0] == 'R') return 3;
  if (part[0] == 'P') return 2;
  if (part[0] != 'S') return 1;
  if (part.size() < 4) return 4;
  return 4 + 2 * std::stoul(part.substr(2, 2), nullptr, 16);
}

std::string NameOf(const std::string& part) {
  if (part[0] != 'R') return part;
  return part.substr(0, 2) + HexText(static_cast<std::uint8_t>(part[2]), 2);
}

std::vector<std::uint8_t> Bytes(std::string_view text) { return {text.begin(), text.end()}; }

}  // namespace

void ScriptedUnit::Answer(std::vector<std::uint8_t> bytes) {
  DeliverAt("COM1", NowUs(), std::move(bytes));
}

void ScriptedUnit::Hear(std::uint8_t byte) {
  part_ += static_cast<char>(byte);
  if (part_.size() < LengthOf(part_)) return;
  const std::string command = NameOf(part_);
  part_.clear();
  Heard(command);
}

void ScriptedUnit::Heard(const std::string& command) {
  if (command == "F") {
    ++frames;
    if (onFrame) onFrame();
  } else {
    heard.push_back(command);
  }
  if (mute && mute(command)) return;
  switch (command[0]) {
    case 'F':
      return Answer({frame.begin(), frame.end()});
    case 'B':
      if (!program.empty()) Answer(Bytes(program));
      return;
    case 'G':
      return Answer(Bytes("S113B600" + HexText(static_cast<unsigned>(optionFlags), 2) +
                          std::string(30, '0') + "00\r"));
    case 'R':
    case 'P':
      return Answer(Bytes(command.starts_with(wrongSecond) && !wrongSecond.empty() ? "AV" : "AX"));
    case 'S':
      return Answer(Bytes(command[1] == '9' ? memoryAnswer : "PN"));
    default:
      return;
  }
}

std::string ScriptedUnit::TakeHeard() {
  std::string all;
  for (const std::string& command : heard) all += (all.empty() ? "" : " ") + command;
  heard.clear();
  return all;
}

// ---- the fixture --------------------------------------------------------------------------------

void LiveTest::SetUp() {
  PlatformTest::SetUp();
  ResetProgram();
  RegisterShellScreens();
  RegisterEditors();
  RegisterMonitors();
  Connect();
  Main();
  RunPending();
  CalValues[217] = 8;
  CalValues[233] = 1;
  CalValues[467] = 8;
  CalValues[474] = 30;
}

void LiveTest::TearDown() {
  ResetLinkState();
  PlatformTest::TearDown();
  ResetCalibrationState();
}

void LiveTest::Connect() {
  FakeDevice device;
  device.written = [this](std::span<const std::uint8_t> bytes, std::int64_t) {
    for (std::uint8_t byte : bytes) unit.Hear(byte);
  };
  AddDevice("COM1", std::move(device));
}

LiveFrame LiveTest::KnownFrame() {
  LiveFrame frame{};
  frame[0] = 11;
  frame[1] = 184;  // 3000: Int(4449.46)
  frame[2] = 85;   // 20 deg
  frame[3] = 200;  // 81.88 kPa
  frame[4] = 100;  // CLT
  frame[5] = 64;   // (128 + 64 + 192) / 256 = 1.5
  frame[6] = 64;
  frame[7] = 51;    // 20 %
  frame[8] = 150;   // MAT
  frame[9] = 64;    // 1.25 V
  frame[10] = 205;  // 13.82 V
  frame[12] = 51;   // 20 %
  frame[13] = 4;    // 10 ms of TOG
  frame[14] = 226;
  frame[15] = 127;  // 14.64
  frame[16] = 127;
  frame[17] = 51;   // 20 %
  frame[18] = 117;  // 15.24
  frame[19] = 117;
  frame[20] = 153;  // 3.0 V
  frame[22] = 51;   // 1 V
  frame[25] = 2;    // 625: 5 ms
  frame[26] = 113;
  return frame;
}

void LiveTest::AfterFrames(int frames, std::function<void()> routine) {
  plan_.emplace_back(frames, std::move(routine));
}

void LiveTest::Run(std::string_view monitor) {
  auto before = unit.onFrame;
  unit.onFrame = [this, before] {
    if (before) before();
    for (auto& [frames, routine] : plan_)
      if (frames == unit.frames) AtUs(NowUs(), routine);
  };
  auto over = std::make_shared<bool>(false);
  AfterMs(600'000, [over] {
    if (*over) return;
    ADD_FAILURE() << "the session does not end";
    StopLive();
    if (helpfrm.loaded) UnloadScreen(helpfrm);
  });
  OpenLive(monitor);
  RunPending();
  *over = true;
  plan_.clear();
  unit.onFrame = before;
}

void LiveTest::ExpectReleased() {
  EXPECT_FALSE(DeviceIsOpen("COM1"));
  EXPECT_FALSE(MSComm1.PortOpen);
  EXPECT_FALSE(PortHeld);
  EXPECT_EQ(MonitorMode, 0);
  EXPECT_EQ(CommError, 0);
  EXPECT_EQ(MonitorStop, 1);
  EXPECT_FALSE(Monitor3.loaded);
  EXPECT_FALSE(Monitor3Help.loaded);
  EXPECT_EQ(YieldDepth(), 0);
  EXPECT_EQ(OnflyByteCount, 0);
  EXPECT_TRUE(ClosedLoop);
  if (frmMain.shown) {
    EXPECT_EQ(FindMenu(frmMain, "mnuname")->caption, EditModeLine);
  }
}
