// The lasting state that the calibration core owns: the calibration, the file state, and the
// working values that are derived from the calibration for graphs, tables and monitors. No screen
// owns any of it. ResetCalibrationState puts every start value back.
#pragma once

#include <array>
#include <cstdint>
#include <string>

// ---- The calibration ----------------------------------------------------------------------------

// The whole calibration in engineering units. 0 to 511 are the BIN file. Starts as 0.
extern std::array<float, 513> CalValues;
// 0 to 511 are the bytes at $B600 to $B7FF; beyond a byte only while EncodeCalibration runs, or
// after it has failed. Starts as 0.
extern std::array<std::int16_t, 513> BinImage;

// The load sensor: "MAP" or "MAF". Starts as "MAP".
extern std::string LoadMode;
// MAP sensor range in bar, 1 to 4. Starts as 1.
extern int MapBar;
// The top of the MAP sensor's range, MapBar * 104, in kPa. Starts as 104.
extern int MapFullScale;

// ---- The open file ------------------------------------------------------------------------------

// The directory in which the program was started. Starts empty; start-up records it.
extern std::string StartDir;
// Path of the open calibration; empty when none is open. Starts empty.
extern std::string CurrentBinPath;
// Path that a save writes. Starts empty.
extern std::string TargetBinPath;
// The path without the current directory, at most 20 characters, in UTF-8. Starts empty.
extern std::string BinShortName;
// Type of the file read last ("Halv2", "KORB" ...); kept between files. Starts empty.
extern std::string BinFileType;
// A calibration has been opened in this run. Starts false.
extern bool FileIsOpen;
// The next open takes the name that is already in the file dialog. Starts false.
extern bool UseDialogName;
// There are edits or conversions that no save has written. Starts false.
extern bool CalChanged;
// CalValues[221] as the open found it, a fraction, for the logger's heads. Starts as 0.
extern float OpenedEgoAuthority;

// ---- The run ------------------------------------------------------------------------------------

// What is live. Starts as NothingLive.
extern int MonitorMode;
inline constexpr int NothingLive = 0;
inline constexpr int Monitor1Live = 1;
inline constexpr int LoggingLive = 2;
inline constexpr int OnflyLive = 3;
// The serial port in use, 1 to 4. Starts as 1; the main menu reads it from the settings.
extern int ComPort;
// Class of the screen width, 1 to 4, or the width itself when it is none of the known. Starts as 1.
extern int ScreenClass;
// Start mode of the calibration screen: -1 quick, 0 advanced. Starts as -1.
extern int QuickStart;
// The engine is killed before the next programming. Starts false.
extern bool KillFirst;

// ---- Constant lists -----------------------------------------------------------------------------

// Degrees C by the ADC count of a coolant or air temperature sensor; falls from 130 to -40.
extern const std::array<int, 256> ThermistorTable;
// The shapes, in TPS %, from which the wizard fills the blend table; it reads the first eight.
extern const std::array<int, 16> WizardListA;  // common throttle, street camshaft
extern const std::array<int, 16> WizardListB;  // common throttle, race camshaft
extern const std::array<int, 16> WizardListC;  // individual throttles, street camshaft
extern const std::array<int, 16> WizardListD;  // individual throttles, race camshaft
// Constants of the image format at bytes 28 and 29.
extern const std::array<int, 2> ImageMarks;

// ---- Working values, refilled by PublishCalGlobals ----------------------------------------------
// All start as 0 unless they say otherwise.

// Pressure span of the load axis in kPa: MapBar * 10 and MapBar * 104. Start as 10 and 104.
extern float MapLow;
extern float MapHigh;
// Working TOG, ms for one GAMA (CalValues[232]), and working IOT, ms (CalValues[2]).
extern float WorkTog;
extern float WorkIot;
// What an injector loses at each opening, ms. Always 1.2.
extern const double InjectorRecoveryMs;
// Primary rev limit in RPM (CalValues[4]).
extern float WorkRevLimit;
// Number of cylinders (CalValues[217]).
extern float WorkCylinders;
// Minimum turn-on time in ms (CalValues[344]).
extern float MinTurnOnMs;
// Tach events between injections (CalValues[233], rounded).
extern double FiringInterval;
// Initial advance in degrees (CalValues[3]).
extern float InitialAdvance;
// TPS blend offset in V, rounded to whole volts (CalValues[465]).
extern double WorkBlendOffset;
// GPO frequency divisor (CalValues[325], rounded).
extern double WorkGpoFrequency;
// Highest manifold pressure that the engine reaches, kPa. No part of the calibration: opening a
// file sets it to MapHigh, the injector screen and the wizard change it. Starts as 104.
extern float MaxManifoldKpa;

// Engine speeds in RPM by position: 4 to 11 are the breakpoints, 12 is for the rev limit.
extern std::array<float, 13> RpmAxis;
// Loads in kPa (or % in "MAF" mode) by position: 2 to 9 are the breakpoints, 1 and 10 the ends.
extern std::array<float, 11> LoadAxis;

// ---- Kept by ComputeInjectorLimits --------------------------------------------------------------

// The span in kPa that it reckons with, and the load that counts as idle (70 kPa).
extern double LimitLowKpa;
extern double LimitHighKpa;
extern double IdleLoadKpa;
// Pulse width at idle load, and fundamental pulse width at full load, ms.
extern float IdlePulseMs;
extern double FullLoadPulseMs;
// The longest injector on-time at the rev limit, ms; infinite without a rev limit.
extern double RevLimitPulseMs;

// ---- Working tables, filled by CopyTablesToWork and LoadEgoCurve --------------------------------

// 8 by 8 tables lie at rows 2 to 9 (load) and columns 4 to 11 (speed).
using WorkGrid = std::array<std::array<float, 17>, 15>;
extern WorkGrid VeWork;       // % FPW, with margins at column 12 and row 10
extern WorkGrid GpoWork;      // % duty
extern WorkGrid AdvanceWork;  // degrees
extern WorkGrid AfrWork;      // air/fuel ratio

// Coolant advance in degrees, positions 1 to 12.
extern std::array<float, 13> CoolantAdvance;
// Coolant temperatures in degrees C, positions 1 to 16: -30 to 120.
extern std::array<float, 17> TempAxis;
// The EGO sensor's curve, positions 1 to 10: volts, and air/fuel ratios.
extern std::array<float, 11> EgoVolts;
extern std::array<float, 11> EgoRatios;

// Puts every start value back. Start-up and tests use it.
void ResetCalibrationState();
