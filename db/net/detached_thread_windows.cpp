#include <windows.h>

#include <memory>
#include <utility>

#include "base/error.h"
#include "base/system_errors.h"
#include "db/net/detached_thread.h"

namespace korvel::db::net {

namespace {

using Work = std::function<void()>;

DWORD WINAPI run(void* argument) {
  const std::unique_ptr<Work> work(static_cast<Work*>(argument));
  (*work)();
  return 0;
}

}  // namespace

// Not the library's threads: with those of the compiler for Windows, one that is let go may take another's place while
// that one ends, and then end without having done its work.
JoinThread startThread(Work work) {
  auto own = std::make_unique<Work>(std::move(work));
  HANDLE thread = ::CreateThread(nullptr, 0, run, own.get(), 0, nullptr);
  if (thread == nullptr) throw systemError(static_cast<int>(::GetLastError()), "cannot start a thread");
  (void)own.release();  // the thread's own from now on
  const std::shared_ptr<void> handle(thread, ::CloseHandle);
  return [handle] { ::WaitForSingleObject(handle.get(), INFINITE); };
}

void startDetachedThread(Work work) {
  static_cast<void>(startThread(std::move(work)));
}

}  // namespace korvel::db::net
