#include "evidence/comparison_words.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "base/text.h"

namespace korvel::evidence {

namespace {

/// By the values of RowDifference::Kind.
constexpr std::array<std::string_view, 5> differenceKeys = {"compare.kindChanged", "compare.kindRemoved",
                                                            "compare.kindInserted", "compare.kindRenumbered",
                                                            "compare.kindExchanged"};
/// By the values of TrailOddity::Kind.
constexpr std::array<std::string_view, 3> oddityKeys = {"compare.kindGap", "compare.kindRepeated",
                                                        "compare.kindClockStep"};

/// By which a row is known; old and new value come behind them.
constexpr std::array<std::string_view, 5> mainColumns = {"DateTime", "UserName", "TableName", "FieldName", "EventType"};

struct CountedText {
  std::uint64_t count;
  std::string_view one;
  std::string_view several;
};

std::string joined(std::initializer_list<CountedText> counted, const ComparisonLanguage& language) {
  std::string all;
  for (const CountedText& each : counted) {
    if (each.count == 0) continue;
    all.append(all.empty() ? "" : ", ");
    all += language.text(each.count == 1 ? each.one : each.several, {language.count(each.count)});
  }
  return all;
}

/// The beginning of a value, on one line.
std::string inShort(std::string text) {
  constexpr std::size_t most = 60;
  for (const char* const blank : {"\r", "\n", "\t"}) text = replaceAll(std::move(text), blank, " ");
  if (text.size() <= most) return text;
  std::size_t end = most;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  return text.substr(0, end) + "\u2026";
}

std::string valueOf(const RowDifference& difference, std::string_view column) {
  for (const ColumnValue& each : difference.row)
    if (equalsIgnoringAsciiCase(each.column, column)) return inShort(std::string(trimBlanks(each.value.value_or(""))));
  return {};
}

}  // namespace

std::vector<std::string> comparisonSentences(const ComparedSnapshot& compared, const ComparisonLanguage& language) {
  const TrailComparison& found = compared.found;
  std::vector<std::string> sentences;
  const std::string counts = joined({{found.changed, "compare.changedCount", "compare.changedCount"},
                                     {found.removed, "compare.removedCount", "compare.removedCount"},
                                     {found.inserted, "compare.insertedCount", "compare.insertedCount"}},
                                    language);
  const std::string rows = language.count(found.rowsBefore);
  if (!counts.empty()) sentences.push_back(language.text("compare.different", {counts, rows}));
  for (const std::string& column : found.columnsGone)
    sentences.push_back(language.text("compare.columnGone", {column}));
  for (const std::string& column : found.columnsNew) sentences.push_back(language.text("compare.columnNew", {column}));
  for (const std::string& finding : compared.snapshotFindings)
    sentences.push_back(language.text("compare.snapshotChanged", {finding}));
  if (counts.empty()) sentences.push_back(language.text("compare.unchanged", {rows}));
  if (found.newer > 0) sentences.push_back(joined({{found.newer, "compare.newerOne", "compare.newer"}}, language));
  const std::string oddities = joined({{found.missingNumbers, "compare.missingOne", "compare.missing"},
                                       {found.repeatedNumbers, "compare.repeatedOne", "compare.repeated"},
                                       {found.clockSteps, "compare.clockStepOne", "compare.clockStep"}},
                                      language);
  if (!oddities.empty()) sentences.push_back(language.text("compare.byItself", {oddities}));
  if (found.changed + found.removed + found.inserted > TrailComparison::mostNamed)
    sentences.push_back(language.text("compare.notAllNamed", {language.count(TrailComparison::mostNamed)}));
  return sentences;
}

std::string findingText(const RowDifference& difference, const ComparisonLanguage& language) {
  if (difference.kind == RowDifference::Kind::exchanged && difference.otherNumber)
    return language.text("compare.exchangedWith", {std::to_string(*difference.otherNumber)});
  return language.text(differenceKeys.at(static_cast<std::size_t>(difference.kind)));
}

std::string findingText(const TrailOddity& oddity, const ComparisonLanguage& language) {
  return language.text(oddityKeys.at(static_cast<std::size_t>(oddity.kind)));
}

std::string rowText(const RowDifference& difference) {
  std::string text;
  const auto add = [&text](const std::string& part) {
    if (!part.empty()) text.append(text.empty() ? "" : " \u00B7 ").append(part);
  };
  for (const std::string_view column : mainColumns) add(valueOf(difference, column));
  if (difference.kind == RowDifference::Kind::removed || difference.kind == RowDifference::Kind::inserted) {
    const std::string before = valueOf(difference, "OldValue");
    const std::string after = valueOf(difference, "NewValue");
    if (!before.empty() || !after.empty()) add(std::string(trimBlanks(before + " \u2192 " + after)));
  }
  return text;
}

}  // namespace korvel::evidence
