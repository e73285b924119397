// Editing while the engine runs: the fixture of an editor below the digital monitor, with the
// simulated unit that takes each change.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "core/settings.h"
#include "editors/binjgraph.h"
#include "editors/vetable.h"
#include "link/comm.h"
#include "link/postedwrite.h"
#include "link/programmer.h"
#include "monitors/livetest.h"
#include "platform/frame.h"
#include "platform/loop.h"
#include "shell/menus.h"
#include "shell/navigation.h"
#include "support/headless/zemdevice.h"
#include "support/smallengine.h"

inline constexpr int offsetByte = 2;
inline constexpr int turnOnByte = 323;

class OnflyEditing : public LiveTest {
 protected:
  void SetUp() override {
    LiveTest::SetUp();
    RegisterScreen("Program_ZEM", OpenProgram_ZEM);
    StoreSetting("Options", "Screensetting", 1);
    RefreshMenuMarks();
    device.emplace();
    OpenFactoryCalibration();
  }
  void TearDown() override {
    if (timer_ != 0) StopTimer(timer_);
    device.reset();
    LiveTest::TearDown();
  }
  Screen& Editor() { return BinjGraph().screen; }
  int InUnit(int index) { return device->zem.Memory()[static_cast<std::size_t>(index)]; }
  // Clicks into a field, types over what stands there, and presses Enter.
  static void EnterIn(Screen& screen, const std::string& control, std::string_view text) {
    ClickOn(screen, control);
    SelectText(At(screen, control), 0, 1000);
    TypeText(text);
    PressKey("Enter");
  }
  // Looks every 20 ms what to do next.
  void Every20Ms(std::function<void()> routine) { timer_ = StartTimer(20, std::move(routine)); }
  static bool Idle() { return Monitor3.visible && Seen("Status") == "ONFLY IDLE"; }

  std::optional<ZemDevice> device;

 private:
  void OpenFactoryCalibration() {
    std::vector<float> values = SmallEngine();
    for (std::size_t i = 0; i < 8; ++i) {
      values[45 + i] = 500 + 700 * static_cast<float>(i);
      values[53 + i] = 20 + 10 * static_cast<float>(i);
    }
    const std::string bytes = FileBytes(values);
    PutFile("/home/user/V8.bin", {bytes.begin(), bytes.end()});
    AnswerNextFile("/home/user/V8.bin");
    OpenCalibration();
    while (AnyBoxShown()) TakeBox();
    ASSERT_EQ(CurrentBinPath, "/home/user/V8.bin");
  }
  int timer_ = 0;
};
