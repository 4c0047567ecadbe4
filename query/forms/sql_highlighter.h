#pragma once

#include <QSyntaxHighlighter>

#include "query/forms/sql_colours.h"

namespace korvel::query {

/// Colours the SQL of a document. The state of a block is what it leaves open, see toLineState().
class SqlHighlighter final : public QSyntaxHighlighter {
  Q_OBJECT

 public:
  explicit SqlHighlighter(QTextDocument* document) : QSyntaxHighlighter(document) {}

  /// Colours everything anew.
  void setColours(const SqlColours& colours);

 protected:
  void highlightBlock(const QString& text) override;

 private:
  SqlColours colours_;
};

}  // namespace korvel::query
