// A disk in memory: folders, files, failures on request.
#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "platform/failure.h"
#include "platform/files.h"
#include "platform/headless/headless.h"
#include "platform/headless/script.h"
#include "platform/loop.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Node {
  Bytes bytes;
  bool readOnly = false;
  bool unreadable = false;
  std::string date;
};

struct OpenedFile {
  std::string path;
  std::shared_ptr<Node> node;
  FileMode mode = FileMode::Read;
  std::size_t position = 0;
};

// Fails the nth use from now.
struct Trap {
  int left = 0;
  int number = 0;
  bool forEver = false;

  void Check() {
    if (left == 0 || --left > 0) return;
    if (forEver) left = 1;
    RaiseFailure(number);
  }
};

constexpr const char* HomeFolder = "/home/user";
constexpr const char* ProgramFolder = "/program";

std::map<std::string, std::shared_ptr<Node>> nodes;
std::map<std::string, std::string> links;  // from, to
std::set<std::string> folders;
std::map<FileHandle, OpenedFile> opened;
FileHandle nextHandle = 1;
std::string currentFolder;
Trap readTrap, writeTrap, openTrap;
std::optional<std::size_t> killAfter;

std::string Now() { return DateText() + " " + TimeText(); }

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// The path behind the links.
std::string Target(const std::string& path) {
  std::string at = headless::FullPath(path);
  for (std::size_t step = 0; step <= links.size(); ++step) {  // links in a circle lead nowhere
    auto found = links.find(at);
    if (found == links.end()) break;
    at = found->second;
  }
  return at;
}

Node* NodeAt(const std::string& fullPath) {
  auto found = nodes.find(fullPath);
  return found == nodes.end() ? nullptr : found->second.get();
}

// Fails when there can be no file of this name.
void NeedPlace(const std::string& fullPath) {
  if (folders.count(fullPath)) RaiseFailure(FailurePathFileAccess);
  if (!folders.count(headless::FolderOf(fullPath))) RaiseFailure(FailurePathNotFound);
}

std::shared_ptr<Node> NeedReadable(const std::string& fullPath) {
  NeedPlace(fullPath);
  auto found = nodes.find(fullPath);
  if (found == nodes.end()) RaiseFailure(FailureFileNotFound);
  if (found->second->unreadable) RaiseFailure(FailurePermissionDenied);
  return found->second;
}

void NeedWritable(const std::string& fullPath) {
  NeedPlace(fullPath);
  const Node* node = NodeAt(fullPath);
  if (node && node->readOnly) RaiseFailure(FailurePermissionDenied);
}

std::shared_ptr<Node> MakeNode(const std::string& fullPath) {
  auto& node = nodes[fullPath];
  if (!node) node = std::make_shared<Node>();
  node->date = Now();
  return node;
}

void MakeFolders(const std::string& fullPath) {
  for (std::string at = fullPath; folders.insert(at).second && at != "/";)
    at = headless::FolderOf(at);
}

OpenedFile& Opened(FileHandle file) {
  auto found = opened.find(file);
  if (found == opened.end()) RaiseFailure(FailureDeviceIo);
  return found->second;
}

OpenedFile& ForReading(FileHandle file) {
  OpenedFile& open = Opened(file);
  if (open.mode == FileMode::Write || open.mode == FileMode::Append) RaiseFailure(FailureDeviceIo);
  readTrap.Check();
  return open;
}

OpenedFile& ForWriting(FileHandle file) {
  OpenedFile& open = Opened(file);
  if (open.mode == FileMode::Read) RaiseFailure(FailureDeviceIo);
  writeTrap.Check();
  return open;
}

void Put(OpenedFile& open, std::span<const std::uint8_t> bytes) {
  Bytes& all = open.node->bytes;
  if (open.mode == FileMode::Append) open.position = all.size();
  if (bytes.empty()) return;
  if (all.size() < open.position + bytes.size()) all.resize(open.position + bytes.size());
  std::copy(bytes.begin(), bytes.end(), all.begin() + static_cast<std::ptrdiff_t>(open.position));
  open.position += bytes.size();
  open.node->date = Now();
}

std::span<const std::uint8_t> AsBytes(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// "*" any, "?" one; without regard to case.
bool MatchesOne(std::string_view pattern, std::string_view name) {
  if (pattern.empty()) return name.empty();
  if (pattern[0] == '*')
    return MatchesOne(pattern.substr(1), name) ||
           (!name.empty() && MatchesOne(pattern, name.substr(1)));
  return !name.empty() && (pattern[0] == '?' || pattern[0] == name[0]) &&
         MatchesOne(pattern.substr(1), name.substr(1));
}

bool Matches(const std::string& patterns, const std::string& name) {
  std::string rest = Lower(patterns);
  for (std::size_t end = 0; end != std::string::npos;) {
    end = rest.find(';');
    if (MatchesOne(rest.substr(0, end), Lower(name))) return true;
    if (end != std::string::npos) rest.erase(0, end + 1);
  }
  return false;
}

void SortNames(std::vector<std::string>& names) {
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    std::string lowerA = Lower(a), lowerB = Lower(b);
    return lowerA != lowerB ? lowerA < lowerB : a < b;
  });
}

std::string StrayOf(const std::string& fullPath) {
  return headless::FolderOf(fullPath) + "/." + headless::NameOf(fullPath) + ".saving";
}

bool IsStray(const std::string& name) { return name.starts_with('.') && name.ends_with(".saving"); }

// Writes beside the file, as far as the disk and the power last.
std::shared_ptr<Node> WriteBeside(const std::string& stray, std::span<const std::uint8_t> bytes) {
  nodes.erase(stray);
  openTrap.Check();
  auto node = MakeNode(stray);
  if (killAfter && *killAfter <= bytes.size()) {
    std::size_t written = *std::exchange(killAfter, std::nullopt);
    node->bytes.assign(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(written));
    throw KilledHere{};
  }
  try {
    writeTrap.Check();
  } catch (const Failure&) {
    nodes.erase(stray);
    throw;
  }
  node->bytes.assign(bytes.begin(), bytes.end());
  return node;
}

}  // namespace

namespace headless {

std::string FullPath(const std::string& path) {
  std::string all = path.starts_with('/') ? path : currentFolder + "/" + path;
  std::vector<std::string> parts;
  for (std::size_t at = 0; at < all.size();) {
    std::size_t end = std::min(all.find('/', at), all.size());
    std::string part = all.substr(at, end - at);
    at = end + 1;
    if (part == ".." && !parts.empty()) parts.pop_back();
    if (!part.empty() && part != "." && part != "..") parts.push_back(part);
  }
  std::string full;
  for (const std::string& part : parts) full += "/" + part;
  return full.empty() ? "/" : full;
}

std::string FolderOf(const std::string& path) {
  std::size_t slash = path.rfind('/');
  return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

std::string NameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

void ResetFiles() {
  nodes.clear();
  links.clear();
  folders.clear();
  opened.clear();
  readTrap = writeTrap = openTrap = {};
  killAfter.reset();
  currentFolder = HomeFolder;
  MakeFolders(HomeFolder);
  MakeFolders(ProgramFolder);
}

}  // namespace headless

// ---- the script's side --------------------------------------------------------------------------

void PutFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  std::string full = Target(path);
  MakeFolders(headless::FolderOf(full));
  MakeNode(full)->bytes = bytes;
}

void PutTextFile(const std::string& path, const std::string& text) {
  PutFile(path, Bytes(text.begin(), text.end()));
}

void PutLink(const std::string& path, const std::string& target) {
  std::string full = headless::FullPath(path);
  MakeFolders(headless::FolderOf(full));
  links[full] = headless::FullPath(target);
}

std::vector<std::uint8_t> FileBytes(const std::string& path) {
  const Node* node = NodeAt(Target(path));
  return node ? node->bytes : Bytes{};
}

std::string FileTextOf(const std::string& path) {
  Bytes bytes = FileBytes(path);
  return {bytes.begin(), bytes.end()};
}

void PutFolder(const std::string& path) { MakeFolders(headless::FullPath(path)); }

void SetReadOnlyFile(const std::string& path, bool readOnly) {
  if (Node* node = NodeAt(Target(path))) node->readOnly = readOnly;
}

void SetUnreadableFile(const std::string& path, bool unreadable) {
  if (Node* node = NodeAt(Target(path))) node->unreadable = unreadable;
}

std::vector<std::string> AllFiles() {
  std::vector<std::string> all;
  for (const auto& [path, node] : nodes) all.push_back(path);
  return all;
}

void FailNthRead(int nth, int number, bool forEver) { readTrap = {nth, number, forEver}; }
void FailNthWrite(int nth, int number, bool forEver) { writeTrap = {nth, number, forEver}; }
void FailNthOpen(int nth, int number, bool forEver) { openTrap = {nth, number, forEver}; }
void KillSaveAfter(std::size_t bytes) { killAfter = bytes; }

std::vector<std::string> OpenFilePaths() {
  std::vector<std::string> paths;
  for (const auto& [handle, open] : opened) paths.push_back(open.path);
  return paths;
}

// ---- open files ---------------------------------------------------------------------------------

FileHandle OpenFile(const std::string& path, FileMode mode) {
  openTrap.Check();
  OpenedFile open{.path = Target(path), .mode = mode};
  if (mode != FileMode::Read) NeedWritable(open.path);
  bool creates = mode != FileMode::Read && !NodeAt(open.path);
  open.node = creates ? MakeNode(open.path) : NeedReadable(open.path);
  if (mode == FileMode::Write) open.node->bytes.clear();
  if (mode == FileMode::Append) open.position = open.node->bytes.size();
  FileHandle handle = nextHandle++;
  opened[handle] = std::move(open);
  return handle;
}

std::size_t ReadFile(FileHandle file, std::span<std::uint8_t> bytes) {
  OpenedFile& open = ForReading(file);
  const Bytes& all = open.node->bytes;
  std::size_t start = std::min(open.position, all.size());
  std::size_t count = std::min(bytes.size(), all.size() - start);
  std::copy_n(all.begin() + static_cast<std::ptrdiff_t>(start), count, bytes.begin());
  open.position += count;
  return count;
}

void WriteFile(FileHandle file, std::span<const std::uint8_t> bytes) {
  Put(ForWriting(file), bytes);
}

void SeekFile(FileHandle file, std::int64_t position) {
  if (position < 0) RaiseFailure(FailureDeviceIo);
  Opened(file).position = static_cast<std::size_t>(position);
}

std::int64_t FilePosition(FileHandle file) {
  return static_cast<std::int64_t>(Opened(file).position);
}

std::int64_t FileLength(FileHandle file) {
  return static_cast<std::int64_t>(Opened(file).node->bytes.size());
}

bool EndOfFile(FileHandle file) {
  const OpenedFile& open = Opened(file);
  return open.position >= open.node->bytes.size();
}

std::string ReadLine(FileHandle file) {
  OpenedFile& open = ForReading(file);
  const Bytes& all = open.node->bytes;
  if (open.position >= all.size()) RaiseFailure(FailureInputPastEnd);
  std::string line;
  while (open.position < all.size()) {
    std::uint8_t byte = all[open.position++];
    if (byte == '\n') break;
    if (byte == '\r') {
      if (open.position < all.size() && all[open.position] == '\n') ++open.position;
      break;
    }
    line += static_cast<char>(byte);
  }
  return line;
}

int ReadCharacter(FileHandle file) {
  OpenedFile& open = ForReading(file);
  if (open.position >= open.node->bytes.size()) RaiseFailure(FailureInputPastEnd);
  return open.node->bytes[open.position++];
}

void WriteText(FileHandle file, const std::string& text) { Put(ForWriting(file), AsBytes(text)); }

void FlushFile(FileHandle file) { Opened(file); }
void CloseFile(FileHandle file) { opened.erase(file); }
void CloseAllFiles() { opened.clear(); }

// ---- whole files --------------------------------------------------------------------------------

std::vector<std::uint8_t> ReadWholeFile(const std::string& path) {
  openTrap.Check();
  auto node = NeedReadable(Target(path));
  readTrap.Check();
  return node->bytes;
}

void SaveWholeFile(const std::string& path, std::span<const std::uint8_t> bytes) {
  std::string target = Target(path);
  NeedWritable(target);
  std::string stray = StrayOf(target);
  auto written = WriteBeside(stray, bytes);
  if (const Node* before = NodeAt(target)) written->unreadable = before->unreadable;
  nodes.erase(stray);
  nodes[target] = written;
}

bool FileExists(const std::string& path) { return NodeAt(Target(path)) != nullptr; }
bool FolderExists(const std::string& path) { return folders.count(Target(path)) != 0; }

void CopyFile(const std::string& from, const std::string& to) {
  SaveWholeFile(to, ReadWholeFile(from));
}

void DeleteFile(const std::string& path) {
  std::string full = headless::FullPath(path);
  if (links.erase(full) > 0) return;
  NeedWritable(full);
  writeTrap.Check();
  if (nodes.erase(full) == 0) RaiseFailure(FailureFileNotFound);
}

std::string FileDate(const std::string& path) {
  const Node* node = NodeAt(Target(path));
  if (!node) RaiseFailure(FailureFileNotFound);
  return node->date;
}

// ---- lists and places ---------------------------------------------------------------------------

std::vector<std::string> ListDrives() { return {"/"}; }

std::vector<std::string> ListFolders(const std::string& folder) {
  std::string full = Target(folder);
  std::vector<std::string> names;
  for (const std::string& other : folders)
    if (other != "/" && headless::FolderOf(other) == full) names.push_back(headless::NameOf(other));
  SortNames(names);
  return names;
}

std::vector<std::string> ListFiles(const std::string& folder, const std::string& pattern) {
  std::string full = Target(folder);
  std::vector<std::string> names;
  auto add = [&](const std::string& path) {
    std::string name = headless::NameOf(path);
    if (headless::FolderOf(path) == full && !IsStray(name) && Matches(pattern, name))
      names.push_back(name);
  };
  for (const auto& [path, node] : nodes) add(path);
  for (const auto& [path, target] : links)
    if (NodeAt(Target(path))) add(path);
  SortNames(names);
  return names;
}

std::string CurrentFolder() { return currentFolder; }

void ChangeFolder(const std::string& folder) {
  std::string full = Target(folder);
  if (!folders.count(full)) RaiseFailure(FailurePathNotFound);
  currentFolder = full;
}

std::string DataFile(const std::string& name) {
  std::string here = headless::FullPath(name);
  return FileExists(here) ? here : std::string(ProgramFolder) + "/" + name;
}
