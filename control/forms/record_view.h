#pragma once

#include <QDialog>
#include <QPersistentModelIndex>
#include <QPointer>
#include <optional>
#include <vector>

#include "control/forms/value_comparison.h"
#include "control/result_list_view.h"
#include "query/plant_time.h"

class QBoxLayout;
class QLabel;
class QLayout;
class QPushButton;
class QScrollArea;

namespace korvel::control {

class ValueField;

/// Shows all fields of one record that the server sent, also those that the list does not show, with their text as it
/// is stored. Old and new value are side by side, or one under the other where there is no room, and what differs is
/// marked. Steps to the next and previous record in
/// the list's order. While the list is reviewed, the record's marks stand below.
class RecordView final : public QDialog {
  Q_OBJECT

 public:
  explicit RecordView(QWidget* owner);

  /// Shows the record in a row of `list`, in the current language. Closes by itself when the list gets other rows.
  void showRecord(ResultListView& list, int row);
  void showNext() { step(1); }
  void showPrevious() { step(-1); }
  /// The row of the list whose record is shown; -1 for none. For tests: the form shows the record, not its row.
  [[nodiscard]] int row() const { return record_.isValid() ? record_.row() : -1; }
  /// Copies the record to the clipboard: a line a field, its caption and its whole text; as a table for programs that
  /// take one. Refuses, and leaves the clipboard unchanged, where memory does not suffice.
  void copyRecord();

 Q_SIGNALS:
  /// A command was refused; `text` says why.
  void refused(const QString& text);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  struct Field {
    QString caption;
    QLabel* label = nullptr;
    ValueField* value = nullptr;
    QLabel* note = nullptr;  ///< says that a very long value is cut, or what a time stamp is
    bool isNull = false;
  };
  /// The fields that are compared, by their places in the record.
  struct Pair {
    std::size_t before = 0;
    std::size_t after = 0;
    friend bool operator==(const Pair&, const Pair&) = default;
  };

  void buildReview();
  void buildFoot();
  void addShortcuts();
  void setTexts();
  void follow(ResultListView& list);
  void step(int by);
  void fill();
  /// What is said under the value of a field; empty for nothing.
  [[nodiscard]] QString noteOn(std::size_t place, results::RowId record);
  /// What the list says of the review of the record; nothing while there is none.
  void fillReview();
  void fillFoot();
  /// Gives the form a place for each of these fields.
  void arrangeFields(const std::vector<QString>& captions, std::optional<Pair> pair);
  void makeField(std::size_t place, const QString& caption, bool framed);
  [[nodiscard]] QLayout* pairLayout(const Pair& pair, const std::vector<QString>& captions);
  /// Puts old and new value side by side where each has room for a line that can be read.
  void placePair();
  void setTabOrderOf(const std::vector<std::size_t>& places);
  [[nodiscard]] const results::ResultList& list() const { return list_->listModel().list(); }

  QPointer<ResultListView> list_;
  QPersistentModelIndex record_;
  std::vector<QMetaObject::Connection> connections_;
  std::vector<Field> fields_;
  std::optional<Pair> pair_;
  std::optional<ValueComparison> comparison_;
  std::optional<query::PlantTimes> times_;
  QBoxLayout* sides_ = nullptr;  ///< old and new value, while there are any

  QScrollArea* area_;
  QLabel* lblReview_ = nullptr;
  ValueField* review_ = nullptr;
  QPushButton* btPrevious_ = nullptr;
  QPushButton* btNext_ = nullptr;
  QLabel* lblPlace_ = nullptr;
  QPushButton* btCopy_ = nullptr;
  QPushButton* btClose_ = nullptr;
};

}  // namespace korvel::control
