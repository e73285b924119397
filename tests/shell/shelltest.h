// A started program on the headless platform, with stand-ins for the screens of other folders.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "support/user.h"

class ShellTest : public PlatformTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Registers the shell's screens and starts the program; the main menu is up.
  void Start();
  // Registers a stand-in under this name before or after the start: a screen of work with a button
  // "Button", or one with this placement.
  Screen& StandIn(const std::string& name, ScreenPlacement placement = ScreenPlacement::Work);
  // Stand-ins for all screens that the menus, buttons and nodes know.
  void StandInForAll();
  // Puts a calibration on the disk and makes it the open one.
  void OpenSomeFile();
  // Name of the screen of work on top, "" without one.
  static std::string Top();
  // Everything that stand-ins and others wrote down, with blanks between; emptied by this.
  std::string TakeNotes();
  void Note(const std::string& note);

 private:
  std::string notes;
};

inline constexpr const char* SomeFile = "/home/user/V8.bin";
void PutSomeFile();

// Compares the text and the title of the box that was shown, and takes it.
void ExpectBox(std::string_view text, std::string_view title = {}, Buttons buttons = Buttons::Ok);

inline constexpr std::string_view LiveRefusal =
    "This Process is Unavailable while ONFLY Monitoring is Active.";
inline constexpr std::string_view PortRefusal = "Port is already in use by another process.";
