// Captions with the version of this build.
#include "core/version.h"

#include "platform/frame.h"

std::string VersionNumberText() {
  return std::to_string(VersionMajor) + "." + std::to_string(VersionMinor) + "." +
         std::to_string(VersionRevision);
}

std::string VersionText() { return "Halvane2 Version " + VersionNumberText(); }

std::string OpenFileCaption(const std::string& path) {
  return VersionText() + "  Currently Open 'BIN' File = " + path;
}

void ShowOpenFile(const std::string& path) {
  if (Frame* frame = TheFrame()) SetFrameTitle(*frame, OpenFileCaption(path));
}
