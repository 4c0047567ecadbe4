#pragma once

#include <QCoreApplication>
#include <QInputDevice>
#include <QThread>
#include <chrono>
#include <functional>

#include "db/connection.h"

namespace korvel::test {

/// Makes what the first event of a keyboard makes, for tests that send keys from a server's thread: it belongs to the
/// thread of the windows.
inline void makeKeyboard() {
  static_cast<void>(QInputDevice::primaryKeyboard());
}

/// For what a server does in a test, on the thread that asks it: runs `action`, and everything that it sets off at
/// once, on the thread of the windows.
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

/// Waits for what must come; false where it does not.
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

/// Waits until an answer is not wanted any more; false where it stays wanted.
inline bool waitUntilUnwanted(db::ResultSink& sink) {
  return comesAbout([&sink] { return !sink.goOn(); });
}

}  // namespace korvel::test
