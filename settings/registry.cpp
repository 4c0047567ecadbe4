#include "settings/registry.h"

#include <cstddef>
#include <exception>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/system_errors.h"
#include "base/text.h"

namespace korvel::settings {

namespace {

constexpr std::uint32_t appNameEmpty = 1000;
constexpr std::uint32_t sectionEmpty = 1001;
constexpr std::uint32_t keyEmpty = 1002;
/// A failed call's system error number, or a value's type, is added to this.
constexpr std::uint32_t platformBase = 2000;

constexpr std::int32_t codeOf(std::uint32_t code) noexcept {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(objectErrorBase) + code);
}

[[noreturn]] void raise(std::uint32_t code, const char* description) {
  throw Error(codeOf(code), description);
}

/// A section that could not be opened. The message for a damaged file names the file and what to do.
[[noreturn]] void raiseUnopened(const SettingsBackend& backend, Win32Error failure, const char* description) {
  Error error(codeOf(platformBase + numberOf(failure)), description);
  const std::string file = backend.file();
  if (failure == Win32Error::badDatabase && !file.empty()) error.setText("settings.notUnderstood", {description, file});
  throw error;
}

void checkArguments(const std::string& appName, const std::string& section, const std::string& key) {
  if (trimBlanks(appName).empty()) raise(appNameEmpty, "AppName may not be empty");
  if (trimBlanks(section).empty()) raise(sectionEmpty, "Section may not be empty");
  if (trimBlanks(key).empty()) raise(keyEmpty, "Key may not be empty");
}

std::string keyPath(const std::string& appName, const std::string& section) {
  std::string path = "SOFTWARE\\";
  path += trimBlanks(appName);
  path += '\\';
  path += trimBlanks(section);
  return path;
}

/// The error trap of both operations: whatever `operation` raises leaves with the same number and description, after
/// the section has been closed.
template <typename Operation>
auto trapped(const Operation& operation) {
  std::unique_ptr<SettingsKey> key;
  try {
    return operation(key);
  } catch (const Error&) {
    key.reset();
    throw;
  } catch (const std::exception& error) {
    key.reset();
    throw Error(unspecifiedFailure, error.what());
  }
}

}  // namespace

std::string Registry::GetSetting(const std::string& appName, const std::string& section, const std::string& key,
                                 const std::string& fallback) const {
  return trapped([&](std::unique_ptr<SettingsKey>& opened) -> std::string {
    checkArguments(appName, section, key);
    const Win32Error failure = backend_.openForReading(keyPath(appName, section), opened);
    if (failure == Win32Error::fileNotFound) return fallback;
    if (failure != Win32Error::success) raiseUnopened(backend_, failure, "Could not open registry section");

    std::uint32_t type = 0;
    std::uint32_t size = 0;
    if (opened->querySize(key, type, size) != Win32Error::success) return fallback;
    // The code carries the type here and a system error above; deliberate.
    if (type != static_cast<std::uint32_t>(ValueType::string)) raise(platformBase + type, "Registry data not a string");
    if (size == 0) return {};

    std::vector<char> buffer(size, '\0');
    if (opened->queryData(key, buffer) != Win32Error::success) return fallback;
    return {buffer.data(), static_cast<std::size_t>(size) - 1};
  });
}

void Registry::SaveSetting(const std::string& appName, const std::string& section, const std::string& key,
                           const std::string& value) const {
  trapped([&](std::unique_ptr<SettingsKey>& opened) {
    checkArguments(appName, section, key);
    Win32Error failure = backend_.createOrOpen(keyPath(appName, section), opened);
    if (failure != Win32Error::success) raiseUnopened(backend_, failure, "Could not open/create registry section");
    failure = opened->setString(key, value);
    if (failure != Win32Error::success) raise(platformBase + numberOf(failure), "Could not set key value");
  });
}

LanguageOffset storedLanguage(SettingsBackend& backend) {
  return LanguageOffset(
      Registry(backend).GetSetting(std::string(applicationName), std::string(viewerSection), "Language", "0"));
}

}  // namespace korvel::settings
