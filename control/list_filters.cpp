#include "control/list_filters.h"

#include <QHeaderView>
#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "base/error.h"
#include "control/find_matcher.h"
#include "control/texts.h"
#include "results/date_text.h"
#include "results/day_choice.h"
#include "results/memory_watch.h"

namespace korvel::control {
namespace {

using results::ColumnIndex;
using results::DatePart;
using results::RowPosition;
using results::ShownValue;

/// The lines of a list of values, and what they stand for.
struct Offer {
  std::vector<ui::ListedValue> lines;
  std::vector<std::optional<ShownValue>> values;

  int add(ui::ListedValue line, std::optional<ShownValue> value) {
    lines.push_back(std::move(line));
    values.push_back(std::move(value));
    return static_cast<int>(lines.size()) - 1;
  }
};

/// Days in groups of years and months, in the order of time; what is no day stands behind them.
/// `stateOf` says how many of a value's rows are shown.
Offer offerOfDays(const std::vector<results::ValueCount>& values,
                  const std::function<Qt::CheckState(const results::ValueCount&)>& stateOf) {
  std::vector<const results::ValueCount*> sorted;
  sorted.reserve(values.size());
  for (const results::ValueCount& each : values) sorted.push_back(&each);
  std::stable_sort(sorted.begin(), sorted.end(), [](const auto* one, const auto* other) {
    const bool oneIsDay = !one->value.text.empty();
    const bool otherIsDay = !other->value.text.empty();
    return oneIsDay != otherIsDay ? oneIsDay : one->value.text < other->value.text;
  });
  Offer offer;
  std::map<std::string, int> groups;
  const auto groupOf = [&](const std::string& day, DatePart part, int parent) {
    const std::string name(results::datePart(day, part));
    const auto known = groups.find(name);
    if (known != groups.end()) return known->second;
    return groups[name] = offer.add({.text = fromUtf8(name), .parent = parent}, std::nullopt);
  };
  for (const results::ValueCount* each : sorted) {
    const Qt::CheckState state = stateOf(*each);
    ui::ListedValue line{.text = valueName(each->value),
                         .count = each->count,
                         .isChecked = state != Qt::Unchecked,
                         .isPartly = state == Qt::PartiallyChecked};
    if (each->value.text.empty()) {
      line.isQuiet = true;
    } else {
      const int year = groupOf(each->value.text, DatePart::year, -1);
      line.parent = groupOf(each->value.text, DatePart::month, year);
      offer.lines[static_cast<std::size_t>(year)].count += each->count;
      offer.lines[static_cast<std::size_t>(line.parent)].count += each->count;
    }
    offer.add(std::move(line), each->value);
  }
  return offer;
}

Offer offerOfValues(const std::vector<results::ValueCount>& values,
                    const std::function<bool(const ShownValue&)>& isOn) {
  Offer offer;
  // The most frequent ones come first; empty and null stand apart, behind them.
  for (const bool quiet : {false, true}) {
    for (const results::ValueCount& each : values) {
      if (each.value.text.empty() != quiet) continue;
      offer.add({.text = valueName(each.value), .count = each.count, .isQuiet = quiet, .isChecked = isOn(each.value)},
                each.value);
    }
  }
  return offer;
}

bool isNamed(const FilterCondition& condition, const std::string& name) {
  const auto* filter = std::get_if<RecordFilter>(&condition);
  return filter != nullptr && filter->condition.name == name;
}

bool isOn(const FilterCondition& condition, ColumnIndex column) {
  const auto* filter = std::get_if<ColumnFilter>(&condition);
  return filter != nullptr && filter->condition.column == column;
}

}  // namespace

/// Which records match texts; may be found out on another thread.
struct ListFilters::Evaluation {
  struct Text {
    ui::FindRequest request;
    FindMatcher matcher;
    std::vector<ColumnIndex> columns;
    std::shared_ptr<const results::MatchingRecords> known = {};
  };
  results::ResultList records;
  std::vector<Text> texts = {};
  std::optional<Error> failure = {};

  void run(const std::stop_token& stop) {
    try {
      for (Text& each : texts)
        each.known = std::make_shared<const results::MatchingRecords>(results::MatchingRecords{
            records.sharedStore(),
            results::MatchingCells(records, *each.matcher.matcher, each.columns, stop).matchingRecords()});
    } catch (const Error& error) {
      failure = error;
    } catch (const std::bad_alloc&) {
      failure = results::outOfMemory();
    }
  }
};

ListFilters::ListFilters(ListArea& area, Hooks hooks)
    : area_(area), hooks_(std::move(hooks)), values_(new ui::ValueList(&area.list)), work_(nullptr) {
  ResultListView& view = area_.list;
  const auto run = [this](std::string_view handler, auto operation) {
    return [this, handler, operation](auto... arguments) { hooks_.trapped(handler, [&] { operation(arguments...); }); };
  };
  connect(&view, &ResultListView::filterRequested, this,
          run("FilterValues", [this](int column) { showValues(column); }));
  connect(&view, &ResultListView::onlyRequested, this,
          run("OnlyThisValue", [this](const QModelIndex& cell) { keepOnlyValue(cell); }));
  connect(&view, &ResultListView::withoutRequested, this,
          run("WithoutThisValue", [this](const QModelIndex& cell) { leaveOutValue(cell); }));
  connect(&view, &ResultListView::unfilterRequested, this, run("ClearFilters", [this] { clear(); }));
  connect(values_, &ui::ValueList::chosen, this, run("FilterValues", [this] { choose(); }));
  connect(area_.chips, &ui::ChipBar::clearRequested, this, run("ClearFilters", [this] { clear(); }));
  connect(area_.chips, &ui::ChipBar::removeRequested, this, run("RemoveFilter", [this](int chip) {
            std::vector<FilterCondition> left = conditions_;
            left.erase(left.begin() + chip);
            apply(std::move(left));
          }));
  connect(area_.chips, &ui::ChipBar::changeRequested, this, run("FilterValues", [this](int chip) {
            const FilterCondition& condition = conditions_.at(static_cast<std::size_t>(chip));
            if (const auto* column = std::get_if<ColumnFilter>(&condition))
              showValues(static_cast<int>(column->condition.column.value));
            else if (const auto* text = std::get_if<TextFilter>(&condition))
              hooks_.find(changed_.emplace(text->request));
          }));
  connect(&view.listModel(), &QAbstractItemModel::modelReset, this, [this] { followRows(); });
  // Entry numbers are shown otherwise once they are sorted.
  connect(&view.listModel(), &QAbstractItemModel::layoutAboutToBeChanged, this, [this] { values_->close(); });
  connect(&view.listModel(), &QAbstractItemModel::layoutChanged, this, [this] {
    if (conditions_.empty()) return;
    conditions_ = conditionsAsShown();
    showState();
  });
}

std::string ListFilters::captionOf(ColumnIndex column) const {
  const auto& columns = list().columns();
  return column.value < columns.size() ? columns[column.value].caption : std::string();
}

ShownValue ListFilters::valueAt(const QModelIndex& cell) const {
  const RowPosition row{static_cast<std::size_t>(cell.row())};
  const ColumnIndex column{static_cast<std::size_t>(cell.column())};
  const results::RowId record = list().rowId(row);
  const results::RowStore& store = *list().store();
  const bool isNull = list().fills(column, store.widthOf(record)) && store.cell(record, column).isNull;
  return {std::string(list().text(row, column)), isNull};
}

std::function<Qt::CheckState(const results::ValueCount&)> ListFilters::shownParts() const {
  const bool isFiltered =
      std::any_of(conditions_.begin(), conditions_.end(), [this](const auto& each) { return isOn(each, column_); });
  if (!isFiltered) return [](const results::ValueCount&) { return Qt::Checked; };
  // A condition may be about hours or single times: how much of a day it leaves is counted.
  std::map<std::pair<std::string, bool>, std::size_t> shown;
  for (const results::ValueCount& each : results::shownColumnValues(list(), column_).values)
    shown[{each.value.text, each.value.isNull}] = each.count;
  return [shown = std::move(shown)](const results::ValueCount& value) {
    const auto found = shown.find({value.value.text, value.value.isNull});
    if (found == shown.end()) return Qt::Unchecked;
    return found->second < value.count ? Qt::PartiallyChecked : Qt::Checked;
  };
}

ui::ValueListContent ListFilters::offer(const QString& search) {
  std::optional<results::TextMatcher> matcher;
  if (!search.isEmpty()) matcher.emplace(search.toStdString(), results::TextMatcher::Options{});
  const results::ColumnValues found = results::columnValues(list(), column_, matcher);
  const auto isOn = [this](const ShownValue& value) { return passes(conditions_, column_, value); };
  Offer lines = found.areDates ? offerOfDays(found.values, shownParts()) : offerOfValues(found.values, isOn);
  offered_ = std::move(lines.values);
  areDates_ = found.areDates;
  return {.values = std::move(lines.lines),
          .isTree = found.areDates,
          .moreThan = found.tooMany ? results::mostListedValues : 0};
}

void ListFilters::showValues(int column) {
  ResultListView& view = area_.list;
  if (column < 0 || column >= view.listModel().columnCount() || list().wholeRowCount() == 0) return;
  column_ = {static_cast<std::size_t>(column)};
  ui::ValueListContent content = offer({});
  // A column that is out of sight comes into it.
  if (const int current = view.currentIndex().row(); current >= 0)
    view.scrollTo(view.listModel().index(current, column), QAbstractItemView::EnsureVisible);
  const ui::ResultHeader& header = *view.header();
  const int left = std::clamp(header.sectionViewportPosition(column), 0, std::max(0, header.viewport()->width() - 1));
  const QRect section(header.viewport()->mapToGlobal(QPoint(left, 0)),
                      QSize(header.sectionSize(column), header.viewport()->height()));
  values_->setTexts([](std::string_view key) { return ownText(key); });
  values_->open(std::move(content), section, [this](const QString& search) {
    ui::ValueListContent some;
    hooks_.trapped("FilterValues", [&] { some = offer(search); });
    return some;
  });
}

void ListFilters::choose() {
  const std::vector<std::size_t> on = values_->listed(true);
  const std::vector<std::size_t> off = values_->listed(false);
  const std::vector<std::size_t> partly = values_->listedPartly();
  const bool all = off.empty() && partly.empty() && !values_->isSearching();
  const auto onColumn = [this](const FilterCondition& each) { return isOn(each, column_); };
  const bool collects =
      values_->wasEmptied() || std::any_of(conditions_.begin(), conditions_.end(), [&](const auto& each) {
        return onColumn(each) && !std::get<ColumnFilter>(each).condition.excludes;
      });
  // Where only a few are left out, the condition says which: values that come later pass it.
  const bool excludes = !values_->isSearching() && !collects && off.size() < on.size();
  std::vector<FilterCondition> conditions = conditions_;
  std::erase_if(conditions, onColumn);
  if (!partly.empty()) {
    const auto valuesAt = [this](const std::vector<std::size_t>& places) {
      std::vector<ShownValue> chosen;
      for (const std::size_t place : places)
        if (offered_.at(place)) chosen.push_back(*offered_.at(place));
      return chosen;
    };
    std::vector<results::ColumnCondition> before;
    for (const FilterCondition& each : conditions_)
      if (onColumn(each)) before.push_back(std::get<ColumnFilter>(each).condition);
    const results::DayChoice choice{.whole = valuesAt(on),
                                    .partly = valuesAt(partly),
                                    .none = valuesAt(off),
                                    .othersToo = !values_->isSearching() && !collects};
    for (results::ColumnCondition& each : results::chosenDays(before, column_, choice))
      conditions.emplace_back(ColumnFilter{std::move(each), captionOf(column_)});
  } else if (!all) {
    ColumnFilter filter{{.column = column_, .excludes = excludes}, captionOf(column_)};
    for (const std::size_t place : excludes ? off : on) {
      const std::optional<ShownValue>& value = offered_.at(place);
      if (!value) continue;
      if (areDates_ && !value->text.empty())
        filter.condition.beginnings.push_back(value->text);
      else
        filter.condition.values.push_back(*value);
    }
    conditions.emplace_back(std::move(filter));
  }
  apply(std::move(conditions));
}

void ListFilters::keepOnlyValue(const QModelIndex& cell) {
  if (!cell.isValid()) return;
  const ColumnIndex column{static_cast<std::size_t>(cell.column())};
  std::vector<FilterCondition> conditions = conditions_;
  keepOnly(conditions, column, captionOf(column), valueAt(cell));
  apply(std::move(conditions));
}

void ListFilters::leaveOutValue(const QModelIndex& cell) {
  if (!cell.isValid()) return;
  const ColumnIndex column{static_cast<std::size_t>(cell.column())};
  std::vector<FilterCondition> conditions = conditions_;
  leaveOut(conditions, column, captionOf(column), valueAt(cell));
  apply(std::move(conditions));
}

void ListFilters::keepOnlyGroup(const std::vector<results::ColumnCondition>& group) {
  std::vector<FilterCondition> conditions = conditions_;
  for (const results::ColumnCondition& condition : group) {
    const std::string caption = captionOf(condition.column);
    // A value replaces what stood on its column, a part of a date goes with it: that may be less than the part.
    if (condition.beginnings.empty())
      keepOnly(conditions, condition.column, caption, condition.values.front());
    else
      conditions.emplace_back(ColumnFilter{condition, caption});
  }
  apply(std::move(conditions));
}

void ListFilters::keepOnlyText(const ui::FindRequest& request, const results::MatchingCells& cells) {
  const auto known = std::make_shared<const results::MatchingRecords>(
      results::MatchingRecords{list().sharedStore(), cells.matchingRecords()});
  std::optional<TextFilter> made = textFilter(list(), request, {cells.columns().begin(), cells.columns().end()}, known);
  if (!made) return;
  const auto asksFor = [](const FilterCondition& each, const ui::FindRequest& asked) {
    const auto* text = std::get_if<TextFilter>(&each);
    return text != nullptr && text->request == asked;
  };
  std::vector<FilterCondition> conditions = conditions_;
  const auto place = std::find_if(conditions.begin(), conditions.end(),
                                  [&](const FilterCondition& each) { return changed_ && asksFor(each, *changed_); });
  const auto at = place - conditions.begin();
  if (place != conditions.end()) conditions.erase(place);
  conditions.emplace(conditions.begin() + at, *std::move(made));
  // The same text twice says nothing more.
  for (auto i = static_cast<std::ptrdiff_t>(conditions.size()); i-- > 0;)
    if (i != at && asksFor(conditions[static_cast<std::size_t>(i)], request)) conditions.erase(conditions.begin() + i);
  apply(std::move(conditions));
  if (changed_) changed_ = request;
}

void ListFilters::keepOnlyRange(const ColumnIndex& column, std::optional<results::TextRange> range) {
  std::vector<FilterCondition> conditions = conditions_;
  std::erase_if(conditions, [&](const FilterCondition& each) {
    const auto* filter = std::get_if<ColumnFilter>(&each);
    return filter != nullptr && filter->condition.column == column && filter->condition.range;
  });
  if (range) conditions.emplace_back(ColumnFilter{{.column = column, .range = std::move(range)}, captionOf(column)});
  apply(std::move(conditions));
}

void ListFilters::keepOnlyRecords(const std::string& name, std::vector<std::uint8_t> records) {
  RecordFilter made{{name, std::make_shared<const results::MatchingRecords>(
                               results::MatchingRecords{list().sharedStore(), std::move(records)})}};
  std::vector<FilterCondition> conditions = conditions_;
  const auto place = std::find_if(conditions.begin(), conditions.end(),
                                  [&](const FilterCondition& each) { return isNamed(each, name); });
  if (place != conditions.end())
    *place = std::move(made);
  else
    conditions.emplace_back(std::move(made));
  apply(std::move(conditions));
}

void ListFilters::showAllRecords(const std::string& name) {
  if (!keepsRecords(name)) return;
  std::vector<FilterCondition> conditions = conditions_;
  std::erase_if(conditions, [&](const FilterCondition& each) { return isNamed(each, name); });
  apply(std::move(conditions));
}

bool ListFilters::keepsRecords(const std::string& name) const {
  return std::any_of(conditions_.begin(), conditions_.end(),
                     [&](const FilterCondition& each) { return isNamed(each, name); });
}

void ListFilters::clear() {
  area_.chips->setPinned(false);
  apply({});
}

void ListFilters::apply(std::vector<FilterCondition> conditions) {
  const bool before = std::exchange(applying_, true);
  try {
    area_.list.setFilter(rowFilter(conditions));
  } catch (...) {
    applying_ = before;
    throw;
  }
  applying_ = before;
  conditions_ = std::move(conditions);
  // What was found out about texts is kept for the next time.
  auto known = list().filter().texts.begin();
  bool isPending = false;
  for (FilterCondition& each : conditions_) {
    auto* text = std::get_if<TextFilter>(&each);
    if (text == nullptr) continue;
    text->condition.known = known++->known;
    isPending = isPending || text->isPending;
  }
  if (!isPending) work_.stop();
  showState();
}

void ListFilters::followRows() {
  if (applying_) return;
  work_.stop();
  // It lists values of rows that are gone.
  values_->close();
  if (conditions_.empty()) return;
  // A query empties the list before it fills it; more rows of the same answer replace the rows at once.
  const bool isEmpty = list().wholeRowCount() == 0;
  if (isEmpty && area_.chips->isPinned()) {
    std::erase_if(conditions_, [](const FilterCondition& each) { return std::holds_alternative<RecordFilter>(each); });
    showState();
    return;
  }
  if (isEmpty) {
    conditions_.clear();
    showState();
    return;
  }
  std::vector<FilterCondition> kept = conditionsAsShown();
  std::erase_if(kept, [this](const FilterCondition& each) { return !fitsList(each, list()); });
  conditions_.clear();
  hooks_.trapped("FilterValues", [&] {
    for (FilterCondition& each : kept)
      if (auto* text = std::get_if<TextFilter>(&each)) *text = forOtherRows(*text, list());
    apply(std::move(kept));
    evaluate();
  });
  // Where memory runs out the list shows everything, and the chips say so.
  showState();
}

std::vector<FilterCondition> ListFilters::conditionsAsShown() const {
  std::vector<FilterCondition> conditions = conditions_;
  for (FilterCondition& each : conditions) {
    auto* column = std::get_if<ColumnFilter>(&each);
    if (column != nullptr && list().rewritesEntryNumbers(column->condition.column))
      results::removeLeadingZeros(column->condition);
  }
  return conditions;
}

void ListFilters::evaluate() {
  const auto evaluation = std::make_shared<Evaluation>(Evaluation{list().recordsOnly()});
  for (const FilterCondition& each : conditions_) {
    const auto* text = std::get_if<TextFilter>(&each);
    if (text != nullptr && text->isPending)
      evaluation->texts.push_back({text->request, findMatcher(text->request), text->condition.columns});
  }
  if (evaluation->texts.empty()) return;
  work_.start([evaluation](const std::stop_token& stop) { evaluation->run(stop); },
              [this, evaluation] { hooks_.trapped("FilterText", [&] { take(*evaluation); }); });
}

void ListFilters::take(const Evaluation& evaluation) {
  std::vector<FilterCondition> conditions = conditions_;
  if (evaluation.failure) {
    std::erase_if(conditions, [](const FilterCondition& each) {
      const auto* text = std::get_if<TextFilter>(&each);
      return text != nullptr && text->isPending;
    });
    apply(std::move(conditions));
    throw Error(*evaluation.failure);
  }
  for (FilterCondition& each : conditions) {
    auto* text = std::get_if<TextFilter>(&each);
    if (text == nullptr || !text->isPending) continue;
    const auto found = std::find_if(evaluation.texts.begin(), evaluation.texts.end(),
                                    [&](const Evaluation::Text& one) { return one.request == text->request; });
    if (found == evaluation.texts.end()) continue;
    text->condition.known = found->known;
    text->isPending = false;
    text->isUndecided = found->matcher.hasGivenUp();
  }
  apply(std::move(conditions));
}

void ListFilters::showState() {
  std::vector<ui::Chip> chips;
  std::vector<int> columns;
  ListArea::FilterState state;
  for (const FilterCondition& each : conditions_) {
    chips.push_back(chipOf(each));
    state.conditions.push_back(filterText(each));
    if (const auto* column = std::get_if<ColumnFilter>(&each))
      columns.push_back(static_cast<int>(column->condition.column.value));
    if (const auto* text = std::get_if<TextFilter>(&each)) {
      state.isEvaluating = state.isEvaluating || (text->isPending && work_.isRunning());
      state.isUndecided = state.isUndecided || text->isUndecided;
    }
  }
  area_.filterState = std::move(state);
  if (chips.empty()) area_.chips->setPinned(false);
  area_.chips->setChips(chips);
  const QString count = ownText(area_.filterState.isUndecided ? "filter.shownUndecided" : "filter.shown")
                            .arg(countText(list().rowCount()), countText(list().wholeRowCount()));
  area_.chips->setCount(area_.filterState.isEvaluating ? ownText("filter.evaluating") : count,
                        area_.filterState.isUndecided ? ownText("filter.undecided") : QString());
  area_.list.header()->setFilteredColumns(columns);
  hooks_.changed();
}

void ListFilters::showTexts() {
  area_.chips->setTexts([](std::string_view key) { return ownText(key); });
  area_.list.header()->setFilterSigns(true, ownText("filter.sign"));
  if (!conditions_.empty()) showState();
}

}  // namespace korvel::control
