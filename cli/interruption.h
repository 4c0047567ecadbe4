#pragma once

#include <memory>

namespace korvel::cli {

/// While it lives, Ctrl+C, the request to end and the end of the terminal leave the program running and are only noted,
/// so that work is ended in good order. The second one ends it as ever. What the program was started to ignore stays
/// ignored.
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
