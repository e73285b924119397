// Start values of the core's state, and its constant lists.
#include "core/globalstate.h"

std::array<float, 513> CalValues{};
std::array<std::int16_t, 513> BinImage{};
std::string LoadMode = "MAP";
int MapBar = 1;
int MapFullScale = 104;

std::string StartDir;
std::string CurrentBinPath;
std::string TargetBinPath;
std::string BinShortName;
std::string BinFileType;
bool FileIsOpen = false;
bool UseDialogName = false;
bool CalChanged = false;
float OpenedEgoAuthority = 0;

int MonitorMode = NothingLive;
int ComPort = 1;
int ScreenClass = 1;
int QuickStart = -1;
bool KillFirst = false;

const std::array<int, 256> ThermistorTable = {
    130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 129,
    127, 125, 123, 121, 120, 118, 117, 115, 114, 113, 110, 109, 108, 107, 106, 105, 104, 103, 101,
    100, 99,  98,  98,  96,  96,  95,  94,  94,  93,  92,  91,  90,  89,  88,  87,  86,  85,  85,
    84,  84,  83,  83,  82,  81,  80,  80,  79,  79,  78,  77,  77,  76,  76,  75,  75,  74,  74,
    73,  73,  72,  72,  71,  70,  70,  69,  69,  68,  68,  67,  67,  66,  66,  65,  65,  64,  64,
    63,  63,  62,  62,  61,  61,  60,  60,  59,  59,  59,  58,  58,  57,  57,  57,  56,  56,  56,
    55,  55,  55,  54,  54,  53,  53,  53,  52,  52,  51,  51,  50,  50,  50,  49,  49,  48,  48,
    47,  47,  46,  46,  46,  45,  45,  45,  44,  44,  44,  43,  43,  42,  42,  41,  41,  41,  40,
    40,  40,  39,  39,  38,  38,  38,  37,  37,  36,  36,  35,  35,  35,  34,  34,  34,  33,  33,
    33,  32,  32,  31,  31,  30,  30,  30,  29,  29,  28,  28,  28,  27,  27,  26,  26,  25,  25,
    24,  24,  23,  23,  22,  22,  21,  21,  20,  20,  19,  19,  18,  18,  17,  17,  16,  16,  15,
    14,  13,  13,  12,  12,  11,  10,  10,  9,   8,   8,   7,   7,   6,   5,   5,   4,   4,   3,
    2,   1,   0,   -1,  -2,  -3,  -4,  -5,  -6,  -7,  -8,  -9,  -10, -12, -14, -15, -17, -18, -20,
    -23, -25, -28, -30, -34, -35, -39, -40, -40};
const std::array<int, 16> WizardListA = {};
const std::array<int, 16> WizardListB = {0, 60, 60, 60, 60, 40, 20};
const std::array<int, 16> WizardListC = {0, 60, 60, 60, 60, 60, 40, 40, 40, 40, 20};
const std::array<int, 16> WizardListD = {0, 75, 75, 75, 75, 75, 60, 60, 40, 40, 40, 20, 20};
const std::array<int, 2> ImageMarks = {26, 6};

float MapLow = 10;
float MapHigh = 104;
float WorkTog = 0;
float WorkIot = 0;
const double InjectorRecoveryMs = 1.2;
float WorkRevLimit = 0;
float WorkCylinders = 0;
float MinTurnOnMs = 0;
double FiringInterval = 0;
float InitialAdvance = 0;
double WorkBlendOffset = 0;
double WorkGpoFrequency = 0;
float MaxManifoldKpa = 104;
std::array<float, 13> RpmAxis{};
std::array<float, 11> LoadAxis{};

double LimitLowKpa = 0;
double LimitHighKpa = 0;
double IdleLoadKpa = 0;
float IdlePulseMs = 0;
double FullLoadPulseMs = 0;
double RevLimitPulseMs = 0;

WorkGrid VeWork{};
WorkGrid GpoWork{};
WorkGrid AdvanceWork{};
WorkGrid AfrWork{};
std::array<float, 13> CoolantAdvance{};
std::array<float, 17> TempAxis{};
std::array<float, 11> EgoVolts{};
std::array<float, 11> EgoRatios{};

namespace {

void ResetFileState() {
  StartDir.clear();
  CurrentBinPath.clear();
  TargetBinPath.clear();
  BinShortName.clear();
  BinFileType.clear();
  FileIsOpen = false;
  UseDialogName = false;
  CalChanged = false;
  OpenedEgoAuthority = 0;
}

void ResetRunState() {
  MonitorMode = NothingLive;
  ComPort = 1;
  ScreenClass = 1;
  QuickStart = -1;
  KillFirst = false;
}

void ResetWorkingValues() {
  MapLow = 10;
  MapHigh = MaxManifoldKpa = 104;
  WorkTog = WorkIot = 0;
  WorkRevLimit = WorkCylinders = 0;
  MinTurnOnMs = 0;
  FiringInterval = 0;
  InitialAdvance = 0;
  WorkBlendOffset = WorkGpoFrequency = 0;
  RpmAxis.fill(0);
  LoadAxis.fill(0);
  LimitLowKpa = LimitHighKpa = IdleLoadKpa = 0;
  IdlePulseMs = 0;
  FullLoadPulseMs = RevLimitPulseMs = 0;
}

void ResetWorkingTables() {
  VeWork = GpoWork = AdvanceWork = AfrWork = WorkGrid{};
  CoolantAdvance.fill(0);
  TempAxis.fill(0);
  EgoVolts.fill(0);
  EgoRatios.fill(0);
}

}  // namespace

void ResetCalibrationState() {
  CalValues.fill(0);
  BinImage.fill(0);
  LoadMode = "MAP";
  MapBar = 1;
  MapFullScale = 104;
  ResetFileState();
  ResetRunState();
  ResetWorkingValues();
  ResetWorkingTables();
}
