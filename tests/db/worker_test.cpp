#include "db/worker.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

namespace korvel::db {
namespace {

using namespace std::chrono_literals;

/// A limit that is reached only by a failure.
constexpr auto patience = 20s;

const WaitCallback always = [] { return true; };

TEST(AttendedWork, HandsOverWhatTheWorkGives) {
  const auto result = runOnWorker([](const std::stop_token&) { return std::make_unique<std::string>("whole"); }, {});
  ASSERT_TRUE(result);
  EXPECT_EQ(**result, "whole");
}

TEST(AttendedWork, IsDoneOnAnotherThread) {
  const auto worker = runOnWorker([](const std::stop_token&) { return std::this_thread::get_id(); }, always);
  EXPECT_NE(worker, std::this_thread::get_id());
}

TEST(AttendedWork, IsAttendedAgainAndAgainUntilItEnds) {
  std::promise<void> enough;
  int calls = 0;
  const WaitCallback count = [&] {
    if (++calls == 3) enough.set_value();
    return true;
  };
  const auto work = [wait = enough.get_future().share()](const std::stop_token&) {
    return wait.wait_for(patience) == std::future_status::ready;
  };
  EXPECT_EQ(runOnWorker(work, count, {1ms, 0ms}), true);
}

TEST(AttendedWork, IsNotAttendedBeforeItsPace) {
  int calls = 0;
  const WaitCallback count = [&] { return ++calls > 0; };
  EXPECT_EQ(runOnWorker([](const std::stop_token&) { return 1; }, count, {1h, 0ms}), 1);
  EXPECT_EQ(calls, 0);
}

TEST(AttendedWork, ThrowsWhatTheWorkThrows) {
  const auto work = [](const std::stop_token&) -> int { throw std::runtime_error("broken"); };
  EXPECT_THROW((void)runOnWorker(work, {}), std::runtime_error);
  EXPECT_THROW((void)runOnWorker(work, always), std::runtime_error);
}

TEST(AttendedWork, IsAskedToEndWhereItIsNotWanted) {
  const auto work = [](const std::stop_token& stop) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!stop.stop_requested() && std::chrono::steady_clock::now() < end) std::this_thread::yield();
    return stop.stop_requested();
  };
  EXPECT_EQ(runOnWorker(work, [] { return false; }, {1ms, patience}), true);
}

/// Work that ends only when the test lets it, or when the test would wait for it too long.
struct StubbornWork : testing::Test {
  ~StubbornWork() override { returned.set_value(); }

  /// Waits until no detached work is left.
  void letEnd() {
    letGo();
    const auto end = std::chrono::steady_clock::now() + patience;
    while (hasAbandonedWorkers() && std::chrono::steady_clock::now() < end) std::this_thread::yield();
    EXPECT_FALSE(hasAbandonedWorkers());
  }
  auto work() {
    return [wait = release.get_future().share(), keeps = own](const std::stop_token&) {
      wait.wait();
      return *keeps;
    };
  }

  void letGo() {
    std::call_once(released, [this] { release.set_value(); });
  }

  std::once_flag released;
  std::promise<void> release;
  std::shared_ptr<int> own = std::make_shared<int>(7);
  std::promise<void> returned;
  std::jthread rescue{[this, over = returned.get_future()] {
    if (over.wait_for(patience / 2) == std::future_status::timeout) letGo();
  }};
};

TEST_F(StubbornWork, IsLeftBehindWithWhatItUses) {
  EXPECT_EQ(runOnWorker(work(), [] { return false; }, {1ms, 0ms}), std::nullopt);
  EXPECT_TRUE(hasAbandonedWorkers());
  EXPECT_GT(own.use_count(), 1);
  letEnd();
  EXPECT_EQ(own.use_count(), 1);
}

TEST_F(StubbornWork, IsLeftBehindByAnAttendanceThatThrows) {
  const WaitCallback broken = []() -> bool { throw std::runtime_error("no window"); };
  EXPECT_THROW((void)runOnWorker(work(), broken, {1ms, 0ms}), std::runtime_error);
  EXPECT_TRUE(hasAbandonedWorkers());
  letEnd();
}

}  // namespace
}  // namespace korvel::db
