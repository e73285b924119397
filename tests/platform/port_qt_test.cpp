// The serial port on the machine's own pseudo-terminals: bytes both ways, unplugging, refusals.
#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pty.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <QAbstractEventDispatcher>
#include <QList>
#include <QTimer>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "platform/loop.h"
#include "platform/port.h"
#include "platform/qt/qtloop.h"
#include "platform/qt/qtport.h"
#include "support/leastof.h"
#include "support/qt/otheruser.h"
#include "support/testfolder.h"
#include "support/user.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// A pseudo-terminal: `master` is the device's side, `name` what the program opens.
class Terminal {
 public:
  Terminal() {
    char path[128] = "";
    int slave = -1;
    EXPECT_EQ(::openpty(&master, &slave, path, nullptr, nullptr), 0);
    ::close(slave);
    name = path;
  }
  ~Terminal() { Unplug(); }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  void Send(const Bytes& bytes) const {
    EXPECT_EQ(::write(master, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  // What has been written to the device, without waiting.
  Bytes Received() const {
    Bytes all(8192);
    pollfd waiting{.fd = master, .events = POLLIN, .revents = 0};
    ssize_t count = ::poll(&waiting, 1, 0) > 0 ? ::read(master, all.data(), all.size()) : 0;
    all.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return all;
  }
  // As the program has set the line; both ends of a pseudo-terminal share them.
  termios Settings() const {
    termios line{};
    EXPECT_EQ(::tcgetattr(master, &line), 0);
    return line;
  }
  // As another program may have left the line.
  void TurnFlowControlOn() const {
    termios line = Settings();
    line.c_cflag |= CRTSCTS;
    line.c_iflag |= IXON | IXOFF | IXANY;
    EXPECT_EQ(::tcsetattr(master, TCSANOW, &line), 0);
    EXPECT_NE(Settings().c_cflag & CRTSCTS, 0u);
  }
  void Unplug() {
    if (master >= 0) ::close(master);
    master = -1;
  }

  std::string name;

 private:
  int master = -1;
};

class PortQtTest : public PlatformTest {
 protected:
  void TearDown() override {
    ClosePort(port);
    PlatformTest::TearDown();
  }

  PortEvents Events() {
    return {.received =
                [this](std::span<const std::uint8_t> bytes) {
                  received.insert(received.end(), bytes.begin(), bytes.end());
                },
            .disconnected = [this](const std::string& why) { gone.push_back(why); }};
  }
  void Open(const std::string& device) {
    PortResult result = OpenPort(device, "9600,N,8,1", Events());
    port = result.port;
    EXPECT_NE(port, 0) << result.why;
  }
  std::string Refusal(const std::string& device) {
    PortResult result = OpenPort(device, "9600,N,8,1", {});
    EXPECT_EQ(result.port, 0);
    return result.why;
  }
  // Passes until the condition holds; a second of passes at the most.
  template <typename Condition>
  bool Passes(Condition condition) {
    for (int pass = 0; pass < 33000 && !condition(); ++pass) Yield();
    return condition();
  }

  Terminal terminal;
  PortHandle port = 0;
  Bytes received;
  std::vector<std::string> gone;
};

TEST_F(PortQtTest, EveryByteValueComesThroughBothWays) {
  Open(terminal.name);
  Bytes all;
  for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<std::uint8_t>(byte));
  terminal.Send(all);
  EXPECT_TRUE(Passes([&] { return received.size() == 256; }));
  EXPECT_EQ(received, all);
  EXPECT_TRUE(WritePort(port, all));
  EXPECT_EQ(terminal.Received(), all) << "a byte is on the wire when the call returns";
}

TEST_F(PortQtTest, BytesAreToldInAPassNotInsideAWrite) {
  Open(terminal.name);
  terminal.Send({'A', 'X'});
  EXPECT_TRUE(WritePort(port, Bytes{'E'}));
  EXPECT_TRUE(received.empty());
  EXPECT_TRUE(Passes([&] { return !received.empty(); }));
  EXPECT_EQ(received, (Bytes{'A', 'X'}));
}

TEST_F(PortQtTest, BytesAreToldFromTheQueueToo) {
  Open(terminal.name);
  terminal.Send({1, 2, 3});
  RunPending();
  EXPECT_EQ(received, (Bytes{1, 2, 3}));
}

TEST_F(PortQtTest, BytesThatAnotherPassHasTakenAreNoUnplugging) {
  Open(terminal.name);
  int timer = StartTimer(1, [] {
    for (int pass = 0; pass < 3; ++pass) Yield();
  });
  for (int round = 0; round < 50; ++round) {
    received.clear();
    terminal.Send({1, 2, 3});
    EXPECT_TRUE(Passes([&] { return received.size() == 3; }));
    RunPending();
  }
  StopTimer(timer);
  DiscardInput(port);
  for (int pass = 0; pass < 100; ++pass) Yield();
  EXPECT_TRUE(gone.empty());
}

TEST_F(PortQtTest, DiscardedInputIsNeverTold) {
  Open(terminal.name);
  terminal.Send({1, 2, 3});
  DiscardInput(port);
  terminal.Send({4});
  EXPECT_TRUE(Passes([&] { return !received.empty(); }));
  EXPECT_EQ(received, Bytes{4});
}

TEST_F(PortQtTest, MoreThanTheLineTakesIsWrittenInOrder) {
  Open(terminal.name);
  Bytes all;
  for (int i = 0; i < 40000; ++i) all.push_back(static_cast<std::uint8_t>(i * 7));
  EXPECT_TRUE(WritePort(port, all));
  Bytes written;
  Passes([&] {
    Bytes some = terminal.Received();
    written.insert(written.end(), some.begin(), some.end());
    return written.size() >= all.size();
  });
  EXPECT_EQ(written, all);
}

TEST_F(PortQtTest, UnpluggedDeviceIsToldOnce) {
  Open(terminal.name);
  terminal.Unplug();
  EXPECT_TRUE(Passes([&] { return !gone.empty(); }));
  EXPECT_FALSE(WritePort(port, Bytes{'E'}));
  for (int pass = 0; pass < 200; ++pass) Yield();
  EXPECT_EQ(gone, std::vector<std::string>{"The device has been disconnected."});
}

TEST_F(PortQtTest, FailingWriteTellsOfTheUnpluggedDevice) {
  Open(terminal.name);
  terminal.Unplug();
  EXPECT_FALSE(WritePort(port, Bytes{'E'}));
  EXPECT_TRUE(gone.empty()) << "told from a pass";
  EXPECT_TRUE(Passes([&] { return !gone.empty(); }));
  EXPECT_EQ(gone.size(), 1u);
}

TEST_F(PortQtTest, PortClosedBeforeItIsToldStaysSilent) {
  Open(terminal.name);
  terminal.Unplug();
  EXPECT_FALSE(WritePort(port, Bytes{'E'}));
  ClosePort(port);
  RunPending();
  EXPECT_TRUE(gone.empty());
}

TEST_F(PortQtTest, PortClosedInsideReceivedIsLeftAlone) {
  PortResult result =
      OpenPort(terminal.name, "9600,N,8,1", {.received = [&](std::span<const std::uint8_t> bytes) {
                 received.assign(bytes.begin(), bytes.end());
                 ClosePort(port);
               }});
  port = result.port;
  terminal.Send({1});
  EXPECT_TRUE(Passes([&] { return !received.empty(); }));
  RunPending();
  EXPECT_FALSE(WritePort(port, Bytes{1}));
}

TEST_F(PortQtTest, ClosedPortOpensAgain) {
  Open(terminal.name);
  ClosePort(port);
  Open(terminal.name);
  terminal.Send({7});
  EXPECT_TRUE(Passes([&] { return received == Bytes{7}; }));
}

TEST_F(PortQtTest, ClosedPortOpensAgainForAnOrdinaryUser) {
  ASSERT_EQ(::chmod(terminal.name.c_str(), 0666), 0);
  EXPECT_EQ(AsOrdinaryUser([&] {
              for (int round = 0; round < 3; ++round) {
                PortResult result = OpenPort(terminal.name, "9600,N,8,1", {});
                if (result.port == 0) return result.why;
                ClosePort(result.port);
              }
              return std::string("opened three times");
            }),
            "opened three times");
}

TEST_F(PortQtTest, RefusedOpeningLeavesThePortToItsOwner) {
  ASSERT_EQ(::chmod(terminal.name.c_str(), 0666), 0);
  Open(terminal.name);
  Refusal(terminal.name);
  EXPECT_EQ(AsOrdinaryUser([&] {
              bool opened = ::open(terminal.name.c_str(), O_RDWR | O_NOCTTY) >= 0;
              return std::string(opened ? "opened" : std::strerror(errno));
            }),
            std::strerror(EBUSY));
}

TEST_F(PortQtTest, LinkToADeviceIsOpened) {
  std::string link = TestFolder() + "/ttyZEM";
  MakeLink(link, terminal.name);
  Open(link);
  terminal.Send({7});
  EXPECT_TRUE(Passes([&] { return received == Bytes{7}; }));
}

TEST_F(PortQtTest, TheLineIsRaw) {
  terminal.TurnFlowControlOn();
  Open(terminal.name);
  termios line = terminal.Settings();
  EXPECT_EQ(::cfgetispeed(&line), static_cast<speed_t>(B9600));
  EXPECT_EQ(line.c_lflag & (ICANON | ECHO | ISIG), 0u);
  EXPECT_EQ(line.c_iflag & (ICRNL | INLCR | ISTRIP), 0u);
  EXPECT_EQ(line.c_iflag & (IXON | IXOFF | IXANY), 0u) << "flow control in the bytes";
  EXPECT_EQ(line.c_cflag & CRTSCTS, 0u) << "flow control on wires that the cable has not";
  EXPECT_EQ(line.c_oflag & OPOST, 0u);
  EXPECT_EQ(line.c_cflag & (CSIZE | PARENB | CSTOPB), static_cast<tcflag_t>(CS8));
}

// The millisecond that ends a yield's sleep at the latest never comes while this lives.
struct EndlessSleep {
  EndlessSleep() {
    for (const auto& timer : timers) dispatcher.unregisterTimer(timer.timerId);
  }
  ~EndlessSleep() {
    for (const auto& timer : timers)
      dispatcher.registerTimer(timer.timerId, timer.interval, timer.timerType, QueueObject());
  }
  EndlessSleep(const EndlessSleep&) = delete;
  EndlessSleep& operator=(const EndlessSleep&) = delete;

  QAbstractEventDispatcher& dispatcher = *QAbstractEventDispatcher::instance();
  QList<QAbstractEventDispatcher::TimerInfo> timers = dispatcher.registeredTimers(QueueObject());
};

// The reply comes when the yield has looked for bytes and goes to sleep.
TEST_F(PortQtTest, AReplyWakesTheYieldAtOnce) {
  Open(terminal.name);
  Yield();
  EndlessSleep sleep;
  ASSERT_FALSE(sleep.timers.isEmpty());
  bool sent = false, inVain = false;
  QTimer limit;
  QObject::connect(&limit, &QTimer::timeout, [&] { inVain = true; });
  QObject::connect(&sleep.dispatcher, &QAbstractEventDispatcher::aboutToBlock, &limit, [&] {
    if (!std::exchange(sent, true)) terminal.Send({1});
  });
  limit.start(5000);
  while (received.empty() && !inVain) Yield();
  EXPECT_EQ(received, Bytes{1});
  EXPECT_FALSE(inVain) << "the bytes were found only when something else had ended the sleep";
}

// ---- refusals -----------------------------------------------------------------------------------

TEST_F(PortQtTest, MissingDeviceIsNamed) {
  EXPECT_EQ(Refusal("/dev/ttyNone7"),
            "There is no device /dev/ttyNone7. Connect the cable or the adapter and try again.");
}

TEST_F(PortQtTest, PlainFileIsNoPort) {
  std::string file = TestFolder() + "/file";
  MakeFile(file, "x");
  EXPECT_EQ(Refusal(file), file + " is no serial port.");
  EXPECT_EQ(Refusal(TestFolder()), TestFolder() + " is no serial port.");
}

TEST_F(PortQtTest, DeviceOfAnotherProgramIsInUse) {
  int other = ::open(terminal.name.c_str(), O_RDWR | O_NOCTTY);
  ASSERT_GE(other, 0);
  ASSERT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(Refusal(terminal.name),
            terminal.name + " is in use by another program. Close that program and try again.");
  ::close(other);
  Open(terminal.name);
}

TEST_F(PortQtTest, PortThatIsOpenIsInUse) {
  Open(terminal.name);
  EXPECT_EQ(Refusal(terminal.name),
            terminal.name + " is in use by another program. Close that program and try again.");
}

TEST_F(PortQtTest, WrongSettingsAreRefused) {
  for (const char* settings : {"9601,N,8,1", "9600,N,8", "9600,N,8,1 ", "9600;N;8;1", "9600,X,8,1",
                               "9600,N,9,1", "9600,N,8,3", "N,8,1", ""}) {
    PortResult result = OpenPort(terminal.name, settings, {});
    EXPECT_EQ(result.port, 0) << settings;
    EXPECT_EQ(result.why, terminal.name + " is no serial port.");
  }
}

TEST_F(PortQtTest, SettingsSayParityAndBits) {
  port = OpenPort(terminal.name, "1200,O,8,2", {}).port;
  termios line = terminal.Settings();
  EXPECT_EQ(::cfgetispeed(&line), static_cast<speed_t>(B1200));
  EXPECT_EQ(line.c_cflag & CSTOPB, static_cast<tcflag_t>(CSTOPB));
  EXPECT_EQ(ReadLineSettings("9600,E,7,1")->parity, 'E');
  EXPECT_EQ(ReadLineSettings("9600,E,7,1")->dataBits, 7);
}

TEST_F(PortQtTest, ForbiddenDeviceNamesTheGroupToJoin) {
  std::string file = TestFolder() + "/ttyForbidden";
  MakeFile(file, "");
  ASSERT_EQ(::chmod(TestFolder().c_str(), 0755), 0);
  ASSERT_EQ(::chmod(file.c_str(), 0), 0);
  std::string group = ::getgrgid(::getgid())->gr_name;
  EXPECT_EQ(AsOrdinaryUser([&] { return OpenPort(file, "9600,N,8,1", {}).why; }),
            "Your user may not use " + file + ". Join the group \"" + group +
                "\" (sudo usermod -aG " + group + " $USER), then log in again.");
}

// ---- names of ports -----------------------------------------------------------------------------

TEST_F(PortQtTest, DeviceOfTheEnvironmentComesFirst) {
  ::setenv("HALVANE2_COM3", terminal.name.c_str(), 1);
  EXPECT_EQ(DeviceOfPort(3), terminal.name);
  ::unsetenv("HALVANE2_COM3");
  std::string device = DeviceOfPort(3);
  EXPECT_TRUE(device == "/dev/ttyS2" || device == "/dev/ttyUSB2" || device == "/dev/ttyACM2");
}

TEST_F(PortQtTest, NodeWithoutHardwareIsPassedOver) {
  const std::string devices = TestFolder() + "/dev", kernel = TestFolder() + "/tty";
  for (const char* folder : {"", "/ttyS0", "/ttyS1"}) MakeFolder(kernel + folder);
  MakeFolder(devices);
  auto device = [&](int number) {
    return FirstSerialDevice(number, devices, kernel).substr(devices.size());
  };
  EXPECT_EQ(device(1), "/ttyS0") << "nothing is there";
  for (const char* name : {"/ttyS0", "/ttyS1", "/ttyS2"}) MakeFile(devices + name, "");
  MakeFile(kernel + "/ttyS0/type", "0\n");
  MakeFile(kernel + "/ttyS1/type", "4\n");
  EXPECT_EQ(device(1), "/ttyS0") << "nothing else is there";
  for (const char* name : {"/ttyUSB0", "/ttyUSB1", "/ttyUSB2", "/ttyACM0", "/ttyACM3"})
    MakeFile(devices + name, "");
  EXPECT_EQ(device(1), "/ttyUSB0");
  EXPECT_EQ(device(2), "/ttyS1") << "it has hardware";
  EXPECT_EQ(device(3), "/ttyS2") << "the kernel does not tell";
  EXPECT_EQ(device(4), "/ttyACM3");
}

TEST_F(PortQtTest, PortWithoutHardwareNamesTheWayOut) {
  EXPECT_EQ(WhyNotOpened("/dev/ttyS0", EIO),
            "/dev/ttyS0 does not work: there is no hardware behind it, or it was unplugged. A USB "
            "adapter is /dev/ttyUSB0 as a rule; connect it, or name it in the environment: "
            "HALVANE2_COM1=/dev/ttyUSB0 makes it port 1.");
}

// ---- what a pass costs --------------------------------------------------------------------------

TEST_F(PortQtTest, ASilentDeviceIsWaitedForInTimeAndSleep) {
  Open(terminal.name);
  auto microsecondsOfAPass = [](int passes) {
    std::int64_t start = MonotonicMicroseconds();
    for (int pass = 0; pass < passes; ++pass) Yield();
    return static_cast<double>(MonotonicMicroseconds() - start) / passes;
  };
  constexpr int passes = 10000;  // about 0.3 s
  std::clock_t cpu = std::clock();
  double each = microsecondsOfAPass(passes);
  double busy = static_cast<double>(std::clock() - cpu) / CLOCKS_PER_SEC * 1e6 / passes;
  EXPECT_GT(each, 20);
  EXPECT_LT(busy, each / 3) << "the wait spins";
  EXPECT_LT(LeastOf(300, [&] { return microsecondsOfAPass(1000); }), 300);
}

}  // namespace
