#pragma once

#include <QSyntaxHighlighter>

#include <array>
#include <vector>

#include "query/forms/sql_colours.h"
#include "query/sql_tokens.h"

namespace korvel::query {

/// The tokens of a block, whose line began before it where it `continues` one. `state` is what the block before leaves
/// open and becomes what this one does: toNumber(), and whether a comment to the end of the line goes on.
[[nodiscard]] std::vector<SqlToken> tokensOfBlock(const QString& text, bool continues, int& state);

/// Colours the SQL of a document. The state of a block is that of tokensOfBlock().
class SqlHighlighter final : public QSyntaxHighlighter {
  Q_OBJECT

 public:
  explicit SqlHighlighter(QTextDocument* document) : QSyntaxHighlighter(document) {}

  /// Colours everything anew.
  void setColours(const SqlColours& colours);

 protected:
  void highlightBlock(const QString& text) override;

 private:
  static constexpr std::size_t kindCount = static_cast<std::size_t>(SqlTokenKind::other) + 1;

  /// By kind; what is written plainly has none.
  std::array<QTextCharFormat, kindCount> formats_;
};

}  // namespace korvel::query
