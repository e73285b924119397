// Made beside and renamed, so that there is never a moment without a link.
#include "simulator/terminal/link.h"

#include <filesystem>
#include <system_error>

namespace sim {

namespace fs = std::filesystem;

std::string PointLink(const std::string& link, const std::string& terminal) {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(link, error);
  if (fs::exists(status) && !fs::is_symlink(status)) return link + " is there and is no link";
  const std::string beside = link + ".new";
  fs::remove(beside, error);
  fs::create_symlink(terminal, beside, error);
  if (!error) fs::rename(beside, link, error);
  return error ? link + ": " + error.message() : std::string{};
}

void RemoveLink(const std::string& link, const std::string& terminal) {
  std::error_code error;
  if (fs::read_symlink(link, error) == terminal && !error) fs::remove(link, error);
}

}  // namespace sim
