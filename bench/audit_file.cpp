#include "bench/audit_file.h"

#include <stdlib.h>

#include <stdexcept>
#include <system_error>

#include "db/connection_state.h"
#include "db/connection_string.h"
#include "demo/demo_database.h"

namespace korvel::bench {

AuditFolder::AuditFolder(std::uint64_t rows) {
  std::string name = (std::filesystem::temp_directory_path() / "korvel-bench-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = name;
  demo::writeDemoDatabase(file(), rows, 1);
}

AuditFolder::~AuditFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string AuditFolder::connectionString() const {
  return db::buildConnectionString(path_.string(), "Korvel_Audit");
}

const AuditFolder& millionRecords() {
  static const AuditFolder folder{manyRows};
  return folder;
}

}  // namespace korvel::bench
