#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>

#include "db/connection.h"
#include "evidence/manifest.h"
#include "query/standard_query.h"

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
/// Everything is written: when.
void endManifest(evidence::Manifest& manifest);

/// Remembers who answered, whichever thread connects.
class AnsweringServer {
 public:
  /// A connector that connects as `connect` does, and remembers.
  [[nodiscard]] query::Connector remembering(const query::Connector& connect) const;
  [[nodiscard]] db::ServerIdentity identity() const;

 private:
  struct Known {
    std::mutex mutex;
    db::ServerIdentity identity;
  };
  std::shared_ptr<Known> known_ = std::make_shared<Known>();
};

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
