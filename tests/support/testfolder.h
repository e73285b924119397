// Files for tests that run on both platforms: in memory, or on the disk of the machine.
#pragma once

#include <string>

// An empty folder of the running test, without a slash at its end; gone when the test has ended.
std::string TestFolder();
void MakeFolder(const std::string& path);
void MakeFile(const std::string& path, const std::string& bytes);
void MakeLink(const std::string& path, const std::string& target);
void MakeReadOnly(const std::string& path, bool readOnly = true);
