// The rows of the calibration map. What must hold of them all is checked while compiling.
#include "core/calmap.h"

#include <array>
#include <iterator>

namespace {

// What most rows have in common: one element of CalValues and its image byte.
struct At {
  int calIndex;
  int imageByte;
  int count = 1;
};

using Text = std::string_view;
using Range = std::optional<ValueRange>;

constexpr Range open{};
constexpr ValueRange volts{0, 5};
constexpr ValueRange degreesC{-30, 80};
constexpr ValueRange perBarKpa{10, 104};
constexpr ValueRange upTo250{0, 2.5};
constexpr ValueRange upTo150{0, 1.5};
constexpr ValueRange divisor{2, 64};

constexpr MapRow Row(At at, Text meaning, Text unit, Range range, Encoding encoding,
                     double factor = 0, double shift = 0, int bytes = 1) {
  return {at.calIndex, at.count, at.imageByte, bytes * at.count, meaning,
          unit,        range,    encoding,     factor,           shift};
}
constexpr MapRow Linear(At at, Text meaning, Text unit, Range range, double factor,
                        double shift = 0) {
  return Row(at, meaning, unit, range, Encoding::Linear, factor, shift);
}
constexpr MapRow Temperature(At at, Text meaning, Range range = degreesC) {
  return Linear(at, meaning, "deg C", range, 2.3182, 30);
}
constexpr MapRow Speed(At at, Text meaning, Range range) {
  return Row(at, meaning, "RPM", range, Encoding::SpeedPair, 0, 0, 2);
}
constexpr MapRow Carried(int calIndex, int count, Text meaning, Text unit = "",
                         Range range = open) {
  return {calIndex, count, NoIndex, 0, meaning, unit, range, Encoding::Carried, 0, 0};
}
constexpr MapRow Constant(int imageByte, int value, int calIndex = NoIndex) {
  return {calIndex,
          calIndex == NoIndex ? 0 : 1,
          imageByte,
          1,
          "Constant of the image format",
          "",
          open,
          Encoding::Constant,
          static_cast<double>(value),
          0};
}
constexpr MapRow Bytes(int imageByte, int count, Text meaning, Encoding encoding) {
  return {NoIndex, 0, imageByte, count, meaning, "", open, encoding, 0, 0};
}

constexpr MapRow rows[] = {
    Row({0, 0}, "Option bits", "bits", ValueRange{0, 255}, Encoding::OptionBits),
    Row({1, 1}, "Copied raw", "raw", open, Encoding::CopiedInMap),
    Row({2, 2}, "Injector offset time", "ms", ValueRange{-15.875, 15.875}, Encoding::SignMagnitude,
        8),
    Linear({3, 3}, "Initial advance", "deg", ValueRange{0, 30}, 4.25),
    Speed({4, 4}, "Primary Rev Limit Speed", ValueRange{1000, 12000}),
    Speed({5, 6}, "Rev Limit Hysteresis", ValueRange{0, 1500}),
    Linear({6, 8}, "CLT High Voltage failure", "V", volts, 51),
    Linear({7, 9}, "CLT Low Voltage failure", "V", volts, 51),
    Temperature({8, 10}, "CLT Failure Default Value"),
    Linear({9, 11}, "MAT High Voltage failure", "V", volts, 51),
    Linear({10, 12}, "MAT Low Voltage failure", "V", volts, 51),
    Temperature({11, 13}, "MAT Failure Default Value"),
    Linear({12, 14}, "TPS High Voltage failure", "V", volts, 51),
    Linear({13, 15}, "TPS Low Voltage failure", "V", volts, 51),
    Linear({14, 16}, "TPS Failure Default Value", "V", volts, 51),
    Linear({15, 17}, "Voltage above which MAP sensor fails", "V", volts, 51),
    Linear({16, 18}, "Voltage below which MAP sensor fails", "V", volts, 51),
    Row({17, 19}, "Default MAP sensor pressure", "kPa/bar", perBarKpa, Encoding::LoadLimited),
    Linear({18, 20}, "Time required for EGO sensor to fail", "s", ValueRange{1, 255}, 1),
    Carried(19, 18, "Carried in the file"),
    Linear({37, 21}, "Knock threshold", "units", ValueRange{2, 100}, 2.55),
    Linear({38, 22}, "Rate of Advance Increase", "deg/EF", ValueRange{0.25, 5}, 4.25),
    Linear({39, 23}, "Rate of Advance Retard", "deg/EF", ValueRange{0.25, 10}, 4.25),
    Carried(40, 1, "Carried in the file"),
    Bytes(24, 1, "Left out", Encoding::NeverWritten),
    Linear({41, 25}, "Maximum Retard Allowed", "deg", ValueRange{1, 30}, 4.25),
    Speed({42, 26}, "RPM above which Knock Control is Inhibited", ValueRange{800, 8000}),
    Bytes(28, 2, "Marks of the image format", Encoding::Marks),
    Carried(43, 2, "Carried in the file"),
    Speed({45, 30, 8}, "RPM axis of the four tables", ValueRange{0, 12000}),
    Row({53, 46, 8}, "Load axis of the four tables", "kPa/bar", perBarKpa, Encoding::LoadUnlimited),
    Linear({61, 54, 64}, "Main advance table", "deg", ValueRange{0, 60}, 4.25),
    Row({125, 118, 64}, "Volumetric efficiency correction table", "fraction", ValueRange{-0.5, 0.5},
        Encoding::Correction),
    Linear({189, 182}, "SE0   Temperature based start up enrichments", "fraction", upTo250, 85),
    Carried(190, 1, "Carried in the file"),
    Linear({191, 183}, "SE1   Constant Starting Enrichment", "fraction", upTo150, 85),
    Carried(192, 1, "Carried in the file"),
    Linear({193, 184}, "ASE0  Temperature based 20-second Starting Enrichment", "fraction", upTo250,
           85),
    Linear({194, 185}, "ASE1  Constant 20-second Starting Enrichment", "fraction", upTo150, 85),
    Linear({195, 186}, "ACE0  Throttle Position Rate of Change Sensitivity", "V/s",
           ValueRange{0.75, 52.5}, 2.438),
    Linear({196, 187}, "ACE1  Manifold Absolute Pressure Rate Sensitivity", "kPa/ms/bar",
           ValueRange{0.06, 4}, 32.5),
    Linear({197, 188}, "ACE2  Temperature based acceleration enrichment", "fraction", upTo250, 85),
    Linear({198, 189}, "ACE3  Constant acceleration enrichment", "fraction", upTo150, 85),
    Linear({199, 190}, "ACE4  Variable Time period for enrichments", "s", ValueRange{0.25, 2}, 4),
    Linear({200, 191}, "ACE5  Throttle Position Decaying Variable Time Enrichments", "fraction",
           upTo250, 85),
    Linear({201, 192}, "MAT Density Fuel Enrichment DE0", "fraction", ValueRange{0, 0.5}, 255),
    Temperature({202, 193, 3}, "Idle speed coolant temperature breakpoints"),
    Row({205, 196, 3}, "Idle speed at those temperatures", "RPM", ValueRange{500, 2000},
        Encoding::Divided, 15.31),
    Linear({208, 199}, "Number of Steps to Increase Speed During Wait Period", "steps",
           ValueRange{1, 25}, 1),
    Linear({209, 200}, "Number of Steps to Decrease Speed During Wait Period", "steps",
           ValueRange{1, 25}, 1),
    Linear({210, 201}, "Number of Steps to Reset I.S.M. on Start", "steps", ValueRange{10, 255}, 1),
    Row({211, 202}, "RPM's off Target at which Coarse Control is Active", "RPM",
        ValueRange{46, 300}, Encoding::Divided, 15.31),
    Linear({212, 203}, "Number of Steps Per Wait Period", "steps", ValueRange{0, 25}, 1),
    Row({213, 204}, "Decreasing Speed Wait Period", "ms", ValueRange{4, 500}, Encoding::WaitPeriod,
        4.096),
    Row({214, 205}, "Increasing Speed Wait Period", "ms", ValueRange{4, 500}, Encoding::WaitPeriod,
        4.096),
    Temperature({215, 206}, "Coolant temperature above which EGO is enabled", ValueRange{0, 80}),
    Carried(216, 1, "Peak MAF RPM", "RPM"),
    Carried(217, 1, "Duty cycle reference cylinder number", "cylinders", ValueRange{1, 12}),
    Carried(218, 3, "Carried in the file"),
    Linear({221, 207}, "Authority range for EGO", "fraction", ValueRange{0, 0.5}, 255),
    Row({222, 208}, "DCCL0  Cold RPM above which DECEL Activates", "RPM", ValueRange{0, 3900},
        Encoding::Divided, 15.31),
    Row({223, 209}, "DCCL1  Hot RPM above which DECEL Activates", "RPM", ValueRange{0, 3900},
        Encoding::Divided, 15.31),
    Linear({224, 210}, "DCCL2  TPS Rate above which DECEL Activates", "V/s", ValueRange{0.75, 52.5},
           2.438),
    Linear({225, 211}, "DCCL3  MAP Reading Below Which DECEL Activates", "kPa/bar", perBarKpa,
           2.4425),
    Linear({226, 212}, "DCCL4 1-second enrichment after DECEL Ends", "fraction", upTo150, 85),
    Linear({227, 213}, "Fully closed throttle voltage", "V", volts, 51, 0.08),
    Row({228, 214}, "MAP below which I.S.M. is Disabled", "kPa/bar", perBarKpa,
        Encoding::LoadUnlimited),
    Row({229, 215}, "Battery Voltage Injector Pulsewidth Compensation", "us/V", ValueRange{0, 510},
        Encoding::Divided, 2),
    Linear({230, 216}, "ACE6  Manifold Pressure Rate of Change Enrichment", "fraction", upTo250,
           85),
    Linear({231, 217}, "ACE7  Constant Acceleration Enrichment", "fraction", upTo150, 85),
    Row({232, 218}, "Time on for one GAMA", "ms", ValueRange{3, 30}, Encoding::EightDotEight, 0, 0,
        2),
    Linear({233, 220}, "Injectors are set to fire on every n tach events", "events",
           ValueRange{1, 8}, 1),
    Carried(234, 1, "Load sensor code: 0 MAP, -1 MAF"),
    Carried(235, 1, "Carried in the file"),
    Bytes(221, 1, "Sensor-absent bits", Encoding::SensorBits),
    Constant(222, 32),
    Row({236, 223}, "Cleared by every save", "", open, Encoding::ClearedValue),
    Constant(224, 0),
    Linear({237, 225, 12}, "Coolant advance table", "deg", ValueRange{0, 60}, 4.25),
    Linear({249, 237}, "Advance the Timing rate if the Idle Speed is to Low", "deg",
           ValueRange{0, 10}, 20.74),
    Linear({250, 238}, "Retard the Timing rate if Idle Speed is to High", "deg", ValueRange{0, 10},
           20.74),
    Temperature({251, 239}, "CLT0  Temperature below which to activate PW0"),
    Row({252, 240}, "Constant 400, set on every save", "", open, Encoding::Divided, 15.25),
    Linear({253, 241}, "PW0   Fixed starting Injector Pulsewidth", "ms", ValueRange{0, 15}, 16),
    Linear({254, 242}, "ACE8  Fixed Pulsewidth Enrichment", "ms", ValueRange{0, 15}, 16),
    Linear({255, 243}, "ACE9  Time to Add the Fixed Pulsewidth Enrichment", "s", ValueRange{0, 15},
           16),
    Carried(256, 2, "Constant 1, set on every save"),
    Carried(258, 1, "Constant 0, set on every save"),
    Carried(259, 2, "Carried in the file"),
    Row({261, 244, 64}, "GPO duty cycle table", "%", ValueRange{0, 100}, Encoding::GpoTable, 255),
    Row({492, 244}, "GPO first speed or temperature", "RPM or deg C", ValueRange{-40, 12000},
        Encoding::GpoSpeed, 0, 0, 2),
    Row({493, 246}, "GPO second speed or temperature", "RPM or deg C", ValueRange{-40, 12000},
        Encoding::GpoSpeed, 0, 0, 2),
    // The editors let in 104 kPa for each bar of the sensor.
    Row({494, 248, 4}, "GPO load thresholds", "kPa", ValueRange{0, 416}, Encoding::GpoLoad, 2.4425),
    Linear({325, 308}, "The Frequency of the General Purpose Output", "divisor of 244 Hz",
           ValueRange{1, 15}, 1),
    Speed({326, 309}, "Auxiliary Rev Limit Speed", ValueRange{1500, 12000}),
    Carried(327, 1, "Carried in the file"),
    Linear({328, 311, 11}, "Warm-up enrichment against coolant temperature", "fraction", upTo250,
           85),
    Constant(322, 0),
    Carried(339, 1, "MAP Sensor Range(MAP BAR #) as the interrogate screen reads it"),
    Carried(340, 4, "Carried in the file"),
    Linear({344, 323}, "Minimum turn-on time for injectors", "ms", ValueRange{0, 8}, 32),
    Constant(324, 255),
    Row({345, 325, 64}, "Air/fuel ratio table", "AFR", ValueRange{9.76, 29.28}, Encoding::AirFuel,
        255),
    Bytes(389, 9, "EGO curve, slopes", Encoding::EgoSlopes),
    // Ten voltages, of which the image keeps all but the first and the last.
    {415, 10, 398, 8, "EGO curve, sensor voltages", "V", volts, Encoding::EgoVolts, 51, 0},
    Row({425, 406, 10}, "EGO curve, air/fuel ratios", "AFR", ValueRange{10, 29.28},
        Encoding::EgoRatios, 255),
    Row({409, 416}, "RPM above which High MAP SWITCH is active", "RPM", ValueRange{1000, 11000},
        Encoding::SwitchSpeedPair, 5.46125, 0, 2),
    Linear({410, 418}, "High MAP SWITCH above which EGO is disabled", "kPa/bar", perBarKpa, 2.7128,
           -10),
    Constant(419, 0, 411),
    Linear({412, 420}, "Number of Cylinder Events between EGO Samplings", "13 - events",
           ValueRange{1, 12}, 1),
    Linear({413, 421}, "Instantanous AFR error divisor", "count", divisor, 1),
    Linear({414, 422}, "Number of Samplings for Average Error Divisor", "count", divisor, 1),
    Speed({435, 423, 8}, "TPS/MAP blend table, engine speeds", ValueRange{0, 12000}),
    Linear({443, 439, 8}, "TPS/MAP blend table, TPS%", "%", ValueRange{-30, 100}, 2.55),
    Linear({465, 447}, "TPS-BLEND OFFSET", "V", ValueRange{0, 1.5}, 51),
    Row({466, 448}, "MAT Density Advance/Retard DR0", "deg", ValueRange{-10, 5},
        Encoding::WrappedDegrees, 4.25),
    Bytes(449, 14, "Name of the file", Encoding::FileName),
    Constant(463, 255),
    Linear({451, 464}, "Fuel Pump Turn-on Time Constant", "1/13 s", ValueRange{13, 260}, 1),
    Carried(452, 7, "Carried in the file"),
    Carried(459, 1, "MAP BAR number", "bar", ValueRange{1, 4}),
    Carried(460, 5, "Carried in the file"),
    Carried(467, 1, "Number of injectors", "injectors", ValueRange{1, 24}),
    Carried(468, 1, "Engine type: 0 4 Stroke, 1 2 Stroke, 2 Rotary", "", ValueRange{0, 2}),
    Carried(469, 1, "Max boost pressure", "bar", ValueRange{0, 3}),
    Carried(470, 1, "Air induction: 1 manifold, 2 individual throttles, 4 throttle body", "",
            ValueRange{1, 4}),
    Carried(471, 1, "Brake specific fuel consumption", "lb/HP/hr", ValueRange{0.4, 1.2}),
    Carried(472, 1, "Estimated horse power", "HP"),
    Carried(473, 1, "Cam type: 0 Street/Strip, else Race/High Performance", "", ValueRange{0, 1}),
    Carried(474, 1, "Injector size", "lb/hr", ValueRange{0, 160}),
    Carried(475, 2, "Carried in the file"),
    Carried(477, 14, "Character codes of the file name", "code", ValueRange{0, 255}),
    Linear({491, 465}, "GPO mode: 0 table, 4 temperature, else thresholds", "", open, 1),
    Carried(498, 1, "GPO control kind", "", ValueRange{0, 7}),
    Carried(499, 14, "Carried in the file"),
    Bytes(466, 46, "Unused end of the image", Encoding::NeverWritten),
};

constexpr int valueCount = 513;
constexpr int imageSize = 512;

constexpr bool SharesGpoBytes(const MapRow& row) {
  return row.encoding == Encoding::GpoSpeed || row.encoding == Encoding::GpoLoad;
}

// The row of each element of CalValues and of each image byte; -1 for none, -2 for more than one.
template <std::size_t size>
constexpr std::array<int, size> Owners(int MapRow::*first, int MapRow::*count, bool shared) {
  std::array<int, size> owners{};
  owners.fill(-1);
  for (int row = 0; row < static_cast<int>(std::size(rows)); ++row) {
    if (rows[row].*first == NoIndex || (!shared && SharesGpoBytes(rows[row]))) continue;
    for (int k = 0; k < rows[row].*count; ++k) {
      int& owner = owners[static_cast<std::size_t>(rows[row].*first + k)];
      owner = owner == -1 ? row : -2;
    }
  }
  return owners;
}

constexpr auto valueOwners = Owners<valueCount>(&MapRow::calIndex, &MapRow::calCount, true);
constexpr auto imageOwners = Owners<imageSize>(&MapRow::imageByte, &MapRow::imageCount, false);

template <std::size_t size>
constexpr bool EachHasOne(const std::array<int, size>& owners) {
  for (int owner : owners)
    if (owner < 0) return false;
  return true;
}

constexpr bool StandsInImageOrder() {
  int last = -1;
  for (const MapRow& row : rows) {
    if (row.imageByte == NoIndex || SharesGpoBytes(row)) continue;
    if (row.imageByte <= last) return false;
    last = row.imageByte;
  }
  return true;
}

static_assert(EachHasOne(valueOwners), "every element of CalValues belongs to one row");
static_assert(EachHasOne(imageOwners), "every image byte belongs to one row");
static_assert(StandsInImageOrder(), "the encoder writes the image from its start to its end");

}  // namespace

std::span<const MapRow> CalibrationMap() { return rows; }

const MapRow* RowOfValue(int calIndex) {
  if (calIndex < 0 || calIndex >= valueCount) return nullptr;
  return &rows[valueOwners[static_cast<std::size_t>(calIndex)]];
}

const MapRow* RowOfImageByte(int imageByte) {
  if (imageByte < 0 || imageByte >= imageSize) return nullptr;
  return &rows[imageOwners[static_cast<std::size_t>(imageByte)]];
}

int BytesPerValue(const MapRow& row) {
  return row.imageByte == NoIndex || row.calCount == 0 ? 0 : row.imageCount / row.calCount;
}
