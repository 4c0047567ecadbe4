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

void open() {
  const std::wstring file = ownFolder() + L'\\' + hostingLibraryName;
  OpenedHosting wanted;
  {
    const QuietLoading quiet;
    // The libraries that it needs are looked for beside it.
    wanted.library = ::LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  }
  if (wanted.library == nullptr) {
    const HRESULT result = HRESULT_FROM_WIN32(::GetLastError());
    throw Failure(result, L"The Korvel Audit Viewer control cannot load " + file +
                              L". This file, or one of the libraries that it needs, is missing or damaged. Unpack the "
                              L"whole package into one folder. (" +
                              systemText(result) + L')');
  }
  const auto openHosting =
      reinterpret_cast<OpenHosting>(reinterpret_cast<void*>(::GetProcAddress(wanted.library, openHostingName)));
  constexpr DWORD noEntry = ERROR_PROC_NOT_FOUND;
  const HRESULT result =
      openHosting != nullptr ? openHosting(boundaryVersion, &wanted.hosting) : HRESULT_FROM_WIN32(noEntry);
  if (FAILED(result)) {
    ::FreeLibrary(wanted.library);
    throw Failure(result, L"The file " + file + L" does not work with this version of the control. (" +
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

bool closeHosting() noexcept {
  if (opened().hosting == nullptr) return true;
  if (opened().thread != ::GetCurrentThreadId() || !opened().hosting->end()) return false;
  ::FreeLibrary(opened().library);
  opened() = {};
  return true;
}

}  // namespace korvel::ocx
