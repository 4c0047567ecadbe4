#include "query/forms/sql_highlighter.h"

#include "query/forms/line_pieces.h"

namespace korvel::query {
namespace {

/// Beyond every toNumber().
constexpr int lineComment = 1 << 30;

}  // namespace

std::vector<SqlToken> tokensOfBlock(const QString& text, bool continues, int& state) {
  const auto length = static_cast<std::size_t>(text.size());
  const bool commented = state >= 0 && (state & lineComment) != 0;
  if (commented && continues) return {{0, length, SqlTokenKind::comment}};
  SqlLineState open = commented ? SqlLineState{} : toLineState(state);
  const bool inComment = open.open == SqlLineState::Open::comment;
  const std::u16string_view line(reinterpret_cast<const char16_t*>(text.utf16()), length);
  std::vector<SqlToken> tokens = sqlTokens(line, open);
  state = toNumber(open);
  if (tokens.empty() || tokens.back().kind != SqlTokenKind::comment) return tokens;
  const SqlToken& last = tokens.back();
  // What begins with two hyphens inside of another comment is that one's.
  const bool ownComment = !(inComment && last.begin == 0);
  if (ownComment && line.substr(last.begin).starts_with(u"--")) state |= lineComment;
  return tokens;
}

void SqlHighlighter::setColours(const SqlColours& colours) {
  const auto format = [this](SqlTokenKind kind) -> QTextCharFormat& {
    return formats_.at(static_cast<std::size_t>(kind));
  };
  format(SqlTokenKind::keyword).setForeground(colours.keyword);
  format(SqlTokenKind::keyword).setFontWeight(QFont::DemiBold);
  format(SqlTokenKind::text).setForeground(colours.literal);
  format(SqlTokenKind::number).setForeground(colours.literal);
  format(SqlTokenKind::comment).setForeground(colours.comment);
  format(SqlTokenKind::comment).setFontItalic(true);
  format(SqlTokenKind::variable).setFontItalic(true);
  rehighlight();
}

void SqlHighlighter::highlightBlock(const QString& text) {
  int state = previousBlockState();
  for (const SqlToken& token : tokensOfBlock(text, LinePieces::continues(currentBlock()), state)) {
    const QTextCharFormat& format = formats_.at(static_cast<std::size_t>(token.kind));
    if (!format.isEmpty()) setFormat(static_cast<int>(token.begin), static_cast<int>(token.length), format);
  }
  setCurrentBlockState(state);
}

}  // namespace korvel::query
