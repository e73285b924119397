// What is put right in a calibration that has just been read, and the working values that follow
// from it. Takes any content: infinities and what is no number too.
#pragma once

// Load mode, MAP range, EGO curve, air/fuel cells and idle speeds. Every load goes through it.
void FixLoadedCalibration();

// Fills the speed axis of the TPS/MAP blend table of a file from before that table, and clears the
// range code that the interrogate screen reads. Opened files go through it after the fixes above.
void FixOpenedCalibration();

// Refreshes all working values from CalValues; the highest manifold pressure is the sensor's again.
void PublishLoadedCalibration();

// Counts the calibrations that were loaded, so that what belongs to one before can be told.
extern long CalibrationLoads;
