#include "control/watched_work.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMetaObject>
#include <QWidget>
#include <chrono>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

namespace korvel::test {
namespace {

TEST(WatchedWork, LetsTheProgramGoOnMeanwhile) {
  static constexpr std::chrono::seconds longEnough(60);
  const auto happened = std::make_shared<std::promise<void>>();
  QMetaObject::invokeMethod(
      QCoreApplication::instance(), [happened] { happened->set_value(); }, Qt::QueuedConnection);
  const auto answer = control::runWatched([happened](const std::stop_token& /*stop*/) {
    return happened->get_future().wait_for(longEnough) == std::future_status::ready;
  });
  EXPECT_TRUE(answer.value_or(false));
}

TEST(WatchedWork, IsNotWantedAfterEsc) {
  QWidget window;
  QCoreApplication::postEvent(&window, new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
  const auto answer = control::runWatched([](const std::stop_token& stop) {
    while (!stop.stop_requested()) std::this_thread::yield();
    return 1;
  });
  EXPECT_EQ(answer, std::nullopt);
}

TEST(WatchedWork, ThrowsWhatTheWorkThrows) {
  EXPECT_THROW(control::runWatched([](const std::stop_token& /*stop*/) -> int { throw std::runtime_error("no"); }),
               std::runtime_error);
}

}  // namespace
}  // namespace korvel::test
