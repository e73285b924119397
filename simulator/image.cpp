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

constexpr double SpeedAxis[] = {750, 1500, 2250, 3000, 3750, 4500, 5250, 6000};
constexpr double LoadAxis[] = {20, 30, 40, 50, 60, 70, 85, 100};

// Degrees; a row for each load, a column for each speed.
constexpr double AdvanceTable[] = {18, 28, 34, 38, 40, 41, 42, 42,  //
                                   18, 27, 33, 37, 39, 40, 41, 41,  //
                                   17, 26, 32, 36, 38, 39, 40, 40,  //
                                   16, 24, 30, 34, 36, 38, 38, 38,  //
                                   15, 22, 28, 32, 34, 36, 36, 36,  //
                                   14, 20, 26, 30, 32, 34, 34, 34,  //
                                   12, 17, 23, 27, 30, 32, 32, 32,  //
                                   10, 14, 20, 24, 27, 29, 30, 30};

// Correction of the fundamental pulse width, as a fraction.
constexpr double FuelTable[] = {-.20, -.18, -.16, -.14, -.13, -.13, -.15, -.18,  //
                                -.17, -.15, -.13, -.11, -.10, -.10, -.12, -.15,  //
                                -.15, -.12, -.10, -.08, -.07, -.07, -.09, -.13,  //
                                -.13, -.10, -.08, -.05, -.04, -.04, -.07, -.11,  //
                                -.12, -.09, -.06, -.03, -.02, -.02, -.05, -.09,  //
                                -.11, -.08, -.04, -.01, .01,  .01,  -.03, -.07,  //
                                -.10, -.07, -.03, .01,  .03,  .03,  -.01, -.06,  //
                                -.10, -.06, -.02, .02,  .05,  .04,  .00,  -.05};

constexpr double AirFuelTable[] = {14.64, 14.64, 14.64, 14.64, 14.64, 14.64, 14.3, 14,    //
                                   14.64, 14.64, 14.64, 14.64, 14.64, 14.64, 14.2, 13.8,  //
                                   14.64, 14.64, 14.64, 14.64, 14.64, 14.5,  14,   13.6,  //
                                   14.64, 14.64, 14.64, 14.64, 14.64, 14.3,  13.8, 13.4,  //
                                   14.64, 14.64, 14.64, 14.64, 14.4,  14,    13.5, 13.2,  //
                                   14.2,  14.2,  14.1,  14,    13.8,  13.5,  13.2, 13,    //
                                   13.5,  13.4,  13.4,  13.3,  13.2,  13.1,  12.9, 12.8,  //
                                   12.9,  12.8,  12.8,  12.8,  12.8,  12.8,  12.7, 12.6};

constexpr double WarmUp[] = {1.1, .9, .74, .6, .47, .36, .27, .18, .1, .04, 0};
constexpr double CoolantAdvance[] = {8, 8, 7, 6, 5, 4, 3, 2, 1, 0, 0, 0};
constexpr double EgoVolts[] = {0, .45, .65, 1.6, 2.5, 4.0, 4.2, 4.62, 4.8, 5.0};
constexpr double EgoRatios[] = {22.4, 15.89, 14.9, 14.72, 14.64, 14.3, 13.8, 12.6, 11.2, 10.0};
constexpr double BlendSpeeds[] = {400, 1500, 2250, 3000, 3750, 4500, 5250, 6000};

void WriteLimitsAndSensors(Writer& w) {
  w.Raw(0, 8 + 16 + 32 + 64 + 128);  // alternate firing, coil cut-off, every control enabled
  w.Raw(2, 0.5 * 8);
  w.Raw(3, 10 * 4.25);
  w.Speed(4, 5800);
  w.Speed(6, 150);
  w.Volts(8, 4.92);
  w.Volts(9, 0.08);
  w.Temperature(10, 70);
  w.Volts(11, 4.92);
  w.Volts(12, 0.08);
  w.Temperature(13, 30);
  w.Volts(14, 4.9);
  w.Volts(15, 0.2);
  w.Volts(16, 1.2);
  w.Volts(17, 4.95);
  w.Volts(18, 0.2);
  w.Kpa(19, 60);
  w.Raw(20, 30);
  w.Raw(21, 30 * 2.55);
  w.Raw(22, 0.5 * 4.25);
  w.Raw(23, 2 * 4.25);
  w.Raw(25, 8 * 4.25);
  w.Speed(26, 4500);
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
  const double start[] = {.8, .2, .35, .08};
  w.Scaled(182, 85, start);
  w.Raw(186, 4 * 2.438);  // throttle rate, V/s
  w.Raw(187, 1 * 32.5);
  const double acceleration[] = {.4, .1};
  w.Scaled(188, 85, acceleration);
  w.Raw(190, 0.5 * 4);
  w.Raw(191, .4 * 85);
  w.Raw(192, .1 * 255);
  w.Raw(208, 2200 / 15.31);
  w.Raw(209, 1600 / 15.31);
  w.Raw(210, 1 * 2.438);
  w.Kpa(211, 24);
  w.Raw(212, .1 * 85);
  w.Volts(213, 0.6 + 0.08);
  w.Raw(215, 100 / 2);  // microseconds a volt
  w.Raw(216, .2 * 85);
  w.Raw(217, .05 * 85);
  w.Raw(218, 3);  // one gama: 6.872 ms, in eight-dot-eight of 256/125 ms
  w.Raw(219, 91);
  w.Raw(220, 1);
  w.Temperature(239, 10);
  w.Raw(240, 400 / 15.25);
  w.Raw(241, 4 * 16);
  w.Raw(242, 0.5 * 16);
  w.Raw(243, 0.25 * 16);
  w.Scaled(311, 85, WarmUp);
}

void WriteIdleAndEgo(Writer& w) {
  w.Temperature(193, 0);
  w.Temperature(194, 40);
  w.Temperature(195, 75);
  const double speeds[] = {1200, 950, 750};
  w.Scaled(196, 1 / 15.31, speeds);
  w.Raw(199, 4);
  w.Raw(200, 3);
  w.Raw(201, 120);
  w.Raw(202, 100 / 15.31);
  w.Raw(203, 1);
  w.Raw(204, 160 / 4.096 - 1);
  w.Raw(205, 120 / 4.096 - 1);
  w.Temperature(206, 60);
  w.Raw(207, .15 * 255);
  w.Kpa(214, 25);
  w.Raw(222, 32);
  w.Scaled(225, 4.25, CoolantAdvance);
  w.Raw(237, 3 * 20.74);
  w.Raw(238, 3 * 20.74);
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
  w.Raw(308, 8);
  w.Speed(309, 5250);
  w.Raw(323, 1 * 32);
  w.Raw(324, 255);
  const double highMapSpeed = 3000 * 5.46125;
  w.Raw(416, std::floor(highMapSpeed / 256));
  w.Raw(417, std::fmod(highMapSpeed, 256));
  w.Raw(418, (80 - 10) * 2.7128);
  w.Raw(420, 9);
  w.Raw(421, 8);
  w.Raw(422, 16);
  w.Volts(447, 0.85);
  w.Raw(448, -2 * 4.25 + 255);
  w.Text(449, "SIMV8");
  w.Raw(463, 255);
  w.Raw(464, 3 * 13);
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
