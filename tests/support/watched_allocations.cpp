#include "tests/support/watched_allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/support/allocation_size.h"

namespace {

std::atomic<std::size_t> allocations{0};
std::atomic<std::size_t> held{0};
std::atomic<bool> limited{false};
std::atomic<std::size_t> left{0};
std::atomic<std::size_t> failuresLeft{0};

/// Takes one allocation; false where none is left.
bool takeOne(std::atomic<std::size_t>& count) noexcept {
  std::size_t now = count;
  while (now != 0 && !count.compare_exchange_weak(now, now - 1)) continue;
  return now != 0;
}

bool mayAllocate() noexcept {
  ++allocations;
  if (!limited) return true;
  return takeOne(left) || !takeOne(failuresLeft);
}

void* allocate(std::size_t bytes) noexcept {
  void* const memory = std::malloc(bytes == 0 ? 1 : bytes);
  if (memory != nullptr) held += korvel::test::allocationSize(memory);
  return memory;
}

// Also for memory that another library has allocated: no size can stand before it.
void release(void* memory) noexcept {
  if (memory == nullptr) return;
  held -= korvel::test::allocationSize(memory);
  std::free(memory);
}

}  // namespace

// Replaces the program's operator new: to count every allocation, and to let a chosen one fail.
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  return mayAllocate() ? allocate(bytes) : nullptr;
}
void* operator new(std::size_t bytes) {
  void* const memory = operator new(bytes, std::nothrow);
  if (memory == nullptr) throw std::bad_alloc{};
  return memory;
}
void* operator new[](std::size_t bytes) {
  return operator new(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t& tag) noexcept {
  return operator new(bytes, tag);
}
void operator delete(void* memory) noexcept {
  release(memory);
}
void operator delete[](void* memory) noexcept {
  release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  release(memory);
}

namespace korvel::test {

std::size_t allocationCount() noexcept {
  return allocations;
}

std::size_t heldBytes() noexcept {
  return held;
}

FailingAllocations::FailingAllocations(std::size_t successes, std::size_t failures) noexcept {
  left = successes;
  failuresLeft = failures;
  limited = true;
}
FailingAllocations::~FailingAllocations() {
  limited = false;
}

}  // namespace korvel::test

#ifdef __SANITIZE_ADDRESS__
// The sanitizer's leak check calls this. The toolkit does not release a palette whose copy fails half-way, as it does
// where a test lets that allocation fail.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
  return "leak:QPalette::detach\n";
}
#endif
