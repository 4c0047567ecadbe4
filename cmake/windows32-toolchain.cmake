# Debian's compiler for 32-bit Windows, like windows-toolchain.cmake. Numbers are computed as on 64 bits, with SSE2 instead
# of the old coprocessor, whose registers hold more digits. SSE2 needs an aligned stack, which programs of other compilers,
# and so containers, do not keep.
set(KORVEL_WINDOWS_PROCESSOR i686)
set(KORVEL_WINDOWS_FLAGS "-msse2 -mfpmath=sse -mstackrealign")
# 4 GB of addresses on 64-bit Windows instead of 2.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,--large-address-aware")
include("${CMAKE_CURRENT_LIST_DIR}/windows-toolchain.cmake")
