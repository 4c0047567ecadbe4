#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <chrono>
#include <string>
#include <vector>

#include "db/net/socket.h"
#include "tests/db/collected_answer.h"
#include "tests/tds_server/socket.h"

namespace korvel::test {

/// A port whose queue is full: further connections are dropped without an answer, as by a firewall.
class FullPort {
 public:
  FullPort() : listener_(bindLoopback(SOCK_STREAM)) {
    using namespace std::chrono_literals;
    EXPECT_EQ(::listen(listener_.socket.get(), 0), 0);
    const auto endpoints = db::net::resolveHost("127.0.0.1", listener_.port, db::net::Deadline(5s)).endpoints;
    const auto full = errorOf([&] {
      for (int i = 0; i < 64; ++i) waiting_.push_back(db::net::connectTcp(endpoints, db::net::Deadline(200ms)));
    });
    EXPECT_TRUE(full) << "the queue never filled";
  }

  [[nodiscard]] std::string serverName() const { return "127.0.0.1," + std::to_string(listener_.port); }

 private:
  LoopbackSocket listener_;
  std::vector<db::net::Socket> waiting_;
};

}  // namespace korvel::test
