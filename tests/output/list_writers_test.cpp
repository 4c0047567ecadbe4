#include "output/list_writers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "output/list_table.h"
#include "query/audit_record.h"
#include "tests/support/audit_rows.h"
#include "tests/support/filled_list.h"

namespace korvel::output {
namespace {

using test::written;

/// A format and what writes a list in it.
struct Writer {
  std::string_view name;
  std::function<void(const results::ResultList&, const ByteSink&)> write;
};
const std::vector<Writer>& writers() {
  static const std::vector<Writer> all = {
      {"table", writeTable}, {"text", writeText}, {"exchange", writeExchange}, {"csv", writeCsv}, {"json", writeJson}};
  return all;
}

/// Three records of a standard list, with all that is difficult for a writer.
results::ResultList standardList() {
  auto plain = test::auditRow("10", "CS");
  plain[1] = "2004-03-07 13:45:59.123";
  plain[16] = "only in full copies";
  auto hostile = test::auditRow(" 9 ", "RT");
  hostile[5] = "a,b|c;d";
  hostile[6] = "say \"no\"";
  hostile[9] = "line 1\r\nline 2";
  hostile[10] = "\x1B[2J\x1B]0;x\x07";
  hostile[16] = "=1+1";
  auto foreign = test::auditRow("100", "DC");
  foreign[5] = "ポンプ";
  foreign[6] = "größer e\u0301";
  foreign[9] = std::nullopt;
  foreign[10] = "";
  foreign[11] = "  blanks  ";
  foreign[17] = std::nullopt;
  auto list = test::filledList(test::auditFields(), {plain, hostile, foreign}, results::RowFilling::standard);
  query::setUpAuditColumns(list);
  list.sort();
  return list;
}

TEST(ListWriters, WriteTheKeptBytes) {
  for (const auto& [name, write] : writers()) {
    const std::string file = KORVEL_SOURCE_DIR "/tests/data/output/list." + std::string(name);
    EXPECT_EQ(written(write, standardList()), readFile(file)) << name;
  }
}

TEST(ListWriters, HandOverALongListInChunks) {
  std::vector<test::ScriptedRow> rows(20000, {"0123456789", "0123456789"});
  const auto list = test::filledList({{"A"}, {"B"}}, rows);
  for (const auto& [name, write] : writers()) {
    std::size_t largest = 0;
    std::size_t total = 0;
    write(list, [&](std::string_view chunk) {
      largest = std::max(largest, chunk.size());
      total += chunk.size();
    });
    EXPECT_GT(total, rows.size() * 20) << name;
    EXPECT_LT(largest, std::size_t{1} << 17U) << name;
  }
}

TEST(ListWriters, LetTheFailureOfTheSinkThrough) {
  for (const auto& [name, write] : writers())
    EXPECT_THROW(write(standardList(), [](std::string_view) { throw std::runtime_error("full"); }), std::runtime_error)
        << name;
}

}  // namespace
}  // namespace korvel::output
