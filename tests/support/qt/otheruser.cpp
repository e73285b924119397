#include "support/qt/otheruser.h"

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

namespace {

// Of no group but this one and a group of his own.
bool JoinOnly(gid_t group) {
  constexpr gid_t own = 65534;
  return ::setgroups(1, &group) == 0 && ::setegid(own) == 0;
}

bool BecomeOrdinary(std::optional<unsigned> group) {
  constexpr uid_t nobody = 65534;
  if (group && !JoinOnly(*group)) return false;
  return ::geteuid() != 0 || ::seteuid(nobody) == 0;
}

}  // namespace

std::string AsOrdinaryUser(const std::function<std::string()>& routine,
                           std::optional<unsigned> group) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) return "no pipe";
  pid_t child = ::fork();
  if (child == 0) {
    std::string result = BecomeOrdinary(group) ? routine() : "still root";
    ssize_t written = ::write(ends[1], result.data(), result.size());
    ::_exit(written == static_cast<ssize_t>(result.size()) ? 0 : 1);
  }
  ::close(ends[1]);
  std::string result;
  std::array<char, 1024> part;
  for (ssize_t count = 1; count > 0;) {
    count = ::read(ends[0], part.data(), part.size());
    if (count > 0) result.append(part.data(), static_cast<std::size_t>(count));
  }
  ::close(ends[0]);
  ::waitpid(child, nullptr, 0);
  return result;
}
