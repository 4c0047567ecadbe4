// What the system calls in the control's file.
#include <windows.h>
// after windows.h
#include <olectl.h>

#include <string>
#include <string_view>

#include "ocx/class_factory.h"
#include "ocx/control_object.h"
#include "ocx/control_status.h"
#include "ocx/control_types.h"
#include "ocx/failure.h"
#include "ocx/host_window.h"
#include "ocx/hosting_library.h"
#include "ocx/module.h"
#include "ocx/property_page.h"
#include "ocx/registration.h"
#include "ocx/registry_entries.h"

namespace korvel::ocx {
namespace {

using Action = HRESULT (*)(HKEY, const std::wstring&);

/// A control that cannot be made is not registered.
HRESULT registerTried(HKEY classes, const std::wstring& file) {
  tryHostingLibrary();
  return registerControl(classes, file);
}

/// Calls `action` with the classes below `root` and this file.
HRESULT withClasses(HKEY root, Action action) noexcept {
  return guarded([&] {
    HKEY opened = nullptr;
    const LSTATUS status = ::RegCreateKeyExW(root, L"Software\\Classes", 0, nullptr, REG_OPTION_NON_VOLATILE,
                                             KEY_READ | KEY_WRITE, nullptr, &opened, nullptr);
    if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
    const OpenKey classes(opened);
    const std::wstring file = ownFile();
    return file.empty() ? SELFREG_E_CLASS : action(classes.get(), file);
  });
}

/// Loads the toolkit first: a container that gets no class shows no text of its own. A program with a window in front
/// gets a box that says what is missing.
void openHosting() {
  try {
    [[maybe_unused]] const Hosting& opened = hosting();
  } catch (const Failure& failure) {
    if (const HWND window = ::GetActiveWindow())
      ::MessageBoxW(window, failure.text().c_str(), controlName, MB_OK | MB_ICONERROR);
    throw;
  }
}

}  // namespace
}  // namespace korvel::ocx

extern "C" {

STDAPI DllGetClassObject(REFCLSID wanted, REFIID identifier, void** object) {
  using namespace korvel::ocx;
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  return guarded([&] {
    const bool isControl = IsEqualCLSID(wanted, controlTypes()->controlId);
    if (!isControl && !IsEqualCLSID(wanted, propertyPageId)) return CLASS_E_CLASSNOTAVAILABLE;
    openHosting();
    auto* factory = new ClassFactory(isControl ? &ControlObject::create : &PropertyPage::create);
    const HRESULT result = factory->QueryInterface(identifier, object);
    factory->Release();
    return result;
  });
}

STDAPI DllCanUnloadNow() {
  using namespace korvel::ocx;
  if (isModuleInUse() || !closeHosting()) return S_FALSE;
  HostWindow::forgetClass();
  return S_OK;
}

STDAPI DllRegisterServer() {
  return korvel::ocx::withClasses(HKEY_LOCAL_MACHINE, korvel::ocx::registerTried);
}

STDAPI DllUnregisterServer() {
  return korvel::ocx::withClasses(HKEY_LOCAL_MACHINE, korvel::ocx::unregisterControl);
}

/// "user" is for the running user alone, which needs no administrator; no text is for the machine.
STDAPI DllInstall(BOOL install, LPCWSTR forWhom) {
  const std::wstring_view text = forWhom != nullptr ? forWhom : L"";
  if (!text.empty() && text != L"user") return E_INVALIDARG;
  return korvel::ocx::withClasses(text.empty() ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER,
                                  install != FALSE ? korvel::ocx::registerTried : korvel::ocx::unregisterControl);
}

}  // extern "C"
