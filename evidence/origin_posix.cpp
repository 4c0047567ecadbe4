#include <pwd.h>
#include <unistd.h>

#include <array>
#include <vector>

#include "evidence/origin.h"

namespace korvel::evidence {

std::string systemUser() {
  std::vector<char> buffer(1U << 14U);
  passwd entry{};
  passwd* found = nullptr;
  if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr)
    return "uid " + std::to_string(::geteuid());
  return found->pw_name;
}

std::string computerName() {
  std::array<char, 256> name{};
  if (::gethostname(name.data(), name.size() - 1) != 0) return {};
  return name.data();
}

std::tm localClock(std::time_t moment) {
  std::tm clock{};
  ::localtime_r(&moment, &clock);
  return clock;
}

std::tm greenwichClock(std::time_t moment) {
  std::tm clock{};
  ::gmtime_r(&moment, &clock);
  return clock;
}

}  // namespace korvel::evidence
