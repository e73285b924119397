// Serial devices in memory: what was written is kept, what they send comes at a time of the clock.
#include <map>
#include <memory>
#include <utility>

#include "platform/headless/headless.h"
#include "platform/headless/script.h"
#include "platform/native.h"
#include "platform/port.h"

namespace {

struct OpenLine {
  std::string device;
  PortEvents events;
  bool told = false;  // that the device has gone
};

struct Delivery {
  std::string device;
  std::int64_t timeUs = 0;
  std::vector<std::uint8_t> bytes;
  bool forgotten = false;
};

std::map<std::string, FakeDevice> devices;
std::map<std::string, std::vector<std::uint8_t>> written;
std::map<std::string, std::string> settingsOf;
std::map<PortHandle, OpenLine> lines;
std::map<int, std::string> deviceOfPort;
std::vector<std::shared_ptr<Delivery>> deliveries;
PortHandle nextHandle = 1;

PortHandle HandleOf(const std::string& device) {
  for (const auto& [handle, line] : lines)
    if (line.device == device) return handle;
  return 0;
}

bool Gone(const std::string& device) {
  const FakeDevice* found = DeviceNamed(device);
  return !found || found->gone;
}

// The open port of a device that can still be heard, or null.
OpenLine* LiveLine(const std::string& device) {
  auto found = lines.find(HandleOf(device));
  return found == lines.end() || found->second.told || Gone(device) ? nullptr : &found->second;
}

// Bytes reach a port that is open when they come; otherwise they are lost.
void Deliver(const std::shared_ptr<Delivery>& delivery) {
  std::erase(deliveries, delivery);
  if (delivery->forgotten) return;
  OpenLine* line = LiveLine(delivery->device);
  auto received = line ? line->events.received : nullptr;
  if (received) received(delivery->bytes);
}

}  // namespace

namespace headless {

void ResetPorts() {
  lines.clear();
  devices.clear();
  written.clear();
  settingsOf.clear();
  deviceOfPort.clear();
  deliveries.clear();
}

bool TellGonePorts() {
  bool anyTold = false;
  std::vector<PortHandle> handles;
  for (const auto& [handle, line] : lines)
    if (!line.told && Gone(line.device)) handles.push_back(handle);
  for (PortHandle handle : handles) {
    auto found = lines.find(handle);
    if (found == lines.end()) continue;
    found->second.told = true;
    auto disconnected = found->second.events.disconnected;
    std::string why = found->second.device + " has been unplugged.";
    if (disconnected) Guarded([&] { disconnected(why); });
    anyTold = true;
  }
  return anyTold;
}

}  // namespace headless

// ---- the script's side --------------------------------------------------------------------------

void AddDevice(const std::string& name, FakeDevice device) { devices[name] = std::move(device); }
void RemoveDevice(const std::string& name) { devices.erase(name); }

FakeDevice* DeviceNamed(const std::string& name) {
  auto found = devices.find(name);
  return found == devices.end() ? nullptr : &found->second;
}

void DeliverAt(const std::string& device, std::int64_t timeUs, std::vector<std::uint8_t> bytes) {
  auto delivery = std::make_shared<Delivery>(Delivery{device, timeUs, std::move(bytes)});
  deliveries.push_back(delivery);
  AtUs(timeUs, [delivery] { Deliver(delivery); });
}

void DeliverLineEvent(const std::string& device, int number) {
  AtUs(NowUs(), [device, number] {
    OpenLine* line = LiveLine(device);
    auto tell = line ? line->events.line : nullptr;
    if (tell) tell(number);
  });
}

std::vector<std::uint8_t> WrittenTo(const std::string& device) { return written[device]; }
void ForgetWritten(const std::string& device) { written.erase(device); }
bool DeviceIsOpen(const std::string& device) { return HandleOf(device) != 0; }
std::string PortSettingsOf(const std::string& device) { return settingsOf[device]; }
void SetDeviceOfPort(int number, const std::string& device) { deviceOfPort[number] = device; }

// ---- port.h -------------------------------------------------------------------------------------

PortResult OpenPort(const std::string& device, const std::string& settings, PortEvents events) {
  FakeDevice* found = DeviceNamed(device);
  if (!found || found->gone) return {0, "There is no device " + device + "."};
  if (!found->refusal.empty()) return {0, found->refusal};
  if (DeviceIsOpen(device)) return {0, device + " is in use by another program."};
  PortHandle handle = nextHandle++;
  lines[handle] = {device, std::move(events)};
  settingsOf[device] = settings;
  if (auto opened = found->opened) opened();
  return {handle, {}};
}

bool WritePort(PortHandle port, std::span<const std::uint8_t> bytes) {
  auto found = lines.find(port);
  if (found == lines.end() || found->second.told || Gone(found->second.device)) return false;
  std::string device = found->second.device;
  auto& kept = written[device];
  kept.insert(kept.end(), bytes.begin(), bytes.end());
  if (auto reply = DeviceNamed(device)->written) reply(bytes, NowUs());
  return true;
}

void DiscardInput(PortHandle port) {
  auto found = lines.find(port);
  if (found == lines.end()) return;
  const std::string device = found->second.device;
  if (FakeDevice* record = DeviceNamed(device); record && record->discarding) record->discarding();
  for (auto& delivery : deliveries)
    if (delivery->device == device && delivery->timeUs <= NowUs()) delivery->forgotten = true;
}

void ClosePort(PortHandle port) {
  auto found = lines.find(port);
  if (found == lines.end()) return;
  DiscardInput(port);
  std::string device = found->second.device;
  lines.erase(found);
  FakeDevice* record = DeviceNamed(device);
  if (!record) return;
  if (auto closed = record->closed) closed();
}

std::string DeviceOfPort(int number) {
  auto found = deviceOfPort.find(number);
  return found == deviceOfPort.end() ? "COM" + std::to_string(number) : found->second;
}
