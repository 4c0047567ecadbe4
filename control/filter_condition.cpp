#include "control/filter_condition.h"

#include <QDate>
#include <QStringList>
#include <algorithm>
#include <utility>

#include "control/activity_words.h"
#include "control/find_matcher.h"
#include "control/texts.h"
#include "settings/string_table.h"

namespace korvel::control {
namespace {

using results::ColumnCondition;
using results::ColumnIndex;
using results::ShownValue;

const ColumnFilter* onColumn(const FilterCondition& condition, ColumnIndex column) {
  const auto* filter = std::get_if<ColumnFilter>(&condition);
  return filter != nullptr && filter->condition.column == column ? filter : nullptr;
}

bool passesOne(const ColumnCondition& condition, const ShownValue& value) {
  const auto begins = [&](const std::string& beginning) { return !value.isNull && value.text.starts_with(beginning); };
  const bool inRange = condition.range && !value.isNull && condition.range->contains(value.text);
  const bool named = std::find(condition.values.begin(), condition.values.end(), value) != condition.values.end() ||
                     std::any_of(condition.beginnings.begin(), condition.beginnings.end(), begins) || inRange;
  return named != condition.excludes;
}

QString fromTo(const std::string& from, const std::string& to) {
  return fromUtf8(from) + QStringLiteral(" \u2013 ") + fromUtf8(to);
}

/// "2004-03-07 – 2004-03-09" where these are days without a gap; empty otherwise.
QString daysWithoutGap(const std::vector<std::string>& days) {
  std::vector<std::string> sorted = days;
  std::sort(sorted.begin(), sorted.end());
  const auto dateOf = [](const std::string& day) { return QDate::fromString(fromUtf8(day), Qt::ISODate); };
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    if (!dateOf(sorted[i]).isValid()) return {};
    if (i > 0 && dateOf(sorted[i - 1]).addDays(1) != dateOf(sorted[i])) return {};
  }
  return fromTo(sorted.front(), sorted.back());
}

ui::Chip chipOfColumn(const ColumnFilter& filter) {
  const ColumnCondition& condition = filter.condition;
  QStringList names;
  for (const ShownValue& value : condition.values) names.append(valueName(value));
  for (const std::string& beginning : condition.beginnings) names.append(fromUtf8(beginning));
  ui::Chip chip{.column = fromUtf8(filter.caption)};
  const QString relation = condition.excludes ? QStringLiteral("\u2260 ") : QStringLiteral("= ");
  const char* const several = condition.excludes ? "filter.isNoneOf" : "filter.isAnyOf";
  if (condition.range) {
    const auto span = query::spanOf(*condition.range);
    chip.condition = span ? spanName(*span) : fromTo(condition.range->from, condition.range->before);
  } else if (names.size() == 1) {
    chip.condition = relation + names.front();
  } else {
    if (!condition.excludes && condition.values.empty()) chip.condition = daysWithoutGap(condition.beginnings);
    if (chip.condition.isEmpty())
      chip.condition = ownText(several).arg(countText(static_cast<std::size_t>(names.size())));
  }
  constexpr qsizetype namesInTip = 20;
  chip.toolTip = chip.column + QLatin1Char(' ') + chip.condition;
  if (names.size() > 1) {
    chip.toolTip += QLatin1Char('\n') + names.mid(0, namesInTip).join(QLatin1Char('\n'));
    if (names.size() > namesInTip) chip.toolTip += QStringLiteral("\n\u2026");
  }
  return chip;
}

ui::Chip chipOfText(const TextFilter& filter) {
  const char* const relation = filter.request.regularExpression ? "filter.matches"
                               : filter.request.wholeValue      ? "filter.equals"
                                                                : "filter.contains";
  ui::Chip chip{.column = ownText("filter.anyColumn"), .condition = ownText(relation).arg(filter.request.text)};
  chip.toolTip = chip.column + QLatin1Char(' ') + chip.condition;
  if (filter.isUndecided) chip.toolTip += QLatin1Char('\n') + ownText("filter.undecided");
  return chip;
}

ui::Chip chipOfRecords(const RecordFilter& filter) {
  const QString name = ownText(filter.condition.name);
  return {.column = name, .toolTip = name};
}

std::vector<std::string> captionsOf(const results::ResultList& list) {
  std::vector<std::string> captions;
  captions.reserve(list.columns().size());
  for (const results::ColumnHeader& column : list.columns()) captions.push_back(column.caption);
  return captions;
}

}  // namespace

std::optional<TextFilter> textFilter(const results::ResultList& list, const ui::FindRequest& request,
                                     std::vector<ColumnIndex> columns,
                                     std::shared_ptr<const results::MatchingRecords> known) {
  FindMatcher made = findMatcher(request);
  if (!made.matcher) return std::nullopt;
  return TextFilter{{*std::move(made.matcher), std::move(columns), std::move(known)}, request, captionsOf(list)};
}

TextFilter forOtherRows(const TextFilter& filter, const results::ResultList& list) {
  TextFilter renewed = filter;
  renewed.isUndecided = false;
  renewed.isPending = filter.request.regularExpression;
  renewed.condition.known = renewed.isPending ? results::noneMatching(list) : nullptr;
  std::vector<std::string> captions = captionsOf(list);
  if (captions == filter.captions) return renewed;
  renewed.captions = std::move(captions);
  renewed.condition.columns.clear();
  for (std::size_t i = 0; i < list.columns().size(); ++i)
    if (list.columns()[i].width > Twips{0}) renewed.condition.columns.push_back({i});
  return renewed;
}

results::RowFilter rowFilter(const std::vector<FilterCondition>& conditions) {
  results::RowFilter filter;
  for (const FilterCondition& each : conditions) {
    if (const auto* column = std::get_if<ColumnFilter>(&each)) filter.columns.push_back(column->condition);
    if (const auto* text = std::get_if<TextFilter>(&each)) filter.texts.push_back(text->condition);
    if (const auto* records = std::get_if<RecordFilter>(&each)) filter.records.push_back(records->condition);
  }
  return filter;
}

bool fitsList(const FilterCondition& condition, const results::ResultList& list) {
  const auto& columns = list.columns();
  if (const auto* column = std::get_if<ColumnFilter>(&condition)) {
    const std::size_t place = column->condition.column.value;
    return place < columns.size() && columns[place].caption == column->caption;
  }
  if (const auto* records = std::get_if<RecordFilter>(&condition)) return records->condition.isKnownFor(list);
  return true;
}

bool passes(const std::vector<FilterCondition>& conditions, ColumnIndex column, const ShownValue& value) {
  return std::all_of(conditions.begin(), conditions.end(), [&](const FilterCondition& each) {
    const ColumnFilter* filter = onColumn(each, column);
    return filter == nullptr || passesOne(filter->condition, value);
  });
}

void keepOnly(std::vector<FilterCondition>& conditions, const ColumnIndex& column, const std::string& caption,
              ShownValue value) {
  std::erase_if(conditions, [&](const FilterCondition& each) { return onColumn(each, column) != nullptr; });
  conditions.emplace_back(ColumnFilter{{.column = column, .values = {std::move(value)}}, caption});
}

void leaveOut(std::vector<FilterCondition>& conditions, const ColumnIndex& column, const std::string& caption,
              ShownValue value) {
  for (FilterCondition& each : conditions) {
    auto* filter = std::get_if<ColumnFilter>(&each);
    if (filter == nullptr || filter->condition.column != column || !filter->condition.excludes) continue;
    filter->condition.values.push_back(std::move(value));
    return;
  }
  conditions.emplace_back(ColumnFilter{{.column = column, .excludes = true, .values = {std::move(value)}}, caption});
}

QString valueName(const ShownValue& value) {
  if (value.isNull) return ownText("filter.nullValue");
  return value.text.empty() ? ownText("filter.emptyValue") : fromUtf8(value.text);
}

std::string filterText(const FilterCondition& condition) {
  const auto quoted = [](std::string_view text) { return '"' + std::string(text) + '"'; };
  if (const auto* text = std::get_if<TextFilter>(&condition)) {
    const ui::FindRequest& request = text->request;
    return std::string("find ") + (request.regularExpression ? "regular expression " : "") +
           (request.wholeValue ? "whole value " : "") + quoted(request.text.toStdString()) +
           (request.exactCase ? " in exact case" : "");
  }
  if (const auto* records = std::get_if<RecordFilter>(&condition))
    return std::string(settings::ownText(records->condition.name, {}));
  const auto& filter = std::get<ColumnFilter>(condition);
  std::vector<std::string> parts;
  for (const ShownValue& value : filter.condition.values)
    parts.push_back("= " + (value.isNull ? std::string("null") : quoted(value.text)));
  for (const std::string& beginning : filter.condition.beginnings) parts.push_back("begins with " + quoted(beginning));
  if (const auto& range = filter.condition.range)
    parts.push_back("from " + quoted(range->from) +
                    (range->before.empty() ? "" : " to before " + quoted(range->before)));
  std::string text;
  for (const std::string& part : parts) text.append(text.empty() ? "" : " or ").append(part);
  return filter.caption + (filter.condition.excludes ? " not (" + text + ")" : " " + text);
}

ui::Chip chipOf(const FilterCondition& condition) {
  if (const auto* column = std::get_if<ColumnFilter>(&condition)) return chipOfColumn(*column);
  if (const auto* text = std::get_if<TextFilter>(&condition)) return chipOfText(*text);
  return chipOfRecords(std::get<RecordFilter>(condition));
}

}  // namespace korvel::control
