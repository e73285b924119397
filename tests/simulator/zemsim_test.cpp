// The program zemsim as others meet it: on its pseudo-terminal, in real time, driven by poll.
#ifdef ZEMSIM
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "exchange.h"
#include "simulator/image.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
constexpr int Patience = 20'000;  // ms; a busy machine is not a failure

// One end of something to read: waits for what is to come, up to the patience.
std::string ReadSome(int descriptor, int timeoutMs) {
  pollfd wait{.fd = descriptor, .events = POLLIN, .revents = 0};
  if (poll(&wait, 1, timeoutMs) <= 0) return {};
  char buffer[512];
  const ssize_t count = read(descriptor, buffer, sizeof buffer);
  return count > 0 ? std::string(buffer, static_cast<std::size_t>(count)) : std::string{};
}

class Zemsim : public testing::Test {
 protected:
  void SetUp() override {
    folder =
        fs::temp_directory_path() / ("zemsim-" + std::to_string(getpid()) + "-" +
                                     testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::create_directories(folder);
  }
  void TearDown() override {
    if (pid > 0) Stop(SIGKILL);
    if (port >= 0) close(port);
    if (output >= 0) close(output);
    fs::remove_all(folder);
  }

  std::string In(std::string_view name) const { return folder / name; }

  // Starts it with a link and these options; the first line it says names the terminal.
  void Start(std::vector<std::string> options) {
    options.insert(options.begin(), {ZEMSIM, "--link", In("port")});
    std::vector<char*> arguments;
    for (std::string& option : options) arguments.push_back(option.data());
    arguments.push_back(nullptr);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
    posix_spawn_file_actions_addclose(&actions, ends[0]);
    ASSERT_EQ(posix_spawn(&pid, ZEMSIM, &actions, nullptr, arguments.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    output = ends[0];
  }
  std::string Line() {
    while (said.find('\n') == std::string::npos) {
      const std::string more = ReadSome(output, Patience);
      if (more.empty()) return "nothing was said";
      said += more;
    }
    const std::string line = said.substr(0, said.find('\n'));
    said.erase(0, line.size() + 1);
    return line;
  }
  int Stop(int signal) {
    kill(pid, signal);
    return Ended();
  }
  int Ended() {
    int status = -1;
    waitpid(pid, &status, 0);
    pid = 0;
    return status;
  }

  void Open() {
    port = open(In("port").c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    ASSERT_GE(port, 0);
    tcflush(port, TCIOFLUSH);
  }
  void Reopen() {
    close(port);
    Open();
  }
  std::string Ask(std::string_view bytes, std::size_t length) {
    EXPECT_EQ(write(port, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    std::string reply;
    while (reply.size() < length) {
      const std::string more = ReadSome(port, Patience);
      if (more.empty()) break;
      reply += more;
    }
    return reply;
  }
  void Control(std::string_view line) {
    std::ofstream(In("control"), std::ios::app) << line << std::endl;
  }

  fs::path folder;
  pid_t pid = 0;
  int output = -1;
  int port = -1;
  std::string said;
};

TEST_F(Zemsim, NamesItsTerminalAndRemovesTheLinkAtTheEnd) {
  Start({"--quiet"});
  const std::string line = Line();
  ASSERT_EQ(line.substr(0, 9), "terminal ");
  EXPECT_EQ(fs::read_symlink(In("port")), line.substr(9));
  EXPECT_EQ(Stop(SIGTERM), 0);
  EXPECT_FALSE(fs::is_symlink(In("port")));
}

TEST_F(Zemsim, EndsOnAnInterruptToo) {
  Start({"--quiet"});
  Line();
  EXPECT_EQ(Stop(SIGINT), 0);
  EXPECT_FALSE(fs::is_symlink(In("port")));
}

TEST_F(Zemsim, AnswersOnARawTerminal) {
  Start({"--quiet", "--unpaced"});
  Line();
  Open();
  EXPECT_EQ(Ask("E", 2), "AX");
  EXPECT_EQ(Ask("F", 27).size(), 27u);
  // Neither carriage return nor line feed nor any control byte is changed on its way.
  EXPECT_EQ(Ask("G", 43).back(), '\r');
  EXPECT_EQ(Ask("R3\x0D", 2), "AX");
  EXPECT_EQ(Ask("G", 43).substr(14, 2), "0D");
  EXPECT_EQ(Ask("R3\x0A", 2), "AX");
  EXPECT_EQ(Ask("G", 43).substr(14, 2), "0A");
  EXPECT_EQ(Ask("R3\x03", 2), "AX");
  EXPECT_EQ(Ask("G", 43).substr(14, 2), "03");
  EXPECT_EQ(Ask("R3\x11", 2), "AX");
  EXPECT_EQ(Ask("G", 43).substr(14, 2), "11");
  EXPECT_EQ(Ask("R3\xFF", 2), "AX");
  EXPECT_EQ(Ask("G", 43).substr(14, 2), "FF");
}

TEST_F(Zemsim, SurvivesManyUsers) {
  Start({"--quiet", "--unpaced"});
  Line();
  Open();
  for (int i = 0; i < 500; ++i) {
    ASSERT_EQ(Ask("E", 2), "AX") << i;
    Reopen();
  }
}

// A program that was killed leaves the terminal as it had it, replies unread.
TEST_F(Zemsim, ALeavingUserLeavesNothingBehind) {
  Start({"--unpaced", "--control", In("control")});
  Line();
  Open();
  termios rude{};
  ASSERT_EQ(tcgetattr(port, &rude), 0);
  rude.c_lflag |= ICANON | ECHO | ISIG;
  rude.c_oflag |= OPOST | ONLCR;
  rude.c_iflag |= ICRNL | IXON;
  ASSERT_EQ(tcsetattr(port, TCSANOW, &rude), 0);
  ASSERT_EQ(ioctl(port, TIOCEXCL), 0);
  ASSERT_EQ(write(port, "F\n", 2), 2);
  close(port);
  for (int i = 0; i < 2; ++i) {  // after the second it has been once around, and has noticed
    Control("clear");
    EXPECT_EQ(Line(), "control: clear");
  }
  port = open(In("port").c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
  ASSERT_GE(port, 0);
  termios found{};
  ASSERT_EQ(tcgetattr(port, &found), 0);
  EXPECT_EQ(found.c_lflag & (ICANON | ECHO | ISIG), 0u);
  EXPECT_EQ(found.c_oflag & OPOST, 0u);
  EXPECT_EQ(found.c_iflag & (ICRNL | IXON), 0u);
  EXPECT_EQ(Ask("E", 2), "AX");
}

TEST_F(Zemsim, PacesAtItsBaudRate) {
  Start({"--quiet"});
  Line();
  Open();
  Ask("E", 2);
  const auto begin = Clock::now();
  for (int i = 0; i < 5; ++i) ASSERT_EQ(Ask("F", 27).size(), 27u);
  const double ms = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
  EXPECT_GE(ms,
            5 * 29.166);  // never faster than the wire; slower only by what this machine is busy
}

TEST_F(Zemsim, SavesTheImageAfterProgrammingAndLoadsItAgain) {
  Start({"--quiet", "--unpaced", "--image", In("memory")});
  Line();
  EXPECT_FALSE(fs::exists(In("memory")));
  Open();
  sim::Image image = sim::DefaultImage();
  image[100] ^= 0x55;
  ASSERT_EQ(Ask("P1", 2), "AX");
  for (const std::string& record : RecordsOf(image)) {
    ASSERT_EQ(Ask(record, 2), record[1] == '9' ? "PC" : "PN");
  }
  ASSERT_EQ(Ask("P2", 2), "AX");
  ASSERT_EQ(Ask(S1(0xB6C8, {0x5A}), 2), "PN");
  ASSERT_EQ(Ask("S9030000FC", 2), "PC");
  image[200] = 0x5A;
  EXPECT_EQ(Stop(SIGTERM), 0);
  EXPECT_EQ(sim::LoadImage(In("memory")), image);

  close(output);
  said.clear();
  Start({"--quiet", "--unpaced", "--image", In("memory"), "--name", "AGAIN"});
  Line();
  Reopen();
  EXPECT_EQ(Ask("B", 19).substr(0, 7), std::string("BAGAIN\0", 7));
}

TEST_F(Zemsim, RefusesAFileThatIsNoImage) {
  std::ofstream(In("memory")) << "somebody's letter";
  Start({"--image", In("memory")});
  EXPECT_NE(Ended(), 0);
  EXPECT_EQ(fs::file_size(In("memory")), 17u);
}

TEST_F(Zemsim, RefusesToReplaceAFileByItsLink) {
  std::ofstream(In("port")) << "somebody's letter";
  Start({});
  EXPECT_NE(Ended(), 0);
  EXPECT_EQ(fs::file_size(In("port")), 17u);
}

TEST_F(Zemsim, ObeysItsControlFile) {
  Start({"--unpaced", "--control", In("control")});
  Line();
  Open();
  Control("wrong-second@E");
  EXPECT_EQ(Line(), "control: wrong-second@E");
  EXPECT_EQ(Ask("E", 2), "A?");
  Control("clear");
  EXPECT_EQ(Line(), "control: clear");
  EXPECT_EQ(Ask("E", 2), "AX");
  Control("quit");
  EXPECT_EQ(Ended(), 0);
}

TEST_F(Zemsim, UnpluggedTheTerminalIsGoneAndReplugedItIsBackUnderTheLink) {
  Start({"--unpaced", "--control", In("control")});
  Line();
  Open();
  EXPECT_EQ(Ask("E", 2), "AX");
  Control("unplug");
  EXPECT_EQ(Line(), "control: unplug");
  EXPECT_EQ(Line(), "unplugged");
  EXPECT_FALSE(fs::is_symlink(In("port")));
  pollfd wait{.fd = port, .events = POLLIN, .revents = 0};
  EXPECT_EQ(poll(&wait, 1, Patience), 1);
  char byte;
  EXPECT_LE(read(port, &byte, 1), 0);
  close(port);
  Control("replug");
  EXPECT_EQ(Line(), "control: replug");
  EXPECT_EQ(Line().substr(0, 9), "terminal ");
  EXPECT_EQ(Line(), "replugged");
  Open();
  EXPECT_EQ(Ask("E", 2), "AX");
}

TEST_F(Zemsim, LogsTheTraffic) {
  Start({"--quiet", "--unpaced", "--log", In("log")});
  Line();
  Open();
  Ask("E", 2);
  EXPECT_EQ(Stop(SIGTERM), 0);
  std::ifstream log(In("log"));
  std::string sent, answered;
  std::getline(log, sent);
  std::getline(log, answered);
  EXPECT_EQ(sent.substr(12), " > 45");
  EXPECT_EQ(answered.substr(12), " < 41 58");
}

// A command that is not finished in 200 ms is forgotten, but not because nobody let the unit hear.
TEST_F(Zemsim, HeldBackInTheMiddleOfACommandItHearsTheRest) {
  Start({"--control", In("control")});
  Line();
  Open();
  ASSERT_EQ(write(port, "R3", 2), 2);
  for (int i = 0; i < 2; ++i) {  // after the second it has been once around, and has heard
    Control("clear");
    EXPECT_EQ(Line(), "control: clear");
  }
  kill(pid, SIGSTOP);
  ASSERT_EQ(waitpid(pid, nullptr, WUNTRACED), pid);
  ASSERT_EQ(write(port, "\x05", 1), 1);
  pollfd nothing{.fd = output, .events = POLLIN, .revents = 0};
  EXPECT_EQ(poll(&nothing, 1, 400), 0);
  kill(pid, SIGCONT);
  EXPECT_EQ(Ask("", 2), "AX");
}

TEST_F(Zemsim, IdleItSleeps) {
  Start({"--quiet", "--control", In("control")});
  Line();
  const auto ticks = [&] {
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string word;
    long user = 0, system = 0;
    for (int i = 1; i < 14; ++i) stat >> word;
    stat >> user >> system;
    return user + system;
  };
  const long before = ticks();
  pollfd nothing{.fd = output, .events = POLLIN, .revents = 0};
  EXPECT_EQ(poll(&nothing, 1, 1000), 0);  // a second in which nothing happens
  EXPECT_LE(ticks() - before, 10);        // of a hundred
}

}  // namespace
#endif
