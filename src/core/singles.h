// BIN files as lists of singles: little-endian IEEE numbers of four bytes without anything around
// them.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

// What the files read last held, by position; one list for the whole run, so that positions past
// the end of a short file show the file before. Starts as 0.
extern std::array<float, 513> RawSingles;
void ResetRawSingles();

// The whole singles of a file, 513 at most; up to three bytes behind the last are no single.
std::vector<float> ReadSingles(const std::string& path);

// Reads a file into RawSingles. Result: the number of attempts to read, which is one more than the
// file has singles. A file of more than 512 is a subscript failure (9).
int ReadRawSingles(const std::string& path);

std::vector<std::uint8_t> BytesOfSingles(std::span<const float> singles);
