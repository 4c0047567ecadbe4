#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace korvel::bench {

inline constexpr std::uint64_t manyRows = 1'000'000;

/// A folder with one generated audit database, Korvel_Audit.db, removed when the object goes.
class AuditFolder {
 public:
  /// Writes a database of `rows` generated records; takes some seconds a million.
  explicit AuditFolder(std::uint64_t rows);
  ~AuditFolder();
  AuditFolder(const AuditFolder&) = delete;
  AuditFolder& operator=(const AuditFolder&) = delete;

  [[nodiscard]] std::filesystem::path file() const { return path_ / "Korvel_Audit.db"; }
  /// The connection string with which the viewer reaches the database.
  [[nodiscard]] std::string connectionString() const;

 private:
  std::filesystem::path path_;
};

/// The database of a million records that the benchmarks of one program share.
const AuditFolder& millionRecords();

}  // namespace korvel::bench
