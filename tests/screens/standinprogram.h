// The started program with its editors, and stand-ins for the screens that speak to the unit.
#pragma once

#include <string>
#include <vector>

#include "editors/editors.h"
#include "platform/system.h"
#include "support/programtest.h"
#include "support/smallengine.h"
#include "support/testfolder.h"

class StandInProgram : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    RegisterShellScreens();
    RegisterEditors();
    StandIn(programmer_, "Program_ZEM");
    StandIn(monitor_, "Monitor1");
    Start();
  }
  static std::string MakeCalibration(const char* name, const std::vector<float>& values) {
    std::string path = TestFolder() + "/" + name;
    MakeFile(path, FileBytes(values));
    return path;
  }

  std::string path_;    // of the open calibration
  std::string opened_;  // the stand-ins, each with a blank behind it

 private:
  void StandIn(Screen& screen, const char* name) {
    screen.name = name;
    screen.build = [](Screen&) {};
    screen.on.load = [this](Screen& loaded) { opened_ += loaded.name + " "; };
    RegisterScreen(name, [&screen] { ShowScreen(screen); });
  }
  Screen programmer_;
  Screen monitor_;
};
