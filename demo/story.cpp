#include "demo/story.h"

#include <chrono>
#include <string_view>
#include <vector>

#include "demo/plant.h"

namespace korvel::demo {

namespace {

using namespace std::chrono_literals;
using std::chrono::March;
using std::chrono::October;

enum class Clock { winter, summer };

Moment at(std::chrono::year_month_day date, std::chrono::milliseconds time, Clock clock) {
  return momentOf({std::chrono::local_days{date} + time, clock == Clock::summer});
}

struct Actor {
  AuditRow::Text pc;
  AuditRow::Text osUser;
  AuditRow::Text login;
  AuditRow::Text fullName;
};

constexpr Actor nightOperator{"LEITWARTE-2", "DAIRY\\operator", "tgruber", "Toni Größer"};
/// No operator signed on: only the station's own account is known.
constexpr Actor unknownAtStation{"LEITWARTE-2", "DAIRY\\operator", std::nullopt, std::nullopt};
constexpr Actor engineer{"DAIRY-ES1", "DAIRY\\jhuebner", "jhuebner", "Jörg Hübner"};
constexpr Actor quality{"DAIRY-NB07", "DAIRY\\qvogt", "qvogt", "Dr. Ute Vogt"};

struct Deed {
  std::string_view auditType;
  std::string_view application;
  std::string_view table;
  std::string_view field;
  std::string_view event;
  std::string_view item;
};

constexpr Deed reading{"RT", "Tag Logging", "PDEValues", "Value", "INSERT", "LIC-1901"};
constexpr Deed alarm{"OA", "Operator Station", "Messages", "State", "OPERATOR", "MSG 19012"};
constexpr Deed alarmAgain{"OA", "Operator Station", "Messages", "State", "OPERATOR", "MSG 19013"};
constexpr Deed limit{"CS", "Alarm Editor", "vel_AlgLimits", "LimitHigh", "UPDATE", "TIC-1901"};
constexpr Deed signOn{"OA", "Operator Station", "Session", "User", "OPERATOR", "LEITWARTE-2"};
constexpr Deed checkOut{"DC", "Document Control", "Documents", "Version", "CHECK_OUT", "Alarm limits"};
constexpr Deed rollback{"DC", "Document Control", "Documents", "Version", "ROLLBACK", "Alarm limits"};
constexpr Deed checkIn{"DC", "Document Control", "Documents", "Version", "CHECK_IN", "Alarm limits"};
constexpr Deed auditQuery{"AU", "KorvelAudit", "Korvel_Audit_Settings", "RetentionDays", "UPDATE", "KorvelAudit@QS"};

StoryRow tell(Moment moment, const Deed& deed, const Actor& actor, AuditRow::Text before, AuditRow::Text after,
              AuditRow::Text comment = std::nullopt) {
  const Project& project = singleUserPlant().projects.front();
  const bool engineered = deed.auditType == "CS" || deed.auditType == "DC";
  AuditRow row;
  row.projectGuid = project.guid;
  row.databaseName = engineered ? project.engineeringDatabase : project.runtimeDatabase;
  row.applicationName = deed.application;
  row.tableName = deed.table;
  row.fieldName = deed.field;
  row.eventType = deed.event;
  row.eventItem = deed.item;
  row.oldValue = before;
  row.newValue = after;
  row.pcName = actor.pc;
  row.osUser = actor.osUser;
  row.appUser = actor.login;
  row.userName = actor.fullName;
  row.auditType = deed.auditType;
  row.comments = comment;
  return {moment, row};
}

std::vector<StoryRow> makeStory() {
  constexpr auto clocksGoBack = 2003y / October / 26;
  constexpr auto theNight = 2004y / March / 7;
  constexpr auto theMorningAfter = 2004y / March / 8;
  return {
      tell(at(clocksGoBack, 2h + 15min, Clock::summer), reading, nightOperator, {}, "61.5 %", "Ablesung von Hand"),
      tell(at(clocksGoBack, 2h + 45min, Clock::summer), reading, nightOperator, {}, "60.8 %", "Ablesung von Hand"),
      tell(at(clocksGoBack, 2h + 15min, Clock::winter), reading, nightOperator, {}, "60.1 %",
           "Ablesung von Hand (Winterzeit)"),
      tell(at(clocksGoBack, 2h + 45min, Clock::winter), reading, nightOperator, {}, "59.6 %",
           "Ablesung von Hand (Winterzeit)"),

      tell(at(theNight, 2h + 41min + 7s + 310ms, Clock::winter), alarm, nightOperator, "incoming", "acknowledged"),
      tell(at(theNight, 2h + 52min + 55s + 120ms, Clock::winter), alarmAgain, nightOperator, "incoming",
           "acknowledged"),
      tell(at(theNight, 2h + 58min + 20s + 5ms, Clock::winter), signOn, nightOperator, "tgruber", ""),
      tell(at(theNight, 3h + 2min + 44s + 871ms, Clock::winter), limit, unknownAtStation, "78.0 °C", "95.0 °C", ""),
      tell(at(theNight, 5h + 47min + 31s + 240ms, Clock::winter), limit, unknownAtStation, "95.0 °C", "78.0 °C", ""),
      tell(at(theNight, 5h + 49min + 2s + 16ms, Clock::winter), signOn, nightOperator, "", "tgruber"),
      tell(at(theMorningAfter, 8h + 12min + 9s + 400ms, Clock::winter), auditQuery, quality, "365", "3650",
           "Grenzwert TIC-1901 um 3 Uhr geändert – wer war das? Bitte klären!"),
      tell(at(theMorningAfter, 9h + 30min + 48s + 90ms, Clock::winter), checkOut, engineer, "2.3", "2.3"),
      tell(at(theMorningAfter, 9h + 41min + 15s + 733ms, Clock::winter), limit, engineer, "78.0 °C", "76.5 °C",
           "Pasteurisierung: Grenze gemäß Anweisung QS-2004-011, nur noch mit Freigabe zu ändern"),
      tell(at(theMorningAfter, 9h + 44min + 3s + 608ms, Clock::winter), rollback, engineer, "2.3", "2.2",
           "Stand vor der Nacht wiederhergestellt"),
      tell(at(theMorningAfter, 10h + 5min + 59s + 957ms, Clock::winter), checkIn, engineer, "2.2", "2.4"),
  };
}

}  // namespace

std::span<const StoryRow> dairyStory() {
  static const std::vector<StoryRow> story = makeStory();
  return story;
}

}  // namespace korvel::demo
