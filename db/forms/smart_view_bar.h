#pragma once

#include <QListWidget>

#include "ui/card_frame.h"

namespace korvel::db {

/// The view bar: one group of items under its caption. An item is chosen by a click, or with Enter or Space on it.
class SmartViewBar final : public ui::CardFrame {
  Q_OBJECT

 public:
  explicit SmartViewBar(const QString& group, QWidget* parent = nullptr);

  void clear();
  /// Appends an item, not yet highlighted.
  void addItem(const QString& caption);
  /// Shows every item of the group highlighted.
  void highlightItems();
  /// Selects the item as a click on it would, without announcing it.
  void select(int index);

  [[nodiscard]] int count() const { return items_->count(); }
  [[nodiscard]] QString caption(int index) const { return items_->item(index)->text(); }
  /// Caption of the selected item, empty where none is selected.
  [[nodiscard]] QString selectedCaption() const;
  /// What an empty group says; painted only.
  void setEmptyText(const QString& text);
  [[nodiscard]] QListWidget& items() const { return *items_; }

 Q_SIGNALS:
  void itemClicked();
  /// Another item was selected, by any means.
  void selectionMoved();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QListWidget* items_;
};

}  // namespace korvel::db
