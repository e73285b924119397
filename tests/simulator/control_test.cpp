// The control file's commands, the file itself, and the command line.
#include "simulator/control.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "exchange.h"
#include "simulator/options.h"

namespace {

namespace fs = std::filesystem;
using sim::Control;
using sim::ControlResult;
using sim::Zem;

TEST(ControlCommands, WorkTheThrottle) {
  Exchange pc;
  EXPECT_EQ(Control(pc.zem, "throttle 40"), ControlResult::Done);
  pc.Wait(2);
  EXPECT_DOUBLE_EQ(pc.zem.Motor().Throttle(), 0.4);
  EXPECT_EQ(Control(pc.zem, "  throttle\t2.5 \r"), ControlResult::Done);
  pc.Wait(2);
  EXPECT_DOUBLE_EQ(pc.zem.Motor().Throttle(), 0.025);
  EXPECT_EQ(Control(pc.zem, "drive"), ControlResult::Done);
  EXPECT_TRUE(pc.zem.Motor().driver.Drives());
  EXPECT_EQ(Control(pc.zem, "throttle 0"), ControlResult::Done);
  EXPECT_FALSE(pc.zem.Motor().driver.Drives());
}

TEST(ControlCommands, WorkTheEngine) {
  Zem zem;
  EXPECT_EQ(Control(zem, "cold"), ControlResult::Done);
  EXPECT_LT(zem.Motor().Coolant(), 20);
  EXPECT_EQ(Control(zem, "warm"), ControlResult::Done);
  EXPECT_GT(zem.Motor().Coolant(), 80);
  EXPECT_EQ(Control(zem, "kill"), ControlResult::Done);
  EXPECT_EQ(zem.Motor().Now(), sim::Engine::State::Off);
  EXPECT_EQ(Control(zem, "start"), ControlResult::Done);
  EXPECT_EQ(zem.Motor().Now(), sim::Engine::State::Cranking);
  EXPECT_EQ(Control(zem, "fail tps"), ControlResult::Done);
  EXPECT_EQ(zem.Motor().Frame()[11], 32);
  EXPECT_EQ(Control(zem, "heal tps"), ControlResult::Done);
  EXPECT_EQ(zem.Motor().Frame()[11], 0);
}

TEST(ControlCommands, PowerLosesTheOffsets) {
  Exchange pc;
  pc.Ask("R3\x05");
  EXPECT_EQ(Control(pc.zem, "power"), ControlResult::Done);
  EXPECT_EQ(pc.zem.Motor().offsets.advance, 0);
}

TEST(ControlCommands, FaultsByTheirNames) {
  Exchange pc;
  EXPECT_EQ(Control(pc.zem, "wrong-second@E"), ControlResult::Done);
  EXPECT_EQ(pc.Ask("E"), "A?");
  EXPECT_EQ(Control(pc.zem, "clear"), ControlResult::Done);
  EXPECT_EQ(pc.Ask("E"), "AX");
  EXPECT_EQ(Control(pc.zem, "unplug"), ControlResult::Done);
  EXPECT_FALSE(pc.zem.Plugged());
  EXPECT_EQ(Control(pc.zem, "replug"), ControlResult::Done);
  EXPECT_TRUE(pc.zem.Plugged());
}

TEST(ControlCommands, QuitEmptyAndUnknown) {
  Zem zem;
  EXPECT_EQ(Control(zem, "quit"), ControlResult::Quit);
  EXPECT_EQ(Control(zem, ""), ControlResult::Done);
  EXPECT_EQ(Control(zem, "# a remark"), ControlResult::Done);
  for (std::string_view line :
       {"throttle", "throttle x", "throttle 101", "throttle -1", "throttle nan", "cold now", "fail",
        "fail everything", "heal x", "bogus", "quit now"}) {
    EXPECT_EQ(Control(zem, line), ControlResult::NotUnderstood) << line;
  }
}

TEST(ControlCommands, HelpNamesEveryFault) {
  const std::string help = sim::ControlHelp();
  for (const sim::FaultRow& row : sim::FaultRows()) {
    EXPECT_NE(help.find("  " + std::string(row.name)), std::string::npos) << row.name;
  }
}

class ControlFile : public testing::Test {
 protected:
  void SetUp() override {
    path = fs::temp_directory_path() /
           ("zem-control-" + std::to_string(reinterpret_cast<std::uintptr_t>(this)) + "-" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove(path);
  }
  void TearDown() override { fs::remove(path); }
  void Add(std::string_view text) { std::ofstream(path, std::ios::binary | std::ios::app) << text; }
  fs::path path;
  using Lines = std::vector<std::string>;
};

TEST_F(ControlFile, OldLinesAreSkippedAndNewOnesComeOnce) {
  Add("quit\n");
  sim::LineFollower follower(path);
  EXPECT_EQ(follower.NewLines(), Lines{});
  Add("cold\nwarm\n");
  EXPECT_EQ(follower.NewLines(), (Lines{"cold", "warm"}));
  EXPECT_EQ(follower.NewLines(), Lines{});
}

TEST_F(ControlFile, ALineWithoutItsEndIsAwaited) {
  sim::LineFollower follower(path);
  Add("thro");
  EXPECT_EQ(follower.NewLines(), Lines{});
  Add("ttle 5\nco");
  EXPECT_EQ(follower.NewLines(), Lines{"throttle 5"});
  Add("ld\n");
  EXPECT_EQ(follower.NewLines(), Lines{"cold"});
}

TEST_F(ControlFile, OneThatComesLaterIsReadFromItsBeginning) {
  sim::LineFollower follower(path);
  EXPECT_EQ(follower.NewLines(), Lines{});
  Add("cold\n");
  EXPECT_EQ(follower.NewLines(), Lines{"cold"});
}

TEST_F(ControlFile, OneThatWasEmptiedIsReadFromItsBeginning) {
  Add("a long line of old\n");
  sim::LineFollower follower(path);
  std::ofstream(path, std::ios::trunc) << "cold\n";
  EXPECT_EQ(follower.NewLines(), Lines{"cold"});
}

sim::Options Parse(std::vector<std::string> arguments) { return sim::ParseOptions(arguments); }

TEST(CommandLine, EveryOption) {
  const sim::Options o = Parse({"--link", "L", "--image", "I", "--control", "C", "--log", "T",
                                "--name", "N", "--fault", "silent", "--fault", "unplug", "--drive",
                                "--cold", "--unpaced", "--old-prom", "--quiet"});
  EXPECT_EQ(o.error, "");
  EXPECT_EQ(o.link, "L");
  EXPECT_EQ(o.image, "I");
  EXPECT_EQ(o.control, "C");
  EXPECT_EQ(o.log, "T");
  EXPECT_EQ(o.name, "N");
  EXPECT_EQ(o.faults, (std::vector<std::string>{"silent", "unplug"}));
  EXPECT_TRUE(o.drive && o.cold && o.unpaced && o.oldProm && o.quiet);
  EXPECT_FALSE(o.help);
  EXPECT_TRUE(Parse({"--help"}).help);
}

TEST(CommandLine, WhatIsWrongIsTold) {
  EXPECT_EQ(Parse({"--lnk"}).error, "unknown option --lnk");
  EXPECT_EQ(Parse({"file"}).error, "unknown option file");
  EXPECT_EQ(Parse({"--image"}).error, "--image needs FILE");
  EXPECT_EQ(Parse({"--fault", "nosuch:3"}).error, "unknown fault nosuch:3");
}

TEST(CommandLine, HelpNamesEveryOption) {
  const std::string help = sim::OptionsHelp();
  for (std::string_view name :
       {"--link PATH", "--image FILE", "--control FILE", "--log FILE", "--name NAME",
        "--fault NAME", "--drive", "--cold", "--unpaced", "--old-prom", "--quiet", "--help"}) {
    EXPECT_NE(help.find(name), std::string::npos) << name;
  }
}

}  // namespace
