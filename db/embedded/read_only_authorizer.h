#pragma once

#include <string>

struct sqlite3;

namespace korvel::db {

/// Decides, while a statement is compiled, what it may do: read, and nothing else. Whatever is not known to be harmless
/// is refused.
class ReadOnlyAuthorizer {
 public:
  /// Watches over all statements that are compiled on `handle` from here on; must outlive it.
  void install(sqlite3* handle);

  /// What the last refused statement tried, "PRAGMA journal_mode" or "load_extension()"; empty where the statement's
  /// first word says it.
  [[nodiscard]] const std::string& refused() const noexcept { return refused_; }
  void forget() noexcept { refused_.clear(); }

 private:
  static int authorize(void* self, int action, const char* first, const char* second, const char* schema,
                       const char* trigger);
  bool allows(int action, const char* first, const char* second);

  std::string refused_;
};

}  // namespace korvel::db
