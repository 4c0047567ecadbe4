#include "db/embedded/embedded_connection.h"
#include "tests/db/connection_conformance.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {
namespace {

class EmbeddedBackend final : public ConformanceBackend {
 public:
  void fill(const std::vector<AuditEntry>& entries) override {
    std::filesystem::remove(folder_ / "D.db");
    writeAuditDatabase(folder_ / "D.db", entries);
  }
  [[nodiscard]] std::unique_ptr<db::Connection> connect() override { return db::openEmbedded(folder_.path(), "D"); }

 private:
  TemporaryFolder folder_;
};

std::unique_ptr<ConformanceBackend> makeEmbedded() {
  return std::make_unique<EmbeddedBackend>();
}

INSTANTIATE_TEST_SUITE_P(Embedded, ConnectionConformance, testing::Values(makeEmbedded));

}  // namespace
}  // namespace korvel::test
