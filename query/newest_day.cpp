#include "query/newest_day.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "query/audit_record.h"
#include "query/date_range.h"

namespace korvel::query {
namespace {

constexpr std::string_view dateColumn = "DateTime";
constexpr std::size_t dayLength = std::string_view("2004-03-07").size();

}  // namespace

std::optional<std::chrono::year_month_day> newestDay(const results::ResultList& list) {
  const auto& columns = auditColumns();
  const auto column =
      std::find_if(columns.begin(), columns.end(), [](const AuditColumn& each) { return each.name == dateColumn; });
  std::optional<std::chrono::year_month_day> newest;
  std::string newestText;
  list.visitTexts({static_cast<std::size_t>(column - columns.begin())}, [&](std::string_view text) {
    const std::string_view written = text.substr(0, dayLength);
    // As texts such days stand in their order; most rows need no look at what they say.
    if (written <= newestText) return;
    const auto day = parseDay(written);
    if (!day) return;
    newest = day;
    newestText = written;
  });
  return newest;
}

}  // namespace korvel::query
