#include "evidence/snapshot.h"

#include <chrono>
#include <limits>
#include <system_error>
#include <utility>
#include <vector>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/files.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "db/embedded/embedded_folder.h"
#include "db/embedded/snapshot_tables.h"
#include "evidence/bag.h"
#include "evidence/file_sum.h"
#include "evidence/manifest.h"
#include "evidence/origin.h"
#include "evidence/proven_file.h"
#include "evidence/row_stream.h"
#include "evidence/snapshot_failures.h"
#include "evidence/snapshot_reader.h"
#include "evidence/verification.h"
#include "settings/string_table.h"

namespace korvel::evidence {

namespace fs = std::filesystem;
using settings::localizedError;

namespace {

std::string now() {
  return localTimeText(std::chrono::system_clock::now());
}

/// Number of rows, and the greatest entry number.
struct Extent {
  std::uint64_t rows = 0;
  std::optional<std::int64_t> last;
};

/// Where writing fails, it is said of this file, in words.
template <typename Step>
void writing(const fs::path& file, const Step& step) {
  try {
    step();
  } catch (const Error& failure) {
    throw unwritable(file, failure);
  }
}

/// One run over a trail.
class Taking {
 public:
  Taking(const SnapshotOrder& order, const SnapshotProgress& progress)
      : order_(order),
        progress_(progress),
        folder_(order.asBag ? order.folder / payloadFolder : order.folder),
        target_(db::embeddedDatabaseFile(folder_, order.source.database)),
        unfinished_(unfinishedSnapshot(order)) {}

  TakenSnapshot take() {
    makeFolder();
    std::error_code ignored;
    if (fs::exists(files::symlinkStatus(target_, ignored))) {
      completeBag();
      return std::move(taken_);
    }
    {
      SnapshotFile file(unfinished_, order_.source);
      taken_.continuedAt = file.rows();
      if (file.isComplete()) {
        manifest_.rows.columns = file.columns();
        taken_.facts = file.completeFacts();
      } else {
        copy(file);
        end(file);
      }
    }
    publish();
    taken_.file = target_;
    return std::move(taken_);
  }

 private:
  void makeFolder() const {
    std::error_code failure;
    files::createDirectories(folder_, failure);
    if (!failure) return;
    const int number = systemErrorNumber(failure);
    if (isSystemError(number, std::errc::permission_denied) || isSystemError(number, std::errc::read_only_file_system))
      throw unwritable(folder_, number, {});
    throw localizedError(number, "snapshot.folderNotMade", {utf8FromPath(folder_), systemMessage(number)});
  }

  /// What an earlier run of the same order left whole, without its tag files, becomes a bag; nothing else is there that
  /// could be replaced.
  void completeBag() {
    const auto refuse = [this] {
      throw localizedError(systemErrorNumber(std::errc::file_exists), "snapshot.exists", {utf8FromPath(target_)});
    };
    if (!order_.asBag || isBagWith(order_.folder, target_)) refuse();
    const auto facts = snapshotFactsOf(*openSnapshot(target_));
    if (!facts || facts->source != order_.source) return refuse();
    const Verification verified = verifyOutput(target_, [this](std::uint64_t /*bytes*/) { whileWaiting()(); });
    if (!verified.isUnchanged())
      throw localizedError(unspecifiedFailure, "snapshot.bagNotMade",
                           {utf8FromPath(target_), verified.findings.front()});
    taken_ = {target_, *facts, facts->rows};
    for (const fs::path& file : {target_, manifestOf(target_), sumsOf(target_)}) makeReadOnly(file);
    writeTags();
  }

  void writeTags() const {
    writing(order_.folder / "bagit.txt", [this] {
      writeBag(order_.folder,
               "Audit trail of " + order_.source.database + " on " + order_.source.server + ", " + taken_.facts.begun);
    });
  }

  [[nodiscard]] db::AuditSelection selection() const {
    db::AuditSelection selection;
    selection.dates = order_.source.from.empty() ? db::AuditSelection::Dates::all : db::AuditSelection::Dates::within;
    selection.from = order_.source.from;
    selection.to = order_.source.to;
    selection.numbers.emplace();
    return selection;
  }

  /// Number of rows, and the greatest number, up to an entry number.
  [[nodiscard]] Extent extentUpTo(std::optional<std::int64_t> last) {
    db::AuditSelection counted = selection();
    counted.columns = db::AuditSelection::Columns::extent;
    counted.numbers->last = last;
    RowStream answer([this, counted](db::ResultSink& sink, const std::stop_token& stop) {
      const auto connection = order_.connect(order_.connectionString, stop);
      const db::ServerIdentity identity = connection->identity();
      taken_.facts.engine = identity.product;
      taken_.facts.login = identity.login;
      connection->select(counted, sink);
    });
    const query::BufferedRows* const rows = answer.next(whileWaiting());
    constexpr std::size_t width = 3;
    if (rows == nullptr || rows->rowCount() != 1 || rows->fields().size() != width)
      throw localizedError(unspecifiedFailure, "snapshot.noCount");
    const auto cells = rows->row(0);
    const db::Cell& greatest = cells[2];
    const Extent extent{parseInteger<std::uint64_t>(cells[0].text).value_or(0),
                        greatest.isNull ? std::nullopt : parseInteger<std::int64_t>(greatest.text)};
    if (!greatest.isNull && !extent.last)
      throw localizedError(unspecifiedFailure, "snapshot.numberNotWhole", {std::string(greatest.text)});
    // The end of the answer: only then has the source said who answered.
    while (answer.next(whileWaiting()) != nullptr) continue;
    return extent;
  }

  [[nodiscard]] std::function<void()> whileWaiting() const {
    return [this] {
      if (progress_) progress_(rowsSoFar_, expected_);
    };
  }

  void copy(SnapshotFile& file) {
    if (file.begun().empty()) {
      const Extent whole = extentUpTo({});
      file.start(now(), whole.last);
      expected_ = whole.rows;
    } else {
      continueFile(file);
      expected_ = extentUpTo(file.end()).rows;
    }
    for (;;) {
      const std::uint64_t before = file.rows();
      try {
        copyRest(file);
        break;
      } catch (const Error&) {
        if (!keep(file) || file.rows() <= before + 1) throw;
      } catch (...) {
        static_cast<void>(keep(file));
        throw;
      }
      continueFile(file);
    }
    const std::uint64_t there = extentUpTo(file.end()).rows;
    if (there == file.rows()) return;
    throw localizedError(unspecifiedFailure, "snapshot.changedMeanwhile",
                         {std::to_string(file.rows()), std::to_string(there), utf8FromPath(unfinished_)});
  }

  /// Keeps what came for this attempt's successor, or for the next run. False where that fails, too: the first failure
  /// says more.
  static bool keep(SnapshotFile& file) {
    try {
      file.store();
      return true;
    } catch (const Error&) {
      return false;
    }
  }

  /// Rows that were stored are no longer looked at, so nothing may have come to them or gone from them.
  void continueFile(SnapshotFile& file) {
    const std::optional<std::int64_t> last = file.lastNumber();
    file.forgetLastNumber();
    if (file.rows() == 0) return;
    // Where the last rows had no number, or the least that there is, all rows are gone now.
    if (!last || *last == std::numeric_limits<std::int64_t>::min())
      throw localizedError(unspecifiedFailure, "snapshot.unfinishedDamaged", {utf8FromPath(unfinished_)});
    const std::uint64_t there = extentUpTo(*last - 1).rows;
    if (there == file.rows()) return;
    throw localizedError(unspecifiedFailure, "snapshot.changedSince",
                         {std::to_string(file.rows()), std::to_string(there), utf8FromPath(unfinished_)});
  }

  void copyRest(SnapshotFile& file) {
    db::AuditSelection rest = selection();
    rest.numbers->last = file.end();
    if (file.rows() > 0) rest.numbers->first = file.lastNumber();
    RowStream rows([order = &order_, rest](db::ResultSink& sink, const std::stop_token& stop) {
      order->connect(order->connectionString, stop)->select(rest, sink);
    });
    while (const query::BufferedRows* const batch = rows.next(whileWaiting())) {
      file.begin(batch->fields());
      for (std::size_t i = 0; i < batch->rowCount(); ++i) file.add(batch->row(i));
      rowsSoFar_ = file.rows();
      if (progress_) progress_(rowsSoFar_, expected_);
    }
  }

  void end(SnapshotFile& file) {
    taken_.facts.source = order_.source;
    taken_.facts.program = order_.program + " " + order_.programVersion;
    taken_.facts.begun = file.begun();
    taken_.facts.last = file.end();
    taken_.facts.ended = now();
    manifest_.rows.columns = file.columns();
    file.finish(taken_.facts);
  }

  /// Manifest and sums come first: without the database they say that it is missing, and it is whole when it appears.
  void publish() {
    writing(target_, [this] {
      const FileSum sum = sumOfFile(unfinished_);
      fillManifest(sum);
      const std::string text = manifestText(manifest_);
      AtomicFile manifest(manifestOf(target_));
      AtomicFile sums(sumsOf(target_));
      manifest.write(text);
      sums.write(sumsText(
          {{sum.sha256, manifest_.output.name}, {Sha256::of(text), utf8FromPath(manifestOf(target_).filename())}}));
      manifest.sync();
      sums.sync();
      manifest.commit();
      sums.commit();
      std::error_code failure;
      files::rename(unfinished_, target_, failure);
      if (failure) throw systemError(systemErrorNumber(failure), "cannot rename");
    });
    for (const fs::path& file : {target_, manifestOf(target_), sumsOf(target_)}) makeReadOnly(file);
    if (order_.asBag) writeTags();
  }

  void fillManifest(const FileSum& sum) {
    manifest_.program = order_.program;
    manifest_.programVersion = order_.programVersion;
    manifest_.user = systemUser();
    manifest_.computer = computerName();
    manifest_.begun = taken_.facts.begun;
    manifest_.ended = taken_.facts.ended;
    manifest_.source = {order_.source.server, order_.source.database, taken_.facts.engine, taken_.facts.login};
    manifest_.question.from = order_.source.from;
    manifest_.question.to = order_.source.to;
    db::AuditSelection asked = selection();
    asked.numbers->last = taken_.facts.last;
    manifest_.question.text = db::auditSelectionText(asked);
    manifest_.isComplete = true;
    manifest_.output = {utf8FromPath(target_.filename()), std::string(db::snapshotOutputFormat), sum.bytes, sum.sha256};
    manifest_.rows.digest = taken_.facts.digest;
    manifest_.rows.inOutput = taken_.facts.rows;
  }

  /// Against mistakes; who owns a file can make it writable again.
  static void makeReadOnly(const fs::path& file) {
    std::error_code ignored;
    fs::permissions(extendedLengthPath(file), fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove, ignored);
  }

  const SnapshotOrder& order_;
  const SnapshotProgress& progress_;
  fs::path folder_;
  fs::path target_;
  fs::path unfinished_;
  std::uint64_t rowsSoFar_ = 0;
  std::uint64_t expected_ = 0;
  TakenSnapshot taken_;
  Manifest manifest_;
};

}  // namespace

fs::path unfinishedSnapshot(const SnapshotOrder& order) {
  fs::path file =
      db::embeddedDatabaseFile(order.asBag ? order.folder / payloadFolder : order.folder, order.source.database);
  file += unfinishedEnding;
  return file;
}

TakenSnapshot takeSnapshot(const SnapshotOrder& order, const SnapshotProgress& progress) {
  return Taking(order, progress).take();
}

}  // namespace korvel::evidence
