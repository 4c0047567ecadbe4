#include "db/procedure/audit_conditions.h"

namespace korvel::db {
namespace {

using enum Match;

constexpr Term configuration{"AuditType", equals, "CS"};
constexpr Term runtime{"AuditType", equals, "RT"};
constexpr Term documentControl{"AuditType", equals, "DC"};
constexpr Term userArchiveTable{"TableName", beginsWith, "UA"};

constexpr std::array korvelExplorer = {configuration};
constexpr std::array alarmLogging = {configuration, Term{"TableName", beginsWith, "vel_Alg"}};
constexpr std::array messageSystem = {configuration, Term{"TableName", beginsWith, "MS"}};
constexpr std::array tagLogging = {Term{"TableName", beginsWith, "PDE"}};  // of every audit type: deliberate
constexpr std::array userArchiveConfiguration = {configuration, userArchiveTable};
constexpr std::array customActions = {Term{"AuditType", equals, "OA"}};
constexpr std::array userArchiveRuntime = {runtime, userArchiveTable};
constexpr std::array checkIn = {documentControl, Term{"EventType", equals, "CHECK_IN"}};
constexpr std::array checkOut = {documentControl, Term{"EventType", equals, "CHECK_OUT"}};
constexpr std::array rollback = {documentControl, Term{"EventType", equals, "ROLLBACK"}};
constexpr std::array restore = {documentControl, Term{"EventType", equals, "RESTORE"}};

template <std::size_t count>
struct Alternatives {
  std::array<Conjunction, count> list;
};
constexpr Alternatives<1> ofKorvelExplorer{{korvelExplorer}};
constexpr Alternatives<2> ofAlarms{{alarmLogging, messageSystem}};
constexpr Alternatives<1> ofTagLogging{{tagLogging}};
constexpr Alternatives<1> ofUAcs{{userArchiveConfiguration}};
constexpr Alternatives<1> ofCustomActions{{customActions}};
constexpr Alternatives<1> ofUArt{{userArchiveRuntime}};
constexpr Alternatives<1> ofCheckIn{{checkIn}};
constexpr Alternatives<1> ofCheckOut{{checkOut}};
constexpr Alternatives<1> ofRollback{{rollback}};
constexpr Alternatives<1> ofRestore{{restore}};

constexpr std::array<CategoryCondition, categoryCount> conditions = {{
    {"KorvelExplorer", ofKorvelExplorer.list},
    {"Alarms", ofAlarms.list},
    {"TagLogging", ofTagLogging.list},
    {"UAcs", ofUAcs.list},
    {"CustomActions", ofCustomActions.list},
    {"UArt", ofUArt.list},
    {"CheckIN", ofCheckIn.list},
    {"CheckOUT", ofCheckOut.list},
    {"Rollback", ofRollback.list},
    {"Restore", ofRestore.list},
}};

}  // namespace

const std::array<CategoryCondition, categoryCount>& categoryConditions() noexcept {
  return conditions;
}

namespace {

std::string termText(const Term& term) {
  std::string text(term.column);
  text += term.match == Match::equals ? " = '" : " like '";
  text += term.value;
  text += term.match == Match::equals ? "'" : "%'";
  return text;
}

}  // namespace

std::string conditionText(const CategoryCondition& category, std::string_view dates) {
  std::string text;
  for (const Conjunction conjunction : category.alternatives) {
    if (!text.empty()) text += " or ";
    std::string_view joint;
    for (const Term& term : conjunction) {
      text += joint;
      text += termText(term);
      joint = " and ";
    }
  }
  if (!dates.empty()) text.append(" and ").append(dates);
  return text;
}

}  // namespace korvel::db
