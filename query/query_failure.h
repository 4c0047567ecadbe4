#pragma once

#include <cstdint>
#include <exception>
#include <new>
#include <optional>

#include "base/error.h"

namespace korvel::query {

/// The number of failures that no engine numbers, as the control's users know it from its other messages.
inline constexpr std::int32_t internalErrorNumber = 51;

[[nodiscard]] Error internalFailure();
[[nodiscard]] Error memoryFailure();
/// The same error; missing memory, which is said where there is no memory for sentences, with the key of its own.
[[nodiscard]] Error inWords(const Error& error);

/// Runs `step`; what it throws, of whatever type, as an Error.
template <typename Step>
std::optional<Error> failureOf(const Step& step) {
  try {
    step();
    return std::nullopt;
  } catch (const Error& error) {
    return inWords(error);
  } catch (const std::bad_alloc&) {
    return memoryFailure();
  } catch (const std::exception& exception) {
    return Error(internalErrorNumber, exception.what());
  } catch (...) {
    return internalFailure();
  }
}

}  // namespace korvel::query
