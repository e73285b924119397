// The fixture of the programmer's tests: a simulated unit in COM1, and a file to program into it.
#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "core/s19file.h"
#include "link/programmer.h"
#include "simulator/zem.h"
#include "support/headless/linktest.h"
#include "support/headless/zemdevice.h"

inline constexpr const char* BinPath = "/home/user/street.BIN";
inline constexpr const char* S19Name = "/home/user/street.S19";

// The calibration of the file, which is not the one that the unit starts with.
inline sim::Image NewImage() {
  sim::Image image = sim::DefaultImage();
  for (std::size_t i = 118; i < 182; ++i) image[i] = static_cast<std::uint8_t>(100 + i % 50);
  return image;
}

inline std::string S19Of(const sim::Image& bytes) {
  std::array<std::int16_t, 513> image{};
  std::copy(bytes.begin(), bytes.end(), image.begin());
  return S19Text(image);
}

// What the file says that is programmed.
inline const std::string GoodText = S19Of(NewImage());

class ProgramTest : public LinkTest {
 protected:
  void SetUp() override {
    LinkTest::SetUp();
    device.emplace();
    CurrentBinPath = BinPath;
    PutTextFile(S19Name, S19Of(NewImage()));
    menusOpened = 0;
    RegisterScreen("Form1", [this] { ++menusOpened; });
  }
  void TearDown() override {
    UnloadScreen(Program_ZEM);
    UnloadScreen(helpfrm);
    ExpectReleased();
    device.reset();
    LinkTest::TearDown();
  }
  void ExpectReleased() {
    EXPECT_FALSE(PortHeld);
    EXPECT_FALSE(MSComm1.PortOpen);
    EXPECT_FALSE(DeviceIsOpen("COM1"));
    EXPECT_TRUE(OpenFilePaths().empty());
    EXPECT_FALSE(KillFirst);
  }
  void ExpectProgrammed() { EXPECT_EQ(device->zem.Memory(), NewImage()); }
  std::string Label(const char* name) { return ShownText(Program_ZEM, name); }
  // The user answers the failure screen when it comes up.
  void AnswerComError(const char* button) {
    AfterMs(20, [=, this] {
      if (helpfrm.visible)
        AfterMs(20, [=] { ClickOn(helpfrm, button); });
      else
        AnswerComError(button);
    });
  }
  std::optional<ZemDevice> device;
  int menusOpened = 0;
};

inline constexpr const char* Verified = "*************** PROGRAM VERIFIED ***************";
inline constexpr const char* ChecksumError = "*************** CHECKSUM ERROR ***************";
