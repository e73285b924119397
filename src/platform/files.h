// The only door to the disk. Failures are Failure records: 53 not found, 61 disk full, 62 past the
// end, 70 no permission (or read-only, whoever asks, or in use), 75 a folder, a pipe or a device
// where a file should be, 76 the folder of the file is not there, 57 others (an unknown handle,
// writing to a file that is open for reading, reading one that is open for writing, a seek before
// the start). Every read and write goes through here, so that tests can fail the nth.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

enum class FileMode { Read, Write, Append, ReadWrite };  // Write truncates; ReadWrite creates

// A number that names an open file; 0 is none.
using FileHandle = int;

FileHandle OpenFile(const std::string& path, FileMode mode);
// Up to size bytes at the place; the result is short only at the end of the file.
std::size_t ReadFile(FileHandle file, std::span<std::uint8_t> bytes);
void WriteFile(FileHandle file, std::span<const std::uint8_t> bytes);
// A place behind the end is allowed: reading there is the end, writing there fills up with zeros.
// Appending always writes at the end.
void SeekFile(FileHandle file, std::int64_t position);
std::int64_t FilePosition(FileHandle file);
std::int64_t FileLength(FileHandle file);
bool EndOfFile(FileHandle file);
// One line without its end (CR LF, LF or CR); fails past the end.
std::string ReadLine(FileHandle file);
// One character; fails past the end (62).
int ReadCharacter(FileHandle file);
void WriteText(FileHandle file, const std::string& text);
// Flushes what has been written. Closing an unknown or closed handle does nothing.
void FlushFile(FileHandle file);
void CloseFile(FileHandle file);
void CloseAllFiles();

std::vector<std::uint8_t> ReadWholeFile(const std::string& path);

// Replaces the file so that a power cut, a kill or a full disk in the middle leaves either the old
// file or the new one: written beside it, flushed and checked, synced, renamed, the folder synced.
// Links are followed; permissions stay; strays of a killed save are removed by the next save of the
// file and are never listed by ListFiles. A read-only file fails with 70. Where no new one can
// take its place (the folder refuses it, it is mounted by itself, its group cannot be kept) it is
// written over: what does not fit leaves the old bytes, but a power cut can leave a mixture.
// Another name of the same file, a hard link, keeps the old bytes.
void SaveWholeFile(const std::string& path, std::span<const std::uint8_t> bytes);

bool FileExists(const std::string& path);  // also what is no plain file, but no folder
bool FolderExists(const std::string& path);
void CopyFile(const std::string& from, const std::string& to);  // replaces; as SaveWholeFile
void DeleteFile(const std::string& path);       // a link goes, not what it points to
std::string FileDate(const std::string& path);  // "2026-11-21 14:05:09", local time
// Names without path, sorted without regard to case. A pattern is "*.bin" or several between
// semicolons, in any case. A folder that is not there has nothing in it.
std::vector<std::string> ListDrives();
std::vector<std::string> ListFolders(const std::string& folder);
std::vector<std::string> ListFiles(const std::string& folder, const std::string& pattern);

// When it has been removed meanwhile, the one that was found last.
std::string CurrentFolder();
void ChangeFolder(const std::string& folder);  // fails with 76
// Where the program's own data stands (base.bin, tips, guide): beside the program, else installed.
// The full path of a data file: the one in the current folder first.
std::string DataFile(const std::string& name);
