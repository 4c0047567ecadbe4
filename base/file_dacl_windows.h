#pragma once

#include <windows.h>

#include <string>

namespace korvel {

/// Who may do what with a file, as the file itself says. The functions give the system's number of a failure, or 0.
class FileDacl {
 public:
  /// Takes those of an open file. A disk that knows no rights has none to take.
  DWORD take(HANDLE file);
  /// Gives them to another open file, to the letter; those that came from its folder go on coming from there.
  [[nodiscard]] DWORD applyTo(HANDLE file) const;
  /// Whether a new file in the same folder might have others: some were given to the file itself.
  [[nodiscard]] bool hasExplicitEntries() const;
  [[nodiscard]] bool operator==(const FileDacl&) const = default;

 private:
  [[nodiscard]] PSECURITY_DESCRIPTOR descriptor() const;

  std::string bytes_;  ///< the system's own form; empty for none
};

}  // namespace korvel
