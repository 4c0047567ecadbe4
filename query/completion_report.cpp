#include "query/completion_report.h"

#include <array>

#include "query/filter_tree.h"

namespace korvel::query {

std::vector<std::string> completionTexts(const CompletionReport& report, std::size_t records,
                                         const settings::LanguageOffset& language,
                                         const std::function<std::string(std::size_t)>& count) {
  const auto text = [&](std::string_view key, const std::vector<std::string>& values = {}) {
    return settings::filled(settings::ownText(key, language), values);
  };
  const char* const summary = !report.isComplete() ? "complete.not"
                              : report.slices <= 1 ? "complete.wholeOfOne"
                                                   : "complete.whole";
  std::vector<std::string> texts{text(summary, {count(records), count(report.slices)})};
  if (report.endedEarly) texts.push_back(text("complete.stopped"));
  constexpr std::size_t namedParts = 10;
  for (const IncompletePart& part : report.incomplete) {
    if (texts.size() > namedParts) {
      texts.push_back(text("complete.more", {count(report.incomplete.size() - namedParts)}));
      break;
    }
    const std::string category = part.category ? categoryCaption(*part.category) : text("complete.allCategories");
    constexpr std::array keys{"complete.minute", "complete.ofAllDates", "complete.undated"};
    texts.push_back(text(
        keys.at(static_cast<std::size_t>(part.kind)),
        {category, minuteText(part.minute), count(db::rowLimitPerResult), settings::describe(part.reason, language)}));
  }
  if (report.changedEntryCount > 0) {
    std::string named;
    for (const std::string& entry : report.changedEntries) named.append(named.empty() ? "" : ", ").append(entry);
    if (report.changedEntryCount > report.changedEntries.size()) named += ", ...";
    texts.push_back(text("complete.changed", {count(report.changedEntryCount), named}));
  }
  return texts;
}

}  // namespace korvel::query
