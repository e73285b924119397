// What the measurements against the simulated unit share: a folder of their own, the unit as a
// child process on COM1, and what it has logged.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

// Goes with its content. The user's own settings stay as they are.
struct BenchFolder {
  BenchFolder() {
    std::array<char, 32> name{"/tmp/halvane2_bench.XXXXXX"};
    if (!mkdtemp(name.data())) exit(2);
    path = name.data();
    setenv("XDG_CONFIG_HOME", path.c_str(), 1);
    setenv("HALVANE2_COM1", Terminal().c_str(), 1);
  }
  ~BenchFolder() { std::filesystem::remove_all(path); }
  BenchFolder(const BenchFolder&) = delete;
  BenchFolder& operator=(const BenchFolder&) = delete;
  std::string Terminal() const { return path / "COM1"; }
  std::string Log() const { return path / "traffic"; }
  std::filesystem::path path;
};

// The simulator, from here until this object goes.
struct BenchUnit {
  explicit BenchUnit(const BenchFolder& folder, bool paced = true) {
    const std::string terminal = folder.Terminal(), log = folder.Log();
    std::vector<const char*> arguments = {ZEMSIM, "--quiet", "--link", terminal.c_str()};
    if (paced)
      arguments.insert(arguments.end(), {"--log", log.c_str()});
    else
      arguments.push_back("--unpaced");
    arguments.push_back(nullptr);
    std::fflush(stdout);
    process = fork();
    if (process == 0) {
      if (!freopen("/dev/null", "w", stdout)) _exit(127);
      execv(ZEMSIM, const_cast<char**>(arguments.data()));
      _exit(127);
    }
    while (!std::filesystem::exists(terminal))
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  ~BenchUnit() {
    kill(process, SIGTERM);
    waitpid(process, nullptr, 0);
  }
  BenchUnit(const BenchUnit&) = delete;
  BenchUnit& operator=(const BenchUnit&) = delete;
  pid_t process = 0;
};

// A run of bytes that the unit has heard.
struct HeardBytes {
  double seconds;     // of the unit's clock, at the first of them
  std::string bytes;  // " 46", " 52 55 00"
};

// What the unit has logged so far.
inline std::vector<HeardBytes> HeardByUnit(const BenchFolder& folder) {
  std::vector<HeardBytes> heard;
  std::ifstream log(folder.Log());
  double seconds = 0;
  char direction = 0;
  for (std::string bytes; log >> seconds >> direction && std::getline(log, bytes);)
    if (direction == '>') heard.push_back({seconds, bytes});
  return heard;
}

// A place of a sorted copy, 0.5 is the median; 0 of nothing.
inline double Quantile(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const auto last = static_cast<double>(values.size() - 1);
  return values[static_cast<std::size_t>(last * share)];
}
