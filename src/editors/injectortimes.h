// What the injectors can deliver: the derived times of the basic injector screen and of its graph.
// Pure arithmetic on the core's working values and CalValues; no screen.
#pragma once

// The derived times in ms. A divisor of 0 in the calibration gives what IEEE division gives.
struct InjectorTimes {
  double wotPw = 0;          // fundamental pulse width at the highest manifold pressure
  double revTime = 0;        // time between two injections at the rev limit
  double revLimitMaxPw = 0;  // longest pulse at the rev limit
  double maxControllableTog = 0;
};

// From the working values and the firing scheme. Call PublishCalGlobals before. Does not fail.
InjectorTimes ComputeInjectorTimes();

// Firing scheme, bit 0 of CalValues[0]: set when all injectors fire together. A value that no
// calibration has counts as clear.
bool SimultaneousFiring();

// The injector offset as the control unit keeps it: eighths of a ms with a sign bit.
struct RoundedOffset {
  int imageByte = 0;  // 0 to 255, bit 7 is the sign
  double ms = 0;
};

// Rounds to eighths, ties to even; what is below 0 keeps its sign even when it rounds to 0. Fails
// with overflow (6) far outside of its range.
RoundedOffset RoundInjectorOffset(double ms);
