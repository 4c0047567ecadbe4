#pragma once

#include <QObject>
#include <QString>

class QTextBlock;
class QTextCursor;
class QTextDocument;

namespace korvel::query {

/// Stores very long lines as several blocks of a document, called pieces, because the toolkit lays out a whole block
/// after each key. Pieces are invisible: a new one begins where the line would be wrapped, and text() joins them. Text
/// is inserted through insertText() and insertLineEnd(); the toolkit itself may remove text. A block property on both
/// sides of a boundary tells that the line continues: removing text may delete one of the two, and the other then tells
/// what the boundary was.
class LinePieces final : public QObject {
  Q_OBJECT

 public:
  /// Belongs to the document.
  explicit LinePieces(QTextDocument& document);

  /// Lines of up to twice as many characters are one block. For tests, whose lines are short.
  void setPieceLength(int characters) { pieceLength_ = characters; }

  /// Whether a block continues the line of the block before it.
  [[nodiscard]] static bool continues(const QTextBlock& block);
  /// Whether the next block continues the line of this one.
  [[nodiscard]] static bool isContinued(const QTextBlock& block);

  /// Puts a text in the place of what is selected. A line ends at CR LF, CR, LF and Unicode's separators.
  void insertText(QTextCursor cursor, const QString& text);
  void insertLineEnd(const QTextCursor& cursor);

  /// The text from one place of the document to another, with `lineEnd` between its lines.
  [[nodiscard]] QString text(int from, int to, const QString& lineEnd) const;
  /// The first block of a line that is counted from 0; an invalid one where there is none.
  [[nodiscard]] QTextBlock blockOfLine(int line) const;

 private:
  void repair();
  /// Restores the properties of the boundaries around a change.
  void repairBoundaries(int from, int to);
  void joinEmptyPieces(int from);
  void splitLongBlocks(int from, int to);
  void insertLine(QTextCursor& cursor, QStringView line) const;
  /// Length of the first piece of a text that is too long for a block: up to a blank, if there is one.
  [[nodiscard]] int firstPiece(QStringView text) const;

  QTextDocument& document_;
  int pieceLength_ = 2048;
  bool repairing_ = false;
  int changedFrom_ = -1;
  int changedTo_ = -1;
};

}  // namespace korvel::query
