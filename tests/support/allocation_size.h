#pragma once

#include <cstddef>

namespace korvel::test {

/// Bytes of a block of the C library's heap, which may be some more than were asked for.
[[nodiscard]] std::size_t allocationSize(void* memory) noexcept;

}  // namespace korvel::test
