#pragma once

#include <QColor>
#include <QSyntaxHighlighter>
#include <array>
#include <vector>

#include "query/sql_tokens.h"

namespace korvel::ui {
struct Theme;
}

namespace korvel::query {

/// What SQL is written in. All of it keeps a contrast of at least 4.5:1 to the editor's ground, to the ground of the
/// line that an error was found in, and to a pair of parentheses.
struct SqlColours {
  QColor keyword;
  QColor literal;  ///< texts and numbers
  QColor comment;
  QColor errorLine;  ///< ground
  QColor pair;       ///< ground of two parentheses that belong together

  [[nodiscard]] static SqlColours of(const ui::Theme& theme);
};

/// The tokens of a block; `continues`: its line began in an earlier block. `state` is the state at the end of the
/// previous block and becomes that of this one: toNumber(), and whether a comment to the end of the line is open.
[[nodiscard]] std::vector<SqlToken> tokensOfBlock(const QString& text, bool continues, int& state);

/// Colours the SQL of a document. The state of a block is that of tokensOfBlock().
class SqlHighlighter final : public QSyntaxHighlighter {
  Q_OBJECT

 public:
  explicit SqlHighlighter(QTextDocument* document) : QSyntaxHighlighter(document) {}

  /// Highlights the whole document again.
  void setColours(const SqlColours& colours);

 protected:
  void highlightBlock(const QString& text) override;

 private:
  static constexpr std::size_t kindCount = static_cast<std::size_t>(SqlTokenKind::other) + 1;

  /// By kind; empty for plain text.
  std::array<QTextCharFormat, kindCount> formats_;
};

}  // namespace korvel::query
