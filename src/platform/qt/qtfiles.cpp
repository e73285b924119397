// The disk: open files by number, the standard library's buffered files underneath.
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>

#include "platform/failure.h"
#include "platform/files.h"
#include "platform/qt/qtdisk.h"

namespace {

namespace fs = std::filesystem;

struct Closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
struct OpenedFile {
  std::unique_ptr<std::FILE, Closer> file;
  FileMode mode = FileMode::Read;
  enum { Nothing, Reading, Writing } last = Nothing;  // a turn between them needs a seek
};

std::map<FileHandle, OpenedFile> openFiles;
FileHandle lastHandle = 0;

OpenedFile& Opened(FileHandle handle) {
  auto found = openFiles.find(handle);
  if (found == openFiles.end()) RaiseFailure(FailureDeviceIo);
  return found->second;
}

std::FILE* ForReading(FileHandle handle) {
  OpenedFile& opened = Opened(handle);
  if (opened.mode == FileMode::Write || opened.mode == FileMode::Append)
    RaiseFailure(FailureDeviceIo);
  if (opened.last == OpenedFile::Writing) std::fseek(opened.file.get(), 0, SEEK_CUR);
  opened.last = OpenedFile::Reading;
  return opened.file.get();
}

std::FILE* ForWriting(FileHandle handle) {
  OpenedFile& opened = Opened(handle);
  if (opened.mode == FileMode::Read) RaiseFailure(FailureDeviceIo);
  if (opened.last == OpenedFile::Reading) std::fseek(opened.file.get(), 0, SEEK_CUR);
  opened.last = OpenedFile::Writing;
  return opened.file.get();
}

std::FILE* OpenStream(const std::string& path, const char* mode) {
#ifdef _WIN32
  std::wstring wideMode(mode, mode + std::char_traits<char>::length(mode));
  return _wfopen(DiskPath(path).c_str(), wideMode.c_str());
#else
  // Inherited by no program that is started meanwhile.
  return std::fopen(path.c_str(), (std::string(mode) + "e").c_str());
#endif
}

std::FILE* OpenInMode(const std::string& path, FileMode mode) {
  switch (mode) {
    case FileMode::Read:
      return OpenStream(path, "rb");
    case FileMode::Write:
      return OpenStream(path, "wb");
    case FileMode::Append:
      return OpenStream(path, "ab");
    case FileMode::ReadWrite:
      break;
  }
  std::FILE* existing = OpenStream(path, "r+b");
  return existing || errno != ENOENT ? existing : OpenStream(path, "w+b");
}

}  // namespace

FileHandle OpenFile(const std::string& path, FileMode mode) {
  RefuseWhatIsNoFile(path);
  if (mode != FileMode::Read) RefuseReadOnly(path);
  errno = 0;
  std::FILE* file = OpenInMode(path, mode);
  if (!file) RaiseDiskFailure(errno, path);
  openFiles[++lastHandle] = {std::unique_ptr<std::FILE, Closer>(file), mode};
  return lastHandle;
}

std::size_t ReadFile(FileHandle file, std::span<std::uint8_t> bytes) {
  std::FILE* stream = ForReading(file);
  errno = 0;
  std::size_t count = std::fread(bytes.data(), 1, bytes.size(), stream);
  if (count < bytes.size() && std::ferror(stream)) {
    int error = errno;
    std::clearerr(stream);
    RaiseDiskFailure(error, {});
  }
  return count;
}

void WriteFile(FileHandle file, std::span<const std::uint8_t> bytes) {
  std::FILE* stream = ForWriting(file);
  errno = 0;
  if (std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size()) return;
  int error = errno;
  std::clearerr(stream);
  RaiseDiskFailure(error, {});
}

void SeekFile(FileHandle file, std::int64_t position) {
  OpenedFile& opened = Opened(file);
  opened.last = OpenedFile::Nothing;
  if (position < 0) RaiseFailure(FailureDeviceIo);
  errno = 0;
#ifdef _WIN32
  int failed = _fseeki64(opened.file.get(), position, SEEK_SET);
#else
  int failed = fseeko(opened.file.get(), static_cast<off_t>(position), SEEK_SET);
#endif
  if (failed) RaiseDiskFailure(errno, {});
}

std::int64_t FilePosition(FileHandle file) {
#ifdef _WIN32
  return _ftelli64(Opened(file).file.get());
#else
  return static_cast<std::int64_t>(ftello(Opened(file).file.get()));
#endif
}

std::int64_t FileLength(FileHandle file) {
  OpenedFile& opened = Opened(file);
  std::int64_t position = FilePosition(file);
  std::fseek(opened.file.get(), 0, SEEK_END);
  std::int64_t length = FilePosition(file);
  SeekFile(file, position);
  return length;
}

bool EndOfFile(FileHandle file) {
  std::FILE* stream = ForReading(file);
  int next = std::fgetc(stream);
  if (next == EOF) return true;
  std::ungetc(next, stream);
  return false;
}

int ReadCharacter(FileHandle file) {
  std::FILE* stream = ForReading(file);
  errno = 0;
  int character = std::fgetc(stream);
  if (character != EOF) return character;
  int error = std::ferror(stream) ? errno : 0;
  std::clearerr(stream);
  if (error != 0) RaiseDiskFailure(error, {});
  RaiseFailure(FailureInputPastEnd);
}

std::string ReadLine(FileHandle file) {
  std::FILE* stream = ForReading(file);
  std::string line;
  int character = ReadCharacter(file);
  for (; character != EOF && character != '\n' && character != '\r'; character = std::fgetc(stream))
    line += static_cast<char>(character);
  if (character == '\r') {
    int next = std::fgetc(stream);
    if (next != '\n' && next != EOF) std::ungetc(next, stream);
  }
  return line;
}

void WriteText(FileHandle file, const std::string& text) {
  WriteFile(file, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

void FlushFile(FileHandle file) {
  OpenedFile& opened = Opened(file);
  errno = 0;
  if (std::fflush(opened.file.get()) != 0) {
    int error = errno;
    std::clearerr(opened.file.get());
    RaiseDiskFailure(error, {});
  }
}

// What could not be written shows at the latest here.
void CloseFile(FileHandle file) {
  auto found = openFiles.find(file);
  if (found == openFiles.end()) return;
  std::FILE* stream = found->second.file.release();
  openFiles.erase(found);
  errno = 0;
  if (std::fclose(stream) != 0) RaiseDiskFailure(errno, {});
}

void CloseAllFiles() { openFiles.clear(); }

std::vector<std::uint8_t> ReadWholeFile(const std::string& path) {
  FileHandle file = OpenFile(path, FileMode::Read);
  std::vector<std::uint8_t> bytes;
  std::vector<std::uint8_t> part(64 * 1024);
  try {
    for (std::size_t count = 1; count > 0;) {
      count = ReadFile(file, part);
      bytes.insert(bytes.end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(count));
    }
  } catch (const Failure&) {
    CloseFile(file);
    throw;
  }
  CloseFile(file);
  return bytes;
}

std::string CurrentFolder() {
  static std::string lastKnown;
  std::error_code gone;
  fs::path folder = fs::current_path(gone);
  if (!gone) lastKnown = DiskText(folder);
  return lastKnown;
}

void ChangeFolder(const std::string& folder) {
  std::error_code error;
  fs::current_path(DiskPath(folder), error);
  if (error) RaiseFailure(FailurePathNotFound);
}
