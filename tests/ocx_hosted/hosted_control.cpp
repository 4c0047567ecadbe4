#include "tests/ocx_hosted/hosted_control.h"

#include <filesystem>
#include <stdexcept>

#include "base/wide_text_windows.h"
#include "demo/demo_database.h"

namespace korvel::test {
namespace {

constexpr const wchar_t* glassName = L"looking_glass.dll";

std::wstring taken(BSTR text) {
  std::wstring copy(text, ::SysStringLen(text));
  ::SysFreeString(text);
  return copy;
}

}  // namespace

bool deliverMessages(const std::function<bool()>& done) {
  constexpr UINT longest = 30000;
  const UINT_PTR timer = ::SetTimer(nullptr, 0, longest, nullptr);
  bool late = false;
  MSG message{};
  while (!late && !done() && ::GetMessageW(&message, nullptr, 0, 0) > 0) {
    late = message.message == WM_TIMER && message.hwnd == nullptr && message.wParam == timer;
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
  ::KillTimer(nullptr, timer);
  return !late;
}

HostedControl::HostedControl()
    : file_(KORVEL_PACKAGE_FOLDER), control_(file_.make()), container_(window_.handle(), control_.get()) {
  ::ShowWindow(window_.handle(), SW_SHOWNA);
  demo::writeDemoDatabases({.folder = folder_.path(), .rows = records});
}

HostedControl::~HostedControl() {
  if (const HMODULE glass = ::GetModuleHandleW(glassName)) ::FreeLibrary(glass);
}

std::wstring HostedControl::trail() const {
  return folder_.path().wstring();
}

HWND HostedControl::ownWindow() const {
  HWND window = nullptr;
  ocx::ComPointer<IOleInPlaceObject>::of(control_.get(), IID_IOleInPlaceObject)->GetWindow(&window);
  return window;
}

HWND HostedControl::viewerWindow() const {
  return ::GetWindow(ownWindow(), GW_CHILD);
}

std::wstring HostedControl::textOf(const wchar_t* element) const {
  return taken(look<TextOf>("textOf")(viewerWindow(), element));
}

std::wstring HostedControl::focus() const {
  return taken(look<FocusOf>("focusOf")(viewerWindow()));
}

void (*HostedControl::lookUp(const char* name))() {
  HMODULE glass = ::GetModuleHandleW(glassName);
  if (glass == nullptr) {
    const auto path = std::filesystem::absolute(lossyWideFromUtf8(KORVEL_PACKAGE_FOLDER)) / glassName;
    glass = ::LoadLibraryExW(std::filesystem::path(path).make_preferred().c_str(), nullptr,
                             LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
  }
  auto* const found = reinterpret_cast<void (*)()>(::GetProcAddress(glass, name));
  if (found == nullptr) throw std::runtime_error(name);
  return found;
}

}  // namespace korvel::test
