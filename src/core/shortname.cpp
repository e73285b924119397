// Cuts names out of paths.
#include "core/shortname.h"

#include <algorithm>

#include "core/ansi.h"
#include "core/globalstate.h"

namespace {

constexpr long shortNameLength = 20;
constexpr std::size_t storedLength = 14;
constexpr std::size_t firstCode = 477;

long Length(std::string_view text) { return static_cast<long>(AnsiCodes(text).size()); }

// "/", or a drive with its separator: no further separator stands before a name in it.
bool IsRoot(std::string_view folder) {
  return folder == "/" || (folder.size() == 3 && folder[1] == ':');
}

}  // namespace

std::string LastCharacters(std::string_view text, long count) {
  return MidCharacters(text, std::max(1L, Length(text) - count + 1), count);
}

std::string ShortNameOnOpen(std::string_view path, std::string_view currentFolder) {
  const long folder = Length(currentFolder) - (IsRoot(currentFolder) ? 1 : 0);
  return MidCharacters(path, folder + 2, shortNameLength);
}

std::string ShortNameOnSave(std::string_view path, std::string_view currentFolder) {
  return MidCharacters(path, Length(currentFolder) + 2, shortNameLength);
}

void StoreNameInCalibration() {
  const auto codes = AnsiCodes(BinShortName);
  const auto point = std::find(codes.begin(), codes.end(), '.');
  const auto length = std::min<std::size_t>(storedLength, point - codes.begin());
  std::transform(codes.begin(), codes.begin() + static_cast<long>(length), &CalValues[firstCode],
                 [](int code) { return static_cast<float>(code); });
}
