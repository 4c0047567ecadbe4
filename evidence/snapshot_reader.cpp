#include "evidence/snapshot_reader.h"

#include <functional>
#include <string>
#include <utility>

#include "base/error.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "db/embedded/embedded_connection.h"
#include "db/embedded/snapshot_tables.h"
#include "evidence/row_digest.h"
#include "evidence/snapshot_failures.h"
#include "settings/string_table.h"

namespace korvel::evidence {

using settings::localizedError;

namespace {

class NamedValues final : public db::ResultSink {
 public:
  void beginResult(std::span<const db::Field> /*fields*/) override {}
  bool row(std::span<const db::Cell> cells) override {
    if (cells.size() == 2) values_.emplace_back(cells[0].text, cells[1].text);
    return true;
  }
  void endResult() override {}
  [[nodiscard]] std::string of(std::string_view name) const {
    for (const auto& [known, value] : values_)
      if (known == name) return value;
    return {};
  }

 private:
  std::vector<std::pair<std::string, std::string>> values_;
};

/// The digests as the engine gives a binary value: hexadecimal digits.
class StoredDigests final : public db::ResultSink {
 public:
  explicit StoredDigests(std::vector<Digest>& digests) : digests_(digests) {}
  void beginResult(std::span<const db::Field> /*fields*/) override {}
  bool row(std::span<const db::Cell> cells) override {
    // What is no digest any more is the digest of no row.
    digests_.push_back(digestFromHex(cells.front().text).value_or(Digest{}));
    return true;
  }
  void endResult() override {}

 private:
  std::vector<Digest>& digests_;
};

class DigestsOfRows final : public db::ResultSink {
 public:
  explicit DigestsOfRows(std::vector<Digest>& digests) : digests_(digests) {}
  void beginResult(std::span<const db::Field> fields) override { digester_.emplace(fields); }
  bool row(std::span<const db::Cell> cells) override {
    digests_.push_back(digester_->digestOf(cells));
    return true;
  }
  void endResult() override {}

 private:
  std::vector<Digest>& digests_;
  std::optional<RowDigester> digester_;
};

}  // namespace

std::optional<SnapshotFacts> snapshotFactsOf(db::Connection& database) {
  NamedValues tables;
  const std::string facts(db::snapshotFactsTable);
  database.execute("SELECT name, 'table' FROM sqlite_master WHERE name = '" + facts + "'", tables);
  if (tables.of(facts).empty()) return std::nullopt;
  NamedValues values;
  database.execute("SELECT Name, Value FROM " + facts, values);
  if (values.of("format") != db::snapshotFormat) return std::nullopt;
  const auto version = parseInteger<unsigned>(values.of("version"));
  if (version && *version > db::snapshotVersion)
    throw localizedError(unspecifiedFailure, "compare.newerVersion",
                         {std::to_string(*version), std::to_string(db::snapshotVersion)});
  auto whole = wholeFacts([&values](std::string_view name) { return values.of(name); });
  if (version != db::snapshotVersion || !whole) throw localizedError(unspecifiedFailure, "compare.notWhole");
  return whole;
}

std::unique_ptr<db::Connection> openSnapshot(const std::filesystem::path& file) {
  constexpr std::string_view ending = ".db";
  const std::string name = utf8FromPath(file.filename());
  if (!name.ends_with(ending)) throw localizedError(unspecifiedFailure, "compare.wrongName", {name});
  // Nobody writes to a snapshot: what is locked is not waited for.
  return db::openEmbedded(file.parent_path(), name.substr(0, name.size() - ending.size()), {.busyTimeout = {}});
}

SnapshotFacts factsOfSnapshot(const std::filesystem::path& file) {
  try {
    if (auto facts = snapshotFactsOf(*openSnapshot(file))) return std::move(*facts);
  } catch (const Error& failure) {
    throw unreadable(file, failure);
  }
  throw localizedError(unspecifiedFailure, "compare.noSnapshot", {utf8FromPath(file)});
}

SnapshotRows rowsOfSnapshot(const std::filesystem::path& file) {
  const auto snapshot = openSnapshot(file);
  if (!snapshotFactsOf(*snapshot)) throw localizedError(unspecifiedFailure, "compare.noSnapshot", {utf8FromPath(file)});
  SnapshotRows rows;
  StoredDigests stored(rows.recorded);
  snapshot->execute("SELECT Digest FROM " + std::string(db::snapshotDigestsTable) + " ORDER BY Place", stored);
  DigestsOfRows found(rows.found);
  db::AuditSelection all;
  all.dates = db::AuditSelection::Dates::all;
  all.numbers.emplace();
  snapshot->select(all, found);
  return rows;
}

}  // namespace korvel::evidence
