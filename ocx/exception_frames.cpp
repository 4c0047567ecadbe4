// Exceptions of the control's file in 32 bits, where each file announces the frames of its functions when it is loaded.
// The compiler's startup code announces them to libgcc_s_dw2-1.dll if that is in the process already: another program's
// file, or that of the toolkit, which stays when the control was unloaded. This file holds the compiler's libraries
// itself and looks for frames in its own list alone, so an exception would end the process. This announces them there.
// It must be the first object that is linked: the frames of all others follow its own.
#include <windows.h>

extern "C" {
void __register_frame(const void* frames);    // NOLINT(*-reserved-identifier): of the compiler's library
void __deregister_frame(const void* frames);  // NOLINT(*-reserved-identifier)
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
