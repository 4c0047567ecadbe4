#include "tests/ocx/loaded_control.h"

// after windows.h
#include <oleauto.h>

#include <filesystem>
#include <stdexcept>

#include "base/wide_text_windows.h"

namespace korvel::test {
namespace {

template <typename Function>
Function* functionOf(HMODULE file, const char* name) {
  auto* const found = reinterpret_cast<Function*>(reinterpret_cast<void*>(::GetProcAddress(file, name)));
  if (found == nullptr) throw std::runtime_error(name);
  return found;
}

}  // namespace

LoadedControl::LoadedControl(const char* folder) {
  const auto path = std::filesystem::absolute(lossyWideFromUtf8(folder)) / L"KorvelAuditViewerOCX.ocx";
  file_ = ::LoadLibraryW(std::filesystem::path(path).make_preferred().c_str());
  if (file_ == nullptr) throw std::runtime_error("the control's file is not loaded");
}

// As systems do, which ask before they unload: that is when the library beside the file goes.
LoadedControl::~LoadedControl() {
  (void)canUnload();
  ::FreeLibrary(file_);
}

HRESULT LoadedControl::factory(ocx::ComPointer<IClassFactory>& made) const {
  CLSID control{};
  ::CLSIDFromString(L"{EB5171F2-0C78-46CE-ADBF-8311DED82E15}", &control);
  return factory(control, made);
}

HRESULT LoadedControl::factory(REFCLSID wanted, ocx::ComPointer<IClassFactory>& made) const {
  return functionOf<HRESULT(REFCLSID, REFIID, void**)>(file_, "DllGetClassObject")(
      wanted, IID_IClassFactory, reinterpret_cast<void**>(made.receive()));
}

ocx::ComPointer<IUnknown> LoadedControl::make() const {
  ocx::ComPointer<IClassFactory> maker;
  ocx::ComPointer<IUnknown> made;
  if (FAILED(factory(maker)) ||
      FAILED(maker->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(made.receive()))))
    throw std::runtime_error("no control was made");
  return made;
}

HRESULT LoadedControl::canUnload() const {
  return functionOf<HRESULT()>(file_, "DllCanUnloadNow")();
}

HRESULT LoadedControl::registerForUser() const {
  return functionOf<HRESULT(BOOL, const wchar_t*)>(file_, "DllInstall")(TRUE, L"user");
}

std::wstring LoadedControl::notes() {
  const BSTR taken = functionOf<BSTR()>(::GetModuleHandleW(L"KorvelAuditViewerHosting.dll"), "takeNotes")();
  std::wstring text(taken, ::SysStringLen(taken));
  ::SysFreeString(taken);
  return text;
}

ContainerWindow::ContainerWindow()
    : window_(::CreateWindowExW(0, L"STATIC", L"Container", WS_OVERLAPPEDWINDOW, 0, 0, 640, 480, nullptr, nullptr,
                                nullptr, nullptr)) {
  if (window_ == nullptr) throw std::runtime_error("no window can be made");
}
ContainerWindow::~ContainerWindow() {
  ::DestroyWindow(window_);
}

std::wstring lastFailure() {
  ocx::ComPointer<IErrorInfo> information;
  if (::GetErrorInfo(0, information.receive()) != S_OK) return {};
  BSTR source = nullptr;
  BSTR text = nullptr;
  information->GetSource(&source);
  information->GetDescription(&text);
  const std::wstring all =
      std::wstring(source, ::SysStringLen(source)) + L": " + std::wstring(text, ::SysStringLen(text));
  ::SysFreeString(source);
  ::SysFreeString(text);
  return all;
}

}  // namespace korvel::test
