#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "db/connection.h"
#include "tests/db/audit_database.h"

namespace korvel::test {

/// A database engine that connections are made to. Each back end derives one and instantiates the suite with it:
/// INSTANTIATE_TEST_SUITE_P(Name, ConnectionConformance, testing::Values(makeBackend), ...).
class ConformanceBackend {
 public:
  virtual ~ConformanceBackend() = default;
  /// Why the engine cannot be used here; empty where it can. The suite then skips, visibly.
  [[nodiscard]] virtual std::string absence() const { return {}; }
  /// Creates the audit trail again, with these rows and, where the engine has procedures, QueryAudits.
  virtual void fill(const std::vector<AuditEntry>& entries) = 0;
  /// A new connection to that database.
  [[nodiscard]] virtual std::unique_ptr<db::Connection> connect() = 0;
};

using MakeBackend = std::unique_ptr<ConformanceBackend> (*)();

/// The behaviour that all engines' connections share. The cases are in connection_conformance.cpp and use only SQL that
/// all engines understand.
class ConnectionConformance : public testing::TestWithParam<MakeBackend> {
 protected:
  void SetUp() override {
    backend_ = GetParam()();
    if (const std::string reason = backend_->absence(); !reason.empty()) GTEST_SKIP() << reason;
  }

  std::unique_ptr<db::Connection> connectTo(const std::vector<AuditEntry>& entries) {
    backend_->fill(entries);
    return backend_->connect();
  }

  std::unique_ptr<ConformanceBackend> backend_;
};

}  // namespace korvel::test
