#pragma once

#include <QPlainTextEdit>
#include <vector>

#include "control/forms/difference_marks.h"

namespace korvel::control {

/// Shows a value with its line breaks, for reading and copying. As high as the value needs, between two numbers of
/// lines; a longer one scrolls.
class ValueField final : public QPlainTextEdit {
  Q_OBJECT

 public:
  enum class Frame { none, always };

  ValueField(Frame frame, int minLines, int maxLines, QWidget* parent = nullptr);

  /// Shows `value`, of a very long one its beginning only: see isCut(). `placeholder` is shown in grey for a value
  /// without text.
  void setValue(const QString& value, const QString& placeholder);
  [[nodiscard]] const QString& value() const { return value_; }
  [[nodiscard]] bool isCut() const { return shown_ < value_.size(); }
  /// How many characters are shown, from the beginning.
  [[nodiscard]] qsizetype shown() const { return shown_; }
  /// A text in one line takes some tenths of a second a million characters to lay out, several times.
  static constexpr qsizetype mostCharacters = 100000;
  /// A line costs as much as a hundred characters.
  static constexpr qsizetype mostLineBreaks = 5000;

  /// Marks these characters of value(), as far as they are shown, and scrolls to the first of them.
  void setMarks(MarkKind kind, const std::vector<MarkSpan>& marks);
  /// Whether any character that is shown is marked.
  [[nodiscard]] bool showsMarks() const { return !marks_.empty(); }

  /// For tests: the first paragraph in sight, counted from 0.
  [[nodiscard]] int firstLineShown() const;

  void setMenuTexts(const QString& copy, const QString& selectAll);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  [[nodiscard]] int lines() const;
  [[nodiscard]] int heightOf(int lines) const;
  void fitHeight();
  void showFirstMark();
  void paintMarksIn(const QRect& part);

  int minLines_;
  int maxLines_;
  QString value_;
  qsizetype shown_ = 0;
  MarkKind markKind_ = MarkKind::removed;
  std::vector<MarkSpan> marks_;  ///< positions in the document
  QString copyText_;
  QString selectAllText_;
};

}  // namespace korvel::control
