#include "ocx/hosting_library.h"

#include <string>

#include "ocx/failure.h"
#include "ocx/module.h"

namespace korvel::ocx {
namespace {

struct OpenedHosting {
  HMODULE library = nullptr;
  Hosting* hosting = nullptr;
  DWORD thread = 0;
};

OpenedHosting& opened() {
  static OpenedHosting hosting;
  return hosting;
}

/// While it exists, a missing file is an error and no dialog of the system, on this thread.
class QuietLoading {
 public:
  QuietLoading() { ::SetThreadErrorMode(::GetThreadErrorMode() | SEM_FAILCRITICALERRORS, &former_); }
  ~QuietLoading() { ::SetThreadErrorMode(former_, nullptr); }
  QuietLoading(const QuietLoading&) = delete;
  QuietLoading& operator=(const QuietLoading&) = delete;

 private:
  DWORD former_ = 0;
};

std::wstring libraryFile() {
  return ownFolder() + L'\\' + hostingLibraryName;
}

/// The library, loaded. Throws Failure.
HMODULE load() {
  const std::wstring file = libraryFile();
  HMODULE library = nullptr;
  {
    const QuietLoading quiet;
    // The libraries that it needs are looked for beside it and nowhere else.
    library = ::LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
  }
  if (library != nullptr) return library;
  const HRESULT result = HRESULT_FROM_WIN32(::GetLastError());
  throw Failure(result, L"The Korvel Audit Viewer control cannot load " + file +
                            L". This file, or one of the libraries that it needs, is missing or damaged. Unpack the "
                            L"whole package into one folder. (" +
                            systemText(result) + L')');
}

void open() {
  OpenedHosting wanted;
  wanted.library = load();
  const auto openHosting =
      reinterpret_cast<OpenHosting>(reinterpret_cast<void*>(::GetProcAddress(wanted.library, openHostingName)));
  constexpr DWORD noEntry = ERROR_PROC_NOT_FOUND;
  const HRESULT result =
      openHosting != nullptr ? openHosting(boundaryVersion, &wanted.hosting) : HRESULT_FROM_WIN32(noEntry);
  if (FAILED(result)) {
    ::FreeLibrary(wanted.library);
    throw Failure(result, L"The file " + libraryFile() + L" does not work with this version of the control. (" +
                              systemText(result) + L')');
  }
  wanted.thread = ::GetCurrentThreadId();
  opened() = wanted;
}

}  // namespace

Hosting& hosting() {
  if (opened().hosting == nullptr) open();
  if (opened().thread != ::GetCurrentThreadId())
    throw Failure(RPC_E_WRONG_THREAD,
                  L"Another thread of this process uses the control already. Make all controls of "
                  L"a process on one thread.");
  return *opened().hosting;
}

void tryHostingLibrary() {
  ::FreeLibrary(load());
}

bool closeHosting() noexcept {
  if (opened().hosting == nullptr) return true;
  if (opened().thread != ::GetCurrentThreadId() || !opened().hosting->end()) return false;
  ::FreeLibrary(opened().library);
  opened() = {};
  return true;
}

}  // namespace korvel::ocx
