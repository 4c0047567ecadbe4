#pragma once

#include <array>

namespace korvel::cli {

/// While it lives, Ctrl+C, the request to end and the end of the terminal leave the program running and are only noted,
/// so that work is ended in good order. The second one ends it as ever. Signals that the program was started to ignore
/// stay ignored.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  [[nodiscard]] static bool requested() noexcept;

 private:
  std::array<void (*)(int), 3> handlersBefore_{};
};

}  // namespace korvel::cli
