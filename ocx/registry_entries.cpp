#include "ocx/registry_entries.h"

#include <cstddef>
#include <optional>
#include <utility>

namespace korvel::ocx {
namespace {

/// What a value was before it was written.
struct FormerValue {
  std::wstring key;
  std::wstring name;
  DWORD type = REG_NONE;
  /// Nothing for a value that did not exist.
  std::optional<std::vector<BYTE>> bytes;
};

/// Writes entries, and takes them back unless they are kept.
class Writing {
 public:
  explicit Writing(HKEY classes) : classes_(classes) {}
  ~Writing() {
    if (kept_) return;
    for (; !values_.empty(); values_.pop_back()) restore(values_.back());
    for (; !created_.empty(); created_.pop_back()) ::RegDeleteKeyW(classes_, created_.back().c_str());
  }
  Writing(const Writing&) = delete;
  Writing& operator=(const Writing&) = delete;

  LSTATUS write(const RegistryEntry& entry) {
    if (const LSTATUS status = create(entry.key); status != ERROR_SUCCESS) return status;
    HKEY opened = nullptr;
    LSTATUS status = ::RegOpenKeyExW(classes_, entry.key.c_str(), 0, KEY_QUERY_VALUE | KEY_SET_VALUE, &opened);
    if (status != ERROR_SUCCESS) return status;
    const OpenKey key(opened);
    FormerValue former{entry.key, entry.name, REG_NONE, std::nullopt};
    DWORD size = 0;
    if (::RegQueryValueExW(key.get(), entry.name.c_str(), nullptr, &former.type, nullptr, &size) == ERROR_SUCCESS) {
      std::vector<BYTE> bytes(size);
      status = ::RegQueryValueExW(key.get(), entry.name.c_str(), nullptr, &former.type, bytes.data(), &size);
      if (status != ERROR_SUCCESS) return status;
      bytes.resize(size);
      former.bytes = std::move(bytes);
    }
    values_.push_back(std::move(former));
    return set(key.get(), entry.name, REG_SZ, entry.value.c_str(), (entry.value.size() + 1) * sizeof(wchar_t));
  }

  void keep() { kept_ = true; }

 private:
  static LSTATUS set(HKEY key, const std::wstring& name, DWORD type, const void* data, std::size_t size) {
    return ::RegSetValueExW(key, name.c_str(), 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size));
  }

  /// Creates one key after the other on the way, to know which of them are new.
  LSTATUS create(const std::wstring& path) {
    for (std::size_t end = 0; end != std::wstring::npos;) {
      end = path.find(L'\\', end == 0 ? 0 : end + 1);
      const std::wstring key = path.substr(0, end);
      HKEY opened = nullptr;
      DWORD disposition = 0;
      const LSTATUS status = ::RegCreateKeyExW(classes_, key.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                               KEY_CREATE_SUB_KEY, nullptr, &opened, &disposition);
      if (status != ERROR_SUCCESS) return status;
      ::RegCloseKey(opened);
      if (disposition == REG_CREATED_NEW_KEY) created_.push_back(key);
    }
    return ERROR_SUCCESS;
  }

  void restore(const FormerValue& former) const {
    HKEY opened = nullptr;
    if (::RegOpenKeyExW(classes_, former.key.c_str(), 0, KEY_SET_VALUE, &opened) != ERROR_SUCCESS) return;
    const OpenKey key(opened);
    if (former.bytes) {
      set(key.get(), former.name, former.type, former.bytes->data(), former.bytes->size());
    } else {
      ::RegDeleteValueW(key.get(), former.name.c_str());
    }
  }

  HKEY classes_;
  std::vector<std::wstring> created_;
  std::vector<FormerValue> values_;
  bool kept_ = false;
};

}  // namespace

LSTATUS writeEntries(HKEY classes, const std::vector<RegistryEntry>& entries) {
  Writing writing(classes);
  for (const RegistryEntry& entry : entries)
    if (const LSTATUS status = writing.write(entry); status != ERROR_SUCCESS) return status;
  writing.keep();
  return ERROR_SUCCESS;
}

LSTATUS removeKey(HKEY classes, const std::wstring& key) {
  const LSTATUS status = ::RegDeleteTreeW(classes, key.c_str());
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

bool removeIfEmpty(HKEY classes, const std::wstring& key) {
  HKEY opened = nullptr;
  const LSTATUS status = ::RegOpenKeyExW(classes, key.c_str(), 0, KEY_READ, &opened);
  if (status != ERROR_SUCCESS) return status == ERROR_FILE_NOT_FOUND;
  DWORD keys = 0;
  DWORD values = 0;
  {
    const OpenKey parent(opened);
    if (::RegQueryInfoKeyW(parent.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr, nullptr,
                           nullptr, nullptr) != ERROR_SUCCESS)
      return false;
  }
  return keys == 0 && values == 0 && ::RegDeleteKeyW(classes, key.c_str()) == ERROR_SUCCESS;
}

std::wstring valueOf(HKEY classes, const std::wstring& key) {
  DWORD size = 0;
  if (::RegGetValueW(classes, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, nullptr, &size) != ERROR_SUCCESS) return {};
  std::wstring value(size / sizeof(wchar_t), L'\0');
  if (::RegGetValueW(classes, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, value.data(), &size) != ERROR_SUCCESS)
    return {};
  value.resize(size / sizeof(wchar_t));
  while (!value.empty() && value.back() == L'\0') value.pop_back();
  return value;
}

}  // namespace korvel::ocx
