#pragma once

#include <QCoreApplication>
#include <QInputDevice>
#include <QThread>
#include <chrono>
#include <functional>

#include "db/connection.h"

namespace korvel::test {

/// Creates the objects of the first keyboard event on the windows' thread, for tests that send keys from a server's
/// thread.
inline void makeKeyboard() {
  static_cast<void>(QInputDevice::primaryKeyboard());
}

/// For actions of a server in a test: runs `action` and its direct effects on the windows' thread.
inline void onWindowThread(const std::function<void()>& action) {
  const auto actAndSettle = [&action] {
    action();
    QCoreApplication::processEvents();
  };
  if (QThread::currentThread() == QCoreApplication::instance()->thread())
    actAndSettle();
  else
    QMetaObject::invokeMethod(QCoreApplication::instance(), actAndSettle, Qt::BlockingQueuedConnection);
}

/// Waits for an event that must come; false after the timeout.
template <typename Condition>
bool comesAbout(Condition holds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{20};
  while (!holds())
    if (std::chrono::steady_clock::now() > end)
      return false;
    else
      QThread::yieldCurrentThread();
  return true;
}

/// Waits until an answer is cancelled; false after the timeout.
inline bool waitUntilUnwanted(db::ResultSink& sink) {
  return comesAbout([&sink] { return !sink.shouldContinue(); });
}

}  // namespace korvel::test
