#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "tests/db/collected_answer.h"
#include "tests/odbc/access_without_domain.h"
#include "tests/support/temporary_folder.h"
#include "tests/tds_server/bare_odbc.h"
#include "tests/tds_server/server.h"

namespace korvel::test {

/// A TDS server and the product's connections to it: encrypted, with the certificate checked.
class WireTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!installedFreeTds()) GTEST_SKIP() << "the FreeTDS ODBC driver is not installed";
    writeFileAtomically(folder_ / "authorities.pem", server_.certificatePem());
    access_.options.certificateAuthorities = (folder_ / "authorities.pem").string();
  }

  [[nodiscard]] std::string serverName() const { return "localhost," + std::to_string(server_.port()); }
  std::unique_ptr<db::Connection> connect(const std::string& database = "Korvel_Audit") {
    return db::odbc::openServer(serverName(), database, access_);
  }
  /// The error of connecting; nothing where it succeeds.
  std::optional<Error> connectError(const std::string& database = "Korvel_Audit") {
    return errorOf([&] { (void)connect(database); });
  }

  db::Connection& connection() {
    if (!connection_) connection_ = connect();
    return *connection_;
  }
  /// What the connection returns for an answer.
  std::vector<CollectedResult> results(const tds::Answer& answer) {
    server_.answer("go", answer);
    return resultsOf(connection(), "go");
  }
  std::string text(const tds::Answer& answer) {
    server_.answer("go", answer);
    return answerText(connection(), "go");
  }
  std::optional<Error> error(const tds::Answer& answer) {
    server_.answer("go", answer);
    return errorOfText(connection(), "go");
  }
  /// The one value of an answer; nothing for null.
  std::optional<std::string> value(const char* declaration, const tds::Value& value) {
    return results(tds::Answer().result({{"a", declaration}}).row({value})).at(0).rows.at(0).at(0);
  }

  TemporaryFolder folder_;
  tds::TdsServer server_;
  db::odbc::ServerAccess access_ = accessWithoutDomain();
  std::unique_ptr<db::Connection> connection_;
};

}  // namespace korvel::test
