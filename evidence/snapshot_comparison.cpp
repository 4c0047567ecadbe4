#include "evidence/snapshot_comparison.h"

#include <algorithm>
#include <chrono>
#include <system_error>

#include "base/error.h"
#include "base/files.h"
#include "base/paths.h"
#include "db/embedded/embedded_folder.h"
#include "evidence/bag.h"
#include "evidence/origin.h"
#include "evidence/snapshot_failures.h"
#include "evidence/snapshot_reader.h"
#include "evidence/verification.h"
#include "settings/string_table.h"

namespace korvel::evidence {

namespace fs = std::filesystem;

fs::path snapshotNamed(const fs::path& named) {
  std::error_code failure;
  if (!fs::is_directory(files::status(named, failure))) return named;
  std::vector<fs::path> found;
  for (const fs::path& folder : {named, named / payloadFolder}) {
    if (!fs::is_directory(files::status(folder, failure))) continue;
    for (const fs::path& file : files::listFolder(folder, failure))
      if (utf8FromPath(file.filename()).ends_with(".db") && db::isDatabaseFile(file)) found.push_back(file);
  }
  if (found.size() == 1) return found.front();
  throw settings::localizedError(unspecifiedFailure, found.empty() ? "compare.noneInFolder" : "compare.severalInFolder",
                                 {utf8FromPath(named)});
}

ComparedSnapshot compareWithSnapshot(const ComparisonOrder& order, const ComparisonWatch& watch) {
  const fs::path& file = order.snapshot;
  ComparedSnapshot compared;
  compared.begun = localTimeText(std::chrono::system_clock::now());
  compared.snapshot = factsOfSnapshot(file);
  compared.server = order.server;
  compared.database = order.database;
  const auto tell = [&watch](const ComparisonState& state) {
    if (watch) watch(state);
  };
  std::error_code ignored;
  const std::uint64_t bytes = files::size(file, ignored);
  compared.snapshotFindings = verifyOutput(file, [&](std::uint64_t done) { tell({true, done, bytes}); }).findings;

  db::AuditSelection selection;
  selection.dates = db::AuditSelection::Dates::all;
  selection.numbers.emplace();
  RowStream before([file, selection](db::ResultSink& sink, const std::stop_token& /*stop*/) {
    try {
      openSnapshot(file)->select(selection, sink);
    } catch (const Error& failure) {
      throw unreadable(file, failure);
    }
  });
  if (!compared.snapshot.source.from.empty()) {
    selection.dates = db::AuditSelection::Dates::within;
    selection.from = compared.snapshot.source.from;
    selection.to = compared.snapshot.source.to;
  }
  // Read when the stream has ended.
  db::ServerIdentity identity;
  RowStream now([&order, &identity, selection](db::ResultSink& sink, const std::stop_token& stop) {
    const auto connection = order.connect(order.connectionString, stop);
    identity = connection->identity();
    connection->select(selection, sink);
  });
  const std::uint64_t expected = 2 * compared.snapshot.rows;
  compared.found = compareTrails(before, now, compared.snapshot.last, [&](std::uint64_t rows) {
    tell({false, rows, std::max(rows, expected)});
  });
  compared.engine = identity.product;
  compared.login = identity.login;
  return compared;
}

}  // namespace korvel::evidence
