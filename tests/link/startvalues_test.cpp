// What the process starts with, before anything has been reset.
#include <gtest/gtest.h>

#include <vector>

#include "link/comm.h"
#include "link/liveframe.h"
#include "link/onfly.h"
#include "link/postedwrite.h"

namespace {

struct StartValues {
  bool closedLoop, imperialUnits, fuelInLitres, portHeld, portOpen;
  std::vector<double> zeros;
};

// Read while the program is loaded; a test's fixture would put them back before it looks.
const StartValues atStart{ClosedLoop,
                          ImperialUnits,
                          FuelInLitres,
                          PortHeld,
                          MSComm1.PortOpen,
                          {1.0 * PendZeroAdv,
                           1.0 * PendClearZero,
                           1.0 * PendAdv,
                           1.0 * PendGama,
                           1.0 * PendTog,
                           1.0 * PendInj,
                           1.0 * PendTpsBlend,
                           1.0 * PendGpo,
                           1.0 * PendAfr,
                           1.0 * PendEgo,
                           OnAdvance,
                           OnGama,
                           OnTog,
                           OnInjOffset,
                           OnTpsBlend,
                           OnGpo,
                           OnAfr,
                           1.0 * OnflyInit,
                           1.0 * TogChanged,
                           LastGama,
                           AfrOffset,
                           GamaNow,
                           InjectorOffset,
                           1.0 * OptionFlags,
                           WaitCount,
                           CommError,
                           OnflyFault,
                           1.0 * MonitorStop,
                           1.0 * DialogChoice,
                           1.0 * OnflyCalIndex,
                           OnflyValue,
                           1.0 * OnflyImageIndex,
                           OnflyByteCount}};

TEST(StartValues, LoopIsClosedUnitsAreMetricAndThePortIsFree) {
  EXPECT_TRUE(atStart.closedLoop);
  EXPECT_FALSE(atStart.imperialUnits);
  EXPECT_TRUE(atStart.fuelInLitres);
  EXPECT_FALSE(atStart.portHeld);
  EXPECT_FALSE(atStart.portOpen);
}

TEST(StartValues, NothingIsPendingPostedOrFailed) {
  EXPECT_EQ(atStart.zeros, std::vector<double>(atStart.zeros.size(), 0));
}

TEST(StartValues, ResetTakesAPostedWriteOff) {
  PostWrite(344, 1.2, 323, 2);
  ResetPostedWrite();
  EXPECT_EQ(OnflyCalIndex, 0);
  EXPECT_EQ(OnflyValue, 0);
  EXPECT_EQ(OnflyImageIndex, 0);
  EXPECT_EQ(OnflyByteCount, 0);
}

}  // namespace
