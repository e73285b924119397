#include "platform/failure.h"

#include <utility>

std::string FailureDescription(int number) {
  struct Row {
    int number;
    const char* description;
  };
  static constexpr Row rows[] = {
      {FailureOverflow, "Overflow"},
      {FailureSubscript, "Subscript out of range"},
      {FailureDivisionByZero, "Division by zero"},
      {FailureTypeMismatch, "Type mismatch"},
      {FailureFileNotFound, "File not found"},
      {FailureFileAlreadyOpen, "File already open"},
      {FailureDeviceIo, "Device I/O error"},
      {FailureDiskFull, "Disk full"},
      {FailureInputPastEnd, "Input past end of file"},
      {FailurePermissionDenied, "Permission denied"},
      {FailurePathFileAccess, "Path/File access error"},
      {FailurePathNotFound, "Path not found"},
      {FailureCancel, "Cancel was selected."},
  };
  for (const Row& row : rows)
    if (row.number == number) return row.description;
  return "Application-defined or object-defined error";
}

void RaiseFailure(int number, std::string description, std::string source) {
  if (description.empty()) description = FailureDescription(number);
  throw Failure{number, std::move(source), std::move(description)};
}
