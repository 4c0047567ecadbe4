#pragma once

#include <QDialog>
#include <memory>
#include <optional>
#include <vector>

#include "control/forms/value_comparison.h"
#include "control/result_list_model.h"
#include "evidence/comparison_list.h"

class QLabel;
class QPushButton;

namespace korvel::ui {
class ResultTable;
}

namespace korvel::control {

class ValueField;

/// What a comparison of a snapshot with a trail found: a summary in words, the list of differences, and of the current
/// one its values before and now, with what differs marked.
class ComparisonView final : public QDialog {
  Q_OBJECT

 public:
  explicit ComparisonView(QWidget* owner);

  /// Shows a result, in the current language. Throws Error when memory runs out.
  void showComparison(std::shared_ptr<const evidence::ComparedSnapshot> compared);
  [[nodiscard]] const std::shared_ptr<const evidence::ComparedSnapshot>& comparison() const { return compared_; }

 Q_SIGNALS:
  /// The result is to be written into a file.
  void saveRequested();

 private:
  void buildContent();
  void buildFoot();
  void setTexts();
  void fitColumns();
  void showLine(int row);

  std::shared_ptr<const evidence::ComparedSnapshot> compared_;
  std::vector<evidence::ComparisonLine> lines_;
  results::ResultList list_{results::RowFilling::whole};
  ResultListModel model_{list_};
  std::optional<ValueComparison> comparison_;

  QLabel* lblSides_ = nullptr;
  QLabel* lblSummary_ = nullptr;
  ui::ResultTable* table_ = nullptr;
  QLabel* lblBefore_ = nullptr;
  QLabel* lblNow_ = nullptr;
  ValueField* before_ = nullptr;
  ValueField* now_ = nullptr;
  QLabel* lblNote_ = nullptr;
  QPushButton* btSave_ = nullptr;
  QPushButton* btClose_ = nullptr;
};

/// The language of the moment, for the words of a comparison.
[[nodiscard]] evidence::ComparisonLanguage comparisonLanguage();

}  // namespace korvel::control
