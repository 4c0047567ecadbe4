#include <malloc.h>

#include "tests/support/allocation_size.h"

namespace korvel::test {

std::size_t allocationSize(void* memory) noexcept {
  return malloc_usable_size(memory);
}

}  // namespace korvel::test
