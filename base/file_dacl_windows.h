#pragma once

#include <windows.h>

#include <string>

namespace korvel {

/// The access control list of a file (DACL). The functions give the system's number of a failure, or 0.
class FileDacl {
 public:
  /// Reads that of an open file; empty on a file system without access control.
  DWORD readFrom(HANDLE file);
  /// Sets it on another open file, unchanged; inherited entries stay inherited.
  [[nodiscard]] DWORD applyTo(HANDLE file) const;
  /// Whether there are entries that were not inherited: a new file in the same folder would lack them.
  [[nodiscard]] bool hasExplicitEntries() const;
  [[nodiscard]] bool operator==(const FileDacl&) const = default;

 private:
  [[nodiscard]] PSECURITY_DESCRIPTOR descriptor() const;

  std::string bytes_;  ///< the system's own form; empty for none
};

}  // namespace korvel
