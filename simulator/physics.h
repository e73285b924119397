// The V8 itself, as nature made it: what no calibration can change. Units: rpm, kPa absolute,
// degrees of crank, degrees Celsius, Nm, milliseconds.
#pragma once

namespace sim {

inline constexpr double StepS = 0.01;
inline constexpr double BarometerKpa = 100;
inline constexpr double AmbientCelsius = 20;
inline constexpr double ThermostatCelsius = 86;
inline constexpr double AirReference = 25;  // air temperature at which densities are 1
inline constexpr double ClosedThrottleVolts = 0.6;
inline constexpr double OpenThrottleVolts = 4.5;
inline constexpr double FiringsPerTurn = 4;
inline constexpr double FreeInertia = 0.7;    // kg m2, out of gear
inline constexpr double DrivenInertia = 3.5;  // with the car behind it
inline constexpr double RoadTorque = 7e-6;    // Nm per rpm squared
inline constexpr double StoichiometricRatio = 14.64;

double ThrottleVolts(double throttle);
// Opening for air of the idle valve, on the scale on which a fully open throttle is 1.
double IdleAir(double steps);
// Manifold pressure that settles at an opening and a speed.
double ManifoldKpa(double opening, double rpm);
// Advance of best torque, and the advance at which knocking begins.
double BestAdvance(double rpm, double mapKpa);
double KnockLimit(double rpm, double mapKpa);
// Whether a mixture can be lit at all.
bool Burns(double airFuel);
double Torque(double rpm, double mapKpa, double advance, double airFuel);
double Friction(double rpm, double mapKpa, double coolant);
// Milliseconds of open injector that a stoichiometric filling needs, and the dead time of a pulse.
double FuelNeedMs(double rpm, double mapKpa, double airCelsius, double coolant);
double DeadTimeMs(double batteryVolts);
// What the dry walls of a starting engine take, as a share of the need.
double StartingNeed(double coolant);
// Volts of the wide-range sensor in a gas of this ratio.
double EgoVolts(double airFuel);

}  // namespace sim
