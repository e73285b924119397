// What the files of the disk share: paths, failure numbers, what is refused before it is tried.
#pragma once

#include <filesystem>
#include <string>

// Paths of the records are UTF-8.
std::filesystem::path DiskPath(const std::string& path);
std::string DiskText(const std::filesystem::path& path);

// Fails with the number that an error of the system means for this path (which may be empty).
[[noreturn]] void RaiseDiskFailure(int systemError, const std::string& path);
// Fails with 75 for a folder and with 53 for an empty name.
void RefuseWhatIsNoFile(const std::string& path);
// Fails with 70 for a file that nobody may write, even where the user could force it.
void RefuseReadOnly(const std::string& path);
