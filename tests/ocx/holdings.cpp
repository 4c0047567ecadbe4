#include "tests/ocx/holdings.h"

#include <gtest/gtest.h>
#include <windows.h>
// after windows.h
#include <tlhelp32.h>

#include <array>

namespace korvel::test {
namespace {

BOOL CALLBACK countWindow(HWND, LPARAM counter) {
  ++*reinterpret_cast<int*>(counter);
  return TRUE;
}

}  // namespace

Holdings holdings() {
  Holdings now;
  const HANDLE next = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
  now.nextHandle = reinterpret_cast<std::uintptr_t>(next);
  ::CloseHandle(next);
  ::EnumThreadWindows(::GetCurrentThreadId(), &countWindow, reinterpret_cast<LPARAM>(&now.windows));
  const HANDLE all = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 thread{};
  thread.dwSize = sizeof(thread);
  for (BOOL more = ::Thread32First(all, &thread); more != FALSE; more = ::Thread32Next(all, &thread))
    if (thread.th32OwnerProcessID == ::GetCurrentProcessId()) ++now.threads;
  ::CloseHandle(all);
  std::array<HANDLE, 64> heaps{};
  const DWORD count = ::GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
  for (DWORD index = 0; index < count && index < heaps.size(); ++index) {
    PROCESS_HEAP_ENTRY entry{};
    while (::HeapWalk(heaps.at(index), &entry) != FALSE)
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) now.bytes += entry.cbData;
  }
  return now;
}

void expectNothingMore(const Holdings& before, const Holdings& after) {
  // Nothing was counted otherwise.
  ASSERT_GT(before.nextHandle, 0U);
  ASSERT_GT(before.threads, 0);
  ASSERT_GT(before.bytes, 0U);
  EXPECT_LE(after.nextHandle, before.nextHandle);
  EXPECT_LE(after.threads, before.threads);
  EXPECT_LE(after.windows, before.windows);
  // The system's own lists may grow once.
  EXPECT_LE(after.bytes, before.bytes + 10000);
}

}  // namespace korvel::test
