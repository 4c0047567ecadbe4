#pragma once

#include <string>
#include <system_error>

namespace korvel {

// Numbers of the system: errno on POSIX systems, those of GetLastError on Windows. Shared code names conditions
// instead.

/// The system's number for a condition.
[[nodiscard]] int systemNumber(std::errc condition) noexcept;
/// The system's number of a failure that the library reports.
[[nodiscard]] int systemNumber(const std::error_code& failure) noexcept;
/// The number for what `errno` tells, as functions of the C library set it; that of `otherwise` where it is 0.
[[nodiscard]] int systemNumberOfErrno(std::errc otherwise) noexcept;
/// Whether a number of the system means this condition. Several may: Windows tells a missing file from a missing path.
[[nodiscard]] bool means(int systemNumber, std::errc condition) noexcept;

/// What the system says of one of its numbers, in UTF-8.
[[nodiscard]] std::string systemMessage(int systemNumber);

}  // namespace korvel
