// Exceptions of the control's file in 32 bits, where each file announces the frames of its functions when it is loaded.
// The compiler's startup code announces them to libgcc_s_dw2-1.dll if that is in the process already: another program's
// file, or that of the toolkit, which stays when the control was unloaded. This file holds the compiler's libraries
// itself and looks for frames in its own list alone, so an exception would end the process. This announces them there.
// Its lists of frames also leave nothing behind when the file is unloaded.
// It must be the first object that is linked: the frames of all others follow its own.
#include <windows.h>

extern "C" {
// With --wrap=pthread_once the linker gives these names to that function of the compiler's library and to its callers.
int __wrap_pthread_once(long* once, void (*make)());  // NOLINT(*-reserved-identifier)
void __register_frame(const void* frames);            // NOLINT(*-reserved-identifier): of the compiler's library
void __deregister_frame(const void* frames);          // NOLINT(*-reserved-identifier)
extern const char firstFrame[];
}

asm(".section .eh_frame, \"dr\"\n"
    "_firstFrame:\n"
    ".text\n");

namespace {

bool announced = false;

[[gnu::constructor(101)]] void announceFrames() {
  // Otherwise the startup code has done it.
  announced = ::GetModuleHandleW(L"libgcc_s_dw2-1.dll") != nullptr;
  if (announced) __register_frame(firstFrame);
}

[[gnu::destructor(101)]] void withdrawFrames() {
  if (announced) __deregister_frame(firstFrame);
}

}  // namespace

/// Calls `make` once for all threads. The lists of frames ask for it whenever the file is loaded, and the library's own
/// one keeps two handles and a thread-local slot of the loading thread until that thread ends.
int __wrap_pthread_once(long* once, void (*make)()) {
  constexpr long begun = 2;
  constexpr long done = 1;
  if (::InterlockedCompareExchange(once, begun, 0) == 0) {
    make();
    ::InterlockedExchange(once, done);
  }
  while (::InterlockedCompareExchange(once, done, done) != done) ::SwitchToThread();
  return 0;
}
