#include <cerrno>

#include "base/system_errors.h"

namespace korvel {

int systemNumber(std::errc condition) noexcept {
  return static_cast<int>(condition);
}

int systemNumber(const std::error_code& failure) noexcept {
  return failure.value();
}

int systemNumberOfErrno(std::errc otherwise) noexcept {
  return errno != 0 ? errno : static_cast<int>(otherwise);
}

bool means(int systemNumber, std::errc condition) noexcept {
  return systemNumber == static_cast<int>(condition);
}

std::string systemMessage(int systemNumber) {
  return std::generic_category().message(systemNumber);
}

}  // namespace korvel
