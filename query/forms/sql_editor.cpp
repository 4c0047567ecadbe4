#include "query/forms/sql_editor.h"

#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QTextBlock>
#include <QToolButton>
#include <algorithm>
#include <vector>

#include "query/forms/line_pieces.h"
#include "query/forms/query_file_drop.h"
#include "query/forms/sql_highlighter.h"
#include "query/sql_tokens.h"
#include "ui/style/theme.h"

namespace korvel::query {
namespace {

// The matching parenthesis is searched within this many lines and characters: typed queries are shorter.
constexpr int farthestPartner = 2000;
constexpr int farthestCharacters = 100'000;

/// Places of the parentheses in a block, relative to it, in their order.
std::vector<int> parenthesesOf(const QTextBlock& block) {
  const QString text = block.text();
  int state = block.previous().isValid() ? block.previous().userState() : 0;
  std::vector<int> places;
  for (const SqlToken& token : tokensOfBlock(text, LinePieces::continues(block), state))
    if (token.kind == SqlTokenKind::parenthesis) places.push_back(static_cast<int>(token.begin));
  return places;
}

bool isRecentKey(const QKeyEvent& event) {
  return event.key() == Qt::Key_Down &&
         (event.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier)) == Qt::AltModifier;
}

bool isRunKey(const QKeyEvent& event) {
  const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
  if (event.key() == Qt::Key_F5) return modifiers == Qt::NoModifier;
  return (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) && modifiers == Qt::ControlModifier;
}

/// Also with Shift, for which the toolkit would insert a separator that is no line end: error lines are counted by line
/// ends.
bool isEnter(const QKeyEvent& event) {
  return (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) &&
         !event.modifiers().testFlag(Qt::ControlModifier);
}

}  // namespace

SqlEditor::SqlEditor(QWidget* parent)
    : QPlainTextEdit(parent),
      pieces_(new LinePieces(*document())),
      highlighter_(new SqlHighlighter(document())),
      btRecentQueries_(new QToolButton(this)) {
  setObjectName(QStringLiteral("txtAdvancedQuery"));
  // The family only: the size is inherited from the surrounding elements.
  QFont fixed;
  fixed.setFamilies({QFontDatabase::systemFont(QFontDatabase::FixedFont).family()});
  fixed.setStyleHint(QFont::Monospace);
  setFont(fixed);
  setTabChangesFocus(true);
  setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  btRecentQueries_->setObjectName(QStringLiteral("btRecentQueries"));
  btRecentQueries_->setArrowType(Qt::DownArrow);
  btRecentQueries_->setAutoRaise(true);
  btRecentQueries_->setCursor(Qt::ArrowCursor);
  // Keys reach it from the text.
  btRecentQueries_->setFocusPolicy(Qt::NoFocus);
  btRecentQueries_->hide();
  connect(btRecentQueries_, &QToolButton::clicked, this, [this] { requestRecent(); });
  connect(this, &QPlainTextEdit::cursorPositionChanged, this, [this] { showHighlights(); });
  // Not emitted for a change of formats, such as highlighting.
  connect(document(), &QTextDocument::contentsChange, this, [this] { errorLine_.reset(); });
  connect(this, &QPlainTextEdit::textChanged, this, [this] { showHighlights(); });
  applyStyle();
}

QString SqlEditor::queryText() const {
  // Not toPlainText(): that takes a no-break space for a blank.
  return pieces_->text(0, document()->characterCount(), QStringLiteral("\r\n"));
}

void SqlEditor::setQueryText(const QString& text) {
  QTextCursor cursor(document());
  cursor.select(QTextCursor::Document);
  pieces_->insertText(cursor, text);
  cursor.movePosition(QTextCursor::Start);
  setTextCursor(cursor);
  errorLine_.reset();
  showHighlights();
}

void SqlEditor::setErrorLine(std::optional<int> line) {
  errorLine_ = line;
  const QTextBlock block = line ? pieces_->blockOfLine(*line - 1) : QTextBlock();
  if (!block.isValid()) errorLine_.reset();
  if (errorLine_) {
    QTextCursor cursor(block);
    setTextCursor(cursor);
    ensureCursorVisible();
  }
  showHighlights();
}

void SqlEditor::showHighlights() {
  const SqlColours colours = SqlColours::of(ui::Theme::of(*this));
  QList<QTextEdit::ExtraSelection> marks;
  if (errorLine_) {
    QTextEdit::ExtraSelection line;
    line.cursor = QTextCursor(pieces_->blockOfLine(*errorLine_ - 1));
    line.format.setBackground(colours.errorLine);
    line.format.setProperty(QTextFormat::FullWidthSelection, true);
    marks.append(line);
  }
  const std::optional<int> here = parenthesisAtCursor();
  const std::optional<int> there = here ? partnerOf(*here) : std::nullopt;
  if (there) {
    for (const int place : {*here, *there}) {
      QTextEdit::ExtraSelection pair;
      pair.cursor = textCursor();
      pair.cursor.setPosition(place);
      pair.cursor.setPosition(place + 1, QTextCursor::KeepAnchor);
      pair.format.setBackground(colours.pair);
      pair.format.setFontWeight(QFont::Bold);
      marks.append(pair);
    }
  }
  setExtraSelections(marks);
}

std::optional<int> SqlEditor::parenthesisAtCursor() const {
  const QTextBlock block = textCursor().block();
  const int place = textCursor().positionInBlock();
  std::optional<int> after;
  for (const int each : parenthesesOf(block)) {
    if (each == place - 1) return block.position() + each;
    if (each == place) after = block.position() + each;
  }
  return after;
}

std::optional<int> SqlEditor::partnerOf(int place) const {
  const bool forward = document()->characterAt(place) == QLatin1Char('(');
  QTextBlock block = document()->findBlock(place);
  int depth = 0;
  int characters = 0;
  for (int line = 0; line < farthestPartner && characters < farthestCharacters && block.isValid(); ++line) {
    characters += block.length();
    std::vector<int> places = parenthesesOf(block);
    if (!forward) std::reverse(places.begin(), places.end());
    for (const int each : places) {
      const int at = block.position() + each;
      if (forward ? at < place : at > place) continue;
      const bool opens = document()->characterAt(at) == QLatin1Char('(');
      depth += opens == forward ? 1 : -1;
      if (depth == 0) return at;
    }
    block = forward ? block.next() : block.previous();
  }
  return std::nullopt;
}

void SqlEditor::setTexts(const std::function<QString(std::string_view key)>& text) {
  setPlaceholderText(text("editor.placeholder"));
  btRecentQueries_->setToolTip(text("editor.recentKey"));
  btRecentQueries_->setAccessibleName(text("editor.recent"));
  menuTexts_ = {text("editor.undo"),  text("editor.redo"),   text("editor.cut"),      text("record.copyText"),
                text("editor.paste"), text("editor.delete"), text("record.selectAll")};
}

bool SqlEditor::event(QEvent* event) {
  // The host's window may have shortcuts for these keys.
  const auto isOwnKey = [this](const QKeyEvent& key) {
    return isRunKey(key) || (isRecentKey(key) && !btRecentQueries_->isHidden());
  };
  if (event->type() == QEvent::ShortcutOverride && isOwnKey(*static_cast<QKeyEvent*>(event))) {
    event->accept();
    return true;
  }
  return QPlainTextEdit::event(event);
}

void SqlEditor::keyPressEvent(QKeyEvent* event) {
  if (isRunKey(*event)) {
    event->accept();
    if (!event->isAutoRepeat()) Q_EMIT runRequested();
    return;
  }
  if (isRecentKey(*event) && !btRecentQueries_->isHidden()) {
    event->accept();
    requestRecent();
    return;
  }
  if (isEnter(*event)) {
    pieces_->insertLineEnd(textCursor());
    ensureCursorVisible();
    return;
  }
  stepOverBoundary(*event);
  QPlainTextEdit::keyPressEvent(event);
}

void SqlEditor::stepOverBoundary(const QKeyEvent& event) {
  const bool back = event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Left;
  const bool forth = event.key() == Qt::Key_Delete || event.key() == Qt::Key_Right;
  const bool moves = event.key() == Qt::Key_Left || event.key() == Qt::Key_Right;
  const bool extends = moves && event.modifiers().testFlag(Qt::ShiftModifier);
  QTextCursor cursor = textCursor();
  // A selection is removed as a whole.
  if (cursor.hasSelection() && !extends) return;
  const QTextBlock block = cursor.block();
  const bool atSeam = (back && cursor.atBlockStart() && LinePieces::continues(block)) ||
                      (forth && cursor.atBlockEnd() && LinePieces::isContinued(block));
  if (!atSeam) return;
  cursor.movePosition(back ? QTextCursor::PreviousCharacter : QTextCursor::NextCharacter,
                      extends ? QTextCursor::KeepAnchor : QTextCursor::MoveAnchor);
  setTextCursor(cursor);
}

QMimeData* SqlEditor::createMimeDataFromSelection() const {
  const QTextCursor cursor = textCursor();
  auto* copied = new QMimeData;
  copied->setText(pieces_->text(cursor.selectionStart(), cursor.selectionEnd(), QStringLiteral("\n")));
  return copied;
}

bool SqlEditor::canInsertFromMimeData(const QMimeData* source) const {
  // The page opens a dropped query file; its path must not become query text.
  return !draggedQueryFile(*source) && QPlainTextEdit::canInsertFromMimeData(source);
}

void SqlEditor::insertFromMimeData(const QMimeData* source) {
  if (source->hasText()) pieces_->insertText(textCursor(), source->text());
  ensureCursorVisible();
}

void SqlEditor::removeSelected() {
  textCursor().removeSelectedText();
}

void SqlEditor::contextMenuEvent(QContextMenuEvent* event) {
  // The toolkit's own menu is in the system's language, not the viewer's.
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  const bool selected = textCursor().hasSelection();
  struct Entry {
    QKeySequence::StandardKey key;
    void (SqlEditor::*run)();
    bool enabled;
  };
  const std::array<Entry, menuEntryCount> entries = {{
      {QKeySequence::Undo, &SqlEditor::undo, document()->isUndoAvailable()},
      {QKeySequence::Redo, &SqlEditor::redo, document()->isRedoAvailable()},
      {QKeySequence::Cut, &SqlEditor::cut, selected},
      {QKeySequence::Copy, &SqlEditor::copy, selected},
      {QKeySequence::Paste, &SqlEditor::paste, canPaste()},
      {QKeySequence::Delete, &SqlEditor::removeSelected, selected},
      {QKeySequence::SelectAll, &SqlEditor::selectAll, !document()->isEmpty()},
  }};
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const Entry& entry = entries.at(i);
    if (entry.key == QKeySequence::Cut || entry.key == QKeySequence::SelectAll) menu->addSeparator();
    QAction* const action = menu->addAction(menuTexts_.at(i), this, entry.run);
    action->setShortcut(entry.key);
    action->setEnabled(entry.enabled);
  }
  menu->popup(event->globalPos());
}

void SqlEditor::changeEvent(QEvent* event) {
  QPlainTextEdit::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) applyStyle();
}

void SqlEditor::resizeEvent(QResizeEvent* event) {
  QPlainTextEdit::resizeEvent(event);
  placeButton();
}

void SqlEditor::setOffersRecent(bool offers) {
  btRecentQueries_->setVisible(offers);
  placeButton();
}

void SqlEditor::placeButton() {
  constexpr int buttonSide = 20;
  const int side = btRecentQueries_->isHidden() ? 0 : ui::px(this, buttonSide);
  const bool mirrored = isRightToLeft();
  setViewportMargins(mirrored ? side : 0, 0, mirrored ? 0 : side, 0);
  // The margin lies between the text and the scroll bar.
  const QRect text = viewport()->geometry();
  btRecentQueries_->setGeometry(mirrored ? text.left() - side : text.right() + 1, text.top(), side, side);
}

void SqlEditor::requestRecent() {
  Q_EMIT recentRequested(mapToGlobal(QPoint(0, height())));
}

void SqlEditor::applyStyle() {
  highlighter_->setColours(SqlColours::of(ui::Theme::of(*this)));
  showHighlights();
}

}  // namespace korvel::query
