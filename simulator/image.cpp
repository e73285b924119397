// The built-in V8 in engineering units, row by row as the memory lies, and the image file.
#include "simulator/image.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <span>
#include <string_view>
#include <system_error>

namespace sim {
namespace {

// Fills an image from engineering values; each routine is one kind of field.
class Writer {
 public:
  Image image{};

  void Raw(int index, double value) {
    image[static_cast<std::size_t>(index)] =
        static_cast<std::uint8_t>(std::clamp(std::nearbyint(value), 0.0, 255.0));
  }
  void Scaled(int index, double scale, std::span<const double> values) {
    for (double value : values) Raw(index++, value * scale);
  }
  void Temperature(int index, double celsius) { Raw(index, (celsius + 30) * 2.3182); }
  void Volts(int index, double volts) { Raw(index, volts * 51); }
  void Kpa(int index, double kpa) { Raw(index, kpa * 2.4425); }
  // Engine speed: 8191 counts for 12000 rpm, high byte first.
  void Speed(int index, double rpm) {
    const int word = static_cast<int>(std::nearbyint(rpm * 8191 / 12000));
    Raw(index, word / 256);
    Raw(index + 1, word % 256);
  }
  void Text(int index, std::string_view text) {
    for (char letter : text) Raw(index++, static_cast<unsigned char>(letter));
  }
};

constexpr double SpeedAxis[] = {600, 1000, 1500, 2000, 2800, 3600, 4500, 5600};
constexpr double LoadAxis[] = {25, 35, 45, 55, 65, 75, 87, 100};

// Degrees; a row for each load, a column for each speed.
constexpr double AdvanceTable[] = {20, 24, 30, 34, 38, 40, 40, 40,  //
                                   18, 23, 29, 33, 37, 39, 39, 39,  //
                                   16, 21, 27, 31, 35, 37, 38, 38,  //
                                   14, 19, 25, 29, 33, 35, 36, 36,  //
                                   12, 17, 22, 27, 31, 33, 34, 34,  //
                                   11, 15, 20, 25, 29, 31, 32, 32,  //
                                   10, 13, 18, 22, 26, 29, 30, 30,  //
                                   8,  11, 15, 19, 23, 26, 28, 28};

// Correction of the fundamental pulse width, as a fraction.
constexpr double FuelTable[] = {-.16, -.14, -.12, -.10, -.08, -.07, -.08, -.11,  //
                                -.14, -.12, -.10, -.08, -.06, -.05, -.06, -.09,  //
                                -.12, -.10, -.08, -.06, -.04, -.03, -.04, -.07,  //
                                -.10, -.08, -.06, -.04, -.02, -.01, -.02, -.05,  //
                                -.09, -.07, -.04, -.02, .00,  .01,  .00,  -.03,  //
                                -.08, -.06, -.03, -.01, .01,  .03,  .02,  -.02,  //
                                -.07, -.05, -.02, .00,  .02,  .04,  .03,  -.01,  //
                                -.06, -.04, -.01, .01,  .03,  .05,  .04,  .00};

constexpr double AirFuelTable[] = {14.64, 14.64, 14.64, 14.64, 14.64, 14.64, 14.6, 14.2,  //
                                   14.64, 14.64, 14.64, 14.64, 14.64, 14.64, 14.5, 14.0,  //
                                   14.64, 14.64, 14.64, 14.64, 14.64, 14.64, 14.4, 13.8,  //
                                   14.64, 14.64, 14.64, 14.64, 14.64, 14.5,  14.2, 13.6,  //
                                   14.5,  14.5,  14.5,  14.5,  14.4,  14.2,  13.8, 13.4,  //
                                   14.2,  14.2,  14.2,  14.0,  13.8,  13.6,  13.4, 13.1,  //
                                   13.6,  13.6,  13.5,  13.4,  13.3,  13.2,  13.0, 12.9,  //
                                   13.2,  13.2,  13.1,  13.0,  12.9,  12.8,  12.7, 12.6};

constexpr double WarmUp[] = {.70, .60, .50, .40, .31, .23, .16, .10, .06, .03, .0};
constexpr double CoolantAdvance[] = {8, 7, 6, 5, 4, 3, 2, 1, 0, 0, 0, 0};
constexpr double EgoVolts[] = {0, .45, .65, 1.6, 2.5, 4.0, 4.2, 4.62, 4.8, 5.0};
constexpr double EgoRatios[] = {22.4, 15.89, 14.9, 14.72, 14.64, 14.3, 13.8, 12.6, 11.2, 10.0};
constexpr double BlendSpeeds[] = {400, 900, 1600, 2300, 3000, 3700, 4600, 5600};

void WriteLimitsAndSensors(Writer& w) {
  w.Raw(0, 8 + 16 + 32 + 64 + 128);  // alternate firing, coil cut-off, every control enabled
  w.Raw(2, 0.5 * 8);
  w.Raw(3, 10 * 4.25);
  w.Speed(4, 5800);
  w.Speed(6, 200);
  w.Volts(8, 4.9);
  w.Volts(9, 0.1);
  w.Temperature(10, 60);
  w.Volts(11, 4.9);
  w.Volts(12, 0.1);
  w.Temperature(13, 25);
  w.Volts(14, 4.9);
  w.Volts(15, 0.1);
  w.Volts(16, 0.6);
  w.Volts(17, 4.95);
  w.Volts(18, 0.1);
  w.Kpa(19, 50);
  w.Raw(20, 30);
  w.Raw(21, 30 * 2.55);
  w.Raw(22, 0.25 * 4.25);
  w.Raw(23, 0.75 * 4.25);
  w.Raw(25, 8 * 4.25);
  w.Speed(26, 5000);
  w.Raw(28, 26);
  w.Raw(29, 6);
}

void WriteTables(Writer& w) {
  for (int i = 0; i < 8; ++i) {
    w.Speed(30 + 2 * i, SpeedAxis[i]);
    w.Kpa(46 + i, LoadAxis[i]);
    w.Speed(423 + 2 * i, BlendSpeeds[i]);
  }
  w.Scaled(54, 4.25, AdvanceTable);
  for (int i = 0; i < 64; ++i) {
    w.Raw(118 + i, std::trunc(FuelTable[i] * 255) + 127);
    w.Raw(325 + i, std::trunc((14.64 / AirFuelTable[i] - 0.5) * 255));
  }
}

void WriteEnrichments(Writer& w) {
  const double start[] = {.4, .1, .25, .05};
  w.Scaled(182, 85, start);
  w.Raw(186, 3 * 2.438);  // throttle rate, V/s
  w.Raw(187, 0.3 * 32.5);
  const double acceleration[] = {.3, .15};
  w.Scaled(188, 85, acceleration);
  w.Raw(190, 0.5 * 4);
  w.Raw(191, .2 * 85);
  w.Raw(192, .34 * 255);
  w.Raw(208, 2200 / 15.31);
  w.Raw(209, 1800 / 15.31);
  w.Raw(210, 3 * 2.438);
  w.Kpa(211, 28);
  w.Raw(212, .1 * 85);
  w.Volts(213, 0.6 + 0.08);
  w.Raw(215, 100 / 2);  // microseconds a volt
  w.Raw(216, .1 * 85);
  w.Raw(217, .1 * 85);
  w.Raw(218, 7);  // one gama: 14.848 ms, in eight-dot-eight of 256/125 ms
  w.Raw(219, 64);
  w.Raw(220, 1);
  w.Temperature(239, 0);
  w.Raw(240, 400 / 15.25);
  w.Raw(241, 6 * 16);
  w.Raw(242, 0);
  w.Raw(243, 0);
  w.Scaled(311, 85, WarmUp);
}

void WriteIdleAndEgo(Writer& w) {
  w.Temperature(193, 0);
  w.Temperature(194, 40);
  w.Temperature(195, 80);
  const double speeds[] = {1200, 1000, 800};
  w.Scaled(196, 1 / 15.31, speeds);
  w.Raw(199, 3);
  w.Raw(200, 3);
  w.Raw(201, 120);
  w.Raw(202, 100 / 15.31);
  w.Raw(203, 1);
  w.Raw(204, 120 / 4.096 - 1);
  w.Raw(205, 100 / 4.096 - 1);
  w.Temperature(206, 50);
  w.Raw(207, .15 * 255);
  w.Kpa(214, 24);
  w.Raw(222, 32);
  w.Scaled(225, 4.25, CoolantAdvance);
  w.Raw(237, 0.5 * 20.74);
  w.Raw(238, 0.5 * 20.74);
  double a[10], b[10];
  for (int i = 0; i < 10; ++i) {
    a[i] = i == 0 ? 0 : i == 9 ? 255 : std::trunc(EgoVolts[i] * 51);
    b[i] = std::min(255.0, std::trunc(256 - (14.64 / EgoRatios[i] - 0.5) * 255));
    w.Raw(406 + i, b[i]);
  }
  for (int i = 0; i < 9; ++i) {
    w.Raw(389 + i, std::abs(b[i + 1] - b[i]) / (a[i + 1] - a[i]) * 10);
    if (i > 0) w.Raw(397 + i, a[i]);
  }
}

void WriteOutputsAndName(Writer& w) {
  for (int row = 0; row < 8; ++row) {
    for (int column = 0; column < 8; ++column) {
      w.Raw(244 + 8 * row + column, (row + column) * 7 / 100.0 * 255);
    }
  }
  w.Raw(308, 60);
  w.Speed(309, 5600);
  w.Raw(323, 1.2 * 32);
  w.Raw(324, 255);
  const double highMapSpeed = 4000 * 5.46125;
  w.Raw(416, std::floor(highMapSpeed / 256));
  w.Raw(417, std::fmod(highMapSpeed, 256));
  w.Raw(418, (85 - 10) * 2.7128);
  w.Raw(420, 8);
  w.Raw(421, 16);
  w.Raw(422, 32);
  w.Text(449, "SIMV8");
  w.Raw(463, 255);
  w.Raw(464, 2 * 13);
}

}  // namespace

const Image& DefaultImage() {
  static const Image image = [] {
    Writer writer;
    WriteLimitsAndSensors(writer);
    WriteTables(writer);
    WriteEnrichments(writer);
    WriteIdleAndEgo(writer);
    WriteOutputsAndName(writer);
    return writer.image;
  }();
  return image;
}

std::optional<Image> LoadImage(const std::filesystem::path& path) {
  std::error_code error;
  if (std::filesystem::file_size(path, error) != ImageSize || error) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  Image image;
  file.read(reinterpret_cast<char*>(image.data()), ImageSize);
  if (!file) return std::nullopt;
  return image;
}

bool SaveImage(const std::filesystem::path& path, const Image& image) {
  std::filesystem::path beside = path;
  beside += ".new";
  std::ofstream file(beside, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(image.data()), ImageSize);
  file.close();
  std::error_code error;
  if (file) std::filesystem::rename(beside, path, error);
  if (file && !error) return true;
  std::filesystem::remove(beside, error);
  return false;
}

}  // namespace sim
