// Paths, failure numbers, folders and the data of the program.
#include "platform/qt/qtdisk.h"

#include <QCoreApplication>
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "platform/failure.h"
#include "platform/files.h"
#include "platform/qt/qtbase.h"

namespace fs = std::filesystem;

fs::path DiskPath(const std::string& path) {
#ifdef _WIN32
  return fs::path(std::u8string(path.begin(), path.end()));
#else
  return fs::path(path);
#endif
}

std::string DiskText(const fs::path& path) {
#ifdef _WIN32
  std::u8string text = path.u8string();
  return std::string(text.begin(), text.end());
#else
  return path.string();
#endif
}

void RaiseDiskFailure(int systemError, const std::string& path) {
  switch (systemError) {
    case ENOENT: {
      std::error_code error;
      fs::path folder = DiskPath(path).parent_path();
      bool folderThere = folder.empty() || fs::is_directory(folder, error);
      RaiseFailure(folderThere ? FailureFileNotFound : FailurePathNotFound);
    }
    case ENOTDIR:
      RaiseFailure(FailurePathNotFound);
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
    case EFBIG:
      RaiseFailure(FailureDiskFull);
    case EACCES:
    case EPERM:
    case EROFS:
    case EBUSY:
#ifdef ETXTBSY
    case ETXTBSY:
#endif
      RaiseFailure(FailurePermissionDenied);
    case EISDIR:
    case ENAMETOOLONG:
    case EINVAL:
    case ELOOP:
      RaiseFailure(FailurePathFileAccess);
    default:
      RaiseFailure(FailureDeviceIo);
  }
}

void RefuseWhatIsNoFile(const std::string& path) {
  std::error_code error;
  if (path.empty()) RaiseFailure(FailureFileNotFound);
  fs::file_status status = fs::status(DiskPath(path), error);
  if (!fs::exists(status) || fs::is_regular_file(status)) return;
  if (fs::is_directory(status)) RaiseFailure(FailurePathFileAccess);
  // Opening one could wait for ever, and reading it never end.
  RaiseFailure(FailurePathFileAccess, path + " is no file: it is a pipe or a device.");
}

void RefuseReadOnly(const std::string& path) {
  std::error_code error;
  fs::file_status status = fs::status(DiskPath(path), error);
  if (error || !fs::is_regular_file(status)) return;
  constexpr fs::perms anybody =
      fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  if ((status.permissions() & anybody) == fs::perms::none) RaiseFailure(FailurePermissionDenied);
}

namespace {

bool LessWithoutCase(const std::string& a, const std::string& b) {
  auto lower = [](unsigned char c) { return std::tolower(c); };
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [&](char x, char y) { return lower(x) < lower(y); });
}

// "*" and "?" as in file patterns, letters in any case.
bool Matches(const char* pattern, const char* name) {
  if (*pattern == 0) return *name == 0;
  if (*pattern == '*') return Matches(pattern + 1, name) || (*name && Matches(pattern, name + 1));
  if (*name == 0) return false;
  auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
  return (*pattern == '?' || lower(*pattern) == lower(*name)) && Matches(pattern + 1, name + 1);
}

bool MatchesAny(const std::string& patterns, const std::string& name) {
  std::size_t from = 0;
  while (from <= patterns.size()) {
    std::size_t end = std::min(patterns.find(';', from), patterns.size());
    std::string pattern = patterns.substr(from, end - from);
    if (pattern == "*.*") pattern = "*";
    if (Matches(pattern.c_str(), name.c_str())) return true;
    from = end + 1;
  }
  return false;
}

template <typename Wanted>
std::vector<std::string> NamesIn(const std::string& folder, Wanted wanted) {
  std::error_code error;
  fs::directory_iterator at(DiskPath(folder), error);
  if (error == std::errc::permission_denied) RaiseFailure(FailurePermissionDenied);
  std::vector<std::string> names;
  for (; !error && at != fs::directory_iterator(); at.increment(error)) {
    std::string name = DiskText(at->path().filename());
    if (name.front() != '.' && wanted(*at, name)) names.push_back(name);
  }
  std::sort(names.begin(), names.end(), LessWithoutCase);
  return names;
}

}  // namespace

bool FileExists(const std::string& path) {
  std::error_code error;
  fs::file_status status = fs::status(DiskPath(path), error);
  return !error && fs::exists(status) && !fs::is_directory(status);
}

bool FolderExists(const std::string& path) {
  std::error_code error;
  return fs::is_directory(DiskPath(path), error);
}

void CopyFile(const std::string& from, const std::string& to) {
  SaveWholeFile(to, ReadWholeFile(from));
}

// A link goes, not what it points to.
void DeleteFile(const std::string& path) {
  std::error_code error;
  if (!fs::is_symlink(DiskPath(path), error)) {
    RefuseWhatIsNoFile(path);
    RefuseReadOnly(path);
  }
  bool removed = fs::remove(DiskPath(path), error);
  if (error) RaiseDiskFailure(error.value(), path);
  if (!removed) RaiseDiskFailure(ENOENT, path);
}

std::string FileDate(const std::string& path) {
  std::error_code error;
  fs::file_time_type written = fs::last_write_time(DiskPath(path), error);
  if (error) RaiseDiskFailure(error.value(), path);
  auto onClock = std::chrono::file_clock::to_sys(written);
  std::time_t seconds = std::chrono::system_clock::to_time_t(
      std::chrono::time_point_cast<std::chrono::system_clock::duration>(onClock));
  const std::tm* local = std::localtime(&seconds);
  char text[32] = "";
  if (local) std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", local);
  return text;
}

std::vector<std::string> ListDrives() {
  std::vector<std::string> drives;
#ifdef _WIN32
  for (char letter = 'A'; letter <= 'Z'; ++letter)
    if (FolderExists(std::string(1, letter) + ":\\"))
      drives.push_back(std::string(1, letter) + ":\\");
#else
  // The root, the user's home and what is plugged in.
  drives.push_back("/");
  if (const char* home = std::getenv("HOME"); home && FolderExists(home)) drives.push_back(home);
  const char* user = std::getenv("USER");
  for (std::string place : {"/media/", "/run/media/"}) {
    if (user) place += user;
    if (!user || !FolderExists(place)) continue;
    for (const std::string& name : NamesIn(place, [](const auto&entry, const auto&) {
           std::error_code error;
           return entry.is_directory(error);
         }))
      drives.push_back(place + "/" + name);
  }
  std::sort(drives.begin(), drives.end(), LessWithoutCase);
#endif
  return drives;
}

std::vector<std::string> ListFolders(const std::string& folder) {
  return NamesIn(folder, [](const fs::directory_entry& entry, const std::string&) {
    std::error_code error;
    return entry.is_directory(error);
  });
}

std::vector<std::string> ListFiles(const std::string& folder, const std::string& pattern) {
  return NamesIn(folder, [&](const fs::directory_entry& entry, const std::string& name) {
    std::error_code error;
    return !entry.is_directory(error) && MatchesAny(pattern, name);
  });
}

std::string DataFile(const std::string& name) {
  std::error_code error;
  fs::path here = fs::current_path(error) / DiskPath(name);
  if (fs::exists(here, error)) return DiskText(here);
  fs::path program = DiskPath(FromQt(QCoreApplication::applicationDirPath()));
  for (const fs::path& folder :
       {program, program / "data", program / ".." / "share" / "halvane2"}) {
    fs::path there = folder / DiskPath(name);
    if (fs::exists(there, error)) return DiskText(there.lexically_normal());
  }
  return DiskText(program / DiskPath(name));
}
