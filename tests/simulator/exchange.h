// A PC at the other end of a simulated ZEM's line, with a clock of its own.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/zem.h"

struct Exchange {
  sim::Zem zem;
  std::int64_t nowUs = 0;
  std::vector<sim::TimedByte> arrived{};  // by the last Ask

  // Sends the bytes and lets time pass until the line is quiet.
  std::string Ask(std::string_view bytes) {
    arrived.clear();
    zem.Receive(bytes, nowUs);
    std::string reply;
    while (const auto next = zem.NextEventUs()) {
      nowUs = *next;
      for (const sim::TimedByte& byte : zem.Advance(nowUs)) {
        arrived.push_back(byte);
        reply += static_cast<char>(byte.value);
      }
    }
    return reply;
  }
  void Wait(double seconds) {
    nowUs += static_cast<std::int64_t>(seconds * 1e6);
    zem.Advance(nowUs);
  }
  sim::LiveBytes Frame() {
    const std::string reply = Ask("F");
    sim::LiveBytes frame{};
    for (std::size_t i = 0; i < frame.size() && i < reply.size(); ++i) {
      frame[i] = static_cast<std::uint8_t>(reply[i]);
    }
    return frame;
  }
};

// An S1 record with its checksum.
std::string S1(int address, const std::vector<int>& data);

// The 32 data records of an image and the end record.
std::vector<std::string> RecordsOf(const sim::Image& image);

// A byte in two upper-case hexadecimal digits.
std::string HexByte(int value);
