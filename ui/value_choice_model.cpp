#include "ui/value_choice_model.h"

#include <utility>

#include "ui/row_delegate.h"
#include "ui/shown_text.h"
#include "ui/texts.h"

namespace korvel::ui {

void ValueChoiceModel::setValues(std::vector<ListedValue> values) {
  beginResetModel();
  values_ = std::move(values);
  isGroup_.assign(values_.size(), false);
  for (const ListedValue& value : values_)
    if (value.parent >= 0) isGroup_[static_cast<Place>(value.parent)] = true;
  list();
  endResetModel();
  Q_EMIT checksChanged();
}

void ValueChoiceModel::search(const QString& text) {
  if (text == search_) return;
  beginResetModel();
  search_ = text;
  list();
  endResetModel();
  Q_EMIT checksChanged();
}

void ValueChoiceModel::list() {
  isListed_.assign(values_.size(), search_.isEmpty());
  if (!search_.isEmpty()) {
    for (Place place = 0; place < values_.size(); ++place) {
      const int group = values_[place].parent;
      isListed_[place] = values_[place].text.contains(search_, Qt::CaseInsensitive) ||
                         (group >= 0 && isListed_[static_cast<Place>(group)]);
    }
    // A group is listed with its members; they come behind it, so that one pass from the end finds all.
    for (Place place = values_.size(); place-- > 0;) {
      const int group = values_[place].parent;
      if (group >= 0 && isListed_[place]) isListed_[static_cast<Place>(group)] = true;
    }
  }
  members_.assign(values_.size() + 1, {});
  rows_.assign(values_.size(), -1);
  for (Place place = 0; place < values_.size(); ++place) {
    if (!isListed_[place]) continue;
    auto& siblings = members_[static_cast<Place>(values_[place].parent) + 1];
    rows_[place] = static_cast<int>(siblings.size());
    siblings.push_back(place);
  }
}

const std::vector<ValueChoiceModel::Place>& ValueChoiceModel::members(const QModelIndex& group) const {
  return members_[group.isValid() ? placeOf(group) + 1 : 0];
}

Qt::CheckState ValueChoiceModel::stateOf(Place place) const {
  if (!isGroup_[place])
    return values_[place].isPartly ? Qt::PartiallyChecked : values_[place].isChecked ? Qt::Checked : Qt::Unchecked;
  bool any = false;
  bool all = true;
  for (const Place member : members_[place + 1]) {
    const Qt::CheckState state = stateOf(member);
    any = any || state != Qt::Unchecked;
    all = all && state == Qt::Checked;
  }
  return all ? Qt::Checked : any ? Qt::PartiallyChecked : Qt::Unchecked;
}

void ValueChoiceModel::check(Place place, bool checked) {
  values_[place].isChecked = checked;
  values_[place].isPartly = false;
  for (const Place member : members_[place + 1]) check(member, checked);
}

void ValueChoiceModel::announceChecks() {
  // Ticks of groups follow those of their members and the reverse: views repaint all that they show.
  if (rowCount() > 0) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, 0), {Qt::CheckStateRole});
  Q_EMIT checksChanged();
}

void ValueChoiceModel::checkListed(bool checked) {
  for (const Place place : members_[0]) check(place, checked);
  announceChecks();
}

void ValueChoiceModel::toggle(const QModelIndex& index) {
  if (!index.isValid()) return;
  check(placeOf(index), stateOf(placeOf(index)) != Qt::Checked);
  announceChecks();
}

Qt::CheckState ValueChoiceModel::listedState() const {
  if (!listedPartly().empty()) return Qt::PartiallyChecked;
  const bool any = !listed(true).empty();
  const bool others = !listed(false).empty();
  return !any ? Qt::Unchecked : others ? Qt::PartiallyChecked : Qt::Checked;
}

std::vector<std::size_t> ValueChoiceModel::listedIn(Qt::CheckState state) const {
  std::vector<std::size_t> places;
  for (Place place = 0; place < values_.size(); ++place)
    if (isListed_[place] && !isGroup_[place] && stateOf(place) == state) places.push_back(place);
  return places;
}

std::size_t ValueChoiceModel::listedRecords() const {
  std::size_t records = 0;
  for (Place place = 0; place < values_.size(); ++place)
    if (isListed_[place] && !isGroup_[place]) records += values_[place].count;
  return records;
}

QModelIndex ValueChoiceModel::index(int row, int column, const QModelIndex& parent) const {
  if (column < 0 || column >= columnCount() || row < 0 || row >= rowCount(parent)) return {};
  return createIndex(row, column, static_cast<quintptr>(members(parent)[static_cast<std::size_t>(row)]));
}

QModelIndex ValueChoiceModel::parent(const QModelIndex& child) const {
  if (!child.isValid()) return {};
  const int group = values_[placeOf(child)].parent;
  return group < 0 ? QModelIndex() : createIndex(rows_[static_cast<Place>(group)], 0, static_cast<quintptr>(group));
}

int ValueChoiceModel::rowCount(const QModelIndex& parent) const {
  if (parent.isValid() && parent.column() != 0) return 0;
  return static_cast<int>(members(parent).size());
}

int ValueChoiceModel::columnCount(const QModelIndex& parent) const {
  Q_UNUSED(parent)
  return 2;
}

QVariant ValueChoiceModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const ListedValue& value = values_[placeOf(index)];
  const bool isCount = index.column() == 1;
  switch (role) {
    case Qt::DisplayRole:
      return isCount ? countText(value.count) : RowDelegate::shownText(value.text);
    case Qt::ToolTipRole:
      return isCount ? QVariant() : plainToolTip(value.text);
    case Qt::CheckStateRole:
      return isCount ? QVariant() : QVariant(stateOf(placeOf(index)));
    case Qt::TextAlignmentRole:
      return QVariant(isCount ? Qt::AlignRight | Qt::AlignVCenter : Qt::AlignLeft | Qt::AlignVCenter);
    case Qt::ForegroundRole:
      return (isCount || value.isQuiet) && quiet_.isValid() ? QVariant(quiet_) : QVariant();
    default:
      return {};
  }
}

bool ValueChoiceModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::CheckStateRole || index.column() != 0 || !checkIndex(index, CheckIndexOption::IndexIsValid))
    return false;
  check(placeOf(index), value.toInt() == Qt::Checked);
  announceChecks();
  return true;
}

Qt::ItemFlags ValueChoiceModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const Qt::ItemFlags both = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  return index.column() == 0 ? both | Qt::ItemIsUserCheckable : both;
}

}  // namespace korvel::ui
