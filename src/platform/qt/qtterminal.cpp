// The serial line where devices are files: raw terminal lines (UARTs, USB adapters,
// pseudo-terminals), written directly so that a byte is on the wire when the call returns. Lock
// files of other programs are read; no lock of any kind is left behind that could make a healthy
// port unusable.
#include <QtGlobal>

#ifdef Q_OS_UNIX

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>
#ifdef __linux__
#include <linux/serial.h>
#endif

#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/loop.h"
#include "platform/native.h"
#include "platform/port.h"
#include "platform/qt/qtport.h"

namespace {

struct SpeedRow {
  int baud;
  speed_t speed;
};
constexpr SpeedRow Speeds[] = {{1200, B1200},   {2400, B2400},    {4800, B4800},
                               {9600, B9600},   {19200, B19200},  {38400, B38400},
                               {57600, B57600}, {115200, B115200}};

// Line events and the counters of the driver that tell of them.
struct LineCounts {
  std::array<int, 8> counts{};
};
constexpr int LineEvents[] = {3, 4, 5, 6, 1001, 1004, 1006, 1009};

struct Port {
  PortHandle handle = 0;
  int file = -1;
  PortEvents events;
  std::unique_ptr<QSocketNotifier> readable;
  std::unique_ptr<QSocketNotifier> writable;  // while bytes wait that the line could not take
  std::vector<std::uint8_t> waiting;
  termios before{};
  bool gone = false;
  bool mayHaveMore = false;  // written to, or read with success: bytes can be here without a wait
  bool exclusive = false;
  bool counts = false;
  LineCounts lineCounts;
  ~Port() {
    if (file < 0) return;
    if (!gone) ::tcsetattr(file, TCSANOW, &before);
    // It would outlive the close where somebody else keeps the device open.
    if (exclusive) ::ioctl(file, TIOCNXCL);
    ::close(file);
  }
};

std::map<PortHandle, std::shared_ptr<Port>> openPorts;
PortHandle lastHandle = 0;

std::shared_ptr<Port> Opened(PortHandle handle) {
  auto found = openPorts.find(handle);
  return found == openPorts.end() ? nullptr : found->second;
}

// ---- settings -----------------------------------------------------------------------------------

// False when those are none, or a speed that a line does not have.
bool Apply(termios& line, const std::string& settings) {
  const std::optional<LineSettings> wished = ReadLineSettings(settings);
  if (!wished) return false;
  const auto* row = std::find_if(std::begin(Speeds), std::end(Speeds),
                                 [&](const SpeedRow& speed) { return speed.baud == wished->baud; });
  if (row == std::end(Speeds)) return false;
  ::cfmakeraw(&line);
  ::cfsetspeed(&line, row->speed);
  line.c_cflag |= CLOCAL | CREAD;
  line.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CSTOPB);
  line.c_cflag |= wished->dataBits == 7 ? CS7 : CS8;
  if (wished->parity != 'N') line.c_cflag |= PARENB;
  if (wished->parity == 'O') line.c_cflag |= PARODD;
  if (wished->stopBits == 2) line.c_cflag |= CSTOPB;
    // A cable of three wires has no flow control, whatever another program has left behind.
#ifdef CRTSCTS
  line.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS);
#endif
  line.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY);
  line.c_iflag |= IGNBRK;
  line.c_cc[VMIN] = 1;  // a read of nothing then means that the device has gone
  line.c_cc[VTIME] = 0;
  return true;
}

// ---- why a port cannot be opened
// ------------------------------------------------------------------

std::string GroupOf(const std::string& device) {
  struct stat status = {};
  if (::stat(device.c_str(), &status) != 0) return "dialout";
  const group* owner = ::getgrgid(status.st_gid);
  return owner ? owner->gr_name : std::to_string(status.st_gid);
}

}  // namespace

std::string WhyNotOpened(const std::string& device, int error) {
  switch (error) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
      return NoSuchDevice(device);
    case EACCES:
    case EPERM:
      return "Your user may not use " + device + ". Join the group \"" + GroupOf(device) +
             "\" (sudo usermod -aG " + GroupOf(device) + " $USER), then log in again.";
    case EBUSY:
    case EWOULDBLOCK:
      return UsedByOther(device);
    case ENOTTY:
    case EISDIR:
    case EINVAL:
      return NoSerialPort(device);
    case EIO:
      return device +
             " does not work: there is no hardware behind it, or it was unplugged. A USB adapter "
             "is "
             "/dev/ttyUSB0 as a rule; connect it, or name it in the environment: "
             "HALVANE2_COM1=/dev/ttyUSB0 makes it port 1.";
    default:
      return NotOpened(device, std::strerror(error));
  }
}

namespace {

// Whether a running program has left its mark on the device, as terminal programs do.
bool LockedByOther(const std::string& device) {
  std::error_code error;
  std::string name = std::filesystem::canonical(device, error).filename().string();
  if (error || name.empty()) return false;
  for (const char* folder : {"/run/lock/", "/var/lock/"}) {
    std::ifstream lock(std::string(folder) + "LCK.." + name);
    long process = 0;
    if (!(lock >> process) || process <= 0 || process == ::getpid()) continue;
    if (::kill(static_cast<pid_t>(process), 0) == 0 || errno == EPERM) return true;
  }
  return false;
}

// ---- a port that goes
// -----------------------------------------------------------------------------

void TellGone(const std::shared_ptr<Port>& port, const std::string& why) {
  if (port->gone) return;
  port->gone = true;
  port->waiting.clear();
  port->readable->setEnabled(false);
  if (port->writable) port->writable->setEnabled(false);
  RunSoon([handle = port->handle, why] {
    std::shared_ptr<Port> open = Opened(handle);
    if (open && open->events.disconnected) open->events.disconnected(why);
  });
}

// ---- reading
// ----------------------------------------------------------------------------------------

#ifdef TIOCGICOUNT
std::optional<LineCounts> ReadCounts(int file) {
  serial_icounter_struct now{};
  if (::ioctl(file, TIOCGICOUNT, &now) != 0) return std::nullopt;
  return LineCounts{
      {now.cts, now.dsr, now.dcd, now.rng, now.brk, now.frame, now.overrun, now.parity}};
}
#else
std::optional<LineCounts> ReadCounts(int) { return std::nullopt; }
#endif

void TellLineEvents(const std::shared_ptr<Port>& port) {
  if (!port->counts) return;
  std::optional<LineCounts> now = ReadCounts(port->file);
  if (!now) return;
  LineCounts before = std::exchange(port->lineCounts, *now);
  for (std::size_t i = 0; i < before.counts.size(); ++i)
    if (now->counts[i] != before.counts[i] && port->events.line && openPorts.count(port->handle))
      Guarded([&] { port->events.line(LineEvents[i]); });
}

// Up to a buffer of bytes; 0 when there are none now.
std::size_t ReadSome(const std::shared_ptr<Port>& port, std::span<std::uint8_t> buffer) {
  if (port->gone) return 0;
  ssize_t count = 0;
  do count = ::read(port->file, buffer.data(), buffer.size());
  while (count < 0 && errno == EINTR);
  if (count > 0) return static_cast<std::size_t>(count);
  bool nothingYet = count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
  if (!nothingYet) TellGone(port, Unplugged);
  return 0;
}

bool TellBytes(const std::shared_ptr<Port>& port) {
  std::array<std::uint8_t, 1024> buffer;
  std::size_t count = ReadSome(port, buffer);
  if (count == 0) return false;
  TellLineEvents(port);
  if (port->events.received && openPorts.count(port->handle))
    Guarded([&] { port->events.received({buffer.data(), count}); });
  return true;
}

// ---- writing
// ----------------------------------------------------------------------------------------

// As much as the line takes now. Result: how much that was; nothing when the device has gone.
std::optional<std::size_t> WriteSome(const std::shared_ptr<Port>& port,
                                     std::span<const std::uint8_t> bytes) {
  std::size_t written = 0;
  while (written < bytes.size()) {
    ssize_t count = ::write(port->file, bytes.data() + written, bytes.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) break;
    if (count <= 0) {
      TellGone(port, Unplugged);
      return std::nullopt;
    }
    written += static_cast<std::size_t>(count);
  }
  return written;
}

void WriteWaiting(const std::shared_ptr<Port>& port) {
  std::optional<std::size_t> written = WriteSome(port, port->waiting);
  if (!written) return;
  port->waiting.erase(port->waiting.begin(),
                      port->waiting.begin() + static_cast<std::ptrdiff_t>(*written));
  port->writable->setEnabled(!port->waiting.empty());
}

void WaitToWrite(const std::shared_ptr<Port>& port) {
  if (!port->writable) {
    port->writable = std::make_unique<QSocketNotifier>(port->file, QSocketNotifier::Write);
    QObject::connect(port->writable.get(), &QSocketNotifier::activated, port->writable.get(),
                     [handle = port->handle] {
                       if (auto open = Opened(handle)) WriteWaiting(open);
                     });
  }
  port->writable->setEnabled(true);
}

// ---- opening
// ----------------------------------------------------------------------------------------

// 0, or the error of the system.
int OpenLine(Port& port, const std::string& device, const std::string& settings) {
  if (LockedByOther(device)) return EBUSY;
  port.file = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (port.file < 0) return errno;
  if (::tcgetattr(port.file, &port.before) != 0) return errno;
  if (::flock(port.file, LOCK_EX | LOCK_NB) != 0) return errno;
  port.exclusive = ::ioctl(port.file, TIOCEXCL) == 0;
  termios line = port.before;
  if (!Apply(line, settings)) return EINVAL;
  if (::tcsetattr(port.file, TCSANOW, &line) != 0) return errno;
  ::tcflush(port.file, TCIOFLUSH);
  return 0;
}

}  // namespace

PortResult OpenPort(const std::string& device, const std::string& settings, PortEvents events) {
  auto port = std::make_shared<Port>();
  if (int error = OpenLine(*port, device, settings); error != 0) {
    port->gone = true;  // nothing of the line has been changed that could be put back
    return {0, WhyNotOpened(device, error)};
  }
  port->handle = ++lastHandle;
  port->events = std::move(events);
  if (auto counts = ReadCounts(port->file)) {
    port->counts = true;
    port->lineCounts = *counts;
  }
  port->readable = std::make_unique<QSocketNotifier>(port->file, QSocketNotifier::Read);
  QObject::connect(port->readable.get(), &QSocketNotifier::activated, port->readable.get(),
                   [handle = port->handle] {
                     if (auto open = Opened(handle)) TellBytes(open);
                   });
  openPorts[port->handle] = port;
  return {port->handle, {}};
}

bool WritePort(PortHandle handle, std::span<const std::uint8_t> bytes) {
  std::shared_ptr<Port> port = Opened(handle);
  if (!port || port->gone) return false;
  port->mayHaveMore = true;
  std::size_t written = 0;
  if (port->waiting.empty()) {
    std::optional<std::size_t> now = WriteSome(port, bytes);
    if (!now) return false;
    written = *now;
  }
  if (written == bytes.size()) return true;
  port->waiting.insert(port->waiting.end(), bytes.begin() + static_cast<std::ptrdiff_t>(written),
                       bytes.end());
  WaitToWrite(port);
  return true;
}

void DiscardInput(PortHandle handle) {
  std::array<std::uint8_t, 1024> buffer;
  if (auto port = Opened(handle))
    while (ReadSome(port, buffer) > 0) {
    }
}

// The notifiers may be on the stack: they go when the queue has its next turn.
void ClosePort(PortHandle handle) {
  auto found = openPorts.find(handle);
  if (found == openPorts.end()) return;
  std::shared_ptr<Port> port = found->second;
  openPorts.erase(found);
  port->readable->setEnabled(false);
  if (port->writable) port->writable->setEnabled(false);
  port->readable.release()->deleteLater();
  if (port->writable) port->writable.release()->deleteLater();
}

// A read in vain costs as much as waking up, and between the bytes of a wire each would be in vain:
// after one the notifier tells of bytes, until something is written again.
bool TellPortBytes() {
  if (openPorts.empty()) return false;
  bool any = false;
  auto ports = openPorts;
  for (auto& [handle, port] : ports) {
    if (!port->mayHaveMore) continue;
    port->mayHaveMore = TellBytes(port);
    any |= port->mayHaveMore;
  }
  return any;
}

#endif
