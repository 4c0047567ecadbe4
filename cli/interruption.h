#pragma once

#include <memory>

namespace korvel::cli {

/// While an object exists, Ctrl+C, a request to terminate and the closing of the terminal are only noted, so that work
/// ends in good order. The second one ends the process. Signals that the process was started to ignore stay ignored.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  [[nodiscard]] static bool requested() noexcept;

 private:
  struct Before;
  std::unique_ptr<Before> before_;  ///< what the process did before
};

}  // namespace korvel::cli
