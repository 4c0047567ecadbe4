#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "settings/string_table.h"

namespace korvel::settings {

/// One text in every language, in the order of Language.
struct TextRow {
  std::string key;
  std::array<std::string, languageCount> texts;
};

/// A table of texts as translators edit it: UTF-8, one row a line, cells parted by tabs, first a header row
/// (key column, en, de, fr, es, it). Inside a cell "\n" is a line break, "\t" a tab and "\\" a backslash.
struct TextTable {
  std::vector<TextRow> rows;
  /// What is wrong with the table, one sentence a finding; empty for a sound one. A damaged row keeps what can be read
  /// of it and shows English for what cannot: a mistake in one cell must not make the other texts unusable.
  std::vector<std::string> problems;
};

/// Reads a table whose first column is captioned `keyCaption`.
[[nodiscard]] TextTable parseTextTable(std::string_view bytes, std::string_view keyCaption);

}  // namespace korvel::settings
