// The disk, the boxes and the state for tests of what opens and saves calibrations.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/failure.h"
#include "platform/headless/script.h"

// Starts with an empty disk in "/home/user" and the core's start values; at the end nothing may be
// left open, unasked or unseen.
class FilesTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
};

// Takes the oldest box that nobody looked at yet and compares all of it.
void ExpectMessage(std::string_view title, std::string_view text, Buttons buttons = Buttons::Ok);
void ExpectFileDialog(std::string_view kind, std::string_view title, std::string_view preset = {});
void ExpectErrorBox(int number, std::string_view description, std::string_view more = {});
// Lets the boxes so far go unseen; result: how many there were.
std::size_t ForgetBoxes();

// 512 singles that no repair of an opened file touches, and that the encoder takes.
std::vector<float> SoundSingles();
// The bytes of a BIN file, laid out here and not by the code under test.
std::vector<std::uint8_t> BinBytes(const std::vector<float>& singles);
// Opens the file by way of the dialog; the answer to a question about changing the file is Yes.
void OpenByDialog(const std::string& path);
// A sound calibration at the path, opened, its boxes forgotten.
void OpenSound(const std::string& path);
// CalValues with every element marked by its index, to see what is overwritten.
std::array<float, 513> MarkCalValues();
