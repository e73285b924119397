// A save that leaves either the old file or the new one, whatever happens in the middle.
#include <cerrno>
#include <cstring>
#include <vector>

#include "platform/failure.h"
#include "platform/files.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtdisk.h"

#ifdef _WIN32
#include <QFile>
#include <QSaveFile>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace {

#ifdef _WIN32

// A small file that does not fit is only noticed by flushing it.
void WriteAll(QFileDevice& file, std::span<const std::uint8_t> bytes) {
  auto size = static_cast<qint64>(bytes.size());
  bool written = file.write(reinterpret_cast<const char*>(bytes.data()), size) == size;
  if (!written || !file.flush()) RaiseFailure(FailureDiskFull);
}

// Writes the whole file and puts it in the place of the target. Result: whether the folder takes a
// new file, in this place.
bool Replace(const fs::path& target, std::span<const std::uint8_t> bytes) {
  QSaveFile file(ToQt(DiskText(target)));
  if (!file.open(QIODevice::WriteOnly)) return false;
  WriteAll(file, bytes);
  return file.commit();
}

// Unbuffered: what a full disk has refused must not stand in front of the old bytes.
class Opened {
 public:
  explicit Opened(const fs::path& target) : file(ToQt(DiskText(target))) {
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered))
      RaiseFailure(FailurePermissionDenied);
  }
  void Overwrite(std::span<const std::uint8_t> bytes) {
    if (!file.seek(0)) RaiseFailure(FailureDeviceIo);
    WriteAll(file, bytes);
    if (!file.resize(static_cast<qint64>(bytes.size()))) RaiseFailure(FailureDeviceIo);
  }

 private:
  QFile file;
};

#else

// Names of the files that are written beside a target: its own, hidden, with these around it.
constexpr const char* StrayBegin = ".";
constexpr const char* StrayEnd = ".halvane2-save";

class Descriptor {
 public:
  explicit Descriptor(int openedFile) : file(openedFile) {}
  ~Descriptor() { Close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int Number() const { return file; }
  bool Close() {
    int closing = file;
    file = -1;
    return closing < 0 || ::close(closing) == 0;
  }

 private:
  int file;
};

void WriteAll(int file, std::span<const std::uint8_t> bytes, const std::string& path) {
  while (!bytes.empty()) {
    ssize_t count = ::write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) RaiseDiskFailure(errno, path);
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

// Only root can give a file away. A file that several people share is replaced by one of who saves
// it, as long as it stays with their group.
bool TakesOverOwners(int file, const struct stat& old) {
  struct stat own = {};
  if (::fstat(file, &own) != 0) return false;
  if (own.st_uid == old.st_uid && own.st_gid == old.st_gid) return true;
  constexpr uid_t asItIs = static_cast<uid_t>(-1);
  return ::fchown(file, old.st_uid, old.st_gid) == 0 || ::fchown(file, asItIs, old.st_gid) == 0;
}

// The new file takes over who may do what with the old one. False when somebody would lose a right.
bool TakesOverRights(int file, const fs::path& target) {
  struct stat old = {};
  if (::stat(target.c_str(), &old) != 0) return true;
  if (!TakesOverOwners(file, old)) return false;
  ::fchmod(file, old.st_mode & 07777);
  return true;
}

void SyncFolder(const fs::path& folder) {
  Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.Number() >= 0 && ::fsync(opened.Number()) != 0 && errno == EIO)
    RaiseFailure(FailureDeviceIo);
}

// Hidden beside the target; a long name is cut, so that the whole is not too long for a file
// system.
fs::path NameBeside(const fs::path& target) {
  constexpr std::size_t longest = 255;
  const std::size_t room = longest - std::strlen(StrayBegin) - std::strlen(StrayEnd);
  std::string name = StrayBegin;
  name.append(target.filename().string().substr(0, room)).append(StrayEnd);
  return target.parent_path() / name;
}

// Writes the whole file, makes it durable and puts it in the place of the target. Result: 0, or the
// error of the system that keeps a new file from standing there.
int Replace(const fs::path& name, const fs::path& target, std::span<const std::uint8_t> bytes) {
  constexpr mode_t readAndWrite = 0666;
  Descriptor file(::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, readAndWrite));
  if (file.Number() < 0) return errno;
  WriteAll(file.Number(), bytes, DiskText(name));
  if (!TakesOverRights(file.Number(), target)) return EPERM;
  if (::fsync(file.Number()) != 0) RaiseDiskFailure(errno, DiskText(name));
  if (!file.Close()) RaiseDiskFailure(errno, DiskText(name));
  return ::rename(name.c_str(), target.c_str()) == 0 ? 0 : errno;
}

// The folder takes no new file, or not in this place: it may not be written, the file is mounted by
// itself, or what a killed save of somebody else has left stands in the way.
bool FolderRefuses(int error) {
  return error == EACCES || error == EPERM || error == EROFS || error == EBUSY || error == EEXIST;
}

class Opened {
 public:
  explicit Opened(const fs::path& target)
      : path(DiskText(target)), file(::open(target.c_str(), O_WRONLY | O_CLOEXEC)) {
    if (file.Number() < 0) RaiseDiskFailure(errno, path);
  }
  void Overwrite(std::span<const std::uint8_t> bytes) {
    if (::lseek(file.Number(), 0, SEEK_SET) != 0) RaiseDiskFailure(errno, path);
    WriteAll(file.Number(), bytes, path);
    if (::ftruncate(file.Number(), static_cast<off_t>(bytes.size())) != 0)
      RaiseDiskFailure(errno, path);
    if (::fsync(file.Number()) != 0) RaiseDiskFailure(errno, path);
  }

 private:
  std::string path;
  Descriptor file;
};

#endif

// The old bytes are kept meanwhile, and go back when the new ones do not fit.
void SaveInPlace(const fs::path& target, std::span<const std::uint8_t> bytes) {
  const std::vector<std::uint8_t> old = ReadWholeFile(DiskText(target));
  Opened file(target);
  try {
    file.Overwrite(bytes);
  } catch (const Failure&) {
    file.Overwrite(old);
    throw;
  }
}

#ifdef _WIN32

void SaveBeside(const fs::path& target, std::span<const std::uint8_t> bytes) {
  if (Replace(target, bytes)) return;
  std::error_code ignored;
  const bool folderThere = fs::is_directory(target.parent_path(), ignored);
  if (!fs::exists(target, ignored))
    RaiseDiskFailure(folderThere ? EACCES : ENOENT, DiskText(target));
  SaveInPlace(target, bytes);
}

#else

void SaveBeside(const fs::path& target, std::span<const std::uint8_t> bytes) {
  const fs::path name = NameBeside(target);
  std::error_code ignored;
  fs::remove(name, ignored);  // what a killed save has left
  int error = 0;
  try {
    error = Replace(name, target, bytes);
  } catch (const Failure&) {
    fs::remove(name, ignored);
    throw;
  }
  if (error == 0) return SyncFolder(target.parent_path());
  fs::remove(name, ignored);
  if (!FolderRefuses(error) || !fs::exists(target, ignored))
    RaiseDiskFailure(error, DiskText(target));
  SaveInPlace(target, bytes);
}

#endif

// Where a chain of links ends, also when nothing is there yet.
fs::path TargetOf(const fs::path& path) {
  constexpr int linksAtMost = 40;
  std::error_code error;
  fs::path at = fs::absolute(path, error);
  for (int links = 0; links < linksAtMost && fs::is_symlink(at, error); ++links) {
    fs::path to = fs::read_symlink(at, error);
    at = to.is_absolute() ? to : at.parent_path() / to;
  }
  return at;
}

}  // namespace

void SaveWholeFile(const std::string& path, std::span<const std::uint8_t> bytes) {
  RefuseWhatIsNoFile(path);
  RefuseReadOnly(path);
  fs::path target = TargetOf(DiskPath(path));
  std::error_code error;
#ifndef _WIN32
  // Replacing would get round a file of somebody else that may not be written.
  if (fs::exists(target, error) && ::access(target.c_str(), W_OK) != 0)
    RaiseDiskFailure(errno, path);
#endif
  SaveBeside(target, bytes);
}
