// The terminal's own end is held open all the time: without that, every poll would return at once
// with a hang-up while nobody is connected, and the settings would be lost between two users.
#include "simulator/terminal/pty.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/inotify.h>
#endif

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace sim {

Pty::Pty() {
  if (!OpenEnds()) Close();
}

Pty::~Pty() { Close(); }

bool Pty::OpenEnds() {
  const auto fails = [&](const char* what) {
    error_ = std::string(what) + ": " + std::strerror(errno);
    return false;
  };
  master_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0) {
    return fails("no pseudo-terminal");
  }
  name_ = ptsname(master_);
  slave_ = open(name_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (slave_ < 0) return fails("the pseudo-terminal does not open");
  MakeRaw();
#ifdef __linux__
  watch_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (watch_ >= 0) inotify_add_watch(watch_, name_.c_str(), IN_OPEN | IN_CLOSE);
#endif
  return true;
}

void Pty::MakeRaw() const {
  termios settings{};
  tcgetattr(slave_, &settings);
  cfmakeraw(&settings);
  cfsetispeed(&settings, B9600);
  cfsetospeed(&settings, B9600);
  tcsetattr(slave_, TCSANOW, &settings);
}

std::vector<std::uint8_t> Pty::Read() {
  std::array<std::uint8_t, 4096> buffer;
  const ssize_t count = read(master_, buffer.data(), buffer.size());
  if (count <= 0) return {};
  return {buffer.begin(), buffer.begin() + count};
}

void Pty::Write(std::span<const std::uint8_t> bytes) {
  if (watch_ >= 0 && users_ <= 0) return;
  while (!bytes.empty()) {
    const ssize_t count = write(master_, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

void Pty::NoteUsers() {
#ifdef __linux__
  alignas(inotify_event) std::array<char, 4096> buffer;
  bool closed = false;
  for (ssize_t count; (count = read(watch_, buffer.data(), buffer.size())) > 0;) {
    for (ssize_t at = 0; at < count;) {
      inotify_event event;
      std::memcpy(&event, buffer.data() + at, sizeof event);
      at += static_cast<ssize_t>(sizeof event + event.len);
      if ((event.mask & IN_OPEN) != 0) ++users_;
      if ((event.mask & IN_CLOSE) != 0 && --users_ <= 0) closed = true;
    }
  }
  if (!closed) return;
  tcflush(slave_, TCIFLUSH);
  ioctl(slave_, TIOCNXCL);
  if (users_ <= 0) MakeRaw();
#endif
}

void Pty::Close() {
  for (int* descriptor : {&master_, &slave_, &watch_}) {
    if (*descriptor >= 0) close(*descriptor);
    *descriptor = -1;
  }
  users_ = 0;
}

}  // namespace sim
