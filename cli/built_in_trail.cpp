#include "cli/built_in_trail.h"

#include <random>
#include <system_error>

#include "base/error.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "db/connection_string.h"
#include "demo/demo_database.h"
#include "evidence/answer_record.h"
#include "evidence/recorded_rows.h"
#include "query/date_range.h"
#include "query/filter_tree.h"

namespace korvel::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view database = "Korvel_Audit";

/// A new folder, removed with all that is in it.
class WorkingFolder {
 public:
  explicit WorkingFolder(const fs::path& parent) {
    std::random_device random;
    constexpr int attempts = 100;
    std::error_code failure;
    for (int i = 0; i < attempts; ++i) {
      path_ = parent / ("korvel-selftest-" + std::to_string(random()));
      if (fs::create_directory(path_, failure)) return;
      if (failure) break;
    }
    throw systemError(systemErrorNumber(failure), "cannot create a folder in " + utf8FromPath(parent));
  }
  ~WorkingFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;

  [[nodiscard]] const fs::path& path() const noexcept { return path_; }

 private:
  fs::path path_;
};

}  // namespace

BuiltInAnswer askBuiltInTrail(const fs::path& folder, const query::Connector& connect) {
  const WorkingFolder work(folder);
  demo::writeDemoDatabase(work.path() / (std::string(database) + ".db"), builtInRows, builtInSeed);
  query::FilterTree tree;
  tree.selectAll();
  query::ResultLists lists = query::makeResultLists();
  const std::string connection = db::buildConnectionString(utf8FromPath(work.path()), database);
  const evidence::AnsweringServer server;
  const query::QueryReport report =
      query::runStandardQuery({tree, query::DateRange{}, connection}, server.remembering(connect), lists, 0);
  if (report.failure) throw Error(*report.failure);
  const evidence::Manifest::Rows rows = evidence::recordedRows(lists.front());
  return {lists.front().rowCount(), evidence::hexText(rows.digest), server.identity().product};
}

}  // namespace korvel::cli
