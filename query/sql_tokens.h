#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace korvel::query {

enum class SqlTokenKind {
  keyword,      ///< a word that SQL Server reserves, in any case of letters
  name,         ///< any other word; also "quoted" and [bracketed] names
  text,         ///< 'text' or N'text', quotes included
  number,       ///< 12, 1.5e-3, 0x1F, $12.50
  comment,      ///< -- to the end of the line, or /* nested */
  variable,     ///< @x, @@ROWCOUNT
  parenthesis,  ///< "(" or ")"
  other         ///< any other character that is no blank
};

/// Part of a line, in code units of UTF-16. Blanks belong to no token unless they stand inside one.
struct SqlToken {
  std::size_t begin = 0;
  std::size_t length = 0;
  SqlTokenKind kind = SqlTokenKind::other;

  friend bool operator==(const SqlToken&, const SqlToken&) = default;
};

/// What a line leaves open for the next one.
struct SqlLineState {
  enum class Open { nothing, text, quotedName, bracketedName, comment };
  Open open = Open::nothing;
  /// How many comments are open in each other; 0 unless a comment is open.
  int commentDepth = 0;

  friend bool operator==(const SqlLineState&, const SqlLineState&) = default;
};

/// The state as one number, 0 for nothing open, and back; every number gives a state. Depths beyond a few million are
/// taken for that many.
[[nodiscard]] int toNumber(const SqlLineState& state) noexcept;
[[nodiscard]] SqlLineState toLineState(int number) noexcept;

/// The tokens of a line of T-SQL in their order, never overlapping, none of them empty. `state` is what the line before
/// left open and becomes what this one does. A line feed inside of the text ends a -- comment, as the end of a line
/// does. No text is wrong: what is nothing else is `other`.
[[nodiscard]] std::vector<SqlToken> sqlTokens(std::u16string_view line, SqlLineState& state);

/// Whether SQL Server reserves the word, in any case of letters.
[[nodiscard]] bool isSqlKeyword(std::u16string_view word) noexcept;

}  // namespace korvel::query
