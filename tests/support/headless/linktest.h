// A serial line to play with: tests of the link start from its state after start-up, with a device
// in COM1 that stays silent until told otherwise.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/globalstate.h"
#include "link/comm.h"
#include "link/liveframe.h"
#include "link/onfly.h"
#include "link/postedwrite.h"
#include "platform/headless/script.h"
#include "platform/loop.h"
#include "support/user.h"

using Bytes = std::vector<std::uint8_t>;

inline Bytes BytesOf(std::string_view text) { return Bytes(text.begin(), text.end()); }

// All that was written to COM1 since the start, as text.
inline std::string Sent() {
  const Bytes bytes = WrittenTo("COM1");
  return std::string(bytes.begin(), bytes.end());
}

class LinkTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ResetCalibrationState();
    ResetLinkState();
    ResetLiveState();
    ResetLiveFlags();
    ResetOnflyState();
    ResetPostedWrite();
    AddDevice("COM1", {});
  }
  void TearDown() override {
    ResetLinkState();
    PlatformTest::TearDown();
  }
  // Bytes that come with the next pass, as one arrival.
  void Arrive(const Bytes& bytes) {
    DeliverAt("COM1", NowUs(), bytes);
    Yield();
  }
  void Arrive(std::string_view text) { Arrive(BytesOf(text)); }
  // Answers with the next of these texts each time that so many more bytes have been written;
  // without an answer left it stays silent.
  struct Scripted {
    std::size_t bytes;
    std::string reply;
  };
  void AnswerInTurn(std::vector<Scripted> script) {
    struct State {
      std::vector<Scripted> script;
      std::size_t at = 0;
      std::size_t heard = 0;
    };
    auto state = std::make_shared<State>(State{std::move(script)});
    DeviceNamed("COM1")->written = [state](std::span<const std::uint8_t> bytes,
                                           std::int64_t nowUs) {
      state->heard += bytes.size();
      if (state->at == state->script.size() || state->heard < state->script[state->at].bytes)
        return;
      state->heard = 0;
      const std::string& reply = state->script[state->at++].reply;
      for (std::size_t i = 0; i < reply.size(); ++i)
        DeliverAt("COM1", nowUs + 1042 * static_cast<std::int64_t>(i + 1),
                  {static_cast<std::uint8_t>(reply[i])});
    };
  }
  // Answers everything that is written, `delayUs` later and a byte time apart.
  void AnswerWith(std::string_view text, std::int64_t delayUs = 1000, std::int64_t gapUs = 1042) {
    DeviceNamed("COM1")->written = [=](std::span<const std::uint8_t>, std::int64_t nowUs) {
      std::int64_t at = nowUs + delayUs;
      for (char character : text) {
        DeliverAt("COM1", at, {static_cast<std::uint8_t>(character)});
        at += gapUs;
      }
    };
  }
};
