// The standard query over the wire, from the button to sorted lists, against a bare ODBC loop over the same answer.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <limits>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "bench/audit_file.h"
#include "bench/least.h"
#include "db/open_connection.h"
#include "query/standard_query.h"
#include "tests/odbc/access_without_domain.h"
#include "tests/support/temporary_folder.h"
#include "tests/tds_server/bare_odbc.h"
#include "tests/tds_server/server.h"

namespace korvel::bench {
namespace {

constexpr std::size_t wantedRows = 45000;

/// The columns as the plant software's table declares them on a server.
std::vector<test::tds::Column> serverColumns() {
  std::vector<test::tds::Column> columns;
  for (const query::AuditColumn& column : query::auditColumns())
    columns.emplace_back(std::string{column.name}, column.name == "Nr"         ? "int"
                                                   : column.name == "DateTime" ? "datetime"
                                                                               : "nvarchar(255)");
  return columns;
}

/// Turns rows of a demo plant into a server's answer.
class AnswerSink final : public db::ResultSink {
 public:
  void beginResult(std::span<const db::Field>) override { answer.procedure().result(serverColumns()); }
  bool row(std::span<const db::Cell> cells) override {
    std::vector<test::tds::Value> values;
    for (const db::Cell& cell : cells) values.push_back(valueOf(cell, values.empty()));
    answer.row(values);
    return ++rows_ < wantedRows;
  }
  void endResult() override {}

  test::tds::Answer answer;

 private:
  static test::tds::Value valueOf(const db::Cell& cell, bool isNumber) {
    if (cell.isNull) return test::tds::null;
    if (isNumber) return std::stoll(std::string(cell.text));
    return cell.text;
  }

  std::size_t rows_ = 0;
};

test::tds::Answer demoAnswer() {
  const AuditFolder folder{wantedRows};
  AnswerSink sink;
  db::openConnection(folder.connectionString())->execute("SELECT * FROM Korvel_Audit_Trails", sink);
  return sink.answer;
}

/// The minimum processor time of several runs, of all threads of the process: less affected by other work.
struct LeastWork {
  Least clock;
  double processorSeconds = std::numeric_limits<double>::infinity();

  template <typename Work>
  double measure(Work work) {
    const std::clock_t before = std::clock();
    const double taken = clock.measure(work);
    processorSeconds = std::min(processorSeconds, static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC);
    return taken;
  }
};

void standardQueryOverTheWire(benchmark::State& state) {
  const auto driver = test::installedFreeTds();
  if (!driver) return state.SkipWithError("the FreeTDS ODBC driver is not installed");
  query::FilterTree tree;
  tree.selectAll();
  const query::DateRange noRange;
  const std::string call = query::queryAuditsText(tree.flags(), noRange);

  test::tds::TdsServer tdsServer;
  tdsServer.answer(call, demoAnswer());
  db::odbc::ServerAccess access = test::accessWithoutDomain();
  access.options.trustServerCertificate = true;
  const std::string server = "localhost," + std::to_string(tdsServer.port());
  const std::string bareText =
      test::freeTdsString(*driver, tdsServer.port(), "Encryption=require;UID=reader;PWD=secret;");

  LeastWork bareTime;
  LeastWork queryTime;
  for (auto _ : state) {
    // Both sides log in themselves, as each query does, and both are encrypted.
    std::size_t bareCells = 0;
    bareTime.measure([&] {
      test::BareOdbc bare;
      if (bare.connect(bareText).empty()) bareCells = bare.executeAndCount(call);
    });
    query::ResultLists lists = query::makeResultLists();
    query::QueryReport report;
    state.SetIterationTime(queryTime.measure([&] {
      report = query::runStandardQuery(
          {tree, noRange, {}},
          [&](std::string_view, const std::stop_token&) {
            return db::odbc::openServer(server, "Korvel_Audit", access);
          },
          lists, 0);
    }));
    if (report.outcome != query::QueryOutcome::filled || lists[0].rowCount() != wantedRows ||
        bareCells != lists[0].rowCount() * query::auditColumns().size())
      return state.SkipWithError("not the 45,000 rows that were to be measured");
  }
  state.counters["bare_ms"] = bareTime.clock.seconds * 1000;
  state.counters["query_ms"] = queryTime.clock.seconds * 1000;
  state.counters["query_to_bare"] = queryTime.clock.seconds / bareTime.clock.seconds;
  state.counters["work_to_bare"] = queryTime.processorSeconds / bareTime.processorSeconds;
}
BENCHMARK(standardQueryOverTheWire)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(60);

/// A login with a checked certificate: the driver alone, the product, and all steps of the way before the driver, as
/// `check` takes them.
void loginOverTheWire(benchmark::State& state) {
  const auto driver = test::installedFreeTds();
  if (!driver) return state.SkipWithError("the FreeTDS ODBC driver is not installed");
  const test::TemporaryFolder folder;
  test::tds::TdsServer tdsServer;
  writeFileAtomically(folder / "authorities.pem", tdsServer.certificatePem());
  db::odbc::ServerAccess access = test::accessWithoutDomain();
  access.options.certificateAuthorities = (folder / "authorities.pem").string();
  const std::string server = "localhost," + std::to_string(tdsServer.port());
  const std::string bareText =
      test::freeTdsString(*driver, tdsServer.port(), "Encryption=require;UID=reader;PWD=secret;");
  Least bareTime;
  Least time;
  Least stepTime;
  for (auto _ : state) {
    bareTime.measure([&] {
      test::BareOdbc bare;
      if (!bare.connect(bareText).empty()) state.SkipWithError("no login");
    });
    state.SetIterationTime(time.measure([&] { (void)db::odbc::openServer(server, "Korvel_Audit", access); }));
    stepTime.measure([&] {
      db::odbc::ServerConnector connector(server, access);
      connector.resolveServer();
      connector.connectPort();
      connector.exchangePreLogin();
      connector.checkEncryption();
      connector.acquireTicket();
      (void)connector.logIn("Korvel_Audit");
    });
  }
  state.counters["bare_ms"] = bareTime.seconds * 1000;
  state.counters["login_ms"] = time.seconds * 1000;
  state.counters["all_steps_ms"] = stepTime.seconds * 1000;
}
BENCHMARK(loginOverTheWire)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

}  // namespace
}  // namespace korvel::bench
