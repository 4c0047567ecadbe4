#pragma once

#include <QDialog>
#include <QPointer>
#include <array>
#include <vector>

#include "evidence/exceptions.h"

class QCheckBox;
class QLabel;
class QPushButton;
class QTimeEdit;
class QTreeWidget;

namespace korvel::control {

/// The window for a review by exception: the rules with their counts, and the working hours. It stands beside the
/// viewer while the list is worked with, and judges nothing itself: it says what is wanted and shows what its owner
/// tells it. A click, Enter or the space bar chooses a rule, Esc closes.
class ExceptionView final : public QDialog {
  Q_OBJECT

 public:
  explicit ExceptionView(QWidget* owner);

  /// What is shown of a rule.
  struct Line {
    QString count;
    bool canBeChosen = false;
    bool isChosen = false;  ///< its records are those that the list shows
  };

  /// Texts in the current language.
  void setTexts();
  /// One line for each rule.
  void showLines(const std::vector<Line>& lines);
  /// What the counts are of, or why there are none; and what was not judged.
  void showState(const QString& state, const QString& note = {});
  void showHours(const evidence::WorkingHours& hours);
  [[nodiscard]] evidence::WorkingHours hours() const;

 Q_SIGNALS:
  /// `rule` is its place among evidence::exceptionRules().
  void ruleChosen(int rule);
  void hoursChosen(const evidence::WorkingHours& hours);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void buildRules();
  void buildHours();
  void choose(int row);
  void sayHours();

  std::vector<Line> lines_;
  bool isShowingHours_ = false;
  QLabel* lblState_ = nullptr;
  QTreeWidget* rules_ = nullptr;
  QLabel* lblNote_ = nullptr;
  QLabel* lblHours_ = nullptr;
  QLabel* lblTo_ = nullptr;
  QTimeEdit* timeFrom_ = nullptr;
  QTimeEdit* timeTo_ = nullptr;
  std::array<QCheckBox*, 7> days_{};
  QPushButton* btClose_ = nullptr;
};

}  // namespace korvel::control
