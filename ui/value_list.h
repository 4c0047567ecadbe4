#pragma once

#include <QFrame>
#include <QRect>
#include <functional>
#include <string_view>
#include <vector>

#include "ui/value_choice_model.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeView;

namespace korvel::ui {

/// What a list of values shows.
struct ValueListContent {
  std::vector<ListedValue> values;
  bool isTree = false;
  /// The column has more values than this, the number that is listed; 0 where all are.
  std::size_t moreThan = 0;
};

/// The list of a column's values under its header: a text that searches them, all, the values with their counts. Enter
/// and OK choose, Esc, Cancel and a click elsewhere leave everything as it was. While a text is searched for, OK
/// chooses among the values that are listed, as spreadsheets do.
class ValueList : public QFrame {
  Q_OBJECT

 public:
  static constexpr int linesAtMost = 10;

  explicit ValueList(QWidget* parent = nullptr);

  void setTexts(const std::function<QString(std::string_view key)>& texts);
  /// Asked for the values that contain a text where the column has more values than are listed.
  using Source = std::function<ValueListContent(const QString& search)>;
  /// Opens under `header`, a rectangle on the screen, with the keyboard on the search.
  void open(ValueListContent content, const QRect& header, Source source = {});

  /// The values that are listed now, and among them those that are ticked or not.
  [[nodiscard]] const std::vector<ListedValue>& values() const noexcept { return model_.values(); }
  [[nodiscard]] std::vector<std::size_t> listed(bool checked) const { return model_.listed(checked); }
  /// Those of which some rows are chosen, and which were left so.
  [[nodiscard]] std::vector<std::size_t> listedPartly() const { return model_.listedPartly(); }
  /// Whether nothing was ticked at some time since the list was opened or all were ticked: the user collects values,
  /// instead of leaving some out.
  [[nodiscard]] bool wasEmptied() const noexcept { return wasEmptied_; }
  /// Whether a text narrows what is listed.
  [[nodiscard]] bool isSearching() const;

 Q_SIGNALS:
  /// The user has chosen; the ticks say what.
  void chosen();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void searchFor(const QString& text);
  void showContent(ValueListContent content);
  void showChecks();
  void accept();
  [[nodiscard]] int rowHeight() const;

  std::function<QString(std::string_view)> texts_;
  Source source_;
  ValueChoiceModel model_;
  std::size_t moreThan_ = 0;
  bool wasMore_ = false;  ///< there were more values than listed before anything was searched for
  bool wasEmptied_ = false;
  QLineEdit* search_;
  QCheckBox* all_;
  QLabel* allCount_;
  QTreeView* list_;
  QLabel* more_;
  QPushButton* cancel_;
  QPushButton* ok_;
};

}  // namespace korvel::ui
