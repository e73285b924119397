// The version of this build, and the captions that carry it.
#pragma once

#include <string>

inline constexpr int VersionMajor = HALVANE2_VERSION_MAJOR;
inline constexpr int VersionMinor = HALVANE2_VERSION_MINOR;
inline constexpr int VersionRevision = HALVANE2_VERSION_REVISION;

// "2.0.0"
std::string VersionNumberText();
// "Halvane2 Version 2.0.0", the frame's caption while no calibration is open.
std::string VersionText();
// The frame's caption while the calibration of this path is open.
std::string OpenFileCaption(const std::string& path);
// Sets the frame's caption to OpenFileCaption; nothing happens before there is a frame.
void ShowOpenFile(const std::string& path);
