#include "query/forms/sql_highlighter.h"

#include "query/sql_tokens.h"

namespace korvel::query {

void SqlHighlighter::setColours(const SqlColours& colours) {
  colours_ = colours;
  rehighlight();
}

void SqlHighlighter::highlightBlock(const QString& text) {
  SqlLineState state = toLineState(previousBlockState());
  const std::u16string_view line(reinterpret_cast<const char16_t*>(text.utf16()),
                                 static_cast<std::size_t>(text.size()));
  for (const SqlToken& token : sqlTokens(line, state)) {
    QTextCharFormat format;
    switch (token.kind) {
      case SqlTokenKind::keyword:
        format.setForeground(colours_.keyword);
        format.setFontWeight(QFont::DemiBold);
        break;
      case SqlTokenKind::text:
      case SqlTokenKind::number:
        format.setForeground(colours_.literal);
        break;
      case SqlTokenKind::comment:
        format.setForeground(colours_.comment);
        format.setFontItalic(true);
        break;
      case SqlTokenKind::variable:
        format.setFontItalic(true);
        break;
      default:
        continue;
    }
    setFormat(static_cast<int>(token.begin), static_cast<int>(token.length), format);
  }
  setCurrentBlockState(toNumber(state));
}

}  // namespace korvel::query
