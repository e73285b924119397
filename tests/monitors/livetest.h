// A started program with a calibration, and a control unit of few words in COM1: what the tests of
// the monitors share. A session runs inside Run(); what happens during it is planned before.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "link/liveframe.h"
#include "monitors/monitor3.h"
#include "platform/headless/script.h"
#include "support/user.h"

// Answers every command at once and always the same, and writes down what it hears.
struct ScriptedUnit {
  LiveFrame frame{};
  int optionFlags = 0xF8;
  std::string memoryAnswer = "PC";                     // to the S9 record
  std::function<void()> onFrame;                       // as "F" is heard, before the answer
  std::function<bool(std::string_view command)> mute;  // no answer to this one
  std::string wrongSecond;                             // commands answered with "A" and "V"
  std::string program;  // the 19 bytes that answer "B"; silent when empty
  int frames = 0;
  // "RU00 G C R300 R400 R600 R700 RO00", without "F".
  std::vector<std::string> heard;
  std::string TakeHeard();  // with blanks between

  void Hear(std::uint8_t byte);

 private:
  void Heard(const std::string& command);
  void Answer(std::vector<std::uint8_t> bytes);
  std::string part_;
};

class LiveTest : public PlatformTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Opens the monitor as the menus do and returns when its session is over. Without a plan that
  // ends it, it is left after ten minutes and the test has failed.
  void Run(std::string_view monitor = "Monitor3");
  // At a time of the session, in one of its yields.
  void AfterFrames(int frames, std::function<void()> routine);
  static std::string Seen(std::string_view control) { return ShownText(Monitor3, control); }
  static std::string Top() { return TopWorkScreen() ? TopWorkScreen()->name : ""; }
  // What must be true once a session is over.
  static void ExpectReleased();
  void Connect();
  // 4,449 rev/min, so that one injection of all takes 4 * 3.37 ms.
  static LiveFrame KnownFrame();

  ScriptedUnit unit;
  std::string opening = "RU00 G C R300 R400 R600 R700 RO00";

 private:
  std::vector<std::pair<int, std::function<void()>>> plan_;
};

// Bytes on the heap that are in use.
std::size_t AllocatedBytes();
