#pragma once

#include <exception>

namespace korvel::control {

/// A step of a builder: a failure leaves this step undone and the next one runs.
template <typename Step>
void skipFailing(const Step& step) {
  try {
    step();
  } catch (const std::exception&) {
    return;
  }
}

}  // namespace korvel::control
