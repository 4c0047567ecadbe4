#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/support/tds/bare_odbc.h"
#include "tests/support/tds/peer.h"

namespace korvel::test::tds {

/// A peer and a real driver that talks to it; skips where the driver is not installed.
class PeerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto found = installedFreeTds();
    if (!found) GTEST_SKIP() << "the FreeTDS ODBC driver is not installed";
    driver_ = *found;
  }

  Diagnostics connect(const std::string& more = "Encryption=off;UID=reader;PWD=secret;") {
    odbc_.disconnect();
    return odbc_.connect(freeTdsString(driver_, peer_.port(), more));
  }
  /// What the driver makes of an answer.
  std::vector<std::string> shown(const Answer& answer) {
    if (!odbc_.connected()) {
      EXPECT_THAT(connect(), ::testing::IsEmpty());
    }
    peer_.answer("go", answer);
    return odbc_.execute("go");
  }

  std::string driver_;
  TdsPeer peer_;
  BareOdbc odbc_;
};

}  // namespace korvel::test::tds
