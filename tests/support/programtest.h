// The fixture of tests that start the program: its state is as at the start of the process.
#pragma once

#include "core/binfile.h"
#include "core/globalstate.h"
#include "editors/editcycle.h"
#include "editors/tableviews.h"
#include "link/comm.h"
#include "link/liveframe.h"
#include "link/onfly.h"
#include "link/postedwrite.h"
#include "monitors/monitor3.h"
#include "shell/start.h"
#include "support/user.h"

inline void ResetProgram() {
  ResetCalibrationState();
  ResetLinkState();
  ResetLiveFlags();
  ResetLiveState();
  ResetOnflyState();
  ResetPostedWrite();
  ResetEditCycle();
  ResetTableViews();
  CommonDialog = {};
  Monitor3KeyCode = 0;
}

class ProgramTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ResetProgram();
  }
  void TearDown() override {
    UnloadAllScreens();
    PlatformTest::TearDown();
    ResetProgram();
  }
  // As far as the main menu; what it offers has been registered before.
  static void Start() {
    Main();
    RunPending();
  }
  static std::string Top() { return TopWorkScreen() ? TopWorkScreen()->name : ""; }
};
