// Output of lists: the text export of a million records against sqlite3's CSV, reports on pages, workbooks.

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "base/atomic_file.h"
#include "bench/audit_file.h"
#include "bench/least.h"
#include "bench/memory.h"
#include "bench/offscreen.h"
#include "bench/stored_answer.h"
#include "db/open_connection.h"
#include "output/pages/pdf.h"
#include "output/report_source.h"
#include "output/text_export.h"
#include "output/workbook.h"
#include "query/audit_record.h"

namespace korvel::bench {
namespace {

results::ResultList listOf(const AuditFolder& folder, std::size_t rows) {
  results::ResultList list(results::RowFilling::standard);
  query::setUpAuditColumns(list);
  const auto store = storedAnswer(*db::openConnection(folder.connectionString()),
                                  "Select * from Korvel_Audit_Trails where Nr <= " + std::to_string(rows));
  std::vector<results::RowId> ids;
  for (std::uint32_t row = 0; row < store->rowCount(); ++row) ids.push_back({row});
  list.setRows(store, std::move(ids));
  return list;
}

std::filesystem::path outputBeside(const AuditFolder& folder, const char* name) {
  return folder.file().parent_path() / name;
}

/// A list on paper, with a head, as the viewer prints it.
void pagesOfReport(benchmark::State& state) {
  const auto rows = static_cast<std::size_t>(state.range(0));
  const AuditFolder& folder = millionRecords();
  const results::ResultList list = listOf(folder, rows);
  const output::ReportList reported{"ALL Audits", &list};
  output::pages::PageTexts texts;
  for (const char* name : {"Audit trail", "Asked for", "Date range", "Filters", "Sorted by", "Records"})
    texts.head.facts.push_back({name, "some words about the rows that are on these pages"});
  texts.head.warning = "INCOMPLETE: the limit of 5,000 was reached in: ALL Audits";
  texts.head.source = "(embedded), Korvel_Audit";
  texts.head.origin = "Printed 2026-11-22 16:05:03 +01:00";
  static_cast<void>(offscreenApplication<QGuiApplication>());
  Least time;
  int pages = 0;
  forgetPeak();
  const double before = residentMegabytes();
  for (auto _ : state) {
    state.SetIterationTime(time.measure([&] {
      output::ListSource source({&reported, 1}, {});
      AtomicFile pdf(outputBeside(folder, "report.pdf"));
      pages = output::pages::writePdf(source, texts, [&](std::string_view bytes) { pdf.write(bytes); }).pages;
      pdf.commit();
    }));
  }
  state.counters["pages"] = pages;
  state.counters["MB_before"] = before;
  state.counters["MB_peak"] = peakMegabytes();
}
BENCHMARK(pagesOfReport)->Arg(5000)->Arg(45000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void workbook(benchmark::State& state) {
  const AuditFolder& folder = millionRecords();
  const results::ResultList list = listOf(folder, static_cast<std::size_t>(state.range(0)));
  Least time;
  for (auto _ : state)
    state.SetIterationTime(
        time.measure([&] { output::writeWorkbook(list, "ALL Audits", outputBeside(folder, "book.xlsx")); }));
}
BENCHMARK(workbook)->Arg(45000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

void textExport(benchmark::State& state) {
  const AuditFolder& folder = millionRecords();
  static const results::ResultList list = listOf(folder, manyRows);
  const auto ours = outputBeside(folder, "velview.txt");
  const std::string theirs = "sqlite3 -csv '" + folder.file().string() + "' 'SELECT * FROM Korvel_Audit_Trails' > '" +
                             outputBeside(folder, "theirs.csv").string() + "'";
  Least our;
  Least their;
  for (auto _ : state) {
    their.measure([&] {
      if (std::system(theirs.c_str()) != 0) state.SkipWithError("sqlite3 failed");
    });
    state.SetIterationTime(our.measure([&] { output::writeTextExport(list, ours); }));
  }
  state.counters["sqlite3_csv_ms"] = their.seconds * 1000;
  state.counters["export_ms"] = our.seconds * 1000;
  state.counters["export_to_sqlite3"] = our.seconds / their.seconds;
}
BENCHMARK(textExport)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace korvel::bench
