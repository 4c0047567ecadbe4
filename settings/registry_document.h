#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/registry_value.h"

namespace korvel::settings {

/// The text of a settings file: sections and values in the format of a registry export. A change touches the text of
/// the one value or section concerned; comments, blank lines, other values and spellings stay byte for byte.
/// Paths ("HKEY_LOCAL_MACHINE\SOFTWARE\...") and names compare without regard to case, as in a registry.
class RegistryDocument {
 public:
  /// An empty document: the header alone.
  RegistryDocument();

  /// Reads a whole file: UTF-8 with or without a byte order mark, or the UTF-16 that an export on Windows has (kept as
  /// UTF-8 from then on). Nothing where any line of it is not understood.
  [[nodiscard]] static std::optional<RegistryDocument> parse(std::string bytes);

  [[nodiscard]] const std::string& text() const noexcept { return text_; }

  /// Whether there is a section `path` or one below it.
  [[nodiscard]] bool hasKey(std::string_view path) const;
  /// The value, or null. Where a file holds it twice, the later one counts.
  [[nodiscard]] const RegistryValue* find(std::string_view path, std::string_view name) const;

  /// Adds the section at the end unless it has a line of its own already.
  void addKey(std::string_view path);
  /// Stores UTF-8 `value` as a string, in place of an earlier value of any type, adding the section if need be.
  void setString(std::string_view path, std::string_view name, std::string_view value);

 private:
  struct Key {
    std::string comparablePath;
    std::size_t end = 0;  // where a value may be added: after the line of its last value, or its own
  };
  struct Entry {
    std::size_t key = 0;
    std::string comparableName;
    RegistryValue value;
    std::size_t dataBegin = 0;
    std::size_t dataEnd = 0;
  };

  [[nodiscard]] bool read();
  [[nodiscard]] bool readKey(std::string_view line, std::size_t end);
  [[nodiscard]] bool readValue(std::size_t& at);
  [[nodiscard]] const Key* findKey(std::string_view path) const;
  [[nodiscard]] const Entry* findEntry(std::string_view path, std::string_view name) const;
  [[nodiscard]] std::string_view lineEnd() const;
  void replace(std::size_t begin, std::size_t end, std::string_view replacement);

  std::string text_;
  std::vector<Key> keys_;
  std::vector<Entry> entries_;
};

}  // namespace korvel::settings
