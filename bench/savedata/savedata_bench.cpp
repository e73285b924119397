// A save (BIN, encoder, S19, each durable and never half there) against the same bytes written to
// the same two names with an fsync each, in turns, in the current folder. It is to take less than
// three times as long; the exit code tells.
//   savedata_bench [ROUNDS]
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "platform/files.h"

namespace {

constexpr double ratioToStayUnder = 3;

struct Peer {
  std::string path;
  std::vector<std::uint8_t> bytes;
};

void WriteDurably(const Peer& peer) {
  const int file = ::open(peer.path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  const auto size = static_cast<ssize_t>(peer.bytes.size());
  const bool good = file >= 0 && ::write(file, peer.bytes.data(), peer.bytes.size()) == size &&
                    ::fsync(file) == 0 && ::close(file) == 0;
  if (good) return;
  std::perror(peer.path.c_str());
  std::exit(2);
}

template <typename Routine>
double Microseconds(Routine routine) {
  const auto begin = std::chrono::steady_clock::now();
  routine();
  const std::chrono::duration<double, std::micro> taken = std::chrono::steady_clock::now() - begin;
  return taken.count();
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2),
                   values.end());
  return values[values.size() / 2];
}

// The factory calibration under a name of ours in the folder.
void LoadCalibration(const std::filesystem::path& folder) {
  ResetCalibrationState();
  CurrentBinPath = BASE_BIN;
  LoadBaseCalibration();
  CurrentBinPath = TargetBinPath = (folder / "saved.bin").string();
}

bool Save() {
  CalChanged = true;
  savedata();
  return !CalChanged;
}

}  // namespace

int main(int count, char** arguments) {
  const int rounds = count > 1 ? std::max(1, std::atoi(arguments[1])) : 200;
  const auto folder = std::filesystem::current_path() / "savedata_bench.files";
  std::filesystem::create_directory(folder);
  LoadCalibration(folder);
  if (!Save()) return 2;
  const Peer peers[] = {
      {(folder / "peer.bin").string(), ReadWholeFile(TargetBinPath)},
      {(folder / "peer.S19").string(), ReadWholeFile((folder / "saved.S19").string())}};
  std::vector<double> saves, writes;
  for (int round = 0; round < rounds; ++round) {
    saves.push_back(Microseconds([] {
      if (!Save()) std::exit(2);
    }));
    writes.push_back(Microseconds([&] {
      for (const Peer& peer : peers) WriteDurably(peer);
    }));
  }
  std::filesystem::remove_all(folder);
  const double save = Median(saves), write = Median(writes), ratio = save / write;
  std::printf("savedata %.0f us, two writes with fsync %.0f us, ratio %.2f (goal < %.0f)\n", save,
              write, ratio, ratioToStayUnder);
  return ratio < ratioToStayUnder ? 0 : 1;
}
