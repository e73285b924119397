// Which screens fit their texts.
#include "platform/fit.h"

#include <map>
#include <utility>

namespace {

std::map<const Screen*, TextFit> fits;

}  // namespace

void FitTexts(Screen& screen, TextFit fit) { fits[&screen] = std::move(fit); }

const TextFit& FitOf(const Screen& screen) {
  static const TextFit none;
  const auto found = fits.find(&screen);
  return found == fits.end() ? none : found->second;
}

void ForgetFit(const Screen& screen) { fits.erase(&screen); }
