#include "ocx/module.h"

#include <atomic>

namespace korvel::ocx {
namespace {

std::atomic<int>& uses() {
  static std::atomic<int> count = 0;
  return count;
}

}  // namespace

HINSTANCE ownInstance() {
  static const char ofThisFile = 0;
  HMODULE module = nullptr;
  constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  ::GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&ofThisFile), &module);
  return module;
}

std::wstring ownFile() {
  HINSTANCE module = ownInstance();
  if (module == nullptr) return {};
  // As long as paths can be.
  std::wstring path(32768, L'\0');
  const DWORD length = ::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
  path.resize(length < path.size() ? length : 0);
  return path;
}

std::wstring ownFolder() {
  const std::wstring file = ownFile();
  return file.substr(0, file.find_last_of(L'\\'));
}

UseOfModule::UseOfModule() {
  lockModule(true);
}
UseOfModule::~UseOfModule() {
  lockModule(false);
}

bool isModuleInUse() {
  return uses() != 0;
}

void lockModule(bool lock) {
  uses() += lock ? 1 : -1;
}

}  // namespace korvel::ocx
