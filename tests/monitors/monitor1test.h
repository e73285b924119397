// A session of the analog monitor: what its tests share.
#pragma once

#include <functional>
#include <string>

#include "monitors/livetest.h"
#include "monitors/monitor1.h"
#include "monitors/monitor1entry.h"
#include "platform/dialogs.h"

class Monitor1Test : public LiveTest {
 protected:
  void SetUp() override {
    LiveTest::SetUp();
    unit.frame = KnownFrame();
    unit.program = Program("STREET", "20105");
  }
  void TearDown() override {
    EXPECT_FALSE(Monitor1.loaded);
    EXPECT_FALSE(Monitor1Help.loaded);
    EXPECT_FALSE(MonitorInputError.loaded);
    LiveTest::TearDown();
  }
  // An answer to "B".
  static std::string Program(std::string name, std::string version) {
    name.resize(13, '\0');
    version.resize(5, '\0');
    return "B" + name + version;
  }
  static std::string Shown(std::string_view control) { return ShownText(Monitor1, control); }
  // Runs the session, works it once frames are shown, and leaves it after so long.
  void Work(std::function<void()> routine, double milliseconds = 100) {
    AfterFrames(4, [this, milliseconds, routine = std::move(routine)] {
      AfterMs(30, [this, milliseconds, routine] {
        unit.TakeHeard();
        routine();
        AfterMs(milliseconds, [] { StopLive(); });
      });
    });
    Run("Monitor1");
  }
  // Runs another routine some frames later, still in the session.
  static void Later(std::function<void()> routine) { AfterMs(40, std::move(routine)); }
  static void Enter(std::string_view key, std::string_view text) {
    PressKey(key);
    TypeText(text);
    PressKey("Enter");
  }
};
