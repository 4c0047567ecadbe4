#include "query/forms/line_pieces.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>
#include <utility>

namespace korvel::query {
namespace {

enum BlockProperty : int { continuesProperty = QTextFormat::UserProperty + 1, isContinuedProperty };

QTextBlockFormat pieceFormat(bool continues, bool isContinued) {
  QTextBlockFormat format;
  if (continues) format.setProperty(continuesProperty, true);
  if (isContinued) format.setProperty(isContinuedProperty, true);
  return format;
}

/// Joined with the previous edit, so that both are undone together.
void setPieceFormat(const QTextBlock& block, bool continues, bool isContinued) {
  if (LinePieces::continues(block) == continues && LinePieces::isContinued(block) == isContinued) return;
  QTextCursor cursor(block);
  cursor.joinPreviousEditBlock();
  cursor.setBlockFormat(pieceFormat(continues, isContinued));
  cursor.endEditBlock();
}

bool endsLine(QChar c) {
  // The last two are the toolkit's internal block separators.
  return c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QChar::LineSeparator ||
         c == QChar::ParagraphSeparator || c == QChar(0xFDD0) || c == QChar(0xFDD1);
}

/// The lines of a text; one more than it has line ends.
QList<QStringView> linesOf(QStringView text) {
  QList<QStringView> lines;
  qsizetype begin = 0;
  for (qsizetype at = 0; at < text.size(); ++at) {
    if (!endsLine(text.at(at))) continue;
    lines.append(text.mid(begin, at - begin));
    if (text.at(at) == QLatin1Char('\r') && at + 1 < text.size() && text.at(at + 1) == QLatin1Char('\n')) ++at;
    begin = at + 1;
  }
  lines.append(text.mid(begin));
  return lines;
}

}  // namespace

LinePieces::LinePieces(QTextDocument& document) : QObject(&document), document_(document) {
  connect(&document_, &QTextDocument::contentsChange, this, [this](int position, int /*removed*/, int added) {
    changedFrom_ = position;
    changedTo_ = position + added;
  });
  // Not on contentsChange: the document must not be changed in that signal.
  connect(&document_, &QTextDocument::contentsChanged, this, &LinePieces::repair);
}

bool LinePieces::continues(const QTextBlock& block) {
  return block.blockFormat().boolProperty(continuesProperty);
}

bool LinePieces::isContinued(const QTextBlock& block) {
  return block.blockFormat().boolProperty(isContinuedProperty);
}

int LinePieces::firstPiece(QStringView text) const {
  int length = std::min(pieceLength_, static_cast<int>(text.size()));
  for (int blank = length; blank > length / 2; --blank)
    if (text.at(blank - 1).isSpace()) return blank;
  // Surrogate pairs are not split.
  if (length < text.size() && length > 1 && text.at(length - 1).isHighSurrogate()) --length;
  return length;
}

void LinePieces::insertLine(QTextCursor& cursor, QStringView line) const {
  while (line.size() > 2 * qsizetype{pieceLength_}) {
    const int length = firstPiece(line);
    cursor.insertText(line.left(length).toString());
    line = line.mid(length);
    const QTextBlock block = cursor.block();
    const bool on = isContinued(block);
    cursor.setBlockFormat(pieceFormat(continues(block), true));
    cursor.insertBlock(pieceFormat(true, on));
  }
  cursor.insertText(line.toString());
}

void LinePieces::insertText(QTextCursor cursor, const QString& text) {
  const bool before = std::exchange(repairing_, true);
  cursor.beginEditBlock();
  cursor.removeSelectedText();
  repairBoundaries(cursor.position(), cursor.position());
  const QList<QStringView> lines = linesOf(text);
  for (qsizetype i = 0; i < lines.size(); ++i) {
    if (i > 0) {
      const QTextBlock block = cursor.block();
      const bool on = isContinued(block);
      if (on) cursor.setBlockFormat(pieceFormat(continues(block), false));
      cursor.insertBlock(pieceFormat(false, on));
    }
    insertLine(cursor, lines.at(i));
  }
  repairing_ = before;
  cursor.endEditBlock();
}

void LinePieces::insertLineEnd(const QTextCursor& cursor) {
  insertText(cursor, QStringLiteral("\n"));
}

QString LinePieces::text(int from, int to, const QString& lineEnd) const {
  QString text;
  for (QTextBlock block = document_.findBlock(from); block.isValid() && block.position() <= to; block = block.next()) {
    if (block.position() > from && !continues(block)) text += lineEnd;
    const int begin = std::max(0, from - block.position());
    text += block.text().mid(begin, to - block.position() - begin);
  }
  return text;
}

QTextBlock LinePieces::blockOfLine(int line) const {
  for (QTextBlock block = document_.firstBlock(); line >= 0 && block.isValid(); block = block.next())
    if (!continues(block) && line-- == 0) return block;
  return {};
}

void LinePieces::repair() {
  if (repairing_ || changedFrom_ < 0) return;
  // Undone text comes back as it was; a change here would clear the redo stack.
  if (document_.isRedoAvailable()) return;
  repairing_ = true;
  const int from = std::exchange(changedFrom_, -1);
  const int to = std::min(changedTo_, document_.characterCount() - 1);
  repairBoundaries(from, to);
  joinEmptyPieces(from);
  splitLongBlocks(from, to);
  repairing_ = false;
  changedFrom_ = -1;
}

void LinePieces::repairBoundaries(int from, int to) {
  // A block that begins at the change may have been moved there from behind it. The boundary before it is unchanged:
  // the block before it tells what it was.
  const QTextBlock first = document_.findBlock(from);
  if (first.isValid() && first.position() == from)
    setPieceFormat(first, first.previous().isValid() && isContinued(first.previous()), isContinued(first));
  // A block may have lost its end to the block before it. The boundary after it is unchanged: the next block tells what
  // it was.
  for (QTextBlock block = first; block.isValid() && block.position() <= to; block = block.next())
    setPieceFormat(block, continues(block), block.next().isValid() && continues(block.next()));
}

void LinePieces::joinEmptyPieces(int from) {
  QTextBlock block = document_.findBlock(from);
  if (!block.isValid() || block.length() > 1) return;
  // An empty piece is joined to the one before it; the first piece of a line to the one after it.
  if (continues(block)) {
    block = block.previous();
  } else if (!isContinued(block)) {
    return;
  }
  const bool begins = continues(block);
  const bool on = isContinued(block.next());
  const int position = block.position();
  QTextCursor cursor(block);
  cursor.joinPreviousEditBlock();
  cursor.movePosition(QTextCursor::EndOfBlock);
  cursor.deleteChar();
  cursor.endEditBlock();
  setPieceFormat(document_.findBlock(position), begins, on);
}

void LinePieces::splitLongBlocks(int from, int to) {
  QTextBlock block = document_.findBlock(std::min(from, to));
  int end = to;
  for (; block.isValid() && block.position() <= end; block = block.next()) {
    if (block.length() - 1 <= 2 * pieceLength_) continue;
    QTextCursor cursor(block);
    cursor.joinPreviousEditBlock();
    const bool on = isContinued(block);
    cursor.setPosition(block.position() + firstPiece(block.text()));
    cursor.setBlockFormat(pieceFormat(continues(block), true));
    cursor.insertBlock(pieceFormat(true, on));
    cursor.endEditBlock();
    block = document_.findBlock(block.position());
    ++end;
  }
}

}  // namespace korvel::query
