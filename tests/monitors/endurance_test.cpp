// An hour of session, on the clock of the tests: nothing grows.
#include <vector>

#include "core/globalstate.h"
#include "link/comm.h"
#include "link/onfly.h"
#include "link/postedwrite.h"
#include "monitors/livetest.h"
#include "platform/loop.h"
#include "shell/navigation.h"

namespace {

struct Footprint {
  std::size_t bytes;
  std::size_t screens;
  std::size_t controls;
  int depth;
  std::size_t unread;
  std::size_t former;
};

Footprint Now() {
  ForgetWritten("COM1");
  return {AllocatedBytes(), LoadedScreens().size(), Monitor3.controls.size(),
          YieldDepth(),     MSComm1.unread.size(),  Monitor3.former.size()};
}

}  // namespace

TEST_F(LiveTest, AnHourOfSessionLeavesMemoryAndHandlesFlat) {
  constexpr std::int64_t frameUs = 29'167;  // 28 bytes at 9600 baud
  constexpr int framesOfAnHour = 123'430;
  std::vector<Footprint> seen;
  const std::int64_t begun = NowUs();
  unit.onFrame = [&] {
    const int at = unit.frames;
    Pause(static_cast<int>(frameUs / 100));
    unit.heard.clear();
    unit.frame[0] = static_cast<std::uint8_t>(at % 200);
    unit.frame[9] = static_cast<std::uint8_t>(at % 256);
    if (at % 100 == 10) PendAdv = PendGama = PendTog = PendEgo = 1;
    if (at % 100 == 20) PostWrite(217, 8, 300, 1);
    if (at % 100 == 30) ShowScreen(Monitor3Help);
    if (at % 100 == 35) UnloadScreen(Monitor3Help);
    if (at % 10'000 == 5'000) seen.push_back(Now());
    if (at == framesOfAnHour) StopLive();
  };
  OpenLive("Monitor3");
  RunPending();
  EXPECT_GT(NowUs() - begun, 3'590'000'000LL);
  ASSERT_EQ(seen.size(), 12U);
  for (const Footprint& at : seen) {
    EXPECT_NEAR(static_cast<double>(at.bytes), static_cast<double>(seen[1].bytes), 2048);
    EXPECT_EQ(at.screens, seen[0].screens);
    EXPECT_EQ(at.controls, seen[0].controls);
    EXPECT_EQ(at.depth, seen[0].depth);
    EXPECT_EQ(at.unread, 0U);
    EXPECT_EQ(at.former, 0U);
  }
  ExpectReleased();
}
