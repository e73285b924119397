// A file that is open for as long as a routine needs it, also when the routine fails.
#pragma once

#include <string>

#include "platform/failure.h"
#include "platform/files.h"

struct OpenedFile {
  OpenedFile(const std::string& path, FileMode mode) : handle(OpenFile(path, mode)) {}
  // A close that fails is told by CloseFile(handle) before the end of the routine.
  ~OpenedFile() {
    try {
      CloseFile(handle);
    } catch (const Failure&) {
    }
  }
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;

  const FileHandle handle;
};
