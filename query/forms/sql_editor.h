#pragma once

#include <QPlainTextEdit>
#include <array>
#include <functional>
#include <optional>
#include <string_view>

class QToolButton;

namespace korvel::query {

class LinePieces;
class SqlHighlighter;

/// The text box of custom queries. Tab leaves it, as it leaves every other element.
class SqlEditor final : public QPlainTextEdit {
  Q_OBJECT

 public:
  explicit SqlEditor(QWidget* parent = nullptr);

  /// The text, its lines ended by CR LF but for the last one.
  [[nodiscard]] QString queryText() const;
  /// Replaces the text. A line ends at CR LF, CR or LF. Can be undone.
  void setQueryText(const QString& text);

  /// Highlights the line of an error, counted from 1, and scrolls to it; the next edit removes the highlight. A line
  /// outside of the text is none.
  void setErrorLine(std::optional<int> line);
  /// The highlighted line, nothing where there is none.
  [[nodiscard]] std::optional<int> errorLine() const { return errorLine_; }

  /// How lines that are too long to be laid out at once are kept. For tests, which set the length of pieces.
  [[nodiscard]] LinePieces& pieces() { return *pieces_; }

  /// Texts of the context menu and the placeholder, by our own keys ("editor.undo").
  void setTexts(const std::function<QString(std::string_view key)>& text);

  /// Whether earlier queries can be asked for: by a button in the upper corner and by Alt+Down. By default they cannot.
  void setOffersRecent(bool offers);

 Q_SIGNALS:
  /// F5 or Ctrl+Enter.
  void runRequested();
  /// The user asked for earlier queries; `place` is the lower left corner of the box on the screen.
  void recentRequested(const QPoint& place);

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  [[nodiscard]] QMimeData* createMimeDataFromSelection() const override;
  [[nodiscard]] bool canInsertFromMimeData(const QMimeData* source) const override;
  void insertFromMimeData(const QMimeData* source) override;

 private:
  static constexpr std::size_t menuEntryCount = 7;

  void applyStyle();
  /// Keeps room for the button beside the text.
  void placeButton();
  void requestRecent();
  void showHighlights();
  void removeSelected();
  /// A boundary between two pieces is no character: the key applies to what follows it.
  void stepOverBoundary(const QKeyEvent& event);
  /// Position of the parenthesis that matches the one at `place`; nothing where there is none near enough.
  [[nodiscard]] std::optional<int> partnerOf(int place) const;
  /// Place of the parenthesis beside the cursor, the one before it first.
  [[nodiscard]] std::optional<int> parenthesisAtCursor() const;

  LinePieces* pieces_;
  SqlHighlighter* highlighter_;
  QToolButton* btRecentQueries_;
  std::array<QString, menuEntryCount> menuTexts_;
  std::optional<int> errorLine_;
};

}  // namespace korvel::query
