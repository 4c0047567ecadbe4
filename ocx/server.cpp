// What the system calls in the control's file.
#include <windows.h>
// after windows.h
#include <olectl.h>

#include <new>
#include <string>
#include <string_view>

#include "ocx/registration.h"
#include "ocx/registry_entries.h"

namespace korvel::ocx {
namespace {

/// The full path of this file, empty where the system does not tell it.
std::wstring ownFile() {
  static const char ofThisFile = 0;
  HMODULE module = nullptr;
  constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (::GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&ofThisFile), &module) == 0) return {};
  // As long as paths can be.
  std::wstring path(32768, L'\0');
  const DWORD length = ::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
  path.resize(length < path.size() ? length : 0);
  return path;
}

using Action = HRESULT (*)(HKEY, const std::wstring&);

/// Calls `action` with the classes below `root` and this file. No exception leaves the library.
HRESULT withClasses(HKEY root, Action action) noexcept {
  try {
    HKEY opened = nullptr;
    const LSTATUS status = ::RegCreateKeyExW(root, L"Software\\Classes", 0, nullptr, REG_OPTION_NON_VOLATILE,
                                             KEY_READ | KEY_WRITE, nullptr, &opened, nullptr);
    if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
    const OpenKey classes(opened);
    const std::wstring file = ownFile();
    return file.empty() ? SELFREG_E_CLASS : action(classes.get(), file);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

}  // namespace
}  // namespace korvel::ocx

extern "C" {

STDAPI DllRegisterServer() {
  return korvel::ocx::withClasses(HKEY_LOCAL_MACHINE, korvel::ocx::registerControl);
}

STDAPI DllUnregisterServer() {
  return korvel::ocx::withClasses(HKEY_LOCAL_MACHINE, korvel::ocx::unregisterControl);
}

/// "user" is for the running user alone, which needs no administrator; no text is for the machine.
STDAPI DllInstall(BOOL install, LPCWSTR forWhom) {
  const std::wstring_view text = forWhom != nullptr ? forWhom : L"";
  if (!text.empty() && text != L"user") return E_INVALIDARG;
  return korvel::ocx::withClasses(text.empty() ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER,
                                  install != FALSE ? korvel::ocx::registerControl : korvel::ocx::unregisterControl);
}

}  // extern "C"
