#pragma once

#include <QAbstractItemModel>
#include <QColor>
#include <QString>
#include <cstddef>
#include <vector>

namespace korvel::ui {

/// A value that can be chosen, or a group of values such as a year.
struct ListedValue {
  QString text;
  std::size_t count = 0;
  bool isQuiet = false;  ///< no value proper: empty or null
  bool isChecked = true;
  bool isPartly = false;  ///< some of its rows are chosen, in another way; until it is ticked or unticked
  int parent = -1;        ///< the group, which comes before its members; -1 for none
};

/// The values of a column with their counts and check boxes, also as a tree. Values that do not match the search are
/// not listed and keep their ticks. A group is ticked where all of its listed members are.
class ValueChoiceModel final : public QAbstractItemModel {
  Q_OBJECT

 public:
  using QAbstractItemModel::QAbstractItemModel;

  void setValues(std::vector<ListedValue> values);
  [[nodiscard]] const std::vector<ListedValue>& values() const noexcept { return values_; }
  /// Lists the values that contain the text, whatever the case, or belong to a group that does.
  void search(const QString& text);
  void setQuietColor(const QColor& color) { quiet_ = color; }

  /// Ticks or unticks everything that is listed.
  void checkListed(bool checked);
  void toggle(const QModelIndex& index);
  [[nodiscard]] Qt::CheckState listedState() const;
  /// The values that are listed, groups left out; by their places in values().
  [[nodiscard]] std::vector<std::size_t> listed(bool checked) const {
    return listedIn(checked ? Qt::Checked : Qt::Unchecked);
  }
  [[nodiscard]] std::vector<std::size_t> listedPartly() const { return listedIn(Qt::PartiallyChecked); }
  [[nodiscard]] std::size_t listedRecords() const;

  [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

 Q_SIGNALS:
  void checksChanged();

 private:
  using Place = std::size_t;  ///< in values_

  [[nodiscard]] Place placeOf(const QModelIndex& index) const { return static_cast<Place>(index.internalId()); }
  /// The listed members of a group; those of no group for the invisible root.
  [[nodiscard]] const std::vector<Place>& members(const QModelIndex& group) const;
  [[nodiscard]] Qt::CheckState stateOf(Place place) const;
  [[nodiscard]] std::vector<std::size_t> listedIn(Qt::CheckState state) const;
  void check(Place place, bool checked);
  void list();
  void announceChecks();

  std::vector<ListedValue> values_;
  std::vector<bool> isGroup_;
  std::vector<bool> isListed_;
  /// By group, one more than its place; the root comes first.
  std::vector<std::vector<Place>> members_{1};
  std::vector<int> rows_;  ///< of each listed value within its group
  QString search_;
  QColor quiet_;
};

}  // namespace korvel::ui
