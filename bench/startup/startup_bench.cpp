// From exec to the first painted pixel, resident memory and CPU at rest: the program against an
// empty window, in turns, on the display that DISPLAY names (no window manager is needed).
//   startup_bench [ROUNDS]
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::duration;
using std::chrono::milliseconds;

// A place inside of both windows, and the colour that the program cannot have there.
constexpr int ProbeX = 220;
constexpr int ProbeY = 320;
constexpr unsigned long RootColour = 0x123456;

unsigned long PixelAt(Display* display, int x, int y) {
  XImage* image = XGetImage(display, DefaultRootWindow(display), x, y, 1, 1, AllPlanes, ZPixmap);
  if (!image) return RootColour;
  unsigned long pixel = XGetPixel(image, 0, 0) & 0xFFFFFF;
  XDestroyImage(image);
  return pixel;
}

struct Run {
  double firstPaintMs = 0;
  double residentMib = 0;
  double restCpuMs = 0;  // CPU time of one second at rest
};

double ResidentMib(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);)
    if (line.rfind("VmRSS:", 0) == 0) return std::atof(line.c_str() + 6) / 1024;
  return 0;
}

double CpuMs(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string text((std::istreambuf_iterator<char>(file)), {});
  text.erase(0, text.rfind(')') + 1);
  unsigned long user = 0, kernel = 0;
  std::sscanf(text.c_str(), " %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %lu %lu", &user, &kernel);
  return 1000.0 * static_cast<double>(user + kernel) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

pid_t Start(const char* program, const std::string& folder) {
  pid_t process = fork();
  if (process != 0) return process;
  int nothing = open("/dev/null", O_WRONLY);
  dup2(nothing, 2);
  if (chdir(folder.c_str()) != 0) _exit(126);
  execl(program, program, static_cast<char*>(nullptr));
  _exit(127);
}

Run Measure(Display* display, const char* program, const std::string& folder, bool rest) {
  Run run;
  XClearWindow(display, DefaultRootWindow(display));
  XSync(display, False);
  auto start = Clock::now();
  pid_t process = Start(program, folder);
  while (PixelAt(display, ProbeX, ProbeY) == RootColour) {
    if (Clock::now() - start > std::chrono::seconds(10)) {
      std::fprintf(stderr, "%s painted nothing\n", program);
      std::exit(1);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
  run.firstPaintMs = duration<double, std::milli>(Clock::now() - start).count();
  std::this_thread::sleep_for(milliseconds(500));
  run.residentMib = ResidentMib(process);
  if (rest) {
    double before = CpuMs(process);
    std::this_thread::sleep_for(milliseconds(3000));
    run.restCpuMs = (CpuMs(process) - before) / 3;
  }
  kill(process, SIGKILL);
  waitpid(process, nullptr, 0);
  std::this_thread::sleep_for(milliseconds(50));
  return run;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

struct Summary {
  std::vector<double> paint, memory;
  double rest = 0;
};

void Take(Summary& summary, const Run& run) {
  summary.paint.push_back(run.firstPaintMs);
  summary.memory.push_back(run.residentMib);
}

}  // namespace

int main(int argc, char** argv) {
  int rounds = argc > 1 ? std::atoi(argv[1]) : 15;
  Display* display = XOpenDisplay(nullptr);
  if (!display) {
    std::fprintf(stderr, "no display: start this under Xvfb (xvfb-run -a startup_bench)\n");
    return 1;
  }
  XSetWindowBackground(display, DefaultRootWindow(display), RootColour);
  std::string folder = std::filesystem::temp_directory_path() / "halvane2-startup";
  std::filesystem::create_directories(folder);
  setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
  setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);

  Summary program, empty;
  Measure(display, PROGRAM, folder, false);  // warms the disk cache and makes the first run
  Measure(display, EMPTY_WINDOW, folder, false);
  for (int round = 0; round < rounds; ++round) {
    Take(empty, Measure(display, EMPTY_WINDOW, folder, false));
    Take(program, Measure(display, PROGRAM, folder, false));
  }
  program.rest = Measure(display, PROGRAM, folder, true).restCpuMs;

  double emptyPaint = Median(empty.paint), paint = Median(program.paint);
  double emptyMemory = Median(empty.memory), memory = Median(program.memory);
  std::printf("first paint   %6.1f ms   empty window %6.1f ms   ratio %.2f (to reach 1.50)\n",
              paint, emptyPaint, paint / emptyPaint);
  std::printf("resident      %6.1f MiB  empty window %6.1f MiB  ratio %.2f (to reach 1.50)\n",
              memory, emptyMemory, memory / emptyMemory);
  std::printf("at rest       %6.1f ms of CPU in a second\n", program.rest);
  std::filesystem::remove_all(folder);
  return 0;
}
