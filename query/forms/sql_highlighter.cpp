#include "query/forms/sql_highlighter.h"

#include <algorithm>
#include <array>

#include "query/forms/line_pieces.h"
#include "ui/style/theme.h"

namespace korvel::query {
namespace {

/// A bit beyond every toNumber().
constexpr int lineComment = 1 << 30;

constexpr double readableContrast = 4.5;

/// `wanted`, moved towards the text colour until it can be read on all grounds.
QColor readable(const QColor& wanted, const ui::Theme& theme, const std::array<QColor, 3>& grounds) {
  constexpr int steps = 20;
  for (int step = 0; step <= steps; ++step) {
    const QColor colour = ui::mixed(wanted, theme.text, double(step) / steps);
    if (std::all_of(grounds.begin(), grounds.end(),
                    [&](const QColor& ground) { return ui::contrastRatio(colour, ground) >= readableContrast; }))
      return colour;
  }
  return theme.text;
}

}  // namespace

SqlColours SqlColours::of(const ui::Theme& theme) {
  const QColor red(theme.dark ? 0xff6b6b : 0xd1242f);
  const QColor amber(theme.dark ? 0xe3b07a : 0x8a4b08);
  SqlColours colours;
  colours.errorLine = ui::mixed(theme.surface, red, theme.dark ? 0.18 : 0.12);
  colours.pair = theme.selection;
  const std::array grounds = {theme.surface, colours.errorLine, colours.pair};
  colours.keyword = readable(theme.accent, theme, grounds);
  colours.literal = readable(amber, theme, grounds);
  colours.comment = readable(theme.muted, theme, grounds);
  return colours;
}

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
  // Two hyphens inside of a block comment start no line comment.
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
