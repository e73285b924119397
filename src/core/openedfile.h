// A file that is open for as long as a routine needs it, also when the routine fails.
#pragma once

#include <string>

#include "platform/files.h"

struct OpenedFile {
  OpenedFile(const std::string& path, FileMode mode) : handle(OpenFile(path, mode)) {}
  ~OpenedFile() { CloseFile(handle); }
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;

  const FileHandle handle;
};
