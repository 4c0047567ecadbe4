#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/tds_server/bare_odbc.h"
#include "tests/tds_server/server.h"

namespace korvel::test::tds {

/// A server and a real driver connected to it; skips where the driver is not installed.
class ServerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto found = installedFreeTds();
    if (!found) GTEST_SKIP() << "the FreeTDS ODBC driver is not installed";
    driver_ = *found;
  }

  Diagnostics connect(const std::string& more = "Encryption=off;UID=reader;PWD=secret;") {
    odbc_.disconnect();
    return odbc_.connect(freeTdsString(driver_, server_.port(), more));
  }
  /// What the driver returns for an answer.
  std::vector<std::string> shown(const Answer& answer) {
    if (!odbc_.connected()) {
      EXPECT_THAT(connect(), ::testing::IsEmpty());
    }
    server_.answer("go", answer);
    return odbc_.execute("go");
  }

  std::string driver_;
  TdsServer server_;
  BareOdbc odbc_;
};

}  // namespace korvel::test::tds
