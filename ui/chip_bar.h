#pragma once

#include <QAbstractButton>
#include <QString>
#include <functional>
#include <string_view>
#include <vector>

class QHBoxLayout;
class QLabel;
class QToolButton;

namespace korvel::ui {

/// One active filter in words: "Event" and "= UPDATE".
struct Chip {
  QString column = {};
  QString condition = {};
  QString toolTip = {};  ///< the whole condition; plain text
  friend bool operator==(const Chip&, const Chip&) = default;
};

/// A rounded button with a filter's words and a cross: the cross, Delete and Backspace remove the filter, a click or
/// Enter elsewhere changes it. What does not fit is cut in the middle of the condition.
class ChipButton : public QAbstractButton {
  Q_OBJECT

 public:
  ChipButton(Chip chip, const QString& removeHint, QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;
  /// Where a click removes the filter.
  [[nodiscard]] QRect crossPlace() const;

 Q_SIGNALS:
  void removeRequested();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  Chip chip_;
};

/// The line of active filters over a list: a chip for each, how many rows are shown, whether the filters outlive the
/// next query, and a button that drops all. Hidden while there is no filter.
class ChipBar : public QWidget {
  Q_OBJECT

 public:
  explicit ChipBar(QWidget* parent = nullptr);

  void setTexts(const std::function<QString(std::string_view key)>& texts);
  /// Replaces the chips; the keyboard stays where it was as far as there is such a chip. No chips hide the bar.
  void setChips(const std::vector<Chip>& chips);
  /// "214 of 48,213 shown"; `toolTip` says more, where there is more to say.
  void setCount(const QString& text, const QString& toolTip = {});
  void setPinned(bool pinned);
  [[nodiscard]] bool isPinned() const;
  /// What takes the keyboard, in the visible order. Chips of later go to their place by themselves.
  [[nodiscard]] std::vector<QWidget*> focusOrder() const;
  [[nodiscard]] const std::vector<Chip>& chips() const noexcept { return chips_; }

 Q_SIGNALS:
  void removeRequested(int chip);
  void changeRequested(int chip);
  void pinToggled(bool pinned);
  void clearRequested();
  /// The last chip went while the keyboard was in the bar.
  void keyboardLeft();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  std::function<QString(std::string_view)> texts_;
  std::vector<Chip> chips_;
  std::vector<ChipButton*> buttons_;
  QHBoxLayout* row_;
  QLabel* count_;
  QToolButton* pin_;
  QToolButton* clear_;
};

}  // namespace korvel::ui
