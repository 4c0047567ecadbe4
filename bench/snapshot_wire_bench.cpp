// A snapshot of a million records of a server, against freebcp, which copies the same table into a text file.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "base/paths.h"
#include "bench/audit_file.h"
#include "bench/least.h"
#include "db/open_connection.h"
#include "evidence/snapshot.h"
#include "query/audit_record.h"
#include "tests/odbc/access_without_domain.h"
#include "tests/support/temporary_folder.h"
#include "tests/tds_server/server.h"

namespace korvel::bench {
namespace {

using test::tds::Answer;

std::vector<test::tds::Column> serverColumns() {
  std::vector<test::tds::Column> columns;
  for (const query::AuditColumn& column : query::auditColumns())
    columns.emplace_back(std::string{column.name}, column.name == "Nr"         ? "int"
                                                   : column.name == "DateTime" ? "datetime"
                                                                               : "nvarchar(255)");
  return columns;
}

/// Turns the rows of a demo plant into a server's answer.
class AnswerSink final : public db::ResultSink {
 public:
  void beginResult(std::span<const db::Field>) override { answer.result(serverColumns()); }
  bool row(std::span<const db::Cell> cells) override {
    values_.clear();
    for (const db::Cell& cell : cells)
      values_.push_back(cell.isNull       ? test::tds::Value(test::tds::null)
                        : values_.empty() ? test::tds::Value(std::stoll(std::string(cell.text)))
                                          : test::tds::Value(cell.text));
    answer.row(values_);
    return true;
  }
  void endResult() override {}

  Answer answer;

 private:
  std::vector<test::tds::Value> values_;
};

/// Answers as a server that has the records in its table.
test::tds::Answer answerOf(const std::string& text, const Answer& rows) {
  const auto has = [&text](const char* part) { return text.find(part) != std::string::npos; };
  if (has("count")) {
    const int count = static_cast<int>(manyRows);
    return Answer().result({{"rows", "int"}, {"least", "int"}, {"greatest", "int"}}).row({count, 1, count});
  }
  if (has("FMTONLY") || has("fmtonly")) return Answer().result(serverColumns());
  if (has("Korvel_Audit_Trails")) return rows;
  return {};
}

bool succeeds(const std::string& command) {
  return std::system(command.c_str()) == 0;  // NOLINT(concurrency-mt-unsafe): no other thread uses the environment
}

void snapshotOverTheWire(benchmark::State& state) {
  if (!test::installedFreeTds()) return state.SkipWithError("the FreeTDS ODBC driver is not installed");
  if (!succeeds("command -v freebcp > /dev/null"))
    return state.SkipWithError("freebcp is not installed (package freetds-bin)");
  AnswerSink sink;
  db::openConnection(millionRecords().connectionString())
      ->execute("SELECT * FROM Korvel_Audit_Trails ORDER BY Nr", sink);
  test::tds::TdsServer server;
  server.answerOthers([&sink](const test::tds::Command& command) { return answerOf(command.text, sink.answer); });
  const test::TemporaryFolder folder;
  std::ofstream(folder / "freetds.conf") << "[bench]\nhost = 127.0.0.1\nport = " << server.port()
                                         << "\ntds version = 7.4\nencryption = require\nclient charset = UTF-8\n";
  db::odbc::ServerAccess access = test::accessWithoutDomain();
  access.options.trustServerCertificate = true;
  evidence::SnapshotOrder order;
  order.source = {"localhost," + std::to_string(server.port()), "Korvel_Audit", "", ""};
  order.connect = [&](std::string_view, const std::stop_token& stop) {
    db::odbc::ServerAccess own = access;
    own.stop = stop;
    return db::odbc::openServer(order.source.server, "Korvel_Audit", own);
  };
  order.program = "bench";
  order.programVersion = "1";
  const std::string copy = utf8FromPath(folder / "copy.txt");
  const std::string freebcp = "FREETDSCONF='" + utf8FromPath(folder / "freetds.conf") +
                              "' freebcp Korvel_Audit..Korvel_Audit_Trails out '" + copy +
                              "' -S bench -U reader -P secret -c > '" + utf8FromPath(folder / "said.txt") + "' 2>&1";
  Least taken;
  Least copied;
  int run = 0;
  for (auto _ : state) {
    order.folder = folder / std::to_string(run++);
    std::uint64_t rows = 0;
    state.SetIterationTime(taken.measure([&] { rows = evidence::takeSnapshot(order).facts.rows; }));
    std::filesystem::remove_all(order.folder);
    bool isCopied = false;
    copied.measure([&] { isCopied = succeeds(freebcp); });
    std::ifstream lines(copy);
    std::uint64_t copiedRows = 0;
    for (std::string line; std::getline(lines, line);) ++copiedRows;
    if (rows != manyRows || !isCopied || copiedRows < manyRows)
      return state.SkipWithError("not the rows that were to be measured");
    std::filesystem::remove(copy);
  }
  state.counters["snapshot_s"] = taken.seconds;
  state.counters["freebcp_s"] = copied.seconds;
  state.counters["times_freebcp"] = taken.seconds / copied.seconds;
}
BENCHMARK(snapshotOverTheWire)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace korvel::bench
