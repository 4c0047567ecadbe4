#include "db/connection_string.h"
#include "query/standard_query.h"

#include <gtest/gtest.h>

#include "db/connection_state.h"
#include "db/open_connection.h"
#include "settings/string_table.h"
#include "tests/db/audit_database.h"
#include "tests/support/temporary_folder.h"

namespace korvel::query {
namespace {

using namespace std::chrono;

constexpr DateRange oneDay{2004y / 3 / 7, 2004y / 3 / 7, true};

CategoryFlags flagsOf(const char* bits) {
  CategoryFlags flags;
  for (std::size_t i = 0; i < flags.size(); ++i) flags[i] = bits[i] == '1';
  return flags;
}

TEST(AlarmDates, ComeFromAllDatesWithARangeAndTheAlarmCategory) {
  EXPECT_TRUE(alarmsComeFromAllDates(flagsOf("0100000000"), oneDay));
  EXPECT_TRUE(alarmsComeFromAllDates(flagsOf("1111111110"), oneDay));
  EXPECT_FALSE(alarmsComeFromAllDates(flagsOf("1011111111"), oneDay));
  EXPECT_FALSE(alarmsComeFromAllDates(flagsOf("1111111111"), oneDay));
  EXPECT_FALSE(alarmsComeFromAllDates(flagsOf("0100000000"), {2004y / 3 / 7, 2004y / 3 / 7, false}));
}

/// The note agrees with the engine's answer for every choice of categories.
TEST(AlarmDates, AgreeWithTheEngineForEveryChoiceOfCategories) {
  const test::TemporaryFolder folder;
  test::writeAuditDatabase(folder / "Korvel_Audit.db", {{1, "2001-01-01 12:00:00", "vel_AlgMessages", "CHANGE", "CS"},
                                                        {2, "2004-03-07 12:00:00", "vel_AlgMessages", "CHANGE", "CS"},
                                                        {3, "2001-01-01 12:00:00", "MSAlarm", "CHANGE", "CS"}});
  const auto connection = db::openConnection(db::buildConnectionString(folder.path().string(), "Korvel_Audit"));
  struct Sink final : db::ResultSink {
    void beginResult(std::span<const db::Field>) override {}
    bool row(std::span<const db::Cell> cells) override {
      outside = outside || cells[1].text.starts_with("2001");
      return true;
    }
    void endResult() override {}
    bool outside = false;
  };
  std::size_t withOlderRows = 0;
  for (unsigned long bits = 1; bits < 1UL << db::categoryCount; ++bits) {
    const CategoryFlags flags(bits);
    Sink sink;
    connection->execute(queryAuditsText(flags, oneDay), sink);
    EXPECT_EQ(alarmsComeFromAllDates(flags, oneDay), sink.outside) << flags;
    withOlderRows += sink.outside ? 1 : 0;
  }
  EXPECT_EQ(withOlderRows, 511U);
}

TEST(AlarmDates, AreReportedInEveryLanguage) {
  EXPECT_NE(settings::ownText(alarmsOfAllDatesText, settings::LanguageOffset()), "");
  EXPECT_NE(settings::ownText(alarmsOfAllDatesText, settings::LanguageOffset("30000")),
            settings::ownText(alarmsOfAllDatesText, settings::LanguageOffset()));
}

}  // namespace
}  // namespace korvel::query
