#include "control/latest_work.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTest>
#include <QThread>
#include <atomic>
#include <memory>
#include <string>

namespace korvel::control {
namespace {

void workUntilStopped(const std::stop_token& stop) {
  while (!stop.stop_requested()) QThread::yieldCurrentThread();
}

TEST(LatestWork, IsDoneOnAnotherThreadAndReportedOnThisOne) {
  LatestWork work(nullptr);
  const QThread* const here = QThread::currentThread();
  std::atomic<const QThread*> worker = nullptr;
  const QThread* reported = nullptr;
  EXPECT_FALSE(work.isRunning());
  work.start([&](const std::stop_token&) { worker = QThread::currentThread(); },
             [&] { reported = QThread::currentThread(); });
  EXPECT_TRUE(work.isRunning());
  EXPECT_EQ(reported, nullptr) << "not before the caller goes on";
  ASSERT_TRUE(QTest::qWaitFor([&] { return !work.isRunning(); }, 20'000));
  EXPECT_EQ(reported, here);
  EXPECT_NE(worker, here);
}

TEST(LatestWork, OnlyTheLatestPieceIsReported) {
  LatestWork work(nullptr);
  std::string reported;
  work.start(workUntilStopped, [&] { reported += "first "; });
  work.start(workUntilStopped, [&] { reported += "second "; });
  work.start([](const std::stop_token&) {}, [&] { reported += "third"; });
  ASSERT_TRUE(QTest::qWaitFor([&] { return !work.isRunning(); }, 20'000));
  EXPECT_EQ(reported, "third");
}

TEST(LatestWork, WhatIsStoppedIsNotReportedEvenIfItHasEnded) {
  LatestWork work(nullptr);
  std::string reported;
  std::atomic<bool> ended = false;
  work.start([&](const std::stop_token&) { ended = true; }, [&] { reported += "stopped"; });
  while (!ended) QThread::yieldCurrentThread();
  work.stop();
  EXPECT_FALSE(work.isRunning());
  std::atomic<bool> started = false;
  std::atomic<bool> mayEnd = false;
  const auto wait = [&](const std::stop_token& stop) {
    started = true;
    while (!mayEnd && !stop.stop_requested()) QThread::yieldCurrentThread();
  };
  work.start(wait, [&] { reported += "next"; });
  while (!started) QThread::yieldCurrentThread();
  QCoreApplication::processEvents();
  EXPECT_EQ(reported, "") << "the end of the first one is not that of the next";
  mayEnd = true;
  ASSERT_TRUE(QTest::qWaitFor([&] { return !work.isRunning(); }, 20'000));
  EXPECT_EQ(reported, "next");
}

TEST(LatestWork, TheEndOfItsOwnerStopsIt) {
  bool reported = false;
  const auto owned = std::make_shared<int>(1);
  {
    LatestWork work(nullptr);
    work.start([owned](const std::stop_token& stop) { workUntilStopped(stop); }, [&] { reported = true; });
  }
  EXPECT_EQ(owned.use_count(), 1);
  QCoreApplication::processEvents();
  EXPECT_FALSE(reported);
}

}  // namespace
}  // namespace korvel::control
