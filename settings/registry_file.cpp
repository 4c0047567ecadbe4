#include "settings/registry_file.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "base/system_errors.h"
#include "base/text.h"
#include "settings/registry.h"
#include "settings/registry_document.h"

namespace korvel::settings {

namespace {

constexpr std::string_view hive = "HKEY_LOCAL_MACHINE";

/// Whether a path or name can stand on one line of the file.
bool fitsOneLine(std::string_view name) {
  return isValidUtf8(name) && name.find_first_of(std::string_view("\0\r\n", 3)) == std::string_view::npos;
}

/// The path below the hive, without the empty parts that doubled backslashes make: a registry ignores them too.
std::string pathInHive(std::string_view keyPath) {
  std::string path(hive);
  while (!keyPath.empty()) {
    const std::string_view part = keyPath.substr(0, keyPath.find('\\'));
    if (!part.empty()) {
      path += '\\';
      path += part;
    }
    keyPath.remove_prefix(std::min(part.size() + 1, keyPath.size()));
  }
  return path;
}

Win32Error load(const SharedFile& file, RegistryDocument& document) {
  std::string bytes;
  const Win32Error failure = file.read(bytes);
  if (failure != Win32Error::success) return failure;
  // Created to be filled, or cut off by a full disk: there is nothing in it that could be lost.
  if (bytes.empty()) {
    document = RegistryDocument();
    return Win32Error::success;
  }
  auto parsed = RegistryDocument::parse(std::move(bytes));
  if (!parsed) return Win32Error::badDatabase;
  document = *std::move(parsed);
  return Win32Error::success;
}

/// Takes the lock, reads the file (a missing one is an empty document), lets `change` work on the document, and writes
/// it where its text has changed.
template <typename Change>
Win32Error update(const SharedFile& file, RegistryDocument& document, const Change& change) {
  SharedFile::Lock lock;
  Win32Error failure = lock.take(file);
  if (failure != Win32Error::success) return failure;
  RegistryDocument current;
  failure = load(file, current);
  if (failure != Win32Error::success && failure != Win32Error::fileNotFound) return failure;
  const std::string before = current.text();
  change(current);
  if (current.text() != before)
    failure = lock.write(current.text());
  else
    failure = Win32Error::success;
  if (failure == Win32Error::success) document = std::move(current);
  return failure;
}

class FileKey : public SettingsKey {
 public:
  /// `writable` is null for a section opened for reading.
  FileKey(RegistryDocument document, std::string path, const SharedFile* writable)
      : document_(std::move(document)), path_(std::move(path)) {
    if (writable != nullptr) file_ = std::make_unique<SharedFile>(*writable);
  }

  Win32Error querySize(const std::string& valueName, std::uint32_t& type, std::uint32_t& size) override {
    const RegistryValue* value = document_.find(path_, valueName);
    if (value == nullptr) return Win32Error::fileNotFound;
    type = value->type;
    size = static_cast<std::uint32_t>(value->bytes.size());
    return Win32Error::success;
  }

  Win32Error queryData(const std::string& valueName, std::vector<char>& buffer) override {
    const RegistryValue* value = document_.find(path_, valueName);
    if (value == nullptr) return Win32Error::fileNotFound;
    if (buffer.size() < value->bytes.size()) return Win32Error::moreData;
    std::copy(value->bytes.begin(), value->bytes.end(), buffer.begin());
    return Win32Error::success;
  }

  Win32Error setString(const std::string& valueName, const std::string& value) override {
    if (!file_) return Win32Error::accessDenied;
    if (!fitsOneLine(valueName)) return Win32Error::invalidParameter;
    if (!isValidUtf8(value)) return Win32Error::noUnicodeTranslation;
    return update(*file_, document_, [&](RegistryDocument& document) { document.setString(path_, valueName, value); });
  }

 private:
  RegistryDocument document_;
  std::string path_;
  std::unique_ptr<SharedFile> file_;
};

}  // namespace

Win32Error RegistryFile::openForReading(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) {
  if (!fitsOneLine(keyPath)) return Win32Error::invalidParameter;
  RegistryDocument document;
  const Win32Error failure = load(file_, document);
  if (failure != Win32Error::success) return failure;
  std::string path = pathInHive(keyPath);
  if (!document.hasKey(path)) return Win32Error::fileNotFound;
  key = std::make_unique<FileKey>(std::move(document), std::move(path), nullptr);
  return Win32Error::success;
}

Win32Error RegistryFile::createOrOpen(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) {
  if (!fitsOneLine(keyPath)) return Win32Error::invalidParameter;
  std::string path = pathInHive(keyPath);
  RegistryDocument document;
  const Win32Error failure = update(file_, document, [&](RegistryDocument& current) { current.addKey(path); });
  if (failure != Win32Error::success) return failure;
  key = std::make_unique<FileKey>(std::move(document), std::move(path), &file_);
  return Win32Error::success;
}

std::string RegistryFile::file() const {
  return file_.path().string();
}

std::filesystem::path registryFilePath() {
  if (const std::string named = GetEnvironment("KORVEL_REGISTRY"); !named.empty()) return named;
  const std::filesystem::path folder = configurationFolder();
  return folder.empty() ? folder : folder / "korvel" / "registry.reg";
}

}  // namespace korvel::settings
