#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/error.h"

namespace korvel::settings {

/// Number of texts of each language in the fixed table, numbered from 1.
inline constexpr int fixedTextCount = 71;

/// English identifier of a text of the fixed table, 10001 to 10071.
struct TextId {
  int value = 0;
};

/// A language as its index in the tables: 0 English, 1 German, 2 French, 3 Spanish, 4 Italian.
struct Language {
  int index = 0;
};
inline constexpr int languageCount = 5;

/// The language offset is kept as text ("0", "10000" .. "40000"), because it is stored, read back and compared as text.
class LanguageOffset {
 public:
  LanguageOffset() = default;
  explicit LanguageOffset(std::string text) : text_(std::move(text)) {}

  [[nodiscard]] const std::string& text() const noexcept { return text_; }
  /// English for every text that is none of the five.
  [[nodiscard]] Language language() const noexcept;

 private:
  std::string text_ = "0";
};

/// A text of the fixed table: identifier `id` plus the offset.
[[nodiscard]] std::string_view loadText(TextId id, const LanguageOffset& offset);
/// A text of the fixed table by its identifier in any of the five blocks (10001 to 50071); empty outside the table.
[[nodiscard]] std::string_view loadTextByIdentifier(int identifier) noexcept;

/// A text of our own (host, tool windows, reasons of failures), by its key in own_texts.tsv. Throws std::out_of_range
/// for a key that the table does not have. Places "%1", "%2" are filled by the caller (see filled()).
[[nodiscard]] std::string_view ownText(std::string_view key, const LanguageOffset& offset);

/// `text` with "%1" .. "%9" replaced by the first .. ninth of `values`, in one pass: a value that looks like a place
/// stays as it is, and so does a place that has no value.
[[nodiscard]] std::string filled(std::string_view text, std::span<const std::string> values);
/// `text` with "%1" replaced by `first` and "%2" by `second`.
[[nodiscard]] std::string filled(std::string_view text, std::string_view first, std::string_view second = {});

/// An error that we explain ourselves: the sentence `key` of the table of our own texts, its "%1", "%2" ... filled.
[[nodiscard]] Error localizedError(std::int32_t number, std::string key, std::vector<std::string> arguments = {});

/// What to show for an error: our sentence in the user's language, or the engine's own text.
[[nodiscard]] std::string describe(const Error& error, const LanguageOffset& offset);

}  // namespace korvel::settings
