#pragma once

#include <QDialog>
#include <QPersistentModelIndex>
#include <QPointer>
#include <vector>

#include "control/result_list_view.h"

class QGridLayout;
class QLabel;
class QPushButton;
class QScrollArea;

namespace korvel::control {

class ValueField;

/// Shows all fields of one record that the server sent, also those that the list does not show, with their text as it
/// is stored. Old and new value are side by side. Steps to the next and previous record in the list's order.
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
  /// Copies the record to the clipboard: a line a field, its caption and its whole text. Refuses, and leaves the
  /// clipboard unchanged, where memory does not suffice.
  void copyRecord();

 Q_SIGNALS:
  /// A command was refused; `text` says why.
  void refused(const QString& text);

 private:
  struct Field {
    QString caption;
    QLabel* label = nullptr;
    ValueField* value = nullptr;
    QLabel* note = nullptr;  ///< says that a very long value is cut
  };

  void buildFoot();
  void addShortcuts();
  void setTexts();
  void follow(ResultListView& list);
  void step(int by);
  void fill();
  void fillFoot();
  /// Gives the form a place for each of these fields.
  void arrangeFields(const std::vector<QString>& captions, int oldValue);
  Field& addField(const QString& caption, bool framed);
  [[nodiscard]] const results::ResultList& list() const { return list_->listModel().list(); }

  QPointer<ResultListView> list_;
  QPersistentModelIndex record_;
  std::vector<QMetaObject::Connection> connections_;
  std::vector<Field> fields_;
  int oldValue_ = -1;  ///< the field that stands beside the one after it

  QScrollArea* area_;
  QPushButton* btPrevious_ = nullptr;
  QPushButton* btNext_ = nullptr;
  QLabel* lblPlace_ = nullptr;
  QPushButton* btCopy_ = nullptr;
  QPushButton* btClose_ = nullptr;
};

}  // namespace korvel::control
