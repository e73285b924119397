// The 512 bytes of calibration memory at $B600 to $B7FF: the built-in V8 and the file they live in.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace sim {

inline constexpr int ImageSize = 512;
inline constexpr int ImageAddress = 0xB600;

using Image = std::array<std::uint8_t, ImageSize>;

// A naturally aspirated V8 that runs well: what a ZEM holds before anybody programmed it.
const Image& DefaultImage();

// The 512 raw bytes of a file; nothing when it is missing, unreadable or of another length.
std::optional<Image> LoadImage(const std::filesystem::path& path);

// Writes the bytes beside the file and renames, so that the file is always a whole image. False
// when the disk refuses; the file is then what it was.
bool SaveImage(const std::filesystem::path& path, const Image& image);

}  // namespace sim
