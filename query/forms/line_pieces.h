#pragma once

#include <QObject>
#include <QString>

class QTextBlock;
class QTextCursor;
class QTextDocument;

namespace korvel::query {

/// Keeps lines that are too long to be laid out at once as several blocks of a document, their pieces: the toolkit lays
/// out a block anew with each key. Nobody sees where pieces end: a new one begins where a line would be wrapped, and
/// text() puts them together again.
///
/// Text comes into the document through insertText() and insertLineEnd(); whatever takes text away may be the
/// toolkit's. Both a piece and the block that goes on with it are marked: what is removed may take one mark along, and
/// the other tells then what has been meant.
class LinePieces final : public QObject {
  Q_OBJECT

 public:
  /// Belongs to the document.
  explicit LinePieces(QTextDocument& document);

  /// Lines of up to twice as many characters are one block. For tests, whose lines are short.
  void setPieceLength(int characters) { pieceLength_ = characters; }

  /// Whether a block goes on with the line of the block before it.
  [[nodiscard]] static bool continues(const QTextBlock& block);
  /// Whether the line of a block goes on in the next one.
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
  /// Gives the seams around what has changed the meaning that they had before.
  void repairBoundaries(int from, int to);
  void joinEmptyPieces(int from);
  void splitLongBlocks(int from, int to);
  void insertLine(QTextCursor& cursor, QStringView line) const;
  /// How much of a text that is too long for a block belongs to its first piece: up to a blank, if there is one.
  [[nodiscard]] int firstPiece(QStringView text) const;

  QTextDocument& document_;
  int pieceLength_ = 2048;
  bool repairing_ = false;
  int changedFrom_ = -1;
  int changedTo_ = -1;
};

}  // namespace korvel::query
