// Brings the bytes of the headless port to the simulated ZEM and back, each at its own time.
#include "support/headless/zemdevice.h"

#include <gtest/gtest.h>

#include "platform/headless/script.h"

ZemDevice::ZemDevice(sim::ZemSettings settings, const sim::Image& image)
    : zem(std::move(settings), image), self_(std::make_shared<ZemDevice*>(this)) {
  zem.Advance(NowUs());
  Connect();
}

ZemDevice::~ZemDevice() {
  if (FakeDevice* device = DeviceNamed(Name)) *device = FakeDevice{};
}

void ZemDevice::Connect() {
  FakeDevice device;
  device.written = [this](std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
    for (std::uint8_t byte : bytes) zem.Receive(byte, nowUs);
    PlanPump();
  };
  // A pause of the program moves the clock without a turn of the queue.
  device.discarding = [this] { Pump(); };
  AddDevice(Name, std::move(device));
}

void ZemDevice::PlanPump() {
  const auto next = zem.NextEventUs();
  if (!next || (plannedUs_ >= 0 && plannedUs_ <= *next)) return;
  plannedUs_ = *next;
  AtUs(*next, [self = std::weak_ptr(self_), at = *next] {
    const auto device = self.lock();
    if (!device || (*device)->plannedUs_ != at) return;
    (*device)->plannedUs_ = -1;
    (*device)->Pump();
  });
}

// An unpaced unit's bytes arrive together, as from a buffer; a paced one's each by itself.
void ZemDevice::Pump() {
  std::vector<std::uint8_t> bytes;
  for (const sim::TimedByte& byte : zem.Advance(NowUs())) bytes.push_back(byte.value);
  if (!bytes.empty()) DeliverAt(Name, NowUs(), std::move(bytes));
  if (FakeDevice* device = DeviceNamed(Name); device && !zem.Plugged()) device->gone = true;
  PlanPump();
}

void ZemDevice::Unplug() {
  zem.Unplug();
  DeviceNamed(Name)->gone = true;
}

void ZemDevice::Replug() {
  zem.Replug();
  DeviceNamed(Name)->gone = false;
}

void ZemDevice::Fail(const std::string& fault) {
  if (!zem.Fail(fault)) ADD_FAILURE() << "no fault " << fault;
}

void ZemDevice::ClearAll() {
  zem.ClearFaults();
  zem.Replug();
  Connect();
}

std::vector<std::string> ZemDevice::TakeHistory() {
  std::vector<std::string> all(zem.History().begin(), zem.History().end());
  std::vector<std::string> news(all.begin() + static_cast<std::ptrdiff_t>(taken_), all.end());
  taken_ = all.size();
  return news;
}
