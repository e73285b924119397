// The serial line where devices are no files (Windows): the toolkit's serial port. Bytes are told
// from its signals, and each write is flushed at once.
#include <QtGlobal>

#ifndef Q_OS_UNIX

#include <QSerialPort>
#include <map>
#include <memory>
#include <optional>

#include "platform/loop.h"
#include "platform/native.h"
#include "platform/port.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtport.h"

namespace {

struct Port {
  PortHandle handle = 0;
  QSerialPort line;
  PortEvents events;
  bool gone = false;
};

std::map<PortHandle, std::shared_ptr<Port>> openPorts;
PortHandle lastHandle = 0;

std::shared_ptr<Port> Opened(PortHandle handle) {
  auto found = openPorts.find(handle);
  return found == openPorts.end() ? nullptr : found->second;
}

// False when those are none.
bool Apply(QSerialPort& line, const std::string& settings) {
  const std::optional<LineSettings> wished = ReadLineSettings(settings);
  if (!wished) return false;
  line.setBaudRate(wished->baud);
  line.setParity(wished->parity == 'E'   ? QSerialPort::EvenParity
                 : wished->parity == 'O' ? QSerialPort::OddParity
                                         : QSerialPort::NoParity);
  line.setDataBits(wished->dataBits == 7 ? QSerialPort::Data7 : QSerialPort::Data8);
  line.setStopBits(wished->stopBits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
  line.setFlowControl(QSerialPort::NoFlowControl);
  return true;
}

std::string WhyNot(const std::string& device, const QSerialPort& line) {
  switch (line.error()) {
    case QSerialPort::DeviceNotFoundError:
      return NoSuchDevice(device);
    case QSerialPort::PermissionError:
    case QSerialPort::OpenError:
      return UsedByOther(device);
    default:
      return NotOpened(device, FromQt(line.errorString()));
  }
}

void TellGone(Port& port) {
  if (port.gone) return;
  port.gone = true;
  RunSoon([handle = port.handle] {
    std::shared_ptr<Port> open = Opened(handle);
    if (open && open->events.disconnected) open->events.disconnected(Unplugged);
  });
}

bool TellBytes(PortHandle handle) {
  std::shared_ptr<Port> port = Opened(handle);
  if (!port || port->gone || port->line.bytesAvailable() == 0) return false;
  QByteArray bytes = port->line.readAll();
  if (port->events.received)
    Guarded([&] {
      port->events.received({reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                             static_cast<std::size_t>(bytes.size())});
    });
  return true;
}

void Listen(Port& port) {
  PortHandle handle = port.handle;
  QObject::connect(&port.line, &QSerialPort::readyRead, &port.line,
                   [handle] { TellBytes(handle); });
  QObject::connect(&port.line, &QSerialPort::errorOccurred, &port.line,
                   [handle](QSerialPort::SerialPortError error) {
                     std::shared_ptr<Port> open = Opened(handle);
                     if (open && error == QSerialPort::ResourceError) TellGone(*open);
                   });
}

}  // namespace

PortResult OpenPort(const std::string& device, const std::string& settings, PortEvents events) {
  auto port = std::make_shared<Port>();
  port->line.setPortName(ToQt(device));
  if (!Apply(port->line, settings)) return {0, NoSerialPort(device)};
  if (!port->line.open(QIODevice::ReadWrite)) return {0, WhyNot(device, port->line)};
  port->line.setDataTerminalReady(true);
  port->line.setRequestToSend(true);
  port->line.clear();
  port->handle = ++lastHandle;
  port->events = std::move(events);
  openPorts[port->handle] = port;
  Listen(*port);
  return {port->handle, {}};
}

bool WritePort(PortHandle handle, std::span<const std::uint8_t> bytes) {
  std::shared_ptr<Port> port = Opened(handle);
  if (!port || port->gone) return false;
  auto size = static_cast<qint64>(bytes.size());
  if (port->line.write(reinterpret_cast<const char*>(bytes.data()), size) != size) {
    TellGone(*port);
    return false;
  }
  port->line.flush();
  return !port->gone;
}

void DiscardInput(PortHandle handle) {
  if (auto port = Opened(handle)) {
    port->line.clear(QSerialPort::Input);
    port->line.readAll();
  }
}

// Its signals may be on the stack: it goes when the queue has its next turn.
void ClosePort(PortHandle handle) {
  std::shared_ptr<Port> port = Opened(handle);
  if (!port) return;
  openPorts.erase(handle);
  port->line.disconnect();
  if (port->line.isOpen()) port->line.close();
  RunSoon([port] {});
}

bool TellPortBytes() {
  bool any = false;
  auto ports = openPorts;
  for (auto& [handle, port] : ports) any |= TellBytes(handle);
  return any;
}

#endif
