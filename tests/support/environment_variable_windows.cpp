#include <windows.h>
// Behind it.
#include <stdlib.h>

#include "base/wide_text_windows.h"
#include "tests/support/environment_variable.h"

namespace korvel::test {

std::optional<std::string> environmentValue(const std::string& name) {
  const std::wstring wideName = lossyWideFromUtf8(name);
  std::wstring value(GetEnvironmentVariableW(wideName.c_str(), nullptr, 0), L'\0');
  if (value.empty()) return std::nullopt;
  value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size())));
  return utf8FromWide(value);
}

void setEnvironmentValue(const std::string& name, const std::optional<std::string>& value) {
  const std::wstring wideName = lossyWideFromUtf8(name);
  const std::wstring wideValue = lossyWideFromUtf8(value.value_or(""));
  // The C library's copy first: it also sets the system's, but cannot store an empty value.
  _wputenv_s(wideName.c_str(), wideValue.c_str());
  SetEnvironmentVariableW(wideName.c_str(), value ? wideValue.c_str() : nullptr);
}

}  // namespace korvel::test
