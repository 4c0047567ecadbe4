#include <windows.h>

#include <ctime>

#include "base/utf16.h"
#include "evidence/origin.h"

namespace korvel::evidence {

namespace {

std::string utf8From(const std::wstring& text) {
  return utf8FromUtf16({reinterpret_cast<const char16_t*>(text.data()), text.size()});
}

}  // namespace

std::string systemUser() {
  std::wstring name(257, L'\0');
  auto size = static_cast<DWORD>(name.size());
  if (GetUserNameW(name.data(), &size) == 0 || size == 0) return {};
  name.resize(size - 1);  // without the zero at the end
  return utf8From(name);
}

std::string computerName() {
  std::wstring name(256, L'\0');
  auto size = static_cast<DWORD>(name.size());
  if (GetComputerNameExW(ComputerNameDnsHostname, name.data(), &size) == 0) return {};
  name.resize(size);
  return utf8From(name);
}

std::tm localClock(std::time_t moment) {
  std::tm clock{};
  return localtime_s(&clock, &moment) == 0 ? clock : std::tm{};
}

std::tm greenwichClock(std::time_t moment) {
  std::tm clock{};
  return gmtime_s(&clock, &moment) == 0 ? clock : std::tm{};
}

}  // namespace korvel::evidence
