#pragma once

#include <windows.h>

#include <string>

/// The control's own file in the process that has loaded it.
namespace korvel::ocx {

/// Its full path, empty where the system does not tell it.
[[nodiscard]] std::wstring ownFile();
/// Its folder, without a separator at the end.
[[nodiscard]] std::wstring ownFolder();
[[nodiscard]] HINSTANCE ownInstance();

/// As long as one exists, the file must stay loaded.
class UseOfModule {
 public:
  UseOfModule();
  ~UseOfModule();
  UseOfModule(const UseOfModule&) = delete;
  UseOfModule& operator=(const UseOfModule&) = delete;
};

[[nodiscard]] bool isModuleInUse();

/// IClassFactory::LockServer.
void lockModule(bool lock);

}  // namespace korvel::ocx
