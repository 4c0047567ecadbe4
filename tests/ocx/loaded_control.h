#pragma once

#include <windows.h>
// after windows.h
#include <ocidl.h>

#include <string>

#include "ocx/com_pointer.h"

namespace korvel::test {

/// The control's file, loaded from a folder as the system loads it for a container, without being registered.
class LoadedControl {
 public:
  /// `folder` is a path of the build. Throws where the file cannot be loaded.
  explicit LoadedControl(const char* folder);
  ~LoadedControl();
  LoadedControl(const LoadedControl&) = delete;
  LoadedControl& operator=(const LoadedControl&) = delete;

  [[nodiscard]] HRESULT factory(ocx::ComPointer<IClassFactory>& made) const;
  /// That of another class in the file.
  [[nodiscard]] HRESULT factory(REFCLSID wanted, ocx::ComPointer<IClassFactory>& made) const;
  /// A new control, as the first interface that a container asks for. Throws.
  [[nodiscard]] ocx::ComPointer<IUnknown> make() const;
  [[nodiscard]] HRESULT canUnload() const;
  /// As regsvr32 does it for the running user.
  [[nodiscard]] HRESULT registerForUser() const;
  /// What the library beside the file has noted since it was asked last.
  [[nodiscard]] static std::wstring notes();

 private:
  HMODULE file_;
};

/// A window of a container, hidden, and destroyed at the end.
class ContainerWindow {
 public:
  ContainerWindow();
  ~ContainerWindow();
  ContainerWindow(const ContainerWindow&) = delete;
  ContainerWindow& operator=(const ContainerWindow&) = delete;
  [[nodiscard]] HWND handle() const { return window_; }

 private:
  HWND window_;
};

/// The text of the failure that a method reported last, with its source before it.
[[nodiscard]] std::wstring lastFailure();

}  // namespace korvel::test
