#pragma once

#include <optional>
#include <ostream>
#include <sstream>
#include <string>

#include "evidence/manifest.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

/// Adds --manifest; parsing sets `wanted`, which must outlive the command.
void addManifest(CLI::App& command, bool& wanted);

/// Why an output cannot have a manifest; nothing where it can.
[[nodiscard]] std::optional<std::string> manifestProblem(const std::string& output);

/// The manifest of an output in the making: who, where and when. The query fills in the rest.
[[nodiscard]] evidence::Manifest begunManifest(const std::string& server, const std::string& database);

/// Notes for standard error that a manifest repeats: said when the object goes.
class RepeatedNotes {
 public:
  RepeatedNotes(std::ostream& err, evidence::Manifest& manifest) : err_(err), manifest_(manifest) {}
  ~RepeatedNotes();
  RepeatedNotes(const RepeatedNotes&) = delete;
  RepeatedNotes& operator=(const RepeatedNotes&) = delete;

  /// Where the notes are written.
  [[nodiscard]] std::ostream& stream() const noexcept { return notes_; }

 private:
  std::ostream& err_;
  evidence::Manifest& manifest_;
  mutable std::ostringstream notes_;
};

}  // namespace korvel::cli
