// The one kind of failure that the system speaks of as an error with a number. Helpers throw it;
// the one trap of the routine that the user started catches it. Nothing crosses a screen.
#pragma once

#include <string>

enum FailureNumber : int {
  FailureOverflow = 6,
  FailureSubscript = 9,
  FailureDivisionByZero = 11,
  FailureTypeMismatch = 13,
  FailureInternal = 51,  // what the standard library throws and nobody expects
  FailureFileNotFound = 53,
  FailureFileAlreadyOpen = 55,
  FailureDeviceIo = 57,
  FailureDiskFull = 61,
  FailureInputPastEnd = 62,
  FailurePermissionDenied = 70,
  FailurePathFileAccess = 75,
  FailurePathNotFound = 76,
  FailureCancel = 32755,
};

struct Failure {
  int number = 0;
  std::string source;       // who failed, "Halvane2" unless a helper says otherwise
  std::string description;  // in the user's words, one line
};

// The standing description of a number, or "Application-defined or object-defined error".
std::string FailureDescription(int number);

// The text of the box titled "Error" that tells of a failure.
std::string FailureText(const Failure& failure);

// Throws Failure. An empty description takes the standing one.
[[noreturn]] void RaiseFailure(int number, std::string description = {},
                               std::string source = "Halvane2");
