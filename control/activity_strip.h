#pragma once

#include <QFrame>
#include <array>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "control/activity_bars.h"

class QComboBox;
class QToolButton;

namespace korvel::control {

class ActivityLegend;
class ElidedLabel;

/// The strip over a list that shows when its records were made: the bars, what their parts mean, and the choice of
/// step and kinds. It counts nothing itself: it says what is wanted and shows what its owner tells it.
class ActivityStrip final : public QFrame {
  Q_OBJECT

 public:
  explicit ActivityStrip(QWidget* parent = nullptr);

  /// Texts in the current language, by their keys.
  void setTexts(const std::function<QString(std::string_view key)>& texts);
  /// What bars may be stacked by, of which one is chosen; nothing where rows are not told apart.
  void setKinds(const QStringList& captions);
  [[nodiscard]] int kind() const;

  /// Shows what was counted; `asked` is the step that was asked for, where one was.
  void showActivity(query::Activity activity, std::optional<query::ActivityStep> asked);
  /// Shows why there are no bars.
  void showMessage(const QString& text);
  [[nodiscard]] ActivityBars& bars() const { return *bars_; }
  /// "2004-03-07: records 12", of the bars that are spoken of.
  [[nodiscard]] QString readout() const;
  /// What the tooltip of a bar says: its records by kind.
  [[nodiscard]] QString tipOf(int bar) const;

  /// What takes the keyboard, in the order of Tab.
  [[nodiscard]] std::vector<QWidget*> focusOrder() const;
  [[nodiscard]] QSize sizeHint() const override;

 Q_SIGNALS:
  /// Bars of this step are wanted.
  void stepChosen(korvel::query::ActivityStep step);
  /// Bars are to be stacked by another column.
  void kindChosen();
  /// The strip is to be hidden.
  void closeRequested();
  /// The keyboard is to go back to the list.
  void leaveRequested();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void changeStep(int direction);
  void showReadout();
  void showLegend();
  [[nodiscard]] QString kindName(std::size_t kind) const;
  [[nodiscard]] QString remark() const;

  std::function<QString(std::string_view key)> texts_;
  std::array<QToolButton*, 4> steps_{};
  QComboBox* kinds_;
  ElidedLabel* readout_;
  QToolButton* close_;
  ActivityBars* bars_;
  ActivityLegend* legend_;
  std::optional<query::ActivityStep> asked_;
  std::vector<std::size_t> totals_;  ///< rows of each kind
};

}  // namespace korvel::control
